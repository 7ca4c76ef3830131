#pragma once
#include <QAbstractTableModel>
#include <QColor>
#include <QFont>
#include <QStringList>
#include <QVector>
#include <optional>

// A sheet of cells for a QTableView: text, background, text colour, tool tip,
// and a font per row. Rows and columns count from 1, as on the screens'
// sheets. The screen sets cells from its own data; a set that changes nothing
// costs a comparison, and flush() tells the view about the changed cells,
// row by row, so that refreshing a long sheet many times a second repaints
// only what moved.
class SheetModel : public QAbstractTableModel {
    Q_OBJECT
public:
    struct Cell {
        QString text;
        QColor back;    // invalid: the view's own
        QColor fore;    // invalid: the view's own
        QString toolTip;
    };

    explicit SheetModel(int columns, QObject *parent = nullptr);

    // A new shape: every cell empty, the view reset.
    void setRowCount(int rows);
    int rows() const { return int(m_cells.size()); }
    int columns() const { return m_columns; }

    void setColumnHeads(const QStringList &heads);
    void setRowHeads(const QStringList &heads);
    void setColumnAlignment(int col, Qt::Alignment alignment);
    void setRowFont(int row, const QFont &font);

    const Cell &cell(int row, int col) const;
    void setText(int row, int col, const QString &text);
    void setBack(int row, int col, const QColor &colour);
    void setFore(int row, int col, const QColor &colour);
    void setToolTip(int row, int col, const QString &text);

    // Emits dataChanged for what was set since the last flush.
    void flush();

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    Cell *at(int row, int col);
    void touch(int row, int col);

    int m_columns;
    QVector<QVector<Cell>> m_cells;
    QVector<std::pair<int, int>> m_dirty; // per row: first and last changed column, 0 when none
    QVector<std::optional<QFont>> m_rowFonts;
    QVector<Qt::Alignment> m_alignment;
    QStringList m_columnHeads;
    QStringList m_rowHeads;
};
