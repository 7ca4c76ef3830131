// The scheduler and the dispatch over an in-memory line: scan, poll, mailbox,
// time-outs, writes and counters.
#include "LinkHarness.h"
#include <QSignalSpy>
#include <QtTest>

class SchedulerTest : public QObject {
    Q_OBJECT

    // Starts a line with the given machines answering, opens the port and
    // waits for the scan to finish.
    void connectLine(LinkHarness &h, FakeLine &line)
    {
        h.port.responder = [&line](const QByteArray &f) { return line.answer(f); };
        h.link->tmrRecvErr.setInterval(150);
        QVERIFY(h.open());
    }

    int count(LinkHarness &h, int slot, int column) { return int(h.state->sprdCommState.number(column, slot + 1)); }
    QByteArrayList commands(const FakeLine &line, int machine = -1)
    {
        QByteArrayList out;
        for (const QByteArray &f : line.seen)
            if (machine < 0 || f.mid(1, 3).toInt() == machine)
                out << f.mid(4, 3);
        return out;
    }

private slots:
    void scanFindsTheFirstMachineAndPolls()
    {
        LinkHarness h({1, 2});
        FakeLine line;
        line.firmware = {{1, "2.09"}, {2, "2.31"}};
        line.rrp[1] = {1, 0, 0, 0, 0, 1, 1, 1, 1, 0, 0, 10000, 600, 0, 1};
        line.rcv[1] = {12500, 12487, 1250, 600, 583, 3020};
        QSignalSpy menus(h.link.get(), &CommLink::menusUpdated);
        connectLine(h, line);
        QTRY_VERIFY(h.state->CmdState != 10);
        QCOMPARE(h.state->CurrentMachine, 1);
        QCOMPARE(h.state->sprdStatus.text(2, 1), QStringLiteral("良好"));
        QCOMPARE(h.state->sprdStatus.color(2, 1), TextTable::Green);
        QCOMPARE(h.state->sprdStatus.text(3, 2), QStringLiteral("2.31"));
        // The foreground machine's firmware fixes the block sizes.
        QCOMPARE(h.state->image.sprdUP.rowCount(), 492);
        QCOMPARE(h.state->PatternCount(), 300);
        QCOMPARE(menus.last().first().toBool(), true);
        // The poll fills the tables, and the open screen's first poll reads the UP block.
        QTRY_COMPARE(h.state->image.sprdRCV.text(1, 2), QStringLiteral("12487"));
        QTRY_VERIFY(commands(line, 1).contains("RUP"));
        QTRY_COMPARE(h.state->image.sprdUP.text(1, 492), QStringLiteral("257"));
        QCOMPARE(h.state->RefreshOnOpen, false);
        QCOMPARE(h.state->machines[0].MachineRunning, true);
        QCOMPARE(h.state->TempDecimals(), 1);
        QCOMPARE(h.state->machines[0].MachineRunMode, QStringLiteral("PROGRAM"));
        // Both machines are polled in turn.
        QTRY_VERIFY(commands(line, 2).count("RCV") >= 2);
        QVERIFY(count(h, 0, 1) > 2);
        QCOMPARE(h.state->LastReplyCmd.size(), 3);
    }

    void silentSlotTurnsBadAndTheScanRepeats()
    {
        LinkHarness h({4});
        FakeLine line;
        connectLine(h, line);
        QTRY_COMPARE(h.state->sprdStatus.text(2, 1), QStringLiteral("不良"));
        QCOMPARE(h.state->sprdStatus.color(2, 1), TextTable::Black);
        QCOMPARE(commands(line).count("WHO"), 3);
        QCOMPARE(count(h, 0, 3), 3);
        QCOMPARE(h.state->statusPanel(4), QString());
        QTRY_VERIFY(commands(line).count("WHO") >= 4); // the scan starts over
        QCOMPARE(h.state->CmdState, 10);
        QVERIFY(h.link->closeLink());
        QVERIFY(!h.port.isOpen());
    }

    void answerWithoutQmEndsBad()
    {
        LinkHarness h({1});
        h.port.responder = [](const QByteArray &f) { return f.mid(4, 3) == "WHO" ? whoReply(1, "XY730 F/W V2.31") : QByteArray(); };
        h.link->tmrRecvErr.setInterval(150);
        QVERIFY(h.open());
        QTRY_COMPARE(h.state->sprdStatus.text(2, 1), QStringLiteral("不良"));
        QCOMPARE(h.state->CurrentMachine, 0);
    }

    void silentMachineCostsThreeTimeOutsWhileOthersArePolled()
    {
        LinkHarness h({1, 2, 3});
        FakeLine line;
        line.firmware = {{1, "2.31"}, {2, "2.31"}, {3, "2.31"}};
        connectLine(h, line);
        QTRY_COMPARE(h.state->CmdState, 1);
        QTRY_VERIFY(commands(line, 3).count("RCV") >= 1);
        line.silent << 2;
        const int before = count(h, 1, 3);
        QTRY_VERIFY_WITH_TIMEOUT(count(h, 1, 3) >= before + 3, 5000);
        // Given up for this cycle: the others go on, and it stays "良好" on the table.
        QTRY_VERIFY(!h.state->machines[1].MachineOnline);
        QCOMPARE(h.state->sprdStatus.text(2, 2), QStringLiteral("良好"));
        const int rcv3 = commands(line, 3).count("RCV");
        QTRY_VERIFY(commands(line, 3).count("RCV") > rcv3);
        line.silent.clear();
        QTRY_VERIFY(h.state->machines[1].MachineOnline);
    }

    void lastRequestInATickWins()
    {
        LinkHarness h({1});
        FakeLine line;
        line.firmware = {{1, "2.31"}};
        connectLine(h, line);
        QTRY_COMPARE(h.state->CmdState, 1);
        h.state->request_word(101, 2, 1);
        h.state->request_word(101, 3, 1);
        QTRY_VERIFY(commands(line).contains("WRP"));
        QCOMPARE(commands(line).count("WRP"), 1);
        const QByteArray wrp = line.seen[commands(line).indexOf("WRP")];
        QCOMPARE(wrp, QByteArray("\x02" "001WRP,0003,\x00\x01\x03\x0D\x0A", 18));
        QTRY_VERIFY(h.state->RefreshAfterWrite || h.refresh.isActive() || h.state->CmdState == 2);
    }

    void parameterWriteWaitsBeforeTheNextFrame()
    {
        LinkHarness h({1});
        FakeLine line;
        line.firmware = {{1, "2.31"}};
        connectLine(h, line);
        QTRY_COMPARE(h.state->CmdState, 1);
        QElapsedTimer t;
        int ackAt = -1, nextAt = -1;
        h.port.responder = [&](const QByteArray &f) {
            if (ackAt >= 0 && nextAt < 0)
                nextAt = int(t.elapsed());
            const QByteArray r = line.answer(f);
            if (f.mid(4, 3) == "WUP")
                ackAt = int(t.elapsed());
            return r;
        };
        t.start();
        h.state->request_word(102, 24, 3);
        QTRY_VERIFY_WITH_TIMEOUT(nextAt >= 0, 5000);
        QVERIFY2(nextAt - ackAt >= CommLink::WriteSettleMs, qPrintable(QString::number(nextAt - ackAt)));
        QVERIFY(h.state->RefreshAfterWrite || h.state->CmdState != 102);
    }

    void countersTellGoodBadAndSum()
    {
        LinkHarness h({1});
        h.state->CommProtocol = QStringLiteral("PC Link + crc");
        FakeLine line;
        line.firmware = {{1, "2.31"}};
        line.withSum = true;
        int mode = 0;
        h.port.responder = [&](const QByteArray &f) {
            QByteArray r = line.answer(f);
            if (f.mid(4, 3) != "RCV" || mode == 0)
                return r;
            if (mode == 1) { // bad ETX before a good frame: one count in column 4
                QByteArray bad = r;
                bad[56] = 'x';
                mode = 0;
                return bad + r;
            }
            mode = 0; // wrong sum: column 2
            r[r.size() - 1] = char(r[r.size() - 1] ^ 1);
            return r;
        };
        h.link->tmrRecvErr.setInterval(150);
        QVERIFY(h.open());
        // Every frame the console sends carries its sum.
        QTRY_VERIFY(!line.seen.isEmpty());
        QCOMPARE(line.seen.first().size(), 12);
        QTRY_COMPARE(h.state->CmdState, 1);
        mode = 1;
        QTRY_COMPARE(count(h, 0, 4), 1);
        QCOMPARE(count(h, 0, 2), 0);
        mode = 2;
        QTRY_COMPARE(count(h, 0, 2), 1);
        QCOMPARE(count(h, 0, 4), 1);
    }

    void rtsControlSendsAZeroByteAfterEachFrame()
    {
        LinkHarness h({1});
        h.state->CommRTS = QStringLiteral("ON");
        QVERIFY(h.open());
        QTRY_VERIFY(h.port.written.size() >= 2);
        QCOMPARE(h.port.written[1], QByteArray(1, '\0'));
        QCOMPARE(h.port.rtsChanges.mid(0, 2), (QList<bool>{true, false}));
    }

    void closedPortStillLogsAndSendsNothing()
    {
        LinkHarness h({1});
        QSignalSpy logged(h.link.get(), &CommLink::frameLogged);
        h.link->send_rcv(1);
        QCOMPARE(logged.size(), 1);
        QCOMPARE(logged.first().first().toString(), QStringLiteral("傳送"));
        QVERIFY(h.port.written.isEmpty());
        QVERIFY(!h.link->tmrRecvErr.isActive());
        h.link->send_wtd(1, 0, QByteArray(29, 'a'));
        QCOMPARE(logged.size(), 1); // text row 0: nothing at all
    }

    void stateWithoutAFrameStillReadsTheMailbox()
    {
        LinkHarness h({1});
        FakeLine line;
        line.firmware = {{1, "2.31"}};
        connectLine(h, line);
        QTRY_COMPARE(h.state->CmdState, 1);
        h.state->request_command(103, 0); // a text row 0 sends nothing
        QTest::qWait(300);
        const int seen = int(line.seen.size());
        h.state->request_command(1);
        QTRY_VERIFY(line.seen.size() > seen + 2);
    }

    void foregroundTemperatureDecimalsAreClamped()
    {
        LinkHarness h({1});
        FakeLine line;
        line.firmware = {{1, "2.31"}};
        line.rrp[1] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 7};
        connectLine(h, line);
        QTRY_COMPARE(h.state->image.sprdRRP.text(1, 15), QStringLiteral("7"));
        QCOMPARE(h.state->TempDecimals(), 2);
        QCOMPARE(h.state->ParamChanged, true);
    }

    void modbusScanPollAndFaults()
    {
        LinkHarness h({5});
        h.state->CommProtocol = QStringLiteral("Modbus RTU");
        int fault = 0; // 1: bad CRC, 2: exception, 3: one byte short
        QByteArrayList seen;
        h.port.responder = [&](const QByteArray &f) -> QByteArray {
            seen << f;
            if (quint8(f[0]) != 5 || f[1] != 3)
                return {};
            const int start = quint8(f[2]) * 256 + quint8(f[3]);
            const int n = quint8(f[4]) * 256 + quint8(f[5]);
            if (fault == 2 && start == 30101) {
                fault = 0;
                return modbusCrc(QByteArray::fromHex("058302"));
            }
            QByteArray data;
            for (int i = 0; i < n; ++i)
                data += word(start == 30001 && i == 1 ? 0x021F : start == 30101 ? 10000 + i : i);
            QByteArray r = modbusCrc(QByteArray("\x05\x03", 2) + char(2 * n) + data);
            if (start == 30101 && fault == 1) {
                fault = 0;
                r[5] = char(r[5] ^ 0x40);
            }
            if (start == 30101 && fault == 3) {
                fault = 0;
                r.chop(1);
            }
            return r;
        };
        h.link->tmrRecvErr.setInterval(200);
        QVERIFY(h.open());
        QTRY_VERIFY(!seen.isEmpty());
        QCOMPARE(seen.first(), modbusCrc(QByteArray::fromHex("050375310002")));
        QTRY_COMPARE(h.state->sprdStatus.text(3, 1), QStringLiteral("2.31"));
        QCOMPARE(h.state->statusPanel(4), QStringLiteral("機號 [5] QM730 連接"));
        QTRY_COMPARE(h.state->image.sprdRCV.text(1, 27), QStringLiteral("10026"));
        fault = 1;
        QTRY_COMPARE(count(h, 0, 4), 1);
        QCOMPARE(h.state->statusPanel(4), QStringLiteral("機號 [5] : 通訊不良"));
        fault = 2;
        QTRY_COMPARE(count(h, 0, 2), 1);
        fault = 3;
        const int timeouts = count(h, 0, 3);
        QTRY_COMPARE(count(h, 0, 3), timeouts + 1);
        QCOMPARE(count(h, 0, 4), 1);
        QCOMPARE(h.state->sprdStatus.text(2, 1), QStringLiteral("良好"));
    }
};

QTEST_GUILESS_MAIN(SchedulerTest)
#include "test_scheduler.moc"
