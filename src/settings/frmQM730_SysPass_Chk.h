#pragma once
#include <QDialog>

class ConsoleState;
struct ScreenContext;
class QLineEdit;
class QPushButton;

// Asks for the local system password. The comparison ignores the case of
// letters. A wrong try says "密碼錯誤!"; the third one closes the page without
// the password-passed flag. Every opening starts with the flag cleared and
// the try counter at 0.
class frmQM730_SysPass_Chk : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730_SysPass_Chk(ScreenContext &context, QWidget *parent = nullptr);

    // The password-passed flag.
    bool passed() const { return m_passed; }

    // Opens the page modally; true when the password was given.
    static bool check(ScreenContext &context, QWidget *parent);

private:
    void btnOK_Click();

    ConsoleState &m_st;
    bool m_passed = false;
    int m_tries = 0;
    QLineEdit *txtSysPass;
    QPushButton *btnOK;
    QPushButton *btnCancel;
};
