// Word encodings of the controller and the constants of the chamber model.
#pragma once

#include <QtGlobal>

#include <algorithm>
#include <cmath>

namespace units {

constexpr quint16 BurnOut = 65535;
constexpr double AmbientTemp = 25.0;
constexpr double AmbientHumi = 60.0;
constexpr double TuningSeconds = 120.0;

// Alarm type codes (low byte of a pattern alarm's kind word, system alarm type rows).
constexpr int AlarmDevHigh = 1;  // PV above SV by more than the alarm value
constexpr int AlarmDevLow = 2;   // PV below SV by more than the alarm value
constexpr int AlarmAbsHigh = 3;  // PV above the alarm value
constexpr int AlarmAbsLow = 4;   // PV below the alarm value

// Inner signals: source and type words.
constexpr int SourceTemp = 1;
constexpr int SourceHumi = 2;
constexpr int SignalTargetSv = 0;
constexpr int SignalPresentSv = 1;
constexpr int SignalPv = 2;
constexpr int SignalDeviation = 3;  // PV minus present SV

// Factory wiring of the digital outputs: the relay row of an item and its word
// (relay number in the low byte, open collector in the high byte). Legacy
// controllers have this wiring fixed.
struct Wiring {
    int row;
    quint16 word;
};
inline constexpr Wiring FactoryWiring[] = {
    {180, 1},              // RUN/STOP
    {177, 2},              // T.RUN
    {178, 3},              // H.RUN
    {137, 4},              // S.A/S 1
    {141, 5},              // P.A/S 1
    {129, 6},              // T/S 1
    {130, 7},              // T/S 2
    {179, 8},              // sensor burn-out
    {121, (1 << 8) | 9},   // I/S 1, also O/C 1
    {181, 10},             // WAIT
    {182, 11},             // HOLD
};

inline quint16 factoryWiring(int row)
{
    for (const Wiring &w : FactoryWiring)
        if (w.row == row)
            return w.word;
    return 0;
}

inline quint16 clampWord(double v)
{
    return static_cast<quint16>(std::clamp<long>(std::lround(v), 0, 65534));
}

// word = value * scale + offset
inline quint16 encodeOffset(double value, double scale, double offset) { return clampWord(value * scale + offset); }
inline double decodeOffset(quint16 word, double scale, double offset) { return (word - offset) / scale; }

inline quint16 encodeTemp(double degrees) { return encodeOffset(degrees, 100, 10000); }
inline double decodeTemp(quint16 word) { return decodeOffset(word, 100, 10000); }
inline quint16 encodeHumi(double percent) { return clampWord(std::clamp(percent, 0.0, 100.0) * 10); }
inline double decodeHumi(quint16 word) { return word / 10.0; }
inline quint16 encodePercent(double percent) { return clampWord(std::clamp(percent, 0.0, 100.0) * 100); }
// High byte and low byte, as hours and minutes or minutes and seconds.
inline int high(quint16 word) { return word >> 8; }
inline int low(quint16 word) { return word & 0xFF; }

} // namespace units
