// A full backup and restore of one controller against the simulator at
// 115200 baud, each timed against its floor: every exchange's 50 ms send tick
// and the settle time the link waits after the reply, plus the bytes of both
// frames on the wire (ten bits a byte). The bulk chains have no 800 ms wait
// after their writes. The machine holds the parameter block, all its names
// and 30 patterns of 10 segments.
// usage: bench_bulk ["PC Link" | "PC Link + crc" | "Modbus RTU"]   (default PC Link)
#include "ConsoleCore.h"
#include "Files.h"
#include "ParameterSet.h"
#include "SimProcess.h"
#include "StartupFiles.h"
#include "mdlADO.h"
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>
#include <QTextStream>

namespace {
double wireMs(qsizetype bytes)
{
    return bytes * 10.0 / 115200 * 1000;
}

// A run's time and its two floors. The plain floor adds up each exchange's
// tick, settle time and the bytes of both frames. The tight floor is what
// this line can give: the pseudo-terminal carries a request at once (only
// the simulator's replies are paced at the baud rate), and the link starts
// its settle time at the first byte of a PC Link reply, so a reply shorter
// than the settle time costs nothing beyond it (tick + the longer of the
// two); under Modbus RTU the port reports a reply once it is whole, and the
// settle time follows it (tick + reply + settle).
struct Measured {
    qint64 ms = 0;
    int exchanges = 0;
    double floorMs = 0;
    double tightMs = 0;
    bool modbus = false;
    int settle = 0;
    qsizetype replyBytes = 0;

    void request(int settleMs, qsizetype bytes)
    {
        closeExchange();
        ++exchanges;
        settle = settleMs;
        floorMs += 50 + settleMs + wireMs(bytes);
        tightMs += 50;
    }
    void reply(qsizetype bytes)
    {
        replyBytes += bytes;
        floorMs += wireMs(bytes);
    }
    void closeExchange()
    {
        if (exchanges > 0)
            tightMs += modbus ? settle + wireMs(replyBytes) : std::max<double>(settle, wireMs(replyBytes));
        replyBytes = 0;
        settle = 0;
    }
};
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    const QString protocol = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("PC Link");
    if (qEnvironmentVariableIsEmpty("QM730_BIN"))
        qputenv("QM730_BIN", (QCoreApplication::applicationDirPath() + QStringLiteral("/../bin")).toUtf8());

    QTemporaryDir dir;
    SimProcess sim(dir.path());
    if (!sim.start({"--machines", "1", "--protocol", protocol, "--baud", "115200", "--turnaround", "0"})) {
        out << "cannot start qm730-sim\n";
        return 1;
    }
    for (int p = 1; p <= 100; ++p)
        sim.command(QStringLiteral("set 1 pd %1 1 %2").arg(p).arg(p <= 30 ? 10 : 0));
    for (int row = 1; row <= 111; ++row)
        sim.command(QStringLiteral("set 1 td %1 名稱%1").arg(row));

    const QString home = dir.path() + QStringLiteral("/home");
    QDir().mkpath(home + QStringLiteral("/CFG"));
    provisionMailDatabase(home + QStringLiteral("/EMail.mdb"));
    writeTextLinesAtomic(home + QStringLiteral("/PortMap.CFG"), {QStringLiteral("COM1=") + sim.linkPath()});
    writeTextLinesAtomic(home + QStringLiteral("/CFG/Run.INI"), {QStringLiteral("單機"), QStringLiteral("1")});
    writeCommPortCfg(home, {"COM1", "115200", "N", "8", "1", protocol, "OFF"});
    ConsoleCore core(home);
    core.start();
    ConsoleState &s = core.state();

    // Every frame of a run: a request adds its tick and the settle time the
    // link will wait after the reply; both add their bytes.
    Measured *current = nullptr;
    QObject::connect(&core.link(), &CommLink::frameLogged, [&](const QString &label, const QByteArray &bytes) {
        if (!current)
            return;
        if (label == QStringLiteral("傳送"))
            current->request(s.RxSettleMs, bytes.size());
        else
            current->reply(bytes.size());
    });
    Measured backup, restore;
    QElapsedTimer clock;
    auto run = [&](Measured &m, auto &&start) {
        m.modbus = s.Modbus();
        current = &m;
        clock.start();
        start();
    };
    QObject::connect(&core.link(), &CommLink::bulkFinished, [&](BulkJob job) {
        if (!current)
            return;
        current->ms = clock.elapsed();
        current->closeExchange();
        current = nullptr;
        if (job == BulkJob::ParameterReceive) {
            paramset::saveParameterSet(s.image, s.FirmwareVersion(), home + QStringLiteral("/bench"));
            const auto set = paramset::readParameterSet(home + QStringLiteral("/bench"));
            paramset::LinkSettings link{s.CommBaud, s.CommParity, s.CommDataBits, s.CommStopBits, s.Modbus(), s.CrcMode()};
            if (!set || !paramset::loadParameterSet(s.image, *set, link).fits) {
                out << "the backup does not read back\n";
                app.exit(1);
                return;
            }
            QTimer::singleShot(500, [&] { run(restore, [&] { s.requests().startParameterSend(true); }); });
        } else {
            app.quit();
        }
    });
    core.togglePort();
    QTimer::singleShot(3000, [&] { // after the scan
        s.setForegroundMachine(1);
        run(backup, [&] { s.requests().startParameterReceive(true); });
    });
    QTimer::singleShot(600000, &app, [&] { app.exit(1); });
    const int status = app.exec();
    core.shutdown();
    if (status != 0 || restore.ms == 0) {
        out << "the transfer did not finish\n";
        return 1;
    }
    auto line = [&](const char *what, const Measured &m) {
        out << what << ": " << m.ms << " ms, " << m.exchanges << " exchanges; floor "
            << QString::number(m.floorMs, 'f', 0) << " ms, ratio " << QString::number(m.ms / m.floorMs, 'f', 3)
            << "; tight floor " << QString::number(m.tightMs, 'f', 0)
            << " ms, ratio " << QString::number(m.ms / m.tightMs, 'f', 3) << "\n";
    };
    out << protocol << " at 115200 baud, 512-row block, 111 names, 30 patterns of 10 segments\n";
    line("backup", backup);
    line("restore", restore);
    return 0;
}
