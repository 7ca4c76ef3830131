#include "frmQM730_P_Send.h"
#include "BulkScreen.h"
#include "BulkTransfer.h"
#include "CommonDialog.h"
#include "ConsoleMessages.h"
#include "ConsoleState.h"
#include "Files.h"
#include "ParameterSet.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

frmQM730_P_Send::frmQM730_P_Send(ScreenContext &context, QWidget *parent) : QDialog(parent), m_ctx(context)
{
    setObjectName(QStringLiteral("frmQM730_P_Send"));
    setWindowTitle(QStringLiteral("檔案讀取/參數傳送(PC->QM730)"));

    lblFName = valueBox(QStringLiteral("lblFName"), 300);
    lblFName->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    auto *status = new BulkStatusGrid(this);
    m_run = new BulkRun(context, BulkJob::ParameterSend, status, this);
    lblSendType = named(new QLabel(QStringLiteral("0"), this), QStringLiteral("lblSendType"));
    lblSendType->hide();
    btnFileRead = named(new QPushButton(QStringLiteral("讀取檔案"), this), QStringLiteral("btnFileRead"));
    btnSendALL = named(new QPushButton(QStringLiteral("傳送"), this), QStringLiteral("btnSendALL"));
    btnSendStop = named(new QPushButton(QStringLiteral("停止"), this), QStringLiteral("btnSendStop"));
    CommonDialog1 = new CommonDialog(this, context.state.home);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(captionRow(QStringLiteral("檔案"), lblFName, 60));
    layout->addSpacing(6);
    layout->addWidget(status);
    layout->addWidget(lblSendType);
    layout->addStretch();
    layout->addLayout(bulkButtonRow(this, {btnFileRead, btnSendALL, btnSendStop}));
    resize(520, 280);
    noDefaultButtons(this);

    connect(btnFileRead, &QPushButton::clicked, this, &frmQM730_P_Send::btnFileRead_Click);
    connect(btnSendALL, &QPushButton::clicked, this, &frmQM730_P_Send::btnSendALL_Click);
    connect(btnSendStop, &QPushButton::clicked, this, &frmQM730_P_Send::btnSendStop_Click);
    connect(m_run, &BulkRun::runningChanged, this, &frmQM730_P_Send::enableButtons);
    enableButtons();
}

void frmQM730_P_Send::enableButtons()
{
    const bool sending = m_run->running();
    btnSendALL->setEnabled(!sending && m_loaded);
    btnSendStop->setEnabled(sending);
    // The tables a send reads from are never replaced half-way through it.
    btnFileRead->setEnabled(!sending);
}

void frmQM730_P_Send::btnFileRead_Click()
{
    ConsoleState &s = m_ctx.state;
    const QString chosen = CommonDialog1->askOpenFileName(QStringLiteral("QM730 Parameter Files(*.UUP)"));
    if (chosen.isEmpty()) {
        WriteErrorLog(s.home, 0, QStringLiteral("Cancel was selected."), QStringLiteral("btnFileRead_Click"));
        return;
    }
    const QString base = paramset::baseOfMaster(chosen);
    QString why;
    const auto set = paramset::readParameterSet(base, &why);
    if (!set) {
        // A set is read whole or not at all: the tables stay as they were.
        WriteErrorLog(s.home, 75, why, QStringLiteral("btnFileRead_Click"));
        showConsoleMessage(this, QStringLiteral("無法開啟檔案 : ") + why);
        return;
    }
    m_set = set;
    if (putSetIntoImage())
        lblFName->setText(paramset::setDisplayName(base));
}

// The set into the tables, adapted to the link and the machine; false, with
// the message, when its row count is not the machine's.
bool frmQM730_P_Send::putSetIntoImage()
{
    ConsoleState &s = m_ctx.state;
    m_loaded = paramset::loadParameterSet(s.image, *m_set, bulktransfer::linkSettings(s)).fits;
    enableButtons();
    if (!m_loaded) {
        lblFName->clear();
        showConsoleMessage(this, QStringLiteral("不一致 (F/W Version)"));
    }
    return m_loaded;
}

void frmQM730_P_Send::btnSendALL_Click()
{
    // The set goes into the tables again: a poll may have read the machine's
    // own block over it since it was read.
    if (!m_set || !putSetIntoImage())
        return;
    lblSendType->setText(QStringLiteral("0"));
    m_run->start(this, lblSendType->text() == QLatin1String("0"));
}

void frmQM730_P_Send::btnSendStop_Click()
{
    m_run->stop(); // what was written stays written
}

void frmQM730_P_Send::done(int result)
{
    m_run->stopIfRunning();
    QDialog::done(result);
}
