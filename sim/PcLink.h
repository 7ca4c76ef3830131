// PC Link, the controller's own text-headed protocol: framing of requests by
// their lengths, and the controller's replies.
#pragma once

#include <QByteArray>

#include <array>
#include <functional>

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
// A whole parameter block may have the size of any firmware; blockWords (when
// given) tells the size of the addressed machine's block (0: no such machine),
// which is tried first, so that block data that happen to hold ETX CR LF where
// a smaller block would end are still taken whole; the other sizes are tried
// once the line is idle short of that size.
ScanResult scan(const QByteArray &buffer, bool withSum, bool idle = false,
                const std::function<int(int)> &blockWords = {});

// Splits a frame found by scan (without its sum) into its fields.
Request parse(const QByteArray &frame);

// The controller's reply from STX to LF, carrying `replyMachine` as its number.
// A request the controller cannot serve gets a refusal. Writes change the controller.
QByteArray reply(Controller &controller, const Request &request, int replyMachine, bool identityWithoutModel);

// A reply without ",OK,": the controller does not take the request.
QByteArray refusal(int machine, const QByteArray &command);

} // namespace pclink
