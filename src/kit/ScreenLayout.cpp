#include "ScreenLayout.h"
#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

QLabel *caption(const QString &text, QWidget *parent)
{
    auto *l = new QLabel(text, parent);
    l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return l;
}

QLabel *valueBox(const QString &name, int minWidth)
{
    auto *l = named(new QLabel, name);
    l->setFrameShape(QFrame::Panel);
    l->setFrameShadow(QFrame::Sunken);
    l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    l->setMinimumWidth(minWidth);
    l->setAutoFillBackground(true);
    QPalette p = l->palette();
    p.setColor(QPalette::Window, Qt::black);
    p.setColor(QPalette::WindowText, QColor(0, 230, 0));
    l->setPalette(p);
    return l;
}

QLabel *bigValue(const QString &name, const QColor &colour)
{
    QLabel *l = valueBox(name, 150);
    QFont f = l->font();
    f.setPixelSize(34);
    f.setBold(true);
    l->setFont(f);
    QPalette p = l->palette();
    p.setColor(QPalette::WindowText, colour);
    l->setPalette(p);
    return l;
}

QWidget *captionRow(const QString &text, QWidget *value, int captionWidth)
{
    auto *w = new QWidget;
    auto *h = new QHBoxLayout(w);
    h->setContentsMargins(0, 0, 0, 0);
    QLabel *c = caption(text);
    c->setMinimumWidth(captionWidth);
    h->addWidget(c);
    h->addWidget(value, 1);
    return w;
}

void setTextIfChanged(QLabel *l, const QString &text)
{
    if (l->text() != text)
        l->setText(text);
}

void setTextIfChanged(QLineEdit *e, const QString &text)
{
    if (e->text() != text)
        e->setText(text);
}

QPushButton *closeButton(QDialog *dialog)
{
    auto *b = named(new QPushButton(QStringLiteral("關閉"), dialog), QStringLiteral("btnClose"));
    b->setMinimumSize(90, 32);
    QObject::connect(b, &QPushButton::clicked, dialog, &QDialog::reject);
    return b;
}

void noDefaultButtons(QDialog *dialog)
{
    for (QPushButton *b : dialog->findChildren<QPushButton *>()) {
        b->setAutoDefault(false);
        b->setDefault(false);
    }
}
