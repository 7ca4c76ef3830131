#pragma once
#include "Encodings.h"
#include <QByteArrayView>
#include <QString>
#include <array>
#include <optional>

class TextTable;

// The live status of the machines: what each row of sprdRCV (27 present
// values) and sprdRRP (17 run parameters) means, how the rows come off the
// wire, and the texts that the consoles, the status board and the run log show.
// Every text helper takes the row's raw word (the cell's whole number).

// Rows of sprdRCV.
namespace Rcv {
enum Row {
    TempSV = 1,             // (raw - 10000) / 100 degrees
    TempPV = 2,             // the same; 65535 = burn-out
    TempMV = 3,             // raw / 100 %
    HumiSV = 4,             // raw / 10 %
    HumiPV = 5,             // the same; 65535 = burn-out
    HumiMV = 6,             // raw / 100 %
    IsOnBits = 7,           // I/S, T.ON, H.ON
    TsDsDrBits = 8,         // T/S, D/S, D/R
    AlarmBits = 9,          // P.ALM, S.ALM
    RelayBits = 10,         // RELAY OUTPUT
    OcBits = 11,            // O/C OUTPUT
    DiBits = 12,            // D/I
    RunMode = 13,           // 0 program, else fixed value
    RunHours = 14,
    RunMinutes = 15,
    RunSeconds = 16,
    SegElapsedHours = 17,   // segment time left of the "/"
    SegElapsedMinutes = 18,
    SegTotalHours = 19,     // segment time right of the "/"
    SegTotalMinutes = 20,
    RunPattern = 21,
    RunSegment = 22,
    PatternRepeatDone = 23, // pattern repeat left of the "/"
    PatternRepeatTotal = 24,
    SegmentRepeatDone = 25, // segment repeat left of the "/"
    SegmentRepeatTotal = 26,
    RampFlags = 27,
};
constexpr int Count = 27;
} // namespace Rcv

// Rows of sprdRRP that the system uses (10, 11, 16, 17 are stored only).
// Row r is written with WRP index r, or register 40000 + r in Modbus RTU.
namespace Rrp {
enum Row {
    Run = 1,          // 0 stopped, 1 running
    Step = 2,
    Hold = 3,
    TempAT = 4,
    HumiAT = 5,
    TempPID = 6,
    HumiPID = 7,
    StartPattern = 8,
    StartSegment = 9,
    TempTargetSV = 12, // encoded as Rcv::TempSV
    HumiTargetSV = 13, // encoded as Rcv::HumiSV
    ParamChanged = 14, // above 0: reservation pending, UP block read with each poll
    TempDecimals = 15, // display resolution
};
constexpr int Count = 17;
} // namespace Rrp

// ---- Values and texts -----------------------------------------------------

constexpr qint64 NoValue = 65535; // burn-out or no data

double temperatureFromWord(qint64 raw);  // (raw - 10000) / 100
double humidityFromWord(qint64 raw);     // raw / 10
double outputFromWord(qint64 raw);       // raw / 100

// Temperature texts with TempDecimals decimals (values above 2 count as 2).
QString tempSvText(qint64 raw, int decimals);
// As tempSvText; 65535 gives "---.--".
QString tempPvText(qint64 raw, int decimals);
// "0.0"; humidity SV has no burn-out text.
QString humiSvText(qint64 raw);
// "0.0"; 65535 gives "---.-".
QString humiPvText(qint64 raw);
// Outputs, raw / 100, "0.00".
QString outputText(qint64 raw);

// The run log's intermediate texts, with a range test instead of the 65535
// test: a temperature PV outside -100..200 after rounding to the decimals gives
// "---.--", a humidity PV outside 0..100 gives "---.-".
QString tempPvCheckedText(qint64 raw, int decimals);
QString humiPvCheckedText(qint64 raw);

// Bit n of a row (bit 0 the lowest).
inline bool rowBit(qint64 raw, int bit) { return bit >= 0 && bit < 16 && ((raw >> bit) & 1); }

// A strip of lamps: `count` bits of a row starting at `firstBit`. Lamp n
// (from 1) is bit firstBit + n - 1.
struct BitField {
    int row;
    int firstBit;
    int count;
    const char *name;
};
namespace Lamps {
constexpr BitField IS{Rcv::IsOnBits, 0, 8, "I/S"};
constexpr BitField TON{Rcv::IsOnBits, 8, 4, "T.ON"};
constexpr BitField HON{Rcv::IsOnBits, 12, 4, "H.ON"};
constexpr BitField TS{Rcv::TsDsDrBits, 0, 8, "T/S"};
constexpr BitField DS{Rcv::TsDsDrBits, 8, 2, "D/S"};
constexpr BitField DR{Rcv::TsDsDrBits, 10, 2, "D/R"};
constexpr BitField PALM{Rcv::AlarmBits, 0, 4, "P.ALM"};
constexpr BitField SALM{Rcv::AlarmBits, 4, 4, "S.ALM"};
constexpr BitField RELAY{Rcv::RelayBits, 0, 12, "RELAY OUTPUT"};
constexpr BitField OC{Rcv::OcBits, 0, 8, "O/C OUTPUT"};
constexpr BitField DI{Rcv::DiBits, 0, 8, "D/I"};
} // namespace Lamps
// Lamp n (1..count) of a strip; false outside the strip.
bool lampOn(const BitField &field, qint64 raw, int n);

// Row 27: temperature flags in bits 7..4, humidity in bits 3..0; in each group
// rising, soak, falling, wait from the highest bit down.
struct RampFlags {
    bool tempUp, tempSoak, tempDown, tempWait;
    bool humiUp, humiSoak, humiDown, humiWait;
};
RampFlags rampFlags(qint64 raw);

// Row 13: "PROGRAM" for 0, else "FIXRUN".
QString runModeText(qint64 raw);

// "0000:00:00" from rows 14, 15, 16.
QString runTimeText(qint64 hours, qint64 minutes, qint64 seconds);
// "0000:00/0000:00" from rows 17 to 20.
QString segmentTimeText(qint64 elapsedHours, qint64 elapsedMinutes, qint64 totalHours, qint64 totalMinutes);
// "000/000" from rows 23, 24 or 25, 26.
QString repeatText(qint64 done, qint64 total);
// "000:000" from rows 21, 22.
QString patternSegmentText(qint64 pattern, qint64 segment);

// One machine's column of sprdRCV (column = slot + 1).
class RcvColumn {
public:
    RcvColumn(const TextTable &sprdRCV, int column) : m_table(sprdRCV), m_column(column) {}
    bool isRead(int row) const;   // false while the cell is empty
    qint64 word(int row) const;   // the cell's whole number, 0 when empty
    QString runTimeText() const;
    QString segmentTimeText() const;
    QString patternRepeatText() const;
    QString segmentRepeatText() const;
    QString patternSegmentText() const;

private:
    const TextTable &m_table;
    int m_column;
};

// ---- Wire layouts ---------------------------------------------------------

// Where a row of sprdRCV stands in the 45 data bytes of a PC Link RCV reply
// (the data begin at frame offset 11): rows 13, 15, 16, 18, 20, 22, 25, 26, 27
// are single bytes, the others words high byte first.
struct RcvField {
    int offset;
    int size;
};
RcvField rcvPcLinkField(int row);
constexpr int RcvPcLinkBytes = 45;

using RcvWords = std::array<quint16, Rcv::Count>; // index row - 1
using RrpWords = std::array<quint16, Rrp::Count>;

// The 27 row values of a PC Link RCV reply from its 45 data bytes; empty when
// fewer bytes are given (extra bytes are ignored).
std::optional<RcvWords> decodeRcvPcLink(QByteArrayView data);
// The 27 row values of a Modbus RTU reply from its 54 data bytes (27 words).
std::optional<RcvWords> decodeRcvModbus(QByteArrayView data);
// The 17 rows of sprdRRP from 34 data bytes, in both protocols.
std::optional<RrpWords> decodeRrp(QByteArrayView data);
