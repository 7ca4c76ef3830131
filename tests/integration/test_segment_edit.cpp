// Programs built on a simulated controller through the program screens: a
// three-segment program typed into an empty pattern of the segment editor
// (with a time signal), then copied onto another pattern and the first
// cleared on the management screen. The simulator's program memory must hold
// exactly the words the screens meant, in PC Link and in Modbus RTU.
#include "ModalDriver.h"
#include "ProgramImage.h"
#include "Screens.h"
#include "SimConsole.h"
#include "TableTyping.h"
#include "Widgets.h"
#include "frmQM730Prg_Managemen.h"
#include "frmQM730Prg_SEG.h"
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QtTest>

constexpr int Wait = 10000;

class SegmentEditTest : public QObject {
    Q_OBJECT
private slots:
    void buildCopyAndClear_data() { protocolRows({"PC Link", "Modbus RTU"}); }

    void buildCopyAndClear()
    {
        QFETCH(QString, protocol);
        SimConsole line;
        QVERIFY(line.bringUp(protocol, QStringLiteral("1"), {true}, {}, {QStringLiteral("--no-pace")}));
        SimProcess &sim = *line.sim;
        ConsoleCore &core = *line.core;
        ConsoleState &s = core.state();
        QTRY_VERIFY_WITH_TIMEOUT(s.CurrentMachine == 1 && polling(s), Wait);
        auto sd = [&](int p, int seg, int w) { return sim.command(QStringLiteral("get 1 sd %1 %2 %3").arg(p).arg(seg).arg(w)); };
        auto pd = [&](int p, int w) { return sim.command(QStringLiteral("get 1 pd %1 %2").arg(p).arg(w)); };
        // Patterns 10 and 11 are empty in the controller; the image knows them.
        QCOMPARE(pd(10, 1), QStringLiteral("0"));
        for (int p : {10, 11})
            for (int w = 1; w <= Pd::Words; ++w)
                setPatternWord(s.image, p, w, pd(p, w).toInt());
        s.image.PatternLoaded.fill(true);
        s.image.PatternNameLoaded.fill(true);

        {
            frmQM730Prg_SEG seg(core.context(), nullptr, 10, true);
            seg.show();
            auto *rows = child<QTableWidget>(seg, "sprdSegment");
            QTRY_VERIFY(rows->isEnabled());
            // Row 3 of the empty pattern: three segments at 50 degrees.
            QVERIFY(typeInto(rows, 2, frmQM730Prg_SEG::ColTemp, QStringLiteral("50")));
            QTRY_COMPARE_WITH_TIMEOUT(pd(10, 1), QStringLiteral("3"), Wait);
            QTRY_VERIFY_WITH_TIMEOUT(!child<QLabel>(seg, "lblMSG")->isVisible(), Wait);
            QTRY_COMPARE_WITH_TIMEOUT(sd(10, 3, 1), QStringLiteral("15000"), Wait);
            // Then each cell: segment 2 at 80 degrees, segment 1 at 60 %RH, segment 3 for 1 h 30.
            QVERIFY(typeInto(rows, 1, frmQM730Prg_SEG::ColTemp, QStringLiteral("80")));
            QTRY_COMPARE_WITH_TIMEOUT(sd(10, 2, 1), QStringLiteral("18000"), Wait);
            QVERIFY(typeInto(rows, 0, frmQM730Prg_SEG::ColHumi, QStringLiteral("60")));
            QTRY_COMPARE_WITH_TIMEOUT(sd(10, 1, 2), QStringLiteral("600"), Wait);
            QVERIFY(typeInto(rows, 2, frmQM730Prg_SEG::ColHours, QStringLiteral("1")));
            QTRY_COMPARE_WITH_TIMEOUT(sd(10, 3, 4), QString::number(256), Wait);
            QVERIFY(typeInto(rows, 2, frmQM730Prg_SEG::ColMinutes, QStringLiteral("30")));
            QTRY_COMPARE_WITH_TIMEOUT(sd(10, 3, 4), QString::number(256 + 30), Wait);
            // Time signal 2 of segment 2 on.
            clickCell(rows, 1, frmQM730Prg_SEG::ColTemp);
            auto *grid = child<QTableWidget>(seg, "sprdTimeSignal");
            QTRY_VERIFY(grid->isEnabled());
            clickCell(grid, 1, frmQM730Prg_SEG::ColOn);
            QTRY_COMPARE_WITH_TIMEOUT(sd(10, 2, Sd::TsMode(2)), QStringLiteral("1"), Wait);
            // The read-back shows it.
            QTRY_COMPARE_WITH_TIMEOUT(rows->item(1, frmQM730Prg_SEG::ColSignal1 + 1)->background().color(),
                                      QColor(0, 255, 0), Wait);
            seg.close();
        }
        // The controller holds the program the screen meant, word for word.
        const int expected[3][29] = {
            {10000 + 5000, 600, 0, 0},
            {10000 + 8000, 0, 0, 0, 0, 0, 0, 0, 1},
            {10000 + 5000, 0, 0, 256 + 30},
        };
        for (int seg = 1; seg <= 3; ++seg)
            for (int w = 1; w <= Sd::Words; ++w)
                QCOMPARE(sd(10, seg, w).toInt(), expected[seg - 1][w - 1]);

        frmQM730Prg_Managemen mgmt(core.context());
        mgmt.show();
        ModalDriver d;
        QTRY_COMPARE(child<QLineEdit>(mgmt, "txtSource_Pattern")->text(), QStringLiteral("1"));
        enter(child<QLineEdit>(mgmt, "txtSource_Pattern"), QStringLiteral("10"));
        enter(child<QLineEdit>(mgmt, "txtTarget_Pattern"), QStringLiteral("11"));
        d.box(QMessageBox::Yes);
        indexed<QPushButton>(mgmt, "btnCopy", 0)->click();
        QTRY_VERIFY(d.done());
        QTRY_COMPARE_WITH_TIMEOUT(pd(11, 1), QStringLiteral("3"), Wait);
        QTRY_COMPARE_WITH_TIMEOUT(sd(11, 3, 4), QString::number(256 + 30), Wait);
        for (int seg = 1; seg <= 3; ++seg)
            for (int w = 1; w <= Sd::Words; ++w)
                QCOMPARE(sd(11, seg, w).toInt(), expected[seg - 1][w - 1]);

        d.box(QMessageBox::Yes);
        child<QPushButton>(mgmt, "btnInit_Pattern")->click();
        QTRY_VERIFY(d.done());
        QTRY_COMPARE_WITH_TIMEOUT(pd(10, 1), QStringLiteral("0"), Wait);
        QCOMPARE(QStringList({pd(10, 5), pd(10, 7), pd(10, 8), pd(10, 71), pd(10, 72)}),
                 QStringList({"1", "1", "1000", "30000", "100"}));
        QCOMPARE(pd(11, 1), QStringLiteral("3")); // the copy stays
        QVERIFY(d.unexpected.isEmpty());
        mgmt.close();

        // The copy's segments deleted one by one: the middle one (the later
        // ones move up in the controller too), the last, then the only one.
        frmQM730Prg_SEG seg(core.context(), nullptr, 11, true);
        seg.show();
        auto *rows = child<QTableWidget>(seg, "sprdSegment");
        QTRY_VERIFY(rows->isEnabled());
        for (const auto &[heading, count] : {std::pair{1, 2}, std::pair{1, 1}, std::pair{0, 0}}) {
            d.box(QMessageBox::Yes);
            emit rows->verticalHeader()->sectionClicked(heading);
            QTRY_VERIFY(d.done());
            QTRY_COMPARE_WITH_TIMEOUT(pd(11, 1), QString::number(count), Wait);
            QTRY_VERIFY_WITH_TIMEOUT(polling(s), Wait);
            if (count == 2)
                QCOMPARE(sd(11, 2, 4), QString::number(256 + 30)); // segment 3 moved up
        }
        QTRY_COMPARE_WITH_TIMEOUT(seg.shownSegmentCount(), 0, Wait);
        QVERIFY(s.machines[0].MachineOnline);
        QVERIFY(d.unexpected.isEmpty());
    }
};

QTEST_MAIN(SegmentEditTest)
#include "test_segment_edit.moc"
