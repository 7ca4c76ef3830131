#include "frmQM730SYS_Alarm.h"
#include "ConsoleState.h"
#include "PageLayout.h"
#include "ParamPage.h"
#include "ParamTable.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include "frmSys_AlarmCode.h"
#include <QPushButton>
#include <QAbstractButton>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

constexpr int Alarms = 4;
enum Column { TargetTemp = 1, TargetHumi = 2, Type = 3, Value = 4, Hysteresis = 5 };

} // namespace

frmQM730SYS_Alarm::frmQM730SYS_Alarm(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_page(new ParamPage(context, this))
{
    setObjectName(QStringLiteral("frmQM730SYS_Alarm"));
    setWindowTitle(QStringLiteral("系統警報設定"));
    PageBinder &b = m_page->binder();

    const QList<QAbstractButton *> active =
        optionButtons(this, QStringLiteral("btnAlarmActive"), {QStringLiteral("不使用"), QStringLiteral("使用")});
    b.options(Param::btnAlarmActive, active, {0, 1});

    QTableWidget *sprdSystem = pageTable(this, QStringLiteral("sprdSystem"),
                                         {QStringLiteral("對象選擇"), QString(), QStringLiteral("類型"),
                                          QStringLiteral("警報SV"), QStringLiteral("回差")},
                                         {QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"), QStringLiteral("4")});
    sprdSystem->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    sprdSystem->setMinimumWidth(460);
    fitTableHeight(sprdSystem);
    m_table = new ParamTable(b, sprdSystem);
    for (int i = 1; i <= Alarms; ++i) {
        m_table->setText(i, TargetTemp, QStringLiteral("溫度"));
        m_table->setText(i, TargetHumi, QStringLiteral("濕度"));
        m_table->radio(
            i, {TargetTemp, TargetHumi},
            [this, i] { return int(ParamWord(m_ctx.state.image, {Param::sprdSystem_Target, i}).value_or(-1)); },
            [this, i](int target) { m_ctx.requests().writeParameter({Param::sprdSystem_Target, i}, quint16(target)); });
        m_table->button(
            i, Type,
            [this, i] {
                const std::optional<qint64> code = ParamWord(m_ctx.state.image, {Param::sprdSystem_Type, i});
                return code ? frmSys_AlarmCode::codeText(int(*code)) : QString();
            },
            [this, i] { chooseType(i); });
        m_table->param(i, Value, ParamRef(Param::sprdSystem_SV, i));
        m_table->param(i, Hysteresis, ParamRef(Param::sprdSystem_Hyst, i));
    }

    auto *grid = new QGridLayout;
    addPageLine(grid, QStringLiteral("系統警報"), strip(active));
    auto *top = new QVBoxLayout(this);
    top->addLayout(grid);
    top->addWidget(sprdSystem);
    top->addLayout(closeRow(this));
    noDefaultButtons(this);

    b.onChange([this] { applyRules(); });
    m_page->open();
}

void frmQM730SYS_Alarm::chooseType(int line)
{
    const ParamRef type(Param::sprdSystem_Type, line);
    const std::optional<int> code =
        frmSys_AlarmCode::choose(m_ctx, this, RowOf(type, m_ctx.state.FirmwareVersion()));
    if (!code)
        return;
    m_table->setText(line, Type, frmSys_AlarmCode::codeText(*code));
    m_ctx.requests().writeParameter(type, quint16(*code));
}

void frmQM730SYS_Alarm::applyRules()
{
    const ControllerImage &image = m_ctx.state.image;
    for (int i = 1; i <= Alarms; ++i) {
        const std::optional<qint64> type = ParamWord(image, {Param::sprdSystem_Type, i});
        const bool none = type == 0;
        for (int column : {Value, Hysteresis}) {
            m_table->setLocked(i, column, !type || none);
            if (none)
                m_table->setText(i, column, QStringLiteral("--"));
        }
    }
}
