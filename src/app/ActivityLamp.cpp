#include "ActivityLamp.h"
#include "TextTableModel.h"
#include <QPainter>

ActivityLamp::ActivityLamp(QWidget *parent) : QWidget(parent)
{
    setFixedSize(sizeHint());
}

void ActivityLamp::setFillColor(int bgr)
{
    if (bgr == m_color)
        return;
    m_color = bgr;
    update();
}

void ActivityLamp::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(Qt::gray, 1));
    p.setBrush(TextTableModel::fromWindowsColor(m_color));
    p.drawEllipse(rect().adjusted(1, 1, -1, -1));
}
