#pragma once
#include "CommPort.h"
#include <QSerialPort>

// CommPort on a real serial device or pseudo-terminal.
class QtCommPort : public CommPort {
    Q_OBJECT
public:
    explicit QtCommPort(QObject *parent = nullptr);
    OpenResult open(const QString &device, const QString &settings) override;
    void close() override;
    bool isOpen() const override { return m_open; }
    void write(const QByteArray &bytes) override;
    QByteArray readAll() override;
    qint64 bytesAvailable() const override;
    QByteArray peek(qint64 n) const override;
    void clearInput() override;
    void setRts(bool on) override;
    bool vanished() const override { return m_vanished; }
    QString lastError() const { return m_lastError; }

private:
    void onError(QSerialPort::SerialPortError error);

    QSerialPort m_port;
    bool m_open = false;      // open as far as the console is concerned
    bool m_vanished = false;  // the device went away while open
    bool m_opening = false;
    QString m_lastError;
};
