// The screen capture: the picture and its bitmap from a reply, the progress
// bar, and captures that fail (a bad check, a line lost, a stop, a file that
// cannot be written) keeping the last picture; saving a copy; Modbus RTU.
#include "ModalDriver.h"
#include "PcLinkReplies.h"
#include "ScreenBench.h"
#include "Widgets.h"
#include "frmQM730Online_Screen.h"
#include <QDir>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

namespace {

// 76800 pixels; `seed` makes different pictures.
QByteArray pixels(int seed)
{
    QByteArray p(76800, '\0');
    for (int i = 0; i < p.size(); ++i)
        p[i] = char((i * 7 + i / 320 + seed) & 0xFF);
    return p;
}

// The reply of the capture (with the sum when asked).
QByteArray reply(const QByteArray &pixels, bool sum = false)
{
    return pcReply(1, "RCS", pixels, sum);
}

quint32 le(const QByteArray &b, int at, int size)
{
    quint32 v = 0;
    for (int i = size - 1; i >= 0; --i)
        v = v * 256 + quint8(b[at + i]);
    return v;
}

struct Capture {
    QTemporaryDir dir;
    ScreenBench bench{dir.path()};
    ConsoleState &s = bench.state;
    std::unique_ptr<frmQM730Online_Screen> screen;

    explicit Capture(const QString &protocol = QStringLiteral("PC Link"))
    {
        s.CommProtocol = protocol;
        s.CurrentMachine = 1;
        bench.port.open({}, {});
        s.CmdState = Cmd::Poll;
        screen = std::make_unique<frmQM730Online_Screen>(bench.ctx);
    }
    QString bmpPath() const { return dir.path() + QStringLiteral("/DispScr.BMP"); }
    QByteArray bmp() const
    {
        QFile f(bmpPath());
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    QString msg() { return child<QLabel>(*screen, "lblMsg")->text(); }
    int progress() { return child<QProgressBar>(*screen, "ProgressBar1")->value(); }
    QImage shown() { return child<QLabel>(*screen, "Picture1")->pixmap().toImage(); }
    bool enabled(const char *name) { return child<QPushButton>(*screen, name)->isEnabled(); }
    QList<bool> buttons() { return {enabled("btnRead"), enabled("btnStop"), enabled("btnSave"), enabled("btnClose")}; }
    // btnRead, and the send tick that puts the request on the line.
    void read()
    {
        child<QPushButton>(*screen, "btnRead")->click();
        bench.link.tmrSend_Timer();
        QCOMPARE(bench.port.lastFrame().left(10), QByteArray("\x02" "001RCS\x03\r\n"));
    }
    void feed(const QByteArray &bytes, int piece = 4096)
    {
        for (int i = 0; i < bytes.size(); i += piece)
            bench.port.feed(bytes.mid(i, piece));
    }
    void capture(const QByteArray &pixels)
    {
        read();
        feed(reply(pixels, s.CrcMode()));
        QCOMPARE(msg(), QStringLiteral("接收完了"));
    }
};

} // namespace

class ScreenTest : public QObject {
    Q_OBJECT
private slots:
    void aCaptureIsShownAndWrittenAsA24BitBitmap()
    {
        Capture c;
        QVERIFY(!c.enabled("btnSave")); // no picture in the folder yet
        c.read();
        QVERIFY(c.screen->receiving());
        QCOMPARE(c.buttons(), QList<bool>({false, true, false, false}));
        c.screen->reject(); // no closing while the picture comes
        QVERIFY(c.screen->receiving());
        const QByteArray frame = reply(pixels(0));
        c.feed(frame.left(38407));
        QCOMPARE(c.progress(), 50); // 38407 of 76814 bytes
        c.feed(frame.mid(38407));
        QCOMPARE(c.msg(), QStringLiteral("接收完了"));
        QCOMPARE(c.progress(), 100);
        QCOMPARE(c.buttons(), QList<bool>({true, false, true, true}));
        QCOMPARE(c.s.CmdState, int(Cmd::Poll)); // back to polling

        const QByteArray b = c.bmp();
        QCOMPARE(b.size(), 230454);
        QCOMPARE(b.left(2), QByteArray("BM"));
        const QList<quint32> header = {le(b, 2, 4),  le(b, 6, 4),  le(b, 10, 4), le(b, 14, 4), le(b, 18, 4),
                                       le(b, 22, 4), le(b, 26, 2), le(b, 28, 2), le(b, 30, 4), le(b, 34, 4),
                                       le(b, 38, 4), le(b, 42, 4), le(b, 46, 4), le(b, 50, 4)};
        QCOMPARE(header, QList<quint32>({230454, 0, 54, 40, 320, 240, 1, 24, 0, 230400, 2835, 2835, 0, 0}));
        // Each byte in 3-3-2 colour, as blue, green, red, in the frame's order:
        // the darkest and the lightest. (Every pixel of a drawn screen against
        // the simulator's own drawing: tests/integration.)
        const QByteArray p = pixels(0);
        QCOMPARE(b.mid(54 + 3 * p.indexOf('\0'), 3), QByteArray("\x3F\x1F\x1F"));
        QCOMPARE(b.mid(54 + 3 * p.indexOf('\xFF'), 3), QByteArray("\xFF\xFF\xFF"));
        // The first bytes are the bottom line; the screen shows it twice as large.
        QCOMPARE(c.shown().size(), QSize(640, 480));
        QCOMPARE(c.shown().pixelColor(1, 479), QColor(31 + (p[0] & 224), 31 + (p[0] & 28) * 8, 63 + (p[0] & 3) * 64));
    }

    void failedCapturesKeepTheLastPicture_data()
    {
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QString>("message");
        const QString pc = QStringLiteral("PC Link"), sum = QStringLiteral("PC Link + crc");
        QTest::newRow("bad end bytes") << pc << "etx" << QStringLiteral("畫面資料檢查錯誤，保留原畫面，重新接收中… [1]");
        QTest::newRow("bad sum") << sum << "sum" << QStringLiteral("畫面資料檢查錯誤，保留原畫面，重新接收中… [1]");
        QTest::newRow("line lost") << pc << "cut" << QStringLiteral("儀表無回應，保留原畫面，重新接收中… [1]");
        QTest::newRow("stray reply") << pc << "stray" << QStringLiteral("畫面接收中…");
        QTest::newRow("stopped") << pc << "stop" << QStringLiteral("已停止接收，保留原畫面");
        QTest::newRow("file in the way") << pc << "file" << QStringLiteral("無法寫入畫面檔 DispScr.BMP，保留原畫面");
    }
    void failedCapturesKeepTheLastPicture()
    {
        QFETCH(QString, protocol);
        QFETCH(QString, fault);
        QFETCH(QString, message);
        Capture c(protocol);
        c.capture(pixels(0));
        const QImage before = c.shown();
        const QByteArray file = c.bmp();
        c.read();
        QByteArray next = reply(pixels(1), c.s.CrcMode());
        if (fault == "etx")
            next[76811] = 4;
        if (fault == "sum")
            next[next.size() - 1] = char(next[next.size() - 1] + 1);
        if (fault == "cut" || fault == "stop")
            next.truncate(30000);
        if (fault == "stray")
            next = QByteArray("\x02" "001RRP,OK,0001,") + QByteArray("\0\x01", 2) + "\x03\r\n";
        if (fault == "file") {
            QFile::rename(c.bmpPath(), c.bmpPath() + ".old");
            QDir(c.dir.path()).mkdir(QStringLiteral("DispScr.BMP"));
        }
        c.feed(next);
        if (fault == "cut")
            c.bench.link.tmrRecvErr_Timer();
        if (fault == "stop") {
            QTest::mouseClick(child<QPushButton>(*c.screen, "btnStop"), Qt::LeftButton);
            QCOMPARE(c.s.ReqCmd, int(Cmd::Poll));
            c.feed(reply(pixels(1)).mid(30000)); // the rest still comes, and is dropped
            QCOMPARE(c.s.CmdState, int(Cmd::Poll));
        }
        QCOMPARE(c.msg(), message);
        QCOMPARE(c.shown(), before);
        if (fault != "file")
            QCOMPARE(c.bmp(), file);
        QCOMPARE(c.screen->receiving(), fault != "stop" && fault != "file");
        if (c.screen->receiving()) {
            // The link asks again until a good reply ends the capture (after
            // a lost line the part that came spoils the next reply first).
            QCOMPARE(c.s.CmdState, int(Cmd::ReadScreen));
            for (int i = 0; i < 2 && c.screen->receiving(); ++i) {
                c.bench.link.tmrSend_Timer();
                QCOMPARE(c.bench.port.lastFrame().mid(4, 3), QByteArray("RCS"));
                c.feed(reply(pixels(1), c.s.CrcMode()));
            }
            QCOMPARE(c.msg(), QStringLiteral("接收完了"));
            QVERIFY(c.shown() != before);
        }
    }

    void saveCopiesThePicture()
    {
        Capture c;
        ModalDriver modal;
        c.screen->btnSave_Click(); // nothing in the folder: no dialog, nothing copied
        QCOMPARE(c.msg(), QStringLiteral("尚無畫面檔 DispScr.BMP"));
        QVERIFY(modal.met.isEmpty());

        c.capture(pixels(2));
        const QString target = c.dir.path() + QStringLiteral("/copy.bmp");
        modal.file(target);
        c.screen->btnSave_Click();
        QCOMPARE(c.msg(), QStringLiteral("已儲存 : ") + target);
        QFile copy(target);
        QVERIFY(copy.open(QIODevice::ReadOnly));
        QCOMPARE(copy.readAll(), c.bmp());
        copy.close();
        // Over an existing file only when the operator agrees; a cancel copies nothing.
        c.capture(pixels(3));
        modal.file(target);
        modal.box(QMessageBox::No);
        modal.then([](QWidget *w) { static_cast<QDialog *>(w)->reject(); });
        c.screen->btnSave_Click();
        QVERIFY(copy.open(QIODevice::ReadOnly));
        QVERIFY(copy.readAll() != c.bmp());
        QVERIFY(modal.done() && modal.unexpected.isEmpty());
        QCOMPARE(modal.met.size(), 4); // the dialog, the dialog, the question, the dialog again
        QCOMPARE(modal.met.value(3), QStringLiteral("dlgSaveFile"));
    }

    void modbusHasNoCapture()
    {
        Capture c(QStringLiteral("Modbus RTU"));
        QVERIFY(!c.enabled("btnRead"));
        QCOMPARE(c.msg(), QStringLiteral("Modbus RTU 通訊協定無擷取畫面功能"));
        c.screen->btnRead_Click();
        QCOMPARE(c.s.ReqCmd, 0);
        QVERIFY(!c.screen->receiving());
    }
};

QTEST_MAIN(ScreenTest)
#include "tst_screen.moc"
