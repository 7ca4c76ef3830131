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

// CFG/Run.INI: the machine list. Line 1 "多機" is multi mode; line 2 is the
// machine of single mode; line n + 2 is machine n, in use when its first tab
// field is exactly "O", and labelled by the second field.
struct RunCfg {
    bool multiMode = false;
    int singleMachine = 1;                // 1 when line 2 is not a number from 1 to 999
    QVector<QPair<bool, QString>> lines;  // machine n at index n - 1, at most 999
};
// The file as written; empty when it cannot be read or is empty.
std::optional<RunCfg> readRunCfg(const QString &home);

// The slots of a list: one for the single machine, or one for each machine
// in use, in order of number (numbers with gaps, slots without).
struct MachineList {
    bool multiMode = false;
    int singleMachine = 1;
    QVector<MachineSlot> machines;
};
MachineList machineListOf(const RunCfg &cfg);

// The list in force at start. Creates the CFG folder when missing. A file that
// cannot be read, or a multi-mode list with no machine in use, gives single
// mode with machine 1 and is logged as "Get_RunCFG".
MachineList Get_RunCFG(const QString &home);
// Writes the file: mode line, single machine, and one line per machine number
// 1..lines.size() ("O" or empty, tab, label). Logged as "Put_RunCFG" on failure.
bool Put_RunCFG(const QString &home, bool multiMode, int singleMachine, const QVector<QPair<bool, QString>> &lines);

// QM730_ID.INI: the saved one-cell table holding the system password.
// Empty optional when the file is missing or not a table image.
std::optional<QString> loadSystemPassword(const QString &home);
bool saveSystemPassword(const QString &home, const QString &password);
