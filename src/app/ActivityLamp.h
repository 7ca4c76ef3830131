#pragma once
#include <QWidget>

// A round lamp (shpSend, shpRecv) filled with a Windows colour value.
class ActivityLamp : public QWidget {
    Q_OBJECT
public:
    explicit ActivityLamp(QWidget *parent = nullptr);

    int fillColor() const { return m_color; }
    void setFillColor(int bgr);

    QSize sizeHint() const override { return {18, 18}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int m_color = 0;
};
