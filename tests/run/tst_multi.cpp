// The multi-chamber console: what each click leaves in the mailbox and for
// which machine, the value dialog and its words, and a machine that falls
// silent.
#include "MultiFixture.h"
#include "Encodings.h"
#include "frmQM730_DataInput.h"
#include "frmQM730_RunMulti.h"
#include "mdlModbusRTU.h"
#include "mdlQM730_Protocol.h"
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using Bench = MultiBench<frmQM730_RunMulti>;
using C = frmQM730_RunMulti;

class TestRunMulti : public QObject {
    Q_OBJECT
private:
    // The value dialog the console shows, if any.
    static frmQM730_DataInput *dialog(Bench &b)
    {
        for (auto *d : b.form->findChildren<frmQM730_DataInput *>())
            if (d->isVisible())
                return d;
        return nullptr;
    }

private slots:
    void runGoesToTheMachineOfTheRowOnly_data()
    {
        QTest::addColumn<QString>("protocol");
        QTest::newRow("PC Link") << QStringLiteral("PC Link");
        QTest::newRow("Modbus RTU") << QStringLiteral("Modbus RTU");
    }

    void runGoesToTheMachineOfTheRowOnly()
    {
        QFETCH(QString, protocol);
        Bench b;
        b.state.CommProtocol = protocol;
        b.open();
        clickCell(b.view("sprdMulti"), 2, C::ColRun); // the row of machine 7
        QCOMPARE(b.mail(), (QList<int>{312, 0, 1, 1}));

        // The next tick of the link sends it to machine 7 and to no other.
        b.bench.port.open({}, {});
        b.state.PollSlot = 0;
        b.bench.link.tmrSend_Timer();
        const QByteArray expected = protocol == QLatin1String("PC Link") ? pclink::frame_wrp(7, 1, wordBytes(1))
                                                                         : modbus::modbus_write(7, 40001, 1, wordBytes(1));
        QCOMPARE(b.bench.port.lastFrame(), expected);
        QCOMPARE(b.state.PollSlot, 1);
    }

    void buttonCellsPostTheirCommands()
    {
        Bench b;
        b.rrp(2, Rrp::Hold, 1);  // machine 12 holds: its hold cell is lit
        b.rrp(2, Rrp::TempAT, 1);
        b.open();
        const struct {
            int col;
            int cmd;
            int word;
        } cases[] = {{C::ColProgram, 311, 0}, {C::ColFixed, 311, 1}, {C::ColRun, 312, 1}, {C::ColStop, 312, 0},
                     {C::ColHold, 314, 0},    {C::ColStep, 313, 1},  {C::ColTempAT, 315, 0}, {C::ColHumiAT, 316, 1}};
        for (const auto &c : cases) {
            b.clearMail();
            clickCell(b.view("sprdMulti"), 3, c.col);
            QVERIFY2(b.mail() == (QList<int>{c.cmd, 0, c.word, 2}), qPrintable(QString::number(c.col)));
        }
        // Value cells take no single click.
        b.clearMail();
        for (int col : {int(C::ColTempPV), int(C::ColTempSV), int(C::ColStartPattern), int(C::ColRunTime)})
            clickCell(b.view("sprdMulti"), 3, col);
        QCOMPARE(b.state.ReqCmd, 0);
    }

    void sheetShowsTheTables()
    {
        Bench b;
        b.rcv(0, Rcv::TempPV, 65535);
        b.rcv(0, Rcv::HumiPV, 65535);
        b.rcv(1, Rcv::RunMode, 0);
        b.rrp(1, Rrp::Run, 1);
        b.rrp(1, Rrp::Step, 1);
        b.rcv(1, Rcv::RunPattern, 4);
        b.rcv(1, Rcv::RunSegment, 2);
        b.rcv(1, Rcv::RunHours, 12);
        b.rcv(1, Rcv::RunMinutes, 3);
        b.rcv(1, Rcv::RunSeconds, 9);
        C &form = b.open();
        QCOMPARE(b.view("sprdMulti")->model()->headerData(1, Qt::Vertical).toString(), QStringLiteral("7"));
        QCOMPARE(b.text(1, C::ColTempPV), QStringLiteral("---.--"));
        QCOMPARE(b.text(1, C::ColHumiPV), QStringLiteral("---.-"));
        QCOMPARE(b.text(2, C::ColTempPV), QStringLiteral("24.50"));
        QCOMPARE(b.text(2, C::ColHumiPV), QStringLiteral("58.3"));
        QCOMPARE(b.text(2, C::ColTempSV), QStringLiteral("25.00"));
        QCOMPARE(b.text(2, C::ColHumiSV), QStringLiteral("60.0"));
        QCOMPARE(b.text(2, C::ColRunPattern), QStringLiteral("4"));
        QCOMPARE(b.text(2, C::ColRunSegment), QStringLiteral("2"));
        QCOMPARE(b.text(2, C::ColRunTime), QStringLiteral("0012:03:09"));
        QCOMPARE(b.text(2, C::ColTempMV), QStringLiteral("12.50"));
        QCOMPARE(b.text(2, C::ColHumiMV), QStringLiteral("30.20"));
        // Machine 7 runs a program with a step pending; machine 3 waits in fixed mode.
        const int lit[] = {C::ColProgram, C::ColRun, C::ColStep};
        for (int col = C::ColProgram; col <= C::ColHumiAT; ++col) {
            if (col >= C::ColStartPattern && col <= C::ColRunSegment)
                continue;
            QCOMPARE(form.isLit(2, col), std::find(std::begin(lit), std::end(lit), col) != std::end(lit));
        }
        QVERIFY(form.isLit(1, C::ColFixed) && form.isLit(1, C::ColStop));
        QCOMPARE(b.cell(2, C::ColTempSV).toolTip, QStringLiteral("只可在定值運轉中使用"));
        QCOMPARE(b.cell(2, C::ColStartSegment).toolTip, QStringLiteral("只可在程式停止狀態下使用"));
    }

    void silentMachineTurnsRedFreezesAndTakesNoCommands()
    {
        Bench b;
        C &form = b.open();
        QCOMPARE(b.text(2, C::ColLink), QStringLiteral("良好"));
        QCOMPARE(b.cell(2, C::ColLink).back, QColor(0, 255, 0));

        b.setOnline(1, false);
        b.rcv(1, Rcv::TempPV, 13000);
        b.rcv(0, Rcv::TempPV, 13000);
        form.Timer1_Timer();
        QCOMPARE(b.text(2, C::ColLink), QStringLiteral("不良"));
        QCOMPARE(b.cell(2, C::ColLink).back, QColor(255, 0, 0));
        QCOMPARE(b.text(2, C::ColTempPV), QStringLiteral("24.50")); // frozen
        QCOMPARE(b.text(1, C::ColTempPV), QStringLiteral("30.00")); // the others go on

        clickCell(b.view("sprdMulti"), 2, C::ColRun);
        doubleClickCell(b.view("sprdMulti"), 2, C::ColTempSV);
        QCOMPARE(b.state.ReqCmd, 0);
        QVERIFY(!dialog(b));

        // It answers again: the row catches up.
        b.setOnline(1, true);
        form.Timer1_Timer();
        QCOMPARE(b.text(2, C::ColLink), QStringLiteral("良好"));
        QCOMPARE(b.text(2, C::ColTempPV), QStringLiteral("30.00"));
    }

    void setValueGoesThroughTheDialog()
    {
        Bench b;
        C &form = b.open();
        doubleClickCell(b.view("sprdMulti"), 2, C::ColTempSV);
        frmQM730_DataInput *d = dialog(b);
        QVERIFY(d);
        QCOMPARE(d->windowTitle(), QStringLiteral("溫度 SV"));
        QCOMPARE(child<QLabel>(*d, "lblMC_No")->text(), QStringLiteral("7"));
        QCOMPARE(child<QLabel>(*d, "lblOld")->text(), QStringLiteral("25.00"));

        // 250 is above the range: clamped to 200, the word of 200 degrees.
        auto *entry = child<QLineEdit>(*d, "txtNew");
        entry->selectAll();
        QTest::keyClicks(entry, QStringLiteral("250"));
        QTest::keyClick(entry, Qt::Key_Return);
        QCOMPARE(entry->text(), QStringLiteral("200"));
        QCOMPARE(b.state.ReqCmd, 0); // tmrNextCMD sends it
        QTRY_COMPARE(b.mail(), (QList<int>{325, 0, 30000, 1}));
        QCOMPARE(form.InputWord(), wordBytes(30000));

        // Humidity of machine 12, confirmed with the button.
        b.clearMail();
        doubleClickCell(b.view("sprdMulti"), 3, C::ColHumiSV);
        QVERIFY((d = dialog(b)));
        child<QLineEdit>(*d, "txtNew")->setText(QStringLiteral("55.5"));
        QTest::mouseClick(child<QPushButton>(*d, "btnOK"), Qt::LeftButton);
        QTRY_COMPARE(b.mail(), (QList<int>{327, 0, 555, 2}));

        // Cancel sends nothing.
        b.clearMail();
        doubleClickCell(b.view("sprdMulti"), 1, C::ColTempPID);
        QVERIFY((d = dialog(b)));
        QCOMPARE(d->windowTitle(), QStringLiteral("溫度 PID"));
        QTest::mouseClick(child<QPushButton>(*d, "btnCancel"), Qt::LeftButton);
        QTest::qWait(120);
        QCOMPARE(b.state.ReqCmd, 0);
    }

    void doubleClicksRefusedByModeAndRun()
    {
        Bench b;
        b.rcv(0, Rcv::RunMode, 0);   // machine 3: program mode, stopped
        b.rrp(2, Rrp::Run, 1);       // machine 12: fixed mode, running
        b.rcv(1, Rcv::RunMode, 0);   // machine 7: program mode, running
        b.rrp(1, Rrp::Run, 1);
        b.open();
        QTableView *sheet = b.view("sprdMulti");
        const struct {
            int row;
            int col;
            const char *title; // empty: refused
        } cases[] = {
            {1, C::ColTempSV, ""},         {1, C::ColHumiPID, ""},         {1, C::ColStartPattern, "START PTN"},
            {1, C::ColRunSegment, "START SEG"}, {2, C::ColRunPattern, ""}, {2, C::ColStartSegment, ""},
            {3, C::ColStartPattern, ""},   {3, C::ColHumiSV, "濕度 SV"},    {3, C::ColHumiPID, "濕度 PID"},
            {3, C::ColTempPV, ""},
        };
        for (const auto &c : cases) {
            doubleClickCell(sheet, c.row, c.col);
            frmQM730_DataInput *d = dialog(b);
            const QString title = QString::fromUtf8(c.title);
            QVERIFY2(bool(d) == !title.isEmpty(), qPrintable(QStringLiteral("%1,%2").arg(c.row).arg(c.col)));
            if (d) {
                QCOMPARE(d->windowTitle(), title);
                d->reject();
            }
        }
    }

    void startPatternCarriesTheNumber()
    {
        Bench b;
        b.rcv(0, Rcv::RunMode, 0);
        b.open();
        doubleClickCell(b.view("sprdMulti"), 1, C::ColStartPattern);
        frmQM730_DataInput *d = dialog(b);
        QVERIFY(d);
        // Above the patterns of this firmware (100): clamped to the last one.
        child<QLineEdit>(*d, "txtNew")->setText(QStringLiteral("300"));
        QTest::mouseClick(child<QPushButton>(*d, "btnOK"), Qt::LeftButton);
        QTRY_COMPARE(b.mail(), (QList<int>{321, 0, 100, 0}));
    }

    void dialogWordsAndRanges_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("word");
        QTest::newRow("temp low end") << "TEMP. SV" << "-100" << "-100" << 0;
        QTest::newRow("temp high end") << "TEMP. SV" << "200" << "200" << 30000;
        QTest::newRow("temp below") << "TEMP. SV" << "-150" << "-100" << 0;
        QTest::newRow("temp half even") << "TEMP. SV" << "25.555" << "25.555" << 12556;
        QTest::newRow("humi") << "HUMI. SV" << "60" << "60" << 600;
        QTest::newRow("humi above") << "HUMI. SV" << "120" << "100" << 1000;
        QTest::newRow("empty segment") << "START SEG" << "" << "1" << 1;
        QTest::newRow("segment above") << "START SEG" << "101" << "100" << 100;
        QTest::newRow("pid") << "HUMI. PID" << "0" << "1" << 1;
        QTest::newRow("pid above") << "TEMP. PID" << "17" << "16" << 16;
        QTest::newRow("other title: no clamp, word 0") << "OTHER" << "500" << "500" << 0;
    }

    void dialogWordsAndRanges()
    {
        QFETCH(QString, kind);
        QFETCH(QString, typed);
        QFETCH(QString, shown);
        QFETCH(int, word);
        QTemporaryDir home;
        ScreenBench bench(home.path());
        frmQM730_DataInput d(bench.ctx);
        QCOMPARE(d.windowTitle(), QStringLiteral("資料登錄"));
        d.ask(kind, 5, QStringLiteral("1"));
        QList<int> entered;
        connect(&d, &frmQM730_DataInput::entered, this, [&](quint16 w) { entered << w; });
        child<QLineEdit>(d, "txtNew")->setText(typed);
        QTest::mouseClick(child<QPushButton>(d, "btnOK"), Qt::LeftButton);
        QCOMPARE(child<QLineEdit>(d, "txtNew")->text(), shown);
        QCOMPARE(entered, QList<int>{word});
        QCOMPARE(d.InputWord(), wordBytes(quint16(word)));
        QCOMPARE(d.result(), int(QDialog::Accepted));
    }
};

QTEST_MAIN(TestRunMulti)
#include "tst_multi.moc"
