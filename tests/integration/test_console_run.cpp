// The single-chamber console driving a simulated chamber: a fixed-value run
// from the screen, the present value approaching the set value in the labels
// and the trend, the stop, and a lost link freezing the screen.
#include "ConsoleCore.h"
#include "Files.h"
#include "SimProcess.h"
#include "frmQM730_RunSimple.h"
#include "mdlADO.h"
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

namespace {
QPushButton *indexed(QWidget *w, const char *name, int index)
{
    for (QPushButton *b : w->findChildren<QPushButton *>(QLatin1String(name)))
        if (b->property("Index").toInt() == index)
            return b;
    return nullptr;
}
} // namespace

class ConsoleRunTest : public QObject {
    Q_OBJECT
private slots:
    void fixedRunFromTheScreen()
    {
        QTemporaryDir dir;
        SimProcess sim(dir.path());
        QVERIFY(sim.start({QStringLiteral("--machines"), QStringLiteral("1"), QStringLiteral("--speed"), QStringLiteral("30")}));
        const QString home = dir.path() + QStringLiteral("/home");
        QDir().mkpath(home + QStringLiteral("/CFG"));
        QVERIFY(provisionMailDatabase(home + QStringLiteral("/EMail.mdb")));
        writeTextLinesAtomic(home + QStringLiteral("/PortMap.CFG"), {QStringLiteral("COM1=") + sim.linkPath()});
        writeTextLinesAtomic(home + QStringLiteral("/CFG/Run.INI"), {QStringLiteral("單機"), QStringLiteral("1")});
        ConsoleCore core(home);
        QCOMPARE(core.start(), ConsoleCore::StartResult::Ok);
        ConsoleState &s = core.state();
        QCOMPARE(core.togglePort(), ConsoleCore::PortAction::Opened);
        QTRY_VERIFY_WITH_TIMEOUT(s.CmdState == 1 || s.CmdState == 2, 5000);

        // As the menu opens it: the parameter block is read first.
        s.request_command(3);
        s.RefreshOnOpen = true;
        frmQM730_RunSimple screen(core);
        screen.show();
        auto *pv = screen.findChild<QLabel *>(QStringLiteral("lblPV_T"));
        auto *smile = screen.findChild<QLabel *>(QStringLiteral("Image1"));
        QVERIFY(pv && smile);
        QTRY_COMPARE_WITH_TIMEOUT(smile->toolTip(), QStringLiteral("通訊 : 良好"), 5000);
        const double start = pv->text().toDouble();

        // Fixed-value mode, target 60.0, run.
        QTest::mouseClick(indexed(&screen, "btnRunMode", 1), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(sim.command(QStringLiteral("get 1 up 1")), QStringLiteral("1"), 5000);
        auto *tsv = screen.findChild<QLineEdit *>(QStringLiteral("txtTSV"));
        QTRY_VERIFY(tsv->isEnabled() && !tsv->isReadOnly());
        tsv->setFocus();
        tsv->selectAll();
        QTest::keyClicks(tsv, QStringLiteral("60"));
        QTest::keyClick(tsv, Qt::Key_Return);
        QTRY_COMPARE_WITH_TIMEOUT(sim.command(QStringLiteral("get 1 rrp 12")), QStringLiteral("16000"), 5000);
        QTest::mouseClick(screen.findChild<QPushButton *>(QStringLiteral("btnRun")), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(sim.command(QStringLiteral("get 1 rrp 1")), QStringLiteral("1"), 5000);

        // The chamber heats: the label climbs towards 60 and the trend gets points.
        QTRY_VERIFY_WITH_TIMEOUT(pv->text().toDouble() > start + 3, 20000);
        QTRY_VERIFY_WITH_TIMEOUT(screen.GraphPoints() >= 2, 5000);
        QVERIFY(pv->text().toDouble() <= 60.5);

        QTest::mouseClick(screen.findChild<QPushButton *>(QStringLiteral("btnStop")), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(sim.command(QStringLiteral("get 1 rrp 1")), QStringLiteral("0"), 5000);

        // The line goes silent: the smile turns and the values freeze.
        QCOMPARE(sim.command(QStringLiteral("fault 1 silent on")), QStringLiteral("ok"));
        QTRY_COMPARE_WITH_TIMEOUT(smile->toolTip(), QStringLiteral("通訊 : 不良"), 10000);
        const QString frozen = pv->text();
        QTest::qWait(2500);
        QCOMPARE(pv->text(), frozen);
        screen.close();
    }
};

QTEST_MAIN(ConsoleRunTest)
#include "test_console_run.moc"
