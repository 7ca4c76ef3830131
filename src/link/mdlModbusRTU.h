#pragma once
#include <QByteArray>

// Modbus RTU requests. Register numbers go on the wire as they stand:
// 40001 is sent as 0x9C41.
namespace modbus {

quint16 modbus_crc(const QByteArray &bytes);
QByteArray with_crc(const QByteArray &frame); // CRC appended, low byte first
bool crc_ok(const QByteArray &frame);           // over all but the last two bytes

QByteArray modbus_read(int address, int start, int count);                       // function 3
QByteArray modbus_write(int address, int start, int count, const QByteArray &data); // function 16
QByteArray modbus_read_record(int address, int file, int record, int length);    // function 20
QByteArray modbus_write_record(int address, int file, int record, int length, const QByteArray &data); // 21

// Lengths of the replies the requests expect.
inline int readReplyLength(int count) { return 2 * count + 5; }
inline int writeReplyLength() { return 8; }
inline int readRecordReplyLength(int length) { return 2 * length + 7; }
inline int writeRecordReplyLength(int length) { return 2 * length + 12; }

} // namespace modbus
