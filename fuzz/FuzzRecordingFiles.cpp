// The recording's files: CFG/SaveData.INI, CFG/SetEMail.CFG and the event
// files ActionHistory/H<n>.USE.
#include "ConsoleState.h"
#include "Files.h"
#include "FuzzSupport.h"
#include "FuzzTargets.h"
#include "MailSettings.h"
#include "RecordFiles.h"
#include "RunLogger.h"
#include "SaveSettings.h"
#include <QDir>
#include <QFile>

namespace {

bool inside(const QString &path, const QString &folder)
{
    return QDir::cleanPath(path).startsWith(folder + u'/');
}

} // namespace

int fuzzSaveDataIni(const uint8_t *data, size_t size)
{
    static ConsoleState state(fuzzHome("savedata_ini"));
    static bool portOpen = false;
    static RunLogger logger(state, [] { return portOpen; });
    static const bool prepared = [] {
        // One machine, online and running, with present values in its column.
        QVector<MachineSlot> one(1);
        one[0].MachineNumber = 1;
        one[0].MachineOnline = one[0].MachineRunning = true;
        state.setMachines(one);
        for (int row = 1; row <= 6; ++row)
            state.image.sprdRCV.setNumber(1, row, 12345);
        return true;
    }();
    Q_UNUSED(prepared);
    const QString &home = state.home;
    writeFuzzFile(home, QStringLiteral("CFG/SaveData.INI"), data, size);

    // The running settings: the file, or the defaults as one block.
    const std::optional<SaveSettings> read = readSaveSettingsFile(home);
    const SaveSettings s = read.value_or(SaveSettings::defaults(home));
    if (lineBreaks(data, size) < 7)
        FUZZ_REQUIRE(!read); // fewer than eight lines
    if (!read) {
        FUZZ_REQUIRE(s.toLines()
                     == QStringList({"No", "1", "min", programPath(home, QStringLiteral("QM730_DATA")), "QM730", "1",
                                     "0", "0"}));
    } else {
        for (const QString &line : s.toLines())
            FUZZ_REQUIRE(!hasLineBreak(line));
    }
    // A positive interval stays positive, in seconds or in minutes.
    if (s.SaveInterval >= 1)
        FUZZ_REQUIRE(s.intervalSeconds() >= s.SaveInterval);
    const QString folder = saveFolderPath(home, s.SaveFolder);
    FUZZ_REQUIRE(!folder.isEmpty());

    // Loading creates the save folder: only when it lies in the program's folder.
    if (!inside(folder, home))
        return 0;
    logger.loadSettings();
    FUZZ_REQUIRE(logger.settings().toLines() == s.toLines());
    const QDateTime start(QDate(2026, 3, 1), QTime(8, 29, 59));
    for (const QDateTime &at : {start, start.addSecs(1), start.addDays(1)}) {
        const QString path = logger.logFilePath(1, at);
        FUZZ_REQUIRE(path.endsWith(QLatin1String(".QM7")));
        if (s.DailyFile) { // the log day is today or yesterday
            const QString day = u'_' + at.date().toString(QStringLiteral("yyyyMMdd")) + QStringLiteral(".QM7");
            const QString dayBefore = u'_' + at.date().addDays(-1).toString(QStringLiteral("yyyyMMdd")) + QStringLiteral(".QM7");
            FUZZ_REQUIRE(path.endsWith(day) || path.endsWith(dayBefore));
        }
    }

    // One tick a day after the start. The port counts as open only when the
    // row's file would stay in the program's folder (a NUL cuts the name
    // short where the system takes it, so that file cannot be told).
    const QDateTime tick = start.addDays(1);
    const QString rowFile = logger.logFilePath(1, tick);
    portOpen = inside(rowFile, home) && !rowFile.contains(QChar(0));
    if (portOpen)
        QFile::remove(rowFile);
    logger.setClock([start] { return start; });
    logger.markStart();
    logger.setClock([tick] { return tick; });
    logger.Timer1_Timer();
    const bool due = s.SaveEnable == QLatin1String("Yes") && s.intervalSeconds() <= 86400;
    FUZZ_REQUIRE(logger.LastLogTime() == (due ? tick : start));
    if (portOpen) {
        QFile f(rowFile);
        if (f.open(QIODevice::ReadOnly)) { // a file name the system refuses loses the row
            const QByteArray row = f.readAll();
            FUZZ_REQUIRE(due);
            FUZZ_REQUIRE(row.endsWith("\r\n") && row.count('\t') == 8 && row.count('\n') == 1);
            f.close();
            f.remove();
        }
    }
    if (QDir::cleanPath(folder) != QDir::cleanPath(state.path(QStringLiteral("CFG"))))
        QDir(folder).removeRecursively();
    return 0;
}

int fuzzSetEMailCfg(const uint8_t *data, size_t size)
{
    static const QString home = fuzzHome("setemail_cfg");
    static const QString again = fuzzHome("setemail_cfg_again");
    writeFuzzFile(home, QStringLiteral("CFG/SetEMail.CFG"), data, size);
    // The mail side runs on what was read, or without mail.
    const std::optional<MailSettings> read = readMailSettingsFile(home);
    const MailSettings s = read.value_or(MailSettings{});
    if (lineBreaks(data, size) < 23)
        FUZZ_REQUIRE(!read); // fewer than 24 lines
    FUZZ_REQUIRE(s.MailAddress.size() == MailSettings::AddressCount);
    FUZZ_REQUIRE(s.MailItem.size() == MailSettings::ItemCount);
    if (!read)
        FUZZ_REQUIRE(!s.MailEnabled);
    if (s.MailEnabled) {
        FUZZ_REQUIRE(s.MailUse >= 1 && !s.MailSmtp.isEmpty() && !s.MailFrom.isEmpty());
        FUZZ_REQUIRE(s.MailToList.startsWith(u';') && s.MailToList.contains(u'@'));
    }
    // The list holds the addresses with "@", each behind a ";".
    qsizetype listed = 0;
    for (const QString &a : s.MailAddress)
        if (a.contains(u'@'))
            listed += 1 + a.size();
    FUZZ_REQUIRE(s.MailToList.size() == listed);
    FUZZ_REQUIRE(!s.itemOn(-1) && !s.itemOn(MailSettings::ItemCount));
    if (read) {
        // What the screen saves from these settings reads back the same.
        FUZZ_REQUIRE(writeMailSettingsFile(again, s));
        const std::optional<MailSettings> back = readMailSettingsFile(again);
        FUZZ_REQUIRE(back);
        FUZZ_REQUIRE(back->toLines() == s.toLines());
        FUZZ_REQUIRE(back->MailEnabled == s.MailEnabled && back->MailToList == s.MailToList);
        for (int i = 0; i < MailSettings::ItemCount; ++i)
            FUZZ_REQUIRE(back->itemOn(i) == s.itemOn(i));
    }
    return 0;
}

int fuzzHistoryUse(const uint8_t *data, size_t size)
{
    static const QString home = fuzzHome("history_use");
    writeFuzzFile(home, QStringLiteral("ActionHistory/H001.USE"), data, size);
    FUZZ_REQUIRE(listHistoryFiles(home) == QStringList{QStringLiteral("H001.USE")});
    const QString path = eventFilePath(home, 1);
    const std::optional<QVector<HistoryRow>> rows = loadHistory(path);
    FUZZ_REQUIRE(rows);
    FUZZ_REQUIRE(rows->size() <= lineBreaks(data, size) + 1);
    if (size == 0)
        FUZZ_REQUIRE(rows->isEmpty());
    for (const HistoryRow &r : *rows) {
        FUZZ_REQUIRE(!hasLineBreak(r.when) && !hasLineBreak(r.text));
        FUZZ_REQUIRE(!r.when.contains(u'\t') && !r.text.contains(u'\t'));
    }
    // Deleting rows rewrites the file from the table: what is left reads back
    // as it was, but for a first line that begins with U+FEFF, which the
    // reader takes for a byte order mark.
    auto asRead = [](QVector<HistoryRow> left) {
        if (!left.isEmpty() && left[0].when.startsWith(QChar(0xFEFF)))
            left[0].when.remove(0, 1);
        return left;
    };
    for (const QVector<HistoryRow> &left : {*rows, rows->mid(1), QVector<HistoryRow>()}) {
        FUZZ_REQUIRE(rewriteHistory(path, left));
        FUZZ_REQUIRE(loadHistory(path) == asRead(left));
    }
    return 0;
}
