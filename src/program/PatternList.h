#pragma once

class ControllerImage;
class QTableWidget;

// The read-only list of patterns the segment editor and the program
// management screen choose from: name, wait bands and time, repeats, link,
// start mode and start values of each pattern of the program image.
namespace PatternList {
enum Column {
    Name,
    WaitTemp,
    WaitHumi,
    WaitHours,
    WaitMinutes,
    RepeatAll,
    LinkPattern,
    StartMode,
    StartTemp,
    StartHumi,
    Columns
};

// "sprdPattern" with its headings, `rows` patterns, nothing editable.
QTableWidget *create(int rows);
// Every row from the image; the start mode as "S.SV" or "S.PV".
void fill(QTableWidget *list, const ControllerImage &image, double firmwareVersion);
} // namespace PatternList
