#include "RecordFiles.h"
#include "Files.h"
#include "Encodings.h"
#include <QDir>
#include <QFile>

bool appendWhole(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        return false;
    return f.write(bytes) == bytes.size();
}

QString historyFolder(const QString &home)
{
    return programPath(home, QStringLiteral("\\ActionHistory"));
}

QString eventFilePath(const QString &home, int machineNumber)
{
    return eventFilePath(home, formatNumber(machineNumber, QStringLiteral("000")));
}

QString eventFilePath(const QString &home, const QString &numberText)
{
    return programPath(home, QStringLiteral("\\ActionHistory\\H") + numberText + QStringLiteral(".USE"));
}

QStringList listHistoryFiles(const QString &home)
{
    QDir dir(historyFolder(home));
    QDir().mkpath(dir.path());
    return dir.entryList({QStringLiteral("*.USE")}, QDir::Files, QDir::Name);
}

std::optional<QVector<HistoryRow>> loadHistory(const QString &path)
{
    const auto lines = readTextLines(path);
    if (!lines)
        return std::nullopt;
    QVector<HistoryRow> rows;
    rows.reserve(lines->size());
    for (const QString &line : *lines) {
        const QStringList fields = line.split(u'\t');
        rows.push_back({fields.value(0), fields.value(1)});
    }
    return rows;
}

bool rewriteHistory(const QString &path, const QVector<HistoryRow> &rows)
{
    QByteArray bytes;
    for (const HistoryRow &r : rows)
        bytes += (r.when + u'\t' + r.text + QStringLiteral("\r\n")).toUtf8();
    return writeFileAtomic(path, bytes);
}
