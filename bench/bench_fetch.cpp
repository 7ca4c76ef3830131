// The program fetch against the simulator at 115200 baud: every name, every
// pattern, 10 segments in each of 30 patterns, as the operator waits for it
// in frmQM730_PTN_Recv, against its floor: per exchange the 50 ms send tick
// and the 50 ms settle time, plus the bytes' time on the wire (ten bits a
// byte, both ways). Then a second fetch on the same machine, and the pattern
// editor opened after a restart of the console that takes its programs from
// the cache: both must read nothing.
// usage: bench_fetch ["PC Link"|"PC Link + crc"|"Modbus RTU"]   (needs QM730_BIN or ./bin beside)
#include "ConsoleCore.h"
#include "Files.h"
#include "ProgramImage.h"
#include "SimProcess.h"
#include "StartupFiles.h"
#include "frmQM730Prg_PTN.h"
#include "frmQM730_PTN_Recv.h"
#include "mdlADO.h"
#include <QApplication>
#include <QElapsedTimer>
#include <QTextStream>
#include <algorithm>

namespace {

// A request of the program fetch: a text row, a pattern or a segment read.
bool isProgramRead(const QByteArray &frame, bool modbus)
{
    if (!modbus)
        return frame.size() > 7 && (frame.mid(4, 3) == "RTD" || frame.mid(4, 3) == "RPD" || frame.mid(4, 3) == "RSD");
    if (frame.size() < 6)
        return false;
    const int function = quint8(frame[1]);
    const int start = (quint8(frame[2]) << 8) | quint8(frame[3]);
    return function == 20 || (function == 3 && start >= 42001);
}

// Ten bits a byte at 115200 baud.
double wireMs(qint64 bytes)
{
    return double(bytes) * 10.0 / 115200.0 * 1000.0;
}

// The fetch's exchanges as the link logs them: a request and its reply.
// `overlapMs` adds up the part of each exchange's wire time that does not
// fit in its 50 ms settle time (the reply arrives while the settle runs).
struct Counter {
    bool on = false;
    bool modbus = false;
    int exchanges = 0;
    int programReads = 0;
    qint64 bytes = 0;
    qint64 exchangeBytes = 0;
    double beyondSettleMs = 0;
    // Where the time goes: from a request to its reply taken (the wire, the
    // controller and the settle time), and from the reply to the next request.
    QElapsedTimer clock;
    qint64 sentNs = -1, takenNs = -1;
    double toReplyMs = 0, toNextMs = 0;
    int replies = 0, nexts = 0;
    void reset()
    {
        exchanges = programReads = 0;
        bytes = exchangeBytes = 0;
        beyondSettleMs = 0;
        clock.start();
        sentNs = takenNs = -1;
        toReplyMs = toNextMs = 0;
        replies = nexts = 0;
    }
    void sent()
    {
        const qint64 now = clock.nsecsElapsed();
        if (takenNs >= 0) {
            toNextMs += double(now - takenNs) / 1e6;
            ++nexts;
        }
        sentNs = now;
        takenNs = -1;
    }
    void taken()
    {
        if (sentNs < 0 || takenNs >= 0)
            return;
        takenNs = clock.nsecsElapsed();
        toReplyMs += double(takenNs - sentNs) / 1e6;
        ++replies;
    }
    void closeExchange()
    {
        beyondSettleMs += std::max(0.0, wireMs(exchangeBytes) - 50.0);
        exchangeBytes = 0;
    }
};

void waitFor(const std::function<bool()> &done, int ms)
{
    QElapsedTimer t;
    t.start();
    while (!done() && t.elapsed() < ms)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

bool polling(ConsoleState &s)
{
    return s.CmdState == 1 || s.CmdState == 2;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTextStream out(stdout);
    const QString protocol = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("PC Link");
    const bool modbus = protocol == QLatin1String("Modbus RTU");
    if (qEnvironmentVariableIsEmpty("QM730_BIN"))
        qputenv("QM730_BIN", (QCoreApplication::applicationDirPath() + QStringLiteral("/../bin")).toUtf8());

    QTemporaryDir dir;
    SimProcess sim(dir.path());
    if (!sim.start({QStringLiteral("--machines"), QStringLiteral("1"), QStringLiteral("--protocol"), protocol,
                    QStringLiteral("--turnaround"), QStringLiteral("0"), QStringLiteral("--speed"), QStringLiteral("0")})) {
        out << "cannot start qm730-sim\n";
        return 1;
    }
    sim.command(QStringLiteral("programs 1 30 10"));
    const QString home = dir.path() + QStringLiteral("/home");
    QDir().mkpath(home + QStringLiteral("/CFG"));
    provisionMailDatabase(home + QStringLiteral("/EMail.mdb"));
    writeTextLinesAtomic(home + QStringLiteral("/PortMap.CFG"), {QStringLiteral("COM1=") + sim.linkPath()});
    writeTextLinesAtomic(home + QStringLiteral("/CFG/Run.INI"), {QStringLiteral("單機"), QStringLiteral("1")});
    writeCommPortCfg(home, {"COM1", "115200", "N", "8", "1", protocol, "OFF"});
    writePtnRecvOpt(home, 1); // take programs from the cache when it is there

    Counter count;
    count.modbus = modbus;
    auto bringUp = [&](ConsoleCore &core) {
        core.start();
        QObject::connect(&core.link(), &CommLink::frameLogged, [&count](const QString &label, const QByteArray &bytes) {
            if (!count.on)
                return;
            if (label == QStringLiteral("傳送")) {
                if (count.exchanges > 0)
                    count.closeExchange();
                ++count.exchanges;
                count.programReads += isProgramRead(bytes, count.modbus);
                count.sent();
            } else {
                count.taken();
            }
            count.bytes += bytes.size();
            count.exchangeBytes += bytes.size();
        });
        core.togglePort();
        waitFor([&] { return polling(core.state()) && core.state().CurrentMachine == 1; }, 10000);
    };

    double firstMs = 0, floorMs = 0;
    int firstExchanges = 0, firstReads = 0;
    qint64 firstBytes = 0;
    {
        ConsoleCore core(home);
        bringUp(core);
        ConsoleState &s = core.state();

        // The first fetch: the wait screen from opening to closing.
        count.reset();
        count.on = true;
        QElapsedTimer t;
        t.start();
        {
            frmQM730_PTN_Recv fetch(core.context());
            fetch.exec();
        }
        firstMs = double(t.nsecsElapsed()) / 1e6;
        count.on = false;
        count.closeExchange();
        firstExchanges = count.exchanges;
        firstReads = count.programReads;
        firstBytes = count.bytes;
        const double onWireMs = wireMs(firstBytes);
        floorMs = firstExchanges * (50.0 + 50.0) + onWireMs;
        // The same floor with each reply arriving inside its settle time.
        const double overlapFloorMs = firstExchanges * (50.0 + 50.0) + count.beyondSettleMs;
        int segments = 0;
        for (int p = 1; p <= s.PatternCount(); ++p)
            segments += int(s.image.sprdPD.number(1, p));
        out << protocol << ", 115200 baud, " << s.PatternCount() << " patterns (" << segments
            << " segments), firmware " << s.FirmwareVersion() << "\n";
        out << "first fetch: " << QString::number(firstMs / 1000, 'f', 2) << " s, " << firstExchanges << " exchanges ("
            << firstReads << " program reads), " << firstBytes << " bytes; floor "
            << QString::number(floorMs / 1000, 'f', 2) << " s (" << firstExchanges << " x 100 ms + "
            << QString::number(onWireMs, 'f', 0) << " ms on the wire); ratio " << QString::number(firstMs / floorMs, 'f', 3)
            << "\n";
        // In PC Link the settle time starts with the first byte of the reply,
        // so the reply's bytes arrive inside it; in Modbus RTU it starts once
        // the whole reply is in.
        if (!modbus)
            out << "floor with the wire time inside the settle times: " << QString::number(overlapFloorMs / 1000, 'f', 2)
            << " s; ratio " << QString::number(firstMs / overlapFloorMs, 'f', 3) << "\n";
        out << "per exchange: " << QString::number(count.toReplyMs / std::max(1, count.replies), 'f', 1)
            << " ms from request to reply taken, " << QString::number(count.toNextMs / std::max(1, count.nexts), 'f', 1)
            << " ms from there to the next request\n";
        out << "counters: good " << s.sprdCommState.text(1, 1) << ", bad " << s.sprdCommState.text(2, 1)
            << ", time-outs " << s.sprdCommState.text(3, 1) << "\n";

        // The second fetch on the same machine.
        waitFor([&] { return polling(s); }, 5000);
        count.reset();
        count.on = true;
        t.restart();
        {
            frmQM730_PTN_Recv fetch(core.context());
            fetch.exec();
        }
        const double secondMs = double(t.nsecsElapsed()) / 1e6;
        count.on = false;
        out << "second fetch: " << QString::number(secondMs, 'f', 1) << " ms, " << count.programReads
            << " program reads\n";
        core.shutdown();
    }

    {
        // A restart: the editor takes the image from the cache files.
        ConsoleCore core(home);
        bringUp(core);
        count.reset();
        count.on = true;
        QElapsedTimer t;
        t.start();
        auto editor = std::make_unique<frmQM730Prg_PTN>(core.context());
        const double openMs = double(t.nsecsElapsed()) / 1e6;
        waitFor([] { return false; }, 500); // what the link does meanwhile
        count.on = false;
        const bool complete = !core.state().image.sprdPD.isEmpty(1, 30);
        out << "after a restart, editor opened from the cache in " << QString::number(openMs, 'f', 1) << " ms, "
            << count.programReads << " program reads, pattern 30 " << (complete ? "present" : "missing") << "\n";
        editor.reset();
        core.shutdown();
    }
    return firstReads > 0 ? 0 : 1;
}
