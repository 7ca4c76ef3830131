#include "ConsoleCore.h"
#include "Files.h"
#include "MachineListChange.h"
#include "ProgramImage.h"
#include "QtCommPort.h"
#include "Recorder.h"
#include "StartupFiles.h"

ConsoleCore::ConsoleCore(const QString &home, std::unique_ptr<CommPort> port, const QString &mailSender,
                         QObject *parent)
    : QObject(parent), m_state(home), m_port(port ? std::move(port) : std::make_unique<QtCommPort>())
{
    m_link = std::make_unique<CommLink>(m_state, *m_port);
    m_recorder = std::make_unique<Recorder>(m_state, [this] { return m_port->isOpen(); }, mailSender);
    m_link->setStatusListener(m_recorder.get());
    connect(m_link.get(), &CommLink::lineLost, m_recorder.get(), &Recorder::lineLost);
    m_context = std::make_unique<ScreenContext>(ScreenContext{m_state, *m_link, *m_recorder});
    tmrRefresh.setInterval(50);
    tmrRefresh.setSingleShot(true);
}

ConsoleCore::~ConsoleCore()
{
    m_link->setStatusListener(nullptr);
}

ConsoleCore::StartResult ConsoleCore::start()
{
    ConsoleState &s = m_state;
    // 1. The mail database first of all.
    if (!m_recorder->openDatabase())
        return StartResult::MailDatabaseMissing;
    // 2. The system password.
    if (const auto pw = loadSystemPassword(s.home))
        s.SystemPassword = *pw;
    else
        s.SystemPassword = QStringLiteral("Nolk8264");
    // 3. Reply wait and the pattern source.
    s.CommWaitMs = readCommWait(s.home);
    s.PtnDataOption = readPtnRecvOpt(s.home);
    // 4. Temperature decimals from the parameter image (empty at start: 0).
    s.image.setTempDecimals(int(s.image.sprdUP.number(1, 80)));
    // 5. Data-save settings.
    m_recorder->loadSaveSettings();
    // 6. The first refresh timer.
    s.MainRefreshTimer = &tmrRefresh;
    s.ActiveRefreshTimer = &tmrRefresh;
    // 7. The machine list.
    loadMachineList();
    // 8. Port settings; 9. status bar.
    readCommPortCfg(s);
    s.setStatusPanel(1, QStringLiteral("COM") + QString::number(s.CommPortNo));
    s.setStatusPanel(2, s.CommSettingsText());
    s.setStatusPanel(6, s.CommProtocol);
    // 10. The reply time-out, fixed for the whole run.
    m_link->setReplyTimeoutFromBaud();
    // 11. Run log start time and the e-mail settings.
    m_recorder->start();
    return StartResult::Ok;
}

void ConsoleCore::loadMachineList()
{
    applyMachineList(m_state, *m_link, Get_RunCFG(m_state.home));
}

ConsoleCore::PortAction ConsoleCore::togglePort()
{
    if (m_state.SystemLocked)
        return PortAction::Locked;
    if (m_port->isOpen())
        return m_link->closeLink() ? PortAction::Closed : PortAction::Failed;
    return m_link->openLink() ? PortAction::Opened : PortAction::Failed;
}

void ConsoleCore::shutdown()
{
    m_link->CommPort_Close();
    m_recorder->closeDatabase();
}
