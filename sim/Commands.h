// The control language of the simulator: one command a line, one answer line
// each ("ok", "error: ...", or the value asked for). Used by the control socket
// and by start-up scripts.
#pragma once

#include <QLocalServer>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>

class Line;
class SimClock;

class Commands {
public:
    Commands(Line &line, SimClock &clock, std::function<void()> quit);

    // No value for a blank or comment line, which needs no answer.
    std::optional<QString> execute(const QString &line);

    // What unplug and plug do to the line (true: plug in); the answer is
    // that of the command. Without it both answer with an error.
    void setLineSwitch(std::function<QString(bool plugIn)> lineSwitch) { m_lineSwitch = std::move(lineSwitch); }

    // The commands and the faults, for --help.
    static QString help();

private:
    QString fault(const QStringList &t);
    QString set(const QStringList &t, const QString &line);
    QString get(const QStringList &t);
    QString programs(const QStringList &t);
    QString dump(const QStringList &t);

    Line &m_line;
    SimClock &m_clock;
    std::function<void()> m_quit;
    std::function<QString(bool)> m_lineSwitch;
};

class ControlServer : public QObject {
    Q_OBJECT
public:
    ControlServer(Commands &commands, QObject *parent = nullptr);
    bool listen(const QString &path, QString *error);

private:
    void accept();

    Commands &m_commands;
    QLocalServer m_server;
};
