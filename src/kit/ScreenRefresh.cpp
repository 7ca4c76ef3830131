#include "ScreenRefresh.h"
#include "ConsoleState.h"

RefreshRegistration::RefreshRegistration(ConsoleState &state, QTimer *timer, Kind kind)
    : m_state(state), m_timer(timer), m_previous(state.ActiveRefreshTimer), m_previousPageOpen(state.ParamPageOpen)
{
    m_state.setActiveRefreshTimer(timer);
    if (kind == ParameterPage)
        m_state.ParamPageOpen = true;
}

RefreshRegistration::~RefreshRegistration()
{
    if (m_state.ActiveRefreshTimer == m_timer || !m_state.ActiveRefreshTimer)
        m_state.setActiveRefreshTimer(m_previous);
    m_state.ParamPageOpen = m_previousPageOpen;
}

void setUpRefreshTimer(QTimer &timer)
{
    timer.setObjectName(QStringLiteral("tmrRefresh"));
    timer.setInterval(50);
    timer.setSingleShot(true);
    timer.stop();
}
