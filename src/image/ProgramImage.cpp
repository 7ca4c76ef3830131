#include "ProgramImage.h"
#include "ControllerImage.h"
#include "Files.h"
#include "Firmware.h"
#include <QFile>
#include <algorithm>

Encoding programEncoding(ProgramValue kind, double firmwareVersion)
{
    switch (kind) {
    case ProgramValue::SegTempSV:
        return Encoding::T100;
    case ProgramValue::StartTemp:
        return Encoding::TZ;
    case ProgramValue::AlarmSV:
        return Firmware::atLeast(firmwareVersion, Firmware::TenthValues) ? Encoding::AL10 : Encoding::AL100;
    case ProgramValue::SegHumiSV:
    case ProgramValue::WaitBand:
    case ProgramValue::StartHumi:
    case ProgramValue::AlarmHyst:
        return Encoding::X10;
    }
    return Encoding::INT;
}

quint16 programWord(ProgramValue kind, double value, double firmwareVersion)
{
    return wordFromValue(programEncoding(kind, firmwareVersion), value);
}

quint16 programWordFromText(ProgramValue kind, QStringView text, double firmwareVersion)
{
    return wordFromText(programEncoding(kind, firmwareVersion), text);
}

double programValue(ProgramValue kind, qint64 word, double firmwareVersion)
{
    return valueFromWord(programEncoding(kind, firmwareVersion), word);
}

QString programText(ProgramValue kind, qint64 word, double firmwareVersion, bool humidityObject)
{
    const Encoding e = programEncoding(kind, firmwareVersion);
    QAnyStringView pattern = u"0.0";
    if (kind == ProgramValue::SegTempSV || (e == Encoding::AL100 && !humidityObject))
        pattern = u"0.00";
    return formatScaled(word - encodingOffset(e), encodingPow10(e), pattern);
}

qint64 patternWord(const ControllerImage &image, int pattern, int word)
{
    return image.sprdPD.number(word, pattern);
}

qint64 segmentWord(const ControllerImage &image, int pattern, int segment, int word)
{
    return image.sprdSD.number(Sd::column(segment, word), pattern);
}

static bool setCell(TextTable &t, int col, int row, qint64 value)
{
    if (col < 1 || row < 1 || col > t.colCount() || row > t.rowCount())
        return false;
    t.setNumber(col, row, value);
    return true;
}

bool setPatternWord(ControllerImage &image, int pattern, int word, qint64 value)
{
    return setCell(image.sprdPD, word, pattern, value);
}

bool setSegmentWord(ControllerImage &image, int pattern, int segment, int word, qint64 value)
{
    if (segment < 1 || segment > Sd::MaxSegments || word < 1 || word > Sd::Words)
        return false;
    return setCell(image.sprdSD, Sd::column(segment, word), pattern, value);
}

QString patternName(const ControllerImage &image, int pattern)
{
    return image.sprdTD.text(1, patternNameRow(pattern));
}

int NextUnloadedRow(const ControllerImage &image, QAnyStringView kind, int start)
{
    const int count = image.patternCount();
    if (QAnyStringView::equal(kind, u"RPD")) {
        for (int p = std::max(start, 1); p <= count; ++p)
            if (!image.PatternLoaded[size_t(p - 1)])
                return p;
    } else if (QAnyStringView::equal(kind, u"RTD")) {
        for (int r = std::max(start, 12); r <= count + 11; ++r)
            if (!image.PatternNameLoaded[size_t(r - 12)])
                return r;
    }
    return 0;
}

QString programCachePath(const QString &home, int machine, QAnyStringView extension)
{
    return programPath(home, QStringLiteral("\\LastPData_") + QString::number(machine) + u'.' + extension.toString());
}

// A table is taken from its file only whole and only in its own shape, so a
// cut or foreign file never leaves a table half replaced or resized.
static bool loadTable(TextTable &table, const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = f.readAll();
    int cols = -1, rows = -1;
    if (!TextTable::imageShape(bytes, &cols, &rows) || cols != table.colCount() || rows != table.rowCount())
        return false;
    return table.load(bytes);
}

bool LoadProgramCache(ControllerImage &image, const QString &home, int machine, int ptnDataOption)
{
    if (ptnDataOption != 1)
        return false;
    return loadTable(image.sprdPD, programCachePath(home, machine, u"PD"))
        && loadTable(image.sprdSD, programCachePath(home, machine, u"SD"))
        && loadTable(image.sprdTD, programCachePath(home, machine, u"TD"));
}

bool SaveProgramCache(const ControllerImage &image, const QString &home, int machine)
{
    return writeFileAtomic(programCachePath(home, machine, u"PD"), image.sprdPD.save())
        && writeFileAtomic(programCachePath(home, machine, u"SD"), image.sprdSD.save())
        && writeFileAtomic(programCachePath(home, machine, u"TD"), image.sprdTD.save());
}

static QString ptnRecvOptPath(const QString &home)
{
    return programPath(home, QStringLiteral("\\PTN_Recv.OPT"));
}

int readPtnRecvOpt(const QString &home)
{
    const auto lines = readTextLines(ptnRecvOptPath(home));
    return lines && !lines->isEmpty() && leadingInt(lines->first()) == 1 ? 1 : 0;
}

bool writePtnRecvOpt(const QString &home, int index)
{
    if (index != 0 && index != 1)
        return false;
    return writeTextLinesAtomic(ptnRecvOptPath(home), {QString::number(index)});
}

int tdRowBytes(int row, bool modbus)
{
    if (row < 1 || row > ControllerImage::TextRows)
        return 0;
    if (!modbus)
        return 29;
    return row <= 11 ? 30 : 24;
}

QString tdFitText(const QString &text, int width)
{
    qsizetype used = 0;
    qsizetype i = 0;
    while (i < text.size()) {
        // One character at a time; a surrogate pair is one character.
        const qsizetype len = (text[i].isHighSurrogate() && i + 1 < text.size()) ? 2 : 1;
        const qsizetype bytes = toAnsi(text.mid(i, len)).size();
        if (used + bytes > width)
            break;
        used += bytes;
        i += len;
    }
    return text.left(i);
}

QByteArray tdTextToBytes(const QString &text, int width)
{
    if (width <= 0)
        return {};
    QByteArray bytes = toAnsi(tdFitText(text, width));
    bytes.append(width - bytes.size(), '\0');
    return bytes;
}

QByteArray tdRowToBytes(const ControllerImage &image, int row, bool modbus)
{
    return tdTextToBytes(image.sprdTD.text(1, row), tdRowBytes(row, modbus));
}

QString tdBytesToText(QByteArrayView bytes)
{
    qsizetype end = bytes.indexOf('\0');
    if (end < 0)
        end = bytes.size();
    // Walk the characters so that a lead byte cut off from its second byte at
    // the end is recognised and dropped rather than shown as a broken sign.
    qsizetype i = 0;
    while (i < end) {
        const quint8 b = quint8(bytes[i]);
        if (b >= 0x81 && b <= 0xFE) {
            if (i + 1 >= end)
                break;
            i += 2;
        } else {
            ++i;
        }
    }
    return fromAnsi(bytes.first(i).toByteArray());
}
