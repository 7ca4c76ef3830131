#pragma once
#include <QDateTime>
#include <QList>
#include <QPointF>
#include <QStringList>
#include <QVector>
#include <QWidget>
#include <array>

class QCategoryAxis;
class QChart;
class QChartView;
class QLineSeries;
class QScrollBar;
class QValueAxis;

// The live trend of a run: four series over a time axis whose positions are
// point numbers, each point labelled with the time it was taken. The points
// of the whole run are held here; the chart's line series hold only what is
// on screen, so that a day at one point a second stays smooth:
//  - with the scroll bar on, the window of windowPoints() points that the bar
//    selects (the newest ones while the bar stands at its end);
//  - with it off, the whole run, thinned to the smallest and largest value of
//    each slice of about one pixel once there are more points than pixels.
// A value of NoValue is a failed reading: the line of that series breaks
// there (in the thinned view, a slice holding one breaks).
//
// Depth (set3D): there is no 3-D chart here, so depth is drawn as thicker
// lines that cast a soft shadow down and to the right; the chart's own
// background is switched off so that the shadow falls from the lines, axes and
// labels rather than from the chart's box.
class TrendChart : public QWidget {
    Q_OBJECT
public:
    static constexpr int SeriesCount = 4;
    static constexpr double NoValue = 1e308;
    using Values = std::array<double, SeriesCount>;

    explicit TrendChart(QWidget *parent = nullptr);

    QChartView *view() const { return m_view; }
    QChart *chart() const { return m_chart; }
    QScrollBar *scrollBar() const { return m_scroll; }
    QValueAxis *temperatureAxis() const { return m_axisT; }
    QValueAxis *humidityAxis() const { return m_axisH; }
    QCategoryAxis *timeAxis() const { return m_axisX; }

    void setTitles(const QString &temperature, const QString &humidity, const QString &time);
    // Series names shown in the legend, in series order.
    void setLegends(const QStringList &names);
    QString legend(int series) const;

    // ---- Data of the run ----
    void clear();
    // Writes a point; a position past the end adds it (and gaps for any
    // positions skipped). Call refresh() after a batch.
    void setPoint(int position, const Values &values, const QDateTime &time);
    int pointCount() const { return int(m_times.size()); }
    double value(int series, int position) const;  // NoValue for a gap or outside
    static bool isGap(double v) { return !(v < NoValue); } // NaN counts as a gap too
    QDateTime pointTime(int position) const;
    QString timeLabel(int position) const;         // "HH:MM:SS"
    // Brings the chart up to date with the data.
    void refresh();

    // ---- Look ----
    void set3D(bool on);
    bool is3D() const { return m_3d; }
    void setScrollBarOn(bool on);
    bool isScrollBarOn() const { return m_scrollOn; }
    void setWindowPoints(int points);
    int windowPoints() const { return m_window; }

    // What the chart draws now: the positions on screen, and per series the
    // unbroken lines and their points.
    int firstShown() const { return m_first; }
    int lastShown() const { return m_last; }
    int drawnRuns(int series) const;
    int drawnPoints(int series) const;
    QList<QPointF> drawnRun(int series, int run) const;

private:
    using Runs = QList<QList<QPointF>>;
    void scrolled(int value);
    void collectDirect(int series, Runs &runs, double &lo, double &hi) const;
    void collectThinned(int series, int slices, Runs &runs, double &lo, double &hi) const;
    QLineSeries *segment(int series, int index);
    void applyPen(QLineSeries *line, int series) const;
    void updateTimeLabels(double from, double to);

    QChart *m_chart;
    QChartView *m_view;
    QScrollBar *m_scroll;
    QCategoryAxis *m_axisX;
    QValueAxis *m_axisT;
    QValueAxis *m_axisH;
    QStringList m_names;
    std::array<QVector<double>, SeriesCount> m_values;
    QVector<qint64> m_times; // ms since the epoch
    std::array<QVector<QLineSeries *>, SeriesCount> m_segments;
    std::array<int, SeriesCount> m_runsInUse{};
    bool m_3d = false;
    bool m_scrollOn = false;
    bool m_follow = true; // the window keeps to the newest points
    int m_window = 300;
    int m_first = 0;
    int m_last = -1;
    std::array<qint64, 4> m_labelKey{}; // what the time labels were made for
    int m_labelCount = -1;
    qint64 m_rewrites = 0; // points written over or cleared: labels may differ
};
