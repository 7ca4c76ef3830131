// The date/time page: the frames its clock and reserved-start writes put on
// the line in both link families, its refusals, and its cells following the
// computer's clock or the controller's image.
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

QByteArray be(std::initializer_list<int> words)
{
    QByteArray b;
    for (int w : words)
        b += word(w);
    return b;
}

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

// Function 16 of machine 1: registers from start, the words.
QByteArray writeRegisters(int start, std::initializer_list<int> words)
{
    return withCrc(QByteArray("\x01\x10") + be({start, int(words.size())}) + char(2 * words.size()) + be(words));
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
        QTest::qWaitFor([this] { return s.CmdState == Cmd::Poll || msg() == QStringLiteral("通訊不良"); });
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
    void writesOnTheLine_data()
    {
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<int>("button"); // -1 btnSet, else btnReserve_Set index
        QTest::addColumn<QByteArrayList>("frames");
        QTest::addColumn<QString>("message");
        const QString pc = QStringLiteral("PC Link"), modbus = QStringLiteral("Modbus RTU");
        const QString clockDone = QStringLiteral("日期/時間 : 傳送完了"), reserveDone = QStringLiteral("預約運轉 : 傳送完了");
        // The clock 2031-02-03 04:05:06 and the reserved start 2030-05-07 06:30.
        QTest::newRow("clock, PC Link") << pc << -1
            << QByteArrayList{wup(12, 2031), wup(13, 2), wup(14, 3), wup(15, 4), wup(16, 5), wup(17, 6)} << clockDone;
        QTest::newRow("clock, Modbus RTU") << modbus << -1
            << QByteArrayList{writeRegisters(40112, {2031, 2, 3, 4, 5, 6})} << clockDone;
        QTest::newRow("reserve, PC Link") << pc << 0
            << QByteArrayList{wup(18, 2030), wup(19, 5), wup(20, 7), wup(21, 6), wup(22, 30), wup(23, 1)} << reserveDone;
        QTest::newRow("reserve, Modbus RTU") << modbus << 0
            << QByteArrayList{writeRegisters(40118, {2030, 5, 7, 6, 30, 1})} << reserveDone;
        QTest::newRow("release, PC Link") << pc << 1 << QByteArrayList{wup(23, 0)} << reserveDone;
        QTest::newRow("release, Modbus RTU") << modbus << 1 << QByteArrayList{writeRegisters(40123, {0})} << reserveDone;
    }
    void writesOnTheLine()
    {
        QFETCH(QString, protocol);
        QFETCH(int, button);
        QFETCH(QByteArrayList, frames);
        QFETCH(QString, message);
        Page p(protocol);
        p.type("sprdDT", QStringLiteral("2031-02-03"), QStringLiteral("04:05:06"));
        p.type("sprdDT_Reserve", QStringLiteral("2030-05-07"), QStringLiteral("06:30"));
        QTest::mouseClick(button < 0 ? child<QPushButton>(*p.page, "btnSet") : p.reserve(button), Qt::LeftButton);
        QCOMPARE(p.run(), frames);
        QTRY_COMPARE(p.msg(), message);
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

        // The image: the reserved start, its enable, the controller's clock.
        for (int r = 12; r <= 23; ++r)
            p.s.image.sprdUP.setNumber(1, r, QList<int>{2029, 1, 2, 3, 4, 5, 2030, 6, 1, 8, 0, 0}[r - 12]);
        p.s.startActiveRefresh();
        QTRY_COMPARE(p.cells("sprdDT_Reserve"), QStringList({"2030-06-01", "08:00"}));
        QCOMPARE(child<QLabel>(*p.page, "lblMeterDT")->text(), QStringLiteral("2029-01-02 03:04:05"));
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
