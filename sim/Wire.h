// Byte-level helpers of the two line protocols: sums, CRC, fixed-width
// decimal fields and big-endian words.
#pragma once

#include <QByteArray>

namespace wire {

constexpr char STX = 0x02;
constexpr char ETX = 0x03;
constexpr char CR = 0x0D;
constexpr char LF = 0x0A;

// PC Link sum: plain sum of the bytes modulo 65536.
quint16 byteSum(const char *data, qsizetype size);
inline quint16 byteSum(const QByteArray &b) { return byteSum(b.constData(), b.size()); }
// Appends the sum of the frame, high byte first.
void appendSum(QByteArray &frame);

// Modbus CRC-16 (polynomial 0xA001, start 0xFFFF).
quint16 modbusCrc(const char *data, qsizetype size);
// Appends the CRC, low byte first.
void appendCrc(QByteArray &frame);
// True when the last two bytes are the CRC of the bytes before them.
bool crcOk(const char *data, qsizetype size);

void appendWord(QByteArray &out, quint16 word);
quint16 wordAt(const QByteArray &in, qsizetype pos);

// n as exactly `width` ASCII digits (the value is taken modulo 10^width).
QByteArray decimal(int value, int width);
// Reads `width` ASCII digits at pos; false when any is not a digit.
bool readDecimal(const QByteArray &in, qsizetype pos, int width, int *value);

} // namespace wire
