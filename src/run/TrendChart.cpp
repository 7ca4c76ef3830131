#include "TrendChart.h"
#include <QCategoryAxis>
#include <QChart>
#include <QChartView>
#include <QGraphicsDropShadowEffect>
#include <QLegendMarker>
#include <QLineSeries>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QValueAxis>
#include <algorithm>
#include <cmath>

namespace {

// Temperature red, humidity blue; setpoints in a lighter tone and thinner.
// All lines are solid: dashing a day's trace costs four times the paint.
const QColor SeriesColour[TrendChart::SeriesCount] = {
    QColor(240, 140, 60), QColor(60, 170, 220), QColor(200, 20, 20), QColor(20, 60, 200)};
const double SeriesWidth[TrendChart::SeriesCount] = {1.2, 1.2, 1.8, 1.8};

bool isHumidity(int series)
{
    return series == 1 || series == 3;
}

// A round step of about span / parts: 1, 2 or 5 times a power of ten, at least 1.
int niceStep(double span, int parts)
{
    const double raw = std::max(1.0, span / parts);
    const double p = std::pow(10.0, std::floor(std::log10(raw)));
    for (double m : {1.0, 2.0, 5.0, 10.0})
        if (m * p >= raw)
            return int(m * p);
    return int(10 * p);
}

} // namespace

TrendChart::TrendChart(QWidget *parent) : QWidget(parent)
{
    m_chart = new QChart;
    m_chart->setAnimationOptions(QChart::NoAnimation);
    m_chart->legend()->setAlignment(Qt::AlignTop);
    m_chart->setMargins(QMargins(4, 4, 4, 4));

    m_axisX = new QCategoryAxis;
    m_axisX->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
    m_axisX->setRange(0, 10);
    m_axisT = new QValueAxis;
    m_axisT->setRange(0, 100);
    m_axisT->setLabelFormat(QStringLiteral("%.0f"));
    m_axisH = new QValueAxis;
    m_axisH->setRange(0, 100);
    m_axisH->setLabelFormat(QStringLiteral("%.0f"));
    m_axisH->setGridLineVisible(false);
    m_chart->addAxis(m_axisX, Qt::AlignBottom);
    m_chart->addAxis(m_axisT, Qt::AlignLeft);
    m_chart->addAxis(m_axisH, Qt::AlignRight);

    m_view = new QChartView(m_chart, this);
    m_view->setObjectName(QStringLiteral("ChartFX1"));
    m_view->setRenderHint(QPainter::Antialiasing);
    m_view->setBackgroundBrush(Qt::white);

    m_scroll = new QScrollBar(Qt::Horizontal, this);
    m_scroll->setObjectName(QStringLiteral("scrGraph"));
    m_scroll->setRange(0, 0);
    m_scroll->hide();
    connect(m_scroll, &QScrollBar::valueChanged, this, &TrendChart::scrolled);

    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(0);
    box->addWidget(m_view, 1);
    box->addWidget(m_scroll);

    m_names = QStringList(SeriesCount, QString());
    for (int s = 0; s < SeriesCount; ++s)
        segment(s, 0);
}

void TrendChart::setTitles(const QString &temperature, const QString &humidity, const QString &time)
{
    m_axisT->setTitleText(temperature);
    m_axisH->setTitleText(humidity);
    m_axisX->setTitleText(time);
}

void TrendChart::setLegends(const QStringList &names)
{
    for (int s = 0; s < SeriesCount && s < names.size(); ++s) {
        m_names[s] = names[s];
        m_segments[s].first()->setName(names[s]);
    }
}

QString TrendChart::legend(int series) const
{
    return series >= 0 && series < SeriesCount ? m_names[series] : QString();
}

void TrendChart::clear()
{
    for (auto &v : m_values)
        v.clear();
    m_times.clear();
    ++m_rewrites;
    m_follow = true;
}

void TrendChart::setPoint(int position, const Values &values, const QDateTime &time)
{
    if (position < 0)
        return;
    const qint64 ms = time.toMSecsSinceEpoch();
    if (position < pointCount()) {
        ++m_rewrites;
    } else {
        // Positions skipped are gaps; the next one is simply appended.
        while (pointCount() < position) {
            for (auto &v : m_values)
                v.append(NoValue);
            m_times.append(ms);
        }
        for (auto &v : m_values)
            v.append(NoValue);
        m_times.append(ms);
    }
    for (int s = 0; s < SeriesCount; ++s)
        m_values[s][position] = values[s];
    m_times[position] = ms;
}

double TrendChart::value(int series, int position) const
{
    if (series < 0 || series >= SeriesCount || position < 0 || position >= pointCount())
        return NoValue;
    return m_values[series][position];
}

QDateTime TrendChart::pointTime(int position) const
{
    if (position < 0 || position >= pointCount())
        return {};
    return QDateTime::fromMSecsSinceEpoch(m_times[position]);
}

QString TrendChart::timeLabel(int position) const
{
    return pointTime(position).toString(QStringLiteral("HH:mm:ss"));
}

void TrendChart::collectDirect(int series, Runs &runs, double &lo, double &hi) const
{
    const QVector<double> &v = m_values[series];
    QList<QPointF> run;
    for (int i = m_first; i <= m_last; ++i) {
        const double y = v[i];
        if (isGap(y)) {
            if (!run.isEmpty())
                runs.append(std::exchange(run, {}));
            continue;
        }
        run.append(QPointF(i, y));
        lo = std::min(lo, y);
        hi = std::max(hi, y);
    }
    if (!run.isEmpty())
        runs.append(run);
}

void TrendChart::collectThinned(int series, int slices, Runs &runs, double &lo, double &hi) const
{
    // Each slice keeps its lowest and its highest point, in their order, so
    // the outline of the trace is that of every point.
    const QVector<double> &v = m_values[series];
    const double span = double(m_last - m_first + 1) / slices;
    QList<QPointF> run;
    run.reserve(2 * slices);
    for (int b = 0; b < slices; ++b) {
        const int i0 = m_first + int(b * span);
        const int i1 = std::min(m_last, m_first + int((b + 1) * span) - 1);
        int iMin = -1, iMax = -1;
        bool gap = false;
        for (int i = i0; i <= i1; ++i) {
            const double y = v[i];
            if (isGap(y)) {
                gap = true;
                break;
            }
            if (iMin < 0 || y < v[iMin])
                iMin = i;
            if (iMax < 0 || y > v[iMax])
                iMax = i;
        }
        if (gap || iMin < 0) {
            if (!run.isEmpty())
                runs.append(std::exchange(run, {}));
            continue;
        }
        const int a = std::min(iMin, iMax), c = std::max(iMin, iMax);
        run.append(QPointF(a, v[a]));
        if (c != a)
            run.append(QPointF(c, v[c]));
        lo = std::min(lo, v[iMin]);
        hi = std::max(hi, v[iMax]);
    }
    if (!run.isEmpty())
        runs.append(run);
}

void TrendChart::refresh()
{
    const int n = pointCount();
    double xFrom = 0, xTo = 0;
    if (m_scrollOn) {
        const int lastStart = std::max(0, n - m_window);
        {
            const QSignalBlocker quiet(m_scroll);
            m_scroll->setRange(0, lastStart);
            m_scroll->setPageStep(m_window);
            m_scroll->setSingleStep(std::max(1, m_window / 20));
            if (m_follow)
                m_scroll->setValue(lastStart);
        }
        m_first = m_scroll->value();
        m_last = std::min(n - 1, m_first + m_window - 1);
        xFrom = m_first;
        xTo = m_first + m_window - 1;
    } else {
        // The whole run, on an axis that grows in round steps: between
        // steps a new point moves neither the axis nor its labels.
        m_first = 0;
        m_last = n - 1;
        const int step = niceStep(n, 6);
        xTo = std::max(10, (n + step - 1) / step * step);
    }

    // About two points a pixel is all a line can show.
    const int pixels = std::max(200, int(m_chart->plotArea().width()));
    const int shown = m_last - m_first + 1;
    const bool thin = shown > 2 * pixels;
    double tLo = std::numeric_limits<double>::max(), tHi = -tLo;
    for (int s = 0; s < SeriesCount; ++s) {
        Runs runs;
        double lo = std::numeric_limits<double>::max(), hi = -lo;
        if (shown > 0) {
            if (thin)
                collectThinned(s, pixels, runs, lo, hi);
            else
                collectDirect(s, runs, lo, hi);
        }
        if (!isHumidity(s)) {
            tLo = std::min(tLo, lo);
            tHi = std::max(tHi, hi);
        }
        // One replace per line: the chart lays the series out once.
        for (int k = 0; k < runs.size(); ++k)
            segment(s, k)->replace(runs[k]);
        for (int k = int(runs.size()); k < m_runsInUse[s]; ++k)
            m_segments[s][k]->clear();
        m_runsInUse[s] = int(runs.size());
    }

    // Temperature axis: the values shown, with some room, on steps of ten.
    if (tLo <= tHi) {
        const double lo = std::floor((tLo - 5) / 10) * 10;
        const double hi = std::ceil((tHi + 5) / 10) * 10;
        if (lo != m_axisT->min() || hi != m_axisT->max())
            m_axisT->setRange(lo, hi);
    }
    updateTimeLabels(xFrom, xTo);
}

void TrendChart::updateTimeLabels(double from, double to)
{
    const int step = niceStep(to - from, 6);
    const int labelled = std::min(pointCount(), int(to) + 1);
    const std::array<qint64, 4> key{qint64(from), qint64(to), step, m_rewrites};
    // Only positions that hold a point are labelled: count them, so that a
    // point that fills the next labelled position brings its label.
    int shown = 0;
    for (int p = int(std::ceil(from / step)) * step; p <= to && p < labelled; p += step)
        ++shown;
    if (key == m_labelKey && shown == m_labelCount)
        return;
    m_labelKey = key;
    m_labelCount = shown;
    const QStringList old = m_axisX->categoriesLabels();
    for (const QString &label : old)
        m_axisX->remove(label);
    m_axisX->setStartValue(from);
    m_axisX->setRange(from, to);
    for (int p = int(std::ceil(from / step)) * step; p <= to; p += step) {
        if (p >= pointCount())
            break;
        QString label = timeLabel(p);
        // Labels are keys of the axis: a repeated time (the clock set back) gets a mark.
        while (m_axisX->categoriesLabels().contains(label))
            label += QChar(0x200B);
        m_axisX->append(label, p);
    }
}

void TrendChart::scrolled(int value)
{
    m_follow = value >= m_scroll->maximum();
    refresh();
}

QLineSeries *TrendChart::segment(int series, int index)
{
    QVector<QLineSeries *> &pool = m_segments[series];
    while (pool.size() <= index) {
        auto *line = new QLineSeries;
        applyPen(line, series);
        const bool first = pool.isEmpty();
        if (first)
            line->setName(m_names.value(series));
        m_chart->addSeries(line);
        line->attachAxis(m_axisX);
        line->attachAxis(isHumidity(series) ? m_axisH : m_axisT);
        // A broken line is one series in the legend.
        if (!first)
            for (QLegendMarker *m : m_chart->legend()->markers(line))
                m->setVisible(false);
        pool.append(line);
    }
    return pool[index];
}

void TrendChart::applyPen(QLineSeries *line, int series) const
{
    QPen pen(SeriesColour[series]);
    pen.setWidthF(SeriesWidth[series] * (m_3d ? 2.2 : 1.0));
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    line->setPen(pen);
}

void TrendChart::set3D(bool on)
{
    if (m_3d == on)
        return;
    m_3d = on;
    for (int s = 0; s < SeriesCount; ++s)
        for (QLineSeries *line : m_segments[s])
            applyPen(line, s);
    if (on) {
        auto *shadow = new QGraphicsDropShadowEffect;
        shadow->setOffset(3, 3);
        shadow->setBlurRadius(6);
        shadow->setColor(QColor(0, 0, 0, 110));
        m_chart->setBackgroundVisible(false);
        m_chart->setGraphicsEffect(shadow); // the chart owns it
    } else {
        m_chart->setGraphicsEffect(nullptr);
        m_chart->setBackgroundVisible(true);
    }
}

void TrendChart::setScrollBarOn(bool on)
{
    if (m_scrollOn == on)
        return;
    m_scrollOn = on;
    m_scroll->setVisible(on);
    m_follow = true;
    refresh();
}

void TrendChart::setWindowPoints(int points)
{
    m_window = std::max(2, points);
    refresh();
}

int TrendChart::drawnRuns(int series) const
{
    return series >= 0 && series < SeriesCount ? m_runsInUse[series] : 0;
}

int TrendChart::drawnPoints(int series) const
{
    int n = 0;
    for (int k = 0; k < drawnRuns(series); ++k)
        n += m_segments[series][k]->count();
    return n;
}

QList<QPointF> TrendChart::drawnRun(int series, int run) const
{
    if (run < 0 || run >= drawnRuns(series))
        return {};
    return m_segments[series][run]->points();
}
