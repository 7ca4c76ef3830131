#pragma once
#include <QDialog>

class QComboBox;
class QFileSystemModel;
class QLabel;
class QPushButton;
class QTreeView;

// Folder picker of the data-save settings: a list of file-system roots
// (Drive1), the folders of the chosen root (Dir1) and the chosen folder
// (lblFolder). OK hands the folder back when one is chosen.
class frmSelectFolder : public QDialog {
    Q_OBJECT
public:
    // saveFolder: the folder to start from, as the user wrote it; the
    // program's folder when it has fewer than two characters.
    frmSelectFolder(const QString &saveFolder, const QString &home, QWidget *parent = nullptr);

    // The folder chosen with OK; empty after Cancel or with nothing chosen.
    QString folder() const { return m_folder; }

    // Moves the folder list to a folder (and the root list to its root).
    void goTo(const QString &path);

private:
    void driveChanged(int index);
    void showSelected();
    void revealTarget();
    void accept() override;
    bool eventFilter(QObject *watched, QEvent *event) override;

    QComboBox *Drive1;
    QTreeView *Dir1;
    QFileSystemModel *m_model;
    QLabel *lblFolder;
    QPushButton *btnOK;
    QPushButton *btnCancel;
    QString m_folder;
    QString m_target; // the folder the list is opening to, until the user takes the list over
};
