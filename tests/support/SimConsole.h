#pragma once
// A console whose COM1 is a simulated line: the simulator in HOME/sim and a
// ConsoleCore over the test's program folder, its port opened.
#include "ConsoleCore.h"
#include "SimProcess.h"
#include "TestHome.h"
#include <memory>

struct SimConsole {
    std::unique_ptr<SimProcess> sim;
    std::unique_ptr<ConsoleCore> core;

    // Starts the simulator (--protocol and simArgs) and the console on it,
    // with machines 1..n in the machine list as `used` says (when given).
    // False when either does not come up.
    bool start(const TestHome &home, const QString &protocol, const QStringList &simArgs,
               const QList<bool> &used = {})
    {
        stop();
        const QString dir = home.path() + QStringLiteral("/sim");
        QDir().mkpath(dir);
        sim = std::make_unique<SimProcess>(dir);
        if (!sim->start(QStringList{QStringLiteral("--protocol"), protocol} + simArgs))
            return false;
        home.writePortCfg(protocol);
        home.mapPorts({QStringLiteral("COM1=") + sim->linkPath()});
        if (!used.isEmpty())
            home.machines(used);
        core = std::make_unique<ConsoleCore>(home.path());
        return core->start() == ConsoleCore::StartResult::Ok
               && core->togglePort() == ConsoleCore::PortAction::Opened;
    }

    // The console first, so that it closes its port before the line goes.
    void stop()
    {
        core.reset();
        sim.reset();
    }
};
