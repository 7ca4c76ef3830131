#pragma once
#include "PageBinder.h"
#include "ScreenRefresh.h"
#include <QObject>
#include <memory>

class QDialog;
class QTimer;
struct ScreenContext;

// What every system page shares, composed into the page's dialog: its
// tmrRefresh (50 ms, one-shot, a child of the page so it is found by name),
// registered as the ActiveRefreshTimer with ParamPageOpen set from open() to
// the page's end, and the binder of its fields. The link starts the timer
// when the page's write or read has been answered; its tick reloads every
// field from the image, then runs the page's own rules. The page never reads
// the controller by itself.
class ParamPage : public QObject {
    Q_OBJECT
public:
    ParamPage(ScreenContext &context, QDialog *page);
    ~ParamPage() override;

    PageBinder &binder() { return m_binder; }
    QTimer &tmrRefresh() { return *m_timer; }

    // Call when the page's controls are built and bound: takes the refresh
    // over and loads the values.
    void open();
    // The refresh tick: stops the timer, reloads.
    void tmrRefresh_Timer();

private:
    ScreenContext &m_ctx;
    PageBinder m_binder;
    QTimer *m_timer;
    std::unique_ptr<RefreshRegistration> m_registration;
};
