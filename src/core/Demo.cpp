#include "Demo.h"
#include "Files.h"
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <csignal>
#include <sys/prctl.h>

namespace {
// Settings for the demonstration line, written only where the operator has none.
void writeIfMissing(const QString &path, const QStringList &lines)
{
    if (!QFileInfo::exists(path))
        writeTextLinesAtomic(path, lines);
}
} // namespace

bool startDemoLine(const QString &home, QObject *owner, QString *error)
{
    const QString sim = QCoreApplication::applicationDirPath() + QStringLiteral("/qm730-sim");
    if (!QFileInfo(sim).isExecutable()) {
        if (error)
            *error = QStringLiteral("qm730-sim not found beside the console (%1)").arg(sim);
        return false;
    }
    QDir().mkpath(programPath(home, QStringLiteral("\\CFG")));
    const QString line = programPath(home, QStringLiteral("sim-line"));
    // The demonstration owns COM1 of this folder.
    writeTextLinesAtomic(programPath(home, QStringLiteral("PortMap.CFG")), {QStringLiteral("COM1=") + line});
    writeIfMissing(programPath(home, QStringLiteral("\\CommPort.CFG")),
                   {QStringLiteral("COM1"), QStringLiteral("115200"), QStringLiteral("N"), QStringLiteral("8"),
                    QStringLiteral("1"), QStringLiteral("PC Link"), QStringLiteral("OFF")});
    writeIfMissing(programPath(home, QStringLiteral("\\CFG\\Run.INI")),
                   {QStringLiteral("多機"), QStringLiteral("1"), QStringLiteral("O\t1號試驗箱"),
                    QStringLiteral("O\t2號試驗箱"), QStringLiteral("O\t3號試驗箱")});

    // The simulator speaks the protocol the console is set to.
    QString protocol = QStringLiteral("PC Link");
    QString baud = QStringLiteral("115200");
    if (const auto cfg = readTextLines(programPath(home, QStringLiteral("\\CommPort.CFG"))); cfg && cfg->size() >= 7) {
        protocol = cfg->at(5);
        baud = cfg->at(1);
    }
    // Chamber 1 runs pattern 1 from its first segment, so that the consoles
    // and the status board have something moving; chamber 2 waits in fixed
    // mode, chamber 3 in program mode.
    const QString script = programPath(home, QStringLiteral("sim-start.txt"));
    writeTextLinesAtomic(script, {QStringLiteral("set 1 up 1 0"), QStringLiteral("set 1 rrp 8 1"),
                                  QStringLiteral("set 1 rrp 9 1"), QStringLiteral("set 1 rrp 1 1"),
                                  QStringLiteral("set 2 up 1 1"), QStringLiteral("set 3 up 1 0")});
    auto *proc = new QProcess(owner);
    proc->setProgram(sim);
    proc->setArguments({QStringLiteral("--link"), line, QStringLiteral("--machines"), QStringLiteral("1,2,3:2.09"),
                        QStringLiteral("--protocol"), protocol, QStringLiteral("--baud"), baud,
                        QStringLiteral("--control"), programPath(home, QStringLiteral("sim-control")),
                        QStringLiteral("--script"), script});
    proc->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // The simulator ends with the console, however the console ends.
    proc->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
    proc->start();
    QElapsedTimer t;
    t.start();
    // Wait for the ready line (the simulator starts in a moment; nothing else runs yet).
    QByteArray said;
    while (proc->state() != QProcess::NotRunning && t.elapsed() < 5000) {
        proc->waitForReadyRead(200);
        said += proc->readAll();
        if (said.contains('\n')) {
            QObject::connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, proc, [proc] {
                proc->terminate();
                proc->waitForFinished(2000);
            });
            return true;
        }
    }
    if (error)
        *error = QStringLiteral("the simulator did not start: %1").arg(proc->errorString());
    proc->kill();
    return false;
}
