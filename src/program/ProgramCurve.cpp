#include "ProgramCurve.h"
#include "ConsoleState.h"
#include "Encodings.h"
#include "Files.h"
#include "LiveStatus.h"
#include "ProgramImage.h"
#include <QChart>
#include <QChartView>
#include <QGraphicsDropShadowEffect>
#include <QLineSeries>
#include <QPalette>
#include <QVBoxLayout>
#include <QValueAxis>
#include <algorithm>
#include <cmath>

namespace {

const QColor TemperatureColour(210, 30, 30);
const QColor HumidityColour(30, 80, 210);

// The present temperature of a cell of sprdRCV, or the mark when it has none.
QString liveTemperature(const TextTable &rcv, int column, int decimals)
{
    if (rcv.isEmpty(column, Rcv::TempPV) || rcv.number(column, Rcv::TempPV) == 65535)
        return NoTemperatureMark;
    return formatScaled(rcv.number(column, Rcv::TempPV) - 10000, 2, resolutionPattern(decimals));
}

// A round axis end beyond the value, in steps of ten.
double roundedDown(double v) { return std::floor(v / 10.0) * 10.0; }
double roundedUp(double v) { return std::ceil(v / 10.0) * 10.0; }

} // namespace

void ComputeCurvePoints(const ConsoleState &state, int pattern, TextTable &list)
{
    const ControllerImage &img = state.image;
    const double fw = state.FirmwareVersion();
    const int count = int(std::clamp<qint64>(patternWord(img, pattern, Pd::SegmentCount), 0, Sd::MaxSegments));
    list.resize(RunSegList::Columns, count);
    list.clearCells();
    for (int col = 1; col <= RunSegList::Columns; ++col)
        list.setText(col, 0, QString());

    if (patternWord(img, pattern, Pd::StartMode) == 0) {
        list.setText(RunSegList::Temperature, 0,
                     programText(ProgramValue::StartTemp, patternWord(img, pattern, Pd::StartTemp), fw));
        list.setText(RunSegList::Humidity, 0,
                     programText(ProgramValue::StartHumi, patternWord(img, pattern, Pd::StartHumi), fw));
    } else {
        const int slot = state.slotOfMachine(state.CurrentMachine);
        const int column = slot < 0 ? 1 : slot + 1;
        const TextTable &rcv = img.sprdRCV;
        list.setText(RunSegList::Temperature, 0, liveTemperature(rcv, column, state.TempDecimals()));
        const bool humidity = !rcv.isEmpty(column, Rcv::HumiPV) && rcv.number(column, Rcv::HumiPV) != 65535
            && segmentWord(img, pattern, 1, Sd::SegHumiSV) != 0;
        list.setText(RunSegList::Humidity, 0,
                     humidity ? formatScaled(rcv.number(column, Rcv::HumiPV), 1, u"0.0") : NoHumidityMark);
    }

    for (int s = 1; s <= count; ++s) {
        const qint64 time = segmentWord(img, pattern, s, Sd::SegTime);
        list.setNumber(RunSegList::Segment, s, s);
        list.setText(RunSegList::Temperature, s,
                     programText(ProgramValue::SegTempSV, segmentWord(img, pattern, s, Sd::SegTempSV), fw));
        list.setText(RunSegList::Humidity, s,
                     programText(ProgramValue::SegHumiSV, segmentWord(img, pattern, s, Sd::SegHumiSV), fw));
        list.setNumber(RunSegList::Minutes, s, highByte(time) * 60 + lowByte(time));
    }
}

QVector<CurvePoint> curvePoints(const TextTable &list)
{
    QVector<CurvePoint> points;
    points.reserve(list.rowCount() + 1);
    double minutes = 0;
    for (int row = 0; row <= list.rowCount(); ++row) {
        if (row > 0)
            minutes += leadingNumber(list.text(RunSegList::Minutes, row));
        points.append({minutes, leadingNumber(list.text(RunSegList::Temperature, row)),
                       leadingNumber(list.text(RunSegList::Humidity, row))});
    }
    return points;
}

// ---- The chart --------------------------------------------------------------

ProgramCurve::ProgramCurve(const QString &temperatureLegend, const QString &humidityLegend, QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("ProgramCurve"));
    m_chart = new QChart;
    m_chart->setAnimationOptions(QChart::NoAnimation);
    m_chart->legend()->setAlignment(Qt::AlignTop);
    m_chart->setMargins(QMargins(4, 4, 4, 4));

    m_axisX = new QValueAxis;
    m_axisX->setTitleText(QStringLiteral("時間(分)"));
    m_axisX->setLabelFormat(QStringLiteral("%.0f"));
    m_axisT = new QValueAxis;
    m_axisT->setTitleText(QStringLiteral("溫度(℃)"));
    m_axisT->setLabelFormat(QStringLiteral("%.0f"));
    m_axisH = new QValueAxis;
    m_axisH->setTitleText(QStringLiteral("濕度(%RH)"));
    m_axisH->setLabelFormat(QStringLiteral("%.0f"));
    m_axisH->setGridLineVisible(false);
    m_axisH->setRange(0, 100);
    m_chart->addAxis(m_axisX, Qt::AlignBottom);
    m_chart->addAxis(m_axisT, Qt::AlignLeft);
    m_chart->addAxis(m_axisH, Qt::AlignRight);

    m_temperature = new QLineSeries;
    m_temperature->setName(temperatureLegend);
    m_humidity = new QLineSeries;
    m_humidity->setName(humidityLegend);
    m_chart->addSeries(m_temperature);
    m_chart->addSeries(m_humidity);
    m_temperature->attachAxis(m_axisX);
    m_temperature->attachAxis(m_axisT);
    m_humidity->attachAxis(m_axisX);
    m_humidity->attachAxis(m_axisH);
    applyPens();

    m_view = new QChartView(m_chart, this);
    m_view->setObjectName(QStringLiteral("ChartFX1"));
    m_view->setRenderHint(QPainter::Antialiasing);
    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->addWidget(m_view);
    ClearCurve();
}

QLineSeries *ProgramCurve::series(int index) const
{
    return index == 0 ? m_temperature : index == 1 ? m_humidity : nullptr;
}

void ProgramCurve::DrawCurve(const TextTable &list)
{
    setPoints(curvePoints(list));
}

void ProgramCurve::setPoints(const QVector<CurvePoint> &points)
{
    QList<QPointF> t, h;
    double lo = 0, hi = 100, end = 0;
    for (const CurvePoint &p : points) {
        t.append({p.minutes, p.temperature});
        h.append({p.minutes, p.humidity});
        lo = std::min(lo, p.temperature);
        hi = std::max(hi, p.temperature);
        end = std::max(end, p.minutes);
    }
    m_temperature->replace(t);
    m_humidity->replace(h);
    m_axisT->setRange(roundedDown(lo), roundedUp(hi));
    m_axisX->setRange(0, std::max(10.0, end));
    m_axisX->applyNiceNumbers();
    m_chart->setBackgroundBrush(Qt::white);
    m_cleared = false;
}

void ProgramCurve::ClearCurve()
{
    m_temperature->clear();
    m_humidity->clear();
    m_axisT->setRange(0, 100);
    m_axisX->setRange(0, 10);
    m_chart->setBackgroundBrush(palette().color(QPalette::Button));
    m_cleared = true;
}

void ProgramCurve::applyPens()
{
    for (QLineSeries *line : {m_temperature, m_humidity}) {
        QPen pen(line == m_temperature ? TemperatureColour : HumidityColour);
        pen.setWidthF(m_3d ? 3.5 : 1.6);
        pen.setJoinStyle(Qt::RoundJoin);
        line->setPen(pen);
    }
}

// There is no three-dimensional chart here: depth is drawn as thicker lines
// that cast a soft shadow down and to the right (from the lines, axes and
// labels, the chart's own box being switched off meanwhile).
void ProgramCurve::set3D(bool on)
{
    if (m_3d == on)
        return;
    m_3d = on;
    applyPens();
    if (on) {
        auto *shadow = new QGraphicsDropShadowEffect;
        shadow->setOffset(4, 4);
        shadow->setBlurRadius(6);
        shadow->setColor(QColor(0, 0, 0, 120));
        m_chart->setGraphicsEffect(shadow); // the chart owns it
    } else {
        m_chart->setGraphicsEffect(nullptr);
    }
    m_chart->setBackgroundVisible(!on);
}
