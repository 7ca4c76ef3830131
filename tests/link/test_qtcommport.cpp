// The serial port on real pseudo-terminals: settings a device refuses, the
// receive threshold, and a device that vanishes while open.
#include "Pty.h"
#include "QtCommPort.h"
#include <QSignalSpy>
#include <QtTest>

class QtCommPortTest : public QObject {
    Q_OBJECT
private slots:
    // (Missing, free and held devices are told apart on the port page, settings_setport.)
    void refusedSettingsAndTheThreshold()
    {
        Pty pty;
        QtCommPort port;
        QCOMPARE(port.open(pty.path, QStringLiteral("115200,N,9,1")), CommPort::OpenResult::Failed);
        QVERIFY(!port.isOpen());
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

    void vanishedDeviceIsReportedOnce()
    {
        auto *pty = new Pty;
        QtCommPort port;
        QCOMPARE(port.open(pty->path, QStringLiteral("115200,N,8,1")), CommPort::OpenResult::Ok);
        QSignalSpy lost(&port, &CommPort::lost);
        const QString path = pty->path;
        delete pty; // the adapter is pulled out: noticed without a word being written
        QTRY_COMPARE(lost.size(), 1);
        const int error = lost.first().at(0).toInt();
        QVERIFY2(error == QSerialPort::ReadError || error == QSerialPort::ResourceError, qPrintable(QString::number(error)));
        QVERIFY(!lost.first().at(1).toString().isEmpty());
        QVERIFY(port.vanished());
        QVERIFY(port.isOpen()); // open for its owner, and silent, until closed
        port.write("more");
        QCOMPARE(port.readAll(), QByteArray());
        QTest::qWait(100);
        QCOMPARE(lost.size(), 1);
        port.close();
        QVERIFY(!port.isOpen());
        QVERIFY(!port.vanished());
        QCOMPARE(port.open(path, QStringLiteral("115200,N,8,1")), CommPort::OpenResult::NotFound);
    }
};

QTEST_GUILESS_MAIN(QtCommPortTest)
#include "test_qtcommport.moc"
