#include "ScreenBitmap.h"
#include "Files.h"

namespace screenbitmap {

static void put32(QByteArray &b, int offset, quint32 v)
{
    for (int i = 0; i < 4; ++i)
        b[offset + i] = char((v >> (8 * i)) & 0xFF);
}

static void put16(QByteArray &b, int offset, quint16 v)
{
    b[offset] = char(v & 0xFF);
    b[offset + 1] = char(v >> 8);
}

QByteArray toBitmap(const QByteArray &pixels)
{
    const int imageSize = PixelBytes * 3;
    QByteArray b(54 + imageSize, '\0');
    b[0] = 'B';
    b[1] = 'M';
    put32(b, 2, 54 + imageSize);
    put32(b, 10, 54);
    put32(b, 14, 40);
    put32(b, 18, Width);
    put32(b, 22, Height);
    put16(b, 26, 1);
    put16(b, 28, 24);
    put32(b, 34, imageSize);
    put32(b, 38, 2835);
    put32(b, 42, 2835);
    char *out = b.data() + 54;
    for (int i = 0; i < PixelBytes; ++i) {
        const int p = i < pixels.size() ? quint8(pixels[i]) : 0;
        *out++ = char((p & 3) * 64 + 63);     // blue
        *out++ = char((p & 28) * 8 + 31);     // green
        *out++ = char((p & 224) + 31);        // red
    }
    return b;
}

bool writeBitmap(const QString &path, const QByteArray &pixels)
{
    // Through a temporary file and a rename: the old file goes only when the
    // new one is whole, so a failed write leaves the last picture.
    return writeFileAtomic(path, toBitmap(pixels));
}

} // namespace screenbitmap
