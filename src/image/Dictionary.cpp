#include "Dictionary.h"
#include "ControllerImage.h"
#include "Firmware.h"
#include <algorithm>

namespace {

// Builder for the table below, so each line reads like a dictionary line.
struct Entry {
    ParamInfo v;
    Entry(Param p, const char *name, int current, int legacy, Encoding e)
        : v{p, name, UpBlock::Up, current, legacy, e, false, 0, 0, false, {}, {}, 0, 0, 0, 0, 0, 0, false}
    {
    }
    Entry &range(double low, double high)
    {
        v.hasRange = true;
        v.low = low;
        v.high = high;
        return *this;
    }
    // The bounds of the high field and of the low field of a pair.
    Entry &fields(ParamBounds high, ParamBounds low)
    {
        v.fieldBounds = true;
        v.highField = high;
        v.lowField = low;
        return range(std::min(high.low, low.low), std::max(high.high, low.high));
    }
    // High field (index 1) at the row, low field (index 0) at the row after it.
    Entry &pair() { return family(1, 0, -1); }
    Entry &family(int first, int last, int step = 1)
    {
        v.iFirst = first;
        v.iLast = last;
        v.iStep = step;
        return *this;
    }
    Entry &family2(int first, int last, int step)
    {
        v.kFirst = first;
        v.kLast = last;
        v.kStep = step;
        return *this;
    }
    Entry &plus()
    {
        v.block = UpBlock::UpPlus;
        return same();
    }
    Entry &same()
    {
        v.sameInBothLayouts = true;
        return *this;
    }
};

using E = Encoding;
using P = Param;

// Bounds of the high and the low field of the usual pairs: a temperature
// range of -100 to 200 degrees, an output limit of -5 to 105 %.
constexpr ParamBounds kTempHigh{-99.99, 200};
constexpr ParamBounds kTempLow{-100, 199.99};
constexpr ParamBounds kLimitHigh{-4.98, 105};
constexpr ParamBounds kLimitLow{-5, 104.99};
// The humidity line of the ON/OFF table (line 5): 0 to 100 % and differences
// up to 100 instead of -100 to 200 degrees and 300.
constexpr int kOnOffHumidityLine = 5;
constexpr ParamBounds kOnOffHumidityValue{0, 100};
constexpr ParamBounds kOnOffHumidityDifference{0, 100};

QList<ParamInfo> buildTable()
{
    const Entry entries[] = {
        // Run settings.
        Entry(P::btnRun_Method, "btnRun_Method", 1, 1, E::OPT).same(),
        Entry(P::txtRun_Hour, "txtRun_Hour", 2, 2, E::INT).range(0, 9999).same(),
        Entry(P::txtRun_Minute, "txtRun_Minute", 3, 3, E::INT).range(0, 59).same(),
        Entry(P::txtT_SV, "txtT_SV", 4, 4, E::X10).range(0, 6000).same(),
        Entry(P::txtH_SV, "txtH_SV", 5, 5, E::X10).range(0, 6000).same(),
        Entry(P::btnReturn_Proc, "btnReturn_Proc", 6, 6, E::OPT).same(),
        Entry(P::btnMV_Tracking, "btnMV_Tracking", 7, 7, E::OPT).same(),
        Entry(P::btnPuzzy, "btnPuzzy", 8, 8, E::OPT).same(),
        Entry(P::btnBeep, "btnBeep", 9, 9, E::OPT).same(),
        Entry(P::btnTouch_Lock, "btnTouch_Lock", 10, 10, E::OPT).same(),
        Entry(P::txtAuto_Off, "txtAuto_Off", 11, 11, E::INT).range(0, 99).same(),
        Entry(P::sprdDT, "sprdDT", 12, 12, E::INT).family(1, 6).same(),
        Entry(P::sprdDT_Reserve, "sprdDT_Reserve", 18, 18, E::INT).family(1, 5).same(),
        Entry(P::btnReserve_Set, "btnReserve_Set", 23, 23, E::INT).range(0, 1).same(),
        Entry(P::btnOper_Lock, "btnOper_Lock", 88, 88, E::OPT).plus(),
        Entry(P::btnPatt_Lock, "btnPatt_Lock", 89, 89, E::OPT).plus(),

        // Sensors.
        Entry(P::btnSensorType1, "btnSensorType1", 24, 24, E::OPT),
        Entry(P::txtLPF1, "txtLPF1", 25, 25, E::INT).range(2, 180),
        Entry(P::txtInputRange1_RTD, "txtInputRange1_RTD", 26, 26, E::T100).pair().fields(kTempHigh, kTempLow),
        Entry(P::txtScale1, "txtScale1", 28, 28, E::T100).pair().fields(kTempHigh, kTempLow),
        Entry(P::txtInputRange1_V, "txtInputRange1_V", 30, 30, E::V100).pair().fields(kTempHigh, kTempLow),
        Entry(P::txtBias1_RTD, "txtBias1_RTD", 32, 34, E::OFS).range(-100, 100),
        Entry(P::txtBias1_V, "txtBias1_V", 33, 35, E::OFS).range(-100, 100),
        Entry(P::txtAdjustY_T, "txtAdjustY_T", 34, 457, E::REV).family(1, 6).range(-196.5, 266.4),
        Entry(P::txtAdjustX_T, "txtAdjustX_T", 40, 463, E::REV).family(1, 6).range(-196.5, 266.4),
        Entry(P::btnSensorType2, "btnSensorType2", 46, 37, E::OPT),
        Entry(P::txtLPF2, "txtLPF2", 47, 38, E::INT).range(2, 180),
        Entry(P::txtInputRange2_RTD, "txtInputRange2_RTD", 48, 39, E::T100).pair().fields(kTempHigh, kTempLow),
        Entry(P::txtScale2, "txtScale2", 50, 41, E::X100).pair().fields({0.1, 100}, {0, 99.9}),
        Entry(P::txtInputRange2_V, "txtInputRange2_V", 52, 43, E::V100).pair().fields(kTempHigh, kTempLow),
        Entry(P::txtBias2_RTD, "txtBias2_RTD", 54, 47, E::OFS).range(-100, 100),
        Entry(P::txtBias2_V, "txtBias2_V", 55, 48, E::OFS).range(-100, 100),
        Entry(P::txtAdjustY_H, "txtAdjustY_H", 56, 469, E::REV).family(1, 6).range(-5, 105),
        Entry(P::txtAdjustX_H, "txtAdjustX_H", 62, 475, E::REV).family(1, 6).range(-5, 105),
        Entry(P::btnDryWetADJ_R, "btnDryWetADJ_R", 68, 50, E::OPT),
        Entry(P::txtWetTemp, "txtWetTemp", 69, 51, E::OFS).range(-99.99, 99.99),
        Entry(P::txtDryTemp_Range, "txtDryTemp_Range", 70, 52, E::T100).pair().fields({0.01, 99.99}, {0, 99.99}),
        Entry(P::btnResolution, "btnResolution", 506, 80, E::OPT),
        Entry(P::txtBurnOutWaitTime, "txtBurnOutWaitTime", 507, 81, E::INT).range(0, 999),
        Entry(P::btnAT_Button, "btnAT_Button", 508, 82, E::OPT),
        Entry(P::txtTempSV_Range, "txtTempSV_Range", 502, 83, E::T100).pair().fields(kTempHigh, kTempLow),
        Entry(P::txtHumiSV_Range, "txtHumiSV_Range", 504, 85, E::H100).pair().fields({0.1, 100}, {0, 99.9}),

        // Control outputs.
        Entry(P::btnTempOutType, "btnTempOutType", 72, 54, E::OPT),
        Entry(P::txtTempOutPeriod, "txtTempOutPeriod", 73, 55, E::INT).range(1, 1000),
        Entry(P::btnTempOutDirect, "btnTempOutDirect", 74, 56, E::OPT),
        Entry(P::txtTempOutV, "txtTempOutV", 75, 57, E::LIM).pair().fields(kLimitHigh, kLimitLow),
        Entry(P::btnRetTempOut, "btnRetTempOut", 77, 68, E::OPT),
        Entry(P::txtRetTempRange, "txtRetTempRange", 78, 69, E::T100).pair().fields(kTempHigh, kTempLow),
        Entry(P::btnTRet_SBOut, "btnTRet_SBOut", 80, 250, E::OPT),
        Entry(P::txtTempOutBias, "txtTempOutBias", 81, 249, E::OFS).range(-20, 20),
        Entry(P::txtAdjustY_RetT, "txtAdjustY_RetT", 82, 481, E::REV).family(1, 3).range(-196.5, 266.4),
        Entry(P::txtAdjustX_RetT, "txtAdjustX_RetT", 85, 484, E::REV).family(1, 3).range(-196.5, 266.4),
        Entry(P::btnHumiOutType, "btnHumiOutType", 88, 61, E::OPT),
        Entry(P::txtHumiOutPeriod, "txtHumiOutPeriod", 89, 62, E::INT).range(1, 1000),
        Entry(P::btnHumiOutDirect, "btnHumiOutDirect", 90, 63, E::OPT),
        Entry(P::txtHumiOutV, "txtHumiOutV", 91, 64, E::LIM).pair().fields(kLimitHigh, kLimitLow),
        Entry(P::btnRetHumiOut, "btnRetHumiOut", 93, 71, E::OPT),
        Entry(P::txtRetHumiRange, "txtRetHumiRange", 94, 72, E::X10).pair().fields({0.1, 100}, {0, 99.99}),
        Entry(P::btnHRet_SBOut, "btnHRet_SBOut", 96, 252, E::OPT),
        Entry(P::txtHumiOutBias, "txtHumiOutBias", 97, 251, E::OFS).range(-20, 20),
        Entry(P::txtAdjustY_RetH, "txtAdjustY_RetH", 98, 487, E::REV).family(1, 3).range(-5, 105),
        Entry(P::txtAdjustX_RetH, "txtAdjustX_RetH", 101, 490, E::REV).family(1, 3).range(-5, 105),

        // System alarms.
        Entry(P::btnAlarmActive, "btnAlarmActive", 104, 87, E::OPT),
        Entry(P::sprdSystem_Target, "sprdSystem_Target", 105, 88, E::INT).family(1, 4, 4).range(0, 1),
        Entry(P::sprdSystem_Type, "sprdSystem_Type", 106, 89, E::INT).family(1, 4, 4),
        Entry(P::sprdSystem_SV, "sprdSystem_SV", 107, 90, E::AL10).family(1, 4, 4),
        Entry(P::sprdSystem_Hyst, "sprdSystem_Hyst", 108, 91, E::X10).family(1, 4, 4),

        // Digital outputs: rows by line tables (see doRow).
        Entry(P::sprdDO2_Relay, "sprdDO2_Relay", 121, 0, E::INT).family(1, 46),
        Entry(P::sprdDO2_Value, "sprdDO2_Value", 150, 0, E::INT).family(17, 46),
        Entry(P::sprdDO_Relay, "sprdDO_Relay", 0, 104, E::INT).family(1, 36),
        Entry(P::sprdDO_Value, "sprdDO_Value", 0, 133, E::INT).family(27, 36),

        // Digital inputs.
        Entry(P::sprdDI_State, "sprdDI_State", 183, 158, E::INT).family(1, 3),
        Entry(P::btnDI_Status, "btnDI_Status", 186, 258, E::INT),
        Entry(P::sprdDI, "sprdDI", 187, 161, E::INT).family(1, 8),

        // Communication.
        Entry(P::cmbProtocol, "cmbProtocol", 195, 169, E::OPT).family(1, 2, 7),
        Entry(P::cmbBaud, "cmbBaud", 196, 170, E::OPT).family(1, 2, 7),
        Entry(P::cmbParity, "cmbParity", 197, 171, E::OPT).family(1, 2, 7),
        Entry(P::cmbStop, "cmbStop", 198, 172, E::OPT).family(1, 2, 7),
        Entry(P::cmbData, "cmbData", 199, 173, E::OPT).family(1, 2, 7),
        Entry(P::txtResTime, "txtResTime", 200, 174, E::INT).family(1, 2, 7).range(0, 1000),
        Entry(P::txtMC_No, "txtMC_No", 201, 175, E::INT).family(1, 2, 7).range(1, 999),

        // Inner signals and their ON/OFF table.
        Entry(P::InnerSignal, "InnerSignal", 209, 183, E::INT).family(1, 8, 7).family2(0, 6, 1),
        Entry(P::txtT_LSV, "txtT_LSV", 265, 0, E::TZ).family(1, 5, 5).range(-100, 200),
        Entry(P::txtT_MSV, "txtT_MSV", 266, 0, E::TZ).family(1, 5, 5).range(-100, 200),
        Entry(P::txtT_HSV, "txtT_HSV", 267, 0, E::TZ).family(1, 5, 5).range(-100, 200),
        Entry(P::txtT_Lu, "txtT_Lu", 268, 0, E::X10).family(1, 5, 5).range(0, 300),
        Entry(P::txtT_Hd, "txtT_Hd", 269, 0, E::X10).family(1, 5, 5).range(0, 300),

        // Other pages.
        Entry(P::txtUserPass, "txtUserPass", 290, 253, E::INT).family(1, 4),
        Entry(P::btnPIDZone_Finder, "btnPIDZone_Finder", 294, 74, E::OPT),
        Entry(P::txtPIDZone_Manual, "txtPIDZone_Manual", 295, 75, E::INT).range(0, 16),
        Entry(P::txtT_AT_Gain, "txtT_AT_Gain", 296, 60, E::X100).range(0.01, 10),
        Entry(P::txtH_AT_Gain, "txtH_AT_Gain", 297, 67, E::X100).range(0.01, 10),
        Entry(P::txtTempZone, "txtTempZone", 298, 239, E::TZ).family(1, 4).range(-100, 200),
        Entry(P::txtHumiZone, "txtHumiZone", 302, 243, E::X10).family(1, 4).range(0, 100),
        Entry(P::sprdPID, "sprdPID", 306, 265, E::X100).family(1, 16, 8).family2(1, 12, 1),
        Entry(P::txtSavePeriod, "txtSavePeriod", 498, 76, E::INT).range(1, 360),
        Entry(P::btnSaveAction, "btnSaveAction", 499, 77, E::OPT),
        Entry(P::btnSaveObj, "btnSaveObj", 500, 262, E::OPT),
        Entry(P::btnLanguage, "btnLanguage", 501, 79, E::OPT),
        Entry(P::btnHCTL_Base, "btnHCTL_Base", 509, 257, E::OPT),
        Entry(P::btnTPV_HOLD, "btnTPV_HOLD", 510, 259, E::OPT),
        Entry(P::btnHPV_HOLD, "btnHPV_HOLD", 511, 260, E::OPT),
    };
    QList<ParamInfo> table;
    for (const Entry &e : entries)
        table.append(e.v);
    std::sort(table.begin(), table.end(),
              [](const ParamInfo &a, const ParamInfo &b) { return int(a.param) < int(b.param); });
    return table;
}

bool inFamily(int index, int first, int last)
{
    return index >= std::min(first, last) && index <= std::max(first, last);
}

// Rows of the D/O table of the current layout, by line: relay row and value row (0: none).
struct DoLine {
    int relay;
    int value;
};

DoLine currentDoLine(int line)
{
    if (line >= 1 && line <= 16)
        return {line + 120, 0};
    if (line >= 17 && line <= 20)
        return {line + 128, line + 133};
    if (line == 21)
        return {149, 154};
    if (line >= 22 && line <= 29)
        return {line + 115, 0};
    if (line == 30 || line == 31)
        return {line + 147, 0};
    if (line >= 32 && line <= 34)
        return {line + 148, 0};
    switch (line) {
    case 35: return {179, 0};
    case 36: return {167, 168};
    case 37: return {173, 174};
    case 38: return {169, 170};
    case 39: return {171, 172};
    case 40: return {175, 176};
    case 41: return {155, 156};
    case 42: return {157, 158};
    case 43: return {159, 160};
    case 44: return {161, 162};
    case 45: return {163, 164};
    case 46: return {165, 166};
    }
    return {0, 0};
}

DoLine legacyDoLine(int line)
{
    if (line >= 1 && line <= 20)
        return {line + 103, 0};
    if (line == 21)
        return {154, 0};
    if (line == 22 || line == 23)
        return {line + 130, 0};
    if (line >= 24 && line <= 26)
        return {line + 131, 0};
    if (line >= 27 && line <= 36)
        return {132 + 2 * (line - 27), 133 + 2 * (line - 27)};
    return {0, 0};
}

// PID table: zone z, column c. Temperature columns 1-4 and humidity columns
// 7-10 lie in the eight rows of the zone's first block; the output limits
// (columns 5, 6, 11, 12) in the four rows of its second block.
int pidRow(int z, int c, bool current)
{
    if (z < 1 || z > 16 || c < 1 || c > 12)
        return 0;
    const int t = (current ? 306 : 265) + 8 * (z - 1);
    const int h = (current ? 434 : 393) + 4 * (z - 1);
    if (c <= 4)
        return t + (c - 1);
    if (c <= 6)
        return h + (c - 5);
    if (c <= 10)
        return t + 4 + (c - 7);
    return h + 2 + (c - 11);
}

int rowInLayout(const ParamInfo &info, const ParamRef &ref, bool current)
{
    switch (ref.param) {
    case Param::sprdPID:
        return pidRow(ref.i, ref.k, current);
    case Param::sprdDO2_Relay:
        return current && ref.k == 0 ? currentDoLine(ref.i).relay : 0;
    case Param::sprdDO2_Value:
        return current && ref.k == 0 ? currentDoLine(ref.i).value : 0;
    case Param::sprdDO_Relay:
        return !current && ref.k == 0 ? legacyDoLine(ref.i).relay : 0;
    case Param::sprdDO_Value:
        return !current && ref.k == 0 ? legacyDoLine(ref.i).value : 0;
    default:
        break;
    }
    const int base = current ? info.current : info.legacy;
    if (base == 0)
        return 0;
    int row = base;
    if (info.iStep != 0) {
        if (!inFamily(ref.i, info.iFirst, info.iLast))
            return 0;
        row += info.iStep * (ref.i - info.iFirst);
    } else if (ref.i != 0) {
        return 0;
    }
    if (info.kStep != 0) {
        if (!inFamily(ref.k, info.kFirst, info.kLast))
            return 0;
        row += info.kStep * (ref.k - info.kFirst);
    } else if (ref.k != 0) {
        return 0;
    }
    return row;
}

} // namespace

const QList<ParamInfo> &allParams()
{
    static const QList<ParamInfo> table = buildTable();
    return table;
}

const ParamInfo &paramInfo(Param p)
{
    return allParams().at(int(p));
}

QString paramName(Param p)
{
    return QString::fromLatin1(paramInfo(p).name);
}

bool IsCurrentLayout(double firmwareVersion)
{
    return Firmware::atLeast(firmwareVersion, Firmware::CurrentLayout);
}

int RowOf(ParamRef ref, double firmwareVersion)
{
    const ParamInfo &info = paramInfo(ref.param);
    const bool current = info.sameInBothLayouts || IsCurrentLayout(firmwareVersion);
    const int row = rowInLayout(info, ref, current);
    if (row <= 0)
        return 0;
    if (info.block == UpBlock::Up && row > ControllerImage::upRowsFor(firmwareVersion))
        return 0;
    return row;
}

Encoding encodingOf(ParamRef ref, double v)
{
    const bool from231 = Firmware::atLeast(v, Firmware::TenthValues);
    const bool doValues = Firmware::atLeast(v, Firmware::DigitalOutputValues);
    switch (ref.param) {
    case Param::sprdSystem_SV:
        // Legacy firmware is below 2.31 as well, so its row is always AL100.
        return IsCurrentLayout(v) && from231 ? Encoding::AL10 : Encoding::AL100;
    case Param::InnerSignal:
        switch (ref.k) {
        case IsSource:
        case IsType:
        case IsDirect:
            return Encoding::OPT;
        case IsHigh:
        case IsLow:
            return from231 ? Encoding::TZ : Encoding::T100;
        default:
            return Encoding::INT;
        }
    case Param::txtT_LSV:
    case Param::txtT_MSV:
    case Param::txtT_HSV:
        return from231 ? Encoding::TZ : Encoding::T100;
    case Param::txtT_Lu:
    case Param::txtT_Hd:
        return from231 ? Encoding::X10 : Encoding::X100;
    case Param::sprdPID:
        switch (ref.k) {
        case 1: case 5: case 6: case 7: case 11: case 12:
            return Encoding::X100;
        default:
            return Encoding::X10;
        }
    case Param::sprdDO2_Value:
        switch (ref.i) {
        case 41: return doValues ? Encoding::X10 : Encoding::AL10; // x10 + 3000 before the D/O values
        case 44: return doValues ? Encoding::X10 : Encoding::TZ;   // x10 + 1000 before the D/O values
        case 42: case 45: return Encoding::NEG10;                  // soak values
        case 43: case 46: return Encoding::X10;
        default: return Encoding::INT;
        }
    case Param::sprdDO_Value:
        switch (ref.i) {
        case 27: return Encoding::AL10; // x10 + 3000
        case 30: return Encoding::TZ;   // x10 + 1000
        default: return Encoding::INT;
        }
    default:
        return paramInfo(ref.param).encoding;
    }
}

std::optional<ParamBounds> ParamRange(ParamRef ref, double)
{
    const ParamInfo &info = paramInfo(ref.param);
    if (!info.hasRange)
        return std::nullopt;
    if (info.fieldBounds)
        return ref.i == 1 ? info.highField : info.lowField;
    if (ref.i == kOnOffHumidityLine) {
        switch (ref.param) {
        case Param::txtT_LSV: case Param::txtT_MSV: case Param::txtT_HSV:
            return kOnOffHumidityValue;
        case Param::txtT_Lu: case Param::txtT_Hd:
            return kOnOffHumidityDifference;
        default:
            break;
        }
    }
    return ParamBounds{info.low, info.high};
}

std::optional<ParamRef> ParamAtRow(int row, double firmwareVersion)
{
    for (const ParamInfo &info : allParams()) {
        if (info.block != UpBlock::Up)
            continue;
        const int iLo = info.iStep ? std::min(info.iFirst, info.iLast) : 0;
        const int iHi = info.iStep ? std::max(info.iFirst, info.iLast) : 0;
        const int kLo = info.kStep ? std::min(info.kFirst, info.kLast) : 0;
        const int kHi = info.kStep ? std::max(info.kFirst, info.kLast) : 0;
        for (int i = iLo; i <= iHi; ++i)
            for (int k = kLo; k <= kHi; ++k)
                if (RowOf(ParamRef(info.param, i, k), firmwareVersion) == row)
                    return ParamRef(info.param, i, k);
    }
    return std::nullopt;
}

QString ReadRow(const ControllerImage &image, int row)
{
    return image.sprdUP.text(1, row);
}

qint64 ReadRowNumber(const ControllerImage &image, int row)
{
    return image.sprdUP.number(1, row);
}

bool WriteRowText(ControllerImage &image, int row, const QString &text)
{
    if (row < 1 || row > image.sprdUP.rowCount())
        return false;
    image.sprdUP.setText(1, row, text);
    return true;
}

QString ReadPlusRow(const ControllerImage &image, int row)
{
    return image.sprdUP_PLUS.text(1, row);
}

bool WritePlusRowText(ControllerImage &image, int row, const QString &text)
{
    if (row < 1 || row > image.sprdUP_PLUS.rowCount())
        return false;
    image.sprdUP_PLUS.setText(1, row, text);
    return true;
}

int WireAddress(int row, bool modbus, bool currentLayout)
{
    return modbus && currentLayout ? 40100 + row : row;
}

int WireAddressPlus(int row, bool modbus)
{
    return modbus ? 40612 + row : row;
}

int WriteRowOf(ParamRef ref, double firmwareVersion, RowAddressing addressing)
{
    if (addressing != RowAddressing::LegacyRow)
        return RowOf(ref, firmwareVersion);
    const ParamInfo &info = paramInfo(ref.param);
    const int row = rowInLayout(info, ref, info.sameInBothLayouts);
    if (row <= 0)
        return 0;
    if (info.block == UpBlock::Up && row > ControllerImage::upRowsFor(firmwareVersion))
        return 0;
    return row;
}

int ParamWireAddress(ParamRef ref, double firmwareVersion, bool modbus, RowAddressing addressing)
{
    const ParamInfo &info = paramInfo(ref.param);
    const int row = WriteRowOf(ref, firmwareVersion, addressing);
    if (row == 0)
        return 0;
    if (addressing != RowAddressing::Normal)
        return row;
    if (info.block == UpBlock::UpPlus)
        return WireAddressPlus(row, modbus);
    return WireAddress(row, modbus, info.sameInBothLayouts || IsCurrentLayout(firmwareVersion));
}

std::optional<qint64> ParamWord(const ControllerImage &image, ParamRef ref)
{
    const int row = RowOf(ref, image.firmwareVersion());
    if (row == 0)
        return std::nullopt;
    const TextTable &t = paramInfo(ref.param).block == UpBlock::UpPlus ? image.sprdUP_PLUS : image.sprdUP;
    if (t.isEmpty(1, row))
        return std::nullopt;
    return t.number(1, row);
}

QString ParamText(const ControllerImage &image, ParamRef ref)
{
    const std::optional<qint64> word = ParamWord(image, ref);
    if (!word)
        return {};
    return formatWord(encodingOf(ref, image.firmwareVersion()), *word, image.tempDecimals());
}
