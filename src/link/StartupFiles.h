#pragma once
#include "ConsoleState.h"
#include <QString>

// The settings files the console reads at start, each with its failure rule.

// CommWait.TM: one line, the extra reply wait in ms. A missing or empty file is
// written anew with "0" and gives 0.
int readCommWait(const QString &home);

// CommPort.CFG: seven lines (port "COMn", baud, parity, data bits, stop bits,
// protocol, RTS). Fewer than seven lines or no file: every default at once.
// Returns false when the defaults were taken.
bool readCommPortCfg(ConsoleState &state);
bool writeCommPortCfg(const QString &home, const QStringList &sevenLines);

// CFG/Run.INI: the machine list. Line 1 "多機" is multi mode; otherwise line 2
// is the one machine's number. In multi mode line n + 2 is machine n, used
// when its first tab field is "O", labelled by the second field.
struct MachineList {
    bool multiMode = false;
    int singleMachine = 1;
    QVector<MachineSlot> machines;
};
// Creates the CFG folder when missing. A missing or unreadable file gives
// single mode with machine 1 and is logged as "Get_RunCFG".
MachineList Get_RunCFG(const QString &home);
// Writes the file: mode line, single machine, and one line per machine number
// 1..lines.size() ("O" or empty, tab, label). Logged as "Put_RunCFG" on failure.
bool Put_RunCFG(const QString &home, bool multiMode, int singleMachine, const QVector<QPair<bool, QString>> &lines);

// QM730_ID.INI: the saved one-cell table holding the system password.
// Empty optional when the file is missing or not a table image.
std::optional<QString> loadSystemPassword(const QString &home);
bool saveSystemPassword(const QString &home, const QString &password);
