#pragma once
#include "Encodings.h"
#include <QByteArray>
#include <QAnyStringView>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

class ControllerImage;

// The program image of the foreground machine: the words of a pattern
// (sprdPD, row = pattern, column = word), of its segments (sprdSD, row =
// pattern, column = (segment - 1) x 29 + word) and the text rows (sprdTD), how
// program values scale into words, which rows are loaded, the cache files and
// the option file that says where the editors take their programs from.

// Words of a pattern row of sprdPD.
namespace Pd {
enum Word {
    SegmentCount = 1, // segments in use, 0..100
    WaitTemp = 2,     // temperature wait band, word / 10
    WaitHumi = 3,     // humidity wait band, word / 10
    WaitTime = 4,     // high byte hours, low byte minutes
    RepeatAll = 5,    // runs of the whole pattern
    LinkPattern = 6,  // pattern that follows, 0 none
    StartMode = 7,    // 0 "S.SV", 1 "S.PV"
    StartTemp = 8,    // (word - 1000) / 10
    StartHumi = 9,    // word / 10
};
constexpr int Words = 81;
constexpr int Repeats = 20;
constexpr int Alarms = 4;
// Partial repeat i = 1..20.
constexpr int RepeatStart(int i) { return 10 + 3 * (i - 1); }
constexpr int RepeatEnd(int i) { return 11 + 3 * (i - 1); }
constexpr int RepeatCount(int i) { return 12 + 3 * (i - 1); }
// Alarm i = 1..4. AlarmKind: high byte the object (0 temperature, 1
// humidity), low byte the type code, 0 none.
constexpr int AlarmKind(int i) { return 70 + 3 * (i - 1); }
constexpr int AlarmSV(int i) { return 71 + 3 * (i - 1); }
constexpr int AlarmHyst(int i) { return 72 + 3 * (i - 1); }
} // namespace Pd

// Words of a segment in sprdSD.
namespace Sd {
enum Word {
    SegTempSV = 1, // (word - 10000) / 100
    SegHumiSV = 2, // word / 10
    SegFlags = 3,  // high byte 1: wait at the end ("WT"); low byte bits 0..3: alarms 1..4
    SegTime = 4,   // high byte hours, low byte minutes
    Reserved = 5,  // carried unchanged
};
constexpr int Words = 29;
constexpr int MaxSegments = 100;
constexpr int TimeSignals = 8;
// Time signal k = 1..8.
constexpr int TsMode(int k) { return 6 + 3 * (k - 1); }  // 0 off, 1 on, 2 timed
constexpr int TsTime1(int k) { return 7 + 3 * (k - 1); } // first time, two numbers in high and low byte
constexpr int TsTime2(int k) { return 8 + 3 * (k - 1); } // second time
enum TsModeValue { TsOff = 0, TsOn = 1, TsTimed = 2 };
// Column of word w of segment s (both from 1) in a sprdSD row.
constexpr int column(int segment, int word) { return (segment - 1) * Words + word; }
} // namespace Sd

// ---- Scaling --------------------------------------------------------------

// The kinds of scaled program values; the rest are plain numbers or byte pairs.
enum class ProgramValue {
    SegTempSV, // value x 100 + 10000, "0.00"
    SegHumiSV, // value x 10, "0.0"
    WaitBand,  // WaitTemp and WaitHumi: value x 10, "0.0"
    StartTemp, // value x 10 + 1000, "0.0"
    StartHumi, // value x 10, "0.0"
    AlarmSV,   // below 2.31: value x 100 + 30000; from 2.31: value x 10 + 3000
    AlarmHyst, // value x 10, "0.0"
};
Encoding programEncoding(ProgramValue kind, double firmwareVersion);
// Word of a value (rounded half to even, clamped to 0..65535).
quint16 programWord(ProgramValue kind, double value, double firmwareVersion);
// Word of an entry text, decided on its exact digits ("25.5" -> 12550).
quint16 programWordFromText(ProgramValue kind, QStringView text, double firmwareVersion);
double programValue(ProgramValue kind, qint64 word, double firmwareVersion);
// The screen text. An alarm SV shows two decimals below 2.31 for a
// temperature alarm, else one; humidityObject says which the alarm watches.
QString programText(ProgramValue kind, qint64 word, double firmwareVersion, bool humidityObject = false);

// Hours and minutes (or any two small numbers) in one word: high x 256 + low.
inline quint16 packHoursMinutes(int hours, int minutes) { return packBytes(hours, minutes); }

// ---- Cells ----------------------------------------------------------------

qint64 patternWord(const ControllerImage &image, int pattern, int word);
qint64 segmentWord(const ControllerImage &image, int pattern, int segment, int word);
// Stores the decimal text of a word; false (nothing stored) outside the table.
bool setPatternWord(ControllerImage &image, int pattern, int word, qint64 value);
bool setSegmentWord(ControllerImage &image, int pattern, int segment, int word, qint64 value);
// The name of pattern p: sprdTD row p + 11.
constexpr int patternNameRow(int pattern) { return pattern + 11; }
QString patternName(const ControllerImage &image, int pattern);

// ---- Loaded rows ----------------------------------------------------------

// The first row not loaded yet from start on, or 0 when none is left.
// "RPD": patterns start..PatternCount whose PatternLoaded is clear (start at
// least 1). "RTD": sprdTD rows start..PatternCount + 11 whose
// PatternNameLoaded is clear (start at least 12); with 100 patterns it stops
// at row 111. Any other kind gives 0.
int NextUnloadedRow(const ControllerImage &image, QAnyStringView kind, int start);

// ---- Cache files ----------------------------------------------------------

// <home>/LastPData_<machine>.PD, .SD, .TD; extension without the dot.
QString programCachePath(const QString &home, int machine, QAnyStringView extension);

// Takes sprdPD, then sprdSD, then sprdTD from the cache files of the machine,
// each only if the one before was taken. Does nothing and returns false unless
// ptnDataOption is 1 ("from file"). Returns true only when all three were
// taken. A file that is missing, cut short, corrupt, or of other dimensions
// than the table is refused; tables taken before it stay as loaded. The loaded
// flags are not touched.
bool LoadProgramCache(ControllerImage &image, const QString &home, int machine, int ptnDataOption);
// Writes sprdPD, sprdSD, sprdTD to the cache files in that order, each whole
// (temporary file and rename), stopping at the first failure.
bool SaveProgramCache(const ControllerImage &image, const QString &home, int machine);

// ---- Option file ----------------------------------------------------------

// <home>/PTN_Recv.OPT: one line with the index of optPTN_Data, 0 from the
// controller, 1 from file. Reading gives 1 only for a first line that reads
// 1 (the lenient way); a missing or empty file, or any other number, gives
// the default 0, so one of the two options is always chosen.
int readPtnRecvOpt(const QString &home);
// Rewrites the file with the index (0 or 1 only; false for others or on failure).
bool writePtnRecvOpt(const QString &home, int index);

// ---- Text rows ------------------------------------------------------------

// Bytes of a sprdTD row on the wire: 29 in PC Link; in Modbus RTU 30 for rows
// 1..11 and 24 for rows 12 and up. 0 for a row outside 1..311.
int tdRowBytes(int row, bool modbus);

// The longest head of a text whose code-page bytes fit in `width`, cut
// between characters, so a double-byte character is never split.
QString tdFitText(const QString &text, int width);
// A text in the controllers' code page, cut as tdFitText and padded with zero
// bytes to exactly `width` bytes.
QByteArray tdTextToBytes(const QString &text, int width);
// The bytes of a sprdTD row as they go on the wire.
QByteArray tdRowToBytes(const ControllerImage &image, int row, bool modbus);
// The text of received bytes: up to the first zero byte, in the code page; a
// lead byte left without its second byte at the end is dropped.
QString tdBytesToText(QByteArrayView bytes);
