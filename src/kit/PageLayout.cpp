#include "PageLayout.h"
#include "EntryField.h"
#include "ScreenLayout.h"
#include <QDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QAbstractButton>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

QList<QAbstractButton *> optionButtons(QWidget *parent, const QString &name, const QStringList &captions)
{
    QList<QAbstractButton *> buttons;
    for (int i = 0; i < captions.size(); ++i) {
        auto *b = new QPushButton(captions[i], parent);
        b->setObjectName(name);
        b->setProperty("Index", i);
        b->setAutoDefault(false);
        b->setMinimumWidth(64);
        buttons << b;
    }
    return buttons;
}

QWidget *strip(const QList<QWidget *> &controls, int spacing)
{
    auto *w = new QWidget;
    auto *row = new QHBoxLayout(w);
    row->setContentsMargins(0, 0, 0, 0);
    if (spacing >= 0)
        row->setSpacing(spacing);
    for (QWidget *c : controls)
        row->addWidget(c);
    row->addStretch();
    return w;
}

QWidget *strip(const QList<QAbstractButton *> &buttons)
{
    QList<QWidget *> controls;
    for (QAbstractButton *b : buttons)
        controls << b;
    return strip(controls, 2);
}

EntryField *indexedField(QWidget *parent, const QString &name, int index)
{
    auto *f = new EntryField(name, parent);
    f->setProperty("Index", index);
    return f;
}

QList<QWidget *> addPageLine(QGridLayout *grid, const QString &caption, QWidget *control, const QString &unit)
{
    const int row = grid->rowCount();
    auto *c = new QLabel(caption);
    c->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    grid->addWidget(c, row, 0);
    grid->addWidget(control, row, 1);
    QList<QWidget *> labels{c};
    if (!unit.isEmpty()) {
        auto *u = new QLabel(unit);
        grid->addWidget(u, row, 2);
        labels << u;
    }
    return labels;
}

QHBoxLayout *closeRow(QDialog *page, QWidget *left)
{
    auto *row = new QHBoxLayout;
    if (left)
        row->addWidget(left);
    row->addStretch();
    row->addWidget(closeButton(page));
    return row;
}

QTableWidget *pageTable(QWidget *parent, const QString &name, const QStringList &columnHeadings,
                        const QStringList &lineHeadings)
{
    auto *t = new QTableWidget(int(lineHeadings.size()), int(columnHeadings.size()), parent);
    t->setObjectName(name);
    t->setHorizontalHeaderLabels(columnHeadings);
    t->setVerticalHeaderLabels(lineHeadings);
    t->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    t->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    t->setSortingEnabled(false);
    t->setWordWrap(false);
    return t;
}

QList<QAbstractButton *> optionButtons(const QString &name, const QStringList &captions)
{
    return optionButtons(nullptr, name, captions);
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
    return strip(QList<QWidget *>{low, new QLabel(QStringLiteral("~")), high});
}

void layOutPage(QDialog *page, QLayout *body, const QList<QWidget *> &buttons)
{
    auto *top = new QVBoxLayout(page);
    top->addLayout(body);
    top->addLayout(closeRow(page, buttons.isEmpty() ? nullptr : strip(buttons)));
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

void fitTableHeight(QTableWidget *t)
{
    t->resizeRowsToContents();
    t->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    t->setFixedHeight(t->horizontalHeader()->sizeHint().height() + t->verticalHeader()->length() + 2 * t->frameWidth());
}
