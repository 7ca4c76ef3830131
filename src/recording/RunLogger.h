#pragma once
#include "SaveSettings.h"
#include <QDateTime>
#include <QObject>
#include <QSet>
#include <QTimer>
#include <functional>

class ConsoleState;

// The run log: every 50 ms Timer1 looks at the clock, and each time the save
// interval has passed it appends one row to the file of every machine that is
// online and running. The owner constructs it during start-up, calls
// loadSettings(), later markStart(), and start() to run Timer1 for the rest of
// the program's life.
class RunLogger : public QObject {
    Q_OBJECT
public:
    using Clock = std::function<QDateTime()>;

    // portOpen tells whether the serial port is open; rows are written only then.
    RunLogger(ConsoleState &state, std::function<bool()> portOpen, QObject *parent = nullptr);

    // Replaces the local clock (tests drive the log day and the interval with it).
    void setClock(Clock clock);
    QDateTime now() const;

    // Reads \CFG\SaveData.INI into the running settings (defaults as one block
    // on any failure) and creates the save folder if it does not exist.
    void loadSettings();
    // LastLogTime becomes the present time: the interval is counted from here.
    void markStart();
    void start() { Timer1.start(); }
    void stop() { Timer1.stop(); }
    QTimer *timer() { return &Timer1; }

    // The running settings, and the screen's save: SaveEnable, SaveInterval,
    // SaveUnit, SaveFolder and SaveFileName take effect from the next tick;
    // DailyFile and the day start stay as loaded until the next program start.
    const SaveSettings &settings() const { return m_settings; }
    void applySavedSettings(const SaveSettings &saved);

    const QString &home() const;
    qint32 LogSequence() const { return m_logSequence; }
    QDateTime LastLogTime() const { return m_lastLogTime; }

    // The line went away. Until a machine's present values have been read
    // anew (statusRead), it gets no row: the values the table still holds are
    // those of before, not of the time the line was away.
    void lineLost();
    void statusRead(int slot);

    // The file a machine's row goes to at the given moment.
    QString logFilePath(int machineNumber, const QDateTime &at) const;

public slots:
    // One tick of Timer1.
    void Timer1_Timer();

private:
    void writeMachineRow(int slot, const QDateTime &at);

    ConsoleState &m_state;
    std::function<bool()> m_portOpen;
    Clock m_clock;
    SaveSettings m_settings;
    qint32 m_logSequence = 0;
    QSet<int> m_unreadSinceLoss; // slots not read since the line went away
    QDateTime m_lastLogTime;
    QTimer Timer1;
};
