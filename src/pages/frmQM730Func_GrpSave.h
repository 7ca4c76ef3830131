#pragma once
#include <QDialog>

class OptionGroup;
class ParamPage;
struct ScreenContext;

// "曲線儲存設定": how the controller records a curve to its own storage:
// the period, the mode and (from firmware 2.09) the device. The buffer
// initialisation and the axis fields belong to a function the controller
// does not offer over the line: they stand on the page, closed.
class frmQM730Func_GrpSave : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730Func_GrpSave(ScreenContext &context, QWidget *parent = nullptr);

private:
    void applyRules();

    ScreenContext &m_ctx;
    ParamPage *m_page;
    OptionGroup *m_action;
    QList<QWidget *> m_deviceLine;
};
