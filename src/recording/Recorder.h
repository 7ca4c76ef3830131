#pragma once
#include "EventHistory.h"
#include "MailNotifier.h"
#include "RunLogger.h"
#include "StatusListener.h"
#include "mdlADO.h"
#include <QObject>
#include <functional>

class ConsoleState;

// Recording and notification as one piece for the console's core: the run
// log, the event history and the mail queue over one mail database. It is the
// StatusListener of the receive path.
//
// Start-up, in this order:
//   openDatabase()      first of all; false: show "File not found." and end
//   loadSaveSettings()  with the other settings files
//   start()             at the end: counts the log interval from now, reads
//                       the e-mail settings and runs Timer1
class Recorder : public QObject, public StatusListener {
    Q_OBJECT
public:
    // portOpen: whether the serial port is open. sender: path of qm730-mail,
    // empty for the one beside this program.
    Recorder(ConsoleState &state, std::function<bool()> portOpen, QString sender = {}, QObject *parent = nullptr);

    bool openDatabase();
    void loadSaveSettings();
    void start();
    void closeDatabase();

    // Replaces the local clock of all three parts.
    void setClock(std::function<QDateTime()> clock);

    RunLogger &runLog() { return m_runLog; }
    EventHistory &events() { return m_events; }
    MailNotifier &mail() { return m_mail; }
    mdlADO &database() { return m_db; }

    // StatusListener: delegated to the event history, which drives the mail.
    void runStateStored(int slot, bool wasRunning, bool nowRunning) override;
    void statusStepBegin(int slot) override;
    void statusWord(int slot, int row, const QString &oldCell, int newWord) override;
    void statusStepEnd(int slot) override;

    // The serial line went away (the port is closed): see RunLogger::lineLost.
    void lineLost();

private:
    ConsoleState &m_state;
    mdlADO m_db;
    RunLogger m_runLog;
    MailNotifier m_mail;
    EventHistory m_events;
};
