#include "RecordingMessages.h"
#include <QGuiApplication>
#include <QMessageBox>

void showRecordingMessage(QWidget *parent, const QString &text)
{
    QMessageBox box(QMessageBox::NoIcon, QGuiApplication::applicationDisplayName(), text, QMessageBox::Ok, parent);
    box.setObjectName(QStringLiteral("MsgBox"));
    box.exec();
}

bool confirmRecording(QWidget *parent, const QString &text, const QString &title)
{
    QMessageBox box(QMessageBox::Question, title, text, QMessageBox::Yes | QMessageBox::No, parent);
    box.setObjectName(QStringLiteral("MsgBox"));
    box.setDefaultButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}
