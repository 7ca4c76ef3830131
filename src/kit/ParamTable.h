#pragma once
#include "Dictionary.h"
#include <QModelIndex>
#include <QObject>
#include <functional>
#include <optional>

class QTableWidget;
class QTableWidgetItem;
struct ScreenContext;

// A table of a page whose cells are rows of the parameter block (the PID
// sets). Lines and columns count from 1 as the table shows them; cellParam
// says which parameter a cell stands for (none: the cell is neither bound nor
// editable).
//
// load() shows every bound cell decoded by its encoding at the controller's
// firmware and display resolution, except the cell the operator is editing.
// A cell the operator confirms is clamped to its parameter's range, stored in
// the image and its row written at once, as a field of a page is.
class ParamTable : public QObject {
    Q_OBJECT
public:
    using CellParam = std::function<std::optional<ParamRef>(int line, int column)>;

    ParamTable(ScreenContext &context, QTableWidget *table, CellParam cellParam, QObject *parent);

    QTableWidget *widget() const { return m_table; }
    void load();

signals:
    // A cell was confirmed and its row posted.
    void committed(int line, int column);

private:
    void commit(QTableWidgetItem *item);
    QTableWidgetItem *cell(int line, int column);

    ScreenContext &m_ctx;
    QTableWidget *m_table;
    CellParam m_cellParam;
    QModelIndex m_editing;  // the cell whose editor is open
    QString m_editingText;  // its text when the editor opened
    bool m_loading = false;
    friend class ParamTableDelegate;
};
