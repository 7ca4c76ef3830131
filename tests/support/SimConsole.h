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
    std::unique_ptr<TestHome> home = std::make_unique<TestHome>();
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

    // The simulator alone (replies not paced) with COM1 of the same program
    // folder on its line, kept between starts: the console comes after with
    // startConsole(), or is a program of its own on the folder.
    bool startSim(const QString &protocol, const QString &machines = QStringLiteral("1"), const QList<bool> &list = {true})
    {
        core.reset();
        if (!home)
            home = std::make_unique<TestHome>();
        sim = std::make_unique<SimProcess>(dir.path());
        home->writePortCfg(protocol);
        home->mapPorts({QStringLiteral("COM1=") + sim->linkPath()});
        home->machines(list);
        return sim->start({QStringLiteral("--machines"), machines, QStringLiteral("--protocol"), protocol,
                           QStringLiteral("--no-pace")});
    }
    // The console's core started on the folder, its port opened.
    ConsoleState &startConsole()
    {
        core = std::make_unique<ConsoleCore>(home->path());
        core->start();
        core->togglePort();
        return core->state();
    }
    void stop()
    {
        core.reset();
        sim.reset();
    }
    bool ok(const QString &line) { return sim->command(line) == QLatin1String("ok"); }
};
