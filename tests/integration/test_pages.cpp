// The system pages against the simulator: a field, a cell of the PID table
// and a revision curve go to the controller and come back on the reload,
// in PC Link and Modbus RTU, on the current and the legacy layout.
#include "ConsoleCore.h"
#include "CellEdit.h"
#include "SimProcess.h"
#include "TestHome.h"
#include "Widgets.h"
#include "frmQM730SYS_Control.h"
#include "frmQM730SYS_PID.h"
#include "frmQM730SYS_Revision.h"
#include "frmQM730SYS_Sensor.h"
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

class PagesTest : public QObject {
    Q_OBJECT

    TestHome m_home;
    std::unique_ptr<SimProcess> m_sim;
    std::unique_ptr<ConsoleCore> m_core;

    // The simulator with machine 1 set up by control commands before the
    // console opens the line, so that the first read of the block has them.
    ConsoleState &bringUp(const QString &protocol, const QString &machines, const QStringList &setup = {})
    {
        m_core.reset();
        m_sim = std::make_unique<SimProcess>(m_home.path() + QStringLiteral("/sim"));
        QDir().mkpath(m_home.path() + QStringLiteral("/sim"));
        if (!m_sim->start({QStringLiteral("--machines"), machines, QStringLiteral("--protocol"), protocol,
                           QStringLiteral("--no-pace")}))
            qFatal("the simulator did not start");
        for (const QString &command : setup)
            if (m_sim->command(command) != QLatin1String("ok"))
                qFatal("the simulator refused %s", qPrintable(command));
        m_home.writePortCfg(protocol);
        m_home.mapPorts({QStringLiteral("COM1=") + m_sim->linkPath()});
        m_home.machines({true});
        m_core = std::make_unique<ConsoleCore>(m_home.path());
        m_core->start();
        m_core->togglePort();
        ConsoleState &s = m_core->state();
        // As the menu opens a page: the next poll reads the block and refreshes it.
        s.RefreshOnOpen = true;
        return s;
    }

    QString up(int row) { return m_sim->command(QStringLiteral("get 1 up %1").arg(row)); }

    static void enter(QLineEdit *e, const QString &text)
    {
        e->setFocus();
        e->selectAll();
        QTest::keyClicks(e, text);
        QTest::keyClick(e, Qt::Key_Return);
    }

private slots:
    void cleanup()
    {
        m_core.reset();
        m_sim.reset();
    }

    void protocols_data()
    {
        QTest::addColumn<QString>("protocol");
        QTest::newRow("pclink") << QStringLiteral("PC Link");
        QTest::newRow("pclink-sum") << QStringLiteral("PC Link + crc");
        QTest::newRow("modbus") << QStringLiteral("Modbus RTU");
    }

    void theSensorPage_data()
    {
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<QString>("firmware");
        for (const char *firmware : {"2.09", "2.31"}) {
            for (const char *protocol : {"PC Link", "PC Link + crc", "Modbus RTU"})
                QTest::addRow("%s %s", protocol, firmware) << QString::fromLatin1(protocol) << QString::fromLatin1(firmware);
        }
    }
    void theSensorPage()
    {
        QFETCH(QString, protocol);
        QFETCH(QString, firmware);
        const bool legacy = firmware == QLatin1String("2.09");
        // The humidity filter and the high end of the settable humidity range
        // lie in other rows on the two layouts.
        const int filterRow = legacy ? 38 : 47;
        const int humiHighRow = legacy ? 85 : 504;
        ConsoleState &s = bringUp(protocol, QStringLiteral("1:") + firmware,
                                  {QStringLiteral("set 1 up %1 12").arg(filterRow)});
        QTRY_VERIFY_WITH_TIMEOUT(s.CmdState == 1 || s.CmdState == 2, 5000);
        frmQM730SYS_Sensor page(m_core->context());
        page.show();
        auto *filter = child<QLineEdit>(page, "txtLPF2");
        auto *humiHigh = indexed<QLineEdit>(page, "txtHumiSV_Range", 1);
        QTRY_COMPARE_WITH_TIMEOUT(filter->text(), QStringLiteral("12"), 8000);
        QCOMPARE(humiHigh->text().toDouble(), 98.0);

        enter(filter, QStringLiteral("30"));
        QTRY_COMPARE_WITH_TIMEOUT(up(filterRow), QStringLiteral("30"), 8000);
        // Changed on the panel meanwhile: the reload after the next reply shows it.
        QCOMPARE(m_sim->command(QStringLiteral("set 1 up %1 45").arg(filterRow)), QStringLiteral("ok"));
        enter(humiHigh, QStringLiteral("95.5"));
        QTRY_COMPARE_WITH_TIMEOUT(up(humiHighRow), QStringLiteral("19550"), 8000);
        QTRY_COMPARE_WITH_TIMEOUT(filter->text(), QStringLiteral("45"), 8000);
        QCOMPARE(humiHigh->text().toDouble(), 95.5);
    }

    void aFieldAndATableCell_data() { protocols_data(); }
    void aFieldAndATableCell()
    {
        QFETCH(QString, protocol);
        // Both outputs SSR, so that their periods can be edited.
        ConsoleState &s = bringUp(protocol, QStringLiteral("1"),
                                  {QStringLiteral("set 1 up 72 0"), QStringLiteral("set 1 up 88 0")});
        QTRY_VERIFY_WITH_TIMEOUT(s.CmdState == 1 || s.CmdState == 2, 5000);
        {
            frmQM730SYS_Control page(m_core->context());
            page.show();
            auto *humiPeriod = child<QLineEdit>(page, "txtHumiOutPeriod");
            auto *tempPeriod = child<QLineEdit>(page, "txtTempOutPeriod");
            QTRY_COMPARE_WITH_TIMEOUT(humiPeriod->text(), up(89), 8000);
            enter(humiPeriod, QStringLiteral("7"));
            QTRY_COMPARE_WITH_TIMEOUT(up(89), QStringLiteral("7"), 8000);
            // Written to the plain row in every protocol.
            enter(tempPeriod, QStringLiteral("11"));
            QTRY_COMPARE_WITH_TIMEOUT(up(73), QStringLiteral("11"), 8000);
            // The controller's value comes back on the reload.
            QCOMPARE(m_sim->command(QStringLiteral("set 1 up 89 9")), QStringLiteral("ok"));
            enter(tempPeriod, QStringLiteral("12"));
            QTRY_COMPARE_WITH_TIMEOUT(humiPeriod->text(), QStringLiteral("9"), 8000);
        }
        {
            frmQM730SYS_PID_Val table(m_core->context());
            table.show();
            auto *grid = child<QTableWidget>(table, "sprdPID");
            s.RefreshOnOpen = true;
            QTRY_COMPARE_WITH_TIMEOUT(grid->item(1, 0)->text(), QStringLiteral("5.00"), 8000);
            QVERIFY(editCell(grid, 2, 1, QStringLiteral("12.34"))); // zone 2, temperature P
            QTRY_COMPARE_WITH_TIMEOUT(up(314), QStringLiteral("1234"), 8000);
            QTRY_COMPARE_WITH_TIMEOUT(grid->item(1, 0)->text(), QStringLiteral("12.34"), 8000);
        }
    }

    void aRevisionCurveInitialised_data()
    {
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<QString>("firmware");
        QTest::newRow("pclink current") << QStringLiteral("PC Link") << QStringLiteral("2.31");
        QTest::newRow("modbus current") << QStringLiteral("Modbus RTU") << QStringLiteral("2.31");
        QTest::newRow("pclink legacy") << QStringLiteral("PC Link") << QStringLiteral("2.09");
        QTest::newRow("modbus legacy") << QStringLiteral("Modbus RTU") << QStringLiteral("2.09");
    }
    void aRevisionCurveInitialised()
    {
        QFETCH(QString, protocol);
        QFETCH(QString, firmware);
        const bool legacy = firmware == QLatin1String("2.09");
        const int offsetRow = legacy ? 34 : 32; // RTD
        const int first = legacy ? 457 : 34;   // the first correction
        // An RTD input (legacy word 0, current word 1) with an offset of 5.00.
        ConsoleState &s = bringUp(protocol, QStringLiteral("1:") + firmware,
                                  {QStringLiteral("set 1 up 24 %1").arg(legacy ? 0 : 1),
                                   QStringLiteral("set 1 up %1 10500").arg(offsetRow)});
        QTRY_VERIFY_WITH_TIMEOUT(s.CmdState == 1 || s.CmdState == 2, 5000);
        frmQM730SYS_Sensor_RevisionT page(m_core->context());
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
