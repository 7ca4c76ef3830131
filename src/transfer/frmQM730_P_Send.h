#pragma once
#include "ParameterSet.h"
#include <QDialog>
#include <optional>

class BulkRun;
class CommonDialog;
class QLabel;
class QPushButton;
struct ScreenContext;

// "檔案讀取/參數傳送(PC->QM730)": reads a parameter file set into the
// controller image, adapted to the open link and to the firmware of the
// foreground machine, and writes it all to that machine, showing the progress
// in lblSTS 0 to 3. A set whose parameter block has another row count than
// the machine's firmware is refused ("不一致 (F/W Version)").
class frmQM730_P_Send : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730_P_Send(ScreenContext &context, QWidget *parent = nullptr);

    void btnFileRead_Click();
    void btnSendALL_Click();
    void btnSendStop_Click();

    void done(int result) override;

private:
    void enableButtons();

    bool putSetIntoImage();

    ScreenContext &m_ctx;
    std::optional<paramset::ParameterSet> m_set; // the set read last
    bool m_loaded = false; // ... and it has the machine's size
    QPushButton *btnFileRead;
    QPushButton *btnSendALL;
    QPushButton *btnSendStop;
    QLabel *lblFName;
    QLabel *lblSendType;
    CommonDialog *CommonDialog1;
    BulkRun *m_run;
};
