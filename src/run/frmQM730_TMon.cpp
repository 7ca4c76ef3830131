#include "frmQM730_TMon.h"
#include "ConsoleState.h"
#include "Files.h"
#include "GroupHeaderView.h"
#include "LiveStatus.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include "SheetModel.h"
#include "TextTable.h"
#include "TextTableModel.h"
#include <QColorDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace {

const QColor GoodColour(0, 255, 0);
const QColor BadColour(255, 0, 0);

// The sprdUP rows of the temperature limits of humidity control that the
// board reads, always these two, those of the foreground machine.
constexpr int UpperLimitRow = 70;
constexpr int LowerLimitRow = 71;

int windowsColour(const QColor &c)
{
    return c.red() | (c.green() << 8) | (c.blue() << 16);
}

QColor colourOf(int windows)
{
    return TextTableModel::fromWindowsColor(windows);
}

QString colourFile(const ConsoleState &s)
{
    return s.path(QStringLiteral("\\CFG\\MultiColor.CFG"));
}

// Columns 2 to 5 are the temperature group, 7 to 10 the humidity group.
std::optional<bool> humidityGroupOf(int col)
{
    if (col >= 2 && col <= 5)
        return false;
    if (col >= 7 && col <= 10)
        return true;
    return std::nullopt;
}

} // namespace

BlockColours frmQM730_TMon::defaultColours()
{
    // Yellow and cyan figures on black.
    return BlockColours{0x000000, 0x00FFFF, 0x000000, 0xFFFF00};
}

frmQM730_TMon::frmQM730_TMon(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_state(context.state),
      m_pick([this](const QColor &initial) { return QColorDialog::getColor(initial, this); })
{
    setObjectName(QStringLiteral("frmQM730_TMon"));
    setWindowTitle(QStringLiteral("多機監控"));

    m_sheet = new SheetModel(ColumnCount, this);
    // A wall display: nothing to select, nothing to edit.
    sprdList = groupedSheet(QStringLiteral("sprdList"), m_sheet, &m_header);
    sprdList->setShowGrid(false);
    sprdList->verticalHeader()->hide();
    sprdList->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(sprdList, &QWidget::customContextMenuRequested, this, &frmQM730_TMon::showMenu);

    mEditColor = named(new QMenu(QStringLiteral("&Color"), this), QStringLiteral("mEditColor"));
    mEditFontColor = named(mEditColor->addAction(QStringLiteral("&Forecolor")), QStringLiteral("mEditFontColor"));
    mEditBackColor = named(mEditColor->addAction(QStringLiteral("&Backcolor")), QStringLiteral("mEditBackColor"));
    connect(mEditFontColor, &QAction::triggered, this, &frmQM730_TMon::mEditFontColor_Click);
    connect(mEditBackColor, &QAction::triggered, this, &frmQM730_TMon::mEditBackColor_Click);

    Label1 = named(new QLabel(QStringLiteral("變更顏色:滑鼠右鍵")), QStringLiteral("Label1"));
    btnClose = closeButton(this);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(Label1);
    bottom->addStretch(1);
    bottom->addWidget(btnClose);
    auto *main = new QVBoxLayout(this);
    main->addWidget(sprdList, 1);
    main->addLayout(bottom);
    noDefaultButtons(this);
    resize(1200, 720);

    tmrRefresh.setObjectName(QStringLiteral("tmrRefresh"));
    tmrRefresh.setInterval(500);
    connect(&tmrRefresh, &QTimer::timeout, this, &frmQM730_TMon::tmrRefresh_Timer);

    // Load: the sheet for the list in force, the colours from the file, the
    // figures once, then every 500 ms.
    buildSheet();
    m_loaded = true;
    tmrRefresh_Timer();
}

frmQM730_TMon::~frmQM730_TMon()
{
    done(Rejected);
}

void frmQM730_TMon::done(int result)
{
    tmrRefresh.stop();
    m_loaded = false;
    QDialog::done(result);
}

void frmQM730_TMon::buildSheet()
{
    const int slotCount = int(m_state.machines.size());
    m_sheet->setRowCount(3 * slotCount);
    m_header->setGroups({{1, 1, QStringLiteral("機號")}, {2, 5, QStringLiteral("溫度")}, {7, 10, QStringLiteral("濕度")}});

    QFont title = font();
    title.setPixelSize(14);
    QFont figures = font();
    figures.setPixelSize(40);
    figures.setBold(true);
    const MultiColors file = readMultiColor(colourFile(m_state));
    m_colours = QVector<BlockColours>(slotCount, defaultColours());
    for (int s = 0; s < slotCount; ++s) {
        if (s < file.size() && file[s])
            m_colours[s] = *file[s];
        const int titles = figureRow(s) - 1;
        const int row = figureRow(s);
        const MachineSlot &m = m_state.machines[s];
        m_sheet->setText(titles, ColLink, QStringLiteral("%1").arg(m.MachineNumber, 3, 10, QLatin1Char('0'))
                                              + (m.MachineName.isEmpty() ? QString() : u' ' + m.MachineName));
        for (const auto &[col, text] : {std::pair{ColTempMV, "MV"}, {ColTempSV, "SV"}, {ColHumiMV, "MV"}, {ColHumiSV, "SV"}})
            m_sheet->setText(titles, col, QString::fromLatin1(text));
        m_sheet->setRowFont(titles, title);
        m_sheet->setRowFont(row, figures);
        m_sheet->setRowFont(row + 1, title);
        paintGroup(s, false, m_colours[s]);
        paintGroup(s, true, m_colours[s]);
        sprdList->setRowHeight(titles - 1, 22);
        sprdList->setRowHeight(row - 1, 64);
        sprdList->setRowHeight(row, 8);
    }
    m_sheet->flush();
    m_drawn = QVector<RowSource>(slotCount);
    m_linkShown = QVector<int>(slotCount, -1);
    const int widths[ColumnCount] = {150, 180, 130, 12, 160, 30, 150, 130, 12, 130};
    for (int c = 0; c < ColumnCount; ++c)
        sprdList->setColumnWidth(c, widths[c]);
}

void frmQM730_TMon::paintGroup(int slot, bool humidity, const BlockColours &colours)
{
    const int first = humidity ? 7 : 2;
    const QColor back = colourOf(humidity ? colours.humiBack : colours.tempBack);
    const QColor fore = colourOf(humidity ? colours.humiFore : colours.tempFore);
    for (int row = figureRow(slot) - 1; row <= figureRow(slot) + 1; ++row)
        for (int col = first; col < first + 4; ++col) {
            m_sheet->setBack(row, col, back);
            m_sheet->setFore(row, col, fore);
        }
}

// ---- The refresh ------------------------------------------------------------------

void frmQM730_TMon::tmrRefresh_Timer()
{
    tmrRefresh.stop();
    // The limits of humidity control, read once for all machines.
    const TextTable &up = m_state.image.sprdUP;
    const bool limitsKnown = !up.isEmpty(1, UpperLimitRow) && !up.isEmpty(1, LowerLimitRow);
    const double upper = temperatureFromWord(up.number(1, UpperLimitRow));
    const double lower = temperatureFromWord(up.number(1, LowerLimitRow));
    const QString limits = up.text(1, UpperLimitRow) + u'/' + up.text(1, LowerLimitRow);
    const int slotCount = std::min<int>(int(m_state.machines.size()), m_sheet->rows() / 3);
    for (int s = 0; s < slotCount; ++s)
        drawSlot(s, limits, upper, lower, limitsKnown);
    m_sheet->flush();
    if (m_loaded)
        tmrRefresh.start();
}

void frmQM730_TMon::drawSlot(int slot, const QString &limits, double upper, double lower, bool limitsKnown)
{
    const int row = figureRow(slot);
    const int online = m_state.machines[slot].MachineOnline ? 1 : 0;
    if (m_linkShown[slot] != online) {
        m_linkShown[slot] = online;
        m_sheet->setText(row, ColLink, online ? QStringLiteral("良好") : QStringLiteral("不良"));
        m_sheet->setBack(row, ColLink, online ? GoodColour : BadColour);
        m_sheet->setFore(row, ColLink, online ? Qt::black : Qt::white);
    }
    if (!online)
        return; // the rest of the block stands

    const TextTable &table = m_state.image.sprdRCV;
    const int column = slot + 1;
    RowSource source;
    for (int r = 1; r <= 6; ++r)
        source[size_t(r - 1)] = table.text(column, r);
    source[6] = limits;
    if (source == m_drawn[slot])
        return;
    m_drawn[slot] = source;

    const RcvColumn rcv(table, column);
    auto shown = [&](int r, const QString &text) { return rcv.isRead(r) ? text : QString(); };
    const qint64 tempPv = rcv.word(Rcv::TempPV);
    m_sheet->setText(row, ColTempPV, shown(Rcv::TempPV, tempPvText(tempPv, 2)));
    m_sheet->setText(row, ColTempMV, shown(Rcv::TempMV, outputText(rcv.word(Rcv::TempMV))));
    m_sheet->setText(row, ColTempSV, shown(Rcv::TempSV, tempSvText(rcv.word(Rcv::TempSV), 2)));
    m_sheet->setText(row, ColHumiMV, shown(Rcv::HumiMV, outputText(rcv.word(Rcv::HumiMV))));
    m_sheet->setText(row, ColHumiSV, shown(Rcv::HumiSV, humiSvText(rcv.word(Rcv::HumiSV))));

    // Humidity is out of control range with no humidity set value, or with
    // the temperature outside the limits of humidity control or above 100.
    const double humiSv = humidityFromWord(rcv.word(Rcv::HumiSV));
    const double temp = temperatureFromWord(tempPv);
    const bool outOfRange = humiSv <= 0 || humiSv >= 100 || temp > 100
                         || (limitsKnown && (temp < lower || temp > upper));
    const qint64 humiPv = rcv.word(Rcv::HumiPV);
    m_sheet->setText(row, ColHumiPV,
                     shown(Rcv::HumiPV, outOfRange ? QStringLiteral("---.-") : humiPvText(humiPv)));
}

// ---- Colours ---------------------------------------------------------------------

void frmQM730_TMon::showMenu(const QPoint &pos)
{
    const QModelIndex index = sprdList->indexAt(pos);
    if (!index.isValid() || !humidityGroupOf(index.column() + 1))
        return;
    m_menuRow = index.row() + 1;
    m_menuCol = index.column() + 1;
    mEditColor->popup(sprdList->viewport()->mapToGlobal(pos));
}

void frmQM730_TMon::mEditFontColor_Click()
{
    editColour(true);
}

void frmQM730_TMon::mEditBackColor_Click()
{
    editColour(false);
}

void frmQM730_TMon::editColour(bool fore)
{
    const auto humidity = humidityGroupOf(m_menuCol);
    const int slot = (m_menuRow - 1) / 3;
    if (!humidity || m_menuRow < 1 || slot >= m_colours.size())
        return;
    BlockColours c = blockColours(slot);
    int &target = *humidity ? (fore ? c.humiFore : c.humiBack) : (fore ? c.tempFore : c.tempBack);
    const QColor chosen = m_pick(colourOf(target));
    if (!chosen.isValid())
        return;
    target = windowsColour(chosen);
    m_colours[slot] = c;
    paintGroup(slot, *humidity, c);
    m_sheet->flush();
    saveColours();
}

BlockColours frmQM730_TMon::blockColours(int slot) const
{
    // The colours stand in the cells of columns 2 and 7 of the block.
    const SheetModel::Cell &t = m_sheet->cell(figureRow(slot), ColTempPV);
    const SheetModel::Cell &h = m_sheet->cell(figureRow(slot), ColHumiPV);
    return BlockColours{windowsColour(t.back), windowsColour(t.fore), windowsColour(h.back), windowsColour(h.fore)};
}

void frmQM730_TMon::saveColours()
{
    QVector<BlockColours> blocks;
    for (int s = 0; s < m_colours.size(); ++s)
        blocks << blockColours(s);
    // A file that cannot be written keeps the colours for this opening only.
    writeMultiColor(colourFile(m_state), blocks);
}
