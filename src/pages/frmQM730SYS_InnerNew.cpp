#include "frmQM730SYS_InnerNew.h"
#include "ConsoleState.h"
#include "EntryField.h"
#include "Files.h"
#include "PageLayout.h"
#include "ParamPage.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include <QAbstractButton>
#include <algorithm>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int Signals = 8;
constexpr int OnOffLines = 5;
constexpr int HumidityLine = 4; // the fifth line, H1
enum Source { SourceOff = 0, SourceTemp = 1, SourceHumi = 2 };
enum Type { TypePV2 = 3, TypeOnOff = 4 };

// The graph of a band on a mode button: a value crossing the band, and the
// signal on while it is inside (or outside) it. Lit when the mode is chosen.
QPixmap bandPicture(bool inside, bool lit)
{
    QPixmap pm(72, 44);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    const QColor line = lit ? QColor(0, 160, 0) : QColor(150, 150, 150);
    p.setPen(QPen(QColor(120, 120, 120), 1, Qt::DashLine));
    p.drawLine(2, 10, 70, 10); // high
    p.drawLine(2, 24, 70, 24); // low
    p.setPen(QPen(line, 1.5));
    p.drawLine(QPointF(4, 30), QPointF(68, 4)); // the value rising through the band
    // The value is inside the band between x = 19 and x = 53.
    p.setPen(QPen(lit ? QColor(220, 0, 0) : QColor(150, 150, 150), 3));
    if (inside) {
        p.drawLine(2, 41, 19, 41);
        p.drawLine(19, 34, 53, 34);
        p.drawLine(53, 41, 70, 41);
    } else {
        p.drawLine(2, 34, 19, 34);
        p.drawLine(19, 41, 53, 41);
        p.drawLine(53, 34, 70, 34);
    }
    return pm;
}

EntryField *valueField(QWidget *parent, const QString &name, int index = -1)
{
    EntryField *f = index >= 0 ? indexedField(parent, name, index) : new EntryField(name, parent);
    f->setMaximumWidth(80);
    return f;
}

} // namespace

frmQM730SYS_InnerNew::frmQM730SYS_InnerNew(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_page(new ParamPage(context, this))
{
    setObjectName(QStringLiteral("frmQM730SYS_InnerNew"));
    setWindowTitle(QStringLiteral("內部信號設定"));
    PageBinder &b = m_page->binder();
    auto row = [this](int k) { return [this, k] { return std::optional<ParamRef>(ParamRef(Param::InnerSignal, m_signal, k)); }; };
    // Values clamped only when committed.
    auto clampOnCommit = [&b](EntryBinding *field, double low, double high) {
        b.adjust(field, [&b, field, low, high](const QString &text) {
            const std::optional<ParamRef> ref = b.paramOf(field);
            const ConsoleState &s = b.context().state;
            const QString pattern = ref ? screenPattern(encodingOf(*ref, s.FirmwareVersion()), s.TempDecimals()) : QString();
            return EntryBinding::clampText(text, {low, high, pattern});
        });
    };

    // The signal number.
    auto *txtIS_NO = new EntryField(QStringLiteral("txtIS_NO"), this);
    txtIS_NO->setMaximumWidth(50);
    txtIS_NO->setText(QStringLiteral("1"));
    m_signalNo = new EntryBinding(txtIS_NO, this);
    m_signalNo->setRange(EntryBinding::Range{1, Signals, QStringLiteral("0")});
    m_signalNo->onCommit([this](const QString &, const QString &text) { selectSignal(leadingInt(text)); });
    auto *btnIS_DN = named(new QPushButton(QStringLiteral("▼"), this), QStringLiteral("btnIS_DN"));
    auto *btnIS_UP = named(new QPushButton(QStringLiteral("▲"), this), QStringLiteral("btnIS_UP"));
    for (QPushButton *step : {btnIS_DN, btnIS_UP})
        step->setMaximumWidth(40);
    connect(btnIS_UP, &QPushButton::clicked, this, [this] { selectSignal(m_signal % Signals + 1); });
    connect(btnIS_DN, &QPushButton::clicked, this, [this] { selectSignal((m_signal + Signals - 2) % Signals + 1); });

    const QList<QAbstractButton *> source = optionButtons(
        this, QStringLiteral("btnIS_SOURCE"), {QStringLiteral("OFF"), QStringLiteral("溫度"), QStringLiteral("濕度")});
    m_source = b.options(row(IsSource), source, {0, 1, 2});
    const QList<QAbstractButton *> type =
        optionButtons(this, QStringLiteral("btnIS_Type"),
                      {QStringLiteral("TSV"), QStringLiteral("NSV"), QStringLiteral("PV1"), QStringLiteral("PV2"),
                       QStringLiteral("ON/OFF")});
    m_type = b.options(row(IsType), type, {0, 1, 2, 3, 4});
    lblUnit_IS = named(new QLabel(QStringLiteral("[℃]"), this), QStringLiteral("lblUnit_IS"));

    auto *head = new QGridLayout;
    addPageLine(head, QStringLiteral("I/S NO."), strip(QList<QWidget *>{txtIS_NO, btnIS_DN, btnIS_UP}));
    addPageLine(head, QStringLiteral("輸入來源"), strip(source));
    addPageLine(head, QStringLiteral("類型"), strip(type));

    // picIS_Old: the band, its mode and the delay.
    picIS_Old = named(new QGroupBox(this), QStringLiteral("picIS_Old"));
    auto *old = new QGridLayout(picIS_Old);
    EntryField *rangeHigh = valueField(this, QStringLiteral("txtIS_Range"), 1);
    EntryField *rangeLow = valueField(this, QStringLiteral("txtIS_Range"), 0);
    m_range = {rangeLow, rangeHigh};
    for (int index : {0, 1}) {
        EntryBinding *f = b.field(m_range[index], row(index == 1 ? IsHigh : IsLow));
        b.adjust(f, [this, index](const QString &text) { return clampRange(index, text); });
    }
    addPageLine(old, QStringLiteral("上限"), strip(QList<QWidget *>{rangeHigh, lblUnit_IS}));
    addPageLine(old, QStringLiteral("下限"), rangeLow);
    const QList<QAbstractButton *> direct =
        optionButtons(this, QStringLiteral("btnIS_Direct"), {QStringLiteral("範圍內"), QStringLiteral("範圍外")});
    for (QAbstractButton *d : direct) {
        d->setIconSize(QSize(72, 44));
        d->setMinimumHeight(56);
    }
    m_direct = b.options(row(IsDirect), direct, {0, 1});
    addPageLine(old, QStringLiteral("動作"), strip(direct));
    EntryField *delayMin = valueField(this, QStringLiteral("txtIS_Delay"), 0);
    EntryField *delaySec = valueField(this, QStringLiteral("txtIS_Delay"), 1);
    clampOnCommit(b.field(delayMin, row(IsDelayMin)), 0, 9999);
    clampOnCommit(b.field(delaySec, row(IsDelaySec)), 0, 59);
    addPageLine(old, QStringLiteral("延遲時間"),
                strip(QList<QWidget *>{delayMin, new QLabel(QStringLiteral("分")), delaySec, new QLabel(QStringLiteral("秒"))}));

    // picIS_New: the ON/OFF type below firmware 2.2, set values and differences.
    picIS_New = named(new QGroupBox(this), QStringLiteral("picIS_New"));
    auto *onOff = new QGridLayout(picIS_New);
    auto signalValue = [this] { return encodingOf(ParamRef(Param::InnerSignal, m_signal, IsHigh), m_ctx.state.FirmwareVersion()); };
    struct NewField {
        const char *name;
        const char *caption;
        int k;
        double low, high;
    };
    const NewField newFields[] = {{"txtSV_High", "H.SV", IsHigh, -100, 200},
                                  {"txtSV_Middle", "M.SV", IsDelayMin, -100, 200},
                                  {"txtSV_Low", "L.SV", IsLow, -100, 200},
                                  {"txtHighDIF", "H.DIF", IsDelaySec, 0, 100},
                                  {"txtLowDIF", "L.DIF", IsDirect, -100, 0}};
    for (const NewField &nf : newFields) {
        EntryField *f = valueField(this, QLatin1String(nf.name));
        EntryBinding *binding = b.field(f, row(nf.k));
        // The rows of the delay and the mode hold values of the band here.
        b.setEncoding(binding, signalValue);
        clampOnCommit(binding, nf.low, nf.high);
        addPageLine(onOff, QLatin1String(nf.caption), f);
    }
    auto *lblPlus = named(new QLabel(QStringLiteral("(M.SV ± DIF)"), picIS_New), QStringLiteral("lblPlus"));
    onOff->addWidget(lblPlus, onOff->rowCount(), 1);

    // picT_OnOff: the ON/OFF bands of the output lines, firmware 2.2 and above.
    picT_OnOff = named(new QGroupBox(QStringLiteral("T ON/OFF設定"), this), QStringLiteral("picT_OnOff"));
    bindOnOffTable(picT_OnOff);

    auto *left = new QVBoxLayout;
    left->addLayout(head);
    left->addWidget(picIS_Old);
    left->addWidget(picIS_New);
    left->addStretch();
    auto *body = new QHBoxLayout;
    body->addLayout(left);
    body->addWidget(picT_OnOff, 0, Qt::AlignTop);
    auto *top = new QVBoxLayout(this);
    top->addLayout(body);
    top->addLayout(closeRow(this));
    noDefaultButtons(this);

    b.onChange([this] { applyRules(); });
    m_page->open();
}

void frmQM730SYS_InnerNew::bindOnOffTable(QWidget *table)
{
    PageBinder &b = m_page->binder();
    auto *grid = new QGridLayout(table);
    const QStringList columns{QStringLiteral("L.SV"), QStringLiteral("M.SV"), QStringLiteral("H.SV"),
                              QStringLiteral("Lu"), QStringLiteral("Hd")};
    for (int c = 0; c < columns.size(); ++c)
        grid->addWidget(new QLabel(columns[c]), 0, c + 1, Qt::AlignCenter);
    const QStringList lines{QStringLiteral("T1"), QStringLiteral("T2"), QStringLiteral("T3"), QStringLiteral("T4"),
                            QStringLiteral("H1")};
    for (int j = 0; j < OnOffLines; ++j) {
        const bool humidity = j == HumidityLine;
        const QString pattern = humidity ? QStringLiteral("0.0") : QString();
        grid->addWidget(new QLabel(lines[j]), j + 1, 0);
        EntryField *lsv = valueField(table, QStringLiteral("txtT_LSV"), j);
        EntryField *msv = valueField(table, QStringLiteral("txtT_MSV"), j);
        EntryField *hsv = valueField(table, QStringLiteral("txtT_HSV"), j);
        EntryField *lu = valueField(table, QStringLiteral("txtT_Lu"), j);
        EntryField *hd = valueField(table, QStringLiteral("txtT_Hd"), j);
        const QList<EntryField *> fields{lsv, msv, hsv, lu, hd};
        for (int c = 0; c < fields.size(); ++c)
            grid->addWidget(fields[c], j + 1, c + 1);
        // A neighbour's value bounds a set value; an empty neighbour does not.
        auto value = [](EntryField *f, double otherwise) { return f->text().isEmpty() ? otherwise : leadingNumber(f->text()); };
        const double lowest = humidity ? 0 : -100;
        const double highest = humidity ? 100 : 200;
        const double difference = humidity ? 100 : 300;
        b.setRange(b.field(lsv, ParamRef(Param::txtT_LSV, j + 1)), [=] {
            return std::optional<EntryBinding::Range>({lowest, value(msv, highest), pattern});
        });
        b.setRange(b.field(msv, ParamRef(Param::txtT_MSV, j + 1)), [=] {
            return std::optional<EntryBinding::Range>({value(lsv, lowest), value(hsv, highest), pattern});
        });
        b.setRange(b.field(hsv, ParamRef(Param::txtT_HSV, j + 1)), [=] {
            return std::optional<EntryBinding::Range>({value(msv, lowest), highest, pattern});
        });
        for (EntryField *f : {lu, hd})
            b.setRange(b.field(f, ParamRef(f == lu ? Param::txtT_Lu : Param::txtT_Hd, j + 1)),
                       EntryBinding::Range{0, difference, pattern});
    }
}

void frmQM730SYS_InnerNew::selectSignal(int n)
{
    m_signal = std::clamp(n, 1, Signals);
    m_signalNo->field()->setText(QString::number(m_signal));
    // The fields now stand for the rows of another signal: edits of the
    // last one are dropped, and the page reloads now and again when the
    // next parameter block is in.
    m_page->binder().discardEdits();
    m_ctx.state.RefreshOnOpen = true;
    m_page->binder().load();
}

QString frmQM730SYS_InnerNew::clampRange(int index, const QString &text) const
{
    const int source = m_source->selected();
    const bool pv2 = m_type->selected() == TypePV2;
    const ParamRef ref(Param::InnerSignal, m_signal, index == 1 ? IsHigh : IsLow);
    const QString pattern = screenPattern(encodingOf(ref, m_ctx.state.FirmwareVersion()), m_ctx.state.TempDecimals());
    auto clamp = [&](double low, double high) { return EntryBinding::clampText(text, {low, high, pattern}); };
    if (source == SourceTemp) {
        if (!pv2)
            return index == 1 ? clamp(-100, 200) : text;
        if (index == 0)
            return clamp(-100, 200);
        // Above 600 the band's high end of a PV2 signal falls back to 300.
        return leadingNumber(text) > 600 ? QStringLiteral("300.0") : clamp(0, 600);
    }
    if (source == SourceHumi) {
        if (!pv2)
            return index == 1 ? clamp(0.1, 100) : text;
        return index == 0 ? clamp(0.1, 100) : clamp(0, 100);
    }
    return text;
}

void frmQM730SYS_InnerNew::applyRules()
{
    const ControllerImage &image = m_ctx.state.image;
    const double version = image.firmwareVersion();
    const std::optional<qint64> source = ParamWord(image, ParamRef(Param::InnerSignal, m_signal, IsSource));
    const std::optional<qint64> type = ParamWord(image, ParamRef(Param::InnerSignal, m_signal, IsType));
    const std::optional<qint64> mode = ParamWord(image, ParamRef(Param::InnerSignal, m_signal, IsDirect));

    if (source == SourceTemp)
        setTextIfChanged(lblUnit_IS, QStringLiteral("[℃]"));
    else if (source == SourceHumi)
        setTextIfChanged(lblUnit_IS, QStringLiteral("[%]"));

    // The ON/OFF type exists from 2.14 up to 2.2; from 2.2 on the bands are in the table.
    m_type->buttons()[TypeOnOff]->setVisible(version >= 2.14 && version < 2.2);
    const bool newPicture = type == TypeOnOff && version < 2.2;
    const bool onOffTable = version >= 2.2;
    if (picIS_New->isVisibleTo(this) != newPicture || picT_OnOff->isVisibleTo(this) != onOffTable) {
        picIS_Old->setVisible(!newPicture);
        picIS_New->setVisible(newPicture);
        picT_OnOff->setVisible(onOffTable);
        adjustSize();
    }
    m_range[0]->setEnabled(type == TypePV2);

    // The chosen mode shows its band lit.
    const int lit = mode ? int(*mode) : -1;
    if (lit != m_litMode || m_direct->buttons().constFirst()->icon().isNull()) {
        m_litMode = lit;
        const QList<QAbstractButton *> &direct = m_direct->buttons();
        for (int i = 0; i < direct.size(); ++i)
            direct[i]->setIcon(QIcon(bandPicture(i == 0, lit == i)));
    }
}
