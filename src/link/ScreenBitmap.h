#pragma once
#include <QByteArray>
#include <QString>

// The controller's screen: 320 x 240 pixels, one byte each in 3-3-2 colour
// (red in bits 7-5, green 4-2, blue 1-0), bottom line first as a bitmap has it.
namespace screenbitmap {
constexpr int Width = 320;
constexpr int Height = 240;
constexpr int PixelBytes = Width * Height;

// A 24-bit Windows bitmap of the pixels (230454 bytes).
QByteArray toBitmap(const QByteArray &pixels);
// Writes the bitmap in place of an old file of the name; false when it
// cannot be written (the old file then stays).
bool writeBitmap(const QString &path, const QByteArray &pixels);
} // namespace screenbitmap
