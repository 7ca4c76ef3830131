// Modbus RTU as the controller serves it: functions 3, 16, 20 and 21 over its
// register map, exception replies for everything else.
#pragma once

#include <QByteArray>

class Controller;

namespace modbus {

enum class Scan { NeedMore, Skip, BadCrc, Frame };
struct ScanResult {
    Scan kind;
    qsizetype length = 0;  // bytes to skip, or the frame's length with its CRC
};

// Looks at the start of the buffer. Known functions are framed by their lengths;
// any other function only once the line has gone quiet (`idle`), by its CRC.
ScanResult scan(const QByteArray &buffer, bool idle);

// The reply to a request frame (CRC checked, address matched), without CRC,
// carrying `replyAddress`. Writes change the controller.
QByteArray reply(Controller &controller, const QByteArray &frame, quint8 replyAddress);

QByteArray exception(quint8 address, quint8 function, quint8 code);

constexpr quint8 IllegalFunction = 1;
constexpr quint8 IllegalAddress = 2;
constexpr quint8 IllegalValue = 3;
constexpr quint8 DeviceFailure = 4;

} // namespace modbus
