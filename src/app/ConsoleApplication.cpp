#include "ConsoleApplication.h"
#include <QApplication>
#include <QFont>
#include <QLibraryInfo>
#include <QTranslator>

void prepareConsoleApplication(QApplication &app)
{
    QFont font = app.font();
    font.setFamily(QStringLiteral("Noto Sans CJK TC"));
    app.setFont(font);
    auto *translator = new QTranslator(&app);
    if (translator->load(QStringLiteral("qtbase_zh_TW"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        app.installTranslator(translator);
}
