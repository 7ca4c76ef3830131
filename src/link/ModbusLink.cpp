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
    // Register numbers are 16 bits on the wire: with 300 patterns, those past
    // pattern 191 have no registers. A fetch ends there; any other request
    // for them is dropped rather than sent to a wrapped-around register.
    auto addressable = [&](int start, int count) {
        if (start + count - 1 <= 0xFFFF)
            return true;
        if (st == Cmd::RecvPattern)
            bulkEndReceive();
        else
            s.CmdState = Cmd::Poll;
        return false;
    };
    auto read = [&](int machine, int start, int count) {
        if (!addressable(start, count))
            return;
        writeModbus(modbus::modbus_read(machine, start, count), modbus::readReplyLength(count));
    };
    auto write = [&](int machine, int start, int count, const QByteArray &data) {
        if (!addressable(start, count))
            return;
        writeModbus(modbus::modbus_write(machine, start, count, data), modbus::writeReplyLength());
    };
    auto segment = [&](int p, int seg) {
        QByteArray d;
        for (int w = 1; w <= ControllerImage::SegmentWords; ++w)
            d += wordBytes(img.sprdSD.number((seg - 1) * ControllerImage::SegmentWords + w, p));
        return d;
    };

    if (st >= Cmd::ReadUp && st < Cmd::ReadUpLastPiece) {
        read(F, 40101 + 120 * (st - Cmd::ReadUp), 120);
    } else if (st >= Cmd::RecvUpPieces && st < Cmd::RecvUpLastPiece) {
        read(F, 40101 + 120 * (st - Cmd::RecvUpPieces), 120);
    } else if (st >= Cmd::ReadNames && st <= Cmd::ReadNamesLast) {
        read(F, 44001 + 120 * (st - Cmd::ReadNames), 120);
    } else if (st >= Cmd::RecvNames && st <= Cmd::RecvNamesMax) {
        read(F, 44001 + 120 * (st - Cmd::RecvNames), 120);
    } else if (st >= Cmd::SendUpPieces && st <= Cmd::SendUpLastPiece) {
        // Five pieces of 120 registers; rows past the end of the table go as 0.
        const int k = st - Cmd::SendUpPieces;
        QByteArray d;
        for (int r = k * 120 + 1; r <= k * 120 + 120; ++r)
            d += wordBytes(r <= img.sprdUP.rowCount() ? img.sprdUP.number(1, r) : 0);
        write(F, 40101 + 120 * k, 120, d);
    } else {
        switch (st) {
        case Cmd::Poll: read(P, 40001, ControllerImage::RrpRows); break;
        case Cmd::PollValues: read(P, 30101, ControllerImage::RcvRows); break;
        case Cmd::ReadUpLastPiece: case Cmd::RecvUpLastPiece: read(F, 40581, 32); break;
        case Cmd::ReadUpPlus: read(F, 40700, 2); break;
        case Cmd::ReadTextInputs: case Cmd::RecvTextInputs: read(F, 42001, 120); break;
        case Cmd::ReadTextInfo: case Cmd::RecvTextInfo: read(F, 43001, 45); break;
        case Cmd::Who: read(P, 30001, 2); break;
        case Cmd::RecvPattern: case Cmd::ReadPattern: read(F, patternRegister(s.PatternNo), ControllerImage::PatternWords); break;
        case Cmd::ReadSegmentCount: read(F, patternRegister(s.PatternNo), 1); break;
        case Cmd::ReadPatternWord: read(F, patternRegister(s.PatternNo) - 1 + s.CmdIndex, 1); break;
        case Cmd::RecvSegment: case Cmd::ReadPatternSegment: case Cmd::ReadSegmentWord: case Cmd::ReadLastSegment:
            writeModbus(modbus::modbus_read_record(F, s.PatternNo, s.SegmentNo, ControllerImage::SegmentWords),
                        modbus::readRecordReplyLength(ControllerImage::SegmentWords));
            break;
        case Cmd::WriteRunWord: case Cmd::WriteUpRow: write(F, s.CmdIndex, 1, s.CmdData); break;
        case Cmd::WriteTextRow: case Cmd::SendText: {
            const int row = s.CmdIndex;
            write(F, tdRegister(row), tdRegisters(row), tdTextToBytes(img.sprdTD.text(1, row), 2 * tdRegisters(row)));
            break;
        }
        case Cmd::WriteClockRows: case Cmd::WriteUpRows: case Cmd::WriteCurveBlock: write(F, s.CmdIndex, s.WriteBlockCount, s.WriteBlock); break;
        case Cmd::SendPattern: case Cmd::WritePattern: case Cmd::WriteProgram: {
            QByteArray d;
            for (int w = 1; w <= ControllerImage::PatternWords; ++w)
                d += wordBytes(img.sprdPD.number(w, s.PatternNo));
            write(F, patternRegister(s.PatternNo), ControllerImage::PatternWords, d);
            break;
        }
        case Cmd::SendSegment: case Cmd::WriteSegmentWords: case Cmd::RewriteSegments: case Cmd::WriteProgramSegment:
            writeModbus(modbus::modbus_write_record(F, s.PatternNo, s.SegmentNo, ControllerImage::SegmentWords,
                                                    segment(s.PatternNo, s.SegmentNo)),
                        modbus::writeRecordReplyLength(ControllerImage::SegmentWords));
            break;
        case Cmd::WritePatternWord: case Cmd::WriteSegmentCount: write(F, patternRegister(s.PatternNo) - 1 + s.CmdIndex, 1, s.CmdData); break;
        case Cmd::MachineRunMethod: write(P, 40101, 1, s.CmdData); break;
        case Cmd::MachineRun: case Cmd::MachineStep: case Cmd::MachineHold: case Cmd::MachineTempAT: case Cmd::MachineHumiAT: write(P, 40001 + (st - Cmd::MachineRun), 1, s.CmdData); break;
        case Cmd::MachineStartPattern: write(P, 40008, 1, s.CmdData); break;
        case Cmd::MachineStartSegment: write(P, 40009, 1, s.CmdData); break;
        case Cmd::MachineTempPid: write(P, 40006, 1, s.CmdData); break;
        case Cmd::MachineHumiPid: write(P, 40007, 1, s.CmdData); break;
        case Cmd::MachineTempSV: write(P, 40012, 1, s.CmdData); break;
        case Cmd::MachineRow10: write(P, 40010, 1, s.CmdData); break;
        case Cmd::MachineHumiSV: write(P, 40013, 1, s.CmdData); break;
        case Cmd::MachineRow11: write(P, 40011, 1, s.CmdData); break;
        case Cmd::WriteCurve: write(F, 40100 + s.CmdIndex, 1, wordBytes(img.sprdUP.number(1, s.CmdIndex))); break;
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
        // The machine named is the polled one, as in every other text of the link.
        s.setStatusPanel(4, QStringLiteral("機號 [") + QString::number(slotMachine(s.PollSlot))
                                + QStringLiteral("] : 通訊不良"));
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

    if (st >= Cmd::ReadUp && st < Cmd::ReadUpLastPiece) {
        if (!blockSendPosted())
            Disp_RUP(f, 3, (st - Cmd::ReadUp) * 120 + 1, 120);
        s.CmdState = st + 1;
        return;
    }
    if (st >= Cmd::RecvUpPieces && st < Cmd::RecvUpLastPiece) {
        Disp_RUP(f, 3, (st - Cmd::RecvUpPieces) * 120 + 1, 120);
        reportBulk(BulkTable::Parameters, (st - Cmd::RecvUpPieces + 1) * 120, 512);
        s.CmdState = st + 1;
        return;
    }
    if (st >= Cmd::ReadNames && st <= Cmd::ReadNamesLast) {
        storeText(12 + 10 * (st - Cmd::ReadNames), 10, 24, true);
        if (st < Cmd::ReadNamesLast)
            s.CmdState = st + 1;
        else
            textReadDone();
        return;
    }
    if (st >= Cmd::RecvTextInputs && st <= Cmd::RecvNamesMax) {
        // Ten names a read until every pattern of the firmware has its name:
        // 5201 to 5210 for 100 patterns, to 5230 for 300.
        const int lastNames = Cmd::RecvNames + (s.PatternCount() + 9) / 10 - 1;
        if (st == Cmd::RecvTextInputs) {
            storeText(1, 8, 30, false);
            s.CmdIndex += 8;
        } else if (st == Cmd::RecvTextInfo) {
            storeText(9, 3, 30, false);
            s.CmdIndex += 3;
        } else {
            storeText(12 + 10 * (st - Cmd::RecvNames), 10, 24, true);
            s.CmdIndex += 10;
        }
        textProgress(std::min(s.CmdIndex - 1, s.PatternCount() + 11));
        if (st < lastNames) {
            s.CmdState = st + 1;
            return;
        }
        textsDone();
        if (s.bulkJob != BulkJob::ProgramFetch) {
            s.PatternNo = 1;
            s.CmdState = Cmd::RecvPattern;
            return;
        }
        // The fetch of the editors reads only the patterns not loaded yet.
        if (const int p = NextUnloadedRow(img, QStringLiteral("RPD"), 1); p > 0) {
            s.PatternNo = p;
            s.CmdState = Cmd::RecvPattern;
        } else {
            bulkEndReceive();
        }
        return;
    }
    if (st >= Cmd::SendUpPieces && st < Cmd::SendUpLastPiece) {
        reportBulk(BulkTable::Parameters, (st - Cmd::SendUpPieces + 1) * 120, 512);
        s.CmdState = st + 1;
        return;
    }
    switch (st) {
    case Cmd::Poll:
        Disp_RRP(slot, 0, QByteArrayView(f).sliced(std::min<qsizetype>(3, f.size())));
        s.CmdState = Cmd::PollValues;
        break;
    case Cmd::PollValues:
        statusStored(slot, decodeRcvModbus(QByteArrayView(f).sliced(std::min<qsizetype>(3, f.size()))));
        break;
    case Cmd::ReadUpLastPiece:
        if (!blockSendPosted())
            Disp_RUP(f, 3, 481, 32);
        s.CmdState = Cmd::ReadUpPlus;
        break;
    case Cmd::ReadUpPlus:
        Disp_RUP_PLUS(f, 3);
        refreshIfFlagged();
        moveToNextOnlineSlot();
        s.CmdState = Cmd::Poll;
        break;
    case Cmd::ReadTextInputs:
        storeText(1, 8, 30, false);
        s.CmdState = Cmd::ReadTextInfo;
        break;
    case Cmd::ReadTextInfo:
        storeText(9, 3, 30, false);
        s.CmdState = Cmd::ReadNames;
        break;
    case Cmd::Who: {
        QString firmware;
        guarded("MSComm1_OnComm", [&] {
            firmware = QString::number(byteAt(f, 5)) + u'.' + QStringLiteral("%1").arg(byteAt(f, 6), 2, 10, QChar(u'0'));
        });
        scanAnswered(slot, firmware, true);
        break;
    }
    case Cmd::RecvUpLastPiece:
        Disp_RUP(f, 3, 481, 32);
        parameterBlockDone(Cmd::RecvTextInputs);
        break;
    case Cmd::SendUpLastPiece:
        parameterBlockDone(Cmd::SendText);
        break;
    case Cmd::RecvPattern: case Cmd::ReadPattern:
        Disp_RPD(s.PatternNo, f, 3, 1, ControllerImage::PatternWords, "Disp_RPD_Reg");
        programChainStep();
        break;
    case Cmd::ReadSegmentCount:
        Disp_RPD(s.PatternNo, f, 3, 1, 1, "Disp_RPD_Reg");
        programChainStep();
        break;
    case Cmd::ReadPatternWord:
        Disp_RPD(s.PatternNo, f, 3, s.CmdIndex, 1, "Disp_RPD_Reg");
        programChainStep();
        break;
    case Cmd::RecvSegment: case Cmd::ReadPatternSegment: case Cmd::ReadSegmentWord: case Cmd::ReadLastSegment:
        Disp_RSD(s.PatternNo, s.SegmentNo, f, 5, 1, ControllerImage::SegmentWords, "Disp_RSD_Reg");
        programChainStep();
        break;
    case Cmd::WriteUpRow: case Cmd::WriteCurve: case Cmd::WriteCurveBlock:
        s.RefreshAfterWrite = true;
        m_writeWaitAfterDispatch = WriteSettleMs;
        s.CmdState = Cmd::Poll;
        break;
    case Cmd::WriteTextRow:
        s.RefreshAfterWrite = true;
        m_textReadBack = true;
        s.CmdState = Cmd::ReadTextInputs;
        break;
    case Cmd::MachineRunMethod:
        s.RefreshAfterWrite = true;
        s.CmdState = Cmd::ReadUp;
        break;
    case Cmd::WriteClockRows:
        // One block: the clock page hears of its end as in PC Link.
        emit clockRowsWritten(s.CmdIndexEnd);
        s.RefreshAfterWrite = true;
        s.CmdState = Cmd::Poll;
        break;
    case Cmd::WriteRunWord: case Cmd::WriteUpRows:
    case Cmd::MachineRun: case Cmd::MachineStep: case Cmd::MachineHold: case Cmd::MachineTempAT: case Cmd::MachineHumiAT:
    case Cmd::MachineStartPattern: case Cmd::MachineStartSegment: case Cmd::MachineTempPid:
    case Cmd::MachineHumiPid: case Cmd::MachineTempSV: case Cmd::MachineRow10: case Cmd::MachineHumiSV:
    case Cmd::MachineRow11:
        s.RefreshAfterWrite = true;
        s.CmdState = Cmd::Poll;
        break;
    case Cmd::WritePatternWord:
        s.RefreshAfterWrite = true;
        s.CmdState = Cmd::ReadPatternWord;
        break;
    case Cmd::WriteSegmentWords:
        s.CmdIndex = s.CmdIndexEnd;
        s.RefreshAfterWrite = true;
        s.CmdState = Cmd::ReadSegmentWord;
        break;
    case Cmd::SendText: case Cmd::SendPattern: case Cmd::SendSegment: case Cmd::WriteSegmentCount: case Cmd::RewriteSegments: case Cmd::WritePattern: case Cmd::WriteProgram: case Cmd::WriteProgramSegment:
        programChainStep();
        break;
    default:
        break;
    }
}
