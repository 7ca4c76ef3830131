// A line pulled out under a running console and plugged in again: the
// simulator's pseudo-terminal goes away and comes back under the same link.
// The window's console (core and main screen) and the headless recorder both
// close the port, log the cause, reopen the device when it is back and poll
// again; the event loop keeps running and no file is left half-written.
#include "ConsoleCore.h"
#include "SimProcess.h"
#include "TestHome.h"
#include "frmQM730_Main.h"
#include <QAction>
#include <QApplication>
#include <QDirIterator>
#include <QLabel>
#include <QSignalSpy>
#include <QtTest>
#include <ctime>

namespace {

// Processor time of the calling thread, in microseconds.
qint64 threadCpuUs()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return qint64(t.tv_sec) * 1000000 + t.tv_nsec / 1000;
}

// The longest stall of the event loop in each phase, from a 5 ms pulse, and
// apart from it the longest processor time the loop spent between two pulses,
// which other programs on a shared machine do not inflate. skip() leaves out
// the test's own blocking calls (the simulator's control socket).
class StallMeter : public QObject {
public:
    StallMeter()
    {
        m_pulse.setInterval(5);
        m_pulse.setTimerType(Qt::PreciseTimer);
        connect(&m_pulse, &QTimer::timeout, this, [this] {
            const qint64 now = m_clock.elapsed(), cpu = threadCpuUs();
            auto &[stall, busy] = m_phases[m_phase];
            stall = std::max(stall, now - m_last - m_pulse.interval());
            busy = std::max(busy, cpu - m_lastCpu);
            m_last = now;
            m_lastCpu = cpu;
        });
        m_clock.start();
        skip();
        m_pulse.start();
    }
    void skip()
    {
        m_last = m_clock.elapsed();
        m_lastCpu = threadCpuUs();
    }
    void phase(const QString &name) { m_phases[m_phase = name] = {}; }
    qint64 longest() const
    {
        qint64 most = 0;
        for (const auto &p : m_phases)
            most = std::max(most, p.first);
        return most;
    }
    QString report() const
    {
        QStringList parts;
        for (auto it = m_phases.begin(); it != m_phases.end(); ++it)
            parts << QStringLiteral("%1 %2 ms (busy %3 ms)").arg(it.key()).arg(it->first).arg(it->second / 1000.0, 0, 'f', 1);
        return parts.join(QStringLiteral(", "));
    }

private:
    QTimer m_pulse;
    QElapsedTimer m_clock;
    qint64 m_last = 0, m_lastCpu = 0;
    QString m_phase;
    QMap<QString, std::pair<qint64, qint64>> m_phases; // longest stall in ms, busiest stretch in us
};

QByteArray fileBytes(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// Whether the run logs, event files and Err.LOG under home all end with a
// whole line and every run-log row has its nine fields; the times of the rows.
bool filesWhole(const QString &home, QList<QDateTime> *rowTimes = nullptr)
{
    bool whole = true;
    QDirIterator it(home, {"*.QM7", "*.USE", "Err.LOG"}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QByteArray bytes = fileBytes(path);
        if (!bytes.isEmpty() && !bytes.endsWith("\r\n")) {
            qWarning("%s ends inside a line", qPrintable(path));
            whole = false;
        }
        if (!path.endsWith(".QM7"))
            continue;
        for (const QByteArray &line : bytes.trimmed().split('\n')) {
            const QList<QByteArray> f = line.trimmed().split('\t');
            if (line.trimmed().isEmpty())
                continue;
            if (f.size() != 9) {
                qWarning("%s: a row of %d fields", qPrintable(path), int(f.size()));
                whole = false;
            } else if (rowTimes) {
                *rowTimes << QDateTime::fromString(QString::fromLatin1(f[1] + ' ' + f[2]), "yyyy/MM/dd HH:mm:ss");
            }
        }
    }
    return whole;
}

// The simulator with machine 1 running, and a home on its line with two machines, logging every second.
bool startLine(SimProcess &sim, const TestHome &home)
{
    if (!sim.start({"--machines", "1,2", "--speed", "0"}) || sim.command("set 1 rrp 1 1") != "ok")
        return false;
    home.mapPorts({"COM1=" + sim.linkPath()});
    home.machines({true, true});
    return writeTextLinesAtomic(home.path() + "/CFG/SaveData.INI", {"Yes", "1", "sec", home.path() + "/logs", "QM730", "0", "0", "0"});
}

} // namespace

class PulledLineTest : public QObject {
    Q_OBJECT
private slots:
    void windowSurvivesAPulledLine()
    {
        QTemporaryDir dir;
        SimProcess sim(dir.path());
        TestHome home;
        QVERIFY(startLine(sim, home));
        ConsoleCore core(home.path());
        QCOMPARE(core.start(), ConsoleCore::StartResult::Ok);
        frmQM730_Main window(core);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        auto panel3 = [&window] { return window.findChild<QLabel *>("Panel3")->text(); };
        auto caption = [&window] { return window.findChild<QAction *>("mOnlinePortOpen")->text(); };
        QSignalSpy polls(&core.link(), &CommLink::pollCompleted);
        const QString log1 = home.path() + "/logs/QM730_001.QM7";

        StallMeter meter;
        meter.phase("1 scan and polling");
        QCOMPARE(core.togglePort(), ConsoleCore::PortAction::Opened);
        QTRY_VERIFY_WITH_TIMEOUT(polls.size() >= 4 && fileBytes(log1).count('\n') >= 2, 15000);

        // Pulled out.
        meter.phase("2 line away");
        QCOMPARE(sim.command("unplug"), QString("ok"));
        meter.skip();
        QElapsedTimer away;
        away.start();
        QTRY_VERIFY_WITH_TIMEOUT(!core.port().isOpen(), 5000);
        const qint64 noticedMs = away.elapsed();
        const QDateTime lostAt = QDateTime::currentDateTime();
        QCOMPARE(panel3(), QString("CLOSE"));
        QCOMPARE(caption(), QString("通訊端口開啟"));
        QVERIFY(core.link().reopening());
        QVERIFY(fileBytes(home.path() + "/Err.LOG").contains(",MSComm1_OnComm\r\n"));
        QTest::qWait(3000);
        QVERIFY(!core.port().isOpen());

        // Plugged in again: the same link, a new pseudo-terminal behind it.
        meter.phase("3 back, scan and polling");
        QCOMPARE(sim.command("plug"), QString("ok"));
        meter.skip();
        QElapsedTimer back;
        back.start();
        const QDateTime backAt = QDateTime::currentDateTime();
        polls.clear();
        QTRY_VERIFY_WITH_TIMEOUT(polls.size() >= 1, 10000);
        const qint64 pollingMs = back.elapsed();
        QCOMPARE(panel3(), QString("OPEN"));
        QCOMPARE(caption(), QString("通訊端口關閉"));
        const int rowsBack = int(fileBytes(log1).count('\n'));
        QTRY_VERIFY_WITH_TIMEOUT(fileBytes(log1).count('\n') >= rowsBack + 2, 10000);

        qInfo("the pulled line was noticed after %lld ms; polling again %lld ms after it came back; "
              "longest stall of the event loop (and its busiest stretch between two pulses): %s",
              noticedMs, pollingMs, qPrintable(meter.report()));
        QVERIFY2(pollingMs < 8000, qPrintable(QString::number(pollingMs)));
        // A generous bound: the machine is shared, so the figure is reported, not held tight.
        QVERIFY2(meter.longest() < 1000, qPrintable(meter.report()));

        // No row for the time the line was away, and no file cut inside a line.
        core.shutdown();
        QList<QDateTime> rowTimes;
        QVERIFY(filesWhole(home.path(), &rowTimes));
        // Rows carry whole seconds: one in the second the line went is fine.
        for (const QDateTime &t : rowTimes)
            QVERIFY2(t <= lostAt || t >= backAt.addSecs(-1), qPrintable(t.toString(Qt::ISODate)));
    }

    void headlessRecorderSurvivesAPulledLine()
    {
        QTemporaryDir dir;
        SimProcess sim(dir.path());
        TestHome home;
        QVERIFY(startLine(sim, home));

        QProcess console;
        console.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        QStringList out;
        connect(&console, &QProcess::readyReadStandardOutput, &console, [&] {
            while (console.canReadLine())
                out << QString::fromUtf8(console.readLine()).trimmed();
        });
        console.start(qEnvironmentVariable("QM730_BIN") + "/qm730", {"--headless", "--home", home.path(), "--seconds", "90"});
        QVERIFY(console.waitForStarted());
        // The lines printed after the first that contains `text`.
        auto after = [&out](const QString &text) {
            for (qsizetype i = 0; i < out.size(); ++i)
                if (out[i].contains(text))
                    return out.mid(i + 1);
            return QStringList{QStringLiteral("(no line with %1)").arg(text)};
        };
        auto polled = [](const QStringList &lines) {
            return std::any_of(lines.begin(), lines.end(), [](const QString &l) { return l.contains("machine 001: T SV"); });
        };
        QTRY_VERIFY_WITH_TIMEOUT(polled(out), 15000);

        QCOMPARE(sim.command("unplug"), QString("ok"));
        QTRY_VERIFY_WITH_TIMEOUT(!after("line lost").startsWith("(no line"), 5000);
        QTest::qWait(2500);
        QCOMPARE(sim.command("plug"), QString("ok"));
        QElapsedTimer back;
        back.start();
        QTRY_VERIFY_WITH_TIMEOUT(!after("line back").startsWith("(no line"), 5000);
        QTRY_VERIFY_WITH_TIMEOUT(polled(after("line back")), 10000);
        qInfo("headless: polling again %lld ms after the line came back", back.elapsed());

        console.terminate();
        QVERIFY(console.waitForFinished(10000));
        QCOMPARE(console.exitStatus(), QProcess::NormalExit);
        QCOMPARE(console.exitCode(), 0);
        QVERIFY(fileBytes(home.path() + "/Err.LOG").contains(",MSComm1_OnComm\r\n"));
        QVERIFY(filesWhole(home.path()));
    }
};

QTEST_MAIN(PulledLineTest)
#include "test_pulled_line.moc"
