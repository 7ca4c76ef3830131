#pragma once
#include "PageValues.h"
#include <QDialog>

class EntryBinding;
class EntryField;
class OptionGroup;
class ParamPage;
class QLabel;
class QPushButton;
struct ScreenContext;

// "傳感器輸入設定": sensor type, input and control ranges, offsets and
// filters of the temperature and humidity inputs, the dry/wet bulb, the
// settable ranges, the display resolution, the wait on a sensor break and
// the A/T key. The range and offset fields follow the sensor type: an RTD
// shows its RTD rows in degrees, a voltage input its voltage rows in volts.
class frmQM730SYS_Sensor : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730SYS_Sensor(ScreenContext &context, QWidget *parent = nullptr);

private:
    struct Channel {
        SensorChannel which;
        OptionGroup *type = nullptr;
        EntryField *rangeHigh = nullptr, *rangeLow = nullptr;
        EntryField *scaleHigh = nullptr, *scaleLow = nullptr;
        QLabel *unit = nullptr;
        QLabel *biasLabel = nullptr;
        QPushButton *adjust = nullptr;
    };
    QWidget *buildChannel(Channel &c);
    QWidget *buildDryWet();
    QWidget *buildOthers();
    // The channel's type by the colour of its buttons: button 1 is the RTD.
    bool rtd(const Channel &c) const;
    void applyModes();
    void openRevision(SensorChannel channel);

    ScreenContext &m_ctx;
    ParamPage *m_page;
    Channel m_temp{SensorChannel::Temperature};
    Channel m_humi{SensorChannel::Humidity};
    QLabel *m_dryTemp = nullptr;
};
