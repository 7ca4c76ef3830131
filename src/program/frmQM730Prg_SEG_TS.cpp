#include "frmQM730Prg_SEG_TS.h"
#include "ButtonColour.h"
#include "ConsoleState.h"
#include "Files.h"
#include "ProgramImage.h"
#include "ProgramWriter.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include <QEvent>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

// Limits of the four entries: the first number of a time 0..99, the second 0..59.
constexpr int FieldHigh[4] = {99, 59, 99, 59};
const char *const FieldNames[4] = {"txtLT1", "txtLT2", "txtRT1", "txtRT2"};
const char *const UnitNames[4] = {"lblLT1", "lblLT2", "lblRT1", "lblRT2"};

} // namespace

frmQM730Prg_SEG_TS::frmQM730Prg_SEG_TS(ScreenContext &context, QWidget *parent, ProgramWriter *writer, int pattern,
                                       int segment)
    : QDialog(parent), m_state(context.state), m_writer(writer), m_pattern(pattern), m_segment(segment),
      m_newFirmware(context.state.FirmwareVersion() >= 2.51)
{
    setObjectName(QStringLiteral("frmQM730Prg_SEG_TS"));
    setWindowTitle(QStringLiteral("時間信號設定"));
    buildControls();
    tmrRefresh.setObjectName(QStringLiteral("tmrRefresh"));
    tmrRefresh.setSingleShot(true);
    tmrRefresh.setInterval(0);
    connect(&tmrRefresh, &QTimer::timeout, this, &frmQM730Prg_SEG_TS::tmrRefresh_Timer);
    tmrRefresh_Timer(); // shown filled from the first paint
}

void frmQM730Prg_SEG_TS::buildControls()
{
    auto *top = new QHBoxLayout;
    lblSegment = valueBox(QStringLiteral("lblSegment"), 60);
    lblSegment->setText(m_segment >= 1 ? QString::number(m_segment) : QString());
    top->addWidget(captionRow(QStringLiteral("程式段"), lblSegment, 50));
    Label6 = named(new QLabel(QStringLiteral("TIME")), QStringLiteral("Label6"));
    Label6->setVisible(!m_newFirmware);
    top->addWidget(Label6);
    top->addStretch(1);

    const QString leftHead = m_newFirmware ? QStringLiteral("ON TIME") : QStringLiteral("(ON Delay)");
    const QString rightHead = m_newFirmware ? QStringLiteral("OFF TIME") : QStringLiteral("(ON Time)");
    const QString firstUnit = m_newFirmware ? QStringLiteral("m") : QStringLiteral("h");
    const QString secondUnit = m_newFirmware ? QStringLiteral("s") : QStringLiteral("m");
    const bool canWrite = m_writer && m_pattern >= 1 && m_segment >= 1;

    auto *panels = new QHBoxLayout;
    m_signals.resize(Sd::TimeSignals);
    for (int i = 0; i < Sd::TimeSignals; ++i) {
        Signal &sig = m_signals[i];
        auto indexed = [i](QWidget *w, const char *name) {
            w->setObjectName(QLatin1String(name));
            w->setProperty("Index", i);
            return w;
        };
        sig.lblTSNo = static_cast<QLabel *>(indexed(new QLabel(QStringLiteral("TS %1").arg(i + 1)), "lblTSNo"));
        sig.lblTSNo->setAlignment(Qt::AlignCenter);
        sig.btnON = static_cast<QPushButton *>(indexed(new QPushButton(QStringLiteral("ON")), "btnON"));
        sig.btnOFF = static_cast<QPushButton *>(indexed(new QPushButton(QStringLiteral("OFF")), "btnOFF"));
        sig.picTime = static_cast<QFrame *>(indexed(new QFrame, "picTime"));
        sig.picTime->setFrameShape(QFrame::StyledPanel);
        sig.picTime->setAutoFillBackground(true);
        sig.picTime->installEventFilter(this);
        auto *grid = new QGridLayout(sig.picTime);
        grid->setContentsMargins(4, 4, 4, 4);
        for (int f = 0; f < 4; ++f) {
            sig.txt[f] = static_cast<QLineEdit *>(indexed(new QLineEdit, FieldNames[f]));
            sig.txt[f]->setMaximumWidth(40);
            sig.txt[f]->setAlignment(Qt::AlignRight);
            sig.txt[f]->setEnabled(canWrite);
            sig.lbl[f] = static_cast<QLabel *>(indexed(new QLabel(f % 2 == 0 ? firstUnit : secondUnit), UnitNames[f]));
            sig.lbl[f]->installEventFilter(this);
            connect(sig.txt[f], &QLineEdit::editingFinished, this, [this, i, f] { timeEntered(i + 1, f); });
        }
        auto *left = new QLabel(leftHead);
        auto *right = new QLabel(rightHead);
        for (QLabel *head : {left, right})
            head->installEventFilter(this);
        grid->addWidget(left, 0, 0, 1, 2);
        grid->addWidget(sig.txt[0], 1, 0);
        grid->addWidget(sig.lbl[0], 1, 1);
        grid->addWidget(sig.txt[1], 2, 0);
        grid->addWidget(sig.lbl[1], 2, 1);
        grid->addWidget(right, 3, 0, 1, 2);
        grid->addWidget(sig.txt[2], 4, 0);
        grid->addWidget(sig.lbl[2], 4, 1);
        grid->addWidget(sig.txt[3], 5, 0);
        grid->addWidget(sig.lbl[3], 5, 1);
        for (QPushButton *b : {sig.btnON, sig.btnOFF}) {
            b->setMinimumHeight(30);
            b->setEnabled(canWrite);
        }
        connect(sig.btnON, &QPushButton::clicked, this, [this, i] { switchedOnOff(i + 1, true); });
        connect(sig.btnOFF, &QPushButton::clicked, this, [this, i] { switchedOnOff(i + 1, false); });
        auto *column = new QVBoxLayout;
        column->addWidget(sig.lblTSNo);
        column->addWidget(sig.btnON);
        column->addWidget(sig.btnOFF);
        column->addWidget(sig.picTime);
        column->addStretch(1);
        panels->addLayout(column);
    }

    btnClose = closeButton(this);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    btnClose->setMinimumSize(110, 34);
    buttons->addWidget(btnClose);

    auto *main = new QVBoxLayout(this);
    main->addLayout(top);
    main->addLayout(panels);
    main->addLayout(buttons);
    noDefaultButtons(this);
}

bool frmQM730Prg_SEG_TS::panelActive(int k) const
{
    return k >= 1 && k <= m_signals.size() && m_signals[k - 1].active;
}

// An active panel (a timed signal) has white entries and blue units; an
// inactive one the button colour and black.
void frmQM730Prg_SEG_TS::setPanelActive(Signal &sig, bool active)
{
    sig.active = active;
    sig.picTime->setProperty("active", active);
    const QPalette base = palette();
    for (int f = 0; f < 4; ++f) {
        QPalette entry = base;
        entry.setColor(QPalette::Base, active ? QColor(Qt::white) : base.color(QPalette::Button));
        entry.setColor(QPalette::Text, Qt::black);
        sig.txt[f]->setPalette(entry);
        QPalette unit = base;
        unit.setColor(QPalette::WindowText, active ? QColor(0, 0, 255) : QColor(Qt::black));
        sig.lbl[f]->setPalette(unit);
    }
}

void frmQM730Prg_SEG_TS::tmrRefresh_Timer()
{
    tmrRefresh.stop();
    for (int k = 1; k <= Sd::TimeSignals; ++k) {
        Signal &sig = m_signals[k - 1];
        const qint64 mode = segmentWord(m_state.image, m_pattern, m_segment, Sd::TsMode(k));
        ButtonColour::set(sig.btnON, mode == Sd::TsOn ? ButtonColour::Selected : ButtonColour::FaceColour);
        ButtonColour::set(sig.btnOFF, mode == Sd::TsOff ? ButtonColour::Selected : ButtonColour::FaceColour);
        setPanelActive(sig, mode != Sd::TsOn && mode != Sd::TsOff);
        const qint64 t1 = segmentWord(m_state.image, m_pattern, m_segment, Sd::TsTime1(k));
        const qint64 t2 = segmentWord(m_state.image, m_pattern, m_segment, Sd::TsTime2(k));
        const int numbers[4] = {highByte(t1), lowByte(t1), highByte(t2), lowByte(t2)};
        for (int f = 0; f < 4; ++f) {
            sig.kept[f] = QString::number(numbers[f]);
            sig.txt[f]->setText(sig.kept[f]);
        }
    }
}

bool frmQM730Prg_SEG_TS::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress) {
        for (int i = 0; i < m_signals.size(); ++i) {
            const Signal &sig = m_signals[i];
            auto *w = qobject_cast<QWidget *>(watched);
            if (w && (w == sig.picTime || sig.picTime->isAncestorOf(w))) {
                madeTimed(i + 1);
                break;
            }
        }
    }
    return QDialog::eventFilter(watched, event);
}

void frmQM730Prg_SEG_TS::send(int firstWord, int lastWord)
{
    m_writer->sendSegmentWords(m_pattern, m_segment, firstWord, lastWord);
}

// ON (or OFF) for the whole segment: the times go.
void frmQM730Prg_SEG_TS::switchedOnOff(int k, bool on)
{
    if (!m_writer || m_pattern < 1 || m_segment < 1)
        return;
    Signal &sig = m_signals[k - 1];
    ButtonColour::set(sig.btnON, on ? ButtonColour::Selected : ButtonColour::FaceColour);
    ButtonColour::set(sig.btnOFF, on ? ButtonColour::FaceColour : ButtonColour::Selected);
    setPanelActive(sig, false);
    for (int f = 0; f < 4; ++f) {
        sig.kept[f].clear();
        sig.txt[f]->clear();
    }
    m_writer->storeSegmentWord(m_pattern, m_segment, Sd::TsMode(k), on ? Sd::TsOn : Sd::TsOff);
    m_writer->storeSegmentWord(m_pattern, m_segment, Sd::TsTime1(k), 0);
    m_writer->storeSegmentWord(m_pattern, m_segment, Sd::TsTime2(k), 0);
    send(Sd::TsMode(k), Sd::TsTime2(k));
}

// A click on the panel: the signal becomes timed, its times as they stand.
void frmQM730Prg_SEG_TS::madeTimed(int k)
{
    if (!m_writer || m_pattern < 1 || m_segment < 1)
        return;
    Signal &sig = m_signals[k - 1];
    setPanelActive(sig, true);
    ButtonColour::set(sig.btnON, ButtonColour::FaceColour);
    ButtonColour::set(sig.btnOFF, ButtonColour::FaceColour);
    m_writer->storeSegmentWord(m_pattern, m_segment, Sd::TsMode(k), Sd::TsTimed);
    send(Sd::TsMode(k), Sd::TsMode(k));
}

// A time entered: outside its limit it is dropped; inside it the signal
// becomes timed and its mode and both times go out.
void frmQM730Prg_SEG_TS::timeEntered(int k, int field)
{
    Signal &sig = m_signals[k - 1];
    QLineEdit *entry = sig.txt[field];
    if (!m_writer || m_pattern < 1 || m_segment < 1 || !entry->isModified())
        return;
    entry->setModified(false);
    const QString text = entry->text().trimmed();
    bool number = false;
    const double value = text.toDouble(&number);
    if (!number || value < 0 || value > FieldHigh[field]) {
        entry->setText(sig.kept[field]);
        return;
    }
    sig.kept[field] = formatNumber(value, u"0");
    entry->setText(sig.kept[field]);
    ButtonColour::set(sig.btnON, ButtonColour::FaceColour);
    ButtonColour::set(sig.btnOFF, ButtonColour::FaceColour);
    setPanelActive(sig, true);
    auto num = [&](int f) { return leadingInt(sig.txt[f]->text()); };
    m_writer->storeSegmentWord(m_pattern, m_segment, Sd::TsMode(k), Sd::TsTimed);
    m_writer->storeSegmentWord(m_pattern, m_segment, Sd::TsTime1(k), packBytes(num(0), num(1)));
    m_writer->storeSegmentWord(m_pattern, m_segment, Sd::TsTime2(k), packBytes(num(2), num(3)));
    send(Sd::TsMode(k), Sd::TsTime2(k));
}
