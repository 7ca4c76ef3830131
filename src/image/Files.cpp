#include "Files.h"
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>
#include <QStringEncoder>
#include <QTemporaryFile>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <unistd.h>

QString programPath(const QString &home, const QString &relative)
{
    QString rel = relative;
    rel.replace(u'\\', u'/');
    while (rel.startsWith(u'/'))
        rel.remove(0, 1);
    QString base = home;
    while (base.size() > 1 && base.endsWith(u'/'))
        base.chop(1);
    return base.isEmpty() ? rel : base + u'/' + rel;
}

double leadingNumber(const QString &text)
{
    QString s;
    s.reserve(text.size());
    for (QChar ch : text)
        if (ch != u' ' && ch != u'\t' && ch != u'\r' && ch != u'\n')
            s += ch;
    qsizetype i = 0;
    const qsizetype n = s.size();
    if (i < n && (s[i] == u'+' || s[i] == u'-'))
        ++i;
    const qsizetype digitsStart = i;
    while (i < n && s[i].isDigit() && s[i].unicode() < 128)
        ++i;
    qsizetype mantissaDigits = i - digitsStart;
    if (i < n && s[i] == u'.') {
        ++i;
        const qsizetype f = i;
        while (i < n && s[i].isDigit() && s[i].unicode() < 128)
            ++i;
        mantissaDigits += i - f;
    }
    if (mantissaDigits == 0)
        return 0;
    qsizetype end = i;
    if (i < n && (s[i] == u'E' || s[i] == u'e')) {
        qsizetype j = i + 1;
        if (j < n && (s[j] == u'+' || s[j] == u'-'))
            ++j;
        const qsizetype e = j;
        while (j < n && s[j].isDigit() && s[j].unicode() < 128)
            ++j;
        if (j > e)
            end = j;
    }
    bool ok = false;
    const double v = s.left(end).toDouble(&ok);
    return ok && std::isfinite(v) ? v : 0;
}

int leadingInt(const QString &text)
{
    const double v = std::nearbyint(leadingNumber(text));
    if (v >= double(std::numeric_limits<int>::max()))
        return std::numeric_limits<int>::max();
    if (v <= double(std::numeric_limits<int>::min()))
        return std::numeric_limits<int>::min();
    return int(v);
}

QByteArray toAnsi(const QString &text)
{
    QStringEncoder enc("Big5");
    if (!enc.isValid())
        return text.toLatin1();
    QByteArray out = enc.encode(text);
    return out;
}

QString fromAnsi(const QByteArray &bytes)
{
    QStringDecoder dec("Big5");
    if (!dec.isValid())
        return QString::fromLatin1(bytes);
    return dec.decode(bytes);
}

QString decodeSettingsText(const QByteArray &raw)
{
    QByteArray bytes = raw;
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes.remove(0, 3);
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(bytes);
    if (!utf8.hasError())
        return text;
    return fromAnsi(bytes);
}

std::optional<QStringList> readTextLines(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QString text = decodeSettingsText(f.readAll());
    QStringList lines;
    QString line;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar ch = text[i];
        if (ch == u'\r' || ch == u'\n') {
            lines << line;
            line.clear();
            if (ch == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n')
                ++i;
        } else {
            line += ch;
        }
    }
    if (!line.isEmpty())
        lines << line;
    return lines;
}

bool writeFileAtomic(const QString &path, const QByteArray &bytes)
{
    const QFileInfo info(path);
    QDir().mkpath(info.absolutePath());
    QSaveFile f(path);
    if (!f.open(QIODevice::WriteOnly))
        return false;
    if (f.write(bytes) != bytes.size()) {
        f.cancelWriting();
        return false;
    }
    return f.commit();
}

namespace {
// One file of writeFilesAtomic on its way into place.
struct StagedFile {
    QString path;
    QString temp;   // the new content, until renamed to path
    QString kept;   // a second name of the old file while the set is replaced
    bool placed = false;
};

QString systemError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

// Takes back what the renames did and removes what is left of the new files.
void undoStaged(QList<StagedFile> &staged)
{
    for (StagedFile &f : staged) {
        const QByteArray path = QFile::encodeName(f.path);
        if (f.placed) {
            if (!f.kept.isEmpty())
                ::rename(QFile::encodeName(f.kept).constData(), path.constData());
            else
                ::unlink(path.constData());
        } else if (!f.kept.isEmpty()) {
            ::unlink(QFile::encodeName(f.kept).constData());
        }
        if (!f.temp.isEmpty())
            ::unlink(QFile::encodeName(f.temp).constData());
    }
}
} // namespace

bool writeFilesAtomic(const QList<QPair<QString, QByteArray>> &files, QString *error)
{
    QList<StagedFile> staged;
    auto fail = [&](const QString &path, const QString &why) {
        undoStaged(staged);
        if (error)
            *error = path + QStringLiteral(": ") + why;
        return false;
    };
    // Every new content to disk first; nothing in place is touched yet.
    for (const auto &[path, bytes] : files) {
        const QFileInfo info(path);
        if (info.exists() && !info.isFile())
            return fail(path, QStringLiteral("not a file"));
        QTemporaryFile temp(info.absolutePath() + u'/' + info.fileName() + QStringLiteral(".XXXXXX"));
        temp.setAutoRemove(false);
        if (!temp.open())
            return fail(path, temp.errorString());
        staged.append({path, temp.fileName(), {}, false});
        if (temp.write(bytes) != bytes.size() || !temp.flush())
            return fail(path, temp.errorString());
        if (::fsync(temp.handle()) != 0)
            return fail(path, systemError());
        temp.close();
        if (temp.error() != QFileDevice::NoError)
            return fail(path, temp.errorString());
    }
    // Then into place: the old file keeps a second name (a hard link) until
    // every new one is there, so that a failed rename can put it back.
    for (StagedFile &f : staged) {
        const QByteArray path = QFile::encodeName(f.path);
        if (QFileInfo::exists(f.path)) {
            const QString kept = f.temp + QStringLiteral(".old");
            if (::link(path.constData(), QFile::encodeName(kept).constData()) != 0)
                return fail(f.path, systemError());
            f.kept = kept;
        }
        if (::rename(QFile::encodeName(f.temp).constData(), path.constData()) != 0)
            return fail(f.path, systemError());
        f.temp.clear();
        f.placed = true;
    }
    for (const StagedFile &f : staged)
        if (!f.kept.isEmpty())
            ::unlink(QFile::encodeName(f.kept).constData());
    return true;
}

bool writeTextLinesAtomic(const QString &path, const QStringList &lines, bool ansi)
{
    QByteArray bytes;
    for (const QString &l : lines) {
        bytes += ansi ? toAnsi(l) : l.toUtf8();
        bytes += "\r\n";
    }
    return writeFileAtomic(path, bytes);
}

bool appendToFile(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Append))
        return false;
    const bool ok = f.write(bytes) == bytes.size();
    return f.flush() && ok;
}

QString nowStamp()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

void WriteErrorLog(const QString &home, int number, const QString &description, const QString &place)
{
    const QString line = nowStamp() + u',' + QString::number(number) + u',' + description + u',' + place + QStringLiteral("\r\n");
    appendToFile(programPath(home, QStringLiteral("\\Err.LOG")), line.toUtf8());
}
