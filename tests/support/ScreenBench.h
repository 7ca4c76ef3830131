#pragma once
#include "CommLink.h"
#include "ConsoleState.h"
#include "FakeCommPort.h"
#include "Recorder.h"
#include "ScreenContext.h"

// What a screen is given, without a main screen or a real port: the state in
// a program folder, the link over a fake port, and the recording (whose run
// log takes the port as open).
struct ScreenBench {
    ConsoleState state;
    FakeCommPort port;
    CommLink link{state, port};
    Recorder recorder{state, [] { return true; }};
    ScreenContext ctx{state, link, recorder};

    // Machines by number, each online and running.
    explicit ScreenBench(const QString &home, const QList<int> &numbers = {1}) : state(home)
    {
        QVector<MachineSlot> list;
        for (int n : numbers)
            list.append({n, {}, true, true});
        state.setMachines(list);
    }
};
