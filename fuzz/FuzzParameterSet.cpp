#include "FuzzParameterSet.h"
#include "ControllerImage.h"
#include "ParameterSet.h"
#include <QByteArray>
#include <QList>
#include <cstdlib>
#include <utility>

int fuzzParameterSet(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    static constexpr double firmwares[] = {1.80, 2.09, 2.19, 2.2, 2.31, 2.36, 2.37, 2.38, 2.4, 2.51};
    const double firmware = firmwares[data[0] % std::size(firmwares)];
    paramset::LinkSettings link;
    static const char *bauds[] = {"115200", "57600", "38400", "19200", "9600", "4800"};
    link.baud = QString::fromLatin1(bauds[data[1] % std::size(bauds)]);
    link.parity = QString::fromLatin1((data[1] & 0x08) ? "E" : "N");
    link.dataBits = QStringLiteral("8");
    link.stopBits = QStringLiteral("1");
    link.modbus = data[1] & 0x10;
    link.crc = data[1] & 0x20;

    QList<QByteArray> files =
        QByteArray(reinterpret_cast<const char *>(data + 2), qsizetype(size - 2)).split('\x1e');
    while (files.size() < 4)
        files << QByteArray();
    const auto set = paramset::parseParameterSet(files[0], files[1], files[2], files[3], QStringLiteral("fuzz"));
    if (!set)
        return 0;

    ControllerImage image;
    image.applyFirmware(firmware);
    const paramset::LoadOutcome out = paramset::loadParameterSet(image, *set, link);
    // The machine's row count stays, whatever the set held.
    if (image.sprdUP.rowCount() != out.machineRows || out.fits != (out.setRows == out.machineRows))
        std::abort();
    // What was loaded saves as a set that is taken again, table for table.
    const auto again = paramset::parseParameterSet(image.sprdUP.save(), image.sprdTD.save(), image.sprdPD.save(),
                                                   image.sprdSD.save(), QStringLiteral("again"));
    if (!again)
        std::abort();
    for (const auto &[bytes, table] : {std::pair{again->texts, &image.sprdTD}, std::pair{again->segments, &image.sprdSD}}) {
        TextTable back;
        if (!back.load(bytes) || back.save() != table->save())
            std::abort();
    }
    paramset::rowsThatDiffer(paramset::SentTables::of(image), image, image.patternCount(), firmware);
    return 0;
}
