// The console's core against the simulator over a pseudo-terminal, in each
// of the three protocols: scan, poll and the faults of a real line.
#include "LiveStatus.h"
#include "Screens.h"
#include "SimConsole.h"
#include <QtTest>
#include <memory>

namespace {

int counter(ConsoleCore &c, int slot, int column)
{
    return int(c.state().sprdCommState.number(column, slot + 1));
}

bool isModbus(const QString &protocol) { return protocol == QLatin1String("Modbus RTU"); }

} // namespace

class LineTest : public QObject {
    Q_OBJECT

    SimConsole m_line;

    static void protocols() { protocolRows({"PC Link", "PC Link + crc", "Modbus RTU"}); }

private slots:
    void cleanup() { m_line.reset(); }

    void threeChambersOneSilent_data() { protocols(); }
    void threeChambersOneSilent()
    {
        QFETCH(QString, protocol);
        QVERIFY(m_line.bringUp(protocol, QStringLiteral("1:2.09,2,3"), {true, true, true}, {QStringLiteral("fault 3 silent on")}));
        ConsoleState &s = m_line.core->state();
        QTRY_VERIFY_WITH_TIMEOUT(s.CmdState != 10, 10000);
        QCOMPARE(s.sprdStatus.text(2, 1), QStringLiteral("良好"));
        QCOMPARE(s.sprdStatus.text(2, 2), QStringLiteral("良好"));
        QCOMPARE(s.sprdStatus.text(2, 3), QStringLiteral("不良"));
        QCOMPARE(s.sprdStatus.text(3, 1), QStringLiteral("2.09"));
        QCOMPARE(s.CurrentMachine, 1);
        // The foreground machine's firmware fixes the block sizes.
        QCOMPARE(s.image.sprdUP.rowCount(), 492);
        QCOMPARE(s.PatternCount(), 300);
        QCOMPARE(counter(*m_line.core, 2, 3), 3);
        // The scan frames, byte for byte: one for each answering machine, three for the silent one.
        const QList<QByteArray> frames = m_line.sim->frames();
        QVERIFY(frames.size() >= 5);
        const QByteArray who1 = isModbus(protocol) ? QByteArray::fromHex("010375310002") : QByteArray("\x02" "001WHO\x03\r\n");
        QCOMPARE(frames[0].left(who1.size()), who1);
        if (protocol == QLatin1String("PC Link + crc"))
            QCOMPARE(frames[0], QByteArray::fromHex("023030315748 4F030D0A019B"));
        for (int i = 2; i < 5; ++i)
            QCOMPARE(frames[i][isModbus(protocol) ? 0 : 3], isModbus(protocol) ? '\x03' : '3');
        // The poll fills the present values of both chambers, and the counters count.
        QTRY_VERIFY_WITH_TIMEOUT(!s.image.sprdRCV.isEmpty(1, 2) && !s.image.sprdRCV.isEmpty(2, 2), 5000);
        QTRY_VERIFY(counter(*m_line.core, 0, 1) > 3 && counter(*m_line.core, 1, 1) > 3);
        QCOMPARE(s.image.sprdRRP.text(1, 15), m_line.sim->command(QStringLiteral("get 1 rrp 15")));
        QCOMPARE(counter(*m_line.core, 0, 2) + counter(*m_line.core, 0, 4), 0);
        QVERIFY(m_line.core->link().closeLink());
    }

    void faultsOnTheLine_data() { protocols(); }
    void faultsOnTheLine()
    {
        QFETCH(QString, protocol);
        QVERIFY(m_line.bringUp(protocol, QStringLiteral("1"), {true}));
        ConsoleState &s = m_line.core->state();
        QTRY_VERIFY_WITH_TIMEOUT(polling(s), 5000);
        auto settle = [&](int polls) {
            const int start = counter(*m_line.core, 0, 1);
            QTRY_VERIFY_WITH_TIMEOUT(counter(*m_line.core, 0, 1) >= start + polls, 10000);
        };
        settle(2);
        QCOMPARE(s.statusPanel(4), QStringLiteral("機號 [1] QM730 連接") + (isModbus(protocol) ? "" : "."));
        // A reply split in two with a pause is one frame; noise in front is dropped without a count.
        QCOMPARE(m_line.sim->command(QStringLiteral("fault 1 split on 60")), QStringLiteral("ok"));
        settle(4);
        m_line.sim->command(QStringLiteral("fault 1 split off"));
        if (!isModbus(protocol)) {
            m_line.sim->command(QStringLiteral("fault 1 noise on"));
            settle(4);
            m_line.sim->command(QStringLiteral("fault 1 noise off"));
        }
        QCOMPARE(counter(*m_line.core, 0, 2) + counter(*m_line.core, 0, 3) + counter(*m_line.core, 0, 4), 0);
        // A wrong sum or CRC: column 2 with the sum, column 4 with the CRC; the same frame goes again.
        if (protocol != QLatin1String("PC Link")) {
            m_line.sim->command(QStringLiteral("fault 1 badsum on"));
            QTRY_VERIFY(counter(*m_line.core, 0, isModbus(protocol) ? 4 : 2) >= 2);
            if (isModbus(protocol))
                QCOMPARE(s.statusPanel(4), QStringLiteral("機號 [1] : 通訊不良"));
            m_line.sim->command(QStringLiteral("fault 1 badsum off"));
            settle(2);
        }
        if (protocol == QLatin1String("PC Link + crc")) {
            // A bad ETX in front of a good frame: both lost, one count in column 4.
            const int before = counter(*m_line.core, 0, 4);
            m_line.sim->command(QStringLiteral("fault 1 badetxgood on"));
            QTRY_VERIFY(counter(*m_line.core, 0, 4) > before);
            m_line.sim->command(QStringLiteral("fault 1 badetxgood off"));
            settle(2);
        }
        if (isModbus(protocol)) {
            // An exception is counted in column 2 and asked again; a reply one byte short
            // never raises the receive event, so the time-out resends.
            m_line.sim->command(QStringLiteral("fault 1 exception on"));
            QTRY_VERIFY(counter(*m_line.core, 0, 2) >= 2);
            m_line.sim->command(QStringLiteral("fault 1 exception off"));
            const int timeouts = counter(*m_line.core, 0, 3);
            const int crc = counter(*m_line.core, 0, 4);
            m_line.sim->command(QStringLiteral("fault 1 short on"));
            QTRY_VERIFY_WITH_TIMEOUT(counter(*m_line.core, 0, 3) >= timeouts + 1, 5000);
            m_line.sim->command(QStringLiteral("fault 1 short off"));
            QCOMPARE(counter(*m_line.core, 0, 4), crc);
        }
        settle(2);
        QCOMPARE(s.sprdStatus.text(2, 1), QStringLiteral("良好"));
    }

    void silentMachineIsGivenUpWhileOthersArePolled_data() { protocols(); }
    void silentMachineIsGivenUpWhileOthersArePolled()
    {
        QFETCH(QString, protocol);
        QVERIFY(m_line.bringUp(protocol, QStringLiteral("1,2"), {true, true}));
        ConsoleState &s = m_line.core->state();
        QTRY_VERIFY_WITH_TIMEOUT(polling(s), 5000);
        m_line.sim->command(QStringLiteral("fault 2 silent on"));
        const int polls1 = counter(*m_line.core, 0, 1);
        QTRY_VERIFY_WITH_TIMEOUT(!s.machines[1].MachineOnline, 5000);
        QVERIFY(counter(*m_line.core, 1, 3) >= 3);
        QVERIFY(counter(*m_line.core, 0, 1) > polls1);
        // It stays "良好" in the machine table and comes back when it answers again.
        QCOMPARE(s.sprdStatus.text(2, 2), QStringLiteral("良好"));
        m_line.sim->command(QStringLiteral("fault 2 silent off"));
        QTRY_VERIFY_WITH_TIMEOUT(s.machines[1].MachineOnline, 8000);
    }

    void answerWithoutQmIsNotAController()
    {
        QVERIFY(m_line.bringUp(QStringLiteral("PC Link"), QStringLiteral("1"), {true}, {QStringLiteral("fault 1 noqm on")}));
        ConsoleState &s = m_line.core->state();
        QTRY_COMPARE_WITH_TIMEOUT(s.sprdStatus.text(2, 1), QStringLiteral("不良"), 5000);
        QCOMPARE(s.CurrentMachine, 0);
    }
};

QTEST_GUILESS_MAIN(LineTest)
#include "test_line.moc"
