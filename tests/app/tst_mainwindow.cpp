#include "ActivityLamp.h"
#include "MachineListChange.h"
#include "MainFixture.h"
#include "ProgramImage.h"
#include "Recorder.h"
#include "ShellOpen.h"
#include <QRadioButton>

namespace {
// The entries the update_menus rule switches, those enabled now.
QStringList switchedOn(MainFixture &f)
{
    QStringList on;
    for (const char *m : {"mPrg", "mFunc", "mSys"})
        if (f.menu(m)->isEnabled())
            on << m;
    for (const char *i : {"mSetPort", "mSetChannel", "mOnlineDateTime", "mOnlineScreen", "mOnlineRun",
                          "mOnlineRunMulti", "mOnlineMonMulti", "mOnlineDownload", "mOnlineUpload"})
        if (f.item(i)->isEnabled())
            on << i;
    for (int i = 1; i <= 18; ++i)
        if (f.buttonEnabled(i))
            on << QStringLiteral("btnMenu%1").arg(i);
    if (f.widget("btnCheckPass")->isEnabled())
        on << "btnCheckPass";
    return on;
}
} // namespace

class MainWindowTest : public QObject {
    Q_OBJECT
private slots:
    void startAndPortOnPty()
    {
        Pty pty;
        MainFixture f([&](TestHome &h) {
            h.mapPorts({"COM1=" + pty.path, "COM2=/nonexistent/ttyQM"});
            h.machines({true, false, true});
        });
        QCOMPARE(QStringList({f.panel(1), f.panel(2), f.panel(6)}), QStringList({"COM1", "115200,N,8,1", "PC Link"}));
        QCOMPARE(f.widget<QTableView>("sprdStatus")->model()->index(1, 0).data().toString(), QStringLiteral("3"));
        QCOMPARE(switchedOn(f), QStringList({"mSetPort", "mSetChannel"}));

        // A port that cannot be opened changes nothing and says nothing.
        ModalDriver d;
        f.state().CommPortNo = 2;
        // The menu entry, its button and the status panel.
        auto port = [&f] { return QStringList{f.item("mOnlinePortOpen")->text(), f.button(0)->text(), f.panel(3)}; };
        f.item("mOnlinePortOpen")->trigger();
        QCOMPARE(port(), QStringList({"通訊端口開啟", "通訊端口開啟", ""}));
        f.state().CommPortNo = 1;
        QTest::mouseClick(f.button(0), Qt::LeftButton);
        QCOMPARE(port(), QStringList({"通訊端口關閉", "通訊端口關閉", "OPEN"}));
        QVERIFY(f.widget("lblMsg_STS")->isVisible());
        QByteArray line; // the scan's first WHO reaches the far end
        QTRY_VERIFY((line += pty.readMaster()).contains("WHO"));

        f.state().machines[0].MachineOnline = true; // as if a machine had answered
        f.core->link().update_menus();
        f.item("mOnlinePortOpen")->trigger();
        QCOMPARE(port(), QStringList({"通訊端口開啟", "通訊端口開啟", "CLOSE"}));
        QVERIFY(!f.widget("lblMsg_STS")->isVisible());
        QVERIFY(!f.core->link().isPortOpen());
        QCOMPARE(switchedOn(f), QStringList({"mSetPort", "mSetChannel"}));
        QVERIFY(d.unexpected.isEmpty());
    }

    void menusFollowTheLink()
    {
        for (const QString &protocol : {QStringLiteral("PC Link"), QStringLiteral("Modbus RTU")}) {
            MainFixture f([&](TestHome &h) {
                h.machines({true, true});
                h.writePortCfg(protocol);
            });
            f.state().machines[1].MachineOnline = true;
            f.core->link().update_menus();
            QStringList all = switchedOn(f);
            QCOMPARE(all.size(), 3 + 7 + 18 + 1 - (protocol == QLatin1String("Modbus RTU")));
            QVERIFY(!all.contains("mSetPort") && !all.contains("mSetChannel"));
            QCOMPARE(all.contains("mOnlineScreen"), protocol == QLatin1String("PC Link"));

            f.state().machines[1].MachineOnline = false;
            f.core->link().update_menus();
            QCOMPARE(switchedOn(f), QStringList({"mSetPort", "mSetChannel"}));
        }
    }

    void machineSelection()
    {
        MainFixture f([](TestHome &h) { h.machines({true, true, true}); });
        TextTable &t = f.state().sprdStatus;
        f.clickMachineRow(1);
        QCOMPARE(f.panel(4), QStringLiteral("開啟通訊端口"));
        t.setColor(2, 2, TextTable::Black);
        f.clickMachineRow(2);
        QCOMPARE(f.panel(4), QStringLiteral("不可使用的機號"));

        for (int row : {1, 3})
            t.setColor(2, row, TextTable::Green);
        t.setText(3, 1, QStringLiteral("2.20"));
        t.setText(3, 3, QStringLiteral("2.09"));
        f.clickMachineRow(1);
        QVERIFY(f.panel(4).isEmpty());
        QCOMPARE(f.state().CurrentMachine, 1);
        QCOMPARE(f.state().PatternCount(), 100);
        // The same machine again keeps the program image; another one clears it.
        ControllerImage &image = f.state().image;
        image.PatternLoaded[4] = image.PatternNameLoaded[7] = true;
        f.clickMachineRow(1);
        QVERIFY(image.PatternLoaded[4] && image.PatternNameLoaded[7]);
        f.clickMachineRow(3);
        QVERIFY(!image.PatternLoaded[4] && !image.PatternNameLoaded[7]);
        QCOMPARE(f.state().CurrentMachine, 3);
        QCOMPARE(f.widget<QLabel>("lblMC_No")->text(), QStringLiteral("3"));
        QCOMPARE(f.state().PatternCount(), 300);
        QCOMPARE(image.sprdUP.rowCount(), 492);
    }

    void locks()
    {
        MainFixture f;
        ModalDriver d;
        // Program lock: the port, leaving and the settings pages are refused.
        f.item("mHelpLock")->trigger();
        QCOMPARE(f.item("mHelpLock")->text(), QStringLiteral("Program &Unlock"));
        QVERIFY(f.state().SystemLocked);
        d.box();
        f.item("mOnlinePortOpen")->trigger();
        d.box();
        QVERIFY(!f.window->close());
        QCOMPARE(d.met, QStringList({"鎖關閉 => 鎖開啟", "鎖關閉 => 鎖開啟"}));
        QVERIFY(!f.core->link().isPortOpen());
        for (const char *i : {"mSetPort", "mSetChannel", "mSetDataSave", "mSetEMail"})
            f.item(i)->trigger();
        d.dialog("btnCancel");
        f.item("mHelpLock")->trigger();
        QVERIFY(f.state().SystemLocked);
        d.dialog("btnOK", "txtSysPass", QStringLiteral("nolk8264"));
        f.item("mHelpLock")->trigger();
        QVERIFY(!f.state().SystemLocked);
        QCOMPARE(f.item("mHelpLock")->text(), QStringLiteral("Program &Lock"));
        d.dialog("btnCancel");
        f.item("mSetPort")->trigger();
        QCOMPARE(d.met.last(), QStringLiteral("frmQM730_Set_Port"));

        // System lock: three wrong tries leave the pages locked, the password opens them.
        auto pagesEnabled = [&] {
            int n = f.widget("picSys")->isEnabled();
            for (const char *p : {"mSysSensor", "mSysControl", "mSysInner", "mSysAlarm", "mSysPID", "mSysDI", "mSysDO",
                                  "mSysCommunication", "mSysETC"})
                n += f.item(p)->isEnabled();
            return n;
        };
        QCOMPARE(pagesEnabled(), 0);
        for (int i = 0; i < 3; ++i) {
            d.dialog("btnOK", "txtSysPass", QStringLiteral("guess"));
            d.box();
        }
        f.item("mSysLock")->trigger();
        QCOMPARE(f.item("mSysLock")->text(), QStringLiteral("鎖開啟"));
        QCOMPARE(pagesEnabled(), 0);
        d.dialog("btnOK", "txtSysPass", QStringLiteral("NOLK8264"));
        f.item("mSysLock")->trigger();
        QCOMPARE(f.item("mSysLock")->text(), QStringLiteral("鎖關閉"));
        QCOMPARE(pagesEnabled(), 10);
        f.item("mSysLock")->trigger(); // locking needs no password
        QCOMPARE(f.item("mSysLock")->text(), QStringLiteral("鎖開啟"));
        QCOMPARE(pagesEnabled(), 0);
        QVERIFY(d.done() && d.unexpected.isEmpty());
    }

    void lamps()
    {
        MainFixture f;
        auto *sendTimer = f.window->findChild<QTimer *>(QStringLiteral("tmrBall_Send"));
        auto *recvTimer = f.window->findChild<QTimer *>(QStringLiteral("tmrBall_Recv"));
        QCOMPARE(sendTimer->interval(), 100);
        QTest::mouseClick(f.widget("Label1"), Qt::LeftButton);
        QCOMPARE(sendTimer->interval(), 110);
        sendTimer->setInterval(59990);
        QTest::mouseClick(f.widget("Label1"), Qt::LeftButton);
        QTest::mouseClick(f.widget("Label1"), Qt::LeftButton);
        QCOMPARE(sendTimer->interval(), 60000);
        recvTimer->setInterval(20);
        QTest::mouseClick(f.widget("Label2"), Qt::RightButton);
        QTest::mouseClick(f.widget("Label2"), Qt::RightButton);
        QCOMPARE(recvTimer->interval(), 10);

        // Red on a send, green on a reply, black when the lit time is over.
        sendTimer->setInterval(100);
        emit f.core->link().frameSent();
        emit f.core->link().bytesReceived();
        QCOMPARE(f.widget<ActivityLamp>("shpSend")->fillColor(), 255);
        QCOMPARE(f.widget<ActivityLamp>("shpRecv")->fillColor(), 65280);
        QTRY_COMPARE(f.widget<ActivityLamp>("shpSend")->fillColor(), 0);
        QTRY_COMPARE(f.widget<ActivityLamp>("shpRecv")->fillColor(), 0);
    }

    void shutdownAsks()
    {
        MainFixture f;
        ModalDriver d;
        QString title;
        d.then([&](QWidget *w) {
            title = w->windowTitle();
            static_cast<QMessageBox *>(w)->button(QMessageBox::No)->click();
        });
        QVERIFY(!f.window->close());
        QCOMPARE(title + d.met.value(0), QStringLiteral("確認退出?"));
        QVERIFY(f.core->recorder().database().isOpen());
        d.box(QMessageBox::Yes);
        f.item("mExit")->trigger();
        QVERIFY(!f.window->isVisible());
        QVERIFY(!f.core->recorder().database().isOpen());
    }

    void patternSource()
    {
        // Read at the start, written by a click.
        MainFixture f([](TestHome &h) { writePtnRecvOpt(h.path(), 1); });
        const auto options = f.window->findChildren<QRadioButton *>(QStringLiteral("optPTN_Data"));
        QVERIFY(!options[0]->isChecked() && options[1]->isChecked());
        QTest::mouseClick(options[0], Qt::LeftButton);
        QCOMPARE(f.state().PtnDataOption, 0);
        QCOMPARE(readPtnRecvOpt(f.home.path()), 0);
        // A file that cannot be written is logged under the click's name.
        QFile::remove(f.home.path() + "/PTN_Recv.OPT");
        QDir(f.home.path()).mkdir("PTN_Recv.OPT");
        QTest::mouseClick(options[1], Qt::LeftButton);
        QCOMPARE(f.state().PtnDataOption, 1);
        QFile log(f.home.path() + "/Err.LOG");
        QVERIFY(log.open(QIODevice::ReadOnly));
        QVERIFY(log.readAll().trimmed().endsWith("optPTN_Data_Click"));
    }

    void screenOpeners()
    {
        ScreenRegistry screens = ScreenRegistry::console();
        QStringList opened;
        QList<QWidget *> parents;
        for (const QString screen : {"frmQM730_RunSimple", "frmQM730_RunMulti", "frmQM730Func_Run", "frmQM730_Set_Multi"})
            screens.setMaker(screen, [&, screen](ScreenContext &, QWidget *parent) {
                parents << parent;
                opened << screen;
                return std::unique_ptr<QDialog>();
            });
        screens.setMaker("frmQM730Prg_PTN", {});
        MainFixture f({}, std::move(screens));
        f.state().SystemLocked = true; // a lock-guarded item does nothing
        f.item("mSetChannel")->trigger();
        f.state().SystemLocked = false;
        f.item("mSetChannel")->trigger();

        f.state().machines[0].MachineOnline = true;
        f.core->link().update_menus();
        f.item("mOnlineRun")->trigger();
        QCOMPARE(f.state().ReqCmd, 3);
        QVERIFY(f.state().RefreshOnOpen);
        f.state().RefreshOnOpen = false;
        f.item("mOnlineRunMulti")->trigger();
        QVERIFY(!f.state().RefreshOnOpen);
        f.state().ReqCmd = 0;
        f.item("mFuncRun")->trigger(); // a page: refreshed on open, nothing read first
        QVERIFY(f.state().RefreshOnOpen && f.state().ReqCmd == 0);
        f.state().RefreshOnOpen = false;
        f.button(2)->click(); // the button stands for mOnlineRun
        QVERIFY(f.state().RefreshOnOpen);
        f.state().RefreshOnOpen = false;
        f.item("mPrgPTN")->trigger(); // no opener: no effect at all
        QVERIFY(!f.state().RefreshOnOpen);
        QCOMPARE(opened, QStringList({"frmQM730_Set_Multi", "frmQM730_RunSimple", "frmQM730_RunMulti",
                                      "frmQM730Func_Run", "frmQM730_RunSimple"}));
        QCOMPARE(parents, QList<QWidget *>(opened.size(), f.window.get()));
    }

    void multiModeEntries()
    {
        // Single mode at start (no Run.INI): no multi-chamber console.
        MainFixture f;
        QVERIFY(!f.item("mOnlineRunMulti")->isVisible());
        QVERIFY(!f.button(17)->isVisibleTo(f.window.get()));
        QVERIFY(f.button(18)->isVisibleTo(f.window.get()));
        QCOMPARE(f.panel(5), QStringLiteral("單機"));

        // A list of three in multi mode: offered, and the machine table has three rows.
        MachineList list;
        list.multiMode = true;
        list.machines = {{2, {}}, {4, {}}, {6, {}}};
        applyMachineList(f.state(), f.core->link(), list);
        QVERIFY(f.item("mOnlineRunMulti")->isVisible());
        QVERIFY(f.button(17)->isVisibleTo(f.window.get()));
        QCOMPARE(f.panel(5), QStringLiteral("多機"));
        QCOMPARE(f.widget<QTableView>("sprdStatus")->model()->rowCount(), 3);
        QCOMPARE(f.widget<QTableView>("sprdStatus")->model()->index(2, 0).data().toString(), QStringLiteral("6"));
    }

    void helpFilesAndAbout()
    {
        MainFixture f;
        QStringList shell;
        setShellOpenHandler([&shell](const QString &target, bool program) {
            shell << (program ? "run " : "open ") + target;
            return true;
        });
        QFile pdf(f.home.path() + "/QM730.pdf");
        QVERIFY(pdf.open(QIODevice::WriteOnly));
        pdf.close();
        ModalDriver d;
        f.item("mHelpManual")->trigger();
        QCOMPARE(shell, QStringList({"open " + pdf.fileName()}));
        d.box(); // a missing file is said to the operator
        f.item("mHelpHelp")->trigger();
        QVERIFY(d.met.value(0).endsWith(QStringLiteral("Help/QM730_ENG.chm")));

        d.then([](QWidget *w) {
            QTest::mouseClick(w->findChild<QLabel *>(QStringLiteral("lblHomePage")), Qt::LeftButton);
            static_cast<QDialog *>(w)->accept();
        });
        f.item("mHelpAbout")->trigger();
        QCOMPARE(d.met.last(), QStringLiteral("frmQM730_About"));
        QCOMPARE(shell.size(), 2);
        QVERIFY(shell[1].startsWith("open http"));
        setShellOpenHandler({});
        QVERIFY(d.unexpected.isEmpty());
    }
};

QTEST_MAIN(MainWindowTest)
#include "tst_mainwindow.moc"
