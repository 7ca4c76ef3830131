#include "Requests.h"
#include "ConsoleState.h"
#include <algorithm>

QString bulkFormName(BulkJob job)
{
    switch (job) {
    case BulkJob::ParameterReceive: return QStringLiteral("frmQM730_P_Recv");
    case BulkJob::ParameterSend: return QStringLiteral("frmQM730_P_Send");
    case BulkJob::ProgramFetch: return QStringLiteral("frmQM730_PTN_Recv");
    case BulkJob::None: break;
    }
    return {};
}

void Requests::post(int code, int index, quint16 word)
{
    m_s.request_word(code, index, word);
}

void Requests::stop()
{
    post(Cmd::Poll, 0);
}

void Requests::readParameters()
{
    post(Cmd::ReadUp, 0);
}

void Requests::writeRunWord(int row, quint16 word)
{
    // sprdRRP rows are registers 40001 on under Modbus RTU.
    post(Cmd::WriteRunWord, m_s.Modbus() ? 40000 + row : row, word);
}

bool Requests::underway(Cmd::State kind) const
{
    return m_s.ReqCmd == kind || m_s.CmdState == kind;
}

bool Requests::writeParameter(ParamRef ref, quint16 word, const QString &cellText, RowAddressing addressing)
{
    const double version = m_s.FirmwareVersion();
    const int row = WriteRowOf(ref, version, addressing);
    const int address = ParamWireAddress(ref, version, m_s.Modbus(), addressing);
    if (row == 0 || address == 0)
        return false;
    const QString text = cellText.isEmpty() ? QString::number(word) : cellText;
    if (paramInfo(ref.param).block == UpBlock::UpPlus)
        WritePlusRowText(m_s.image, row, text);
    else
        WriteRowText(m_s.image, row, text);
    post(Cmd::WriteUpRow, address, word);
    return true;
}

// The words of table rows first to last (column 1) as one Modbus write.
void Requests::fillBlock(const TextTable &table, int firstRow, int lastRow)
{
    QByteArray block;
    for (int row = firstRow; row <= lastRow; ++row)
        block += wordBytes(table.word(1, row));
    m_s.WriteBlock = block;
    m_s.WriteBlockCount = std::max(0, lastRow - firstRow + 1);
}

void Requests::writeParameterRows(int firstRow, int lastRow)
{
    m_s.CmdIndexEnd = lastRow;
    if (m_s.Modbus())
        fillBlock(m_s.image.sprdUP, firstRow, lastRow);
    post(Cmd::WriteUpRows, m_s.WireAddress(firstRow));
}

void Requests::writeCurveRows(int firstRow, int lastRow)
{
    m_s.CmdIndexEnd = lastRow;
    if (m_s.Modbus()) {
        fillBlock(m_s.image.sprdUP, firstRow, lastRow);
        post(Cmd::WriteCurveBlock, m_s.WireAddress(firstRow));
    } else {
        post(Cmd::WriteCurve, firstRow);
    }
}

void Requests::writeClockRows(int firstRow, int lastRow)
{
    m_s.CmdIndexEnd = lastRow;
    if (m_s.Modbus())
        fillBlock(m_s.image.sprdUP_DT, firstRow, lastRow);
    // The clock rows are the same in both layouts: always registers 40100 + row.
    post(Cmd::WriteClockRows, WireAddress(firstRow, m_s.Modbus(), true));
}

void Requests::writeTextRow(int row)
{
    m_s.CmdIndexEnd = row; // the read-back that follows takes this row only
    post(Cmd::WriteTextRow, row);
}

void Requests::readTextRows(int firstRow, int lastRow)
{
    m_s.CmdIndexEnd = lastRow;
    if (!m_s.Modbus())
        post(Cmd::ReadText, firstRow);
    else if (firstRow <= 8)
        post(Cmd::ReadTextInputs, firstRow);
    else if (firstRow <= 11)
        post(Cmd::ReadTextInfo, firstRow);
    else
        post(Cmd::ReadNames, firstRow);
}

void Requests::readPatternName(int pattern)
{
    // A pattern's name is text row pattern + 11. Modbus RTU reads the names
    // ten to a block: from the block that holds this one to the end of the
    // chain. The chain knows ten blocks, the names of patterns 1 to 100; a
    // name beyond them is not asked for (a read of other names would not
    // bring it).
    if (pattern < 1)
        return;
    const int row = pattern + 11;
    if (!m_s.Modbus()) {
        m_s.CmdIndexEnd = row;
        post(Cmd::ReadText, row);
        return;
    }
    const int block = (pattern - 1) / 10;
    if (block > Cmd::ReadNamesLast - Cmd::ReadNames)
        return;
    m_s.CmdIndexEnd = row;
    post(Cmd::ReadNames + block, row);
}

void Requests::readScreen()
{
    post(Cmd::ReadScreen, 0);
}

void Requests::writePatternWord(int pattern, int word, quint16 value)
{
    m_s.PatternNo = pattern;
    post(Cmd::WritePatternWord, word, value);
}

void Requests::writeSegmentWords(int pattern, int segment, int firstWord, int lastWord, quint16 value)
{
    m_s.PatternNo = pattern;
    m_s.SegmentNo = segment;
    m_s.CmdIndexEnd = lastWord;
    post(Cmd::WriteSegmentWords, firstWord, value);
}

void Requests::writeSegmentCount(int pattern, int firstSegment, int lastSegment, quint16 count)
{
    m_s.PatternNo = pattern;
    m_s.SegmentNo = firstSegment;
    m_s.SegmentCount = lastSegment;
    post(Cmd::WriteSegmentCount, 1, count);
}

void Requests::writePattern(int pattern)
{
    m_s.PatternNo = pattern;
    post(Cmd::WritePattern, 0);
}

void Requests::writeProgram(int pattern, int segmentCount)
{
    m_s.PatternNo = pattern;
    m_s.SegmentNo = 1;
    m_s.SegmentCount = segmentCount;
    post(Cmd::WriteProgram, 0);
}

void Requests::writeMachineWord(int slot, Cmd::State what, quint16 word)
{
    m_s.NextPollSlot = slot;
    post(what, 0, word);
}

void Requests::setBulk(BulkJob job)
{
    m_s.bulkJob = job;
    m_s.BulkFormName = bulkFormName(job);
}

void Requests::startParameterReceive(bool withPrograms)
{
    setBulk(BulkJob::ParameterReceive);
    m_s.BulkWithPrograms = withPrograms;
    post(m_s.Modbus() ? Cmd::RecvUpPieces : Cmd::RecvUp, 0);
}

void Requests::startParameterSend(bool withPrograms)
{
    setBulk(BulkJob::ParameterSend);
    m_s.BulkWithPrograms = withPrograms;
    post(m_s.Modbus() ? Cmd::SendUpPieces : Cmd::SendUp, 0);
}

void Requests::startNameFetch(int firstRow)
{
    setBulk(BulkJob::ProgramFetch);
    m_s.CmdIndexEnd = m_s.PatternCount() + 11;
    post(m_s.Modbus() ? Cmd::RecvTextInputs : Cmd::RecvText, firstRow);
}

void Requests::startPatternFetch(int pattern)
{
    setBulk(BulkJob::ProgramFetch);
    m_s.PatternNo = pattern;
    post(Cmd::RecvPattern, 0);
}
