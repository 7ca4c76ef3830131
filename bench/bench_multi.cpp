// Many chambers against the simulator at 115200 baud, with the multi-chamber
// console and the status board open (offscreen):
//  1. a line of 99 chambers (numbers 10, 20 ... 980 and 999) and a list of
//     those 99: the scan, the poll cycle, the longest event the loop handled
//     (the refresh of each screen on its own), the late ticks of a 5 ms pulse;
//  2. the poll cycle for lists of 1, 10, 33 and 99 of them: linear in the
//     machines that answer;
//  3. a list of all 999 numbers of which the same 99 answer: the scan, where
//     each silent number costs three sends and three time-outs, then the poll
//     cycle, which the silent numbers do not lengthen, and the stalls with
//     999 rows on each screen. The scan runs with the reply time-out given
//     by --scan-timeout (default 60 ms) so that it takes minutes, not the
//     25 minutes of the 500 ms time-out; the cost per silent number is
//     reported against the rule, 3 x (50 ms send tick + time-out);
//  4. one chamber of the 99 falling silent while polled: the cycle grows by
//     three time-outs at the 500 ms of the link's rules, and no more.
// usage: QT_QPA_PLATFORM=offscreen bench_multi [--seconds N] [--scan-timeout MS] [--skip-999]
#include "ConsoleCore.h"
#include "Files.h"
#include "MachineListChange.h"
#include "SheetModel.h"
#include "SimProcess.h"
#include "frmQM730_RunMulti.h"
#include "frmQM730_TMon.h"
#include "mdlADO.h"
#include <QApplication>
#include <QElapsedTimer>
#include <QTextStream>
#include <QTimer>
#include <algorithm>

namespace {

// Times every event the loop delivers, and the refresh timers of the two
// screens on their own.
class TimedApp : public QApplication {
public:
    using QApplication::QApplication;
    bool notify(QObject *receiver, QEvent *event) override
    {
        // Which refresh this is, asked before delivery: a single-shot timer
        // deletes itself while its event is delivered.
        qint64 *refresh = nullptr;
        if (measuring && event->type() == QEvent::Timer) {
            const QString name = receiver->objectName();
            if (name == QLatin1String("Timer1"))
                refresh = &consoleNs;
            else if (name == QLatin1String("tmrRefresh") && receiver->parent()
                     && receiver->parent()->objectName() == QLatin1String("frmQM730_TMon"))
                refresh = &boardNs;
        }
        QElapsedTimer t;
        t.start();
        const bool done = QApplication::notify(receiver, event);
        const qint64 ns = t.nsecsElapsed();
        if (measuring) {
            longestNs = std::max(longestNs, ns);
            if (refresh)
                *refresh = std::max(*refresh, ns);
        }
        return done;
    }
    void reset() { longestNs = consoleNs = boardNs = 0; }
    bool measuring = false;
    qint64 longestNs = 0, consoleNs = 0, boardNs = 0;
};

QTextStream out(stdout);

void waitMs(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

bool waitUntil(const std::function<bool()> &done, int ms)
{
    QElapsedTimer t;
    t.start();
    while (!done()) {
        if (t.elapsed() > ms)
            return false;
        waitMs(20);
    }
    return true;
}

QString ms(qint64 ns)
{
    return QString::number(ns / 1e6, 'f', 2) + QStringLiteral(" ms");
}

MachineList listOf(const QList<int> &numbers)
{
    MachineList list;
    list.multiMode = true;
    for (int n : numbers)
        list.machines.append(MachineSlot{n});
    return list;
}

// The numbers of the chambers on the simulated line.
QList<int> lineNumbers()
{
    QList<int> n;
    for (int i = 1; i <= 98; ++i)
        n << 10 * i;
    n << 999;
    return n;
}

struct Bench {
    TimedApp &app;
    ConsoleCore &core;
    QElapsedTimer clock;
    QList<qint64> cycleEnds; // when the watched slot completed a poll
    int watchSlot = 0;       // the first slot that answers
    qint64 worstPulse = 0;

    // Puts a list in force, waits for the scan; returns its time in ms, -1 on failure.
    qint64 scan(const MachineList &list, int answering, int limitMs)
    {
        ConsoleState &s = core.state();
        QElapsedTimer t;
        t.start();
        applyMachineList(s, core.link(), list);
        auto online = [&] {
            int n = 0;
            for (const MachineSlot &m : s.machines)
                n += m.MachineOnline;
            return n;
        };
        if (!waitUntil([&] { return s.CmdState != Cmd::Who && online() >= answering; }, limitMs))
            return -1;
        return t.elapsed();
    }

    // The median time between two polls of the first answering slot over `cycles` cycles.
    qint64 cycle(int cycles, int limitMs)
    {
        const QVector<MachineSlot> &m = core.state().machines;
        watchSlot = 0;
        for (int i = 0; i < m.size(); ++i)
            if (m[i].MachineOnline) {
                watchSlot = i;
                break;
            }
        cycleEnds.clear();
        waitUntil([&] { return cycleEnds.size() > cycles; }, limitMs);
        QList<qint64> d;
        for (int i = 1; i < cycleEnds.size(); ++i)
            d << cycleEnds[i] - cycleEnds[i - 1];
        if (d.isEmpty())
            return -1;
        std::sort(d.begin(), d.end());
        return d[d.size() / 2];
    }

    // Both screens open for `seconds`: the longest events.
    void screens(int seconds, const QString &what)
    {
        QElapsedTimer open;
        open.start();
        frmQM730_RunMulti console(core.context());
        console.show();
        const qint64 openConsole = open.nsecsElapsed();
        open.restart();
        frmQM730_TMon board(core.context());
        board.show();
        const qint64 openBoard = open.nsecsElapsed();
        waitMs(500); // the first paint
        app.reset();
        worstPulse = 0;
        app.measuring = true;
        waitMs(seconds * 1000);
        app.measuring = false;
        out << what << ": both screens open " << seconds << " s (" << console.sheet().rows() << " and "
            << board.sheet().rows() << " sheet rows)\n"
            << "  opening: console " << ms(openConsole) << ", board " << ms(openBoard) << "\n"
            << "  longest refresh: console (Timer1, 50 ms) " << ms(app.consoleNs) << ", board (tmrRefresh, 500 ms) "
            << ms(app.boardNs) << "\n"
            << "  longest event of any kind (paints included): " << ms(app.longestNs)
            << "; latest tick of a 5 ms pulse: " << worstPulse << " ms late\n";
        out.flush();
    }
};

} // namespace

int main(int argc, char **argv)
{
    TimedApp app(argc, argv);
    const QStringList args = app.arguments();
    auto option = [&](const QString &name, int fallback) {
        const int i = int(args.indexOf(name));
        return i >= 0 && i + 1 < args.size() ? args[i + 1].toInt() : fallback;
    };
    const int seconds = std::max(5, option(QStringLiteral("--seconds"), 30));
    const int scanTimeout = std::max(20, option(QStringLiteral("--scan-timeout"), 60));
    const bool skip999 = args.contains(QStringLiteral("--skip-999"));
    if (qEnvironmentVariableIsEmpty("QM730_BIN"))
        qputenv("QM730_BIN", (QCoreApplication::applicationDirPath() + QStringLiteral("/../bin")).toUtf8());

    QTemporaryDir dir;
    SimProcess sim(dir.path());
    QStringList numbers;
    for (int n : lineNumbers())
        numbers << QString::number(n);
    if (!sim.start({QStringLiteral("--machines"), numbers.join(u','), QStringLiteral("--turnaround"),
                    QStringLiteral("0")})) {
        out << "cannot start qm730-sim with 99 machines up to 999\n";
        return 1;
    }
    const QString home = dir.path() + QStringLiteral("/home");
    QDir().mkpath(home + QStringLiteral("/CFG"));
    provisionMailDatabase(home + QStringLiteral("/EMail.mdb"));
    writeTextLinesAtomic(home + QStringLiteral("/PortMap.CFG"), {QStringLiteral("COM1=") + sim.linkPath()});
    ConsoleCore core(home);
    core.start();
    Bench b{app, core};
    b.clock.start();
    QObject::connect(&core.link(), &CommLink::pollCompleted, [&](int slot) {
        if (slot == b.watchSlot)
            b.cycleEnds << b.clock.elapsed();
    });
    QElapsedTimer pulseClock;
    qint64 lastPulse = -1;
    QTimer pulse;
    pulse.setTimerType(Qt::PreciseTimer);
    pulse.setInterval(5);
    QObject::connect(&pulse, &QTimer::timeout, [&] {
        const qint64 now = pulseClock.elapsed();
        if (lastPulse >= 0 && app.measuring)
            b.worstPulse = std::max(b.worstPulse, now - lastPulse - 5);
        lastPulse = now;
    });
    pulseClock.start();
    pulse.start();
    core.togglePort();
    const int timeout = core.link().replyTimeoutMs();

    // 1. The line of 99.
    const QList<int> line = lineNumbers();
    const qint64 scan99 = b.scan(listOf(line), 99, 120000);
    out << "1. list of 99 machines (10 .. 980, 999), all answering\n"
        << "  scan: " << scan99 << " ms (" << QString::number(scan99 / 99.0, 'f', 1) << " ms a machine)\n";
    const qint64 cycle99 = b.cycle(2, 120000);
    out << "  poll cycle: " << cycle99 << " ms (" << QString::number(cycle99 / 99.0, 'f', 1) << " ms a machine)\n";
    out.flush();
    b.screens(seconds, QStringLiteral("  99 machines"));

    // 2. The cycle against the machines that answer.
    out << "2. poll cycle against the number of machines (all answering)\n";
    for (int n : {1, 10, 33, 99}) {
        if (b.scan(listOf(line.mid(0, n)), n, 120000) < 0) {
            out << "  " << n << ": scan failed\n";
            continue;
        }
        const qint64 c = b.cycle(n == 1 ? 10 : 3, 180000);
        out << "  " << n << " machine(s): " << c << " ms, " << QString::number(double(c) / n, 'f', 1)
            << " ms a machine\n";
        out.flush();
    }

    // 3. 999 numbers, 99 answering.
    if (!skip999) {
        QList<int> all;
        for (int n = 1; n <= MaxMachineNumber; ++n)
            all << n;
        core.link().tmrRecvErr.setInterval(scanTimeout);
        const qint64 scan999 = b.scan(listOf(all), 99, 3600000);
        const int silent = MaxMachineNumber - 99;
        const double perSilent = double(scan999 - scan99) / silent;
        out << "3. list of 999 numbers, 99 answering (scan with a " << scanTimeout << " ms time-out)\n"
            << "  scan: " << scan999 << " ms; a silent number: " << QString::number(perSilent, 'f', 1)
            << " ms; the rule 3 x (50 + " << scanTimeout << "): " << 3 * (50 + scanTimeout) << " ms; at the "
            << timeout << " ms time-out that is " << 3 * (50 + timeout) << " ms a number, "
            << QString::number(silent * 3.0 * (50 + timeout) / 60000.0, 'f', 1) << " min for the " << silent
            << " silent numbers of the first scan\n";
        core.link().tmrRecvErr.setInterval(timeout);
        const qint64 cycle999 = b.cycle(2, 120000);
        out << "  poll cycle: " << cycle999 << " ms (the list of 99: " << cycle99 << " ms)\n";
        out.flush();
        b.screens(seconds, QStringLiteral("  999 numbers"));
        b.scan(listOf(line), 99, 120000);
    }

    // 4. One chamber of the 99 silent while polled.
    b.cycle(1, 60000);
    sim.command(QStringLiteral("fault 500 silent on"));
    const qint64 withSilent = b.cycle(2, 120000);
    out << "4. machine 500 of the 99 silent while polled: cycle " << withSilent << " ms against " << cycle99
        << " ms; the rule: its poll (about " << QString::number(cycle99 / 99.0, 'f', 0)
        << " ms) becomes three sends and three time-outs, 3 x (50 + " << timeout << ") = " << 3 * (50 + timeout)
        << " ms\n";
    out.flush();
    core.shutdown();
    return 0;
}
