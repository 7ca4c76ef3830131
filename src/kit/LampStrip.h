#pragma once
#include <QColor>
#include <QPixmap>
#include <QVector>
#include <QWidget>

// A strip of lamps in a row of cells, lamp 1 on the left. A single cell can
// also carry a text or a picture (the ramp, soak and wait indicators).
class LampStrip : public QWidget {
    Q_OBJECT
public:
    LampStrip(const QString &name, int count, const QColor &onColour, QWidget *parent = nullptr);

    int count() const { return int(m_lit.size()); }
    bool isLit(int n) const;      // lamp n from 1; false outside the strip
    void setLit(int n, bool on);
    void blank();                 // every lamp off, no text, no picture
    void setNumbered(bool on);    // lamp numbers printed in the cells

    QString cellText() const { return m_text; }
    void setCellText(const QString &text);
    QPixmap cellPixmap() const { return m_pixmap; }
    void setCellPixmap(const QPixmap &pm);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QVector<bool> m_lit;
    QColor m_on;
    QString m_text;
    QPixmap m_pixmap;
    bool m_numbered = true;
};
