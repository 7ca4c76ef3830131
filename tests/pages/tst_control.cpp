// The control output page: fields written to another address than they are
// read from, the SSR-only period, the range's unit, the whole-number offset.
#include "PageFixture.h"
#include "frmQM730SYS_Control.h"

class ControlTest : public QObject {
    Q_OBJECT
private slots:
    void addressesOfEachField()
    {
        struct Case {
            double firmware;
            const char *name;
            int index;
            QString typed;
            Mail mail;
        };
        // Current layout, Modbus RTU: the humidity fields as any row, the
        // temperature limits as plain rows (the periods: tests/integration),
        // the offsets to 249 and 251. Legacy layout: plain rows in every protocol.
        for (const Case &c : QList<Case>{{2.31, "txtTempOutV", 1, "90", {102, 75, 9500}},
                                         {2.31, "txtTempOutV", 0, "-5", {102, 76, 0}},
                                         {2.31, "txtHumiOutV", 1, "90", {102, 40191, 9500}},
                                         {2.31, "txtTempOutBias", -1, "-3", {102, 249, 9700}},
                                         {2.31, "txtHumiOutBias", -1, "4", {102, 251, 10400}},
                                         {2.31, "txtRetHumiRange", 1, "80", {102, 40194, 800}},
                                         {2.31, "txtRetTempRange", 0, "-50", {102, 40179, 5000}},
                                         {2.1, "txtHumiOutPeriod", -1, "5", {102, 62, 5}},
                                         {2.1, "txtTempOutBias", -1, "20", {102, 249, 12000}},
                                         {2.1, "txtTempOutV", 1, "50", {102, 57, 5500}}}) {
            PageFixture f(c.firmware, QStringLiteral("Modbus RTU"));
            for (Param p : {Param::txtTempOutV, Param::txtHumiOutV}) {
                f.up({p, 1}, 10500);
                f.up({p, 0}, 500);
            }
            f.up({Param::txtRetHumiRange, 0}, 0);
            f.up({Param::txtRetTempRange, 1}, 30000);
            f.open<frmQM730SYS_Control>();
            f.enter(c.name, c.index, c.typed);
            QVERIFY2(f.mail() == c.mail, qPrintable(QStringLiteral("%1 %2 at %3").arg(c.name).arg(c.index).arg(c.firmware)));
        }
    }

    void periodOnlyForAnSsrOutput()
    {
        PageFixture f;
        f.up({{72, 1}, {88, 0}}); // temperature SCR, humidity SSR
        f.open<frmQM730SYS_Control>();
        QVERIFY(!f.field("txtTempOutPeriod")->isEnabled());
        QVERIFY(f.field("txtHumiOutPeriod")->isEnabled());
        f.click("btnTempOutType", 0);
        QCOMPARE(f.mail(), (Mail{102, 72, 0}));
        QVERIFY(f.field("txtTempOutPeriod")->isEnabled());
        QCOMPARE(f.typeAndLeave("txtTempOutPeriod", "0"), QStringLiteral("1"));
        QCOMPARE(f.typeAndLeave("txtTempOutBias", "25.5"), QStringLiteral("20"));
    }

    void theRangeUnitFollowsTheItem()
    {
        PageFixture f;
        f.up(77, 1);
        f.open<frmQM730SYS_Control>();
        QCOMPARE(f.label("lblUnit3"), QStringLiteral("[%]"));
        f.up(77, 7); // a word outside the items chooses the last
        f.reload();
        QVERIFY(f.chosen("btnRetTempOut", 2));
        QCOMPARE(f.label("lblUnit3"), QStringLiteral("[℃]"));
        f.click("btnRetTempOut", 1);
        QCOMPARE(f.mail(), (Mail{102, 77, 1}));
        QCOMPARE(f.label("lblUnit3"), QStringLiteral("[%]"));
    }

    void theAdjustButtonsFromFirmware209OpenTheCurvesOfTheirOutput()
    {
        for (const double v : {2.08, 2.09}) {
            PageFixture f(v);
            f.open<frmQM730SYS_Control>();
            QCOMPARE(QList<bool>({f.button("btnAdjustT")->isVisible(), f.button("btnAdjustH")->isVisible(),
                                  f.label("lblTempOutBias") == QStringLiteral("溫度輸出偏差")}),
                     QList<bool>(3, v >= 2.09));
        }
        PageFixture f;
        f.up({{81, 10500}, {97, 9800}}); // retransmission offsets: temperature 5, humidity -2
        f.open<frmQM730SYS_Control>();
        QStringList met, offsets;
        f.adjustPages(met, offsets);
        QCOMPARE(met, (QStringList{"frmQM730SYS_Control_RevisionT", "frmQM730SYS_Control_RevisionH"}));
        QCOMPARE(offsets, (QStringList{"5.00", "-2.00"}));
    }
};

QTEST_MAIN(ControlTest)
#include "tst_control.moc"
