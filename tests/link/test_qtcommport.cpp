// The serial port on real pseudo-terminals: how an open fails, the receive
// threshold, and a device that vanishes while open.
#include "QtCommPort.h"
#include <QSignalSpy>
#include <QtTest>
#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace {
struct Pty {
    int master = -1, slave = -1;
    QString path;
    Pty()
    {
        char name[256] = {};
        struct termios tio {};
        cfmakeraw(&tio);
        if (::openpty(&master, &slave, name, &tio, nullptr) == 0)
            path = QString::fromLocal8Bit(name);
    }
    ~Pty()
    {
        closeMaster();
        if (slave >= 0)
            ::close(slave);
    }
    void closeMaster()
    {
        if (master >= 0)
            ::close(master);
        master = -1;
    }
    void send(const QByteArray &b) { QCOMPARE(::write(master, b.constData(), size_t(b.size())), ssize_t(b.size())); }
};
} // namespace

class QtCommPortTest : public QObject {
    Q_OBJECT
private slots:
    void openResultsTellTheCause()
    {
        QtCommPort port;
        QCOMPARE(port.open(QStringLiteral("/dev/qm730-no-such-port"), QStringLiteral("9600,N,8,1")),
                 CommPort::OpenResult::NotFound);
        QVERIFY(!port.isOpen());
        Pty pty;
        QCOMPARE(port.open(pty.path, QStringLiteral("115200,N,8,1")), CommPort::OpenResult::Ok);
        QtCommPort second;
        QCOMPARE(second.open(pty.path, QStringLiteral("115200,N,8,1")), CommPort::OpenResult::InUse);
        port.close();
        QCOMPARE(second.open(pty.path, QStringLiteral("115200,N,8,1")), CommPort::OpenResult::Ok);
        QtCommPort bad;
        QCOMPARE(bad.open(pty.path, QStringLiteral("115200,N,9,1")), CommPort::OpenResult::Failed);
    }

    void thresholdRaisesTheEvent()
    {
        Pty pty;
        QtCommPort port;
        QCOMPARE(port.open(pty.path, QStringLiteral("115200,N,8,1")), CommPort::OpenResult::Ok);
        QSignalSpy received(&port, &CommPort::dataReceived);
        port.setReceiveThreshold(8);
        pty.send("abcde");
        QTRY_COMPARE(port.bytesAvailable(), qint64(5));
        QTest::qWait(50);
        QCOMPARE(received.size(), 0);
        QCOMPARE(port.peek(2), QByteArray("ab"));
        pty.send("fgh");
        QTRY_COMPARE(received.size(), 1);
        QCOMPARE(port.readAll(), QByteArray("abcdefgh"));
        pty.send("xyz");
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
