#pragma once
#include "TextTable.h"
#include <QString>
#include <QVector>
#include <QWidget>

class ConsoleState;
class QChart;
class QChartView;
class QLineSeries;
class QValueAxis;

// The curve of a pattern's set values against time, as the program screens
// show it: temperature and humidity, each on its own value axis, over the
// minutes from the start. Each segment is drawn once, in stored order, as a
// straight ramp from the point before to its set value; repeats, links and
// waits are not drawn.

// Columns of sprdRunSeg_List: 1 empty, 2 segment number, 3 temperature text,
// 4 humidity text, 5 minutes of the segment. Row 0 holds the start values in
// columns 3 and 4, rows 1 to SegmentCount the segments.
namespace RunSegList {
enum Column { Segment = 2, Temperature = 3, Humidity = 4, Minutes = 5 };
constexpr int Columns = 5;
} // namespace RunSegList

// The marks of a start value that has no measured value behind it.
inline const QString NoTemperatureMark = QStringLiteral("---.--");
inline const QString NoHumidityMark = QStringLiteral("---.-");

// Fills sprdRunSeg_List for a pattern of the program image. A pattern that
// starts from the start values ("S.SV") starts at StartTemp and StartHumi; one
// that starts from the measured values ("S.PV") at the present values of
// the foreground machine (its column of sprdRCV, the first when it is not in
// the list): temperature with TempDecimals decimals, humidity only when the
// first segment has a humidity set value, else the no-value marks.
void ComputeCurvePoints(const ConsoleState &state, int pattern, TextTable &sprdRunSeg_List);

struct CurvePoint {
    double minutes = 0;
    double temperature = 0;
    double humidity = 0;
};
// The points of a filled list: the start at 0 minutes, then each segment at
// the sum of the durations up to it. Texts are read the lenient way, so the
// no-value marks count as 0.
QVector<CurvePoint> curvePoints(const TextTable &sprdRunSeg_List);

class ProgramCurve : public QWidget {
    Q_OBJECT
public:
    // Legends of the two series: "溫度SV", "濕度SV" on the pattern and
    // management screens, "溫度 SV", "濕度 SV" on the segment screen.
    ProgramCurve(const QString &temperatureLegend, const QString &humidityLegend, QWidget *parent = nullptr);

    // Gives the chart the points of a filled sprdRunSeg_List.
    void DrawCurve(const TextTable &sprdRunSeg_List);
    void setPoints(const QVector<CurvePoint> &points);
    // Empties both series; the background takes the button colour.
    void ClearCurve();
    bool isCleared() const { return m_cleared; }

    // Flat or with depth (btn3D); touches no data.
    void set3D(bool on);
    bool is3D() const { return m_3d; }

    QChart *chart() const { return m_chart; }
    QLineSeries *series(int index) const; // 0 temperature, 1 humidity
    QValueAxis *temperatureAxis() const { return m_axisT; }
    QValueAxis *humidityAxis() const { return m_axisH; }
    QValueAxis *timeAxis() const { return m_axisX; }

private:
    void applyPens();

    QChart *m_chart;
    QChartView *m_view;
    QLineSeries *m_temperature;
    QLineSeries *m_humidity;
    QValueAxis *m_axisT;
    QValueAxis *m_axisH;
    QValueAxis *m_axisX;
    bool m_cleared = true;
    bool m_3d = false;
};
