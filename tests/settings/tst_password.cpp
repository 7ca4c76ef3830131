// The system password: asked before the system pages, changed and kept in the ID file.
#include "ConsoleCore.h"
#include "ScreenBench.h"
#include "ModalDriver.h"
#include "TestHome.h"
#include "frmQM730_SysPass_Chk.h"
#include "frmQM730_SysPass_Reg.h"
#include <QLabel>
#include <QtTest>

class PasswordTest : public QObject {
    Q_OBJECT
private slots:
    void check()
    {
        TestHome home;
        ScreenBench b(home.path());
        b.state.SystemPassword = QStringLiteral("QM730ABC");
        ModalDriver d;
        d.dialog("btnCancel", "txtSysPass", QStringLiteral("QM730ABC"));
        QVERIFY(!frmQM730_SysPass_Chk::check(b.ctx, nullptr));
        // Wrong tries keep the page open with the field emptied; the case does not count.
        for (int i = 0; i < 2; ++i) {
            d.dialog("btnOK", "txtSysPass", QStringLiteral("wrong"));
            d.box();
        }
        d.then([](QWidget *w) {
            auto *field = w->findChild<QLineEdit *>(QStringLiteral("txtSysPass"));
            QVERIFY(field->text().isEmpty());
            field->setText(QStringLiteral("Qm730abc"));
            w->findChild<QPushButton *>(QStringLiteral("btnOK"))->click();
        });
        QVERIFY(frmQM730_SysPass_Chk::check(b.ctx, nullptr));
        QCOMPARE(d.met.count(QStringLiteral("密碼錯誤!")), 2);
        QVERIFY(d.done() && d.unexpected.isEmpty());
    }

    void change()
    {
        TestHome home;
        ModalDriver d;
        {
            ConsoleCore core(home.path());
            QCOMPARE(core.start(), ConsoleCore::StartResult::Ok);
            // Without the present password the page closes right after it opens.
            d.dialog("btnCancel");
            QCOMPARE(frmQM730_SysPass_Reg(core.context(), nullptr).exec(), int(QDialog::Rejected));
            QVERIFY(!loadSystemPassword(home.path()));

            d.dialog("btnOK", "txtSysPass", QStringLiteral("NOLK8264"));
            d.then([](QWidget *w) {
                QCOMPARE(w->findChild<QLabel *>(QStringLiteral("lblOldPass"))->text(), QStringLiteral("********"));
                w->findChild<QLineEdit *>(QStringLiteral("txtNewPass"))->setText(QStringLiteral("NewPass9"));
                w->findChild<QPushButton *>(QStringLiteral("btnOK"))->click();
            });
            QCOMPARE(frmQM730_SysPass_Reg(core.context(), nullptr).exec(), int(QDialog::Accepted));
            QCOMPARE(core.state().SystemPassword, QStringLiteral("NewPass9"));
            core.shutdown();
        }
        // The next start reads it from the ID file.
        ConsoleCore again(home.path());
        QCOMPARE(again.start(), ConsoleCore::StartResult::Ok);
        QCOMPARE(again.state().SystemPassword, QStringLiteral("NewPass9"));
        // An empty password is stored, and then an empty field passes.
        d.dialog("btnOK", "txtSysPass", QStringLiteral("newpass9"));
        d.dialog("btnOK", "txtNewPass", QString());
        frmQM730_SysPass_Reg(again.context(), nullptr).exec();
        QCOMPARE(loadSystemPassword(home.path()), std::optional<QString>(QString()));
        d.dialog("btnOK", "txtSysPass", QString());
        QVERIFY(frmQM730_SysPass_Chk::check(again.context(), nullptr));
        again.shutdown();
        QVERIFY(d.done() && d.unexpected.isEmpty());
    }
};

QTEST_MAIN(PasswordTest)
#include "tst_password.moc"
