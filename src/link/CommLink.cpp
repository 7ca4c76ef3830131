#include "CommLink.h"
#include "Files.h"
#include "FrameBytes.h"
#include "ProgramImage.h"
#include "StatusListener.h"
#include "mdlModbusRTU.h"
#include "mdlQM730_Protocol.h"
#include <algorithm>
#include <limits>

CommLink::CommLink(ConsoleState &state, CommPort &port, QObject *parent)
    : QObject(parent), m_st(state), m_port(port)
{
    // tmrSend ticks every 50 ms while enabled; a tick that sends disables it.
    tmrSend.setInterval(50);
    tmrRecvErr.setInterval(500);
    // Waits of the link are never cut short: precise timers do not fire early.
    for (QTimer *t : {&tmrSend, &tmrRecvErr, &m_settleTimer, &m_writeWaitTimer})
        t->setTimerType(Qt::PreciseTimer);
    m_settleTimer.setSingleShot(true);
    m_writeWaitTimer.setSingleShot(true);
    m_writeWaitTimer.setInterval(WriteSettleMs);
    connect(&tmrSend, &QTimer::timeout, this, &CommLink::tmrSend_Timer);
    connect(&tmrRecvErr, &QTimer::timeout, this, &CommLink::tmrRecvErr_Timer);
    connect(&m_settleTimer, &QTimer::timeout, this, [this] {
        m_settling = false;
        takeBytes();
    });
    connect(&m_writeWaitTimer, &QTimer::timeout, this, &CommLink::finishWriteWait);
    connect(&m_port, &CommPort::dataReceived, this, &CommLink::onDataReceived);
    connect(&m_port, &CommPort::bytesWaiting, this, &CommLink::onBytesWaiting);
    connect(&m_port, &CommPort::lost, this, &CommLink::portLost);
    m_reopenTimer.setInterval(ReopenCheckMs);
    connect(&m_reopenTimer, &QTimer::timeout, this, &CommLink::reopenTick);
}

// ---------------------------------------------------------------- port

bool CommLink::CommPort_Open()
{
    const QString device = mapPortDevice(m_st.home, m_st.CommPortNo);
    m_lastOpenResult = m_port.open(device, m_st.CommSettingsText());
    if (m_lastOpenResult != CommPort::OpenResult::Ok) {
        static const char *const why[] = {"", "Device not found", "Port in use", "Permission denied", "Open failed"};
        m_lastOpenError = QStringLiteral("%1: %2").arg(device, QLatin1String(why[int(m_lastOpenResult)]));
        WriteErrorLog(m_st.home, 8002, m_lastOpenError, QStringLiteral("CommPort_Open"));
        return false;
    }
    m_lastOpenError.clear();
    m_openDevice = device;
    return true;
}

bool CommLink::CommPort_Close()
{
    m_reopenTimer.stop();
    if (m_port.isOpen())
        m_port.close();
    return true;
}

bool CommLink::openLink()
{
    if (!CommPort_Open())
        return false;
    m_reopenTimer.stop();
    beginScan();
    return true;
}

void CommLink::beginScan()
{
    m_port.clearInput();
    m_st.setStatusPanel(3, QStringLiteral("OPEN"));
    emit portStateChanged(true);
    m_buf.clear();
    // A new scan is a new exchange: time-outs counted on the line before it
    // was closed do not shorten the three tries of the first slot, and a
    // time-out still running from then does not fire into the new scan.
    tmrRecvErr.stop();
    m_st.RetryCount = 0;
    emit scanMessageVisible(true);
    for (int row = 1; row <= m_st.sprdStatus.rowCount(); ++row)
        m_st.sprdStatus.setColor(2, row, TextTable::White);
    emit machineTableChanged();
    m_st.CurrentMachine = 0;
    m_st.NextPollSlot = -1;
    m_st.PollSlot = 0;
    m_st.CmdState = Cmd::Who;
    m_st.RefreshOnOpen = true;
    emit linkEvent(QStringLiteral("port COM%1 open (%2, %3): scanning %4 machine(s)")
                       .arg(m_st.CommPortNo)
                       .arg(m_st.CommSettingsText(), m_st.CommProtocol)
                       .arg(m_st.machines.size()));
    tmrSend.start();
}

bool CommLink::closeLink()
{
    if (!CommPort_Close())
        return false;
    // Neither timer stops: tmrSend finds the port closed, a running time-out fires once.
    m_settleTimer.stop();
    m_settling = false;
    m_st.setStatusPanel(3, QStringLiteral("CLOSE"));
    m_st.setStatusPanel(4, QString());
    emit portStateChanged(false);
    emit scanMessageVisible(false);
    for (int row = 1; row <= m_st.sprdStatus.rowCount(); ++row)
        m_st.sprdStatus.setColor(2, row, TextTable::White);
    emit machineTableChanged();
    emit linkEvent(QStringLiteral("port closed"));
    return true;
}

// ---------------------------------------------------------------- a line that goes away

// The device went away while open (an adapter pulled, the far end closed).
// The port is closed as the operator would close it, every machine counts as
// silent, and the same device is looked for once a second until it is back.
void CommLink::portLost(int error, const QString &why)
{
    if (!m_port.isOpen())
        return;
    ConsoleState &s = m_st;
    m_lostLine = LostLine{m_openDevice, s.CommPortNo, s.CommSettingsText(), s.CommProtocol};
    WriteErrorLog(s.home, error, QStringLiteral("%1: %2").arg(m_openDevice, why), QStringLiteral("MSComm1_OnComm"));
    closeLink();
    // No reply is coming from a line that is not there.
    tmrRecvErr.stop();
    s.RetryCount = 0;
    for (MachineSlot &m : s.machines)
        m.MachineOnline = false;
    s.setStatusPanel(4, QStringLiteral("通訊端口中斷 [") + m_openDevice + u']');
    emit lineLost();
    emit linkEvent(QStringLiteral("line lost (%1: %2): port closed; reopening it when it is back").arg(m_openDevice, why));
    m_reopenTimer.start();
}

void CommLink::reopenTick()
{
    ConsoleState &s = m_st;
    if (m_port.isOpen()) {
        m_reopenTimer.stop(); // the operator opened a port meanwhile
        return;
    }
    if (s.CommPortNo != m_lostLine.portNo || s.CommSettingsText() != m_lostLine.settings
        || s.CommProtocol != m_lostLine.protocol) {
        // New port settings: the operator opens the port of their choice.
        m_reopenTimer.stop();
        emit linkEvent(QStringLiteral("port settings changed: %1 is no longer reopened").arg(m_lostLine.device));
        return;
    }
    if (m_port.open(m_lostLine.device, m_lostLine.settings) != CommPort::OpenResult::Ok)
        return; // not back yet, or held by another program: look again in a second
    m_reopenTimer.stop();
    m_openDevice = m_lostLine.device;
    m_lastOpenError.clear();
    // A request posted while the line was away could go to no machine before
    // the scan has found one; the scan comes first.
    s.ReqCmd = 0;
    s.ReqIndex = 0;
    emit linkEvent(QStringLiteral("line back: %1 reopened").arg(m_openDevice));
    beginScan();
}

void CommLink::restartScan()
{
    if (!m_port.isOpen())
        return;
    tmrSend.stop();
    tmrRecvErr.stop();
    m_settleTimer.stop();
    m_writeWaitTimer.stop();
    m_settling = false;
    m_writeWait = false;
    m_pendingBytes = false;
    m_writeWaitAfterDispatch = 0;
    m_port.clearInput();
    m_buf.clear();
    ConsoleState &s = m_st;
    s.RetryCount = 0;
    s.ReqCmd = 0;
    s.CurrentMachine = 0;
    s.NextPollSlot = -1;
    s.PollSlot = 0;
    s.CmdState = Cmd::Who;
    s.RefreshOnOpen = true;
    s.bulkJob = BulkJob::None;
    s.BulkFormName.clear();
    for (int row = 1; row <= s.sprdStatus.rowCount(); ++row)
        s.sprdStatus.setColor(2, row, TextTable::White);
    emit machineTableChanged();
    emit currentMachineShown(0);
    emit scanMessageVisible(true);
    emit linkEvent(QStringLiteral("machine list changed: scanning %1 machine(s)").arg(s.machines.size()));
    tmrSend.start();
}

int CommLink::baudTimeoutExtra(const QString &baud)
{
    static const struct { const char *baud; int extra; } table[] = {
        {"115200", 500}, {"57600", 600}, {"38400", 700}, {"19200", 800},
        {"9600", 1200},  {"4800", 1000}, {"2400", 1100}, {"1200", 1200},
    };
    for (const auto &e : table)
        if (baud == QLatin1String(e.baud))
            return e.extra;
    return -1;
}

int CommLink::whoSettleMs(const QString &baud)
{
    static const struct { const char *baud; int ms; } table[] = {
        {"115200", 100}, {"57600", 120}, {"38400", 140}, {"19200", 160},
        {"9600", 200},   {"4800", 300},  {"2400", 400},  {"1200", 500},
    };
    for (const auto &e : table)
        if (baud == QLatin1String(e.baud))
            return e.ms;
    return 100;
}

void CommLink::setReplyTimeoutFromBaud()
{
    const int extra = baudTimeoutExtra(m_st.CommBaud);
    // An unknown baud keeps the initial 500 ms, without the extra wait. A wait
    // beyond what a timer holds is cut to the longest time-out.
    const qint64 ms = qint64(m_st.CommWaitMs) + extra;
    tmrRecvErr.setInterval(extra < 0 ? 500 : int(std::clamp<qint64>(ms, 1, std::numeric_limits<int>::max())));
}

// ---------------------------------------------------------------- walks and menus

bool CommLink::update_menus()
{
    QList<int> numbers;
    bool any = false;
    for (const MachineSlot &m : m_st.machines) {
        numbers << m.MachineNumber;
        any = any || m.MachineOnline;
    }
    m_st.image.rebuildSlotColumns(numbers);
    emit menusUpdated(any);
    return any;
}

int CommLink::slotMachine(int slot) const
{
    return slot >= 0 && slot < m_st.machines.size() ? m_st.machines[slot].MachineNumber : 0;
}

// ---------------------------------------------------------------- sending

void CommLink::comm_log_add(const QString &label, const QByteArray &bytes)
{
    emit frameLogged(label, bytes);
}

void CommLink::comm_file_log(const QByteArray &bytes)
{
    if (!m_commFileLog)
        return;
    QByteArray line = nowStamp().toLatin1() + ',';
    line.reserve(line.size() + bytes.size() * 4 + 2);
    for (char c : bytes) {
        const int v = quint8(c);
        if (v < 10)
            line += '0';
        line += QByteArray::number(v);
        line += ',';
    }
    line += "\r\n";
    appendToFile(m_st.path(QStringLiteral("\\CommData.Mon")), line);
}

void CommLink::set_rts(bool on)
{
    if (m_st.CommRTS != QLatin1String("ON"))
        return;
    if (!on)
        m_port.write(QByteArray(1, '\0'));
    m_port.setRts(on);
}

void CommLink::writeFrame(const QByteArray &built)
{
    if (built.isEmpty())
        return; // WTD with index 0: nothing at all
    const QByteArray frame = m_st.CrcMode() ? pclink::with_checksum(built) : built;
    comm_file_log(frame);
    comm_log_add(QStringLiteral("傳送"), frame);
    m_port.setReceiveThreshold(1);
    if (m_port.isOpen()) {
        set_rts(true);
        m_port.write(frame);
        set_rts(false);
        tmrRecvErr.start();
        m_sentSomething = true;
    }
}

void CommLink::writeModbus(const QByteArray &frame, int expectedReply)
{
    comm_log_add(QStringLiteral("傳送"), frame);
    m_expectedModbusLength = expectedReply;
    m_port.setReceiveThreshold(expectedReply);
    if (m_port.isOpen()) {
        tmrRecvErr.start();
        m_port.clearInput();
        set_rts(true);
        m_port.write(frame);
        set_rts(false);
        m_sentSomething = true;
    }
}

void CommLink::send_who(int m) { writeFrame(pclink::frame_who(m)); }
void CommLink::send_rcv(int m) { writeFrame(pclink::frame_rcv(m)); }
void CommLink::send_rcs(int m) { writeFrame(pclink::frame_rcs(m)); }
void CommLink::send_rrp(int m, int i) { writeFrame(pclink::frame_rrp(m, i)); }
void CommLink::send_rup(int m, int i) { writeFrame(pclink::frame_rup(m, i)); }
void CommLink::send_rtd(int m, int i) { writeFrame(pclink::frame_rtd(m, i)); }
void CommLink::send_rpd(int m, int p, int i) { writeFrame(pclink::frame_rpd(m, p, i)); }
void CommLink::send_rsd(int m, int p, int s, int i) { writeFrame(pclink::frame_rsd(m, p, s, i)); }
void CommLink::send_wrp(int m, int i, const QByteArray &d) { writeFrame(pclink::frame_wrp(m, i, d)); }
void CommLink::send_wup(int m, int i, const QByteArray &d, double fw)
{
    writeFrame(pclink::frame_wup(m, i, d, fw));
}
void CommLink::send_wtd(int m, int i, const QByteArray &d) { writeFrame(pclink::frame_wtd(m, i, d)); }
void CommLink::send_wpd(int m, int p, int i, const QByteArray &d) { writeFrame(pclink::frame_wpd(m, p, i, d)); }
void CommLink::send_wsd(int m, int p, int s, int i, const QByteArray &d)
{
    writeFrame(pclink::frame_wsd(m, p, s, i, d));
}

// ---------------------------------------------------------------- the tick

void CommLink::tmrSend_Timer()
{
    if (!m_port.isOpen())
        return; // the timer stays enabled
    tmrSend.stop();
    emit frameSent();
    if (m_st.ReqCmd > 0) {
        m_st.CmdState = m_st.ReqCmd;
        m_st.CmdData = m_st.ReqData;
        m_st.CmdIndex = m_st.ReqIndex;
        m_st.ReqCmd = 0;
        m_st.ReqIndex = 0;
        m_textReadBack = false; // a request ends any chain under way
    }
    if (m_st.NextPollSlot >= 0) {
        m_st.PollSlot = m_st.NextPollSlot;
        m_st.NextPollSlot = -1;
    }
    if (m_st.machines.isEmpty()) {
        tmrSend.start(); // no machine to talk to; keep reading the mailbox
        return;
    }
    if (m_st.PollSlot < 0 || m_st.PollSlot > m_st.MachineLast())
        m_st.PollSlot = 0;
    const int p = slotMachine(m_st.PollSlot);
    const int f = m_st.CurrentMachine;
    m_sentSomething = false;
    if (m_st.Modbus())
        sendModbusState(p, f);
    else
        sendPcLinkState(p, f);
    idleIfNothingSent();
}

// A state that puts nothing on the wire (WTD of row 0, the screen capture on
// Modbus, a state no table knows) would leave the link without a timer. The
// tick is re-armed instead, so the mailbox is still read and a later request
// (a stop button, a new page) takes the link on.
void CommLink::idleIfNothingSent()
{
    if (!m_sentSomething && m_port.isOpen())
        tmrSend.start();
}

using framebytes::wordBytes;

void CommLink::sendPcLinkState(int P, int F)
{
    ConsoleState &s = m_st;
    ControllerImage &img = s.image;
    const int st = s.CmdState;
    auto tdRow = [&](int row) { return tdTextToBytes(img.sprdTD.text(1, row), 29); };
    auto patternRow = [&](int p) {
        QByteArray d;
        for (int w = 1; w <= ControllerImage::PatternWords; ++w)
            d += wordBytes(img.sprdPD.number(w, p));
        return d;
    };
    auto segmentWords = [&](int p, int seg) {
        QByteArray d;
        for (int w = 1; w <= ControllerImage::SegmentWords; ++w)
            d += wordBytes(img.sprdSD.number((seg - 1) * ControllerImage::SegmentWords + w, p));
        return d;
    };
    auto upBlock = [&] {
        QByteArray d;
        for (int r = 1; r <= img.sprdUP.rowCount(); ++r)
            d += wordBytes(img.sprdUP.number(1, r));
        return d;
    };

    switch (st) {
    case Cmd::Poll: s.RxSettleMs = 50; send_rrp(P, 0); break;
    case Cmd::PollValues: s.RxSettleMs = 50; send_rcv(P); break;
    case Cmd::ReadUp: s.RxSettleMs = 100; send_rup(F, 0); break;
    case Cmd::ReadText: s.RxSettleMs = 50; send_rtd(F, s.CmdIndex); break;
    case Cmd::Who: s.RxSettleMs = whoSettleMs(s.CommBaud); send_who(P); break;
    case Cmd::ReadScreen: s.RxSettleMs = 0; send_rcs(F); break;
    case Cmd::RecvUp: s.RxSettleMs = 100; send_rup(F, 0); break;
    case Cmd::RecvText: s.RxSettleMs = 50; send_rtd(F, s.CmdIndex); break;
    case Cmd::RecvPattern: case Cmd::ReadPattern: s.RxSettleMs = 50; send_rpd(F, s.PatternNo, 0); break;
    case Cmd::RecvSegment: case Cmd::ReadPatternSegment: case Cmd::ReadLastSegment: s.RxSettleMs = 50; send_rsd(F, s.PatternNo, s.SegmentNo, 0); break;
    case Cmd::ReadPatternWord: s.RxSettleMs = 50; send_rpd(F, s.PatternNo, s.CmdIndex); break;
    case Cmd::ReadSegmentWord: s.RxSettleMs = 50; send_rsd(F, s.PatternNo, s.SegmentNo, s.CmdIndex); break;
    case Cmd::ReadSegmentCount: s.RxSettleMs = 50; send_rpd(F, s.PatternNo, 1); break;
    case Cmd::WriteRunWord: s.RxSettleMs = 50; send_wrp(F, s.CmdIndex, s.CmdData); break;
    case Cmd::WriteUpRow: s.RxSettleMs = 100; send_wup(F, s.CmdIndex, s.CmdData, s.FirmwareVersion()); break;
    case Cmd::WriteTextRow: case Cmd::SendText: s.RxSettleMs = 100; send_wtd(F, s.CmdIndex, tdRow(s.CmdIndex)); break;
    case Cmd::WriteClockRows:
        s.RxSettleMs = 100;
        send_wup(F, s.CmdIndex, wordBytes(img.sprdUP_DT.number(1, s.CmdIndex)), s.FirmwareVersion());
        break;
    case Cmd::WriteUpRows:
        s.RxSettleMs = 100;
        send_wup(F, s.CmdIndex, s.CmdIndex == 0 ? upBlock() : wordBytes(img.sprdUP.number(1, s.CmdIndex)),
                 s.FirmwareVersion());
        break;
    case Cmd::SendUp: s.RxSettleMs = 100; send_wup(F, 0, upBlock(), s.FirmwareVersion()); break;
    case Cmd::SendPattern: case Cmd::WritePattern: case Cmd::WriteProgram: s.RxSettleMs = 100; send_wpd(F, s.PatternNo, 0, patternRow(s.PatternNo)); break;
    case Cmd::SendSegment: case Cmd::RewriteSegments: case Cmd::WriteProgramSegment:
        s.RxSettleMs = 100;
        send_wsd(F, s.PatternNo, s.SegmentNo, 0, segmentWords(s.PatternNo, s.SegmentNo));
        break;
    case Cmd::WritePatternWord: case Cmd::WriteSegmentCount: s.RxSettleMs = 100; send_wpd(F, s.PatternNo, s.CmdIndex, s.CmdData); break;
    case Cmd::WriteSegmentWords: s.RxSettleMs = 100; send_wsd(F, s.PatternNo, s.SegmentNo, s.CmdIndex, s.CmdData); break;
    case Cmd::MachineRunMethod: s.RxSettleMs = 100; send_wup(P, 1, s.CmdData, s.FirmwareVersion()); break;
    case Cmd::MachineRun: case Cmd::MachineStep: case Cmd::MachineHold: case Cmd::MachineTempAT: case Cmd::MachineHumiAT:
        s.RxSettleMs = 100; send_wrp(P, st - Cmd::MachineRun + 1, s.CmdData); break;
    case Cmd::MachineStartPattern: s.RxSettleMs = 100; send_wrp(P, 8, s.CmdData); break;
    case Cmd::MachineStartSegment: s.RxSettleMs = 100; send_wrp(P, 9, s.CmdData); break;
    case Cmd::MachineTempPid: s.RxSettleMs = 100; send_wrp(P, 6, s.CmdData); break;
    case Cmd::MachineHumiPid: s.RxSettleMs = 100; send_wrp(P, 7, s.CmdData); break;
    case Cmd::MachineTempSV: s.RxSettleMs = 100; send_wrp(P, 12, s.CmdData); break;
    case Cmd::MachineRow10: s.RxSettleMs = 100; send_wrp(P, 10, s.CmdData); break;
    case Cmd::MachineHumiSV: s.RxSettleMs = 100; send_wrp(P, 13, s.CmdData); break;
    case Cmd::MachineRow11: s.RxSettleMs = 100; send_wrp(P, 11, s.CmdData); break;
    case Cmd::WriteCurve:
        s.RxSettleMs = 100;
        send_wup(F, s.CmdIndex, wordBytes(img.sprdUP.number(1, s.CmdIndex)), s.FirmwareVersion());
        break;
    default:
        break; // no frame for this state
    }
}

// ---------------------------------------------------------------- the time-out

namespace {
// The table a state of a bulk chain moves, if it is one.
std::optional<BulkTable> bulkTableOf(int state)
{
    switch (state) {
    case Cmd::RecvUp: case Cmd::SendUp: return BulkTable::Parameters;
    case Cmd::RecvText: case Cmd::SendText: return BulkTable::Texts;
    case Cmd::RecvPattern: case Cmd::SendPattern: return BulkTable::Patterns;
    case Cmd::RecvSegment: case Cmd::SendSegment: return BulkTable::Segments;
    default: break;
    }
    if ((state >= Cmd::RecvUpPieces && state <= Cmd::RecvUpLastPiece)
        || (state >= Cmd::SendUpPieces && state <= Cmd::SendUpLastPiece))
        return BulkTable::Parameters;
    if (state >= Cmd::RecvTextInputs && state <= Cmd::RecvNamesMax)
        return BulkTable::Texts;
    return std::nullopt;
}
} // namespace

void CommLink::tmrRecvErr_Timer()
{
    guarded("tmrRecvErr_Timer", [&] {
        tmrRecvErr.stop();
        ConsoleState &s = m_st;
        s.countComm(s.PollSlot, 3);
        if (s.CmdState == Cmd::ReadScreen)
            emit screenCaptureFailed(CaptureFault::NoReply);
        s.RetryCount += 1;
        if (s.RetryCount > 2) {
            s.RetryCount = 0;
            const int slot = s.PollSlot;
            if (s.CmdState != Cmd::Who) {
                if (slot >= 0 && slot < s.machines.size())
                    s.machines[slot].MachineOnline = false;
                s.NextPollSlot = s.next_online_slot(slot + 1);
                emit linkEvent(QStringLiteral("machine %1: no reply in state %2").arg(slotMachine(slot)).arg(s.CmdState));
                // A bulk chain keeps trying; its screen hears that the machine is silent.
                if (const auto table = bulkTableOf(s.CmdState); table && s.bulkJob != BulkJob::None) {
                    BulkProgress p;
                    p.job = s.bulkJob;
                    p.table = *table;
                    p.failed = true;
                    emit bulkProgress(p);
                }
            } else {
                const int machine = slotMachine(slot);
                s.setStatusPanel(4, QStringLiteral("機號 [") + QString::number(machine) + QStringLiteral("] ==> 通訊不良 "));
                if (slot + 1 <= s.sprdStatus.rowCount()) {
                    s.sprdStatus.setText(2, slot + 1, QStringLiteral("不良"));
                    s.sprdStatus.setColor(2, slot + 1, TextTable::Black);
                }
                if (slot >= 0 && slot < s.machines.size())
                    s.machines[slot].MachineOnline = false;
                emit machineTableChanged();
                emit linkEvent(QStringLiteral("machine %1: 不良").arg(machine));
                const int next = s.next_slot(slot);
                s.NextPollSlot = next;
                if (next != 0) {
                    s.ReqCmd = Cmd::Who;
                } else {
                    emit scanMessageVisible(false);
                    const bool any = update_menus();
                    s.setStatusPanel(4, QString());
                    s.PollSlot = 0;
                    if (any) {
                        s.ReqCmd = Cmd::ReadUp;
                        s.NextPollSlot = s.next_online_slot(0);
                        s.applyFirmwareOfRow(s.NextPollSlot + 1);
                        emit linkEvent(QStringLiteral("scan done: polling"));
                    } else {
                        emit linkEvent(QStringLiteral("scan done: no machine answered; scanning again"));
                    }
                }
            }
        }
    });
    tmrSend.start();
}
