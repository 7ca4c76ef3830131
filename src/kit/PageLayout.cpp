#include "PageLayout.h"
#include "EntryField.h"
#include "ScreenLayout.h"
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QAbstractButton>
#include <QPushButton>
#include <QTableWidget>

QList<QAbstractButton *> optionButtons(QWidget *parent, const QString &name, const QStringList &captions)
{
    QList<QAbstractButton *> buttons;
    for (int i = 0; i < captions.size(); ++i) {
        auto *b = new QPushButton(captions[i], parent);
        b->setObjectName(name);
        b->setProperty("Index", i);
        b->setMinimumWidth(72);
        buttons << b;
    }
    return buttons;
}

QWidget *strip(const QList<QWidget *> &controls)
{
    auto *w = new QWidget;
    auto *row = new QHBoxLayout(w);
    row->setContentsMargins(0, 0, 0, 0);
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
    return strip(controls);
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

void fitTableHeight(QTableWidget *t)
{
    t->resizeRowsToContents();
    t->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    t->setFixedHeight(t->horizontalHeader()->sizeHint().height() + t->verticalHeader()->length() + 2 * t->frameWidth());
}
