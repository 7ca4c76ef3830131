#include "ProgramWriter.h"
#include "ConsoleState.h"
#include "Files.h"
#include "ProgramImage.h"
#include "ScreenContext.h"
#include <algorithm>

ProgramWriter::ProgramWriter(ScreenContext &context, QTimer &tmrRefresh, QObject *parent)
    : QObject(parent), m_ctx(context), m_state(context.state),
      m_refresh(context.state, &tmrRefresh, RefreshRegistration::Screen)
{
}

ProgramWriter::~ProgramWriter() = default;

void ProgramWriter::remember(TextTable &table, int col, int row)
{
    for (const Saved &s : m_saved)
        if (s.table == &table && s.col == col && s.row == row)
            return;
    m_saved.append({&table, col, row, table.text(col, row)});
}

void ProgramWriter::storePatternWord(int pattern, int word, qint64 value)
{
    remember(m_state.image.sprdPD, word, pattern);
    if (setPatternWord(m_state.image, pattern, word, value))
        m_dirty = true;
}

void ProgramWriter::storeSegmentWord(int pattern, int segment, int word, qint64 value)
{
    remember(m_state.image.sprdSD, Sd::column(segment, word), pattern);
    if (setSegmentWord(m_state.image, pattern, segment, word, value))
        m_dirty = true;
}

int ProgramWriter::nameWidth() const
{
    return tdRowBytes(patternNameRow(1), m_state.Modbus());
}

namespace {

// The controller keeps names in Big5: a character Big5 lacks becomes "?" here
// already, so the cell shows what will go out and what the read-back brings.
QString big5Only(const QString &text)
{
    QString out;
    out.reserve(text.size());
    qsizetype i = 0;
    while (i < text.size()) {
        const qsizetype len = (text[i].isHighSurrogate() && i + 1 < text.size()) ? 2 : 1;
        const QString ch = text.mid(i, len);
        out += fromAnsi(toAnsi(ch)) == ch ? ch : QStringLiteral("?");
        i += len;
    }
    return out;
}

} // namespace

QString ProgramWriter::storeName(int pattern, const QString &text)
{
    const int row = patternNameRow(pattern);
    if (pattern < 1 || row > ControllerImage::TextRows)
        return text;
    const QString kept = tdFitText(big5Only(text), nameWidth());
    remember(m_state.image.sprdTD, 1, row);
    m_state.image.sprdTD.setText(1, row, kept);
    m_dirty = true;
    return kept;
}

void ProgramWriter::revert()
{
    for (const Saved &s : m_saved)
        s.table->setText(s.col, s.row, s.text);
    m_saved.clear();
    m_dirty = false;
}

void ProgramWriter::sent(int pattern, int word, bool name)
{
    m_dirty = false;
    m_saved.clear();
    m_changedPattern = pattern;
    m_changedWord = word;
    m_nameChanged = name;
}

void ProgramWriter::sendPatternWord(int pattern, int word)
{
    sendPatternWord(pattern, word, m_state.image.sprdPD.word(word, pattern));
}

void ProgramWriter::sendPatternWord(int pattern, int word, quint16 value)
{
    sent(pattern, word, false);
    m_ctx.requests().writePatternWord(pattern, word, value);
}

void ProgramWriter::sendSegmentWords(int pattern, int segment, int firstWord, int lastWord)
{
    sent(pattern, lastWord, false);
    m_ctx.requests().writeSegmentWords(pattern, segment, firstWord, lastWord,
                                       m_state.image.sprdSD.word(Sd::column(segment, firstWord), pattern));
}

void ProgramWriter::sendName(int pattern)
{
    sent(pattern, 0, true);
    m_ctx.requests().writeTextRow(patternNameRow(pattern));
}

void ProgramWriter::sendSegmentCount(int pattern, int firstSegment, int lastSegment)
{
    sent(pattern, Pd::SegmentCount, false);
    m_ctx.requests().writeSegmentCount(pattern, firstSegment, lastSegment,
                                       clampWord(patternWord(m_state.image, pattern, Pd::SegmentCount)));
}

void ProgramWriter::sendPattern(int pattern)
{
    sent(pattern, 0, false);
    m_ctx.requests().writePattern(pattern);
}

void ProgramWriter::sendProgram(int pattern)
{
    sent(pattern, 0, false);
    const qint64 count = patternWord(m_state.image, pattern, Pd::SegmentCount);
    m_ctx.requests().writeProgram(pattern, int(std::clamp<qint64>(count, 0, Sd::MaxSegments)));
}
