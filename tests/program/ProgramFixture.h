#pragma once
#include "ConsoleState.h"
#include "ModalDriver.h"
#include "ProgramImage.h"
#include "ScreenBench.h"
#include "TableTyping.h"
#include <QLineEdit>
#include <QTemporaryDir>
#include <initializer_list>
#include <utility>

// Machines 3 and 5 on the line, 5 in the foreground (its live values in
// column 2 of sprdRCV), at a firmware and in a protocol of the test's choice.
struct ProgramBench {
    QTemporaryDir home;
    ScreenBench bench{home.path(), {3, 5}};
    ConsoleState &state = bench.state;

    explicit ProgramBench(double firmware = 2.31, const QString &protocol = QStringLiteral("PC Link"))
    {
        state.CurrentMachine = 5;
        state.CommProtocol = protocol;
        state.image.applyFirmware(firmware);
    }

    // Every name and pattern counts as read from the controller.
    void loadAll()
    {
        state.image.PatternLoaded.fill(true);
        state.image.PatternNameLoaded.fill(true);
    }
    void words(int pattern, std::initializer_list<std::pair<int, qint64>> words)
    {
        for (const auto &[w, v] : words)
            setPatternWord(state.image, pattern, w, v);
    }
    // Temperature and humidity words, hours and minutes.
    void segment(int pattern, int segment, qint64 temp, qint64 humi, int hours, int minutes)
    {
        setSegmentWord(state.image, pattern, segment, Sd::SegTempSV, temp);
        setSegmentWord(state.image, pattern, segment, Sd::SegHumiSV, humi);
        setSegmentWord(state.image, pattern, segment, Sd::SegTime, packHoursMinutes(hours, minutes));
    }
    // The mailbox as a list: code, index, word.
    QList<int> mailbox() const
    {
        return {state.ReqCmd, state.ReqIndex, (quint8(state.ReqData[0]) << 8) | quint8(state.ReqData[1])};
    }
    void clearMailbox() { state.ReqCmd = state.ReqIndex = 0; }
    qint64 word(int pattern, int w) const { return patternWord(state.image, pattern, w); }
    qint64 seg(int pattern, int segment, int w) const { return segmentWord(state.image, pattern, segment, w); }
    // Typed into an entry box and confirmed with Enter.
    static void enter(QLineEdit *e, const QString &text)
    {
        e->setFocus();
        e->selectAll();
        QTest::keyClicks(e, text);
        QTest::keyClick(e, Qt::Key_Return);
    }
};

inline QString cell(const QTableWidget *t, int row, int col) { return t->item(row, col)->text(); }
inline bool green(const QTableWidget *t, int row, int col) { return t->item(row, col)->background().color() == QColor(0, 255, 0); }
// Waits a moment: true when no modal window came up that had no answer.
inline bool nothingAsked(const ModalDriver &d)
{
    QTest::qWait(30);
    return d.unexpected.isEmpty();
}
