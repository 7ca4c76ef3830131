// Pictures of the console's screens for the documentation, taken against the
// demonstration line (qm730-sim beside this program):
//
//   qm730-shot [--home DIR] [--protocol P] [--wait S] [--file NAME]... [--click NAME[:INDEX]]... --out FILE SCREEN
//   qm730-shot --list
//
// It starts the simulated line, opens the port, waits for the scan and a few
// polls, does what the menu does before the screen opens, shows the screen,
// waits, clicks the named controls one after another (a second apart), and
// answers the screen's file dialog with the --file names in turn ("{home}"
// stands for the program folder), and
// saves the screen as drawn. SCREEN is a name of the screen registry or
// frmQM730_Main. Run it under Xvfb (scripts/screenshots) for the fonts of a
// real desktop.
#include "CommonDialog.h"
#include "ConsoleCore.h"
#include "Demo.h"
#include "Files.h"
#include "Provision.h"
#include "ScreenContext.h"
#include "ScreenRegistry.h"
#include "frmQM730_Main.h"
#include <QAbstractButton>
#include <QApplication>
#include <QCommandLineParser>
#include <QDialog>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>
#include <QTranslator>
#include <memory>

namespace {

void waitMs(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

// A control by name, or the member of a control array by its index.
QAbstractButton *findButton(QWidget *root, const QString &spec)
{
    const QString name = spec.section(u':', 0, 0);
    const bool indexed = spec.contains(u':');
    const int index = spec.section(u':', 1, 1).toInt();
    for (QAbstractButton *b : root->findChildren<QAbstractButton *>(name))
        if (!indexed || b->property("Index").toInt() == index)
            return b;
    return nullptr;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QFont font = app.font();
    font.setFamily(QStringLiteral("Noto Sans CJK TC"));
    app.setFont(font);
    QTranslator translator;
    if (translator.load(QStringLiteral("qtbase_zh_TW"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        app.installTranslator(&translator);

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Pictures of the console's screens against the simulated line."));
    parser.addHelpOption();
    const QCommandLineOption homeOpt(QStringLiteral("home"), QStringLiteral("Program folder (default: a new temporary one)."), QStringLiteral("DIR"));
    const QCommandLineOption protocolOpt(QStringLiteral("protocol"), QStringLiteral("Link protocol of a new folder."), QStringLiteral("P"), QStringLiteral("PC Link"));
    const QCommandLineOption waitOpt(QStringLiteral("wait"), QStringLiteral("Seconds between showing the screen and the picture."), QStringLiteral("S"), QStringLiteral("3"));
    const QCommandLineOption clickOpt(QStringLiteral("click"), QStringLiteral("A control to click after the wait (NAME or NAME:INDEX); may be repeated."), QStringLiteral("NAME"));
    const QCommandLineOption fileOpt(QStringLiteral("file"), QStringLiteral("A file name the screen's file dialog (CommonDialog1) takes in place of asking; may be repeated. {home} is the program folder."), QStringLiteral("NAME"));
    const QCommandLineOption outOpt(QStringLiteral("out"), QStringLiteral("The PNG file to write."), QStringLiteral("FILE"));
    const QCommandLineOption listOpt(QStringLiteral("list"), QStringLiteral("List the screens that can be shown."));
    parser.addOptions({homeOpt, protocolOpt, waitOpt, clickOpt, fileOpt, outOpt, listOpt});
    parser.addPositionalArgument(QStringLiteral("screen"), QStringLiteral("Screen name."));
    parser.process(app);

    const ScreenRegistry screens = ScreenRegistry::console();
    QTextStream out(stdout), err(stderr);
    if (parser.isSet(listOpt)) {
        out << "frmQM730_Main\n";
        for (const auto &e : screens.entries())
            if (e.make)
                out << e.name << '\n';
        return 0;
    }
    if (parser.positionalArguments().size() != 1 || !parser.isSet(outOpt)) {
        err << "usage: qm730-shot [options] --out FILE SCREEN (see --help)\n";
        return 2;
    }
    const QString name = parser.positionalArguments().constFirst();

    QTemporaryDir temp;
    // A folder given is kept between pictures (one screen may read what
    // another saved there); a new one gets the demonstration port settings.
    const QString home = parser.isSet(homeOpt) ? QDir(parser.value(homeOpt)).absolutePath() : temp.path();
    QDir().mkpath(home);
    if (!QFileInfo::exists(home + QStringLiteral("/CommPort.CFG")))
        writeTextLinesAtomic(home + QStringLiteral("/CommPort.CFG"),
                             {QStringLiteral("COM1"), QStringLiteral("115200"), QStringLiteral("N"), QStringLiteral("8"),
                              QStringLiteral("1"), parser.value(protocolOpt), QStringLiteral("OFF")});
    provisionHome(home);
    ConsoleCore core(home);
    QString error;
    if (!startDemoLine(home, &core, &error)) {
        err << error << '\n';
        return 1;
    }
    if (core.start() != ConsoleCore::StartResult::Ok) {
        err << "the console did not start\n";
        return 1;
    }
    frmQM730_Main main(core, screens);
    main.show();
    core.togglePort();
    // The scan, then a few polls of every chamber.
    for (int i = 0; i < 100 && core.state().CmdState == Cmd::Who; ++i)
        waitMs(100);
    waitMs(2500);

    QWidget *shown = &main;
    std::unique_ptr<QDialog> screen;
    if (name != QLatin1String("frmQM730_Main")) {
        const ScreenRegistry::Entry *entry = screens.find(name);
        if (!entry || !entry->make) {
            err << "no such screen: " << name << '\n';
            return 2;
        }
        screens.prepare(name, core.context());
        screen = entry->make(core.context(), &main);
        if (!screen) {
            err << "the screen made nothing to show\n";
            return 1;
        }
        for (CommonDialog *dialog : screen->findChildren<CommonDialog *>())
            for (QString file : parser.values(fileOpt))
                dialog->answerNext(file.replace(QStringLiteral("{home}"), home));
        screen->show();
        shown = screen.get();
    }
    waitMs(int(parser.value(waitOpt).toDouble() * 1000));
    for (const QString &spec : parser.values(clickOpt)) {
        QWidget *root = QApplication::activeModalWidget() ? QApplication::activeModalWidget() : shown;
        if (QAbstractButton *b = findButton(root, spec)) {
            b->click();
        } else {
            err << "no control " << spec << '\n';
            return 1;
        }
        waitMs(1000);
    }
    QWidget *target = QApplication::activeModalWidget() ? QApplication::activeModalWidget() : shown;
    const QString file = parser.value(outOpt);
    if (!target->grab().save(file)) {
        err << "cannot write " << file << '\n';
        return 1;
    }
    out << file << '\n';
    core.shutdown();
    for (QProcess *sim : core.findChildren<QProcess *>()) {
        sim->terminate();
        sim->waitForFinished(2000);
    }
    return 0;
}
