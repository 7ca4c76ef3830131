#include "MultiColor.h"
#include "Files.h"
#include <QFile>

namespace {
// More than any list of 999 machines can need: a larger file is damaged, and
// only its beginning is looked at.
constexpr qint64 MaxBytes = 256 * 1024;

int colourValue(const QString &field)
{
    return std::clamp(leadingInt(field), 0, 0xFFFFFF);
}
} // namespace

MultiColors readMultiColor(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    const QString text = decodeSettingsText(f.read(MaxBytes));
    MultiColors out;
    for (QStringView line : QStringView(text).split(u'\n')) {
        if (out.size() >= MultiColor::MaxLines)
            break;
        if (line.endsWith(u'\r'))
            line.chop(1);
        const QStringList fields = line.toString().split(u',');
        if (fields.size() < 4) {
            out.append(std::nullopt);
            continue;
        }
        out.append(BlockColours{colourValue(fields[0]), colourValue(fields[1]), colourValue(fields[2]),
                                colourValue(fields[3])});
    }
    // The line break after the last line makes no entry.
    if (!out.isEmpty() && !out.last() && (text.endsWith(u'\n') || text.isEmpty()))
        out.removeLast();
    return out;
}

bool writeMultiColor(const QString &path, const QVector<BlockColours> &blocks)
{
    QStringList lines;
    for (const BlockColours &b : blocks)
        lines << QStringLiteral("%1,%2,%3,%4").arg(b.tempBack).arg(b.tempFore).arg(b.humiBack).arg(b.humiFore);
    return writeTextLinesAtomic(path, lines);
}
