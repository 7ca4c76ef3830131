#pragma once
#include <QString>

// What an installer leaves in the program's folder: the mail database (the
// console refuses to start without it) and the CFG folder.
bool provisionHome(const QString &home);
