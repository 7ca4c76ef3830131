#include "FuzzReceive.h"
#include "FuzzSupport.h"
#include "FuzzTargets.h"
#include <QFile>

namespace {
const int kStates[] = {1, 2, 3, 4, 10, 11, 51, 52, 53, 54, 61, 62, 91, 92, 93, 94, 101, 102, 103, 104, 150,
                       151, 152, 153, 154, 201, 202, 203, 204, 205, 211, 212, 311, 312, 321, 328, 400, 401,
                       5, 7, 77, 8, 9, 9001, 9010, 1511, 1515, 5101, 5105, 5199, 5200, 5201, 5210};
const double kFirmware[] = {2.31, 2.2, 2.19, 2.09, 1.81, 1.5};
const char *const kProtocols[] = {"PC Link", "PC Link + crc", "Modbus RTU"};
// One screen reply (with its sum) and one more piece: the most the buffer may hold.
constexpr int kBufferLimit = 2 * 76816 + 65536;

void prepare(ConsoleState &s)
{
    QVector<MachineSlot> slotList(2);
    slotList[0].MachineNumber = 1;
    slotList[1].MachineNumber = 2;
    s.setMachines(slotList);
}

// Every member of the console state, as in a state that has never run. The
// corpus replay compares each outcome with that of a new state, so a member
// added to ConsoleState and missing here shows up there.
void copyState(ConsoleState &to, const ConsoleState &from)
{
    to.CommPortNo = from.CommPortNo;
    to.CommBaud = from.CommBaud;
    to.CommParity = from.CommParity;
    to.CommDataBits = from.CommDataBits;
    to.CommStopBits = from.CommStopBits;
    to.CommProtocol = from.CommProtocol;
    to.CommRTS = from.CommRTS;
    to.CommWaitMs = from.CommWaitMs;
    to.SystemPassword = from.SystemPassword;
    to.SystemLocked = from.SystemLocked;
    to.PtnDataOption = from.PtnDataOption;
    to.MultiMode = from.MultiMode;
    to.machines = from.machines;
    to.CurrentMachine = from.CurrentMachine;
    to.sprdStatus = from.sprdStatus;
    to.sprdCommState = from.sprdCommState;
    for (int panel = 1; panel <= 6; ++panel)
        to.setStatusPanel(panel, from.statusPanel(panel));
    to.image = from.image; // the tables share their cells until written
    to.CmdState = from.CmdState;
    to.CmdData = from.CmdData;
    to.CmdIndex = from.CmdIndex;
    to.CmdIndexEnd = from.CmdIndexEnd;
    to.PollSlot = from.PollSlot;
    to.NextPollSlot = from.NextPollSlot;
    to.ReqCmd = from.ReqCmd;
    to.ReqIndex = from.ReqIndex;
    to.ReqData = from.ReqData;
    to.WriteBlock = from.WriteBlock;
    to.WriteBlockCount = from.WriteBlockCount;
    to.PatternNo = from.PatternNo;
    to.SegmentNo = from.SegmentNo;
    to.SegmentCount = from.SegmentCount;
    to.BulkFormName = from.BulkFormName;
    to.bulkJob = from.bulkJob;
    to.BulkWithPrograms = from.BulkWithPrograms;
    to.RefreshAfterWrite = from.RefreshAfterWrite;
    to.RefreshOnOpen = from.RefreshOnOpen;
    to.ParamPageOpen = from.ParamPageOpen;
    to.SingleConsoleOpen = from.SingleConsoleOpen;
    to.ParamChanged = from.ParamChanged;
    to.RetryCount = from.RetryCount;
    to.RxSettleMs = from.RxSettleMs;
    to.LastReplyCmd = from.LastReplyCmd;
    to.ActiveRefreshTimer = from.ActiveRefreshTimer;
    to.MainRefreshTimer = from.MainRefreshTimer;
}
} // namespace

ReceiveFuzzer::ReceiveFuzzer(const QString &home) : m_state(home), m_fresh(home)
{
    prepare(m_state);
    prepare(m_fresh);
    // Resizing the parameter table costs more than the rest of a short input.
    for (double firmware : kFirmware) {
        m_freshImages.append(m_fresh.image);
        m_freshImages.last().applyFirmware(firmware);
    }
    m_port.open(QStringLiteral("fuzz"), QStringLiteral("115200,N,8,1"));
}

void ReceiveFuzzer::reset()
{
    m_link.reset(); // before the state it refers to changes
    copyState(m_state, m_fresh);
    m_port.clearInput();
    m_port.written.clear();
    m_port.rtsChanges.clear();
    // The link's own flags (settling, waiting after a write) are private: a
    // new link object starts without them.
    m_link.emplace(m_state, m_port);
    // Errors of the store routines go to Err.LOG; keep it from growing without end.
    if (++m_runs % 4096 == 0)
        QFile::remove(m_state.path(QStringLiteral("Err.LOG")));
}

void ReceiveFuzzer::run(const uint8_t *data, size_t size)
{
    if (size < 3)
        return;
    reset();
    ConsoleState &state = m_state;
    state.image = m_freshImages[data[2] % 6]; // m_fresh.image after applyFirmware
    state.CommProtocol = QLatin1String(kProtocols[data[0] % 3]);
    state.CurrentMachine = 1;
    state.bulkJob = (data[0] & 4) ? BulkJob::ProgramFetch : BulkJob::ParameterReceive;
    state.BulkWithPrograms = data[0] & 8;
    state.CmdState = kStates[data[1] % (sizeof kStates / sizeof kStates[0])];
    state.PatternNo = 1 + data[2] % 120;
    state.SegmentNo = 1 + data[1] % 101;
    state.SegmentCount = data[2] % 102;
    state.CmdIndex = data[1] % 320;
    state.CmdIndexEnd = data[2] % 320;
    m_port.setReceiveThreshold(state.Modbus() ? 1 + data[2] % 64 : 1);

    size_t at = 3;
    while (at < size) {
        size_t len = data[at++];
        if (len == 255 && at + 1 < size) { // a long piece: two more length bytes
            len = size_t(data[at]) * 256 + data[at + 1];
            at += 2;
        }
        len = std::min(len, size - at);
        state.RxSettleMs = 0; // take every piece at once
        m_port.feed(QByteArray(reinterpret_cast<const char *>(data + at), qsizetype(len)));
        at += len;
        FUZZ_REQUIRE(m_link->receiveBuffer().size() <= kBufferLimit);
    }
}

QByteArray ReceiveFuzzer::outcome()
{
    const ConsoleState &s = m_state;
    QByteArray out;
    auto add = [&](const QByteArray &part) { out += part + '\n'; };
    add(QByteArray::number(s.CmdState) + ' ' + QByteArray::number(s.CmdIndex) + ' '
        + QByteArray::number(s.CmdIndexEnd) + ' ' + QByteArray::number(s.PatternNo) + ' '
        + QByteArray::number(s.SegmentNo) + ' ' + QByteArray::number(s.SegmentCount) + ' '
        + QByteArray::number(s.PollSlot) + ' ' + QByteArray::number(s.NextPollSlot) + ' '
        + QByteArray::number(s.CurrentMachine) + ' ' + QByteArray::number(s.RetryCount) + ' '
        + QByteArray::number(s.ReqCmd) + ' ' + QByteArray::number(int(s.RefreshAfterWrite))
        + QByteArray::number(int(s.RefreshOnOpen)) + QByteArray::number(int(s.ParamChanged)) + ' '
        + s.LastReplyCmd.toUtf8() + ' ' + QByteArray::number(s.FirmwareVersion()) + ' '
        + QByteArray::number(s.PatternCount()) + ' ' + QByteArray::number(s.TempDecimals()));
    for (const MachineSlot &m : s.machines)
        add(QByteArray::number(m.MachineNumber) + ' ' + QByteArray::number(int(m.MachineOnline))
            + QByteArray::number(int(m.MachineRunning)) + ' ' + m.MachineRunMode.toUtf8());
    for (int panel = 1; panel <= 6; ++panel)
        add(s.statusPanel(panel).toUtf8());
    for (int i = 0; i < ControllerImage::MaxPatterns; ++i)
        out += char('0' + int(s.image.PatternLoaded[size_t(i)]) + 2 * int(s.image.PatternNameLoaded[size_t(i)]));
    add({});
    add(m_link ? m_link->receiveBuffer().bytes().toHex() : QByteArray());
    add(m_port.written.join('|').toHex());
    for (const TextTable *t : {&s.sprdStatus, &s.sprdCommState, &s.image.sprdRRP, &s.image.sprdRCV, &s.image.sprdUP,
                               &s.image.sprdUP_PLUS, &s.image.sprdUP_DT, &s.image.sprdPD, &s.image.sprdSD,
                               &s.image.sprdTD})
        add(t->save());
    return out;
}

// One input through a ReceiveFuzzer kept for the whole process.
int fuzzReceive(const uint8_t *data, size_t size)
{
    static ReceiveFuzzer fuzzer(fuzzHome("receive"));
    fuzzer.run(data, size);
    return 0;
}
