// The clock page and the screen capture against the simulator: the clock set
// from the page and read back in the three link families, a reserved start
// that starts the chamber by itself, and a captured picture, saved, against
// the simulator's own drawing pixel for pixel.
#include "ButtonColour.h"
#include "ModalDriver.h"
#include "Screens.h"
#include "SimConsole.h"
#include "Widgets.h"
#include "frmQM730Online_DateTime.h"
#include "frmQM730Online_Screen.h"
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

class OnlineTest : public QObject {
    Q_OBJECT

    SimConsole m_line;

    // One chamber whose clock and values stand still unless told to move.
    ConsoleState &bringUp(const QString &protocol)
    {
        [&] { QVERIFY(m_line.bringUp(protocol, QStringLiteral("1"), {}, {}, {QStringLiteral("--speed"), QStringLiteral("0"), QStringLiteral("--no-pace")})); }();
        ConsoleState &s = m_line.core->state();
        [&] { QTRY_VERIFY_WITH_TIMEOUT(polling(s), 5000); }();
        return s;
    }

    QList<int> simRows(const char *block, int first, int last)
    {
        QList<int> out;
        for (int r = first; r <= last; ++r)
            out << m_line.sim->command(QStringLiteral("get 1 %1 %2").arg(QLatin1String(block)).arg(r)).toInt();
        return out;
    }

private slots:
    void cleanup() { m_line.reset(); }

    void clockAndReservedStart_data() { protocolRows({"PC Link", "PC Link + crc", "Modbus RTU"}); }
    void clockAndReservedStart()
    {
        QFETCH(QString, protocol);
        ConsoleState &s = bringUp(protocol);
        s.RefreshOnOpen = true; // as the menu opens the page
        frmQM730Online_DateTime page(m_line.core->context());
        page.show();
        auto *msg = child<QLabel>(page, "lblMsg");
        auto set = [&](const char *table, const QString &date, const QString &time) {
            child<QTableWidget>(page, table)->item(0, 0)->setText(date);
            child<QTableWidget>(page, table)->item(0, 1)->setText(time);
        };

        set("sprdDT", QStringLiteral("2031-02-03"), QStringLiteral("04:05:06"));
        QTest::mouseClick(child<QPushButton>(page, "btnSet"), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(msg->text(), QStringLiteral("日期/時間 : 傳送完了"), 5000);
        QCOMPARE(simRows("up", 12, 17), QList<int>({2031, 2, 3, 4, 5, 6}));
        // Read back through the console: the page shows the controller's clock.
        QTRY_COMPARE_WITH_TIMEOUT(child<QLabel>(page, "lblMeterDT")->text(), QStringLiteral("2031-02-03 04:05:06"), 5000);

        set("sprdDT_Reserve", QStringLiteral("2031-02-03"), QStringLiteral("04:10"));
        QTest::mouseClick(indexed<QPushButton>(page, "btnReserve_Set", 0), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(msg->text(), QStringLiteral("預約運轉 : 傳送完了"), 5000);
        QCOMPARE(simRows("up", 18, 23), QList<int>({2031, 2, 3, 4, 10, 1}));
        QCOMPARE(simRows("rrp", 14, 14), QList<int>({1})); // a reserved start waits
        QTRY_COMPARE_WITH_TIMEOUT(ButtonColour::of(indexed<QPushButton>(page, "btnReserve_Set", 0)),
                                  ButtonColour::Selected, 5000);

        // Five minutes on the controller's clock: it starts by itself, and the page refuses changes.
        QCOMPARE(m_line.sim->command(QStringLiteral("tick 300")), QStringLiteral("ok"));
        QCOMPARE(simRows("rrp", 1, 1), QList<int>({1}));
        QTRY_VERIFY_WITH_TIMEOUT(s.image.sprdRRP.number(1, 1) != 0, 5000);
        QTest::mouseClick(indexed<QPushButton>(page, "btnReserve_Set", 1), Qt::LeftButton);
        QCOMPARE(msg->text(), QStringLiteral("運轉中不可變更"));
    }

    void captureSavedAsTheSimulatorDrawsIt_data() { protocolRows({"PC Link", "PC Link + crc"}); }
    void captureSavedAsTheSimulatorDrawsIt()
    {
        QFETCH(QString, protocol);
        bringUp(protocol);
        frmQM730Online_Screen screen(m_line.core->context());
        screen.show();
        QTest::mouseClick(child<QPushButton>(screen, "btnRead"), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(child<QLabel>(screen, "lblMsg")->text(), QStringLiteral("接收完了"), 20000);

        const QString saved = m_line.home->path() + QStringLiteral("/saved-%1.bmp").arg(QTest::currentDataTag());
        ModalDriver modal;
        modal.file(saved);
        QTest::mouseClick(child<QPushButton>(screen, "btnSave"), Qt::LeftButton);
        QVERIFY(modal.done() && modal.unexpected.isEmpty());
        const QString drawn = m_line.home->path() + QStringLiteral("/drawn.ppm");
        QCOMPARE(m_line.sim->command(QStringLiteral("screen 1 ") + drawn), QStringLiteral("ok"));

        const QImage a = QImage(saved).convertToFormat(QImage::Format_RGB32);
        const QImage b = QImage(drawn).convertToFormat(QImage::Format_RGB32);
        QCOMPARE(a.size(), QSize(320, 240));
        QCOMPARE(b.size(), QSize(320, 240));
        int differing = 0;
        for (int y = 0; y < 240; ++y)
            for (int x = 0; x < 320; ++x)
                differing += a.pixel(x, y) != b.pixel(x, y);
        QCOMPARE(differing, 0);
        QVERIFY(a.pixel(0, 0) != a.pixel(160, 120) || a.pixel(0, 0) != a.pixel(40, 60)); // a picture, not a blank
    }
};

QTEST_MAIN(OnlineTest)
#include "test_online.moc"
