// The program curve: the points of a pattern from the image, the start from
// the start values or the live values, and what the chart is given.
#include "LiveStatus.h"
#include "ProgramCurve.h"
#include "ProgramFixture.h"
#include <QLineSeries>
#include <QValueAxis>
#include <QtTest>

class CurveTest : public QObject {
    Q_OBJECT

    // Pattern 4: from 25.0 / 60.0 up to 85.00 / 85.0 in 30 minutes, 85 for an
    // hour, down to -10.50 / 0.0 in 1 h 15.
    static void knownPattern(ProgramBench &b, int startMode)
    {
        b.words(4, {{Pd::SegmentCount, 3}, {Pd::StartMode, startMode}, {Pd::StartTemp, 1250}, {Pd::StartHumi, 600}});
        b.segment(4, 1, 18500, 850, 0, 30);
        b.segment(4, 2, 18500, 850, 1, 0);
        b.segment(4, 3, 8950, 0, 1, 15);
    }

private slots:
    // The list from the start values and segments, and the chart drawn from it.
    void theListAndTheChart()
    {
        ProgramBench b;
        knownPattern(b, 0);
        TextTable list;
        ComputeCurvePoints(b.state, 4, list);
        QCOMPARE(list.rowCount(), 3);
        QCOMPARE(QStringList({list.text(3, 0), list.text(4, 0), list.text(3, 1)}), QStringList({"25.0", "60.0", "85.00"}));
        QCOMPARE(QStringList({list.text(2, 3), list.text(3, 3), list.text(4, 3), list.text(5, 3)}),
                 QStringList({"3", "-10.50", "0.0", "75"}));

        ProgramCurve curve(QStringLiteral("溫度SV"), QStringLiteral("濕度SV"));
        QVERIFY(curve.isCleared());
        curve.DrawCurve(list);
        QVERIFY(!curve.isCleared());
        QCOMPARE(curve.series(0)->points(), QList<QPointF>({{0, 25.0}, {30, 85.0}, {90, 85.0}, {165, -10.5}}));
        QCOMPARE(curve.series(1)->points(), QList<QPointF>({{0, 60.0}, {30, 85.0}, {90, 85.0}, {165, 0.0}}));
        // Each series on its own value axis, the whole time and the coldest point in view.
        QVERIFY(curve.series(0)->attachedAxes().contains(curve.temperatureAxis())
                && curve.series(1)->attachedAxes().contains(curve.humidityAxis()));
        QVERIFY(curve.timeAxis()->max() >= 165 && curve.temperatureAxis()->min() <= -10.5);
        curve.set3D(true);
        QCOMPARE(curve.series(0)->count(), 4); // depth touches no data
        curve.ClearCurve();
        QVERIFY(curve.isCleared() && curve.series(0)->points().isEmpty() && curve.series(1)->points().isEmpty());
    }

    void measuredStartTakesTheForegroundMachinesLiveValues()
    {
        ProgramBench b;
        knownPattern(b, 1);
        b.state.image.setTempDecimals(1);
        TextTable &rcv = b.state.image.sprdRCV;
        // Machine 5 is in slot 1: column 2. Machine 3's values must not be taken.
        rcv.setNumber(1, Rcv::TempPV, 9000);
        rcv.setNumber(1, Rcv::HumiPV, 100);
        rcv.setNumber(2, Rcv::TempPV, 12345);
        rcv.setNumber(2, Rcv::HumiPV, 583);
        TextTable list;
        ComputeCurvePoints(b.state, 4, list);
        QCOMPARE(QStringList({list.text(3, 0), list.text(4, 0)}), QStringList({"23.5", "58.3"}));

        // The first segment without humidity: no measured start humidity.
        b.segment(4, 1, 18500, 0, 0, 30);
        ComputeCurvePoints(b.state, 4, list);
        QCOMPARE(list.text(4, 0), NoHumidityMark);
        QCOMPARE(curvePoints(list).first().humidity, 0.0);

        // A sensor burn-out, and no reading at all: the marks, drawn as 0.
        rcv.setNumber(2, Rcv::TempPV, 65535);
        ComputeCurvePoints(b.state, 4, list);
        QCOMPARE(list.text(3, 0), NoTemperatureMark);
        rcv.setText(2, Rcv::TempPV, QString());
        ComputeCurvePoints(b.state, 4, list);
        QCOMPARE(curvePoints(list).first().temperature, 0.0);

        // A foreground machine not in the list reads the first column.
        b.state.CurrentMachine = 9;
        ComputeCurvePoints(b.state, 4, list);
        QCOMPARE(list.text(3, 0), QStringLiteral("-10.0"));
    }

    void emptyPatternsAndZeroMinuteSegments()
    {
        ProgramBench b;
        b.words(7, {{Pd::SegmentCount, 0}, {Pd::StartTemp, 1100}});
        TextTable list;
        ComputeCurvePoints(b.state, 7, list);
        QCOMPARE(curvePoints(list).size(), 1);
        QCOMPARE(curvePoints(list).first().temperature, 10.0);

        // Two segments of 0 minutes: a vertical step at the same place.
        b.words(7, {{Pd::SegmentCount, 2}});
        b.segment(7, 1, 13000, 500, 0, 0);
        b.segment(7, 2, 14000, 500, 0, 0);
        ComputeCurvePoints(b.state, 7, list);
        const QVector<CurvePoint> p = curvePoints(list);
        QCOMPARE(p.size(), 3);
        QCOMPARE(QList<double>({p[1].minutes, p[2].minutes, p[2].temperature}), QList<double>({0, 0, 40}));
    }
};

QTEST_MAIN(CurveTest)
#include "tst_curve.moc"
