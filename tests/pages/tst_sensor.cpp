// The sensor page: rows and units that follow the sensor type, the offset
// written to the legacy row of the highlighted type, the filter clamped on
// Enter, the wet-bulb reset, the resolution, and what the firmware shows.
#include "PageFixture.h"
#include "frmQM730SYS_Sensor.h"

class SensorTest : public QObject {
    Q_OBJECT
private slots:
    void theSensorTypeChoosesRowsAndUnits()
    {
        PageFixture f;
        // Temperature: RTD, RTD range high 100.00, voltage range high 5.00; humidity: voltage.
        f.up({{24, 1}, {26, 20000}, {30, 500}, {46, 2}});
        f.open<frmQM730SYS_Sensor>();
        QCOMPARE(f.text("txtInputRange1", 1), QStringLiteral("100.00"));
        QCOMPARE(f.label("lblInput_Unit1"), QStringLiteral("[℃]"));
        QVERIFY(!f.field("txtScale1", 1)->isEnabled());
        QVERIFY(f.field("txtScale2", 0)->isEnabled());
        QCOMPARE(f.label("lblInput_Unit2"), QStringLiteral("[V]"));

        // Changed to a voltage input on the panel: the next reload moves the fields.
        f.up(24, 2);
        f.reload();
        QCOMPARE(f.text("txtInputRange1", 1), QStringLiteral("5.00"));
        QCOMPARE(f.label("lblInput_Unit1"), QStringLiteral("[V]"));
        QVERIFY(f.field("txtScale1", 1)->isEnabled());
        f.enterAll({{"txtInputRange1", 1, "4", {102, 30, 400}}});

        // No humidity sensor: no ranges.
        f.up(46, 0);
        f.reload();
        QVERIFY(!f.field("txtInputRange2", 1)->isEnabled() && !f.field("txtScale2", 0)->isEnabled());
        QCOMPARE(f.label("lblInput_Unit2"), QStringLiteral("[℃]"));

        // A click on the type writes the button's number and moves the fields at once.
        f.click("btnSensorType1", 1);
        QCOMPARE(f.mail(), (Mail{102, 24, 1}));
        QCOMPARE(f.text("txtInputRange1", 1), QStringLiteral("100.00"));
    }

    void theLegacyLayoutKnowsRtdAndVoltage()
    {
        PageFixture f(2.1, QStringLiteral("Modbus RTU"));
        // Temperature: any word above 0 is voltage; humidity RTD, its range high 50.00.
        f.up({{24, 3}, {37, 0}, {39, 15000}});
        f.open<frmQM730SYS_Sensor>();
        QVERIFY(f.chosen("btnSensorType1", 2) && f.chosen("btnSensorType2", 1));
        QCOMPARE(f.text("txtInputRange2", 1), QStringLiteral("50.00"));
        QVERIFY(!f.button("btnSensorType1", 0)->isVisible() && !f.button("btnSensorType2", 0)->isVisible());
        f.click("btnSensorType2", 2);
        QCOMPARE(f.mail(), (Mail{102, 37, 1})); // legacy word, plain row
    }

    void theOffsetGoesToTheLegacyRowOfTheHighlightedType()
    {
        PageFixture f(2.31, QStringLiteral("Modbus RTU"));
        f.up({{24, 1}, {32, 10250}, {46, 2}}); // RTD offset 2.50
        f.open<frmQM730SYS_Sensor>();
        QCOMPARE(f.text("txtBias1"), QStringLiteral("2.50"));
        f.enterAll({{"txtBias1", -1, "1.5", {102, 34, 10150}}, {"txtBias2", -1, "-1", {102, 48, 9900}}});
        QCOMPARE(QStringList({f.row(34), f.row(32)}), QStringList({"10150", "10250"}));
        f.click("btnSensorType1", 2);
        f.enterAll({{"txtBias1", -1, "-150", {102, 35, 0}, "-100.00"}});
    }

    void theFilterIsClampedWhenConfirmed()
    {
        PageFixture f;
        f.open<frmQM730SYS_Sensor>();
        QCOMPARE(f.typeAndLeave("txtLPF1", "1"), QStringLiteral("1"));
        QTest::keyClick(f.field("txtLPF1"), Qt::Key_Return);
        QCOMPARE(f.text("txtLPF1"), QStringLiteral("2"));
        QCOMPARE(f.mail(), (Mail{102, 25, 2}));
        f.enterAll({{"txtLPF2", -1, "181", {102, 47, 180}}});
    }

    void wetBulbResetAndResolution()
    {
        PageFixture f(2.31, QStringLiteral("Modbus RTU"));
        f.up({{69, 10320}, {502, 25055}, {506, 2}}); // settable temperature high 150.55
        f.open<frmQM730SYS_Sensor>();
        QCOMPARE(f.text("txtWetTemp"), QStringLiteral("3.20"));
        QVERIFY(f.chosen("btnResolution", 0));
        f.click("btnWetTempADJ");
        QCOMPARE(f.mail(), (Mail{102, 40169, 10000}));
        QCOMPARE(f.text("txtWetTemp"), QStringLiteral("0"));
        f.click("btnResolution", 1);
        QCOMPARE(f.mail(), (Mail{102, 40606, 1}));
        QCOMPARE(f.s.TempDecimals(), 1);
        QCOMPARE(f.text("txtTempSV_Range", 1), QStringLiteral("150.6"));
    }

    void theFirmwareShowsWhatItHas()
    {
        for (const double v : {2.08, 2.09, 2.2}) {
            PageFixture f(v);
            f.open<frmQM730SYS_Sensor>();
            const bool revision = v >= 2.09;
            QCOMPARE(QList<bool>({f.button("btnAdjustT")->isVisible(), f.button("btnAdjustH")->isVisible(),
                                  f.label("Label4") == QStringLiteral("感測器偏差"), f.label("Label13") == QStringLiteral("感測器偏差")}),
                     QList<bool>(4, revision));
            QCOMPARE(f.button("btnSensorType2", 0)->isVisible(), v >= 2.2);
        }
        // The adjust buttons open the curves of their input.
        PageFixture f;
        f.up({{24, 1}, {32, 10250}, {46, 2}, {55, 9900}}); // RTD offset 2.50, humidity voltage offset -1.00
        f.open<frmQM730SYS_Sensor>();
        QStringList met, offsets;
        f.adjustPages(met, offsets);
        QCOMPARE(met, (QStringList{"frmQM730SYS_Sensor_RevisionT", "frmQM730SYS_Sensor_RevisionH"}));
        QCOMPARE(offsets, (QStringList{"2.50", "-1.00"}));
    }
};

QTEST_MAIN(SensorTest)
#include "tst_sensor.moc"
