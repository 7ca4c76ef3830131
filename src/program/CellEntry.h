#pragma once
#include <QStyledItemDelegate>
#include <functional>

class QTableWidget;
class QTableWidgetItem;

// The text of an entry held to a range and formatted with the cell's pattern
// ("0", "0.0" ...): below the range the low bound, above it the high bound.
// Text that is not a number counts as 0.
QString clampedEntry(const QString &text, double low, double high, const QString &pattern);

// The item of a cell of a program table, made (centred) when it has none yet.
QTableWidgetItem *tableCell(QTableWidget *table, int row, int column);

// Typing into the cells of a program table. The delegate hands every change
// of the text to the screen as it is typed (the screen stores it in the
// image, and may cut the text, which the editor then shows), the end of the
// entry (Enter, Tab, a click elsewhere) with its final text, and Escape as
// an abandoned entry. It never writes the table's items itself: the screen
// shows what it kept.
class CellEntry : public QStyledItemDelegate {
    Q_OBJECT
public:
    using Changed = std::function<QString(int row, int col, const QString &text)>; // the text to keep
    using Finished = std::function<void(int row, int col, const QString &text)>;
    using Abandoned = std::function<void(int row, int col)>;

    explicit CellEntry(QTableWidget *table);

    void onChange(Changed f) { m_changed = std::move(f); }
    void onFinish(Finished f) { m_finished = std::move(f); }
    void onAbandon(Abandoned f) { m_abandoned = std::move(f); }

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;

private:
    Changed m_changed;
    Finished m_finished;
    Abandoned m_abandoned;
};
