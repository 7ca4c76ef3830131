// The field pages' own rules: run settings go to the same addresses on
// every firmware and their locks exist only in Modbus RTU; the curve-save
// mode and device; the communication lists, their words and their two row
// sets; the password digits and the maker's text lines.
#include "ButtonColour.h"
#include "EntryField.h"
#include "PageFixture.h"
#include "frmQM730Func_GrpSave.h"
#include "frmQM730Func_Run.h"
#include "frmQM730SYS_Comm.h"
#include "frmQM730SYS_ETC.h"
#include <QComboBox>
#include <QPushButton>

namespace {

QPushButton *button(const QWidget &page, const char *name, int index) { return indexed<QPushButton>(page, name, index); }

} // namespace

class FieldPagesTest : public QObject {
    Q_OBJECT
private slots:
    void runSettingsGoToTheSameRowsOnEveryFirmware_data()
    {
        QTest::addColumn<double>("firmware");
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<int>("offset");
        QTest::newRow("2.31, PC Link") << 2.31 << "PC Link" << 0;
        QTest::newRow("2.31, Modbus RTU") << 2.31 << "Modbus RTU" << 40100;
        QTest::newRow("2.09, PC Link + crc") << 2.09 << "PC Link + crc" << 0;
        QTest::newRow("2.09, Modbus RTU") << 2.09 << "Modbus RTU" << 40100;
        QTest::newRow("1.8, Modbus RTU") << 1.8 << "Modbus RTU" << 40100;
    }
    void runSettingsGoToTheSameRowsOnEveryFirmware()
    {
        QFETCH(double, firmware);
        QFETCH(QString, protocol);
        QFETCH(int, offset);
        PageFixture f(firmware, protocol, 1);
        auto page = f.open<frmQM730Func_Run>();
        struct Click {
            const char *name;
            int index, row, word;
        };
        // "設定" / "解除" rows hold 1 for "設定".
        for (const Click &c : {Click{"btnRun_Method", 1, 1, 1}, Click{"btnReturn_Proc", 2, 6, 2},
                               Click{"btnMV_Tracking", 0, 7, 1}, Click{"btnPuzzy", 1, 8, 0}, Click{"btnBeep", 0, 9, 1},
                               Click{"btnTouch_Lock", 1, 10, 0}}) {
            QTest::mouseClick(button(*page, c.name, c.index), Qt::LeftButton);
            QCOMPARE(f.mail(), (QList<int>{102, offset + c.row, c.word}));
            QCOMPARE(f.cell(c.row), QString::number(c.word));
        }
        struct Entry {
            const char *name;
            const char *typed;
            int row, word;
        };
        for (const Entry &e : {Entry{"txtT_SV", "6000.1", 4, 60000}, Entry{"txtH_SV", "12.5", 5, 125},
                               Entry{"txtRun_Hour", "10", 2, 10}, Entry{"txtRun_Minute", "75", 3, 59},
                               Entry{"txtAuto_Off", "5", 11, 5}}) {
            auto *field = child<EntryField>(*page, e.name);
            QVERIFY(field->isEnabled()); // a fixed-value run was chosen above
            PageFixture::enter(field, QLatin1String(e.typed));
            QCOMPARE(f.mail(), (QList<int>{102, offset + e.row, e.word}));
        }
        // The start and program locks are Modbus RTU's, behind the block.
        const bool modbus = offset != 0;
        QCOMPARE(button(*page, "btnOper_Lock", 1)->isVisible(), modbus);
        if (modbus) {
            QTest::mouseClick(button(*page, "btnOper_Lock", 1), Qt::LeftButton);
            QCOMPARE(f.mail(), (QList<int>{102, 40700, 1}));
            QTest::mouseClick(button(*page, "btnPatt_Lock", 1), Qt::LeftButton);
            QCOMPARE(f.mail(), (QList<int>{102, 40701, 1}));
            QCOMPARE(f.s.image.sprdUP_PLUS.text(1, 89), QStringLiteral("1"));
        }
    }

    void aProgramRunClosesTheFixedRunFields()
    {
        PageFixture f(2.31, QStringLiteral("PC Link"), 1);
        f.up(1, 0);
        f.up(4, 35);
        auto page = f.open<frmQM730Func_Run>();
        auto *ramp = child<EntryField>(*page, "txtT_SV");
        QCOMPARE(ramp->text(), QStringLiteral("3.5"));
        QVERIFY(!ramp->isEnabled() && !child<EntryField>(*page, "txtRun_Minute")->isEnabled());
        QVERIFY(child<EntryField>(*page, "txtAuto_Off")->isEnabled());
        f.up(1, 1);
        f.refresh();
        QVERIFY(ramp->isEnabled());
    }

    void curveSaveModeAndDevice()
    {
        PageFixture f(2.0, QStringLiteral("PC Link"), 1);
        f.up(77, 7); // a mode the list does not name
        auto page = f.open<frmQM730Func_GrpSave>();
        QCOMPARE(ButtonColour::of(button(*page, "btnSaveAction", 3)), ButtonColour::Selected);
        QVERIFY(!button(*page, "btnSaveObj", 0)->isVisible());
        QVERIFY(!child<QPushButton>(*page, "btnBufferInit")->isEnabled());
        auto *period = child<EntryField>(*page, "txtSavePeriod");
        PageFixture::enter(period, QStringLiteral("0"));
        QCOMPARE(period->text(), QStringLiteral("1"));
        QCOMPARE(f.mail(), (QList<int>{102, 76, 1}));
        PageFixture::enter(period, QStringLiteral("400"));
        QCOMPARE(f.mail(), (QList<int>{102, 76, 360}));
    }

    void communicationListsAndTheirRowSets()
    {
        PageFixture f(2.31, QStringLiteral("PC Link"), 1);
        f.up(196, 4); // RS232: 9600
        f.up(203, 0); // RS485: 600, which the list does not offer
        f.up(202, 2); // RS485: Modbus RTU
        f.up(205, 2);
        auto page = f.open<frmQM730SYS_Comm>();
        auto *baud = child<QComboBox>(*page, "cmbBaud");
        auto *type = child<QComboBox>(*page, "cmbCommType");
        QCOMPARE(baud->currentText(), QStringLiteral("9600"));
        QTest::keyClick(baud, Qt::Key_Up); // 19200
        QCOMPARE(f.mail(), (QList<int>{102, 196, 5}));

        f.clearMail();
        type->setCurrentIndex(1); // RS485: a reload only
        QCOMPARE(f.s.ReqCmd, 0);
        QCOMPARE(baud->currentIndex(), -1);
        QCOMPARE(baud->placeholderText(), QStringLiteral("600"));
        QCOMPARE(child<QComboBox>(*page, "cmbProtocol")->currentText(), QStringLiteral("Modbus RTU"));
        QCOMPARE(child<QComboBox>(*page, "cmbStop")->currentText(), QStringLiteral("2"));
        QTest::keyClick(child<QComboBox>(*page, "cmbData"), Qt::Key_Down); // from none to "5"
        QCOMPARE(f.mail(), (QList<int>{102, 206, 5}));
        PageFixture::enter(child<EntryField>(*page, "txtMC_No"), QStringLiteral("1000"));
        QCOMPARE(f.mail(), (QList<int>{102, 208, 999}));

        // Below 2.3 the controller has no Modbus RTU.
        PageFixture g(2.29, QStringLiteral("PC Link"), 1);
        g.up(169, 2);
        auto older = g.open<frmQM730SYS_Comm>();
        auto *protocol = child<QComboBox>(*older, "cmbProtocol");
        QCOMPARE(protocol->count(), 2);
        QCOMPARE(protocol->currentIndex(), -1);
    }

    void passwordDigitsAndMakersLines_data()
    {
        QTest::addColumn<double>("firmware");
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<int>("first");
        QTest::addColumn<int>("address");
        QTest::newRow("2.31, PC Link") << 2.31 << "PC Link" << 290 << 290;
        QTest::newRow("2.31, Modbus RTU") << 2.31 << "Modbus RTU" << 290 << 40390;
        QTest::newRow("legacy") << 2.09 << "PC Link" << 253 << 253;
    }
    void passwordDigitsAndMakersLines()
    {
        QFETCH(double, firmware);
        QFETCH(QString, protocol);
        QFETCH(int, first);
        QFETCH(int, address);
        const bool modbus = protocol == QLatin1String("Modbus RTU");
        PageFixture f(firmware, protocol, 1);
        for (int i = 0; i < 4; ++i)
            f.up(first + i, '1' + i);
        auto page = f.open<frmQM730SYS_ETC>();
        // The maker's lines are read as the page opens.
        QCOMPARE(f.s.ReqCmd, modbus ? 9 : 4);
        QCOMPARE(f.s.CmdIndexEnd, 11);
        auto *password = child<EntryField>(*page, "txtUserPass");
        QCOMPARE(password->text(), QStringLiteral("1234"));

        PageFixture::enter(password, QStringLiteral("7"));
        QCOMPARE(password->text(), QStringLiteral("0007"));
        QCOMPARE(QList<int>({f.s.ReqCmd, f.s.ReqIndex, f.s.CmdIndexEnd}), QList<int>({150, address, first + 3}));
        for (int i = 0; i < 4; ++i)
            QCOMPARE(f.cell(first + i), QString::number(i < 3 ? '0' : '7'));
        if (modbus)
            QCOMPARE(f.s.WriteBlock, QByteArray::fromHex("0030003000300037"));

        f.s.image.sprdTD.setText(1, 10, QStringLiteral("CHAMBER 7"));
        f.refresh();
        auto *line = indexed<EntryField>(*page, "txtUserInfo", 1);
        QCOMPARE(line->text(), QStringLiteral("CHAMBER 7"));
        PageFixture::enter(line, QStringLiteral("恆溫恆濕 7"));
        QCOMPARE(QList<int>({f.s.ReqCmd, f.s.ReqIndex}), QList<int>({103, 10}));
        QCOMPARE(f.s.image.sprdTD.text(1, 10), QStringLiteral("恆溫恆濕 7"));
        QVERIFY(!child<QPushButton>(*page, "btnInitFactory")->isEnabled());
    }

    void holdsAndHumidityBaseFromFirmware18()
    {
        for (double firmware : {1.79, 1.8}) {
            PageFixture f(firmware, QStringLiteral("PC Link"), 1);
            auto page = f.open<frmQM730SYS_ETC>();
            for (const char *name : {"btnTPV_HOLD", "btnHPV_HOLD", "btnHCTL_Base"})
                QCOMPARE(button(*page, name, 1)->isEnabled(), firmware >= 1.8);
            QTest::mouseClick(button(*page, "btnLanguage", 1), Qt::LeftButton);
            QCOMPARE(f.mail(), (QList<int>{102, 79, 1}));
        }
    }
};

QTEST_MAIN(FieldPagesTest)
#include "tst_fieldpages.moc"
