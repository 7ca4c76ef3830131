#include "MultiColor.h"
#include "Files.h"
#include <QFile>

namespace {
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
    return parseMultiColor(f.read(MultiColor::MaxBytes));
}

MultiColors parseMultiColor(const QByteArray &bytes)
{
    const QString text = decodeSettingsText(bytes.left(MultiColor::MaxBytes));
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

QStringList multiColorLines(const QVector<BlockColours> &blocks)
{
    QStringList lines;
    for (const BlockColours &b : blocks)
        lines << QStringLiteral("%1,%2,%3,%4").arg(b.tempBack).arg(b.tempFore).arg(b.humiBack).arg(b.humiFore);
    return lines;
}

bool writeMultiColor(const QString &path, const QVector<BlockColours> &blocks)
{
    return writeTextLinesAtomic(path, multiColorLines(blocks));
}
