#pragma once
#include <QDialog>

class QButtonGroup;
class QGroupBox;
class QLineEdit;
class QPushButton;
class QTableWidget;
struct ScreenContext;

// "監控模式設定": the machine list, CFG/Run.INI. Multi mode ("多機") polls the
// machines marked "O" in sprdList (one row per machine number, with a label);
// single mode ("單機") the one machine of txtMC_No. "確認" writes the file and
// puts the list in force at once.
class frmQM730_Set_Multi : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730_Set_Multi(ScreenContext &context, QWidget *parent = nullptr);

    // A click on the first column marks or unmarks the machine of the row.
    void toggleInUse(int row);

private:
    void fill();
    void showMode();
    void btnOK_Click();

    ScreenContext &m_ctx;
    QButtonGroup *optRunMode;
    QLineEdit *txtMC_No;
    QGroupBox *fraList;
    QTableWidget *sprdList;
    QPushButton *btnOK;
    QPushButton *btnCancel;
};
