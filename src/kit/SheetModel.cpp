#include "SheetModel.h"

SheetModel::SheetModel(int columns, QObject *parent)
    : QAbstractTableModel(parent), m_columns(std::max(0, columns)), m_alignment(m_columns, Qt::AlignCenter)
{
}

void SheetModel::setRowCount(int rows)
{
    beginResetModel();
    rows = std::max(0, rows);
    m_cells = QVector<QVector<Cell>>(rows, QVector<Cell>(m_columns));
    m_dirty = QVector<std::pair<int, int>>(rows, {0, 0});
    m_rowFonts = QVector<std::optional<QFont>>(rows);
    endResetModel();
}

void SheetModel::setColumnHeads(const QStringList &heads)
{
    m_columnHeads = heads;
    if (m_columns > 0)
        emit headerDataChanged(Qt::Horizontal, 0, m_columns - 1);
}

void SheetModel::setRowHeads(const QStringList &heads)
{
    m_rowHeads = heads;
    if (rows() > 0)
        emit headerDataChanged(Qt::Vertical, 0, rows() - 1);
}

void SheetModel::setColumnAlignment(int col, Qt::Alignment alignment)
{
    if (col >= 1 && col <= m_columns)
        m_alignment[col - 1] = alignment;
}

void SheetModel::setRowFont(int row, const QFont &font)
{
    if (row < 1 || row > rows())
        return;
    m_rowFonts[row - 1] = font;
    touch(row, 1);
    touch(row, m_columns);
}

const SheetModel::Cell &SheetModel::cell(int row, int col) const
{
    static const Cell none;
    if (row < 1 || row > rows() || col < 1 || col > m_columns)
        return none;
    return m_cells[row - 1][col - 1];
}

SheetModel::Cell *SheetModel::at(int row, int col)
{
    if (row < 1 || row > rows() || col < 1 || col > m_columns)
        return nullptr;
    return &m_cells[row - 1][col - 1];
}

void SheetModel::touch(int row, int col)
{
    auto &[first, last] = m_dirty[row - 1];
    first = first == 0 ? col : std::min(first, col);
    last = std::max(last, col);
}

void SheetModel::setText(int row, int col, const QString &text)
{
    if (Cell *c = at(row, col); c && c->text != text) {
        c->text = text;
        touch(row, col);
    }
}

void SheetModel::setBack(int row, int col, const QColor &colour)
{
    if (Cell *c = at(row, col); c && c->back != colour) {
        c->back = colour;
        touch(row, col);
    }
}

void SheetModel::setFore(int row, int col, const QColor &colour)
{
    if (Cell *c = at(row, col); c && c->fore != colour) {
        c->fore = colour;
        touch(row, col);
    }
}

void SheetModel::setToolTip(int row, int col, const QString &text)
{
    if (Cell *c = at(row, col); c && c->toolTip != text) {
        c->toolTip = text;
        touch(row, col);
    }
}

void SheetModel::flush()
{
    for (int r = 0; r < m_dirty.size(); ++r) {
        auto &[first, last] = m_dirty[r];
        if (first == 0)
            continue;
        emit dataChanged(index(r, first - 1), index(r, last - 1));
        first = last = 0;
    }
}

int SheetModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : rows();
}

int SheetModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_columns;
}

QVariant SheetModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const Cell &c = cell(index.row() + 1, index.column() + 1);
    switch (role) {
    case Qt::DisplayRole:
        return c.text;
    case Qt::BackgroundRole:
        return c.back.isValid() ? QVariant(c.back) : QVariant();
    case Qt::ForegroundRole:
        return c.fore.isValid() ? QVariant(c.fore) : QVariant();
    case Qt::ToolTipRole:
        return c.toolTip.isEmpty() ? QVariant() : QVariant(c.toolTip);
    case Qt::TextAlignmentRole:
        return int(m_alignment.value(index.column(), Qt::AlignCenter));
    case Qt::FontRole:
        if (const auto &f = m_rowFonts.value(index.row()))
            return *f;
        return {};
    default:
        return {};
    }
}

QVariant SheetModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    if (orientation == Qt::Horizontal)
        return section < m_columnHeads.size() ? m_columnHeads[section] : QString();
    return section < m_rowHeads.size() ? m_rowHeads[section] : QString::number(section + 1);
}
