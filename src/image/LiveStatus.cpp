#include "LiveStatus.h"
#include "Files.h"
#include "TextTable.h"

double temperatureFromWord(qint64 raw)
{
    return double(raw - 10000) / 100.0;
}

double humidityFromWord(qint64 raw)
{
    return double(raw) / 10.0;
}

double outputFromWord(qint64 raw)
{
    return double(raw) / 100.0;
}

QString tempSvText(qint64 raw, int decimals)
{
    return formatScaled(raw - 10000, 2, resolutionPattern(decimals));
}

QString tempPvText(qint64 raw, int decimals)
{
    if (raw == NoValue)
        return QStringLiteral("---.--");
    return tempSvText(raw, decimals);
}

QString humiSvText(qint64 raw)
{
    return formatScaled(raw, 1, u"0.0");
}

QString humiPvText(qint64 raw)
{
    if (raw == NoValue)
        return QStringLiteral("---.-");
    return humiSvText(raw);
}

QString outputText(qint64 raw)
{
    return formatScaled(raw, 2, u"0.00");
}

QString tempPvCheckedText(qint64 raw, int decimals)
{
    const QString text = tempSvText(raw, decimals);
    const double rounded = leadingNumber(text);
    if (rounded < -100 || rounded > 200)
        return QStringLiteral("---.--");
    return text;
}

QString humiPvCheckedText(qint64 raw)
{
    if (raw < 0 || raw > 1000)
        return QStringLiteral("---.-");
    return humiSvText(raw);
}

bool lampOn(const BitField &field, qint64 raw, int n)
{
    if (n < 1 || n > field.count)
        return false;
    return rowBit(raw, field.firstBit + n - 1);
}

RampFlags rampFlags(qint64 raw)
{
    RampFlags f;
    f.tempUp = rowBit(raw, 7);
    f.tempSoak = rowBit(raw, 6);
    f.tempDown = rowBit(raw, 5);
    f.tempWait = rowBit(raw, 4);
    f.humiUp = rowBit(raw, 3);
    f.humiSoak = rowBit(raw, 2);
    f.humiDown = rowBit(raw, 1);
    f.humiWait = rowBit(raw, 0);
    return f;
}

QString runModeText(qint64 raw)
{
    return raw == 0 ? QStringLiteral("PROGRAM") : QStringLiteral("FIXRUN");
}

static QString fixed(qint64 n, QAnyStringView pattern)
{
    return formatScaled(n, 0, pattern);
}

QString runTimeText(qint64 hours, qint64 minutes, qint64 seconds)
{
    return fixed(hours, u"0000") + u':' + fixed(minutes, u"00") + u':' + fixed(seconds, u"00");
}

QString segmentTimeText(qint64 elapsedHours, qint64 elapsedMinutes, qint64 totalHours, qint64 totalMinutes)
{
    return fixed(elapsedHours, u"0000") + u':' + fixed(elapsedMinutes, u"00") + u'/'
        + fixed(totalHours, u"0000") + u':' + fixed(totalMinutes, u"00");
}

QString repeatText(qint64 done, qint64 total)
{
    return fixed(done, u"000") + u'/' + fixed(total, u"000");
}

QString patternSegmentText(qint64 pattern, qint64 segment)
{
    return fixed(pattern, u"000") + u':' + fixed(segment, u"000");
}

bool RcvColumn::isRead(int row) const
{
    return !m_table.isEmpty(m_column, row);
}

qint64 RcvColumn::word(int row) const
{
    return m_table.number(m_column, row);
}

QString RcvColumn::runTimeText() const
{
    return ::runTimeText(word(Rcv::RunHours), word(Rcv::RunMinutes), word(Rcv::RunSeconds));
}

QString RcvColumn::segmentTimeText() const
{
    return ::segmentTimeText(word(Rcv::SegElapsedHours), word(Rcv::SegElapsedMinutes),
                             word(Rcv::SegTotalHours), word(Rcv::SegTotalMinutes));
}

QString RcvColumn::patternRepeatText() const
{
    return repeatText(word(Rcv::PatternRepeatDone), word(Rcv::PatternRepeatTotal));
}

QString RcvColumn::segmentRepeatText() const
{
    return repeatText(word(Rcv::SegmentRepeatDone), word(Rcv::SegmentRepeatTotal));
}

QString RcvColumn::patternSegmentText() const
{
    return ::patternSegmentText(word(Rcv::RunPattern), word(Rcv::RunSegment));
}

RcvField rcvPcLinkField(int row)
{
    if (row >= 1 && row <= 12)
        return {2 * (row - 1), 2};
    // Rows 13 to 27 pack words and single bytes.
    static const RcvField tail[] = {
        {24, 1}, // 13 run mode
        {25, 2}, // 14 run hours
        {27, 1}, // 15 run minutes
        {28, 1}, // 16 run seconds
        {29, 2}, // 17 segment time, left hours
        {31, 1}, // 18 left minutes
        {32, 2}, // 19 right hours
        {34, 1}, // 20 right minutes
        {35, 2}, // 21 pattern
        {37, 1}, // 22 segment
        {38, 2}, // 23 pattern repeat, left
        {40, 2}, // 24 pattern repeat, right
        {42, 1}, // 25 segment repeat, left
        {43, 1}, // 26 segment repeat, right
        {44, 1}, // 27 ramp and wait flags
    };
    if (row >= 13 && row <= 27)
        return tail[row - 13];
    return {0, 0};
}

static quint16 wordAt(QByteArrayView data, qsizetype offset)
{
    return quint16((quint8(data[offset]) << 8) | quint8(data[offset + 1]));
}

std::optional<RcvWords> decodeRcvPcLink(QByteArrayView data)
{
    if (data.size() < RcvPcLinkBytes)
        return std::nullopt;
    RcvWords words{};
    for (int row = 1; row <= Rcv::Count; ++row) {
        const RcvField f = rcvPcLinkField(row);
        words[row - 1] = f.size == 2 ? wordAt(data, f.offset) : quint8(data[f.offset]);
    }
    return words;
}

std::optional<RcvWords> decodeRcvModbus(QByteArrayView data)
{
    if (data.size() < 2 * Rcv::Count)
        return std::nullopt;
    RcvWords words{};
    for (int i = 0; i < Rcv::Count; ++i)
        words[i] = wordAt(data, 2 * i);
    return words;
}

std::optional<RrpWords> decodeRrp(QByteArrayView data)
{
    if (data.size() < 2 * Rrp::Count)
        return std::nullopt;
    RrpWords words{};
    for (int i = 0; i < Rrp::Count; ++i)
        words[i] = wordAt(data, 2 * i);
    return words;
}
