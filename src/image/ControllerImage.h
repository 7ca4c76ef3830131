#pragma once
#include "Firmware.h"
#include "TextTable.h"
#include <array>

// What the console knows of its controllers: the run parameters and present
// values of every slot, and the parameter block and program image of the
// machine in the foreground. Every screen reads these tables; only the receive
// path and the screens' own writes change them.
class ControllerImage {
public:
    static constexpr int MaxPatterns = 300;
    static constexpr int PatternWords = 81;
    static constexpr int SegmentWords = 29;
    static constexpr int MaxSegments = 100;
    static constexpr int TextRows = 311;
    static constexpr int RrpRows = 17;
    static constexpr int RcvRows = 27;

    ControllerImage();

    TextTable sprdRRP{QStringLiteral("sprdRRP"), 0, RrpRows};
    TextTable sprdRCV{QStringLiteral("sprdRCV"), 0, RcvRows};
    TextTable sprdUP{QStringLiteral("sprdUP"), 1, 512};
    TextTable sprdUP_PLUS{QStringLiteral("sprdUP_PLUS"), 1, 89};
    TextTable sprdUP_DT{QStringLiteral("sprdUP_DT"), 1, 23};
    TextTable sprdPD{QStringLiteral("sprdPD"), PatternWords, MaxPatterns};
    TextTable sprdSD{QStringLiteral("sprdSD"), SegmentWords * MaxSegments, MaxPatterns};
    TextTable sprdTD{QStringLiteral("sprdTD"), 1, TextRows};

    std::array<bool, MaxPatterns> PatternLoaded{};
    std::array<bool, MaxPatterns> PatternNameLoaded{};
    void clearLoadedFlags();
    // The machine whose programs the flags mark (0: none yet). The image holds
    // one machine's programs: another machine starts with no row loaded, so
    // that one machine's programs are never shown for, or cached as, another's.
    int programMachine() const { return m_programMachine; }
    void setProgramMachine(int machine);

    // Firmware of the foreground machine and what it fixes.
    double firmwareVersion() const { return m_firmware; }
    int patternCount() const { return m_patternCount; }
    void applyFirmware(double version);
    static int upRowsFor(double version);
    static int patternCountFor(double version);
    bool isCurrentLayout() const { return Firmware::atLeast(m_firmware, Firmware::CurrentLayout); }

    // Decimals of temperatures, 0 to 2, taken from the foreground machine.
    int tempDecimals() const { return m_tempDecimals; }
    void setTempDecimals(int d) { m_tempDecimals = d < 0 ? 0 : (d > 2 ? 2 : d); }

    // One column per slot in sprdRRP and sprdRCV, with the machine number in row 0.
    // Cells of a column that keeps its machine keep their values.
    void rebuildSlotColumns(const QList<int> &machineNumbers);
    // A new machine list starts empty, so that the first reading of each machine is silent.
    void clearSlotColumns();

private:
    double m_firmware = 0;
    int m_patternCount = 300;
    int m_tempDecimals = 0;
    int m_programMachine = 0;
};
