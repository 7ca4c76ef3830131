#pragma once
#include <QColor>
#include <QString>

class QDialog;
class QLabel;
class QLineEdit;
class QPushButton;
class QWidget;

// Small pieces every screen builds with.

// A widget with its control name as object name.
template <typename W>
W *named(W *w, const QString &name)
{
    w->setObjectName(name);
    return w;
}

// A right-aligned caption.
QLabel *caption(const QString &text, QWidget *parent = nullptr);
// A sunken box showing a value, green on black.
QLabel *valueBox(const QString &name, int minWidth = 80);
// The large present value of a chamber.
QLabel *bigValue(const QString &name, const QColor &colour);
// "caption  widget" as one widget, so that hiding it lets the rows below move up.
QWidget *captionRow(const QString &text, QWidget *value, int captionWidth = 70);

// Sets a text only when it differs: a redraw a second touches many controls.
void setTextIfChanged(QLabel *label, const QString &text);
void setTextIfChanged(QLineEdit *edit, const QString &text);

// "關閉" (btnClose), closing the dialog.
QPushButton *closeButton(QDialog *dialog);
// Enter belongs to the entry fields: no button of the dialog is pressed by it
// (a default button could start or stop a chamber). Call after building.
void noDefaultButtons(QDialog *dialog);
