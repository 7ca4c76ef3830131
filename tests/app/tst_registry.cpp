// Every screen of the registry opens and closes, with the link closed and
// with a machine online, without a crash and without a message box.
#include "ConsoleCore.h"
#include "FakeCommPort.h"
#include "ModalDriver.h"
#include "ScreenRegistry.h"
#include "TestHome.h"
#include <QDialog>
#include <QtTest>

class RegistryTest : public QObject {
    Q_OBJECT

    void openEveryScreen(bool linkOpen)
    {
        // Windows a screen opens by itself (a password before a page, the
        // program fetch before an editor), answered by closing them.
        const QMap<QString, QString> opensByDesign = {{"frmQM730_SysPass_Reg", "frmQM730_SysPass_Chk"},
                                                      {"frmQM730Prg_PTN", "frmQM730_PTN_Recv"},
                                                      {"frmQM730Prg_SEG", "frmQM730_PTN_Recv"},
                                                      {"frmQM730Prg_Managemen", "frmQM730_PTN_Recv"}};
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
            if (opensByDesign.contains(e.name))
                d.unexpected.removeAll(opensByDesign[e.name]);
            QVERIFY2(d.unexpected.isEmpty(), qPrintable(e.name + " opened: " + d.unexpected.join(u',')));
            QVERIFY2(s.ActiveRefreshTimer == &core.tmrRefresh, qPrintable(e.name + " kept the refresh"));
            QVERIFY2(!s.ParamPageOpen, qPrintable(e.name + " left ParamPageOpen"));
            ++opened;
        }
        QVERIFY(opened >= 10);
        core.shutdown();
    }

private slots:
    void everyScreenOpensWithTheLinkClosed() { openEveryScreen(false); }
    void everyScreenOpensWithAMachineOnline() { openEveryScreen(true); }
};

QTEST_MAIN(RegistryTest)
#include "tst_registry.moc"
