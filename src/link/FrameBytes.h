#pragma once
// Reading words out of a received frame; a frame too short for its data throws,
// which the guarded store routines log.
#include "Encodings.h"
#include "Files.h"
#include <QByteArray>
#include <QString>
#include <stdexcept>

namespace framebytes {

// Four ASCII digits at a column of a frame (counting from 1), read the lenient way.
inline int num4(const QByteArray &f, int col)
{
    return leadingInt(QString::fromLatin1(f.mid(col - 1, 4)));
}

inline int wordAt(const QByteArray &f, int offset)
{
    if (offset < 0 || offset + 1 >= f.size())
        throw std::out_of_range("reply shorter than its data");
    return quint8(f[offset]) * 256 + quint8(f[offset + 1]);
}

inline int byteAt(const QByteArray &f, int offset)
{
    if (offset < 0 || offset >= f.size())
        throw std::out_of_range("reply shorter than its data");
    return quint8(f[offset]);
}

// A cell's number as a word on the wire, high byte first.
inline QByteArray wordBytes(qint64 v)
{
    return ::wordBytes(quint16(v & 0xFFFF));
}

} // namespace framebytes
