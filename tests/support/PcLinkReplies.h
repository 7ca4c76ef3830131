#pragma once
// PC Link replies built from the reply table, not from the console's own code.
#include <QByteArray>
#include <QList>

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

