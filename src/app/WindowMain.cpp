#include <QApplication>
#include <QString>

// The windowed console comes with the main screen; until then it only runs the event loop.
int runWindow(QApplication &app, const QString &home, bool commLog, bool demo)
{
    Q_UNUSED(home);
    Q_UNUSED(commLog);
    Q_UNUSED(demo);
    return app.exec();
}
