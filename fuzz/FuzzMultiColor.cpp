#include "FuzzMultiColor.h"
#include "MultiColor.h"
#include <cstdlib>

namespace {
bool inRange(int colour)
{
    return colour >= 0 && colour <= 0xFFFFFF;
}
} // namespace

int fuzzMultiColorCfg(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const MultiColors read = parseMultiColor(bytes);
    if (read.size() > MultiColor::MaxLines)
        std::abort();
    QVector<BlockColours> present;
    for (const std::optional<BlockColours> &entry : read) {
        if (!entry)
            continue;
        if (!inRange(entry->tempBack) || !inRange(entry->tempFore) || !inRange(entry->humiBack)
            || !inRange(entry->humiFore))
            std::abort();
        present.append(*entry);
    }

    // What the board writes back from these colours reads as the same colours.
    const QByteArray written = (multiColorLines(present).join(QStringLiteral("\r\n")) + QStringLiteral("\r\n")).toLatin1();
    const MultiColors again = parseMultiColor(present.isEmpty() ? QByteArray() : written);
    if (again.size() != present.size())
        std::abort();
    for (qsizetype i = 0; i < present.size(); ++i)
        if (!again[i] || *again[i] != present[i])
            std::abort();
    return 0;
}
