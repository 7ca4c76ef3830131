// The simulator's end of the serial line: a pseudo-terminal whose slave the
// console opens (optionally under a symbolic link), or an existing device.
// Output is paced at the wire speed of the configured baud rate.
#pragma once

#include "Line.h"

#include <QElapsedTimer>
#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <QTimer>

#include <deque>

class SerialEndpoint : public QObject {
    Q_OBJECT
public:
    SerialEndpoint(int baud, bool pace, QObject *parent = nullptr);
    ~SerialEndpoint() override;

    bool openPty(QString *error);
    bool openDevice(const QString &path, QString *error);
    // Makes `link` a symbolic link to the pty slave; it is removed again on destruction.
    bool makeLink(const QString &link, QString *error);
    QString deviceName() const { return m_device; }

    // The line taken away as a pulled adapter takes it: the pseudo-terminal
    // closes, so that the far side sees its device vanish, and the link goes.
    bool unplug(QString *error);
    // A new pseudo-terminal under the same link.
    bool plug(QString *error);

public slots:
    void send(const QList<Piece> &pieces);

signals:
    void received(const QByteArray &bytes);

private:
    void startReading();
    void closeDevice();
    void onReadable();
    void pump();

    struct Pending {
        QByteArray bytes;
        int pauseMs = 0;
        qint64 startAt = -1;
        qsizetype sent = 0;
    };

    int m_baud;
    bool m_pace;
    int m_fd = -1;
    int m_slaveFd = -1;  // held open so that the console may close and reopen its side
    QString m_device;
    QString m_link;
    QSocketNotifier *m_notifier = nullptr;
    QTimer m_rearm;
    QTimer m_pump;
    QElapsedTimer m_clock;
    std::deque<Pending> m_queue;
    qint64 m_lastEnd = 0;
    qint64 m_lastProgress = 0;
};
