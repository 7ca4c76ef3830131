#include "SimClock.h"
#include "Line.h"

namespace {
constexpr int TickMs = 100;
}

SimClock::SimClock(Line &line, double speed, QObject *parent)
    : QObject(parent)
    , m_line(line)
    , m_speed(speed)
{
    m_wall.start();
    m_timer.setInterval(TickMs);
    connect(&m_timer, &QTimer::timeout, this, &SimClock::tick);
    m_timer.start();
}

void SimClock::setSpeed(double speed)
{
    tick();  // time so far runs at the old speed
    m_speed = speed;
}

void SimClock::advance(double seconds)
{
    for (Controller *c : m_line.controllers())
        c->advance(seconds);
}

void SimClock::tick()
{
    const qint64 now = m_wall.elapsed();
    const double seconds = (now - m_last) / 1000.0 * m_speed;
    m_last = now;
    if (seconds > 0)
        advance(seconds);
}
