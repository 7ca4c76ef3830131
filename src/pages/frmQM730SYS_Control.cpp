#include "frmQM730SYS_Control.h"
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
const QString kPercent = QStringLiteral("[%]");

// The retransmission item whose range is a percentage.
constexpr int kItemMV = 1;

} // namespace

frmQM730SYS_Control::frmQM730SYS_Control(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_page(new ParamPage(context, this))
{
    setObjectName(QStringLiteral("frmQM730SYS_Control"));
    setWindowTitle(QStringLiteral("控制輸出設定"));

    layOutPage(this, buildOutput(m_tempOut), buildOutput(m_humiOut), buildRetransmission(m_tempRet),
               buildRetransmission(m_humiRet));

    m_page->binder().onChange([this] { applyModes(); });
    m_page->open();
}

QWidget *frmQM730SYS_Control::buildOutput(Output &o)
{
    PageBinder &b = m_page->binder();
    const QString side = o.temp ? QStringLiteral("Temp") : QStringLiteral("Humi");
    QGridLayout *grid;
    QGroupBox *box = pageGroup(o.temp ? QStringLiteral("fraSet1") : QStringLiteral("fraSet2"),
                               o.temp ? QStringLiteral("設定1 溫度輸出") : QStringLiteral("設定2 濕度輸出"), &grid);

    const QList<QAbstractButton *> type =
        optionButtons(QStringLiteral("btn%1OutType").arg(side), {QStringLiteral("SSR"), QStringLiteral("SCR")});
    o.type = b.options(o.temp ? Param::btnTempOutType : Param::btnHumiOutType, type, {0, 1});
    gridRow(grid, 0, QStringLiteral("輸出種類"), strip(type));

    // The temperature period and limits are written, on purpose, to the plain
    // row in every protocol; the humidity ones as any row.
    o.period = pageField(QStringLiteral("txt%1OutPeriod").arg(side));
    EntryBinding *period = b.field(o.period, o.temp ? Param::txtTempOutPeriod : Param::txtHumiOutPeriod);
    gridRow(grid, 1, o.temp ? QStringLiteral("溫度SSR輸出週期") : QStringLiteral("濕度SSR輸出週期"), o.period,
            QStringLiteral("[秒]"));

    const QList<QAbstractButton *> direct = optionButtons(QStringLiteral("btn%1OutDirect").arg(side),
                                                          {QStringLiteral("正動作"), QStringLiteral("逆動作")});
    b.options(o.temp ? Param::btnTempOutDirect : Param::btnHumiOutDirect, direct, {0, 1});
    gridRow(grid, 2, QStringLiteral("控制方向"), strip(direct));

    const Param limits = o.temp ? Param::txtTempOutV : Param::txtHumiOutV;
    EntryField *high = pageField(QStringLiteral("txt%1OutV").arg(side), 1);
    EntryField *low = pageField(QStringLiteral("txt%1OutV").arg(side), 0);
    EntryBinding *highBinding = b.field(high, {limits, 1});
    EntryBinding *lowBinding = b.field(low, {limits, 0});
    b.pair(highBinding, lowBinding);
    gridRow(grid, 3, QStringLiteral("輸出限制"), pairRow(high, low), kPercent);
    if (o.temp)
        for (EntryBinding *plain : {period, highBinding, lowBinding})
            b.setAddressing(plain, RowAddressing::PlainRow);
    grid->setRowStretch(4, 1);
    return box;
}

QWidget *frmQM730SYS_Control::buildRetransmission(Retransmission &r)
{
    PageBinder &b = m_page->binder();
    QGridLayout *grid;
    QGroupBox *box = pageGroup(r.temp ? QStringLiteral("fraSet3") : QStringLiteral("fraSet4"),
                               r.temp ? QStringLiteral("設定3 溫度傳送出力設定") : QStringLiteral("設定4 濕度傳送出力設定"),
                               &grid);

    const QList<QAbstractButton *> item =
        optionButtons(r.temp ? QStringLiteral("btnRetTempOut") : QStringLiteral("btnRetHumiOut"),
                      {QStringLiteral("PV"), QStringLiteral("MV"), QStringLiteral("SV")});
    r.item = b.options(r.temp ? Param::btnRetTempOut : Param::btnRetHumiOut, item, {0, 1, 2});
    // A word outside the items chooses the last.
    r.item->setIndexOfWord([](qint64 word) { return word >= 0 && word <= 2 ? int(word) : 2; });
    gridRow(grid, 0, QStringLiteral("傳送項目"), strip(item));

    const Param range = r.temp ? Param::txtRetTempRange : Param::txtRetHumiRange;
    const QString name = r.temp ? QStringLiteral("txtRetTempRange") : QStringLiteral("txtRetHumiRange");
    EntryField *high = pageField(name, 1);
    EntryField *low = pageField(name, 0);
    b.pair(b.field(high, {range, 1}), b.field(low, {range, 0}));
    auto *unit = named(new QLabel(r.temp ? kDegrees : kPercent),
                       r.temp ? QStringLiteral("lblUnit3") : QStringLiteral("lblUnit4"));
    if (r.temp)
        lblUnit3 = unit;
    grid->addWidget(caption(QStringLiteral("傳送範圍")), 1, 0);
    grid->addWidget(pairRow(high, low), 1, 1);
    grid->addWidget(unit, 1, 2);

    const QList<QAbstractButton *> breakOut =
        optionButtons(r.temp ? QStringLiteral("btnTRet_SBOut") : QStringLiteral("btnHRet_SBOut"),
                      {QStringLiteral("0.0mA"), QStringLiteral("4.0mA")});
    b.options(r.temp ? Param::btnTRet_SBOut : Param::btnHRet_SBOut, breakOut, {0, 1});
    gridRow(grid, 2, QStringLiteral("斷線時輸出"), strip(breakOut));

    // The offset shows its row and is written, on purpose, to the legacy row
    // (249, 251) as a plain row number in every firmware and protocol.
    EntryField *bias = pageField(r.temp ? QStringLiteral("txtTempOutBias") : QStringLiteral("txtHumiOutBias"));
    EntryBinding *biasBinding = b.field(bias, r.temp ? Param::txtTempOutBias : Param::txtHumiOutBias);
    b.setAddressing(biasBinding, RowAddressing::LegacyRow);
    // Whole numbers when leaving the field.
    const ParamBounds bounds = ParamRange(Param::txtTempOutBias, 0).value_or(ParamBounds{0, 0});
    b.setRange(biasBinding, EntryBinding::Range{bounds.low, bounds.high, QStringLiteral("0")});
    r.adjust = named(new QPushButton(QStringLiteral("補正")), r.temp ? QStringLiteral("btnAdjustT") : QStringLiteral("btnAdjustH"));
    connect(r.adjust, &QPushButton::clicked, this, [this, temp = r.temp] {
        if (temp)
            frmQM730SYS_Control_RevisionT(m_ctx, this).exec();
        else
            frmQM730SYS_Control_RevisionH(m_ctx, this).exec();
    });
    QWidget *biasRow = strip({bias, new QLabel(r.temp ? kDegrees : kPercent), r.adjust});
    r.biasLabel = gridRow(grid, 3, QString(), biasRow, {}, r.temp ? QStringLiteral("lblTempOutBias") : QStringLiteral("lblHumiOutBias"));
    grid->setRowStretch(4, 1);
    return box;
}

void frmQM730SYS_Control::applyModes()
{
    // SSR (word 0) has a period; SCR, or any word above 0, has none.
    const ControllerImage &image = m_ctx.state.image;
    for (Output *o : {&m_tempOut, &m_humiOut}) {
        const qint64 type = ReadRowNumber(image, RowOf(o->type->param(), image.firmwareVersion()));
        o->period->setEnabled(type <= 0);
    }
    setTextIfChanged(lblUnit3, m_tempRet.item->selected() == kItemMV ? kPercent : kDegrees);
    const bool revision = Firmware::atLeast(image.firmwareVersion(), Firmware::RevisionCurves);
    for (Retransmission *r : {&m_tempRet, &m_humiRet}) {
        r->adjust->setVisible(revision);
        const QString what = r->temp ? QStringLiteral("溫度") : QStringLiteral("濕度");
        r->biasLabel->setText(what + (revision ? QStringLiteral("輸出偏差") : QStringLiteral("傳送偏差")));
    }
}
