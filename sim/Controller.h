// One simulated controller: its memory blocks (run parameters, live status,
// parameter block, text rows, patterns and segments) and the chamber behind it.
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QRandomGenerator>
#include <QString>
#include <QVector>

#include <array>
#include <map>
#include <optional>

struct Firmware {
    QString text;       // as given, shown in the identity text
    double number = 0;  // compared as a plain number, like the console does

    static std::optional<Firmware> parse(const QString &text);
    int upRows() const;
    int patternCount() const;
    bool currentLayout() const { return number >= 2.2; }
    // From 2.31 alarm and inner-signal values are tenths with an offset.
    bool tenthValues() const { return number >= 2.31; }
    // From 2.51 timed time signals count minutes and seconds instead of hours and minutes.
    bool signalTimesInMinutes() const { return number >= 2.51; }
    // Identity register: major in the high byte, hundredths in the low byte.
    quint16 identityWord() const;
};

struct ControllerSetup {
    int number = 1;
    Firmware firmware;
    std::optional<quint32> noiseSeed;  // no value: no noise at all
    int protocolOption = 0;            // the controller's own protocol setting row
    int baudOption = 8;                // the controller's own baud setting row
    int responseMs = 5;
    QDateTime clock;
};

class Controller {
public:
    static constexpr int RrpRows = 17;
    static constexpr int RcvRows = 27;
    static constexpr int TextRows = 311;
    static constexpr int TextBytes = 30;
    static constexpr int PatternWords = 81;
    static constexpr int SegmentWords = 29;
    static constexpr int Segments = 100;
    static constexpr int ScreenWidth = 320;
    static constexpr int ScreenHeight = 240;
    static constexpr int IdentityModel = 730;

    explicit Controller(const ControllerSetup &setup);

    int number() const { return m_number; }
    const Firmware &firmware() const { return m_fw; }
    int upRows() const { return static_cast<int>(m_up.size()); }
    int patternCount() const { return static_cast<int>(m_patterns.size()); }

    // Rows and words are numbered from 1; a read of a row the block lacks has no value,
    // a write to it returns false. Writes act like the controller's own keys would.
    std::optional<quint16> rrp(int row) const;
    bool setRrp(int row, quint16 word);
    std::optional<quint16> rcv(int row) const;
    std::optional<quint16> up(int row) const;
    bool setUp(int row, quint16 word);
    std::optional<quint16> upPlus(int row) const;  // rows 88 and 89
    bool setUpPlus(int row, quint16 word);
    std::optional<QByteArray> text(int row) const;  // TextBytes bytes, zero padded
    bool setText(int row, int offset, const QByteArray &bytes);
    std::optional<quint16> patternWord(int pattern, int word) const;
    bool setPatternWord(int pattern, int word, quint16 value);
    std::optional<quint16> segmentWord(int pattern, int segment, int word) const;
    bool setSegmentWord(int pattern, int segment, int word, quint16 value);

    // Modbus register map (function 3 reads any mapped register, 16 writes the writable ones).
    std::optional<quint16> readRegister(int reg) const;
    bool canWriteRegister(int reg) const;
    void writeRegister(int reg, quint16 word);

    // Replaces the program memory by a generated one: patterns 1 to `patterns`
    // named "程式N" with `segments` segments each, every other pattern empty
    // (no segments, a one-run pattern starting from 25 degrees).
    void fillPrograms(int patterns, int segments);

    // Holds a live-status row at a fixed word until released with no value.
    // Rows 2 and 5 also drive the chamber (65535 is a sensor burn-out).
    void pinRcv(int row, std::optional<quint16> word);

    // Runs the chamber for the given simulated time.
    void advance(double seconds);

    // The display as 320 x 240 bytes of 3-3-2 colour, bottom line first.
    QByteArray screen() const;
    // The same display as a 24-bit picture (binary PPM, top line first), each
    // byte in the colour the controller's palette gives it.
    QByteArray screenPicture() const;

private:
    struct Program {
        int pattern = 0;
        int segment = 0;
        double elapsed = 0;  // seconds in the segment (or in the fixed run)
        double length = 0;   // seconds of the segment (fixed run: 0 = endless)
        double tFrom = 0, hFrom = 0, tTo = 0, hTo = 0;
        bool waiting = false;
        double waited = 0;
        int runsDone = 0;
        std::array<int, 20> repeatsDone{};
    };

    // Rows of the parameter block the controller acts on, by layout.
    struct Rows {
        int resolution, atKey, tempType, humiType, alarmEnable, alarmBase, innerBase;
        int tempSvHigh, tempSvLow, humiSvHigh, humiSvLow;
    };

    // Registers 1 to the block's last row address its rows by their plain
    // number, as pages of the legacy layout (and a few fields of the
    // current one) write them in Modbus RTU.
    bool plainParamRegister(int reg) const { return reg >= 1 && reg <= upRows(); }

    void loadFactory(const ControllerSetup &setup);
    void loadExamplePrograms();
    void clearPrograms();
    void setPatternName(int pattern, const QString &name);
    void put(int currentRow, int legacyRow, quint16 value);
    quint16 word(int row) const;  // parameter row, 0 when the block lacks it

    void step(double h);
    void startRun();
    void stopRun();
    void enterSegment(int segment, double tFrom, double hFrom);
    void finishSegment(bool allowWait);
    void stepProgram(double h);
    void stepFixed(double h);
    void stepPlant(double h);
    void evaluateSignals(double h);
    void refresh();
    int segmentCount(int pattern) const;
    double targetTemp() const;
    double targetHumi() const;
    bool tempBurnOut() const;
    bool humiBurnOut() const;
    QDateTime clock() const;
    void editClock(int row, quint16 value);
    std::optional<QDateTime> reservedStart() const;

    int m_number;
    Firmware m_fw;
    Rows m_rows;
    std::array<quint16, RrpRows> m_rrp{};
    std::array<quint16, RcvRows> m_rcv{};
    QVector<quint16> m_up;
    quint16 m_upPlus88 = 0, m_upPlus89 = 0;
    QVector<QByteArray> m_text;
    QVector<std::array<quint16, PatternWords>> m_patterns;
    QVector<QVector<quint16>> m_segments;  // per pattern, Segments * SegmentWords words
    std::map<int, quint16> m_pins;

    // Chamber
    double m_tPv, m_hPv, m_tSv, m_hSv;
    double m_tMv = 0, m_hMv = 0;
    double m_tNoise = 0, m_hNoise = 0;
    bool m_running = false;
    bool m_fixed = false;
    double m_runTime = 0;
    Program m_prog;
    double m_tuneT = 0, m_tuneH = 0;  // auto-tuning time left
    bool m_stepShown = false;         // step word reads 1 until the next step of the clock
    quint8 m_patternAlarms = 0, m_systemAlarms = 0;
    quint8 m_innerSignals = 0;
    std::array<double, 8> m_innerHeld{};
    quint8 m_timeSignals = 0;
    std::optional<QRandomGenerator> m_noise;
    double m_unstepped = 0;

    QDateTime m_clockBase;
    double m_clockSeconds = 0;
    std::array<std::optional<quint16>, 6> m_clockEdit;  // clock rows written but not yet a valid date
    bool m_reserveEditing = false;  // reserved-start rows written, their enable row not yet
};
