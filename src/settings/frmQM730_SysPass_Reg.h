#pragma once
#include <QDialog>
#include <QTimer>

class ConsoleState;
struct ScreenContext;
class QLabel;
class QLineEdit;
class QPushButton;

// Changes the local system password. Opening the page first asks for the
// present password (frmQM730_SysPass_Chk); without it tmrUnload closes the
// page right after it shows. OK keeps the new password in memory and writes
// it to \QM730_ID.INI; an empty one is accepted.
class frmQM730_SysPass_Reg : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730_SysPass_Reg(ScreenContext &context, QWidget *parent = nullptr);

    void setVisible(bool visible) override;

private:
    void btnOK_Click();

    ScreenContext &m_ctx;
    ConsoleState &m_st;
    bool m_loaded = false;
    QTimer tmrUnload;
    QLabel *lblOldPass;
    QLineEdit *txtNewPass;
    QPushButton *btnOK;
    QPushButton *btnCancel;
};
