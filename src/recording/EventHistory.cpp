#include "EventHistory.h"
#include "ConsoleState.h"
#include "Files.h"
#include "MailNotifier.h"
#include "RecordFiles.h"
#include <QDir>
#include <cmath>

namespace {

// The burn-out window of rows 2 and 5, on the raw word.
bool outOfWindow(qint64 word)
{
    return word <= -999 || word >= 999;
}

const char *onOff(bool on)
{
    return on ? " ON" : " OFF";
}

} // namespace

EventHistory::EventHistory(ConsoleState &state, MailNotifier *mail) : m_state(state), m_mail(mail)
{
    setClock({});
}

void EventHistory::setClock(Clock clock)
{
    m_clock = clock ? std::move(clock) : Clock([] { return QDateTime::currentDateTime(); });
}

void EventHistory::WriteEvent(int slot, const QString &text)
{
    if (slot < 0 || slot > m_state.MachineLast())
        throw EventWriteError("no machine in slot " + std::to_string(slot));
    QDir().mkpath(historyFolder(m_state.home));
    const QString path = eventFilePath(m_state.home, m_state.machines[slot].MachineNumber);
    const QString line = m_clock().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) + u'\t' + text + QStringLiteral("\r\n");
    if (!appendWhole(path, line.toUtf8()))
        throw EventWriteError("cannot append to " + path.toStdString());
}

void EventHistory::runStateStored(int slot, bool wasRunning, bool nowRunning)
{
    if (slot < 0 || slot > m_state.MachineLast())
        return;
    const QString mode = m_state.machines[slot].MachineRunMode;
    if (mode.isEmpty())
        return;
    if (nowRunning && !wasRunning)
        WriteEvent(slot, mode + QStringLiteral("RUN Start."));
    else if (!nowRunning && wasRunning)
        WriteEvent(slot, mode + QStringLiteral("RUN End."));
}

void EventHistory::statusStepBegin(int)
{
    if (m_mail)
        m_mail->beginStep();
}

void EventHistory::statusWord(int slot, int row, const QString &oldCell, int newWord)
{
    if (slot < 0 || slot > m_state.MachineLast())
        return;
    if (m_mail)
        m_mail->beginWord(m_state.machines[slot].MachineNumber);

    const bool known = !oldCell.isEmpty();
    const qint64 oldWord = known ? qint64(std::nearbyint(leadingNumber(oldCell))) : 0;
    if (known) {
        switch (row) {
        case 2:
        case 5:
            if (outOfWindow(oldWord) != outOfWindow(newWord)) {
                const QString name = row == 2 ? QStringLiteral("Temp. B.Out") : QStringLiteral("Humi. B.Out");
                WriteEvent(slot, name + QLatin1String(onOff(outOfWindow(newWord))));
            }
            break;
        case 7: bitEvents(slot, QStringLiteral("I/S"), oldWord, newWord); break;
        case 8: bitEvents(slot, QStringLiteral("T/S"), oldWord, newWord); break;
        case 9: alarmEvents(slot, oldWord, newWord); break;
        case 10: bitEvents(slot, QStringLiteral("RY"), oldWord, newWord); break;
        case 11: bitEvents(slot, QStringLiteral("O/C"), oldWord, newWord); break;
        case 12: bitEvents(slot, QStringLiteral("D/I"), oldWord, newWord); break;
        default: break;
        }
    }
    notifyMail(row, oldWord, newWord);
}

void EventHistory::statusStepEnd(int)
{
    if (m_mail)
        m_mail->handOver();
}

void EventHistory::bitEvents(int slot, const QString &name, qint64 oldWord, qint64 newWord)
{
    if (oldWord == newWord)
        return;
    for (int bit = 0; bit < 8; ++bit) {
        const bool was = (oldWord >> bit) & 1;
        const bool now = (newWord >> bit) & 1;
        if (was != now)
            WriteEvent(slot, name + u' ' + QString::number(bit + 1) + QLatin1String(onOff(now)));
    }
}

// The low four bits are written as system alarms and the high four as
// pattern alarms, each pair in turn; the mail names them the other way round.
void EventHistory::alarmEvents(int slot, qint64 oldWord, qint64 newWord)
{
    if (oldWord == newWord)
        return;
    for (int i = 0; i < 4; ++i) {
        for (int bit : {i, i + 4}) {
            const bool was = (oldWord >> bit) & 1;
            const bool now = (newWord >> bit) & 1;
            if (was != now)
                WriteEvent(slot, (bit < 4 ? QStringLiteral("SYS Alarm ") : QStringLiteral("PTN Alarm "))
                                     + QString::number(i + 1) + QLatin1String(onOff(now)));
        }
    }
}

void EventHistory::notifyMail(int row, qint64 oldWord, qint64 newWord)
{
    if (!m_mail)
        return;
    switch (row) {
    case 2: m_mail->notify(QStringLiteral("Temp B.Out"), oldWord, newWord); break;
    case 5: m_mail->notify(QStringLiteral("Humi B.Out"), oldWord, newWord); break;
    case 7:
        m_mail->notify(QStringLiteral("I/S"), oldWord, newWord);
        m_mail->notify(QStringLiteral("T.ON"), oldWord / 256, newWord / 256);
        m_mail->notify(QStringLiteral("H.ON"), oldWord / 4096, newWord / 4096);
        break;
    case 8: m_mail->notify(QStringLiteral("T/S"), oldWord, newWord); break;
    case 9:
        m_mail->notify(QStringLiteral("P.ALM"), oldWord, newWord);
        m_mail->notify(QStringLiteral("S.ALM"), oldWord / 16, newWord / 16);
        break;
    case 10: m_mail->notify(QStringLiteral("RELAY OUTPUT"), oldWord, newWord); break;
    case 11: m_mail->notify(QStringLiteral("O/C OUTPUT"), oldWord, newWord); break;
    case 12: m_mail->notify(QStringLiteral("D/I"), oldWord, newWord); break;
    default: break;
    }
}
