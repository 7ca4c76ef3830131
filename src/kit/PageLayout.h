#pragma once
#include <QList>
#include <QString>
#include <QStringList>

class QAbstractButton;
class QDialog;
class QHBoxLayout;
class QGridLayout;
class QLabel;
class QTableWidget;
class QWidget;
class EntryField;

// Building blocks of the parameter pages.

// The buttons of an option group: push buttons that share the name and carry
// their index in the property "Index".
QList<QAbstractButton *> optionButtons(QWidget *parent, const QString &name, const QStringList &captions);
// Buttons (or other controls) side by side in a widget of their own.
QWidget *strip(const QList<QWidget *> &controls);
QWidget *strip(const QList<QAbstractButton *> &buttons);

// A field of a control array: the name with its index in "Index".
EntryField *indexedField(QWidget *parent, const QString &name, int index);

// "caption  control(s)  unit" as one line of a page's grid, at the next row.
// Returns the labels of caption and unit, so that the page can hide the line.
QList<QWidget *> addPageLine(QGridLayout *grid, const QString &caption, QWidget *control, const QString &unit = {});

// The bottom row of a page: "關閉" (btnClose) at the right, and a control of
// the page's own at the left if given.
QHBoxLayout *closeRow(QDialog *page, QWidget *left = nullptr);

// A table of a page: named, lines and columns with their headings, rows
// sized to their text, no sorting.
QTableWidget *pageTable(QWidget *parent, const QString &name, const QStringList &columnHeadings,
                        const QStringList &lineHeadings);
// A short table as high as its lines: no scrolling and no empty space below.
void fitTableHeight(QTableWidget *table);
