// The program management screen: entry boxes held to the patterns and
// segments there are, a pattern copied whole but its name, a run of segments
// copied through the scratch table (overlapping, and cut at the last place),
// a pattern cleared, each with its question and the one request that sends it.
#include "ModalDriver.h"
#include "ProgramCurve.h"
#include "ProgramFixture.h"
#include "Widgets.h"
#include "frmQM730Prg_Managemen.h"
#include <QLabel>
#include <QLineSeries>
#include <QPushButton>
#include <QtTest>

using Mgmt = frmQM730Prg_Managemen;

namespace {

struct Screen {
    ProgramBench b;
    std::unique_ptr<Mgmt> form;

    Screen()
    {
        b.loadAll();
        // Pattern 1: six segments at 1 .. 6 degrees (the temperature tells
        // them apart), 10 minutes each, a wait band and alarm 1.
        b.words(1, {{Pd::SegmentCount, 6}, {Pd::WaitTemp, 20}, {Pd::RepeatAll, 3}, {Pd::AlarmKind(1), 3}});
        for (int s = 1; s <= 6; ++s)
            b.segment(1, s, 10000 + 100 * s, 0, 0, 10);
        setSegmentWord(b.state.image, 1, 2, Sd::TsMode(3), Sd::TsTimed);
        b.state.image.sprdTD.setText(1, patternNameRow(1), QStringLiteral("正本"));
        b.state.image.sprdTD.setText(1, patternNameRow(4), QStringLiteral("副本"));
        // Pattern 4: two segments at 90 degrees.
        b.words(4, {{Pd::SegmentCount, 2}});
        for (int s = 1; s <= 2; ++s)
            b.segment(4, s, 19000, 0, 1, 0);
    }
    void open()
    {
        form = std::make_unique<Mgmt>(b.bench.ctx);
        form->show();
        QTRY_COMPARE(box("txtSource_Pattern")->text(), QStringLiteral("1"));
    }
    QLineEdit *box(const char *name) const { return child<QLineEdit>(*form, name); }
    QString label(const char *name) const { return child<QLabel>(*form, name)->text(); }
    // Entry boxes by name and the text typed into each.
    void enter(std::initializer_list<std::pair<const char *, const char *>> entries)
    {
        for (const auto &[name, text] : entries)
            ProgramBench::enter(box(name), QLatin1String(text));
    }
    // The temperature of each segment 1..n of a pattern, in degrees.
    QList<int> temps(int p, int n, int from = 1) const
    {
        QList<int> t;
        for (int s = from; s <= n; ++s)
            t << int((b.seg(p, s, Sd::SegTempSV) - 10000) / 100);
        return t;
    }
    QPushButton *copy(int index) const { return indexed<QPushButton>(*form, "btnCopy", index); }
    void press(int index, ModalDriver &d, QMessageBox::StandardButton answer = QMessageBox::Yes)
    {
        d.box(answer);
        copy(index)->click();
        QTRY_VERIFY(d.done());
    }
};

} // namespace

class ManagementTest : public QObject {
    Q_OBJECT
private slots:
    void entryBoxesHoldToWhatThereIs()
    {
        Screen e;
        e.open();
        QCOMPARE(e.label("lblSource_SegCnt"), QStringLiteral("6"));
        QCOMPARE(QStringList({e.box("txtSource_Seg1")->text(), e.box("txtSource_Seg2")->text(), e.box("txtTarget_Seg1")->text()}),
                 QStringList({"1", "6", "1"}));
        QTRY_COMPARE(e.form->curve()->series(0)->count(), 7); // the source's curve

        // Past the count: the count, then first > last swaps; the target at
        // least segment 1, no pattern past the last.
        e.enter({{"txtSource_Seg1", "9"}, {"txtSource_Seg2", "2"}, {"txtTarget_Seg1", "0"}, {"txtTarget_Pattern", "400"}});
        const auto c = e.form->choice();
        QCOMPARE(QList<int>({c.firstSegment, c.lastSegment, c.targetSegment, c.targetPattern}), QList<int>({2, 6, 1, 100}));
        e.enter({{"txtTarget_Pattern", "4"}});
        QCOMPARE(e.label("lblTarget_SegCnt"), QStringLiteral("2"));

        // A source without segments: nothing to choose, and copying segments does nothing.
        e.enter({{"txtSource_Pattern", "7"}});
        QCOMPARE(e.label("lblSource_SegCnt"), QStringLiteral("0"));
        QCOMPARE(e.box("txtSource_Seg1")->text(), QStringLiteral("0"));
        QVERIFY(!e.box("txtSource_Seg1")->isEnabled() && !e.box("txtTarget_Seg1")->isEnabled());
        ModalDriver d;
        e.copy(1)->click();
        QVERIFY(nothingAsked(d));
        QCOMPARE(e.b.state.ReqCmd, 0);

        // A click in the list chooses the source.
        clickCell(child<QTableWidget>(*e.form, "sprdPattern"), 3, 0);
        QCOMPARE(e.form->choice().sourcePattern, 4);
        QCOMPARE(e.label("lblSource_SegCnt"), QStringLiteral("2"));
    }

    void aPatternIsCopiedWholeButItsName()
    {
        Screen e;
        e.open();
        e.enter({{"txtTarget_Pattern", "4"}});
        ModalDriver d;
        e.press(0, d, QMessageBox::No);
        QCOMPARE(d.met, QStringList({"复制?"}));
        QCOMPARE(e.b.word(4, Pd::SegmentCount), 2);
        QCOMPARE(e.b.state.ReqCmd, 0);

        e.press(0, d);
        QCOMPARE(e.temps(4, 6), QList<int>({1, 2, 3, 4, 5, 6}));
        QCOMPARE(e.b.seg(4, 2, Sd::TsMode(3)), Sd::TsTimed);
        for (int w = 1; w <= Pd::Words; ++w)
            QCOMPARE(e.b.word(4, w), e.b.word(1, w));
        QCOMPARE(patternName(e.b.state.image, 4), QStringLiteral("副本"));
        QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WriteProgram, 0, 0}));
        QCOMPARE(QList<int>({e.b.state.PatternNo, e.b.state.SegmentNo, e.b.state.SegmentCount}), QList<int>({4, 1, 6}));
        QCOMPARE(e.label("lblTarget_SegCnt"), QStringLiteral("6"));

        // Onto itself: nothing, not even the question.
        e.enter({{"txtTarget_Pattern", "1"}});
        e.b.clearMailbox();
        e.copy(0)->click();
        QVERIFY(nothingAsked(d));
        QCOMPARE(e.b.state.ReqCmd, 0);
    }

    void segmentsAreCopiedThroughTheScratchTable()
    {
        // Segments 3 to 5 onto segment 4 of the same pattern: places 4 to 6
        // hold 3, 4, 5; the run ends at 6, so the count stays 6.
        Screen e;
        e.open();
        e.enter({{"txtSource_Seg1", "3"}, {"txtSource_Seg2", "5"}, {"txtTarget_Seg1", "4"}});
        ModalDriver d;
        e.press(1, d);
        QCOMPARE(d.met, QStringList({"复制?"}));
        QCOMPARE(e.temps(1, 6), QList<int>({1, 2, 3, 3, 4, 5}));
        QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WriteSegmentCount, Pd::SegmentCount, 6}));
        QCOMPARE(QList<int>({e.b.state.SegmentNo, e.b.state.SegmentCount}), QList<int>({4, 6}));

        // Segments 4 to 6 onto segment 4 of pattern 4 (2 segments): the
        // count grows to the end of the run, the gap at 3 stands as it is.
        e.enter({{"txtSource_Seg1", "4"}, {"txtSource_Seg2", "6"}, {"txtTarget_Pattern", "4"}, {"txtTarget_Seg1", "4"}});
        e.press(1, d);
        QCOMPARE(e.temps(4, 6), QList<int>({90, 90, -100, 3, 4, 5}));
        QCOMPARE(e.b.word(4, Pd::SegmentCount), 6);
        QCOMPARE(e.b.state.SegmentNo, 4);

        // A run that would pass the last place stops there; the count is 100.
        e.enter({{"txtSource_Seg1", "1"}, {"txtTarget_Seg1", "99"}});
        e.press(1, d);
        QCOMPARE(e.temps(4, 100, 99), QList<int>({1, 2}));
        QCOMPARE(e.b.word(4, Pd::SegmentCount), 100);
        QCOMPARE(e.b.state.SegmentCount, 100);

        // A segment put in between: segments 3 to the last moved one place on
        // (3 to 6 onto 4), segment 3 then there twice, and the count one more.
        Screen f;
        f.open();
        f.enter({{"txtSource_Seg1", "3"}, {"txtTarget_Seg1", "4"}});
        f.press(1, d);
        QCOMPARE(f.temps(1, 7), QList<int>({1, 2, 3, 3, 4, 5, 6}));
        QCOMPARE(f.b.mailbox(), QList<int>({Cmd::WriteSegmentCount, Pd::SegmentCount, 7}));
        QCOMPARE(f.b.state.SegmentCount, 7);
        QCOMPARE(f.label("lblTarget_SegCnt"), QStringLiteral("7"));
    }

    void aClearedPatternHoldsTheEmptyValues()
    {
        Screen e;
        e.open();
        ModalDriver d;
        d.box(QMessageBox::Yes);
        child<QPushButton>(*e.form, "btnInit_Pattern")->click();
        QTRY_VERIFY(d.done());
        QCOMPARE(d.met, QStringList({"清除程序组?"}));
        QList<qint64> words;
        for (int w : {1, 2, 5, 6, 7, 8, 9, 70, 71, 72, 80, 81})
            words << e.b.word(1, w);
        QCOMPARE(words, QList<qint64>({0, 0, 1, 0, 1, 1000, 0, 0, 30000, 100, 30000, 100}));
        QCOMPARE(e.b.seg(1, 2, Sd::TsMode(3)), 0);
        QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WritePattern, 0, 0}));
        QCOMPARE(e.b.state.PatternNo, 1);
        QVERIFY(!e.box("txtSource_Seg1")->isEnabled());
    }
};

QTEST_MAIN(ManagementTest)
#include "tst_management.moc"
