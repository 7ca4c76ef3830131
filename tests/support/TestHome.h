#pragma once
#include "Files.h"
#include "StartupFiles.h"
#include "mdlADO.h"
#include <QTemporaryDir>

// A provisioned program folder in a temporary folder: the mail database and
// CommPort.CFG (COM1, 115200,N,8,1); port map and machine list on demand.
struct TestHome {
    QTemporaryDir dir;
    QString path() const { return dir.path(); }
    TestHome()
    {
        provisionMailDatabase(programPath(path(), QStringLiteral("EMail.mdb")));
        writePortCfg(QStringLiteral("PC Link"));
    }
    void writePortCfg(const QString &protocol) const
    {
        writeCommPortCfg(path(), {"COM1", "115200", "N", "8", "1", protocol, "OFF"});
    }
    void mapPorts(const QStringList &lines) const { writeTextLinesAtomic(path() + "/PortMap.CFG", lines); }
    // Multi-machine list: machine n is in it when used[n - 1].
    void machines(const QList<bool> &used) const
    {
        QVector<QPair<bool, QString>> lines;
        for (bool u : used)
            lines.append({u, QString()});
        Put_RunCFG(path(), true, 1, lines);
    }
};
