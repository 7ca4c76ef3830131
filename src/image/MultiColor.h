#pragma once
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>
#include <optional>

// The colours of the status board, CFG/MultiColor.CFG: one line per slot,
// "temperature background,temperature text,humidity background,humidity text"
// as Windows colour values (0x00BBGGRR).
struct BlockColours {
    int tempBack = 0;
    int tempFore = 0;
    int humiBack = 0;
    int humiFore = 0;
    bool operator==(const BlockColours &) const = default;
};

// One entry per line of the file, in slot order; a line that does not hold
// four numbers is an empty entry, so that its slot keeps the default colours
// and the lines after it keep their slots.
using MultiColors = QVector<std::optional<BlockColours>>;

// Reads the file. A missing or unreadable file gives no entries; only its
// first MaxBytes bytes are looked at.
MultiColors readMultiColor(const QString &path);
// The entries of the file's bytes. Numbers are read leniently (leading
// number, else 0) and kept within 0 to 0xFFFFFF; at most MaxLines lines are
// taken.
MultiColors parseMultiColor(const QByteArray &bytes);
// The file's lines for the blocks, and the file written whole from them.
QStringList multiColorLines(const QVector<BlockColours> &blocks);
bool writeMultiColor(const QString &path, const QVector<BlockColours> &blocks);

namespace MultiColor {
constexpr int MaxLines = 999;
// More than any list of 999 machines can need: a larger file is damaged.
constexpr qint64 MaxBytes = 256 * 1024;
} // namespace MultiColor
