#pragma once

class QApplication;

// What every window of the console shares: Traditional Chinese shapes
// whatever the locale, and Qt's own buttons in Chinese. Window titles stay
// exactly as each screen sets them: no application name is added to them.
void prepareConsoleApplication(QApplication &app);
