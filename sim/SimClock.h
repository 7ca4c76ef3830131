// Simulated time: runs the chambers of all controllers, `speed` times faster
// than the wall clock (0: only when told to step).
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class Line;

class SimClock : public QObject {
    Q_OBJECT
public:
    SimClock(Line &line, double speed, QObject *parent = nullptr);

    double speed() const { return m_speed; }
    void setSpeed(double speed);
    // Runs every chamber for this many simulated seconds at once.
    void advance(double seconds);

private:
    void tick();

    Line &m_line;
    double m_speed;
    QTimer m_timer;
    QElapsedTimer m_wall;
    qint64 m_last = 0;
};
