// The chamber behind a controller: process values with a first-order lag,
// outputs, program and fixed-value runs, signals, alarms and relays.
#include "Controller.h"
#include "Units.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

using namespace units;

namespace {

constexpr double StepSeconds = 0.25;

bool alarmState(bool was, int type, double pv, double sv, double limit, double hysteresis, bool running)
{
    double excess;
    switch (type) {
    case AlarmDevHigh:
        if (!running)
            return false;
        excess = (pv - sv) - limit;
        break;
    case AlarmDevLow:
        if (!running)
            return false;
        excess = (sv - pv) - limit;
        break;
    case AlarmAbsHigh:
        excess = pv - limit;
        break;
    case AlarmAbsLow:
        excess = limit - pv;
        break;
    default:
        return false;
    }
    return was ? excess > -hysteresis : excess > 0;
}

double lag(double value, double target, double h, double tau)
{
    return value + (target - value) * (1.0 - std::exp(-h / tau));
}

} // namespace

double Controller::targetTemp() const { return decodeTemp(m_rrp[11]); }
double Controller::targetHumi() const { return decodeHumi(m_rrp[12]); }

bool Controller::tempBurnOut() const
{
    const auto pin = m_pins.find(2);
    return pin != m_pins.end() && pin->second == BurnOut;
}

bool Controller::humiBurnOut() const
{
    const auto pin = m_pins.find(5);
    return pin != m_pins.end() && pin->second == BurnOut;
}

int Controller::segmentCount(int pattern) const
{
    if (pattern < 1 || pattern > patternCount())
        return 0;
    return std::min<int>(m_patterns[pattern - 1][0], Segments);
}

void Controller::advance(double seconds)
{
    if (seconds <= 0)
        return;
    m_unstepped += seconds;
    while (m_unstepped >= StepSeconds - 1e-9) {
        step(StepSeconds);
        m_unstepped -= StepSeconds;
    }
    refresh();
}

void Controller::step(double h)
{
    m_clockSeconds += h;
    if (m_stepShown) {
        m_stepShown = false;
        m_rrp[1] = 0;
    }
    // The reserved start: at its time the controller starts by itself, link or
    // no link. A time that passes while a run goes on is dropped, so that the
    // end of that run does not start another one at once.
    if (word(23) != 0 && !m_reserveEditing) {
        const auto at = reservedStart();
        if (at && clock() >= *at) {
            m_up[22] = 0;
            if (!m_running)
                startRun();
        }
    }
    if (m_running) {
        m_runTime += h;
        for (auto [left, row] : {std::pair{&m_tuneT, 3}, std::pair{&m_tuneH, 4}}) {
            if (*left > 0) {
                *left -= h;
                if (*left <= 0) {
                    *left = 0;
                    m_rrp[row] = 0;
                }
            }
        }
        if (m_fixed)
            stepFixed(h);
        else
            stepProgram(h);
    } else {
        m_tSv = targetTemp();
        m_hSv = targetHumi();
    }
    stepPlant(h);
    evaluateSignals(h);
}

void Controller::startRun()
{
    if (m_running)
        return;
    m_fixed = word(1) != 0;
    m_prog = Program{};
    if (m_fixed) {
        m_prog.length = (word(2) * 60.0 + word(3)) * 60.0;
        m_tSv = word(4) > 0 && !tempBurnOut() ? m_tPv : targetTemp();
        m_hSv = word(5) > 0 && !humiBurnOut() ? m_hPv : targetHumi();
    } else {
        const int pattern = m_rrp[7];
        const int segment = std::max<int>(1, m_rrp[8]);
        if (segment > segmentCount(pattern)) {
            m_rrp[0] = 0;  // nothing to run: the start is refused
            return;
        }
        const auto &pd = m_patterns[pattern - 1];
        const bool fromPv = pd[6] == 1;
        const double tFrom = fromPv && !tempBurnOut() ? m_tPv : decodeOffset(pd[7], 10, 1000);
        const double hFrom = fromPv && !humiBurnOut() ? m_hPv : decodeHumi(pd[8]);
        m_prog.pattern = pattern;
        enterSegment(segment, tFrom, hFrom);
    }
    m_running = true;
    m_runTime = 0;
    m_rrp[0] = 1;
}

void Controller::stopRun()
{
    m_running = false;
    m_prog = Program{};
    m_runTime = 0;
    m_tuneT = m_tuneH = 0;
    m_stepShown = false;
    for (int row = 0; row < 5; ++row)
        m_rrp[row] = 0;  // run, step, hold, both tunings
    m_tSv = targetTemp();
    m_hSv = targetHumi();
}

void Controller::enterSegment(int segment, double tFrom, double hFrom)
{
    const quint16 *w = m_segments[m_prog.pattern - 1].constData() + (segment - 1) * SegmentWords;
    m_prog.segment = segment;
    m_prog.elapsed = 0;
    m_prog.waiting = false;
    m_prog.waited = 0;
    m_prog.length = (high(w[3]) * 60.0 + low(w[3])) * 60.0;
    m_prog.tFrom = tFrom;
    m_prog.hFrom = hFrom;
    m_prog.tTo = decodeTemp(w[0]);
    m_prog.hTo = decodeHumi(w[1]);
    m_tSv = tFrom;
    m_hSv = hFrom;
}

void Controller::finishSegment(bool allowWait)
{
    const int p = m_prog.pattern;
    const int s = m_prog.segment;
    const auto &pd = m_patterns[p - 1];
    const quint16 *seg = m_segments[p - 1].constData() + (s - 1) * SegmentWords;
    if (allowWait && high(seg[2]) == 1 && !m_prog.waiting) {
        m_prog.waiting = true;
        m_prog.waited = 0;
        m_prog.elapsed = m_prog.length;
        return;
    }

    // Partial repeats: a rule ending here jumps back until its count is used up;
    // rules inside the repeated range start over on each pass.
    int next = s + 1;
    for (int i = 0; i < 20; ++i) {
        const int start = pd[9 + 3 * i], end = pd[10 + 3 * i], count = pd[11 + 3 * i];
        if (start < 1 || end < start || count < 1 || end != s)
            continue;
        if (m_prog.repeatsDone[i] < count) {
            ++m_prog.repeatsDone[i];
            for (int j = 0; j < 20; ++j)
                if (j != i && pd[9 + 3 * j] >= start && pd[10 + 3 * j] <= end)
                    m_prog.repeatsDone[j] = 0;
            next = start;
            break;
        }
        m_prog.repeatsDone[i] = 0;
    }

    const double tFrom = m_tSv, hFrom = m_hSv;
    if (next > segmentCount(p)) {
        ++m_prog.runsDone;
        if (m_prog.runsDone < std::max<int>(1, pd[4])) {
            m_prog.repeatsDone.fill(0);
        } else if (const int link = pd[5]; segmentCount(link) > 0) {
            m_prog = Program{};
            m_prog.pattern = link;
        } else {
            stopRun();
            return;
        }
        next = 1;
    }
    enterSegment(next, tFrom, hFrom);
}

void Controller::stepProgram(double h)
{
    if (m_rrp[2])
        return;  // hold
    if (m_prog.waiting) {
        m_prog.waited += h;
        const auto &pd = m_patterns[m_prog.pattern - 1];
        const double bandT = pd[1] / 10.0, bandH = pd[2] / 10.0;
        const double limit = (high(pd[3]) * 60.0 + low(pd[3])) * 60.0;
        const bool tOk = bandT <= 0 || (!tempBurnOut() && std::abs(m_tPv - m_prog.tTo) <= bandT);
        const bool hOk = bandH <= 0 || (!humiBurnOut() && std::abs(m_hPv - m_prog.hTo) <= bandH);
        if ((tOk && hOk) || (limit > 0 && m_prog.waited >= limit))
            finishSegment(false);
    } else {
        m_prog.elapsed += h;
        if (m_prog.elapsed >= m_prog.length)
            finishSegment(true);
    }
    if (!m_running)
        return;
    const double f = m_prog.length > 0 ? std::min(m_prog.elapsed / m_prog.length, 1.0) : 1.0;
    m_tSv = m_prog.tFrom + (m_prog.tTo - m_prog.tFrom) * f;
    m_hSv = m_prog.hFrom + (m_prog.hTo - m_prog.hFrom) * f;
}

void Controller::stepFixed(double h)
{
    if (m_rrp[2])
        return;  // hold: SV and run time stand still
    const auto ramp = [h](double sv, double target, quint16 perMinuteTenths) {
        if (perMinuteTenths == 0)
            return target;
        const double d = perMinuteTenths / 10.0 / 60.0 * h;
        return sv < target ? std::min(sv + d, target) : std::max(sv - d, target);
    };
    m_tSv = ramp(m_tSv, targetTemp(), word(4));
    m_hSv = ramp(m_hSv, targetHumi(), word(5));
    m_prog.elapsed += h;
    if (m_prog.length > 0 && m_prog.elapsed >= m_prog.length)
        stopRun();
}

void Controller::stepPlant(double h)
{
    if (!m_pins.count(2))
        m_tPv = lag(m_tPv, m_running ? m_tSv : AmbientTemp, h, m_running ? 40.0 : 120.0);
    if (!m_pins.count(5))
        m_hPv = std::clamp(lag(m_hPv, m_running ? m_hSv : AmbientHumi, h, m_running ? 25.0 : 90.0), 0.0, 100.0);

    double tWant = 0, hWant = 0;
    if (m_running && !tempBurnOut()) {
        if (m_tuneT > 0)  // auto-tuning drives the output on and off
            tWant = std::fmod(TuningSeconds - m_tuneT, 40.0) < 20.0 ? 100.0 : 0.0;
        else
            tWant = std::clamp(35.0 + 8.0 * (m_tSv - m_tPv), 0.0, 100.0);
    }
    if (m_running && !humiBurnOut()) {
        if (m_tuneH > 0)
            hWant = std::fmod(TuningSeconds - m_tuneH, 30.0) < 15.0 ? 100.0 : 0.0;
        else
            hWant = std::clamp(30.0 + 5.0 * (m_hSv - m_hPv), 0.0, 100.0);
    }
    m_tMv = lag(m_tMv, tWant, h, 4.0);
    m_hMv = lag(m_hMv, hWant, h, 4.0);

    if (m_noise) {
        m_tNoise = (m_noise->generateDouble() - 0.5) * 0.1;
        m_hNoise = (m_noise->generateDouble() - 0.5) * 0.4;
    }
}

void Controller::evaluateSignals(double h)
{
    const double tPv = m_tPv + m_tNoise, hPv = m_hPv + m_hNoise;
    const bool tenths = m_fw.tenthValues();
    const bool program = m_running && !m_fixed;

    // Inner signals: a value inside (or outside) a band, held for the signal's delay.
    m_innerSignals = 0;
    for (int n = 0; n < 8; ++n) {
        const int base = m_rows.innerBase + 7 * n;
        const int source = word(base), type = word(base + 1);
        const auto decode = [&](quint16 w) { return tenths ? decodeOffset(w, 10, 1000) : decodeOffset(w, 100, 10000); };
        const double hi = decode(word(base + 2)), lo = decode(word(base + 3));
        const bool outside = word(base + 4) == 1;
        const double delay = word(base + 5) * 60.0 + word(base + 6);
        std::optional<double> value;
        const bool temp = source == SourceTemp;
        if ((temp && !tempBurnOut()) || (source == SourceHumi && !humiBurnOut())) {
            switch (type) {
            case SignalTargetSv: value = temp ? targetTemp() : targetHumi(); break;
            case SignalPresentSv: value = temp ? m_tSv : m_hSv; break;
            case SignalPv: value = temp ? tPv : hPv; break;
            case SignalDeviation: value = temp ? tPv - m_tSv : hPv - m_hSv; break;
            default: break;
            }
        }
        const bool condition = value && ((*value >= lo && *value <= hi) != outside);
        m_innerHeld[n] = condition ? m_innerHeld[n] + h : 0;
        if (condition && m_innerHeld[n] >= delay)
            m_innerSignals |= 1 << n;
    }

    // System alarms.
    const bool alarmTenths = m_fw.currentLayout() && tenths;
    const bool alarmsOn = word(m_rows.alarmEnable) != 0;
    for (int i = 0; i < 4; ++i) {
        const int base = m_rows.alarmBase + 4 * i;
        const bool humi = word(base) == 1;
        const double limit = alarmTenths ? decodeOffset(word(base + 2), 10, 3000) : decodeOffset(word(base + 2), 100, 30000);
        const bool sensorOk = humi ? !humiBurnOut() : !tempBurnOut();
        const bool was = m_systemAlarms & (1 << i);
        const bool on = alarmsOn && sensorOk
            && alarmState(was, word(base + 1), humi ? hPv : tPv, humi ? m_hSv : m_tSv, limit, word(base + 3) / 10.0, m_running);
        m_systemAlarms = static_cast<quint8>((m_systemAlarms & ~(1 << i)) | (on ? 1 << i : 0));
    }

    // Pattern alarms and time signals of the running segment.
    m_timeSignals = 0;
    if (!program) {
        m_patternAlarms = 0;
        return;
    }
    const auto &pd = m_patterns[m_prog.pattern - 1];
    const quint16 *seg = m_segments[m_prog.pattern - 1].constData() + (m_prog.segment - 1) * SegmentWords;
    for (int i = 0; i < 4; ++i) {
        const quint16 kind = pd[69 + 3 * i];
        const bool humi = high(kind) == 1;
        const double limit = tenths ? decodeOffset(pd[70 + 3 * i], 10, 3000) : decodeOffset(pd[70 + 3 * i], 100, 30000);
        const bool active = (low(seg[2]) & (1 << i)) && (humi ? !humiBurnOut() : !tempBurnOut());
        const bool was = m_patternAlarms & (1 << i);
        const bool on = active
            && alarmState(was, low(kind), humi ? hPv : tPv, humi ? m_hSv : m_tSv, limit, pd[71 + 3 * i] / 10.0, true);
        m_patternAlarms = static_cast<quint8>((m_patternAlarms & ~(1 << i)) | (on ? 1 << i : 0));
    }
    const double t = m_prog.elapsed;
    const double unit = m_fw.signalTimesInMinutes() ? 1.0 : 60.0;  // seconds of the low byte
    for (int k = 0; k < 8; ++k) {
        const quint16 mode = seg[5 + 3 * k];
        const quint16 t1 = seg[6 + 3 * k], t2 = seg[7 + 3 * k];
        const double first = (high(t1) * 60.0 + low(t1)) * unit;
        const double second = (high(t2) * 60.0 + low(t2)) * unit;
        bool on = false;
        if (mode == 1) {
            on = true;
        } else if (mode == 2) {
            if (m_fw.signalTimesInMinutes())  // on at the ON time, off at the OFF time
                on = t >= first && (second <= first || t < second);
            else                              // on after the delay, for the on time (0: to the end)
                on = t >= first && (second == 0 || t < first + second);
        }
        if (on)
            m_timeSignals |= 1 << k;
    }
}

void Controller::refresh()
{
    const bool tBurn = tempBurnOut(), hBurn = humiBurnOut();
    const bool program = m_running && !m_fixed;
    const bool hold = m_running && m_rrp[2];

    // Clock rows and the reserved start.
    const QDateTime now = clock();
    const int parts[6] = {now.date().year(), now.date().month(), now.date().day(),
                          now.time().hour(), now.time().minute(), now.time().second()};
    for (int i = 0; i < 6; ++i)
        m_up[11 + i] = m_clockEdit[i] ? *m_clockEdit[i] : static_cast<quint16>(parts[i]);
    const auto reserved = reservedStart();
    m_rrp[13] = !m_running && word(23) != 0 && !m_reserveEditing && reserved && *reserved > now ? 1 : 0;

    m_rcv[0] = encodeTemp(m_tSv);
    m_rcv[1] = tBurn ? BurnOut : encodeTemp(m_tPv + m_tNoise);
    m_rcv[2] = encodePercent(m_tMv);
    m_rcv[3] = encodeHumi(m_hSv);
    m_rcv[4] = hBurn ? BurnOut : encodeHumi(m_hPv + m_hNoise);
    m_rcv[5] = encodePercent(m_hMv);

    // T.ON 1 heats, T.ON 2 cools below ambient, H.ON 1 humidifies.
    const quint8 tOn = (m_running && m_tMv > 0.5 ? 1 : 0) | (m_running && m_tSv < AmbientTemp ? 2 : 0);
    const quint8 hOn = m_running && m_hMv > 0.5 ? 1 : 0;
    m_rcv[6] = static_cast<quint16>(m_innerSignals | (tOn << 8) | (hOn << 12));
    m_rcv[7] = m_timeSignals;
    m_rcv[8] = static_cast<quint16>(m_patternAlarms | (m_systemAlarms << 4));

    // Relays and open collectors follow the items they are wired to.
    const auto active = [&](int row) -> bool {
        if (row <= 128) return m_innerSignals & (1 << (row - 121));
        if (row <= 136) return m_timeSignals & (1 << (row - 129));
        if (row <= 140) return m_systemAlarms & (1 << (row - 137));
        if (row <= 144) return m_patternAlarms & (1 << (row - 141));
        if (row <= 148) return tOn & (1 << (row - 145));
        switch (row) {
        case 149: return hOn & 1;
        case 177: return m_running && !tBurn;
        case 178: return m_running && !hBurn && m_hSv > 0;
        case 179: return tBurn || hBurn;
        case 180: return m_running;
        case 181: return program && m_prog.waiting;
        case 182: return hold;
        default: return false;
        }
    };
    quint16 relays = 0, collectors = 0;
    for (int row = 121; row <= 182; ++row) {
        if ((row > 149 && row < 177) || !active(row))
            continue;
        const quint16 wiring = m_fw.currentLayout() ? word(row) : factoryWiring(row);
        if (low(wiring) >= 1 && low(wiring) <= 12)
            relays |= 1 << (low(wiring) - 1);
        if (high(wiring) >= 1 && high(wiring) <= 8)
            collectors |= 1 << (high(wiring) - 1);
    }
    m_rcv[9] = relays;
    m_rcv[10] = collectors;
    m_rcv[11] = 0;  // no digital input is active
    m_rcv[12] = word(1);

    const auto whole = [](double seconds) { return static_cast<int>(std::floor(seconds + 1e-6)); };
    const int run = m_running ? whole(m_runTime) : 0;
    m_rcv[13] = static_cast<quint16>(run / 3600);
    m_rcv[14] = static_cast<quint16>(run / 60 % 60);
    m_rcv[15] = static_cast<quint16>(run % 60);
    const int elapsed = m_running ? whole(m_prog.elapsed) : 0;
    const int length = m_running ? whole(m_prog.length) : 0;
    m_rcv[16] = static_cast<quint16>(elapsed / 3600);
    m_rcv[17] = static_cast<quint16>(elapsed / 60 % 60);
    m_rcv[18] = static_cast<quint16>(length / 3600);
    m_rcv[19] = static_cast<quint16>(length / 60 % 60);
    m_rcv[20] = program ? static_cast<quint16>(m_prog.pattern) : 0;
    m_rcv[21] = program ? static_cast<quint16>(m_prog.segment) : 0;

    m_rcv[22] = m_rcv[23] = m_rcv[24] = m_rcv[25] = 0;
    if (program) {
        const auto &pd = m_patterns[m_prog.pattern - 1];
        m_rcv[22] = static_cast<quint16>(m_prog.runsDone);
        m_rcv[23] = std::max<quint16>(1, pd[4]);
        // The innermost repeat rule around the running segment.
        int best = -1;
        for (int i = 0; i < 20; ++i) {
            const int start = pd[9 + 3 * i], end = pd[10 + 3 * i], count = pd[11 + 3 * i];
            if (start >= 1 && end >= start && count >= 1 && start <= m_prog.segment && m_prog.segment <= end
                && (best < 0 || end - start < pd[10 + 3 * best] - pd[9 + 3 * best]))
                best = i;
        }
        if (best >= 0) {
            m_rcv[24] = static_cast<quint16>(m_prog.repeatsDone[best]);
            m_rcv[25] = pd[11 + 3 * best];
        }
    }

    // Ramp, soak and wait flags: temperature in bits 7 to 4, humidity in bits 3 to 0.
    quint16 flags = 0;
    if (m_running) {
        const auto direction = [](double from, double to, int shift) -> quint16 {
            if (to > from + 0.005)
                return 0x8 << shift;  // rising
            if (to < from - 0.005)
                return 0x2 << shift;  // falling
            return 0x4 << shift;      // soak
        };
        if (m_fixed) {
            flags = direction(m_tSv, targetTemp(), 4) | direction(m_hSv, targetHumi(), 0);
        } else if (m_prog.waiting) {
            const auto &pd = m_patterns[m_prog.pattern - 1];
            if (pd[1] > 0 && std::abs(m_tPv - m_prog.tTo) > pd[1] / 10.0)
                flags |= 0x10;
            if (pd[2] > 0 && std::abs(m_hPv - m_prog.hTo) > pd[2] / 10.0)
                flags |= 0x01;
        } else {
            flags = direction(m_prog.tFrom, m_prog.tTo, 4) | direction(m_prog.hFrom, m_prog.hTo, 0);
        }
    }
    m_rcv[26] = flags;

    for (const auto &[row, value] : m_pins)
        m_rcv[row - 1] = value;
}
