#include "ParameterSet.h"
#include "ControllerImage.h"
#include "Dictionary.h"
#include "Files.h"
#include "TextTable.h"
#include <QFile>
#include <algorithm>
#include <cmath>

namespace paramset {

namespace {

const char *extensionOf(SetFile file)
{
    switch (file) {
    case SetFile::Parameters: return ".UUP";
    case SetFile::Texts: return ".UTD";
    case SetFile::Patterns: return ".UPD";
    case SetFile::Segments: return ".USD";
    }
    return "";
}

// Whether a cell of a table of words holds one: a whole number (or the
// scaled decimal an editor may leave) within a 16-bit word, signed or not.
bool isWordText(const QString &text)
{
    bool ok = false;
    const double v = text.toDouble(&ok);
    return ok && std::isfinite(v) && v >= -32768 && v <= 65535;
}

// One file of the set checked to be the table it must hold: a whole table
// image, the column count always, the row count where the table has a fixed
// one, and words in every data cell of a table of words (the corner cell of
// the block is the firmware version).
bool checkTable(const QString &name, const QByteArray &bytes, int cols, int rows, bool words, int *rowsRead,
                QString *error)
{
    TextTable table;
    int c = 0, r = 0;
    if (!TextTable::imageShape(bytes, &c, &r) || !table.load(bytes)) {
        *error = name + QStringLiteral(": not a table image, or cut short");
        return false;
    }
    if (c != cols || (rows > 0 && r != rows)) {
        *error = name + QStringLiteral(": a table of %1 x %2, not the one this file holds").arg(c).arg(r);
        return false;
    }
    if (words) {
        for (int row = 1; row <= r; ++row)
            for (int col = 1; col <= c; ++col)
                if (!table.isEmpty(col, row) && !isWordText(table.text(col, row))) {
                    *error = name + QStringLiteral(": row %1, column %2 holds \"%3\", not a number")
                                        .arg(row)
                                        .arg(col)
                                        .arg(table.text(col, row).left(40));
                    return false;
                }
    }
    *rowsRead = r;
    return true;
}

bool readFile(const QString &path, QByteArray *bytes, QString *error)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        *error = path + QStringLiteral(": ") + f.errorString();
        return false;
    }
    *bytes = f.readAll();
    if (f.error() != QFileDevice::NoError) {
        *error = path + QStringLiteral(": ") + f.errorString();
        return false;
    }
    return true;
}

// A cell's whole number as the unsigned decimal text of its 16-bit word.
void setWord(TextTable &t, int row, qint64 value)
{
    t.setNumber(1, row, value & 0xFFFF);
}

QString baudCode(const QString &baud)
{
    static const QList<QPair<QString, QString>> codes = {
        {QStringLiteral("115200"), QStringLiteral("8")}, {QStringLiteral("57600"), QStringLiteral("7")},
        {QStringLiteral("38400"), QStringLiteral("6")},  {QStringLiteral("19200"), QStringLiteral("5")},
        {QStringLiteral("9600"), QStringLiteral("4")},
    };
    for (const auto &[text, code] : codes)
        if (text == baud)
            return code;
    return {};
}

QString parityCode(const QString &parity)
{
    if (parity == QLatin1String("N"))
        return QStringLiteral("0");
    if (parity == QLatin1String("O"))
        return QStringLiteral("1");
    if (parity == QLatin1String("E"))
        return QStringLiteral("2");
    return {};
}

} // namespace

QString setFilePath(const QString &base, SetFile file)
{
    return base + QLatin1String(extensionOf(file));
}

QString setDisplayName(const QString &base)
{
    return base + QStringLiteral(".Uxx");
}

SaveName saveNameOf(const QString &chosen)
{
    if (chosen.endsWith(QLatin1String(".UUP")))
        return {chosen.left(chosen.size() - 4), true};
    return {chosen, false};
}

QString baseOfMaster(const QString &chosen)
{
    return chosen.left(std::max<qsizetype>(0, chosen.size() - 4));
}

bool saveParameterSet(ControllerImage &image, double firmwareVersion, const QString &base, QString *error)
{
    image.sprdUP.setText(0, 0, QString::number(firmwareVersion));
    return writeFilesAtomic({{setFilePath(base, SetFile::Parameters), image.sprdUP.save()},
                             {setFilePath(base, SetFile::Texts), image.sprdTD.save()},
                             {setFilePath(base, SetFile::Patterns), image.sprdPD.save()},
                             {setFilePath(base, SetFile::Segments), image.sprdSD.save()}},
                            error);
}

std::optional<ParameterSet> parseParameterSet(const QByteArray &parameters, const QByteArray &texts,
                                              const QByteArray &patterns, const QByteArray &segments,
                                              const QString &base, QString *error)
{
    ParameterSet set{parameters, texts, patterns, segments};
    QString why;
    int rows = 0;
    const bool ok =
        checkTable(setFilePath(base, SetFile::Parameters), parameters, 1, 0, true, &set.parameterRows, &why)
        && checkTable(setFilePath(base, SetFile::Texts), texts, 1, ControllerImage::TextRows, false, &rows, &why)
        && checkTable(setFilePath(base, SetFile::Patterns), patterns, ControllerImage::PatternWords,
                      ControllerImage::MaxPatterns, true, &rows, &why)
        && checkTable(setFilePath(base, SetFile::Segments), segments,
                      ControllerImage::SegmentWords * ControllerImage::MaxSegments, ControllerImage::MaxPatterns, true,
                      &rows, &why);
    if (!ok) {
        if (error)
            *error = why;
        return std::nullopt;
    }
    TextTable up;
    up.load(set.parameters);
    set.fileVersion = leadingNumber(up.text(0, 0));
    return set;
}

std::optional<ParameterSet> readParameterSet(const QString &base, QString *error)
{
    QByteArray files[4];
    QString why;
    for (SetFile f : {SetFile::Parameters, SetFile::Texts, SetFile::Patterns, SetFile::Segments}) {
        if (!readFile(setFilePath(base, f), &files[int(f)], &why)) {
            if (error)
                *error = why;
            return std::nullopt;
        }
    }
    return parseParameterSet(files[0], files[1], files[2], files[3], base, error);
}

void writeLinkRows(TextTable &up, double machineVersion, const LinkSettings &link)
{
    const bool current = IsCurrentLayout(machineVersion);
    QString protocol;
    if (link.modbus)
        protocol = current ? QStringLiteral("2") : QString();
    else
        protocol = link.crc ? QStringLiteral("1") : QStringLiteral("0");
    const QList<QPair<Param, QString>> settings = {
        {Param::cmbProtocol, protocol},       {Param::cmbBaud, baudCode(link.baud)},
        {Param::cmbParity, parityCode(link.parity)}, {Param::cmbStop, link.stopBits},
        {Param::cmbData, link.dataBits},
    };
    for (int port = 1; port <= 2; ++port) {
        for (const auto &[param, text] : settings) {
            const int row = RowOf(param, port, machineVersion);
            if (!text.isEmpty() && row >= 1 && row <= up.rowCount())
                up.setText(1, row, text);
        }
    }
}

Conversion conversionFor(double fileVersion, double machineVersion)
{
    if (!IsCurrentLayout(machineVersion))
        return Conversion::None;
    if (fileVersion < 2.37 && machineVersion >= 2.37)
        return Conversion::DigitalInputActions;
    if (fileVersion < 2.4 && machineVersion >= 2.4)
        return Conversion::DigitalOutputValues;
    return Conversion::None;
}

Conversion convertParameterBlock(TextTable &up, double fileVersion, double machineVersion)
{
    const Conversion conversion = conversionFor(fileVersion, machineVersion);
    auto convert = [&](int row, auto &&f) {
        if (row >= 1 && row <= up.rowCount() && !up.isEmpty(1, row))
            setWord(up, row, f(up.number(1, row)));
    };
    switch (conversion) {
    case Conversion::DigitalInputActions:
        for (int line = 1; line <= 8; ++line)
            convert(RowOf(Param::sprdDI, line, machineVersion),
                    [](qint64 v) { return v >= 256 ? (v & 255) + 256 : v; });
        break;
    case Conversion::DigitalOutputValues:
        convert(RowOf(Param::sprdDO2_Value, 41, machineVersion), [](qint64 v) { return v - 3000; }); // Temp.UP
        convert(RowOf(Param::sprdDO2_Value, 44, machineVersion), [](qint64 v) { return v - 1000; }); // Humi.UP
        break;
    case Conversion::None:
        break;
    }
    return conversion;
}

LoadOutcome loadParameterSet(ControllerImage &image, const ParameterSet &set, const LinkSettings &link)
{
    LoadOutcome out;
    out.machineRows = image.sprdUP.rowCount();
    const double machine = image.firmwareVersion();
    // Loading replaces every cell of each table (readParameterSet has checked
    // that each image loads).
    image.sprdUP.load(set.parameters);
    image.sprdTD.load(set.texts);
    image.sprdPD.load(set.patterns);
    image.sprdSD.load(set.segments);
    writeLinkRows(image.sprdUP, machine, link);
    out.conversion = convertParameterBlock(image.sprdUP, set.fileVersion, machine);
    out.setRows = image.sprdUP.rowCount();
    out.fits = out.setRows == out.machineRows;
    if (!out.fits)
        image.sprdUP.setRowCount(out.machineRows);
    return out;
}

SentTables SentTables::of(const ControllerImage &image)
{
    return {image.sprdUP, image.sprdTD, image.sprdPD, image.sprdSD};
}

namespace {
// The cells of one row in columns first..last, as one text for a report.
QString rowText(const TextTable &t, int row, int first, int last)
{
    QStringList cells;
    for (int c = first; c <= last; ++c)
        cells << t.text(c, row);
    return cells.join(u' ');
}
} // namespace

QStringList rowsThatDiffer(const SentTables &sent, const ControllerImage &read, int patternCount, double firmware)
{
    QStringList out;
    auto compare = [&out](const QString &what, const TextTable &a, const TextTable &b, int row, int first, int last) {
        for (int c = first; c <= last; ++c) {
            if (a.text(c, row) != b.text(c, row)) {
                out << QStringLiteral("%1: sent %2, read %3")
                           .arg(what, rowText(a, row, first, last), rowText(b, row, first, last));
                return;
            }
        }
    };
    QList<int> clockRows;
    for (int i = 1; i <= 6; ++i)
        clockRows << RowOf(Param::sprdDT, i, firmware);
    for (int row = 1; row <= sent.up.rowCount(); ++row)
        if (!clockRows.contains(row))
            compare(QStringLiteral("parameter row %1").arg(row), sent.up, read.sprdUP, row, 1, 1);
    for (int row = 1; row <= std::min(patternCount + 11, sent.td.rowCount()); ++row)
        compare(QStringLiteral("text row %1").arg(row), sent.td, read.sprdTD, row, 1, 1);
    for (int p = 1; p <= std::min(patternCount, sent.pd.rowCount()); ++p) {
        compare(QStringLiteral("pattern %1").arg(p), sent.pd, read.sprdPD, p, 1, sent.pd.colCount());
        const int segments = int(std::clamp<qint64>(sent.pd.number(1, p), 0, ControllerImage::MaxSegments));
        for (int seg = 1; seg <= segments; ++seg) {
            const int first = (seg - 1) * ControllerImage::SegmentWords + 1;
            compare(QStringLiteral("pattern %1 segment %2").arg(p).arg(seg), sent.sd, read.sprdSD, p, first,
                    first + ControllerImage::SegmentWords - 1);
        }
    }
    return out;
}

} // namespace paramset
