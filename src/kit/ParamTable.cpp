#include "ParamTable.h"
#include "ConsoleState.h"
#include "Files.h"
#include "ScreenContext.h"
#include <QStyledItemDelegate>
#include <QTableWidget>

// The table's delegate, telling the table which cell has an open editor.
class ParamTableDelegate : public QStyledItemDelegate {
public:
    explicit ParamTableDelegate(ParamTable *table) : QStyledItemDelegate(table), m_table(table) {}

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        m_table->m_editing = index;
        m_table->m_editingText = index.data().toString();
        return QStyledItemDelegate::createEditor(parent, option, index);
    }
    void destroyEditor(QWidget *editor, const QModelIndex &index) const override
    {
        if (m_table->m_editing == index)
            m_table->m_editing = {};
        QStyledItemDelegate::destroyEditor(editor, index);
    }

private:
    ParamTable *m_table;
};

ParamTable::ParamTable(ScreenContext &context, QTableWidget *table, CellParam cellParam, QObject *parent)
    : QObject(parent), m_ctx(context), m_table(table), m_cellParam(std::move(cellParam))
{
    m_table->setItemDelegate(new ParamTableDelegate(this));
    connect(m_table, &QTableWidget::itemChanged, this, [this](QTableWidgetItem *item) {
        if (!m_loading)
            commit(item);
    });
}

QTableWidgetItem *ParamTable::cell(int line, int column)
{
    QTableWidgetItem *item = m_table->item(line - 1, column - 1);
    if (!item) {
        item = new QTableWidgetItem;
        item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        m_table->setItem(line - 1, column - 1, item);
    }
    return item;
}

void ParamTable::load()
{
    const ControllerImage &image = m_ctx.state.image;
    m_loading = true;
    for (int line = 1; line <= m_table->rowCount(); ++line) {
        for (int column = 1; column <= m_table->columnCount(); ++column) {
            QTableWidgetItem *item = cell(line, column);
            const std::optional<ParamRef> ref = m_cellParam(line, column);
            const Qt::ItemFlags flags = ref ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable
                                            : Qt::ItemIsEnabled;
            if (item->flags() != flags)
                item->setFlags(flags);
            if (m_editing.isValid() && m_editing.row() == line - 1 && m_editing.column() == column - 1)
                continue;
            const QString text = ref ? ParamText(image, *ref) : QString();
            if (item->text() != text)
                item->setText(text);
        }
    }
    m_loading = false;
}

void ParamTable::commit(QTableWidgetItem *item)
{
    const int line = item->row() + 1;
    const int column = item->column() + 1;
    const std::optional<ParamRef> ref = m_cellParam(line, column);
    if (!ref)
        return;
    // An editor closed without a change confirms nothing.
    if (m_editing.isValid() && m_editing.row() == item->row() && m_editing.column() == item->column()
        && item->text() == m_editingText)
        return;
    const double version = m_ctx.state.FirmwareVersion();
    const Encoding e = encodingOf(*ref, version);
    QString text = item->text();
    if (const auto bounds = ParamRange(*ref, version)) {
        const double value = leadingNumber(text);
        const QString pattern = screenPattern(e, m_ctx.state.TempDecimals());
        if (value < bounds->low)
            text = formatNumber(bounds->low, pattern);
        else if (value > bounds->high)
            text = formatNumber(bounds->high, pattern);
        if (text != item->text()) {
            m_loading = true;
            item->setText(text);
            m_loading = false;
        }
    }
    if (m_ctx.requests().writeParameter(*ref, wordFromText(e, text), scaledValueText(e, text)))
        emit committed(line, column);
}
