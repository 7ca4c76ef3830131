#pragma once
#include <QDialog>
#include <QHash>
#include <QVector>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class MailNotifier;
struct ScreenContext;

// E-mail settings. The ten address fields share the object name "txtToMail"
// and the eleven item boxes "chbItem"; the property "Index" tells them apart
// (0 to 9, 0 to 10), in creation order.
class frmQM730_Set_EMail : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730_Set_EMail(ScreenContext &context, QWidget *parent = nullptr);

    QLineEdit *toMail(int index) const { return txtToMail.value(index); }
    QCheckBox *item(int index) const { return chbItem.value(index); }

private:
    QLineEdit *addressField(const char *name);
    void useChanged();
    void commitAddress(QLineEdit *field);
    void btnDeleteMail_Click();
    void btnOK_Click();

    MailNotifier &m_mail;
    QCheckBox *chbUseEMail;
    QLineEdit *txtSMTP;
    QLineEdit *txtFromMail;
    QVector<QLineEdit *> txtToMail;
    QVector<QCheckBox *> chbItem;
    QLabel *lblSendNG;
    QPushButton *btnDeleteMail;
    QPushButton *btnOK;
    QPushButton *btnCancel;
    QHash<QLineEdit *, QString> m_committed; // last accepted text of each address field
};
