#pragma once
#include <QDialog>

class BulkRun;
class CommonDialog;
class QLabel;
class QPushButton;
struct ScreenContext;

// "參數接收/檔案儲存(QM730 -> PC)": copies the whole memory of the foreground
// machine (parameter block, text rows, patterns and their segments) into the
// controller image, showing the progress in lblSTS 0 to 3, and saves the
// image as a parameter file set (ParameterSet.h). The save works on the
// tables as they stand, received or not.
class frmQM730_P_Recv : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730_P_Recv(ScreenContext &context, QWidget *parent = nullptr);

    void btnRecvALL_Click();
    void btnRecvStop_Click();
    void btnFileSave_Click();

    void done(int result) override;

private:
    ScreenContext &m_ctx;
    QPushButton *btnRecvALL;
    QPushButton *btnRecvStop;
    QPushButton *btnFileSave;
    QLabel *lblRecvType;
    CommonDialog *CommonDialog1;
    BulkRun *m_run;
};
