#pragma once
#include <QDialog>

struct ScreenContext;
class QAction;
class QLabel;
class QMenu;
class QPushButton;
class QTableWidget;

// The event files of <home>/ActionHistory: one row of sprdList per file,
// the lines of the selected file in sprdHistory. Deleting lines rewrites the
// file whole from the table. The screen is not refreshed while it is open.
class frmQM730_History : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730_History(ScreenContext &context, QWidget *parent = nullptr);

    // Selects a row of sprdList and loads its file.
    void selectMachine(int listRow);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void loadFile();
    void rewriteFile();
    void mEditDel_Click();
    void btnDelAll_Click();

    QString m_home;
    QTableWidget *sprdList;
    QTableWidget *sprdHistory;
    QLabel *lblMC_No;
    QLabel *lblNo;
    QLabel *lblFName;
    QMenu *mEdit;
    QAction *mEditDel;
    QPushButton *btnDelAll;
    QPushButton *btnClose;
};
