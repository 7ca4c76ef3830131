#pragma once
#include <QDialog>

class EntryField;
class ParamPage;
struct ScreenContext;

// "運轉設定": what steers a run (control mode, ramps, the time of a
// fixed-value run) and how keypad and panel behave. Rows 1 to 11 of the
// parameter block and the start and program locks behind it, the same rows
// on every firmware. The locks exist only in Modbus RTU and are shown only then.
class frmQM730Func_Run : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730Func_Run(ScreenContext &context, QWidget *parent = nullptr);

private:
    void applyRules();

    ScreenContext &m_ctx;
    ParamPage *m_page;
    QList<EntryField *> m_fixedRunFields; // txtT_SV, txtH_SV, txtRun_Hour, txtRun_Minute
    QList<QWidget *> m_lockLines;
};
