#include "Controller.h"
#include "Units.h"

#include <QStringEncoder>

#include <algorithm>
#include <cmath>

// ---------------------------------------------------------------- Firmware

std::optional<Firmware> Firmware::parse(const QString &text)
{
    bool ok = false;
    const double n = text.toDouble(&ok);
    if (!ok || n <= 0 || n >= 100)
        return std::nullopt;
    return Firmware{text, n};
}

int Firmware::upRows() const
{
    if (number >= 2.2)
        return 512;
    if (number >= 2.09)
        return 492;
    if (number >= 1.81)
        return 456;
    return 392;
}

int Firmware::patternCount() const
{
    return number >= 2.2 ? 100 : 300;
}

quint16 Firmware::identityWord() const
{
    const int major = static_cast<int>(std::floor(number));
    const int hundredths = static_cast<int>(std::lround((number - major) * 100.0));
    return static_cast<quint16>((major << 8) | (hundredths & 0xFF));
}

// ---------------------------------------------------------------- Controller

namespace {

// Register blocks of the Modbus map.
constexpr int RegIdentity = 30001;
constexpr int RegRcv = 30101;
constexpr int RegRrp = 40001;
constexpr int RegUp = 40101;
constexpr int RegUpPlus88 = 40700;
constexpr int RegUpPlus89 = 40701;
constexpr int RegTextA = 42001;  // rows 1 to 8, 15 registers a row
constexpr int RegTextB = 43001;  // rows 9 to 11, 15 registers a row
constexpr int RegTextC = 44001;  // rows 12 on, 12 registers a row
constexpr int RegPattern = 50001;

struct TextRegister {
    int row;
    int byte;  // offset of the register's first byte in the row
    bool lastOfShortRow;
};

std::optional<TextRegister> textRegister(int reg)
{
    if (reg >= RegTextA && reg < RegTextA + 8 * 15)
        return TextRegister{1 + (reg - RegTextA) / 15, 2 * ((reg - RegTextA) % 15), false};
    if (reg >= RegTextB && reg < RegTextB + 3 * 15)
        return TextRegister{9 + (reg - RegTextB) / 15, 2 * ((reg - RegTextB) % 15), false};
    const int shortRows = Controller::TextRows - 11;
    if (reg >= RegTextC && reg < RegTextC + shortRows * 12) {
        const int index = (reg - RegTextC) % 12;
        return TextRegister{12 + (reg - RegTextC) / 12, 2 * index, index == 11};
    }
    return std::nullopt;
}

QByteArray big5(const QString &text)
{
    QStringEncoder encoder("Big5");
    QByteArray bytes = encoder.isValid() ? QByteArray(encoder(text)) : text.toLatin1();
    bytes.resize(Controller::TextBytes, '\0');
    return bytes;
}

} // namespace

Controller::Controller(const ControllerSetup &setup)
    : m_number(setup.number)
    , m_fw(setup.firmware)
    , m_tPv(units::AmbientTemp)
    , m_hPv(units::AmbientHumi)
    , m_tSv(units::AmbientTemp)
    , m_hSv(units::AmbientHumi)
    , m_clockBase(setup.clock)
{
    if (m_fw.currentLayout())
        m_rows = {506, 508, 24, 46, 104, 105, 209, 502, 503, 504, 505};
    else
        m_rows = {80, 82, 24, 37, 87, 88, 183, 83, 84, 85, 86};
    if (setup.noiseSeed)
        m_noise.emplace(*setup.noiseSeed);

    m_up.fill(0, m_fw.upRows());
    m_text.fill(QByteArray(TextBytes, '\0'), TextRows);
    m_patterns.resize(m_fw.patternCount());
    m_segments.resize(m_fw.patternCount());
    loadFactory(setup);
    loadExamplePrograms();
    m_tSv = targetTemp();
    m_hSv = targetHumi();
    refresh();
}

void Controller::put(int currentRow, int legacyRow, quint16 value)
{
    const int row = m_fw.currentLayout() ? currentRow : legacyRow;
    if (row >= 1 && row <= upRows())
        m_up[row - 1] = value;
}

quint16 Controller::word(int row) const
{
    return row >= 1 && row <= upRows() ? m_up[row - 1] : 0;
}

void Controller::loadFactory(const ControllerSetup &setup)
{
    using namespace units;
    const bool tenths = m_fw.tenthValues();
    // Alarm values: tenths from 2.31 on the current layout, hundredths otherwise.
    const auto alarm = [&](double v) {
        return m_fw.currentLayout() && tenths ? encodeOffset(v, 10, 3000) : encodeOffset(v, 100, 30000);
    };
    const auto signal = [&](double v) {
        return tenths ? encodeOffset(v, 10, 1000) : encodeOffset(v, 100, 10000);
    };

    // Run parameters: stopped, program mode from pattern 1 segment 1, PID sets 1,
    // fixed-run targets 40.00 degrees and 70.0 %, one temperature decimal.
    m_rrp = {0, 0, 0, 0, 0, 1, 1, 1, 1, 0, 0, encodeTemp(40.0), encodeHumi(70.0), 0, 1, 0, 0};

    // Run settings (same rows in every layout).
    const quint16 runSettings[] = {0, 0, 0, 30, 50, 0, 0, 0, 1, 0, 10};
    for (int r = 1; r <= 11; ++r)
        m_up[r - 1] = runSettings[r - 1];

    // Sensors: RTD on both channels, -100 to 200 degrees, humidity 0 to 100 %.
    put(24, 24, 1);
    put(25, 25, 5);
    put(26, 26, encodeTemp(200.0));
    put(27, 27, encodeTemp(-100.0));
    put(28, 28, encodeTemp(200.0));
    put(29, 29, encodeTemp(-100.0));
    put(30, 30, 500);
    put(31, 31, 0);
    put(32, 34, 10000);
    put(33, 35, 10000);
    // Revision curves: base points (rows 40 on) and what the sensor measured
    // there (rows 34 on), a fraction of a degree off in the middle.
    const double tempBase[6] = {-100, -40, 20, 80, 140, 200};
    const double tempMeasured[6] = {-100, -40.5, 19.6, 80.4, 140.2, 200};
    const double humiMeasured[6] = {0, 21, 40.5, 59.5, 80, 100};
    for (int i = 0; i < 6; ++i) {
        put(34 + i, 457 + i, encodeOffset(tempMeasured[i], 10, 2000));
        put(40 + i, 463 + i, encodeOffset(tempBase[i], 10, 2000));
        put(56 + i, 469 + i, encodeOffset(humiMeasured[i], 10, 2000));
        put(62 + i, 475 + i, encodeOffset(20.0 * i, 10, 2000));
    }
    put(46, 37, 1);
    put(47, 38, 5);
    put(48, 39, encodeTemp(100.0));
    put(49, 40, encodeTemp(0.0));
    put(50, 41, 10000);
    put(51, 42, 0);
    put(52, 43, 500);
    put(53, 44, 0);
    put(54, 47, 10000);
    put(55, 48, 10000);
    put(68, 50, 0);
    put(69, 51, 10000);
    put(70, 52, encodeTemp(90.0));  // humidity is controlled from 5 to 90 degrees
    put(71, 53, encodeTemp(5.0));
    put(506, 80, 1);                // display resolution 0.1
    put(507, 81, 10);
    put(508, 82, 1);                // A/T key shown
    put(502, 83, encodeTemp(180.0));
    put(503, 84, encodeTemp(-70.0));
    put(504, 85, encodeOffset(98.0, 100, 10000));
    put(505, 86, encodeOffset(10.0, 100, 10000));

    // Control outputs.
    put(72, 54, 1);
    put(73, 55, 2);
    put(74, 56, 0);
    put(75, 57, encodeOffset(100.0, 100, 500));
    put(76, 58, encodeOffset(0.0, 100, 500));
    put(77, 68, 0);
    put(78, 69, encodeTemp(200.0));
    put(79, 70, encodeTemp(-100.0));
    put(80, 250, 0);
    put(81, 249, 10000);
    put(88, 61, 1);
    put(89, 62, 2);
    put(90, 63, 0);
    put(91, 64, encodeOffset(100.0, 100, 500));
    put(92, 65, encodeOffset(0.0, 100, 500));
    put(93, 71, 0);
    put(94, 72, 1000);
    put(95, 73, 0);
    put(96, 252, 0);
    put(97, 251, 10000);
    for (int i = 0; i < 3; ++i) {
        put(82 + i, 481 + i, encodeOffset(-100.0 + 150.0 * i, 10, 2000));
        put(85 + i, 484 + i, encodeOffset(-100.0 + 150.0 * i, 10, 2000));
        put(98 + i, 487 + i, encodeOffset(50.0 * i, 10, 2000));
        put(101 + i, 490 + i, encodeOffset(50.0 * i, 10, 2000));
    }

    // System alarms: 1 above 150 degrees, 2 below -75 degrees, 3 and 4 unused.
    put(104, 87, 1);
    put(105, 88, 0);
    put(106, 89, AlarmAbsHigh);
    put(107, 90, alarm(150.0));
    put(108, 91, 10);
    put(109, 92, 0);
    put(110, 93, AlarmAbsLow);
    put(111, 94, alarm(-75.0));
    put(112, 95, 10);

    // The controller's own serial settings, RS232 and RS485 alike.
    for (int set = 0; set < 2; ++set) {
        const int c = 195 + 7 * set, l = 169 + 7 * set;
        put(c, l, static_cast<quint16>(setup.protocolOption));
        put(c + 1, l + 1, static_cast<quint16>(setup.baudOption));
        put(c + 2, l + 2, 0);
        put(c + 3, l + 3, 1);
        put(c + 4, l + 4, 8);
        put(c + 5, l + 5, static_cast<quint16>(setup.responseMs));
        put(c + 6, l + 6, static_cast<quint16>(m_number));
    }

    // Inner signals: 1 while the temperature is within 2 degrees of its SV,
    // 2 while the humidity is within 5 % of its SV, 3 while the chamber is above 60 degrees.
    const auto inner = [&](int n, int source, int type, double high, double low) {
        const int c = 209 + 7 * (n - 1), l = 183 + 7 * (n - 1);
        put(c, l, static_cast<quint16>(source));
        put(c + 1, l + 1, static_cast<quint16>(type));
        put(c + 2, l + 2, signal(high));
        put(c + 3, l + 3, signal(low));
    };
    inner(1, SourceTemp, SignalDeviation, 2.0, -2.0);
    inner(2, SourceHumi, SignalDeviation, 5.0, -5.0);
    inner(3, SourceTemp, SignalPv, 200.0, 60.0);

    // ON/OFF bands of the output lines T1 to T4 and H1 (current layout only):
    // low, middle and high set values, then the up and down differences.
    const auto difference = [&](double v) { return static_cast<quint16>(std::lround(v * (tenths ? 10 : 100))); };
    for (int j = 0; j < 5; ++j) {
        const bool humidity = j == 4;
        const double middle = humidity ? 50.0 : 25.0 + 10.0 * j;
        const double band = humidity ? 10.0 : 5.0;
        const int c = 265 + 5 * j;
        put(c, 0, signal(middle - band));
        put(c + 1, 0, signal(middle));
        put(c + 2, 0, signal(middle + band));
        put(c + 3, 0, difference(humidity ? 2.0 : 1.0));
        put(c + 4, 0, difference(humidity ? 2.0 : 1.0));
    }

    // Password "0000", PID zones and sets.
    for (int i = 0; i < 4; ++i) {
        put(290 + i, 253 + i, '0');
        put(298 + i, 239 + i, encodeOffset(50.0 * i, 10, 1000));
        put(302 + i, 243 + i, static_cast<quint16>(200 * (i + 1)));
    }
    put(294, 74, 0);
    put(295, 75, 1);
    put(296, 60, 100);
    put(297, 67, 100);
    const quint16 pid[8] = {500, 1200, 300, 5, 800, 600, 100, 10};
    const quint16 limits[4] = {10000, 0, 10000, 0};
    for (int z = 0; z < 16; ++z) {
        for (int k = 0; k < 8; ++k)
            put(306 + 8 * z + k, 265 + 8 * z + k, pid[k]);
        for (int k = 0; k < 4; ++k)
            put(434 + 4 * z + k, 393 + 4 * z + k, limits[k]);
    }
    put(498, 76, 60);
    put(499, 77, 0);
    put(500, 262, 0);
    put(501, 79, 0);
    put(509, 257, 0);
    put(510, 259, 0);
    put(511, 260, 0);

    if (m_fw.currentLayout())
        for (const Wiring &w : FactoryWiring)
            m_up[w.row - 1] = w.word;

    // Clock and a reserved start (not enabled) for tomorrow at 08:00.
    const QDateTime reserve(m_clockBase.date().addDays(1), QTime(8, 0));
    m_up[17] = static_cast<quint16>(reserve.date().year());
    m_up[18] = static_cast<quint16>(reserve.date().month());
    m_up[19] = static_cast<quint16>(reserve.date().day());
    m_up[20] = 8;
    m_up[21] = 0;
    m_up[22] = 0;

    // Text rows: digital-input names, user lines, pattern names.
    const char *inputs[8] = {"門開關", "缺水", "過熱保護", "壓縮機過載", "風扇異常", "D/I 6", "D/I 7", "D/I 8"};
    for (int i = 0; i < 8; ++i)
        m_text[i] = big5(QString::fromUtf8(inputs[i]));
    m_text[8] = big5(QStringLiteral("QM730 SIMULATOR"));
    m_text[9] = big5(QStringLiteral("CHAMBER %1").arg(m_number));
    m_text[10] = big5(QStringLiteral("F/W %1").arg(m_fw.text));
    for (int p = 1; p <= patternCount(); ++p)
        m_text[p + 10] = big5(QString::fromUtf8("程式組%1").arg(p));
}

void Controller::setPatternName(int pattern, const QString &name)
{
    if (pattern >= 1 && pattern <= patternCount())
        m_text[pattern + 10] = big5(name);
}

// Every pattern empty: no segments, one run, the start at ambient values, the
// segment slots at ambient values too.
void Controller::clearPrograms()
{
    using namespace units;
    for (int p = 0; p < patternCount(); ++p) {
        auto &pd = m_patterns[p];
        pd.fill(0);
        pd[1] = 20;    // wait band 2.0 degrees
        pd[2] = 50;    // wait band 5.0 %
        pd[4] = 1;     // one run
        pd[7] = encodeOffset(AmbientTemp, 10, 1000);
        pd[8] = encodeHumi(AmbientHumi);
        QVector<quint16> &sd = m_segments[p];
        sd.fill(0, Segments * SegmentWords);
        for (int s = 0; s < Segments; ++s) {
            sd[s * SegmentWords] = encodeTemp(AmbientTemp);
            sd[s * SegmentWords + 1] = encodeHumi(AmbientHumi);
        }
    }
}

void Controller::fillPrograms(int patterns, int segments)
{
    using namespace units;
    clearPrograms();
    patterns = std::clamp(patterns, 0, patternCount());
    segments = std::clamp(segments, 0, static_cast<int>(Segments));
    for (int p = 1; p <= patternCount(); ++p)
        setPatternName(p, p <= patterns ? QStringLiteral("程式%1").arg(p) : QString());
    for (int p = 1; p <= patterns; ++p) {
        m_patterns[p - 1][0] = static_cast<quint16>(segments);
        for (int s = 0; s < segments; ++s) {
            quint16 *w = m_segments[p - 1].data() + s * SegmentWords;
            // A saw tooth between -20 and 80 degrees, humidity rising with each step.
            w[0] = encodeTemp(-20.0 + 10.0 * ((p + s) % 11));
            w[1] = encodeHumi(std::min(95.0, 30.0 + 5.0 * s));
            w[3] = static_cast<quint16>(((s % 3) << 8) | (10 * (s % 6)));
        }
    }
}

void Controller::loadExamplePrograms()
{
    using namespace units;
    const bool tenths = m_fw.tenthValues();
    const auto alarmSv = [&](double v) { return tenths ? encodeOffset(v, 10, 3000) : encodeOffset(v, 100, 30000); };

    clearPrograms();

    struct Seg {
        double temp, humi;
        int flags, hours, minutes;
        std::array<std::array<quint16, 3>, 4> timeSignals;  // mode, time 1, time 2 of T/S 1 to 4
    };
    const auto load = [&](int p, const QVector<Seg> &segs) {
        m_patterns[p - 1][0] = static_cast<quint16>(segs.size());
        for (int s = 0; s < segs.size(); ++s) {
            quint16 *w = m_segments[p - 1].data() + s * SegmentWords;
            w[0] = encodeTemp(segs[s].temp);
            w[1] = encodeHumi(segs[s].humi);
            w[2] = static_cast<quint16>(segs[s].flags);
            w[3] = static_cast<quint16>(segs[s].hours * 256 + segs[s].minutes);
            for (int k = 0; k < 4; ++k)
                for (int j = 0; j < 3; ++j)
                    w[5 + 3 * k + j] = segs[s].timeSignals[k][j];
        }
    };

    // Pattern 1: ramp up to 85 degrees / 85 %, soak with a timed T/S 2 and a wait,
    // ramp down and hold. Alarm 1 watches the temperature deviation above 5 degrees.
    load(1, {{85.0, 85.0, 0x0001, 0, 30, {{{1, 0, 0}}}},
             {85.0, 85.0, 0x0101, 1, 0, {{{0, 0, 0}, {2, 0x000A, 0x0014}}}},
             {25.0, 60.0, 0x0001, 0, 30, {}},
             {25.0, 60.0, 0x0000, 0, 10, {}}});
    m_patterns[0][3] = 0x000A;  // wait at most 10 minutes
    m_patterns[0][69] = static_cast<quint16>(AlarmDevHigh);
    m_patterns[0][70] = alarmSv(5.0);
    m_patterns[0][71] = 10;

    // Pattern 2: a cold cycle run twice, its segments 2 and 3 repeated twice more,
    // starting from the measured values.
    if (patternCount() >= 2) {
        load(2, {{40.0, 90.0, 0, 0, 10, {{{0, 0, 0}, {0, 0, 0}, {1, 0, 0}}}},
                 {-10.0, 0.0, 0, 0, 15, {}},
                 {-10.0, 0.0, 0, 0, 10, {{{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {1, 0, 0}}}},
                 {25.0, 60.0, 0, 0, 10, {}}});
        m_patterns[1][4] = 2;
        m_patterns[1][6] = 1;
        m_patterns[1][9] = 2;
        m_patterns[1][10] = 3;
        m_patterns[1][11] = 2;
    }

    // Pattern 3: two one-minute segments, handy for quick runs.
    if (patternCount() >= 3)
        load(3, {{30.0, 50.0, 0, 0, 1, {{{1, 0, 0}}}}, {35.0, 55.0, 0, 0, 1, {}}});

    // Pattern 4: cold storage, temperature only, alarm 2 watching a low humidity band.
    if (patternCount() >= 4) {
        load(4, {{-20.0, 0.0, 0, 1, 0, {}}, {-20.0, 0.0, 0, 12, 0, {}}, {25.0, 0.0, 0, 1, 0, {}}});
        m_patterns[3][72] = static_cast<quint16>((1 << 8) | AlarmAbsLow);
        m_patterns[3][73] = alarmSv(10.0);
        m_patterns[3][74] = 20;
    }

    // Pattern 5: humidity steps at 40 degrees, linked on to pattern 3.
    if (patternCount() >= 5) {
        load(5, {{40.0, 50.0, 0, 0, 20, {}}, {40.0, 50.0, 0, 1, 0, {}}, {40.0, 70.0, 0, 0, 20, {}},
                 {40.0, 70.0, 0, 1, 0, {}}, {40.0, 90.0, 0, 0, 20, {}}, {40.0, 90.0, 0, 1, 0, {}}});
        m_patterns[4][5] = 3;
        m_patterns[4][12] = 1;
        m_patterns[4][13] = 2;
        m_patterns[4][14] = 1;
    }

    const char *names[] = {"高溫高濕測試", "冷熱循環", "快速測試", "低溫儲存", "濕度步進"};
    for (int p = 1; p <= 5 && p <= patternCount(); ++p)
        setPatternName(p, QString::fromUtf8(names[p - 1]));
}

// ---------------------------------------------------------------- blocks

std::optional<quint16> Controller::rrp(int row) const
{
    if (row < 1 || row > RrpRows)
        return std::nullopt;
    return m_rrp[row - 1];
}

bool Controller::setRrp(int row, quint16 value)
{
    using namespace units;
    if (row < 1 || row > RrpRows)
        return false;
    switch (row) {
    case 1:
        if (value)
            startRun();
        else
            stopRun();
        break;
    case 2:
        // Step: ends the running segment at once; the word reads 1 until the clock moves on.
        if (value && m_running && !m_fixed) {
            finishSegment(false);
            m_rrp[1] = 1;
            m_stepShown = true;
        } else {
            m_rrp[1] = 0;
        }
        break;
    case 3:
        m_rrp[2] = value ? 1 : 0;
        break;
    case 4:
    case 5: {
        // Auto-tuning runs only with the chamber running, for a while, then clears itself.
        double &left = row == 4 ? m_tuneT : m_tuneH;
        left = value && m_running ? TuningSeconds : 0;
        m_rrp[row - 1] = left > 0 ? 1 : 0;
        break;
    }
    case 12: {
        const double high = decodeTemp(word(m_rows.tempSvHigh));
        const double low = decodeTemp(word(m_rows.tempSvLow));
        m_rrp[11] = encodeTemp(std::clamp(decodeTemp(value), std::min(low, high), std::max(low, high)));
        break;
    }
    case 13: {
        const double high = decodeOffset(word(m_rows.humiSvHigh), 100, 10000);
        const double low = decodeOffset(word(m_rows.humiSvLow), 100, 10000);
        m_rrp[12] = encodeHumi(std::clamp(decodeHumi(value), std::min(low, high), std::max(low, high)));
        break;
    }
    case 14:
        break;  // kept by the controller: reserved start pending
    case 15:
        m_rrp[14] = std::min<quint16>(value, 2);
        put(m_rows.resolution, m_rows.resolution, m_rrp[14]);
        break;
    default:
        m_rrp[row - 1] = value;
    }
    if (!m_running) {
        m_tSv = targetTemp();
        m_hSv = targetHumi();
    }
    refresh();
    return true;
}

std::optional<quint16> Controller::rcv(int row) const
{
    if (row < 1 || row > RcvRows)
        return std::nullopt;
    return m_rcv[row - 1];
}

std::optional<quint16> Controller::up(int row) const
{
    if (row < 1 || row > upRows())
        return std::nullopt;
    return m_up[row - 1];
}

bool Controller::setUp(int row, quint16 value)
{
    if (row < 1 || row > upRows())
        return false;
    if (row >= 12 && row <= 17) {
        editClock(row, value);
    } else if (row >= 18 && row <= 23) {
        // The reserved start takes effect with the write of its enable row,
        // which comes last: a time half written is not acted on.
        m_up[row - 1] = value;
        m_reserveEditing = row != 23;
    } else {
        m_up[row - 1] = value;
        if (row == m_rows.resolution)
            m_rrp[14] = std::min<quint16>(value, 2);
    }
    refresh();
    return true;
}

std::optional<quint16> Controller::upPlus(int row) const
{
    if (row == 88)
        return m_upPlus88;
    if (row == 89)
        return m_upPlus89;
    return std::nullopt;
}

bool Controller::setUpPlus(int row, quint16 value)
{
    if (row == 88)
        m_upPlus88 = value;
    else if (row == 89)
        m_upPlus89 = value;
    else
        return false;
    return true;
}

std::optional<QByteArray> Controller::text(int row) const
{
    if (row < 1 || row > TextRows)
        return std::nullopt;
    return m_text[row - 1];
}

bool Controller::setText(int row, int offset, const QByteArray &bytes)
{
    if (row < 1 || row > TextRows || offset < 0 || offset >= TextBytes)
        return false;
    QByteArray &t = m_text[row - 1];
    const int n = std::min<int>(static_cast<int>(bytes.size()), TextBytes - offset);
    t.replace(offset, n, bytes.left(n));
    return true;
}

std::optional<quint16> Controller::patternWord(int pattern, int w) const
{
    if (pattern < 1 || pattern > patternCount() || w < 1 || w > PatternWords)
        return std::nullopt;
    return m_patterns[pattern - 1][w - 1];
}

bool Controller::setPatternWord(int pattern, int w, quint16 value)
{
    if (pattern < 1 || pattern > patternCount() || w < 1 || w > PatternWords)
        return false;
    m_patterns[pattern - 1][w - 1] = value;
    return true;
}

std::optional<quint16> Controller::segmentWord(int pattern, int segment, int w) const
{
    if (pattern < 1 || pattern > patternCount() || segment < 1 || segment > Segments || w < 1 || w > SegmentWords)
        return std::nullopt;
    return m_segments[pattern - 1][(segment - 1) * SegmentWords + w - 1];
}

bool Controller::setSegmentWord(int pattern, int segment, int w, quint16 value)
{
    if (pattern < 1 || pattern > patternCount() || segment < 1 || segment > Segments || w < 1 || w > SegmentWords)
        return false;
    m_segments[pattern - 1][(segment - 1) * SegmentWords + w - 1] = value;
    return true;
}

void Controller::pinRcv(int row, std::optional<quint16> value)
{
    if (row < 1 || row > RcvRows)
        return;
    if (value)
        m_pins[row] = *value;
    else
        m_pins.erase(row);
    if (row == 2 && value && *value != units::BurnOut)
        m_tPv = units::decodeTemp(*value);
    if (row == 5 && value && *value != units::BurnOut)
        m_hPv = units::decodeHumi(*value);
    refresh();
}

// ---------------------------------------------------------------- Modbus map

std::optional<quint16> Controller::readRegister(int reg) const
{
    if (plainParamRegister(reg))
        return word(reg);
    if (reg == RegIdentity)
        return IdentityModel;
    if (reg == RegIdentity + 1)
        return m_fw.identityWord();
    if (reg >= RegRcv && reg < RegRcv + RcvRows)
        return rcv(reg - RegRcv + 1);
    if (reg >= RegRrp && reg < RegRrp + RrpRows)
        return rrp(reg - RegRrp + 1);
    if (reg >= RegUp && reg < RegUpPlus88)
        return word(reg - RegUp + 1);  // rows past the block read as 0
    if (reg == RegUpPlus88 || reg == RegUpPlus89)
        return upPlus(reg - RegUpPlus88 + 88);
    if (const auto t = textRegister(reg)) {
        const QByteArray &row = m_text[t->row - 1];
        return static_cast<quint16>((static_cast<quint8>(row[t->byte]) << 8) | static_cast<quint8>(row[t->byte + 1]));
    }
    if (reg >= RegPattern && reg < RegPattern + PatternWords * patternCount()) {
        const int i = reg - RegPattern;
        return m_patterns[i / PatternWords][i % PatternWords];
    }
    return std::nullopt;
}

bool Controller::canWriteRegister(int reg) const
{
    return plainParamRegister(reg) || (reg >= RegRrp && reg < RegRrp + RrpRows) || (reg >= RegUp && reg <= RegUpPlus89)
        || textRegister(reg).has_value()
        || (reg >= RegPattern && reg < RegPattern + PatternWords * patternCount());
}

void Controller::writeRegister(int reg, quint16 value)
{
    if (plainParamRegister(reg)) {
        setUp(reg, value);
    } else if (reg >= RegRrp && reg < RegRrp + RrpRows) {
        setRrp(reg - RegRrp + 1, value);
    } else if (reg == RegUpPlus88 || reg == RegUpPlus89) {
        setUpPlus(reg - RegUpPlus88 + 88, value);
    } else if (reg >= RegUp && reg < RegUpPlus88) {
        setUp(reg - RegUp + 1, value);  // past the block: ignored
    } else if (const auto t = textRegister(reg)) {
        QByteArray bytes;
        bytes.append(static_cast<char>(value >> 8));
        bytes.append(static_cast<char>(value & 0xFF));
        if (t->lastOfShortRow)
            bytes.append(QByteArray(TextBytes - t->byte - 2, '\0'));  // a 24-byte name ends the row
        setText(t->row, t->byte, bytes);
    } else if (reg >= RegPattern && reg < RegPattern + PatternWords * patternCount()) {
        const int i = reg - RegPattern;
        m_patterns[i / PatternWords][i % PatternWords] = value;
    }
}

// ---------------------------------------------------------------- clock

QDateTime Controller::clock() const
{
    return m_clockBase.addMSecs(static_cast<qint64>(m_clockSeconds * 1000.0));
}

void Controller::editClock(int row, quint16 value)
{
    m_clockEdit[row - 12] = value;
    const QDateTime now = clock();
    const int current[6] = {now.date().year(), now.date().month(), now.date().day(),
                            now.time().hour(), now.time().minute(), now.time().second()};
    int parts[6];
    for (int i = 0; i < 6; ++i)
        parts[i] = m_clockEdit[i] ? *m_clockEdit[i] : current[i];
    const QDateTime set(QDate(parts[0], parts[1], parts[2]), QTime(parts[3], parts[4], parts[5]));
    if (set.isValid()) {
        m_clockBase = set;
        m_clockSeconds = 0;
        m_clockEdit.fill(std::nullopt);
    }
}

std::optional<QDateTime> Controller::reservedStart() const
{
    const QDateTime at(QDate(word(18), word(19), word(20)), QTime(word(21), word(22)));
    if (!at.isValid())
        return std::nullopt;
    return at;
}
