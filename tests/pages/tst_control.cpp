// The control output page's own rules: the fields written on purpose to
// another address than they are read from, the period that only an SSR
// output has, the unit of the retransmission range, and the whole-number
// offset.
#include "ModalDriver.h"
#include "PageFixture.h"
#include "frmQM730SYS_Control.h"
#include <QLabel>

class ControlTest : public QObject {
    Q_OBJECT
private slots:
    void addressesOfEachField_data()
    {
        QTest::addColumn<double>("firmware");
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QList<int>>("mail");
        const auto row = [](const char *tag, double v, const char *name, int index, const char *typed, QList<int> mail) {
            QTest::newRow(tag) << v << QString::fromLatin1(name) << index << QString::fromUtf8(typed) << mail;
        };
        // Current layout, Modbus RTU: the humidity fields as any row, the
        // temperature period and limits as plain rows, the offsets to 249 and 251.
        row("humidity period", 2.31, "txtHumiOutPeriod", -1, "5", {102, 40189, 5});
        row("temperature period", 2.31, "txtTempOutPeriod", -1, "5", {102, 73, 5});
        row("temperature limit high", 2.31, "txtTempOutV", 1, "90", {102, 75, 9500});
        row("temperature limit low", 2.31, "txtTempOutV", 0, "-5", {102, 76, 0});
        row("humidity limit high", 2.31, "txtHumiOutV", 1, "90", {102, 40191, 9500});
        row("temperature offset", 2.31, "txtTempOutBias", -1, "-3", {102, 249, 9700});
        row("humidity offset", 2.31, "txtHumiOutBias", -1, "4", {102, 251, 10400});
        row("humidity range", 2.31, "txtRetHumiRange", 1, "80", {102, 40194, 800});
        row("temperature range", 2.31, "txtRetTempRange", 0, "-50", {102, 40179, 5000});
        // Legacy layout: plain rows in every protocol.
        row("legacy humidity period", 2.1, "txtHumiOutPeriod", -1, "5", {102, 62, 5});
        row("legacy temperature offset", 2.1, "txtTempOutBias", -1, "20", {102, 249, 12000});
        row("legacy temperature limit", 2.1, "txtTempOutV", 1, "50", {102, 57, 5500});
    }
    void addressesOfEachField()
    {
        QFETCH(double, firmware);
        QFETCH(QString, name);
        QFETCH(int, index);
        QFETCH(QString, typed);
        QFETCH(QList<int>, mail);
        PageFixture f(firmware, QStringLiteral("Modbus RTU"));
        f.up({Param::txtTempOutV, 1}, 10500);
        f.up({Param::txtTempOutV, 0}, 500);
        f.up({Param::txtHumiOutV, 1}, 10500);
        f.up({Param::txtHumiOutV, 0}, 500);
        f.up({Param::txtRetHumiRange, 0}, 0);
        f.up({Param::txtRetTempRange, 1}, 30000);
        f.open<frmQM730SYS_Control>();
        f.enter(f.field(name.toLatin1().constData(), index), typed);
        QCOMPARE(f.mail(), mail);
    }

    void periodOnlyForAnSsrOutput()
    {
        PageFixture f;
        f.upRow(72, 1); // temperature: SCR
        f.upRow(88, 0); // humidity: SSR
        f.open<frmQM730SYS_Control>();
        QVERIFY(!f.field("txtTempOutPeriod")->isEnabled());
        QVERIFY(f.field("txtHumiOutPeriod")->isEnabled());
        f.click("btnTempOutType", 0);
        QCOMPARE(f.mail(), (QList<int>{102, 72, 0}));
        QVERIFY(f.field("txtTempOutPeriod")->isEnabled());
        QLineEdit *period = f.field("txtTempOutPeriod");
        f.type(period, QStringLiteral("0"));
        f.leave(period);
        QCOMPARE(period->text(), QStringLiteral("1"));
        QLineEdit *bias = f.field("txtTempOutBias");
        f.type(bias, QStringLiteral("25.5"));
        f.leave(bias);
        QCOMPARE(bias->text(), QStringLiteral("20"));
    }

    void theRangeUnitFollowsTheItem()
    {
        PageFixture f;
        f.upRow(77, 1);
        f.open<frmQM730SYS_Control>();
        QLabel *unit = child<QLabel>(*f.page, "lblUnit3");
        QCOMPARE(unit->text(), QStringLiteral("[%]"));
        f.upRow(77, 7); // a word outside the items chooses the last
        f.reload();
        QVERIFY(f.chosen("btnRetTempOut", 2));
        QCOMPARE(unit->text(), QStringLiteral("[℃]"));
        f.click("btnRetTempOut", 1);
        QCOMPARE(f.mail(), (QList<int>{102, 77, 1}));
        QCOMPARE(unit->text(), QStringLiteral("[%]"));
    }

    void theAdjustButtonsOpenTheCurvesOfTheirOutput()
    {
        PageFixture f;
        f.upRow(81, 10500); // temperature retransmission offset 5
        f.upRow(97, 9800);  // humidity -2
        f.open<frmQM730SYS_Control>();
        QTimer *own = f.s.ActiveRefreshTimer;
        ModalDriver d;
        QList<double> offsets;
        const auto readAndClose = [&](QWidget *w) {
            offsets << child<QLineEdit>(*w, "txtOffset")->text().toDouble();
            static_cast<QDialog *>(w)->reject();
        };
        d.then(readAndClose);
        d.then(readAndClose);
        f.click("btnAdjustT");
        f.click("btnAdjustH");
        QTRY_VERIFY(d.done());
        QCOMPARE(d.met, (QStringList{"frmQM730SYS_Control_RevisionT", "frmQM730SYS_Control_RevisionH"}));
        QCOMPARE(offsets, (QList<double>{5, -2}));
        QCOMPARE(f.s.ActiveRefreshTimer.data(), own);
    }

    void revisionButtonsFromTheirFirmware()
    {
        for (const double v : {2.08, 2.09}) {
            PageFixture f(v);
            f.open<frmQM730SYS_Control>();
            QCOMPARE(f.button("btnAdjustT")->isVisible(), v >= 2.09);
            QCOMPARE(f.button("btnAdjustH")->isVisible(), v >= 2.09);
            QCOMPARE(child<QLabel>(*f.page, "lblTempOutBias")->text() == QStringLiteral("溫度輸出偏差"), v >= 2.09);
        }
    }
};

QTEST_MAIN(ControlTest)
#include "tst_control.moc"
