#pragma once
#include "EntryField.h"
#include "PageBinder.h"
#include <QObject>
#include <QPersistentModelIndex>
#include <functional>
#include <map>

class QTableWidget;
class QTableWidgetItem;

// A table of a page whose cells are bound to rows of the image (sprdSystem,
// sprdDO2, sprdPID ...). Lines and columns count from 1, as the tables of the
// image do. Cells are:
//  - edit cells: a parameter's row decoded as a field shows it, or a text of
//    the page's own; the commit is the end of the editing of the cell (Enter,
//    Tab or leaving it, when the text changed; Escape drops the edit). The
//    text is clamped to the cell's range first, like a field's.
//  - check cells and radio cells, committed by a click;
//  - button cells, whose click does something of the page's (a chooser).
// The table loads with the fields of its page (construct it before adding
// page rules that touch its cells, which then run after it), and after each
// commit the page reloads, so a cell shows its value as the image holds it.
// While a cell is being edited the load leaves it alone. A locked cell is
// greyed and takes no edit and no click; cells nothing is bound to are locked.
class ParamTable : public QObject {
    Q_OBJECT
public:
    using Show = std::function<QString()>;
    using Commit = std::function<void(const QString &text)>;

    ParamTable(PageBinder &binder, QTableWidget *table);

    QTableWidget *table() const { return m_table; }

    // A cell of a parameter: it stores the value and writes the row as a field does.
    void param(int line, int column, ParamRef ref);
    void param(int line, int column, PageBinder::Which which);
    // A cell the page shows and commits itself (a word packed from several
    // cells, a text row).
    void edit(int line, int column, Show show, Commit commit);
    // Bounds of an edit cell (fixed or worked out at each commit); none: not
    // clamped. A parameter cell has its parameter's range unless given one.
    void setRange(int line, int column, const EntryBinding::Range &range);
    void setRange(int line, int column, EntryBinding::RangeOf range);
    // A check cell: shown checked or not; a click turns it over and commits.
    void check(int line, int column, std::function<bool()> show, std::function<void(bool on)> commit);
    // Radio cells of a line: show gives the chosen one as its place in
    // columns (-1: none); a click on one commits its place.
    void radio(int line, const QList<int> &columns, std::function<int()> show, std::function<void(int index)> commit);
    // A cell whose click does something of the page's.
    void button(int line, int column, Show show, std::function<void()> clicked);

    void setLocked(int line, int column, bool locked);
    bool isLocked(int line, int column) const;
    // A text the page puts in a cell, shown until the next load.
    void setText(int line, int column, const QString &text);
    QString text(int line, int column) const;

    // Every bound cell from the image, but the one being edited.
    void load();

    // The end of the editing of a cell with the text of its editor (what the
    // table's editor calls).
    void finishEdit(int line, int column, const QString &text);
    void setEditing(const QModelIndex &index) { m_editing = index; }

signals:
    void committed(int line, int column);

private:
    enum class Kind { Edit, Check, Radio, Button };
    struct Cell {
        Kind kind = Kind::Edit;
        Show show;                     // Edit, Button: the text; Check, Radio: "1" when on
        Commit commit;                 // Edit: the text; Check: "1"/"0"; Radio, Button: ""
        EntryBinding::RangeOf range;   // Edit cells only
        QString label;                 // Radio: the text beside the mark
        bool locked = false;
    };
    using Key = std::pair<int, int>;

    QTableWidgetItem *item(int line, int column);
    Cell &bind(int line, int column, Kind kind);
    void showCell(int line, int column, const Cell &cell);
    void applyLock(int line, int column, const Cell &cell);
    void clicked(int row, int col);
    void committedCell(int line, int column);

    PageBinder &m_binder;
    QTableWidget *m_table;
    std::map<Key, Cell> m_cells;
    QPersistentModelIndex m_editing;
};
