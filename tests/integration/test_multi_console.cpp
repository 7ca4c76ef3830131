// The multi-chamber console on a simulated line of three chambers: clicks
// and entered values command two of them, the third is left alone; a
// chamber that falls silent turns its row red; a new machine list while the
// link is up is scanned and polled.
#include "MachineListChange.h"
#include "Screens.h"
#include "SheetModel.h"
#include "SimConsole.h"
#include "Widgets.h"
#include "frmQM730_DataInput.h"
#include "frmQM730_RunMulti.h"
#include <QLineEdit>
#include <QTableView>
#include <QtTest>

using C = frmQM730_RunMulti;

namespace {

void click(QTableView *view, int row, int col, bool twice = false)
{
    const QModelIndex index = view->model()->index(row - 1, col - 1);
    const QPoint at = view->visualRect(index).center();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, at);
    if (twice)
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, at);
}

// Types a value into the dialog the console opened and presses Enter.
bool enter(QWidget &screen, const QString &value)
{
    for (auto *d : screen.findChildren<frmQM730_DataInput *>()) {
        if (!d->isVisible())
            continue;
        auto *field = child<QLineEdit>(*d, "txtNew");
        field->selectAll();
        QTest::keyClicks(field, value);
        QTest::keyClick(field, Qt::Key_Return);
        return true;
    }
    return false;
}

} // namespace

class MultiConsoleTest : public QObject {
    Q_OBJECT
private slots:
    void commandsTwoOfThree_data() { protocolRows({"PC Link", "Modbus RTU"}); }

    void commandsTwoOfThree()
    {
        QFETCH(QString, protocol);
        SimConsole line;
        QVERIFY(line.bringUp(protocol, QStringLiteral("1,2,3"), {true, true, true}, {}, {QStringLiteral("--speed"), QStringLiteral("0")}));
        SimProcess &sim = *line.sim;
        ConsoleCore &core = *line.core;
        ConsoleState &s = core.state();
        QTRY_VERIFY_WITH_TIMEOUT(s.machines[0].MachineOnline && s.machines[1].MachineOnline
                                     && s.machines[2].MachineOnline && s.CmdState <= 3,
                                 10000);

        C screen(core.context());
        screen.show();
        QVERIFY(QTest::qWaitForWindowExposed(&screen));
        QTableView *sheet = child<QTableView>(screen, "sprdMulti");
        QTRY_COMPARE_WITH_TIMEOUT(screen.sheet().cell(3, C::ColLink).text, QStringLiteral("良好"), 5000);

        // Machine 2: fixed mode, 55 degrees, run.
        click(sheet, 2, C::ColFixed);
        QTRY_COMPARE_WITH_TIMEOUT(sim.command("get 2 up 1"), QStringLiteral("1"), 5000);
        QTRY_VERIFY_WITH_TIMEOUT(screen.isLit(2, C::ColFixed), 5000);
        click(sheet, 2, C::ColTempSV, true);
        QVERIFY(enter(screen, QStringLiteral("55")));
        QTRY_COMPARE_WITH_TIMEOUT(sim.command("get 2 rrp 12"), QStringLiteral("15500"), 5000);
        click(sheet, 2, C::ColRun);
        QTRY_COMPARE_WITH_TIMEOUT(sim.command("get 2 rrp 1"), QStringLiteral("1"), 5000);
        QTRY_VERIFY_WITH_TIMEOUT(screen.isLit(2, C::ColRun) && !screen.isLit(2, C::ColStop), 5000);

        // Machine 3: program mode, start pattern 3, run.
        click(sheet, 3, C::ColProgram);
        QTRY_COMPARE_WITH_TIMEOUT(sim.command("get 3 up 1"), QStringLiteral("0"), 5000);
        QTRY_VERIFY_WITH_TIMEOUT(screen.isLit(3, C::ColProgram), 5000);
        click(sheet, 3, C::ColStartPattern, true);
        QVERIFY(enter(screen, QStringLiteral("3")));
        QTRY_COMPARE_WITH_TIMEOUT(sim.command("get 3 rrp 8"), QStringLiteral("3"), 5000);
        QTRY_COMPARE_WITH_TIMEOUT(screen.sheet().cell(3, C::ColStartPattern).text, QStringLiteral("3"), 5000);
        click(sheet, 3, C::ColRun);
        QTRY_COMPARE_WITH_TIMEOUT(sim.command("get 3 rrp 1"), QStringLiteral("1"), 5000);
        QTRY_COMPARE_WITH_TIMEOUT(screen.sheet().cell(3, C::ColRunPattern).text, QStringLiteral("3"), 5000);

        // Machine 1 was not touched.
        QCOMPARE(sim.command("get 1 rrp 1"), QStringLiteral("0"));
        QCOMPARE(sim.command("get 1 up 1"), QStringLiteral("0"));

        // Machine 3 falls silent: its row turns red and keeps its figures, the others go on.
        const QString frozen = screen.sheet().cell(3, C::ColTempSV).text;
        QCOMPARE(sim.command("fault 3 silent on"), QStringLiteral("ok"));
        QTRY_COMPARE_WITH_TIMEOUT(screen.sheet().cell(3, C::ColLink).text, QStringLiteral("不良"), 10000);
        QCOMPARE(screen.sheet().cell(3, C::ColTempSV).text, frozen);
        QCOMPARE(screen.sheet().cell(2, C::ColLink).text, QStringLiteral("良好"));
        screen.close();
        core.shutdown();
    }

    void newListWhileTheLinkIsUp()
    {
        SimConsole line;
        QVERIFY(line.bringUp(QStringLiteral("PC Link"), QStringLiteral("2,5,9"), {false, true}, {}, {QStringLiteral("--speed"), QStringLiteral("0")}));
        ConsoleCore &core = *line.core;
        ConsoleState &s = core.state();
        QTRY_VERIFY_WITH_TIMEOUT(s.machines[0].MachineOnline && s.CmdState <= 3, 10000);
        QCOMPARE(s.CurrentMachine, 2);

        // Machines 5 and 9 instead: both scanned, polled, and 5 is in the foreground.
        MachineList list;
        list.multiMode = true;
        list.machines = {{5, {}}, {9, {}}};
        QList<int> polled;
        connect(&core.link(), &CommLink::pollCompleted, this, [&](int slot) { polled << slot; });
        applyMachineList(s, core.link(), list);
        QTRY_VERIFY_WITH_TIMEOUT(polled.contains(0) && polled.contains(1), 10000);
        QCOMPARE(s.CurrentMachine, 5);
        QCOMPARE(s.sprdStatus.text(2, 2), QStringLiteral("良好"));
        QCOMPARE(s.image.sprdRCV.text(2, 0), QStringLiteral("9"));
        core.shutdown();
    }
};

QTEST_MAIN(MultiConsoleTest)
#include "test_multi_console.moc"
