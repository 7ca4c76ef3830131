#pragma once
#include "CommPort.h"
#include <QByteArrayList>
#include <QTimer>
#include <functional>
#include <utility>

// An in-memory serial port: the test feeds bytes in and reads what was written.
class FakeCommPort : public CommPort {
    Q_OBJECT
public:
    using CommPort::CommPort;

    QString openedSettings;
    QByteArrayList written; // one entry per write call
    QList<bool> rtsChanges;
    // Answers each frame written (not the RTS zero byte) a millisecond later;
    // an empty answer is silence.
    std::function<QByteArray(const QByteArray &)> responder;

    // False while the device is gone: opening it fails as for a missing device.
    bool present = true;
    int openAttempts = 0;

    OpenResult open(const QString &device, const QString &settings) override
    {
        ++openAttempts;
        if (!present)
            return OpenResult::NotFound;
        openedDevice = device;
        openedSettings = settings;
        m_open = true;
        return OpenResult::Ok;
    }
    QString openedDevice;

    // The device goes away while open, as a pulled adapter: it stays open for
    // the console, silent, until closed, and cannot be opened again until
    // `present` is true again.
    void vanish()
    {
        present = false;
        m_input.clear();
        emit lost(9, QStringLiteral("Resource error"));
    }
    void close() override { m_open = false; m_input.clear(); }
    bool isOpen() const override { return m_open; }
    void write(const QByteArray &bytes) override
    {
        if (!m_open || !present)
            return;
        written << bytes;
        if (responder && bytes != QByteArray(1, '\0')) {
            const QByteArray reply = responder(bytes);
            if (!reply.isEmpty())
                QTimer::singleShot(1, this, [this, reply] {
                    if (m_open)
                        feed(reply);
                });
        }
    }
    QByteArray readAll() override { return std::exchange(m_input, {}); }
    qint64 bytesAvailable() const override { return m_input.size(); }
    QByteArray peek(qint64 n) const override { return m_input.left(n); }
    void clearInput() override { m_input.clear(); }
    void setRts(bool on) override { rtsChanges << on; }

    // Bytes arriving from the line.
    void feed(const QByteArray &bytes)
    {
        m_input += bytes;
        bytesArrived();
    }
    // The last frame written, RTS zero bytes aside.
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
