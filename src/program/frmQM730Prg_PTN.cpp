#include "frmQM730Prg_PTN.h"
#include "CellEntry.h"
#include "ConsoleState.h"
#include "Encodings.h"
#include "Files.h"
#include "GroupedHeader.h"
#include "ProgramCurve.h"
#include "ProgramImage.h"
#include "ProgramSession.h"
#include "ProgramWriter.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include "frmQM730Prg_SEG.h"
#include "frmSys_AlarmCode.h"
#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace {

const QColor ChosenColour(0, 255, 0); // 65280
const QColor LockedColour(0, 0, 0);

// Limits of the cells of sprdPattern and sprdRepeat whose bounds are the
// screen's own: what their words can carry and the controller can run.
struct CellRange {
    double low;
    double high;
    const char *pattern;
};

QTableWidget *programTable(const QString &name, int rows, int columns, GroupedHeader *header)
{
    auto *t = named(new QTableWidget(rows, columns), name);
    t->setHorizontalHeader(header);
    t->setSelectionMode(QAbstractItemView::SingleSelection);
    t->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed
                       | QAbstractItemView::AnyKeyPressed);
    t->verticalHeader()->setDefaultSectionSize(22);
    t->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    return t;
}

void setEditable(QTableWidgetItem *item, bool editable)
{
    const Qt::ItemFlags base = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    item->setFlags(editable ? base | Qt::ItemIsEditable : base);
}

// A cell that stands for a choice: green when chosen, else the table's face.
void setChosen(QTableWidgetItem *item, bool chosen)
{
    item->setBackground(chosen ? QBrush(ChosenColour) : QBrush());
}

} // namespace

// ---- Construction -----------------------------------------------------------

frmQM730Prg_PTN::frmQM730Prg_PTN(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_state(context.state)
{
    setObjectName(QStringLiteral("frmQM730Prg_PTN"));
    setWindowTitle(QStringLiteral("程式設定(程式組設定)"));
    buildControls();
    load();
}

frmQM730Prg_PTN::~frmQM730Prg_PTN()
{
    unload();
}

void frmQM730Prg_PTN::buildControls()
{
    // Top: the machine and the selected pattern.
    auto *top = new QHBoxLayout;
    lblMC_No = valueBox(QStringLiteral("lblMC_No"), 60);
    lblPattern = valueBox(QStringLiteral("lblPattern"), 60);
    top->addWidget(captionRow(QStringLiteral("機號"), lblMC_No, 40));
    top->addWidget(captionRow(QStringLiteral("程式組"), lblPattern, 50));
    top->addStretch(1);

    // The pattern list.
    auto *ph = new GroupedHeader;
    ph->addGroup(ColTempLabel, ColWaitMinutes, QStringLiteral("程式待機"));
    ph->addGroup(ColStartSV, ColStartHumi, QStringLiteral("起始條件"));
    ph->setCaption(ColName, ColName, QStringLiteral("程式組名稱"));
    ph->setCaption(ColTempLabel, ColWaitTemp, QStringLiteral("溫度待機"));
    ph->setCaption(ColHumiLabel, ColWaitHumi, QStringLiteral("濕度待機"));
    ph->setCaption(ColWaitHours, ColWaitHours, QStringLiteral("待機時間\n小時"));
    ph->setCaption(ColWaitMinutes, ColWaitMinutes, QStringLiteral("待機時間\n分鐘"));
    ph->setCaption(ColRepeatAll, ColRepeatAll, QStringLiteral("全部循環"));
    ph->setCaption(ColLinkPattern, ColLinkPattern, QStringLiteral("連接程式"));
    ph->setCaption(ColStartSV, ColStartPV, QStringLiteral("起始模式"));
    ph->setCaption(ColStartTemp, ColStartTemp, QStringLiteral("溫度起始值"));
    ph->setCaption(ColStartHumi, ColStartHumi, QStringLiteral("濕度起始值"));
    sprdPattern = programTable(QStringLiteral("sprdPattern"), 0, PatternColumns, ph);
    const int widths[PatternColumns] = {190, 22, 62, 22, 62, 58, 58, 66, 66, 50, 50, 76, 76};
    for (int c = 0; c < PatternColumns; ++c)
        sprdPattern->setColumnWidth(c, widths[c]);
    sprdPattern->setMinimumHeight(260);
    auto *patternEntry = new CellEntry(sprdPattern);
    patternEntry->onChange([this](int row, int col, const QString &t) { return patternChanged(row + 1, col, t); });
    patternEntry->onFinish([this](int row, int col, const QString &t) { patternFinished(row + 1, col, t); });
    patternEntry->onAbandon([this](int row, int col) { abandoned(sprdPattern, row, col); });
    connect(sprdPattern, &QTableWidget::cellClicked, this, [this](int row, int col) {
        if (col == ColStartSV || col == ColStartPV)
            startModeClicked(row + 1, col);
        else
            selectPattern(row + 1);
    });
    connect(sprdPattern, &QTableWidget::currentCellChanged, this, [this](int row, int col, int previousRow, int) {
        if (row >= 0 && row != previousRow && col != ColStartSV && col != ColStartPV)
            selectPattern(row + 1);
    });

    // The alarms and partial repeats of the selected pattern.
    auto *ah = new GroupedHeader;
    ah->setCaption(ColTempObject, ColHumiObject, QStringLiteral("對象選擇"));
    ah->setCaption(ColAlarmType, ColAlarmType, QStringLiteral("類型"));
    ah->setCaption(ColAlarmSV, ColAlarmSV, QStringLiteral("警報SV"));
    ah->setCaption(ColAlarmHyst, ColAlarmHyst, QStringLiteral("回差"));
    sprdAlarm = programTable(QStringLiteral("sprdAlarm"), Pd::Alarms, AlarmColumns, ah);
    const int alarmWidths[AlarmColumns] = {46, 46, 46, 72, 60};
    for (int c = 0; c < AlarmColumns; ++c)
        sprdAlarm->setColumnWidth(c, alarmWidths[c]);
    sprdAlarm->setFixedSize(310, 4 * 22 + ah->sizeHint().height() + 6);
    auto *alarmEntry = new CellEntry(sprdAlarm);
    alarmEntry->onChange([this](int row, int col, const QString &t) { return alarmChanged(row, col, t); });
    alarmEntry->onFinish([this](int row, int col, const QString &t) { alarmFinished(row, col, t); });
    alarmEntry->onAbandon([this](int row, int col) { abandoned(sprdAlarm, row, col); });
    connect(sprdAlarm, &QTableWidget::cellClicked, this, &frmQM730Prg_PTN::alarmClicked);

    auto *rh = new GroupedHeader;
    rh->setCaption(ColRepeatStart, ColRepeatStart, QStringLiteral("段.開始"));
    rh->setCaption(ColRepeatEnd, ColRepeatEnd, QStringLiteral("段.結束"));
    rh->setCaption(ColRepeatCount, ColRepeatCount, QStringLiteral("次數"));
    sprdRepeat = programTable(QStringLiteral("sprdRepeat"), Pd::Repeats, RepeatColumns, rh);
    for (int c = 0; c < RepeatColumns; ++c)
        sprdRepeat->setColumnWidth(c, 60);
    sprdRepeat->setFixedWidth(232);
    auto *repeatEntry = new CellEntry(sprdRepeat);
    repeatEntry->onChange([this](int row, int col, const QString &t) { return repeatChanged(row, col, t); });
    repeatEntry->onFinish([this](int row, int col, const QString &t) { repeatFinished(row, col, t); });
    repeatEntry->onAbandon([this](int row, int col) { abandoned(sprdRepeat, row, col); });

    fraAlarm = named(new QGroupBox(QStringLiteral("警報/部分循環")), QStringLiteral("fraAlarm"));
    auto *frame = new QHBoxLayout(fraAlarm);
    auto *alarmColumn = new QVBoxLayout;
    alarmColumn->addWidget(sprdAlarm);
    alarmColumn->addStretch(1);
    frame->addLayout(alarmColumn);
    frame->addWidget(sprdRepeat);
    fraAlarm->setEnabled(false);

    m_curve = new ProgramCurve(QStringLiteral("溫度SV"), QStringLiteral("濕度SV"));
    m_curve->setMinimumSize(420, 260);

    auto *lower = new QHBoxLayout;
    lower->addWidget(fraAlarm);
    lower->addWidget(m_curve, 1);

    // Buttons.
    btn3D = named(new QCheckBox(QStringLiteral("3D")), QStringLiteral("btn3D"));
    connect(btn3D, &QCheckBox::toggled, m_curve, &ProgramCurve::set3D);
    btnGo_Segment = named(new QPushButton(QStringLiteral("程式段設定")), QStringLiteral("btnGo_Segment"));
    connect(btnGo_Segment, &QPushButton::clicked, this, &frmQM730Prg_PTN::openSegments);
    btnClose = closeButton(this);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(btn3D);
    buttons->addStretch(1);
    for (QPushButton *b : {btnGo_Segment, btnClose}) {
        b->setMinimumSize(110, 34);
        buttons->addWidget(b);
    }

    auto *main = new QVBoxLayout(this);
    main->addLayout(top);
    main->addWidget(sprdPattern, 1);
    main->addLayout(lower);
    main->addLayout(buttons);
    resize(1100, 760);
    noDefaultButtons(this);

    setUpRefreshTimer(tmrRefresh);
    connect(&tmrRefresh, &QTimer::timeout, this, &frmQM730Prg_PTN::tmrRefresh_Timer);
    tmrRegraph.setObjectName(QStringLiteral("tmrRegraph"));
    tmrRegraph.setSingleShot(true);
    tmrRegraph.setInterval(50);
    connect(&tmrRegraph, &QTimer::timeout, this, &frmQM730Prg_PTN::tmrRegraph_Timer);
    tmrRefresh_ID.setObjectName(QStringLiteral("tmrRefresh_ID"));
    tmrRefresh_ID.setSingleShot(true);
    tmrRefresh_ID.setInterval(50);
    connect(&tmrRefresh_ID, &QTimer::timeout, this, [this] {
        lblMC_No->setText(QString::number(m_state.CurrentMachine));
    });
    tmrUnload.setObjectName(QStringLiteral("tmrUnload"));
    tmrUnload.setSingleShot(true);
    tmrUnload.setInterval(0);
    connect(&tmrUnload, &QTimer::timeout, this, &QDialog::reject);
}

// The screen's load: the program image (from the cache or fetched), the
// refresh taken, the list filled. A fetch the operator stopped closes the
// screen again at once.
void frmQM730Prg_PTN::load()
{
    sprdPattern->setRowCount(m_state.PatternCount());
    const bool complete = openProgramImage(m_ctx, this);
    m_writer = std::make_unique<ProgramWriter>(m_ctx, tmrRefresh);
    m_curve->ClearCurve();
    fillPatternList();
    if (!complete)
        tmrUnload.start();
    else
        tmrRefresh_ID.start();
}

void frmQM730Prg_PTN::done(int result)
{
    unload();
    QDialog::done(result);
}

void frmQM730Prg_PTN::unload()
{
    if (m_unloaded)
        return;
    m_unloaded = true;
    tmrRefresh.stop();
    tmrRegraph.stop();
    m_writer.reset(); // the refresh goes back to the screen before this one
    closeProgramImage(m_ctx);
}

int frmQM730Prg_PTN::selectedPattern() const
{
    return leadingInt(lblPattern->text());
}

bool frmQM730Prg_PTN::CellDirty() const
{
    return m_writer && m_writer->cellDirty();
}

int frmQM730Prg_PTN::ChangedWord() const
{
    return m_writer ? m_writer->ChangedWord() : 0;
}

QTableWidgetItem *frmQM730Prg_PTN::cell(QTableWidget *table, int row, int column)
{
    QTableWidgetItem *item = table->item(row, column);
    if (!item) {
        item = new QTableWidgetItem;
        item->setTextAlignment(Qt::AlignCenter);
        table->setItem(row, column, item);
    }
    return item;
}

// ---- The pattern list -------------------------------------------------------

namespace {

int wordOfColumn(int column)
{
    switch (column) {
    case frmQM730Prg_PTN::ColWaitTemp: return Pd::WaitTemp;
    case frmQM730Prg_PTN::ColWaitHumi: return Pd::WaitHumi;
    case frmQM730Prg_PTN::ColWaitHours: case frmQM730Prg_PTN::ColWaitMinutes: return Pd::WaitTime;
    case frmQM730Prg_PTN::ColRepeatAll: return Pd::RepeatAll;
    case frmQM730Prg_PTN::ColLinkPattern: return Pd::LinkPattern;
    case frmQM730Prg_PTN::ColStartSV: case frmQM730Prg_PTN::ColStartPV: return Pd::StartMode;
    case frmQM730Prg_PTN::ColStartTemp: return Pd::StartTemp;
    case frmQM730Prg_PTN::ColStartHumi: return Pd::StartHumi;
    default: return 0;
    }
}

std::optional<CellRange> patternRange(int column, int patternCount)
{
    switch (column) {
    case frmQM730Prg_PTN::ColWaitTemp: return CellRange{0, 300, "0.0"};
    case frmQM730Prg_PTN::ColWaitHumi: return CellRange{0, 100, "0.0"};
    case frmQM730Prg_PTN::ColWaitHours: return CellRange{0, 99, "0"};
    case frmQM730Prg_PTN::ColWaitMinutes: return CellRange{0, 59, "0"};
    case frmQM730Prg_PTN::ColRepeatAll: return CellRange{0, 9999, "0"};
    case frmQM730Prg_PTN::ColLinkPattern: return CellRange{0, double(patternCount), "0"};
    case frmQM730Prg_PTN::ColStartTemp: return CellRange{-100, 200, "0.0"};
    case frmQM730Prg_PTN::ColStartHumi: return CellRange{0, 100, "0.0"};
    default: return std::nullopt;
    }
}

} // namespace

QString frmQM730Prg_PTN::patternCellText(int pattern, int column) const
{
    const ControllerImage &img = m_state.image;
    const double fw = m_state.FirmwareVersion();
    auto word = [&](int w) { return patternWord(img, pattern, w); };
    switch (column) {
    case ColName: return patternName(img, pattern);
    case ColTempLabel: case ColHumiLabel: return QStringLiteral("±");
    case ColWaitTemp: return programText(ProgramValue::WaitBand, word(Pd::WaitTemp), fw);
    case ColWaitHumi: return programText(ProgramValue::WaitBand, word(Pd::WaitHumi), fw);
    case ColWaitHours: return QString::number(highByte(word(Pd::WaitTime)));
    case ColWaitMinutes: return QString::number(lowByte(word(Pd::WaitTime)));
    case ColRepeatAll: return QString::number(word(Pd::RepeatAll));
    case ColLinkPattern: return QString::number(word(Pd::LinkPattern));
    case ColStartSV: return QStringLiteral("S.SV");
    case ColStartPV: return QStringLiteral("S.PV");
    case ColStartTemp: return programText(ProgramValue::StartTemp, word(Pd::StartTemp), fw);
    case ColStartHumi: return programText(ProgramValue::StartHumi, word(Pd::StartHumi), fw);
    default: return {};
    }
}

void frmQM730Prg_PTN::fillPatternCell(int pattern, int column)
{
    QTableWidgetItem *item = cell(sprdPattern, pattern - 1, column);
    item->setText(patternCellText(pattern, column));
    const bool entry = column != ColTempLabel && column != ColHumiLabel && column != ColStartSV && column != ColStartPV;
    setEditable(item, entry);
    if (column == ColName)
        item->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    if (column == ColStartSV || column == ColStartPV) {
        const qint64 mode = patternWord(m_state.image, pattern, Pd::StartMode);
        setChosen(item, mode == (column == ColStartSV ? 0 : 1));
    }
}

void frmQM730Prg_PTN::fillPatternList()
{
    for (int p = 1; p <= sprdPattern->rowCount(); ++p)
        for (int c = 0; c < PatternColumns; ++c)
            fillPatternCell(p, c);
}

void frmQM730Prg_PTN::selectPattern(int pattern)
{
    if (pattern < 1 || pattern > sprdPattern->rowCount())
        return;
    lblPattern->setText(QString::number(pattern));
    fillAlarms();
    fillRepeats();
    fraAlarm->setEnabled(true);
    tmrRegraph.start();
}

// The one entry of the list that goes out at once, without waiting for the
// cursor to leave: the start mode.
void frmQM730Prg_PTN::startModeClicked(int pattern, int column)
{
    m_writer->storePatternWord(pattern, Pd::StartMode, column == ColStartSV ? 0 : 1);
    lblPattern->setText(QString::number(pattern));
    saveProgramImage(m_ctx);
    m_regraphPending = true;
    fillPatternCell(pattern, ColStartSV);
    fillPatternCell(pattern, ColStartPV);
    m_writer->sendPatternWord(pattern, Pd::StartMode);
}

qint64 frmQM730Prg_PTN::patternEntryWord(int pattern, int column, const QString &text) const
{
    const double fw = m_state.FirmwareVersion();
    auto shown = [&](int col) { return sprdPattern->item(pattern - 1, col) ? sprdPattern->item(pattern - 1, col)->text() : QString(); };
    switch (column) {
    case ColWaitTemp: case ColWaitHumi: return programWordFromText(ProgramValue::WaitBand, text, fw);
    case ColWaitHours: return packHoursMinutes(leadingInt(text), leadingInt(shown(ColWaitMinutes)));
    case ColWaitMinutes: return packHoursMinutes(leadingInt(shown(ColWaitHours)), leadingInt(text));
    case ColRepeatAll: case ColLinkPattern: return clampWord(leadingInt(text));
    case ColStartTemp: return programWordFromText(ProgramValue::StartTemp, text, fw);
    case ColStartHumi: return programWordFromText(ProgramValue::StartHumi, text, fw);
    default: return 0;
    }
}

QString frmQM730Prg_PTN::patternChanged(int pattern, int column, const QString &text)
{
    if (column == ColName)
        return m_writer->storeName(pattern, text);
    if (const int word = wordOfColumn(column))
        m_writer->storePatternWord(pattern, word, patternEntryWord(pattern, column, text));
    return text;
}

void frmQM730Prg_PTN::patternFinished(int pattern, int column, const QString &text)
{
    if (!m_writer->cellDirty())
        return;
    if (column == ColName) {
        cell(sprdPattern, pattern - 1, column)->setText(m_writer->storeName(pattern, text));
        m_writer->sendName(pattern);
        return;
    }
    const int word = wordOfColumn(column);
    const auto range = patternRange(column, m_state.PatternCount());
    if (!word || !range)
        return;
    const QString kept = clampedEntry(text, range->low, range->high, QString::fromLatin1(range->pattern));
    cell(sprdPattern, pattern - 1, column)->setText(kept);
    m_writer->storePatternWord(pattern, word, patternEntryWord(pattern, column, kept));
    m_writer->sendPatternWord(pattern, word);
    if (word == Pd::RepeatAll || word == Pd::LinkPattern)
        tmrRegraph.start();
    if (word == Pd::StartTemp || word == Pd::StartHumi)
        m_regraphPending = true; // the start point of the curve moves
}

// ---- Alarms and partial repeats ---------------------------------------------

std::optional<frmQM730Prg_PTN::Limits> frmQM730Prg_PTN::alarmLimits(int column, int object, int type,
                                                                    double firmwareVersion, bool patternSelected)
{
    const bool humidity = object == 1;
    const bool deviation = (type >= 3 && type <= 6) || (type >= 13 && type <= 16);
    if (column == ColAlarmHyst) {
        if (!patternSelected)
            return Limits{0.1, firmwareVersion < 2.31 ? 100.0 : 300.0};
        return humidity ? Limits{0, 100} : Limits{0, 600};
    }
    if (column != ColAlarmSV)
        return std::nullopt;
    if (humidity)
        return deviation ? Limits{-100, 100} : Limits{0, 100};
    if (type == 7 || type == 8 || type == 17 || type == 18)
        return Limits{0, 300};
    return deviation ? Limits{-300, 300} : Limits{-100, 200};
}

void frmQM730Prg_PTN::fillAlarms()
{
    const int p = selectedPattern();
    if (p < 1)
        return;
    const double fw = m_state.FirmwareVersion();
    for (int i = 1; i <= Pd::Alarms; ++i) {
        const int row = i - 1;
        const qint64 kind = patternWord(m_state.image, p, Pd::AlarmKind(i));
        const int object = highByte(kind);
        const int type = lowByte(kind);
        QTableWidgetItem *temp = cell(sprdAlarm, row, ColTempObject);
        QTableWidgetItem *humi = cell(sprdAlarm, row, ColHumiObject);
        temp->setText(QStringLiteral("溫度"));
        humi->setText(QStringLiteral("濕度"));
        setChosen(temp, object == 0);
        setChosen(humi, object == 1);
        QTableWidgetItem *typeCell = cell(sprdAlarm, row, ColAlarmType);
        typeCell->setText(frmSys_AlarmCode::codeText(type));
        for (QTableWidgetItem *item : {temp, humi, typeCell})
            setEditable(item, false);
        QTableWidgetItem *sv = cell(sprdAlarm, row, ColAlarmSV);
        QTableWidgetItem *hyst = cell(sprdAlarm, row, ColAlarmHyst);
        sv->setText(programText(ProgramValue::AlarmSV, patternWord(m_state.image, p, Pd::AlarmSV(i)), fw, object == 1));
        hyst->setText(programText(ProgramValue::AlarmHyst, patternWord(m_state.image, p, Pd::AlarmHyst(i)), fw));
        // No alarm: its value and hysteresis are locked and shown black.
        for (QTableWidgetItem *item : {sv, hyst}) {
            setEditable(item, type != 0);
            item->setBackground(type == 0 ? QBrush(LockedColour) : QBrush(Qt::white));
        }
    }
}

void frmQM730Prg_PTN::fillRepeats()
{
    const int p = selectedPattern();
    if (p < 1)
        return;
    for (int i = 1; i <= Pd::Repeats; ++i) {
        const int words[RepeatColumns] = {Pd::RepeatStart(i), Pd::RepeatEnd(i), Pd::RepeatCount(i)};
        for (int c = 0; c < RepeatColumns; ++c) {
            QTableWidgetItem *item = cell(sprdRepeat, i - 1, c);
            item->setText(QString::number(patternWord(m_state.image, p, words[c])));
            setEditable(item, true);
        }
    }
    sprdRepeat->setEnabled(patternWord(m_state.image, p, Pd::SegmentCount) != 0);
}

void frmQM730Prg_PTN::alarmClicked(int row, int column)
{
    const int p = selectedPattern();
    if (p < 1 || row < 0 || row >= Pd::Alarms)
        return;
    const int word = Pd::AlarmKind(row + 1);
    const qint64 kind = patternWord(m_state.image, p, word);
    if (column == ColTempObject || column == ColHumiObject) {
        m_writer->storePatternWord(p, word, packBytes(column == ColTempObject ? 0 : 1, lowByte(kind)));
        setChosen(cell(sprdAlarm, row, ColTempObject), column == ColTempObject);
        setChosen(cell(sprdAlarm, row, ColHumiObject), column == ColHumiObject);
        m_writer->sendPatternWord(p, word);
    } else if (column == ColAlarmType) {
        chooseAlarmType(row);
    }
}

void frmQM730Prg_PTN::chooseAlarmType(int row)
{
    const int p = selectedPattern();
    const std::optional<int> code = frmSys_AlarmCode::choose(m_ctx, this, row + 1);
    if (!code || p < 1)
        return;
    const int word = Pd::AlarmKind(row + 1);
    const int object = highByte(patternWord(m_state.image, p, word));
    cell(sprdAlarm, row, ColAlarmType)->setText(frmSys_AlarmCode::codeText(*code));
    if (*code == 0) {
        // The image holds no alarm at all; the controller keeps the object,
        // and the read-back brings it into the image.
        m_writer->storePatternWord(p, word, 0);
        m_writer->sendPatternWord(p, word, packBytes(object, 0));
    } else {
        m_writer->storePatternWord(p, word, packBytes(object, *code));
        m_writer->sendPatternWord(p, word);
    }
    fillAlarms();
}

qint64 frmQM730Prg_PTN::alarmEntryWord(int column, const QString &text) const
{
    const ProgramValue kind = column == ColAlarmSV ? ProgramValue::AlarmSV : ProgramValue::AlarmHyst;
    return programWordFromText(kind, text, m_state.FirmwareVersion());
}

QString frmQM730Prg_PTN::alarmChanged(int row, int column, const QString &text)
{
    const int p = selectedPattern();
    if (p >= 1 && (column == ColAlarmSV || column == ColAlarmHyst)) {
        const int word = column == ColAlarmSV ? Pd::AlarmSV(row + 1) : Pd::AlarmHyst(row + 1);
        m_writer->storePatternWord(p, word, alarmEntryWord(column, text));
    }
    return text;
}

void frmQM730Prg_PTN::alarmFinished(int row, int column, const QString &text)
{
    const int p = selectedPattern();
    if (!m_writer->cellDirty() || p < 1)
        return;
    const qint64 kind = patternWord(m_state.image, p, Pd::AlarmKind(row + 1));
    const double fw = m_state.FirmwareVersion();
    const auto limits = alarmLimits(column, highByte(kind), lowByte(kind), fw);
    if (!limits)
        return;
    const bool hundredths = column == ColAlarmSV && fw < 2.31 && highByte(kind) == 0;
    const QString kept = clampedEntry(text, limits->low, limits->high, hundredths ? QStringLiteral("0.00") : QStringLiteral("0.0"));
    cell(sprdAlarm, row, column)->setText(kept);
    const int word = column == ColAlarmSV ? Pd::AlarmSV(row + 1) : Pd::AlarmHyst(row + 1);
    m_writer->storePatternWord(p, word, alarmEntryWord(column, kept));
    m_writer->sendPatternWord(p, word);
}

QString frmQM730Prg_PTN::repeatChanged(int row, int column, const QString &text)
{
    const int p = selectedPattern();
    if (p >= 1)
        m_writer->storePatternWord(p, Pd::RepeatStart(row + 1) + column, clampWord(leadingInt(text)));
    return text;
}

void frmQM730Prg_PTN::repeatFinished(int row, int column, const QString &text)
{
    const int p = selectedPattern();
    if (!m_writer->cellDirty() || p < 1)
        return;
    // A partial repeat runs within the pattern's segments; whether start lies
    // before end is the controller's matter.
    const double high = column == ColRepeatCount ? 9999.0 : double(patternWord(m_state.image, p, Pd::SegmentCount));
    const QString kept = clampedEntry(text, 0, high, QStringLiteral("0"));
    cell(sprdRepeat, row, column)->setText(kept);
    const int word = Pd::RepeatStart(row + 1) + column;
    m_writer->storePatternWord(p, word, leadingInt(kept));
    m_writer->sendPatternWord(p, word);
}

void frmQM730Prg_PTN::abandoned(QTableWidget *table, int row, int column)
{
    if (!m_writer->cellDirty())
        return;
    m_writer->revert();
    if (table == sprdPattern)
        fillPatternCell(row + 1, column);
    else if (table == sprdAlarm)
        fillAlarms();
    else
        fillRepeats();
}

// ---- Timers -----------------------------------------------------------------

// The read-back of a write is in the image.
void frmQM730Prg_PTN::tmrRefresh_Timer()
{
    tmrRefresh.stop();
    fillAlarms();
    fillRepeats();
    const int p = m_writer->changedPattern();
    if (p >= 1 && p <= sprdPattern->rowCount()) {
        if (m_writer->nameChanged())
            fillPatternCell(p, ColName);
        for (int c = 0; c < PatternColumns; ++c)
            if (m_writer->ChangedWord() != 0 && wordOfColumn(c) == m_writer->ChangedWord())
                fillPatternCell(p, c);
    }
    if (m_regraphPending) {
        m_regraphPending = false;
        tmrRegraph.start();
    }
}

void frmQM730Prg_PTN::tmrRegraph_Timer()
{
    tmrRegraph.stop();
    const int p = selectedPattern();
    if (p < 1)
        return;
    ComputeCurvePoints(m_state, p, sprdRunSeg_List);
    m_curve->DrawCurve(sprdRunSeg_List);
}

// The segments of the selected pattern; back here the refresh is this
// screen's again, and it runs once for what changed meanwhile.
void frmQM730Prg_PTN::openSegments()
{
    frmQM730Prg_SEG segments(m_ctx, this, selectedPattern(), true);
    segments.exec();
    tmrRefresh.start();
}
