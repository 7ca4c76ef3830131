#pragma once
#include <QByteArray>
#include <QString>
#include <QAnyStringView>
#include <QStringView>
#include <cstdint>

// Word encodings of the controller and the number formats of the screens.
//
// Every controller value travels as an unsigned 16-bit word. An encoding says
// how a screen value becomes that word (value x scale + offset, rounded half to
// even) and how the word is shown again.
//
// Rounding is decided on decimal digits, not on the binary double: a double is
// first turned into its shortest round-trip decimal text (the text a user typed
// to get it), and that text is scaled and rounded exactly. So "25.5" gives
// 12550 in T100, 0.125 x 100 gives 12 and 1.015 x 100 gives 102 (the tie goes
// to the even neighbour), where plain double arithmetic would give 101.
//
// A word that falls outside 0..65535 is clamped to the nearer end, so a value
// below an encoding's range sends 0 and one above it sends 65535. The one
// exception is NEG10, which keeps a signed value in two's complement.

enum class Encoding {
    T100,  // value x 100 + 10000, by display resolution: temperatures and ranges
    H100,  // value x 100 + 10000, "0.0": humidity ranges of the sensor page
    V100,  // value x 100, by display resolution: voltage input ranges
    X10,   // value x 10, "0.0": ramps, hysteresis, humidity zones
    X100,  // value x 100, "0.00": AT gains, PID columns
    TZ,    // value x 10 + 1000, "0.0": temperature zones, inner signals from 2.31
    LIM,   // value x 100 + 500, "0.00": output limits -5.00 to 105.00 %
    OFS,   // value x 100 + 10000, "0.00": sensor and retransmission offsets
    REV,   // value x 10 + 2000, general number text: revision curve points
    AL100, // value x 100 + 30000, by display resolution: alarm value below 2.31
    AL10,  // value x 10 + 3000, "0.0": alarm value from 2.31
    INT,   // value, "0": counts and times
    OPT,   // option index, shown as the plain number
    NEG10, // value x -10 as a signed word (two's complement), "0.0": soak values of the D/O page
};

// Power of ten of the scale (0, 1 or 2) and the offset of an encoding.
int encodingPow10(Encoding e);
int encodingOffset(Encoding e);
// Short name, "T100" ... "NEG10".
QString encodingName(Encoding e);

// ---- Rounding and words ---------------------------------------------------

// value x 10^pow10 + offset, rounded half to even on the value's shortest
// decimal text. Saturates at the limits of qint64; NaN gives 0.
qint64 roundHalfEven(double value, int pow10 = 0, qint64 offset = 0);
// The same for a number typed as text, read the lenient way (blanks skipped,
// the leading decimal number taken, 0 when there is none); the digits of the
// text are used exactly.
qint64 roundHalfEvenText(QStringView text, int pow10 = 0, qint64 offset = 0);

// A whole number clamped into an unsigned word.
quint16 clampWord(qint64 n);
// A whole number clamped to -32768..32767 and held as its two's complement word.
quint16 signedWord(qint64 n);
// A word read back as a signed 16-bit number.
inline int signedFromWord(quint16 w) { return int(qint16(w)); }

// The word of a screen value (clamped as told above).
quint16 wordFromValue(Encoding e, double value);
// The word of a value typed as text, decided on its exact digits.
quint16 wordFromText(Encoding e, QStringView text);
// The value of a typed text scaled by the encoding (value x scale + offset),
// exactly and not rounded: what the image cell holds until the controller's
// own word is read back ("25.555" in T100 is "12555.5").
QString scaledValueText(Encoding e, QStringView text);
// The screen value of a word. The word is taken as the cell's whole number,
// so numbers outside 0..65535 decode by the same formula.
double valueFromWord(Encoding e, qint64 word);

// High byte first, as every word goes on the wire.
inline int highByte(qint64 word) { return int((word & 0xFFFF) / 256); }
inline int lowByte(qint64 word) { return int(word & 0xFF); }
inline quint16 packBytes(int high, int low) { return quint16(((high & 0xFF) << 8) | (low & 0xFF)); }
QByteArray wordBytes(quint16 word);

// ---- Formats --------------------------------------------------------------

// Decimals of temperature limited to 0..2 (values above 2 count as 2).
int clampDecimals(qint64 decimals);
// "0", "0.0" or "0.00" for 0, 1, 2 decimals (clamped as above).
QString resolutionPattern(int decimals);

// The screen pattern of an encoding; decimals is the display resolution, used
// by T100, V100 and AL100. REV and OPT give an empty pattern: general text.
QString screenPattern(Encoding e, int decimals);
// A word decoded and formatted for the screen, exactly (no binary error).
QString formatWord(Encoding e, qint64 word, int decimals);
// The same with a pattern of the screen's own ("0.0" for a humidity line).
QString formatWordWith(Encoding e, qint64 word, QAnyStringView pattern);

// Formats a number like the Format function of the original screens, for
// patterns made of '0' digits and at most one '.': "0", "0.0", "0.00", "00",
// "000", "0000", "00000000", "000.00", "00.0".
//  - The zeros before the point are the least number of integer digits; the
//    zeros after it the exact number of decimals.
//  - Rounding is half away from zero, decided on the value's shortest decimal
//    text (so 2.675 with "0.00" gives "2.68").
//  - A negative value puts "-" in front of the padded digits: -5.5 with
//    "000.00" is "-005.50". A value that rounds to zero shows no minus.
//  - A value that outgrows the padding gets longer: 100 with "00.0" is "100.0".
// An empty pattern (or one without '0') gives the general text: the shortest
// decimal form without exponent, e.g. "-0.5", "20", "12.25".
QString formatNumber(double value, QAnyStringView pattern);
// The same for the exact decimal n x 10^-pow10 (a word already offset).
QString formatScaled(qint64 n, int pow10, QAnyStringView pattern);
