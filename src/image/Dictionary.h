#pragma once
#include "Encodings.h"
#include <QList>
#include <QString>
#include <optional>

class ControllerImage;

// The parameter dictionary: which row of the controller's parameter block holds
// which parameter, under the current layout (firmware 2.2 and above) and the
// legacy layout (below 2.2), with its word encoding and accepted range.
// Pages name a parameter and ask for its row; they never write row numbers.
//
// Families take an index:
//  - high/low pairs: index 1 is the high field, 0 the low field (the field
//    index of the page), e.g. {Param::txtScale1, 1};
//  - numbered lines and points count from 1: revision points 1..6 (1..3 on the
//    retransmission curves), system alarm lines 1..4, D/I function lines 1..3,
//    D/I lines 1..8, password digits 1..4, zone boundaries 1..4, ON/OFF table
//    lines 1..5, clock fields 1..6 (year, month, day, hour, minute, second),
//    reserved-start fields 1..5, D/O lines as the page numbers them;
//  - communication sets: 1 RS232, 2 RS485;
//  - two indexes: inner signal n = 1..8 with word k = 0..6, PID zone z = 1..16
//    with column c = 1..12 of the PID table.
enum class Param {
    // Run settings: the same rows in both layouts, no version test.
    btnRun_Method, txtRun_Hour, txtRun_Minute, txtT_SV, txtH_SV, btnReturn_Proc,
    btnMV_Tracking, btnPuzzy, btnBeep, btnTouch_Lock, txtAuto_Off,
    sprdDT,          // clock, i = 1..6
    sprdDT_Reserve,  // reserved start, i = 1..5
    btnReserve_Set,
    btnOper_Lock,    // sprdUP_PLUS row 88
    btnPatt_Lock,    // sprdUP_PLUS row 89

    // Sensors.
    btnSensorType1, txtLPF1,
    txtInputRange1_RTD, txtScale1, txtInputRange1_V, // pairs
    txtBias1_RTD, txtBias1_V,
    txtAdjustY_T, txtAdjustX_T, // temperature revision curve, points 1..6
    btnSensorType2, txtLPF2,
    txtInputRange2_RTD, txtScale2, txtInputRange2_V, // pairs
    txtBias2_RTD, txtBias2_V,
    txtAdjustY_H, txtAdjustX_H, // humidity revision curve, points 1..6
    btnDryWetADJ_R, txtWetTemp,
    txtDryTemp_Range, // pair
    btnResolution, txtBurnOutWaitTime, btnAT_Button,
    txtTempSV_Range, txtHumiSV_Range, // pairs

    // Control outputs.
    btnTempOutType, txtTempOutPeriod, btnTempOutDirect,
    txtTempOutV, // pair
    btnRetTempOut,
    txtRetTempRange, // pair
    btnTRet_SBOut, txtTempOutBias,
    txtAdjustY_RetT, txtAdjustX_RetT, // temperature retransmission curve, points 1..3
    btnHumiOutType, txtHumiOutPeriod, btnHumiOutDirect,
    txtHumiOutV, // pair
    btnRetHumiOut,
    txtRetHumiRange, // pair
    btnHRet_SBOut, txtHumiOutBias,
    txtAdjustY_RetH, txtAdjustX_RetH, // humidity retransmission curve, points 1..3

    // System alarms, lines 1..4.
    btnAlarmActive,
    sprdSystem_Target, sprdSystem_Type, sprdSystem_SV, sprdSystem_Hyst,

    // Digital outputs. sprdDO2 is the table of the current layout (lines 1..46),
    // sprdDO that of the legacy layout (lines 1..36). A relay word holds the
    // relay number in the low byte and the O/C number in the high byte.
    sprdDO2_Relay, sprdDO2_Value, sprdDO_Relay, sprdDO_Value,

    // Digital inputs. Function lines and D/I lines: high byte the action, low
    // byte the D/I number (function lines) or the wait time (D/I lines).
    sprdDI_State, // function lines 1..3: run/stop, skip, hold
    btnDI_Status, // input state word, a bit per input
    sprdDI,       // D/I lines 1..8

    // Communication, set 1 RS232, 2 RS485.
    cmbProtocol, cmbBaud, cmbParity, cmbStop, cmbData, txtResTime, txtMC_No,

    // Inner signals: n = 1..8, k = 0..6 (see InnerSignalWord).
    InnerSignal,
    // ON/OFF table of the inner signals, lines 1..5; current layout only.
    txtT_LSV, txtT_MSV, txtT_HSV, txtT_Lu, txtT_Hd,

    // Other pages.
    txtUserPass, // four rows, one digit a row as its character code, i = 1..4
    btnPIDZone_Finder, txtPIDZone_Manual, txtT_AT_Gain, txtH_AT_Gain,
    txtTempZone, txtHumiZone, // boundaries 1..4
    sprdPID,                  // zone z = 1..16, column c = 1..12
    txtSavePeriod, btnSaveAction, btnSaveObj,
    btnLanguage, btnHCTL_Base, btnTPV_HOLD, btnHPV_HOLD,
};

// The seven words of an inner signal.
enum InnerSignalWord {
    IsSource = 0,   // btnIS_SOURCE
    IsType = 1,     // btnIS_Type
    IsHigh = 2,     // txtIS_Range 1 or txtSV_High
    IsLow = 3,      // txtIS_Range 0 or txtSV_Low
    IsDirect = 4,   // btnIS_Direct or txtLowDIF
    IsDelayMin = 5, // txtIS_Delay 0 or txtSV_Middle
    IsDelaySec = 6, // txtIS_Delay 1 or txtHighDIF
};

// A parameter with its family index (or indexes).
struct ParamRef {
    ParamRef(Param p, int index = 0, int index2 = 0) : param(p), i(index), k(index2) {}
    Param param;
    int i = 0;
    int k = 0;
    bool operator==(const ParamRef &o) const { return param == o.param && i == o.i && k == o.k; }
};

// Which table of the image holds a parameter.
enum class UpBlock { Up, UpPlus };

// A range of screen values, both ends included.
struct ParamBounds {
    double low;
    double high;
};

struct ParamInfo {
    Param param;
    const char *name;    // the field name, e.g. "txtLPF1"
    UpBlock block;
    int current;         // row of the first index under the current layout, 0 when none
    int legacy;          // the same under the legacy layout, 0 when none
    Encoding encoding;   // at the newest firmware; encodingOf() tells the others
    bool hasRange;
    double low, high;    // the range a page accepts, when stated (of both fields of a pair)
    bool fieldBounds;    // a pair whose high and low field have bounds of their own:
    ParamBounds highField, lowField; // so that the high field can stay above the low one
    int iFirst, iLast, iStep; // family index: row = base + iStep x (i - iFirst)
    int kFirst, kLast, kStep; // second index, added the same way
    bool sameInBothLayouts; // run settings: no version test, Modbus offset always applies
};

// Every parameter, in the order of the enum.
const QList<ParamInfo> &allParams();
const ParamInfo &paramInfo(Param p);
QString paramName(Param p);

// True at firmware 2.2 and above: the plain comparison of the number.
bool IsCurrentLayout(double firmwareVersion);

// The row of a parameter at a firmware: the current or the legacy row by the
// version test. 0 when the layout has no such row, the index is outside the
// family, or the row lies beyond the rows that firmware has (see
// ControllerImage::upRowsFor). Rows of sprdUP_PLUS are returned as they are.
int RowOf(ParamRef ref, double firmwareVersion);
inline int RowOf(Param p, int i, double firmwareVersion) { return RowOf(ParamRef(p, i), firmwareVersion); }
inline int RowOf(Param p, int i, int k, double firmwareVersion) { return RowOf(ParamRef(p, i, k), firmwareVersion); }

// The encoding of a parameter at a firmware. It differs from the entry's own
// where the layouts or versions differ: system alarm SV (AL10 from 2.31, AL100
// below, the legacy row always AL100), inner-signal temperature values and the
// ON/OFF table (TZ and X10 from 2.31, T100 and X100 below), PID columns, and
// the value rows of the D/O tables.
Encoding encodingOf(ParamRef ref, double firmwareVersion);
inline Encoding encodingOf(Param p, int i, double firmwareVersion) { return encodingOf(ParamRef(p, i), firmwareVersion); }
inline Encoding encodingOf(Param p, int i, int k, double firmwareVersion) { return encodingOf(ParamRef(p, i, k), firmwareVersion); }

// The range a page accepts for a parameter at a firmware, if one is stated:
// for the high and the low field of a pair each its own (the high field
// cannot reach the low field's lowest value, nor the low field the high
// field's highest), for the humidity line of the ON/OFF table its smaller one.
std::optional<ParamBounds> ParamRange(ParamRef ref, double firmwareVersion);

// Which parameter a row holds at a firmware, if any (sprdUP rows only).
std::optional<ParamRef> ParamAtRow(int row, double firmwareVersion);

// One cell of sprdUP, column 1. Reading outside the table gives an empty text;
// writing outside it changes nothing and returns false.
QString ReadRow(const ControllerImage &image, int row);
qint64 ReadRowNumber(const ControllerImage &image, int row);
bool WriteRowText(ControllerImage &image, int row, const QString &text);
// The same for sprdUP_PLUS.
QString ReadPlusRow(const ControllerImage &image, int row);
bool WritePlusRowText(ControllerImage &image, int row, const QString &text);

// The address of a sprdUP row on the wire: the row in PC Link; 40100 + row in
// Modbus RTU under the current layout; the plain row under the legacy layout
// in every protocol. Pages without a version test (run settings) pass
// currentLayout = true.
int WireAddress(int row, bool modbus, bool currentLayout);
// The address of a sprdUP_PLUS row: 40612 + row in Modbus RTU (88 -> 40700).
int WireAddressPlus(int row, bool modbus);
// How a write reaches its row. A few fields of the pages are written on
// purpose otherwise than they are read:
//  - Normal: the row by the version test, at its wire address;
//  - PlainRow: the row by the version test, sent as the plain row number in
//    every protocol (no Modbus register offset);
//  - LegacyRow: the legacy layout's row whatever the firmware, sent as the
//    plain row number in every protocol.
enum class RowAddressing { Normal, PlainRow, LegacyRow };

// The row a write goes to: RowOf() but for LegacyRow, which takes the legacy
// row (0 when it lies beyond the firmware's rows).
int WriteRowOf(ParamRef ref, double firmwareVersion, RowAddressing addressing);

// The address of a parameter at a firmware: its row, its table and the rules
// above together. 0 when the parameter has no row there.
int ParamWireAddress(ParamRef ref, double firmwareVersion, bool modbus,
                     RowAddressing addressing = RowAddressing::Normal);

// The word of a parameter as the image holds it (its row of sprdUP or
// sprdUP_PLUS at the image's firmware); none when the row is missing or not
// read yet.
std::optional<qint64> ParamWord(const ControllerImage &image, ParamRef ref);

// The screen text of a parameter read from the image: its row's word decoded
// by its encoding at the image's firmware, with the image's display
// resolution. Empty when the row is missing or not read yet.
QString ParamText(const ControllerImage &image, ParamRef ref);
