#include "QtCommPort.h"

QtCommPort::QtCommPort(QObject *parent) : CommPort(parent)
{
    connect(&m_port, &QSerialPort::readyRead, this, [this] { bytesArrived(); });
    connect(&m_port, &QSerialPort::errorOccurred, this, &QtCommPort::onError);
}

CommPort::OpenResult QtCommPort::open(const QString &device, const QString &settingsText)
{
    if (m_open)
        close();
    PortSettings s;
    if (!PortSettings::parse(settingsText, &s)) {
        m_lastError = QStringLiteral("Invalid port settings: ") + settingsText;
        return OpenResult::Failed;
    }
    m_port.setPortName(device);
    m_port.setBaudRate(s.baud);
    m_port.setDataBits(QSerialPort::DataBits(s.dataBits));
    m_port.setStopBits(s.stopBits == 2 ? QSerialPort::TwoStop : QSerialPort::OneStop);
    switch (s.parity) {
    case 'E': m_port.setParity(QSerialPort::EvenParity); break;
    case 'O': m_port.setParity(QSerialPort::OddParity); break;
    case 'M': m_port.setParity(QSerialPort::MarkParity); break;
    case 'S': m_port.setParity(QSerialPort::SpaceParity); break;
    default: m_port.setParity(QSerialPort::NoParity);
    }
    m_port.setFlowControl(QSerialPort::NoFlowControl);
    m_opening = true; // the error of a failed open is read here, not cleared by onError
    const bool opened = m_port.open(QIODevice::ReadWrite);
    m_opening = false;
    if (!opened) {
        const auto err = m_port.error();
        m_lastError = m_port.errorString();
        m_port.clearError();
        if (err == QSerialPort::DeviceNotFoundError)
            return OpenResult::NotFound;
        if (err == QSerialPort::PermissionError)
            return m_lastError.contains(QLatin1String("lock"), Qt::CaseInsensitive) ? OpenResult::InUse
                                                                                     : OpenResult::Denied;
        return OpenResult::Failed;
    }
    // Settings applied after the open too: some drivers ignore them before.
    m_port.setBaudRate(s.baud);
    m_open = true;
    m_vanished = false;
    m_lastError.clear();
    return OpenResult::Ok;
}

void QtCommPort::close()
{
    if (m_port.isOpen())
        m_port.close();
    m_open = false;
    m_vanished = false;
}

void QtCommPort::write(const QByteArray &bytes)
{
    if (!m_open || m_vanished || !m_port.isOpen())
        return;
    m_port.write(bytes);
}

QByteArray QtCommPort::readAll()
{
    if (!m_port.isOpen())
        return {};
    return m_port.readAll();
}

qint64 QtCommPort::bytesAvailable() const
{
    return m_port.isOpen() ? m_port.bytesAvailable() : 0;
}

QByteArray QtCommPort::peek(qint64 n) const
{
    return m_port.isOpen() ? const_cast<QSerialPort &>(m_port).peek(n) : QByteArray();
}

void QtCommPort::clearInput()
{
    if (!m_port.isOpen())
        return;
    m_port.clear(QSerialPort::Input);
    m_port.readAll(); // what Qt has already buffered
}

void QtCommPort::setRts(bool on)
{
    if (!m_port.isOpen())
        return;
    // Pseudo-terminals refuse the RTS line; that is harmless for the link.
    if (!m_port.setRequestToSend(on))
        m_port.clearError();
}

void QtCommPort::onError(QSerialPort::SerialPortError error)
{
    if (m_opening)
        return;
    if (error == QSerialPort::ResourceError || error == QSerialPort::ReadError) {
        // The device is gone. The device itself is let go at once (a gone
        // device would keep waking the event loop); the port counts as open,
        // and silent, until its owner closes it on lost().
        if (m_open && !m_vanished) {
            m_vanished = true;
            m_lastError = m_port.errorString();
            m_port.clearError();
            QMetaObject::invokeMethod(
                this,
                [this, error] {
                    if (m_vanished && m_port.isOpen())
                        m_port.close();
                    if (m_vanished)
                        emit lost(int(error), m_lastError);
                },
                Qt::QueuedConnection);
        }
    } else if (error != QSerialPort::NoError) {
        m_port.clearError();
    }
}
