// Logs as fast as it can until it is killed: four machines online and
// running, one row per machine per tick, the clock advanced by a second per
// tick. Prints "READY" once the first rows are written.
//
//   runlog_soak HOME
#include "ConsoleState.h"
#include "RunLogger.h"
#include <QCoreApplication>
#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc < 2)
        return 2;
    const QString home = QString::fromLocal8Bit(argv[1]);
    ConsoleState state(home);
    state.setMachines({{1, {}, true, true}, {2, {}, true, true}, {3, {}, true, true}, {999, {}, true, true}});
    state.image.setTempDecimals(2);
    writeSaveSettingsFile(home, {"Yes", "1", "sec", home + "/data", "QM730", "0", "0", "0"});

    RunLogger logger(state, [] { return true; });
    QDateTime now = QDateTime::fromString("2026-03-01 08:00:00", "yyyy-MM-dd HH:mm:ss");
    logger.setClock([&now] { return now; });
    logger.loadSettings();
    logger.markStart();
    for (qint64 tick = 1;; ++tick) {
        const int wave = int(tick % 4000);
        for (int slot = 0; slot < 4; ++slot) {
            // Slot 2 has a burnt-out sensor, slot 3 no humidity control.
            const int words[] = {9000 + wave, slot == 2 ? 65535 : 8000 + wave, wave, slot == 3 ? 0 : 600, wave / 3, 10000 - wave};
            for (int row = 1; row <= 6; ++row)
                state.image.sprdRCV.setNumber(slot + 1, row, words[row - 1]);
        }
        now = now.addSecs(1);
        logger.Timer1_Timer();
        if (tick == 1) {
            std::puts("READY");
            std::fflush(stdout);
        }
    }
}
