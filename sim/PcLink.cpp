#include "PcLink.h"
#include "Controller.h"
#include "Wire.h"

#include <QVector>

#include <functional>

using namespace wire;

namespace pclink {

namespace {

enum class Data { None, RunBlock, ParamBlock, Text, Pattern, Segment };

struct Command {
    const char *name;
    int args;
    Data data;
};

constexpr Command Commands[] = {
    {"WHO", 0, Data::None},       {"RCV", 0, Data::None},     {"RCS", 0, Data::None},
    {"RRP", 1, Data::None},       {"RUP", 1, Data::None},     {"RTD", 1, Data::None},
    {"RPD", 2, Data::None},       {"RSD", 3, Data::None},     {"WRP", 1, Data::RunBlock},
    {"WUP", 1, Data::ParamBlock}, {"WTD", 1, Data::Text},     {"WPD", 2, Data::Pattern},
    {"WSD", 3, Data::Segment},
};

// Bytes of each live-status row in the RCV reply.
constexpr int RcvSizes[Controller::RcvRows] = {2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 1, 2,
                                               1, 1, 2, 1, 2, 1, 2, 1, 2, 2, 1, 1, 1};

// Parameter blocks of every firmware, in words.
constexpr int ParamBlockWords[] = {392, 456, 492, 512};

const Command *findCommand(const QByteArray &buffer)
{
    for (const Command &c : Commands)
        if (buffer.mid(4, 3) == c.name)
            return &c;
    return nullptr;
}

// Possible data lengths, given the last argument (0 asks for a whole block).
QVector<int> dataLengths(Data data, int lastArg)
{
    switch (data) {
    case Data::None: return {};
    case Data::RunBlock: return {lastArg ? 2 : 2 * Controller::RrpRows};
    case Data::ParamBlock:
        if (lastArg)
            return {2};
        return {2 * ParamBlockWords[0], 2 * ParamBlockWords[1], 2 * ParamBlockWords[2], 2 * ParamBlockWords[3]};
    case Data::Text: return {29};
    case Data::Pattern: return {lastArg ? 2 : 2 * Controller::PatternWords};
    case Data::Segment: return {lastArg ? 2 : 2 * Controller::SegmentWords};
    }
    return {};
}

bool terminated(const QByteArray &b, qsizetype length)
{
    return b.at(length - 3) == ETX && b.at(length - 2) == CR && b.at(length - 1) == LF;
}

bool sumMatches(const QByteArray &b, qsizetype length)
{
    return wordAt(b, length) == byteSum(b.constData(), length);
}

QByteArray header(int machine, const QByteArray &command)
{
    return QByteArray(1, STX) + decimal(machine, 3) + command + ",OK,";
}

QByteArray terminate(QByteArray frame)
{
    frame.append(ETX);
    frame.append(CR);
    frame.append(LF);
    return frame;
}

QByteArray words(int count, const std::function<quint16(int)> &at)
{
    QByteArray out;
    for (int i = 1; i <= count; ++i)
        appendWord(out, at(i));
    return out;
}

} // namespace

ScanResult scan(const QByteArray &b, bool withSum, bool idle, const std::function<int(int)> &blockWords)
{
    if (b.isEmpty())
        return {Scan::NeedMore};
    if (b.at(0) != STX) {
        const qsizetype next = b.indexOf(STX);
        return {Scan::Skip, next < 0 ? b.size() : next};
    }
    if (b.size() < 7)
        return {Scan::NeedMore};
    int machine = 0;
    const Command *command = findCommand(b);
    if (!readDecimal(b, 1, 3, &machine) || !command)
        return {Scan::Skip, 1};

    const qsizetype head = 7 + 5 * command->args;
    if (b.size() < head)
        return {Scan::NeedMore};
    int lastArg = 0;
    for (int i = 0; i < command->args; ++i)
        if (b.at(7 + 5 * i) != ',' || !readDecimal(b, 8 + 5 * i, 4, &lastArg))
            return {Scan::Skip, 1};

    const qsizetype sum = withSum ? 2 : 0;
    if (command->data == Data::None) {
        const qsizetype length = head + 3;
        if (b.size() < length + sum)
            return {Scan::NeedMore};
        return terminated(b, length) ? ScanResult{Scan::Frame, length + sum} : ScanResult{Scan::Skip, 1};
    }
    if (b.size() < head + 1)
        return {Scan::NeedMore};
    if (b.at(head) != ',')
        return {Scan::Skip, 1};
    // Data are binary: the end is where a permitted length puts ETX, CR, LF.
    // Where several lengths are possible the sum must agree as well.
    QVector<int> lengths = dataLengths(command->data, lastArg);
    // The addressed machine's own block size first; the others only once the
    // line has gone quiet short of it.
    bool ownFirst = false;
    if (command->data == Data::ParamBlock && lastArg == 0 && blockWords) {
        const qsizetype own = lengths.indexOf(2 * blockWords(machine));
        if (own >= 0) {
            lengths.move(own, 0);
            ownFirst = true;
        }
    }
    for (const int n : lengths) {
        const qsizetype length = head + 1 + n + 3;
        if (b.size() < length + sum) {
            if (ownFirst && idle) {
                ownFirst = false;
                continue;
            }
            return {Scan::NeedMore};
        }
        ownFirst = false;
        if (terminated(b, length) && (lengths.size() == 1 || !withSum || sumMatches(b, length)))
            return {Scan::Frame, length + sum};
    }
    return {Scan::Skip, 1};
}

Request parse(const QByteArray &frame)
{
    Request r;
    readDecimal(frame, 1, 3, &r.machine);
    r.command = frame.mid(4, 3);
    const Command *command = findCommand(frame);
    r.argCount = command ? command->args : 0;
    for (int i = 0; i < r.argCount; ++i)
        readDecimal(frame, 8 + 5 * i, 4, &r.args[i]);
    const qsizetype head = 7 + 5 * r.argCount;
    if (command && command->data != Data::None)
        r.data = frame.mid(head + 1, frame.size() - head - 1 - 3);
    return r;
}

QByteArray refusal(int machine, const QByteArray &command)
{
    return terminate(QByteArray(1, STX) + decimal(machine, 3) + command + ",ER,");
}

QByteArray reply(Controller &c, const Request &r, int replyMachine, bool identityWithoutModel)
{
    const QByteArray &cmd = r.command;
    const int a = r.args[0], b = r.args[1], i3 = r.args[2];
    QByteArray out = header(replyMachine, cmd);
    const auto refuse = [&] { return refusal(replyMachine, cmd); };

    if (cmd == "WHO") {
        const QByteArray model = identityWithoutModel ? "TH-730 " : "QM730 TH ";
        return terminate(out + model + "F/W V" + c.firmware().text.toLatin1());
    }
    if (cmd == "RCV") {
        for (int row = 1; row <= Controller::RcvRows; ++row) {
            const quint16 w = *c.rcv(row);
            if (RcvSizes[row - 1] == 2)
                appendWord(out, w);
            else
                out.append(static_cast<char>(w & 0xFF));
        }
        return terminate(out);
    }
    if (cmd == "RCS")
        return terminate(out + c.screen());
    if (cmd == "RRP") {
        if (a == 0)
            return terminate(out + "0000," + words(Controller::RrpRows, [&](int row) { return *c.rrp(row); }));
        if (const auto w = c.rrp(a)) {
            out += decimal(a, 4) + ',';
            appendWord(out, *w);
            return terminate(out);
        }
        return refuse();
    }
    if (cmd == "RUP") {
        if (a == 0)
            return terminate(out + "0000," + words(c.upRows(), [&](int row) { return *c.up(row); }));
        if (const auto w = c.up(a)) {
            out += decimal(a, 4) + ',';
            appendWord(out, *w);
            return terminate(out);
        }
        return refuse();
    }
    if (cmd == "RTD") {
        if (const auto t = c.text(a))
            return terminate(out + decimal(a, 4) + ',' + t->left(29));
        return refuse();
    }
    if (cmd == "RPD") {
        if (!c.patternWord(a, 1))
            return refuse();
        out += decimal(a, 4) + ',' + decimal(b, 4) + ',';
        if (b == 0)
            return terminate(out + words(Controller::PatternWords, [&](int w) { return *c.patternWord(a, w); }));
        if (const auto w = c.patternWord(a, b)) {
            appendWord(out, *w);
            return terminate(out);
        }
        return refuse();
    }
    if (cmd == "RSD") {
        if (!c.segmentWord(a, b, 1))
            return refuse();
        out += decimal(a, 4) + ',' + decimal(b, 4) + ',' + decimal(i3, 4) + ',';
        if (i3 == 0)
            return terminate(out + words(Controller::SegmentWords, [&](int w) { return *c.segmentWord(a, b, w); }));
        if (const auto w = c.segmentWord(a, b, i3)) {
            appendWord(out, *w);
            return terminate(out);
        }
        return refuse();
    }

    // Writes: the acknowledge repeats the arguments.
    const QByteArray &d = r.data;
    if (cmd == "WRP") {
        if (a == 0) {
            // The whole block; the run word last, so that a start sees the rest.
            for (int row = 2; row <= Controller::RrpRows; ++row)
                c.setRrp(row, wordAt(d, 2 * (row - 1)));
            c.setRrp(1, wordAt(d, 0));
        } else if (!c.setRrp(a, wordAt(d, 0))) {
            return refuse();
        }
        return terminate(out + decimal(a, 4));
    }
    if (cmd == "WUP") {
        if (a == 0) {
            if (d.size() != 2 * c.upRows())
                return refuse();  // a block sized for another firmware
            for (int row = 1; row <= c.upRows(); ++row)
                c.setUp(row, wordAt(d, 2 * (row - 1)));
        } else if (!c.setUp(a, wordAt(d, 0))) {
            return refuse();
        }
        return terminate(out + decimal(a, 4));
    }
    if (cmd == "WTD") {
        if (!c.setText(a, 0, d + QByteArray(1, '\0')))
            return refuse();
        return terminate(out + decimal(a, 4));
    }
    if (cmd == "WPD") {
        if (!c.patternWord(a, b == 0 ? 1 : b))
            return refuse();
        if (b == 0)
            for (int w = 1; w <= Controller::PatternWords; ++w)
                c.setPatternWord(a, w, wordAt(d, 2 * (w - 1)));
        else
            c.setPatternWord(a, b, wordAt(d, 0));
        return terminate(out + decimal(a, 4) + ',' + decimal(b, 4));
    }
    if (cmd == "WSD") {
        if (!c.segmentWord(a, b, i3 == 0 ? 1 : i3))
            return refuse();
        if (i3 == 0)
            for (int w = 1; w <= Controller::SegmentWords; ++w)
                c.setSegmentWord(a, b, w, wordAt(d, 2 * (w - 1)));
        else
            c.setSegmentWord(a, b, i3, wordAt(d, 0));
        return terminate(out + decimal(a, 4) + ',' + decimal(b, 4) + ',' + decimal(i3, 4));
    }
    return refuse();
}

} // namespace pclink
