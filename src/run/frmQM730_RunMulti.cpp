#include "frmQM730_RunMulti.h"
#include "ConsoleState.h"
#include "Encodings.h"
#include "GroupHeaderView.h"
#include "LiveStatus.h"
#include "SaveSettingsPanel.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include "SheetModel.h"
#include "TextTable.h"
#include "frmQM730_DataInput.h"
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace {

const QColor LitColour(0, 255, 0);   // 65280
const QColor GoodColour(0, 255, 0);  // "良好"
const QColor BadColour(255, 0, 0);   // "不良"

const QString OnlyFixed = QStringLiteral("只可在定值運轉中使用");
const QString OnlyProgramStopped = QStringLiteral("只可在程式停止狀態下使用");

using C = frmQM730_RunMulti;

// The button cells and their captions.
const std::pair<int, const char *> LampCaptions[] = {
    {C::ColProgram, "程式"}, {C::ColFixed, "定值"}, {C::ColRun, "運轉"},      {C::ColStop, "停止"},
    {C::ColHold, "保持"},    {C::ColStep, "跳段"},  {C::ColTempAT, "溫度 AT"}, {C::ColHumiAT, "濕度 AT"},
};

QString rowHead(const MachineSlot &m)
{
    return m.MachineName.isEmpty() ? QString::number(m.MachineNumber)
                                   : QString::number(m.MachineNumber) + u' ' + m.MachineName;
}

} // namespace

frmQM730_RunMulti::frmQM730_RunMulti(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_state(context.state)
{
    setObjectName(QStringLiteral("frmQM730_RunMulti"));
    setWindowTitle(QStringLiteral("多機操作"));

    m_sheet = new SheetModel(ColumnCount, this);
    sprdMulti = groupedSheet(QStringLiteral("sprdMulti"), m_sheet, &m_header);
    sprdMulti->verticalHeader()->setDefaultSectionSize(26);
    connect(sprdMulti, &QTableView::clicked, this,
            [this](const QModelIndex &i) { sprdMulti_Click(i.row() + 1, i.column() + 1); });
    connect(sprdMulti, &QTableView::doubleClicked, this,
            [this](const QModelIndex &i) { sprdMulti_DblClick(i.row() + 1, i.column() + 1); });

    m_saveSettings = new SaveSettingsPanel(m_ctx, this, tmrRefresh_CFG);
    btnClose = closeButton(this);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_saveSettings, 1);
    bottom->addWidget(btnClose, 0, Qt::AlignBottom);
    auto *main = new QVBoxLayout(this);
    main->addWidget(sprdMulti, 1);
    main->addLayout(bottom);
    noDefaultButtons(this);
    resize(1440, 640);

    Timer1.setObjectName(QStringLiteral("Timer1"));
    Timer1.setInterval(50);
    connect(&Timer1, &QTimer::timeout, this, &frmQM730_RunMulti::Timer1_Timer);
    tmrNextCMD.setObjectName(QStringLiteral("tmrNextCMD"));
    tmrNextCMD.setInterval(50);
    connect(&tmrNextCMD, &QTimer::timeout, this, &frmQM730_RunMulti::tmrNextCMD_Timer);

    // Load: the sheet for the list in force, drawn once, then every 50 ms.
    buildSheet();
    m_saveSettings->fill();
    m_loaded = true;
    Timer1_Timer();
}

frmQM730_RunMulti::~frmQM730_RunMulti()
{
    done(Rejected);
}

void frmQM730_RunMulti::done(int result)
{
    for (QTimer *t : {&Timer1, &tmrNextCMD, &tmrRefresh_CFG})
        t->stop();
    m_loaded = false;
    QDialog::done(result);
}

void frmQM730_RunMulti::buildSheet()
{
    const int rows = int(m_state.machines.size());
    m_sheet->setRowCount(rows);
    QStringList heads(ColumnCount);
    heads[ColTempPV - 1] = heads[ColTempSV - 1] = heads[ColTempMV - 1] = QStringLiteral("溫度");
    heads[ColHumiPV - 1] = heads[ColHumiSV - 1] = heads[ColHumiMV - 1] = QStringLiteral("濕度");
    heads[ColHold - 1] = QStringLiteral("狀態");
    heads[ColStartPattern - 1] = QStringLiteral("起始 PTN");
    heads[ColRunPattern - 1] = QStringLiteral("運轉 PTN");
    heads[ColStartSegment - 1] = QStringLiteral("起始 SEG");
    heads[ColRunSegment - 1] = QStringLiteral("運轉 SEG");
    heads[ColTempPID - 1] = QStringLiteral("溫度 PID");
    heads[ColHumiPID - 1] = QStringLiteral("濕度 PID");
    m_sheet->setColumnHeads(heads);
    m_header->setGroups({{ColLink, ColLink, QStringLiteral("通訊狀態")},
                         {ColTempPV, ColHumiPV, QStringLiteral("PV")},
                         {ColTempSV, ColHumiSV, QStringLiteral("SV")},
                         {ColProgram, ColFixed, QStringLiteral("模式")},
                         {ColRun, ColStop, QStringLiteral("運轉")},
                         {ColHold, ColRunSegment, QStringLiteral("程式")},
                         {ColTempAT, ColHumiPID, QStringLiteral("定值")},
                         {ColRunTime, ColRunTime, QStringLiteral("運轉時間")},
                         {ColTempMV, ColHumiMV, QStringLiteral("輸出量")}});
    QStringList rowHeads;
    for (const MachineSlot &m : m_state.machines)
        rowHeads << rowHead(m);
    m_sheet->setRowHeads(rowHeads);

    const QColor unlit = palette().color(QPalette::Button);
    for (int row = 1; row <= rows; ++row) {
        for (const auto &[col, text] : LampCaptions) {
            m_sheet->setText(row, col, QString::fromUtf8(text));
            m_sheet->setBack(row, col, unlit);
            m_sheet->setFore(row, col, Qt::black);
        }
        for (int col : {ColTempSV, ColHumiSV, ColTempPID, ColHumiPID})
            m_sheet->setToolTip(row, col, OnlyFixed);
        for (int col : {ColStartPattern, ColRunPattern, ColStartSegment, ColRunSegment})
            m_sheet->setToolTip(row, col, OnlyProgramStopped);
    }
    m_sheet->flush();
    m_drawn = QVector<RowSource>(rows);
    m_linkShown = QVector<int>(rows, -1);

    const int widths[ColumnCount] = {70, 64, 56, 64, 56, 48, 48, 48, 48, 48, 48, 62, 62, 62, 62, 62, 62, 64, 64, 90, 58, 58};
    for (int c = 0; c < ColumnCount; ++c)
        sprdMulti->setColumnWidth(c, widths[c]);
}

// ---- The refresh ------------------------------------------------------------------

void frmQM730_RunMulti::Timer1_Timer()
{
    Timer1.stop();
    const int rows = std::min<int>(int(m_state.machines.size()), m_sheet->rows());
    for (int slot = 0; slot < rows; ++slot)
        drawRow(slot);
    m_sheet->flush();
    if (m_loaded)
        Timer1.start();
}

void frmQM730_RunMulti::setLamp(int row, int col, bool lit)
{
    m_sheet->setBack(row, col, lit ? LitColour : palette().color(QPalette::Button));
}

void frmQM730_RunMulti::drawRow(int slot)
{
    const int row = slot + 1;
    const int online = m_state.machines[slot].MachineOnline ? 1 : 0;
    if (m_linkShown[slot] != online) {
        m_linkShown[slot] = online;
        m_sheet->setText(row, ColLink, online ? QStringLiteral("良好") : QStringLiteral("不良"));
        m_sheet->setBack(row, ColLink, online ? GoodColour : BadColour);
        m_sheet->setFore(row, ColLink, online ? Qt::black : Qt::white);
    }
    // A machine that does not answer keeps its last values.
    if (!online)
        return;

    const TextTable &rcvTable = m_state.image.sprdRCV;
    const TextTable &rrpTable = m_state.image.sprdRRP;
    const int column = slot + 1;
    RowSource source;
    size_t k = 0;
    for (int r : RcvSources)
        source[k++] = rcvTable.text(column, r);
    for (int r : RrpSources)
        source[k++] = rrpTable.text(column, r);
    if (source == m_drawn[slot])
        return; // nothing new for this row
    m_drawn[slot] = source;

    const RcvColumn rcv(rcvTable, column);
    auto rrpRead = [&](int r) { return !rrpTable.isEmpty(column, r); };
    auto rrp = [&](int r) { return rrpTable.number(column, r); };
    auto value = [&](bool read, const QString &text) { return read ? text : QString(); };

    m_sheet->setText(row, ColTempPV, value(rcv.isRead(Rcv::TempPV), tempPvText(rcv.word(Rcv::TempPV), 2)));
    m_sheet->setText(row, ColHumiPV, value(rcv.isRead(Rcv::HumiPV), humiPvText(rcv.word(Rcv::HumiPV))));
    m_sheet->setText(row, ColTempSV, value(rcv.isRead(Rcv::TempSV), tempSvText(rcv.word(Rcv::TempSV), 2)));
    m_sheet->setText(row, ColHumiSV, value(rcv.isRead(Rcv::HumiSV), humiSvText(rcv.word(Rcv::HumiSV))));
    const bool modeRead = rcv.isRead(Rcv::RunMode);
    setLamp(row, ColProgram, modeRead && rcv.word(Rcv::RunMode) == 0);
    setLamp(row, ColFixed, modeRead && rcv.word(Rcv::RunMode) == 1);
    setLamp(row, ColRun, rrpRead(Rrp::Run) && rrp(Rrp::Run) > 0);
    setLamp(row, ColStop, rrpRead(Rrp::Run) && rrp(Rrp::Run) == 0);
    setLamp(row, ColHold, rrp(Rrp::Hold) > 0);
    setLamp(row, ColStep, rrp(Rrp::Step) > 0);
    setLamp(row, ColTempAT, rrp(Rrp::TempAT) > 0);
    setLamp(row, ColHumiAT, rrp(Rrp::HumiAT) > 0);
    m_sheet->setText(row, ColStartPattern, rrpTable.text(column, Rrp::StartPattern));
    m_sheet->setText(row, ColRunPattern, rcvTable.text(column, Rcv::RunPattern));
    m_sheet->setText(row, ColStartSegment, rrpTable.text(column, Rrp::StartSegment));
    m_sheet->setText(row, ColRunSegment, rcvTable.text(column, Rcv::RunSegment));
    m_sheet->setText(row, ColTempPID, rrpTable.text(column, Rrp::TempPID));
    m_sheet->setText(row, ColHumiPID, rrpTable.text(column, Rrp::HumiPID));
    m_sheet->setText(row, ColRunTime, value(rcv.isRead(Rcv::RunHours), rcv.runTimeText()));
    m_sheet->setText(row, ColTempMV, value(rcv.isRead(Rcv::TempMV), outputText(rcv.word(Rcv::TempMV))));
    m_sheet->setText(row, ColHumiMV, value(rcv.isRead(Rcv::HumiMV), outputText(rcv.word(Rcv::HumiMV))));
}

bool frmQM730_RunMulti::isLit(int row, int col) const
{
    return m_sheet->cell(row, col).back == LitColour;
}

// ---- Commands --------------------------------------------------------------------

bool frmQM730_RunMulti::refused(int row) const
{
    return row < 1 || row > m_sheet->rows() || row > m_state.machines.size()
        || m_sheet->cell(row, ColLink).back == BadColour;
}

void frmQM730_RunMulti::post(int row, Cmd::State what, quint16 word)
{
    m_ctx.requests().writeMachineWord(row - 1, what, word);
}

void frmQM730_RunMulti::sprdMulti_Click(int row, int col)
{
    if (refused(row))
        return;
    // A toggle sends the opposite of what its cell shows now.
    auto toggled = [&](int c) { return quint16(isLit(row, c) ? 0 : 1); };
    switch (col) {
    case ColProgram: post(row, Cmd::MachineRunMethod, 0); break;
    case ColFixed: post(row, Cmd::MachineRunMethod, 1); break;
    case ColRun: post(row, Cmd::MachineRun, 1); break;
    case ColStop: post(row, Cmd::MachineRun, 0); break;
    case ColHold: post(row, Cmd::MachineHold, toggled(col)); break;
    case ColStep: post(row, Cmd::MachineStep, toggled(col)); break;
    case ColTempAT: post(row, Cmd::MachineTempAT, toggled(col)); break;
    case ColHumiAT: post(row, Cmd::MachineHumiAT, toggled(col)); break;
    default: break;
    }
}

void frmQM730_RunMulti::sprdMulti_DblClick(int row, int col)
{
    if (refused(row))
        return;
    const bool program = isLit(row, ColProgram);
    const bool fixedOrRunning = isLit(row, ColFixed) || isLit(row, ColRun);
    switch (col) {
    case ColTempSV:
        if (!program)
            askValue(row, col, QStringLiteral("溫度 SV"), Cmd::MachineTempSV);
        break;
    case ColHumiSV:
        if (!program)
            askValue(row, col, QStringLiteral("濕度 SV"), Cmd::MachineHumiSV);
        break;
    case ColStartPattern:
    case ColRunPattern:
        if (!fixedOrRunning)
            askValue(row, col, QStringLiteral("START PTN"), Cmd::MachineStartPattern);
        break;
    case ColStartSegment:
    case ColRunSegment:
        if (!fixedOrRunning)
            askValue(row, col, QStringLiteral("START SEG"), Cmd::MachineStartSegment);
        break;
    case ColTempPID:
        if (!program)
            askValue(row, col, QStringLiteral("溫度 PID"), Cmd::MachineTempPid);
        break;
    case ColHumiPID:
        if (!program)
            askValue(row, col, QStringLiteral("濕度 PID"), Cmd::MachineHumiPid);
        break;
    default:
        break;
    }
}

void frmQM730_RunMulti::askValue(int row, int col, const QString &title, Cmd::State what)
{
    const int machine = m_state.machines[row - 1].MachineNumber;
    auto *dlg = new frmQM730_DataInput(m_ctx, this);
    dlg->setAttribute(Qt::WA_DeleteOnClose);
    dlg->ask(title, machine, m_sheet->cell(row, col).text);
    connect(dlg, &frmQM730_DataInput::entered, this, [this, machine, what](quint16 word) {
        m_inputWord = wordBytes(word);
        m_pendingMachine = machine;
        m_pendingCmd = what;
        tmrNextCMD.start();
    });
    // Modal without a nested event loop: the sheet and the link go on beneath.
    dlg->setWindowModality(Qt::ApplicationModal);
    dlg->show();
}

void frmQM730_RunMulti::tmrNextCMD_Timer()
{
    tmrNextCMD.stop();
    const int slot = m_state.slotOfMachine(m_pendingMachine);
    if (slot < 0)
        return;
    const quint16 word = quint16((quint8(m_inputWord[0]) << 8) | quint8(m_inputWord[1]));
    m_ctx.requests().writeMachineWord(slot, m_pendingCmd, word);
}
