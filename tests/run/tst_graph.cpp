// The trend graph of the single-chamber console: when a run's trace begins,
// what a point holds, gaps, and the window the chart shows.
#include "RunFixture.h"
#include "TrendChart.h"
#include <QCategoryAxis>
#include <QChart>
#include <QChartView>
#include <QCheckBox>
#include <QLineSeries>
#include <QScrollBar>
#include <QTimer>
#include <QValueAxis>

namespace {

constexpr double Gap = TrendChart::NoValue;

// A running chamber whose screen reads a clock the test moves on.
struct GraphBench : RunBench {
    QDateTime clock = QDateTime(QDate(2026, 3, 1), QTime(8, 0, 0));

    GraphBench()
    {
        rrp(Rrp::Run, 1);
        open();
        form->setClock([this] { return clock; });
    }
    TrendChart &graph() { return *form->graph(); }
    // The four series at a position: temperature SV, humidity SV, temperature PV, humidity PV.
    QList<double> at(int pos)
    {
        const TrendChart &g = graph();
        return {g.value(0, pos), g.value(1, pos), g.value(2, pos), g.value(3, pos)};
    }
    // One second: the graph timer fires, then the display tick.
    void second()
    {
        clock = clock.addSecs(1);
        graphTick();
    }
};

} // namespace

class TestRunGraph : public QObject {
    Q_OBJECT
private slots:
    void firstPointDrawsAShortLineAndARestartClears()
    {
        GraphBench b;
        QCOMPARE(b.graph().pointCount(), 0); // cleared, nothing due yet
        b.second();
        QCOMPARE(b.form->GraphPoints(), 1);
        QCOMPARE(b.graph().pointCount(), 2);
        QCOMPARE(b.at(0), (QList<double>{25, 60, 24.5, 58.3}));
        QCOMPARE(b.at(1), b.at(0));
        QCOMPARE(b.graph().timeLabel(0), QStringLiteral("08:00:00"));
        QCOMPARE(b.graph().timeLabel(1), QStringLiteral("08:00:01"));
        QCOMPARE(b.graph().drawnRun(2, 0), (QList<QPointF>{{0, 24.5}, {1, 24.5}}));
        b.rcv(Rcv::TempPV, 12600);
        b.second();
        QCOMPARE(b.graph().pointCount(), 3);
        QCOMPARE(b.graph().value(2, 2), 26.0);

        // Stopped: the trace stays on screen; the next run starts afresh at its first second.
        b.rrp(Rrp::Run, 0);
        b.second();
        QCOMPARE(b.form->GraphPoints(), 0);
        QCOMPARE(b.graph().pointCount(), 3);
        b.rrp(Rrp::Run, 1);
        b.rcv(Rcv::TempPV, 13000);
        b.second();
        QCOMPARE(b.form->GraphPoints(), 1);
        QCOMPARE(b.graph().pointCount(), 2);
        QCOMPARE(b.graph().drawnRun(2, 0), (QList<QPointF>{{0, 30}, {1, 30}}));
    }

    void failedReadingLeavesAGapInItsSeriesOnly()
    {
        GraphBench b;
        // At the first point: both first positions; humidity is outside its control range then.
        b.rcv(Rcv::TempPV, 65535);
        b.second();
        QCOMPARE(b.at(0), (QList<double>{25, 60, Gap, Gap}));
        QCOMPARE(b.at(1), b.at(0));
        QCOMPARE(b.graph().drawnRuns(2), 0);
        b.rcv(Rcv::TempPV, 12450);
        b.second();
        b.rcv(Rcv::HumiPV, 65535);
        b.second();
        b.rcv(Rcv::HumiPV, 590);
        b.second();
        QCOMPARE(b.at(2), (QList<double>{25, 60, 24.5, 58.3}));
        QCOMPARE(b.at(3), (QList<double>{25, 60, 24.5, Gap}));
        QCOMPARE(b.graph().value(3, 4), 59.0);
        const TrendChart &g = b.graph();
        QCOMPARE((QList<int>{g.drawnRuns(0), g.drawnRuns(1), g.drawnRuns(2), g.drawnRuns(3)}), (QList<int>{1, 1, 1, 2}));
    }

    void pointsWaitForTheGraphTimer()
    {
        GraphBench b;
        b.view(2);
        b.enter("txtGrpInterval", QStringLiteral("75")); // clamped to a minute
        QCOMPARE(b.text("txtGrpInterval"), QStringLiteral("60"));
        QCOMPARE(b.form->findChild<QTimer *>(QStringLiteral("tmrDispGraph"))->interval(), 60000);
        QVERIFY(b.shown("picGraph")); // Enter stays with the field: no button is pressed
        // Thirty display ticks without the graph timer: cleared, and no point.
        for (int i = 0; i < 30; ++i)
            b.tick();
        QCOMPARE(b.graph().pointCount(), 0);
        // The timer fires between ticks; the point comes with the next tick, once.
        b.form->tmrDispGraph_Timer();
        QCOMPARE(b.graph().pointCount(), 0);
        b.tick();
        QCOMPARE(b.graph().pointCount(), 2);
        b.tick();
        QCOMPARE(b.graph().pointCount(), 2);
    }

    void chartLayoutAndDepth()
    {
        GraphBench b;
        b.second();
        TrendChart &g = b.graph();
        QVERIFY(b.find("picGraph")->isAncestorOf(g.view()));
        QCOMPARE(g.timeAxis()->categoriesLabels().first(), QStringLiteral("08:00:00"));
        // Legends from the labels' names; each series on the axis of its quantity.
        const char *labels[] = {"lblG_SV_T", "lblG_SV_H", "lblG_PV_T", "lblG_PV_H"};
        for (int s = 0; s < TrendChart::SeriesCount; ++s) {
            QVERIFY(b.text(labels[s]).startsWith(g.legend(s) + QStringLiteral(" : ")));
            const auto axes = static_cast<QLineSeries *>(g.chart()->series()[s])->attachedAxes();
            QVERIFY(axes.contains(s % 2 ? static_cast<QAbstractAxis *>(g.humidityAxis()) : g.temperatureAxis()));
        }

        // Depth: thicker lines with a shadow, and back.
        auto width = [&] { return static_cast<QLineSeries *>(g.chart()->series().first())->pen().widthF(); };
        const double flat = width();
        b.find<QCheckBox>("chb3D")->click();
        QVERIFY(g.is3D() && g.chart()->graphicsEffect() && width() > flat);
        b.find<QCheckBox>("chb3D")->click();
        QVERIFY(!g.is3D() && !g.chart()->graphicsEffect() && width() == flat);
    }

    void scrollBarWindow()
    {
        GraphBench b;
        TrendChart &g = b.graph();
        auto window = [&g] { return QList<int>{g.firstShown(), g.lastShown()}; };
        b.view(2);
        g.setWindowPoints(100);
        for (int i = 0; i < 499; ++i)
            b.second();
        QCOMPARE(g.pointCount(), 500);
        QVERIFY(!g.scrollBar()->isVisibleTo(b.form.get()));
        QCOMPARE(window(), (QList<int>{0, 499}));

        auto *scroll = b.find<QCheckBox>("chbScroll");
        scroll->click();
        QVERIFY(g.scrollBar()->isVisibleTo(b.form.get()));
        QCOMPARE(window(), (QList<int>{400, 499}));
        QCOMPARE(g.drawnPoints(2), 100);
        // New points keep the window at the newest end.
        b.second();
        QCOMPARE(g.lastShown(), 500);
        // Scrolled back, the window stays where the operator put it.
        g.scrollBar()->setValue(50);
        QCOMPARE(window(), (QList<int>{50, 149}));
        QCOMPARE(g.timeAxis()->min(), 50.0);
        b.second();
        QCOMPARE(g.firstShown(), 50);
        g.scrollBar()->setValue(g.scrollBar()->maximum());
        b.second();
        QCOMPARE(g.lastShown(), 502);

        scroll->click();
        QVERIFY(!g.isScrollBarOn());
        QCOMPARE(window(), (QList<int>{0, 502}));
    }

    void wholeRunKeepsTheOutline()
    {
        TrendChart g;
        g.resize(800, 400);
        const QDateTime start(QDate(2026, 3, 1), QTime(0, 0, 0));
        const int n = 86400;
        for (int i = 0; i < n; ++i) {
            const double t = 20 + 10 * std::sin(i / 3000.0);
            g.setPoint(i, {t, 50, t, i == 40000 ? TrendChart::NoValue : 55}, start.addSecs(i));
        }
        g.setPoint(43210, {20, 50, 150, 55}, start.addSecs(43210)); // a one-second spike
        g.refresh();
        QCOMPARE(g.firstShown(), 0);
        QCOMPARE(g.lastShown(), n - 1);
        // Thinned to the screen, yet the spike and the gap survive.
        QVERIFY(g.drawnPoints(2) < 4000);
        bool spike = false;
        for (const QPointF &p : g.drawnRun(2, 0))
            spike |= p.x() == 43210 && p.y() == 150;
        QVERIFY(spike);
        QCOMPARE(g.drawnRuns(3), 2);
        QVERIFY(g.temperatureAxis()->max() >= 150);
    }
};

QTEST_MAIN(TestRunGraph)
#include "tst_graph.moc"
