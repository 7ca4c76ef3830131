#include "Modbus.h"
#include "Controller.h"
#include "Wire.h"

#include <QVector>

using namespace wire;

namespace modbus {

namespace {

quint8 byteAt(const QByteArray &b, qsizetype pos)
{
    return static_cast<quint8>(b.at(pos));
}

// Total length of a request of this function, or 0 when more bytes must come to tell.
// -1: a function whose length is not known here.
qsizetype requestLength(const QByteArray &b)
{
    switch (byteAt(b, 1)) {
    case 1: case 2: case 3: case 4: case 5: case 6:
        return 8;
    case 15: case 16:
        return b.size() < 7 ? 0 : 9 + byteAt(b, 6);
    case 20: case 21:
        return b.size() < 3 ? 0 : 3 + byteAt(b, 2) + 2;
    default:
        return -1;
    }
}

struct RecordRef {
    int file, record, length;
    qsizetype data;  // offset of the record's data in a write request
};

} // namespace

ScanResult scan(const QByteArray &b, bool idle)
{
    if (b.size() < 2)
        return {Scan::NeedMore};
    const qsizetype length = requestLength(b);
    if (length < 0) {
        if (!idle)
            return {Scan::NeedMore};
        for (qsizetype n = 4; n <= b.size(); ++n)
            if (crcOk(b.constData(), n))
                return {Scan::Frame, n};
        return {Scan::Skip, 1};
    }
    if (length == 0 || b.size() < length)
        return {Scan::NeedMore};
    if (!crcOk(b.constData(), length))
        return {Scan::BadCrc, 1};
    return {Scan::Frame, length};
}

QByteArray exception(quint8 address, quint8 function, quint8 code)
{
    QByteArray out;
    out.append(static_cast<char>(address));
    out.append(static_cast<char>(function | 0x80));
    out.append(static_cast<char>(code));
    return out;
}

QByteArray reply(Controller &c, const QByteArray &f, quint8 address)
{
    const quint8 function = byteAt(f, 1);
    const auto fail = [&](quint8 code) { return exception(address, function, code); };
    QByteArray out;
    out.append(static_cast<char>(address));
    out.append(static_cast<char>(function));

    switch (function) {
    case 3: {
        const int start = wordAt(f, 2), count = wordAt(f, 4);
        if (count < 1 || count > 125)
            return fail(IllegalValue);
        out.append(static_cast<char>(2 * count));
        for (int reg = start; reg < start + count; ++reg) {
            const auto w = c.readRegister(reg);
            if (!w)
                return fail(IllegalAddress);
            appendWord(out, *w);
        }
        return out;
    }
    case 16: {
        const int start = wordAt(f, 2), count = wordAt(f, 4);
        if (count < 1 || count > 123 || byteAt(f, 6) != 2 * count)
            return fail(IllegalValue);
        for (int reg = start; reg < start + count; ++reg)
            if (!c.canWriteRegister(reg))
                return fail(IllegalAddress);
        for (int i = 0; i < count; ++i)
            c.writeRegister(start + i, wordAt(f, 7 + 2 * i));
        return out + f.mid(2, 4);
    }
    case 20: {
        // Sub-requests of 7 bytes: reference type 6, file = pattern, record = segment, length.
        const int bytes = byteAt(f, 2);
        if (bytes < 7 || bytes % 7 != 0)
            return fail(IllegalValue);
        QByteArray records;
        for (qsizetype pos = 3; pos < 3 + bytes; pos += 7) {
            const int file = wordAt(f, pos + 1), record = wordAt(f, pos + 3), length = wordAt(f, pos + 5);
            if (byteAt(f, pos) != 6 || length < 1 || length > Controller::SegmentWords || !c.segmentWord(file, record, 1))
                return fail(IllegalAddress);
            records.append(static_cast<char>(1 + 2 * length));
            records.append(static_cast<char>(6));
            for (int w = 1; w <= length; ++w)
                appendWord(records, *c.segmentWord(file, record, w));
        }
        if (records.size() > 250)
            return fail(IllegalValue);
        out.append(static_cast<char>(records.size()));
        return out + records;
    }
    case 21: {
        const int bytes = byteAt(f, 2);
        QVector<RecordRef> refs;
        qsizetype pos = 3;
        while (pos < 3 + bytes) {
            if (pos + 7 > 3 + bytes)
                return fail(IllegalValue);
            const RecordRef r{wordAt(f, pos + 1), wordAt(f, pos + 3), wordAt(f, pos + 5), pos + 7};
            if (byteAt(f, pos) != 6 || r.length < 1 || r.length > Controller::SegmentWords || !c.segmentWord(r.file, r.record, 1))
                return fail(IllegalAddress);
            refs.append(r);
            pos += 7 + 2 * r.length;
        }
        if (pos != 3 + bytes)
            return fail(IllegalValue);
        for (const RecordRef &r : refs)
            for (int w = 1; w <= r.length; ++w)
                c.setSegmentWord(r.file, r.record, w, wordAt(f, r.data + 2 * (w - 1)));
        return out + f.mid(2, f.size() - 4);  // the answer echoes the request
    }
    default:
        return fail(IllegalFunction);
    }
}

} // namespace modbus
