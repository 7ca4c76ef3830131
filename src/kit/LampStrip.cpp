#include "LampStrip.h"
#include <QPainter>

LampStrip::LampStrip(const QString &name, int count, const QColor &onColour, QWidget *parent)
    : QWidget(parent), m_lit(count, false), m_on(onColour)
{
    setObjectName(name);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

bool LampStrip::isLit(int n) const
{
    return n >= 1 && n <= count() && m_lit[n - 1];
}

void LampStrip::setLit(int n, bool on)
{
    if (n < 1 || n > count() || m_lit[n - 1] == on)
        return;
    m_lit[n - 1] = on;
    update();
}

void LampStrip::blank()
{
    m_lit.fill(false);
    m_text.clear();
    m_pixmap = QPixmap();
    update();
}

void LampStrip::setNumbered(bool on)
{
    m_numbered = on;
    update();
}

void LampStrip::setCellText(const QString &text)
{
    if (m_text == text)
        return;
    m_text = text;
    update();
}

void LampStrip::setCellPixmap(const QPixmap &pm)
{
    if (m_pixmap.cacheKey() == pm.cacheKey())
        return;
    m_pixmap = pm;
    update();
}

QSize LampStrip::sizeHint() const
{
    return QSize(count() * 22 + 1, 21);
}

void LampStrip::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    const QColor off(70, 70, 70);
    QFont f = font();
    f.setPixelSize(10);
    p.setFont(f);
    for (int i = 0; i < count(); ++i) {
        const QRect cell(i * 22, 0, 21, 20);
        p.fillRect(cell, m_lit[i] ? m_on : off);
        p.setPen(QColor(30, 30, 30));
        p.drawRect(cell);
        if (count() == 1) {
            if (!m_pixmap.isNull())
                p.drawPixmap(cell.adjusted(2, 2, -2, -2), m_pixmap);
            if (!m_text.isEmpty()) {
                QFont b = font();
                b.setBold(true);
                b.setPixelSize(13);
                p.setFont(b);
                p.setPen(m_lit[i] ? Qt::black : QColor(200, 200, 200));
                p.drawText(cell, Qt::AlignCenter, m_text);
            }
        } else if (m_numbered) {
            p.setPen(m_lit[i] ? Qt::black : QColor(190, 190, 190));
            p.drawText(cell, Qt::AlignCenter, QString::number(i + 1));
        }
    }
}
