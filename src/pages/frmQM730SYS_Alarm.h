#pragma once
#include <QDialog>

class ParamPage;
class ParamTable;
struct ScreenContext;

// "系統警報設定": whether the system alarms are on, and the four alarms of
// sprdSystem: target (radio cells "溫度" and "濕度"), type (a click opens the
// alarm-type chooser), alarm value and hysteresis. An alarm of type 0 has no
// value: its value cells show "--" and are locked.
class frmQM730SYS_Alarm : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730SYS_Alarm(ScreenContext &context, QWidget *parent = nullptr);

private:
    void chooseType(int line);
    void applyRules();

    ScreenContext &m_ctx;
    ParamPage *m_page;
    ParamTable *m_table;
};
