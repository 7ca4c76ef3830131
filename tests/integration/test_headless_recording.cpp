// The unattended recorder: `qm730 --headless` on a line of simulated chambers
// writes the run logs and the event files with no screen open.
#include "Files.h"
#include "SimProcess.h"
#include "mdlADO.h"
#include <QFile>
#include <QtTest>

namespace {
QStringList fileLines(const QString &path)
{
    return readTextLines(path).value_or(QStringList());
}
} // namespace

class HeadlessRecordingTest : public QObject {
    Q_OBJECT
private slots:
    void runLogsAndEventsWithoutAScreen()
    {
        QTemporaryDir dir;
        SimProcess sim(dir.path());
        // Chambers 1 and 2 run, chamber 3 is stopped; 3's inner signals read 0.
        QVERIFY(sim.start({QStringLiteral("--machines"), QStringLiteral("1,2,3"), QStringLiteral("--speed"), QStringLiteral("0")}));
        QCOMPARE(sim.command(QStringLiteral("set 1 rrp 1 1")), QStringLiteral("ok"));
        QCOMPARE(sim.command(QStringLiteral("set 2 rrp 1 1")), QStringLiteral("ok"));
        QCOMPARE(sim.command(QStringLiteral("set 3 rcv 7 0")), QStringLiteral("ok"));

        const QString home = dir.path() + QStringLiteral("/home");
        QDir().mkpath(home + QStringLiteral("/CFG"));
        QVERIFY(provisionMailDatabase(home + QStringLiteral("/EMail.mdb")));
        writeTextLinesAtomic(home + QStringLiteral("/PortMap.CFG"), {QStringLiteral("COM1=") + sim.linkPath()});
        writeTextLinesAtomic(home + QStringLiteral("/CFG/Run.INI"),
                             {QStringLiteral("多機"), QStringLiteral("1"), QStringLiteral("O\tA"), QStringLiteral("O\tB"),
                              QStringLiteral("O\tC")});
        const QString logs = home + QStringLiteral("/logs");
        writeTextLinesAtomic(home + QStringLiteral("/CFG/SaveData.INI"),
                             {QStringLiteral("Yes"), QStringLiteral("1"), QStringLiteral("sec"), logs,
                              QStringLiteral("QM730"), QStringLiteral("0"), QStringLiteral("0"), QStringLiteral("0")});

        QProcess console;
        console.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        console.start(qEnvironmentVariable("QM730_BIN") + QStringLiteral("/qm730"),
                      {QStringLiteral("--headless"), QStringLiteral("--home"), home, QStringLiteral("--seconds"),
                       QStringLiteral("30")});
        QVERIFY(console.waitForStarted());

        // Rows for the two running chambers, none for the stopped one.
        const QString log1 = logs + QStringLiteral("/QM730_001.QM7"), log2 = logs + QStringLiteral("/QM730_002.QM7");
        QTRY_VERIFY_WITH_TIMEOUT(fileLines(log1).size() >= 3 && fileLines(log2).size() >= 3, 15000);
        QVERIFY(!QFile::exists(logs + QStringLiteral("/QM730_003.QM7")));

        // Chamber 3 starts and stops; its inner signals go from 0 to 5.
        QCOMPARE(sim.command(QStringLiteral("set 3 rrp 1 1")), QStringLiteral("ok"));
        const QString events3 = home + QStringLiteral("/ActionHistory/H003.USE");
        QTRY_VERIFY_WITH_TIMEOUT(fileLines(events3).join(u'\n').contains(QLatin1String("PROGRAMRUN Start.")), 10000);
        QCOMPARE(sim.command(QStringLiteral("set 3 rcv 7 5")), QStringLiteral("ok"));
        QTRY_VERIFY_WITH_TIMEOUT(fileLines(events3).join(u'\n').contains(QLatin1String("I/S 3 ON")), 10000);
        QCOMPARE(sim.command(QStringLiteral("set 3 rrp 1 0")), QStringLiteral("ok"));
        QTRY_VERIFY_WITH_TIMEOUT(fileLines(events3).join(u'\n').contains(QLatin1String("PROGRAMRUN End.")), 10000);

        console.terminate(); // SIGTERM ends it cleanly
        QVERIFY(console.waitForFinished(10000));
        QCOMPARE(console.exitStatus(), QProcess::NormalExit);
        QCOMPARE(console.exitCode(), 0);

        // Both running chambers carry the same sequence numbers, row for row.
        auto sequences = [](const QStringList &rows) {
            QStringList seq;
            for (const QString &r : rows)
                seq << r.section(u'\t', 0, 0);
            return seq;
        };
        const QStringList rows1 = fileLines(log1), rows2 = fileLines(log2);
        const QStringList seq1 = sequences(rows1), seq2 = sequences(rows2);
        QVERIFY(!seq1.isEmpty());
        QVERIFY(seq2.contains(seq1.last()) || seq1.contains(seq2.last()));
        for (const QString &row : rows1 + rows2) {
            const QStringList fields = row.split(u'\t');
            QCOMPARE(fields.size(), 9);
            QCOMPARE(fields[0].size(), 8);
        }
        // Chamber 3 ran for a few seconds only, so its log begins with it; no other file exists.
        const QStringList files = QDir(logs).entryList(QDir::Files);
        QVERIFY(files.size() <= 3);
        QVERIFY(!files.contains(QStringLiteral("QM730_004.QM7")));

        // The inner-signal event lines come in bit order, one each.
        const QStringList events = fileLines(events3);
        int is1 = -1, is3 = -1;
        for (int i = 0; i < events.size(); ++i) {
            if (events[i].endsWith(QLatin1String("\tI/S 1 ON")))
                is1 = i;
            if (events[i].endsWith(QLatin1String("\tI/S 3 ON")))
                is3 = i;
        }
        QVERIFY(is1 >= 0 && is3 == is1 + 1);
    }
};

QTEST_GUILESS_MAIN(HeadlessRecordingTest)
#include "test_headless_recording.moc"
