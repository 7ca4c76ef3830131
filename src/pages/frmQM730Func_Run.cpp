#include "frmQM730Func_Run.h"
#include "ConsoleState.h"
#include "EntryField.h"
#include "PageLayout.h"
#include "ParamPage.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include <QPushButton>
#include <QAbstractButton>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace {

const QStringList SetOrClear{QStringLiteral("設定"), QStringLiteral("解除")};
// "設定" / "解除" rows hold 1 for "設定" and 0 for "解除": (index + 1) & 1.
const QList<int> SetOrClearWords{1, 0};

} // namespace

frmQM730Func_Run::frmQM730Func_Run(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_page(new ParamPage(context, this))
{
    setObjectName(QStringLiteral("frmQM730Func_Run"));
    setWindowTitle(QStringLiteral("運轉設定"));
    PageBinder &b = m_page->binder();

    auto field = [&](const char *name, Param p) {
        auto *f = new EntryField(QLatin1String(name), this);
        f->setMaximumWidth(90);
        b.field(f, p);
        return f;
    };
    auto options = [&](const char *name, Param p, const QStringList &captions, const QList<int> &words) {
        const QList<QAbstractButton *> buttons = optionButtons(this, QLatin1String(name), captions);
        b.options(p, buttons, words);
        return strip(buttons);
    };

    // Group "設定 1".
    auto *set1 = new QGroupBox(QStringLiteral("設定 1"), this);
    auto *g1 = new QGridLayout(set1);
    addPageLine(g1, QStringLiteral("控制模式"),
                options("btnRun_Method", Param::btnRun_Method, {QStringLiteral("程式"), QStringLiteral("定值")}, {0, 1}));
    EntryField *txtT_SV = field("txtT_SV", Param::txtT_SV);
    EntryField *txtH_SV = field("txtH_SV", Param::txtH_SV);
    EntryField *txtRun_Hour = field("txtRun_Hour", Param::txtRun_Hour);
    EntryField *txtRun_Minute = field("txtRun_Minute", Param::txtRun_Minute);
    addPageLine(g1, QStringLiteral("溫度SV斜率"), txtT_SV, QStringLiteral("[℃/分]"));
    addPageLine(g1, QStringLiteral("濕度SV斜率"), txtH_SV, QStringLiteral("[%/分]"));
    auto *hourLabel = new QLabel(QStringLiteral("小時"));
    auto *minuteLabel = new QLabel(QStringLiteral("分"));
    addPageLine(g1, QStringLiteral("定值運轉時間"), strip(QList<QWidget *>{txtRun_Hour, hourLabel, txtRun_Minute, minuteLabel}));
    addPageLine(g1, QStringLiteral("MV TRACKING"),
                options("btnMV_Tracking", Param::btnMV_Tracking, SetOrClear, SetOrClearWords));
    m_fixedRunFields = {txtT_SV, txtH_SV, txtRun_Hour, txtRun_Minute};

    // Group "設定 2".
    auto *set2 = new QGroupBox(QStringLiteral("設定 2"), this);
    auto *g2 = new QGridLayout(set2);
    addPageLine(g2, QStringLiteral("FUZZY功能"), options("btnPuzzy", Param::btnPuzzy, SetOrClear, SetOrClearWords));
    addPageLine(g2, QStringLiteral("斷電再起模式"),
                options("btnReturn_Proc", Param::btnReturn_Proc,
                        {QStringLiteral("中斷"), QStringLiteral("重新"), QStringLiteral("接續")}, {0, 1, 2}));
    addPageLine(g2, QStringLiteral("按鍵音"), options("btnBeep", Param::btnBeep, SetOrClear, SetOrClearWords));
    addPageLine(g2, QStringLiteral("觸感控制"), options("btnTouch_Lock", Param::btnTouch_Lock, SetOrClear, SetOrClearWords));
    addPageLine(g2, QStringLiteral("背光燈"), field("txtAuto_Off", Param::txtAuto_Off), QStringLiteral("分"));
    const QStringList lockCaptions{QStringLiteral("解除"), QStringLiteral("鎖定")};
    QWidget *operLock = options("btnOper_Lock", Param::btnOper_Lock, lockCaptions, {0, 1});
    QWidget *pattLock = options("btnPatt_Lock", Param::btnPatt_Lock, lockCaptions, {0, 1});
    m_lockLines = addPageLine(g2, QStringLiteral("啟動鎖定"), operLock) + addPageLine(g2, QStringLiteral("程式鎖定"), pattLock);
    m_lockLines << operLock << pattLock;

    auto *groups = new QHBoxLayout;
    groups->addWidget(set1);
    groups->addWidget(set2);
    auto *top = new QVBoxLayout(this);
    top->addLayout(groups);
    top->addLayout(closeRow(this));
    noDefaultButtons(this);

    b.onChange([this] { applyRules(); });
    m_page->open();
}

void frmQM730Func_Run::applyRules()
{
    // A program run has no ramp and no time of its own: the fields are shown
    // but closed while the control mode is "程式".
    const bool fixedRun = ParamWord(m_ctx.state.image, Param::btnRun_Method).value_or(0) != 0;
    for (EntryField *f : m_fixedRunFields)
        f->setEnabled(fixedRun);
    const bool modbus = m_ctx.state.Modbus();
    for (QWidget *w : m_lockLines)
        w->setVisible(modbus);
}
