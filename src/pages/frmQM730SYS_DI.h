#pragma once
#include "Dictionary.h"
#include <QDialog>

class QAbstractButton;
class ParamPage;
class ParamTable;
struct ScreenContext;

// "D/I 狀態設定": the digital inputs. sprdDI_State ties the run/stop, skip
// and hold functions to an input (the action in the high byte, the input in
// the low byte); btnDI_Status shows and turns over the bits of the input
// state word; sprdDI gives each input its name (a text row of its own), its
// action and its wait time (the action in the high byte, the wait in the low
// byte). The names are read when the page opens.
class frmQM730SYS_DI : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730SYS_DI(ScreenContext &context, QWidget *parent = nullptr);

private:
    void applyRules();
    void toggleInput(int bit);
    void writeByte(ParamRef ref, bool high, int value);

    ScreenContext &m_ctx;
    ParamPage *m_page;
    ParamTable *m_functions;
    ParamTable *m_inputs;
    QList<QAbstractButton *> m_status;
};
