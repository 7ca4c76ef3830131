#pragma once

#include <functional>

class QDialog;
class QTimer;
class QWidget;
struct ScreenContext;

// The steps every program editor takes as it opens and as it closes.

// The program image of the foreground machine: taken from its cache files
// when the console is set to take programs from file, else completed from
// the controller by the wait screen frmQM730_PTN_Recv (which reads only what
// is not loaded yet). False when the operator stopped the fetch: the editor
// then closes at once.
bool openProgramImage(ScreenContext &context, QWidget *parent);

// The cache of the foreground machine is written unless the fetch was
// stopped, and the stop is forgotten.
void closeProgramImage(ScreenContext &context);

// The cache written while an editor is open (a change of start mode), unless
// the fetch was stopped.
void saveProgramImage(ScreenContext &context);

// The two one-shot timers of an editor's opening: tmrRefresh_ID runs
// `opened` one tick after the screen is shown (the machine number, first
// values), tmrUnload closes the editor at once (a stopped fetch).
void setUpOpeningTimers(QDialog *editor, QTimer &tmrRefresh_ID, QTimer &tmrUnload, std::function<void()> opened);
