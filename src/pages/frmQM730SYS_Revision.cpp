#include "frmQM730SYS_Revision.h"
#include "CommLink.h"
#include "ConsoleState.h"
#include "EntryField.h"
#include "Files.h"
#include "PageBinder.h"
#include "PageLayout.h"
#include "ParamPage.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

const RevisionKind kSensorT{"frmQM730SYS_Sensor_RevisionT", "溫度補正", 6, {-100, -40, 20, 80, 140, 200}, 840,
                            Param::txtAdjustY_T, Param::txtAdjustX_T, Param::txtBias1_RTD, Param::txtBias1_V,
                            Param::txtBias1_RTD, SensorChannel::Temperature};
const RevisionKind kSensorH{"frmQM730SYS_Sensor_RevisionH", "濕度補正", 6, {0, 20, 40, 60, 80, 100}, 840,
                            Param::txtAdjustY_H, Param::txtAdjustX_H, Param::txtBias2_RTD, Param::txtBias2_V,
                            Param::txtBias2_RTD, SensorChannel::Humidity};
const RevisionKind kControlT{"frmQM730SYS_Control_RevisionT", "溫度傳送輸出補正", 3, {-100, 50, 200}, 2100,
                             Param::txtAdjustY_RetT, Param::txtAdjustX_RetT, Param::txtTempOutBias,
                             Param::txtTempOutBias, Param::btnTRet_SBOut, std::nullopt};
const RevisionKind kControlH{"frmQM730SYS_Control_RevisionH", "濕度傳送輸出補正", 3, {0, 50, 100}, 2100,
                             Param::txtAdjustY_RetH, Param::txtAdjustX_RetH, Param::txtHumiOutBias,
                             Param::txtHumiOutBias, Param::btnHRet_SBOut, std::nullopt};

std::optional<double> fieldValue(const EntryField *f)
{
    if (f->text().trimmed().isEmpty())
        return std::nullopt;
    return leadingNumber(f->text());
}

} // namespace

// ---------------------------------------------------------------- the graph

RevisionGraph::RevisionGraph(const RevisionKind &kind, QWidget *parent) : QWidget(parent), m_kind(kind)
{
    setObjectName(QStringLiteral("picGraph"));
    setMinimumSize(300, 300);
}

QPointF RevisionGraph::place(const QPointF &value) const
{
    const double origin = m_kind.defaults[0];
    const double perValue = m_kind.graphUnits / (m_kind.defaults[1] - m_kind.defaults[0]);
    return {(value.x() - origin) * perValue, (value.y() - origin) * perValue};
}

void RevisionGraph::setPoints(const QList<std::optional<QPointF>> &points)
{
    m_segments.clear();
    for (int i = 0; i + 1 < points.size(); ++i)
        if (points[i] && points[i + 1])
            m_segments << QLineF(place(*points[i]), place(*points[i + 1]));
    update();
}

void RevisionGraph::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.fillRect(rect(), Qt::white);
    const int margin = 36;
    const double side = std::max(10, std::min(width(), height()) - 2 * margin);
    const QRectF square(margin, margin / 2.0, side, side);
    const auto toScreen = [&](const QPointF &u) {
        return QPointF(square.left() + u.x() / Side * side, square.bottom() - u.y() / Side * side);
    };
    // The grid at the default points, labelled with them.
    p.setPen(QPen(QColor(200, 200, 200), 1, Qt::DotLine));
    for (int i = 0; i < m_kind.points; ++i) {
        const double u = i * m_kind.graphUnits;
        p.drawLine(toScreen({u, 0}), toScreen({u, Side}));
        p.drawLine(toScreen({0, u}), toScreen({Side, u}));
    }
    p.setPen(Qt::black);
    p.drawRect(square);
    for (int i = 0; i < m_kind.points; ++i) {
        const double u = i * m_kind.graphUnits;
        const QString label = formatNumber(m_kind.defaults[i], {});
        const QPointF bottom = toScreen({u, 0});
        p.drawText(QRectF(bottom.x() - 30, bottom.y() + 2, 60, 16), Qt::AlignHCenter | Qt::AlignTop, label);
        const QPointF left = toScreen({0, u});
        p.drawText(QRectF(0, left.y() - 8, margin - 4, 16), Qt::AlignRight | Qt::AlignVCenter, label);
    }
    // The curve, clipped to the square.
    p.setClipRect(square.adjusted(-1, -1, 1, 1));
    p.setPen(QPen(QColor(200, 0, 0), 2));
    for (const QLineF &l : m_segments)
        p.drawLine(toScreen(l.p1()), toScreen(l.p2()));
}

// ---------------------------------------------------------------- the page

RevisionCurve::RevisionCurve(ScreenContext &context, QDialog *page, const RevisionKind &kind)
    : QObject(page), m_ctx(context), m_kind(kind), m_page(new ParamPage(context, page))
{
    page->setObjectName(QLatin1String(kind.name));
    page->setWindowTitle(QString::fromUtf8(kind.caption));
    PageBinder &b = m_page->binder();

    auto *points = new QGridLayout;
    points->addWidget(new QLabel(QStringLiteral("基準值")), 0, 1, Qt::AlignHCenter);
    points->addWidget(new QLabel(QStringLiteral("測定值")), 0, 2, Qt::AlignHCenter);
    for (int i = 0; i < kind.points; ++i) {
        EntryField *x = pageField(QStringLiteral("txtAdjustX"), i);
        EntryField *y = pageField(QStringLiteral("txtAdjustY"), i);
        m_x << x;
        m_y << y;
        points->addWidget(new QLabel(QString::number(i + 1)), i + 1, 0);
        points->addWidget(x, i + 1, 1);
        points->addWidget(y, i + 1, 2);
    }
    // Points are not clamped: one outside its bounds, or one that would not
    // rise between its neighbours, takes back its old text.
    for (const auto &[column, param] : {std::pair{&m_x, kind.bases}, std::pair{&m_y, kind.corrections}}) {
        for (int i = 0; i < kind.points; ++i) {
            EntryBinding *binding = b.field((*column)[i], {param, i + 1});
            binding->setClampAt(EntryBinding::ClampAt::Never);
            b.check(binding, [this, column = *column, param = param, i](double value) {
                const auto bounds = ParamRange({param, i + 1}, m_ctx.state.FirmwareVersion());
                if (bounds && (value < bounds->low || value > bounds->high))
                    return false;
                return rises(column, i, value);
            });
        }
    }

    m_offset = pageField(QStringLiteral("txtOffset"));
    b.field(m_offset, [this] { return offsetParam(); });
    auto *offsetRow = new QHBoxLayout;
    offsetRow->addWidget(caption(QStringLiteral("補正值:")));
    offsetRow->addWidget(m_offset);
    offsetRow->addStretch();

    auto *left = new QVBoxLayout;
    left->addLayout(points);
    left->addLayout(offsetRow);
    if (kind.input) {
        m_pv = valueBox(QStringLiteral("lblPV"), 90);
        left->addWidget(captionRow(QStringLiteral("現在值"), m_pv));
        connect(&context.link, &CommLink::pollCompleted, this, [this] {
            setTextIfChanged(m_pv, presentValueText(m_ctx.state, *m_kind.input));
        });
    }
    left->addStretch();
    auto *init = named(new QPushButton(QStringLiteral("初始化"), page), QStringLiteral("btnInit"));
    connect(init, &QPushButton::clicked, this, &RevisionCurve::btnInit_Click);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(init);
    buttons->addWidget(closeButton(page));
    left->addLayout(buttons);

    m_graph = new RevisionGraph(kind, page);
    auto *top = new QHBoxLayout(page);
    top->addLayout(left);
    top->addWidget(m_graph, 1);
    noDefaultButtons(page);

    b.onChange([this] {
        redraw();
        if (m_pv)
            setTextIfChanged(m_pv, presentValueText(m_ctx.state, *m_kind.input));
        writeOffsetAfterBlock();
    });
    m_page->open();
}

bool RevisionCurve::rises(const QList<EntryField *> &column, int index, double value) const
{
    const std::optional<double> before = index > 0 ? fieldValue(column[index - 1]) : std::nullopt;
    const std::optional<double> after = index + 1 < column.size() ? fieldValue(column[index + 1]) : std::nullopt;
    return (!before || value > *before) && (!after || value < *after);
}

void RevisionCurve::redraw()
{
    QList<std::optional<QPointF>> points;
    for (int i = 0; i < m_kind.points; ++i) {
        const auto x = fieldValue(m_x[i]);
        const auto y = fieldValue(m_y[i]);
        points << (x && y ? std::optional<QPointF>(QPointF(*x, *y)) : std::nullopt);
    }
    m_graph->setPoints(points);
}

std::optional<ParamRef> RevisionCurve::offsetParam() const
{
    if (m_kind.input && !sensorIsRtd(m_ctx.state.image, *m_kind.input))
        return ParamRef(m_kind.offsetVoltage);
    return ParamRef(m_kind.offsetRtd);
}

void RevisionCurve::btnInit_Click()
{
    ConsoleState &s = m_ctx.state;
    const double version = s.FirmwareVersion();
    const int firstPoint = RowOf(m_kind.corrections, 1, version);
    const int lastRow = RowOf(m_kind.bases, m_kind.points, version);
    if (firstPoint == 0 || lastRow == 0)
        return; // this firmware has no curve
    const QString zero = QString::number(wordFromValue(Encoding::OFS, 0));
    for (int i = 0; i < m_kind.points; ++i) {
        const QString text = formatNumber(m_kind.defaults[i], {});
        m_x[i]->setText(text);
        m_y[i]->setText(text);
        const QString word = QString::number(wordFromValue(Encoding::REV, m_kind.defaults[i]));
        WriteRowText(s.image, RowOf(m_kind.corrections, i + 1, version), word);
        WriteRowText(s.image, RowOf(m_kind.bases, i + 1, version), word);
    }
    m_offset->setText(formatNumber(0, screenPattern(Encoding::OFS, s.TempDecimals())));
    redraw();
    if (IsCurrentLayout(version)) {
        // The offsets lie in the block, before the points.
        for (Param offset : {m_kind.offsetRtd, m_kind.offsetVoltage})
            WriteRowText(s.image, RowOf(offset, 0, version), zero);
        m_ctx.requests().writeCurveRows(RowOf(m_kind.blockFirst, 0, version), lastRow);
    } else {
        // The legacy offset lies apart: it follows once the block is through.
        m_ctx.requests().writeCurveRows(firstPoint, lastRow);
        m_offsetAfterBlock = true;
    }
}

void RevisionCurve::writeOffsetAfterBlock()
{
    if (!m_offsetAfterBlock)
        return;
    Requests r = m_ctx.requests();
    if (r.underway(Cmd::WriteCurve) || r.underway(Cmd::WriteCurveBlock))
        return;
    m_offsetAfterBlock = false;
    if (const auto ref = offsetParam())
        r.writeParameter(*ref, wordFromValue(Encoding::OFS, 0));
}

// ---------------------------------------------------------------- the four pages

frmQM730SYS_Sensor_RevisionT::frmQM730SYS_Sensor_RevisionT(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_curve(new RevisionCurve(context, this, kSensorT))
{
}

frmQM730SYS_Sensor_RevisionH::frmQM730SYS_Sensor_RevisionH(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_curve(new RevisionCurve(context, this, kSensorH))
{
}

frmQM730SYS_Control_RevisionT::frmQM730SYS_Control_RevisionT(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_curve(new RevisionCurve(context, this, kControlT))
{
}

frmQM730SYS_Control_RevisionH::frmQM730SYS_Control_RevisionH(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_curve(new RevisionCurve(context, this, kControlH))
{
}
