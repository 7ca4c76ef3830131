// The link's states over Modbus RTU: the same chains, with register reads and
// writes in place of PC Link frames.
#include "CommLink.h"
#include "FrameBytes.h"
#include "LiveStatus.h"
#include "ProgramImage.h"
#include "mdlModbusRTU.h"

using namespace framebytes;

namespace {
// Register of the first word of a text row, and its width in registers.
int tdRegister(int row) { return row <= 8 ? 42001 + 15 * (row - 1) : row <= 11 ? 43001 + 15 * (row - 9) : 44001 + 12 * (row - 12); }
int tdRegisters(int row) { return row <= 11 ? 15 : 12; }
int patternRegister(int pattern) { return 50001 + 81 * (pattern - 1); }
} // namespace

void CommLink::sendModbusState(int P, int F)
{
    ConsoleState &s = m_st;
    ControllerImage &img = s.image;
    const int st = s.CmdState;
    s.RxSettleMs = 50;
    auto read = [&](int machine, int start, int count) {
        m_lastMachine = machine;
        writeModbus(modbus::modbus_read(machine, start, count), modbus::readReplyLength(count));
    };
    auto write = [&](int machine, int start, int count, const QByteArray &data) {
        m_lastMachine = machine;
        writeModbus(modbus::modbus_write(machine, start, count, data), modbus::writeReplyLength());
    };
    auto segment = [&](int p, int seg) {
        QByteArray d;
        for (int w = 1; w <= ControllerImage::SegmentWords; ++w)
            d += wordBytes(img.sprdSD.number((seg - 1) * ControllerImage::SegmentWords + w, p));
        return d;
    };

    if (st >= 3 && st <= 6) {
        read(F, 40101 + 120 * (st - 3), 120);
    } else if (st >= 5101 && st <= 5104) {
        read(F, 40101 + 120 * (st - 5101), 120);
    } else if (st >= 9001 && st <= 9010) {
        read(F, 44001 + 120 * (st - 9001), 120);
    } else if (st >= 5201 && st <= 5210) {
        read(F, 44001 + 120 * (st - 5201), 120);
    } else if (st >= 1511 && st <= 1515) {
        // Five pieces of 120 registers; rows past the end of the table go as 0.
        const int k = st - 1511;
        QByteArray d;
        for (int r = k * 120 + 1; r <= k * 120 + 120; ++r)
            d += wordBytes(r <= img.sprdUP.rowCount() ? img.sprdUP.number(1, r) : 0);
        write(F, 40101 + 120 * k, 120, d);
    } else {
        switch (st) {
        case 1: read(P, 40001, ControllerImage::RrpRows); break;
        case 2: read(P, 30101, ControllerImage::RcvRows); break;
        case 7: case 5105: read(F, 40581, 32); break;
        case 77: read(F, 40700, 2); break;
        case 8: case 5199: read(F, 42001, 120); break;
        case 9: case 5200: read(F, 43001, 45); break;
        case 10: read(P, 30001, 2); break;
        case 53: case 61: read(F, patternRegister(s.PatternNo), ControllerImage::PatternWords); break;
        case 93: read(F, patternRegister(s.PatternNo), 1); break;
        case 91: read(F, patternRegister(s.PatternNo) - 1 + s.CmdIndex, 1); break;
        case 54: case 62: case 92: case 94:
            m_lastMachine = F;
            writeModbus(modbus::modbus_read_record(F, s.PatternNo, s.SegmentNo, ControllerImage::SegmentWords),
                        modbus::readRecordReplyLength(ControllerImage::SegmentWords));
            break;
        case 101: case 102: write(F, s.CmdIndex, 1, s.CmdData); break;
        case 103: case 152: {
            const int row = s.CmdIndex;
            write(F, tdRegister(row), tdRegisters(row), tdTextToBytes(img.sprdTD.text(1, row), 2 * tdRegisters(row)));
            break;
        }
        case 104: case 150: case 401: write(F, s.CmdIndex, s.WriteBlockCount, s.WriteBlock); break;
        case 153: case 205: case 211: {
            QByteArray d;
            for (int w = 1; w <= ControllerImage::PatternWords; ++w)
                d += wordBytes(img.sprdPD.number(w, s.PatternNo));
            write(F, patternRegister(s.PatternNo), ControllerImage::PatternWords, d);
            break;
        }
        case 154: case 202: case 204: case 212:
            m_lastMachine = F;
            writeModbus(modbus::modbus_write_record(F, s.PatternNo, s.SegmentNo, ControllerImage::SegmentWords,
                                                    segment(s.PatternNo, s.SegmentNo)),
                        modbus::writeRecordReplyLength(ControllerImage::SegmentWords));
            break;
        case 201: case 203: write(F, patternRegister(s.PatternNo) - 1 + s.CmdIndex, 1, s.CmdData); break;
        case 311: write(P, 40101, 1, s.CmdData); break;
        case 312: case 313: case 314: case 315: case 316: write(P, 40001 + (st - 312), 1, s.CmdData); break;
        case 321: write(P, 40008, 1, s.CmdData); break;
        case 322: write(P, 40009, 1, s.CmdData); break;
        case 323: write(P, 40006, 1, s.CmdData); break;
        case 324: write(P, 40007, 1, s.CmdData); break;
        case 325: write(P, 40012, 1, s.CmdData); break;
        case 326: write(P, 40010, 1, s.CmdData); break;
        case 327: write(P, 40013, 1, s.CmdData); break;
        case 328: write(P, 40011, 1, s.CmdData); break;
        case 400: write(F, 40100 + s.CmdIndex, 1, wordBytes(img.sprdUP.number(1, s.CmdIndex))); break;
        default:
            break; // state 11 (screen capture) and unknown states send nothing
        }
    }
}

void CommLink::receiveModbus(const QByteArray &bytes)
{
    ConsoleState &s = m_st;
    m_buf.replace(bytes);
    if (!modbus::crc_ok(bytes)) {
        s.countComm(s.PollSlot, 4);
        m_buf.clear();
        m_port.clearInput();
        s.setStatusPanel(4, QStringLiteral("機號 [") + QString::number(m_lastMachine) + QStringLiteral("] : 通訊不良"));
        tmrSend.start();
        return;
    }
    if (quint8(bytes[1]) >= 128) {
        s.countComm(s.PollSlot, 2); // an exception: the same request goes out again
        tmrSend.start();
        return;
    }
    s.countComm(s.PollSlot, 1);
    if (s.PollSlot >= 0 && s.PollSlot < s.machines.size())
        s.machines[s.PollSlot].MachineOnline = true;
    m_frame = bytes;
    m_writeWaitAfterDispatch = 0;
    dispatchModbus();
    afterGoodReply();
}

void CommLink::dispatchModbus()
{
    ConsoleState &s = m_st;
    ControllerImage &img = s.image;
    const QByteArray &f = m_frame;
    const int slot = s.PollSlot;
    const int st = s.CmdState;
    // Text rows of a read: `rows` rows of `width` bytes from the data's start.
    auto storeText = [&](int firstRow, int rows, int width, bool flagNames) {
        for (int i = 0; i < rows; ++i) {
            const int row = firstRow + i;
            if (row > ControllerImage::TextRows)
                break;
            if (3 + (i + 1) * width > f.size() - 2)
                break;
            Disp_RTD(row, f.mid(3 + i * width, width));
            if (flagNames && row >= 12 && row - 12 < ControllerImage::MaxPatterns)
                img.PatternNameLoaded[row - 12] = true;
        }
    };
    const QString pc11 = QString::number(s.PatternCount() + 11);

    if (st >= 3 && st <= 6) {
        Disp_RUP(f, 3, (st - 3) * 120 + 1, 120);
        s.CmdState = st + 1;
        return;
    }
    if (st >= 5101 && st <= 5104) {
        Disp_RUP(f, 3, (st - 5101) * 120 + 1, 120);
        emit bulkProgress(s.BulkFormName, QStringLiteral("%1/512").arg((st - 5100) * 120));
        s.CmdState = st + 1;
        return;
    }
    if (st >= 9001 && st <= 9010) {
        storeText(12 + 10 * (st - 9001), 10, 24, true);
        if (st < 9010) {
            s.CmdState = st + 1;
        } else {
            s.CmdIndexEnd = 0;
            s.CmdState = 1;
            if (s.RefreshAfterWrite) {
                s.startActiveRefresh();
                s.RefreshAfterWrite = false;
            }
        }
        return;
    }
    if (st >= 5199 && st <= 5210) {
        if (st == 5199) {
            storeText(1, 8, 30, false);
            s.CmdIndex += 8;
        } else if (st == 5200) {
            storeText(9, 3, 30, false);
            s.CmdIndex += 3;
        } else {
            storeText(12 + 10 * (st - 5201), 10, 24, true);
            s.CmdIndex += 10;
        }
        emit bulkProgress(s.BulkFormName, QString::number(std::min(s.CmdIndex - 1, s.PatternCount() + 11)) + u'/' + pc11);
        if (st < 5210) {
            s.CmdState = st + 1;
        } else {
            s.PatternNo = 1;
            s.CmdState = 53;
        }
        return;
    }
    if (st >= 1511 && st <= 1514) {
        emit bulkProgress(s.BulkFormName, QStringLiteral("%1/512").arg((st - 1510) * 120));
        s.CmdState = st + 1;
        return;
    }
    switch (st) {
    case 1:
        Disp_RRP(slot, f, 3, 1, ControllerImage::RrpRows);
        s.CmdState = 2;
        break;
    case 2:
        statusStored(slot, decodeRcvModbus(QByteArrayView(f).sliced(std::min<qsizetype>(3, f.size()))));
        break;
    case 7:
        Disp_RUP(f, 3, 481, 32);
        s.CmdState = 77;
        break;
    case 77:
        Disp_RUP_PLUS(f, 3);
        refreshIfFlagged();
        moveToNextOnlineSlot();
        s.CmdState = 1;
        break;
    case 8:
        storeText(1, 8, 30, false);
        s.CmdState = 9;
        break;
    case 9:
        storeText(9, 3, 30, false);
        s.CmdState = 9001;
        break;
    case 10: {
        QString firmware;
        guarded("MSComm1_OnComm", [&] {
            firmware = QString::number(byteAt(f, 5)) + u'.' + QStringLiteral("%1").arg(byteAt(f, 6), 2, 10, QChar(u'0'));
        });
        scanAnswered(slot, firmware, true);
        break;
    }
    case 5105:
        Disp_RUP(f, 3, 481, 32);
        parameterBlockDone(QStringLiteral("接收完了"), 5199);
        break;
    case 1515:
        parameterBlockDone(QStringLiteral("傳送完了"), 152);
        break;
    case 53: case 61:
        Disp_RPD(s.PatternNo, f, 3, 1, ControllerImage::PatternWords, "Disp_RPD_Reg");
        programChainStep();
        break;
    case 93:
        Disp_RPD(s.PatternNo, f, 3, 1, 1, "Disp_RPD_Reg");
        programChainStep();
        break;
    case 91:
        Disp_RPD(s.PatternNo, f, 3, s.CmdIndex, 1, "Disp_RPD_Reg");
        programChainStep();
        break;
    case 54: case 62: case 92: case 94:
        Disp_RSD(s.PatternNo, s.SegmentNo, f, 5, 1, ControllerImage::SegmentWords, "Disp_RSD_Reg");
        programChainStep();
        break;
    case 102: case 400: case 401:
        s.RefreshAfterWrite = true;
        m_writeWaitAfterDispatch = WriteSettleMs;
        s.CmdState = 1;
        break;
    case 103:
        s.RefreshAfterWrite = true;
        s.CmdState = 8;
        break;
    case 311:
        s.RefreshAfterWrite = true;
        s.CmdState = 3;
        break;
    case 101: case 104: case 150:
    case 312: case 313: case 314: case 315: case 316:
    case 321: case 322: case 323: case 324: case 325: case 326: case 327: case 328:
        s.RefreshAfterWrite = true;
        s.CmdState = 1;
        break;
    case 201:
        s.RefreshAfterWrite = true;
        s.CmdState = 91;
        break;
    case 202:
        s.CmdIndex = s.CmdIndexEnd;
        s.RefreshAfterWrite = true;
        s.CmdState = 92;
        break;
    case 152: case 153: case 154: case 203: case 204: case 205: case 211: case 212:
        programChainStep();
        break;
    default:
        break;
    }
}
