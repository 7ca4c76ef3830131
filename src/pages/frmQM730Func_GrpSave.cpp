#include "frmQM730Func_GrpSave.h"
#include "ButtonColour.h"
#include "ConsoleState.h"
#include "EntryField.h"
#include "PageLayout.h"
#include "ParamPage.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include <QAbstractButton>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

frmQM730Func_GrpSave::frmQM730Func_GrpSave(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_page(new ParamPage(context, this))
{
    setObjectName(QStringLiteral("frmQM730Func_GrpSave"));
    setWindowTitle(QStringLiteral("曲線儲存設定"));
    PageBinder &b = m_page->binder();

    auto *save = new QGroupBox(this);
    auto *grid = new QGridLayout(save);
    auto *txtSavePeriod = new EntryField(QStringLiteral("txtSavePeriod"), this);
    txtSavePeriod->setMaximumWidth(90);
    b.field(txtSavePeriod, Param::txtSavePeriod);
    addPageLine(grid, QStringLiteral("儲存週期"), txtSavePeriod, QStringLiteral("[秒]"));

    const QList<QAbstractButton *> action =
        optionButtons(this, QStringLiteral("btnSaveAction"),
                      {QStringLiteral("ALL ON"), QStringLiteral("RUN ON"), QStringLiteral("FIX ON"), QStringLiteral("Prog ON")});
    m_action = b.options(Param::btnSaveAction, action, {0, 1, 2, 3});
    addPageLine(grid, QStringLiteral("儲存模式"), strip(action));

    const QList<QAbstractButton *> device =
        optionButtons(this, QStringLiteral("btnSaveObj"), {QStringLiteral("不使用"), QStringLiteral("USB裝置")});
    b.options(Param::btnSaveObj, device, {0, 1});
    QWidget *deviceButtons = strip(device);
    m_deviceLine = addPageLine(grid, QStringLiteral("儲存裝置"), deviceButtons);
    m_deviceLine << deviceButtons;

    auto *record = new QLabel(QStringLiteral("(日期/時間/溫濕度SV,PV,MV)"), this);
    grid->addWidget(record, grid->rowCount(), 1, 1, 2);

    // The controller's own curve view: not reachable over the line.
    auto *view = new QGroupBox(this);
    auto *viewGrid = new QGridLayout(view);
    auto *btnBufferInit = named(new QPushButton(QStringLiteral("初始化"), this), QStringLiteral("btnBufferInit"));
    auto *txtAxisX = named(new QLineEdit(this), QStringLiteral("txtAxisX"));
    auto *txtAxisYMin = named(new QLineEdit(this), QStringLiteral("txtAxisYMin"));
    auto *txtAxisYMax = named(new QLineEdit(this), QStringLiteral("txtAxisYMax"));
    for (QWidget *w : QList<QWidget *>{btnBufferInit, txtAxisX, txtAxisYMin, txtAxisYMax}) {
        w->setEnabled(false);
        w->setToolTip(QStringLiteral("控制器不經由通訊提供此功能"));
    }
    for (QLineEdit *e : {txtAxisX, txtAxisYMin, txtAxisYMax})
        e->setMaximumWidth(90);
    addPageLine(viewGrid, QStringLiteral("X軸時間"), txtAxisX);
    addPageLine(viewGrid, QStringLiteral("Y軸最小"), txtAxisYMin);
    addPageLine(viewGrid, QStringLiteral("最大"), txtAxisYMax);
    viewGrid->addWidget(btnBufferInit, viewGrid->rowCount(), 1);

    auto *top = new QVBoxLayout(this);
    top->addWidget(save);
    top->addWidget(view);
    top->addLayout(closeRow(this));
    noDefaultButtons(this);

    b.onChange([this] { applyRules(); });
    m_page->open();
}

void frmQM730Func_GrpSave::applyRules()
{
    // Words other than 0, 1 and 2 stand for the last mode.
    const std::optional<qint64> word = ParamWord(m_ctx.state.image, Param::btnSaveAction);
    if (word && *word > 2) {
        const QList<QAbstractButton *> &buttons = m_action->buttons();
        for (int i = 0; i < buttons.size(); ++i)
            ButtonColour::set(buttons[i], i == buttons.size() - 1 ? ButtonColour::Selected : ButtonColour::FaceColour);
    }
    const bool device = m_ctx.state.FirmwareVersion() >= 2.09;
    for (QWidget *w : m_deviceLine)
        w->setVisible(device);
}
