#pragma once
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>
#include <optional>

// Appends bytes to a file (created if absent) with a single write call on an
// unbuffered handle opened for appending, then closes it. A killed process
// therefore leaves either the whole record or none of it, and no handle stays
// open for a reader.
bool appendWhole(const QString &path, const QByteArray &bytes);

// The event files: <home>/ActionHistory/H<nnn>.USE.
QString historyFolder(const QString &home);
QString eventFilePath(const QString &home, int machineNumber);
QString eventFilePath(const QString &home, const QString &numberText);

// Creates the folder if missing, then lists the names of its "*.USE" files by name.
QStringList listHistoryFiles(const QString &home);

// One line of an event file: the time stamp and the event text.
struct HistoryRow {
    QString when;
    QString text;
    bool operator==(const HistoryRow &o) const { return when == o.when && text == o.text; }
};

// Every line split at its tabs into the first and the second field; a line
// without a tab has an empty second field. Empty when the file cannot be read.
std::optional<QVector<HistoryRow>> loadHistory(const QString &path);

// Writes the rows as the whole new file (first field, tab, second field,
// CR LF) through a temporary file and a rename, so a crash leaves the old
// file whole. An empty list leaves an empty file.
bool rewriteHistory(const QString &path, const QVector<HistoryRow> &rows);
