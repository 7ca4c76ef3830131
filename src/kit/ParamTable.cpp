#include "ParamTable.h"
#include "ConsoleState.h"
#include "ScreenContext.h"
#include <QLineEdit>
#include <QStyledItemDelegate>
#include <QTableWidget>

namespace {

// The editor of the table's cells: it tells the table which cell is being
// edited, and hands the text over when the editing ends.
class CellDelegate : public QStyledItemDelegate {
public:
    CellDelegate(ParamTable &table, QObject *parent) : QStyledItemDelegate(parent), m_table(table) {}

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        m_table.setEditing(index);
        return QStyledItemDelegate::createEditor(parent, option, index);
    }
    void destroyEditor(QWidget *editor, const QModelIndex &index) const override
    {
        m_table.setEditing({});
        QStyledItemDelegate::destroyEditor(editor, index);
    }
    void setModelData(QWidget *editor, QAbstractItemModel *, const QModelIndex &index) const override
    {
        const auto *line = qobject_cast<QLineEdit *>(editor);
        if (!line)
            return;
        m_table.setEditing({});
        m_table.finishEdit(index.row() + 1, index.column() + 1, line->text());
    }

private:
    ParamTable &m_table;
};

const QColor LockedBackground(0xE0, 0xE0, 0xE0);

} // namespace

ParamTable::ParamTable(PageBinder &binder, QTableWidget *table) : QObject(table), m_binder(binder), m_table(table)
{
    m_table->setItemDelegate(new CellDelegate(*this, m_table));
    m_table->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed
                             | QAbstractItemView::AnyKeyPressed | QAbstractItemView::SelectedClicked);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    for (int r = 0; r < m_table->rowCount(); ++r)
        for (int c = 0; c < m_table->columnCount(); ++c)
            setLocked(r + 1, c + 1, true);
    connect(m_table, &QTableWidget::cellClicked, this, &ParamTable::clicked);
    binder.onChange([this] { load(); });
}

QTableWidgetItem *ParamTable::item(int line, int column)
{
    if (line > m_table->rowCount())
        m_table->setRowCount(line);
    if (column > m_table->columnCount())
        m_table->setColumnCount(column);
    QTableWidgetItem *it = m_table->item(line - 1, column - 1);
    if (!it) {
        it = new QTableWidgetItem;
        m_table->setItem(line - 1, column - 1, it);
    }
    return it;
}

ParamTable::Cell &ParamTable::bind(int line, int column, Kind kind)
{
    Cell &c = m_cells[{line, column}];
    c = Cell{};
    c.kind = kind;
    applyLock(line, column, c);
    return c;
}

void ParamTable::param(int line, int column, ParamRef ref)
{
    param(line, column, [ref] { return std::optional<ParamRef>(ref); });
}

void ParamTable::param(int line, int column, PageBinder::Which which)
{
    ScreenContext &ctx = m_binder.context();
    Cell &c = bind(line, column, Kind::Edit);
    c.show = [&ctx, which] {
        const std::optional<ParamRef> ref = which();
        return ref ? ParamText(ctx.state.image, *ref) : QString();
    };
    c.commit = [&ctx, which](const QString &text) {
        if (const std::optional<ParamRef> ref = which())
            commitParameterText(ctx, *ref, text);
    };
    c.range = [&ctx, which]() -> std::optional<EntryBinding::Range> {
        const std::optional<ParamRef> ref = which();
        if (!ref)
            return std::nullopt;
        const double version = ctx.state.FirmwareVersion();
        const auto bounds = ParamRange(*ref, version);
        if (!bounds)
            return std::nullopt;
        return EntryBinding::Range{bounds->low, bounds->high,
                                   screenPattern(encodingOf(*ref, version), ctx.state.TempDecimals())};
    };
}

void ParamTable::edit(int line, int column, Show show, Commit commit)
{
    Cell &c = bind(line, column, Kind::Edit);
    c.show = std::move(show);
    c.commit = std::move(commit);
}

void ParamTable::setRange(int line, int column, const EntryBinding::Range &range)
{
    setRange(line, column, [range] { return std::optional<EntryBinding::Range>(range); });
}

void ParamTable::setRange(int line, int column, EntryBinding::RangeOf range)
{
    auto it = m_cells.find({line, column});
    if (it != m_cells.end())
        it->second.range = std::move(range);
}

void ParamTable::check(int line, int column, std::function<bool()> show, std::function<void(bool)> commit)
{
    Cell &c = bind(line, column, Kind::Check);
    c.show = [show = std::move(show)] { return show() ? QStringLiteral("1") : QStringLiteral("0"); };
    c.commit = [commit = std::move(commit)](const QString &text) { commit(text == QLatin1String("1")); };
}

void ParamTable::radio(int line, const QList<int> &columns, std::function<int()> show, std::function<void(int)> commit)
{
    for (int i = 0; i < columns.size(); ++i) {
        Cell &c = bind(line, columns[i], Kind::Radio);
        c.label = item(line, columns[i])->text();
        c.show = [show, i] { return show() == i ? QStringLiteral("1") : QStringLiteral("0"); };
        c.commit = [commit, i](const QString &) { commit(i); };
    }
}

void ParamTable::button(int line, int column, Show show, std::function<void()> clicked)
{
    Cell &c = bind(line, column, Kind::Button);
    c.show = std::move(show);
    c.commit = [clicked = std::move(clicked)](const QString &) { clicked(); };
}

void ParamTable::applyLock(int line, int column, const Cell &cell)
{
    QTableWidgetItem *it = item(line, column);
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (!cell.locked && cell.kind == Kind::Edit && m_cells.count({line, column}))
        flags |= Qt::ItemIsEditable;
    if (it->flags() != flags)
        it->setFlags(flags);
    const bool grey = cell.locked || !m_cells.count({line, column});
    it->setData(Qt::BackgroundRole, grey ? QVariant(LockedBackground) : QVariant());
}

void ParamTable::setLocked(int line, int column, bool locked)
{
    auto found = m_cells.find({line, column});
    if (found == m_cells.end()) {
        Cell none;
        none.locked = true;
        applyLock(line, column, none);
        return;
    }
    found->second.locked = locked;
    applyLock(line, column, found->second);
}

bool ParamTable::isLocked(int line, int column) const
{
    auto found = m_cells.find({line, column});
    return found == m_cells.end() || found->second.locked;
}

void ParamTable::setText(int line, int column, const QString &text)
{
    QTableWidgetItem *it = item(line, column);
    if (it->text() != text)
        it->setText(text);
}

QString ParamTable::text(int line, int column) const
{
    const QTableWidgetItem *it = m_table->item(line - 1, column - 1);
    return it ? it->text() : QString();
}

void ParamTable::showCell(int line, int column, const Cell &cell)
{
    QTableWidgetItem *it = item(line, column);
    switch (cell.kind) {
    case Kind::Edit:
    case Kind::Button:
        setText(line, column, cell.show ? cell.show() : QString());
        break;
    case Kind::Check:
    case Kind::Radio: {
        const Qt::CheckState state = cell.show() == QLatin1String("1") ? Qt::Checked : Qt::Unchecked;
        if (it->data(Qt::CheckStateRole) != QVariant(int(state)))
            it->setData(Qt::CheckStateRole, int(state));
        setText(line, column, cell.label);
        break;
    }
    }
}

void ParamTable::load()
{
    for (const auto &[key, cell] : m_cells) {
        if (m_editing.isValid() && m_editing.row() == key.first - 1 && m_editing.column() == key.second - 1)
            continue;
        showCell(key.first, key.second, cell);
    }
}

void ParamTable::finishEdit(int line, int column, const QString &typed)
{
    auto found = m_cells.find({line, column});
    if (found == m_cells.end() || found->second.locked || found->second.kind != Kind::Edit)
        return;
    const Cell &cell = found->second;
    if (typed == text(line, column))
        return;
    QString value = typed;
    if (cell.range)
        if (const std::optional<EntryBinding::Range> r = cell.range())
            value = EntryBinding::clampText(value, *r);
    setText(line, column, value);
    if (cell.commit)
        cell.commit(value);
    committedCell(line, column);
}

void ParamTable::clicked(int row, int col)
{
    auto found = m_cells.find({row + 1, col + 1});
    if (found == m_cells.end() || found->second.locked || found->second.kind == Kind::Edit)
        return;
    const Cell &cell = found->second;
    if (cell.kind == Kind::Check)
        cell.commit(cell.show() == QLatin1String("1") ? QStringLiteral("0") : QStringLiteral("1"));
    else
        cell.commit({});
    committedCell(row + 1, col + 1);
}

void ParamTable::committedCell(int line, int column)
{
    m_binder.load();
    emit committed(line, column);
}
