#include "frmQM730_SysPass_Chk.h"
#include "ConsoleMessages.h"
#include "ConsoleState.h"
#include "ScreenContext.h"
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

frmQM730_SysPass_Chk::frmQM730_SysPass_Chk(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_st(context.state)
{
    setObjectName(QStringLiteral("frmQM730_SysPass_Chk"));
    setWindowTitle(QStringLiteral("密碼確認"));

    txtSysPass = new QLineEdit(this);
    txtSysPass->setObjectName(QStringLiteral("txtSysPass"));
    txtSysPass->setEchoMode(QLineEdit::Password);
    auto *buttons = okCancelRow(this, &btnOK, &btnCancel, true);

    auto *top = new QVBoxLayout(this);
    top->addWidget(new QLabel(QStringLiteral("密碼"), this));
    top->addWidget(txtSysPass);
    top->addLayout(buttons);

    connect(btnOK, &QPushButton::clicked, this, &frmQM730_SysPass_Chk::btnOK_Click);
}

void frmQM730_SysPass_Chk::btnOK_Click()
{
    if (txtSysPass->text().toUpper() == m_st.SystemPassword.toUpper()) {
        m_passed = true;
        accept();
        return;
    }
    showConsoleMessage(this, QStringLiteral("密碼錯誤!"));
    if (++m_tries >= 3) {
        m_passed = false;
        reject();
        return;
    }
    txtSysPass->clear();
    txtSysPass->setFocus();
}

bool frmQM730_SysPass_Chk::check(ScreenContext &context, QWidget *parent)
{
    frmQM730_SysPass_Chk page(context, parent);
    page.exec();
    return page.passed();
}
