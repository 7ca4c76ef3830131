// A logging process killed with SIGKILL at random moments, several times
// over the same files, leaves only whole rows, and the rows of each run
// follow each other without a gap.
#include <QDir>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

class TestRunLogKill : public QObject {
    Q_OBJECT

    static constexpr int Rounds = 12;

private slots:
    void killedLoggerLeavesWholeRows()
    {
        QTemporaryDir home;
        for (int round = 0; round < Rounds; ++round) {
            QProcess p;
            p.start(QCoreApplication::applicationDirPath() + "/runlog_soak", {home.path()});
            QVERIFY(p.waitForStarted(5000));
            QVERIFY(p.waitForReadyRead(10000));
            QCOMPARE(p.readLine().trimmed(), QByteArray("READY"));
            QTest::qWait(int(QRandomGenerator::global()->bounded(10, 80)));
            p.kill(); // SIGKILL
            QVERIFY(p.waitForFinished(5000));
            QCOMPARE(p.exitStatus(), QProcess::CrashExit);
        }

        const QRegularExpression row(
            "^(\\d{8})\\t2026/\\d\\d/\\d\\d\\t\\d\\d:\\d\\d:\\d\\d"
            "\\t-?\\d{3}\\.\\d\\d\\t-?\\d{3}\\.\\d\\d\\t\\d{3,}\\.\\d\\d"
            "\\t(\\d{2,}\\.\\d\\t\\d{2,}\\.\\d\\t\\d{3,}\\.\\d\\d|\\*\\*\\.\\*\\t\\*\\*\\.\\*\\t\\*\\*\\*\\.\\*\\*)$");
        const QStringList files = QDir(home.path() + "/data").entryList(QDir::Files, QDir::Name);
        QCOMPARE(files, (QStringList{"QM730_001.QM7", "QM730_002.QM7", "QM730_003.QM7", "QM730_999.QM7"}));
        for (const QString &name : files) {
            QFile f(home.path() + "/data/" + name);
            QVERIFY(f.open(QIODevice::ReadOnly));
            const QByteArray bytes = f.readAll();
            QVERIFY2(bytes.endsWith("\r\n"), qPrintable(name + " ends inside a row"));
            const QList<QByteArray> lines = bytes.chopped(1).split('\n');
            QVERIFY(lines.size() > 100);
            int previous = 0;
            int restarts = 0;
            for (const QByteArray &raw : lines) {
                QVERIFY2(raw.endsWith('\r'), qPrintable(name + ": " + raw));
                const auto m = row.match(QString::fromLatin1(raw.chopped(1)));
                QVERIFY2(m.hasMatch(), qPrintable(name + ": " + raw));
                // Each run counts from 1; within a run no row is missing.
                const int seq = m.captured(1).toInt();
                if (seq == 1)
                    ++restarts;
                else
                    QCOMPARE(seq, previous + 1);
                previous = seq;
            }
            QCOMPARE(restarts, Rounds);
        }
    }
};

QTEST_GUILESS_MAIN(TestRunLogKill)
#include "tst_runlog_kill.moc"
