#pragma once
#include <QString>
#include <QtGlobal>
#include <optional>

class ConsoleState;
class ControllerImage;

// What several system pages read besides their own fields.

// The sensor channels of the controller.
enum class SensorChannel { Temperature = 1, Humidity = 2 };

// Whether a channel's sensor is an RTD, by its type row: the word 1 under the
// current layout, 0 under the legacy one (where any word above 0 is a voltage
// input). A row not read yet counts as its word 0.
bool sensorIsRtd(const ControllerImage &image, SensorChannel channel);

// A present value of the foreground machine (a row of sprdRCV); none before
// its first reading.
std::optional<qint64> foregroundValue(const ConsoleState &state, int rcvRow);

// The present value of a channel as a page shows it beside its settings:
// "--.-" for no value (65535 or not read yet).
QString presentValueText(const ConsoleState &state, SensorChannel channel);
