#pragma once
// A simulated line and a console on it, for the integration tests: the
// simulator in a folder of its own and a ConsoleCore over a fresh program
// folder whose COM1 is the simulator's line, its port opened.
#include "ConsoleCore.h"
#include "SimProcess.h"
#include "TestHome.h"
#include <memory>

struct SimConsole {
    QTemporaryDir dir;
    std::unique_ptr<SimProcess> sim;
    std::unique_ptr<TestHome> home;
    std::unique_ptr<ConsoleCore> core;

    // The simulator with the given machines (and further options), its
    // control script run; a console whose COM1 is its line, with machines
    // 1..n in the machine list as `used` says (none written when empty).
    // False when either does not come up.
    bool bringUp(const QString &protocol, const QString &machines, const QList<bool> &used,
                 const QStringList &script = {}, const QStringList &options = {})
    {
        reset();
        sim = std::make_unique<SimProcess>(dir.path());
        if (!sim->start(QStringList{QStringLiteral("--machines"), machines, QStringLiteral("--protocol"), protocol} + options))
            return false;
        for (const QString &line : script)
            if (sim->command(line) != QLatin1String("ok"))
                return false;
        home = std::make_unique<TestHome>();
        home->writePortCfg(protocol);
        home->mapPorts({QStringLiteral("COM1=") + sim->linkPath()});
        if (!used.isEmpty())
            home->machines(used);
        core = std::make_unique<ConsoleCore>(home->path());
        return core->start() == ConsoleCore::StartResult::Ok
               && core->togglePort() == ConsoleCore::PortAction::Opened;
    }

    // The console first, so that it closes its port before the line goes.
    void reset()
    {
        core.reset();
        home.reset();
        sim.reset();
    }
};
