#pragma once
#include "StatusListener.h"
#include <QDateTime>
#include <QString>
#include <functional>
#include <stdexcept>

class ConsoleState;
class MailNotifier;

// Thrown when an event line cannot be written. It ends the store routine that
// called the listener; the receive path writes it to Err.LOG with its place
// ("Disp_RRP", "Disp_RCV"), and the words not yet reached keep their old text.
class EventWriteError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The event history of every machine: start and end of runs, burn-outs, and
// the bit changes of the signal, alarm and I/O words, one dated line each in
// <home>/ActionHistory/H<machine number>.USE. The status words also go to the
// mail notifier, when one is given.
class EventHistory : public StatusListener {
public:
    using Clock = std::function<QDateTime()>;

    explicit EventHistory(ConsoleState &state, MailNotifier *mail = nullptr);

    void setClock(Clock clock);

    // Appends "YYYY-MM-DD HH:MM:SS", tab, text, CR LF to the slot's machine
    // file; the folder is created if missing. Throws EventWriteError on failure.
    void WriteEvent(int slot, const QString &text);

    // StatusListener
    void runStateStored(int slot, bool wasRunning, bool nowRunning) override;
    void statusStepBegin(int slot) override;
    void statusWord(int slot, int row, const QString &oldCell, int newWord) override;
    void statusStepEnd(int slot) override;

private:
    void bitEvents(int slot, const QString &name, qint64 oldWord, qint64 newWord);
    void alarmEvents(int slot, qint64 oldWord, qint64 newWord);
    void notifyMail(int row, qint64 oldWord, qint64 newWord);

    ConsoleState &m_state;
    MailNotifier *m_mail;
    Clock m_clock;
};
