// The PID pages: zone boundaries not below the one before them, gains clamped
// when confirmed, the table of PID sets with its rows, its columns by
// firmware and the lines the boundaries leave out.
#include "PageFixture.h"
#include "frmQM730SYS_PID.h"
#include <QTableWidget>

namespace {

// The lines (or the columns) a table hides, counted from 1.
QList<int> hiddenOf(const QTableWidget &t, bool columns = false)
{
    QList<int> out;
    for (int i = 0; i < (columns ? t.columnCount() : t.rowCount()); ++i)
        if (columns ? t.isColumnHidden(i) : t.isRowHidden(i))
            out << i + 1;
    return out;
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
        QCOMPARE(f.text("txtTempZone", 1), QStringLiteral("100.0"));
        f.enterAll({{"txtTempZone", 2, "80", {102, 40400, 2000}, "100.0"},
                    {"txtTempZone", 0, "250", {102, 40398, 3000}, "200.0"},
                    {"txtHumiZone", 3, "10", {102, 40405, 600}},
                    {"txtHumiZone", 0, "5.5", {102, 40402, 55}}}); // the first has no boundary before it
    }

    void gainsAndTheManualZone()
    {
        PageFixture f(2.1);
        f.open<frmQM730SYS_PID>();
        QCOMPARE(f.typeAndLeave("txtT_AT_Gain", "0"), QStringLiteral("0")); // clamped when confirmed only
        QTest::keyClick(f.field("txtT_AT_Gain"), Qt::Key_Return);
        QCOMPARE(f.text("txtT_AT_Gain"), QStringLiteral("0.01"));
        QCOMPARE(f.mail(), (Mail{102, 60, 1}));
        f.enterAll({{"txtH_AT_Gain", -1, "12", {102, 67, 1000}, "10.00"}});
        QCOMPARE(f.typeAndLeave("txtPIDZone_Manual", "17"), QStringLiteral("16"));
        f.click("btnPIDZone_Finder", 1);
        QCOMPARE(f.mail(), (Mail{102, 74, 1}));
    }

    // One mailbox: the second commit takes the place of the first, and the
    // image keeps both; text that is no number counts as 0.
    void theManualZoneAndTheMailbox()
    {
        PageFixture f(2.31, QStringLiteral("Modbus RTU"));
        f.open<frmQM730SYS_PID>();
        f.enterAll({{"txtPIDZone_Manual", -1, "7", {102, 40395, 7}}, {"txtT_AT_Gain", -1, "2.5", {102, 40396, 250}}});
        QCOMPARE(QStringList({f.row(295), f.row(296)}), QStringList({"7", "250"}));
        f.enterAll({{"txtPIDZone_Manual", -1, "x9", {102, 40395, 0}}});
        QCOMPARE(f.row(295), QStringLiteral("0"));
        f.reload();
        QCOMPARE(f.text("txtPIDZone_Manual"), QStringLiteral("0"));
    }

    void theTableOfPidSets()
    {
        for (const bool current : {true, false}) {
            PageFixture f(current ? 2.31 : 1.81, current ? QStringLiteral("Modbus RTU") : QStringLiteral("PC Link"));
            const int t = current ? 306 : 265, h = current ? 434 : 393, offset = current ? 40100 : 0;
            f.up(t + 8 * 15 + 1, 1205);  // zone 16, temperature I: 120.5
            f.up(h + 4 * 15 + 3, 10000); // zone 16, humidity O/L: 100.00
            auto *table = f.open<frmQM730SYS_PID_Val>()->findChild<QTableWidget *>(QStringLiteral("sprdPID"));
            QCOMPARE(QStringList({cellText(table, 16, 2), cellText(table, 16, 12)}), QStringList({"120.5", "100.00"}));
            QVERIFY(editCell(table, 16, 12, QStringLiteral("95.5")));
            QCOMPARE(f.mail(), (Mail{102, offset + h + 63, 9550})); // the last row of the PID area
            QVERIFY(editCell(table, 1, 8, QStringLiteral("3.5")));  // zone 1, humidity I
            QCOMPARE(f.mail(), (Mail{102, offset + t + 5, 35}));
            QCOMPARE(f.row(t + 5), QStringLiteral("35"));
            QVERIFY(hiddenOf(*table, true).isEmpty());
        }
        // Below 1.8: no output limits, and a narrower table.
        PageFixture f(1.79), wide(1.8);
        auto *table = f.open<frmQM730SYS_PID_Val>()->findChild<QTableWidget *>(QStringLiteral("sprdPID"));
        QCOMPARE(hiddenOf(*table, true), (QList<int>{5, 6, 11, 12}));
        QVERIFY(wide.open<frmQM730SYS_PID_Val>()->findChild<QTableWidget *>(QStringLiteral("sprdPID"))->width() >
                table->width());
    }

    void boundariesThatDoNotRiseHideTheirZones()
    {
        PageFixture f;
        auto &page = *f.open<frmQM730SYS_PID_Val>();
        const auto hidden = [&](QList<double> temp, QList<double> humi) {
            page.setBoundaries([temp, humi](bool t) { return t ? temp : humi; });
            return hiddenOf(*child<QTableWidget>(page, "sprdPID"));
        };
        QCOMPARE(hidden({0, 50, 100, 150}, {20, 40, 60, 80}), QList<int>());
        // The third falls: temperature zones 2 and 3 go.
        QCOMPARE(hidden({0, 50, 40, 150}, {20, 40, 60, 80}), (QList<int>{3, 4, 7, 8, 11, 12, 15, 16}));
        // Below -100 the first boundary hides everything.
        QCOMPARE(hidden({-150, 0, 0, 0}, {20, 40, 60, 80}).size(), 16);

        // Opened over the PID page, the table takes its boundaries and the
        // refresh, and gives the refresh back.
        for (int i = 1; i <= 4; ++i)
            f.up({Param::txtTempZone, i}, 1000 + 500 * i);
        f.up({Param::txtHumiZone, 1}, 500);
        f.up({Param::txtHumiZone, 2}, 100); // falls: humidity zones 1 to 3 go
        f.open<frmQM730SYS_PID>();
        QTimer *own = f.s.ActiveRefreshTimer;
        ModalDriver d;
        QList<int> lines;
        d.then([&](QWidget *w) {
            lines = hiddenOf(*child<QTableWidget>(*w, "sprdPID"));
            QVERIFY(f.s.ActiveRefreshTimer != own);
            static_cast<QDialog *>(w)->reject();
        });
        f.click("btnPID_Zone");
        QTRY_VERIFY(d.done());
        QCOMPARE(lines, (QList<int>{5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}));
        QCOMPARE(f.s.ActiveRefreshTimer.data(), own);
        QVERIFY(f.s.ParamPageOpen);
    }
};

QTEST_MAIN(PidTest)
#include "tst_pid.moc"
