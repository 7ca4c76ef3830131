// Every entry of the run settings and system menus, with the port open and a
// machine online, opens its screen (when built), which holds the refresh while
// open and gives it back to the main screen on closing, without a message box.
#include "MainFixture.h"
#include "ScreenRegistry.h"

class MenuWalkTest : public QObject {
    Q_OBJECT
private slots:
    void everyPageEntryOpensItsPage()
    {
        Pty pty;
        MainFixture f([&](TestHome &h) {
            h.mapPorts({"COM1=" + pty.path});
            h.machines({true});
        });
        ConsoleState &s = f.state();
        f.item("mOnlinePortOpen")->trigger();
        QCOMPARE(f.panel(3), QStringLiteral("OPEN"));
        // As after a scan: machine 1 online at firmware 2.31.
        s.sprdStatus.setText(2, 1, QStringLiteral("良好"));
        s.sprdStatus.setText(3, 1, QStringLiteral("2.31"));
        s.machines[0].MachineOnline = true;
        s.CurrentMachine = 1;
        s.applyFirmwareOfRow(1);
        f.core->link().update_menus();
        {
            ModalDriver unlock; // the system pages open to the password
            unlock.dialog("btnOK", "txtSysPass", QStringLiteral("NOLK8264"));
            f.item("mSysLock")->trigger();
            QVERIFY(unlock.done() && unlock.unexpected.isEmpty());
        }

        const QList<QPair<const char *, const char *>> entries{
            {"mFuncRun", "frmQM730Func_Run"},      {"mFuncGrpSave", "frmQM730Func_GrpSave"},
            {"mSysSensor", "frmQM730SYS_Sensor"},  {"mSysControl", "frmQM730SYS_Control"},
            {"mSysInner", "frmQM730SYS_InnerNew"}, {"mSysAlarm", "frmQM730SYS_Alarm"},
            {"mSysPID", "frmQM730SYS_PID"},        {"mSysDI", "frmQM730SYS_DI"},
            {"mSysDO", "frmQM730SYS_DO"},          {"mSysCommunication", "frmQM730SYS_Comm"},
            {"mSysETC", "frmQM730SYS_ETC"}};
        const ScreenRegistry registry = ScreenRegistry::console();
        int walked = 0;
        for (const auto &[item, screen] : entries) {
            const ScreenRegistry::Entry *entry = registry.find(QLatin1String(screen));
            QVERIFY2(entry && f.item(item), screen);
            if (!entry->make)
                continue; // not built yet
            QVERIFY2(f.item(item)->isEnabled(), item);
            ModalDriver d;
            bool registered = false;
            d.then([&registered, &s](QWidget *w) {
                registered = s.ParamPageOpen && s.ActiveRefreshTimer
                             && s.ActiveRefreshTimer == w->findChild<QTimer *>(QStringLiteral("tmrRefresh"));
                static_cast<QDialog *>(w)->reject();
            });
            f.item(item)->trigger();
            QTRY_VERIFY2(d.done(), item);
            QCOMPARE(d.met, QStringList{QLatin1String(screen)});
            QVERIFY2(d.unexpected.isEmpty(), qPrintable(d.unexpected.join(u',')));
            QVERIFY2(registered && s.ActiveRefreshTimer == &f.core->tmrRefresh && !s.ParamPageOpen, screen);
            ++walked;
        }
        QVERIFY(walked >= 8);
    }
};

QTEST_MAIN(MenuWalkTest)
#include "tst_menuwalk.moc"
