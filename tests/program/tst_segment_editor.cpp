// The segment editor: a finished cell sends its word of the segment, an
// entry past the last segment adds the segments up to it, a deletion moves
// the later ones up, the wait flag and alarms toggle only where the pattern
// has them, the time-signal cells write the signal's words, and the sheet
// prints to PDF.
#include "ModalDriver.h"
#include "ProgramCurve.h"
#include "ProgramFixture.h"
#include "Widgets.h"
#include "frmQM730Prg_PTN.h"
#include "frmQM730Prg_SEG.h"
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineSeries>
#include <QPushButton>
#include <QtTest>

using Seg = frmQM730Prg_SEG;

namespace {

struct Editor {
    ProgramBench b;
    std::unique_ptr<Seg> form;
    QTableWidget *segments = nullptr, *signalGrid = nullptr, *list = nullptr;

    explicit Editor(double firmware = 2.31) : b(firmware)
    {
        b.loadAll();
        // Pattern 2: four segments of 20, 30, 40, 50 degrees, humidity 10, 20 ...
        // each 0 h 10 min; segment 3 waits, has alarm 2 and time signal 4 on.
        b.words(2, {{Pd::SegmentCount, 4}, {Pd::WaitTemp, 20}, {Pd::AlarmKind(1), 3}});
        for (int s = 1; s <= 4; ++s)
            b.segment(2, s, 10000 + 1000 * (s + 1), 100 * s, 0, 10);
        setSegmentWord(b.state.image, 2, 3, Sd::SegFlags, 0x0102);
        setSegmentWord(b.state.image, 2, 3, Sd::TsMode(4), Sd::TsOn);
        setSegmentWord(b.state.image, 2, 3, Sd::TsTime1(2), packBytes(1, 30));
        setSegmentWord(b.state.image, 2, 3, Sd::TsMode(2), Sd::TsTimed);
        // Pattern 3: empty, no wait bands, no alarms.
        b.words(3, {{Pd::SegmentCount, 0}, {Pd::RepeatAll, 1}});
    }
    // Opens the editor, and chooses a pattern from the list.
    void open(int pattern = 0)
    {
        form = std::make_unique<Seg>(b.bench.ctx, nullptr, 0, false);
        form->show();
        segments = child<QTableWidget>(*form, "sprdSegment");
        signalGrid = child<QTableWidget>(*form, "sprdTimeSignal");
        list = child<QTableWidget>(*form, "sprdPattern");
        if (pattern) {
            clickCell(list, pattern - 1, 0);
            QTRY_COMPARE(form->shownSegmentCount(), int(b.word(pattern, Pd::SegmentCount)));
            QTRY_VERIFY(segments->isEnabled());
        }
    }
    QString text(int row, int col) const { return cell(segments, row, col); }
    QStringList row(int s) const
    {
        return {text(s - 1, Seg::ColTemp), text(s - 1, Seg::ColHumi), text(s - 1, Seg::ColHours), text(s - 1, Seg::ColMinutes)};
    }
    QList<int> mail() const { return b.mailbox(); }
    // The deletion of a segment by a click on its heading, answered.
    void remove(int row, ModalDriver &d, QMessageBox::StandardButton answer = QMessageBox::Yes)
    {
        d.box(answer);
        emit segments->verticalHeader()->sectionClicked(row);
        QTRY_VERIFY(d.done());
    }
};

} // namespace

class SegmentEditorTest : public QObject {
    Q_OBJECT
private slots:
    void segmentsOfTheChosenPatternShow()
    {
        Editor e;
        e.open();
        QCOMPARE(e.list->rowCount(), 100);
        QVERIFY(!e.segments->isEnabled()); // until a pattern is chosen
        e.open(2);
        QCOMPARE(e.row(3), QStringList({"40.00", "30.0", "0", "10"}));
        QCOMPARE(QStringList({e.text(2, Seg::ColWait), e.text(1, Seg::ColWait)}), QStringList({"WT", "-"}));
        QVERIFY(green(e.segments, 2, Seg::ColWait));
        QVERIFY(green(e.segments, 2, Seg::ColAlarm1 + 1) && !green(e.segments, 2, Seg::ColAlarm1));
        QVERIFY(green(e.segments, 2, Seg::ColSignal1 + 3) && green(e.segments, 2, Seg::ColSignal1 + 1));
        QVERIFY(e.text(4, Seg::ColTemp).isEmpty()); // past the count: empty
        QVERIFY(!e.signalGrid->isEnabled());
        QCOMPARE(e.form->curve()->series(0)->count(), 5);

        // Segment 3: its time signals, ON green, timed neither, off OFF.
        clickCell(e.segments, 2, Seg::ColTemp);
        QCOMPARE(e.form->selectedSegment(), 3);
        QVERIFY(e.signalGrid->isEnabled());
        QVERIFY(green(e.signalGrid, 3, Seg::ColOn) && !green(e.signalGrid, 3, Seg::ColOff));
        QVERIFY(!green(e.signalGrid, 1, Seg::ColOn) && !green(e.signalGrid, 1, Seg::ColOff));
        QVERIFY(green(e.signalGrid, 0, Seg::ColOff));
        QCOMPARE(QStringList({cell(e.signalGrid, 1, Seg::ColTime1First), cell(e.signalGrid, 1, Seg::ColTime1Second)}),
                 QStringList({"1", "30"}));

        // Humidity is controlled between the bounds of sprdUP rows 70 and 71
        // only: outside them the cursor goes back to the temperature.
        e.b.state.image.sprdUP.setNumber(1, 70, 10000 + 3500);
        e.b.state.image.sprdUP.setNumber(1, 71, 10000 + 1000);
        e.segments->setCurrentCell(3, Seg::ColHumi); // segment 4 at 50 degrees
        QTRY_COMPARE(e.segments->currentColumn(), int(Seg::ColTemp));
        e.segments->setCurrentCell(1, Seg::ColHumi); // segment 2 at 30 degrees
        QTest::qWait(20);
        QCOMPARE(e.segments->currentColumn(), int(Seg::ColHumi));
    }

    void thePatternEditorOpensItOnItsPattern()
    {
        Editor e;
        frmQM730Prg_PTN patterns(e.b.bench.ctx);
        patterns.show();
        clickCell(child<QTableWidget>(patterns, "sprdPattern"), 1, 0);
        ModalDriver d;
        QList<int> shown; // the pattern chosen, its segments
        d.then([&shown](QWidget *w) {
            auto *seg = static_cast<Seg *>(w);
            QTRY_COMPARE(seg->shownSegmentCount(), 4);
            shown = {seg->selectedPattern(), seg->shownSegmentCount()};
            seg->reject();
        });
        child<QPushButton>(patterns, "btnGo_Segment")->click();
        QTRY_VERIFY(d.done());
        QCOMPARE(d.met, QStringList({"frmQM730Prg_SEG"}));
        QCOMPARE(shown, QList<int>({2, 4}));
        // Back in the pattern editor, the refresh is its own again.
        QCOMPARE(e.b.state.ActiveRefreshTimer.data(), patterns.findChild<QTimer *>(QStringLiteral("tmrRefresh")));
    }

    // A finished cell sends its word, held to its limits; humidity only where
    // the temperature allows it; Escape takes an entry back.
    void aFinishedCellSendsItsWordOfTheSegment()
    {
        Editor e;
        e.open(2);
        struct Case {
            int row, col;
            QString typed;
            int word, value;
            QString shown;
        };
        for (const Case &c : QList<Case>{{1, Seg::ColTemp, "25.5", Sd::SegTempSV, 12550, "25.50"},
                                         {1, Seg::ColTemp, "250", Sd::SegTempSV, 30000, "200.00"},
                                         {0, Seg::ColTemp, "-120", Sd::SegTempSV, 0, "-100.00"},
                                         {2, Seg::ColHumi, "150", Sd::SegHumiSV, 1000, "100.0"},
                                         {2, Seg::ColHours, "3", Sd::SegTime, 3 * 256 + 10, "3"},
                                         {2, Seg::ColMinutes, "75", Sd::SegTime, 3 * 256 + 59, "59"}}) {
            e.b.clearMailbox();
            typeInto(e.segments, c.row, c.col, c.typed);
            QCOMPARE(e.mail(), QList<int>({Cmd::WriteSegmentWords, c.word, c.value}));
            QCOMPARE(QList<int>({e.b.state.CmdIndexEnd, e.b.state.PatternNo, e.b.state.SegmentNo}), QList<int>({c.word, 2, c.row + 1}));
            QCOMPARE(e.b.seg(2, c.row + 1, c.word), qint64(c.value));
            QCOMPARE(e.text(c.row, c.col), c.shown);
        }
        // Humidity needs a temperature above 0 and below 100: segment 1 is at -100 now.
        e.b.clearMailbox();
        typeInto(e.segments, 0, Seg::ColHumi, "50");
        QCOMPARE(e.text(0, Seg::ColHumi), QStringLiteral("0"));
        QCOMPARE(e.b.seg(2, 1, Sd::SegHumiSV), 100); // as it was
        QLineEdit *editor = typeInto(e.segments, 3, Seg::ColTemp, "77", 0);
        QCOMPARE(e.b.seg(2, 4, Sd::SegTempSV), 17700);
        QTest::keyClick(editor, Qt::Key_Escape);
        settle();
        QCOMPARE(e.b.seg(2, 4, Sd::SegTempSV), 15000);
        QCOMPARE(e.b.state.ReqCmd, 0);
    }

    void anEntryPastTheLastSegmentAddsTheRowsUpToIt()
    {
        Editor e;
        e.open(2);
        typeInto(e.segments, 6, Seg::ColTemp, "60");
        // Segments 5, 6, 7 alike; the count 7 goes out with the segments from 5.
        for (int s = 5; s <= 7; ++s) {
            QCOMPARE(e.row(s), QStringList({"60.00", "0.0", "0", "0"}));
            QCOMPARE(e.b.seg(2, s, Sd::SegTempSV), 16000);
        }
        QCOMPARE(e.b.word(2, Pd::SegmentCount), 7);
        QCOMPARE(e.mail(), QList<int>({Cmd::WriteSegmentCount, Pd::SegmentCount, 7}));
        QCOMPARE(QList<int>({e.b.state.SegmentNo, e.b.state.SegmentCount}), QList<int>({5, 7}));
        QVERIFY(child<QLabel>(*e.form, "lblMSG")->isVisible());
        emit e.b.bench.link.segmentWriteDone();
        QVERIFY(!child<QLabel>(*e.form, "lblMSG")->isVisible());
    }

    void aDeletedSegmentLetsTheLaterOnesMoveUp()
    {
        Editor e;
        e.open(2);
        setSegmentWord(e.b.state.image, 2, 100, Sd::SegTempSV, 12345); // the last place
        ModalDriver d;
        e.remove(1, d, QMessageBox::No);
        QCOMPARE(d.met, QStringList({"刪除段 2 ?"}));
        QCOMPARE(e.b.word(2, Pd::SegmentCount), 4);
        QCOMPARE(e.b.state.ReqCmd, 0);

        e.remove(1, d);
        QCOMPARE(e.b.word(2, Pd::SegmentCount), 3);
        QCOMPARE(e.b.seg(2, 2, Sd::SegTempSV), 14000); // was segment 3
        QCOMPARE(e.b.seg(2, 2, Sd::SegFlags), 0x0102);  // its flags with it
        QCOMPARE(e.b.seg(2, 3, Sd::SegTempSV), 15000);
        QCOMPARE(e.b.seg(2, 99, Sd::SegTempSV), 12345);
        QCOMPARE(e.b.seg(2, 100, Sd::SegTempSV), 12345); // keeps its own
        QCOMPARE(e.mail(), QList<int>({Cmd::WriteSegmentCount, Pd::SegmentCount, 3}));
        QCOMPARE(QList<int>({e.b.state.SegmentNo, e.b.state.SegmentCount}), QList<int>({2, 3}));
        QCOMPARE(e.row(2), QStringList({"40.00", "30.0", "0", "10"}));
        QVERIFY(e.text(3, Seg::ColTemp).isEmpty());

        // The last segment: only the count is written (the first segment is past it).
        e.remove(2, d);
        QCOMPARE(e.mail(), QList<int>({Cmd::WriteSegmentCount, Pd::SegmentCount, 2}));
        QCOMPARE(QList<int>({e.b.state.SegmentNo, e.b.state.SegmentCount}), QList<int>({3, 2}));
        // A heading past the count asks nothing.
        emit e.segments->verticalHeader()->sectionClicked(5);
        QVERIFY(nothingAsked(d));
    }

    void waitAndAlarmsToggleWhereThePatternHasThem()
    {
        Editor e;
        e.open(2);
        clickCell(e.segments, 0, Seg::ColWait);
        QCOMPARE(e.mail(), QList<int>({Cmd::WriteSegmentWords, Sd::SegFlags, 0x0100}));
        QCOMPARE(e.text(0, Seg::ColWait), QStringLiteral("WT"));
        clickCell(e.segments, 2, Seg::ColAlarm1 + 3); // alarm 4 joins alarm 2, the wait stays
        QCOMPARE(e.mail(), QList<int>({Cmd::WriteSegmentWords, Sd::SegFlags, 0x010A}));
        clickCell(e.segments, 2, Seg::ColAlarm1 + 1); // alarm 2 off
        QCOMPARE(e.mail(), QList<int>({Cmd::WriteSegmentWords, Sd::SegFlags, 0x0108}));

        // No wait bands and no alarms in the pattern: neither toggles, a set flag stays.
        e.b.words(2, {{Pd::WaitTemp, 0}, {Pd::AlarmKind(1), 0x0100}});
        e.b.clearMailbox();
        clickCell(e.segments, 2, Seg::ColWait);
        clickCell(e.segments, 2, Seg::ColAlarm1);
        QCOMPARE(e.b.state.ReqCmd, 0);
        QCOMPARE(e.b.seg(2, 3, Sd::SegFlags), 0x0108);
    }

    void timeSignalCellsWriteTheSignalsWords()
    {
        Editor e;
        e.open(2);
        clickCell(e.segments, 2, Seg::ColTemp);
        clickCell(e.signalGrid, 0, Seg::ColOn); // signal 1 on
        QCOMPARE(e.mail(), QList<int>({Cmd::WriteSegmentWords, Sd::TsMode(1), Sd::TsOn}));
        QCOMPARE(e.b.state.CmdIndexEnd, Sd::TsMode(1));
        QVERIFY(!e.signalGrid->isEnabled()); // until the read-back
        e.b.state.startActiveRefresh();
        QTRY_VERIFY(e.signalGrid->isEnabled());
        QVERIFY(green(e.segments, 2, Seg::ColSignal1));

        // A second time of 0 h 45 makes signal 3 timed; mode and both times go in one run.
        typeInto(e.signalGrid, 2, Seg::ColTime2Second, "45");
        QCOMPARE(QList<qint64>({e.b.seg(2, 3, Sd::TsMode(3)), e.b.seg(2, 3, Sd::TsTime2(3))}), QList<qint64>({Sd::TsTimed, 45}));
        QCOMPARE(e.mail(), QList<int>({Cmd::WriteSegmentWords, Sd::TsMode(3), Sd::TsTimed}));
        QCOMPARE(e.b.state.CmdIndexEnd, Sd::TsTime2(3));
        QVERIFY(!green(e.signalGrid, 2, Seg::ColOff));
        typeInto(e.signalGrid, 2, Seg::ColTime1First, "120"); // held to 99
        QCOMPARE(e.b.seg(2, 3, Sd::TsTime1(3)), 99 * 256);
    }

    void theSheetPrintsToPdf()
    {
        Editor e;
        e.open(2);
        const QString sheet = e.b.home.filePath(QStringLiteral("sheet.pdf"));
        const QString graph = e.b.home.filePath(QStringLiteral("graph.pdf"));
        QVERIFY(e.form->printSheetToPdf(sheet) && e.form->printGraphToPdf(graph));
        for (const QString &path : {sheet, graph}) {
            QFile f(path);
            QVERIFY(f.open(QIODevice::ReadOnly));
            const QByteArray pdf = f.readAll();
            QVERIFY(pdf.startsWith("%PDF") && (pdf.contains("/Type /Page") || pdf.contains("/Type/Page")));
        }
        // A folder that does not exist: refused, no crash.
        QVERIFY(!e.form->printSheetToPdf(e.b.home.filePath(QStringLiteral("none/sheet.pdf"))));
    }
};

QTEST_MAIN(SegmentEditorTest)
#include "tst_segment_editor.moc"
