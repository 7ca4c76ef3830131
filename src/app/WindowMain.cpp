#include "ConsoleApplication.h"
#include "ConsoleCore.h"
#include "ConsoleMessages.h"
#include "Demo.h"
#include "frmQM730_Main.h"
#include <QApplication>
#include <QString>

int runWindow(QApplication &app, const QString &home, bool commLog, bool demo)
{
    prepareConsoleApplication(app);

    ConsoleCore core(home);
    if (demo) {
        // The simulator and its settings files must be there before the start-up reads them.
        QString error;
        if (!startDemoLine(home, &core, &error))
            showConsoleMessage(nullptr, error);
    }
    if (core.start() == ConsoleCore::StartResult::MailDatabaseMissing) {
        showConsoleMessage(nullptr, QStringLiteral("File not found."));
        return 1;
    }
    core.link().setCommFileLog(commLog);

    frmQM730_Main window(core);
    window.show();
    return app.exec();
}
