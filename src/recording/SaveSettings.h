#pragma once
#include <QString>
#include <QStringList>
#include <optional>

// The data-save settings of the run log, as held for the whole run and as
// stored in \CFG\SaveData.INI (eight lines, CR LF, in the order of the members).
struct SaveSettings {
    QString SaveEnable = QStringLiteral("No"); // logging only when exactly "Yes"
    int SaveInterval = 1;                      // 1 to 60
    QString SaveUnit = QStringLiteral("min");  // minutes when exactly "min", else seconds
    QString SaveFolder;                        // as the user gave it; see saveFolderPath
    QString SaveFileName = QStringLiteral("QM730");
    bool DailyFile = true;
    int DayStartHour = 0;
    int DayStartMinute = 0;

    // The block taken whenever the file cannot be read. The default folder is
    // "QM730_DATA" in the program's folder.
    static SaveSettings defaults(const QString &home);

    // The interval in seconds as the logging tick uses it (wide enough for
    // any minutes a hand-edited file gives).
    qint64 intervalSeconds() const;

    // The eight lines of the settings file.
    QStringList toLines() const;
};

QString saveSettingsPath(const QString &home); // <home>/CFG/SaveData.INI

// Reads the settings file. Empty when it is missing or has fewer than eight
// lines: the caller then takes the defaults as one block.
std::optional<SaveSettings> readSaveSettingsFile(const QString &home);
// The eight lines as the screen gives them, each ended by CR LF; \CFG is
// created if missing. The file is replaced whole.
bool writeSaveSettingsFile(const QString &home, const QStringList &lines);

// The save folder as a path on this system. Backslashes become slashes; a
// folder written for a Windows drive ("C:\QM730_DATA") or any other relative
// folder is taken under the program's folder, so that an old settings file
// still finds a usable place.
QString saveFolderPath(const QString &home, const QString &folder);
