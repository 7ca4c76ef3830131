// A row of the run log is one write call: a logging process killed with
// SIGKILL at random moments, several times over the same files, leaves only
// whole rows, and the rows of each run follow each other without a gap.
#include <QDir>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

class TestRunLogKill : public QObject {
    Q_OBJECT

    static constexpr int Rounds = 12;

    static QString helper() { return QCoreApplication::applicationDirPath() + "/runlog_soak"; }

private slots:
    void killedLoggerLeavesWholeRows()
    {
        QTemporaryDir home;
        for (int round = 0; round < Rounds; ++round) {
            QProcess p;
            p.start(helper(), {home.path()});
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

    // The system-call trace of a short run: each open of a run log is
    // followed by exactly one write of a whole row, then the close.
    void eachRowIsOneWriteCall()
    {
        const QString strace = QStandardPaths::findExecutable("strace");
        if (strace.isEmpty())
            QSKIP("strace is not installed");
        QTemporaryDir home;
        const QString trace = home.path() + "/trace";
        QProcess p;
        p.start(strace, {"-f", "-qq", "-e", "trace=openat,write,close", "-o", trace, helper(), home.path(), "50"});
        QVERIFY(p.waitForFinished(60000));
        if (p.exitCode() != 0)
            QSKIP("strace cannot trace here");

        QFile f(trace);
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QRegularExpression open("openat\\(.*\\.QM7\", .*\\) = (\\d+)$");
        const QRegularExpression write("write\\((\\d+), \"(.*), (\\d+)\\) = (\\d+)$");
        const QRegularExpression close("close\\((\\d+)\\)");
        QString fd;
        int writes = 0, opens = 0;
        while (!f.atEnd()) {
            const QString line = QString::fromLatin1(f.readLine()).trimmed();
            if (auto m = open.match(line); m.hasMatch()) {
                fd = m.captured(1);
                writes = 0;
                ++opens;
            } else if (auto w = write.match(line); w.hasMatch() && w.captured(1) == fd) {
                // A whole row: it starts with the sequence and is written in full.
                QVERIFY2(QRegularExpression("^\\d{8}\\\\t").match(w.captured(2)).hasMatch(), qPrintable(line));
                QVERIFY2(w.captured(3).toInt() >= 60, qPrintable(line));
                QCOMPARE(w.captured(4), w.captured(3));
                ++writes;
            } else if (auto c = close.match(line); c.hasMatch() && c.captured(1) == fd) {
                QVERIFY2(writes == 1, qPrintable(QString("%1 writes for one row").arg(writes)));
                fd.clear();
            }
        }
        QCOMPARE(opens, 50 * 4);
    }
};

QTEST_GUILESS_MAIN(TestRunLogKill)
#include "tst_runlog_kill.moc"
