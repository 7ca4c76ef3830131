#pragma once
// A simulated line and a console on it, for the integration tests.
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
    // 1..n used as `used` says, port open.
    bool bringUp(const QString &protocol, const QString &machines, const QList<bool> &used,
                 const QStringList &script = {}, const QStringList &options = {})
    {
        core.reset();
        sim = std::make_unique<SimProcess>(dir.path());
        if (!sim->start(QStringList{QStringLiteral("--machines"), machines, QStringLiteral("--protocol"), protocol} + options))
            return false;
        for (const QString &line : script)
            if (sim->command(line) != QLatin1String("ok"))
                return false;
        home = std::make_unique<TestHome>();
        home->writePortCfg(protocol);
        home->mapPorts({"COM1=" + sim->linkPath()});
        home->machines(used);
        core = std::make_unique<ConsoleCore>(home->path());
        return core->start() == ConsoleCore::StartResult::Ok && core->togglePort() == ConsoleCore::PortAction::Opened;
    }
    void reset()
    {
        core.reset();
        home.reset();
        sim.reset();
    }
};
