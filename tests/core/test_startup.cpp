// The console's start-up as the program runs it: the reply time-out is fixed
// from the baud rate of CommPort.CFG and the extra wait of CommWait.TM.
#include "ConsoleCore.h"
#include "TestHome.h"
#include <QFile>
#include <QtTest>

class StartupTest : public QObject {
    Q_OBJECT
private slots:
    void replyTimeoutByBaudAndWait_data()
    {
        QTest::addColumn<QString>("baud");
        QTest::addColumn<QString>("wait"); // CommWait.TM's line; null: no file
        QTest::addColumn<int>("timeout");
        // The family's own amounts: 4800 waits less than 9600.
        QTest::newRow("4800") << "4800" << QString() << 1000;
        QTest::newRow("9600") << "9600" << QString() << 1200;
        QTest::newRow("115200") << "115200" << QString() << 500;
        QTest::newRow("4800 +250") << "4800" << "250" << 1250;
        QTest::newRow("9600 +250") << "9600" << "250" << 1450;
        QTest::newRow("115200 +250") << "115200" << "250" << 750;
        // A baud the table does not know keeps 500, without the extra wait.
        QTest::newRow("14400 +250") << "14400" << "250" << 500;
    }

    void replyTimeoutByBaudAndWait()
    {
        QFETCH(QString, baud);
        QFETCH(QString, wait);
        QFETCH(int, timeout);
        TestHome home;
        writeCommPortCfg(home.path(), {"COM1", baud, "N", "8", "1", "PC Link", "OFF"});
        const QString waitFile = home.path() + "/CommWait.TM";
        if (!wait.isNull())
            QVERIFY(writeTextLinesAtomic(waitFile, {wait}));
        ConsoleCore core(home.path());
        QCOMPARE(core.start(), ConsoleCore::StartResult::Ok);
        QCOMPARE(core.link().replyTimeoutMs(), timeout);
        if (wait.isNull()) { // written anew with "0"
            QFile f(waitFile);
            QVERIFY(f.open(QIODevice::ReadOnly));
            QCOMPARE(f.readAll(), QByteArray("0\r\n"));
        }
    }
};

QTEST_GUILESS_MAIN(StartupTest)
#include "test_startup.moc"
