#include "Demo.h"
#include <QObject>

bool startDemoLine(const QString &, QObject *, QString *error)
{
    if (error)
        *error = QStringLiteral("the simulator is not available in this build");
    return false;
}
