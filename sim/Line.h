// The serial line with its controllers: finds request frames in the incoming
// bytes, lets the addressed controller answer, and applies switched-on faults.
#pragma once

#include "Controller.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include <deque>
#include <map>
#include <memory>
#include <optional>

// The values are the controller's own protocol setting row.
enum class Protocol { PcLink = 0, PcLinkSum = 1, ModbusRtu = 2 };
QString protocolName(Protocol protocol);
std::optional<Protocol> parseProtocol(const QString &name);

// Cut: only the first half of each reply goes out, as when the line is lost
// in the middle of a reply.
enum class Fault { Silent, Split, Noise, BadSum, BadEtx, BadEtxThenGood, Exception, Delay, WrongMachine, Short, NoQm, Cut };
std::optional<Fault> parseFault(const QString &name);
// Every fault by its name, each with what it does to a reply.
QList<std::pair<QString, QString>> faultHelp();

// One piece of output, written after a pause counted from the end of the piece before.
struct Piece {
    QByteArray bytes;
    int pauseMs = 0;
};

class Line : public QObject {
    Q_OBJECT
public:
    Line(Protocol protocol, int turnaroundMs, QObject *parent = nullptr);

    Protocol protocol() const { return m_protocol; }
    void addController(std::unique_ptr<Controller> controller);
    Controller *controller(int number) const;
    QList<Controller *> controllers() const;

    // `ms` sets the pause of split and the extra wait of delay when given.
    void setFault(int machine, Fault fault, bool on, std::optional<int> ms);

    // "machine:received:answered ... other:N bad:N skipped:N"
    QString stats() const;
    QString stats(int machine) const;  // "received answered"
    void clearStats();
    // Every request frame received, in hex, oldest first.
    QStringList log() const;
    void clearLog();

public slots:
    void receive(const QByteArray &bytes);

signals:
    void send(const QList<Piece> &pieces);
    // "rx" for each request frame, "tx" for each reply as written.
    void traced(const QString &direction, const QByteArray &bytes);

private:
    struct Faults {
        std::map<Fault, bool> on;
        int splitMs = 100;
        int delayMs = 1000;
        bool has(Fault f) const;
    };
    struct Counts {
        int received = 0;
        int answered = 0;
    };

    void scan(bool idle);
    void handlePcLink(const QByteArray &frame);
    void handleModbus(const QByteArray &frame);
    void noteReceived(const QByteArray &frame);
    void answer(int machine, const QByteArray &reply);

    Protocol m_protocol;
    int m_turnaroundMs;
    std::map<int, std::unique_ptr<Controller>> m_controllers;
    std::map<int, Faults> m_faults;
    std::map<int, Counts> m_counts;
    int m_other = 0, m_bad = 0, m_skipped = 0;
    std::deque<QByteArray> m_log;
    QByteArray m_buffer;
    QTimer m_idle;
};
