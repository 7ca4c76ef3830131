#pragma once
#include <QString>

class QWidget;

// The modal message boxes of the console's own screens. Each is a QMessageBox
// named "MsgBox" and run with exec(), so while it is open it is the active
// modal widget.

// A message with an OK button; the title is the application's name when empty.
void showConsoleMessage(QWidget *parent, const QString &text, const QString &title = {});
// A question with Yes and No, No being the default; true for Yes.
bool askConsoleYesNo(QWidget *parent, const QString &text, const QString &title);
