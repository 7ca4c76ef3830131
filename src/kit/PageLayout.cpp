#include "PageLayout.h"
#include "EntryField.h"
#include "ScreenLayout.h"
#include <QDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

QList<QAbstractButton *> optionButtons(const QString &name, const QStringList &captions)
{
    QList<QAbstractButton *> buttons;
    for (int i = 0; i < captions.size(); ++i) {
        auto *b = named(new QPushButton(captions[i]), name);
        b->setProperty("Index", i);
        b->setAutoDefault(false);
        b->setMinimumWidth(64);
        buttons << b;
    }
    return buttons;
}

QWidget *widgetRow(const QList<QWidget *> &widgets, int spacing)
{
    auto *w = new QWidget;
    auto *h = new QHBoxLayout(w);
    h->setContentsMargins(0, 0, 0, 0);
    if (spacing >= 0)
        h->setSpacing(spacing);
    for (QWidget *x : widgets)
        h->addWidget(x);
    h->addStretch();
    return w;
}

QWidget *buttonRow(const QList<QAbstractButton *> &buttons)
{
    return widgetRow(QList<QWidget *>(buttons.begin(), buttons.end()), 2);
}

EntryField *pageField(const QString &name, int index, int width)
{
    auto *e = new EntryField(name);
    if (index >= 0)
        e->setProperty("Index", index);
    e->setAlignment(Qt::AlignRight);
    e->setFixedWidth(width);
    return e;
}

QGroupBox *pageGroup(const QString &name, const QString &title, QGridLayout **grid)
{
    auto *box = named(new QGroupBox(title), name);
    *grid = new QGridLayout(box);
    (*grid)->setHorizontalSpacing(8);
    (*grid)->setVerticalSpacing(4);
    return box;
}

QLabel *gridRow(QGridLayout *grid, int row, const QString &captionText, QWidget *value, const QString &unit,
                const QString &labelName)
{
    QLabel *label = caption(captionText);
    if (!labelName.isEmpty())
        label->setObjectName(labelName);
    grid->addWidget(label, row, 0);
    grid->addWidget(value, row, 1, Qt::AlignLeft);
    if (!unit.isEmpty())
        grid->addWidget(new QLabel(unit), row, 2);
    return label;
}

QWidget *pairRow(EntryField *high, EntryField *low)
{
    return widgetRow({low, new QLabel(QStringLiteral("~")), high});
}

void layOutPage(QDialog *page, QLayout *body, const QList<QWidget *> &buttons)
{
    auto *bottom = new QHBoxLayout;
    for (QWidget *b : buttons)
        bottom->addWidget(b);
    bottom->addStretch();
    bottom->addWidget(closeButton(page));
    auto *top = new QVBoxLayout(page);
    top->addLayout(body);
    top->addLayout(bottom);
    noDefaultButtons(page);
}

void layOutPage(QDialog *page, QWidget *topLeft, QWidget *topRight, QWidget *bottomLeft, QWidget *bottomRight)
{
    auto *grid = new QGridLayout;
    grid->addWidget(topLeft, 0, 0);
    grid->addWidget(topRight, 0, 1);
    grid->addWidget(bottomLeft, 1, 0);
    grid->addWidget(bottomRight, 1, 1);
    layOutPage(page, grid);
}
