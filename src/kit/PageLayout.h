#pragma once
#include <QList>
#include <QString>
#include <QStringList>

class QAbstractButton;
class QDialog;
class QHBoxLayout;
class QGridLayout;
class QLayout;
class QGroupBox;
class QLabel;
class QTableWidget;
class QWidget;
class EntryField;

// Building blocks of the parameter pages.

// The buttons of an option group: push buttons that share the name and carry
// their index in the property "Index".
QList<QAbstractButton *> optionButtons(QWidget *parent, const QString &name, const QStringList &captions);
QList<QAbstractButton *> optionButtons(const QString &name, const QStringList &captions);
// Controls side by side in a widget of their own, flush left (spacing -1:
// the style's); buttons two pixels apart.
QWidget *strip(const QList<QWidget *> &controls, int spacing = -1);
QWidget *strip(const QList<QAbstractButton *> &buttons);

// A field of a control array: the name with its index in "Index".
EntryField *indexedField(QWidget *parent, const QString &name, int index);

// A right-aligned entry field of a fixed width; index >= 0 makes it a member
// of a control array.
EntryField *pageField(const QString &name, int index = -1, int width = 76);
// A framed group with its caption ("設定1" ...), laid out as a grid.
QGroupBox *pageGroup(const QString &name, const QString &title, QGridLayout **grid);
// The fields of a pair as one widget, read as a range: "low ~ high".
QWidget *pairRow(EntryField *high, EntryField *low);

// "caption  control(s)  unit" as one line of a page's grid, at the next row.
// Returns the labels of caption and unit, so that the page can hide the line.
QList<QWidget *> addPageLine(QGridLayout *grid, const QString &caption, QWidget *control, const QString &unit = {});
// The same at a given row; the caption label gets labelName when given.
QLabel *gridRow(QGridLayout *grid, int row, const QString &caption, QWidget *value, const QString &unit = {},
                const QString &labelName = {});

// The bottom row of a page: "關閉" (btnClose) at the right, and a control of
// the page's own at the left if given.
QHBoxLayout *closeRow(QDialog *page, QWidget *left = nullptr);

// A table of a page: named, lines and columns with their headings, rows
// sized to their text, no sorting.
QTableWidget *pageTable(QWidget *parent, const QString &name, const QStringList &columnHeadings,
                        const QStringList &lineHeadings);
// The page's own widgets above its close row, with the page's buttons on
// the left; Enter in a field never presses a button.
void layOutPage(QDialog *page, QLayout *body, const QList<QWidget *> &buttons = {});
// The same with four framed groups, two by two.
void layOutPage(QDialog *page, QWidget *topLeft, QWidget *topRight, QWidget *bottomLeft, QWidget *bottomRight);

// A short table as high as its lines: no scrolling and no empty space below.
void fitTableHeight(QTableWidget *table);
