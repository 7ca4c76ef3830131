// The time-signal editor: the two times' meaning by firmware, ON and OFF for
// the whole segment (times cleared), a click on the panel making a signal
// timed, and a time held to its limit, written with the mode and both times.
#include "ButtonColour.h"
#include "ProgramFixture.h"
#include "ProgramWriter.h"
#include "Widgets.h"
#include "frmQM730Prg_SEG_TS.h"
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QtTest>

namespace {

struct Signals {
    ProgramBench b;
    QTimer refresh;
    ProgramWriter writer{b.bench.ctx, refresh};
    std::unique_ptr<frmQM730Prg_SEG_TS> form;

    explicit Signals(double firmware) : b(firmware)
    {
        b.words(2, {{Pd::SegmentCount, 3}});
        // Segment 3: signal 1 timed at 0x0A1E / 0x0005, signal 2 on, the rest off.
        setSegmentWord(b.state.image, 2, 3, Sd::TsMode(1), Sd::TsTimed);
        setSegmentWord(b.state.image, 2, 3, Sd::TsTime1(1), 0x0A1E);
        setSegmentWord(b.state.image, 2, 3, Sd::TsTime2(1), 0x0005);
        setSegmentWord(b.state.image, 2, 3, Sd::TsMode(2), Sd::TsOn);
        setSegmentWord(b.state.image, 2, 3, Sd::TsTime1(2), 0x0102);
        form = std::make_unique<frmQM730Prg_SEG_TS>(b.bench.ctx, nullptr, &writer, 2, 3);
        form->show();
    }
    QLineEdit *entry(const char *name, int k) const { return indexed<QLineEdit>(*form, name, k - 1); }
    QPushButton *button(const char *name, int k) const { return indexed<QPushButton>(*form, name, k - 1); }
    QString unit(const char *name, int k) const { return indexed<QLabel>(*form, name, k - 1)->text(); }
    void enter(const char *name, int k, const QString &text) { ProgramBench::enter(entry(name, k), text); }
    qint64 word(int w) const { return segmentWord(b.state.image, 2, 3, w); }
};

} // namespace

class TimeSignalTest : public QObject {
    Q_OBJECT
private slots:
    void theTimesMeanWhatTheFirmwareSays()
    {
        for (double fw : {2.50, 2.51}) {
            Signals e(fw);
            const bool newer = fw >= 2.51;
            QCOMPARE(child<QLabel>(*e.form, "Label6")->isVisibleTo(e.form.get()), !newer);
            QCOMPARE(QStringList({e.unit("lblLT1", 1), e.unit("lblLT2", 1), e.unit("lblRT1", 1), e.unit("lblRT2", 1)}),
                     newer ? QStringList({"m", "s", "m", "s"}) : QStringList({"h", "m", "h", "m"}));
            // 0x0A1E: 10 and 30, hours and minutes or minutes and seconds.
            QCOMPARE(e.entry("txtLT1", 1)->text(), QStringLiteral("10"));
            QCOMPARE(e.entry("txtLT2", 1)->text(), QStringLiteral("30"));
            QCOMPARE(e.entry("txtRT2", 1)->text(), QStringLiteral("5"));
            QVERIFY(e.form->panelActive(1) && !e.form->panelActive(2) && !e.form->panelActive(3));
            QCOMPARE(ButtonColour::of(e.button("btnON", 2)), ButtonColour::Selected);
            QCOMPARE(ButtonColour::of(e.button("btnOFF", 3)), ButtonColour::Selected);
            QCOMPARE(ButtonColour::of(e.button("btnON", 1)), ButtonColour::FaceColour);
        }
    }

    void aTimeWithinItsLimitMakesTheSignalTimed()
    {
        Signals e(2.51);
        e.enter("txtLT2", 2, "60"); // outside 0..59: dropped
        QCOMPARE(e.entry("txtLT2", 2)->text(), QStringLiteral("2"));
        QCOMPARE(e.word(Sd::TsMode(2)), Sd::TsOn);
        QCOMPARE(e.b.state.ReqCmd, 0);

        e.enter("txtLT2", 2, "59");
        QVERIFY(e.form->panelActive(2));
        QCOMPARE(ButtonColour::of(e.button("btnON", 2)), ButtonColour::FaceColour);
        QCOMPARE(e.word(Sd::TsMode(2)), Sd::TsTimed);
        QCOMPARE(e.word(Sd::TsTime1(2)), 1 * 256 + 59);
        QCOMPARE(e.word(Sd::TsTime2(2)), 0);
        // Mode, first and second time in one run; the first word is the mode.
        QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WriteSegmentWords, Sd::TsMode(2), Sd::TsTimed}));
        QCOMPARE(e.b.state.CmdIndexEnd, Sd::TsTime2(2));
        QCOMPARE(e.b.state.SegmentNo, 3);

        e.enter("txtRT1", 4, "99");
        QCOMPARE(e.word(Sd::TsTime2(4)), 99 * 256);
        QCOMPARE(e.word(Sd::TsMode(4)), Sd::TsTimed);
    }

    void onAndOffClearTheTimesAPanelClickTimesTheSignal()
    {
        Signals e(2.50);
        e.button("btnOFF", 1)->click();
        QCOMPARE(QList<qint64>({e.word(Sd::TsMode(1)), e.word(Sd::TsTime1(1)), e.word(Sd::TsTime2(1))}),
                 QList<qint64>({0, 0, 0}));
        QVERIFY(e.entry("txtLT1", 1)->text().isEmpty() && e.entry("txtRT2", 1)->text().isEmpty());
        QVERIFY(!e.form->panelActive(1));
        QCOMPARE(ButtonColour::of(e.button("btnOFF", 1)), ButtonColour::Selected);
        QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WriteSegmentWords, Sd::TsMode(1), Sd::TsOff}));
        QCOMPARE(e.b.state.CmdIndexEnd, Sd::TsTime2(1));

        e.button("btnON", 3)->click();
        QCOMPARE(e.word(Sd::TsMode(3)), Sd::TsOn);
        QCOMPARE(ButtonColour::of(e.button("btnON", 3)), ButtonColour::Selected);
        QCOMPARE(ButtonColour::of(e.button("btnOFF", 3)), ButtonColour::FaceColour);

        // A click on the panel: timed, the mode word alone goes out.
        auto *panel = indexed<QFrame>(*e.form, "picTime", 2);
        QTest::mouseClick(panel, Qt::LeftButton, {}, QPoint(2, 2));
        QVERIFY(e.form->panelActive(3));
        QCOMPARE(e.word(Sd::TsMode(3)), Sd::TsTimed);
        QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WriteSegmentWords, Sd::TsMode(3), Sd::TsTimed}));
        QCOMPARE(e.b.state.CmdIndexEnd, Sd::TsMode(3));
    }
};

QTEST_MAIN(TimeSignalTest)
#include "tst_time_signals.moc"
