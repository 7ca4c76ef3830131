#pragma once
#include <QString>

class QWidget;

// The modal message boxes of the recording screens. Each is a QMessageBox run
// with exec(), so it is the active modal widget while it is open.

// A message with an OK button, titled with the application's name.
void showRecordingMessage(QWidget *parent, const QString &text);
// A question with Yes and No; true for Yes.
bool confirmRecording(QWidget *parent, const QString &text, const QString &title);
