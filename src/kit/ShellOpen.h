#pragma once
#include <QString>
#include <functional>

// Opening a document with the desktop's viewer or starting a program, as the
// desktop shell does it. target: a local path, or an address such as
// "https://...". program: start the target instead of opening it.
// Returns false when it could not be done.
bool shellOpen(const QString &target, bool program = false);

// Replaces how targets are opened (a locked-down station, or a test that
// records them); an empty handler restores the desktop's way.
using ShellOpenHandler = std::function<bool(const QString &target, bool program)>;
void setShellOpenHandler(ShellOpenHandler handler);

// A file of the program's folder (home, where the settings live: the same
// folder for every screen), opened with the shell, or started in that folder
// when it is a program. False when it is missing or could not be opened;
// *path gets its full path either way.
bool shellOpenBesideProgram(const QString &home, const QString &relative, bool program, QString *path = nullptr);
