#pragma once
#include "MailSettings.h"
#include <QDateTime>
#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>

class mdlADO;

// Turns changes of a machine's signal and alarm words into rows of SendMail
// and starts the mail sender when a status step has queued something.
//
// A status step runs beginStep(), then for each word beginWord() and the
// notify() calls for that word, then handOver().
class MailNotifier : public QObject {
    Q_OBJECT
public:
    // Starts a program detached: program, arguments, working folder. True when it started.
    using Launcher = std::function<bool(const QString &, const QStringList &, const QString &)>;
    using Clock = std::function<QDateTime()>;

    static constexpr const char *Title = "QM730 Alarm Status";

    // home: the program's folder (working folder and --home of the sender).
    // sender: path of qm730-mail; empty means "qm730-mail" beside this program.
    MailNotifier(mdlADO &db, QString home, QString sender = {}, QObject *parent = nullptr);

    // Settings at start-up from \CFG\SetEMail.CFG; without a readable file mail is off.
    void loadSettings();
    const MailSettings &settings() const { return m_settings; }
    // The screen's OK: takes the settings as given (MailEnabled and MailToList
    // already computed), writes the settings file and the SetMail row, which
    // clears SendNG.
    void saveSettings(const MailSettings &s);

    mdlADO &database() { return m_db; }
    const QString &home() const { return m_home; }

    void setLauncher(Launcher launcher);
    void setClock(Clock clock);
    QString senderProgram() const { return m_sender; }
    void setSenderProgram(const QString &path) { m_sender = path; }

    void beginStep();
    void beginWord(int machineNumber);
    // One rule: label as passed by the event history ("I/S", "T.ON", "H.ON",
    // "T/S", "P.ALM", "S.ALM", "RELAY OUTPUT", "O/C OUTPUT", "D/I",
    // "Temp B.Out", "Humi B.Out"), the old word (0 when not yet read) and the new.
    void notify(const QString &label, qint64 oldWord, qint64 newWord);
    // Starts the sender when this step queued mail, mail is on and the sender
    // has not reported a failure (SendNG below 1).
    void handOver();

    QString MailTitle() const { return m_title; }
    QString MailBody() const { return m_body; }
    int MailCount() const { return m_count; }

private:
    mdlADO &m_db;
    QString m_home;
    QString m_sender;
    Launcher m_launch;
    Clock m_clock;
    MailSettings m_settings;
    QString m_title;
    QString m_body;
    int m_count = 0;
};
