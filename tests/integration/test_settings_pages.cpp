// Parameter pages against the simulator in Modbus RTU: a table cell's edit
// reaches the controller's row and the page shows the row as read back; the
// run settings and their lock behind the block; and, in PC Link as well, the
// password written as one range of four rows and a maker's line.
#include "CellEdit.h"
#include "EntryField.h"
#include "Screens.h"
#include "SimConsole.h"
#include "Widgets.h"
#include "frmQM730Func_Run.h"
#include "frmQM730SYS_DO.h"
#include "frmQM730SYS_ETC.h"
#include <QPushButton>
#include <QtTest>

class SettingsPagesTest : public QObject {
    Q_OBJECT

    SimConsole m_line;

    QString sim(const QString &query) { return m_line.sim->command(QStringLiteral("get 1 ") + query); }

    // Machine 1 of the current layout polled; the next poll reads the block as the menu's opening does.
    void startLine(const QString &protocol)
    {
        QVERIFY(m_line.bringUp(protocol, QStringLiteral("1"), {true}, {}, {QStringLiteral("--no-pace")}));
        ConsoleState &s = m_line.core->state();
        QTRY_VERIFY_WITH_TIMEOUT(polling(s), 5000);
        QVERIFY(s.image.isCurrentLayout());
        s.RefreshOnOpen = true;
    }

private slots:
    void cleanup() { m_line.reset(); }

    void aTableCellReachesTheController()
    {
        startLine(QStringLiteral("Modbus RTU"));
        if (QTest::currentTestFailed())
            return;
        frmQM730SYS_DO page(m_line.core->context());
        page.show();
        auto *table = child<QTableWidget>(page, "sprdDO2");
        // I/S 1 drives relay 9 and O/C 1 from the factory.
        QTRY_COMPARE_WITH_TIMEOUT(cellText(table, 1, 1), QStringLiteral("9"), 5000);
        QCOMPARE(cellText(table, 1, 2), QStringLiteral("1"));
        QVERIFY(editCell(table, 1, 2, QStringLiteral("4")));
        QTRY_COMPARE_WITH_TIMEOUT(sim(QStringLiteral("up 121")), QString::number(4 * 256 + 9), 5000);

        // A soak value goes out with the opposite sign and reads back as typed;
        // the reload after the write shows the block as the controller has it.
        QVERIFY(m_line.ok(QStringLiteral("set 1 up 156 3300"))); // Temp.UP: 30.0
        QVERIFY(editCell(table, 42, 3, QStringLiteral("10")));
        QTRY_COMPARE_WITH_TIMEOUT(sim(QStringLiteral("up 158")), QStringLiteral("65436"), 5000);
        QTRY_COMPARE_WITH_TIMEOUT(cellText(table, 41, 3), QStringLiteral("30.0"), 5000);
        QCOMPARE(cellText(table, 42, 3), QStringLiteral("10.0"));
    }

    void runSettingsReachTheController()
    {
        startLine(QStringLiteral("Modbus RTU"));
        if (QTest::currentTestFailed())
            return;
        frmQM730Func_Run page(m_line.core->context());
        page.show();
        QTest::mouseClick(indexed<QPushButton>(page, "btnRun_Method", 1), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(sim(QStringLiteral("up 1")), QStringLiteral("1"), 5000);
        auto *ramp = child<EntryField>(page, "txtT_SV");
        QTRY_VERIFY_WITH_TIMEOUT(ramp->isEnabled(), 5000);
        enter(ramp, QStringLiteral("2.5"));
        QTRY_COMPARE_WITH_TIMEOUT(sim(QStringLiteral("up 4")), QStringLiteral("25"), 5000);
        // The reload after the next write shows the block as the controller has it.
        QVERIFY(m_line.ok(QStringLiteral("set 1 up 2 48")));
        QTest::mouseClick(indexed<QPushButton>(page, "btnPatt_Lock", 1), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(sim(QStringLiteral("upplus 89")), QStringLiteral("1"), 5000);
        QTRY_COMPARE_WITH_TIMEOUT(child<EntryField>(page, "txtRun_Hour")->text(), QStringLiteral("48"), 5000);
    }

    void passwordAndMakersLines_data() { protocolRows({"PC Link", "Modbus RTU"}); }
    void passwordAndMakersLines()
    {
        QFETCH(QString, protocol);
        startLine(protocol);
        if (QTest::currentTestFailed())
            return;
        frmQM730SYS_ETC page(m_line.core->context());
        page.show();
        QTRY_COMPARE_WITH_TIMEOUT(indexed<EntryField>(page, "txtUserInfo", 0)->text(), sim(QStringLiteral("td 9")), 8000);
        auto *password = child<EntryField>(page, "txtUserPass");
        QTRY_COMPARE_WITH_TIMEOUT(password->text(), QStringLiteral("0000"), 5000);
        enter(password, QStringLiteral("4321"));
        QTRY_COMPARE_WITH_TIMEOUT(sim(QStringLiteral("up 293")), QStringLiteral("49"), 5000);
        QCOMPARE(sim(QStringLiteral("up 290")), QStringLiteral("52"));
        enter(indexed<EntryField>(page, "txtUserInfo", 2), QStringLiteral("恆溫槽 B"));
        QTRY_COMPARE_WITH_TIMEOUT(sim(QStringLiteral("td 11")), QStringLiteral("恆溫槽 B"), 5000);
    }
};

QTEST_MAIN(SettingsPagesTest)
#include "test_settings_pages.moc"
