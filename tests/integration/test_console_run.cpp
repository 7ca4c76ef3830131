// The single-chamber console driving a simulated chamber: a fixed-value run
// from the screen, the present value approaching the set value in the labels
// and the trend, and the stop.
#include "ConsoleCore.h"
#include "SimProcess.h"
#include "TestHome.h"
#include "Widgets.h"
#include "frmQM730_RunSimple.h"
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

class ConsoleRunTest : public QObject {
    Q_OBJECT
private slots:
    void fixedRunFromTheScreen()
    {
        QTemporaryDir dir;
        SimProcess sim(dir.path());
        QVERIFY(sim.start({"--machines", "1", "--speed", "30"}));
        TestHome home;
        home.mapPorts({"COM1=" + sim.linkPath()});
        ConsoleCore core(home.path());
        QCOMPARE(core.start(), ConsoleCore::StartResult::Ok);
        ConsoleState &s = core.state();
        QCOMPARE(core.togglePort(), ConsoleCore::PortAction::Opened);
        QTRY_VERIFY_WITH_TIMEOUT(s.CmdState == 1 || s.CmdState == 2, 5000);

        // As the menu opens it: the parameter block is read first.
        s.request_command(3);
        s.RefreshOnOpen = true;
        frmQM730_RunSimple screen(core.context());
        screen.show();
        auto *pv = screen.findChild<QLabel *>(QStringLiteral("lblPV_T"));
        auto *smile = screen.findChild<QLabel *>(QStringLiteral("Image1"));
        QVERIFY(pv && smile);
        QTRY_COMPARE_WITH_TIMEOUT(smile->toolTip(), QStringLiteral("通訊 : 良好"), 5000);
        const double start = pv->text().toDouble();

        // Fixed-value mode, target 60.0, run.
        QTest::mouseClick(indexed<QPushButton>(screen, "btnRunMode", 1), Qt::LeftButton);
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
        screen.close();
    }
};

QTEST_MAIN(ConsoleRunTest)
#include "test_console_run.moc"
