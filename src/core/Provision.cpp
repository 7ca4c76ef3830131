#include "Files.h"
#include "mdlADO.h"
#include <QDir>

// What an installer leaves in the program's folder: the mail database (the
// console refuses to start without it) and the CFG folder.
bool provisionHome(const QString &home)
{
    QDir().mkpath(programPath(home, QStringLiteral("\\CFG")));
    return provisionMailDatabase(programPath(home, QStringLiteral("\\EMail.mdb")));
}
