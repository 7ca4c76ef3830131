#include "frmQM730_RunSimple.h"
#include "ConsoleState.h"
#include "Dictionary.h"
#include "Encodings.h"
#include "Files.h"
#include "LiveStatus.h"
#include "ProgramImage.h"
#include "Recorder.h"
#include "RunLogger.h"
#include "RunPictures.h"
#include "ButtonColour.h"
#include "EntryField.h"
#include "LampStrip.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include "ShellOpen.h"
#include "SaveSettingsPanel.h"
#include "TrendChart.h"
#include <QCheckBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPushButton>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

const QString ScreenName = QStringLiteral("frmQM730_RunSimple");
const QString GraphViewer = QStringLiteral("QM730_GView.exe");

// The A/S strip of the legacy lamp panel: pattern and system alarms side by side.
constexpr BitField AlarmStrip{Rcv::AlarmBits, 0, 8, "A/S"};

QString twoDigits(qint64 n)
{
    return formatNumber(double(n), u"00");
}

} // namespace

// ---- Construction -----------------------------------------------------------

frmQM730_RunSimple::frmQM730_RunSimple(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_state(context.state), m_logger(context.recorder.runLog()),
      m_clock([] { return QDateTime::currentDateTime(); })
{
    setObjectName(ScreenName);
    setWindowTitle(QStringLiteral("單機操作"));
    buildControls();
    load();
}

frmQM730_RunSimple::~frmQM730_RunSimple()
{
    unload();
}

QStringList frmQM730_RunSimple::seriesNames()
{
    return {QStringLiteral("溫度 SV"), QStringLiteral("濕度 SV"), QStringLiteral("溫度 PV"), QStringLiteral("濕度 PV")};
}

void frmQM730_RunSimple::setClock(std::function<QDateTime()> clock)
{
    m_clock = std::move(clock);
}

QDateTime frmQM730_RunSimple::now() const
{
    return m_clock();
}

void frmQM730_RunSimple::buildControls()
{
    // Top bar: the views, the link smile, the clock.
    static const char *views[] = {"控制", "輸出", "曲線"};
    auto *top = new QHBoxLayout;
    for (int i = 0; i < 3; ++i) {
        QPushButton *b = named(new QPushButton(QString::fromUtf8(views[i])), QStringLiteral("btnSelectView"));
        b->setProperty("Index", i);
        b->setMinimumWidth(80);
        connect(b, &QPushButton::clicked, this, [this, i] { selectView(i); });
        top->addWidget(b);
        btnSelectView[size_t(i)] = b;
    }
    top->addStretch(1);
    auto *machine = named(new QLabel(QStringLiteral("機號 : %1").arg(m_state.CurrentMachine, 3, 10, QLatin1Char('0'))),
                          QStringLiteral("lblMachineNo"));
    top->addWidget(machine);
    Image1 = named(new QLabel, QStringLiteral("Image1"));
    Image1->setFixedSize(32, 32);
    top->addWidget(Image1);
    btnDate = named(new QPushButton, QStringLiteral("btnDate"));
    btnDate->setFlat(true);
    btnDate->setFocusPolicy(Qt::NoFocus);
    btnDate->setMinimumWidth(170);
    top->addWidget(btnDate);

    // The views share one place; the run buttons stay beside them in every view.
    m_pages = named(new QStackedWidget, QStringLiteral("picViews"));
    m_pages->addWidget(buildControlPage());
    m_pages->addWidget(buildStatusPage());
    m_pages->addWidget(buildGraphPage());

    auto *runColumn = new QVBoxLayout;
    btnRun = named(new QPushButton(QStringLiteral("運轉")), QStringLiteral("btnRun"));
    btnStop = named(new QPushButton(QStringLiteral("停止")), QStringLiteral("btnStop"));
    for (QPushButton *b : {btnRun, btnStop}) {
        b->setMinimumSize(110, 56);
        QFont f = b->font();
        f.setPixelSize(20);
        f.setBold(true);
        b->setFont(f);
        runColumn->addWidget(b);
    }
    connect(btnRun, &QPushButton::clicked, this, [this] { postRunWord(Rrp::Run, 1); });
    connect(btnStop, &QPushButton::clicked, this, [this] { postRunWord(Rrp::Run, 0); });

    // Reservation panel: shown while a reserved start is pending.
    picPreDate = named(new QFrame, QStringLiteral("picPreDate"));
    static_cast<QFrame *>(picPreDate)->setFrameShape(QFrame::Box);
    picPreDate->setAutoFillBackground(true);
    auto *pre = new QVBoxLayout(picPreDate);
    lblPreMsg = named(new QLabel(QStringLiteral("預約運轉")), QStringLiteral("lblPreMsg"));
    lblPreMsg->setAlignment(Qt::AlignCenter);
    lblPreMsg->setAutoFillBackground(true);
    QFont pf = lblPreMsg->font();
    pf.setBold(true);
    pf.setPixelSize(16);
    lblPreMsg->setFont(pf);
    lblReservedDate = named(new QLabel, QStringLiteral("lblReservedDate"));
    lblReservedTime = named(new QLabel, QStringLiteral("lblReservedTime"));
    for (QLabel *l : {lblReservedDate, lblReservedTime})
        l->setAlignment(Qt::AlignCenter);
    pre->addWidget(lblPreMsg);
    pre->addWidget(lblReservedDate);
    pre->addWidget(lblReservedTime);
    picPreDate->hide();
    runColumn->addStretch(1);
    runColumn->addWidget(picPreDate);

    auto *middle = new QHBoxLayout;
    middle->addWidget(m_pages, 1);
    middle->addLayout(runColumn);

    // Bottom: the data-save settings in force, and closing.
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(buildSaveSettings(), 1);
    btnClose = named(new QPushButton(QStringLiteral("關閉")), QStringLiteral("btnClose"));
    btnClose->setMinimumSize(90, 36);
    connect(btnClose, &QPushButton::clicked, this, &QDialog::reject);
    bottom->addWidget(btnClose, 0, Qt::AlignBottom);

    auto *main = new QVBoxLayout(this);
    main->addLayout(top);
    main->addLayout(middle, 1);
    main->addLayout(bottom);
    resize(900, 640);
    noDefaultButtons(this);

    tmrDisp.setObjectName(QStringLiteral("tmrDisp"));
    tmrDisp.setInterval(1000);
    connect(&tmrDisp, &QTimer::timeout, this, &frmQM730_RunSimple::tmrDisp_Timer);
    tmrDispGraph.setObjectName(QStringLiteral("tmrDispGraph"));
    tmrDispGraph.setInterval(1000);
    connect(&tmrDispGraph, &QTimer::timeout, this, &frmQM730_RunSimple::tmrDispGraph_Timer);
    tmrPreDate.setObjectName(QStringLiteral("tmrPreDate"));
    tmrPreDate.setInterval(500);
    connect(&tmrPreDate, &QTimer::timeout, this, &frmQM730_RunSimple::tmrPreDate_Timer);
    setUpRefreshTimer(tmrRefresh);
    connect(&tmrRefresh, &QTimer::timeout, this, &frmQM730_RunSimple::tmrRefresh_Timer);
}

QWidget *frmQM730_RunSimple::buildControlPage()
{
    auto *page = named(new QWidget, QStringLiteral("picControl"));
    auto *v = new QVBoxLayout(page);

    // Present values and setpoints, or the temperature-only panel over them.
    m_valueStack = new QStackedWidget;
    auto *values = named(new QWidget, QStringLiteral("picValues"));
    auto *vh = new QHBoxLayout(values);
    vh->setContentsMargins(0, 0, 0, 0);
    auto chamberBox = [this](const QString &title, QLabel *&pv, QLabel *&pic, const QString &pvName,
                             const QString &picName, const QColor &colour, QLabel *&svCaption,
                             const QString &svCaptionName, const QString &svText, EntryField *&sv,
                             const QString &svName, EntryField *&pid, const QString &pidName) {
        auto *box = new QGroupBox(title);
        auto *g = new QGridLayout(box);
        pv = bigValue(pvName, colour);
        pic = named(new QLabel, picName);
        pic->setFixedSize(32, 32);
        g->addWidget(pv, 0, 0, 1, 2);
        g->addWidget(pic, 0, 2);
        svCaption = named(caption(svText), svCaptionName);
        sv = new EntryField(svName);
        g->addWidget(svCaption, 1, 0);
        g->addWidget(sv, 1, 1);
        pid = new EntryField(pidName);
        pid->setMaximumWidth(60);
        g->addWidget(caption(QStringLiteral("PID #")), 2, 0);
        g->addWidget(pid, 2, 1, Qt::AlignLeft);
        g->setColumnStretch(1, 1);
        return box;
    };
    vh->addWidget(chamberBox(QStringLiteral("溫度"), lblTPV, picUPDN_T, QStringLiteral("lblTPV"),
                             QStringLiteral("picUPDN_T"), QColor(255, 80, 60), lblTSV_T, QStringLiteral("lblTSV_T"),
                             QStringLiteral("溫度SV"), txtTSV, QStringLiteral("txtTSV"), txtPID_T,
                             QStringLiteral("txtPID_T")));
    vh->addWidget(chamberBox(QStringLiteral("濕度"), lblHPV, picUPDN_H, QStringLiteral("lblHPV"),
                             QStringLiteral("picUPDN_H"), QColor(80, 170, 255), lblHSV_T, QStringLiteral("lblHSV_T"),
                             QStringLiteral("濕度SV"), txtHSV, QStringLiteral("txtHSV"), txtPID_H,
                             QStringLiteral("txtPID_H")));
    m_valueStack->addWidget(values);

    picTOnly_Ctrl = named(new QGroupBox(QStringLiteral("TEMP.")), QStringLiteral("picTOnly_Ctrl"));
    auto *tv = new QVBoxLayout(picTOnly_Ctrl);
    lblTOnly_CtrlPV = bigValue(QStringLiteral("lblTOnly_CtrlPV"), QColor(255, 80, 60));
    tv->addWidget(captionRow(QStringLiteral("PV"), lblTOnly_CtrlPV));
    txtTOnly_Ctrl_SV = new EntryField(QStringLiteral("txtTOnly_Ctrl_SV"));
    txtTOnly_Ctrl_PTN = new EntryField(QStringLiteral("txtTOnly_Ctrl_PTN"));
    txtTOnly_Ctrl_SEG = new EntryField(QStringLiteral("txtTOnly_Ctrl_SEG"));
    m_tonlySvRow = captionRow(QStringLiteral("TEMP.SV"), txtTOnly_Ctrl_SV);
    m_tonlyPtnRow = captionRow(QStringLiteral("PTN"), txtTOnly_Ctrl_PTN);
    m_tonlySegRow = captionRow(QStringLiteral("SEG"), txtTOnly_Ctrl_SEG);
    tv->addWidget(m_tonlySvRow);
    tv->addWidget(m_tonlyPtnRow);
    tv->addWidget(m_tonlySegRow);
    tv->addStretch(1);
    m_valueStack->addWidget(picTOnly_Ctrl);
    v->addWidget(m_valueStack);

    // Control mode and run time.
    auto *mode = new QHBoxLayout;
    mode->addWidget(new QLabel(QStringLiteral("運轉模式")));
    static const char *modes[] = {"程式", "定值"};
    for (int i = 0; i < 2; ++i) {
        QPushButton *b = named(new QPushButton(QString::fromUtf8(modes[i])), QStringLiteral("btnRunMode"));
        b->setProperty("Index", i);
        b->setMinimumWidth(80);
        // A write of the run method row of the parameter block.
        connect(b, &QPushButton::clicked, this,
                [this, i] { m_ctx.requests().writeParameter(Param::btnRun_Method, quint16(i)); });
        mode->addWidget(b);
        btnRunMode[size_t(i)] = b;
    }
    mode->addStretch(1);
    mode->addWidget(new QLabel(QStringLiteral("運轉時間")));
    lblRunTime = valueBox(QStringLiteral("lblRunTime"), 110);
    mode->addWidget(lblRunTime);
    v->addLayout(mode);

    // The tab of the present mode.
    SSTab1 = named(new QTabWidget, QStringLiteral("SSTab1"));
    auto *prog = new QWidget;
    auto *pg = new QGridLayout(prog);
    txtS_PTN = new EntryField(QStringLiteral("txtS_PTN"));
    txtS_SEG = new EntryField(QStringLiteral("txtS_SEG"));
    txtS_PTN->setMaximumWidth(70);
    txtS_SEG->setMaximumWidth(70);
    pg->addWidget(caption(QStringLiteral("程式組別")), 0, 0);
    pg->addWidget(txtS_PTN, 0, 1);
    lblPTN_Name = named(new QLabel, QStringLiteral("lblPTN_Name"));
    lblPTN_Name->setFrameShape(QFrame::Panel);
    lblPTN_Name->setFrameShadow(QFrame::Sunken);
    lblPTN_Name->setMinimumWidth(180);
    pg->addWidget(lblPTN_Name, 0, 2, 1, 2);
    pg->addWidget(caption(QStringLiteral("程式段數")), 1, 0);
    pg->addWidget(txtS_SEG, 1, 1);
    lblRunPTN_LBL = named(caption(QStringLiteral("運轉程式")), QStringLiteral("lblRunPTN_LBL"));
    lblRunSEG_LBL = named(caption(QStringLiteral("運轉段數")), QStringLiteral("lblRunSEG_LBL"));
    lblRunPTN = valueBox(QStringLiteral("lblRunPTN"), 60);
    lblRunSEG = valueBox(QStringLiteral("lblRunSEG"), 60);
    pg->addWidget(lblRunPTN_LBL, 2, 0);
    pg->addWidget(lblRunPTN, 2, 1);
    pg->addWidget(lblRunSEG_LBL, 2, 2);
    pg->addWidget(lblRunSEG, 2, 3);
    btnStep = named(new QPushButton(QStringLiteral("跳段")), QStringLiteral("btnStep"));
    btnHold = named(new QPushButton(QStringLiteral("保持")), QStringLiteral("btnHold"));
    pg->addWidget(btnStep, 3, 1);
    pg->addWidget(btnHold, 3, 2);
    pg->setColumnStretch(4, 1);
    SSTab1->addTab(prog, QStringLiteral("程式運轉"));

    auto *fixed = new QWidget;
    auto *fg = new QHBoxLayout(fixed);
    btnTAT = named(new QPushButton(QStringLiteral("溫度 AT")), QStringLiteral("btnTAT"));
    btnHAT = named(new QPushButton(QStringLiteral("濕度 AT")), QStringLiteral("btnHAT"));
    fg->addWidget(btnTAT);
    fg->addWidget(btnHAT);
    fg->addStretch(1);
    SSTab1->addTab(fixed, QStringLiteral("定值運轉"));
    v->addWidget(SSTab1);
    v->addStretch(1);

    connect(btnStep, &QPushButton::clicked, this, [this] { toggle(btnStep, Rrp::Step); });
    connect(btnHold, &QPushButton::clicked, this, [this] { toggle(btnHold, Rrp::Hold); });
    connect(btnTAT, &QPushButton::clicked, this, [this] { toggle(btnTAT, Rrp::TempAT); });
    connect(btnHAT, &QPushButton::clicked, this, [this] { toggle(btnHAT, Rrp::HumiAT); });

    // The set-value fields: each commits one run word of the machine. The
    // temperature-only fields share the edit flag of the field they stand for.
    using Range = EntryBinding::Range;
    const Range temperature{-100, 200, {}}, humidity{0, 100, {}}, pid{1, 16, {}}, segment{1, 100, {}};
    bindRunField(TSV, txtTSV, Rrp::TempTargetSV, Encoding::T100, temperature);
    bindRunField(TSV, txtTOnly_Ctrl_SV, Rrp::TempTargetSV, Encoding::T100, temperature);
    bindRunField(HSV, txtHSV, Rrp::HumiTargetSV, Encoding::X10, humidity);
    bindRunField(PID_T, txtPID_T, Rrp::TempPID, Encoding::INT, pid);
    bindRunField(PID_H, txtPID_H, Rrp::HumiPID, Encoding::INT, pid);
    bindRunField(S_SEG, txtS_SEG, Rrp::StartSegment, Encoding::INT, segment);
    bindRunField(S_SEG, txtTOnly_Ctrl_SEG, Rrp::StartSegment, Encoding::INT, segment);
    for (EntryField *f : {txtS_PTN, txtTOnly_Ctrl_PTN}) {
        bindRunField(S_PTN, f, Rrp::StartPattern, Encoding::INT, {});
        // The highest pattern number follows the firmware of the machine.
        m_edits.back()->setRange([this]() -> std::optional<Range> {
            return Range{1, double(m_state.PatternCount()), {}};
        });
    }
    return page;
}

QWidget *frmQM730_RunSimple::buildStatusPage()
{
    picStatus = named(new QWidget, QStringLiteral("picStatus"));
    auto *v = new QVBoxLayout(picStatus);

    // The values of both chambers, row by row.
    m_statusStack = new QStackedWidget;
    auto *values = new QWidget;
    auto *vh = new QHBoxLayout(values);
    vh->setContentsMargins(0, 0, 0, 0);
    auto block = [](const QString &title, const QString &suffix, QLabel *&pv, QLabel *&nsv, QLabel *&sv,
                    QLabel *&mv, QLabel *&pid, QWidget *&nsvRow) {
        auto *box = new QGroupBox(title);
        auto *b = new QVBoxLayout(box);
        pv = valueBox(QStringLiteral("lblPV_") + suffix);
        nsv = valueBox(QStringLiteral("lblNSV_") + suffix);
        sv = valueBox(QStringLiteral("lblSV_") + suffix);
        mv = valueBox(QStringLiteral("lblMV_") + suffix);
        pid = valueBox(QStringLiteral("lblPID_") + suffix);
        b->addWidget(captionRow(QStringLiteral("PV"), pv));
        nsvRow = captionRow(QStringLiteral("現在SV"), nsv);
        b->addWidget(nsvRow);
        b->addWidget(captionRow(QStringLiteral("目標SV"), sv));
        b->addWidget(captionRow(QStringLiteral("控制輸出"), mv));
        b->addWidget(captionRow(QStringLiteral("PID #"), pid));
        b->addStretch(1);
        return box;
    };
    vh->addWidget(block(QStringLiteral("溫度"), QStringLiteral("T"), lblPV_T, lblNSV_T, lblSV_T, lblMV_T, lblPID_T,
                        m_rowNSV_T));
    vh->addWidget(block(QStringLiteral("濕度"), QStringLiteral("H"), lblPV_H, lblNSV_H, lblSV_H, lblMV_H, lblPID_H,
                        m_rowNSV_H));
    m_statusStack->addWidget(values);

    picTOnly_Sts = named(new QGroupBox(QStringLiteral("TEMP.")), QStringLiteral("picTOnly_Sts"));
    auto *tb = new QVBoxLayout(picTOnly_Sts);
    lblTonly_Sts_PV = valueBox(QStringLiteral("lblTonly_Sts_PV"));
    lblTonly_Sts_NSV = valueBox(QStringLiteral("lblTonly_Sts_NSV"));
    lblTonly_Sts_TSV = valueBox(QStringLiteral("lblTonly_Sts_TSV"));
    lblTonly_Sts_MV = valueBox(QStringLiteral("lblTonly_Sts_MV"));
    lblTonly_Sts_PID = valueBox(QStringLiteral("lblTonly_Sts_PID"));
    tb->addWidget(captionRow(QStringLiteral("PV"), lblTonly_Sts_PV));
    m_tonlyNsvRow = captionRow(QStringLiteral("現在SV"), lblTonly_Sts_NSV);
    tb->addWidget(m_tonlyNsvRow);
    tb->addWidget(captionRow(QStringLiteral("目標SV"), lblTonly_Sts_TSV));
    tb->addWidget(captionRow(QStringLiteral("控制輸出"), lblTonly_Sts_MV));
    tb->addWidget(captionRow(QStringLiteral("PID #"), lblTonly_Sts_PID));
    tb->addStretch(1);
    m_statusStack->addWidget(picTOnly_Sts);
    v->addWidget(m_statusStack);

    // Ramp indicators and counters.
    auto *mid = new QHBoxLayout;
    const QColor lampGreen(60, 230, 60), lampRed(255, 70, 60), lampYellow(255, 220, 60);
    sprdUPDN = new LampStrip(QStringLiteral("sprdUPDN"), 1, lampYellow);
    sprdSOAK = new LampStrip(QStringLiteral("sprdSOAK"), 1, lampYellow);
    sprdWAIT = new LampStrip(QStringLiteral("sprdWAIT"), 1, lampYellow);
    auto *ramp = new QGridLayout;
    int c = 0;
    for (auto [text, strip] : {std::pair{"UP/DN", sprdUPDN}, std::pair{"SOAK", sprdSOAK}, std::pair{"WAIT", sprdWAIT}}) {
        ramp->addWidget(new QLabel(QString::fromLatin1(text)), 0, c, Qt::AlignCenter);
        ramp->addWidget(strip, 1, c, Qt::AlignCenter);
        ++c;
    }
    mid->addLayout(ramp);
    mid->addSpacing(20);
    auto *times = new QGridLayout;
    lblRunTime_STS = valueBox(QStringLiteral("lblRunTime_STS"), 110);
    lblSeg_Time = valueBox(QStringLiteral("lblSeg_Time"), 150);
    lblPTN_SEG = valueBox(QStringLiteral("lblPTN_SEG"));
    lblPTN_RPT = valueBox(QStringLiteral("lblPTN_RPT"));
    lblSEG_RPT = valueBox(QStringLiteral("lblSEG_RPT"));
    times->addWidget(caption(QStringLiteral("運轉時間")), 0, 0);
    times->addWidget(lblRunTime_STS, 0, 1);
    times->addWidget(caption(QStringLiteral("段時間")), 0, 2);
    times->addWidget(lblSeg_Time, 0, 3);
    times->addWidget(caption(QStringLiteral("程式 : 段")), 1, 0);
    times->addWidget(lblPTN_SEG, 1, 1);
    times->addWidget(caption(QStringLiteral("程式重複")), 1, 2);
    times->addWidget(lblPTN_RPT, 1, 3);
    times->addWidget(caption(QStringLiteral("段重複")), 2, 2);
    times->addWidget(lblSEG_RPT, 2, 3);
    mid->addLayout(times);
    mid->addStretch(1);
    v->addLayout(mid);

    // The lamp panel: six captions, each with the strips of its row.
    auto *panel = named(new QGroupBox(QStringLiteral("狀態")), QStringLiteral("picLamps"));
    // Strips belong to the panel even while its arrangement leaves them out.
    sprdIS = new LampStrip(QStringLiteral("sprdIS"), Lamps::IS.count, lampGreen, panel);
    sprdTON = new LampStrip(QStringLiteral("sprdTON"), Lamps::TON.count, lampGreen, panel);
    sprdHON = new LampStrip(QStringLiteral("sprdHON"), Lamps::HON.count, lampGreen, panel);
    sprdTS = new LampStrip(QStringLiteral("sprdTS"), Lamps::TS.count, lampGreen, panel);
    sprdDS = new LampStrip(QStringLiteral("sprdDS"), Lamps::DS.count, lampGreen, panel);
    sprdDR = new LampStrip(QStringLiteral("sprdDR"), Lamps::DR.count, lampGreen, panel);
    sprdPAS = new LampStrip(QStringLiteral("sprdPAS"), Lamps::PALM.count, lampRed, panel);
    sprdSAS = new LampStrip(QStringLiteral("sprdSAS"), Lamps::SALM.count, lampRed, panel);
    sprdAS = new LampStrip(QStringLiteral("sprdAS"), AlarmStrip.count, lampRed, panel);
    sprdDI = new LampStrip(QStringLiteral("sprdDI"), Lamps::DI.count, lampGreen, panel);
    auto *pg = new QGridLayout(panel);
    for (int i = 0; i < 6; ++i) {
        QLabel *l = named(new QLabel, QStringLiteral("lblSTS_TT"));
        l->setProperty("Index", i);
        l->setMinimumWidth(50);
        l->setCursor(Qt::PointingHandCursor);
        l->setToolTip(QStringLiteral("按一下切換頁面"));
        l->installEventFilter(this);
        lblSTS_TT[size_t(i)] = l;
        auto *strips = new QHBoxLayout;
        strips->setContentsMargins(0, 0, 0, 0);
        m_lampRows[size_t(i)] = strips;
        pg->addWidget(l, i, 0);
        pg->addLayout(strips, i, 1);
    }
    pg->setColumnStretch(2, 1);
    v->addWidget(panel);
    v->addStretch(1);
    return picStatus;
}

QWidget *frmQM730_RunSimple::buildGraphPage()
{
    picGraph = named(new QWidget, QStringLiteral("picGraph"));
    auto *v = new QVBoxLayout(picGraph);
    auto *bar = new QHBoxLayout;
    static const char *labelNames[] = {"lblG_SV_T", "lblG_SV_H", "lblG_PV_T", "lblG_PV_H"};
    static const QColor colours[] = {QColor(220, 120, 40), QColor(40, 150, 200), QColor(200, 20, 20), QColor(20, 60, 200)};
    const QStringList names = seriesNames();
    for (int s = 0; s < TrendChart::SeriesCount; ++s) {
        QLabel *l = named(new QLabel(names[s]), QString::fromLatin1(labelNames[s]));
        QPalette p = l->palette();
        p.setColor(QPalette::WindowText, colours[s]);
        l->setPalette(p);
        l->setMinimumWidth(110);
        bar->addWidget(l);
        m_graphLabels[size_t(s)] = l;
    }
    bar->addStretch(1);
    bar->addWidget(new QLabel(QStringLiteral("區間")));
    txtGrpInterval = new EntryField(QStringLiteral("txtGrpInterval"));
    txtGrpInterval->setText(QStringLiteral("1"));
    txtGrpInterval->setMaximumWidth(40);
    bar->addWidget(txtGrpInterval);
    bar->addWidget(new QLabel(QStringLiteral("秒")));
    chb3D = named(new QCheckBox(QStringLiteral("3D")), QStringLiteral("chb3D"));
    chbScroll = named(new QCheckBox(QStringLiteral("滾動條")), QStringLiteral("chbScroll"));
    bar->addWidget(chb3D);
    bar->addWidget(chbScroll);
    v->addLayout(bar);

    m_graph = named(new TrendChart, QStringLiteral("TrendChart"));
    m_graph->setTitles(QStringLiteral("溫度 (℃)"), QStringLiteral("濕度 (%RH)"), QStringLiteral("時間"));
    m_graph->setLegends(names);
    v->addWidget(m_graph, 1);

    auto *interval = new EntryBinding(txtGrpInterval, this);
    interval->setRange(EntryBinding::Range{1, 60, {}});
    interval->onCommit([this](const QString &, const QString &text) {
        tmrDispGraph.setInterval(leadingInt(text) * 1000);
    });
    connect(chb3D, &QCheckBox::toggled, m_graph, &TrendChart::set3D);
    connect(chbScroll, &QCheckBox::stateChanged, this, [this] { m_graph->setScrollBarOn(!m_graph->isScrollBarOn()); });
    return picGraph;
}

QWidget *frmQM730_RunSimple::buildSaveSettings()
{
    m_saveSettings = new SaveSettingsPanel(m_ctx, this, tmrRefresh_CFG);
    btnGrpView = named(new QPushButton(QStringLiteral("GView")), QStringLiteral("btnGrpView"));
    btnGrpView->setToolTip(QStringLiteral("Graph Viewer"));
    m_saveSettings->row()->addWidget(btnGrpView);
    connect(btnGrpView, &QPushButton::clicked, this, &frmQM730_RunSimple::openGraphViewer);
    return m_saveSettings;
}

// ---- Load and unload ----------------------------------------------------------

void frmQM730_RunSimple::load()
{
    m_state.SingleConsoleOpen = true;
    m_loaded = true;
    m_refresh = std::make_unique<RefreshRegistration>(m_state, &tmrRefresh, RefreshRegistration::Screen);
    m_slot = m_state.slotOfMachine(m_state.CurrentMachine);
    m_saveSettings->fill();
    selectView(0);
    for (LampStrip *s : {sprdIS, sprdTON, sprdHON, sprdTS, sprdDS, sprdDR, sprdPAS, sprdSAS, sprdAS, sprdDI, sprdUPDN,
                         sprdSOAK, sprdWAIT})
        s->blank();
    m_graphPoints = 0;
    m_graph->clear();
    m_graph->setLegends(seriesNames());
    m_graph->refresh();
    btnDate->setText(now().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
    drawSmile(online());
    // The tables hold the last values known even when the link is down.
    if (m_slot >= 0)
        redraw();
    drawLampPanel();
    tmrDisp.start();
    tmrDispGraph.start();
}

void frmQM730_RunSimple::unload()
{
    if (!m_loaded)
        return;
    m_loaded = false;
    m_state.SingleConsoleOpen = false;
    for (QTimer *t : {&tmrDisp, &tmrDispGraph, &tmrPreDate, &tmrRefresh, &tmrRefresh_CFG})
        t->stop();
    m_refresh.reset();
}

void frmQM730_RunSimple::done(int result)
{
    unload();
    QDialog::done(result);
}

// ---- Timers ---------------------------------------------------------------------

void frmQM730_RunSimple::tmrDisp_Timer()
{
    tmrDisp.stop();
    btnDate->setText(now().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
    const bool good = online();
    drawSmile(good);
    // With the link lost the screen keeps the last values and the graph waits.
    if (good) {
        redraw();
        graphStep();
    }
    if (m_loaded)
        tmrDisp.start();
}

void frmQM730_RunSimple::tmrDispGraph_Timer()
{
    m_graphTick = true;
}

void frmQM730_RunSimple::tmrPreDate_Timer()
{
    tmrPreDate.stop();
    m_preBlink = !m_preBlink;
    const QColor panel = m_preBlink ? QColor(255, 220, 0) : QColor(200, 0, 0);
    const QColor text = m_preBlink ? QColor(200, 0, 0) : QColor(255, 220, 0);
    QPalette p = picPreDate->palette();
    p.setColor(QPalette::Window, panel);
    picPreDate->setPalette(p);
    QPalette l = lblPreMsg->palette();
    l.setColor(QPalette::Window, text);
    l.setColor(QPalette::WindowText, panel);
    lblPreMsg->setPalette(l);
    if (m_loaded && m_state.ParamChanged)
        tmrPreDate.start();
}

void frmQM730_RunSimple::tmrRefresh_Timer()
{
    // The once-a-second redraw shows fresh data; the link's refresh only needs an owner.
    tmrRefresh.stop();
}

void frmQM730_RunSimple::tmrRefresh_CFG_Timer()
{
    m_saveSettings->refreshTick();
}

// ---- Cells ------------------------------------------------------------------------

std::optional<qint64> frmQM730_RunSimple::rrp(int row) const
{
    const TextTable &t = m_state.image.sprdRRP;
    if (m_slot < 0 || t.isEmpty(m_slot + 1, row))
        return std::nullopt;
    return t.number(m_slot + 1, row);
}

std::optional<qint64> frmQM730_RunSimple::rcv(int row) const
{
    const TextTable &t = m_state.image.sprdRCV;
    if (m_slot < 0 || t.isEmpty(m_slot + 1, row))
        return std::nullopt;
    return t.number(m_slot + 1, row);
}

std::optional<qint64> frmQM730_RunSimple::up(int row) const
{
    if (row <= 0 || ReadRow(m_state.image, row).isEmpty())
        return std::nullopt;
    return ReadRowNumber(m_state.image, row);
}

bool frmQM730_RunSimple::online() const
{
    return m_slot >= 0 && m_slot < m_state.machines.size() && m_state.machines[m_slot].MachineOnline;
}

void frmQM730_RunSimple::drawSmile(bool good)
{
    Image1->setPixmap(RunPictures::load(good ? RunPictures::SmileOk : RunPictures::SmileNg));
    Image1->setToolTip(good ? QStringLiteral("通訊 : 良好") : QStringLiteral("通訊 : 不良"));
}

// ---- The redraw ---------------------------------------------------------------------
// A cell that has not been read leaves its controls as they are.

void frmQM730_RunSimple::redraw()
{
    drawRunStatus();
    drawControlMode();
    drawTempOnlyView();
    drawSetpoints();
    drawSvRows();
    drawPresentValues();
    drawRampFlags();
    drawLamps();
    drawLampPanel();
    drawTimes();
    drawButtonColours();
    drawModeVisibility();
    drawPatternName();
    drawReservation();
}

void frmQM730_RunSimple::drawRunStatus()
{
    const auto run = rrp(Rrp::Run);
    if (!run)
        return;
    // Any other value than 0 and 1 is no news: the buttons and ChamberRunning stay.
    if (*run == 0) {
        LitButton::setLit(btnStop, true);
        LitButton::setLit(btnRun, false);
        m_running = false;
    } else if (*run == 1) {
        LitButton::setLit(btnRun, true);
        LitButton::setLit(btnStop, false);
        m_running = true;
    }
}

void frmQM730_RunSimple::drawControlMode()
{
    const auto mode = rcv(Rcv::RunMode);
    if (!mode)
        return;
    m_fixedMode = *mode != 0;
    txtTSV->setReadOnly(!m_fixedMode);
    txtHSV->setReadOnly(!m_fixedMode);
    LitButton::setLit(btnRunMode[0], !m_fixedMode);
    LitButton::setLit(btnRunMode[1], m_fixedMode);
    const int tab = m_fixedMode ? 1 : 0;
    if (SSTab1->currentIndex() != tab || !SSTab1->isTabVisible(tab) || SSTab1->isTabVisible(1 - tab)) {
        SSTab1->setTabVisible(tab, true);
        SSTab1->setCurrentIndex(tab);
        SSTab1->setTabVisible(1 - tab, false);
    }
}

void frmQM730_RunSimple::drawTempOnlyView()
{
    const double version = m_state.FirmwareVersion();
    if (IsCurrentLayout(version)) {
        // A chamber without a humidity sensor is a temperature-only chamber.
        if (const auto sensor = up(RowOf(Param::btnSensorType2, 0, version)))
            m_tempOnly = *sensor == 0;
    } else {
        m_tempOnly = false;
    }
    m_valueStack->setCurrentWidget(m_tempOnly ? picTOnly_Ctrl : m_valueStack->widget(0));
    m_statusStack->setCurrentWidget(m_tempOnly ? picTOnly_Sts : m_statusStack->widget(0));
    m_tonlySvRow->setVisible(m_fixedMode);
    m_tonlyPtnRow->setVisible(!m_fixedMode);
    m_tonlySegRow->setVisible(!m_fixedMode);
    m_tonlyNsvRow->setVisible(!m_fixedMode);
}

void frmQM730_RunSimple::drawSetpoints()
{
    const int decimals = m_state.TempDecimals();
    if (!editFlag(TSV)) {
        if (const auto w = m_running ? rcv(Rcv::TempSV) : rrp(Rrp::TempTargetSV)) {
            const QString text = tempSvText(*w, decimals);
            setTextIfChanged(txtTSV, text);
            setTextIfChanged(txtTOnly_Ctrl_SV, text);
        }
    }
    if (!editFlag(HSV)) {
        if (const auto w = m_running ? rcv(Rcv::HumiSV) : rrp(Rrp::HumiTargetSV))
            setTextIfChanged(txtHSV, humiSvText(*w));
    }
    if (!editFlag(PID_T))
        if (const auto w = rrp(Rrp::TempPID))
            setTextIfChanged(txtPID_T, QString::number(*w));
    if (!editFlag(PID_H))
        if (const auto w = rrp(Rrp::HumiPID))
            setTextIfChanged(txtPID_H, QString::number(*w));
    if (!editFlag(S_PTN))
        if (const auto w = rrp(Rrp::StartPattern)) {
            setTextIfChanged(txtS_PTN, QString::number(*w));
            setTextIfChanged(txtTOnly_Ctrl_PTN, QString::number(*w));
        }
    if (!editFlag(S_SEG))
        if (const auto w = rrp(Rrp::StartSegment)) {
            setTextIfChanged(txtS_SEG, QString::number(*w));
            setTextIfChanged(txtTOnly_Ctrl_SEG, QString::number(*w));
        }
}

void frmQM730_RunSimple::drawSvRows()
{
    // A fixed run without a present-SV row: the target and output rows move up.
    const double version = m_state.FirmwareVersion();
    const auto t = up(RowOf(Param::txtT_SV, 0, version));
    const auto h = up(RowOf(Param::txtH_SV, 0, version));
    m_rowNSV_T->setVisible(!(m_fixedMode && t && *t == 0));
    m_rowNSV_H->setVisible(!(m_fixedMode && h && *h == 0));
}

void frmQM730_RunSimple::drawPresentValues()
{
    const int decimals = m_state.TempDecimals();
    const QStringList names = seriesNames();
    auto graphLabel = [&](int series, const QString &text) {
        m_graphTexts[size_t(series)] = text;
        setTextIfChanged(m_graphLabels[size_t(series)], names[series] + QStringLiteral(" : ") + text);
    };

    if (const auto w = rcv(Rcv::TempSV)) {
        const QString text = tempSvText(*w, decimals);
        setTextIfChanged(lblNSV_T, text);
        setTextIfChanged(lblTonly_Sts_NSV, text);
        graphLabel(0, text);
    }
    if (const auto w = rrp(Rrp::TempTargetSV)) {
        setTextIfChanged(lblSV_T, tempSvText(*w, decimals));
        setTextIfChanged(lblTonly_Sts_TSV, tempSvText(*w, decimals));
    }
    if (const auto w = rcv(Rcv::TempMV)) {
        setTextIfChanged(lblMV_T, outputText(*w));
        setTextIfChanged(lblTonly_Sts_MV, outputText(*w));
    }
    if (const auto w = rcv(Rcv::HumiSV)) {
        setTextIfChanged(lblNSV_H, humiSvText(*w));
        graphLabel(1, humiSvText(*w));
    }
    if (const auto w = rrp(Rrp::HumiTargetSV))
        setTextIfChanged(lblSV_H, humiSvText(*w));
    if (const auto w = rcv(Rcv::HumiMV))
        setTextIfChanged(lblMV_H, outputText(*w));
    if (const auto w = rrp(Rrp::TempPID)) {
        setTextIfChanged(lblPID_T, twoDigits(*w));
        setTextIfChanged(lblTonly_Sts_PID, twoDigits(*w));
    }
    if (const auto w = rrp(Rrp::HumiPID))
        setTextIfChanged(lblPID_H, twoDigits(*w));

    const auto tpv = rcv(Rcv::TempPV);
    if (tpv) {
        const QString text = tempPvText(*tpv, decimals);
        for (QLabel *l : {lblTPV, lblPV_T, lblTOnly_CtrlPV, lblTonly_Sts_PV})
            setTextIfChanged(l, text);
        picUPDN_T->setVisible(*tpv != NoValue);
        graphLabel(2, text);
    }

    // Humidity is shown only while it is under control: a sensor reading, a
    // target inside 0..100 and a dry-bulb temperature inside the control range.
    const auto hpv = rcv(Rcv::HumiPV);
    const auto hsv = rrp(Rrp::HumiTargetSV);
    if (hpv && hsv) {
        bool out = *hpv == NoValue;
        const double target = humidityFromWord(*hsv);
        if (target <= 0 || target >= 100)
            out = true;
        // The temperature as shown: a failed reading counts as its text's number.
        const double temp = leadingNumber(lblTPV->text());
        const double version = m_state.FirmwareVersion();
        const Encoding enc = encodingOf(Param::txtDryTemp_Range, 1, version);
        if (const auto upper = up(RowOf(Param::txtDryTemp_Range, 1, version)))
            if (temp > valueFromWord(enc, *upper))
                out = true;
        if (const auto lower = up(RowOf(Param::txtDryTemp_Range, 0, version)))
            if (temp < valueFromWord(enc, *lower))
                out = true;
        if (temp > 100)
            out = true;
        const QString text = out ? QStringLiteral("---.-") : humiPvText(*hpv);
        setTextIfChanged(lblHPV, text);
        setTextIfChanged(lblPV_H, text);
        picUPDN_H->setVisible(!out);
        graphLabel(3, text);
    }
}

void frmQM730_RunSimple::drawRampFlags()
{
    const auto w = rcv(Rcv::RampFlags);
    if (!w)
        return;
    const RampFlags f = rampFlags(*w);
    const bool up = f.tempUp || f.humiUp;
    const bool down = f.tempDown || f.humiDown;
    sprdUPDN->setLit(1, up || down);
    // The later flag of the loop wins: humidity over temperature, falling over rising.
    QPixmap cell;
    if (f.tempUp)
        cell = RunPictures::load(RunPictures::RampUpCell);
    if (f.tempDown)
        cell = RunPictures::load(RunPictures::RampDownCell);
    if (f.humiUp)
        cell = RunPictures::load(RunPictures::RampUpCell);
    if (f.humiDown)
        cell = RunPictures::load(RunPictures::RampDownCell);
    sprdUPDN->setCellPixmap(cell);
    sprdSOAK->setLit(1, f.tempSoak || f.humiSoak);
    sprdSOAK->setCellText(f.humiSoak ? QStringLiteral("H") : f.tempSoak ? QStringLiteral("T") : QString());
    // The wait lamp reads "H" for either chamber: this console has always shown it so.
    sprdWAIT->setLit(1, f.tempWait || f.humiWait);
    sprdWAIT->setCellText(f.tempWait || f.humiWait ? QStringLiteral("H") : QString());

    QPixmap t, h;
    if (f.tempUp)
        t = RunPictures::load(RunPictures::TempUp);
    if (f.tempDown)
        t = RunPictures::load(RunPictures::TempDown);
    if (f.humiUp)
        h = RunPictures::load(RunPictures::HumiUp);
    if (f.humiDown)
        h = RunPictures::load(RunPictures::HumiDown);
    picUPDN_T->setPixmap(t);
    picUPDN_H->setPixmap(h);
}

void frmQM730_RunSimple::drawLamps()
{
    const std::pair<LampStrip *, BitField> strips[] = {
        {sprdIS, Lamps::IS},   {sprdTON, Lamps::TON},   {sprdHON, Lamps::HON}, {sprdTS, Lamps::TS},
        {sprdDS, Lamps::DS},   {sprdDR, Lamps::DR},     {sprdPAS, Lamps::PALM}, {sprdSAS, Lamps::SALM},
        {sprdAS, AlarmStrip}, {sprdDI, Lamps::DI},
    };
    for (const auto &[strip, field] : strips) {
        const auto w = rcv(field.row);
        if (!w)
            continue;
        for (int n = 1; n <= strip->count(); ++n)
            strip->setLit(n, lampOn(field, *w, n));
    }
}

void frmQM730_RunSimple::drawLampPanel()
{
    struct Row {
        const char *caption;
        std::vector<LampStrip *> strips;
    };
    const bool legacy = !IsCurrentLayout(m_state.FirmwareVersion());
    const int arrangement = legacy ? 2 : m_statusPage;
    if (arrangement == m_panelLayout)
        return;
    m_panelLayout = arrangement;
    const std::vector<Row> rows = arrangement == 2
        ? std::vector<Row>{{"I/S", {sprdIS}}, {"T/S", {sprdTS}}, {"D/I", {sprdDI}}, {"A/S", {sprdAS}}}
        : arrangement == 0
        ? std::vector<Row>{{"D/I", {sprdDI}}, {"T/S", {sprdTS}}, {"P.AS", {sprdPAS}}, {"S.AS", {sprdSAS}}}
        : std::vector<Row>{{"D/I", {sprdDI}}, {"I/S", {sprdIS}}, {"T.ON", {sprdTON, sprdHON}}, {"D/S", {sprdDS, sprdDR}}};

    for (LampStrip *s : {sprdIS, sprdTON, sprdHON, sprdTS, sprdDS, sprdDR, sprdPAS, sprdSAS, sprdAS, sprdDI}) {
        for (QHBoxLayout *l : m_lampRows)
            l->removeWidget(s);
        s->hide();
    }
    for (size_t i = 0; i < m_lampRows.size(); ++i) {
        QHBoxLayout *l = m_lampRows[i];
        while (QLayoutItem *item = l->takeAt(0))
            delete item;
        if (i < rows.size()) {
            lblSTS_TT[i]->setText(QString::fromLatin1(rows[i].caption));
            lblSTS_TT[i]->show();
            for (LampStrip *s : rows[i].strips) {
                l->addWidget(s);
                s->show();
            }
            l->addStretch(1);
        } else {
            lblSTS_TT[i]->hide();
        }
    }
}

void frmQM730_RunSimple::drawTimes()
{
    const RcvColumn col(m_state.image.sprdRCV, m_slot + 1);
    auto all = [&](std::initializer_list<int> rows) {
        for (int r : rows)
            if (!col.isRead(r))
                return false;
        return true;
    };
    if (all({Rcv::RunHours, Rcv::RunMinutes, Rcv::RunSeconds})) {
        setTextIfChanged(lblRunTime, col.runTimeText());
        setTextIfChanged(lblRunTime_STS, col.runTimeText());
    }
    if (all({Rcv::SegElapsedHours, Rcv::SegElapsedMinutes, Rcv::SegTotalHours, Rcv::SegTotalMinutes}))
        setTextIfChanged(lblSeg_Time, col.segmentTimeText());
    if (all({Rcv::RunPattern, Rcv::RunSegment})) {
        setTextIfChanged(lblRunPTN, QString::number(col.word(Rcv::RunPattern)));
        setTextIfChanged(lblRunSEG, QString::number(col.word(Rcv::RunSegment)));
        setTextIfChanged(lblPTN_SEG, col.patternSegmentText());
    }
    if (all({Rcv::PatternRepeatDone, Rcv::PatternRepeatTotal}))
        setTextIfChanged(lblPTN_RPT, col.patternRepeatText());
    if (all({Rcv::SegmentRepeatDone, Rcv::SegmentRepeatTotal}))
        setTextIfChanged(lblSEG_RPT, col.segmentRepeatText());
}

void frmQM730_RunSimple::drawButtonColours()
{
    const std::pair<QPushButton *, int> buttons[] = {
        {btnStep, Rrp::Step}, {btnHold, Rrp::Hold}, {btnTAT, Rrp::TempAT}, {btnHAT, Rrp::HumiAT}};
    for (const auto &[button, row] : buttons)
        if (const auto w = rrp(row))
            LitButton::setLit(button, *w >= 1);
}

void frmQM730_RunSimple::drawModeVisibility()
{
    QWidget *const setpoints[] = {lblTSV_T, txtTSV, lblHSV_T, txtHSV};
    if (m_fixedMode) {
        for (QWidget *w : setpoints)
            w->show();
        const auto at = up(RowOf(Param::btnAT_Button, 0, m_state.FirmwareVersion()));
        const bool offered = m_running && at && *at >= 1;
        btnTAT->setVisible(offered);
        btnHAT->setVisible(offered);
    } else {
        for (QWidget *w : setpoints)
            w->setVisible(m_running);
        for (QWidget *w : {static_cast<QWidget *>(lblRunPTN_LBL), static_cast<QWidget *>(lblRunSEG_LBL),
                           static_cast<QWidget *>(lblRunPTN), static_cast<QWidget *>(lblRunSEG),
                           static_cast<QWidget *>(btnStep), static_cast<QWidget *>(btnHold)})
            w->setVisible(m_running);
    }
}

void frmQM730_RunSimple::drawPatternName()
{
    int pattern = leadingInt(lblRunPTN->text());
    if (pattern == 0)
        pattern = leadingInt(txtS_PTN->text());
    if (pattern < 1 || pattern > m_state.PatternCount())
        return;
    setTextIfChanged(lblPTN_Name, patternName(m_state.image, pattern));
    if (pattern != m_lastPatternAsked) {
        m_ctx.requests().readPatternName(pattern);
        m_lastPatternAsked = pattern;
    }
}

void frmQM730_RunSimple::drawReservation()
{
    if (!m_state.ParamChanged) {
        picPreDate->hide();
        tmrPreDate.stop();
        return;
    }
    const double version = m_state.FirmwareVersion();
    auto field = [&](int i) { return up(RowOf(Param::sprdDT_Reserve, i, version)); };
    const auto year = field(1), month = field(2), day = field(3), hour = field(4), minute = field(5);
    if (year && month && day)
        setTextIfChanged(lblReservedDate,
                         QString::number(*year) + u'-' + twoDigits(*month) + u'-' + twoDigits(*day));
    if (hour && minute)
        setTextIfChanged(lblReservedTime, twoDigits(*hour) + u':' + twoDigits(*minute) + QStringLiteral(":00"));
    picPreDate->show();
    if (!tmrPreDate.isActive())
        tmrPreDate.start();
}

// ---- The graph ---------------------------------------------------------------------

void frmQM730_RunSimple::graphStep()
{
    if (!m_running) {
        // The trace stays on screen until the next run begins.
        m_graphPoints = 0;
        return;
    }
    if (m_graphPoints == 0) {
        m_graph->clear();
        m_graph->setLegends(seriesNames());
        m_graph->refresh();
    }
    if (m_graphTick) {
        m_graphTick = false;
        ++m_graphPoints;
        addGraphPoint();
    }
}

void frmQM730_RunSimple::addGraphPoint()
{
    const QDateTime at = now();
    TrendChart::Values v;
    for (int s = 0; s < TrendChart::SeriesCount; ++s) {
        const QString &text = m_graphTexts[size_t(s)];
        // A failed reading ("---.--", "---.-") leaves a gap.
        v[size_t(s)] = text.left(4) == QLatin1String("---.") ? TrendChart::NoValue : leadingNumber(text);
    }
    // The first point is also drawn a second earlier at position 0, so that
    // the run begins with a short line instead of a dot.
    if (m_graphPoints == 1)
        m_graph->setPoint(0, v, at.addSecs(-1));
    m_graph->setPoint(m_graphPoints, v, at);
    m_graph->refresh();
}

// ---- Edits and commands ------------------------------------------------------------

void frmQM730_RunSimple::bindRunField(EditField flag, EntryField *field, int row, Encoding encoding,
                                      const EntryBinding::Range &range)
{
    auto *binding = new EntryBinding(field, this);
    binding->setRange(range);
    if (EntryBinding *first = m_flagOwner[flag])
        binding->shareFlagWith(*first);
    else
        m_flagOwner[flag] = binding;
    binding->onCommit([this, row, encoding](const QString &, const QString &text) {
        m_ctx.requests().writeRunWord(row, wordFromText(encoding, text));
    });
    m_edits.push_back(binding);
}

bool frmQM730_RunSimple::editFlag(EditField f) const
{
    return m_flagOwner[f] && m_flagOwner[f]->editing();
}

void frmQM730_RunSimple::postRunWord(int row, int word)
{
    m_ctx.requests().writeRunWord(row, quint16(word));
}

void frmQM730_RunSimple::toggle(QPushButton *button, int row)
{
    // The lit state decides, not the table: pressed twice within a second,
    // the button sends the same word twice.
    postRunWord(row, LitButton::isLit(button) ? 0 : 1);
}

void frmQM730_RunSimple::selectView(int index)
{
    m_pages->setCurrentIndex(index);
    for (int i = 0; i < 3; ++i)
        btnSelectView[size_t(i)]->setStyleSheet(
            i == index ? QStringLiteral("QPushButton { background-color: #3c78d8; color: white; }") : QString());
}

void frmQM730_RunSimple::openGraphViewer()
{
    // The viewer is looked for in the program's folder, as the main menu does.
    QString program;
    if (shellOpenBesideProgram(m_state.home, QStringLiteral("\\") + GraphViewer, true, &program))
        return;
    if (!QFileInfo::exists(program))
        showNotice(QStringLiteral("找不到 %1 : %2").arg(GraphViewer, program));
    else
        showNotice(QStringLiteral("無法啟動 %1").arg(GraphViewer));
}

void frmQM730_RunSimple::showNotice(const QString &text)
{
    auto *box = new QMessageBox(QMessageBox::Information, windowTitle(), text, QMessageBox::Ok, this);
    box->setObjectName(QStringLiteral("msgNotice"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

bool frmQM730_RunSimple::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress && watched->objectName() == QLatin1String("lblSTS_TT")) {
        m_statusPage = (m_statusPage + 1) % 2;
        drawLampPanel();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}
