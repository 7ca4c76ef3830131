#pragma once
#include "TextTable.h"
#include <QAbstractTableModel>
#include <QColor>
#include <QStringList>

// A TextTable shown in a QTableView: data cells are the table's rows and
// columns from 1, headings come from row 0 and column 0 (or the given
// fallbacks when those cells are empty), and each cell's Windows colour value
// becomes its background. The model does not watch the table: refresh() after
// it changed.
class TextTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    TextTableModel(const TextTable &table, QStringList columnHeadings = {}, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    // Repaints when the table changed since the last call; a new shape resets the view.
    void refresh();

    // 0x00BBGGRR to a colour.
    static QColor fromWindowsColor(int bgr);

private:
    const TextTable &m_table;
    QStringList m_headings;
    int m_rows = 0;
    int m_cols = 0;
    quint64 m_revision = 0;
};
