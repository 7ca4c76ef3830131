#include "frmQM730SYS_Sensor.h"
#include "ConsoleState.h"
#include "EntryField.h"
#include "PageBinder.h"
#include "PageLayout.h"
#include "ParamPage.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include "frmQM730SYS_Revision.h"
#include <QAbstractButton>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

namespace {

const QString kDegrees = QStringLiteral("[℃]");
const QString kVolts = QStringLiteral("[V]");
const QString kPercent = QStringLiteral("[%]");

struct ChannelParams {
    Param type, rangeRtd, rangeV, scale, biasRtd, biasV, filter;
};

ChannelParams paramsOf(SensorChannel c)
{
    if (c == SensorChannel::Temperature)
        return {Param::btnSensorType1, Param::txtInputRange1_RTD, Param::txtInputRange1_V, Param::txtScale1,
                Param::txtBias1_RTD, Param::txtBias1_V, Param::txtLPF1};
    return {Param::btnSensorType2, Param::txtInputRange2_RTD, Param::txtInputRange2_V, Param::txtScale2,
            Param::txtBias2_RTD, Param::txtBias2_V, Param::txtLPF2};
}

// Option buttons whose word is (index + 1) & 1: "設定" writes 1, "解除" 0.
const QList<int> kSetRelease{1, 0};

} // namespace

frmQM730SYS_Sensor::frmQM730SYS_Sensor(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_page(new ParamPage(context, this))
{
    setObjectName(QStringLiteral("frmQM730SYS_Sensor"));
    setWindowTitle(QStringLiteral("傳感器輸入設定"));

    layOutPage(this, buildChannel(m_temp), buildChannel(m_humi), buildDryWet(), buildOthers());

    m_page->binder().onChange([this] { applyModes(); });
    m_page->open();
}

QWidget *frmQM730SYS_Sensor::buildChannel(Channel &c)
{
    const bool temp = c.which == SensorChannel::Temperature;
    const QString n = temp ? QStringLiteral("1") : QStringLiteral("2");
    const ChannelParams p = paramsOf(c.which);
    PageBinder &b = m_page->binder();
    QGridLayout *grid;
    QGroupBox *box = pageGroup(QStringLiteral("fraSet") + n, temp ? QStringLiteral("設定1 溫度") : QStringLiteral("設定2 濕度"),
                               &grid);

    // The current layout has a word per button; the legacy one only RTD (0)
    // and voltage (any word above 0).
    const QList<QAbstractButton *> types = optionButtons(
        QStringLiteral("btnSensorType") + n,
        {QStringLiteral("關閉"), QStringLiteral("RTD (Pt100)"), QStringLiteral("Vdc (0-5V)")});
    c.type = b.options(p.type, types, {0, 1, 2}, {-1, 0, 1});
    c.type->setIndexOfWord([this, types](qint64 word) {
        if (m_ctx.state.image.isCurrentLayout())
            return word >= 0 && word < types.size() ? int(word) : -1;
        return word == 0 ? 1 : 2;
    });
    gridRow(grid, 0, QStringLiteral("感測器種類"), strip(types));
    // The fields of the type move at once.
    connect(c.type, &OptionGroup::chosen, this, [this] { m_page->binder().load(); });

    c.rangeHigh = pageField(QStringLiteral("txtInputRange") + n, 1);
    c.rangeLow = pageField(QStringLiteral("txtInputRange") + n, 0);
    // The input range shows and writes the rows of the sensor type.
    const auto rangeOf = [this, &c, p](int i) {
        return [this, &c, p, i] { return std::optional<ParamRef>(ParamRef(rtd(c) ? p.rangeRtd : p.rangeV, i)); };
    };
    b.pair(b.field(c.rangeHigh, rangeOf(1)), b.field(c.rangeLow, rangeOf(0)));
    c.unit = named(new QLabel(kDegrees), QStringLiteral("lblInput_Unit") + n);
    grid->addWidget(caption(QStringLiteral("輸入範圍")), 1, 0);
    grid->addWidget(pairRow(c.rangeHigh, c.rangeLow), 1, 1);
    grid->addWidget(c.unit, 1, 2);

    c.scaleHigh = pageField(QStringLiteral("txtScale") + n, 1);
    c.scaleLow = pageField(QStringLiteral("txtScale") + n, 0);
    b.pair(b.field(c.scaleHigh, {p.scale, 1}), b.field(c.scaleLow, {p.scale, 0}));
    gridRow(grid, 2, QStringLiteral("控制範圍"), pairRow(c.scaleHigh, c.scaleLow), temp ? kDegrees : kPercent);

    // The offset shows the row of the sensor type and is written, on
    // purpose, to the legacy row of the highlighted type as a plain row number.
    EntryField *bias = pageField(QStringLiteral("txtBias") + n);
    EntryBinding *biasBinding =
        b.field(bias, [this, &c, p] { return std::optional<ParamRef>(rtd(c) ? p.biasRtd : p.biasV); });
    b.setAddressing(biasBinding, RowAddressing::LegacyRow);
    c.adjust = named(new QPushButton(QStringLiteral("補正")), temp ? QStringLiteral("btnAdjustT") : QStringLiteral("btnAdjustH"));
    connect(c.adjust, &QPushButton::clicked, this, [this, &c] { openRevision(c.which); });
    QWidget *biasRow = strip({bias, new QLabel(kDegrees), c.adjust});
    c.biasLabel = gridRow(grid, 3, QString(), biasRow, {}, temp ? QStringLiteral("Label4") : QStringLiteral("Label13"));

    EntryField *filter = pageField(QStringLiteral("txtLPF") + n);
    b.field(filter, p.filter)->setClampAt(EntryBinding::ClampAt::Enter);
    gridRow(grid, 4, QStringLiteral("輸入濾波"), filter, QStringLiteral("[秒]"));
    grid->setRowStretch(5, 1);
    return box;
}

QWidget *frmQM730SYS_Sensor::buildDryWet()
{
    PageBinder &b = m_page->binder();
    QGridLayout *grid;
    QGroupBox *box = pageGroup(QStringLiteral("fraSet3"), QStringLiteral("設定3 乾/濕球"), &grid);

    m_dryTemp = valueBox(QStringLiteral("txtDryTemp"), 76);
    gridRow(grid, 0, QStringLiteral("乾球溫度"), m_dryTemp, kDegrees);

    EntryField *wet = pageField(QStringLiteral("txtWetTemp"));
    b.field(wet, Param::txtWetTemp);
    auto *init = named(new QPushButton(QStringLiteral("補正初始化")), QStringLiteral("btnWetTempADJ"));
    connect(init, &QPushButton::clicked, this, [this, wet] {
        // Zero correction, without asking.
        m_ctx.requests().writeParameter(Param::txtWetTemp, quint16(wordFromValue(Encoding::OFS, 0)));
        wet->setText(QStringLiteral("0"));
    });
    gridRow(grid, 1, QStringLiteral("濕球補正"), strip({wet, new QLabel(kDegrees), init}));

    const QList<QAbstractButton *> action =
        optionButtons(QStringLiteral("btnDryWetADJ_R"), {QStringLiteral("設定"), QStringLiteral("解除")});
    b.options(Param::btnDryWetADJ_R, action, kSetRelease);
    gridRow(grid, 2, QStringLiteral("乾/濕球ADJ"), strip(action));

    EntryField *high = pageField(QStringLiteral("txtDryTemp_Range"), 1);
    EntryField *low = pageField(QStringLiteral("txtDryTemp_Range"), 0);
    b.pair(b.field(high, {Param::txtDryTemp_Range, 1}), b.field(low, {Param::txtDryTemp_Range, 0}));
    gridRow(grid, 3, QStringLiteral("濕度控制乾球範圍"), pairRow(high, low), kDegrees);
    grid->setRowStretch(4, 1);
    return box;
}

QWidget *frmQM730SYS_Sensor::buildOthers()
{
    PageBinder &b = m_page->binder();
    QGridLayout *grid;
    QGroupBox *box = pageGroup(QStringLiteral("fraSet4"), QStringLiteral("設定4 範圍及其他"), &grid);

    int row = 0;
    for (const auto &[param, name, text, unit] :
         {std::tuple{Param::txtTempSV_Range, "txtTempSV_Range", "溫度設定範圍", kDegrees},
          std::tuple{Param::txtHumiSV_Range, "txtHumiSV_Range", "濕度設定範圍", kPercent}}) {
        EntryField *high = pageField(QLatin1String(name), 1);
        EntryField *low = pageField(QLatin1String(name), 0);
        b.pair(b.field(high, {param, 1}), b.field(low, {param, 0}));
        gridRow(grid, row++, QString::fromUtf8(text), pairRow(high, low), unit);
    }

    // "0.01" writes 2 decimals, "0.1" one; the console's formats follow at once.
    const QList<QAbstractButton *> resolution =
        optionButtons(QStringLiteral("btnResolution"), {QStringLiteral("0.01"), QStringLiteral("0.1")});
    OptionGroup *res = b.options(Param::btnResolution, resolution, {2, 1});
    connect(res, &OptionGroup::chosen, this, [this](int index) {
        m_ctx.state.image.setTempDecimals(2 - index);
        m_page->binder().load();
    });
    gridRow(grid, row++, QStringLiteral("溫度解析度"), strip(resolution));

    EntryField *wait = pageField(QStringLiteral("txtBurnOutWaitTime"));
    b.field(wait, Param::txtBurnOutWaitTime);
    gridRow(grid, row++, QStringLiteral("斷線等待時間"), wait, QStringLiteral("[秒]"));

    const QList<QAbstractButton *> at =
        optionButtons(QStringLiteral("btnAT_Button"), {QStringLiteral("設定"), QStringLiteral("解除")});
    b.options(Param::btnAT_Button, at, kSetRelease);
    gridRow(grid, row++, QStringLiteral("A/T 鍵顯示"), strip(at));
    grid->setRowStretch(row, 1);
    return box;
}

bool frmQM730SYS_Sensor::rtd(const Channel &c) const
{
    return c.type && c.type->selected() == 1;
}

void frmQM730SYS_Sensor::applyModes()
{
    const double version = m_ctx.state.FirmwareVersion();
    const bool current = IsCurrentLayout(version);
    const bool revision = Firmware::atLeast(version, Firmware::RevisionCurves);
    for (Channel *c : {&m_temp, &m_humi}) {
        const bool isRtd = rtd(*c);
        c->unit->setText(isRtd ? kDegrees : kVolts);
        bool scale = !isRtd;
        bool range = true;
        // A humidity channel of the current layout without a sensor type has no ranges.
        if (c->which == SensorChannel::Humidity && current) {
            const int chosen = c->type->selected();
            if (chosen != 1 && chosen != 2) {
                c->unit->setText(kDegrees);
                scale = range = false;
            }
        }
        for (EntryField *f : {c->scaleHigh, c->scaleLow})
            f->setEnabled(scale);
        for (EntryField *f : {c->rangeHigh, c->rangeLow})
            f->setEnabled(range);
        c->adjust->setVisible(revision);
        c->biasLabel->setText(revision ? QStringLiteral("感測器偏差") : QStringLiteral("輸入偏差"));
        // "關閉" exists on the current layout only: the legacy rows know RTD and voltage.
        c->type->buttons().constFirst()->setVisible(current);
    }
    setTextIfChanged(m_dryTemp, presentValueText(m_ctx.state, SensorChannel::Temperature));
}

void frmQM730SYS_Sensor::openRevision(SensorChannel channel)
{
    if (channel == SensorChannel::Temperature)
        frmQM730SYS_Sensor_RevisionT(m_ctx, this).exec();
    else
        frmQM730SYS_Sensor_RevisionH(m_ctx, this).exec();
}
