#pragma once
#include <QDialog>
#include "QtCommPort.h"

class ConsoleState;
struct ScreenContext;
class QComboBox;
class QLabel;
class QPushButton;

// Serial parameters and protocol of the link. OK writes \CommPort.CFG, the
// status bar panels 1, 2 and 6 and the settings the link uses from its next
// frame on; the reply time-out keeps the value it got at start-up.
//
// Choosing a port tests it at once: a port of this screen's own opens and
// closes the device that the port number maps to (PortMap.CFG), and lblMSG
// tells whether it can be used. lblDevice shows that device path, and the
// reason when the device could not be opened for another cause.
class frmQM730_Set_Port : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730_Set_Port(ScreenContext &context, QWidget *parent = nullptr);

private:
    void testPort(const QString &portText);
    void btnOK_Click();

    ConsoleState &m_st;
    QtCommPort m_testPort;
    QComboBox *cmbPort;
    QComboBox *cmbBaud;
    QComboBox *cmbParity;
    QComboBox *cmbData;
    QComboBox *cmbStop;
    QComboBox *cmbProtocol;
    QComboBox *cmbRTS;
    QLabel *lblMSG;
    QLabel *lblDevice;
    QPushButton *btnOK;
    QPushButton *btnCancel;
};
