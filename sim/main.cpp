// qm730-sim: a line of simulated QM730 controllers with their chambers, served
// on a pseudo-terminal (or a serial device) for the console and its tests.
#include "Commands.h"
#include "Line.h"
#include "SerialEndpoint.h"
#include "SimClock.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QSocketNotifier>
#include <QTextStream>

#include <csignal>
#include <cstdio>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int signalPipe[2] = {-1, -1};

void onSignal(int)
{
    const char b = 1;
    [[maybe_unused]] const ssize_t n = ::write(signalPipe[1], &b, 1);
}

int fail(const QString &message)
{
    std::fprintf(stderr, "qm730-sim: %s\n", qPrintable(message));
    return 2;
}

struct MachineEntry {
    int number;
    Firmware firmware;
};

// "1,3:2.09,7:1.80": machine numbers, each with an optional firmware version.
std::optional<QList<MachineEntry>> parseMachines(const QString &text, int highest, QString *error)
{
    QList<MachineEntry> out;
    for (const QString &item : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const QStringList parts = item.trimmed().split(QLatin1Char(':'));
        bool ok = false;
        const int number = parts[0].toInt(&ok);
        if (!ok || number < 1 || number > highest || parts.size() > 2) {
            *error = QStringLiteral("bad machine %1 (1 to %2)").arg(item).arg(highest);
            return std::nullopt;
        }
        const auto fw = Firmware::parse(parts.size() == 2 ? parts[1] : QStringLiteral("2.31"));
        if (!fw) {
            *error = QStringLiteral("bad firmware version in %1").arg(item);
            return std::nullopt;
        }
        for (const MachineEntry &m : out)
            if (m.number == number) {
                *error = QStringLiteral("machine %1 given twice").arg(number);
                return std::nullopt;
            }
        out.append({number, *fw});
    }
    if (out.isEmpty()) {
        *error = QStringLiteral("no machines");
        return std::nullopt;
    }
    return out;
}

// The controller's own baud setting row: 8 for 115200 down to 1 for 1200.
int baudOption(int baud)
{
    const int rates[] = {115200, 57600, 38400, 19200, 9600, 4800, 2400, 1200};
    for (int i = 0; i < 8; ++i)
        if (rates[i] == baud)
            return 8 - i;
    return 8;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("qm730-sim"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Simulated QM730 controllers on a serial line.\n\n") + Commands::help());
    parser.addHelpOption();
    const QCommandLineOption linkOpt(QStringLiteral("link"), QStringLiteral("Make PATH a symbolic link to the pseudo-terminal."), QStringLiteral("PATH"));
    const QCommandLineOption portOpt(QStringLiteral("port"), QStringLiteral("Serve an existing serial device instead of a pseudo-terminal."), QStringLiteral("DEV"));
    const QCommandLineOption machinesOpt(QStringLiteral("machines"), QStringLiteral("Machines on the line, e.g. 1,3:2.09,7:1.80 (default firmware 2.31)."), QStringLiteral("LIST"), QStringLiteral("1"));
    const QCommandLineOption protocolOpt(QStringLiteral("protocol"), QStringLiteral("\"PC Link\", \"PC Link + crc\" or \"Modbus RTU\"."), QStringLiteral("NAME"), QStringLiteral("PC Link"));
    const QCommandLineOption baudOpt(QStringLiteral("baud"), QStringLiteral("Line speed, for pacing the replies."), QStringLiteral("N"), QStringLiteral("115200"));
    const QCommandLineOption speedOpt(QStringLiteral("speed"), QStringLiteral("Run the chambers F times faster than real time (0: only on tick)."), QStringLiteral("F"), QStringLiteral("1"));
    const QCommandLineOption seedOpt(QStringLiteral("seed"), QStringLiteral("Seed the measurement noise (0: no noise)."), QStringLiteral("N"));
    const QCommandLineOption turnOpt(QStringLiteral("turnaround"), QStringLiteral("Pause before each reply."), QStringLiteral("MS"), QStringLiteral("5"));
    const QCommandLineOption noPaceOpt(QStringLiteral("no-pace"), QStringLiteral("Write replies at once instead of at wire speed."));
    const QCommandLineOption controlOpt(QStringLiteral("control"), QStringLiteral("Listen for control commands on this local socket."), QStringLiteral("PATH"));
    const QCommandLineOption scriptOpt(QStringLiteral("script"), QStringLiteral("Run control commands from FILE at start."), QStringLiteral("FILE"));
    const QCommandLineOption traceOpt(QStringLiteral("trace"), QStringLiteral("Write every frame received and sent to FILE, in hex."), QStringLiteral("FILE"));
    parser.addOptions({linkOpt, portOpt, machinesOpt, protocolOpt, baudOpt, speedOpt, seedOpt, turnOpt, noPaceOpt,
                       controlOpt, scriptOpt, traceOpt});
    parser.process(app);

    const auto protocol = parseProtocol(parser.value(protocolOpt));
    if (!protocol)
        return fail(QStringLiteral("unknown protocol %1").arg(parser.value(protocolOpt)));
    bool ok = false;
    const int baud = parser.value(baudOpt).toInt(&ok);
    if (!ok || baud < 300)
        return fail(QStringLiteral("bad baud rate %1").arg(parser.value(baudOpt)));
    const double speed = parser.value(speedOpt).toDouble(&ok);
    if (!ok || speed < 0)
        return fail(QStringLiteral("bad speed %1").arg(parser.value(speedOpt)));
    const int turnaround = parser.value(turnOpt).toInt(&ok);
    if (!ok || turnaround < 0)
        return fail(QStringLiteral("bad turnaround %1").arg(parser.value(turnOpt)));
    // Without --seed the noise differs from run to run; --seed 0 switches it off.
    quint32 seedValue = static_cast<quint32>(QDateTime::currentMSecsSinceEpoch());
    if (parser.isSet(seedOpt)) {
        seedValue = parser.value(seedOpt).toUInt(&ok);
        if (!ok)
            return fail(QStringLiteral("bad seed %1").arg(parser.value(seedOpt)));
    }
    const bool noise = seedValue != 0;
    if (parser.isSet(linkOpt) && parser.isSet(portOpt))
        return fail(QStringLiteral("--link and --port exclude each other"));

    QString error;
    const auto machines = parseMachines(parser.value(machinesOpt), *protocol == Protocol::ModbusRtu ? 247 : 999, &error);
    if (!machines)
        return fail(error);

    Line line(*protocol, turnaround);
    const QDateTime now = QDateTime::currentDateTime();
    QStringList numbers;
    for (const MachineEntry &m : *machines) {
        ControllerSetup setup;
        setup.number = m.number;
        setup.firmware = m.firmware;
        if (noise)
            setup.noiseSeed = seedValue + static_cast<quint32>(m.number);
        setup.protocolOption = static_cast<int>(*protocol);
        setup.baudOption = baudOption(baud);
        setup.responseMs = turnaround;
        setup.clock = now;
        line.addController(std::make_unique<Controller>(setup));
        numbers << QString::number(m.number);
    }

    SerialEndpoint endpoint(baud, !parser.isSet(noPaceOpt));
    const bool opened = parser.isSet(portOpt) ? endpoint.openDevice(parser.value(portOpt), &error) : endpoint.openPty(&error);
    if (!opened)
        return fail(error);
    if (parser.isSet(linkOpt) && !endpoint.makeLink(parser.value(linkOpt), &error))
        return fail(error);
    QObject::connect(&endpoint, &SerialEndpoint::received, &line, &Line::receive);
    QObject::connect(&line, &Line::send, &endpoint, &SerialEndpoint::send);

    QFile trace;
    if (parser.isSet(traceOpt)) {
        trace.setFileName(parser.value(traceOpt));
        if (!trace.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text))
            return fail(QStringLiteral("%1: %2").arg(trace.fileName(), trace.errorString()));
        QObject::connect(&line, &Line::traced, &trace, [&trace](const QString &direction, const QByteArray &bytes) {
            trace.write(direction.toLatin1() + ' ' + bytes.toHex().toUpper() + '\n');
            trace.flush();
        });
    }

    SimClock clock(line, speed);
    Commands commands(line, clock, [] { QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection); });
    if (parser.isSet(scriptOpt)) {
        QFile script(parser.value(scriptOpt));
        if (!script.open(QIODevice::ReadOnly | QIODevice::Text))
            return fail(QStringLiteral("%1: %2").arg(script.fileName(), script.errorString()));
        int lineNo = 0;
        while (!script.atEnd()) {
            ++lineNo;
            const auto answer = commands.execute(QString::fromUtf8(script.readLine()));
            if (answer && answer->startsWith(QLatin1String("error")))
                return fail(QStringLiteral("%1:%2: %3").arg(script.fileName()).arg(lineNo).arg(*answer));
        }
    }
    commands.setLineSwitch([&endpoint](bool plugIn) {
        QString why;
        const bool done = plugIn ? endpoint.plug(&why) : endpoint.unplug(&why);
        return done ? QStringLiteral("ok") : QStringLiteral("error: ") + why;
    });
    ControlServer control(commands);
    if (parser.isSet(controlOpt) && !control.listen(parser.value(controlOpt), &error))
        return fail(error);

    // SIGTERM and SIGINT end the event loop, so that the link and socket are removed.
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, signalPipe) != 0)
        return fail(QStringLiteral("socketpair failed"));
    QSocketNotifier signalNotifier(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(&signalNotifier, &QSocketNotifier::activated, &app, &QCoreApplication::quit);
    struct sigaction sa {};
    sa.sa_handler = onSignal;
    sigemptyset(&sa.sa_mask);
    ::sigaction(SIGTERM, &sa, nullptr);
    ::sigaction(SIGINT, &sa, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    const QString where = parser.isSet(linkOpt) ? parser.value(linkOpt) + QStringLiteral(" -> ") + endpoint.deviceName()
                                                : endpoint.deviceName();
    QTextStream out(stdout);
    out << QStringLiteral("qm730-sim ready: %1 (%2; machines %3)").arg(where, protocolName(*protocol), numbers.join(QLatin1Char(',')))
        << Qt::endl;  // endl flushes: tests wait for this line
    return app.exec();
}
