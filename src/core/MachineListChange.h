#pragma once
#include "StartupFiles.h"

class CommLink;
class ConsoleState;

// Puts a machine list in force, at start and whenever the operator edits it:
// the slots start anew (offline, not running, no run mode, so that the first
// reading of each machine raises no event and the run log waits for it), the
// status tables get one row per slot, the status bar shows "多機" or "單機",
// and the program image is dropped. A foreground machine that is no longer in
// the list gives way to the machine of slot 0 (none answered yet: it stays 0). With the port open the link
// scans the new list from its first slot.
void applyMachineList(ConsoleState &state, CommLink &link, const MachineList &list);
