#pragma once
#include <QHeaderView>
#include <QVector>

class QAbstractItemModel;
class QTableView;

// A horizontal header of two lines: groups of columns under one upper head,
// each column with its own lower head (the model's header text). A group
// whose columns have no lower heads takes the whole height.
class GroupHeaderView : public QHeaderView {
    Q_OBJECT
public:
    struct Group {
        int first; // columns from 1
        int last;
        QString title;
    };

    explicit GroupHeaderView(QWidget *parent = nullptr);
    void setGroups(const QVector<Group> &groups);

    QSize sizeHint() const override;

protected:
    void paintSection(QPainter *painter, const QRect &rect, int logicalIndex) const override;
    void paintEvent(QPaintEvent *event) override;

private:
    const Group *groupOf(int logicalIndex) const;
    bool hasLowerHeads(const Group &group) const;
    void drawHead(QPainter *painter, const QRect &rect, const QString &text) const;

    QVector<Group> m_groups;
};

// A sheet over a model under a grouped head, for looking and clicking only:
// no editing, no selection, no focus. Its head is given back in `header`.
QTableView *groupedSheet(const QString &name, QAbstractItemModel *model, GroupHeaderView **header);
