// PC Link, the controller's own text-headed protocol: framing of requests by
// their lengths, and the controller's replies.
#pragma once

#include <QByteArray>

#include <array>

class Controller;

namespace pclink {

struct Request {
    int machine = 0;
    QByteArray command;
    std::array<int, 3> args{};
    int argCount = 0;
    QByteArray data;
};

enum class Scan { NeedMore, Skip, Frame };
struct ScanResult {
    Scan kind;
    qsizetype length = 0;  // bytes to skip, or the frame's length (with the sum in crc mode)
};

// Looks at the start of the buffer: a whole request, bytes that cannot start one,
// or a request still incomplete. Lengths follow the command and its arguments.
ScanResult scan(const QByteArray &buffer, bool withSum);

// Splits a frame found by scan (without its sum) into its fields.
Request parse(const QByteArray &frame);

// The controller's reply from STX to LF, carrying `replyMachine` as its number.
// A request the controller cannot serve gets a refusal. Writes change the controller.
QByteArray reply(Controller &controller, const Request &request, int replyMachine, bool identityWithoutModel);

// A reply without ",OK,": the controller does not take the request.
QByteArray refusal(int machine, const QByteArray &command);

} // namespace pclink
