#include "ProgramSession.h"
#include "ConsoleState.h"
#include "ProgramImage.h"
#include "ScreenContext.h"
#include "frmQM730_PTN_Recv.h"
#include <QDialog>
#include <QTimer>

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

void setUpOpeningTimers(QDialog *editor, QTimer &tmrRefresh_ID, QTimer &tmrUnload, std::function<void()> opened)
{
    tmrRefresh_ID.setObjectName(QStringLiteral("tmrRefresh_ID"));
    tmrRefresh_ID.setSingleShot(true);
    tmrRefresh_ID.setInterval(50);
    QObject::connect(&tmrRefresh_ID, &QTimer::timeout, editor, std::move(opened));
    tmrUnload.setObjectName(QStringLiteral("tmrUnload"));
    tmrUnload.setSingleShot(true);
    tmrUnload.setInterval(0);
    QObject::connect(&tmrUnload, &QTimer::timeout, editor, &QDialog::reject);
}
