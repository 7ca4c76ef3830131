#include "ProgramSession.h"
#include "ConsoleState.h"
#include "ProgramImage.h"
#include "ScreenContext.h"
#include "frmQM730_PTN_Recv.h"

bool openProgramImage(ScreenContext &context, QWidget *parent)
{
    ConsoleState &s = context.state;
    if (!LoadProgramCache(s.image, s.home, s.CurrentMachine, s.PtnDataOption)) {
        frmQM730_PTN_Recv fetch(context, parent);
        fetch.exec();
    }
    return !s.ReceptionStopped;
}

void saveProgramImage(ScreenContext &context)
{
    ConsoleState &s = context.state;
    // No foreground machine: nothing was read, and no cache has its name.
    if (!s.ReceptionStopped && s.CurrentMachine > 0)
        SaveProgramCache(s.image, s.home, s.CurrentMachine);
}

void closeProgramImage(ScreenContext &context)
{
    saveProgramImage(context);
    context.state.ReceptionStopped = false;
}
