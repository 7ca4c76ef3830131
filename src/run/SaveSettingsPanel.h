#pragma once
#include <QGroupBox>

class QDialog;
class QHBoxLayout;
class QPushButton;
class QTableWidget;
class QTimer;
class RunLogger;
struct ScreenContext;

// The data-save settings in force, as the consoles show them: one row of
// sprdSaveCFG ("儲存", "記錄間隔", "單位", "儲存路徑", "檔案名稱") and "變更"
// (btnMdyCFG), which opens frmQM730_Set_DSave with the console's name in
// lblCallWin. After a save the console's tmrRefresh_CFG (50 ms, stopped at
// rest) redraws the row once and stops.
class SaveSettingsPanel : public QGroupBox {
    Q_OBJECT
public:
    // screen: the console, whose object name goes to lblCallWin and which
    // owns tmrRefresh_CFG.
    SaveSettingsPanel(ScreenContext &context, QDialog *screen, QTimer &tmrRefresh_CFG);

    // The row of the table and buttons, for a console's own buttons.
    QHBoxLayout *row() const { return m_row; }
    // Fills the row from the running settings.
    void fill();
    // The handler of tmrRefresh_CFG: stops it and fills the row.
    void refreshTick();

private:
    void openSettings();

    ScreenContext &m_ctx;
    QDialog *m_screen;
    QTimer &m_refresh;
    QHBoxLayout *m_row;
    QTableWidget *sprdSaveCFG;
    QPushButton *btnMdyCFG;
};
