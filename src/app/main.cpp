#include "Headless.h"
#include "ParameterSet.h"
#include "Provision.h"
#include <QApplication>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTextStream>
#include <cstring>
#include <memory>

int runWindow(QApplication &app, const QString &home, bool commLog, bool demo);

static constexpr const char *kVersion = "OV5.1.0";

int main(int argc, char **argv)
{
    // Only the windowed console needs a display.
    // "qm730 backup ..." and "qm730 restore ..." are the transfers of a lab's scripts.
    // The command is the first argument that is not an option or an option's value.
    bool transfer = false;
    for (int i = 1; i < argc; ++i) {
        if (argv[i][0] == '-') {
            for (const char *o : {"--home", "--seconds", "--machine", "--to", "--from"})
                if (std::strcmp(argv[i], o) == 0)
                    ++i;
            continue;
        }
        transfer = std::strcmp(argv[i], "backup") == 0 || std::strcmp(argv[i], "restore") == 0;
        break;
    }
    bool headless = transfer, windowless = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--headless") == 0)
            headless = true;
        for (const char *o : {"--help", "-h", "--help-all", "--version", "-v", "--provision"})
            if (std::strcmp(argv[i], o) == 0)
                windowless = true;
    }
    std::unique_ptr<QCoreApplication> app;
    if (headless || windowless)
        app = std::make_unique<QCoreApplication>(argc, argv);
    else
        app = std::make_unique<QApplication>(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("qm730"));
    QCoreApplication::setApplicationVersion(QLatin1String(kVersion));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("QM730 console: runs temperature and humidity chamber controllers over a serial line."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption homeOpt(QStringLiteral("home"), QStringLiteral("The program's folder: settings, logs and caches (default: the folder of the executable)."), QStringLiteral("DIR"));
    const QCommandLineOption headlessOpt(QStringLiteral("headless"), QStringLiteral("Run without windows: open the port, scan, poll and record, printing the link's changes and the present values."));
    const QCommandLineOption secondsOpt(QStringLiteral("seconds"), QStringLiteral("With --headless: end cleanly after N seconds; with backup or restore: give up after N seconds."), QStringLiteral("N"));
    const QCommandLineOption commLogOpt(QStringLiteral("comm-log"), QStringLiteral("Write every frame to CommData.Mon in the program's folder."));
    const QCommandLineOption demoOpt(QStringLiteral("demo"), QStringLiteral("Start the chamber simulator with three chambers on one line and run the console against it."));
    const QCommandLineOption provisionOpt(QStringLiteral("provision"), QStringLiteral("Prepare the program's folder as an installer does (an empty EMail.mdb) and exit."));
    const QCommandLineOption machineOpt(QStringLiteral("machine"), QStringLiteral("backup, restore: the machine number (1 to 999)."), QStringLiteral("N"));
    const QCommandLineOption toOpt(QStringLiteral("to"), QStringLiteral("backup: the file set to write, DIR/BASE (BASE.UUP, .UTD, .UPD, .USD)."), QStringLiteral("BASE"));
    const QCommandLineOption fromOpt(QStringLiteral("from"), QStringLiteral("restore: the file set to send, DIR/BASE.UUP."), QStringLiteral("FILE"));
    const QCommandLineOption verifyOpt(QStringLiteral("verify"), QStringLiteral("restore: read the machine back after the send and list every row that differs."));
    parser.addOptions({homeOpt, headlessOpt, secondsOpt, commLogOpt, demoOpt, provisionOpt});
    if (transfer) {
        parser.addOptions({machineOpt, toOpt, fromOpt, verifyOpt});
        parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("backup or restore"));
    }
    parser.setApplicationDescription(parser.applicationDescription() + QStringLiteral(
        "\n\nA controller's memory saved and sent back without windows:\n"
        "  qm730 [--home DIR] backup --machine N --to DIR/BASE\n"
        "  qm730 [--home DIR] restore --machine N --from DIR/BASE.UUP [--verify]\n"
        "They use the port settings and the machine list of the program's folder and end with status 0 done, "
        "1 no EMail.mdb, 2 bad arguments, 3 the port cannot be opened (or another console holds it), "
        "4 machine not on the line, 5 set unreadable or of another firmware's size (不一致 (F/W Version)), "
        "6 the machine stopped answering or --seconds ran out, 7 the set could not be saved (no file changed), "
        "8 --verify found rows that differ."));
    parser.process(*app);

    QString home = parser.isSet(homeOpt) ? parser.value(homeOpt) : QCoreApplication::applicationDirPath();
    home = QDir(home).absolutePath();
    QDir().mkpath(home);

    if (parser.isSet(provisionOpt))
        return provisionHome(home) ? 0 : 1;
    // The demonstration folder is prepared as an installer would.
    if (parser.isSet(demoOpt) && !QFileInfo::exists(home + QStringLiteral("/EMail.mdb")))
        provisionHome(home);
    if (headless) {
        bool ok = true;
        const int seconds = parser.isSet(secondsOpt) ? parser.value(secondsOpt).toInt(&ok) : 0;
        if (!ok || seconds < 0) {
            QTextStream(stderr) << "--seconds takes a whole number of seconds\n";
            return 2;
        }
        if (transfer) {
            const bool backup = parser.positionalArguments().value(0) == QLatin1String("backup");
            const int machine = parser.value(machineOpt).toInt(&ok);
            const QCommandLineOption &setOpt = backup ? toOpt : fromOpt;
            if (!ok || machine < 1 || machine > 999 || parser.positionalArguments().size() != 1
                || !parser.isSet(setOpt) || parser.isSet(backup ? fromOpt : toOpt) || (backup && parser.isSet(verifyOpt))) {
                QTextStream(stderr) << "usage: qm730 [--home DIR] backup --machine N --to DIR/BASE\n"
                                       "       qm730 [--home DIR] restore --machine N --from DIR/BASE.UUP [--verify]\n"
                                       "(N 1 to 999)\n";
                return 2;
            }
            // The master file stands for its set.
            const QString base = QFileInfo(paramset::saveNameOf(parser.value(setOpt)).base).absoluteFilePath();
            TransferOptions options;
            options.kind = backup ? TransferKind::Backup : TransferKind::Restore;
            options.machine = machine;
            options.base = base;
            options.verify = parser.isSet(verifyOpt);
            options.seconds = seconds;
            options.commLog = parser.isSet(commLogOpt);
            return runHeadlessTransfer(home, options);
        }
        return runHeadless(home, seconds, parser.isSet(commLogOpt), parser.isSet(demoOpt));
    }
    return runWindow(static_cast<QApplication &>(*app), home, parser.isSet(commLogOpt), parser.isSet(demoOpt));
}
