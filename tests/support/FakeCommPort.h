#pragma once
#include "CommPort.h"
#include <QByteArrayList>
#include <QTimer>
#include <functional>

// An in-memory serial port: the test feeds bytes in and reads what was written.
class FakeCommPort : public CommPort {
    Q_OBJECT
public:
    using CommPort::CommPort;

    OpenResult openResult = OpenResult::Ok;
    QString openedDevice;
    QString openedSettings;
    QByteArrayList written;   // one entry per write call
    QList<bool> rtsChanges;
    int clearCount = 0;

    OpenResult open(const QString &device, const QString &settings) override
    {
        openedDevice = device;
        openedSettings = settings;
        if (openResult == OpenResult::Ok)
            m_open = true;
        return openResult;
    }
    void close() override { m_open = false; m_input.clear(); }
    bool isOpen() const override { return m_open; }
    void write(const QByteArray &bytes) override
    {
        if (!m_open)
            return;
        written << bytes;
        if (responder && bytes != QByteArray(1, '\0')) {
            const QByteArray reply = responder(bytes);
            if (!reply.isEmpty())
                QTimer::singleShot(replyDelayMs, this, [this, reply] {
                    if (m_open)
                        feed(reply);
                });
        }
    }

    // Answers each frame written (not the RTS zero byte) after replyDelayMs;
    // an empty answer is silence.
    std::function<QByteArray(const QByteArray &)> responder;
    int replyDelayMs = 1;
    QByteArray readAll() override
    {
        QByteArray b = m_input;
        m_input.clear();
        return b;
    }
    qint64 bytesAvailable() const override { return m_input.size(); }
    QByteArray peek(qint64 n) const override { return m_input.left(n); }
    void clearInput() override
    {
        m_input.clear();
        ++clearCount;
    }
    void setRts(bool on) override { rtsChanges << on; }

    // Bytes arriving from the line.
    void feed(const QByteArray &bytes)
    {
        m_input += bytes;
        bytesArrived();
    }
    // Everything written, frames joined (zero bytes of RTS control included).
    QByteArray allWritten() const { return written.join(); }
    QByteArray lastFrame() const
    {
        for (qsizetype i = written.size() - 1; i >= 0; --i)
            if (written[i] != QByteArray(1, '\0'))
                return written[i];
        return {};
    }

private:
    bool m_open = false;
    QByteArray m_input;
};
