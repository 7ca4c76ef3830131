#include "frmQM730Prg_SEG.h"
#include "CellEntry.h"
#include "CommLink.h"
#include "ConsoleMessages.h"
#include "ConsoleState.h"
#include "Files.h"
#include "GroupedHeader.h"
#include "PatternList.h"
#include "ProgramCurve.h"
#include "ProgramImage.h"
#include "ProgramSession.h"
#include "ProgramWriter.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include "SegmentSheet.h"
#include "frmQM730Prg_SEG_TS.h"
#include <QApplication>
#include <QCheckBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

const QColor ChosenColour(0, 255, 0); // 65280

QColor faceColour()
{
    return QApplication::palette().color(QPalette::Button);
}

bool isChosen(const QTableWidgetItem *item)
{
    return item && item->background().style() != Qt::NoBrush && item->background().color() == ChosenColour;
}

// A filled cell of a segment row stands on the button colour, or on green
// when what it stands for is on; a cleared one has no colour at all.
void setChosen(QTableWidgetItem *item, bool chosen)
{
    item->setBackground(chosen ? ChosenColour : faceColour());
}

// The limits of the time cells: hours (or minutes) 0..99, the second number 0..59.
double timeCellHigh(int column)
{
    return column == frmQM730Prg_SEG::ColTime1First || column == frmQM730Prg_SEG::ColTime2First ? 99 : 59;
}

} // namespace

// ---- Construction -----------------------------------------------------------

frmQM730Prg_SEG::frmQM730Prg_SEG(ScreenContext &context, QWidget *parent, int pattern, bool imageOpen)
    : QDialog(parent), m_ctx(context), m_state(context.state), m_fromPatternEditor(imageOpen)
{
    setObjectName(QStringLiteral("frmQM730Prg_SEG"));
    setWindowTitle(QStringLiteral("程式設定(程式段設定)"));
    buildControls();
    load(pattern);
}

frmQM730Prg_SEG::~frmQM730Prg_SEG()
{
    unload();
}

void frmQM730Prg_SEG::buildControls()
{
    auto *top = new QHBoxLayout;
    lblMC_No = valueBox(QStringLiteral("lblMC_No"), 60);
    lblPattern = valueBox(QStringLiteral("lblPattern"), 60);
    lblSegment = valueBox(QStringLiteral("lblSegment"), 60);
    lblSegCount = valueBox(QStringLiteral("lblSegCount"), 60);
    top->addWidget(captionRow(QStringLiteral("機號"), lblMC_No, 40));
    top->addWidget(captionRow(QStringLiteral("程式組"), lblPattern, 50));
    top->addWidget(captionRow(QStringLiteral("程式段"), lblSegment, 50));
    top->addWidget(captionRow(QStringLiteral("段數統計"), lblSegCount, 70));
    lblMSG = named(new QLabel(QStringLiteral("請等待... 資料傳送中")), QStringLiteral("lblMSG"));
    lblMSG->setStyleSheet(QStringLiteral("color: red; font-weight: bold;"));
    lblMSG->hide();
    top->addWidget(lblMSG);
    top->addStretch(1);

    // The pattern to work on.
    sprdPattern = PatternList::create(0);
    sprdPattern->setMinimumHeight(150);
    connect(sprdPattern, &QTableWidget::cellClicked, this, [this](int row, int) { selectPattern(row + 1); });
    auto *fraPattern = named(new QGroupBox(QStringLiteral("選擇程式組")), QStringLiteral("fraPattern"));
    (new QVBoxLayout(fraPattern))->addWidget(sprdPattern);

    // Its segments.
    auto *sh = new GroupedHeader;
    sh->setCaption(ColTemp, ColTemp, QStringLiteral("溫度SV"));
    sh->setCaption(ColHumi, ColHumi, QStringLiteral("濕度SV"));
    sh->setCaption(ColHours, ColHours, QStringLiteral("小時"));
    sh->setCaption(ColMinutes, ColMinutes, QStringLiteral("分鐘"));
    sh->setCaption(ColWait, ColWait, QStringLiteral("待機"));
    sh->addGroup(ColAlarm1, ColAlarm1 + 3, QStringLiteral("警報"));
    for (int i = 0; i < 4; ++i)
        sh->setCaption(ColAlarm1 + i, ColAlarm1 + i, QString::number(i + 1));
    sh->addGroup(ColSignal1, ColSignal1 + 7, QStringLiteral("時間信號"));
    for (int k = 0; k < Sd::TimeSignals; ++k)
        sh->setCaption(ColSignal1 + k, ColSignal1 + k, QString::number(k + 1));
    sprdSegment = named(new QTableWidget(Sd::MaxSegments, SegmentColumns), QStringLiteral("sprdSegment"));
    sprdSegment->setHorizontalHeader(sh);
    sh->setMinimumSectionSize(18);
    sprdSegment->setSelectionMode(QAbstractItemView::SingleSelection);
    sprdSegment->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed
                                 | QAbstractItemView::AnyKeyPressed);
    sprdSegment->verticalHeader()->setDefaultSectionSize(22);
    sprdSegment->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    sprdSegment->verticalHeader()->setSectionsClickable(true);
    for (int c = 0; c < SegmentColumns; ++c)
        sprdSegment->setColumnWidth(c, c <= ColMinutes ? 58 : c == ColWait ? 44 : 28);
    sprdSegment->setColumnHidden(ColSpare, true);
    // Set values and time are typed; the flags are switched by a click.
    for (int r = 0; r < Sd::MaxSegments; ++r)
        for (int c = ColWait; c < SegmentColumns; ++c)
            tableCell(sprdSegment, r, c)->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    auto *segmentEntry = new CellEntry(sprdSegment);
    segmentEntry->onChange([this](int row, int col, const QString &t) { return segmentChanged(row + 1, col, t); });
    segmentEntry->onFinish([this](int row, int col, const QString &t) { segmentFinished(row + 1, col, t); });
    segmentEntry->onAbandon([this](int, int) { abandoned(sprdSegment); });
    connect(sprdSegment, &QTableWidget::cellClicked, this, [this](int row, int col) { segmentClicked(row + 1, col); });
    connect(sprdSegment, &QTableWidget::currentCellChanged, this,
            [this](int row, int col, int, int) { enteringCell(row + 1, col); });
    connect(sprdSegment->verticalHeader(), &QHeaderView::sectionClicked, this,
            [this](int row) { headingClicked(row + 1); });
    auto *fraSegment = named(new QGroupBox(QStringLiteral("選擇程式段")), QStringLiteral("fraSegment"));
    (new QVBoxLayout(fraSegment))->addWidget(sprdSegment);
    sprdSegment->setEnabled(false);

    // The time signals of the selected segment.
    auto *th = new GroupedHeader;
    th->setCaption(ColOn, ColOn, QStringLiteral("ON"));
    th->setCaption(ColOff, ColOff, QStringLiteral("OFF"));
    th->setCaption(ColTime1First, ColTime1Second, QStringLiteral("時間1"));
    th->setCaption(ColTime2First, ColTime2Second, QStringLiteral("時間2"));
    sprdTimeSignal = named(new QTableWidget(Sd::TimeSignals, SignalColumns), QStringLiteral("sprdTimeSignal"));
    sprdTimeSignal->setHorizontalHeader(th);
    sprdTimeSignal->setSelectionMode(QAbstractItemView::SingleSelection);
    sprdTimeSignal->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed
                                    | QAbstractItemView::AnyKeyPressed);
    sprdTimeSignal->verticalHeader()->setDefaultSectionSize(22);
    for (int c = 0; c < SignalColumns; ++c)
        sprdTimeSignal->setColumnWidth(c, 40);
    for (int r = 0; r < Sd::TimeSignals; ++r)
        for (int c = 0; c < SignalColumns; ++c)
            tableCell(sprdTimeSignal, r, c);
    sprdTimeSignal->setFixedSize(40 * SignalColumns + 40, 8 * 22 + th->sizeHint().height() + 6);
    auto *signalEntry = new CellEntry(sprdTimeSignal);
    signalEntry->onChange([this](int row, int col, const QString &t) { return signalChanged(row, col, t); });
    signalEntry->onFinish([this](int row, int col, const QString &t) { signalFinished(row, col, t); });
    signalEntry->onAbandon([this](int, int) { abandoned(sprdTimeSignal); });
    connect(sprdTimeSignal, &QTableWidget::cellClicked, this, &frmQM730Prg_SEG::signalClicked);
    auto *fraSignal = named(new QGroupBox(QStringLiteral("時間信號")), QStringLiteral("fraTimeSignal"));
    auto *signalColumn = new QVBoxLayout(fraSignal);
    signalColumn->addWidget(sprdTimeSignal);
    signalColumn->addStretch(1);
    sprdTimeSignal->setEnabled(false);

    m_curve = new ProgramCurve(QStringLiteral("溫度 SV"), QStringLiteral("濕度 SV"));
    m_curve->setMinimumSize(380, 240);

    btn3D = named(new QCheckBox(QStringLiteral("3D")), QStringLiteral("btn3D"));
    connect(btn3D, &QCheckBox::toggled, m_curve, &ProgramCurve::set3D);
    btnPrintGraph = named(new QPushButton(QStringLiteral("Graph Print")), QStringLiteral("btnPrintGraph"));
    btnPrintSheet = named(new QPushButton(QStringLiteral("Sheet Print")), QStringLiteral("btnPrintSheet"));
    connect(btnPrintGraph, &QPushButton::clicked, this, [this] { print(false); });
    connect(btnPrintSheet, &QPushButton::clicked, this, [this] { print(true); });
    btnClose = closeButton(this);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(btn3D);
    buttons->addStretch(1);
    for (QPushButton *b : {btnPrintGraph, btnPrintSheet, btnClose}) {
        b->setMinimumSize(110, 34);
        buttons->addWidget(b);
    }

    auto *right = new QVBoxLayout;
    right->addWidget(fraSignal);
    right->addWidget(m_curve, 1);
    auto *lower = new QHBoxLayout;
    lower->addWidget(fraSegment, 1);
    lower->addLayout(right);

    auto *main = new QVBoxLayout(this);
    main->addLayout(top);
    main->addWidget(fraPattern);
    main->addLayout(lower, 1);
    main->addLayout(buttons);
    resize(1150, 800);
    noDefaultButtons(this);

    setUpRefreshTimer(tmrRefresh);
    connect(&tmrRefresh, &QTimer::timeout, this, &frmQM730Prg_SEG::tmrRefresh_Timer);
    setUpOpeningTimers(this, tmrRefresh_ID, tmrUnload,
                       [this] { lblMC_No->setText(QString::number(m_state.CurrentMachine)); });
    // The chain of a count change is through: the wait message goes.
    connect(&m_ctx.link, &CommLink::segmentWriteDone, lblMSG, &QLabel::hide);
}

// Opened from the menu the screen opens the program image itself (cache or
// fetch); from the pattern editor the image is open already and only the
// pattern is taken over.
void frmQM730Prg_SEG::load(int pattern)
{
    sprdPattern->setRowCount(m_state.PatternCount());
    const bool complete = m_fromPatternEditor || openProgramImage(m_ctx, this);
    m_writer = std::make_unique<ProgramWriter>(m_ctx, tmrRefresh);
    m_curve->ClearCurve();
    PatternList::fill(sprdPattern, m_state.image, m_state.FirmwareVersion());
    if (!complete) {
        tmrUnload.start();
        return;
    }
    if (pattern >= 1 && pattern <= sprdPattern->rowCount())
        lblPattern->setText(QString::number(pattern));
    tmrRefresh_ID.start();
    tmrRefresh.start();
}

void frmQM730Prg_SEG::done(int result)
{
    unload();
    QDialog::done(result);
}

void frmQM730Prg_SEG::unload()
{
    if (m_unloaded)
        return;
    m_unloaded = true;
    tmrRefresh.stop();
    m_writer.reset(); // the refresh goes back to the screen before this one
    if (m_fromPatternEditor)
        saveProgramImage(m_ctx);
    else
        closeProgramImage(m_ctx);
}

int frmQM730Prg_SEG::selectedPattern() const
{
    return leadingInt(lblPattern->text());
}

int frmQM730Prg_SEG::selectedSegment() const
{
    return leadingInt(lblSegment->text());
}

int frmQM730Prg_SEG::shownSegmentCount() const
{
    return leadingInt(lblSegCount->text());
}

bool frmQM730Prg_SEG::CellDirty() const
{
    return m_writer && m_writer->cellDirty();
}

int frmQM730Prg_SEG::ChangedWord() const
{
    return m_writer ? m_writer->ChangedWord() : 0;
}

QString frmQM730Prg_SEG::cellText(QTableWidget *table, int row, int column) const
{
    const QTableWidgetItem *item = table->item(row, column);
    return item ? item->text() : QString();
}

int frmQM730Prg_SEG::patternWordOf(int word) const
{
    return int(patternWord(m_state.image, selectedPattern(), word));
}

int frmQM730Prg_SEG::segmentWordOf(int segment, int word) const
{
    return int(segmentWord(m_state.image, selectedPattern(), segment, word));
}

// ---- Pattern and refresh ----------------------------------------------------

void frmQM730Prg_SEG::selectPattern(int pattern)
{
    if (pattern < 1 || pattern > sprdPattern->rowCount())
        return;
    lblSegment->clear();
    lblPattern->setText(QString::number(pattern));
    tmrRefresh.start();
}

void frmQM730Prg_SEG::clearSegments()
{
    for (QTableWidget *table : {sprdSegment, sprdTimeSignal})
        for (int r = 0; r < table->rowCount(); ++r)
            for (int c = 0; c < table->columnCount(); ++c) {
                QTableWidgetItem *item = tableCell(table, r, c);
                item->setText(QString());
                item->setBackground(QBrush());
            }
}

void frmQM730Prg_SEG::fillSegmentRow(int s)
{
    const double fw = m_state.FirmwareVersion();
    const int row = s - 1;
    tableCell(sprdSegment, row, ColTemp)->setText(programText(ProgramValue::SegTempSV, segmentWordOf(s, Sd::SegTempSV), fw));
    tableCell(sprdSegment, row, ColHumi)->setText(programText(ProgramValue::SegHumiSV, segmentWordOf(s, Sd::SegHumiSV), fw));
    const int time = segmentWordOf(s, Sd::SegTime);
    tableCell(sprdSegment, row, ColHours)->setText(QString::number(highByte(time)));
    tableCell(sprdSegment, row, ColMinutes)->setText(QString::number(lowByte(time)));
    const int flags = segmentWordOf(s, Sd::SegFlags);
    QTableWidgetItem *wait = tableCell(sprdSegment, row, ColWait);
    wait->setText(highByte(flags) != 0 ? QStringLiteral("WT") : QStringLiteral("-"));
    setChosen(wait, highByte(flags) != 0);
    for (int i = 0; i < Pd::Alarms; ++i)
        setChosen(tableCell(sprdSegment, row, ColAlarm1 + i), (lowByte(flags) >> i) & 1);
    for (int k = 1; k <= Sd::TimeSignals; ++k)
        setChosen(tableCell(sprdSegment, row, ColSignal1 + k - 1), lowByte(segmentWordOf(s, Sd::TsMode(k))) != 0);
}

void frmQM730Prg_SEG::fillTimeSignals(int s)
{
    for (int k = 1; k <= Sd::TimeSignals; ++k) {
        const int row = k - 1;
        const int mode = segmentWordOf(s, Sd::TsMode(k));
        setChosen(tableCell(sprdTimeSignal, row, ColOn), mode == Sd::TsOn);
        setChosen(tableCell(sprdTimeSignal, row, ColOff), mode == Sd::TsOff);
        tableCell(sprdTimeSignal, row, ColOn)->setText(QStringLiteral("ON"));
        tableCell(sprdTimeSignal, row, ColOff)->setText(QStringLiteral("OFF"));
        for (QTableWidgetItem *item : {tableCell(sprdTimeSignal, row, ColOn), tableCell(sprdTimeSignal, row, ColOff)})
            item->setFlags(Qt::ItemIsEnabled);
        const int t1 = segmentWordOf(s, Sd::TsTime1(k));
        const int t2 = segmentWordOf(s, Sd::TsTime2(k));
        tableCell(sprdTimeSignal, row, ColTime1First)->setText(QString::number(highByte(t1)));
        tableCell(sprdTimeSignal, row, ColTime1Second)->setText(QString::number(lowByte(t1)));
        tableCell(sprdTimeSignal, row, ColTime2First)->setText(QString::number(highByte(t2)));
        tableCell(sprdTimeSignal, row, ColTime2Second)->setText(QString::number(lowByte(t2)));
    }
}

// After opening, a choice of pattern, and every read-back: the segments as
// the image holds them, the curve, and the selected segment's time signals.
void frmQM730Prg_SEG::tmrRefresh_Timer()
{
    tmrRefresh.stop();
    lblMSG->hide();
    const int p = selectedPattern();
    if (p < 1) {
        sprdSegment->setEnabled(false);
        return;
    }
    sprdSegment->setEnabled(true);
    clearSegments();
    const int count = std::clamp(patternWordOf(Pd::SegmentCount), 0, int(Sd::MaxSegments));
    lblSegCount->setText(QString::number(count));
    for (int s = 1; s <= count; ++s)
        fillSegmentRow(s);
    ComputeCurvePoints(m_state, p, sprdRunSeg_List);
    m_curve->DrawCurve(sprdRunSeg_List);
    if (selectedSegment() >= 1)
        segmentClicked(selectedSegment(), -1);
    else
        sprdTimeSignal->setEnabled(false);
}

// ---- Segments -----------------------------------------------------------------

void frmQM730Prg_SEG::segmentClicked(int row, int column)
{
    const int count = shownSegmentCount();
    if (row < 1 || count < 1 || selectedPattern() < 1)
        return;
    lblSegment->setText(QString::number(row));
    sprdTimeSignal->setEnabled(row <= count);
    fillTimeSignals(row);
    if (row > count)
        return;
    if (column == ColWait)
        toggleWait(row);
    else if (column >= ColAlarm1 && column < ColSignal1)
        toggleAlarm(row, column);
    else if (column >= ColSignal1 && column < SegmentColumns && tableCell(sprdSegment, row - 1, column)->background().style() != Qt::NoBrush)
        openTimeSignals(row);
}

void frmQM730Prg_SEG::headingClicked(int row)
{
    const int count = shownSegmentCount();
    if (selectedPattern() < 1 || count < 1 || row < 1 || row > count)
        return;
    deleteSegment(row);
}

// Humidity is controlled only between the bounds of sprdUP rows 70 (upper)
// and 71 (lower): outside them the cursor goes back to the temperature.
void frmQM730Prg_SEG::enteringCell(int row, int column)
{
    if (column != ColHumi || row < 1 || selectedPattern() < 1)
        return;
    const TextTable &up = m_state.image.sprdUP;
    if (up.text(1, 70).isEmpty() || up.text(1, 71).isEmpty())
        return; // the block is not read yet: no bounds known
    const double upper = (up.number(1, 70) - 10000) / 100.0;
    const double lower = (up.number(1, 71) - 10000) / 100.0;
    const double temp = (segmentWordOf(row, Sd::SegTempSV) - 10000) / 100.0;
    if (temp > upper || temp < lower)
        QTimer::singleShot(0, sprdSegment, [this, row] { sprdSegment->setCurrentCell(row - 1, ColTemp); });
}

void frmQM730Prg_SEG::toggleWait(int s)
{
    if (patternWordOf(Pd::WaitTemp) == 0 && patternWordOf(Pd::WaitHumi) == 0)
        return;
    const int flags = segmentWordOf(s, Sd::SegFlags);
    const int p = selectedPattern();
    m_writer->storeSegmentWord(p, s, Sd::SegFlags, packBytes(highByte(flags) ? 0 : 1, lowByte(flags)));
    fillSegmentRow(s);
    m_writer->sendSegmentWords(p, s, Sd::SegFlags, Sd::SegFlags);
}

void frmQM730Prg_SEG::toggleAlarm(int s, int column)
{
    bool anyAlarm = false;
    for (int i = 1; i <= Pd::Alarms; ++i)
        anyAlarm = anyAlarm || lowByte(patternWordOf(Pd::AlarmKind(i))) != 0;
    if (!anyAlarm)
        return;
    // The alarms of the segment as the row shows them, the clicked one flipped.
    int bits = 0;
    for (int c = ColAlarm1; c < ColSignal1; ++c) {
        const bool on = isChosen(tableCell(sprdSegment, s - 1, c));
        if (c == column ? !on : on)
            bits += 1 << (c - ColAlarm1);
    }
    const int p = selectedPattern();
    m_writer->storeSegmentWord(p, s, Sd::SegFlags, packBytes(highByte(segmentWordOf(s, Sd::SegFlags)), bits));
    fillSegmentRow(s);
    m_writer->sendSegmentWords(p, s, Sd::SegFlags, Sd::SegFlags);
}

void frmQM730Prg_SEG::openTimeSignals(int s)
{
    frmQM730Prg_SEG_TS editor(m_ctx, this, m_writer.get(), selectedPattern(), s);
    editor.exec();
}

QString frmQM730Prg_SEG::segmentChanged(int s, int column, const QString &text)
{
    const int p = selectedPattern();
    if (p < 1)
        return text;
    const double fw = m_state.FirmwareVersion();
    switch (column) {
    case ColTemp:
        m_writer->storeSegmentWord(p, s, Sd::SegTempSV, programWordFromText(ProgramValue::SegTempSV, text, fw));
        break;
    case ColHumi:
        m_writer->storeSegmentWord(p, s, Sd::SegHumiSV, programWordFromText(ProgramValue::SegHumiSV, text, fw));
        break;
    case ColHours:
        m_writer->storeSegmentWord(p, s, Sd::SegTime,
                                   packHoursMinutes(leadingInt(text), leadingInt(cellText(sprdSegment, s - 1, ColMinutes))));
        break;
    case ColMinutes:
        m_writer->storeSegmentWord(p, s, Sd::SegTime,
                                   packHoursMinutes(leadingInt(cellText(sprdSegment, s - 1, ColHours)), leadingInt(text)));
        break;
    default:
        break;
    }
    return text;
}

void frmQM730Prg_SEG::segmentFinished(int s, int column, const QString &text)
{
    const int p = selectedPattern();
    QTableWidgetItem *item = tableCell(sprdSegment, s - 1, column);
    if (p < 1) {
        // No pattern: the entry is wiped.
        m_writer->revert();
        item->setText(QString());
        return;
    }
    if (!m_writer->cellDirty() || column > ColMinutes)
        return;
    const double fw = m_state.FirmwareVersion();
    int word = 0;
    QString kept;
    switch (column) {
    case ColTemp:
        kept = clampedEntry(text, -100, 200, QStringLiteral("0.00"));
        word = Sd::SegTempSV;
        m_writer->storeSegmentWord(p, s, word, programWordFromText(ProgramValue::SegTempSV, kept, fw));
        break;
    case ColHumi: {
        // Humidity is set only for temperatures above 0 and below 100.
        const double temp = (segmentWordOf(s, Sd::SegTempSV) - 10000) / 100.0;
        if (temp <= 0 || temp >= 100) {
            m_writer->revert();
            item->setText(QStringLiteral("0"));
            return;
        }
        kept = clampedEntry(text, 0, 100, QStringLiteral("0.0"));
        word = Sd::SegHumiSV;
        m_writer->storeSegmentWord(p, s, word, programWordFromText(ProgramValue::SegHumiSV, kept, fw));
        break;
    }
    case ColHours:
    case ColMinutes: {
        kept = clampedEntry(text, 0, column == ColHours ? 99 : 59, QStringLiteral("0"));
        const int other = column == ColHours ? ColMinutes : ColHours;
        const int hours = column == ColHours ? leadingInt(kept) : leadingInt(cellText(sprdSegment, s - 1, other));
        const int minutes = column == ColMinutes ? leadingInt(kept) : leadingInt(cellText(sprdSegment, s - 1, other));
        word = Sd::SegTime;
        m_writer->storeSegmentWord(p, s, word, packHoursMinutes(hours, minutes));
        break;
    }
    default:
        return;
    }
    item->setText(kept);
    if (s <= patternWordOf(Pd::SegmentCount))
        m_writer->sendSegmentWords(p, s, word, word);
    else
        addSegments(s);
}

// An entry in a row past the last segment: that row and every row between
// take its values, the count becomes the row, and the new segments go out
// behind the count.
void frmQM730Prg_SEG::addSegments(int last)
{
    const int p = selectedPattern();
    const int count = std::clamp(patternWordOf(Pd::SegmentCount), 0, int(Sd::MaxSegments));
    const double fw = m_state.FirmwareVersion();
    const int row = last - 1;
    const quint16 temp = programWordFromText(ProgramValue::SegTempSV, cellText(sprdSegment, row, ColTemp), fw);
    const quint16 humi = programWordFromText(ProgramValue::SegHumiSV, cellText(sprdSegment, row, ColHumi), fw);
    const quint16 time = packHoursMinutes(leadingInt(cellText(sprdSegment, row, ColHours)),
                                          leadingInt(cellText(sprdSegment, row, ColMinutes)));
    for (int s = count + 1; s <= last; ++s) {
        m_writer->storeSegmentWord(p, s, Sd::SegTempSV, temp);
        m_writer->storeSegmentWord(p, s, Sd::SegHumiSV, humi);
        m_writer->storeSegmentWord(p, s, Sd::SegTime, time);
    }
    m_writer->storePatternWord(p, Pd::SegmentCount, last);
    lblSegCount->setText(QString::number(last));
    for (int s = count + 1; s <= last; ++s)
        fillSegmentRow(s);
    lblMSG->show();
    m_writer->sendSegmentCount(p, count + 1, last);
}

void frmQM730Prg_SEG::deleteSegment(int s)
{
    if (!askConsoleYesNo(this, QStringLiteral("刪除段 %1 ?").arg(s), QStringLiteral("確認")))
        return;
    const int p = selectedPattern();
    const int count = patternWordOf(Pd::SegmentCount);
    for (int w = 1; w <= Sd::Words; ++w)
        m_writer->storeSegmentWord(p, s, w, 0);
    // The later segments move up one place; the last place keeps its words.
    for (int from = s + 1; from <= Sd::MaxSegments; ++from)
        for (int w = 1; w <= Sd::Words; ++w)
            m_writer->storeSegmentWord(p, from - 1, w, segmentWordOf(from, w));
    m_writer->storePatternWord(p, Pd::SegmentCount, count - 1);
    lblMSG->show();
    m_writer->sendSegmentCount(p, s, count - 1);
    tmrRefresh_Timer(); // the rows as they now stand, until the read-back
}

// ---- Time signals -------------------------------------------------------------

void frmQM730Prg_SEG::signalClicked(int row, int column)
{
    const int p = selectedPattern();
    const int s = selectedSegment();
    if (p < 1 || s < 1 || (column != ColOn && column != ColOff) || !sprdTimeSignal->isEnabled())
        return;
    const int k = row + 1;
    m_writer->storeSegmentWord(p, s, Sd::TsMode(k), column == ColOn ? Sd::TsOn : Sd::TsOff);
    setChosen(tableCell(sprdTimeSignal, row, ColOn), column == ColOn);
    setChosen(tableCell(sprdTimeSignal, row, ColOff), column == ColOff);
    sprdTimeSignal->setEnabled(false); // until the read-back
    m_writer->sendSegmentWords(p, s, Sd::TsMode(k), Sd::TsMode(k));
}

QString frmQM730Prg_SEG::signalChanged(int row, int column, const QString &text)
{
    const int p = selectedPattern();
    const int s = selectedSegment();
    if (p < 1 || s < 1 || column < ColTime1First)
        return text;
    const int k = row + 1;
    const bool first = column == ColTime1First || column == ColTime2First;
    const int pair = first ? column + 1 : column - 1;
    const int high = first ? leadingInt(text) : leadingInt(cellText(sprdTimeSignal, row, pair));
    const int low = first ? leadingInt(cellText(sprdTimeSignal, row, pair)) : leadingInt(text);
    const int word = column <= ColTime1Second ? Sd::TsTime1(k) : Sd::TsTime2(k);
    const quint16 value = packBytes(high, low);
    m_writer->storeSegmentWord(p, s, word, value);
    if (value >= 1) {
        // A time makes the signal a timed one.
        m_writer->storeSegmentWord(p, s, Sd::TsMode(k), Sd::TsTimed);
        setChosen(tableCell(sprdTimeSignal, row, ColOn), false);
        setChosen(tableCell(sprdTimeSignal, row, ColOff), false);
    }
    return text;
}

void frmQM730Prg_SEG::signalFinished(int row, int column, const QString &text)
{
    const int p = selectedPattern();
    const int s = selectedSegment();
    if (p < 1 || s < 1 || column < ColTime1First || !m_writer->cellDirty())
        return;
    const QString kept = clampedEntry(text, 0, timeCellHigh(column), QStringLiteral("0"));
    tableCell(sprdTimeSignal, row, column)->setText(kept);
    signalChanged(row, column, kept);
    const int k = row + 1;
    m_writer->sendSegmentWords(p, s, Sd::TsMode(k), Sd::TsTime2(k));
}

void frmQM730Prg_SEG::abandoned(QTableWidget *table)
{
    if (!m_writer->cellDirty())
        return;
    m_writer->revert();
    const int s = selectedSegment();
    if (table == sprdTimeSignal && s >= 1)
        fillTimeSignals(s);
    else
        tmrRefresh_Timer();
}

// ---- Printing -----------------------------------------------------------------

bool frmQM730Prg_SEG::printSheet(QPrinter &printer)
{
    const int p = selectedPattern();
    SegmentSheet sheet;
    sheet.title = QStringLiteral("程式組 %1  %2").arg(p).arg(p >= 1 ? patternName(m_state.image, p) : QString());
    sheet.subtitle = QStringLiteral("機號 %1    段數統計 %2").arg(m_state.CurrentMachine).arg(shownSegmentCount());
    for (int c = 0; c < SegmentColumns; ++c) {
        if (c == ColSpare)
            continue;
        auto *header = static_cast<GroupedHeader *>(sprdSegment->horizontalHeader());
        const QString group = header->captionOf(c, 0);
        const QString caption = header->captionOf(c, 1);
        sheet.headings << (group.isEmpty() || group == caption ? caption : group + QLatin1Char('\n') + caption);
    }
    for (int s = 1; s <= shownSegmentCount(); ++s) {
        QStringList row;
        for (int c = 0; c < SegmentColumns; ++c) {
            if (c == ColSpare)
                continue;
            const QTableWidgetItem *item = sprdSegment->item(s - 1, c);
            const bool mark = c >= ColAlarm1 && isChosen(item);
            row << (mark ? QStringLiteral("●") : item ? item->text() : QString());
        }
        sheet.rows << row;
    }
    return sheet.print(printer);
}

bool frmQM730Prg_SEG::printGraph(QPrinter &printer)
{
    const int p = selectedPattern();
    return printWidget(printer, m_curve,
                QStringLiteral("程式組 %1  %2").arg(p).arg(p >= 1 ? patternName(m_state.image, p) : QString()));
}

bool frmQM730Prg_SEG::printSheetToPdf(const QString &path)
{
    QPrinter printer(QPrinter::HighResolution);
    preparePdf(printer, path);
    return printSheet(printer);
}

bool frmQM730Prg_SEG::printGraphToPdf(const QString &path)
{
    QPrinter printer(QPrinter::HighResolution);
    preparePdf(printer, path);
    return printGraph(printer);
}

// On a printer when the machine has one (the print dialog chooses it, or a
// file); without one, into a PDF file the operator names.
void frmQM730Prg_SEG::print(bool sheet)
{
    const int p = selectedPattern();
    if (QPrinterInfo::availablePrinters().isEmpty()) {
        const QString suggested = QStringLiteral("%1/Pattern%2_%3.pdf")
                                      .arg(m_state.home)
                                      .arg(p)
                                      .arg(sheet ? QStringLiteral("Sheet") : QStringLiteral("Graph"));
        const QString path = QFileDialog::getSaveFileName(this, sheet ? btnPrintSheet->text() : btnPrintGraph->text(),
                                                          suggested, QStringLiteral("PDF (*.pdf)"));
        if (path.isEmpty())
            return;
        if (!(sheet ? printSheetToPdf(path) : printGraphToPdf(path)))
            showConsoleMessage(this, QStringLiteral("無法寫入 ") + path);
        return;
    }
    QPrinter printer(QPrinter::HighResolution);
    printer.setPageOrientation(QPageLayout::Landscape);
    QPrintDialog dialog(&printer, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    if (sheet)
        printSheet(printer);
    else
        printGraph(printer);
}
