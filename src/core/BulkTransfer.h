#pragma once
#include "ParameterSet.h"
#include "Requests.h"
#include <QString>
#include <optional>

class ConsoleState;

// What the bulk screens and the headless backup and restore share: the words
// of a transfer's progress and the settings of the open link.
namespace bulktransfer {

// The status cell of a table on the bulk screens (lblSTS 0 to 3), and the
// label of its row: "使用者", "文本", "程式組數", "程式段數".
int statusCell(BulkTable table);
QString rowLabel(BulkTable table);

// The text a progress report puts in its cell: rows, patterns or segments so
// far against their number ("120/512"; while texts are received, the row
// that comes next), and at the end of a table "接收完了" or "傳送完了". None
// for a report that the machine is silent: the cell keeps its last text.
std::optional<QString> statusText(const BulkProgress &progress);

// The link as it is open now, for the link rows of a set to be sent.
paramset::LinkSettings linkSettings(const ConsoleState &state);

} // namespace bulktransfer
