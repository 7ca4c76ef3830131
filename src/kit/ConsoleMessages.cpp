#include "ConsoleMessages.h"
#include <QDialog>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QPushButton>

void showConsoleMessage(QWidget *parent, const QString &text, const QString &title)
{
    // A message without a title of its own carries the program's name.
    QMessageBox box(QMessageBox::NoIcon, title.isEmpty() ? QStringLiteral("QM730") : title, text, QMessageBox::Ok,
                    parent);
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

QHBoxLayout *okCancelRow(QDialog *dialog, QPushButton **ok, QPushButton **cancel, bool okIsDefault)
{
    *ok = new QPushButton(QStringLiteral("確認"), dialog);
    (*ok)->setObjectName(QStringLiteral("btnOK"));
    (*ok)->setDefault(okIsDefault);
    *cancel = new QPushButton(QStringLiteral("取消"), dialog);
    (*cancel)->setObjectName(QStringLiteral("btnCancel"));
    QObject::connect(*cancel, &QPushButton::clicked, dialog, &QDialog::reject);
    auto *row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(*ok);
    row->addWidget(*cancel);
    return row;
}
