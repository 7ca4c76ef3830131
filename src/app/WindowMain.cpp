#include "ConsoleCore.h"
#include "ConsoleMessages.h"
#include "Demo.h"
#include "frmQM730_Main.h"
#include <QApplication>
#include <QLibraryInfo>
#include <QString>
#include <QTranslator>

int runWindow(QApplication &app, const QString &home, bool commLog, bool demo)
{
    // Traditional Chinese shapes whatever the locale, and Qt's own buttons in Chinese.
    QFont font = app.font();
    font.setFamily(QStringLiteral("Noto Sans CJK TC"));
    app.setFont(font);
    auto *translator = new QTranslator(&app);
    if (translator->load(QStringLiteral("qtbase_zh_TW"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        app.installTranslator(translator);
    QApplication::setApplicationDisplayName(QStringLiteral("QM730"));

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
