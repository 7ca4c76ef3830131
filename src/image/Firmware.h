#pragma once

// The firmware versions at which the controller's parameter block, its
// encodings or the pages that edit it change. A version is compared as the
// plain number shown in the machine table (2.2 counts as current, 2.19 not).
// Every test of a version in the console names one of these.
namespace Firmware {

// Output limits of each PID zone, the hold and humidity-base buttons.
constexpr double PidOutputLimits = 1.8;
// The parameter block grows from 392 to 456 rows.
constexpr double Block456 = 1.81;
// Revision curves (rows 457 on in the legacy layout, 492 rows), the
// curve-save extras.
constexpr double RevisionCurves = 2.09;
// The ON/OFF type of the inner signals.
constexpr double InnerSignalOnOff = 2.14;
// The current layout of the parameter block (512 rows, 100 patterns).
constexpr double CurrentLayout = 2.2;
// The communication page.
constexpr double CommunicationPage = 2.3;
// Alarm and inner-signal values in tenths with an offset.
constexpr double TenthValues = 2.31;
// The action of each digital input.
constexpr double DigitalInputAction = 2.37;
// The values of the digital-output lines.
constexpr double DigitalOutputValues = 2.4;

constexpr bool atLeast(double version, double level) { return version >= level; }

} // namespace Firmware
