#include "frmQM730SYS_ETC.h"
#include "ConsoleState.h"
#include "EntryField.h"
#include "Files.h"
#include "PageLayout.h"
#include "ParamPage.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include <QAbstractButton>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int InfoFirstRow = 9; // the maker's lines are text rows 9 to 11
constexpr int InfoLength = 30;

} // namespace

frmQM730SYS_ETC::frmQM730SYS_ETC(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_page(new ParamPage(context, this))
{
    setObjectName(QStringLiteral("frmQM730SYS_ETC"));
    setWindowTitle(QStringLiteral("其他設定"));
    PageBinder &b = m_page->binder();

    auto *grid = new QGridLayout;
    auto options = [&](const char *name, Param p, const QStringList &captions) {
        const QList<QAbstractButton *> buttons = optionButtons(this, QLatin1String(name), captions);
        QList<int> words;
        for (int i = 0; i < captions.size(); ++i)
            words << i;
        OptionGroup *g = b.options(p, buttons, words);
        return std::make_pair(g, strip(buttons));
    };
    const QStringList clearOrSet{QStringLiteral("解除"), QStringLiteral("設定")};
    auto language = options("btnLanguage", Param::btnLanguage, {QStringLiteral("中文"), QStringLiteral("英文")});
    auto tHold = options("btnTPV_HOLD", Param::btnTPV_HOLD, clearOrSet);
    auto hHold = options("btnHPV_HOLD", Param::btnHPV_HOLD, clearOrSet);
    auto base = options("btnHCTL_Base", Param::btnHCTL_Base,
                        {QStringLiteral("相對濕度"), QStringLiteral("濕球溫度"), QStringLiteral("自動")});
    m_from18 = {tHold.first, hHold.first, base.first};
    addPageLine(grid, QStringLiteral("語言設定"), language.second);
    addPageLine(grid, QStringLiteral("T.PV HOLD"), tHold.second);
    addPageLine(grid, QStringLiteral("H.PV HOLD"), hHold.second);
    addPageLine(grid, QStringLiteral("濕度控制基準"), base.second);

    auto *txtUserPass = new EntryField(QStringLiteral("txtUserPass"), this);
    txtUserPass->setMaximumWidth(90);
    m_password = new EntryBinding(txtUserPass, this);
    m_password->setRange(EntryBinding::Range{0, 9999, QStringLiteral("0000")});
    m_password->onCommit([this](const QString &, const QString &text) { commitPassword(text); });
    addPageLine(grid, QStringLiteral("密碼變更"), txtUserPass);

    auto *maker = new QGroupBox(QStringLiteral("製造廠商資料"), this);
    auto *makerLines = new QVBoxLayout(maker);
    for (int i = 0; i < 3; ++i) {
        EntryField *f = indexedField(this, QStringLiteral("txtUserInfo"), i);
        f->setMaxLength(InfoLength);
        f->setMinimumWidth(280);
        auto *info = new EntryBinding(f, this);
        const int row = InfoFirstRow + i;
        info->onCommit([this, row](const QString &, const QString &text) {
            m_ctx.state.image.sprdTD.setText(1, row, text);
            m_ctx.requests().writeTextRow(row);
        });
        m_info << info;
        makerLines->addWidget(f);
    }

    // Restoring the factory settings is a function of the controller's own keys.
    auto *btnInitFactory = named(new QPushButton(QStringLiteral("恢復出廠設定值"), this), QStringLiteral("btnInitFactory"));
    btnInitFactory->setEnabled(false);
    btnInitFactory->setToolTip(QStringLiteral("請在控制器上操作"));

    auto *top = new QVBoxLayout(this);
    top->addLayout(grid);
    top->addWidget(maker);
    top->addLayout(closeRow(this, btnInitFactory));
    noDefaultButtons(this);

    b.onChange([this] { applyRules(); });
    m_page->open();
    m_ctx.requests().readTextRows(InfoFirstRow, InfoFirstRow + 2);
}

void frmQM730SYS_ETC::applyRules()
{
    const ControllerImage &image = m_ctx.state.image;
    const bool from18 = image.firmwareVersion() >= 1.8;
    for (OptionGroup *g : m_from18)
        for (QAbstractButton *button : g->buttons())
            button->setEnabled(from18);

    // The password in the clear, from the character codes of its four rows.
    QString password;
    for (int i = 1; i <= 4; ++i) {
        const std::optional<qint64> code = ParamWord(image, {Param::txtUserPass, i});
        if (!code) {
            password.clear();
            break;
        }
        password += QChar(char16_t(*code & 0xFFFF));
    }
    m_password->show(password);
    for (int i = 0; i < m_info.size(); ++i)
        m_info[i]->show(image.sprdTD.text(1, InfoFirstRow + i));
}

void frmQM730SYS_ETC::commitPassword(const QString &text)
{
    const QString digits = formatNumber(leadingNumber(text), QStringLiteral("0000"));
    m_password->field()->setText(digits);
    const double version = m_ctx.state.FirmwareVersion();
    const int first = RowOf({Param::txtUserPass, 1}, version);
    const int last = RowOf({Param::txtUserPass, 4}, version);
    if (first == 0 || last == 0 || digits.size() != 4)
        return;
    for (int i = 0; i < 4; ++i)
        WriteRowText(m_ctx.state.image, first + i, QString::number(digits[i].unicode()));
    m_ctx.requests().writeParameterRows(first, last);
}
