#pragma once
#include "CommLink.h"
#include "ConsoleState.h"
#include "ScreenContext.h"
#include <QObject>
#include <QTimer>
#include <memory>

class Recorder;

// The console without its windows: state, port, link and recording, started
// in the fixed order of the program's start. The main window and the
// headless recorder both sit on one of these.
class ConsoleCore : public QObject {
    Q_OBJECT
public:
    // port: the serial port to use; a real one when null.
    explicit ConsoleCore(const QString &home, std::unique_ptr<CommPort> port = nullptr,
                         const QString &mailSender = {}, QObject *parent = nullptr);
    ~ConsoleCore() override;

    enum class StartResult { Ok, MailDatabaseMissing };
    // The start-up steps. MailDatabaseMissing: say "File not found." and end.
    StartResult start();
    // The shut-down after "退出?" was answered Yes: port, then database.
    void shutdown();

    ConsoleState &state() { return m_state; }
    CommLink &link() { return *m_link; }
    Recorder &recorder() { return *m_recorder; }
    CommPort &port() { return *m_port; }
    // What the screens are given.
    ScreenContext &context() { return *m_context; }

    // The main screen's own refresh timer, the first ActiveRefreshTimer.
    QTimer tmrRefresh;

    // Opening and closing refused while the operator's program lock is on.
    enum class PortAction { Opened, Closed, Failed, Locked };
    PortAction togglePort();

    // The machine list, rebuilt (after Run.INI changed).
    void loadMachineList();

private:
    ConsoleState m_state;
    std::unique_ptr<CommPort> m_port;
    std::unique_ptr<CommLink> m_link;
    std::unique_ptr<Recorder> m_recorder;
    std::unique_ptr<ScreenContext> m_context;
};
