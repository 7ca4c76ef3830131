#include "mdlModbusRTU.h"

namespace modbus {

quint16 modbus_crc(const QByteArray &bytes)
{
    quint16 crc = 0xFFFF;
    for (char c : bytes) {
        crc ^= quint8(c);
        for (int i = 0; i < 8; ++i) {
            const bool bit = crc & 1;
            crc >>= 1;
            if (bit)
                crc ^= 0xA001;
        }
    }
    return crc;
}

QByteArray with_crc(const QByteArray &frame)
{
    const quint16 crc = modbus_crc(frame);
    QByteArray f = frame;
    f += char(crc & 0xFF);
    f += char(crc >> 8);
    return f;
}

bool crc_ok(const QByteArray &frame)
{
    if (frame.size() < 3)
        return false;
    const quint16 crc = modbus_crc(frame.left(frame.size() - 2));
    return quint8(frame[frame.size() - 2]) == (crc & 0xFF) && quint8(frame[frame.size() - 1]) == (crc >> 8);
}

static void put16(QByteArray &f, int v)
{
    f += char((v >> 8) & 0xFF);
    f += char(v & 0xFF);
}

QByteArray modbus_read(int address, int start, int count)
{
    QByteArray f;
    f += char(address & 0xFF);
    f += char(3);
    put16(f, start);
    put16(f, count);
    return with_crc(f);
}

QByteArray modbus_write(int address, int start, int count, const QByteArray &data)
{
    QByteArray f;
    f += char(address & 0xFF);
    f += char(16);
    put16(f, start);
    put16(f, count);
    f += char((2 * count) & 0xFF);
    QByteArray d = data.left(2 * count);
    if (d.size() < 2 * count)
        d.append(2 * count - d.size(), '\0');
    f += d;
    return with_crc(f);
}

QByteArray modbus_read_record(int address, int file, int record, int length)
{
    QByteArray f;
    f += char(address & 0xFF);
    f += char(20);
    f += char(7);
    f += char(6);
    put16(f, file);
    put16(f, record);
    put16(f, length);
    return with_crc(f);
}

QByteArray modbus_write_record(int address, int file, int record, int length, const QByteArray &data)
{
    QByteArray f;
    f += char(address & 0xFF);
    f += char(21);
    f += char(65);
    f += char(6);
    put16(f, file);
    put16(f, record);
    put16(f, length);
    QByteArray d = data.left(2 * length);
    if (d.size() < 2 * length)
        d.append(2 * length - d.size(), '\0');
    f += d;
    return with_crc(f);
}

} // namespace modbus
