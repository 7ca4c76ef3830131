#pragma once
#include "ConsoleState.h"
#include "ProgramImage.h"
#include "ScreenBench.h"
#include <QLineEdit>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
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
};

// What the views do a moment later: the commit of an entry after its key,
// and the editor's deletion.
inline void settle()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// Typing into a cell of a program table as the operator does: the editor
// opens on the cell, the text is typed, and a key ends the entry (Enter
// finishes it, Escape abandons it; none leaves the editor open).
inline QLineEdit *typeInto(QTableWidget *table, int row, int col, const QString &text, int key = Qt::Key_Return)
{
    table->setCurrentCell(row, col);
    table->editItem(table->item(row, col));
    auto *editor = table->findChild<QLineEdit *>(QStringLiteral("CellEditor"));
    if (!editor)
        return nullptr;
    editor->selectAll();
    // Key by key; characters without a key of their own (Chinese) arrive as
    // the text of a key event, as an input method delivers them.
    for (const QChar ch : text) {
        if (ch.unicode() < 0x80)
            QTest::keyClick(editor, ch.toLatin1());
        else
            QTest::sendKeyEvent(QTest::Click, editor, Qt::Key_unknown, QString(ch), Qt::NoModifier);
    }
    if (key != 0) {
        QTest::keyClick(editor, Qt::Key(key));
        settle();
    }
    return editor;
}

// A click on a cell of a shown table.
inline void clickCell(QTableWidget *table, int row, int col)
{
    table->scrollToItem(table->item(row, col));
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualItemRect(table->item(row, col)).center());
}
