#include "Encodings.h"
#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace {

// An exact decimal: |value| = digits x 10^exponent. Normalised: no leading or
// trailing zeros in digits; zero is empty digits, positive, exponent 0.
struct Decimal {
    bool negative = false;
    std::string digits;
    int exponent = 0;
};

// Exponents beyond this are far outside any word or screen value; capping them
// keeps a silly input ("1e999999") from building huge digit strings.
constexpr int MaxExponent = 400;

Decimal normalize(Decimal d)
{
    const auto first = d.digits.find_first_not_of('0');
    if (first == std::string::npos)
        return {};
    d.digits.erase(0, first);
    const auto last = d.digits.find_last_not_of('0');
    d.exponent += int(d.digits.size() - 1 - last);
    d.digits.erase(last + 1);
    if (d.exponent > MaxExponent)
        d.exponent = MaxExponent;
    if (int(d.digits.size()) + d.exponent < -MaxExponent) {
        // Far below any rounding position we use: keep it as a tiny nonzero value.
        d.digits = "1";
        d.exponent = -MaxExponent;
    }
    return d;
}

// The shortest decimal text that reads back as the same double.
Decimal decimalOf(double v)
{
    if (!std::isfinite(v) || v == 0)
        return {};
    char buf[64];
    const auto res = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::scientific);
    const std::string s(buf, res.ptr);
    Decimal d;
    size_t i = 0;
    if (s[i] == '-') {
        d.negative = true;
        ++i;
    }
    int fraction = 0;
    bool afterPoint = false;
    for (; i < s.size() && s[i] != 'e'; ++i) {
        if (s[i] == '.') {
            afterPoint = true;
            continue;
        }
        d.digits += s[i];
        if (afterPoint)
            ++fraction;
    }
    const int exp10 = i < s.size() ? std::stoi(s.substr(i + 1)) : 0;
    d.exponent = exp10 - fraction;
    return normalize(d);
}

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

bool isAsciiDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

// The leading decimal number of a text, read the same lenient way as the
// settings files: blanks anywhere are skipped, then sign, digits, point,
// digits, exponent. No number gives zero.
Decimal decimalOf(QStringView text)
{
    QString s;
    s.reserve(text.size());
    for (QChar c : text)
        if (!isBlank(c))
            s += c;
    Decimal d;
    qsizetype i = 0;
    const qsizetype n = s.size();
    if (i < n && (s[i] == u'+' || s[i] == u'-')) {
        d.negative = s[i] == u'-';
        ++i;
    }
    int fraction = 0;
    int mantissaDigits = 0;
    while (i < n && isAsciiDigit(s[i])) {
        d.digits += char(s[i].unicode());
        ++i;
        ++mantissaDigits;
    }
    if (i < n && s[i] == u'.') {
        ++i;
        while (i < n && isAsciiDigit(s[i])) {
            d.digits += char(s[i].unicode());
            ++i;
            ++fraction;
            ++mantissaDigits;
        }
    }
    if (mantissaDigits == 0)
        return {};
    long long exp10 = 0;
    if (i < n && (s[i] == u'e' || s[i] == u'E')) {
        qsizetype j = i + 1;
        bool negExp = false;
        if (j < n && (s[j] == u'+' || s[j] == u'-')) {
            negExp = s[j] == u'-';
            ++j;
        }
        const qsizetype start = j;
        while (j < n && isAsciiDigit(s[j])) {
            if (exp10 < 100000)
                exp10 = exp10 * 10 + (s[j].unicode() - '0');
            ++j;
        }
        if (j > start)
            exp10 = negExp ? -exp10 : exp10;
        else
            exp10 = 0;
    }
    d.exponent = int(exp10) - fraction;
    return normalize(d);
}

Decimal decimalOf(qint64 n, int pow10)
{
    Decimal d;
    d.negative = n < 0;
    const quint64 mag = d.negative ? quint64(0) - quint64(n) : quint64(n);
    d.digits = std::to_string(mag);
    d.exponent = -pow10;
    return normalize(d);
}

// Where the magnitude stands against the integer below it.
enum class Frac { Zero, Below, Half, Above };

struct Split {
    std::string whole; // integer digits of the magnitude (may be empty or have leading zeros)
    Frac frac = Frac::Zero;
};

// The magnitude times 10^shift, split into its whole digits and the class of its fraction.
Split split(const Decimal &d, int shift)
{
    Split sp;
    if (d.digits.empty())
        return sp;
    const int e = d.exponent + shift;
    if (e >= 0) {
        sp.whole = d.digits + std::string(size_t(e), '0');
        return sp;
    }
    const size_t fracLen = size_t(-e);
    if (fracLen > d.digits.size()) {
        sp.frac = Frac::Below; // first fraction digit is 0, and the rest is nonzero
        return sp;
    }
    sp.whole = d.digits.substr(0, d.digits.size() - fracLen);
    const std::string f = d.digits.substr(d.digits.size() - fracLen);
    // Normalised digits have no trailing zero, so the fraction is not zero.
    if (f[0] > '5')
        sp.frac = Frac::Above;
    else if (f[0] < '5')
        sp.frac = Frac::Below;
    else
        sp.frac = f.size() == 1 ? Frac::Half : Frac::Above;
    return sp;
}

void increment(std::string &digits)
{
    for (size_t i = digits.size(); i-- > 0;) {
        if (digits[i] != '9') {
            ++digits[i];
            return;
        }
        digits[i] = '0';
    }
    digits.insert(digits.begin(), '1');
}

qint64 saturatingAdd(qint64 a, qint64 b)
{
    qint64 r;
    if (__builtin_add_overflow(a, b, &r))
        return b > 0 ? std::numeric_limits<qint64>::max() : std::numeric_limits<qint64>::min();
    return r;
}

qint64 roundDecimal(const Decimal &d, int pow10, qint64 offset)
{
    const Split sp = split(d, pow10);
    const auto first = sp.whole.find_first_not_of('0');
    const std::string whole = first == std::string::npos ? std::string() : sp.whole.substr(first);
    if (whole.size() > 18)
        return d.negative ? std::numeric_limits<qint64>::min() : std::numeric_limits<qint64>::max();
    const qint64 mag = whole.empty() ? 0 : std::stoll(whole);
    // Floor and fraction class of the signed value, so the tie test sees the
    // parity of the true neighbour after the offset is added.
    qint64 floor = mag;
    Frac frac = sp.frac;
    if (d.negative) {
        if (frac == Frac::Zero) {
            floor = -mag;
        } else {
            floor = -mag - 1;
            frac = frac == Frac::Below ? Frac::Above : frac == Frac::Above ? Frac::Below : Frac::Half;
        }
    }
    floor = saturatingAdd(floor, offset);
    const bool up = frac == Frac::Above || (frac == Frac::Half && (floor & 1));
    return up ? saturatingAdd(floor, 1) : floor;
}

struct Pattern {
    bool general = true;
    int intDigits = 0;
    int decimals = 0;
};

Pattern parsePattern(const QString &p)
{
    Pattern r;
    bool afterPoint = false;
    for (QChar c : p) {
        if (c == u'.') {
            afterPoint = true;
        } else if (c == u'0') {
            r.general = false;
            (afterPoint ? r.decimals : r.intDigits)++;
        }
    }
    return r;
}

QString generalText(const Decimal &d)
{
    if (d.digits.empty())
        return QStringLiteral("0");
    std::string s;
    if (d.exponent >= 0) {
        s = d.digits + std::string(size_t(d.exponent), '0');
    } else {
        const size_t fracLen = size_t(-d.exponent);
        std::string digits = d.digits;
        if (digits.size() <= fracLen)
            digits.insert(0, fracLen - digits.size() + 1, '0');
        s = digits.substr(0, digits.size() - fracLen) + '.' + digits.substr(digits.size() - fracLen);
    }
    if (d.negative)
        s.insert(s.begin(), '-');
    return QString::fromLatin1(s.data(), qsizetype(s.size()));
}

QString formatDecimal(const Decimal &d, QAnyStringView pattern)
{
    const Pattern p = parsePattern(pattern.toString());
    if (p.general)
        return generalText(d);
    Split sp = split(d, p.decimals);
    if (sp.frac == Frac::Half || sp.frac == Frac::Above)
        increment(sp.whole);
    std::string mag = sp.whole;
    const auto first = mag.find_first_not_of('0');
    const bool zero = first == std::string::npos;
    mag = zero ? std::string() : mag.substr(first);
    const size_t width = size_t(p.intDigits + p.decimals);
    if (mag.size() < width)
        mag.insert(0, width - mag.size(), '0');
    std::string out;
    if (d.negative && !zero)
        out += '-';
    out += mag.substr(0, mag.size() - size_t(p.decimals));
    if (p.decimals > 0)
        out += '.' + mag.substr(mag.size() - size_t(p.decimals));
    return QString::fromLatin1(out.data(), qsizetype(out.size()));
}

} // namespace

int encodingPow10(Encoding e)
{
    switch (e) {
    case Encoding::T100:
    case Encoding::H100:
    case Encoding::V100:
    case Encoding::X100:
    case Encoding::LIM:
    case Encoding::OFS:
    case Encoding::AL100:
        return 2;
    case Encoding::X10:
    case Encoding::TZ:
    case Encoding::REV:
    case Encoding::AL10:
    case Encoding::NEG10:
        return 1;
    case Encoding::INT:
    case Encoding::OPT:
        return 0;
    }
    return 0;
}

int encodingOffset(Encoding e)
{
    switch (e) {
    case Encoding::T100:
    case Encoding::H100:
    case Encoding::OFS:
        return 10000;
    case Encoding::TZ:
        return 1000;
    case Encoding::LIM:
        return 500;
    case Encoding::REV:
        return 2000;
    case Encoding::AL100:
        return 30000;
    case Encoding::AL10:
        return 3000;
    default:
        return 0;
    }
}

QString encodingName(Encoding e)
{
    switch (e) {
    case Encoding::T100: return QStringLiteral("T100");
    case Encoding::H100: return QStringLiteral("H100");
    case Encoding::V100: return QStringLiteral("V100");
    case Encoding::X10: return QStringLiteral("X10");
    case Encoding::X100: return QStringLiteral("X100");
    case Encoding::TZ: return QStringLiteral("TZ");
    case Encoding::LIM: return QStringLiteral("LIM");
    case Encoding::OFS: return QStringLiteral("OFS");
    case Encoding::REV: return QStringLiteral("REV");
    case Encoding::AL100: return QStringLiteral("AL100");
    case Encoding::AL10: return QStringLiteral("AL10");
    case Encoding::INT: return QStringLiteral("INT");
    case Encoding::OPT: return QStringLiteral("OPT");
    case Encoding::NEG10: return QStringLiteral("NEG10");
    }
    return {};
}

qint64 roundHalfEven(double value, int pow10, qint64 offset)
{
    if (std::isnan(value))
        return 0;
    if (std::isinf(value))
        return value > 0 ? std::numeric_limits<qint64>::max() : std::numeric_limits<qint64>::min();
    return roundDecimal(decimalOf(value), pow10, offset);
}

qint64 roundHalfEvenText(QStringView text, int pow10, qint64 offset)
{
    return roundDecimal(decimalOf(text), pow10, offset);
}

quint16 clampWord(qint64 n)
{
    return quint16(n < 0 ? 0 : (n > 65535 ? 65535 : n));
}

quint16 signedWord(qint64 n)
{
    const qint64 c = n < -32768 ? -32768 : (n > 32767 ? 32767 : n);
    return quint16(qint16(c));
}

namespace {
quint16 wordFromDecimal(Encoding e, Decimal d)
{
    if (e == Encoding::NEG10) {
        if (!d.digits.empty())
            d.negative = !d.negative;
        return signedWord(roundDecimal(d, 1, 0));
    }
    return clampWord(roundDecimal(d, encodingPow10(e), encodingOffset(e)));
}
} // namespace

namespace {
// |a| - |b| for digit strings without leading zeros, |a| >= |b|.
std::string subtractDigits(const std::string &a, const std::string &b)
{
    std::string r(a.size(), '0');
    int borrow = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        int x = a[a.size() - 1 - i] - '0' - borrow;
        const int y = i < b.size() ? b[b.size() - 1 - i] - '0' : 0;
        borrow = x < y ? 1 : 0;
        r[r.size() - 1 - i] = char('0' + x + 10 * borrow - y);
    }
    return r;
}

std::string addDigits(const std::string &a, const std::string &b)
{
    std::string r;
    int carry = 0;
    for (size_t i = 0; i < std::max(a.size(), b.size()) || carry; ++i) {
        const int x = (i < a.size() ? a[a.size() - 1 - i] - '0' : 0) + (i < b.size() ? b[b.size() - 1 - i] - '0' : 0)
                      + carry;
        carry = x / 10;
        r.insert(r.begin(), char('0' + x % 10));
    }
    return r;
}

bool lessDigits(const std::string &a, const std::string &b)
{
    return a.size() != b.size() ? a.size() < b.size() : a < b;
}

// d + n, exactly.
Decimal addInteger(const Decimal &d, qint64 n)
{
    if (n == 0)
        return d;
    const Decimal o = decimalOf(n, 0);
    const int e = std::min({d.exponent, o.exponent, 0});
    auto scaled = [e](const Decimal &x) {
        std::string s = x.digits.empty() ? std::string() : x.digits + std::string(size_t(x.exponent - e), '0');
        const auto first = s.find_first_not_of('0');
        return first == std::string::npos ? std::string() : s.substr(first);
    };
    const std::string a = scaled(d), b = scaled(o);
    Decimal r;
    r.exponent = e;
    if (d.negative == o.negative) {
        r.digits = addDigits(a, b);
        r.negative = d.negative;
    } else if (lessDigits(a, b)) {
        r.digits = subtractDigits(b, a);
        r.negative = o.negative;
    } else {
        r.digits = subtractDigits(a, b);
        r.negative = d.negative;
    }
    return normalize(r);
}
} // namespace

QString scaledValueText(Encoding e, QStringView text)
{
    if (e == Encoding::NEG10)
        return QString::number(wordFromText(e, text));
    Decimal d = decimalOf(text);
    if (!d.digits.empty())
        d.exponent += encodingPow10(e);
    return generalText(addInteger(normalize(d), encodingOffset(e)));
}

quint16 wordFromValue(Encoding e, double value)
{
    if (std::isnan(value))
        value = 0;
    if (std::isinf(value))
        value = value > 0 ? 1e300 : -1e300;
    return wordFromDecimal(e, decimalOf(value));
}

quint16 wordFromText(Encoding e, QStringView text)
{
    return wordFromDecimal(e, decimalOf(text));
}

double valueFromWord(Encoding e, qint64 word)
{
    static const double scale[] = {1.0, 10.0, 100.0};
    if (e == Encoding::NEG10)
        return -signedFromWord(quint16(word & 0xFFFF)) / 10.0;
    return double(word - encodingOffset(e)) / scale[encodingPow10(e)];
}

QByteArray wordBytes(quint16 word)
{
    QByteArray b(2, '\0');
    b[0] = char(word >> 8);
    b[1] = char(word & 0xFF);
    return b;
}

int clampDecimals(qint64 decimals)
{
    return int(decimals < 0 ? 0 : (decimals > 2 ? 2 : decimals));
}

QString resolutionPattern(int decimals)
{
    switch (clampDecimals(decimals)) {
    case 0: return QStringLiteral("0");
    case 1: return QStringLiteral("0.0");
    default: return QStringLiteral("0.00");
    }
}

QString screenPattern(Encoding e, int decimals)
{
    switch (e) {
    case Encoding::T100:
    case Encoding::V100:
    case Encoding::AL100:
        return resolutionPattern(decimals);
    case Encoding::H100:
    case Encoding::X10:
    case Encoding::TZ:
    case Encoding::AL10:
    case Encoding::NEG10:
        return QStringLiteral("0.0");
    case Encoding::X100:
    case Encoding::LIM:
    case Encoding::OFS:
        return QStringLiteral("0.00");
    case Encoding::INT:
        return QStringLiteral("0");
    case Encoding::REV:
    case Encoding::OPT:
        return {};
    }
    return {};
}

QString formatWord(Encoding e, qint64 word, int decimals)
{
    return formatWordWith(e, word, screenPattern(e, decimals));
}

QString formatWordWith(Encoding e, qint64 word, QAnyStringView pattern)
{
    if (e == Encoding::NEG10)
        return formatScaled(-qint64(signedFromWord(quint16(word & 0xFFFF))), 1, pattern);
    return formatScaled(saturatingAdd(word, -encodingOffset(e)), encodingPow10(e), pattern);
}

QString formatNumber(double value, QAnyStringView pattern)
{
    if (!std::isfinite(value))
        return QString::number(value);
    return formatDecimal(decimalOf(value), pattern);
}

QString formatScaled(qint64 n, int pow10, QAnyStringView pattern)
{
    return formatDecimal(decimalOf(n, pow10), pattern);
}
