#include "frmQM730_Set_Multi.h"
#include "ConsoleMessages.h"
#include "ConsoleState.h"
#include "Files.h"
#include "MachineListChange.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include "StartupFiles.h"
#include <QButtonGroup>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {
const QString InUse = QStringLiteral("O");
constexpr int MultiOption = 0;
constexpr int SingleOption = 1;
} // namespace

frmQM730_Set_Multi::frmQM730_Set_Multi(ScreenContext &context, QWidget *parent) : QDialog(parent), m_ctx(context)
{
    setObjectName(QStringLiteral("frmQM730_Set_Multi"));
    setWindowTitle(QStringLiteral("監控模式設定"));

    optRunMode = new QButtonGroup(this);
    auto *modeRow = new QHBoxLayout;
    const QString captions[2] = {QStringLiteral("多機"), QStringLiteral("單機")};
    for (int i = 0; i < 2; ++i) {
        auto *o = named(new QRadioButton(captions[i]), QStringLiteral("optRunMode"));
        o->setProperty("Index", i);
        optRunMode->addButton(o, i);
        modeRow->addWidget(o);
    }
    modeRow->addSpacing(24);
    modeRow->addWidget(new QLabel(QStringLiteral("機號")));
    txtMC_No = named(new QLineEdit, QStringLiteral("txtMC_No"));
    txtMC_No->setMaxLength(3);
    txtMC_No->setFixedWidth(60);
    modeRow->addWidget(txtMC_No);
    modeRow->addStretch(1);
    connect(optRunMode, &QButtonGroup::idClicked, this, &frmQM730_Set_Multi::showMode);

    fraList = named(new QGroupBox(QStringLiteral("多機")), QStringLiteral("fraList"));
    auto *listLayout = new QVBoxLayout(fraList);
    sprdList = named(new QTableWidget(MaxMachineNumber, 2), QStringLiteral("sprdList"));
    sprdList->setHorizontalHeaderLabels({QStringLiteral("使用"), QStringLiteral("名稱")});
    sprdList->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    sprdList->setColumnWidth(0, 48);
    sprdList->verticalHeader()->setDefaultSectionSize(22);
    sprdList->setSelectionMode(QAbstractItemView::SingleSelection);
    sprdList->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed
                              | QAbstractItemView::AnyKeyPressed);
    for (int r = 0; r < MaxMachineNumber; ++r) {
        auto *use = new QTableWidgetItem;
        use->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        use->setTextAlignment(Qt::AlignCenter);
        sprdList->setItem(r, 0, use);
        sprdList->setItem(r, 1, new QTableWidgetItem);
    }
    connect(sprdList, &QTableWidget::cellClicked, this, [this](int row, int col) {
        if (col == 0)
            toggleInUse(row + 1);
    });
    listLayout->addWidget(new QLabel(QStringLiteral("按一下「使用」欄以選擇要監控的機器 (O)")));
    listLayout->addWidget(sprdList, 1);

    auto *main = new QVBoxLayout(this);
    main->addLayout(modeRow);
    main->addWidget(fraList, 1);
    main->addLayout(okCancelRow(this, &btnOK, &btnCancel, false));
    noDefaultButtons(this);
    connect(btnOK, &QPushButton::clicked, this, &frmQM730_Set_Multi::btnOK_Click);
    resize(420, 560);
    fill();
}

void frmQM730_Set_Multi::fill()
{
    const ConsoleState &s = m_ctx.state;
    // The file as it stands; without one, the list in force.
    RunCfg cfg;
    if (const auto file = readRunCfg(s.home)) {
        cfg = *file;
    } else {
        cfg.multiMode = s.MultiMode;
        for (const MachineSlot &m : s.machines) {
            if (!s.MultiMode) {
                cfg.singleMachine = m.MachineNumber;
                break;
            }
            cfg.lines.resize(std::max<qsizetype>(cfg.lines.size(), m.MachineNumber));
            cfg.lines[m.MachineNumber - 1] = {true, m.MachineName};
        }
    }
    optRunMode->button(cfg.multiMode ? MultiOption : SingleOption)->setChecked(true);
    txtMC_No->setText(QString::number(cfg.singleMachine));
    for (int i = 0; i < cfg.lines.size() && i < MaxMachineNumber; ++i) {
        sprdList->item(i, 0)->setText(cfg.lines[i].first ? InUse : QString());
        sprdList->item(i, 1)->setText(cfg.lines[i].second);
    }
    showMode();
}

void frmQM730_Set_Multi::showMode()
{
    fraList->setEnabled(optRunMode->checkedId() == MultiOption);
}

void frmQM730_Set_Multi::toggleInUse(int row)
{
    if (row < 1 || row > MaxMachineNumber || !fraList->isEnabled())
        return;
    QTableWidgetItem *use = sprdList->item(row - 1, 0);
    use->setText(use->text() == InUse ? QString() : InUse);
}

void frmQM730_Set_Multi::btnOK_Click()
{
    const bool multi = optRunMode->checkedId() == MultiOption;
    RunCfg cfg;
    cfg.multiMode = multi;
    bool any = false;
    for (int r = 0; r < MaxMachineNumber; ++r) {
        const bool used = sprdList->item(r, 0)->text() == InUse;
        any = any || used;
        cfg.lines.append({used, sprdList->item(r, 1)->text()});
    }
    // Unused, unlabelled numbers at the end of the list need no lines.
    while (!cfg.lines.isEmpty() && !cfg.lines.last().first && cfg.lines.last().second.isEmpty())
        cfg.lines.removeLast();
    const QString numberText = txtMC_No->text().trimmed();
    const int number = leadingInt(numberText);
    const bool numberOk = !numberText.isEmpty() && number >= 1 && number <= MaxMachineNumber;
    if (multi && !any) {
        showConsoleMessage(this, QStringLiteral("請選擇要使用的機器"));
        return;
    }
    if (!multi && !numberOk) {
        showConsoleMessage(this, QStringLiteral("錄入機號 (1 ~ 999)"));
        return;
    }
    cfg.singleMachine = numberOk ? number : 1;
    Put_RunCFG(m_ctx.state.home, cfg.multiMode, cfg.singleMachine, cfg.lines);
    applyMachineList(m_ctx.state, m_ctx.link, machineListOf(cfg));
    accept();
}
