// The pattern editor: a finished cell sends one word of the pattern in its
// encoding, an entry stays in the image until the cell is left, the start
// mode and alarm object go out at once, alarm types, values and limits, the
// name cut to the bytes of the line, the read-back, and the program fetch
// around opening and closing.
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
    void open()
    {
        form = std::make_unique<Ptn>(b.bench.ctx);
        form->show();
        list = child<QTableWidget>(*form, "sprdPattern");
        alarms = child<QTableWidget>(*form, "sprdAlarm");
        repeats = child<QTableWidget>(*form, "sprdRepeat");
    }
    QString text(QTableWidget *t, int row, int col) const { return t->item(row, col)->text(); }
    qint64 word(int p, int w) const { return patternWord(b.state.image, p, w); }
    // Selects pattern p by a click on its name.
    void select(int p)
    {
        clickCell(list, p - 1, Ptn::ColName);
        QTRY_VERIFY(!form->curve()->isCleared());
    }
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
            QCOMPARE(e.text(e.list, 1, Ptn::ColName), QStringLiteral("高溫測試"));
            QStringList row;
            for (int c : {Ptn::ColWaitTemp, Ptn::ColWaitHumi, Ptn::ColWaitHours, Ptn::ColWaitMinutes, Ptn::ColRepeatAll,
                          Ptn::ColStartTemp, Ptn::ColStartHumi})
                row << e.text(e.list, 1, c);
            QCOMPARE(row, QStringList({"2.0", "5.0", "1", "30", "2", "25.0", "60.0"}));
            QCOMPARE(e.list->item(1, Ptn::ColStartSV)->background().color(), QColor(0, 255, 0));
            QVERIFY(!child<QGroupBox>(*e.form, "fraAlarm")->isEnabled());
            QTimer *refresh = e.form->findChild<QTimer *>(QStringLiteral("tmrRefresh"));
            QCOMPARE(e.b.state.ActiveRefreshTimer.data(), refresh);
            QTRY_COMPARE(child<QLabel>(*e.form, "lblMC_No")->text(), QStringLiteral("5"));
            e.form->close();
            QVERIFY(e.b.state.ActiveRefreshTimer.data() != refresh);
            // Closing writes the cache of the foreground machine.
            QVERIFY(QFile::exists(programCachePath(e.b.home.path(), 5, u"TD")));
        }
    }

    void aFinishedCellSendsItsOneWord()
    {
        Editor e;
        e.open();
        e.select(2);
        struct Case {
            int col;
            QString typed;
            int word;
            int value;
            QString shown;
        };
        const QList<Case> cases = {
            {Ptn::ColWaitTemp, "2.5", Pd::WaitTemp, 25, "2.5"},
            {Ptn::ColWaitHumi, "7", Pd::WaitHumi, 70, "7.0"},
            {Ptn::ColRepeatAll, "12", Pd::RepeatAll, 12, "12"},
            {Ptn::ColStartTemp, "-12.3", Pd::StartTemp, 877, "-12.3"},
            {Ptn::ColStartTemp, "250", Pd::StartTemp, 3000, "200.0"}, // held to -100..200
            {Ptn::ColStartHumi, "-5", Pd::StartHumi, 0, "0.0"},
            {Ptn::ColLinkPattern, "400", Pd::LinkPattern, 100, "100"}, // no pattern past the last
        };
        for (const Case &c : cases) {
            e.b.clearMailbox();
            typeInto(e.list, 1, c.col, c.typed);
            QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WritePatternWord, c.word, c.value}));
            QCOMPARE(e.b.state.PatternNo, 2);
            QCOMPARE(e.word(2, c.word), qint64(c.value));
            QCOMPARE(e.text(e.list, 1, c.col), c.shown);
            QCOMPARE(e.form->ChangedWord(), c.word);
        }
        // The wait hours alone: word 4 with the minutes as they stand.
        typeInto(e.list, 1, Ptn::ColWaitHours, "3");
        QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WritePatternWord, Pd::WaitTime, 3 * 256 + 30}));
        typeInto(e.list, 1, Ptn::ColWaitMinutes, "75");
        QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WritePatternWord, Pd::WaitTime, 3 * 256 + 59}));
    }

    void anEntryIsKeptUntilTheCellIsLeft()
    {
        Editor e;
        e.open();
        e.select(2);
        e.b.clearMailbox();
        QLineEdit *editor = typeInto(e.list, 1, Ptn::ColWaitTemp, "4.5", 0);
        QVERIFY(editor);
        QCOMPARE(e.word(2, Pd::WaitTemp), 45); // stored as typed
        QVERIFY(e.form->CellDirty());
        QCOMPARE(e.b.state.ReqCmd, 0); // nothing sent yet
        QTest::keyClick(editor, Qt::Key_Escape);
        settle();
        QCOMPARE(e.word(2, Pd::WaitTemp), 20); // abandoned: the image as it was
        QVERIFY(!e.form->CellDirty());
        QCOMPARE(e.b.state.ReqCmd, 0);
        // Leaving a cell untouched sends nothing.
        typeInto(e.list, 1, Ptn::ColWaitTemp, QString());
        QCOMPARE(e.b.state.ReqCmd, 0);
    }

    void startModeAndAlarmObjectGoOutAtOnce()
    {
        Editor e;
        e.open();
        e.select(2);
        clickCell(e.list, 2, Ptn::ColStartPV); // pattern 3
        QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WritePatternWord, Pd::StartMode, 1}));
        QCOMPARE(e.b.state.PatternNo, 3);
        QCOMPARE(e.form->selectedPattern(), 3);
        QCOMPARE(e.list->item(2, Ptn::ColStartPV)->background().color(), QColor(0, 255, 0));
        QVERIFY(e.list->item(2, Ptn::ColStartSV)->background() == QBrush());
        QVERIFY(e.form->RegraphPending());
        QVERIFY(QFile::exists(programCachePath(e.b.home.path(), 5, u"PD"))); // saved on the change

        e.select(2);
        clickCell(e.alarms, 0, Ptn::ColHumiObject); // alarm 1 to humidity, type 3 kept
        QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WritePatternWord, Pd::AlarmKind(1), 0x0103}));
        QCOMPARE(e.alarms->item(0, Ptn::ColHumiObject)->background().color(), QColor(0, 255, 0));
    }

    void alarmValuesFollowTheFirmwareWithinTheirLimits()
    {
        for (double fw : {2.30, 2.31}) {
            Editor e(fw);
            e.open();
            e.select(2);
            // Shown: a temperature alarm with two decimals before 2.31, a humidity alarm with one.
            QCOMPARE(e.text(e.alarms, 0, Ptn::ColAlarmSV), fw < 2.31 ? QStringLiteral("5.00") : QStringLiteral("5.0"));
            QCOMPARE(e.text(e.alarms, 1, Ptn::ColAlarmSV), QStringLiteral("10.0"));
            QCOMPARE(e.text(e.alarms, 0, Ptn::ColAlarmType), QStringLiteral("03"));
            typeInto(e.alarms, 0, Ptn::ColAlarmSV, "-100");
            QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WritePatternWord, Pd::AlarmSV(1), fw < 2.31 ? 20000 : 2000}));
            typeInto(e.alarms, 0, Ptn::ColAlarmHyst, "1.5");
            QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WritePatternWord, Pd::AlarmHyst(1), 15}));
        }
        // The limits: alarm 1 a temperature deviation (type 3), alarm 2 a humidity alarm of type 1.
        Editor e;
        e.open();
        e.select(2);
        typeInto(e.alarms, 0, Ptn::ColAlarmSV, "-350");
        QCOMPARE(e.text(e.alarms, 0, Ptn::ColAlarmSV), QStringLiteral("-300.0"));
        QCOMPARE(e.b.mailbox().last(), 0);
        typeInto(e.alarms, 1, Ptn::ColAlarmSV, "120");
        QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WritePatternWord, Pd::AlarmSV(2), 4000}));
        typeInto(e.alarms, 0, Ptn::ColAlarmHyst, "700");
        QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WritePatternWord, Pd::AlarmHyst(1), 6000}));
        // Alarm 3 has no type: its value and hysteresis are locked, shown black.
        QVERIFY(!(e.alarms->item(2, Ptn::ColAlarmSV)->flags() & Qt::ItemIsEditable));
        QCOMPARE(e.alarms->item(2, Ptn::ColAlarmHyst)->background().color(), QColor(0, 0, 0));
        QCOMPARE(e.text(e.alarms, 2, Ptn::ColAlarmType), QStringLiteral("--"));
    }

    void alarmTypeThroughTheChooser()
    {
        Editor e;
        e.open();
        ModalDriver d;
        // No pattern selected: the type cell does nothing.
        emit e.alarms->cellClicked(0, Ptn::ColAlarmType);
        QTest::qWait(30);
        QVERIFY(d.met.isEmpty() && d.unexpected.isEmpty());
        QCOMPARE(e.b.state.ReqCmd, 0);

        e.select(2);
        // Type 5 (the fifth row of the chooser) for alarm 3: the humidity object stays.
        d.then([](QWidget *w) { emit w->findChild<QTableWidget *>(QStringLiteral("vaSpread1"))->cellDoubleClicked(4, 0); });
        clickCell(e.alarms, 2, Ptn::ColAlarmType);
        QTRY_VERIFY(d.done());
        QCOMPARE(d.met, QStringList({"frmSys_AlarmCode"}));
        QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WritePatternWord, Pd::AlarmKind(3), 0x0105}));
        QCOMPARE(e.text(e.alarms, 2, Ptn::ColAlarmType), QStringLiteral("05"));
        QVERIFY(e.alarms->item(2, Ptn::ColAlarmSV)->flags() & Qt::ItemIsEditable); // unlocked

        // "關閉": no alarm in the image, the object kept in the word that goes out.
        d.dialog("btnAlarmOff");
        clickCell(e.alarms, 1, Ptn::ColAlarmType);
        QTRY_VERIFY(d.done());
        QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WritePatternWord, Pd::AlarmKind(2), 0x0100}));
        QCOMPARE(e.word(2, Pd::AlarmKind(2)), 0);
        QCOMPARE(e.text(e.alarms, 1, Ptn::ColAlarmType), QStringLiteral("--"));
        QVERIFY(d.unexpected.isEmpty());
    }

    void partialRepeatsWithinTheSegments()
    {
        Editor e;
        e.open();
        e.select(3); // no segments
        QVERIFY(!e.repeats->isEnabled());
        e.select(2);
        QVERIFY(e.repeats->isEnabled());
        QCOMPARE(e.text(e.repeats, 0, Ptn::ColRepeatCount), QStringLiteral("5"));
        typeInto(e.repeats, 3, Ptn::ColRepeatEnd, "9"); // rule 4, past the 4 segments
        QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WritePatternWord, Pd::RepeatEnd(4), 4}));
        typeInto(e.repeats, 3, Ptn::ColRepeatStart, "4"); // start not checked against end
        QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WritePatternWord, Pd::RepeatStart(4), 4}));
        typeInto(e.repeats, 19, Ptn::ColRepeatCount, "250");
        QCOMPARE(e.b.mailbox(), QList<int>({Cmd::WritePatternWord, Pd::RepeatCount(20), 250}));
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
        QCOMPARE(e.b.state.ReqCmd, int(Cmd::WriteTextRow));
        QCOMPARE(e.b.state.ReqIndex, patternNameRow(5));
        QCOMPARE(e.b.state.image.sprdTD.text(1, patternNameRow(5)), typed.left(characters));
        // Two bytes of letters in front: where one byte is left, the next
        // character stays out whole.
        typeInto(e.list, 4, Ptn::ColName, QStringLiteral("AB") + typed);
        QCOMPARE(e.b.state.image.sprdTD.text(1, patternNameRow(5)), QStringLiteral("AB") + typed.left(characters - 1));

        // Hangul has no Big5 code: it is shown and sent as "?", and the row
        // goes out as whole characters that read back as the cell shows them.
        e.b.clearMailbox();
        typeInto(e.list, 4, Ptn::ColName, QStringLiteral("測試한글1"));
        QCOMPARE(e.b.state.ReqCmd, int(Cmd::WriteTextRow));
        const QString kept = QStringLiteral("測試??1");
        QCOMPARE(e.text(e.list, 4, Ptn::ColName), kept);
        QCOMPARE(e.b.state.image.sprdTD.text(1, patternNameRow(5)), kept);
        const QByteArray line = tdRowToBytes(e.b.state.image, patternNameRow(5), e.b.state.Modbus());
        QCOMPARE(line.size(), protocol == QLatin1String("PC Link") ? 29 : 24);
        QCOMPARE(tdBytesToText(line), kept);
    }

    void theReadBackIsWhatTheScreenShows()
    {
        Editor e;
        e.open();
        e.select(2);
        typeInto(e.list, 1, Ptn::ColWaitTemp, "9.9");
        // The controller kept another value; the read-back brings it into the image.
        setPatternWord(e.b.state.image, 2, Pd::WaitTemp, 33);
        setPatternWord(e.b.state.image, 2, Pd::AlarmHyst(1), 77);
        setPatternWord(e.b.state.image, 2, Pd::WaitHumi, 99); // not the word written: left alone
        e.b.state.startActiveRefresh();
        QTRY_COMPARE(e.text(e.list, 1, Ptn::ColWaitTemp), QStringLiteral("3.3"));
        QCOMPARE(e.text(e.alarms, 0, Ptn::ColAlarmHyst), QStringLiteral("7.7"));
        QCOMPARE(e.text(e.list, 1, Ptn::ColWaitHumi), QStringLiteral("5.0"));

        // After a change of start mode the curve is drawn again from the image.
        clickCell(e.list, 1, Ptn::ColStartPV);
        setPatternWord(e.b.state.image, 2, Pd::StartMode, 0); // refused
        e.b.state.image.sprdRCV.setNumber(2, 2, 15000);
        e.b.segment(2, 1, 12000, 0, 0, 10);
        e.b.state.startActiveRefresh();
        QTRY_VERIFY(!e.form->RegraphPending());
        QTRY_COMPARE(e.form->curve()->series(0)->at(1).y(), 20.0);
        QCOMPARE(e.form->curve()->series(0)->at(0).y(), 25.0); // S.SV again: the start value
        QCOMPARE(e.list->item(1, Ptn::ColStartSV)->background().color(), QColor(0, 255, 0));
    }

    void aStoppedFetchClosesTheEditorWithoutACache()
    {
        ProgramBench b;
        ModalDriver d;
        d.dialog("btnStop");
        Ptn form(b.bench.ctx);
        QCOMPARE(d.met, QStringList({"frmQM730_PTN_Recv"}));
        QVERIFY(b.state.ReceptionStopped);
        QCOMPARE(form.exec(), int(QDialog::Rejected)); // closes itself at once
        QVERIFY(!b.state.ReceptionStopped);
        QVERIFY(!QFile::exists(programCachePath(b.home.path(), 5, u"PD")));

        // From file with a cache: no fetch at all.
        QVERIFY(SaveProgramCache(b.state.image, b.home.path(), 5));
        b.state.PtnDataOption = 1;
        ModalDriver none;
        Ptn again(b.bench.ctx);
        QTest::qWait(30);
        QVERIFY(none.met.isEmpty() && none.unexpected.isEmpty());
    }
};

QTEST_MAIN(PatternEditorTest)
#include "tst_pattern_editor.moc"
