#include "frmQM730_Set_EMail.h"
#include "MailNotifier.h"
#include "Recorder.h"
#include "ScreenContext.h"
#include "mdlADO.h"
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

const char *const kItemCaptions[MailSettings::ItemCount] = {
    "I/S", "T.ON", "H.ON", "T/S", "P.ALM", "S.ALM", "RELAY OUTPUT", "O/C OUTPUT", "D/I", "Temp B.OUT", "Humi B.OUT",
};

} // namespace

frmQM730_Set_EMail::frmQM730_Set_EMail(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_mail(context.recorder.mail())
{
    setObjectName(QStringLiteral("frmQM730_Set_EMail"));
    setWindowTitle(QStringLiteral("E-mail setup"));

    chbUseEMail = new QCheckBox(QStringLiteral("Use E-mail"), this);
    chbUseEMail->setObjectName(QStringLiteral("chbUseEMail"));
    txtSMTP = new QLineEdit(this);
    txtSMTP->setObjectName(QStringLiteral("txtSMTP"));
    txtFromMail = addressField("txtFromMail");

    auto *server = new QGridLayout;
    server->addWidget(new QLabel(QStringLiteral("SMTP Server"), this), 0, 0);
    server->addWidget(txtSMTP, 0, 1);
    server->addWidget(new QLabel(QStringLiteral("From"), this), 1, 0);
    server->addWidget(txtFromMail, 1, 1);

    auto *to = new QGroupBox(QStringLiteral("To"), this);
    auto *toGrid = new QGridLayout(to);
    toGrid->addWidget(new QLabel(QStringLiteral("Mail Address"), to), 0, 1);
    for (int i = 0; i < MailSettings::AddressCount; ++i) {
        QLineEdit *field = addressField("txtToMail");
        field->setProperty("Index", i);
        txtToMail << field;
        toGrid->addWidget(new QLabel(QStringLiteral("Mail Address %1").arg(i + 1, 2, 10, QLatin1Char('0')), to), i + 1, 0);
        toGrid->addWidget(field, i + 1, 1);
    }

    auto *items = new QGroupBox(QStringLiteral("Use Item"), this);
    items->setObjectName(QStringLiteral("fraUseItem"));
    auto *itemGrid = new QGridLayout(items);
    for (int i = 0; i < MailSettings::ItemCount; ++i) {
        auto *box = new QCheckBox(QLatin1String(kItemCaptions[i]), items);
        box->setObjectName(QStringLiteral("chbItem"));
        box->setProperty("Index", i);
        chbItem << box;
        itemGrid->addWidget(box, i / 2, i % 2);
    }

    lblSendNG = new QLabel(this);
    lblSendNG->setObjectName(QStringLiteral("lblSendNG"));
    lblSendNG->setStyleSheet(QStringLiteral("color: red"));
    btnDeleteMail = new QPushButton(QStringLiteral("&Delete Mail Data"), this);
    btnDeleteMail->setObjectName(QStringLiteral("btnDeleteMail"));
    btnOK = new QPushButton(QStringLiteral("&OK"), this);
    btnOK->setObjectName(QStringLiteral("btnOK"));
    btnCancel = new QPushButton(QStringLiteral("&Cancel"), this);
    btnCancel->setObjectName(QStringLiteral("btnCancel"));

    auto *state = new QHBoxLayout;
    state->addWidget(lblSendNG);
    state->addStretch();
    state->addWidget(btnDeleteMail);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(btnOK);
    buttons->addWidget(btnCancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(chbUseEMail);
    layout->addLayout(server);
    layout->addWidget(to);
    layout->addWidget(items);
    layout->addLayout(state);
    layout->addLayout(buttons);

    // The values in memory.
    const MailSettings &s = m_mail.settings();
    chbUseEMail->setChecked(s.MailUse >= 1);
    txtSMTP->setText(s.MailSmtp);
    txtFromMail->setText(s.MailFrom);
    for (int i = 0; i < MailSettings::AddressCount; ++i)
        txtToMail[i]->setText(s.MailAddress.value(i));
    for (int i = 0; i < MailSettings::ItemCount; ++i)
        chbItem[i]->setChecked(s.itemOn(i));
    for (QLineEdit *f : m_committed.keys())
        m_committed[f] = f->text();

    const bool failed = m_mail.database().readSendNG().value_or(0) == 1;
    lblSendNG->setText(failed ? QStringLiteral("SMTP Error") : QString());
    btnDeleteMail->setVisible(failed);
    useChanged();

    connect(chbUseEMail, &QCheckBox::toggled, this, &frmQM730_Set_EMail::useChanged);
    connect(btnDeleteMail, &QPushButton::clicked, this, &frmQM730_Set_EMail::btnDeleteMail_Click);
    connect(btnOK, &QPushButton::clicked, this, &frmQM730_Set_EMail::btnOK_Click);
    connect(btnCancel, &QPushButton::clicked, this, &QDialog::reject);
}

QLineEdit *frmQM730_Set_EMail::addressField(const char *name)
{
    auto *field = new QLineEdit(this);
    field->setObjectName(QLatin1String(name));
    m_committed.insert(field, QString());
    connect(field, &QLineEdit::editingFinished, this, [this, field] { commitAddress(field); });
    return field;
}

// A committed address needs an "@"; without one the field goes back to its last accepted text.
void frmQM730_Set_EMail::commitAddress(QLineEdit *field)
{
    const QString text = field->text();
    if (!text.isEmpty() && !text.contains(u'@'))
        field->setText(m_committed.value(field));
    else
        m_committed[field] = text;
}

void frmQM730_Set_EMail::useChanged()
{
    const bool on = chbUseEMail->isChecked();
    txtSMTP->setEnabled(on);
    txtFromMail->setEnabled(on);
    for (QLineEdit *f : txtToMail)
        f->setEnabled(on);
}

void frmQM730_Set_EMail::btnDeleteMail_Click()
{
    m_mail.database().dropWaitingMail();
}

void frmQM730_Set_EMail::btnOK_Click()
{
    MailSettings s;
    s.MailUse = chbUseEMail->isChecked() ? 1 : 0;
    s.MailSmtp = txtSMTP->text();
    s.MailFrom = txtFromMail->text();
    for (int i = 0; i < MailSettings::AddressCount; ++i)
        s.MailAddress[i] = txtToMail[i]->text();
    s.MailToList = mailToListTrailing(s.MailAddress);
    s.computeEnabled();
    for (int i = 0; i < MailSettings::ItemCount; ++i)
        s.MailItem[i] = chbItem[i]->isChecked() ? QStringLiteral("1") : QStringLiteral("0");
    m_mail.saveSettings(s);
    accept();
}
