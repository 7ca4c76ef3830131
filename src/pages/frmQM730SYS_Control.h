#pragma once
#include <QDialog>

class EntryField;
class OptionGroup;
class ParamPage;
class QLabel;
class QPushButton;
struct ScreenContext;

// "控制輸出設定": the temperature and humidity control outputs (type,
// period, direction, limits) and the two retransmission outputs (item,
// range, current on a sensor break, offset).
class frmQM730SYS_Control : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730SYS_Control(ScreenContext &context, QWidget *parent = nullptr);

private:
    struct Output {
        bool temp;
        OptionGroup *type = nullptr;
        EntryField *period = nullptr;
    };
    struct Retransmission {
        bool temp;
        OptionGroup *item = nullptr;
        QLabel *biasLabel = nullptr;
        QPushButton *adjust = nullptr;
    };
    QWidget *buildOutput(Output &o);
    QWidget *buildRetransmission(Retransmission &r);
    void applyModes();

    ScreenContext &m_ctx;
    ParamPage *m_page;
    Output m_tempOut{true};
    Output m_humiOut{false};
    Retransmission m_tempRet{true};
    Retransmission m_humiRet{false};
    QLabel *lblUnit3 = nullptr;
};
