// Every screen of the registry opens and closes, with the link closed and
// with a machine online, without a crash and without a message box; and the
// registry does what happens before a screen opens.
#include "ConsoleCore.h"
#include "FakeCommPort.h"
#include "ModalDriver.h"
#include "ScreenRegistry.h"
#include "TestHome.h"
#include <QDialog>
#include <QMessageBox>
#include <QtTest>

namespace {

// Windows a screen opens by itself as it opens (a password asked before a
// page, the program fetch before an editor): answered by closing them.
const QMap<QString, QStringList> kOpensByDesign = {
    {"frmQM730_SysPass_Reg", {"frmQM730_SysPass_Chk"}},
    {"frmQM730Prg_PTN", {"frmQM730_PTN_Recv"}},
    {"frmQM730Prg_SEG", {"frmQM730_PTN_Recv"}},
    {"frmQM730Prg_Managemen", {"frmQM730_PTN_Recv"}},
};

} // namespace

class RegistryTest : public QObject {
    Q_OBJECT

    void openEveryScreen(bool linkOpen)
    {
        TestHome home;
        ConsoleCore core(home.path(), std::make_unique<FakeCommPort>());
        QCOMPARE(core.start(), ConsoleCore::StartResult::Ok);
        ConsoleState &s = core.state();
        if (linkOpen) {
            QCOMPARE(core.togglePort(), ConsoleCore::PortAction::Opened);
            // As after a scan: machine 1 online at firmware 2.31.
            s.sprdStatus.setText(2, 1, QStringLiteral("良好"));
            s.sprdStatus.setColor(2, 1, TextTable::Green);
            s.sprdStatus.setText(3, 1, QStringLiteral("2.31"));
            s.machines[0].MachineOnline = true;
            s.CurrentMachine = 1;
            s.applyFirmwareOfRow(1);
        }
        QWidget parent;
        parent.setObjectName(QStringLiteral("frmQM730_Main"));
        const ScreenRegistry registry = ScreenRegistry::console();
        int opened = 0;
        for (const ScreenRegistry::Entry &e : registry.entries()) {
            if (!e.make)
                continue;
            ModalDriver d;
            std::unique_ptr<QDialog> screen = e.make(core.context(), &parent);
            QVERIFY2(screen, qPrintable(e.name));
            QCOMPARE(screen->objectName(), e.name);
            screen->show();
            QTest::qWait(150);
            screen->reject();
            screen.reset();
            QTest::qWait(20);
            QStringList unexpected = d.unexpected;
            for (const QString &w : kOpensByDesign.value(e.name))
                unexpected.removeAll(w);
            QVERIFY2(unexpected.isEmpty(), qPrintable(e.name + QStringLiteral(" opened: ") + unexpected.join(u',')));
            QVERIFY2(s.ActiveRefreshTimer == &core.tmrRefresh, qPrintable(e.name + QStringLiteral(" kept the refresh")));
            QVERIFY2(!s.ParamPageOpen, qPrintable(e.name + QStringLiteral(" left ParamPageOpen")));
            ++opened;
        }
        QVERIFY(opened >= 10);
        core.shutdown();
    }

private slots:
    void everyScreenOpensWithTheLinkClosed() { openEveryScreen(false); }
    void everyScreenOpensWithAMachineOnline() { openEveryScreen(true); }

    void beforeStepsAndScreensWithoutAMaker()
    {
        TestHome home;
        ConsoleCore core(home.path(), std::make_unique<FakeCommPort>());
        QCOMPARE(core.start(), ConsoleCore::StartResult::Ok);
        ConsoleState &s = core.state();
        ScreenRegistry registry = ScreenRegistry::console();
        QStringList made;
        for (const char *name : {"frmQM730_RunSimple", "frmQM730SYS_Sensor", "frmQM730_RunMulti"})
            registry.setMaker(QLatin1String(name), [&made, name](ScreenContext &, QWidget *) {
                made << QLatin1String(name);
                return std::unique_ptr<QDialog>();
            });
        QVERIFY(registry.open(QStringLiteral("frmQM730_RunSimple"), core.context(), nullptr));
        QCOMPARE(s.ReqCmd, 3); // the parameter block is read first
        QVERIFY(s.RefreshOnOpen);
        s.ReqCmd = 0;
        s.RefreshOnOpen = false;
        QVERIFY(registry.open(QStringLiteral("frmQM730SYS_Sensor"), core.context(), nullptr));
        QVERIFY(s.RefreshOnOpen && s.ReqCmd == 0);
        s.RefreshOnOpen = false;
        QVERIFY(registry.open(QStringLiteral("frmQM730_RunMulti"), core.context(), nullptr));
        QVERIFY(!s.RefreshOnOpen);
        QCOMPARE(made, QStringList({"frmQM730_RunSimple", "frmQM730SYS_Sensor", "frmQM730_RunMulti"}));
        // Without a maker nothing happens at all.
        registry.setMaker(QStringLiteral("frmQM730SYS_Control"), {});
        QVERIFY(!registry.open(QStringLiteral("frmQM730SYS_Control"), core.context(), nullptr));
        QVERIFY(!s.RefreshOnOpen);
        core.shutdown();
    }
};

QTEST_MAIN(RegistryTest)
#include "tst_registry.moc"
