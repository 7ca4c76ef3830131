#pragma once
#include <QByteArray>
#include <QObject>
#include <QString>

// The serial port as the link sees it: open with a settings text, close,
// write, read what is waiting, clear the input, RTS, and a receive threshold:
// dataReceived() is raised when at least `threshold` bytes wait to be read.
class CommPort : public QObject {
    Q_OBJECT
public:
    enum class OpenResult { Ok, NotFound, InUse, Denied, Failed };

    using QObject::QObject;
    ~CommPort() override = default;

    // device: a path such as /dev/ttyUSB0; settings: "115200,N,8,1".
    virtual OpenResult open(const QString &device, const QString &settings) = 0;
    virtual void close() = 0;
    virtual bool isOpen() const = 0;
    virtual void write(const QByteArray &bytes) = 0;
    virtual QByteArray readAll() = 0;
    virtual qint64 bytesAvailable() const = 0;
    // The first n waiting bytes, left waiting.
    virtual QByteArray peek(qint64 n) const = 0;
    virtual void clearInput() = 0;
    virtual void setRts(bool on) = 0;
    // The device has gone (adapter pulled, far end closed) while open: it reads
    // nothing and writes nowhere until it is closed. lost() says so once.
    virtual bool vanished() const { return false; }

    void setReceiveThreshold(int bytes) { m_threshold = bytes; }
    int receiveThreshold() const { return m_threshold; }

signals:
    // At least the threshold's worth of bytes is waiting.
    void dataReceived();
    // Bytes arrived, however few (raised before dataReceived).
    void bytesWaiting();
    // The device went away while open: the platform's error number and text.
    // The port stays open (and silent) until it is closed.
    void lost(int error, const QString &why);

protected:
    // Implementations call this whenever bytes have arrived.
    void bytesArrived()
    {
        emit bytesWaiting();
        if (m_threshold > 0 && bytesAvailable() >= m_threshold)
            emit dataReceived();
    }

private:
    int m_threshold = 1;
};

// Parses "115200,N,8,1". False when a part is not understood.
struct PortSettings {
    int baud = 115200;
    char parity = 'N';
    int dataBits = 8;
    int stopBits = 1;
    static bool parse(const QString &text, PortSettings *out);
};

// COMn to a device: PortMap.CFG in the program's folder ("COM3=/dev/ttyUSB0"),
// else /dev/ttyS<n-1>.
QString mapPortDevice(const QString &home, int portNo);
