#include "frmQM730Prg_Managemen.h"
#include "ConsoleMessages.h"
#include "ConsoleState.h"
#include "Files.h"
#include "PatternList.h"
#include "ProgramCurve.h"
#include "ProgramImage.h"
#include "ProgramSession.h"
#include "ProgramWriter.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace {

constexpr int SegmentColumns = Sd::MaxSegments * Sd::Words; // 2900

// The words a cleared pattern holds; every other word is 0.
qint64 clearedWord(int word)
{
    switch (word) {
    case Pd::RepeatAll: return 1;
    case Pd::StartMode: return 1;        // S.PV
    case Pd::StartTemp: return 1000;     // 0.0
    case Pd::AlarmSV(1): case Pd::AlarmSV(2): case Pd::AlarmSV(3): case Pd::AlarmSV(4): return 30000;
    case Pd::AlarmHyst(1): case Pd::AlarmHyst(2): case Pd::AlarmHyst(3): case Pd::AlarmHyst(4): return 100; // 10.0
    default: return 0;
    }
}

QLineEdit *numberBox(const QString &name)
{
    auto *box = named(new QLineEdit, name);
    box->setMaximumWidth(70);
    box->setAlignment(Qt::AlignRight);
    return box;
}

int boxValue(const QLineEdit *box)
{
    return leadingInt(box->text());
}

} // namespace

frmQM730Prg_Managemen::frmQM730Prg_Managemen(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_state(context.state)
{
    setObjectName(QStringLiteral("frmQM730Prg_Managemen"));
    setWindowTitle(QStringLiteral("程式管理"));
    buildControls();
    load();
}

frmQM730Prg_Managemen::~frmQM730Prg_Managemen()
{
    unload();
}

void frmQM730Prg_Managemen::buildControls()
{
    auto *top = new QHBoxLayout;
    lblMC_No = valueBox(QStringLiteral("lblMC_No"), 60);
    top->addWidget(captionRow(QStringLiteral("機號"), lblMC_No, 40));
    top->addStretch(1);

    // Source and copy.
    txtSource_Pattern = numberBox(QStringLiteral("txtSource_Pattern"));
    lblSource_SegCnt = valueBox(QStringLiteral("lblSource_SegCnt"), 50);
    txtSource_Seg1 = numberBox(QStringLiteral("txtSource_Seg1"));
    txtSource_Seg2 = numberBox(QStringLiteral("txtSource_Seg2"));
    txtTarget_Pattern = numberBox(QStringLiteral("txtTarget_Pattern"));
    lblTarget_SegCnt = valueBox(QStringLiteral("lblTarget_SegCnt"), 50);
    txtTarget_Seg1 = numberBox(QStringLiteral("txtTarget_Seg1"));
    connect(txtSource_Pattern, &QLineEdit::editingFinished, this, &frmQM730Prg_Managemen::sourcePatternEntered);
    connect(txtSource_Seg1, &QLineEdit::editingFinished, this, &frmQM730Prg_Managemen::sourceSegmentsEntered);
    connect(txtSource_Seg2, &QLineEdit::editingFinished, this, &frmQM730Prg_Managemen::sourceSegmentsEntered);
    connect(txtTarget_Pattern, &QLineEdit::editingFinished, this, &frmQM730Prg_Managemen::targetPatternEntered);
    connect(txtTarget_Seg1, &QLineEdit::editingFinished, this, &frmQM730Prg_Managemen::targetSegmentEntered);

    auto *fraSource = named(new QGroupBox(QStringLiteral("正本")), QStringLiteral("fraSource"));
    auto *sg = new QGridLayout(fraSource);
    sg->addWidget(caption(QStringLiteral("程式組編號")), 0, 0);
    sg->addWidget(txtSource_Pattern, 0, 1);
    sg->addWidget(caption(QStringLiteral("段數統計")), 0, 2);
    sg->addWidget(lblSource_SegCnt, 0, 3);
    sg->addWidget(caption(QStringLiteral("程式段編號")), 1, 0);
    sg->addWidget(txtSource_Seg1, 1, 1);
    sg->addWidget(new QLabel(QStringLiteral("～")), 1, 2, Qt::AlignCenter);
    sg->addWidget(txtSource_Seg2, 1, 3);

    auto *fraTarget = named(new QGroupBox(QStringLiteral("副本")), QStringLiteral("fraTarget"));
    auto *tg = new QGridLayout(fraTarget);
    tg->addWidget(caption(QStringLiteral("程式組編號")), 0, 0);
    tg->addWidget(txtTarget_Pattern, 0, 1);
    tg->addWidget(caption(QStringLiteral("段數統計")), 0, 2);
    tg->addWidget(lblTarget_SegCnt, 0, 3);
    tg->addWidget(caption(QStringLiteral("程式段編號")), 1, 0);
    tg->addWidget(txtTarget_Seg1, 1, 1);

    btnCopyPattern = named(new QPushButton(QStringLiteral("程式組複製")), QStringLiteral("btnCopy"));
    btnCopyPattern->setProperty("Index", 0);
    btnCopySegments = named(new QPushButton(QStringLiteral("程式段複製")), QStringLiteral("btnCopy"));
    btnCopySegments->setProperty("Index", 1);
    btnInit_Pattern = named(new QPushButton(QStringLiteral("程式內容清除")), QStringLiteral("btnInit_Pattern"));
    connect(btnCopyPattern, &QPushButton::clicked, this, &frmQM730Prg_Managemen::copyPattern);
    connect(btnCopySegments, &QPushButton::clicked, this, &frmQM730Prg_Managemen::copySegments);
    connect(btnInit_Pattern, &QPushButton::clicked, this, &frmQM730Prg_Managemen::clearPattern);
    auto *actions = new QVBoxLayout;
    for (QPushButton *b : {btnCopyPattern, btnCopySegments, btnInit_Pattern}) {
        b->setMinimumSize(130, 34);
        actions->addWidget(b);
    }
    actions->addStretch(1);

    auto *boxes = new QHBoxLayout;
    boxes->addWidget(fraSource);
    boxes->addWidget(fraTarget);
    boxes->addLayout(actions);
    boxes->addStretch(1);

    sprdPattern = PatternList::create(0);
    sprdPattern->setMinimumHeight(220);
    connect(sprdPattern, &QTableWidget::cellClicked, this, [this](int row, int) {
        txtSource_Pattern->setText(QString::number(row + 1));
        showSource(row + 1);
        tmrRefresh.start();
    });

    m_curve = new ProgramCurve(QStringLiteral("溫度SV"), QStringLiteral("濕度SV"));
    m_curve->setMinimumSize(420, 240);
    auto *fraCurve = named(new QGroupBox(QStringLiteral("程式設定曲線圖")), QStringLiteral("fraCurve"));
    (new QVBoxLayout(fraCurve))->addWidget(m_curve);

    btn3D = named(new QCheckBox(QStringLiteral("3D")), QStringLiteral("btn3D"));
    connect(btn3D, &QCheckBox::toggled, m_curve, &ProgramCurve::set3D);
    btnClose = closeButton(this);
    btnClose->setMinimumSize(110, 34);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(btn3D);
    buttons->addStretch(1);
    buttons->addWidget(btnClose);

    auto *main = new QVBoxLayout(this);
    main->addLayout(top);
    main->addLayout(boxes);
    main->addWidget(sprdPattern, 1);
    main->addWidget(fraCurve, 1);
    main->addLayout(buttons);
    resize(1000, 780);
    noDefaultButtons(this);

    setUpRefreshTimer(tmrRefresh);
    connect(&tmrRefresh, &QTimer::timeout, this, &frmQM730Prg_Managemen::tmrRefresh_Timer);
    setUpOpeningTimers(this, tmrRefresh_ID, tmrUnload, [this] {
        lblMC_No->setText(QString::number(m_state.CurrentMachine));
        txtSource_Pattern->setText(QStringLiteral("1"));
        txtTarget_Pattern->setText(QStringLiteral("1"));
        showSource(1);
        showTarget(1);
        tmrRefresh.start();
    });
}

void frmQM730Prg_Managemen::load()
{
    sprdPattern->setRowCount(m_state.PatternCount());
    const bool complete = openProgramImage(m_ctx, this);
    m_writer = std::make_unique<ProgramWriter>(m_ctx, tmrRefresh);
    m_curve->ClearCurve();
    PatternList::fill(sprdPattern, m_state.image, m_state.FirmwareVersion());
    if (!complete)
        tmrUnload.start();
    else
        tmrRefresh_ID.start();
}

void frmQM730Prg_Managemen::done(int result)
{
    unload();
    QDialog::done(result);
}

void frmQM730Prg_Managemen::unload()
{
    if (m_unloaded)
        return;
    m_unloaded = true;
    tmrRefresh.stop();
    m_writer.reset();
    closeProgramImage(m_ctx);
}

int frmQM730Prg_Managemen::countOf(int pattern) const
{
    return int(std::clamp<qint64>(patternWord(m_state.image, pattern, Pd::SegmentCount), 0, Sd::MaxSegments));
}

frmQM730Prg_Managemen::Choice frmQM730Prg_Managemen::choice() const
{
    return {boxValue(txtSource_Pattern), boxValue(txtSource_Seg1), boxValue(txtSource_Seg2),
            boxValue(txtTarget_Pattern), boxValue(txtTarget_Seg1)};
}

// The source's count; its whole run of segments chosen, onto segment 1 of
// the target. A pattern without segments has nothing to choose.
void frmQM730Prg_Managemen::showSource(int pattern)
{
    const int count = countOf(pattern);
    lblSource_SegCnt->setText(QString::number(count));
    const QString first = count >= 1 ? QStringLiteral("1") : QStringLiteral("0");
    txtSource_Seg1->setText(first);
    txtSource_Seg2->setText(QString::number(count));
    txtTarget_Seg1->setText(first);
    for (QLineEdit *box : {txtSource_Seg1, txtSource_Seg2, txtTarget_Seg1})
        box->setEnabled(count >= 1);
}

void frmQM730Prg_Managemen::showTarget(int pattern)
{
    lblTarget_SegCnt->setText(QString::number(countOf(pattern)));
}

void frmQM730Prg_Managemen::sourcePatternEntered()
{
    if (!txtSource_Pattern->isModified())
        return;
    txtSource_Pattern->setModified(false);
    const int p = std::clamp(boxValue(txtSource_Pattern), 1, m_state.PatternCount());
    txtSource_Pattern->setText(QString::number(p));
    showSource(p);
    tmrRefresh.start();
}

void frmQM730Prg_Managemen::sourceSegmentsEntered()
{
    const int count = leadingInt(lblSource_SegCnt->text());
    int first = std::clamp(boxValue(txtSource_Seg1), 1, std::max(count, 1));
    int last = std::clamp(boxValue(txtSource_Seg2), 1, std::max(count, 1));
    if (first > last)
        std::swap(first, last);
    txtSource_Seg1->setText(QString::number(first));
    txtSource_Seg2->setText(QString::number(last));
}

void frmQM730Prg_Managemen::targetPatternEntered()
{
    const int p = std::clamp(boxValue(txtTarget_Pattern), 1, m_state.PatternCount());
    txtTarget_Pattern->setText(QString::number(p));
    showTarget(p);
}

void frmQM730Prg_Managemen::targetSegmentEntered()
{
    txtTarget_Seg1->setText(QString::number(std::clamp(boxValue(txtTarget_Seg1), 1, int(Sd::MaxSegments))));
}

// A list and curve that show what the image holds now (after a read-back too).
void frmQM730Prg_Managemen::tmrRefresh_Timer()
{
    tmrRefresh.stop();
    PatternList::fill(sprdPattern, m_state.image, m_state.FirmwareVersion());
    const Choice c = choice();
    if (c.sourcePattern >= 1) {
        lblSource_SegCnt->setText(QString::number(countOf(c.sourcePattern)));
        ComputeCurvePoints(m_state, c.sourcePattern, sprdRunSeg_List);
        m_curve->DrawCurve(sprdRunSeg_List);
    }
    if (c.targetPattern >= 1)
        showTarget(c.targetPattern);
}

// The whole source, its segments and pattern words, onto the target; the
// target keeps its name.
void frmQM730Prg_Managemen::copyPattern()
{
    const Choice c = choice();
    if (c.sourcePattern == c.targetPattern || c.sourcePattern < 1 || c.targetPattern < 1)
        return;
    if (!askConsoleYesNo(this, QStringLiteral("复制?"), windowTitle()))
        return;
    TextTable &sd = m_state.image.sprdSD;
    TextTable &pd = m_state.image.sprdPD;
    sprdCopyBuf.resize(SegmentColumns, 1);
    for (int col = 1; col <= SegmentColumns; ++col)
        sprdCopyBuf.setText(col, 1, sd.text(col, c.sourcePattern));
    for (int col = 1; col <= SegmentColumns; ++col)
        sd.setText(col, c.targetPattern, sprdCopyBuf.text(col, 1));
    for (int col = 1; col <= Pd::Words; ++col)
        sprdCopyBuf.setText(col, 1, pd.text(col, c.sourcePattern));
    for (int col = 1; col <= Pd::Words; ++col)
        pd.setText(col, c.targetPattern, sprdCopyBuf.text(col, 1));
    m_writer->sendProgram(c.targetPattern);
    showTarget(c.targetPattern);
}

// Segments first..last of the source to the target from its segment on,
// through the scratch table, so source and target may overlap. The run ends
// at the last place of the target: what would pass it is not copied.
void frmQM730Prg_Managemen::copySegments()
{
    const Choice c = choice();
    if (c.firstSegment < 1 || c.lastSegment < 1 || c.targetPattern < 1 || c.sourcePattern < 1 || c.targetSegment < 1)
        return;
    if (!askConsoleYesNo(this, QStringLiteral("复制?"), windowTitle()))
        return;
    TextTable &sd = m_state.image.sprdSD;
    const int words = (c.lastSegment - c.firstSegment + 1) * Sd::Words;
    sprdCopyBuf.resize(std::max(words, 1), 1);
    const int from = Sd::column(c.firstSegment, 1);
    int copied = 0;
    for (int i = 0; i < words && from + i <= SegmentColumns; ++i, ++copied)
        sprdCopyBuf.setText(i + 1, 1, sd.text(from + i, c.sourcePattern));
    const int to = Sd::column(c.targetSegment, 1);
    for (int i = 0; i < copied && to + i <= SegmentColumns; ++i)
        sd.setText(to + i, c.targetPattern, sprdCopyBuf.text(i + 1, 1));
    const int end = std::min(c.targetSegment + copied / Sd::Words - 1, int(Sd::MaxSegments));
    const int count = std::max(end, countOf(c.targetPattern));
    setPatternWord(m_state.image, c.targetPattern, Pd::SegmentCount, count);
    m_writer->sendSegmentCount(c.targetPattern, c.targetSegment, end);
    showTarget(c.targetPattern);
}

void frmQM730Prg_Managemen::clearPattern()
{
    const int p = choice().sourcePattern;
    if (p < 1)
        return;
    if (!askConsoleYesNo(this, QStringLiteral("清除程序组?"), windowTitle()))
        return;
    for (int col = 1; col <= SegmentColumns; ++col)
        m_state.image.sprdSD.setText(col, p, QStringLiteral("0"));
    for (int w = 1; w <= Pd::Words; ++w)
        setPatternWord(m_state.image, p, w, clearedWord(w));
    m_writer->sendPattern(p);
    showSource(p);
}
