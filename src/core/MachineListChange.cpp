#include "MachineListChange.h"
#include "CommLink.h"
#include "ConsoleState.h"

void applyMachineList(ConsoleState &state, CommLink &link, const MachineList &list)
{
    state.setMachineList(list.multiMode, list.machines);
    state.setStatusPanel(5, list.multiMode ? QStringLiteral("多機") : QStringLiteral("單機"));
    if (state.CurrentMachine != 0 && state.slotOfMachine(state.CurrentMachine) < 0)
        state.CurrentMachine = state.machines.isEmpty() ? 0 : state.machines[0].MachineNumber;
    link.update_menus();
    link.restartScan();
}
