#pragma once
#include <QList>
#include <QString>
#include <QStringList>

class EntryField;
class QAbstractButton;
class QDialog;
class QGridLayout;
class QLayout;
class QGroupBox;
class QLabel;
class QWidget;

// Building blocks of the parameter pages: a control array of option buttons,
// an entry field (member of a control array when it has an index), a framed
// group with a grid, and a caption and unit around a field.

// Push buttons named `name`, with their Index 0, 1 ... and the captions in order.
QList<QAbstractButton *> optionButtons(const QString &name, const QStringList &captions);
// Widgets side by side as one widget, flush left.
QWidget *widgetRow(const QList<QWidget *> &widgets, int spacing = -1);
// The buttons side by side as one widget.
QWidget *buttonRow(const QList<QAbstractButton *> &buttons);
// A right-aligned entry field; index >= 0 makes it a member of a control array.
EntryField *pageField(const QString &name, int index = -1, int width = 76);
// A framed group with its caption ("設定1" ...), laid out as a grid.
QGroupBox *pageGroup(const QString &name, const QString &title, QGridLayout **grid);
// A caption on the left of a grid row, the widget after it, an optional unit
// label last; the caption label gets labelName when given.
QLabel *gridRow(QGridLayout *grid, int row, const QString &caption, QWidget *value, const QString &unit = {},
                const QString &labelName = {});
// The fields of a pair as one widget, read as a range: "low ~ high".
QWidget *pairRow(EntryField *high, EntryField *low);
// The page's own widgets above a row of its buttons on the left and "關閉"
// on the right; Enter in a field never presses a button.
void layOutPage(QDialog *page, QLayout *body, const QList<QWidget *> &buttons = {});
// The same with four framed groups, two by two.
void layOutPage(QDialog *page, QWidget *topLeft, QWidget *topRight, QWidget *bottomLeft, QWidget *bottomRight);
