#include "ConsoleMessages.h"
#include "frmQM730_SysPass_Reg.h"
#include "ConsoleState.h"
#include "ScreenContext.h"
#include "StartupFiles.h"
#include "frmQM730_SysPass_Chk.h"
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

frmQM730_SysPass_Reg::frmQM730_SysPass_Reg(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_st(context.state)
{
    setObjectName(QStringLiteral("frmQM730_SysPass_Reg"));
    setWindowTitle(QStringLiteral("密碼變更"));

    tmrUnload.setObjectName(QStringLiteral("tmrUnload"));
    tmrUnload.setParent(this);
    tmrUnload.setSingleShot(true);
    tmrUnload.setInterval(0);
    connect(&tmrUnload, &QTimer::timeout, this, &QDialog::reject);

    lblOldPass = new QLabel(this);
    lblOldPass->setObjectName(QStringLiteral("lblOldPass"));
    txtNewPass = new QLineEdit(this);
    txtNewPass->setObjectName(QStringLiteral("txtNewPass"));
    auto *buttons = okCancelRow(this, &btnOK, &btnCancel, true);

    auto *form = new QFormLayout;
    form->addRow(QStringLiteral("舊密碼"), lblOldPass);
    form->addRow(QStringLiteral("新密碼"), txtNewPass);
    auto *top = new QVBoxLayout(this);
    top->addLayout(form);
    top->addLayout(buttons);

    // Only the length of the present password shows.
    lblOldPass->setText(QString(m_st.SystemPassword.size(), u'*'));

    connect(btnOK, &QPushButton::clicked, this, &frmQM730_SysPass_Reg::btnOK_Click);
}

void frmQM730_SysPass_Reg::setVisible(bool visible)
{
    // The check runs as the page loads, before it first shows.
    if (visible && !m_loaded) {
        m_loaded = true;
        if (!frmQM730_SysPass_Chk::check(m_ctx, parentWidget()))
            tmrUnload.start();
    }
    QDialog::setVisible(visible);
}

void frmQM730_SysPass_Reg::btnOK_Click()
{
    m_st.SystemPassword = txtNewPass->text();
    // A failing write is swallowed: the new password holds until the program ends.
    saveSystemPassword(m_st.home, m_st.SystemPassword);
    accept();
}
