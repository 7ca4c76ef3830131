#pragma once
#include <QByteArray>
#include <QString>
#include <QList>
#include <QPair>
#include <QStringList>
#include <optional>

// Small helpers shared by every settings file, cache file and log of the console.

// The program's folder joined with a relative path written the Windows way:
// programPath("/opt/qm", "\\CFG\\Run.INI") is "/opt/qm/CFG/Run.INI".
QString programPath(const QString &home, const QString &relative);

// The lenient number reader of the settings files: blanks are skipped, then the
// longest leading decimal number (sign, digits, point, exponent) is taken;
// text without one reads 0.
double leadingNumber(const QString &text);
// leadingNumber rounded half to even to a whole number, saturated to int.
int leadingInt(const QString &text);

// Text in the controllers' code page (Big5 / CP950) and back.
QByteArray toAnsi(const QString &text);
QString fromAnsi(const QByteArray &bytes);

// A settings file's text: UTF-8 when the bytes are valid UTF-8 (a BOM is
// dropped), otherwise the controllers' code page.
QString decodeSettingsText(const QByteArray &bytes);

// The lines of a text file as a line reader sees them (CR LF, LF or CR end a
// line; a final line break makes no extra line). Empty optional when the file
// cannot be opened.
std::optional<QStringList> readTextLines(const QString &path);

// Writes a whole file through a temporary file and a rename, so that a crash
// leaves either the old file or the new one, never half of one.
bool writeFileAtomic(const QString &path, const QByteArray &bytes);
// Writes several files as one. Each is written to a temporary file beside it
// and flushed to disk; only when all are written are they renamed into place,
// each old file kept aside until the last rename is through. A failure at any
// point leaves every file as it was (never some new and some old) and no
// temporary file behind; *error then says which file and why.
bool writeFilesAtomic(const QList<QPair<QString, QByteArray>> &files, QString *error = nullptr);
// Lines joined with CR LF after each, in the given encoding (UTF-8 or Big5).
bool writeTextLinesAtomic(const QString &path, const QStringList &lines, bool ansi = false);

// Opens for append (creating the file), writes, flushes and closes.
bool appendToFile(const QString &path, const QByteArray &bytes);

// "YYYY-MM-DD HH:MM:SS" of the present local time.
QString nowStamp();

// The console's one error log, <home>/Err.LOG: one line
// "YYYY-MM-DD HH:MM:SS,<number>,<description>,<place>". Never fails loudly.
void WriteErrorLog(const QString &home, int number, const QString &description, const QString &place);
