#include "Provision.h"
#include "Files.h"
#include "mdlADO.h"
#include <QDir>

bool provisionHome(const QString &home)
{
    QDir().mkpath(programPath(home, QStringLiteral("\\CFG")));
    return provisionMailDatabase(programPath(home, QStringLiteral("\\EMail.mdb")));
}
