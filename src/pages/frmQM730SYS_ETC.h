#pragma once
#include <QDialog>

class EntryBinding;
class OptionGroup;
class ParamPage;
struct ScreenContext;

// "其他設定": language, the holds of the present values, the humidity control
// base, the controller's password and the maker's three text lines. The
// password is four rows, one digit a row as its character code, written as
// one range; the text lines are rows 9 to 11 of the text block, read when the
// page opens and written one at a time.
class frmQM730SYS_ETC : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730SYS_ETC(ScreenContext &context, QWidget *parent = nullptr);

private:
    void applyRules();
    void commitPassword(const QString &text);

    ScreenContext &m_ctx;
    ParamPage *m_page;
    EntryBinding *m_password;
    QList<EntryBinding *> m_info;
    QList<OptionGroup *> m_from18; // the holds and the humidity base, from firmware 1.8
};
