// The field pages: run settings go to the same addresses on every firmware,
// their locks only in Modbus RTU; the curve-save mode and device; the
// communication lists and their two row sets; the password digits and the
// maker's text lines.
#include "PageFixture.h"
#include "frmQM730Func_GrpSave.h"
#include "frmQM730Func_Run.h"
#include "frmQM730SYS_Comm.h"
#include "frmQM730SYS_ETC.h"
#include <QComboBox>
#include <QPushButton>


class FieldPagesTest : public QObject {
    Q_OBJECT
private slots:
    void runSettingsGoToTheSameRowsOnEveryFirmware_data()
    {
        // (Current Modbus RTU against the simulator: tests/integration.)
        QTest::addColumn<Layout>("c"); // the address of row 0
        QTest::newRow("2.31, PC Link") << Layout{2.31, "PC Link", 0};
        QTest::newRow("1.8, Modbus RTU") << Layout{1.8, "Modbus RTU", 40100};
    }
    void runSettingsGoToTheSameRowsOnEveryFirmware()
    {
        QFETCH(Layout, c);
        const int offset = c.address;
        PageFixture f(c.firmware, c.protocol, 1);
        f.open<frmQM730Func_Run>();
        struct Click {
            const char *name;
            int index, row, word;
        };
        // "設定" / "解除" rows hold 1 for "設定".
        for (const Click &c : {Click{"btnRun_Method", 1, 1, 1}, Click{"btnReturn_Proc", 2, 6, 2},
                               Click{"btnMV_Tracking", 0, 7, 1}, Click{"btnPuzzy", 1, 8, 0}, Click{"btnBeep", 0, 9, 1},
                               Click{"btnTouch_Lock", 1, 10, 0}}) {
            f.click(c.name, c.index);
            QCOMPARE(f.mail(), (Mail{102, offset + c.row, c.word}));
            QCOMPARE(f.row(c.row), QString::number(c.word));
        }
        QVERIFY(f.field("txtT_SV")->isEnabled()); // a fixed-value run was chosen above
        f.enterAll({{"txtT_SV", -1, "6000.1", {102, offset + 4, 60000}}, {"txtH_SV", -1, "12.5", {102, offset + 5, 125}},
                    {"txtRun_Hour", -1, "10", {102, offset + 2, 10}}, {"txtRun_Minute", -1, "75", {102, offset + 3, 59}},
                    {"txtAuto_Off", -1, "5", {102, offset + 11, 5}}});
        // The start and program locks are Modbus RTU's, behind the block.
        const bool modbus = offset != 0;
        QCOMPARE(f.button("btnOper_Lock", 1)->isVisible(), modbus);
        if (modbus) {
            f.click("btnOper_Lock", 1);
            QCOMPARE(f.mail(), (Mail{102, 40700, 1}));
            f.click("btnPatt_Lock", 1);
            QCOMPARE(f.mail(), (Mail{102, 40701, 1}));
            QCOMPARE(f.s.image.sprdUP_PLUS.text(1, 89), QStringLiteral("1"));
        }
    }

    void aProgramRunClosesTheFixedRunFields()
    {
        PageFixture f(2.31, QStringLiteral("PC Link"), 1);
        f.up({{1, 0}, {4, 35}});
        f.open<frmQM730Func_Run>();
        QCOMPARE(f.text("txtT_SV"), QStringLiteral("3.5"));
        QVERIFY(!f.field("txtT_SV")->isEnabled() && !f.field("txtRun_Minute")->isEnabled());
        QVERIFY(f.field("txtAuto_Off")->isEnabled());
        f.up(1, 1);
        f.reload();
        QVERIFY(f.field("txtT_SV")->isEnabled());
    }

    void curveSaveModeAndDevice()
    {
        PageFixture f(2.0, QStringLiteral("PC Link"), 1);
        f.up(77, 7); // a mode the list does not name
        f.open<frmQM730Func_GrpSave>();
        QVERIFY(f.chosen("btnSaveAction", 3));
        QVERIFY(!f.button("btnSaveObj", 0)->isVisible());
        QVERIFY(!f.button("btnBufferInit")->isEnabled());
        f.enterAll({{"txtSavePeriod", -1, "0", {102, 76, 1}, "1"}, {"txtSavePeriod", -1, "400", {102, 76, 360}}});
    }

    void communicationListsAndTheirRowSets()
    {
        PageFixture f(2.31, QStringLiteral("PC Link"), 1);
        // RS232: 9600; RS485: 600 (which the list does not offer), Modbus RTU, 2 stop bits.
        f.up({{196, 4}, {203, 0}, {202, 2}, {205, 2}});
        f.open<frmQM730SYS_Comm>();
        auto *baud = f.get<QComboBox>("cmbBaud");
        QCOMPARE(baud->currentText(), QStringLiteral("9600"));
        QTest::keyClick(baud, Qt::Key_Up); // 19200
        QCOMPARE(f.mail(), (Mail{102, 196, 5}));

        f.clearMail();
        f.get<QComboBox>("cmbCommType")->setCurrentIndex(1); // RS485: a reload only
        QCOMPARE(f.s.ReqCmd, 0);
        QCOMPARE(baud->currentIndex(), -1);
        QCOMPARE(baud->placeholderText(), QStringLiteral("600"));
        QCOMPARE(f.get<QComboBox>("cmbProtocol")->currentText(), QStringLiteral("Modbus RTU"));
        QCOMPARE(f.get<QComboBox>("cmbStop")->currentText(), QStringLiteral("2"));
        QTest::keyClick(f.get<QComboBox>("cmbData"), Qt::Key_Down); // from none to "5"
        QCOMPARE(f.mail(), (Mail{102, 206, 5}));
        f.enterAll({{"txtMC_No", -1, "1000", {102, 208, 999}}});

        // Below 2.3 the controller has no Modbus RTU.
        PageFixture g(2.29, QStringLiteral("PC Link"), 1);
        g.up(169, 2);
        g.open<frmQM730SYS_Comm>();
        QCOMPARE(g.get<QComboBox>("cmbProtocol")->count(), 2);
        QCOMPARE(g.get<QComboBox>("cmbProtocol")->currentIndex(), -1);
    }

    void passwordDigitsAndMakersLines_data()
    {
        // (Both protocols of the current layout against the simulator: tests/integration.)
        QTest::addColumn<Layout>("c"); // the address and row of the first digit
        QTest::newRow("2.31, Modbus RTU") << Layout{2.31, "Modbus RTU", 40390, 290};
        QTest::newRow("legacy") << Layout{2.09, "PC Link", 253, 253};
    }
    void passwordDigitsAndMakersLines()
    {
        QFETCH(Layout, c);
        const auto &[firmware, protocol, address, first] = c;
        const bool modbus = protocol == QLatin1String("Modbus RTU");
        PageFixture f(firmware, protocol, 1);
        for (int i = 0; i < 4; ++i)
            f.up(first + i, '1' + i);
        f.open<frmQM730SYS_ETC>();
        // The maker's lines are read as the page opens.
        QCOMPARE(f.s.ReqCmd, modbus ? 9 : 4);
        QCOMPARE(f.s.CmdIndexEnd, 11);
        QCOMPARE(f.text("txtUserPass"), QStringLiteral("1234"));
        f.enter("txtUserPass", QStringLiteral("7"));
        QCOMPARE(f.text("txtUserPass"), QStringLiteral("0007"));
        QCOMPARE(QList<int>({f.s.ReqCmd, f.s.ReqIndex, f.s.CmdIndexEnd}), QList<int>({150, address, first + 3}));
        for (int i = 0; i < 4; ++i)
            QCOMPARE(f.row(first + i), QString::number(i < 3 ? '0' : '7'));
        if (modbus)
            QCOMPARE(f.s.WriteBlock, QByteArray::fromHex("0030003000300037"));

        f.s.image.sprdTD.setText(1, 10, QStringLiteral("CHAMBER 7"));
        f.reload();
        QCOMPARE(f.text("txtUserInfo", 1), QStringLiteral("CHAMBER 7"));
        f.enter("txtUserInfo", 1, QStringLiteral("恆溫恆濕 7"));
        QCOMPARE(f.mail().mid(0, 2), (Mail{103, 10}));
        QCOMPARE(f.s.image.sprdTD.text(1, 10), QStringLiteral("恆溫恆濕 7"));
        QVERIFY(!f.button("btnInitFactory")->isEnabled());
    }

    void holdsAndHumidityBaseFromFirmware18()
    {
        for (double firmware : {1.79, 1.8}) {
            PageFixture f(firmware, QStringLiteral("PC Link"), 1);
            f.open<frmQM730SYS_ETC>();
            for (const char *name : {"btnTPV_HOLD", "btnHPV_HOLD", "btnHCTL_Base"})
                QCOMPARE(f.button(name, 1)->isEnabled(), firmware >= 1.8);
            f.click("btnLanguage", 1);
            QCOMPARE(f.mail(), (Mail{102, 79, 1}));
        }
    }
};

QTEST_MAIN(FieldPagesTest)
#include "tst_fieldpages.moc"
