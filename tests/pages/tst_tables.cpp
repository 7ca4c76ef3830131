// The table pages' own rules: a cell's line and column give the row and how
// its word is built (bytes of a relay row, the action of an input, the
// firmware's value encodings), the alarm type comes from the chooser and
// closes the value cells of "no alarm", and input names are text rows.
#include "ButtonColour.h"
#include "CellEdit.h"
#include "ModalDriver.h"
#include "PageFixture.h"
#include "frmQM730SYS_Alarm.h"
#include "frmQM730SYS_DI.h"
#include "frmQM730SYS_DO.h"
#include <QPushButton>

class TablesTest : public QObject {
    Q_OBJECT
private slots:
    void aDoCellWritesTheRowOfItsLineAndColumn_data()
    {
        QTest::addColumn<double>("firmware");
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<int>("line");
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("word");
        QTest::addColumn<QString>("shown");
        // Relay rows hold 0x0305 before the edit: relay 5, O/C 3.
        QTest::newRow("relay of I/S 1") << 2.31 << "PC Link" << 1 << 1 << "9" << 121 << 0x0309 << "9";
        QTest::newRow("O/C of I/S 1, Modbus") << 2.31 << "Modbus RTU" << 1 << 2 << "7" << 40221 << 0x0705 << "7";
        QTest::newRow("relay cut to a byte") << 2.31 << "Modbus RTU" << 22 << 1 << "300" << 40237 << 0x03FF << "255";
        QTest::newRow("Temp.SOAK, opposite sign") << 2.31 << "PC Link" << 42 << 3 << "10" << 158 << 65436 << "10.0";
        QTest::newRow("Temp.UP below 2.4") << 2.31 << "PC Link" << 41 << 3 << "25" << 156 << 3250 << "25.0";
        QTest::newRow("Temp.UP from 2.4") << 2.4 << "Modbus RTU" << 41 << 3 << "25" << 40256 << 250 << "25.0";
        QTest::newRow("Humi.UP below 2.4") << 2.31 << "PC Link" << 44 << 3 << "25" << 162 << 1250 << "25.0";
        QTest::newRow("legacy relay, plain row") << 2.09 << "Modbus RTU" << 1 << 1 << "9" << 104 << 0x0309 << "9";
        QTest::newRow("legacy Temp.UP") << 2.09 << "Modbus RTU" << 27 << 3 << "25" << 133 << 3250 << "25.0";
        QTest::newRow("legacy Humi.UP") << 2.09 << "PC Link" << 30 << 3 << "25" << 139 << 1250 << "25.0";
    }
    void aDoCellWritesTheRowOfItsLineAndColumn()
    {
        QFETCH(double, firmware);
        QFETCH(QString, protocol);
        QFETCH(int, line);
        QFETCH(int, column);
        QFETCH(QString, typed);
        QFETCH(int, address);
        QFETCH(int, word);
        QFETCH(QString, shown);
        PageFixture f(firmware, protocol, 1);
        const bool current = firmware >= 2.2;
        const int relayRow = current ? RowOf({Param::sprdDO2_Relay, line}, firmware) : RowOf({Param::sprdDO_Relay, line}, firmware);
        f.up(relayRow, 0x0305);
        auto page = f.open<frmQM730SYS_DO>();
        auto *table = child<QTableWidget>(*page, current ? "sprdDO2" : "sprdDO");
        QVERIFY(table->isVisible());
        QVERIFY(!child<QTableWidget>(*page, current ? "sprdDO" : "sprdDO2")->isVisible());
        QCOMPARE(cellText(table, line, 1), QStringLiteral("5"));
        QCOMPARE(cellText(table, line, 2), QStringLiteral("3"));
        QVERIFY(editCell(table, line, column, typed));
        QCOMPARE(f.mail(), (QList<int>{102, address, word}));
        QCOMPARE(cellText(table, line, column), shown);
        // Lines without a value have no value cell to edit.
        QVERIFY(!editCell(table, 1, 3, QStringLiteral("1")));
    }

    void theAlarmTypeComesFromTheChooser()
    {
        PageFixture f(2.31, QStringLiteral("PC Link"), 1);
        f.up(106, 3); // alarm 1: type 3
        f.up(107, 3250);
        f.up(110, 0); // alarm 2: no alarm
        f.up(111, 3000);
        auto page = f.open<frmQM730SYS_Alarm>();
        auto *table = child<QTableWidget>(*page, "sprdSystem");
        QCOMPARE(cellText(table, 1, 3), QStringLiteral("03"));
        QCOMPARE(cellText(table, 1, 4), QStringLiteral("25.0"));
        QCOMPARE(cellText(table, 2, 3), QStringLiteral("--"));
        QCOMPARE(cellText(table, 2, 4), QStringLiteral("--"));
        QVERIFY(!editCell(table, 2, 4, QStringLiteral("10")));

        ModalDriver driver;
        driver.then([](QWidget *w) { emit child<QTableWidget>(*w, "vaSpread1")->cellDoubleClicked(4, 0); });
        clickCell(table, 2, 3);
        QVERIFY(driver.done());
        QCOMPARE(driver.met, QStringList{QStringLiteral("frmSys_AlarmCode")});
        QCOMPARE(f.mail(), (QList<int>{102, 110, 5}));
        QCOMPARE(cellText(table, 2, 3), QStringLiteral("05"));
        QVERIFY(editCell(table, 2, 4, QStringLiteral("-10"))); // open now that the alarm has a type
        QCOMPARE(f.mail(), (QList<int>{102, 111, 2900}));

        driver.dialog("btnAlarmOff");
        clickCell(table, 1, 3);
        QCOMPARE(f.mail(), (QList<int>{102, 106, 0}));
        QCOMPARE(cellText(table, 1, 3), QStringLiteral("--"));
        QCOMPARE(cellText(table, 1, 5), QStringLiteral("--"));
        QVERIFY(!editCell(table, 1, 5, QStringLiteral("1")));

        clickCell(table, 2, 2); // target: humidity
        QCOMPARE(f.mail(), (QList<int>{102, 109, 1}));
        QVERIFY(cellChecked(table, 2, 2) && !cellChecked(table, 2, 1));
    }

    void theAlarmValueFollowsTheFirmware_data()
    {
        QTest::addColumn<double>("firmware");
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("word");
        QTest::newRow("2.31") << 2.31 << "PC Link" << 107 << 3250;
        QTest::newRow("2.31, Modbus") << 2.31 << "Modbus RTU" << 40207 << 3250;
        QTest::newRow("2.3") << 2.3 << "PC Link" << 107 << 32500;
        QTest::newRow("legacy") << 2.09 << "Modbus RTU" << 90 << 32500;
    }
    void theAlarmValueFollowsTheFirmware()
    {
        QFETCH(double, firmware);
        QFETCH(QString, protocol);
        QFETCH(int, address);
        QFETCH(int, word);
        PageFixture f(firmware, protocol, 1);
        f.up(RowOf({Param::sprdSystem_Type, 1}, firmware), 1);
        auto page = f.open<frmQM730SYS_Alarm>();
        QVERIFY(editCell(child<QTableWidget>(*page, "sprdSystem"), 1, 4, QStringLiteral("25")));
        QCOMPARE(f.mail(), (QList<int>{102, address, word}));
    }

    void inputNamesAreTextRows()
    {
        PageFixture f(2.31, QStringLiteral("PC Link"), 1);
        auto page = f.open<frmQM730SYS_DI>();
        // The names are read as the page opens.
        QCOMPARE(f.mail(), (QList<int>{4, 1, 0}));
        QCOMPARE(f.s.CmdIndexEnd, 8);
        f.s.image.sprdTD.setText(1, 3, QStringLiteral("過熱保護"));
        f.refresh();
        auto *inputs = child<QTableWidget>(*page, "sprdDI");
        QCOMPARE(cellText(inputs, 3, 1), QStringLiteral("過熱保護"));
        QVERIFY(editCell(inputs, 3, 1, QStringLiteral("門開關")));
        QCOMPARE(f.s.ReqCmd, 103);
        QCOMPARE(f.s.ReqIndex, 3);
        QCOMPARE(f.s.image.sprdTD.text(1, 3), QStringLiteral("門開關"));
        QVERIFY(f.cell(189).isEmpty()); // the input's own row is left alone
    }

    void inputWordsPackActionAndByte_data()
    {
        QTest::addColumn<double>("firmware");
        QTest::addColumn<int>("action");
        QTest::newRow("2.36") << 2.36 << 8;
        QTest::newRow("2.37") << 2.37 << 1;
    }
    void inputWordsPackActionAndByte()
    {
        QFETCH(double, firmware);
        QFETCH(int, action);
        PageFixture f(firmware, QStringLiteral("PC Link"), 1);
        f.up(187, 5);      // D/I 1: no action, wait 5
        f.up(183, 0x0802); // run/stop: action, input 2
        f.up(186, 0b101);  // inputs 1 and 3 set
        auto page = f.open<frmQM730SYS_DI>();
        auto *inputs = child<QTableWidget>(*page, "sprdDI");
        auto *functions = child<QTableWidget>(*page, "sprdDI_State");
        QVERIFY(!cellChecked(inputs, 1, 2));
        QVERIFY(cellChecked(functions, 1, 2));
        QCOMPARE(cellText(functions, 1, 3), QStringLiteral("2"));

        clickCell(inputs, 1, 2);
        QCOMPARE(f.mail(), (QList<int>{102, 187, action * 256 + 5}));
        QVERIFY(cellChecked(inputs, 1, 2));
        QVERIFY(editCell(inputs, 1, 3, QStringLiteral("30")));
        QCOMPARE(f.mail(), (QList<int>{102, 187, action * 256 + 30}));
        QVERIFY(editCell(functions, 1, 3, QStringLiteral("12"))); // there are eight inputs
        QCOMPARE(f.mail(), (QList<int>{102, 183, 0x0808}));
        clickCell(functions, 1, 2);
        QCOMPARE(f.mail(), (QList<int>{102, 183, 0x0008}));

        auto status = [&page](int i) { return indexed<QPushButton>(*page, "btnDI_Status", i); };
        QCOMPARE(ButtonColour::of(status(0)), ButtonColour::Selected);
        QCOMPARE(ButtonColour::of(status(1)), ButtonColour::FaceColour);
        QTest::mouseClick(status(1), Qt::LeftButton);
        QCOMPARE(f.mail(), (QList<int>{102, 186, 0b111}));
        QCOMPARE(ButtonColour::of(status(1)), ButtonColour::Selected);
    }
};

QTEST_MAIN(TablesTest)
#include "tst_tables.moc"
