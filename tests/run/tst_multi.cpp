// The multi-chamber console: what each click leaves in the mailbox and for
// which machine, the value dialog and its words, and a machine that falls
// silent.
#include "MultiFixture.h"
#include "frmQM730_DataInput.h"
#include "frmQM730_RunMulti.h"
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
    void buttonCellsCommandTheMachineOfTheRow()
    {
        Bench b;
        b.rrp(2, Rrp::Hold, 1); // machine 12 holds: its hold cell is lit
        b.rrp(2, Rrp::TempAT, 1);
        b.open();
        const struct {
            int row, col, cmd, word;
        } cases[] = {{3, C::ColProgram, 311, 0}, {3, C::ColFixed, 311, 1}, {3, C::ColStop, 312, 0},
                     {3, C::ColHold, 314, 0},    {3, C::ColStep, 313, 1},  {3, C::ColTempAT, 315, 0},
                     {3, C::ColHumiAT, 316, 1},  {2, C::ColRun, 312, 1}}; // the last: machine 7 runs
        for (const auto &c : cases) {
            b.clearMail();
            clickCell(b.view("sprdMulti"), c.row, c.col);
            QVERIFY2(b.mail() == (QList<int>{c.cmd, 0, c.word, c.row - 1}), qPrintable(QString::number(c.col)));
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
        for (auto [r, v] : {std::pair{Rcv::RunPattern, 4}, {Rcv::RunSegment, 2}, {Rcv::RunHours, 12},
                            {Rcv::RunMinutes, 3}, {Rcv::RunSeconds, 9}})
            b.rcv(1, r, v);
        C &form = b.open();
        QCOMPARE(b.view("sprdMulti")->model()->headerData(1, Qt::Vertical).toString(), QStringLiteral("7"));
        const std::tuple<int, int, const char *> cells[] = {
            {1, C::ColTempPV, "---.--"},   {1, C::ColHumiPV, "---.-"},   {2, C::ColTempPV, "24.50"},
            {2, C::ColHumiPV, "58.3"},     {2, C::ColTempSV, "25.00"},   {2, C::ColHumiSV, "60.0"},
            {2, C::ColRunPattern, "4"},    {2, C::ColRunSegment, "2"},   {2, C::ColRunTime, "0012:03:09"},
            {2, C::ColTempMV, "12.50"},    {2, C::ColHumiMV, "30.20"}};
        for (const auto &[row, col, text] : cells)
            QVERIFY2(b.text(row, col) == QLatin1String(text), qPrintable(QStringLiteral("%1,%2").arg(row).arg(col)));
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

        b.silenceWhileReadingsMove(1);
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

    void valuesGoThroughTheDialog()
    {
        Bench b;
        b.rcv(0, Rcv::RunMode, 0); // machine 3: program mode, stopped
        b.open();
        // The dialog names the value, the machine and what it is now; entered values, clamped,
        // go to the machine of the row after a moment (tmrNextCMD).
        const struct {
            int row, col;
            QStringList asked; // title, machine, present value
            const char *typed, *shown;
            int cmd, word;
        } cases[] = {{2, C::ColTempSV, {"溫度 SV", "7", "25.00"}, "250", "200", 325, 30000}, // above the range
                     {3, C::ColHumiSV, {"濕度 SV", "12", "60.0"}, "55.5", "55.5", 327, 555},
                     {1, C::ColStartPattern, {"START PTN", "3", "1"}, "300", "100", 321, 100}}; // above 100 patterns
        frmQM730_DataInput *d = nullptr;
        for (const auto &c : cases) {
            b.clearMail();
            doubleClickCell(b.view("sprdMulti"), c.row, c.col);
            QVERIFY((d = dialog(b)));
            QCOMPARE(QStringList({d->windowTitle(), child<QLabel>(*d, "lblMC_No")->text(), child<QLabel>(*d, "lblOld")->text()}),
                     c.asked);
            auto *entry = child<QLineEdit>(*d, "txtNew");
            entry->selectAll();
            QTest::keyClicks(entry, QLatin1String(c.typed));
            QTest::keyClick(entry, Qt::Key_Return);
            QCOMPARE(entry->text(), QLatin1String(c.shown));
            QCOMPARE(b.state.ReqCmd, 0);
            QTRY_COMPARE(b.mail(), (QList<int>{c.cmd, 0, c.word, c.row - 1}));
        }

        // Cancel sends nothing.
        b.clearMail();
        doubleClickCell(b.view("sprdMulti"), 2, C::ColTempPID);
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

    void dialogWordsAndRanges_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("word");
        QTest::newRow("temp below") << "TEMP. SV" << "-150" << "-100" << 0;
        QTest::newRow("temp half even") << "TEMP. SV" << "25.555" << "25.555" << 12556;
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
        d.ask(kind, 5, QStringLiteral("1"));
        QList<int> entered;
        connect(&d, &frmQM730_DataInput::entered, this, [&](quint16 w) { entered << w; });
        child<QLineEdit>(d, "txtNew")->setText(typed);
        QTest::mouseClick(child<QPushButton>(d, "btnOK"), Qt::LeftButton);
        QCOMPARE(child<QLineEdit>(d, "txtNew")->text(), shown);
        QCOMPARE(entered, QList<int>{word});
        QCOMPARE(d.result(), int(QDialog::Accepted));
    }
};

QTEST_MAIN(TestRunMulti)
#include "tst_multi.moc"
