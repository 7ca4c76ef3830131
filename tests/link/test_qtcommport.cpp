// The serial port on real pseudo-terminals: settings a device refuses, the
// receive threshold, and a device that vanishes while open.
#include "Pty.h"
#include "QtCommPort.h"
#include <QSignalSpy>
#include <QtTest>

class QtCommPortTest : public QObject {
    Q_OBJECT
private slots:
    void settingsTheDeviceRefusesFail()
    {
        // Missing, free and held devices are told apart on the port page (settings_setport).
        Pty pty;
        QtCommPort bad;
        QCOMPARE(bad.open(pty.path, QStringLiteral("115200,N,9,1")), CommPort::OpenResult::Failed);
        QVERIFY(!bad.isOpen());
    }

    void thresholdRaisesTheEvent()
    {
        Pty pty;
        QtCommPort port;
        QCOMPARE(port.open(pty.path, QStringLiteral("115200,N,8,1")), CommPort::OpenResult::Ok);
        QSignalSpy received(&port, &CommPort::dataReceived);
        port.setReceiveThreshold(8);
        QVERIFY(pty.send("abcde"));
        QTRY_COMPARE(port.bytesAvailable(), qint64(5));
        QTest::qWait(50);
        QCOMPARE(received.size(), 0);
        QCOMPARE(port.peek(2), QByteArray("ab"));
        QVERIFY(pty.send("fgh"));
        QTRY_COMPARE(received.size(), 1);
        QCOMPARE(port.readAll(), QByteArray("abcdefgh"));
        QVERIFY(pty.send("xyz"));
        QTRY_COMPARE(port.bytesAvailable(), qint64(3));
        port.clearInput();
        QCOMPARE(port.bytesAvailable(), qint64(0));
        port.setRts(true); // a pty refuses RTS; harmless
        QVERIFY(port.isOpen());
    }

    void vanishedDeviceIsASilentLine()
    {
        auto *pty = new Pty;
        QtCommPort port;
        QCOMPARE(port.open(pty->path, QStringLiteral("115200,N,8,1")), CommPort::OpenResult::Ok);
        const QString path = pty->path;
        delete pty; // the adapter is pulled out
        port.write("\x02" "001WHO\x03\r\n");
        QTRY_VERIFY(port.vanished());
        QVERIFY(port.isOpen()); // still open for the console, until the operator closes it
        port.write("more");
        QCOMPARE(port.readAll(), QByteArray());
        port.close();
        QVERIFY(!port.isOpen());
        QVERIFY(!port.vanished());
        QCOMPARE(port.open(path, QStringLiteral("115200,N,8,1")), CommPort::OpenResult::NotFound);
    }
};

QTEST_GUILESS_MAIN(QtCommPortTest)
#include "test_qtcommport.moc"
