#pragma once
#include <QString>

class QDialog;
class QHBoxLayout;
class QPushButton;
class QWidget;

// The modal message boxes of the console's own screens. Each is a QMessageBox
// named "MsgBox" and run with exec(), so while it is open it is the active
// modal widget.

// A message with an OK button; the title is "QM730" when empty.
void showConsoleMessage(QWidget *parent, const QString &text, const QString &title = {});
// A question with Yes and No, No being the default; true for Yes.
bool askConsoleYesNo(QWidget *parent, const QString &text, const QString &title);

// The "確認" / "取消" row of a dialog: btnOK and btnCancel on the right, "取消"
// rejecting the dialog. okIsDefault makes Enter press "確認".
QHBoxLayout *okCancelRow(QDialog *dialog, QPushButton **ok, QPushButton **cancel, bool okIsDefault);
