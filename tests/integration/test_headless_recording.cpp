// The unattended recorder: `qm730 --headless` on a line of simulated chambers
// writes the run logs and the event files with no screen open.
#include "SimProcess.h"
#include "TestHome.h"
#include <QFile>
#include <QtTest>

class HeadlessRecordingTest : public QObject {
    Q_OBJECT
private slots:
    void runLogsAndEventsWithoutAScreen()
    {
        QTemporaryDir dir;
        SimProcess sim(dir.path());
        auto ok = [&sim](const char *command) { return sim.command(QString::fromLatin1(command)) == "ok"; };
        auto lines = [](const QString &path) { return readTextLines(path).value_or(QStringList()); };
        // Chambers 1 and 2 run, chamber 3 is stopped; 3's inner signals read 0.
        QVERIFY(sim.start({"--machines", "1,2,3", "--speed", "0"}));
        QVERIFY(ok("set 1 rrp 1 1") && ok("set 2 rrp 1 1") && ok("set 3 rcv 7 0"));
        TestHome home;
        home.mapPorts({"COM1=" + sim.linkPath()});
        home.machines({true, true, true});
        const QString logs = home.path() + "/logs";
        writeTextLinesAtomic(home.path() + "/CFG/SaveData.INI", {"Yes", "1", "sec", logs, "QM730", "0", "0", "0"});

        QProcess console;
        console.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        console.start(qEnvironmentVariable("QM730_BIN") + "/qm730", {"--headless", "--home", home.path(), "--seconds", "30"});
        QVERIFY(console.waitForStarted());

        // Rows for the two running chambers, none for the stopped one.
        const QString log1 = logs + "/QM730_001.QM7", log2 = logs + "/QM730_002.QM7";
        QTRY_VERIFY_WITH_TIMEOUT(lines(log1).size() >= 3 && lines(log2).size() >= 3, 15000);
        QVERIFY(!QFile::exists(logs + "/QM730_003.QM7"));
        QCOMPARE(lines(log1).first().split(u'\t').size(), 9);

        // Chamber 3 starts, its inner signals go from 0 to 5, and it stops.
        const QString events3 = home.path() + "/ActionHistory/H003.USE";
        auto logged = [&](const char *text) { return lines(events3).join(u'\n').contains(QLatin1String(text)); };
        QVERIFY(ok("set 3 rrp 1 1"));
        QTRY_VERIFY_WITH_TIMEOUT(logged("PROGRAMRUN Start."), 10000);
        QVERIFY(ok("set 3 rcv 7 5"));
        QTRY_VERIFY_WITH_TIMEOUT(logged("I/S 1 ON") && logged("I/S 3 ON"), 10000);
        QVERIFY(ok("set 3 rrp 1 0"));
        QTRY_VERIFY_WITH_TIMEOUT(logged("PROGRAMRUN End."), 10000);

        console.terminate(); // SIGTERM ends it cleanly
        QVERIFY(console.waitForFinished(10000));
        QCOMPARE(console.exitStatus(), QProcess::NormalExit);
        QCOMPARE(console.exitCode(), 0);
        // Both running chambers carry the same sequence numbers.
        const QString last1 = lines(log1).last().section(u'\t', 0, 0);
        QVERIFY(!last1.isEmpty());
        QVERIFY2(("\n" + lines(log2).join(u'\n')).contains(u'\n' + last1 + u'\t'), qPrintable(last1));
    }
};

QTEST_GUILESS_MAIN(HeadlessRecordingTest)
#include "test_headless_recording.moc"
