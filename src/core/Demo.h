#pragma once
#include <QString>

class QObject;

// The demonstration line: starts qm730-sim (found beside the console) with
// three chambers on a pseudo-terminal linked into the program's folder, and
// prepares PortMap.CFG, CommPort.CFG and CFG/Run.INI for it where they are
// missing. Chamber 1 is started on its first program (sim-start.txt, the
// simulator's start-up script). The simulator is a child of `owner` and ends with it.
// Returns false with a reason when the simulator cannot be started.
bool startDemoLine(const QString &home, QObject *owner, QString *error);
