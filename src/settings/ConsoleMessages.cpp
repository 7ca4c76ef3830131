#include "ConsoleMessages.h"
#include <QGuiApplication>
#include <QMessageBox>

void showConsoleMessage(QWidget *parent, const QString &text, const QString &title)
{
    QMessageBox box(QMessageBox::NoIcon, title.isEmpty() ? QGuiApplication::applicationDisplayName() : title, text,
                    QMessageBox::Ok, parent);
    box.setObjectName(QStringLiteral("MsgBox"));
    box.exec();
}

bool askConsoleYesNo(QWidget *parent, const QString &text, const QString &title)
{
    QMessageBox box(QMessageBox::Question, title, text, QMessageBox::Yes | QMessageBox::No, parent);
    box.setObjectName(QStringLiteral("MsgBox"));
    box.setDefaultButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}
