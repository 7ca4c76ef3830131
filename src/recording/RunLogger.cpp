#include "RunLogger.h"
#include "ConsoleState.h"
#include "Files.h"
#include "Encodings.h"
#include "LiveStatus.h"
#include "RecordFiles.h"
#include <QDir>

namespace {

const QString kStampFormat = QStringLiteral("yyyy-MM-dd HH:mm:ss");

QDateTime wholeSeconds(const QDateTime &t)
{
    return QDateTime::fromString(t.toString(kStampFormat), kStampFormat);
}

// The six value texts of a machine's column, as the status table would show them.
struct ValueTexts {
    QString tempSv, tempPv, tempOut, humiSv, humiPv, humiOut;
};

ValueTexts valueTexts(const TextTable &rcv, int col, int tempDecimals)
{
    ValueTexts v;
    v.tempSv = tempSvText(rcv.number(col, Rcv::TempSV), tempDecimals);
    v.tempPv = tempPvCheckedText(rcv.number(col, Rcv::TempPV), tempDecimals);
    v.tempOut = outputText(rcv.number(col, Rcv::TempMV));
    v.humiSv = humiSvText(rcv.number(col, Rcv::HumiSV));
    v.humiPv = humiPvCheckedText(rcv.number(col, Rcv::HumiPV));
    v.humiOut = outputText(rcv.number(col, Rcv::HumiMV));
    return v;
}

// The row takes the numeric value of each text, so dashes are written as zeros.
QByteArray formatRow(qint32 sequence, const QDateTime &at, const ValueTexts &v)
{
    const QChar tab = u'\t';
    QString row = formatNumber(sequence, QStringLiteral("00000000")) + tab
        + at.toString(QStringLiteral("yyyy/MM/dd")) + tab
        + at.toString(QStringLiteral("HH:mm:ss")) + tab
        + formatNumber(leadingNumber(v.tempSv), QStringLiteral("000.00")) + tab
        + formatNumber(leadingNumber(v.tempPv), QStringLiteral("000.00")) + tab
        + formatNumber(leadingNumber(v.tempOut), QStringLiteral("000.00")) + tab;
    if (leadingNumber(v.humiSv) == 0) {
        row += QStringLiteral("**.*\t**.*\t***.**");
    } else {
        row += formatNumber(leadingNumber(v.humiSv), QStringLiteral("00.0")) + tab
            + formatNumber(leadingNumber(v.humiPv), QStringLiteral("00.0")) + tab
            + formatNumber(leadingNumber(v.humiOut), QStringLiteral("000.00"));
    }
    row += QStringLiteral("\r\n");
    return row.toLatin1(); // the row is plain ASCII
}

// Restarts Timer1 on every way out of the tick.
struct RestartOnExit {
    QTimer &timer;
    ~RestartOnExit() { timer.start(); }
};

} // namespace

RunLogger::RunLogger(ConsoleState &state, std::function<bool()> portOpen, QObject *parent)
    : QObject(parent), m_state(state), m_portOpen(std::move(portOpen)),
      m_clock([] { return QDateTime::currentDateTime(); }), m_settings(SaveSettings::defaults(state.home))
{
    Timer1.setObjectName(QStringLiteral("Timer1"));
    Timer1.setInterval(50);
    connect(&Timer1, &QTimer::timeout, this, &RunLogger::Timer1_Timer);
    m_lastLogTime = wholeSeconds(now());
}

void RunLogger::setClock(Clock clock)
{
    m_clock = clock ? std::move(clock) : Clock([] { return QDateTime::currentDateTime(); });
}

QDateTime RunLogger::now() const
{
    return m_clock();
}

const QString &RunLogger::home() const
{
    return m_state.home;
}

void RunLogger::loadSettings()
{
    m_settings = readSaveSettingsFile(m_state.home).value_or(SaveSettings::defaults(m_state.home));
    const QString folder = saveFolderPath(m_state.home, m_settings.SaveFolder);
    if (!QDir(folder).exists())
        QDir().mkpath(folder);
}

void RunLogger::markStart()
{
    m_lastLogTime = wholeSeconds(now());
}

void RunLogger::applySavedSettings(const SaveSettings &saved)
{
    m_settings.SaveEnable = saved.SaveEnable;
    m_settings.SaveInterval = saved.SaveInterval;
    m_settings.SaveUnit = saved.SaveUnit;
    m_settings.SaveFolder = saved.SaveFolder;
    m_settings.SaveFileName = saved.SaveFileName;
}

QString RunLogger::logFilePath(int machineNumber, const QDateTime &at) const
{
    QString name = m_settings.SaveFileName + u'_' + formatNumber(machineNumber, QStringLiteral("000"));
    if (m_settings.DailyFile) {
        // The log day starts at DayStartHour:DayStartMinute; before that the
        // rows still belong to yesterday's file. Compared as text, as written.
        const QString dayStart = at.toString(QStringLiteral("yyyy-MM-dd")) + u' '
            + formatNumber(m_settings.DayStartHour, QStringLiteral("00")) + u':'
            + formatNumber(m_settings.DayStartMinute, QStringLiteral("00")) + QStringLiteral(":00");
        const QDate day = dayStart > at.toString(kStampFormat) ? at.date().addDays(-1) : at.date();
        name += u'_' + day.toString(QStringLiteral("yyyyMMdd"));
    }
    name += QStringLiteral(".QM7");
    return saveFolderPath(m_state.home, m_settings.SaveFolder) + u'/' + name;
}

void RunLogger::Timer1_Timer()
{
    Timer1.stop();
    RestartOnExit restart{Timer1};

    if (m_settings.SaveEnable != QLatin1String("Yes"))
        return;
    const QDateTime present = now();
    const double interval = m_settings.intervalSeconds();
    const double elapsed = m_lastLogTime.msecsTo(present) / 1000.0;
    if (elapsed < interval)
        return;
    // Taken before the port test: an interval that passes with the port
    // closed is used up.
    m_lastLogTime = wholeSeconds(present);
    if (!m_portOpen || !m_portOpen())
        return;

    m_logSequence = qint32(quint32(m_logSequence) + 1u);
    for (int slot = 0; slot <= m_state.MachineLast(); ++slot) {
        const MachineSlot &m = m_state.machines[slot];
        if (m.MachineOnline && m.MachineRunning && !m_unreadSinceLoss.contains(slot))
            writeMachineRow(slot, now());
    }
}

void RunLogger::lineLost()
{
    for (int slot = 0; slot <= m_state.MachineLast(); ++slot)
        m_unreadSinceLoss.insert(slot);
}

void RunLogger::statusRead(int slot)
{
    m_unreadSinceLoss.remove(slot);
}

void RunLogger::writeMachineRow(int slot, const QDateTime &at)
{
    const ValueTexts v = valueTexts(m_state.image.sprdRCV, slot + 1, m_state.TempDecimals());
    const QString path = logFilePath(m_state.machines[slot].MachineNumber, at);
    // A failed write loses this row only; the tick goes on with the next machine.
    appendWhole(path, formatRow(m_logSequence, at, v));
}
