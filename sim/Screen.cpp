// The controller's display for the screen-capture command: 320 x 240 pixels of
// one byte each (red bits 7-5, green 4-2, blue 1-0), bottom line first.
#include "Controller.h"
#include "Units.h"

#include <QString>

#include <cmath>

namespace {

constexpr quint8 rgb(int r, int g, int b)
{
    return static_cast<quint8>((r & 0xE0) | ((g >> 3) & 0x1C) | (b >> 6));
}

constexpr quint8 Navy = rgb(0, 0, 96);
constexpr quint8 White = rgb(255, 255, 255);
constexpr quint8 Grey = rgb(96, 96, 96);
constexpr quint8 Yellow = rgb(255, 255, 0);
constexpr quint8 Cyan = rgb(0, 255, 255);
constexpr quint8 Green = rgb(0, 224, 0);
constexpr quint8 Red = rgb(255, 0, 0);
constexpr quint8 Orange = rgb(255, 128, 0);

// 5 x 7 glyphs, one byte a line, bit 4 leftmost.
struct Glyph {
    char c;
    quint8 rows[7];
};

constexpr Glyph Font[] = {
    {'0', {0x0E, 0x11, 0x13, 0x15, 0x19, 0x11, 0x0E}}, {'1', {0x04, 0x0C, 0x04, 0x04, 0x04, 0x04, 0x0E}},
    {'2', {0x0E, 0x11, 0x01, 0x02, 0x04, 0x08, 0x1F}}, {'3', {0x1F, 0x02, 0x04, 0x02, 0x01, 0x11, 0x0E}},
    {'4', {0x02, 0x06, 0x0A, 0x12, 0x1F, 0x02, 0x02}}, {'5', {0x1F, 0x10, 0x1E, 0x01, 0x01, 0x11, 0x0E}},
    {'6', {0x06, 0x08, 0x10, 0x1E, 0x11, 0x11, 0x0E}}, {'7', {0x1F, 0x01, 0x02, 0x04, 0x08, 0x08, 0x08}},
    {'8', {0x0E, 0x11, 0x11, 0x0E, 0x11, 0x11, 0x0E}}, {'9', {0x0E, 0x11, 0x11, 0x0F, 0x01, 0x02, 0x0C}},
    {'A', {0x0E, 0x11, 0x11, 0x11, 0x1F, 0x11, 0x11}}, {'B', {0x1E, 0x11, 0x11, 0x1E, 0x11, 0x11, 0x1E}},
    {'C', {0x0E, 0x11, 0x10, 0x10, 0x10, 0x11, 0x0E}}, {'D', {0x1C, 0x12, 0x11, 0x11, 0x11, 0x12, 0x1C}},
    {'E', {0x1F, 0x10, 0x10, 0x1E, 0x10, 0x10, 0x1F}}, {'F', {0x1F, 0x10, 0x10, 0x1E, 0x10, 0x10, 0x10}},
    {'G', {0x0E, 0x11, 0x10, 0x17, 0x11, 0x11, 0x0F}}, {'H', {0x11, 0x11, 0x11, 0x1F, 0x11, 0x11, 0x11}},
    {'I', {0x0E, 0x04, 0x04, 0x04, 0x04, 0x04, 0x0E}}, {'J', {0x07, 0x02, 0x02, 0x02, 0x02, 0x12, 0x0C}},
    {'K', {0x11, 0x12, 0x14, 0x18, 0x14, 0x12, 0x11}}, {'L', {0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x1F}},
    {'M', {0x11, 0x1B, 0x15, 0x15, 0x11, 0x11, 0x11}}, {'N', {0x11, 0x11, 0x19, 0x15, 0x13, 0x11, 0x11}},
    {'O', {0x0E, 0x11, 0x11, 0x11, 0x11, 0x11, 0x0E}}, {'P', {0x1E, 0x11, 0x11, 0x1E, 0x10, 0x10, 0x10}},
    {'Q', {0x0E, 0x11, 0x11, 0x11, 0x15, 0x12, 0x0D}}, {'R', {0x1E, 0x11, 0x11, 0x1E, 0x14, 0x12, 0x11}},
    {'S', {0x0F, 0x10, 0x10, 0x0E, 0x01, 0x01, 0x1E}}, {'T', {0x1F, 0x04, 0x04, 0x04, 0x04, 0x04, 0x04}},
    {'U', {0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x0E}}, {'V', {0x11, 0x11, 0x11, 0x11, 0x11, 0x0A, 0x04}},
    {'W', {0x11, 0x11, 0x11, 0x15, 0x15, 0x15, 0x0A}}, {'X', {0x11, 0x11, 0x0A, 0x04, 0x0A, 0x11, 0x11}},
    {'Y', {0x11, 0x11, 0x11, 0x0A, 0x04, 0x04, 0x04}}, {'Z', {0x1F, 0x01, 0x02, 0x04, 0x08, 0x10, 0x1F}},
    {'.', {0x00, 0x00, 0x00, 0x00, 0x00, 0x0C, 0x0C}}, {'-', {0x00, 0x00, 0x00, 0x1F, 0x00, 0x00, 0x00}},
    {':', {0x00, 0x0C, 0x0C, 0x00, 0x0C, 0x0C, 0x00}}, {'%', {0x18, 0x19, 0x02, 0x04, 0x08, 0x13, 0x03}},
    {'/', {0x00, 0x01, 0x02, 0x04, 0x08, 0x10, 0x00}},
};

const Glyph *glyph(char c)
{
    for (const Glyph &g : Font)
        if (g.c == c)
            return &g;
    return nullptr;  // drawn as a blank
}

class Canvas {
public:
    Canvas() : m_pixels(Controller::ScreenWidth * Controller::ScreenHeight, static_cast<char>(Navy)) {}

    void fill(int x, int y, int w, int h, quint8 colour)
    {
        for (int yy = std::max(0, y); yy < std::min(Controller::ScreenHeight, y + h); ++yy)
            for (int xx = std::max(0, x); xx < std::min(Controller::ScreenWidth, x + w); ++xx)
                m_pixels[yy * Controller::ScreenWidth + xx] = static_cast<char>(colour);
    }

    // Text at (x, y), top left, each font dot `scale` pixels wide.
    void text(int x, int y, const QString &s, int scale, quint8 colour)
    {
        for (const QChar ch : s) {
            if (const Glyph *g = glyph(ch.toUpper().toLatin1()))
                for (int row = 0; row < 7; ++row)
                    for (int col = 0; col < 5; ++col)
                        if (g->rows[row] & (0x10 >> col))
                            fill(x + col * scale, y + row * scale, scale, scale, colour);
            x += 6 * scale;
        }
    }

    void frame(int x, int y, int w, int h, int t, quint8 colour)
    {
        fill(x, y, w, t, colour);
        fill(x, y + h - t, w, t, colour);
        fill(x, y, t, h, colour);
        fill(x + w - t, y, t, h, colour);
    }

    // Lines top to bottom in memory; the picture goes out bottom line first.
    QByteArray bottomUp() const
    {
        QByteArray out;
        out.reserve(m_pixels.size());
        for (int y = Controller::ScreenHeight - 1; y >= 0; --y)
            out.append(m_pixels.constData() + y * Controller::ScreenWidth, Controller::ScreenWidth);
        return out;
    }

private:
    QByteArray m_pixels;
};

QString fixed(double value, int decimals)
{
    return QString::number(value, 'f', decimals);
}

} // namespace

QByteArray Controller::screen() const
{
    using namespace units;
    const int decimals = std::min<int>(m_rrp[14], 2);
    const bool running = m_rrp[0] != 0;
    Canvas c;
    c.frame(0, 0, ScreenWidth, ScreenHeight, 3, White);

    // Title bar: machine and run state.
    c.fill(3, 3, ScreenWidth - 6, 22, Grey);
    c.text(10, 7, QStringLiteral("QM730 NO.%1").arg(m_number, 3, 10, QLatin1Char('0')), 2, White);
    c.text(250, 7, running ? QStringLiteral("RUN") : QStringLiteral("STOP"), 2, running ? Green : Red);
    // A reserved start waiting: its day and time beside the machine.
    if (m_rrp[13]) {
        if (const auto at = reservedStart()) {
            c.text(168, 6, QStringLiteral("RSV ") + at->toString(QStringLiteral("MM-dd")), 1, Yellow);
            c.text(192, 15, at->toString(QStringLiteral("HH:mm")), 1, Yellow);
        }
    }

    // Temperature PV in large digits, humidity PV below it.
    c.text(12, 34, QStringLiteral("TEMP PV"), 1, Yellow);
    const QString tPv = m_rcv[1] == BurnOut ? QStringLiteral("---.-") : fixed(decodeTemp(m_rcv[1]), decimals);
    c.text(12, 46, tPv, 6, Yellow);
    c.text(12 + 36 * static_cast<int>(tPv.size()) + 6, 46, QStringLiteral("C"), 3, Yellow);
    c.text(12, 100, QStringLiteral("HUMI PV"), 1, Cyan);
    const QString hPv = m_rcv[4] == BurnOut ? QStringLiteral("---.-") : fixed(decodeHumi(m_rcv[4]), 1);
    c.text(12, 112, hPv, 4, Cyan);
    c.text(12 + 24 * static_cast<int>(hPv.size()) + 6, 112, QStringLiteral("%"), 3, Cyan);

    // Present SVs.
    c.text(12, 150, QStringLiteral("SV ") + fixed(decodeTemp(m_rcv[0]), decimals) + QStringLiteral("C"), 2, White);
    c.text(180, 150, fixed(decodeHumi(m_rcv[3]), 1) + QStringLiteral("%"), 2, White);

    // Output bars.
    const auto bar = [&](int y, const QString &label, quint16 mv, quint8 colour) {
        c.text(12, y + 2, label, 1, White);
        c.frame(40, y, 260, 12, 1, White);
        c.fill(41, y + 1, static_cast<int>(std::lround(258 * std::min(mv, quint16(10000)) / 10000.0)), 10, colour);
    };
    bar(174, QStringLiteral("T.MV"), m_rcv[2], Orange);
    bar(192, QStringLiteral("H.MV"), m_rcv[5], Cyan);

    // Status line: mode, pattern and segment, clock.
    const QString mode = m_rcv[12] ? QStringLiteral("FIX") : QStringLiteral("PRG %1 SEG %2")
                                                                    .arg(m_rcv[20], 3, 10, QLatin1Char('0'))
                                                                    .arg(m_rcv[21], 2, 10, QLatin1Char('0'));
    c.text(12, 216, mode, 2, White);
    c.text(199, 220, clock().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")), 1, White);
    return c.bottomUp();
}

QByteArray Controller::screenPicture() const
{
    const QByteArray pixels = screen();
    QByteArray out = QStringLiteral("P6\n%1 %2\n255\n").arg(ScreenWidth).arg(ScreenHeight).toLatin1();
    out.reserve(out.size() + 3 * pixels.size());
    // The bytes come bottom line first; the picture goes top line first.
    for (int y = ScreenHeight - 1; y >= 0; --y) {
        for (int x = 0; x < ScreenWidth; ++x) {
            const int b = static_cast<quint8>(pixels[y * ScreenWidth + x]);
            out.append(static_cast<char>((b & 0xE0) + 31));       // red: bits 7-5
            out.append(static_cast<char>((b & 0x1C) * 8 + 31));   // green: bits 4-2
            out.append(static_cast<char>((b & 0x03) * 64 + 63));  // blue: bits 1-0
        }
    }
    return out;
}
