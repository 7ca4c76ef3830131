#include "SaveSettings.h"
#include "Files.h"
#include <QDir>

SaveSettings SaveSettings::defaults(const QString &home)
{
    SaveSettings s;
    s.SaveFolder = programPath(home, QStringLiteral("QM730_DATA"));
    return s;
}

qint64 SaveSettings::intervalSeconds() const
{
    return SaveUnit == QLatin1String("min") ? qint64(SaveInterval) * 60 : SaveInterval;
}

QStringList SaveSettings::toLines() const
{
    return {SaveEnable,
            QString::number(SaveInterval),
            SaveUnit,
            SaveFolder,
            SaveFileName,
            DailyFile ? QStringLiteral("1") : QStringLiteral("0"),
            QString::number(DayStartHour),
            QString::number(DayStartMinute)};
}

QString saveSettingsPath(const QString &home)
{
    return programPath(home, QStringLiteral("\\CFG\\SaveData.INI"));
}

std::optional<SaveSettings> readSaveSettingsFile(const QString &home)
{
    QDir().mkpath(programPath(home, QStringLiteral("CFG")));
    const auto lines = readTextLines(saveSettingsPath(home));
    if (!lines || lines->size() < 8)
        return std::nullopt;
    const QStringList &l = *lines;
    SaveSettings s;
    s.SaveEnable = l[0];
    s.SaveInterval = leadingInt(l[1]);
    s.SaveUnit = l[2];
    s.SaveFolder = l[3];
    s.SaveFileName = l[4];
    s.DailyFile = leadingNumber(l[5]) == 1;
    s.DayStartHour = leadingInt(l[6]);
    s.DayStartMinute = leadingInt(l[7]);
    return s;
}

bool writeSaveSettingsFile(const QString &home, const QStringList &lines)
{
    return writeTextLinesAtomic(saveSettingsPath(home), lines);
}

QString saveFolderPath(const QString &home, const QString &folder)
{
    QString p = folder;
    p.replace(u'\\', u'/');
    if (p.size() >= 2 && p[1] == u':' && p[0].isLetter())
        return programPath(home, p.mid(2));
    if (QDir::isAbsolutePath(p))
        return p;
    return programPath(home, p);
}
