// Pictures of the console's screens for the documentation, taken against the
// demonstration line (qm730-sim beside this program):
//
//   qm730-shot [--home DIR] [--protocol P] [--sim COMMAND]... [--answer NAME]... [--wait S] [--via OPENER] [--file NAME]... [--cell TABLE:ROW:COL[:double]]...
//              [--click NAME[:INDEX]]... [--call METHOD=ARG]... [--after S] --out FILE SCREEN
//   qm730-shot --list
//
// It starts the simulated line, opens the port, waits for the scan and a few
// polls, gives the simulator the --sim control commands (a run started, a
// burn-out) and lets the console poll what they changed, does what the menu
// does before the screen opens, shows the screen,
// waits, clicks the named table cells and then the named controls one after
// another (a second apart), waits --after seconds more (for what a click
// started), and saves the screen as drawn. The screen's file dialog takes the
// --file names in turn ("{home}" stands for the program folder). A screen that another screen opens
// (a dialog asked from a sheet) is taken with --via, the screen shown first,
// and --cell, the click on its sheet that opens it. SCREEN is a name of the screen registry or
// frmQM730_Main. Run it under Xvfb (scripts/screenshots) for the fonts of a
// real desktop.
#include "CommonDialog.h"
#include "ConsoleApplication.h"
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
#include <QLineEdit>
#include <QLocalSocket>
#include <QProcess>
#include <QStringList>
#include <QTableWidget>
#include <QTest>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>
#include <memory>

namespace {

void waitMs(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

// A control by name, or the member of a control array by its index.
QAbstractButton *findButton(QWidget *root, const QString &step)
{
    const QString name = step.section(u':', 0, 0);
    const bool indexed = step.contains(u':');
    const int index = step.section(u':', 1, 1).toInt();
    for (QAbstractButton *b : root->findChildren<QAbstractButton *>(name))
        if (!indexed || b->property("Index").toInt() == index)
            return b;
    return nullptr;
}

// One control command to the simulator; its answer line, or why there is none.
QString simCommand(const QString &socketPath, const QString &command)
{
    QLocalSocket socket;
    socket.connectToServer(socketPath);
    if (!socket.waitForConnected(2000))
        return QStringLiteral("error: ") + socket.errorString();
    socket.write(command.toUtf8() + '\n');
    socket.flush();
    while (!socket.canReadLine())
        if (!socket.waitForReadyRead(2000))
            return QStringLiteral("error: no answer");
    return QString::fromUtf8(socket.readLine()).trimmed();
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    prepareConsoleApplication(app);

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Pictures of the console's screens against the simulated line."));
    parser.addHelpOption();
    const QCommandLineOption homeOpt(QStringLiteral("home"), QStringLiteral("Program folder (default: a new temporary one)."), QStringLiteral("DIR"));
    const QCommandLineOption protocolOpt(QStringLiteral("protocol"), QStringLiteral("Link protocol of a new folder."), QStringLiteral("P"), QStringLiteral("PC Link"));
    const QCommandLineOption waitOpt(QStringLiteral("wait"), QStringLiteral("Seconds between showing the screen and the picture."), QStringLiteral("S"), QStringLiteral("3"));
    const QCommandLineOption clickOpt(QStringLiteral("click"), QStringLiteral("A control to click after the wait (NAME or NAME:INDEX); may be repeated."), QStringLiteral("NAME"));
    const QCommandLineOption cellOpt(QStringLiteral("cell"), QStringLiteral("A table cell to click after the wait (TABLE:ROW:COL from 0, \":double\" for a double click); may be repeated."), QStringLiteral("CELL"));
    const QCommandLineOption callOpt(QStringLiteral("call"), QStringLiteral("Before the picture, call the screen's invokable METHOD with the text ARG (printSheetToPdf=FILE ...); may be repeated."), QStringLiteral("METHOD=ARG"));
    const QCommandLineOption afterOpt(QStringLiteral("after"), QStringLiteral("Seconds to wait after the last click."), QStringLiteral("S"), QStringLiteral("0"));
    const QCommandLineOption outOpt(QStringLiteral("out"), QStringLiteral("The PNG file to write."), QStringLiteral("FILE"));
    const QCommandLineOption listOpt(QStringLiteral("list"), QStringLiteral("List the screens that can be shown."));
    const QCommandLineOption viaOpt(QStringLiteral("via"), QStringLiteral("Show this screen first; SCREEN is what it opens."), QStringLiteral("OPENER"));
    const QCommandLineOption fileOpt(QStringLiteral("file"), QStringLiteral("A file name the screen's file dialog (CommonDialog1) takes in place of asking; may be repeated. {home} is the program folder."), QStringLiteral("NAME"));
    const QCommandLineOption answerOpt(QStringLiteral("answer"), QStringLiteral("On a screen that the screen opens as it loads (the password check), a control to click, or NAME=TEXT a text box to fill; may be repeated."), QStringLiteral("NAME"));
    const QCommandLineOption simOpt(QStringLiteral("sim"), QStringLiteral("A control command for the simulator before the screen opens (\"set 2 rrp 1 1\"); may be repeated."), QStringLiteral("COMMAND"));
    parser.addOptions({homeOpt, protocolOpt, simOpt, answerOpt, waitOpt, viaOpt, fileOpt, cellOpt, clickOpt, callOpt, afterOpt, outOpt, listOpt});
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
    if (parser.isSet(simOpt)) {
        for (const QString &command : parser.values(simOpt)) {
            const QString answer = simCommand(home + QStringLiteral("/sim-control"), command);
            if (answer.startsWith(QLatin1String("error"))) {
                err << command << ": " << answer << '\n';
                return 1;
            }
        }
        waitMs(3000); // polls of what the commands changed
    }

    QWidget *shown = &main;
    std::unique_ptr<QDialog> screen;
    const QString first = parser.isSet(viaOpt) ? parser.value(viaOpt) : name;
    if (first != QLatin1String("frmQM730_Main")) {
        const ScreenRegistry::Entry *entry = screens.find(first);
        if (!entry || !entry->make) {
            err << "no such screen: " << first << '\n';
            return 2;
        }
        screens.prepare(first, core.context());
        screen = entry->make(core.context(), &main);
        if (!screen) {
            err << "the screen made nothing to show\n";
            return 1;
        }
        for (CommonDialog *dialog : screen->findChildren<CommonDialog *>())
            for (QString file : parser.values(fileOpt))
                dialog->answerNext(file.replace(QStringLiteral("{home}"), home));
        // A screen that asks something as it loads (the password check) does
        // so inside show(): the answers are clicked from a timer, which runs
        // in the asking screen's own loop.
        QStringList answers = parser.values(answerOpt);
        auto *answering = new QTimer(&app);
        answering->setInterval(500);
        QObject::connect(answering, &QTimer::timeout, [&answers, answering, &screen] {
            QWidget *asking = QApplication::activeModalWidget();
            if (answers.isEmpty()) {
                answering->stop();
            } else if (asking && asking != screen.get()) {
                const QString step = answers.constFirst();
                if (step.contains(u'=')) {
                    if (auto *box = asking->findChild<QLineEdit *>(step.section(u'=', 0, 0))) {
                        answers.removeFirst();
                        box->setText(step.section(u'=', 1));
                    }
                } else if (QAbstractButton *b = findButton(asking, step)) {
                    answers.removeFirst();
                    b->click();
                }
            }
        });
        if (!answers.isEmpty())
            answering->start();
        screen->show();
        shown = screen.get();
    }
    waitMs(int(parser.value(waitOpt).toDouble() * 1000));

    // The picture is taken a second after the last step. A step that opens a
    // modal screen stays in that screen's own loop until it closes, so the
    // picture is taken from a timer, which runs inside that loop too.
    const QString file = parser.value(outOpt);
    bool taken = false;
    int status = 0;
    auto finish = [&] {
        if (taken)
            return;
        taken = true;
        for (const QString &step : parser.values(callOpt)) {
            bool done = false;
            QMetaObject::invokeMethod(shown, step.section(u'=', 0, 0).toLatin1().constData(), Q_RETURN_ARG(bool, done),
                                      Q_ARG(QString, step.section(u'=', 1)));
            if (!done)
                err << "call failed: " << step << '\n';
        }
        QWidget *target = QApplication::activeModalWidget() ? QApplication::activeModalWidget() : shown;
        if (target->grab().save(file)) {
            out << file << '\n';
        } else {
            err << "cannot write " << file << '\n';
            status = 1;
        }
        out.flush();
        core.shutdown();
        for (QProcess *sim : core.findChildren<QProcess *>()) {
            sim->terminate();
            sim->waitForFinished(2000);
        }
        QCoreApplication::exit(status); // ends a modal screen's loop as well
    };
    const QStringList cells = parser.values(cellOpt);
    const QStringList clicks = parser.values(clickOpt);
    QTimer::singleShot(int(cells.size() + clicks.size() + 1) * 1000 + int(parser.value(afterOpt).toDouble() * 1000),
                       &app, finish);
    for (const QString &step : cells) {
        QWidget *root = QApplication::activeModalWidget() ? QApplication::activeModalWidget() : shown;
        const QStringList parts = step.split(u':');
        auto *view = parts.size() >= 3 ? root->findChild<QTableView *>(parts[0]) : nullptr;
        const int row = parts.value(1).toInt();
        const int col = parts.value(2).toInt();
        if (!view || row < 0 || row >= view->model()->rowCount() || col < 0 || col >= view->model()->columnCount()) {
            err << "no cell " << step << '\n';
            return 1;
        }
        const QModelIndex index = view->model()->index(row, col);
        view->scrollTo(index);
        view->setCurrentIndex(index);
        if (auto *table = qobject_cast<QTableWidget *>(view)) {
            emit table->cellClicked(row, col);
        } else {
            const QPoint at = view->visualRect(index).center();
            QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, at);
        }
        if (parts.value(3) == QLatin1String("double"))
            QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(index).center());
        if (taken)
            return status;
        waitMs(1000);
    }
    for (const QString &step : clicks) {
        QWidget *root = QApplication::activeModalWidget() ? QApplication::activeModalWidget() : shown;
        if (QAbstractButton *b = findButton(root, step)) {
            b->click();
        } else {
            err << "no control " << step << '\n';
            return 1;
        }
        if (taken)
            return status;
        waitMs(1000);
    }
    if (!taken)
        app.exec(); // until the picture is taken
    return status;
}
