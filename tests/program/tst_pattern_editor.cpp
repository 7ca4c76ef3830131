// The pattern editor: a finished cell sends one word of the pattern in its
// encoding, an entry stays in the image until the cell is left, the start
// mode and alarm object go out at once, alarm types, values and limits, the
// name cut to the bytes of the line, the read-back, and no fetch on opening
// from a cached file.
#include "ModalDriver.h"
#include "ProgramCurve.h"
#include "ProgramFixture.h"
#include "Widgets.h"
#include "frmQM730Prg_PTN.h"
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineSeries>
#include <QPushButton>
#include <QtTest>

using Ptn = frmQM730Prg_PTN;

namespace {

// A pattern with something in every part: waits, repeats, start values,
// alarm 1 a temperature alarm of type 3, alarm 2 a humidity alarm of type 1,
// alarm 3 none (humidity object kept), four segments.
void samplePattern(ProgramBench &b, int p, bool tenths)
{
    b.words(p, {{Pd::SegmentCount, 4}, {Pd::WaitTemp, 20}, {Pd::WaitHumi, 50}, {Pd::WaitTime, packHoursMinutes(1, 30)},
                {Pd::RepeatAll, 2}, {Pd::LinkPattern, 0}, {Pd::StartMode, 0}, {Pd::StartTemp, 1250},
                {Pd::StartHumi, 600}, {Pd::RepeatStart(1), 2}, {Pd::RepeatEnd(1), 3}, {Pd::RepeatCount(1), 5},
                {Pd::AlarmKind(1), 3}, {Pd::AlarmSV(1), tenths ? 3050 : 30500}, {Pd::AlarmHyst(1), 10},
                {Pd::AlarmKind(2), 0x0101}, {Pd::AlarmSV(2), tenths ? 3100 : 31000}, {Pd::AlarmHyst(2), 20},
                {Pd::AlarmKind(3), 0x0100}});
    for (int s = 1; s <= 4; ++s)
        b.segment(p, s, 10000 + 1000 * s, 100 * s, 0, 10);
}

// The mailbox of one word of the pattern written.
QList<int> sent(int word, int value) { return {Cmd::WritePatternWord, word, value}; }

struct Editor {
    ProgramBench b;
    std::unique_ptr<Ptn> form;
    QTableWidget *list = nullptr, *alarms = nullptr, *repeats = nullptr;

    explicit Editor(double firmware = 2.31, const QString &protocol = QStringLiteral("PC Link")) : b(firmware, protocol)
    {
        b.loadAll();
        samplePattern(b, 2, firmware >= 2.31);
        b.words(3, {{Pd::SegmentCount, 0}, {Pd::RepeatAll, 1}});
        b.state.image.sprdTD.setText(1, patternNameRow(2), QStringLiteral("高溫測試"));
    }
    // Opens the editor, and selects a pattern by a click on its name.
    void open(int pattern = 0)
    {
        form = std::make_unique<Ptn>(b.bench.ctx);
        form->show();
        list = child<QTableWidget>(*form, "sprdPattern");
        alarms = child<QTableWidget>(*form, "sprdAlarm");
        repeats = child<QTableWidget>(*form, "sprdRepeat");
        if (pattern)
            select(pattern);
    }
    void select(int p)
    {
        clickCell(list, p - 1, Ptn::ColName);
        QTRY_VERIFY(!form->curve()->isCleared());
    }
    QList<int> mail() const { return b.mailbox(); }
    // Typed into a cell and finished: the mailbox then.
    QList<int> type(QTableWidget *t, int row, int col, const QString &text) { typeInto(t, row, col, text); return b.mailbox(); }
};

} // namespace

class PatternEditorTest : public QObject {
    Q_OBJECT
private slots:
    void listShowsTheImageAndTheScreenHoldsTheRefresh()
    {
        for (double fw : {2.31, 2.09}) {
            Editor e(fw);
            e.open();
            QCOMPARE(e.list->rowCount(), fw >= 2.2 ? 100 : 300);
            QCOMPARE(cell(e.list, 1, Ptn::ColName), QStringLiteral("高溫測試"));
            QStringList row;
            for (int c : {Ptn::ColWaitTemp, Ptn::ColWaitHumi, Ptn::ColWaitHours, Ptn::ColWaitMinutes, Ptn::ColRepeatAll,
                          Ptn::ColStartTemp, Ptn::ColStartHumi})
                row << cell(e.list, 1, c);
            QCOMPARE(row, QStringList({"2.0", "5.0", "1", "30", "2", "25.0", "60.0"}));
            QVERIFY(green(e.list, 1, Ptn::ColStartSV));
            QVERIFY(!child<QGroupBox>(*e.form, "fraAlarm")->isEnabled());
            // Its own refresh while open (given back on closing: tests/app, the registry walk).
            QCOMPARE(e.b.state.ActiveRefreshTimer.data(), e.form->findChild<QTimer *>(QStringLiteral("tmrRefresh")));
            QTRY_COMPARE(child<QLabel>(*e.form, "lblMC_No")->text(), QStringLiteral("5"));
        }
    }

    // A finished cell sends one word, held to its limits; an entry not yet
    // finished is kept in the image only, and Escape takes it back.
    void aFinishedCellSendsItsOneWord()
    {
        Editor e;
        e.open(2);
        struct Case {
            int col;
            QString typed;
            int word, value;
            QString shown;
        };
        for (const Case &c : QList<Case>{
                 {Ptn::ColWaitTemp, "2.5", Pd::WaitTemp, 25, "2.5"},
                 {Ptn::ColWaitHumi, "7", Pd::WaitHumi, 70, "7.0"},
                 {Ptn::ColRepeatAll, "12", Pd::RepeatAll, 12, "12"},
                 {Ptn::ColStartTemp, "-12.3", Pd::StartTemp, 877, "-12.3"},
                 {Ptn::ColStartTemp, "250", Pd::StartTemp, 3000, "200.0"}, // held to -100..200
                 {Ptn::ColStartHumi, "-5", Pd::StartHumi, 0, "0.0"},
                 {Ptn::ColLinkPattern, "400", Pd::LinkPattern, 100, "100"}, // no pattern past the last
                 {Ptn::ColWaitHours, "3", Pd::WaitTime, 3 * 256 + 30, "3"},  // with the minutes as they stand
                 {Ptn::ColWaitMinutes, "75", Pd::WaitTime, 3 * 256 + 59, "59"}}) {
            e.b.clearMailbox();
            QCOMPARE(e.type(e.list, 1, c.col, c.typed), sent(c.word, c.value));
            QCOMPARE(e.b.state.PatternNo, 2);
            QCOMPARE(e.b.word(2, c.word), qint64(c.value));
            QCOMPARE(cell(e.list, 1, c.col), c.shown);
        }

        e.b.clearMailbox();
        QLineEdit *editor = typeInto(e.list, 1, Ptn::ColWaitTemp, "4.5", 0);
        QVERIFY(editor);
        QCOMPARE(e.b.word(2, Pd::WaitTemp), 45);
        QVERIFY(e.form->CellDirty());
        QTest::keyClick(editor, Qt::Key_Escape);
        settle();
        QCOMPARE(e.b.word(2, Pd::WaitTemp), 25);
        QVERIFY(!e.form->CellDirty());
        typeInto(e.list, 1, Ptn::ColWaitTemp, QString()); // left untouched
        QCOMPARE(e.b.state.ReqCmd, 0);
    }

    void startModeAndAlarmObjectGoOutAtOnce()
    {
        Editor e;
        e.open(2);
        clickCell(e.list, 2, Ptn::ColStartPV); // pattern 3
        QCOMPARE(e.mail(), sent(Pd::StartMode, 1));
        QCOMPARE(QList<int>({e.b.state.PatternNo, e.form->selectedPattern()}), QList<int>({3, 3}));
        QVERIFY(green(e.list, 2, Ptn::ColStartPV));
        QVERIFY(e.list->item(2, Ptn::ColStartSV)->background() == QBrush());
        QVERIFY(QFile::exists(programCachePath(e.b.home.path(), 5, u"PD"))); // saved on the change

        e.select(2);
        clickCell(e.alarms, 0, Ptn::ColHumiObject); // alarm 1 to humidity, type 3 kept
        QCOMPARE(e.mail(), sent(Pd::AlarmKind(1), 0x0103));
        QVERIFY(green(e.alarms, 0, Ptn::ColHumiObject));
    }

    void alarmValuesFollowTheFirmwareWithinTheirLimits()
    {
        for (double fw : {2.30, 2.31}) {
            Editor e(fw);
            e.open(2);
            // Shown: a temperature alarm with two decimals before 2.31, a humidity alarm with one.
            QCOMPARE(QStringList({cell(e.alarms, 0, Ptn::ColAlarmSV), cell(e.alarms, 1, Ptn::ColAlarmSV),
                                  cell(e.alarms, 0, Ptn::ColAlarmType)}),
                     QStringList({fw < 2.31 ? "5.00" : "5.0", "10.0", "03"}));
            QCOMPARE(e.type(e.alarms, 0, Ptn::ColAlarmSV, "-100"), sent(Pd::AlarmSV(1), fw < 2.31 ? 20000 : 2000));
            QCOMPARE(e.type(e.alarms, 0, Ptn::ColAlarmHyst, "1.5"), sent(Pd::AlarmHyst(1), 15));
        }
        // The limits: alarm 1 a temperature deviation (type 3), alarm 2 a humidity alarm of type 1.
        Editor e;
        e.open(2);
        typeInto(e.alarms, 0, Ptn::ColAlarmSV, "-350");
        QCOMPARE(cell(e.alarms, 0, Ptn::ColAlarmSV), QStringLiteral("-300.0"));
        QCOMPARE(e.mail().last(), 0);
        QCOMPARE(e.type(e.alarms, 1, Ptn::ColAlarmSV, "120"), sent(Pd::AlarmSV(2), 4000));
        QCOMPARE(e.type(e.alarms, 0, Ptn::ColAlarmHyst, "700"), sent(Pd::AlarmHyst(1), 6000));
        // Alarm 3 has no type: its value and hysteresis are locked, shown black.
        QVERIFY(!(e.alarms->item(2, Ptn::ColAlarmSV)->flags() & Qt::ItemIsEditable));
        QCOMPARE(e.alarms->item(2, Ptn::ColAlarmHyst)->background().color(), QColor(0, 0, 0));
        QCOMPARE(cell(e.alarms, 2, Ptn::ColAlarmType), QStringLiteral("--"));
    }

    void alarmTypeThroughTheChooser()
    {
        Editor e;
        e.open();
        ModalDriver d;
        // No pattern selected: the type cell does nothing.
        emit e.alarms->cellClicked(0, Ptn::ColAlarmType);
        QVERIFY(nothingAsked(d));
        QCOMPARE(e.b.state.ReqCmd, 0);

        e.select(2);
        // Type 5 (the fifth row of the chooser) for alarm 3: the humidity object stays.
        d.then([](QWidget *w) { emit w->findChild<QTableWidget *>(QStringLiteral("vaSpread1"))->cellDoubleClicked(4, 0); });
        clickCell(e.alarms, 2, Ptn::ColAlarmType);
        QTRY_VERIFY(d.done());
        QCOMPARE(d.met, QStringList({"frmSys_AlarmCode"}));
        QCOMPARE(e.mail(), sent(Pd::AlarmKind(3), 0x0105));
        QCOMPARE(cell(e.alarms, 2, Ptn::ColAlarmType), QStringLiteral("05"));
        QVERIFY(e.alarms->item(2, Ptn::ColAlarmSV)->flags() & Qt::ItemIsEditable); // unlocked

        // "關閉": no alarm in the image, the object kept in the word that goes out.
        d.dialog("btnAlarmOff");
        clickCell(e.alarms, 1, Ptn::ColAlarmType);
        QTRY_VERIFY(d.done());
        QCOMPARE(e.mail(), sent(Pd::AlarmKind(2), 0x0100));
        QCOMPARE(e.b.word(2, Pd::AlarmKind(2)), 0);
        QCOMPARE(cell(e.alarms, 1, Ptn::ColAlarmType), QStringLiteral("--"));
        QVERIFY(d.unexpected.isEmpty());
    }

    void partialRepeatsWithinTheSegments()
    {
        Editor e;
        e.open(3); // no segments
        QVERIFY(!e.repeats->isEnabled());
        e.select(2);
        QVERIFY(e.repeats->isEnabled());
        QCOMPARE(cell(e.repeats, 0, Ptn::ColRepeatCount), QStringLiteral("5"));
        QCOMPARE(e.type(e.repeats, 3, Ptn::ColRepeatEnd, "9"), sent(Pd::RepeatEnd(4), 4)); // rule 4, past the 4 segments
        QCOMPARE(e.type(e.repeats, 3, Ptn::ColRepeatStart, "4"), sent(Pd::RepeatStart(4), 4)); // start not checked against end
        QCOMPARE(e.type(e.repeats, 19, Ptn::ColRepeatCount, "250"), sent(Pd::RepeatCount(20), 250));
    }

    void theNameIsCutToTheBytesOfTheLine_data()
    {
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<int>("characters");
        QTest::newRow("pclink 29 bytes") << QStringLiteral("PC Link") << 14;
        QTest::newRow("modbus 24 bytes") << QStringLiteral("Modbus RTU") << 12;
    }
    void theNameIsCutToTheBytesOfTheLine()
    {
        QFETCH(QString, protocol);
        QFETCH(int, characters);
        Editor e(2.31, protocol);
        e.open();
        const QString typed = QStringLiteral("溫濕度循環測試程式溫濕度循環測試程式"); // 18 characters, 36 bytes
        QLineEdit *editor = typeInto(e.list, 4, Ptn::ColName, typed, 0);
        QCOMPARE(editor->text(), typed.left(characters)); // the field takes no more
        QTest::keyClick(editor, Qt::Key_Return);
        settle();
        QCOMPARE(QList<int>({e.b.state.ReqCmd, e.b.state.ReqIndex}), QList<int>({Cmd::WriteTextRow, patternNameRow(5)}));
        QCOMPARE(e.b.state.image.sprdTD.text(1, patternNameRow(5)), typed.left(characters));

        // Hangul has no Big5 code: it is shown and sent as "?", and the row
        // goes out as whole characters that read back as the cell shows them.
        e.b.clearMailbox();
        typeInto(e.list, 4, Ptn::ColName, QStringLiteral("測試한글1"));
        QCOMPARE(e.b.state.ReqCmd, int(Cmd::WriteTextRow));
        const QString kept = QStringLiteral("測試??1");
        QCOMPARE(cell(e.list, 4, Ptn::ColName), kept);
        QCOMPARE(e.b.state.image.sprdTD.text(1, patternNameRow(5)), kept);
        QCOMPARE(tdBytesToText(tdRowToBytes(e.b.state.image, patternNameRow(5), e.b.state.Modbus())), kept);
    }

    void theReadBackIsWhatTheScreenShows()
    {
        Editor e;
        e.open(2);
        typeInto(e.list, 1, Ptn::ColWaitTemp, "9.9");
        // The controller kept another value; the read-back brings it into the image.
        setPatternWord(e.b.state.image, 2, Pd::WaitTemp, 33);
        setPatternWord(e.b.state.image, 2, Pd::AlarmHyst(1), 77);
        setPatternWord(e.b.state.image, 2, Pd::WaitHumi, 99); // not the word written: left alone
        e.b.state.startActiveRefresh();
        QTRY_COMPARE(cell(e.list, 1, Ptn::ColWaitTemp), QStringLiteral("3.3"));
        QCOMPARE(cell(e.alarms, 0, Ptn::ColAlarmHyst), QStringLiteral("7.7"));
        QCOMPARE(cell(e.list, 1, Ptn::ColWaitHumi), QStringLiteral("5.0"));

        // After a change of start mode the curve is drawn again from the image.
        clickCell(e.list, 1, Ptn::ColStartPV);
        setPatternWord(e.b.state.image, 2, Pd::StartMode, 0); // refused
        e.b.state.image.sprdRCV.setNumber(2, 2, 15000);
        e.b.segment(2, 1, 12000, 0, 0, 10);
        e.b.state.startActiveRefresh();
        QTRY_VERIFY(!e.form->RegraphPending());
        QTRY_COMPARE(e.form->curve()->series(0)->at(1).y(), 20.0);
        QCOMPARE(e.form->curve()->series(0)->at(0).y(), 25.0); // S.SV again: the start value
        QVERIFY(green(e.list, 1, Ptn::ColStartSV));
    }

    // (A fetch stopped on opening closes the editor without a cache: tests/integration.)
    void fromFileWithACacheThereIsNoFetch()
    {
        ProgramBench b;
        QVERIFY(SaveProgramCache(b.state.image, b.home.path(), 5));
        b.state.PtnDataOption = 1;
        ModalDriver none;
        Ptn editor(b.bench.ctx);
        QVERIFY(nothingAsked(none) && none.met.isEmpty());
    }
};

QTEST_MAIN(PatternEditorTest)
#include "tst_pattern_editor.moc"
