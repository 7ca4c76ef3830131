#pragma once
// Typing into and clicking the cells of a QTableWidget whose cells are
// edited through a line edit named "CellEditor".
#include <QCoreApplication>
#include <QLineEdit>
#include <QTableWidget>
#include <QTest>

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
