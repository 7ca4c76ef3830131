#include "Headless.h"
#include "ConsoleCore.h"
#include "Demo.h"
#include "LiveStatus.h"
#include "Recorder.h"
#include <QCoreApplication>
#include <QDateTime>
#include <QSocketNotifier>
#include <QTextStream>
#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {
int g_signalPipe[2] = {-1, -1};

void onSignal(int)
{
    const char c = 1;
    [[maybe_unused]] ssize_t n = ::write(g_signalPipe[1], &c, 1);
}

QString stamp()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

// One line of present values of a machine.
QString pollLine(ConsoleState &s, int slot)
{
    const TextTable &rcv = s.image.sprdRCV;
    const TextTable &rrp = s.image.sprdRRP;
    const int c = slot + 1;
    const int dec = s.TempDecimals();
    auto w = [&](int row) { return rcv.number(c, row); };
    const bool running = rrp.number(c, Rrp::Run) > 0;
    QString line = QStringLiteral("machine %1: T SV %2 PV %3 MV %4 | H SV %5 PV %6 MV %7 | %8 %9")
                       .arg(s.machines[slot].MachineNumber, 3, 10, QChar(u'0'))
                       .arg(tempSvText(w(Rcv::TempSV), dec), tempPvText(w(Rcv::TempPV), dec),
                            outputText(w(Rcv::TempMV)), humiSvText(w(Rcv::HumiSV)), humiPvText(w(Rcv::HumiPV)),
                            outputText(w(Rcv::HumiMV)), running ? QStringLiteral("RUN") : QStringLiteral("STOP"),
                            runModeText(w(Rcv::RunMode)));
    if (running) {
        const RcvColumn col(rcv, c);
        line += QStringLiteral(" | PTN:SEG %1 | run %2 | seg %3")
                    .arg(col.patternSegmentText(), col.runTimeText(), col.segmentTimeText());
    }
    return line;
}
} // namespace

void onTerminationSignals(QObject *owner, std::function<void()> handler)
{
    if (g_signalPipe[0] < 0 && ::socketpair(AF_UNIX, SOCK_STREAM, 0, g_signalPipe) != 0)
        return;
    auto *notifier = new QSocketNotifier(g_signalPipe[0], QSocketNotifier::Read, owner);
    QObject::connect(notifier, &QSocketNotifier::activated, owner, [handler = std::move(handler)] {
        char c = 0;
        [[maybe_unused]] ssize_t n = ::read(g_signalPipe[0], &c, 1);
        handler();
    });
    std::signal(SIGTERM, onSignal);
    std::signal(SIGINT, onSignal);
    std::signal(SIGPIPE, SIG_IGN); // a closed stdout must not end the program
}

int runHeadless(const QString &home, int seconds, bool commLog, bool demo)
{
    QTextStream out(stdout);
    ConsoleCore core(home);
    if (demo) {
        QString error;
        if (!startDemoLine(home, &core, &error))
            QTextStream(stderr) << "demo: " << error << '\n';
    }
    if (core.start() == ConsoleCore::StartResult::MailDatabaseMissing) {
        QTextStream(stderr) << "File not found.\n";
        return 1;
    }
    ConsoleState &s = core.state();
    CommLink &link = core.link();
    link.setCommFileLog(commLog);
    auto print = [&out](const QString &text) {
        out << stamp() << ' ' << text << '\n';
        out.flush();
    };
    QObject::connect(&link, &CommLink::linkEvent, &link, print);
    QObject::connect(&link, &CommLink::pollCompleted, &link, [&](int slot) { print(pollLine(s, slot)); });

    onTerminationSignals(&core, [] { QCoreApplication::quit(); });
    if (seconds > 0)
        QTimer::singleShot(seconds * 1000, &core, [] { QCoreApplication::quit(); });

    // Open the port as the operator would; an unattended recorder keeps trying.
    QTimer retry;
    retry.setInterval(5000);
    auto tryOpen = [&] {
        if (core.port().isOpen()) {
            retry.stop();
            return;
        }
        const auto result = core.togglePort();
        if (result == ConsoleCore::PortAction::Opened) {
            retry.stop();
        } else {
            print(QStringLiteral("cannot open COM%1: %2; trying again in 5 s")
                      .arg(s.CommPortNo)
                      .arg(link.lastOpenError()));
            retry.start();
        }
    };
    QObject::connect(&retry, &QTimer::timeout, &core, tryOpen);
    tryOpen();

    const int rc = QCoreApplication::exec();
    core.shutdown();
    print(QStringLiteral("ended"));
    return rc;
}
