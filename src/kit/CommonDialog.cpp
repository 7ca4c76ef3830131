#include "CommonDialog.h"
#include <QFileDialog>
#include <QFileInfo>
#include <QWidget>

CommonDialog::CommonDialog(QWidget *owner, const QString &startFolder)
    : QObject(owner), m_owner(owner), m_folder(startFolder)
{
    setObjectName(QStringLiteral("CommonDialog1"));
}

QString CommonDialog::askOpenFileName(const QString &filter)
{
    return ask(false, filter);
}

QString CommonDialog::askSaveFileName(const QString &filter)
{
    return ask(true, filter);
}

void CommonDialog::answerNext(const QString &fileName)
{
    m_answers.append(fileName);
}

QString CommonDialog::ask(bool save, const QString &filter)
{
    m_lastFilter = filter;
    QString chosen;
    if (!m_answers.isEmpty()) {
        chosen = m_answers.takeFirst();
    } else {
        QFileDialog dialog(m_owner, {}, m_folder, filter);
        dialog.setObjectName(QStringLiteral("CommonDialog1"));
        dialog.setOption(QFileDialog::DontUseNativeDialog);
        if (save) {
            dialog.setAcceptMode(QFileDialog::AcceptSave);
            dialog.setFileMode(QFileDialog::AnyFile);
            dialog.setOption(QFileDialog::DontConfirmOverwrite);
        } else {
            dialog.setAcceptMode(QFileDialog::AcceptOpen);
            dialog.setFileMode(QFileDialog::ExistingFile);
        }
        if (dialog.exec() == QDialog::Accepted)
            chosen = dialog.selectedFiles().value(0);
    }
    if (!chosen.isEmpty())
        m_folder = QFileInfo(chosen).absolutePath();
    return chosen;
}
