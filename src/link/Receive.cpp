// The receive path of the link: the receive event and the frame scan.
#include "CommLink.h"
#include "FrameBytes.h"
#include "Files.h"
#include "mdlModbusRTU.h"
#include "mdlQM730_Protocol.h"
#include <QFile>
#include <stdexcept>

namespace {
constexpr char STX = 0x02, ETX = 0x03, CR = 0x0D, LF = 0x0A;
} // namespace

using namespace framebytes;

// ---------------------------------------------------------------- the receive event

void CommLink::onDataReceived()
{
    MSComm1_OnComm();
}

// Under Modbus RTU the event waits for the whole expected reply. An exception
// reply is shorter than that; it is let through once it is complete.
void CommLink::onBytesWaiting()
{
    if (!m_st.Modbus())
        return;
    const qint64 waiting = m_port.bytesAvailable();
    if (waiting < 5 || waiting >= m_port.receiveThreshold())
        return;
    const QByteArray head = m_port.peek(5);
    if (head.size() == 5 && (quint8(head[1]) & 0x80) && modbus::crc_ok(head))
        MSComm1_OnComm();
}

void CommLink::MSComm1_OnComm()
{
    // While the reply settles or a parameter write is being stored, later
    // bytes wait in the port and are taken afterwards.
    if (m_settling || m_writeWait) {
        m_pendingBytes = true;
        return;
    }
    emit bytesReceived();
    tmrRecvErr.stop();
    m_retryBeforeReply = m_st.RetryCount;
    m_st.RetryCount = 0;
    if (m_st.RxSettleMs > 0) {
        m_settling = true;
        m_settleTimer.start(m_st.RxSettleMs);
        return;
    }
    takeBytes();
}

void CommLink::takeBytes()
{
    bool failed = true;
    guarded("MSComm1_OnComm", [&] {
        const QByteArray bytes = m_port.readAll();
        if (!bytes.isEmpty()) {
            comm_file_log(bytes);
            comm_log_add(QStringLiteral("接收"), bytes);
        }
        if (m_st.Modbus()) {
            if (bytes.isEmpty())
                tmrRecvErr.start(); // nothing came after all: keep waiting
            else
                receiveModbus(bytes);
        } else {
            receivePcLink(bytes);
        }
        failed = false;
    });
    if (failed)
        tmrRecvErr.start(); // the next time-out recovers
    if (m_pendingBytes && !m_settling && !m_writeWait) {
        m_pendingBytes = false;
        if (m_port.bytesAvailable() > 0 && m_port.bytesAvailable() >= m_port.receiveThreshold())
            QMetaObject::invokeMethod(this, &CommLink::MSComm1_OnComm, Qt::QueuedConnection);
    }
}

void CommLink::afterGoodReply()
{
    if (m_writeWaitAfterDispatch > 0) {
        // The controller stores parameters for a while before it listens again.
        m_writeWait = true;
        m_writeWaitTimer.start(m_writeWaitAfterDispatch);
        m_writeWaitAfterDispatch = 0;
        return;
    }
    if (!m_st.Modbus())
        m_buf.clear();
    tmrSend.start();
}

void CommLink::finishWriteWait()
{
    m_writeWait = false;
    if (!m_st.Modbus())
        m_buf.clear();
    tmrSend.start();
    if (m_pendingBytes) {
        m_pendingBytes = false;
        if (m_port.bytesAvailable() > 0 && m_port.bytesAvailable() >= m_port.receiveThreshold())
            QMetaObject::invokeMethod(this, &CommLink::MSComm1_OnComm, Qt::QueuedConnection);
    }
}

void CommLink::receivePcLink(const QByteArray &bytes)
{
    m_buf.append(bytes);
    const int code = scan_reply();
    ConsoleState &s = m_st;
    switch (code) {
    case ScanGood: {
        s.countComm(s.PollSlot, 1);
        if (s.PollSlot >= 0 && s.PollSlot < s.machines.size())
            s.machines[s.PollSlot].MachineOnline = true;
        m_frame = m_buf.bytes();
        m_writeWaitAfterDispatch = 0;
        dispatchPcLink();
        if (s.CmdState != Cmd::Who && s.CmdState != Cmd::ReadScreen)
            afterGoodReply();
        else
            tmrRecvErr.start();
        break;
    }
    case ScanMore:
        tmrRecvErr.start(); // runs anew from each piece
        break;
    case ScanGoodAfterThrown:
        s.countComm(s.PollSlot, 4);
        m_buf.clear();
        if (s.CmdState == Cmd::ReadScreen)
            emit screenCaptureFailed(CaptureFault::BadFrame);
        tmrSend.start();
        break;
    default:
        s.countComm(s.PollSlot, 2);
        m_buf.clear();
        if (s.CmdState == Cmd::ReadScreen)
            emit screenCaptureFailed(CaptureFault::BadFrame);
        tmrSend.start();
        break;
    }
}

// ---------------------------------------------------------------- the scan

int CommLink::scan_reply()
{
    const int x = m_st.CrcMode() ? 2 : 0;
    ReceiveBuffer &b = m_buf;
    if (b.size() < 14)
        return ScanMore;
    bool thrown = false;
    int result = ScanNoStx;
    for (;;) {
        // Step to the first STX.
        const char *d = b.data();
        const void *stx = memchr(d, STX, size_t(b.size()));
        if (!stx) {
            result = ScanNoStx;
            break;
        }
        b.dropFront(int(static_cast<const char *>(stx) - d));
        if (b.size() < 4) {
            result = ScanMore;
            break;
        }
        auto digit = [&](int col) { return b.col(col) >= '0' && b.col(col) <= '9'; };
        if (!digit(2) || !digit(3) || !digit(4)) {
            b.dropFront(4);
            continue;
        }
        if (b.size() < 11) {
            result = ScanMore;
            break;
        }
        const QByteArray cmd = b.mid(5, 3);
        if (b.mid(8, 4) != ",OK,") {
            b.dropFront(11);
            continue;
        }
        if (cmd == "WHO") {
            // Taken at once: the WHO settle time lets the whole text in. Behind
            // a thrown frame it counts as such, like any other reply.
            m_st.LastReplyCmd = QString::fromLatin1(cmd);
            result = ScanGood;
            break;
        }
        auto number = [&](int col) { return leadingInt(QString::fromLatin1(b.mid(col, 4))); };
        int L = 0;
        if (cmd == "RCV") {
            L = 59;
        } else if (cmd == "RCS" || cmd == "RLG") {
            L = 76814;
            if (b.size() < L + x) {
                emit screenProgress(int(qint64(b.size()) * 100 / (L + x)));
                result = ScanMore;
                break;
            }
        } else if (cmd == "RRP" || cmd == "RUP") {
            if (b.size() < 15 + x) {
                result = ScanMore;
                break;
            }
            if (number(12) > 0)
                L = 21;
            else
                L = cmd == "RRP" ? 53 : 2 * pclink::upBlockWords(m_st.FirmwareVersion()) + 19;
        } else if (cmd == "RTD") {
            L = 48;
        } else if (cmd == "RPD") {
            if (b.size() < 20 + x) {
                result = ScanMore;
                break;
            }
            L = number(17) > 0 ? 26 : 186;
        } else if (cmd == "RSD") {
            if (b.size() < 25 + x) {
                result = ScanMore;
                break;
            }
            L = number(22) > 0 ? 31 : 87;
        } else if (cmd == "WRP" || cmd == "WUP" || cmd == "WTD" || cmd == "WSP" || cmd == "WLG") {
            L = 18;
        } else if (cmd == "WPD") {
            L = 23;
        } else if (cmd == "WSD") {
            L = 28;
        } else {
            // Unknown commands, and RSP, which has no length: skip the header.
            // (Rescanning RSP in place would never end.)
            b.dropFront(11);
            continue;
        }
        if (b.size() < L + x) {
            result = ScanMore;
            break;
        }
        if (b.col(L - 2) == ETX && b.col(L - 1) == CR && b.col(L) == LF) {
            if (x == 0) {
                b.cutBehind(L);
                m_st.LastReplyCmd = QString::fromLatin1(cmd);
                if (L == 76814)
                    emit screenProgress(100);
                result = ScanGood;
                break;
            }
            b.cutBehind(L + 2);
            unsigned sum = 0;
            for (int i = 1; i <= L; ++i)
                sum += b.col(i);
            const bool sumOk = int(sum % 65536u) == b.col(L + 1) * 256 + b.col(L + 2);
            b.cutBehind(L);
            if (sumOk) {
                m_st.LastReplyCmd = QString::fromLatin1(cmd);
                if (L == 76814)
                    emit screenProgress(100);
                result = ScanGood;
                break;
            }
        }
        thrown = true;
        b.dropFront(L + x);
    }
    if (x && thrown)
        result += 99;
    return result;
}
