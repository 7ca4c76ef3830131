// The date/time page: the frames a release of the reserved start puts on the
// line in both link families, a write the controller acknowledges for another
// row, its refusals, and its cells following the computer's clock or the
// controller's image.
#include "ButtonColour.h"
#include "PcLinkReplies.h"
#include "ScreenBench.h"
#include "Widgets.h"
#include "frmQM730Online_DateTime.h"
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QDateTime Now(QDate(2030, 5, 6), QTime(7, 8, 9));

// A write of one parameter row to machine 1.
QByteArray wup(int row, int value)
{
    return "\x02" "001WUP," + digits(row, 4) + "," + word(value) + "\x03\r\n";
}

QByteArray withCrc(QByteArray f)
{
    quint16 crc = 0xFFFF;
    for (char c : f) {
        crc ^= quint8(c);
        for (int i = 0; i < 8; ++i)
            crc = (crc & 1) ? (crc >> 1) ^ 0xA001 : crc >> 1;
    }
    return f + char(crc & 0xFF) + char(crc >> 8);
}

struct Page {
    QTemporaryDir dir;
    ScreenBench bench{dir.path()};
    ConsoleState &s = bench.state;
    std::unique_ptr<frmQM730Online_DateTime> page;
    QDateTime now = Now;
    int echoOffset = 0; // a controller that acknowledges another row

    explicit Page(const QString &protocol = QStringLiteral("PC Link"))
    {
        s.CommProtocol = protocol;
        s.CurrentMachine = 1;
        s.image.applyFirmware(2.31);
        page = std::make_unique<frmQM730Online_DateTime>(bench.ctx);
        page->setClock([this] { return now; });
    }
    QTableWidget *table(const char *name) { return child<QTableWidget>(*page, name); }
    QStringList cells(const char *name) { return {table(name)->item(0, 0)->text(), table(name)->item(0, 1)->text()}; }
    void type(const char *name, const QString &date, const QString &time)
    {
        table(name)->item(0, 0)->setText(date);
        table(name)->item(0, 1)->setText(time);
    }
    QString msg() { return child<QLabel>(*page, "lblMsg")->text(); }
    QPushButton *reserve(int i) { return indexed<QPushButton>(*page, "btnReserve_Set", i); }

    // Puts the link on a line that acknowledges every write, runs the
    // request the page posted, and returns the write frames that went out.
    QByteArrayList run()
    {
        bench.port.responder = [this](const QByteArray &f) -> QByteArray {
            if (f.mid(4, 3) == "WUP")
                return pcReply(1, "WUP", digits(f.mid(8, 4).toInt() + echoOffset, 4));
            if (f.size() > 6 && f[1] == 16)
                return withCrc(f.left(6));
            return {};
        };
        bench.port.open({}, {});
        s.CmdState = Cmd::Poll;
        bench.link.tmrSend_Timer();
        if (!QTest::qWaitFor([this] { return s.CmdState == Cmd::Poll || msg() == QStringLiteral("通訊不良"); }))
            return {}; // the chain never ended: no frames to compare
        QByteArrayList writes;
        for (const QByteArray &f : bench.port.written)
            if (f.mid(4, 3) == "WUP" || (f.size() > 6 && f[1] == 16))
                writes << f;
        return writes;
    }
};

} // namespace

class DateTimeTest : public QObject {
    Q_OBJECT
private slots:
    // The release of a reserved start writes its enable alone. (The clock and
    // a reserved start, in each protocol against the simulator: tests/integration.)
    void releaseOnTheLine_data()
    {
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<QByteArray>("frame");
        QTest::newRow("PC Link") << QStringLiteral("PC Link") << wup(23, 0);
        // Function 16: register 40123, one word, 0.
        QTest::newRow("Modbus RTU") << QStringLiteral("Modbus RTU") << withCrc(QByteArray::fromHex("01109CBB0001020000"));
    }
    void releaseOnTheLine()
    {
        QFETCH(QString, protocol);
        QFETCH(QByteArray, frame);
        Page p(protocol);
        QTest::mouseClick(p.reserve(1), Qt::LeftButton);
        QCOMPARE(p.run(), QByteArrayList{frame});
        QTRY_COMPARE(p.msg(), QStringLiteral("預約運轉 : 傳送完了"));
    }

    void anotherRowAcknowledgedIsABadLine()
    {
        Page p;
        p.echoOffset = 1;
        p.page->btnSet_Click();
        p.run();
        QTRY_COMPARE(p.msg(), QStringLiteral("通訊不良"));
    }

    void refusals()
    {
        Page p;
        p.s.image.sprdRRP.setNumber(1, 1, 1); // machine 1 runs
        for (int i : {0, 1}) {
            p.s.ReqCmd = 0;
            p.reserve(i)->click();
            QCOMPARE(p.msg(), QStringLiteral("運轉中不可變更"));
            QCOMPARE(p.s.ReqCmd, 0);
        }
        p.page->btnSet_Click(); // the clock may be set while it runs
        QCOMPARE(p.s.ReqCmd, int(Cmd::WriteClockRows));

        p.s.image.sprdRRP.setNumber(1, 1, 0);
        p.s.ReqCmd = 0;
        for (int r = 18; r <= 23; ++r)
            p.s.image.sprdUP.setNumber(1, r, QList<int>{2030, 6, 1, 8, 0, 1}[r - 18]);
        // The present minute is no reserved start: silently back to the setting it had.
        p.type("sprdDT_Reserve", QStringLiteral("2030-05-06"), QStringLiteral("07:08"));
        p.reserve(0)->click();
        QCOMPARE(p.s.ReqCmd, 0);
        QCOMPARE(p.msg(), QString());
        QCOMPARE(p.cells("sprdDT_Reserve"), QStringList({"2030-06-01", "08:00"}));
        // Following the computer's clock, it is always the present minute.
        child<QPushButton>(*p.page, "btnSameDT2")->click();
        p.now = p.now.addSecs(59);
        p.page->tmrDT_Timer();
        QCOMPARE(p.cells("sprdDT_Reserve"), QStringList({"2030-05-06", "07:09"}));
        p.reserve(0)->click();
        QCOMPARE(p.s.ReqCmd, 0);

        p.type("sprdDT", QStringLiteral("2030-02-30"), QStringLiteral("10:00:00"));
        p.page->btnSet_Click();
        QCOMPARE(p.msg(), QStringLiteral("日期/時間格式錯誤"));
        QCOMPARE(p.s.ReqCmd, 0);
    }

    void cellsFollowTheComputerOrTheController()
    {
        Page p;
        auto *same1 = child<QPushButton>(*p.page, "btnSameDT1");
        QCOMPARE(child<QLabel>(*p.page, "lblDT")->text(), QStringLiteral("2030-05-06 07:08:09"));
        QCOMPARE(ButtonColour::of(same1), ButtonColour::Selected);
        QCOMPARE(p.cells("sprdDT"), QStringList({"2030-05-06", "07:08:09"}));
        p.now = p.now.addSecs(3600);
        p.page->tmrDT_Timer();
        QCOMPARE(p.cells("sprdDT"), QStringList({"2030-05-06", "08:08:09"}));
        // The operator's edit ends the following.
        p.table("sprdDT")->item(0, 1)->setText(QStringLiteral("12:00:00"));
        QCOMPARE(ButtonColour::of(same1), ButtonColour::FaceColour);
        p.page->tmrDT_Timer();
        QCOMPARE(p.cells("sprdDT")[1], QStringLiteral("12:00:00"));

        // The image: the reserved start and its enable. (The controller's clock: tests/integration.)
        for (int r = 12; r <= 23; ++r)
            p.s.image.sprdUP.setNumber(1, r, QList<int>{2029, 1, 2, 3, 4, 5, 2030, 6, 1, 8, 0, 0}[r - 12]);
        p.s.startActiveRefresh();
        QTRY_COMPARE(p.cells("sprdDT_Reserve"), QStringList({"2030-06-01", "08:00"}));
        QCOMPARE(ButtonColour::of(p.reserve(1)), ButtonColour::Selected);
        QCOMPARE(ButtonColour::of(p.reserve(0)), ButtonColour::FaceColour);
        // A reserved start being typed outlives a refresh; a sent one shows the image again.
        p.type("sprdDT_Reserve", QStringLiteral("2030-07-01"), QStringLiteral("09:00"));
        p.s.image.sprdUP.setNumber(1, 23, 1);
        p.s.startActiveRefresh();
        QTRY_COMPARE(ButtonColour::of(p.reserve(0)), ButtonColour::Selected);
        QCOMPARE(p.cells("sprdDT_Reserve"), QStringList({"2030-07-01", "09:00"}));
        p.reserve(0)->click();
        QCOMPARE(p.s.ReqCmd, int(Cmd::WriteClockRows));
        p.s.startActiveRefresh();
        QTRY_COMPARE(p.cells("sprdDT_Reserve"), QStringList({"2030-06-01", "08:00"}));
    }
};

QTEST_MAIN(DateTimeTest)
#include "tst_datetime.moc"
