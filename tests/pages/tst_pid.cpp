// The PID pages' own rules: zone boundaries that cannot fall below the one
// before them, gains clamped when confirmed, the table of PID sets with its
// rows, its columns by firmware and the lines the boundaries leave out.
#include "ModalDriver.h"
#include "CellEdit.h"
#include "PageFixture.h"
#include "frmQM730SYS_PID.h"
#include <QTableWidget>

namespace {

QList<int> hiddenLines(const QTableWidget &t)
{
    QList<int> lines;
    for (int r = 0; r < t.rowCount(); ++r)
        if (t.isRowHidden(r))
            lines << r + 1;
    return lines;
}

} // namespace

class PidTest : public QObject {
    Q_OBJECT
private slots:
    void aBoundaryIsAtLeastTheOneBeforeIt()
    {
        PageFixture f(2.31, QStringLiteral("Modbus RTU"));
        for (int i = 1; i <= 4; ++i) {
            f.up({Param::txtTempZone, i}, 1000 + 500 * i); // 50, 100, 150, 200
            f.up({Param::txtHumiZone, i}, 200 * i);        // 20, 40, 60, 80
        }
        f.open<frmQM730SYS_PID>();
        QCOMPARE(f.field("txtTempZone", 1)->text(), QStringLiteral("100.0"));
        f.enter("txtTempZone", 2, QStringLiteral("80"));
        QCOMPARE(f.field("txtTempZone", 2)->text(), QStringLiteral("100.0"));
        QCOMPARE(f.mail(), (QList<int>{102, 40400, 2000}));
        f.enter("txtTempZone", 0, QStringLiteral("250"));
        QCOMPARE(f.field("txtTempZone", 0)->text(), QStringLiteral("200.0"));
        QCOMPARE(f.mail(), (QList<int>{102, 40398, 3000}));
        f.enter("txtHumiZone", 3, QStringLiteral("10"));
        QCOMPARE(f.mail(), (QList<int>{102, 40405, 600}));
        f.enter("txtHumiZone", 0, QStringLiteral("5.5")); // the first has no boundary before it
        QCOMPARE(f.mail(), (QList<int>{102, 40402, 55}));
    }

    void gainsAndTheManualZone()
    {
        PageFixture f(2.1);
        f.open<frmQM730SYS_PID>();
        QLineEdit *gain = f.field("txtT_AT_Gain");
        f.type(gain, QStringLiteral("0"));
        f.leave(gain);
        QCOMPARE(gain->text(), QStringLiteral("0")); // clamped when confirmed only
        QTest::keyClick(gain, Qt::Key_Return);
        QCOMPARE(gain->text(), QStringLiteral("0.01"));
        QCOMPARE(f.mail(), (QList<int>{102, 60, 1}));
        f.enter(f.field("txtH_AT_Gain"), QStringLiteral("12"));
        QCOMPARE(f.field("txtH_AT_Gain")->text(), QStringLiteral("10.00"));
        QCOMPARE(f.mail(), (QList<int>{102, 67, 1000}));
        QLineEdit *manual = f.field("txtPIDZone_Manual");
        f.type(manual, QStringLiteral("17"));
        f.leave(manual);
        QCOMPARE(manual->text(), QStringLiteral("16"));
        f.click("btnPIDZone_Finder", 1);
        QCOMPARE(f.mail(), (QList<int>{102, 74, 1}));
    }

    void theManualZoneGoesToItsRow_data()
    {
        QTest::addColumn<double>("firmware");
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<int>("address");
        QTest::newRow("current, PC Link") << 2.31 << "PC Link" << 295;
        QTest::newRow("current, PC Link + crc") << 2.2 << "PC Link + crc" << 295;
        QTest::newRow("current, Modbus RTU") << 2.31 << "Modbus RTU" << 40395;
        QTest::newRow("legacy, PC Link") << 2.19 << "PC Link" << 75;
        QTest::newRow("legacy, Modbus RTU") << 2.19 << "Modbus RTU" << 75;
    }
    void theManualZoneGoesToItsRow()
    {
        QFETCH(double, firmware);
        QFETCH(QString, protocol);
        QFETCH(int, address);
        PageFixture f(firmware, protocol);
        f.open<frmQM730SYS_PID>();
        const int row = address % 40100;
        f.enter(f.field("txtPIDZone_Manual"), QStringLiteral("7"));
        QCOMPARE(f.mail(), (QList<int>{102, address, 7}));
        QCOMPARE(f.row(row), QStringLiteral("7"));
        // Text that is no number counts as 0; the reload after the reply shows it.
        f.enter(f.field("txtPIDZone_Manual"), QStringLiteral("x9"));
        QCOMPARE(f.mail(), (QList<int>{102, address, 0}));
        QCOMPARE(f.row(row), QStringLiteral("0"));
        f.reload();
        QCOMPARE(f.field("txtPIDZone_Manual")->text(), QStringLiteral("0"));
    }

    void twoFieldsBeforeOneSendTick()
    {
        // One mailbox: the second commit takes the place of the first, and
        // the image keeps both.
        PageFixture f(2.31, QStringLiteral("Modbus RTU"));
        f.open<frmQM730SYS_PID>();
        f.enter(f.field("txtPIDZone_Manual"), QStringLiteral("7"));
        f.enter(f.field("txtT_AT_Gain"), QStringLiteral("2.5"));
        QCOMPARE(f.mail(), (QList<int>{102, 40396, 250}));
        QCOMPARE(f.row(295), QStringLiteral("7"));
        QCOMPARE(f.row(296), QStringLiteral("250"));
    }

    void theTableOfPidSets_data()
    {
        QTest::addColumn<double>("firmware");
        QTest::addColumn<QString>("protocol");
        QTest::newRow("current, Modbus RTU") << 2.31 << "Modbus RTU";
        QTest::newRow("legacy, PC Link") << 1.81 << "PC Link";
    }
    void theTableOfPidSets()
    {
        QFETCH(double, firmware);
        QFETCH(QString, protocol);
        const bool current = firmware >= 2.2;
        PageFixture f(firmware, protocol);
        const int t = current ? 306 : 265, h = current ? 434 : 393, offset = current ? 40100 : 0;
        f.upRow(t + 8 * 15 + 1, 1205);  // zone 16, temperature I: 120.5
        f.upRow(h + 4 * 15 + 3, 10000); // zone 16, humidity O/L: 100.00
        f.open<frmQM730SYS_PID_Val>();
        auto *table = child<QTableWidget>(*f.page, "sprdPID");
        QCOMPARE(table->item(15, 1)->text(), QStringLiteral("120.5"));
        QCOMPARE(table->item(15, 11)->text(), QStringLiteral("100.00"));
        QVERIFY(editCell(table, 16, 12, QStringLiteral("95.5")));
        QCOMPARE(f.mail(), (QList<int>{102, offset + h + 63, 9550})); // the last row of the PID area
        QVERIFY(editCell(table, 1, 8, QStringLiteral("3.5"))); // zone 1, humidity I
        QCOMPARE(f.mail(), (QList<int>{102, offset + t + 5, 35}));
        QCOMPARE(f.row(t + 5), QStringLiteral("35"));
        for (int c = 0; c < 12; ++c)
            QVERIFY(!table->isColumnHidden(c));
    }

    void withoutOutputLimitsBelow18()
    {
        PageFixture f(1.79);
        f.open<frmQM730SYS_PID_Val>();
        auto *table = child<QTableWidget>(*f.page, "sprdPID");
        QList<int> hidden;
        for (int c = 0; c < 12; ++c)
            if (table->isColumnHidden(c))
                hidden << c + 1;
        QCOMPARE(hidden, (QList<int>{5, 6, 11, 12}));
        PageFixture wide(1.8);
        wide.open<frmQM730SYS_PID_Val>();
        QVERIFY(child<QTableWidget>(*wide.page, "sprdPID")->width() > table->width());
    }

    void boundariesThatDoNotRiseHideTheirZones()
    {
        PageFixture f;
        auto &table = *f.open<frmQM730SYS_PID_Val>();
        auto *grid = child<QTableWidget>(table, "sprdPID");
        QList<double> temp{0, 50, 100, 150}, humi{20, 40, 60, 80};
        table.setBoundaries([&](bool t) { return t ? temp : humi; });
        QCOMPARE(hiddenLines(*grid), QList<int>());
        temp = {0, 50, 40, 150}; // the third falls: temperature zones 2 and 3 go
        table.setBoundaries([&](bool t) { return t ? temp : humi; });
        QCOMPARE(hiddenLines(*grid), (QList<int>{3, 4, 7, 8, 11, 12, 15, 16}));
        humi = {20, 10, 60, 80}; // humidity zones 1 to 3 go as well
        table.setBoundaries([&](bool t) { return t ? temp : humi; });
        QCOMPARE(hiddenLines(*grid), (QList<int>{3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}));
        temp = {-150, 0, 0, 0}; // below -100 the first boundary hides everything
        table.setBoundaries([&](bool t) { return t ? temp : humi; });
        QCOMPARE(hiddenLines(*grid).size(), 16);
    }

    void theTableOpensOverThePidPageWithItsBoundaries()
    {
        PageFixture f;
        for (int i = 1; i <= 4; ++i)
            f.up({Param::txtTempZone, i}, 1000 + 500 * i);
        f.up({Param::txtHumiZone, 1}, 500);
        f.up({Param::txtHumiZone, 2}, 100); // falls: humidity zones 1 to 3 go
        f.open<frmQM730SYS_PID>();
        QTimer *own = f.s.ActiveRefreshTimer;
        ModalDriver d;
        QList<int> hidden;
        d.then([&](QWidget *w) {
            hidden = hiddenLines(*child<QTableWidget>(*w, "sprdPID"));
            QVERIFY(f.s.ActiveRefreshTimer != own);
            static_cast<QDialog *>(w)->reject();
        });
        f.click("btnPID_Zone");
        QTRY_VERIFY(d.done());
        QCOMPARE(hidden, (QList<int>{5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}));
        QCOMPARE(f.s.ActiveRefreshTimer.data(), own);
        QVERIFY(f.s.ParamPageOpen);
    }
};

QTEST_MAIN(PidTest)
#include "tst_pid.moc"
