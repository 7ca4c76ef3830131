#pragma once
// A console's core on a line of simulated controllers, in a test's own
// program folder.
#include "ConsoleCore.h"
#include "SimProcess.h"
#include "TestHome.h"
#include <QDir>
#include <memory>

struct SimConsole {
    TestHome home;
    std::unique_ptr<SimProcess> sim;
    std::unique_ptr<ConsoleCore> core;

    // qm730-sim with `machines` speaking `protocol` (replies not paced), COM1
    // of the folder on its line, and the machine list of the folder.
    bool startSim(const QString &protocol, const QString &machines = QStringLiteral("1"), const QList<bool> &list = {true})
    {
        stop();
        const QString dir = home.path() + QStringLiteral("/sim");
        QDir().mkpath(dir);
        sim = std::make_unique<SimProcess>(dir);
        home.writePortCfg(protocol);
        home.mapPorts({QStringLiteral("COM1=") + sim->linkPath()});
        home.machines(list);
        return sim->start({"--machines", machines, "--protocol", protocol, "--no-pace"});
    }
    // The console's core started on the folder, its port opened.
    ConsoleState &startConsole()
    {
        core = std::make_unique<ConsoleCore>(home.path());
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
