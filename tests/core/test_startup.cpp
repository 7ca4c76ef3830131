// The console's start-up fixes the reply time-out from the baud rate of
// CommPort.CFG and the extra wait of CommWait.TM.
#include "ConsoleCore.h"
#include "TestHome.h"
#include <QFile>
#include <QtTest>

class StartupTest : public QObject {
    Q_OBJECT
private slots:
    void replyTimeoutByBaudAndWait()
    {
        const struct {
            const char *baud, *wait; // wait: CommWait.TM's line, null for no file
            int timeout;
        } cases[] = {{"4800", nullptr, 1000}, {"9600", nullptr, 1200}, {"115200", nullptr, 500}, // 4800 waits less
                     {"4800", "250", 1250},   {"9600", "250", 1450},   {"115200", "250", 750},
                     {"14400", "250", 500}}; // a baud the table does not know: 500, without the wait
        for (const auto &c : cases) {
            const QByteArray row = QByteArray(c.baud) + " +" + (c.wait ? c.wait : "none");
            TestHome home;
            writeCommPortCfg(home.path(), {"COM1", c.baud, "N", "8", "1", "PC Link", "OFF"});
            const QString waitFile = home.path() + "/CommWait.TM";
            if (c.wait)
                QVERIFY(writeTextLinesAtomic(waitFile, {c.wait}));
            ConsoleCore core(home.path());
            QCOMPARE(core.start(), ConsoleCore::StartResult::Ok);
            QVERIFY2(core.link().replyTimeoutMs() == c.timeout,
                     row + " gives " + QByteArray::number(core.link().replyTimeoutMs()));
            QFile f(waitFile); // a missing file is written anew with "0"
            QVERIFY(f.open(QIODevice::ReadOnly));
            QVERIFY2(f.readAll() == (c.wait ? QByteArray(c.wait) : QByteArray("0")) + "\r\n", row);
        }
    }
};

QTEST_GUILESS_MAIN(StartupTest)
#include "test_startup.moc"
