// The link against the simulator at 115200 baud:
//  - the time of one poll of one machine (RRP then RCV) against its floor:
//    two exchanges of the 50 ms send tick + the 50 ms settle time, plus the
//    bytes' time on the wire;
//  - the longest stall of the event loop, with parameter writes (and their
//    800 ms wait) mixed in;
//  - the resident memory at the start and the end of a long poll.
// usage: bench_poll [seconds]     (default 60; needs QM730_BIN or ./bin beside)
#include "ConsoleCore.h"
#include "Files.h"
#include "SimProcess.h"
#include "mdlADO.h"
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTextStream>

namespace {
// Times every event the loop delivers: the longest is the longest the
// console's own code held the loop.
class TimedApp : public QCoreApplication {
public:
    using QCoreApplication::QCoreApplication;
    bool notify(QObject *receiver, QEvent *event) override
    {
        QElapsedTimer t;
        t.start();
        const bool done = QCoreApplication::notify(receiver, event);
        const qint64 ns = t.nsecsElapsed();
        if (measuring && ns > longestNs)
            longestNs = ns;
        return done;
    }
    bool measuring = false;
    qint64 longestNs = 0;
};

long rssKb()
{
    QFile f(QStringLiteral("/proc/self/status"));
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : f.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLong();
    return -1;
}
} // namespace

int main(int argc, char **argv)
{
    TimedApp app(argc, argv);
    QTextStream out(stdout);
    const int seconds = argc > 1 ? std::max(10, atoi(argv[1])) : 60;
    if (qEnvironmentVariableIsEmpty("QM730_BIN"))
        qputenv("QM730_BIN", (QCoreApplication::applicationDirPath() + QStringLiteral("/../bin")).toUtf8());

    QTemporaryDir dir;
    SimProcess sim(dir.path());
    if (!sim.start({QStringLiteral("--machines"), QStringLiteral("1"), QStringLiteral("--turnaround"), QStringLiteral("0")})) {
        out << "cannot start qm730-sim\n";
        return 1;
    }
    const QString home = dir.path() + QStringLiteral("/home");
    QDir().mkpath(home + QStringLiteral("/CFG"));
    provisionMailDatabase(home + QStringLiteral("/EMail.mdb"));
    writeTextLinesAtomic(home + QStringLiteral("/PortMap.CFG"), {QStringLiteral("COM1=") + sim.linkPath()});
    writeTextLinesAtomic(home + QStringLiteral("/CFG/Run.INI"), {QStringLiteral("單機"), QStringLiteral("1")});
    ConsoleCore core(home);
    core.start();
    ConsoleState &s = core.state();

    // The event loop's pulse: a 5 ms timer whose late ticks are stalls.
    QElapsedTimer pulseClock;
    qint64 lastPulse = -1, worstStall = 0;
    QTimer pulse;
    pulse.setTimerType(Qt::PreciseTimer);
    pulse.setInterval(5);
    QObject::connect(&pulse, &QTimer::timeout, [&] {
        const qint64 now = pulseClock.elapsed();
        if (lastPulse >= 0)
            worstStall = std::max(worstStall, now - lastPulse - 5);
        lastPulse = now;
    });

    QElapsedTimer clock;
    QList<qint64> pollTimes;
    qint64 lastPoll = -1;
    bool writing = false;
    QObject::connect(&core.link(), &CommLink::pollCompleted, [&](int) {
        const qint64 now = clock.elapsed();
        // A cycle with only RRP and RCV in it (no UP block, no write) counts.
        if (lastPoll >= 0 && !writing && !s.RefreshOnOpen && !s.ParamChanged)
            pollTimes << now - lastPoll;
        lastPoll = now;
        writing = false;
    });
    // Every 10 s a parameter write, which holds the link for 800 ms after it.
    QTimer writer;
    writer.setInterval(10000);
    QObject::connect(&writer, &QTimer::timeout, [&] {
        writing = true;
        s.requests().writeParameter(Param::txtLPF1, quint16(5 + int(clock.elapsed() / 10000) % 5));
    });

    core.togglePort();
    QTimer::singleShot(3000, [&] { // after the scan
        clock.start();
        pulseClock.start();
        pulse.start();
        writer.start();
        app.measuring = true;
    });
    long rssStart = 0;
    QTimer::singleShot(8000, [&] { rssStart = rssKb(); });
    QTimer::singleShot((seconds + 3) * 1000, &app, &QCoreApplication::quit);
    app.exec();
    const long rssEnd = rssKb();
    core.shutdown();

    std::sort(pollTimes.begin(), pollTimes.end());
    if (pollTimes.isEmpty()) {
        out << "no poll measured\n";
        return 1;
    }
    // RRP: 15 + 53 bytes, RCV: 10 + 59 bytes, ten bits each at 115200 baud.
    const double wireMs = (15 + 53 + 10 + 59) * 10.0 / 115200 * 1000;
    const double floorMs = 2 * (50 + 50) + wireMs;
    const double median = pollTimes[pollTimes.size() / 2];
    out << "polls measured: " << pollTimes.size() << " over " << seconds << " s\n";
    out << "one poll (RRP + RCV): median " << median << " ms, min " << pollTimes.first() << " ms, max "
        << pollTimes.last() << " ms; floor " << QString::number(floorMs, 'f', 1) << " ms; ratio "
        << QString::number(median / floorMs, 'f', 3) << "\n";
    out << "longest event-loop stall: " << worstStall << " ms (parameter writes with their 800 ms wait included)\n";
    out << "longest single event handled: " << QString::number(app.longestNs / 1e6, 'f', 2)
        << " ms (the console's own work; a longer stall above is the machine's scheduling)\n";
    out << "resident memory: " << rssStart << " kB after 5 s, " << rssEnd << " kB at the end\n";
    out << "counters: good " << s.sprdCommState.text(1, 1) << ", bad " << s.sprdCommState.text(2, 1)
        << ", time-outs " << s.sprdCommState.text(3, 1) << ", sum " << s.sprdCommState.text(4, 1) << "\n";
    return 0;
}
