#include "frmQM730_P_Recv.h"
#include "BulkScreen.h"
#include "CommonDialog.h"
#include "ConsoleMessages.h"
#include "ConsoleState.h"
#include "Files.h"
#include "ParameterSet.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include <QApplication>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

frmQM730_P_Recv::frmQM730_P_Recv(ScreenContext &context, QWidget *parent) : QDialog(parent), m_ctx(context)
{
    setObjectName(QStringLiteral("frmQM730_P_Recv"));
    setWindowTitle(QStringLiteral("參數接收/檔案儲存(QM730 -> PC)"));

    auto *status = new BulkStatusGrid(this);
    m_run = new BulkRun(context, BulkJob::ParameterReceive, status, this);
    lblRecvType = named(new QLabel(QStringLiteral("0"), this), QStringLiteral("lblRecvType"));
    lblRecvType->hide();
    btnRecvALL = named(new QPushButton(QStringLiteral("接收"), this), QStringLiteral("btnRecvALL"));
    btnRecvStop = named(new QPushButton(QStringLiteral("停止"), this), QStringLiteral("btnRecvStop"));
    btnFileSave = named(new QPushButton(QStringLiteral("儲存到檔案"), this), QStringLiteral("btnFileSave"));
    CommonDialog1 = new CommonDialog(this, context.state.home);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(status);
    layout->addWidget(lblRecvType);
    layout->addStretch();
    layout->addLayout(bulkButtonRow(this, {btnRecvALL, btnRecvStop, btnFileSave}));
    resize(460, 240);
    noDefaultButtons(this);

    connect(btnRecvALL, &QPushButton::clicked, this, &frmQM730_P_Recv::btnRecvALL_Click);
    connect(btnRecvStop, &QPushButton::clicked, this, &frmQM730_P_Recv::btnRecvStop_Click);
    connect(btnFileSave, &QPushButton::clicked, this, &frmQM730_P_Recv::btnFileSave_Click);
    auto buttons = [this](bool receiving) {
        btnRecvALL->setEnabled(!receiving);
        btnRecvStop->setEnabled(receiving);
    };
    connect(m_run, &BulkRun::runningChanged, this, buttons);
    buttons(false);
}

void frmQM730_P_Recv::btnRecvALL_Click()
{
    lblRecvType->setText(QStringLiteral("0"));
    m_run->start(this, lblRecvType->text() == QLatin1String("0"));
}

void frmQM730_P_Recv::btnRecvStop_Click()
{
    m_run->stop(); // the tables keep what has arrived
}

void frmQM730_P_Recv::btnFileSave_Click()
{
    const QString chosen = CommonDialog1->askSaveFileName(QStringLiteral("QM730 Parameter Files (*.UUP)"));
    if (chosen.isEmpty())
        return;
    const paramset::SaveName name = paramset::saveNameOf(chosen);
    if (name.confirmOverwrite && QFileInfo::exists(chosen)
        && !askConsoleYesNo(this, QStringLiteral("文件已經存在。是否替換原有文件?"), QStringLiteral("確認")))
        return;
    ConsoleState &s = m_ctx.state;
    QString why;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool saved = paramset::saveParameterSet(s.image, s.FirmwareVersion(), name.base, &why);
    QApplication::restoreOverrideCursor();
    if (!saved) {
        WriteErrorLog(s.home, 75, why, QStringLiteral("btnFileSave_Click"));
        showConsoleMessage(this, QStringLiteral("無法儲存檔案 : ") + paramset::setDisplayName(name.base)
                                     + QStringLiteral("\n") + why);
    }
}

void frmQM730_P_Recv::done(int result)
{
    m_run->stopIfRunning();
    QDialog::done(result);
}
