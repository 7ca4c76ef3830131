#pragma once
#include <QDialog>

class ParamPage;
class ParamTable;
class QTableWidget;
struct ScreenContext;

// "D/O 狀態設定": which relay and which open collector each signal drives,
// and the values of the signals that have one. sprdDO2 is the table of
// firmware 2.2 and above, sprdDO the one below; the page shows the table of
// the controller's firmware. A relay row holds the relay number in its low
// byte and the O/C number in its high byte.
class frmQM730SYS_DO : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730SYS_DO(ScreenContext &context, QWidget *parent = nullptr);

private:
    ParamTable *bindTable(QTableWidget *table, bool current);
    void applyRules();

    ScreenContext &m_ctx;
    ParamPage *m_page;
    ParamTable *m_current;
    ParamTable *m_legacy;
};
