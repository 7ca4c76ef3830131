#pragma once
#include <QByteArray>

// PC Link request frames, without the trailing sum. Numbers are ASCII digits:
// machine numbers three, indices four, always with leading zeros.
namespace pclink {

QByteArray frame_who(int machine);
QByteArray frame_rcv(int machine);
QByteArray frame_rcs(int machine);
QByteArray frame_rrp(int machine, int index);
QByteArray frame_rup(int machine, int index);
QByteArray frame_rtd(int machine, int index);
QByteArray frame_rpd(int machine, int pattern, int index);
QByteArray frame_rsd(int machine, int pattern, int segment, int index);
// Writes take raw data bytes; WTD with index 0 gives an empty array (nothing is sent).
QByteArray frame_wrp(int machine, int index, const QByteArray &data);
QByteArray frame_wup(int machine, int index, const QByteArray &data, double firmwareVersion);
QByteArray frame_wtd(int machine, int index, const QByteArray &data);
QByteArray frame_wpd(int machine, int pattern, int index, const QByteArray &data);
QByteArray frame_wsd(int machine, int pattern, int segment, int index, const QByteArray &data);

// Plain sum of every byte modulo 65536: the "PC Link + crc" sum.
int frame_checksum(const QByteArray &frame);
// The frame with its sum appended, high byte first.
QByteArray with_checksum(const QByteArray &frame);

// Words of the whole UP block for a firmware version: 512, 492, 456 or 392.
int upBlockWords(double firmwareVersion);
// Four ASCII digits of a number: n div 1000, (n mod 1000) div 100, ...
QByteArray digits4(int n);
QByteArray digits3(int n);

} // namespace pclink
