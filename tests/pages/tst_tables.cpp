// The table pages: a cell's line and column give the row and how its word is
// built (relay bytes, an input's action, the firmware's encodings), the alarm
// type comes from the chooser and closes the value cells of "no alarm", and
// input names are text rows.
#include "PageFixture.h"
#include "frmQM730SYS_Alarm.h"
#include "frmQM730SYS_DI.h"
#include "frmQM730SYS_DO.h"

struct DoCase {
    double firmware;
    QString protocol;
    int line, column;
    QString typed;
    int address, word;
    QString shown;
};
Q_DECLARE_METATYPE(DoCase)

class TablesTest : public QObject {
    Q_OBJECT
private slots:
    void aDoCellWritesTheRowOfItsLineAndColumn_data()
    {
        QTest::addColumn<DoCase>("c");
        // Relay rows hold 0x0305 before the edit: relay 5, O/C 3. (An O/C and
        // a soak value against the simulator: tests/integration.)
        QTest::newRow("relay of I/S 1") << DoCase{2.31, "PC Link", 1, 1, "9", 121, 0x0309, "9"};
        QTest::newRow("relay cut to a byte") << DoCase{2.31, "Modbus RTU", 22, 1, "300", 40237, 0x03FF, "255"};
        QTest::newRow("Temp.UP below 2.4") << DoCase{2.31, "PC Link", 41, 3, "25", 156, 3250, "25.0"};
        QTest::newRow("Temp.UP from 2.4") << DoCase{2.4, "Modbus RTU", 41, 3, "25", 40256, 250, "25.0"};
        QTest::newRow("Humi.UP below 2.4") << DoCase{2.31, "PC Link", 44, 3, "25", 162, 1250, "25.0"};
        QTest::newRow("legacy relay, plain row") << DoCase{2.09, "Modbus RTU", 1, 1, "9", 104, 0x0309, "9"};
        QTest::newRow("legacy Temp.UP") << DoCase{2.09, "Modbus RTU", 27, 3, "25", 133, 3250, "25.0"};
        QTest::newRow("legacy Humi.UP") << DoCase{2.09, "PC Link", 30, 3, "25", 139, 1250, "25.0"};
    }
    void aDoCellWritesTheRowOfItsLineAndColumn()
    {
        QFETCH(DoCase, c);
        const auto &[firmware, protocol, line, column, typed, address, word, shown] = c;
        PageFixture f(firmware, protocol, 1);
        const bool current = firmware >= 2.2;
        f.up({current ? Param::sprdDO2_Relay : Param::sprdDO_Relay, line}, 0x0305);
        f.open<frmQM730SYS_DO>();
        auto *table = f.get<QTableWidget>(current ? "sprdDO2" : "sprdDO");
        QVERIFY(table->isVisible());
        QVERIFY(!f.get<QTableWidget>(current ? "sprdDO" : "sprdDO2")->isVisible());
        QCOMPARE(cellText(table, line, 1), QStringLiteral("5"));
        QCOMPARE(cellText(table, line, 2), QStringLiteral("3"));
        QVERIFY(editCell(table, line, column, typed));
        QCOMPARE(f.mail(), (Mail{102, address, word}));
        QCOMPARE(cellText(table, line, column), shown);
        // Lines without a value have no value cell to edit.
        QVERIFY(!editCell(table, 1, 3, QStringLiteral("1")));
    }

    void theAlarmTypeComesFromTheChooser()
    {
        PageFixture f(2.31, QStringLiteral("PC Link"), 1);
        f.up({{106, 3}, {107, 3250}, {110, 0}, {111, 3000}}); // alarm 1: type 3; alarm 2: no alarm
        f.open<frmQM730SYS_Alarm>();
        auto *table = f.get<QTableWidget>("sprdSystem");
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
        QCOMPARE(f.mail(), (Mail{102, 110, 5}));
        QCOMPARE(cellText(table, 2, 3), QStringLiteral("05"));
        QVERIFY(editCell(table, 2, 4, QStringLiteral("-10"))); // open now that the alarm has a type
        QCOMPARE(f.mail(), (Mail{102, 111, 2900}));

        driver.dialog("btnAlarmOff");
        clickCell(table, 1, 3);
        QCOMPARE(f.mail(), (Mail{102, 106, 0}));
        QCOMPARE(cellText(table, 1, 3), QStringLiteral("--"));
        QCOMPARE(cellText(table, 1, 5), QStringLiteral("--"));
        QVERIFY(!editCell(table, 1, 5, QStringLiteral("1")));

        clickCell(table, 2, 2); // target: humidity
        QCOMPARE(f.mail(), (Mail{102, 109, 1}));
        QVERIFY(cellChecked(table, 2, 2) && !cellChecked(table, 2, 1));
    }

    void theAlarmValueFollowsTheFirmware_data()
    {
        // (2.31: theAlarmTypeComesFromTheChooser.)
        QTest::addColumn<Layout>("c");
        QTest::newRow("2.3") << Layout{2.3, "PC Link", 107, 32500};
        QTest::newRow("legacy") << Layout{2.09, "Modbus RTU", 90, 32500};
    }
    void theAlarmValueFollowsTheFirmware()
    {
        QFETCH(Layout, c);
        PageFixture f(c.firmware, c.protocol, 1);
        f.up({Param::sprdSystem_Type, 1}, 1);
        f.open<frmQM730SYS_Alarm>();
        QVERIFY(editCell(f.get<QTableWidget>("sprdSystem"), 1, 4, QStringLiteral("25")));
        QCOMPARE(f.mail(), (Mail{102, c.address, c.word}));
    }

    void inputNamesAreTextRows()
    {
        PageFixture f(2.31, QStringLiteral("PC Link"), 1);
        f.open<frmQM730SYS_DI>();
        // The names are read as the page opens.
        QCOMPARE(f.mail(), (Mail{4, 1, 0}));
        QCOMPARE(f.s.CmdIndexEnd, 8);
        f.s.image.sprdTD.setText(1, 3, QStringLiteral("過熱保護"));
        f.reload();
        auto *inputs = f.get<QTableWidget>("sprdDI");
        QCOMPARE(cellText(inputs, 3, 1), QStringLiteral("過熱保護"));
        QVERIFY(editCell(inputs, 3, 1, QStringLiteral("門開關")));
        QCOMPARE(f.mail().mid(0, 2), (Mail{103, 3}));
        QCOMPARE(f.s.image.sprdTD.text(1, 3), QStringLiteral("門開關"));
        QVERIFY(f.row(189).isEmpty()); // the input's own row is left alone
    }

    void inputWordsPackActionAndByte_data()
    {
        QTest::addColumn<double>("firmware");
        QTest::newRow("2.36") << 2.36;
        QTest::newRow("2.37") << 2.37;
    }
    void inputWordsPackActionAndByte()
    {
        QFETCH(double, firmware);
        const int action = firmware < 2.37 ? 8 : 1; // the action's byte
        PageFixture f(firmware, QStringLiteral("PC Link"), 1);
        // D/I 1: no action, wait 5; run/stop: action, input 2; inputs 1 and 3 set.
        f.up({{187, 5}, {183, 0x0802}, {186, 0b101}});
        f.open<frmQM730SYS_DI>();
        auto *inputs = f.get<QTableWidget>("sprdDI");
        auto *functions = f.get<QTableWidget>("sprdDI_State");
        QVERIFY(!cellChecked(inputs, 1, 2));
        QVERIFY(cellChecked(functions, 1, 2));
        QCOMPARE(cellText(functions, 1, 3), QStringLiteral("2"));

        clickCell(inputs, 1, 2);
        QCOMPARE(f.mail(), (Mail{102, 187, action * 256 + 5}));
        QVERIFY(cellChecked(inputs, 1, 2));
        QVERIFY(editCell(inputs, 1, 3, QStringLiteral("30")));
        QCOMPARE(f.mail(), (Mail{102, 187, action * 256 + 30}));
        QVERIFY(editCell(functions, 1, 3, QStringLiteral("12"))); // there are eight inputs
        QCOMPARE(f.mail(), (Mail{102, 183, 0x0808}));
        clickCell(functions, 1, 2);
        QCOMPARE(f.mail(), (Mail{102, 183, 0x0008}));

        QCOMPARE(ButtonColour::of(f.button("btnDI_Status", 0)), ButtonColour::Selected);
        QCOMPARE(ButtonColour::of(f.button("btnDI_Status", 1)), ButtonColour::FaceColour);
        f.click("btnDI_Status", 1);
        QCOMPARE(f.mail(), (Mail{102, 186, 0b111}));
        QVERIFY(f.chosen("btnDI_Status", 1));
    }
};

QTEST_MAIN(TablesTest)
#include "tst_tables.moc"
