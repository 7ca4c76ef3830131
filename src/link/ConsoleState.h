#pragma once
#include "ControllerImage.h"
#include "Requests.h"
#include "TextTable.h"
#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QVector>

// Machine numbers on the line run from 1 to this.
constexpr int MaxMachineNumber = 999;

// One chamber controller on the line, by its place in the machine list.
struct MachineSlot {
    int MachineNumber = 0;
    QString MachineName;
    bool MachineOnline = false;
    bool MachineRunning = false;
    QString MachineRunMode; // "PROGRAM", "FIXRUN", or empty until the first reading
};

// The process-wide state of the console: port settings, machine list, the
// scheduler's variables and mailbox, and the controller image. The application
// owns exactly one; tests build their own.
class ConsoleState : public QObject {
    Q_OBJECT
public:
    explicit ConsoleState(QString home, QObject *parent = nullptr);

    // The program's folder: settings files, logs and caches live here.
    const QString home;
    QString path(const QString &relative) const; // programPath(home, relative)

    // Port settings, from CommPort.CFG.
    int CommPortNo = 1;
    QString CommBaud = QStringLiteral("115200");
    QString CommParity = QStringLiteral("N");
    QString CommDataBits = QStringLiteral("8");
    QString CommStopBits = QStringLiteral("1");
    QString CommProtocol = QStringLiteral("PC Link");
    QString CommRTS = QStringLiteral("OFF");
    bool CrcMode() const { return CommProtocol == QLatin1String("PC Link + crc"); }
    bool Modbus() const { return CommProtocol == QLatin1String("Modbus RTU"); }
    QString CommSettingsText() const; // "115200,N,8,1"
    void setCommDefaults();

    int CommWaitMs = 0;
    QString SystemPassword = QStringLiteral("Nolk8264");
    bool SystemLocked = false;   // operator's program lock (mHelpLock)
    int PtnDataOption = 0;       // index of optPTN_Data: 0 from the controller, 1 from file
    bool SingleConsoleOpen = false; // the single-chamber console is open
    // The operator stopped the program fetch: the editor that asked for it
    // closes at once without saving the cache; cleared when an editor closes.
    bool ReceptionStopped = false;

    // Machine list.
    bool MultiMode = false;
    QVector<MachineSlot> machines;
    int MachineLast() const { return int(machines.size()) - 1; }
    int CurrentMachine = 0;
    // A machine comes to the foreground (the scan's first answer, a click in
    // the machine table); the program image follows it.
    void setCurrentMachine(int machine);
    int slotOfMachine(int machineNumber) const; // -1 if not in the list
    void setMachines(const QVector<MachineSlot> &slots);
    // A new machine list in force: the mode and the slots, then machineListChanged().
    void setMachineList(bool multiMode, const QVector<MachineSlot> &slots);

    // The machine table shown on the main screen (row = slot + 1) and the link counters.
    TextTable sprdStatus{QStringLiteral("sprdStatus"), 3, 0};
    TextTable sprdCommState{QStringLiteral("sprdCommState"), 4, 0};
    void countComm(int slot, int column); // adds 1 to a counter of sprdCommState

    // Status bar texts, panels 1 to 6.
    QString statusPanel(int panel) const;
    void setStatusPanel(int panel, const QString &text);

    ControllerImage image;

    // The scheduler.
    int CmdState = 10;
    QByteArray CmdData;
    int CmdIndex = 0;
    int CmdIndexEnd = 0;
    int PollSlot = 0;
    int NextPollSlot = -1;
    int ReqCmd = 0;
    int ReqIndex = 0;
    QByteArray ReqData{2, '\0'};
    QByteArray WriteBlock;
    int WriteBlockCount = 0;
    int PatternNo = 1;
    int SegmentNo = 1;
    int SegmentCount = 0;
    QString BulkFormName;             // the screen that drives the bulk transfer
    BulkJob bulkJob = BulkJob::None;  // the same as a job
    bool BulkWithPrograms = false;    // the bulk screen's option to include the programs
    bool RefreshAfterWrite = false;
    bool RefreshOnOpen = false;
    bool ParamPageOpen = false;
    bool ParamChanged = false;
    int RetryCount = 0;
    int RxSettleMs = 0;
    QString LastReplyCmd;

    // The one-shot refresh timer of the open screen; the main screen's own when none.
    QPointer<QTimer> ActiveRefreshTimer;
    QPointer<QTimer> MainRefreshTimer;
    void setActiveRefreshTimer(QTimer *t) { ActiveRefreshTimer = t ? t : MainRefreshTimer.data(); }
    void startActiveRefresh();

    // The mailbox of one slot, the last writer wins. Screens post through
    // requests(), which names each kind and works out its addresses.
    void request_command(int code, int index = 0, const QByteArray &data = QByteArray(2, '\0'));
    // request_command with a 16-bit word as the two payload bytes, high byte first.
    void request_word(int code, int index, int word);
    Requests requests() { return Requests(*this); }

    // Slot walks of the scan and the poll.
    int next_slot(int slot) const;
    int next_online_slot(int start) const;

    // The firmware rule: the version in column 3 of a row of sprdStatus fixes
    // the row count of sprdUP and the pattern count.
    void applyFirmwareOfRow(int row);
    // A machine of the list becomes the foreground machine: the firmware in
    // its row fixes the parameter block, and the program image, which belongs
    // to one machine, starts unloaded when the machine changes. False when
    // the machine is not in the list.
    bool setForegroundMachine(int machineNumber);
    double FirmwareVersion() const { return image.firmwareVersion(); }
    int PatternCount() const { return image.patternCount(); }
    int TempDecimals() const { return image.tempDecimals(); }

    // A row of sprdUP as the link addresses it: the row itself in PC Link,
    // 40100 + row under Modbus RTU in the current layout.
    int WireAddress(int row) const;

signals:
    void statusPanelChanged(int panel, const QString &text);
    void machineListChanged();

private:
    QString m_panels[7];
};
