#include "frmQM730Online_DateTime.h"
#include "ButtonColour.h"
#include "CommLink.h"
#include "ConsoleState.h"
#include "Dictionary.h"
#include "ParamPage.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QStyledItemDelegate>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace {

// Staging rows of sprdUP_DT.
constexpr int ClockFirstRow = 12;   // year, month, day, hour, minute, second
constexpr int ClockLastRow = 17;
constexpr int ReserveFirstRow = 18; // year, month, day, hour, minute
constexpr int ReserveEnableRow = 23;

const QString DateFormat = QStringLiteral("yyyy-MM-dd");

// Cell editors that take digits in the cell's pattern.
class MaskedCellDelegate : public QStyledItemDelegate {
public:
    MaskedCellDelegate(QStringList masks, QObject *parent) : QStyledItemDelegate(parent), m_masks(std::move(masks)) {}

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        auto *edit = qobject_cast<QLineEdit *>(QStyledItemDelegate::createEditor(parent, option, index));
        if (edit && index.column() < m_masks.size())
            edit->setInputMask(m_masks[index.column()]);
        return edit;
    }

private:
    QStringList m_masks;
};

// One line of two cells, date and time, under the captions "日期" and "時間".
QTableWidget *dateTimeTable(const QString &name, const QStringList &masks, QWidget *parent)
{
    auto *t = named(new QTableWidget(1, 2, parent), name);
    t->setHorizontalHeaderLabels({QStringLiteral("日期"), QStringLiteral("時間")});
    t->verticalHeader()->hide();
    t->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    t->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    t->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    t->setSelectionMode(QAbstractItemView::SingleSelection);
    t->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed
                       | QAbstractItemView::AnyKeyPressed);
    t->setItemDelegate(new MaskedCellDelegate(masks, t));
    for (int c = 0; c < 2; ++c) {
        auto *item = new QTableWidgetItem;
        item->setTextAlignment(Qt::AlignCenter);
        t->setItem(0, c, item);
    }
    t->setFixedHeight(t->horizontalHeader()->sizeHint().height() + t->rowHeight(0) + 2 * t->frameWidth());
    t->setMinimumWidth(240);
    return t;
}

QString two(qint64 n)
{
    return QStringLiteral("%1").arg(n, 2, 10, QLatin1Char('0'));
}

} // namespace

frmQM730Online_DateTime::frmQM730Online_DateTime(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_page(new ParamPage(context, this)),
      m_clock([] { return QDateTime::currentDateTime(); })
{
    setObjectName(QStringLiteral("frmQM730Online_DateTime"));
    setWindowTitle(QStringLiteral("日期/時間設定"));

    lblDT = valueBox(QStringLiteral("lblDT"), 170);
    lblMeterDT = valueBox(QStringLiteral("lblMeterDT"), 170);
    lblMsg = named(new QLabel(this), QStringLiteral("lblMsg"));
    lblMsg->setMinimumWidth(220);

    sprdDT = dateTimeTable(QStringLiteral("sprdDT"), {QStringLiteral("9999-99-99"), QStringLiteral("99:99:99")}, this);
    sprdDT_Reserve = dateTimeTable(QStringLiteral("sprdDT_Reserve"),
                                   {QStringLiteral("9999-99-99"), QStringLiteral("99:99")}, this);
    connect(sprdDT, &QTableWidget::itemChanged, this, [this] { cellEdited(sprdDT); });
    connect(sprdDT_Reserve, &QTableWidget::itemChanged, this, [this] { cellEdited(sprdDT_Reserve); });

    btnSameDT1 = named(new QPushButton(QStringLiteral("同電腦時間"), this), QStringLiteral("btnSameDT1"));
    btnSameDT2 = named(new QPushButton(QStringLiteral("同電腦時間"), this), QStringLiteral("btnSameDT2"));
    connect(btnSameDT1, &QPushButton::clicked, this, [this] { toggle(btnSameDT1); });
    connect(btnSameDT2, &QPushButton::clicked, this, [this] { toggle(btnSameDT2); });
    btnSet = named(new QPushButton(QStringLiteral("設定"), this), QStringLiteral("btnSet"));
    connect(btnSet, &QPushButton::clicked, this, &frmQM730Online_DateTime::btnSet_Click);
    const QString reserveCaptions[2] = {QStringLiteral("設定"), QStringLiteral("解除")};
    for (int i = 0; i < 2; ++i) {
        btnReserve_Set[i] = named(new QPushButton(reserveCaptions[i], this), QStringLiteral("btnReserve_Set"));
        btnReserve_Set[i]->setProperty("Index", i);
        connect(btnReserve_Set[i], &QPushButton::clicked, this, [this, i] { btnReserve_Set_Click(i); });
    }

    tmrDT = named(new QTimer(this), QStringLiteral("tmrDT"));
    tmrDT->setInterval(1000);
    connect(tmrDT, &QTimer::timeout, this, &frmQM730Online_DateTime::tmrDT_Timer);

    // Layout.
    auto *clocks = new QHBoxLayout;
    clocks->addWidget(captionRow(QStringLiteral("電腦時間"), lblDT));
    clocks->addWidget(captionRow(QStringLiteral("儀表時間"), lblMeterDT));
    clocks->addStretch();

    auto *clockBox = new QGroupBox(QStringLiteral("日期/時間"), this);
    auto *clockRow = new QHBoxLayout(clockBox);
    clockRow->addWidget(sprdDT, 1);
    clockRow->addWidget(btnSameDT1);
    clockRow->addWidget(btnSet);

    auto *reserveBox = new QGroupBox(QStringLiteral("預約運轉"), this);
    auto *reserveRow = new QHBoxLayout(reserveBox);
    reserveRow->addWidget(sprdDT_Reserve, 1);
    reserveRow->addWidget(btnSameDT2);
    reserveRow->addWidget(btnReserve_Set[0]);
    reserveRow->addWidget(btnReserve_Set[1]);

    auto *bottom = new QHBoxLayout;
    bottom->addWidget(lblMsg, 1);
    bottom->addWidget(closeButton(this));

    auto *top = new QVBoxLayout(this);
    top->addLayout(clocks);
    top->addWidget(clockBox);
    top->addWidget(reserveBox);
    top->addLayout(bottom);
    noDefaultButtons(this);

    connect(&m_ctx.link, &CommLink::clockRowsWritten, this, [this](int lastRow) {
        lblMsg->setText(lastRow == ClockLastRow ? QStringLiteral("日期/時間 : 傳送完了")
                                                : QStringLiteral("預約運轉 : 傳送完了"));
    });
    connect(&m_ctx.link, &CommLink::clockWriteRefused, this, [this] { lblMsg->setText(QStringLiteral("通訊不良")); });

    // The clock to set follows the computer's from the start: the usual errand
    // of this page is to set the controller to the computer's time.
    ButtonColour::set(btnSameDT1, ButtonColour::Selected);
    m_page->binder().onChange([this] { loadValues(); });
    m_page->open();
    tmrDT_Timer();
    tmrDT->start();
}

frmQM730Online_DateTime::~frmQM730Online_DateTime() = default;

void frmQM730Online_DateTime::setClock(std::function<QDateTime()> clock)
{
    m_clock = std::move(clock);
    tmrDT_Timer();
}

// ---------------------------------------------------------------- cells

QString frmQM730Online_DateTime::cell(const QTableWidget *table, int column) const
{
    const QTableWidgetItem *item = table->item(0, column);
    return item ? item->text().trimmed() : QString();
}

void frmQM730Online_DateTime::fill(QTableWidget *table, const QString &date, const QString &time)
{
    m_filling = true;
    if (table->item(0, 0)->text() != date)
        table->item(0, 0)->setText(date);
    if (table->item(0, 1)->text() != time)
        table->item(0, 1)->setText(time);
    m_filling = false;
}

void frmQM730Online_DateTime::cellEdited(QTableWidget *table)
{
    if (m_filling)
        return;
    if (table == sprdDT) {
        ButtonColour::set(btnSameDT1, ButtonColour::FaceColour);
    } else {
        ButtonColour::set(btnSameDT2, ButtonColour::FaceColour);
        m_reserveEdited = true;
    }
}

void frmQM730Online_DateTime::toggle(QPushButton *button)
{
    ButtonColour::set(button, following(button) ? ButtonColour::FaceColour : ButtonColour::Selected);
    if (button == btnSameDT2)
        m_reserveEdited = following(button);
    tmrDT_Timer();
}

bool frmQM730Online_DateTime::following(const QPushButton *button) const
{
    return ButtonColour::of(button) == ButtonColour::Selected;
}

std::optional<QDateTime> frmQM730Online_DateTime::parseCells(const QString &date, const QString &time)
{
    static const QRegularExpression pattern(
        QStringLiteral("^\\s*(\\d{1,4})\\s*[-/]\\s*(\\d{1,2})\\s*[-/]\\s*(\\d{1,2})\\s+(\\d{1,2})\\s*:\\s*(\\d{1,2})"
                       "(?:\\s*:\\s*(\\d{1,2}))?\\s*$"));
    const QRegularExpressionMatch m = pattern.match(date + QLatin1Char(' ') + time);
    if (!m.hasMatch())
        return std::nullopt;
    const QDate d(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt());
    const QTime t(m.captured(4).toInt(), m.captured(5).toInt(), m.captured(6).toInt());
    if (!d.isValid() || !t.isValid())
        return std::nullopt;
    return QDateTime(d, t);
}

// ---------------------------------------------------------------- the page

void frmQM730Online_DateTime::loadValues()
{
    const ControllerImage &img = m_ctx.state.image;
    if (!m_reserveEdited && !ReadRow(img, ReserveFirstRow).isEmpty()) {
        const auto at = [&](int i) { return ReadRowNumber(img, ReserveFirstRow + i); };
        fill(sprdDT_Reserve, QString::number(at(0)) + QLatin1Char('-') + two(at(1)) + QLatin1Char('-') + two(at(2)),
             two(at(3)) + QLatin1Char(':') + two(at(4)));
    }
    const QString enable = ReadRow(img, ReserveEnableRow);
    ButtonColour::set(btnReserve_Set[0], !enable.isEmpty() && ReadRowNumber(img, ReserveEnableRow) != 0
                                             ? ButtonColour::Selected
                                             : ButtonColour::FaceColour);
    ButtonColour::set(btnReserve_Set[1], !enable.isEmpty() && ReadRowNumber(img, ReserveEnableRow) == 0
                                             ? ButtonColour::Selected
                                             : ButtonColour::FaceColour);
    showMeterClock();
}

void frmQM730Online_DateTime::showMeterClock()
{
    const ControllerImage &img = m_ctx.state.image;
    if (ReadRow(img, ClockFirstRow).isEmpty()) {
        setTextIfChanged(lblMeterDT, QStringLiteral("----"));
        return;
    }
    const auto at = [&](int i) { return ReadRowNumber(img, ClockFirstRow + i); };
    setTextIfChanged(lblMeterDT, QString::number(at(0)) + QLatin1Char('-') + two(at(1)) + QLatin1Char('-') + two(at(2))
                                     + QLatin1Char(' ') + two(at(3)) + QLatin1Char(':') + two(at(4))
                                     + QLatin1Char(':') + two(at(5)));
}

void frmQM730Online_DateTime::tmrDT_Timer()
{
    const QDateTime now = m_clock();
    setTextIfChanged(lblDT, now.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
    if (following(btnSameDT1))
        fill(sprdDT, now.toString(DateFormat), now.toString(QStringLiteral("HH:mm:ss")));
    if (following(btnSameDT2))
        fill(sprdDT_Reserve, now.toString(DateFormat), now.toString(QStringLiteral("HH:mm")));
    showMeterClock();
}

bool frmQM730Online_DateTime::machineRuns() const
{
    const ConsoleState &s = m_ctx.state;
    const int slot = s.slotOfMachine(s.CurrentMachine);
    return slot >= 0 && s.image.sprdRRP.number(slot + 1, 1) != 0;
}

void frmQM730Online_DateTime::btnSet_Click()
{
    lblMsg->clear();
    const auto at = parseCells(cell(sprdDT, 0), cell(sprdDT, 1));
    if (!at) {
        lblMsg->setText(QStringLiteral("日期/時間格式錯誤"));
        return;
    }
    const int parts[6] = {at->date().year(), at->date().month(), at->date().day(),
                          at->time().hour(), at->time().minute(), at->time().second()};
    TextTable &dt = m_ctx.state.image.sprdUP_DT;
    for (int i = 0; i < 6; ++i)
        dt.setNumber(1, ClockFirstRow + i, parts[i]);
    m_ctx.requests().writeClockRows(ClockFirstRow, ClockLastRow);
    lblMsg->setText(QStringLiteral("日期/時間 : 傳送中…"));
}

void frmQM730Online_DateTime::btnReserve_Set_Click(int index)
{
    if (machineRuns()) {
        lblMsg->setText(QStringLiteral("運轉中不可變更"));
        return;
    }
    lblMsg->clear();
    TextTable &dt = m_ctx.state.image.sprdUP_DT;
    if (index == 1) {
        dt.setText(1, ReserveEnableRow, QStringLiteral("0"));
        m_ctx.requests().writeClockRows(ReserveEnableRow, ReserveEnableRow);
        lblMsg->setText(QStringLiteral("預約運轉 : 傳送中…"));
        return;
    }
    const auto at = parseCells(cell(sprdDT_Reserve, 0), cell(sprdDT_Reserve, 1) + QStringLiteral(":00"));
    if (!at) {
        lblMsg->setText(QStringLiteral("日期/時間格式錯誤"));
        return;
    }
    if (*at <= m_clock()) {
        // Not in the future: the page shows the setting it had, and says nothing.
        m_reserveEdited = false;
        loadValues();
        return;
    }
    const int parts[5] = {at->date().year(), at->date().month(), at->date().day(), at->time().hour(),
                          at->time().minute()};
    for (int i = 0; i < 5; ++i)
        dt.setNumber(1, ReserveFirstRow + i, parts[i]);
    dt.setText(1, ReserveEnableRow, QStringLiteral("1"));
    m_reserveEdited = false;
    m_ctx.requests().writeClockRows(ReserveFirstRow, ReserveEnableRow);
    lblMsg->setText(QStringLiteral("預約運轉 : 傳送中…"));
}
