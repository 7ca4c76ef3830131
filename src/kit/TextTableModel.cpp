#include "TextTableModel.h"

TextTableModel::TextTableModel(const TextTable &table, QStringList columnHeadings, QObject *parent)
    : QAbstractTableModel(parent), m_table(table), m_headings(std::move(columnHeadings)),
      m_rows(table.rowCount()), m_cols(table.colCount()), m_revision(table.revision())
{
}

int TextTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_rows;
}

int TextTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_cols;
}

QColor TextTableModel::fromWindowsColor(int bgr)
{
    return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF);
}

QVariant TextTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const int col = index.column() + 1;
    const int row = index.row() + 1;
    switch (role) {
    case Qt::DisplayRole:
        return m_table.text(col, row);
    case Qt::BackgroundRole:
        return fromWindowsColor(m_table.color(col, row));
    case Qt::ForegroundRole:
        // Text stays readable on a dark cell ("不良" is on black).
        return fromWindowsColor(m_table.color(col, row)).lightness() < 128 ? QColor(Qt::white) : QColor(Qt::black);
    case Qt::TextAlignmentRole:
        return int(Qt::AlignCenter);
    default:
        return {};
    }
}

QVariant TextTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    if (orientation == Qt::Horizontal) {
        const QString text = m_table.text(section + 1, 0);
        if (text.isEmpty() && section < m_headings.size())
            return m_headings[section];
        return text;
    }
    const QString text = m_table.text(0, section + 1);
    return text.isEmpty() ? QString::number(section + 1) : text;
}

void TextTableModel::refresh()
{
    if (m_table.rowCount() != m_rows || m_table.colCount() != m_cols) {
        beginResetModel();
        m_rows = m_table.rowCount();
        m_cols = m_table.colCount();
        m_revision = m_table.revision();
        endResetModel();
        return;
    }
    if (m_table.revision() == m_revision)
        return;
    m_revision = m_table.revision();
    if (m_rows > 0 && m_cols > 0)
        emit dataChanged(index(0, 0), index(m_rows - 1, m_cols - 1));
    if (m_cols > 0)
        emit headerDataChanged(Qt::Horizontal, 0, m_cols - 1);
    if (m_rows > 0)
        emit headerDataChanged(Qt::Vertical, 0, m_rows - 1);
}
