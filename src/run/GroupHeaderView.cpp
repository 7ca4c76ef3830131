#include "GroupHeaderView.h"
#include <QPaintEvent>
#include <QPainter>
#include <QStyleOptionHeader>
#include <QTableView>

GroupHeaderView::GroupHeaderView(QWidget *parent) : QHeaderView(Qt::Horizontal, parent)
{
    setSectionsClickable(false);
    setHighlightSections(false);
}

void GroupHeaderView::setGroups(const QVector<Group> &groups)
{
    m_groups = groups;
    updateGeometry();
    viewport()->update();
}

QSize GroupHeaderView::sizeHint() const
{
    QSize s = QHeaderView::sizeHint();
    s.setHeight(2 * (fontMetrics().height() + 8));
    return s;
}

const GroupHeaderView::Group *GroupHeaderView::groupOf(int logicalIndex) const
{
    for (const Group &g : m_groups)
        if (logicalIndex + 1 >= g.first && logicalIndex + 1 <= g.last)
            return &g;
    return nullptr;
}

bool GroupHeaderView::hasLowerHeads(const Group &group) const
{
    if (!model())
        return false;
    for (int c = group.first; c <= group.last; ++c)
        if (!model()->headerData(c - 1, Qt::Horizontal).toString().isEmpty())
            return true;
    return false;
}

void GroupHeaderView::drawHead(QPainter *painter, const QRect &rect, const QString &text) const
{
    QStyleOptionHeader opt;
    initStyleOption(&opt);
    opt.rect = rect;
    opt.text = text;
    opt.textAlignment = Qt::AlignCenter;
    opt.position = QStyleOptionHeader::Middle;
    style()->drawControl(QStyle::CE_Header, &opt, painter, this);
}

void GroupHeaderView::paintSection(QPainter *painter, const QRect &rect, int logicalIndex) const
{
    const QString lower = model() ? model()->headerData(logicalIndex, Qt::Horizontal).toString() : QString();
    const Group *g = groupOf(logicalIndex);
    if (!g) {
        drawHead(painter, rect, lower);
        return;
    }
    // The upper half belongs to the group, drawn over the sections in paintEvent.
    if (hasLowerHeads(*g)) {
        QRect low = rect;
        low.setTop(rect.top() + rect.height() / 2);
        drawHead(painter, low, lower);
    }
}

void GroupHeaderView::paintEvent(QPaintEvent *event)
{
    QHeaderView::paintEvent(event);
    QPainter p(viewport());
    const int h = viewport()->height();
    for (const Group &g : m_groups) {
        if (g.first < 1 || g.last < g.first || g.last > count())
            continue;
        const int x0 = sectionViewportPosition(g.first - 1);
        const int x1 = sectionViewportPosition(g.last - 1) + sectionSize(g.last - 1);
        const QRect rect(x0, 0, x1 - x0, hasLowerHeads(g) ? h / 2 : h);
        if (rect.intersects(event->rect()))
            drawHead(&p, rect, g.title);
    }
}

QTableView *groupedSheet(const QString &name, QAbstractItemModel *model, GroupHeaderView **header)
{
    auto *view = new QTableView;
    view->setObjectName(name);
    *header = new GroupHeaderView(view);
    view->setHorizontalHeader(*header);
    view->setModel(model);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setSelectionMode(QAbstractItemView::NoSelection);
    view->setFocusPolicy(Qt::NoFocus);
    view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    return view;
}
