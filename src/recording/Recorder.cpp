#include "Recorder.h"
#include "ConsoleState.h"

Recorder::Recorder(ConsoleState &state, std::function<bool()> portOpen, QString sender, QObject *parent)
    : QObject(parent), m_state(state), m_runLog(state, std::move(portOpen)),
      m_mail(m_db, state.home, std::move(sender)), m_events(state, &m_mail)
{
}

bool Recorder::openDatabase()
{
    return m_db.open(m_state.path(QStringLiteral("\\EMail.mdb")));
}

void Recorder::loadSaveSettings()
{
    m_runLog.loadSettings();
}

void Recorder::start()
{
    m_runLog.markStart();
    m_mail.loadSettings();
    m_runLog.start();
}

void Recorder::closeDatabase()
{
    m_db.close();
}

void Recorder::setClock(std::function<QDateTime()> clock)
{
    m_runLog.setClock(clock);
    m_mail.setClock(clock);
    m_events.setClock(clock);
}

void Recorder::runStateStored(int slot, bool wasRunning, bool nowRunning)
{
    m_events.runStateStored(slot, wasRunning, nowRunning);
}

void Recorder::statusStepBegin(int slot)
{
    m_events.statusStepBegin(slot);
}

void Recorder::statusWord(int slot, int row, const QString &oldCell, int newWord)
{
    m_events.statusWord(slot, row, oldCell, newWord);
}

void Recorder::statusStepEnd(int slot)
{
    m_events.statusStepEnd(slot);
    m_runLog.statusRead(slot);
}

void Recorder::lineLost()
{
    m_runLog.lineLost();
}
