#pragma once
#include <QString>
#include <QByteArray>
#include <QVector>
#include <cstdint>

// A named grid of text cells, addressed as (column, row) counting from 1.
// Row 0 holds column headings and column 0 holds row headings, as on the
// screens that show these grids. Each cell may also carry a background colour,
// given as a Windows colour value (0x00BBGGRR: 65280 green, 255 red), because
// some screens read a colour back as state.
//
// Reading outside the grid gives an empty text; writing outside it throws
// std::out_of_range, which the guarded store routines log.
class TextTable {
public:
    static constexpr int White = 0xFFFFFF;
    static constexpr int Green = 65280;
    static constexpr int Black = 0;
    static constexpr int Red = 255;

    explicit TextTable(QString name = {}, int cols = 0, int rows = 0);

    const QString &name() const { return m_name; }
    int colCount() const { return m_cols; }
    int rowCount() const { return m_rows; }
    void setColCount(int cols) { resize(cols, m_rows); }
    void setRowCount(int rows) { resize(m_cols, rows); }
    void resize(int cols, int rows);

    QString text(int col, int row) const;
    void setText(int col, int row, const QString &text);
    bool isEmpty(int col, int row) const { return text(col, row).isEmpty(); }

    // The cell read as a number the lenient way: leading numeric part, else 0.
    double value(int col, int row) const;
    // The cell as a whole number (value rounded half to even, clamped to 64 bits).
    qint64 number(int col, int row) const;
    void setNumber(int col, int row, qint64 n) { setText(col, row, QString::number(n)); }
    // The cell as a 16-bit word for the link: number div 256 and number mod 256.
    quint16 word(int col, int row) const { return quint16(number(col, row) & 0xFFFF); }

    int color(int col, int row) const;
    void setColor(int col, int row, int color);

    void clear();                 // every cell empty, colours back to white
    void clearCells();            // every data cell (row, col >= 1) empty
    void clearColumn(int col);

    // Grows by one on every change; views compare it to repaint only when needed.
    quint64 revision() const { return m_revision; }

    // Whole-table image: dimensions and every cell's text, for cache and settings files.
    QByteArray save() const;
    bool load(const QByteArray &image);
    // The dimensions a saved image declares, without loading it; false when
    // the image does not begin like one.
    static bool imageShape(const QByteArray &image, int *cols, int *rows);

private:
    int index(int col, int row) const { return row * (m_cols + 1) + col; }
    bool inside(int col, int row) const { return col >= 0 && row >= 0 && col <= m_cols && row <= m_rows; }

    QString m_name;
    int m_cols = 0;
    int m_rows = 0;
    // One vector per row, allocated on the first write into the row: the big
    // program tables are mostly empty.
    QVector<QVector<QString>> m_cells;
    QVector<int> m_colors; // allocated on first colour other than white
    quint64 m_revision = 0;
};
