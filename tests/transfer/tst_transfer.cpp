// The two bulk screens over a fake port: what their buttons post, how they
// word the link's progress, how a set is saved and read, and the stops. The
// chains themselves run against the simulator in tests/integration.
#include "BulkScreen.h"
#include "CommonDialog.h"
#include "ConsoleState.h"
#include "Files.h"
#include "ModalDriver.h"
#include "ParameterSet.h"
#include "ScreenBench.h"
#include "Widgets.h"
#include "frmQM730_P_Recv.h"
#include "frmQM730_P_Send.h"
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

namespace {

struct Bench {
    QTemporaryDir home;
    ScreenBench b{home.path()};
    ConsoleState &s = b.state;

    explicit Bench(double firmware = 2.31, const QString &protocol = QStringLiteral("PC Link"))
    {
        s.CommProtocol = protocol;
        s.CommBaud = QStringLiteral("9600");
        s.CurrentMachine = 1;
        s.image.applyFirmware(firmware);
        b.port.open({}, {});
    }
    QString path(const QString &name) const { return home.path() + u'/' + name; }
    QStringList errLog() const { return readTextLines(path(QStringLiteral("Err.LOG"))).value_or(QStringList()); }
    void progress(BulkJob job, BulkTable table, int done, int total, bool finished = false, bool failed = false)
    {
        emit b.link.bulkProgress(BulkProgress{job, table, done, total, finished, failed});
    }
};

QPushButton *button(QWidget &w, const char *name) { return child<QPushButton>(w, name); }
bool enabled(QWidget &w, const char *name) { return button(w, name)->isEnabled(); }
CommonDialog *fileDialog(QWidget &w) { return child<CommonDialog>(w, "CommonDialog1"); }
QStringList cells(QWidget &w)
{
    QStringList out;
    for (int i = 0; i < 4; ++i)
        out << indexed<QLabel>(w, "lblSTS", i)->text();
    return out;
}
// Reads a set on the send screen through its file dialog.
void readSet(QWidget &send, const QString &master)
{
    fileDialog(send)->answerNext(master);
    button(send, "btnFileRead")->click();
}

// A set as a receive from a machine of `firmware` leaves it.
void makeSet(const QString &base, double firmware, std::function<void(ControllerImage &)> edit = {})
{
    ControllerImage img;
    img.applyFirmware(firmware);
    for (int r = 1; r <= img.sprdUP.rowCount(); ++r)
        img.sprdUP.setNumber(1, r, r);
    img.sprdTD.setText(1, 12, QStringLiteral("高溫試驗"));
    img.sprdPD.setNumber(1, 1, 2);
    img.sprdSD.setNumber(30, 1, 11111);
    if (edit)
        edit(img);
    QVERIFY(paramset::saveParameterSet(img, firmware, base, nullptr));
}

} // namespace

class TransferScreensTest : public QObject {
    Q_OBJECT
private slots:
    // (The request in each protocol: tests/link.)
    void receiveRunsAndWordsItsProgress()
    {
        Bench t;
        frmQM730_P_Recv screen(t.b.ctx);
        QCOMPARE(t.s.BulkFormName, QStringLiteral("frmQM730_P_Recv"));
        QVERIFY(enabled(screen, "btnRecvALL") && !enabled(screen, "btnRecvStop"));

        button(screen, "btnRecvALL")->click();
        QCOMPARE(t.s.ReqCmd, 51);
        QVERIFY(t.s.BulkWithPrograms);
        QCOMPARE(child<QLabel>(screen, "lblRecvType")->text(), QStringLiteral("0"));
        QVERIFY(!enabled(screen, "btnRecvALL") && enabled(screen, "btnRecvStop") && enabled(screen, "btnFileSave"));

        const auto R = BulkJob::ParameterReceive;
        t.progress(R, BulkTable::Parameters, 120, 512);
        QCOMPARE(cells(screen)[0], QStringLiteral("120/512"));
        t.progress(R, BulkTable::Parameters, 512, 512, true);
        t.progress(R, BulkTable::Texts, 1, 111); // the row that comes next is shown
        t.progress(R, BulkTable::Patterns, 3, 100);
        t.progress(R, BulkTable::Segments, 2, 4);
        const QStringList midway = {"接收完了", "2/111", "3/100", "2/4"};
        QCOMPARE(cells(screen), midway);
        // A silent machine leaves the cell; another job's reports are not this screen's.
        t.progress(R, BulkTable::Patterns, 0, 0, false, true);
        t.progress(BulkJob::ParameterSend, BulkTable::Segments, 1, 1, true);
        QCOMPARE(cells(screen), midway);
        // (Every cell done at the end of a chain on the line: tests/integration.)
        emit t.b.link.bulkFinished(R);
        QVERIFY(enabled(screen, "btnRecvALL") && !enabled(screen, "btnRecvStop"));

        // A new receive starts from empty cells.
        button(screen, "btnRecvALL")->click();
        QCOMPARE(cells(screen), QStringList({"", "", "", ""}));
    }

    // (Stopping a running chain on the line: tests/integration.)
    void stopsAndClosing()
    {
        Bench t;
        {
            frmQM730_P_Recv recv(t.b.ctx);
            button(recv, "btnRecvALL")->click();
            t.s.ReqCmd = 0;
            button(recv, "btnRecvStop")->click();
            QCOMPARE(t.s.ReqCmd, 1);
            QVERIFY(enabled(recv, "btnRecvALL") && !enabled(recv, "btnRecvStop"));
            // Closing while nothing runs leaves the link alone (a scan goes on).
            t.s.ReqCmd = 0;
            recv.reject();
            QCOMPARE(t.s.ReqCmd, 0);
        }
        {
            frmQM730_P_Recv recv(t.b.ctx);
            button(recv, "btnRecvALL")->click();
            recv.reject(); // closing a running receive ends it
            QCOMPARE(t.s.ReqCmd, 1);
        }
        makeSet(t.path("set"), 2.31);
        frmQM730_P_Send send(t.b.ctx);
        readSet(send, t.path("set.UUP"));
        button(send, "btnSendALL")->click();
        QCOMPARE(t.s.ReqCmd, 151);
        QVERIFY(!enabled(send, "btnFileRead")); // the set stays as it is sent
        button(send, "btnSendStop")->click();
        QCOMPARE(t.s.ReqCmd, 1);
        QVERIFY(enabled(send, "btnSendALL") && enabled(send, "btnFileRead"));
    }

    void nothingStartsWithThePortClosed()
    {
        Bench t;
        t.b.port.close();
        frmQM730_P_Recv screen(t.b.ctx);
        ModalDriver d;
        d.box();
        button(screen, "btnRecvALL")->click();
        QCOMPARE(d.met, QStringList({"開啟通訊端口"}));
        QCOMPARE(t.s.ReqCmd, 0);
        QVERIFY(enabled(screen, "btnRecvALL"));
    }

    void saveWritesTheSet()
    {
        Bench t(2.4);
        t.s.image.sprdTD.setText(1, 12, QStringLiteral("低溫"));
        frmQM730_P_Recv screen(t.b.ctx);
        CommonDialog *dialog = fileDialog(screen);
        ModalDriver d;
        auto master = [&](const QString &base) {
            TextTable up;
            QFile f(t.path(base + QStringLiteral(".UUP")));
            return f.open(QIODevice::ReadOnly) && up.load(f.readAll()) ? up.text(0, 0) : QString();
        };

        // A name without the extension is the base; before any receive the
        // tables are saved as they stand, with the firmware in the corner cell.
        dialog->answerNext(t.path("a"));
        button(screen, "btnFileSave")->click();
        QCOMPARE(dialog->lastFilter(), QStringLiteral("QM730 Parameter Files (*.UUP)"));
        QCOMPARE(master("a"), QStringLiteral("2.4"));
        for (const char *ext : {".UTD", ".UPD", ".USD"})
            QVERIFY(QFile::exists(t.path(QStringLiteral("a") + QLatin1String(ext))));
        // The master chosen again: asked, and No keeps the old set.
        t.s.image.applyFirmware(2.5);
        dialog->answerNext(t.path("a.UUP"));
        d.box(QMessageBox::No);
        button(screen, "btnFileSave")->click();
        QCOMPARE(d.met, QStringList({"文件已經存在。是否替換原有文件?"}));
        QCOMPARE(master("a"), QStringLiteral("2.4"));
        dialog->answerNext(t.path("a.UUP"));
        d.box(QMessageBox::Yes);
        button(screen, "btnFileSave")->click();
        QCOMPARE(master("a"), QStringLiteral("2.5"));

        // Cancelled: nothing.
        dialog->answerNext({});
        button(screen, "btnFileSave")->click();
        QCOMPARE(QDir(t.home.path()).entryList({QStringLiteral("*.U??")}, QDir::Files).size(), 4);

        // A save that cannot be done says so and logs it.
        dialog->answerNext(t.path("a.UUP/x"));
        d.box();
        button(screen, "btnFileSave")->click();
        QCOMPARE(d.met.size(), 3);
        QVERIFY(d.met.last().startsWith(QStringLiteral("無法儲存檔案 : ") + t.path("a.UUP/x.Uxx")));
        QVERIFY(t.errLog().join(u'\n').contains(QLatin1String("btnFileSave_Click")));
        QVERIFY(d.unexpected.isEmpty());
    }

    void readSetForTheMachine()
    {
        Bench t(2.31);
        makeSet(t.path("m1"), 2.31);
        frmQM730_P_Send screen(t.b.ctx);
        QCOMPARE(t.s.BulkFormName, QStringLiteral("frmQM730_P_Send"));
        QVERIFY(!enabled(screen, "btnSendALL"));
        t.s.image.PatternLoaded[0] = true;
        readSet(screen, t.path("m1.UUP"));
        QCOMPARE(fileDialog(screen)->lastFilter(), QStringLiteral("QM730 Parameter Files(*.UUP)"));
        QVERIFY(enabled(screen, "btnSendALL"));
        const ControllerImage &img = t.s.image;
        QCOMPARE(QStringList({img.sprdTD.text(1, 12), img.sprdSD.text(30, 1), img.sprdUP.text(1, 100)}),
                 QStringList({"高溫試驗", "11111", "100"}));
        // The link rows follow the open link: PC Link at 9600, N, 8, 1.
        QCOMPARE(QStringList({img.sprdUP.text(1, 202), img.sprdUP.text(1, 203), img.sprdUP.text(1, 204)}),
                 QStringList({"0", "4", "0"}));
        QVERIFY(img.PatternLoaded[0]);

        // Sent: the set itself, even when a poll has read the machine's block
        // over it meanwhile, and the chain with the programs.
        t.s.image.sprdUP.setNumber(1, 100, 9);
        button(screen, "btnSendALL")->click();
        QCOMPARE(img.sprdUP.text(1, 100), QStringLiteral("100"));
        QCOMPARE(t.s.ReqCmd, 151);
        QVERIFY(t.s.BulkWithPrograms);
        QCOMPARE(child<QLabel>(screen, "lblSendType")->text(), QStringLiteral("0"));
        const auto S = BulkJob::ParameterSend;
        t.progress(S, BulkTable::Parameters, 512, 512, true);
        t.progress(S, BulkTable::Texts, 5, 111); // the row being sent
        t.progress(S, BulkTable::Patterns, 1, 100);
        t.progress(S, BulkTable::Segments, 2, 2);
        QCOMPARE(cells(screen), QStringList({"傳送完了", "5/111", "1/100", "2/2"}));
        emit t.b.link.bulkFinished(S);
        QVERIFY(enabled(screen, "btnSendALL") && !enabled(screen, "btnSendStop"));
    }

    void readRefusedOrConverted()
    {
        // A 512-row set on a 492-row machine.
        Bench legacy(2.19);
        makeSet(legacy.path("new"), 2.31);
        frmQM730_P_Send refused(legacy.b.ctx);
        ModalDriver d;
        d.box();
        readSet(refused, legacy.path("new.UUP"));
        QCOMPARE(d.met, QStringList({"不一致 (F/W Version)"}));
        QVERIFY(!enabled(refused, "btnSendALL"));
        QVERIFY(child<QLabel>(refused, "lblFName")->text().isEmpty());

        // A set made on 2.36 for a machine of 2.4: the D/I actions converted.
        Bench newer(2.4, QStringLiteral("Modbus RTU"));
        makeSet(newer.path("old"), 2.36, [](ControllerImage &img) {
            img.sprdUP.setNumber(1, 187, 300);
            img.sprdUP.setNumber(1, 188, 1000);
            img.sprdUP.setNumber(1, 156, 3250);
        });
        frmQM730_P_Send converted(newer.b.ctx);
        readSet(converted, newer.path("old.UUP"));
        const TextTable &up = newer.s.image.sprdUP;
        QCOMPARE(QList<qint64>({up.number(1, 187), up.number(1, 188), up.number(1, 156), up.number(1, 195)}),
                 QList<qint64>({300, 488, 3250, 2}));
        button(converted, "btnSendALL")->click();
        QCOMPARE(newer.s.ReqCmd, 1511);
        QVERIFY(d.unexpected.isEmpty());
    }

    void cancelledOrUnreadableLeavesTheTables()
    {
        Bench t(2.31);
        makeSet(t.path("good"), 2.31);
        makeSet(t.path("broken"), 2.31);
        QVERIFY(QFile::remove(t.path("broken.USD")));
        frmQM730_P_Send screen(t.b.ctx);
        readSet(screen, t.path("good.UUP"));
        const QByteArray loaded = t.s.image.sprdUP.save();
        ModalDriver d;
        readSet(screen, {}); // cancelled
        d.box();
        readSet(screen, t.path("broken.UUP"));
        QCOMPARE(d.met.size(), 1);
        QVERIFY(d.met[0].startsWith(QStringLiteral("無法開啟檔案 : ")));
        QVERIFY(d.met[0].contains(QLatin1String("broken.USD")));
        // The set read before is still the one loaded and named.
        QCOMPARE(t.s.image.sprdUP.save(), loaded);
        QCOMPARE(child<QLabel>(screen, "lblFName")->text(), t.path("good.Uxx"));
        QVERIFY(enabled(screen, "btnSendALL"));
        const QStringList log = t.errLog();
        QCOMPARE(log.size(), 2);
        QVERIFY(log[0].endsWith(QLatin1String(",btnFileRead_Click")));
        QVERIFY(log[1].contains(QLatin1String("broken.USD")));
    }
};

QTEST_MAIN(TransferScreensTest)
#include "tst_transfer.moc"
