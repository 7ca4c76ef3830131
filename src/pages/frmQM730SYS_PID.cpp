#include "frmQM730SYS_PID.h"
#include "ParamTable.h"
#include "ConsoleState.h"
#include "EntryField.h"
#include "Files.h"
#include "PageBinder.h"
#include "PageLayout.h"
#include "ParamPage.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include <QAbstractButton>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QTableWidget>
#include <QVBoxLayout>
#include <limits>

namespace {

constexpr int kZones = 4;
constexpr int kLines = 16;
constexpr int kColumns = 12;
constexpr int kColumnWidth = 62;

// The output limits of each zone: from firmware 1.8 on.
bool isLimitColumn(int column)
{
    return column == 5 || column == 6 || column == 11 || column == 12;
}

// Which lines of the PID table the boundaries leave out. Line n (r = n - 1)
// belongs to temperature zone r mod 4 and humidity zone r div 4. Walking a
// side's boundaries, the first one below the one before it (the temperature
// walk starts at -100, the humidity walk at 0), index i, hides every line
// whose zone of that side is i or higher.
QList<bool> hiddenLines(const QList<double> &temp, const QList<double> &humi)
{
    QList<bool> hidden(kLines, false);
    const auto walk = [&hidden](const QList<double> &bounds, double start, auto zoneOf) {
        double before = start;
        for (int i = 0; i < bounds.size(); ++i) {
            if (bounds[i] < before) {
                for (int r = 0; r < kLines; ++r)
                    if (zoneOf(r) >= i)
                        hidden[r] = true;
                return;
            }
            before = bounds[i];
        }
    };
    walk(temp, -100, [](int r) { return r % kZones; });
    walk(humi, 0, [](int r) { return r / kZones; });
    return hidden;
}

QList<double> fieldValues(const QList<EntryField *> &fields)
{
    QList<double> values;
    for (const EntryField *f : fields)
        values << leadingNumber(f->text());
    return values;
}

} // namespace

// ---------------------------------------------------------------- zones and gains

frmQM730SYS_PID::frmQM730SYS_PID(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_page(new ParamPage(context, this))
{
    setObjectName(QStringLiteral("frmQM730SYS_PID"));
    setWindowTitle(QStringLiteral("PID 設定"));
    PageBinder &b = m_page->binder();

    QGridLayout *zones;
    QGroupBox *zoneBox = pageGroup(QStringLiteral("fraZone"), QStringLiteral("PID 區域"), &zones);
    zones->addWidget(new QLabel(QStringLiteral("溫度 [℃]")), 0, 1, Qt::AlignHCenter);
    zones->addWidget(new QLabel(QStringLiteral("濕度 [%]")), 0, 2, Qt::AlignHCenter);
    for (int i = 0; i < kZones; ++i)
        zones->addWidget(caption(QStringLiteral("區域 %1").arg(i + 1)), i + 1, 0);
    buildZones(true, zones, 1);
    buildZones(false, zones, 2);

    QGridLayout *at;
    QGroupBox *atBox = pageGroup(QStringLiteral("fraAT"), QStringLiteral("AT 增益"), &at);
    for (const auto &[param, name, text] : {std::tuple{Param::txtT_AT_Gain, "txtT_AT_Gain", "溫度"},
                                            std::tuple{Param::txtH_AT_Gain, "txtH_AT_Gain", "濕度"}}) {
        EntryField *gain = pageField(QLatin1String(name));
        // The gains are clamped when confirmed, not when left.
        b.field(gain, param)->setClampAt(EntryBinding::ClampAt::Enter);
        gridRow(at, at->rowCount(), QString::fromUtf8(text), gain);
    }

    QGridLayout *finder;
    QGroupBox *finderBox = pageGroup(QStringLiteral("fraFinder"), QStringLiteral("PID 區域選擇"), &finder);
    const QList<QAbstractButton *> mode =
        optionButtons(QStringLiteral("btnPIDZone_Finder"), {QStringLiteral("自動"), QStringLiteral("手動")});
    b.options(Param::btnPIDZone_Finder, mode, {0, 1});
    gridRow(finder, 0, QStringLiteral("區域搜尋"), strip(mode));
    EntryField *manual = pageField(QStringLiteral("txtPIDZone_Manual"));
    b.field(manual, Param::txtPIDZone_Manual);
    gridRow(finder, 1, QStringLiteral("手動區域"), manual);

    auto *table = named(new QPushButton(QStringLiteral("PID 參數表"), this), QStringLiteral("btnPID_Zone"));
    connect(table, &QPushButton::clicked, this, &frmQM730SYS_PID::btnPID_Zone_Click);

    auto *right = new QVBoxLayout;
    right->addWidget(atBox);
    right->addWidget(finderBox);
    right->addStretch();
    auto *middle = new QHBoxLayout;
    middle->addWidget(zoneBox);
    middle->addLayout(right);
    layOutPage(this, middle, {table});
    m_page->open();
}

void frmQM730SYS_PID::buildZones(bool temperature, QGridLayout *grid, int column)
{
    PageBinder &b = m_page->binder();
    const Param param = temperature ? Param::txtTempZone : Param::txtHumiZone;
    QList<EntryField *> &fields = temperature ? m_temp : m_humi;
    for (int i = 0; i < kZones; ++i) {
        EntryField *f = pageField(temperature ? QStringLiteral("txtTempZone") : QStringLiteral("txtHumiZone"), i);
        fields << f;
        grid->addWidget(f, i + 1, column);
        EntryBinding *binding = b.field(f, {param, i + 1});
        // At least the boundary before it (the first has none), at most the top.
        const EntryField *before = i > 0 ? fields[i - 1] : nullptr;
        b.setRange(binding, [this, param, i, before]() -> std::optional<EntryBinding::Range> {
            const auto bounds = ParamRange({param, i + 1}, m_ctx.state.FirmwareVersion());
            double low = std::numeric_limits<double>::lowest();
            if (before && !before->text().trimmed().isEmpty())
                low = leadingNumber(before->text());
            return EntryBinding::Range{low, bounds ? bounds->high : std::numeric_limits<double>::max(), {}};
        });
    }
}

QList<double> frmQM730SYS_PID::zones(bool temperature) const
{
    return fieldValues(temperature ? m_temp : m_humi);
}

void frmQM730SYS_PID::btnPID_Zone_Click()
{
    frmQM730SYS_PID_Val table(m_ctx, this);
    table.setBoundaries([this](bool temperature) { return zones(temperature); });
    table.exec();
}

// ---------------------------------------------------------------- the table of PID sets

frmQM730SYS_PID_Val::frmQM730SYS_PID_Val(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_page(new ParamPage(context, this))
{
    setObjectName(QStringLiteral("frmQM730SYS_PID_Val"));
    setWindowTitle(QStringLiteral("PID設定"));
    m_boundaries = [this](bool temperature) {
        QList<double> values;
        for (int i = 1; i <= kZones; ++i)
            values << leadingNumber(
                ParamText(m_ctx.state.image, {temperature ? Param::txtTempZone : Param::txtHumiZone, i}));
        return values;
    };

    auto *title = named(new QLabel(QStringLiteral("溫度/濕度PID設定"), this), QStringLiteral("lblTitle"));
    QFont f = title->font();
    f.setBold(true);
    f.setPointSizeF(f.pointSizeF() * 1.3);
    title->setFont(f);

    sprdPID = named(new QTableWidget(kLines, kColumns, this), QStringLiteral("sprdPID"));
    const QStringList side{QStringLiteral("P [%]"), QStringLiteral("I [sec]"), QStringLiteral("D [sec]"),
                           QStringLiteral("HYS.[℃]"), QStringLiteral("O/H [%]"), QStringLiteral("O/L [%]")};
    QStringList headings = side;
    for (QString h : side)
        headings << h.replace(QStringLiteral("℃"), QStringLiteral("%"));
    sprdPID->setHorizontalHeaderLabels(headings);
    QStringList lines;
    for (int n = 1; n <= kLines; ++n)
        lines << QString::number(n);
    sprdPID->setVerticalHeaderLabels(lines);
    sprdPID->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    sprdPID->horizontalHeader()->setDefaultSectionSize(kColumnWidth);
    sprdPID->verticalHeader()->setDefaultSectionSize(22);
    sprdPID->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    sprdPID->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    sprdPID->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed
                             | QAbstractItemView::AnyKeyPressed);
    auto *cells = new ParamTable(m_page->binder(), sprdPID);
    for (int line = 1; line <= sprdPID->rowCount(); ++line)
        for (int column = 1; column <= sprdPID->columnCount(); ++column)
            cells->param(line, column, ParamRef(Param::sprdPID, line, column));

    m_tempHeading = new QLabel(QStringLiteral("溫度[℃]"), this);
    m_humiHeading = new QLabel(QStringLiteral("濕度[%RH]"), this);
    for (QLabel *l : {m_tempHeading, m_humiHeading}) {
        l->setAlignment(Qt::AlignCenter);
        l->setFrameShape(QFrame::Panel);
        l->setFrameShadow(QFrame::Raised);
    }
    auto *headingRow = new QHBoxLayout;
    headingRow->setSpacing(0);
    headingRow->addSpacing(sprdPID->verticalHeader()->sizeHint().width() + sprdPID->frameWidth());
    headingRow->addWidget(m_tempHeading);
    headingRow->addWidget(m_humiHeading);
    headingRow->addStretch();

    auto *body = new QVBoxLayout;
    body->addWidget(title);
    body->addLayout(headingRow);
    body->addWidget(sprdPID);
    layOutPage(this, body);

    m_page->binder().onChange([this] { applyLayout(); });
    m_page->open();
}

void frmQM730SYS_PID_Val::setBoundaries(Boundaries boundaries)
{
    m_boundaries = std::move(boundaries);
    applyLayout();
}

void frmQM730SYS_PID_Val::applyLayout()
{
    const bool limits = Firmware::atLeast(m_ctx.state.FirmwareVersion(), Firmware::PidOutputLimits);
    for (int column = 1; column <= kColumns; ++column)
        sprdPID->setColumnHidden(column - 1, isLimitColumn(column) && !limits);
    const int perSide = limits ? 6 : 4;
    m_tempHeading->setFixedWidth(perSide * kColumnWidth);
    m_humiHeading->setFixedWidth(perSide * kColumnWidth);
    const int width = sprdPID->verticalHeader()->sizeHint().width() + 2 * perSide * kColumnWidth
                    + 2 * sprdPID->frameWidth() + sprdPID->verticalScrollBar()->sizeHint().width();
    sprdPID->setFixedWidth(width);
    sprdPID->setMinimumHeight(kLines * 22 + sprdPID->horizontalHeader()->sizeHint().height() + 2 * sprdPID->frameWidth());

    const QList<bool> hidden = hiddenLines(m_boundaries(true), m_boundaries(false));
    for (int r = 0; r < kLines; ++r)
        sprdPID->setRowHidden(r, hidden[r]);
}
