#include "PageValues.h"
#include "ConsoleState.h"
#include "Dictionary.h"
#include "LiveStatus.h"

bool sensorIsRtd(const ControllerImage &image, SensorChannel channel)
{
    const Param type = channel == SensorChannel::Temperature ? Param::btnSensorType1 : Param::btnSensorType2;
    const double version = image.firmwareVersion();
    const qint64 word = ReadRowNumber(image, RowOf(type, 0, version));
    return IsCurrentLayout(version) ? word == 1 : word == 0;
}

std::optional<qint64> foregroundValue(const ConsoleState &state, int rcvRow)
{
    const int slot = state.slotOfMachine(state.CurrentMachine);
    if (slot < 0 || state.image.sprdRCV.isEmpty(slot + 1, rcvRow))
        return std::nullopt;
    return state.image.sprdRCV.number(slot + 1, rcvRow);
}

QString presentValueText(const ConsoleState &state, SensorChannel channel)
{
    const bool temperature = channel == SensorChannel::Temperature;
    const std::optional<qint64> raw = foregroundValue(state, temperature ? Rcv::TempPV : Rcv::HumiPV);
    if (!raw || *raw == NoValue)
        return QStringLiteral("--.-");
    const QString pattern = resolutionPattern(state.TempDecimals());
    return temperature ? formatNumber(temperatureFromWord(*raw), pattern)
                       : formatNumber(humidityFromWord(*raw), pattern);
}
