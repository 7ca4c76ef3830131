#include "CellEntry.h"
#include "Encodings.h"
#include "Files.h"
#include <QLineEdit>
#include <QTableWidget>
#include <algorithm>

QString clampedEntry(const QString &text, double low, double high, const QString &pattern)
{
    return formatNumber(std::clamp(leadingNumber(text), low, high), pattern);
}

QTableWidgetItem *tableCell(QTableWidget *table, int row, int column)
{
    QTableWidgetItem *item = table->item(row, column);
    if (!item) {
        item = new QTableWidgetItem;
        item->setTextAlignment(Qt::AlignCenter);
        table->setItem(row, column, item);
    }
    return item;
}

CellEntry::CellEntry(QTableWidget *table) : QStyledItemDelegate(table)
{
    table->setItemDelegate(this);
    connect(this, &QAbstractItemDelegate::closeEditor, this, [this](QWidget *editor, EndEditHint hint) {
        if (hint != RevertModelCache || !m_abandoned)
            return;
        m_abandoned(editor->property("row").toInt(), editor->property("col").toInt());
    });
}

QWidget *CellEntry::createEditor(QWidget *parent, const QStyleOptionViewItem &, const QModelIndex &index) const
{
    auto *edit = new QLineEdit(parent);
    edit->setObjectName(QStringLiteral("CellEditor"));
    edit->setFrame(false);
    edit->setProperty("row", index.row());
    edit->setProperty("col", index.column());
    edit->setAlignment(Qt::Alignment(index.data(Qt::TextAlignmentRole).toInt()) | Qt::AlignVCenter);
    connect(edit, &QLineEdit::textEdited, this, [this, edit](const QString &text) {
        if (!m_changed)
            return;
        const QString kept = m_changed(edit->property("row").toInt(), edit->property("col").toInt(), text);
        if (kept != text)
            edit->setText(kept);
    });
    return edit;
}

void CellEntry::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    // Only when the editor opens: a repaint of the cell while the operator
    // types must not put the old text back.
    auto *edit = static_cast<QLineEdit *>(editor);
    if (!edit->property("filled").toBool()) {
        edit->setText(index.data(Qt::DisplayRole).toString());
        edit->setProperty("filled", true);
    }
}

void CellEntry::setModelData(QWidget *editor, QAbstractItemModel *, const QModelIndex &index) const
{
    if (m_finished)
        m_finished(index.row(), index.column(), static_cast<QLineEdit *>(editor)->text());
}
