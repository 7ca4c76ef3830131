#pragma once
#include <QString>
#include <functional>

// The console without windows: opens the port at start, scans and polls,
// records, and prints one line per change of the link and per poll of a
// machine. Ends after `seconds` (0: never) or on SIGTERM/SIGINT, closing the
// port and the database.
// With `demo` the simulator's line is started first (see Demo.h).
int runHeadless(const QString &home, int seconds, bool commLog, bool demo = false);

// Backup and restore of one machine without windows, with the same file set
// and the same chains as the screens "參數接收/檔案儲存" and "檔案讀取/參數傳送":
// opens the port, waits for the scan, makes `machine` the foreground machine,
// and then
//  - Backup: receives its whole memory (parameter block, texts, patterns,
//    segments) and saves it as the set base.UUP, .UTD, .UPD, .USD;
//  - Restore: reads that set, writes the link rows and converts the block for
//    the machine's firmware, checks the row count, and sends it all; with
//    `verify` it then reads the machine back and lists every row that differs
//    from what was sent.
// Prints one line per step; ends with one of these statuses. `seconds` (0:
// none) limits the whole run; SIGTERM and SIGINT stop the transfer.
enum class TransferKind { Backup, Restore };
enum TransferExit {
    TransferDone = 0,
    TransferStartFailed = 1,   // the program folder has no EMail.mdb
    TransferPortFailed = 3,    // the port cannot be opened (another console may hold it)
    TransferNoMachine = 4,     // the machine is not in the list or did not answer the scan
    TransferSetRefused = 5,    // the set cannot be read, or its row count is not the machine's
    TransferFailed = 6,        // the machine stopped answering, the time ran out, or a signal came
    TransferSaveFailed = 7,    // the set could not be written; no file of it was changed
    TransferVerifyFailed = 8,  // the machine read back differs from the set sent
};
struct TransferOptions {
    TransferKind kind = TransferKind::Backup;
    int machine = 1;
    QString base;         // the set, without an extension
    bool verify = false;  // restore: read back and compare
    int seconds = 0;
    bool commLog = false;
};
int runHeadlessTransfer(const QString &home, const TransferOptions &options);

// SIGTERM and SIGINT call `onSignal` in the event loop (once per signal).
class QObject;
void onTerminationSignals(QObject *owner, std::function<void()> onSignal);
