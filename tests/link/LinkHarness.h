#pragma once
// A link for machine 1 on an in-memory port, with a temporary program folder,
// and fake lines that answer from the reply tables (not from the console's own code).
#include "CommLink.h"
#include "ConsoleState.h"
#include "FakeCommPort.h"
#include "PcLinkReplies.h"
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <memory>

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

// The lines of a service log after their time stamps; a line without its
// stamp, or a last line without its line end, comes back marked.
inline QByteArrayList unstamped(const QString &path)
{
    static const QRegularExpression stamp(QStringLiteral("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d,"));
    QFile f(path);
    const QByteArray bytes = f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    QByteArrayList out;
    for (const QByteArray &line : bytes.split('\n'))
        if (!line.isEmpty())
            out << (stamp.match(QString::fromLatin1(line.left(20))).hasMatch() ? line.mid(20) : "unstamped " + line);
    if (!bytes.isEmpty() && !bytes.endsWith('\n'))
        out << "unterminated";
    return out;
}

// A line of PC Link controllers for the fake port: answers WHO, RRP, RCV, RUP
// and write acknowledges for the machines it holds; others stay silent.
struct FakeLine {
    QMap<int, QString> firmware;          // machine -> version text
    QMap<int, QList<int>> rrp;            // machine -> rows
    QMap<int, QByteArray> texts;          // text row -> its 29 bytes (all machines)
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
        if (cmd == "RTD") {
            const int row = frame.mid(8, 4).toInt();
            return pcReply(m, "RTD", digits(row, 4) + "," + texts.value(row).leftJustified(29, '\0', true));
        }
        if (cmd == "WTD")
            texts[frame.mid(8, 4).toInt()] = frame.mid(13, 29);
        if (cmd == "WRP" || cmd == "WUP" || cmd == "WTD")
            return pcReply(m, cmd.constData(), frame.mid(8, 4));
        return {};
    }
};

// CRC-16 of the Modbus standard: from 0xFFFF, each byte into the low byte,
// eight shifts, 0xA001 after a one shifted out; low byte first on the wire.
inline QByteArray withModbusCrc(QByteArray frame)
{
    quint16 crc = 0xFFFF;
    for (char c : frame) {
        crc ^= quint8(c);
        for (int i = 0; i < 8; ++i)
            crc = (crc & 1) ? quint16((crc >> 1) ^ 0xA001) : quint16(crc >> 1);
    }
    frame += char(crc & 0xFF);
    frame += char(crc >> 8);
    return frame;
}

// A Modbus RTU line of the machines listed: reads (function 3) answer the
// registers held (0 where nothing is held), writes (function 16) keep them.
struct FakeModbusLine {
    QList<int> machines;
    QMap<int, int> registers;
    QByteArrayList seen;

    QByteArray answer(const QByteArray &frame)
    {
        seen << frame;
        if (frame.size() < 8 || !machines.contains(quint8(frame[0])))
            return {};
        const int start = quint8(frame[2]) * 256 + quint8(frame[3]);
        const int count = quint8(frame[4]) * 256 + quint8(frame[5]);
        if (frame[1] == 3) {
            QByteArray data;
            for (int r = start; r < start + count; ++r)
                data += word(registers.value(r));
            return withModbusCrc(frame.left(2) + char(2 * count) + data);
        }
        if (frame[1] == 16) {
            for (int i = 0; i < count; ++i)
                registers[start + i] = quint8(frame[7 + 2 * i]) * 256 + quint8(frame[8 + 2 * i]);
            return withModbusCrc(frame.left(6));
        }
        return {};
    }
    // Text bytes into the registers from `first` on, two bytes a register.
    void putText(int first, const QByteArray &bytes)
    {
        for (int i = 0; i + 1 < bytes.size(); i += 2)
            registers[first + i / 2] = quint8(bytes[i]) * 256 + quint8(bytes[i + 1]);
    }
};
