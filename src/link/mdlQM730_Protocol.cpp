#include "mdlQM730_Protocol.h"
#include "ControllerImage.h"

namespace pclink {

static constexpr char STX = 0x02, ETX = 0x03, CR = 0x0D, LF = 0x0A;

QByteArray digits4(int n)
{
    QByteArray d(4, '0');
    d[0] = char('0' + n / 1000);
    d[1] = char('0' + (n % 1000) / 100);
    d[2] = char('0' + (n % 100) / 10);
    d[3] = char('0' + n % 10);
    return d;
}

QByteArray digits3(int n)
{
    return digits4(n).mid(1);
}

int upBlockWords(double v)
{
    return ControllerImage::upRowsFor(v);
}

// STX, machine, command, then each argument after a ",", then "," and data if
// any, then ETX CR LF.
static QByteArray build(int machine, const char *cmd, std::initializer_list<int> args,
                        const QByteArray *data = nullptr)
{
    QByteArray f;
    f.reserve(32 + (data ? data->size() : 0));
    f += STX;
    f += digits3(machine);
    f += cmd;
    for (int a : args) {
        f += ',';
        f += digits4(a);
    }
    if (data) {
        f += ',';
        f += *data;
    }
    f += ETX;
    f += CR;
    f += LF;
    return f;
}

// Data cut or padded with zero bytes to an exact size.
static QByteArray sized(const QByteArray &data, int size)
{
    QByteArray d = data.left(size);
    if (d.size() < size)
        d.append(size - d.size(), '\0');
    return d;
}

QByteArray frame_who(int m) { return build(m, "WHO", {}); }
QByteArray frame_rcv(int m) { return build(m, "RCV", {}); }
QByteArray frame_rcs(int m) { return build(m, "RCS", {}); }
QByteArray frame_rrp(int m, int i) { return build(m, "RRP", {i}); }
QByteArray frame_rup(int m, int i) { return build(m, "RUP", {i}); }
QByteArray frame_rtd(int m, int i) { return build(m, "RTD", {i}); }
QByteArray frame_rpd(int m, int p, int i) { return build(m, "RPD", {p, i}); }
QByteArray frame_rsd(int m, int p, int s, int i) { return build(m, "RSD", {p, s, i}); }

QByteArray frame_wrp(int m, int i, const QByteArray &data)
{
    const QByteArray d = sized(data, i > 0 ? 2 : 34);
    return build(m, "WRP", {i}, &d);
}

QByteArray frame_wup(int m, int i, const QByteArray &data, double fw)
{
    const QByteArray d = sized(data, i > 0 ? 2 : 2 * upBlockWords(fw));
    return build(m, "WUP", {i}, &d);
}

QByteArray frame_wtd(int m, int i, const QByteArray &data)
{
    if (i == 0)
        return {};
    const QByteArray d = sized(data, 29);
    return build(m, "WTD", {i}, &d);
}

QByteArray frame_wpd(int m, int p, int i, const QByteArray &data)
{
    const QByteArray d = sized(data, i > 0 ? 2 : 162);
    return build(m, "WPD", {p, i}, &d);
}

QByteArray frame_wsd(int m, int p, int s, int i, const QByteArray &data)
{
    const QByteArray d = sized(data, i > 0 ? 2 : 58);
    return build(m, "WSD", {p, s, i}, &d);
}

int frame_checksum(const QByteArray &frame)
{
    unsigned sum = 0;
    for (char c : frame)
        sum += quint8(c);
    return int(sum % 65536u);
}

QByteArray with_checksum(const QByteArray &frame)
{
    const int sum = frame_checksum(frame);
    QByteArray f = frame;
    f += char((sum >> 8) & 0xFF);
    f += char(sum & 0xFF);
    return f;
}

} // namespace pclink
