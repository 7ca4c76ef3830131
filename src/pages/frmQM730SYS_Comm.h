#pragma once
#include "Dictionary.h"
#include <QDialog>

class QComboBox;
class ParamPage;
struct ScreenContext;

// "通訊設定": the serial settings the controller itself uses, for its RS232
// and its RS485 port; cmbCommType chooses which of the two row sets the page
// shows and writes (a change only reloads). A choice in a list goes to the
// controller at once. The console's own port is not changed with it.
class frmQM730SYS_Comm : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730SYS_Comm(ScreenContext &context, QWidget *parent = nullptr);

private:
    // One list of the page: its parameter, and how a list index and a word
    // stand for each other.
    struct List {
        QComboBox *box;
        Param param;
        int (*wordOf)(int index);
        int (*indexOf)(int word);
    };
    int set() const; // 1 RS232, 2 RS485
    void applyRules();
    void choose(const List &list, int index);

    ScreenContext &m_ctx;
    ParamPage *m_page;
    QComboBox *cmbCommType;
    QComboBox *cmbProtocol;
    QComboBox *cmbBaud;
    QList<List> m_lists;
};
