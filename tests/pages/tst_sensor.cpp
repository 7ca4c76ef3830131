// The sensor page's own rules: the rows and units that follow the sensor
// type, the offset written to the legacy row of the highlighted type, the
// filter clamped on Enter, the wet-bulb reset, the resolution, and what the
// firmware shows.
#include "ModalDriver.h"
#include "PageFixture.h"
#include "frmQM730SYS_Sensor.h"
#include <QLabel>

class SensorTest : public QObject {
    Q_OBJECT
private slots:
    void theSensorTypeChoosesRowsAndUnits()
    {
        PageFixture f;
        f.upRow(24, 1);     // temperature: RTD
        f.upRow(26, 20000); // RTD range high 100.00
        f.upRow(30, 500);   // voltage range high 5.00
        f.upRow(46, 2);     // humidity: voltage
        f.open<frmQM730SYS_Sensor>();
        QCOMPARE(f.field("txtInputRange1", 1)->text(), QStringLiteral("100.00"));
        QCOMPARE(child<QLabel>(*f.page, "lblInput_Unit1")->text(), QStringLiteral("[℃]"));
        QVERIFY(!f.field("txtScale1", 1)->isEnabled());
        QVERIFY(f.field("txtScale2", 0)->isEnabled());
        QCOMPARE(child<QLabel>(*f.page, "lblInput_Unit2")->text(), QStringLiteral("[V]"));

        // Changed to a voltage input on the panel: the next reload moves the fields.
        f.upRow(24, 2);
        f.reload();
        QCOMPARE(f.field("txtInputRange1", 1)->text(), QStringLiteral("5.00"));
        QCOMPARE(child<QLabel>(*f.page, "lblInput_Unit1")->text(), QStringLiteral("[V]"));
        QVERIFY(f.field("txtScale1", 1)->isEnabled());
        f.enter("txtInputRange1", 1, QStringLiteral("4"));
        QCOMPARE(f.mail(), (QList<int>{102, 30, 400}));

        // No humidity sensor: no ranges.
        f.upRow(46, 0);
        f.reload();
        QVERIFY(!f.field("txtInputRange2", 1)->isEnabled() && !f.field("txtScale2", 0)->isEnabled());
        QCOMPARE(child<QLabel>(*f.page, "lblInput_Unit2")->text(), QStringLiteral("[℃]"));

        // A click on the type writes the button's number and moves the fields at once.
        f.click("btnSensorType1", 1);
        QCOMPARE(f.mail(), (QList<int>{102, 24, 1}));
        QCOMPARE(f.field("txtInputRange1", 1)->text(), QStringLiteral("100.00"));
    }

    void theLegacyLayoutKnowsRtdAndVoltage()
    {
        PageFixture f(2.1, QStringLiteral("Modbus RTU"));
        f.upRow(24, 3);     // any word above 0: voltage
        f.upRow(37, 0);     // humidity: RTD
        f.upRow(39, 15000); // legacy humidity RTD range high 50.00
        f.open<frmQM730SYS_Sensor>();
        QVERIFY(f.chosen("btnSensorType1", 2));
        QVERIFY(f.chosen("btnSensorType2", 1));
        QCOMPARE(f.field("txtInputRange2", 1)->text(), QStringLiteral("50.00"));
        QVERIFY(!f.button("btnSensorType1", 0)->isVisible());
        QVERIFY(!f.button("btnSensorType2", 0)->isVisible());
        f.click("btnSensorType2", 2);
        QCOMPARE(f.mail(), (QList<int>{102, 37, 1})); // legacy word, plain row
    }

    void theOffsetGoesToTheLegacyRowOfTheHighlightedType()
    {
        PageFixture f(2.31, QStringLiteral("Modbus RTU"));
        f.upRow(24, 1);
        f.upRow(32, 10250); // RTD offset 2.50
        f.upRow(46, 2);
        f.open<frmQM730SYS_Sensor>();
        QCOMPARE(f.field("txtBias1")->text(), QStringLiteral("2.50"));
        f.enter(f.field("txtBias1"), QStringLiteral("1.5"));
        QCOMPARE(f.mail(), (QList<int>{102, 34, 10150}));
        QCOMPARE(f.row(34), QStringLiteral("10150"));
        QCOMPARE(f.row(32), QStringLiteral("10250"));
        f.enter(f.field("txtBias2"), QStringLiteral("-1"));
        QCOMPARE(f.mail(), (QList<int>{102, 48, 9900}));
        f.click("btnSensorType1", 2);
        f.enter(f.field("txtBias1"), QStringLiteral("-150"));
        QCOMPARE(f.field("txtBias1")->text(), QStringLiteral("-100.00"));
        QCOMPARE(f.mail(), (QList<int>{102, 35, 0}));
    }

    void theFilterIsClampedWhenConfirmed()
    {
        PageFixture f;
        f.open<frmQM730SYS_Sensor>();
        QLineEdit *filter = f.field("txtLPF1");
        f.type(filter, QStringLiteral("1"));
        f.leave(filter);
        QCOMPARE(filter->text(), QStringLiteral("1"));
        QTest::keyClick(filter, Qt::Key_Return);
        QCOMPARE(filter->text(), QStringLiteral("2"));
        QCOMPARE(f.mail(), (QList<int>{102, 25, 2}));
        f.enter(f.field("txtLPF2"), QStringLiteral("181"));
        QCOMPARE(f.mail(), (QList<int>{102, 47, 180}));
    }

    void wetBulbResetAndResolution()
    {
        PageFixture f(2.31, QStringLiteral("Modbus RTU"));
        f.upRow(69, 10320);
        f.upRow(502, 25055); // settable temperature high 150.55
        f.upRow(506, 2);
        f.open<frmQM730SYS_Sensor>();
        QCOMPARE(f.field("txtWetTemp")->text(), QStringLiteral("3.20"));
        QVERIFY(f.chosen("btnResolution", 0));
        f.click("btnWetTempADJ");
        QCOMPARE(f.mail(), (QList<int>{102, 40169, 10000}));
        QCOMPARE(f.field("txtWetTemp")->text(), QStringLiteral("0"));

        f.click("btnResolution", 1);
        QCOMPARE(f.mail(), (QList<int>{102, 40606, 1}));
        QCOMPARE(f.s.TempDecimals(), 1);
        QCOMPARE(f.field("txtTempSV_Range", 1)->text(), QStringLiteral("150.6"));
    }

    void theAdjustButtonsOpenTheCurvesOfTheirInput()
    {
        PageFixture f;
        f.upRow(24, 1);
        f.upRow(32, 10250); // temperature RTD offset 2.50
        f.upRow(46, 2);
        f.upRow(55, 9900); // humidity voltage offset -1.00
        f.open<frmQM730SYS_Sensor>();
        QTimer *own = f.s.ActiveRefreshTimer;
        ModalDriver d;
        QStringList offsets;
        const auto readAndClose = [&](QWidget *w) {
            offsets << child<QLineEdit>(*w, "txtOffset")->text();
            QVERIFY(f.s.ActiveRefreshTimer != own);
            static_cast<QDialog *>(w)->reject();
        };
        d.then(readAndClose);
        d.then(readAndClose);
        f.click("btnAdjustT");
        f.click("btnAdjustH");
        QTRY_VERIFY(d.done());
        QCOMPARE(d.met, (QStringList{"frmQM730SYS_Sensor_RevisionT", "frmQM730SYS_Sensor_RevisionH"}));
        QCOMPARE(offsets, (QStringList{"2.50", "-1.00"}));
        QCOMPARE(f.s.ActiveRefreshTimer.data(), own);
    }

    void theFirmwareShowsWhatItHas()
    {
        for (const double v : {2.08, 2.09, 2.2}) {
            PageFixture f(v);
            f.open<frmQM730SYS_Sensor>();
            const bool revision = v >= 2.09;
            QCOMPARE(f.button("btnAdjustT")->isVisible(), revision);
            QCOMPARE(f.button("btnAdjustH")->isVisible(), revision);
            QCOMPARE(child<QLabel>(*f.page, "Label4")->text() == QStringLiteral("感測器偏差"), revision);
            QCOMPARE(child<QLabel>(*f.page, "Label13")->text() == QStringLiteral("感測器偏差"), revision);
            QCOMPARE(f.button("btnSensorType2", 0)->isVisible(), v >= 2.2);
        }
    }
};

QTEST_MAIN(SensorTest)
#include "tst_sensor.moc"
