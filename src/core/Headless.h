#pragma once
#include <QString>

// The console without windows: opens the port at start, scans and polls,
// records, and prints one line per change of the link and per poll of a
// machine. Ends after `seconds` (0: never) or on SIGTERM/SIGINT, closing the
// port and the database.
// With `demo` the simulator's line is started first (see Demo.h).
int runHeadless(const QString &home, int seconds, bool commLog, bool demo = false);
