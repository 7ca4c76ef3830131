// What each state does with a good reply: store it, then choose the next state.
#include "CommLink.h"
#include "FrameBytes.h"
#include "LiveStatus.h"
#include "ProgramImage.h"
#include "ScreenBitmap.h"
#include "StatusListener.h"
#include "mdlQM730_Protocol.h"

using namespace framebytes;


// ---------------------------------------------------------------- store routines

// index 0 (or less): the block of all rows; above 0: that row alone, as the
// scan measured the reply.
void CommLink::Disp_RRP(int slot, int index, QByteArrayView data)
{
    guarded("Disp_RRP", [&] {
        ConsoleState &s = m_st;
        if (slot < 0 || slot >= s.machines.size())
            throw std::out_of_range("no such slot");
        const int col = slot + 1;
        if (index <= 0) {
            const auto rows = decodeRrp(data);
            if (!rows)
                throw std::out_of_range("RRP reply shorter than its rows");
            for (int row = 1; row <= Rrp::Count; ++row)
                s.image.sprdRRP.setNumber(col, row, (*rows)[row - 1]);
        } else {
            if (data.size() < 2)
                throw std::out_of_range("RRP reply shorter than its row");
            s.image.sprdRRP.setNumber(col, index, quint8(data[0]) * 256 + quint8(data[1]));
        }
        MachineSlot &m = s.machines[slot];
        const bool running = s.image.sprdRRP.number(col, 1) > 0;
        const bool was = m.MachineRunning;
        m.MachineRunning = running;
        if (m_listener)
            m_listener->runStateStored(slot, was, running);
        if (m.MachineNumber == s.CurrentMachine) {
            s.image.setTempDecimals(int(s.image.sprdRRP.number(col, 15)));
            s.ParamChanged = s.image.sprdRRP.number(col, 14) > 0;
        }
    });
}

void CommLink::Disp_RCV(int slot, const RcvWords &rows)
{
    guarded("Disp_RCV", [&] {
        ConsoleState &s = m_st;
        if (slot < 0 || slot >= s.machines.size())
            throw std::out_of_range("no such slot");
        const int col = slot + 1;
        if (m_listener)
            m_listener->statusStepBegin(slot);
        for (int row = 1; row <= ControllerImage::RcvRows; ++row) {
            const int v = rows[row - 1];
            if (m_listener)
                m_listener->statusWord(slot, row, s.image.sprdRCV.text(col, row), v);
            s.image.sprdRCV.setNumber(col, row, v);
            if (row == 13)
                s.machines[slot].MachineRunMode = v == 0 ? QStringLiteral("PROGRAM") : QStringLiteral("FIXRUN");
        }
        if (m_listener)
            m_listener->statusStepEnd(slot);
    });
}

void CommLink::Disp_RUP(const QByteArray &f, int offset, int firstRow, int words)
{
    guarded("Disp_RUP", [&] {
        TextTable &up = m_st.image.sprdUP;
        // A block piece may reach past the rows this firmware has; those words are not kept.
        const int last = std::min(firstRow + words - 1, up.rowCount());
        for (int row = firstRow; row <= last; ++row)
            up.setNumber(1, row, wordAt(f, offset + 2 * (row - firstRow)));
    });
}

void CommLink::Disp_RUP_PLUS(const QByteArray &f, int offset)
{
    guarded("Disp_RUP", [&] {
        m_st.image.sprdUP_PLUS.setNumber(1, 88, wordAt(f, offset));
        m_st.image.sprdUP_PLUS.setNumber(1, 89, wordAt(f, offset + 2));
    });
}

void CommLink::Disp_RTD(int row, const QByteArray &bytes)
{
    guarded("Disp_RTD", [&] { m_st.image.sprdTD.setText(1, row, tdBytesToText(bytes)); });
}

void CommLink::Disp_RPD(int pattern, const QByteArray &f, int offset, int firstWord, int words, const char *place)
{
    guarded(place, [&] {
        for (int i = 0; i < words; ++i)
            m_st.image.sprdPD.setNumber(firstWord + i, pattern, wordAt(f, offset + 2 * i));
    });
}

void CommLink::Disp_RSD(int pattern, int segment, const QByteArray &f, int offset, int firstWord, int words,
                        const char *place)
{
    guarded(place, [&] {
        if (segment < 1 || segment > ControllerImage::MaxSegments || firstWord < 1
            || firstWord + words - 1 > ControllerImage::SegmentWords)
            throw std::out_of_range("segment word outside the segment");
        const int base = (segment - 1) * ControllerImage::SegmentWords;
        for (int i = 0; i < words; ++i)
            m_st.image.sprdSD.setNumber(base + firstWord + i, pattern, wordAt(f, offset + 2 * i));
    });
}

void CommLink::saveScreen(const QByteArray &f)
{
    const QByteArray pixels = f.mid(11, screenbitmap::PixelBytes);
    const QString path = m_st.path(QStringLiteral("\\DispScr.BMP"));
    if (screenbitmap::writeBitmap(path, pixels)) {
        emit screenCaptured();
        return;
    }
    WriteErrorLog(m_st.home, 75, QStringLiteral("cannot write ") + path, QStringLiteral("saveScreen"));
    emit screenCaptureFailed(CaptureFault::FileNotWritten);
}

// ---------------------------------------------------------------- shared steps

void CommLink::moveToNextOnlineSlot()
{
    m_st.PollSlot = m_st.next_online_slot(m_st.PollSlot + 1);
}

// The present values of a slot are in (or could not be read): the poll goes
// on with the parameter block when a page wants it, else with the next slot.
void CommLink::statusStored(int slot, const std::optional<RcvWords> &rows)
{
    ConsoleState &s = m_st;
    if (rows)
        Disp_RCV(slot, *rows);
    else
        WriteErrorLog(s.home, 9, QStringLiteral("RCV reply too short"), QStringLiteral("Disp_RCV"));
    emit pollCompleted(slot);
    if (s.ParamPageOpen || s.ParamChanged || s.RefreshOnOpen) {
        s.CmdState = Cmd::ReadUp;
    } else {
        moveToNextOnlineSlot();
        s.CmdState = Cmd::Poll;
    }
}

void CommLink::reportBulk(BulkTable table, int done, int total, bool finished)
{
    BulkProgress p;
    p.job = m_st.bulkJob;
    p.table = table;
    p.done = done;
    p.total = total;
    p.finished = finished;
    emit bulkProgress(p);
}

// A text row of a bulk transfer is through: rows of all texts in a parameter
// transfer, pattern names in a program fetch.
void CommLink::textProgress(int row)
{
    if (m_st.bulkJob == BulkJob::ProgramFetch)
        reportBulk(BulkTable::Texts, std::max(0, row - 11), m_st.PatternCount());
    else
        reportBulk(BulkTable::Texts, row, m_st.PatternCount() + 11);
}

void CommLink::textsDone()
{
    const int total = m_st.bulkJob == BulkJob::ProgramFetch ? m_st.PatternCount() : m_st.PatternCount() + 11;
    reportBulk(BulkTable::Texts, total, total, true);
}

void CommLink::bulkEnd()
{
    const BulkJob job = m_st.bulkJob;
    m_st.CmdState = Cmd::Poll;
    emit bulkFinished(job);
}

// The parameter block of a bulk transfer is through; the text rows and the
// programs follow when the screen asked for them.
void CommLink::parameterBlockDone(int textState)
{
    ConsoleState &s = m_st;
    reportBulk(BulkTable::Parameters, s.image.sprdUP.rowCount(), s.image.sprdUP.rowCount(), true);
    if (s.BulkWithPrograms) {
        s.CmdIndex = 1;
        s.CmdIndexEnd = s.PatternCount() + 11;
        s.CmdState = textState;
    } else {
        bulkEnd();
    }
}

// The end of a read of text rows. After a text-row write it is that write's
// read-back, which ends with the open screen repainting from what the
// controller kept. A plain read (a pattern's name for the console) repaints
// nothing: a refresh still owed to an earlier write is left to the next read
// of the parameter block.
void CommLink::textReadDone()
{
    m_st.CmdIndexEnd = 0;
    m_st.CmdState = Cmd::Poll;
    if (std::exchange(m_textReadBack, false)) {
        m_st.startActiveRefresh();
        m_st.RefreshAfterWrite = false;
    }
}

// A send of the whole parameter block is posted: the image holds the block
// to be written (a file set), which a poll's read of the block that was
// under way must not overwrite.
bool CommLink::blockSendPosted() const
{
    return m_st.ReqCmd == Cmd::SendUp || m_st.ReqCmd == Cmd::SendUpPieces;
}

void CommLink::refreshIfFlagged()
{
    if (m_st.RefreshAfterWrite || m_st.RefreshOnOpen) {
        m_st.startActiveRefresh();
        m_st.RefreshAfterWrite = false;
        m_st.RefreshOnOpen = false;
    }
}

// A slot answered the scan: PC Link's WHO or Modbus's identity.
void CommLink::scanAnswered(int slot, const QString &firmwareText, bool modbusText)
{
    ConsoleState &s = m_st;
    const int machine = slotMachine(slot);
    if (s.CurrentMachine == 0) {
        s.setCurrentMachine(machine);
        emit currentMachineShown(machine);
    }
    s.setStatusPanel(4, QStringLiteral("機號 [") + QString::number(machine)
                            + (modbusText ? QStringLiteral("] QM730 連接") : QStringLiteral("] QM730 連接.")));
    if (slot + 1 <= s.sprdStatus.rowCount()) {
        s.sprdStatus.setText(2, slot + 1, QStringLiteral("良好"));
        s.sprdStatus.setColor(2, slot + 1, TextTable::Green);
        if (!firmwareText.isNull())
            s.sprdStatus.setText(3, slot + 1, firmwareText);
    }
    if (slot >= 0 && slot < s.machines.size())
        s.machines[slot].MachineOnline = true;
    emit machineTableChanged();
    emit linkEvent(QStringLiteral("machine %1: 良好, F/W %2").arg(machine).arg(s.sprdStatus.text(3, slot + 1)));
    const int next = s.next_slot(s.PollSlot);
    s.NextPollSlot = next;
    if (next != 0) {
        s.ReqCmd = Cmd::Who;
        tmrSend.start();
        return;
    }
    scanEnd();
}

void CommLink::scanEnd()
{
    ConsoleState &s = m_st;
    emit currentMachineShown(s.CurrentMachine);
    const int fgSlot = s.slotOfMachine(s.CurrentMachine);
    if (fgSlot >= 0)
        s.applyFirmwareOfRow(fgSlot + 1);
    emit scanMessageVisible(false);
    const bool any = update_menus();
    if (!any) {
        s.PollSlot = 0;
        emit linkEvent(QStringLiteral("scan done: no machine answered; scanning again"));
        return;
    }
    // Polling starts at the first online slot. The slot walk ended at 0, and
    // the next tick would take that over the slot chosen here.
    moveToNextOnlineSlot();
    s.NextPollSlot = -1;
    s.CmdState = Cmd::Poll;
    emit linkEvent(QStringLiteral("scan done: polling, foreground machine %1, F/W %2, %3 UP rows")
                       .arg(s.CurrentMachine)
                       .arg(s.FirmwareVersion())
                       .arg(s.image.sprdUP.rowCount()));
}

// The next pattern of a bulk receive, or its end.
void CommLink::bulkNextPattern()
{
    ConsoleState &s = m_st;
    if (s.bulkJob == BulkJob::ProgramFetch) {
        const int p = NextUnloadedRow(s.image, QStringLiteral("RPD"), s.PatternNo + 1);
        if (p > 0) {
            s.PatternNo = p;
            s.CmdState = Cmd::RecvPattern;
            return;
        }
    } else if (s.PatternNo + 1 <= s.PatternCount()) {
        s.PatternNo += 1;
        s.CmdState = Cmd::RecvPattern;
        return;
    }
    bulkEndReceive();
}

void CommLink::bulkEndReceive()
{
    ConsoleState &s = m_st;
    reportBulk(BulkTable::Patterns, s.PatternNo, s.PatternCount(), true);
    reportBulk(BulkTable::Segments, s.SegmentCount, s.SegmentCount, true);
    SaveProgramCache(s.image, s.home, s.CurrentMachine);
    bulkEnd();
}

void CommLink::sendChainNextPattern()
{
    ConsoleState &s = m_st;
    s.PatternNo += 1;
    if (s.PatternNo <= s.PatternCount()) {
        s.CmdState = Cmd::SendPattern;
        return;
    }
    reportBulk(BulkTable::Patterns, s.PatternCount(), s.PatternCount(), true);
    reportBulk(BulkTable::Segments, s.SegmentCount, s.SegmentCount, true);
    bulkEnd();
}

// The program chains after their reply is stored or acknowledged: the same in
// both protocols.
void CommLink::programChainStep()
{
    ConsoleState &s = m_st;
    ControllerImage &img = s.image;
    auto clampSegments = [](qint64 n) { return int(std::clamp<qint64>(n, 0, ControllerImage::MaxSegments)); };
    switch (s.CmdState) {
    case Cmd::RecvPattern: case Cmd::ReadPattern:
        s.SegmentCount = clampSegments(img.sprdPD.number(1, s.PatternNo));
        if (s.PatternNo >= 1 && s.PatternNo <= ControllerImage::MaxPatterns)
            img.PatternLoaded[s.PatternNo - 1] = true;
        if (s.CmdState == Cmd::ReadPattern) {
            s.SegmentNo = 1;
            s.CmdState = Cmd::ReadPatternSegment;
            break;
        }
        reportBulk(BulkTable::Patterns, s.PatternNo, s.PatternCount());
        if (s.SegmentCount > 0) {
            s.SegmentNo = 1;
            s.CmdState = Cmd::RecvSegment;
        } else {
            bulkNextPattern();
        }
        break;
    case Cmd::RecvSegment: case Cmd::ReadPatternSegment:
        if (s.CmdState == Cmd::RecvSegment)
            reportBulk(BulkTable::Segments, s.SegmentNo, s.SegmentCount);
        s.SegmentNo += 1;
        if (s.SegmentNo <= s.SegmentCount)
            break;
        if (s.CmdState == Cmd::RecvSegment) {
            bulkNextPattern();
        } else {
            s.CmdState = Cmd::Poll;
            s.startActiveRefresh();
            s.RefreshAfterWrite = false;
        }
        break;
    case Cmd::ReadSegmentCount:
        if (s.SegmentNo >= 1) {
            s.CmdState = Cmd::ReadLastSegment;
            break;
        }
        // A pattern left without segments has no last segment to read back
        // (a controller refuses segment 0): the count is all there is.
        refreshIfFlagged();
        s.CmdState = Cmd::Poll;
        break;
    case Cmd::ReadPatternWord: case Cmd::ReadSegmentWord: case Cmd::ReadLastSegment:
        refreshIfFlagged();
        s.CmdState = Cmd::Poll;
        break;
    case Cmd::SendText:
        textProgress(s.CmdIndex);
        s.CmdIndex += 1;
        if (s.CmdIndex <= s.CmdIndexEnd)
            break;
        textsDone();
        if (s.BulkWithPrograms) {
            s.PatternNo = 1;
            s.CmdState = Cmd::SendPattern;
        } else {
            bulkEnd();
        }
        break;
    case Cmd::SendPattern:
        reportBulk(BulkTable::Patterns, s.PatternNo, s.PatternCount());
        s.SegmentCount = clampSegments(img.sprdPD.number(1, s.PatternNo));
        if (s.SegmentCount == 0) {
            sendChainNextPattern();
        } else {
            s.SegmentNo = 1;
            s.CmdState = Cmd::SendSegment;
        }
        break;
    case Cmd::SendSegment:
        reportBulk(BulkTable::Segments, s.SegmentNo, s.SegmentCount);
        s.SegmentNo += 1;
        if (s.SegmentNo > s.SegmentCount)
            sendChainNextPattern();
        break;
    case Cmd::WriteSegmentWords:
        s.CmdIndex += 1;
        if (s.CmdIndex <= s.CmdIndexEnd) {
            s.CmdData = wordBytes(img.sprdSD.number((s.SegmentNo - 1) * ControllerImage::SegmentWords + s.CmdIndex,
                                                    s.PatternNo));
            break;
        }
        s.CmdIndex = s.CmdIndexEnd;
        s.RefreshAfterWrite = true;
        s.CmdState = Cmd::ReadSegmentWord;
        break;
    case Cmd::WriteSegmentCount:
        if (s.SegmentNo > s.SegmentCount) {
            s.SegmentNo = s.SegmentCount;
            s.RefreshAfterWrite = true;
            s.CmdState = Cmd::ReadSegmentCount;
        } else {
            s.CmdState = Cmd::RewriteSegments;
        }
        break;
    case Cmd::RewriteSegments:
        s.SegmentNo += 1;
        if (s.SegmentNo <= s.SegmentCount)
            break;
        emit segmentWriteDone();
        s.RefreshAfterWrite = true;
        s.SegmentNo = s.SegmentCount;
        s.CmdState = Cmd::ReadSegmentCount;
        break;
    case Cmd::WritePattern:
        s.startActiveRefresh();
        s.CmdState = Cmd::Poll;
        break;
    case Cmd::WriteProgram:
        if (s.SegmentCount == 0) {
            s.CmdState = Cmd::ReadPattern;
        } else {
            s.SegmentNo = 1;
            s.CmdState = Cmd::WriteProgramSegment;
        }
        break;
    case Cmd::WriteProgramSegment:
        s.SegmentNo += 1;
        if (s.SegmentNo <= s.SegmentCount)
            break;
        s.SegmentNo = 1;
        s.CmdState = Cmd::ReadPattern;
        break;
    default:
        break;
    }
}

// ---------------------------------------------------------------- PC Link dispatch

void CommLink::dispatchPcLink()
{
    ConsoleState &s = m_st;
    ControllerImage &img = s.image;
    const QByteArray &f = m_frame;
    const QString &cmd = s.LastReplyCmd;
    const int slot = s.PollSlot;
    auto is = [&](const char *c) { return cmd == QLatin1String(c); };
    switch (s.CmdState) {
    case Cmd::Poll: {
        Disp_RRP(slot, num4(f, 12), QByteArrayView(f).sliced(std::min<qsizetype>(16, f.size())));
        s.CmdState = Cmd::PollValues;
        break;
    }
    case Cmd::PollValues:
        statusStored(slot, decodeRcvPcLink(QByteArrayView(f).sliced(std::min<qsizetype>(11, f.size()))));
        break;
    case Cmd::ReadUp: case Cmd::RecvUp: {
        const int index = num4(f, 12);
        const bool keepImage = s.CmdState == Cmd::ReadUp && blockSendPosted();
        if (keepImage)
            emit linkEvent(QStringLiteral("parameter block read not stored: a send of the block is posted"));
        else if (index > 0)
            Disp_RUP(f, 16, index, 1);
        else
            Disp_RUP(f, 16, 1, (f.size() - 19) / 2);
        if (s.CmdState == Cmd::ReadUp) {
            refreshIfFlagged();
            moveToNextOnlineSlot();
            s.CmdState = Cmd::Poll;
            break;
        }
        parameterBlockDone(Cmd::RecvText);
        break;
    }
    case Cmd::ReadText:
        Disp_RTD(s.CmdIndex, f.mid(16, 29));
        s.CmdIndex += 1;
        if (s.CmdIndex > s.CmdIndexEnd)
            textReadDone();
        break;
    case Cmd::Who: {
        // The identity text runs from column 12 to the byte before ETX.
        QByteArray raw = f.mid(11);
        const qsizetype etx = raw.indexOf(char(0x03));
        if (etx >= 0)
            raw.truncate(etx);
        const QString text = fromAnsi(raw);
        if (!text.contains(QLatin1String("QM"))) {
            // Not a controller of this kind: as if nothing had come, the time-out goes on.
            m_buf.clear();
            s.RetryCount = m_retryBeforeReply;
            emit linkEvent(QStringLiteral("machine %1: answer without \"QM\" ignored").arg(slotMachine(slot)));
            break;
        }
        m_buf.clear();
        QString firmware;
        const QStringList fields = text.split(u' ');
        for (int i = 0; i + 1 < fields.size(); ++i)
            if (fields[i] == QLatin1String("F/W"))
                firmware = fields[i + 1].mid(1);
        scanAnswered(slot, firmware, false);
        break;
    }
    case Cmd::ReadScreen:
        // Only the screen's own reply is a picture: a stray frame (a late
        // reply to an earlier command) is dropped and the wait goes on.
        if (!is("RCS")) {
            m_buf.clear();
            break;
        }
        // A stop posted while the picture came in drops it: the picture of
        // the last capture and its file stay as they were.
        if (s.ReqCmd != Cmd::Poll)
            saveScreen(f);
        moveToNextOnlineSlot();
        s.CmdState = Cmd::Poll;
        break;
    case Cmd::RecvText: {
        Disp_RTD(s.CmdIndex, f.mid(16, 29));
        if (s.CmdIndex >= 12 && s.CmdIndex - 12 < ControllerImage::MaxPatterns)
            img.PatternNameLoaded[s.CmdIndex - 12] = true;
        textProgress(s.CmdIndex);
        if (s.bulkJob == BulkJob::ProgramFetch) {
            const int next = NextUnloadedRow(img, QStringLiteral("RTD"), s.CmdIndex + 1);
            if (next > 0) {
                s.CmdIndex = next;
                break;
            }
            s.CmdIndexEnd = 0;
            textsDone();
            const int p = NextUnloadedRow(img, QStringLiteral("RPD"), 1);
            if (p > 0) {
                s.PatternNo = p;
                s.CmdState = Cmd::RecvPattern;
            } else {
                bulkEndReceive();
            }
            break;
        }
        s.CmdIndex += 1;
        if (s.CmdIndex > s.CmdIndexEnd) {
            textsDone();
            s.PatternNo = 1;
            s.CmdState = Cmd::RecvPattern;
        }
        break;
    }
    case Cmd::RecvPattern: case Cmd::ReadPattern:
        Disp_RPD(s.PatternNo, f, 21, 1, ControllerImage::PatternWords, "Disp_RPD");
        programChainStep();
        break;
    case Cmd::RecvSegment: case Cmd::ReadPatternSegment: case Cmd::ReadLastSegment:
        Disp_RSD(s.PatternNo, s.SegmentNo, f, 26, 1, ControllerImage::SegmentWords, "Disp_RSD");
        programChainStep();
        break;
    case Cmd::ReadPatternWord: case Cmd::ReadSegmentCount:
        Disp_RPD(s.PatternNo, f, 21, num4(f, 17), 1, "Disp_RPD");
        programChainStep();
        break;
    case Cmd::ReadSegmentWord:
        Disp_RSD(s.PatternNo, s.SegmentNo, f, 26, num4(f, 22), 1, "Disp_RSD");
        programChainStep();
        break;
    case Cmd::WriteRunWord:
        if (!is("WRP"))
            break;
        s.RefreshAfterWrite = true;
        s.CmdState = Cmd::Poll;
        break;
    case Cmd::WriteUpRow:
        if (!is("WUP"))
            break;
        s.RefreshAfterWrite = true;
        m_writeWaitAfterDispatch = WriteSettleMs;
        s.CmdState = Cmd::Poll;
        break;
    case Cmd::WriteTextRow:
        if (!is("WTD"))
            break;
        s.RefreshAfterWrite = true;
        m_textReadBack = true;
        s.CmdState = Cmd::ReadText;
        break;
    case Cmd::WriteClockRows:
        if (!is("WUP"))
            break;
        if (num4(f, 12) != s.CmdIndex) {
            emit clockWriteRefused();
            break;
        }
        s.CmdIndex += 1;
        if (s.CmdIndex <= s.CmdIndexEnd)
            break;
        emit clockRowsWritten(s.CmdIndexEnd);
        s.RefreshAfterWrite = true;
        s.CmdState = Cmd::Poll;
        break;
    case Cmd::WriteUpRows:
        if (!is("WUP"))
            break;
        s.CmdIndex += 1;
        if (s.CmdIndex <= s.CmdIndexEnd)
            break;
        s.CmdIndex = 0;
        s.CmdIndexEnd = 0;
        s.CmdState = Cmd::Poll;
        break;
    case Cmd::SendUp:
        if (!is("WUP"))
            break;
        parameterBlockDone(Cmd::SendText);
        break;
    case Cmd::SendText:
        if (is("WTD"))
            programChainStep();
        break;
    case Cmd::SendPattern: case Cmd::WriteSegmentCount: case Cmd::WritePattern: case Cmd::WriteProgram:
        if (is("WPD"))
            programChainStep();
        break;
    case Cmd::SendSegment: case Cmd::RewriteSegments: case Cmd::WriteProgramSegment:
        if (is("WSD"))
            programChainStep();
        break;
    case Cmd::WritePatternWord:
        if (!is("WPD"))
            break;
        s.CmdIndex = num4(f, 17);
        s.RefreshAfterWrite = true;
        s.CmdState = Cmd::ReadPatternWord;
        break;
    case Cmd::WriteSegmentWords:
        if (is("WSD"))
            programChainStep();
        break;
    case Cmd::MachineRunMethod:
        if (is("WUP"))
            s.CmdState = Cmd::Poll;
        break;
    case Cmd::MachineRun: case Cmd::MachineStep: case Cmd::MachineHold: case Cmd::MachineTempAT: case Cmd::MachineHumiAT:
    case Cmd::MachineStartPattern: case Cmd::MachineStartSegment: case Cmd::MachineTempPid: case Cmd::MachineHumiPid: case Cmd::MachineTempSV: case Cmd::MachineRow10: case Cmd::MachineHumiSV: case Cmd::MachineRow11:
        if (is("WRP"))
            s.CmdState = Cmd::Poll;
        break;
    case Cmd::WriteCurve:
        if (!is("WUP"))
            break;
        s.CmdIndex += 1;
        if (s.CmdIndex <= s.CmdIndexEnd)
            break;
        s.RefreshAfterWrite = true;
        m_writeWaitAfterDispatch = WriteSettleMs;
        s.CmdState = Cmd::Poll;
        break;
    default:
        break;
    }
}
