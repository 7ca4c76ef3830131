// The single-chamber console driving a simulated chamber: a fixed-value run
// from the screen, the present value approaching the set value in the labels
// and the trend, and the stop.
#include "Screens.h"
#include "SimConsole.h"
#include "Widgets.h"
#include "frmQM730_RunSimple.h"
#include <QLabel>
#include <QPushButton>
#include <QtTest>

class ConsoleRunTest : public QObject {
    Q_OBJECT
private slots:
    void fixedRunFromTheScreen()
    {
        SimConsole line;
        QVERIFY(line.bringUp(QStringLiteral("PC Link"), QStringLiteral("1"), {}, {}, {QStringLiteral("--speed"), QStringLiteral("30")}));
        SimProcess &sim = *line.sim;
        ConsoleState &s = line.core->state();
        QTRY_VERIFY_WITH_TIMEOUT(polling(s), 5000);

        // As the menu opens it: the parameter block is read first.
        s.request_command(3);
        s.RefreshOnOpen = true;
        frmQM730_RunSimple screen(line.core->context());
        screen.show();
        auto *pv = child<QLabel>(screen, "lblPV_T");
        QTRY_COMPARE_WITH_TIMEOUT(child<QLabel>(screen, "Image1")->toolTip(), QStringLiteral("通訊 : 良好"), 5000);
        const double start = pv->text().toDouble();

        // Fixed-value mode, target 60.0, run.
        QTest::mouseClick(indexed<QPushButton>(screen, "btnRunMode", 1), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(sim.command(QStringLiteral("get 1 up 1")), QStringLiteral("1"), 5000);
        auto *tsv = child<QLineEdit>(screen, "txtTSV");
        QTRY_VERIFY(tsv->isEnabled() && !tsv->isReadOnly());
        enter(tsv, QStringLiteral("60"));
        QTRY_COMPARE_WITH_TIMEOUT(sim.command(QStringLiteral("get 1 rrp 12")), QStringLiteral("16000"), 5000);
        QTest::mouseClick(child<QPushButton>(screen, "btnRun"), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(sim.command(QStringLiteral("get 1 rrp 1")), QStringLiteral("1"), 5000);

        // The chamber heats: the label climbs towards 60 and the trend gets points.
        QTRY_VERIFY_WITH_TIMEOUT(pv->text().toDouble() > start + 3, 20000);
        QTRY_VERIFY_WITH_TIMEOUT(screen.GraphPoints() >= 2, 5000);
        QVERIFY(pv->text().toDouble() <= 60.5);

        QTest::mouseClick(child<QPushButton>(screen, "btnStop"), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(sim.command(QStringLiteral("get 1 rrp 1")), QStringLiteral("0"), 5000);
    }
};

QTEST_MAIN(ConsoleRunTest)
#include "test_console_run.moc"
