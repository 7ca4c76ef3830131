#include "Headless.h"
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
    bool headless = false, windowless = false;
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
    const QCommandLineOption secondsOpt(QStringLiteral("seconds"), QStringLiteral("With --headless: end cleanly after N seconds."), QStringLiteral("N"));
    const QCommandLineOption commLogOpt(QStringLiteral("comm-log"), QStringLiteral("Write every frame to CommData.Mon in the program's folder."));
    const QCommandLineOption demoOpt(QStringLiteral("demo"), QStringLiteral("Start the chamber simulator with three chambers on one line and run the console against it."));
    const QCommandLineOption provisionOpt(QStringLiteral("provision"), QStringLiteral("Prepare the program's folder as an installer does (an empty EMail.mdb) and exit."));
    parser.addOptions({homeOpt, headlessOpt, secondsOpt, commLogOpt, demoOpt, provisionOpt});
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
        return runHeadless(home, seconds, parser.isSet(commLogOpt), parser.isSet(demoOpt));
    }
    return runWindow(static_cast<QApplication &>(*app), home, parser.isSet(commLogOpt), parser.isSet(demoOpt));
}
