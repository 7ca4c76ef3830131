#pragma once
// A table's cells used as the operator uses them: an edit ended with Enter
// (or with Escape), a click. Lines and columns count from 1, as the tables
// of the image do. The table's window must be shown for a click.
#include <QLineEdit>
#include <QTableWidget>
#include <QtTest>

// Typing into a widget; text beyond Latin-1 (Chinese) comes as one key
// event carrying it, as an input method hands it over.
inline void typeText(QWidget *w, const QString &text)
{
    bool latin1 = true;
    for (QChar c : text)
        latin1 = latin1 && c.unicode() < 0x80;
    if (latin1) {
        QTest::keyClicks(w, text);
        return;
    }
    QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, text);
    QCoreApplication::sendEvent(w, &press);
}

// The editor now open on a table, if any.
inline QLineEdit *openEditor(QTableWidget *table)
{
    for (QLineEdit *e : table->viewport()->findChildren<QLineEdit *>())
        if (!e->isHidden())
            return e;
    return nullptr;
}

// Opens the cell's editor and types the text; returns the editor (null when
// the cell takes no edit).
inline QLineEdit *typeInCell(QTableWidget *table, int line, int column, const QString &text)
{
    QTableWidgetItem *item = table->item(line - 1, column - 1);
    if (!item || !(item->flags() & Qt::ItemIsEditable))
        return nullptr;
    table->setCurrentItem(item);
    table->editItem(item);
    QLineEdit *editor = openEditor(table);
    if (editor) {
        editor->selectAll();
        typeText(editor, text);
    }
    return editor;
}

// An edit ended with Enter: false when the cell took no edit.
inline bool editCell(QTableWidget *table, int line, int column, const QString &text, Qt::Key end = Qt::Key_Return)
{
    QLineEdit *editor = typeInCell(table, line, column, text);
    if (!editor)
        return false;
    QTest::keyClick(editor, end);
    QCoreApplication::processEvents(); // the editor hands its text over by a queued call
    return true;
}

inline void clickCell(QTableWidget *table, int line, int column)
{
    const QRect r = table->visualItemRect(table->item(line - 1, column - 1));
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, r.center());
}

inline QString cellText(const QTableWidget *table, int line, int column)
{
    const QTableWidgetItem *item = table->item(line - 1, column - 1);
    return item ? item->text() : QString();
}

inline bool cellChecked(const QTableWidget *table, int line, int column)
{
    const QTableWidgetItem *item = table->item(line - 1, column - 1);
    return item && item->checkState() == Qt::Checked;
}
