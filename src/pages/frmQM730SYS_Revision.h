#pragma once
#include "Dictionary.h"
#include "PageValues.h"
#include <QDialog>
#include <QLineF>
#include <QList>
#include <QObject>
#include <QPointF>
#include <QWidget>
#include <optional>

class EntryField;
class ParamPage;
class QLabel;
struct ScreenContext;

// What sets one revision curve apart from the others: its points, their
// rows and bounds, the square of its graph and its offset.
struct RevisionKind {
    const char *name;
    const char *caption;
    int points;             // 6 on the inputs, 3 on the retransmission outputs
    double defaults[6];     // the default points, rising
    double graphUnits;      // the graph puts graphUnits between two default points
    Param corrections;      // txtAdjustY, points 1..n
    Param bases;            // txtAdjustX, points 1..n
    Param offsetRtd;        // the offset row (of an RTD on the inputs)
    Param offsetVoltage;    // the offset row of a voltage input (the same on the outputs)
    Param blockFirst;       // the current layout's block for "初始化" starts at this row
    std::optional<SensorChannel> input; // the input pages: the offset follows its type, its PV is shown
};

// The drawing of a curve: the segments between neighbouring points in a
// square of 4200 by 4200 units, each point placed at (value - the first
// default point) x the units per value, so the default points fall on the
// grid. It only shows; it changes nothing.
class RevisionGraph : public QWidget {
    Q_OBJECT
public:
    static constexpr double Side = 4200;
    RevisionGraph(const RevisionKind &kind, QWidget *parent = nullptr);
    // Points as (base, measured); a point not known yet breaks the line.
    void setPoints(const QList<std::optional<QPointF>> &points);
    // The segments drawn, in units of the square (y upwards).
    QList<QLineF> segments() const { return m_segments; }

protected:
    void paintEvent(QPaintEvent *) override;

private:
    QPointF place(const QPointF &value) const;
    const RevisionKind &m_kind;
    QList<QLineF> m_segments;
};

// One revision page, composed into its dialog: the points txtAdjustX (the
// base points, "基準值") and txtAdjustY (the measured values, "測定值"),
// the offset txtOffset, the graph, "初始化" and, on an input, its present
// value. A point outside its bounds, or one that would not rise between its
// neighbours, takes back its old text.
class RevisionCurve : public QObject {
    Q_OBJECT
public:
    RevisionCurve(ScreenContext &context, QDialog *page, const RevisionKind &kind);

    const RevisionKind &kind() const { return m_kind; }
    RevisionGraph *graph() const { return m_graph; }
    // "初始化": the default points in both columns and the offset zero, as one block.
    void btnInit_Click();

private:
    bool rises(const QList<EntryField *> &column, int index, double value) const;
    void redraw();
    std::optional<ParamRef> offsetParam() const;
    void writeOffsetAfterBlock();

    ScreenContext &m_ctx;
    const RevisionKind &m_kind;
    ParamPage *m_page;
    QList<EntryField *> m_x, m_y;
    EntryField *m_offset = nullptr;
    QLabel *m_pv = nullptr;
    RevisionGraph *m_graph = nullptr;
    bool m_offsetAfterBlock = false; // legacy layout: the offset follows the block
};

// "溫度補正": the temperature input's curve and offset.
class frmQM730SYS_Sensor_RevisionT : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730SYS_Sensor_RevisionT(ScreenContext &context, QWidget *parent = nullptr);
    RevisionCurve &curve() { return *m_curve; }

private:
    RevisionCurve *m_curve;
};

// "濕度補正": the humidity input's curve and offset.
class frmQM730SYS_Sensor_RevisionH : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730SYS_Sensor_RevisionH(ScreenContext &context, QWidget *parent = nullptr);
    RevisionCurve &curve() { return *m_curve; }

private:
    RevisionCurve *m_curve;
};

// "溫度傳送輸出補正": the temperature retransmission output's curve and offset.
class frmQM730SYS_Control_RevisionT : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730SYS_Control_RevisionT(ScreenContext &context, QWidget *parent = nullptr);
    RevisionCurve &curve() { return *m_curve; }

private:
    RevisionCurve *m_curve;
};

// "濕度傳送輸出補正": the humidity retransmission output's curve and offset.
class frmQM730SYS_Control_RevisionH : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730SYS_Control_RevisionH(ScreenContext &context, QWidget *parent = nullptr);
    RevisionCurve &curve() { return *m_curve; }

private:
    RevisionCurve *m_curve;
};
