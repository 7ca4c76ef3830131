#pragma once
// A link for machine 1 on an in-memory port, with a temporary program folder,
// and reply builders written from the reply table (not from the console's own code).
#include "CommLink.h"
#include "ConsoleState.h"
#include "FakeCommPort.h"
#include <QMap>
#include <QTemporaryDir>
#include <memory>

inline QByteArray digits(int n, int width)
{
    return QByteArray::number(n).rightJustified(width, '0');
}

inline QByteArray word(int v)
{
    QByteArray b(2, '\0');
    b[0] = char((v >> 8) & 0xFF);
    b[1] = char(v & 0xFF);
    return b;
}

// STX, machine, command, ",OK,", payload, ETX CR LF (and the sum when asked).
inline QByteArray pcReply(int machine, const char *cmd, const QByteArray &payload, bool sum = false)
{
    QByteArray f = "\x02" + digits(machine, 3) + cmd + ",OK," + payload + "\x03\x0D\x0A";
    if (sum) {
        unsigned s = 0;
        for (char c : f)
            s += quint8(c);
        s %= 65536;
        f += char(s >> 8);
        f += char(s & 0xFF);
    }
    return f;
}

inline QByteArray rrpReply(int machine, const QList<int> &rows17, bool sum = false)
{
    QByteArray data;
    for (int i = 0; i < 17; ++i)
        data += word(i < rows17.size() ? rows17[i] : 0);
    return pcReply(machine, "RRP", "0000," + data, sum);
}

// The 45 data bytes of RCV from 27 row values (single-byte rows as bytes).
inline QByteArray rcvData(const QList<int> &rows)
{
    static const bool isByte[27] = {false, false, false, false, false, false, false, false, false,
                                    false, false, false, true,  false, true,  true,  false, true,
                                    false, true,  false, true,  false, false, true,  true,  true};
    QByteArray d;
    for (int r = 0; r < 27; ++r) {
        const int v = r < rows.size() ? rows[r] : 0;
        if (isByte[r])
            d += char(v & 0xFF);
        else
            d += word(v);
    }
    return d;
}

inline QByteArray rcvReply(int machine, const QList<int> &rows, bool sum = false)
{
    return pcReply(machine, "RCV", rcvData(rows), sum);
}

inline QByteArray rupReply(int machine, int words)
{
    QByteArray data;
    for (int i = 0; i < words; ++i)
        data += word(i + 1);
    return pcReply(machine, "RUP", "0000," + data);
}

struct LinkHarness {
    QTemporaryDir dir;
    std::unique_ptr<ConsoleState> state;
    FakeCommPort port;
    std::unique_ptr<CommLink> link;
    QTimer refresh;

    LinkHarness()
    {
        state = std::make_unique<ConsoleState>(dir.path());
        state->setMachines({{1}});
        refresh.setSingleShot(true);
        state->MainRefreshTimer = &refresh;
        state->ActiveRefreshTimer = &refresh;
        link = std::make_unique<CommLink>(*state, port);
        link->setReplyTimeoutFromBaud();
    }

    // Opens the port and lets the scan start.
    bool open() { return link->openLink(); }
};

// A line of PC Link controllers for the fake port: answers WHO, RRP, RCV, RUP
// and write acknowledges for the machines it holds; others stay silent.
struct FakeLine {
    QMap<int, QString> firmware;          // machine -> version text
    QMap<int, QList<int>> rrp;            // machine -> rows
    QByteArrayList seen;

    QByteArray answer(const QByteArray &frame)
    {
        seen << frame;
        if (frame.size() < 10 || frame[0] != '\x02')
            return {};
        const int m = frame.mid(1, 3).toInt();
        const QByteArray cmd = frame.mid(4, 3);
        if (!firmware.contains(m))
            return {};
        const double fw = firmware[m].toDouble();
        if (cmd == "WHO")
            return pcReply(m, "WHO", "QM730 TH F/W V" + firmware[m].toLatin1());
        if (cmd == "RRP")
            return rrpReply(m, rrp.value(m));
        if (cmd == "RCV")
            return rcvReply(m, {});
        if (cmd == "RUP") {
            const int words = fw >= 2.2 ? 512 : fw >= 2.09 ? 492 : fw >= 1.81 ? 456 : 392;
            return pcReply(m, "RUP", "0000," + QByteArray(2 * words, '\x01'));
        }
        if (cmd == "WRP" || cmd == "WUP" || cmd == "WTD")
            return pcReply(m, cmd.constData(), frame.mid(8, 4));
        return {};
    }
};
