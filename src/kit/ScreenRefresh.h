#pragma once
#include <QPointer>
#include <QTimer>

class ConsoleState;

// How fresh data reach an open screen. While it lives, the screen's own
// one-shot tmrRefresh is the ActiveRefreshTimer that the link starts when a
// reply the screen asked for is in the tables, and, for a page that shows the
// parameter block, ParamPageOpen is set so that each poll reads the block.
// Its end restores both as they were before: the main screen's timer, or the
// timer of the screen that opened this one.
class RefreshRegistration {
public:
    enum Kind { Screen, ParameterPage };
    RefreshRegistration(ConsoleState &state, QTimer *timer, Kind kind);
    ~RefreshRegistration();
    RefreshRegistration(const RefreshRegistration &) = delete;
    RefreshRegistration &operator=(const RefreshRegistration &) = delete;

private:
    ConsoleState &m_state;
    QTimer *m_timer;
    QPointer<QTimer> m_previous;
    bool m_previousPageOpen;
};

// A screen's tmrRefresh: 50 ms, one-shot, stopped at rest, named so.
void setUpRefreshTimer(QTimer &timer);
