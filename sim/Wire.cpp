#include "Wire.h"

namespace wire {

quint16 byteSum(const char *data, qsizetype size)
{
    quint32 sum = 0;
    for (qsizetype i = 0; i < size; ++i)
        sum += static_cast<quint8>(data[i]);
    return static_cast<quint16>(sum & 0xFFFF);
}

void appendSum(QByteArray &frame)
{
    appendWord(frame, byteSum(frame));
}

quint16 modbusCrc(const char *data, qsizetype size)
{
    quint16 crc = 0xFFFF;
    for (qsizetype i = 0; i < size; ++i) {
        crc ^= static_cast<quint8>(data[i]);
        for (int bit = 0; bit < 8; ++bit) {
            const bool lsb = crc & 1;
            crc >>= 1;
            if (lsb)
                crc ^= 0xA001;
        }
    }
    return crc;
}

void appendCrc(QByteArray &frame)
{
    const quint16 crc = modbusCrc(frame.constData(), frame.size());
    frame.append(static_cast<char>(crc & 0xFF));
    frame.append(static_cast<char>(crc >> 8));
}

bool crcOk(const char *data, qsizetype size)
{
    if (size < 3)
        return false;
    const quint16 crc = modbusCrc(data, size - 2);
    return static_cast<quint8>(data[size - 2]) == (crc & 0xFF)
        && static_cast<quint8>(data[size - 1]) == (crc >> 8);
}

void appendWord(QByteArray &out, quint16 word)
{
    out.append(static_cast<char>(word >> 8));
    out.append(static_cast<char>(word & 0xFF));
}

quint16 wordAt(const QByteArray &in, qsizetype pos)
{
    return static_cast<quint16>((static_cast<quint8>(in.at(pos)) << 8) | static_cast<quint8>(in.at(pos + 1)));
}

QByteArray decimal(int value, int width)
{
    QByteArray out(width, '0');
    for (int i = width - 1; i >= 0; --i) {
        out[i] = static_cast<char>('0' + value % 10);
        value /= 10;
    }
    return out;
}

bool readDecimal(const QByteArray &in, qsizetype pos, int width, int *value)
{
    if (pos + width > in.size())
        return false;
    int v = 0;
    for (int i = 0; i < width; ++i) {
        const char c = in.at(pos + i);
        if (c < '0' || c > '9')
            return false;
        v = v * 10 + (c - '0');
    }
    *value = v;
    return true;
}

} // namespace wire
