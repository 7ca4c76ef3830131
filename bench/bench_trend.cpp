// How the trend graph copes with a day's run at one point a second (86400
// points in each of four series): adding the next point, scrolling the
// window, and painting. QBENCHMARK reports the time of one operation.
#include "TrendChart.h"
#include <QChartView>
#include <QScrollBar>
#include <QTest>
#include <cmath>

class BenchTrend : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void addPointWholeRun();
    void addPointScrolling();
    void scrollStep();
    void paintWholeRun();
    void paintWholeRun3D();
    void paintWindow();

private:
    void add();
    TrendChart m_graph;
    QDateTime m_start{QDate(2026, 3, 1), QTime(0, 0, 0)};
    int m_points = 0;
};

void BenchTrend::add()
{
    const double i = m_points;
    const double t = 25 + 40 * std::sin(i / 5000.0) + std::sin(i / 7.0);
    const double h = 60 + 20 * std::cos(i / 4000.0) + std::cos(i / 5.0);
    m_graph.setPoint(m_points, {t + 1, h + 2, t, h}, m_start.addSecs(m_points));
    ++m_points;
}

void BenchTrend::initTestCase()
{
    m_graph.resize(900, 450);
    m_graph.show();
    QVERIFY(QTest::qWaitForWindowExposed(&m_graph));
    QElapsedTimer fill;
    fill.start();
    while (m_points < 86400)
        add();
    m_graph.refresh();
    qInfo("filled %d points x 4 series in %lld ms", m_points, fill.elapsed());
}

void BenchTrend::addPointWholeRun()
{
    m_graph.setScrollBarOn(false);
    QBENCHMARK {
        add();
        m_graph.refresh();
    }
    qInfo("drawn points per series: %d", m_graph.drawnPoints(2));
}

void BenchTrend::addPointScrolling()
{
    m_graph.setScrollBarOn(true);
    QBENCHMARK {
        add();
        m_graph.refresh();
    }
    m_graph.setScrollBarOn(false);
}

void BenchTrend::scrollStep()
{
    m_graph.setScrollBarOn(true);
    QScrollBar *bar = m_graph.scrollBar();
    int value = 0;
    // One step of a drag: a new window, laid out and painted.
    QBENCHMARK {
        value = (value + 1237) % bar->maximum();
        bar->setValue(value);
        m_graph.view()->grab();
    }
    m_graph.setScrollBarOn(false);
}

void BenchTrend::paintWholeRun()
{
    m_graph.set3D(false);
    m_graph.refresh();
    QBENCHMARK {
        m_graph.view()->grab();
    }
}

void BenchTrend::paintWholeRun3D()
{
    m_graph.set3D(true);
    m_graph.refresh();
    QBENCHMARK {
        m_graph.view()->grab();
    }
    m_graph.set3D(false);
}

void BenchTrend::paintWindow()
{
    m_graph.setScrollBarOn(true);
    QBENCHMARK {
        m_graph.view()->grab();
    }
    m_graph.setScrollBarOn(false);
}

QTEST_MAIN(BenchTrend)
#include "bench_trend.moc"
