#pragma once
#include <QString>

class QWidget;

// The file dialogs of the console's screens. They are Qt's own dialog, not
// the desktop's, so that they look alike everywhere, run under any X server
// and are answered in tests like any other modal window: the dialog is a
// QFileDialog named "dlgSaveFile", its name chosen with selectFile() and
// accept().

// Asks for the name of a file to write, starting at suggestedPath (a folder,
// or a file in it). An existing file is only taken after the operator agrees
// to replace it. A name typed without an extension gets defaultSuffix. Empty
// when the operator cancels.
QString askSaveFileName(QWidget *parent, const QString &title, const QString &suggestedPath, const QString &filter,
                        const QString &defaultSuffix);
