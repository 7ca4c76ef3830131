#pragma once
#include <QColor>
#include <QLineEdit>
#include <QPixmap>
#include <QVector>
#include <QWidget>

class QPushButton;

// An entry field with the three moments of an edit: the operator's first
// change (QLineEdit::textEdited), leaving the field (left) and the Enter key
// (QLineEdit::returnPressed). Text set by the program raises none of them.
class EntryField : public QLineEdit {
    Q_OBJECT
public:
    explicit EntryField(const QString &name, QWidget *parent = nullptr);

signals:
    void left();

protected:
    void focusOutEvent(QFocusEvent *event) override;
};

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

// A push button that is "lit": red while its state word is set. The lit
// state is what the toggling buttons read to decide what to send.
namespace LitButton {
constexpr QRgb Red = 0xFFFF0000;
void setLit(QPushButton *button, bool lit);
bool isLit(const QPushButton *button);
} // namespace LitButton
