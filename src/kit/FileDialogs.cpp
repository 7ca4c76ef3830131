#include "FileDialogs.h"
#include <QFileDialog>
#include <QFileInfo>

QString askSaveFileName(QWidget *parent, const QString &title, const QString &suggestedPath, const QString &filter,
                        const QString &defaultSuffix)
{
    QFileDialog dialog(parent, title);
    dialog.setObjectName(QStringLiteral("dlgSaveFile"));
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilter(filter);
    dialog.setDefaultSuffix(defaultSuffix);
    const QFileInfo suggested(suggestedPath);
    if (suggested.isDir()) {
        dialog.setDirectory(suggested.absoluteFilePath());
    } else {
        dialog.setDirectory(suggested.absolutePath());
        dialog.selectFile(suggested.fileName());
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().constFirst();
}
