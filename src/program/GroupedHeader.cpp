#include "GroupedHeader.h"
#include <QPainter>
#include <QStyleOptionHeader>

GroupedHeader::GroupedHeader(QWidget *parent) : QHeaderView(Qt::Horizontal, parent)
{
    setSectionsClickable(true);
    setDefaultAlignment(Qt::AlignCenter);
}

void GroupedHeader::addGroup(int first, int last, const QString &caption)
{
    m_groups.append({first, last, caption});
    viewport()->update();
}

void GroupedHeader::setCaption(int first, int last, const QString &caption)
{
    m_captions.append({first, last, caption});
    viewport()->update();
}

const GroupedHeader::Band *GroupedHeader::bandAt(const QList<Band> &bands, int column) const
{
    for (const Band &b : bands)
        if (column >= b.first && column <= b.last)
            return &b;
    return nullptr;
}

QString GroupedHeader::captionOf(int column, int tier) const
{
    const Band *b = bandAt(tier == 0 ? m_groups : m_captions, column);
    return b ? b->caption : QString();
}

QSize GroupedHeader::sizeHint() const
{
    QSize s = QHeaderView::sizeHint();
    // Two tiers, the lower one up to two lines of text.
    s.setHeight(fontMetrics().height() * 3 + 14);
    return s;
}

void GroupedHeader::paintBand(QPainter &painter, int first, int last, int top, int height, const QString &caption) const
{
    const int x = sectionViewportPosition(first);
    const int right = sectionViewportPosition(last) + sectionSize(last);
    QStyleOptionHeader opt;
    initStyleOption(&opt);
    opt.rect = QRect(x, top, right - x, height);
    opt.section = first;
    opt.text = caption;
    opt.textAlignment = Qt::AlignCenter;
    opt.position = QStyleOptionHeader::Middle;
    style()->drawControl(QStyle::CE_Header, &opt, &painter, this);
}

void GroupedHeader::paintEvent(QPaintEvent *)
{
    QPainter painter(viewport());
    const int h = viewport()->height();
    const int upper = h / 3;
    for (int col = 0; col < count(); ++col) {
        if (isSectionHidden(col))
            continue;
        const Band *group = bandAt(m_groups, col);
        const Band *own = bandAt(m_captions, col);
        // Each band is painted once, at its first column.
        if (group && col == group->first)
            paintBand(painter, group->first, group->last, 0, upper, group->caption);
        const int top = group ? upper : 0;
        if (own) {
            if (col == own->first)
                paintBand(painter, own->first, own->last, top, h - top, own->caption);
        } else {
            paintBand(painter, col, col, top, h - top, QString());
        }
    }
}
