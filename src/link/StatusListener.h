#pragma once
#include <QString>

// Who hears of each stored status block: the event history and the mail
// queue. The receive path calls it inside its store routines, in polling
// order; anything it throws ends the store routine and is written to Err.LOG.
class StatusListener {
public:
    virtual ~StatusListener() = default;

    // sprdRRP of the slot has been stored. wasRunning is MachineRunning before
    // this reading; MachineRunning already holds the new state, MachineRunMode
    // is as it was (empty until the first RCV of the slot).
    virtual void runStateStored(int slot, bool wasRunning, bool nowRunning) = 0;

    // A status step (RCV of a slot) begins and ends; the words come in row order
    // in between, each before its cell is overwritten. oldCell is the cell's
    // text (empty at the first reading).
    virtual void statusStepBegin(int slot) = 0;
    virtual void statusWord(int slot, int row, const QString &oldCell, int newWord) = 0;
    virtual void statusStepEnd(int slot) = 0;
};
