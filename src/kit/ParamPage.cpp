#include "ParamPage.h"
#include "ScreenContext.h"
#include <QDialog>
#include <QTimer>

ParamPage::ParamPage(ScreenContext &context, QDialog *page)
    : QObject(page), m_ctx(context), m_binder(context), m_timer(new QTimer(page))
{
    setUpRefreshTimer(*m_timer);
    connect(m_timer, &QTimer::timeout, this, &ParamPage::tmrRefresh_Timer);
}

ParamPage::~ParamPage() = default;

void ParamPage::open()
{
    m_registration = std::make_unique<RefreshRegistration>(m_ctx.state, m_timer, RefreshRegistration::ParameterPage);
    m_binder.load();
}

void ParamPage::tmrRefresh_Timer()
{
    m_timer->stop();
    m_binder.load();
}
