#pragma once
#include <QObject>
#include <QStringList>

class QWidget;

// The file dialog of a screen (CommonDialog1): asks for a file to open or a
// name to save under, in the folder of the last choice. The dialog is Qt's
// own (not the desktop's), so it works on any display, Xvfb included.
// Tests and scripts answer in advance with answerNext: each queued answer is
// taken by the next question in place of the dialog, an empty one as a cancel.
class CommonDialog : public QObject {
    Q_OBJECT
public:
    CommonDialog(QWidget *owner, const QString &startFolder);

    // The chosen file, or an empty text when the user cancelled. filter is a
    // Qt name filter, e.g. "QM730 Parameter Files (*.UUP)".
    QString askOpenFileName(const QString &filter);
    // The name to save under, as typed: no question about an existing file
    // (the screen asks its own) and no extension added.
    QString askSaveFileName(const QString &filter);

    void answerNext(const QString &fileName);
    // The filter of the last question.
    QString lastFilter() const { return m_lastFilter; }

private:
    QString ask(bool save, const QString &filter);

    QWidget *m_owner;
    QString m_folder;
    QString m_lastFilter;
    QStringList m_answers;
};
