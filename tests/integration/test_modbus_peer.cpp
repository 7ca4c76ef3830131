// The console's Modbus master against a Modbus server the project did not
// write (pymodbus), over a pair of pseudo-terminals: scan, the poll of the run
// parameters and present values, and the five-piece read of the parameter block.
#include "ConsoleCore.h"
#include "TestHome.h"
#include <QFileInfo>
#include <QProcess>
#include <QtTest>

namespace {
int registerValue(int n)
{
    return n == 30002 ? 0x021F : (n * 7 + 3) % 65536;
}
} // namespace

class ModbusPeerTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QProcess m_socat;
    QProcess m_server;

private slots:
    void initTestCase()
    {
        const QString srv = m_dir.path() + QStringLiteral("/srv"), con = m_dir.path() + QStringLiteral("/con");
        m_socat.start(QStringLiteral("socat"), {QStringLiteral("pty,raw,echo=0,link=") + srv,
                                               QStringLiteral("pty,raw,echo=0,link=") + con});
        QVERIFY(m_socat.waitForStarted());
        QTRY_VERIFY(QFileInfo::exists(srv) && QFileInfo::exists(con));
        m_server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_server.start(QStringLiteral("/usr/bin/python3"),
                       {qEnvironmentVariable("QM730_SOURCE") + QStringLiteral("/tests/integration/modbus_server.py"), srv});
        QVERIFY(m_server.waitForStarted());
        QVERIFY(m_server.waitForReadyRead(15000));
        QVERIFY(m_server.readAll().contains("ready"));
        QTest::qWait(300); // the server opens its device right after saying so
    }

    void cleanupTestCase()
    {
        for (QProcess *p : {&m_server, &m_socat}) {
            p->terminate();
            if (!p->waitForFinished(3000))
                p->kill();
        }
    }

    void scanPollAndParameterBlock()
    {
        TestHome home;
        home.writePortCfg(QStringLiteral("Modbus RTU"));
        home.mapPorts({"COM1=" + m_dir.path() + "/con"});
        ConsoleCore core(home.path());
        QCOMPARE(core.start(), ConsoleCore::StartResult::Ok);
        ConsoleState &s = core.state();
        QCOMPARE(core.togglePort(), ConsoleCore::PortAction::Opened);

        // The identity: firmware as high byte "." low byte.
        QTRY_COMPARE_WITH_TIMEOUT(s.sprdStatus.text(2, 1), QStringLiteral("良好"), 10000);
        QCOMPARE(s.sprdStatus.text(3, 1), QStringLiteral("2.31"));
        QCOMPARE(s.image.sprdUP.rowCount(), 512);

        // The poll: 17 run parameters at 40001, 27 present values at 30101.
        QTRY_VERIFY_WITH_TIMEOUT(!s.image.sprdRCV.isEmpty(1, 27), 10000);
        for (int r = 1; r <= 17; ++r)
            QCOMPARE(s.image.sprdRRP.number(1, r), registerValue(40000 + r));
        for (int r = 1; r <= 27; ++r)
            QCOMPARE(s.image.sprdRCV.number(1, r), registerValue(30100 + r));

        // The port's opening asked for the parameter block: five pieces and the two extra rows.
        QTRY_VERIFY_WITH_TIMEOUT(!s.image.sprdUP_PLUS.isEmpty(1, 89), 10000);
        for (int r = 1; r <= 512; ++r)
            QCOMPARE(s.image.sprdUP.number(1, r), registerValue(40100 + r));
        QCOMPARE(s.image.sprdUP_PLUS.number(1, 88), registerValue(40700));
        QCOMPARE(s.image.sprdUP_PLUS.number(1, 89), registerValue(40701));
        QCOMPARE(s.sprdCommState.number(4, 1) + s.sprdCommState.number(2, 1), 0);
        QVERIFY(core.link().closeLink());
    }
};

QTEST_GUILESS_MAIN(ModbusPeerTest)
#include "test_modbus_peer.moc"
