#include "frmQM730_Set_Port.h"
#include "ConsoleMessages.h"
#include "CommPort.h"
#include "ConsoleState.h"
#include "ScreenContext.h"
#include "Files.h"
#include "StartupFiles.h"
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QComboBox *makeBox(QWidget *parent, const char *name, const QStringList &choices)
{
    auto *box = new QComboBox(parent);
    box->setObjectName(QLatin1String(name));
    box->addItems(choices);
    return box;
}

// Shows a present value; one the list does not offer (a baud of 4800 from the
// file, a port above 16) is added, so that OK writes it back unchanged.
void showValue(QComboBox *box, const QString &value)
{
    int i = box->findText(value);
    if (i < 0 && !value.isEmpty()) {
        box->addItem(value);
        i = box->count() - 1;
    }
    box->setCurrentIndex(i);
}

int portNumber(const QString &portText)
{
    return leadingInt(portText.mid(3));
}

} // namespace

frmQM730_Set_Port::frmQM730_Set_Port(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_st(context.state)
{
    setObjectName(QStringLiteral("frmQM730_Set_Port"));
    setWindowTitle(QStringLiteral("通訊端口設定"));

    QStringList ports;
    for (int n = 1; n <= 16; ++n)
        ports << QStringLiteral("COM%1").arg(n);
    cmbPort = makeBox(this, "cmbPort", ports);
    cmbBaud = makeBox(this, "cmbBaud", {QStringLiteral("115200"), QStringLiteral("57600"), QStringLiteral("38400"),
                                        QStringLiteral("19200"), QStringLiteral("9600")});
    cmbParity = makeBox(this, "cmbParity", {QStringLiteral("N"), QStringLiteral("E"), QStringLiteral("O")});
    cmbData = makeBox(this, "cmbData", {QStringLiteral("5"), QStringLiteral("6"), QStringLiteral("7"), QStringLiteral("8")});
    cmbStop = makeBox(this, "cmbStop", {QStringLiteral("1"), QStringLiteral("2")});
    cmbProtocol = makeBox(this, "cmbProtocol",
                          {QStringLiteral("PC Link"), QStringLiteral("PC Link + crc"), QStringLiteral("Modbus RTU")});
    cmbRTS = makeBox(this, "cmbRTS", {QStringLiteral("OFF"), QStringLiteral("ON")});

    lblMSG = new QLabel(this);
    lblMSG->setObjectName(QStringLiteral("lblMSG"));
    lblDevice = new QLabel(this);
    lblDevice->setObjectName(QStringLiteral("lblDevice"));
    lblDevice->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *buttons = okCancelRow(this, &btnOK, &btnCancel, true);

    auto *form = new QFormLayout;
    form->addRow(QStringLiteral("通訊端口"), cmbPort);
    form->addRow(QString(), lblDevice);
    form->addRow(QStringLiteral("傳輸速率"), cmbBaud);
    form->addRow(QStringLiteral("同位檢查"), cmbParity);
    form->addRow(QStringLiteral("資料位元"), cmbData);
    form->addRow(QStringLiteral("停止位元"), cmbStop);
    form->addRow(QStringLiteral("通訊協定"), cmbProtocol);
    form->addRow(QStringLiteral("RTS"), cmbRTS);
    auto *top = new QVBoxLayout(this);
    top->addLayout(form);
    top->addWidget(lblMSG);
    top->addLayout(buttons);

    showValue(cmbPort, QStringLiteral("COM%1").arg(m_st.CommPortNo));
    showValue(cmbBaud, m_st.CommBaud);
    showValue(cmbParity, m_st.CommParity);
    showValue(cmbData, m_st.CommDataBits);
    showValue(cmbStop, m_st.CommStopBits);
    showValue(cmbProtocol, m_st.CommProtocol);
    showValue(cmbRTS, m_st.CommRTS);

    connect(cmbPort, &QComboBox::currentTextChanged, this, &frmQM730_Set_Port::testPort);
    connect(btnOK, &QPushButton::clicked, this, &frmQM730_Set_Port::btnOK_Click);

    if (!cmbPort->currentText().isEmpty())
        testPort(cmbPort->currentText());
}

void frmQM730_Set_Port::testPort(const QString &portText)
{
    if (portText.isEmpty())
        return;
    const int n = portNumber(portText);
    const QString device = mapPortDevice(m_st.home, n);
    const QString name = QStringLiteral("COM") + QString::number(n);
    QString deviceLine = QStringLiteral("%1 = %2").arg(name, device);
    switch (m_testPort.open(device, QStringLiteral("9600,N,8,1"))) {
    case CommPort::OpenResult::Ok:
        m_testPort.close();
        lblMSG->setText(name + QStringLiteral(" : 可使用的通訊端口"));
        break;
    case CommPort::OpenResult::NotFound:
        lblMSG->setText(name + QStringLiteral(" : 不可使用的通訊端口"));
        break;
    case CommPort::OpenResult::InUse:
        lblMSG->setText(name + QStringLiteral(" : 不可使用的通訊端口 (使用中)"));
        break;
    default:
        // lblMSG keeps its text; the reason goes beside the device, where
        // a missing access right (the dialout group) can be seen.
        deviceLine += QStringLiteral(" (") + m_testPort.lastError() + u')';
    }
    lblDevice->setText(deviceLine);
}

void frmQM730_Set_Port::btnOK_Click()
{
    const QStringList lines{cmbPort->currentText(),   cmbBaud->currentText(),     cmbParity->currentText(),
                            cmbData->currentText(),   cmbStop->currentText(),     cmbProtocol->currentText(),
                            cmbRTS->currentText()};
    if (!writeCommPortCfg(m_st.home, lines)) {
        showConsoleMessage(this, QStringLiteral("無法寫入檔案 : ") + m_st.path(QStringLiteral("\\CommPort.CFG")));
        return;
    }
    m_st.CommPortNo = portNumber(lines[0]);
    m_st.CommBaud = lines[1];
    m_st.CommParity = lines[2];
    m_st.CommDataBits = lines[3];
    m_st.CommStopBits = lines[4];
    m_st.CommProtocol = lines[5];
    m_st.CommRTS = lines[6];
    m_st.setStatusPanel(1, lines[0]);
    m_st.setStatusPanel(2, m_st.CommSettingsText());
    m_st.setStatusPanel(6, m_st.CommProtocol);
    accept();
}
