#pragma once
#include <QDialog>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class RunLogger;
struct ScreenContext;

// Data-save settings of the run log. OK writes \CFG\SaveData.INI and hands
// the running logger its new SaveEnable, SaveInterval, SaveUnit, SaveFolder
// and SaveFileName; the daily file and the day start take effect at the next
// program start. The opener puts its screen name in lblCallWin and, on
// saved(), starts its own tmrRefresh_CFG.
class frmQM730_Set_DSave : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730_Set_DSave(ScreenContext &context, QWidget *parent = nullptr);

    void setCallWin(const QString &screenName);
    QString callWin() const;

signals:
    // Emitted by a successful OK, with the text of lblCallWin.
    void saved(const QString &callWin);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void fillControls();
    void showExamples();
    void clampInterval();
    void chooseFolder();
    void btnOK_Click();

    ScreenContext &m_ctx;
    RunLogger &m_logger;
    QComboBox *cmbSave;
    QLineEdit *txtSaveInterval;
    QComboBox *cmbUnit;
    QLabel *lblFolder;
    QLineEdit *txtFName;
    QCheckBox *chbDSaveF;
    QLineEdit *txtDayHH;
    QLineEdit *txtDayMM;
    QLabel *lblMSG;
    QLabel *lblMSG2;
    QLabel *lblCallWin;
    QPushButton *btnOK;
    QPushButton *btnCancel;
};
