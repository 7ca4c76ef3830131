#include "frmQM730_Main.h"
#include "ActivityLamp.h"
#include "CommMonitor.h"
#include "ConsoleCore.h"
#include "ConsoleMessages.h"
#include "Files.h"
#include "ProgramImage.h"
#include "Recorder.h"
#include "ShellOpen.h"
#include "TextTableModel.h"
#include "frmQM730_SysPass_Chk.h"
#include <QButtonGroup>
#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QStatusBar>
#include <QTableView>
#include <QVBoxLayout>

namespace {

const QString kPortOpen = QStringLiteral("通訊端口開啟");
const QString kPortClose = QStringLiteral("通訊端口關閉");
const QString kSysLocked = QStringLiteral("鎖開啟");
const QString kSysUnlocked = QStringLiteral("鎖關閉");
const QString kProgramLock = QStringLiteral("Program &Lock");
const QString kProgramUnlock = QStringLiteral("Program &Unlock");
const QString kLockRefusal = QStringLiteral("鎖關閉 => 鎖開啟");

// A menu item: its caption, the screen it opens (what happens before it
// opens is the screen's, in the registry), and whether the operator's
// program lock blocks it.
struct ItemDef {
    const char *name;
    const char *caption;
    const char *screen;
    bool lockGuarded = false;
};

struct MenuDef {
    const char *name;
    const char *caption;
    std::vector<ItemDef> items;
};

const std::vector<MenuDef> &menuTable()
{
    static const std::vector<MenuDef> table = {
        {"mSet", "通訊管理",
         {{"mSetPort", "通訊參數", "frmQM730_Set_Port", true},
          {"mSetChannel", "監控模式", "frmQM730_Set_Multi", true},
          {"mSetDataSave", "數據儲存", "frmQM730_Set_DSave", true},
          {"mSetEMail", "&E-mail", "frmQM730_Set_EMail", true},
          {"mSetSysPass", "密碼變更", "frmQM730_SysPass_Reg"},
          {"mExit", "退出", nullptr}}},
        {"mOnline", "連線",
         {{"mOnlinePortOpen", "通訊端口開啟", nullptr},
          {"mOnlineDownload", "參數接收/檔案儲存", "frmQM730_P_Recv"},
          {"mOnlineUpload", "檔案讀取/參數傳送", "frmQM730_P_Send"},
          {"mOnlineDateTime", "日期/時間設定", "frmQM730Online_DateTime"},
          {"mOnlineScreen", "擷取儀表當前畫面", "frmQM730Online_Screen"},
          {"mOnlineRun", "單機操作", "frmQM730_RunSimple"},
          {"mOnlineRunMulti", "多機操作", "frmQM730_RunMulti"},
          {"mOnlineMonMulti", "多機監控", "frmQM730_TMon"}}},
        {"mPrg", "程式設定",
         {{"mPrgPTN", "程式組設定", "frmQM730Prg_PTN"},
          {"mPrgSEG", "程式段設定", "frmQM730Prg_SEG"},
          {"mPrgManagement", "程式管理", "frmQM730Prg_Managemen"}}},
        {"mFunc", "運轉設定",
         {{"mFuncRun", "運轉設定", "frmQM730Func_Run"},
          {"mFuncGrpSave", "曲線儲存設定", "frmQM730Func_GrpSave"}}},
        {"mSys", "系統設定",
         {{"mSysLock", "鎖開啟", nullptr},
          {"mSysSensor", "傳感器輸入設定", "frmQM730SYS_Sensor"},
          {"mSysControl", "控制輸出設定", "frmQM730SYS_Control"},
          {"mSysInner", "內部信號設定", "frmQM730SYS_InnerNew"},
          {"mSysAlarm", "系統警報設定", "frmQM730SYS_Alarm"},
          {"mSysPID", "PID 設定", "frmQM730SYS_PID"},
          {"mSysDI", "D/I 狀態設定", "frmQM730SYS_DI"},
          {"mSysDO", "D/O 狀態設定", "frmQM730SYS_DO"},
          {"mSysCommunication", "通信設定", "frmQM730SYS_Comm"},
          {"mSysETC", "其他設定", "frmQM730SYS_ETC"}}},
        {"mHelp", "幫助",
         {{"mHelpAbout", "關於", "frmQM730_About"},
          {"mHelpHelp", "幫助", nullptr},
          {"mHelpManual", "QM730 操作手册", nullptr},
          {"mHelpGV", "歷史數據查看", nullptr},
          {"mHelpHistory", "歷史事件查看", "frmQM730_History"},
          {"mHelpCommData", "通訊狀態查看", nullptr},
          {"mHelpLock", "Program &Lock", nullptr}}},
    };
    return table;
}

const ItemDef *findItem(const QString &name)
{
    for (const MenuDef &m : menuTable())
        for (const ItemDef &i : m.items)
            if (name == QLatin1String(i.name))
                return &i;
    return nullptr;
}

// btnMenu 0 to 18: caption and the menu item each stands for.
struct ButtonDef {
    const char *caption;
    const char *item;
};
const ButtonDef kButtons[19] = {
    {"通訊端口開啟", "mOnlinePortOpen"}, {"日期/時間設定", "mOnlineDateTime"}, {"單機", "mOnlineRun"},
    {"程式組設定", "mPrgPTN"},           {"程式段設定", "mPrgSEG"},         {"程式管理", "mPrgManagement"},
    {"運轉設定", "mFuncRun"},            {"曲線儲存設定", "mFuncGrpSave"},  {"傳感器輸入設定", "mSysSensor"},
    {"控制輸出設定", "mSysControl"},     {"內部信號設定", "mSysInner"},     {"系統警報設定", "mSysAlarm"},
    {"PID 設定", "mSysPID"},             {"D/I 狀態設定", "mSysDI"},        {"D/O 狀態設定", "mSysDO"},
    {"通信設定", "mSysCommunication"},   {"其他設定", "mSysETC"},           {"多機", "mOnlineRunMulti"},
    {"多機監控", "mOnlineMonMulti"},
};

// The entries the system lock (mSysLock) disables, with picSys.
const char *const kSysPages[] = {"mSysSensor", "mSysControl", "mSysInner", "mSysAlarm", "mSysPID",
                                 "mSysDI",     "mSysDO",      "mSysCommunication", "mSysETC"};

// Enabled exactly while some machine is online.
const char *const kOnlineItems[] = {"mOnlineDateTime", "mOnlineRun",     "mOnlineRunMulti",
                                    "mOnlineMonMulti", "mOnlineDownload", "mOnlineUpload"};

QLabel *groupLabel(const QString &text, const char *name, QWidget *parent)
{
    auto *l = new QLabel(text, parent);
    l->setObjectName(QLatin1String(name));
    l->setAlignment(Qt::AlignCenter);
    l->setStyleSheet(QStringLiteral("background: #264d80; color: white; padding: 2px"));
    return l;
}

} // namespace

frmQM730_Main::frmQM730_Main(ConsoleCore &core, ScreenRegistry screens, QWidget *parent)
    : QMainWindow(parent), m_core(core), m_screens(std::move(screens))
{
    setObjectName(QStringLiteral("frmQM730_Main"));
    setWindowTitle(QStringLiteral("QM730 OV5.1.0"));

    tmrBall_Send.setObjectName(QStringLiteral("tmrBall_Send"));
    tmrBall_Recv.setObjectName(QStringLiteral("tmrBall_Recv"));
    for (QTimer *t : {&tmrBall_Send, &tmrBall_Recv}) {
        t->setParent(this);
        t->setInterval(100);
    }

    buildMenu();

    auto *central = new QWidget(this);
    auto *top = new QVBoxLayout(central);
    top->addWidget(buildButtons());

    m_statusModel = new TextTableModel(m_core.state().sprdStatus,
                                       {QStringLiteral("機號"), QStringLiteral("連線"), QStringLiteral("F/W")}, this);
    sprdStatus = new QTableView(central);
    sprdStatus->setObjectName(QStringLiteral("sprdStatus"));
    sprdStatus->setModel(m_statusModel);
    sprdStatus->setEditTriggers(QAbstractItemView::NoEditTriggers);
    sprdStatus->setSelectionMode(QAbstractItemView::NoSelection);
    sprdStatus->verticalHeader()->setDefaultSectionSize(22);
    sprdStatus->horizontalHeader()->setDefaultSectionSize(80);
    connect(sprdStatus, &QTableView::clicked, this, &frmQM730_Main::sprdStatus_Click);

    auto *middle = new QHBoxLayout;
    middle->addWidget(sprdStatus, 1);
    middle->addWidget(buildSidePanel());
    top->addLayout(middle, 1);

    picCommData = new CommMonitor(m_core.state(), central);
    picCommData->setVisible(false);
    top->addWidget(picCommData, 1);
    setCentralWidget(central);

    lblMsg_STS = new QLabel(QStringLiteral("連接確認中 ..."), this);
    lblMsg_STS->setObjectName(QStringLiteral("lblMsg_STS"));
    lblMsg_STS->setAlignment(Qt::AlignCenter);
    lblMsg_STS->setStyleSheet(
        QStringLiteral("background: #fff8c0; border: 2px solid #806000; padding: 16px; font-size: 18pt"));
    lblMsg_STS->setVisible(false);

    buildStatusBar();

    ConsoleState &s = m_core.state();
    connectLink();

    // The state after start: port closed, menus of "no machine online", the
    // system pages locked.
    for (int n = 1; n <= 6; ++n)
        m_panels[n]->setText(s.statusPanel(n));
    if (QAbstractButton *b = optPTN_Data->button(s.PtnDataOption))
        b->setChecked(true);
    portStateChanged(m_core.link().isPortOpen());
    for (const char *name : kSysPages)
        m_items[QLatin1String(name)]->setEnabled(false);
    picSys->setEnabled(false);
    if (s.CurrentMachine > 0)
        lblMC_No->setText(QString::number(s.CurrentMachine));
    showMonitorMode();
    resize(1024, 700);
}

frmQM730_Main::~frmQM730_Main() = default;

// ---------------------------------------------------------------- building

void frmQM730_Main::buildMenu()
{
    for (const MenuDef &m : menuTable()) {
        QMenu *menu = menuBar()->addMenu(QString::fromUtf8(m.caption));
        menu->setObjectName(QLatin1String(m.name));
        m_menus.insert(QLatin1String(m.name), menu);
        for (const ItemDef &i : m.items) {
            QAction *a = menu->addAction(QString::fromUtf8(i.caption));
            const QString name = QLatin1String(i.name);
            a->setObjectName(name);
            m_items.insert(name, a);
            connect(a, &QAction::triggered, this, [this, name] { chooseItem(name); });
        }
    }
    m_items[QStringLiteral("mHelpCommData")]->setCheckable(true);
}

QWidget *frmQM730_Main::buildButtons()
{
    auto *box = new QWidget(this);
    auto *row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    for (int i = 0; i < 19; ++i) {
        auto *b = new QPushButton(QString::fromUtf8(kButtons[i].caption));
        b->setObjectName(QStringLiteral("btnMenu"));
        b->setProperty("Index", i);
        const QString item = QLatin1String(kButtons[i].item);
        connect(b, &QPushButton::clicked, this, [this, item] { chooseItem(item); });
        m_buttons << b;
    }
    // One labelled group of buttons; the system group sits on picSys.
    auto group = [this](QWidget *host, const QString &title, const char *labelName, std::initializer_list<int> indexes,
                        int columns) {
        auto *grid = new QGridLayout(host);
        grid->setContentsMargins(0, 0, 0, 0);
        grid->setSpacing(2);
        grid->addWidget(groupLabel(title, labelName, host), 0, 0, 1, columns);
        int k = 0;
        for (int i : indexes) {
            m_buttons[i]->setParent(host);
            grid->addWidget(m_buttons[i], 1 + k / columns, k % columns);
            ++k;
        }
        grid->setRowStretch(grid->rowCount(), 1);
    };
    auto *online = new QWidget(box);
    group(online, QStringLiteral("連線"), "lblGrpOnline", {0, 1, 2, 17, 18}, 3);
    auto *prg = new QWidget(box);
    group(prg, QStringLiteral("程式設定"), "lblGrpPrg", {3, 4, 5}, 2);
    auto *func = new QWidget(box);
    group(func, QStringLiteral("運轉設定"), "lblGrpFunc", {6, 7}, 1);
    picSys = new QWidget(box);
    picSys->setObjectName(QStringLiteral("picSys"));
    group(picSys, QStringLiteral("系統設定"), "lblGrpSys", {8, 9, 10, 11, 12, 13, 14, 15, 16}, 5);
    row->addWidget(online);
    row->addWidget(prg);
    row->addWidget(func);
    row->addWidget(picSys, 1);
    return box;
}

QWidget *frmQM730_Main::buildSidePanel()
{
    auto *side = new QWidget(this);
    auto *col = new QVBoxLayout(side);
    col->setContentsMargins(0, 0, 0, 0);

    auto *mcRow = new QHBoxLayout;
    mcRow->addWidget(new QLabel(QStringLiteral("機號"), side));
    lblMC_No = new QLabel(side);
    lblMC_No->setObjectName(QStringLiteral("lblMC_No"));
    lblMC_No->setMinimumWidth(60);
    lblMC_No->setAlignment(Qt::AlignCenter);
    lblMC_No->setFrameShape(QFrame::Panel);
    lblMC_No->setFrameShadow(QFrame::Sunken);
    mcRow->addWidget(lblMC_No);
    col->addLayout(mcRow);

    auto *ptn = new QGroupBox(QStringLiteral("程式組接收"), side);
    ptn->setObjectName(QStringLiteral("fraPTN_Data"));
    auto *ptnLayout = new QVBoxLayout(ptn);
    optPTN_Data = new QButtonGroup(this);
    const QString options[2] = {QStringLiteral("從QM730"), QStringLiteral("從文件")};
    for (int i = 0; i < 2; ++i) {
        auto *o = new QRadioButton(options[i], ptn);
        o->setObjectName(QStringLiteral("optPTN_Data"));
        o->setProperty("Index", i);
        optPTN_Data->addButton(o, i);
        ptnLayout->addWidget(o);
    }
    connect(optPTN_Data, &QButtonGroup::idClicked, this, &frmQM730_Main::optPTN_Data_Click);
    col->addWidget(ptn);

    auto *edit = new QGroupBox(QStringLiteral("編輯狀態"), side);
    edit->setObjectName(QStringLiteral("fraEdit"));
    auto *editLayout = new QVBoxLayout(edit);
    btnCheckPass = new QPushButton(QStringLiteral("密碼確認"), edit);
    btnCheckPass->setObjectName(QStringLiteral("btnCheckPass"));
    connect(btnCheckPass, &QPushButton::clicked, this,
            [this] { frmQM730_SysPass_Chk::check(m_core.context(), this); });
    editLayout->addWidget(btnCheckPass);
    col->addWidget(edit);

    auto *lamps = new QGridLayout;
    shpSend = new ActivityLamp(side);
    shpSend->setObjectName(QStringLiteral("shpSend"));
    shpRecv = new ActivityLamp(side);
    shpRecv->setObjectName(QStringLiteral("shpRecv"));
    Label1 = new QLabel(QStringLiteral("傳送"), side);
    Label1->setObjectName(QStringLiteral("Label1"));
    Label2 = new QLabel(QStringLiteral("接收"), side);
    Label2->setObjectName(QStringLiteral("Label2"));
    for (QLabel *l : {Label1, Label2}) {
        l->installEventFilter(this);
        l->setToolTip(QStringLiteral("左鍵 +10 ms, 右鍵 -10 ms"));
    }
    lamps->addWidget(shpSend, 0, 0);
    lamps->addWidget(Label1, 0, 1);
    lamps->addWidget(shpRecv, 1, 0);
    lamps->addWidget(Label2, 1, 1);
    col->addLayout(lamps);
    col->addStretch();
    return side;
}

void frmQM730_Main::buildStatusBar()
{
    static const int widths[7] = {0, 70, 110, 60, 0, 60, 110};
    for (int n = 1; n <= 6; ++n) {
        auto *p = new QLabel(this);
        p->setObjectName(QStringLiteral("Panel%1").arg(n));
        p->setFrameShape(QFrame::Panel);
        p->setFrameShadow(QFrame::Sunken);
        if (widths[n] > 0)
            p->setMinimumWidth(widths[n]);
        statusBar()->addWidget(p, n == 4 ? 1 : 0);
        m_panels[n] = p;
    }
}

void frmQM730_Main::connectLink()
{
    ConsoleState &s = m_core.state();
    CommLink &link = m_core.link();
    connect(&s, &ConsoleState::statusPanelChanged, this, [this](int panel, const QString &text) {
        if (panel >= 1 && panel <= 6)
            m_panels[panel]->setText(text);
    });
    connect(&link, &CommLink::portStateChanged, this, &frmQM730_Main::portStateChanged);
    connect(&link, &CommLink::menusUpdated, this, &frmQM730_Main::applyOnlineMenus);
    connect(&link, &CommLink::scanMessageVisible, this, &frmQM730_Main::showScanMessage);
    connect(&link, &CommLink::machineTableChanged, this, &frmQM730_Main::refreshMachineTable);
    connect(&link, &CommLink::currentMachineShown, this,
            [this](int machine) { lblMC_No->setText(machine > 0 ? QString::number(machine) : QString()); });
    connect(&link, &CommLink::frameLogged, picCommData, &CommMonitor::comm_log_add);
    connect(&link, &CommLink::frameSent, this, [this] { lightLamp(shpSend, tmrBall_Send, TextTable::Red); });
    connect(&link, &CommLink::bytesReceived, this, [this] { lightLamp(shpRecv, tmrBall_Recv, TextTable::Green); });
    connect(&tmrBall_Send, &QTimer::timeout, this, [this] {
        tmrBall_Send.stop();
        shpSend->setFillColor(TextTable::Black);
    });
    connect(&tmrBall_Recv, &QTimer::timeout, this, [this] {
        tmrBall_Recv.stop();
        shpRecv->setFillColor(TextTable::Black);
    });
    connect(&m_core.tmrRefresh, &QTimer::timeout, this, &frmQM730_Main::refreshMachineTable);
    connect(&s, &ConsoleState::machineListChanged, this, &frmQM730_Main::showMonitorMode);

    connect(m_items[QStringLiteral("mHelpCommData")], &QAction::toggled, picCommData, &QWidget::setVisible);
}

// ---------------------------------------------------------------- menu items

void frmQM730_Main::chooseItem(const QString &name)
{
    if (name == QLatin1String("mOnlinePortOpen"))
        return mOnlinePortOpen_Click();
    if (name == QLatin1String("mExit")) {
        close();
        return;
    }
    if (name == QLatin1String("mSysLock"))
        return mSysLock_Click();
    if (name == QLatin1String("mHelpLock"))
        return mHelpLock_Click();
    if (name == QLatin1String("mHelpHelp"))
        return openBesideProgram(QStringLiteral("\\Help\\QM730_ENG.chm"), false);
    if (name == QLatin1String("mHelpManual"))
        return openBesideProgram(QStringLiteral("\\QM730.pdf"), false);
    if (name == QLatin1String("mHelpGV"))
        return openBesideProgram(QStringLiteral("\\QM730_GView.exe"), true);

    const ItemDef *def = findItem(name);
    if (!def || !def->screen)
        return; // mHelpCommData: its check mark does the work
    if (def->lockGuarded && m_core.state().SystemLocked)
        return;
    if (!m_screens.open(QLatin1String(def->screen), m_core.context(), this))
        return;
    // A screen may have changed the machine list or its table.
    refreshMachineTable();
}

void frmQM730_Main::mOnlinePortOpen_Click()
{
    // Captions and menus follow the link's portStateChanged.
    if (m_core.togglePort() == ConsoleCore::PortAction::Locked)
        showConsoleMessage(this, kLockRefusal);
}

void frmQM730_Main::portStateChanged(bool open)
{
    const QString caption = open ? kPortClose : kPortOpen;
    m_items[QStringLiteral("mOnlinePortOpen")]->setText(caption);
    m_buttons[0]->setText(caption);
    if (!open)
        applyOnlineMenus(false);
}

void frmQM730_Main::applyOnlineMenus(bool any)
{
    m_items[QStringLiteral("mSetPort")]->setEnabled(!any);
    m_items[QStringLiteral("mSetChannel")]->setEnabled(!any);
    for (const char *name : {"mPrg", "mFunc", "mSys"}) {
        QMenu *menu = m_menus[QLatin1String(name)];
        menu->setEnabled(any);
        menu->menuAction()->setEnabled(any);
    }
    for (const char *name : kOnlineItems)
        m_items[QLatin1String(name)]->setEnabled(any);
    // Screen capture exists only on PC Link.
    m_items[QStringLiteral("mOnlineScreen")]->setEnabled(any && !m_core.state().Modbus());
    for (int i = 1; i <= 18; ++i)
        m_buttons[i]->setEnabled(any);
    btnCheckPass->setEnabled(any);
}

void frmQM730_Main::mSysLock_Click()
{
    QAction *item = m_items[QStringLiteral("mSysLock")];
    bool enable;
    if (item->text() != kSysLocked) {
        item->setText(kSysLocked);
        enable = false;
    } else {
        if (!frmQM730_SysPass_Chk::check(m_core.context(), this))
            return;
        item->setText(kSysUnlocked);
        enable = true;
    }
    for (const char *name : kSysPages)
        m_items[QLatin1String(name)]->setEnabled(enable);
    picSys->setEnabled(enable);
}

void frmQM730_Main::mHelpLock_Click()
{
    QAction *item = m_items[QStringLiteral("mHelpLock")];
    ConsoleState &s = m_core.state();
    if (item->text() != kProgramUnlock) {
        item->setText(kProgramUnlock);
        s.SystemLocked = true;
    } else if (frmQM730_SysPass_Chk::check(m_core.context(), this)) {
        s.SystemLocked = false;
        item->setText(kProgramLock);
    }
}

void frmQM730_Main::openBesideProgram(const QString &relative, bool program)
{
    QString path;
    if (!shellOpenBesideProgram(m_core.state().home, relative, program, &path))
        showConsoleMessage(this, QStringLiteral("無法開啟檔案 : ") + path);
}

// ---------------------------------------------------------------- the main screen's controls

void frmQM730_Main::sprdStatus_Click(const QModelIndex &index)
{
    if (!index.isValid())
        return;
    ConsoleState &s = m_core.state();
    const TextTable &t = s.sprdStatus;
    const int row = index.row() + 1;
    const int color = t.color(2, row);
    if (color == TextTable::Green) {
        const int machine = int(t.number(1, row));
        lblMC_No->setText(t.text(1, row));
        s.setStatusPanel(4, QString());
        s.setForegroundMachine(machine);
    } else if (color == TextTable::White) {
        s.setStatusPanel(4, QStringLiteral("開啟通訊端口"));
    } else {
        s.setStatusPanel(4, QStringLiteral("不可使用的機號"));
    }
}

void frmQM730_Main::optPTN_Data_Click(int index)
{
    ConsoleState &s = m_core.state();
    s.PtnDataOption = index;
    if (!writePtnRecvOpt(s.home, index))
        WriteErrorLog(s.home, 75, QStringLiteral("Path/File access error: ") + s.path(QStringLiteral("\\PTN_Recv.OPT")),
                      QStringLiteral("optPTN_Data_Click"));
}

void frmQM730_Main::lightLamp(ActivityLamp *lamp, QTimer &timer, int color)
{
    lamp->setFillColor(color);
    if (!timer.isActive())
        timer.start();
}

void frmQM730_Main::refreshMachineTable()
{
    m_statusModel->refresh();
}

void frmQM730_Main::showMonitorMode()
{
    // The multi-chamber console belongs to multi mode.
    const bool multi = m_core.state().MultiMode;
    m_items[QStringLiteral("mOnlineRunMulti")]->setVisible(multi);
    m_buttons[17]->setVisible(multi);
    refreshMachineTable();
}

void frmQM730_Main::showScanMessage(bool visible)
{
    if (visible) {
        placeScanMessage();
        lblMsg_STS->raise();
    }
    lblMsg_STS->setVisible(visible);
}

void frmQM730_Main::placeScanMessage()
{
    lblMsg_STS->adjustSize();
    lblMsg_STS->move((width() - lblMsg_STS->width()) / 2, (height() - lblMsg_STS->height()) / 2);
}

void frmQM730_Main::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    placeScanMessage();
}

bool frmQM730_Main::eventFilter(QObject *watched, QEvent *event)
{
    // The lit time of a lamp: left button +10 ms (up to 60000), right -10 ms (down to 10).
    if ((watched == Label1 || watched == Label2) && event->type() == QEvent::MouseButtonPress) {
        QTimer &timer = watched == Label1 ? tmrBall_Send : tmrBall_Recv;
        const auto button = static_cast<QMouseEvent *>(event)->button();
        if (button == Qt::LeftButton)
            timer.setInterval(std::min(60000, timer.interval() + 10));
        else if (button == Qt::RightButton)
            timer.setInterval(std::max(10, timer.interval() - 10));
        return true;
    }
    return QMainWindow::eventFilter(watched, event);
}

void frmQM730_Main::closeEvent(QCloseEvent *event)
{
    if (m_core.state().SystemLocked) {
        showConsoleMessage(this, kLockRefusal);
        event->ignore();
        return;
    }
    if (!askConsoleYesNo(this, QStringLiteral("退出?"), QStringLiteral("確認"))) {
        event->ignore();
        return;
    }
    m_core.shutdown();
    event->accept();
}
