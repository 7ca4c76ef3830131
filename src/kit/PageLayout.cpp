#include "PageLayout.h"
#include "EntryField.h"
#include "ScreenLayout.h"
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

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

QWidget *buttonRow(const QList<QAbstractButton *> &buttons)
{
    auto *w = new QWidget;
    auto *h = new QHBoxLayout(w);
    h->setContentsMargins(0, 0, 0, 0);
    h->setSpacing(2);
    for (QAbstractButton *b : buttons)
        h->addWidget(b);
    h->addStretch();
    return w;
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
    auto *w = new QWidget;
    auto *h = new QHBoxLayout(w);
    h->setContentsMargins(0, 0, 0, 0);
    h->addWidget(low);
    h->addWidget(new QLabel(QStringLiteral("~")));
    h->addWidget(high);
    h->addStretch();
    return w;
}
