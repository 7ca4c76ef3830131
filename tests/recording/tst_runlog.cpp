// The run log: settings file, row format, file naming and the tick's rules.
#include "Files.h"
#include "RecordingFixture.h"
#include "RunLogger.h"
#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

class TestRunLog : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    QString home;
    QDateTime m_now;
    bool m_portOpen = true;

    // A logger over the state, with the local clock and port flag of the test,
    // logging every second into <home>/data without daily files.
    std::unique_ptr<RunLogger> makeLogger(ConsoleState &state, QStringList lines = {})
    {
        if (lines.isEmpty())
            lines = {"Yes", "1", "sec", home + "/data", "QM730", "0", "0", "0"};
        writeSaveSettingsFile(home, lines);
        auto logger = std::make_unique<RunLogger>(state, [this] { return m_portOpen; });
        logger->setClock([this] { return m_now; });
        logger->loadSettings();
        logger->markStart();
        return logger;
    }

    // The tab-separated fields of every row of a file.
    QList<QStringList> rows(const QString &path)
    {
        QList<QStringList> out;
        for (const QString &l : crlfLines(path))
            out << l.split(u'\t');
        return out;
    }
    // One tick of the logger, a second (or the given time) later.
    void tick(RunLogger &logger, double seconds = 1)
    {
        m_now = m_now.addMSecs(qint64(seconds * 1000));
        logger.Timer1_Timer();
    }

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        home = m_dir->path();
        m_now = at("2026-03-01 08:00:00");
        m_portOpen = true;
    }

    void settingsFile()
    {
        auto state = makeState(home, {1});
        auto logger = makeLogger(*state, {"Yes", " 7.6 min", "min", "C:\\QM730_DATA", "Lab", "1.0", "8", "x"});
        const SaveSettings &s = logger->settings();
        QCOMPARE(s.intervalSeconds(), 480); // lenient numbers, rounded
        QVERIFY(s.DailyFile && s.DayStartHour == 8 && s.DayStartMinute == 0);
        // The user's text is kept; on disk it is a folder under the program's folder, created at load.
        QCOMPARE(s.SaveFolder, QString("C:\\QM730_DATA"));
        QVERIFY(QFileInfo(home + "/QM730_DATA").isDir());
        QVERIFY(logger->logFilePath(5, m_now).startsWith(home + "/QM730_DATA/Lab_005_"));

        // Seven good lines are not enough: the defaults as one block, and the file stays as it is.
        writeSaveSettingsFile(home, {"Yes", "5", "sec", "/tmp/x", "ABC", "0", "8"});
        logger->loadSettings();
        QCOMPARE(s.toLines(), SaveSettings::defaults(home).toLines());
        QCOMPARE(s.SaveFolder, programPath(home, "QM730_DATA"));
        QCOMPARE(readTextLines(saveSettingsPath(home))->size(), 7);
    }

    void rowFieldsFollowTheDoubleConversion_data()
    {
        QTest::addColumn<int>("decimals");
        QTest::addColumn<QList<int>>("words");
        QTest::addColumn<QStringList>("fields");
        QTest::newRow("two decimals") << 2 << QList<int>{9450, 12487, 1250, 600, 1000, 3020}
                                      << QStringList{"-005.50", "024.87", "012.50", "60.0", "100.0", "030.20"};
        QTest::newRow("one decimal rounds first") << 1 << QList<int>{12345, 12487, 5, 583, 583, 9999}
                                                  << QStringList{"023.50", "024.90", "000.05", "58.3", "58.3", "099.99"};
        QTest::newRow("no decimals, half away from zero") << 0 << QList<int>{9450, 12550, 0, 600, 0, 0}
                                                          << QStringList{"-006.00", "026.00", "000.00", "60.0", "00.0", "000.00"};
        QTest::newRow("burnt-out PVs read as zeros") << 2 << QList<int>{12500, 65535, 0, 600, 65535, 0}
                                                     << QStringList{"025.00", "000.00", "000.00", "60.0", "00.0", "000.00"};
        QTest::newRow("range test after rounding, inside") << 0 << QList<int>{10000, 30001, 0, 600, 1001, 0}
                                                           << QStringList{"000.00", "200.00", "000.00", "60.0", "00.0", "000.00"};
        QTest::newRow("range test after rounding, outside") << 2 << QList<int>{10000, 30001, 0, 600, 0, 0}
                                                            << QStringList{"000.00", "000.00", "000.00", "60.0", "00.0", "000.00"};
        QTest::newRow("no humidity control") << 2 << QList<int>{12500, 12400, 100, 0, 583, 2000}
                                             << QStringList{"025.00", "024.00", "001.00", "**.*", "**.*", "***.**"};
    }

    void rowFieldsFollowTheDoubleConversion()
    {
        QFETCH(int, decimals);
        QFETCH(QList<int>, words);
        QFETCH(QStringList, fields);
        auto state = makeState(home, {1});
        state->image.setTempDecimals(decimals);
        setValues(*state, 0, words);
        auto logger = makeLogger(*state);
        tick(*logger);
        const auto r = rows(home + "/data/QM730_001.QM7");
        QCOMPARE(r.size(), 1);
        QCOMPARE(r[0], QStringList({"00000001", "2026/03/01", "08:00:01"}) + fields);
        QVERIFY(fileBytes(home + "/data/QM730_001.QM7").endsWith("\r\n"));
    }

    void logDayStartsAtTheConfiguredMinute_data()
    {
        QTest::addColumn<QString>("time");
        QTest::addColumn<QString>("file");
        QTest::newRow("one second before") << "2026-03-02 08:29:59" << "QM730_001_20260301.QM7";
        QTest::newRow("at the start") << "2026-03-02 08:30:00" << "QM730_001_20260302.QM7";
        QTest::newRow("evening") << "2026-03-02 23:59:59" << "QM730_001_20260302.QM7";
        QTest::newRow("month turn") << "2026-03-01 00:00:00" << "QM730_001_20260228.QM7";
    }

    void logDayStartsAtTheConfiguredMinute()
    {
        QFETCH(QString, time);
        QFETCH(QString, file);
        auto state = makeState(home, {1});
        setValues(*state, 0, {12500, 12500, 0, 600, 600, 0});
        m_now = at(time).addSecs(-1);
        auto logger = makeLogger(*state, {"Yes", "1", "sec", home + "/data", "QM730", "1", "8", "30"});
        m_now = at(time);
        logger->Timer1_Timer();
        const QStringList files = QDir(home + "/data").entryList(QDir::Files);
        QCOMPARE(files, QStringList{file});
        // The row carries the computer's date, which may follow the file's.
        QCOMPARE(rows(home + "/data/" + file)[0][1], at(time).toString("yyyy/MM/dd"));
    }

    void disabledLoggingTouchesNothing()
    {
        auto state = makeState(home, {1});
        auto logger = makeLogger(*state, {"No", "1", "sec", home + "/data", "QM730", "0", "0", "0"});
        for (int i = 1; i <= 5; ++i)
            tick(*logger);
        QCOMPARE(logger->LogSequence(), 0);
        QVERIFY(QDir(home + "/data").entryList(QDir::Files).isEmpty());
        QVERIFY(logger->timer()->isActive()); // restarted on the early way out too

        // Turned on from the screen: logs at once, as LastLogTime kept its old value.
        SaveSettings on = logger->settings();
        on.SaveEnable = "Yes";
        logger->applySavedSettings(on);
        logger->Timer1_Timer();
        QCOMPARE(logger->LogSequence(), 1);
    }

    // Running machines online share one sequence, which a tick without any
    // takes too. After the line was away a machine gets rows again only once
    // it has been read anew: what the table holds until then is from before.
    void runningMachinesShareTheSequence()
    {
        auto state = makeState(home, {1, 2, 3});
        auto logger = makeLogger(*state);
        auto sequence = [&](const char *file) {
            QStringList out;
            for (const auto &r : rows(home + "/data/" + file))
                out << r[0];
            return out.join(u' ');
        };
        for (auto &m : state->machines)
            m.MachineRunning = false;
        tick(*logger);
        state->machines[0].MachineRunning = state->machines[1].MachineRunning = true;
        tick(*logger);
        tick(*logger);
        state->machines[1].MachineOnline = false;
        tick(*logger);
        QCOMPARE(QDir(home + "/data").entryList(QDir::Files), (QStringList{"QM730_001.QM7", "QM730_002.QM7"}));
        QCOMPARE(sequence("QM730_001.QM7"), QString("00000002 00000003 00000004"));
        QCOMPARE(sequence("QM730_002.QM7"), QString("00000002 00000003"));

        state->machines[1].MachineOnline = true;
        logger->lineLost();
        tick(*logger); // the port open again, the machines online again, not read yet
        logger->statusRead(1);
        tick(*logger);
        logger->statusRead(0);
        tick(*logger);
        QCOMPARE(sequence("QM730_001.QM7"), QString("00000002 00000003 00000004 00000007"));
        QCOMPARE(sequence("QM730_002.QM7"), QString("00000002 00000003 00000006 00000007"));
    }

    void intervalAndClosedPort()
    {
        auto state = makeState(home, {1});
        auto logger = makeLogger(*state, {"Yes", "1", "min", home + "/data", "QM730", "0", "0", "0"});
        const QString file = home + "/data/QM730_001.QM7";

        tick(*logger, 59);
        QCOMPARE(logger->LogSequence(), 0);
        tick(*logger, 1.5); // 60.5 s: due
        QCOMPARE(logger->LogSequence(), 1);
        QCOMPARE(logger->LastLogTime(), at("2026-03-01 08:01:00")); // cut to whole seconds

        // Closed for more than an interval: the interval is used up, no row, no number.
        m_portOpen = false;
        tick(*logger, 89.5); // 08:02:30
        QCOMPARE(logger->LastLogTime(), at("2026-03-01 08:02:30"));
        m_portOpen = true;
        tick(*logger, 30);
        QCOMPARE(crlfLines(file).size(), 1);
        tick(*logger, 30);
        const auto r = rows(file);
        QCOMPARE(r.size(), 2);
        QCOMPARE(QStringList({r[1][0], r[1][2]}), QStringList({"00000002", "08:03:30"}));
    }
};

QTEST_GUILESS_MAIN(TestRunLog)
#include "tst_runlog.moc"
