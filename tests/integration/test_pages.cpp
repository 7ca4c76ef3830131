// The system pages against the simulator: a field, a cell of the PID table
// and a revision curve go to the controller and come back on the reload,
// in PC Link and Modbus RTU, on the current and the legacy layout.
#include "CellEdit.h"
#include "Screens.h"
#include "SimConsole.h"
#include "Widgets.h"
#include "frmQM730SYS_Control.h"
#include "frmQM730SYS_PID.h"
#include "frmQM730SYS_Revision.h"
#include "frmQM730SYS_Sensor.h"
#include <QPushButton>
#include <QtTest>

class PagesTest : public QObject {
    Q_OBJECT

    SimConsole m_line;

    // Machine 1 set up by control commands before the console opens the
    // line, so that the first read of the block has them.
    ConsoleState *bringUp(const QString &protocol, const QString &machines, const QStringList &setup = {})
    {
        if (!m_line.bringUp(protocol, machines, {true}, setup, {QStringLiteral("--no-pace")}))
            return nullptr;
        ConsoleState &s = m_line.core->state();
        s.RefreshOnOpen = true; // as the menu opens a page: the next poll reads the block
        return &s;
    }

    QString up(int row) { return m_line.sim->command(QStringLiteral("get 1 up %1").arg(row)); }

private slots:
    void cleanup() { m_line.reset(); }

    void theSensorPage_data()
    {
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<QString>("firmware");
        for (const char *firmware : {"2.09", "2.31"})
            for (const char *protocol : {"PC Link", "PC Link + crc", "Modbus RTU"})
                QTest::addRow("%s %s", protocol, firmware) << QString::fromLatin1(protocol) << QString::fromLatin1(firmware);
    }
    void theSensorPage()
    {
        QFETCH(QString, protocol);
        QFETCH(QString, firmware);
        // The humidity filter and the high end of the humidity range lie in other rows on the two layouts.
        const bool legacy = firmware == QLatin1String("2.09");
        const int filterRow = legacy ? 38 : 47, humiHighRow = legacy ? 85 : 504;
        ConsoleState *s = bringUp(protocol, QStringLiteral("1:") + firmware, {QStringLiteral("set 1 up %1 12").arg(filterRow)});
        QVERIFY(s);
        QTRY_VERIFY_WITH_TIMEOUT(polling(*s), 5000);
        frmQM730SYS_Sensor page(m_line.core->context());
        page.show();
        auto *filter = child<QLineEdit>(page, "txtLPF2");
        auto *humiHigh = indexed<QLineEdit>(page, "txtHumiSV_Range", 1);
        QTRY_COMPARE_WITH_TIMEOUT(filter->text(), QStringLiteral("12"), 8000);
        QCOMPARE(humiHigh->text().toDouble(), 98.0);

        enter(filter, QStringLiteral("30"));
        QTRY_COMPARE_WITH_TIMEOUT(up(filterRow), QStringLiteral("30"), 8000);
        // Changed on the panel meanwhile: the reload after the next reply shows it.
        QVERIFY(m_line.ok(QStringLiteral("set 1 up %1 45").arg(filterRow)));
        enter(humiHigh, QStringLiteral("95.5"));
        QTRY_COMPARE_WITH_TIMEOUT(up(humiHighRow), QStringLiteral("19550"), 8000);
        QTRY_COMPARE_WITH_TIMEOUT(filter->text(), QStringLiteral("45"), 8000);
        QCOMPARE(humiHigh->text().toDouble(), 95.5);
    }

    void aFieldAndATableCell_data() { protocolRows({"PC Link", "PC Link + crc", "Modbus RTU"}); }
    void aFieldAndATableCell()
    {
        QFETCH(QString, protocol);
        // Both outputs SSR, so that their periods can be edited.
        ConsoleState *s = bringUp(protocol, QStringLiteral("1"), {QStringLiteral("set 1 up 72 0"), QStringLiteral("set 1 up 88 0")});
        QVERIFY(s);
        QTRY_VERIFY_WITH_TIMEOUT(polling(*s), 5000);
        {
            frmQM730SYS_Control page(m_line.core->context());
            page.show();
            auto *humiPeriod = child<QLineEdit>(page, "txtHumiOutPeriod");
            auto *tempPeriod = child<QLineEdit>(page, "txtTempOutPeriod");
            QTRY_COMPARE_WITH_TIMEOUT(humiPeriod->text(), up(89), 8000);
            enter(humiPeriod, QStringLiteral("7"));
            QTRY_COMPARE_WITH_TIMEOUT(up(89), QStringLiteral("7"), 8000);
            enter(tempPeriod, QStringLiteral("11")); // written to the plain row in every protocol
            QTRY_COMPARE_WITH_TIMEOUT(up(73), QStringLiteral("11"), 8000);
            // The controller's value comes back on the reload.
            QVERIFY(m_line.ok(QStringLiteral("set 1 up 89 9")));
            enter(tempPeriod, QStringLiteral("12"));
            QTRY_COMPARE_WITH_TIMEOUT(humiPeriod->text(), QStringLiteral("9"), 8000);
        }
        frmQM730SYS_PID_Val table(m_line.core->context());
        table.show();
        auto *grid = child<QTableWidget>(table, "sprdPID");
        s->RefreshOnOpen = true;
        QTRY_COMPARE_WITH_TIMEOUT(grid->item(1, 0)->text(), QStringLiteral("5.00"), 8000);
        QVERIFY(editCell(grid, 2, 1, QStringLiteral("12.34"))); // zone 2, temperature P
        QTRY_COMPARE_WITH_TIMEOUT(up(314), QStringLiteral("1234"), 8000);
        QTRY_COMPARE_WITH_TIMEOUT(grid->item(1, 0)->text(), QStringLiteral("12.34"), 8000);
    }

    void aRevisionCurveInitialised_data()
    {
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<QString>("firmware");
        for (const char *firmware : {"2.09", "2.31"})
            for (const char *protocol : {"PC Link", "Modbus RTU"})
                QTest::addRow("%s %s", protocol, firmware) << QString::fromLatin1(protocol) << QString::fromLatin1(firmware);
    }
    void aRevisionCurveInitialised()
    {
        QFETCH(QString, protocol);
        QFETCH(QString, firmware);
        const bool legacy = firmware == QLatin1String("2.09");
        const int offsetRow = legacy ? 34 : 32; // RTD
        const int first = legacy ? 457 : 34;   // the first correction
        // An RTD input (legacy word 0, current word 1) with an offset of 5.00.
        ConsoleState *s = bringUp(protocol, QStringLiteral("1:") + firmware,
                                  {QStringLiteral("set 1 up 24 %1").arg(legacy ? 0 : 1), QStringLiteral("set 1 up %1 10500").arg(offsetRow)});
        QVERIFY(s);
        QTRY_VERIFY_WITH_TIMEOUT(polling(*s), 5000);
        frmQM730SYS_Sensor_RevisionT page(m_line.core->context());
        page.show();
        auto *offset = child<QLineEdit>(page, "txtOffset");
        QTRY_COMPARE_WITH_TIMEOUT(offset->text(), QStringLiteral("5.00"), 8000);
        QVERIFY(up(first + 1) != QStringLiteral("1600")); // the simulator's measured point is off the default
        QTest::mouseClick(child<QPushButton>(page, "btnInit"), Qt::LeftButton);
        const int defaults[6] = {1000, 1600, 2200, 2800, 3400, 4000};
        for (int i = 0; i < 6; ++i) {
            QTRY_COMPARE_WITH_TIMEOUT(up(first + i), QString::number(defaults[i]), 8000);
            QCOMPARE(up(first + 6 + i), QString::number(defaults[i]));
        }
        QTRY_COMPARE_WITH_TIMEOUT(up(offsetRow), QStringLiteral("10000"), 8000);
        QTRY_COMPARE_WITH_TIMEOUT(offset->text(), QStringLiteral("0.00"), 8000);
        QCOMPARE(indexed<QLineEdit>(page, "txtAdjustY", 1)->text(), QStringLiteral("-40"));
    }
};

QTEST_MAIN(PagesTest)
#include "test_pages.moc"
