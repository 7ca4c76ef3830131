// The scheduler and the dispatch over an in-memory line: scan, poll, mailbox,
// writes and RTS. Faults and silent machines are driven through the simulator
// in tests/integration.
#include "LinkHarness.h"
#include "LiveStatus.h"
#include <QSignalSpy>
#include <QtTest>

class SchedulerTest : public QObject {
    Q_OBJECT

    // Opens the port on a line with machine 1 answering at the given firmware
    // and waits for the scan to end.
    void connectLine(LinkHarness &h, FakeLine &line, const QString &firmware = QStringLiteral("2.31"))
    {
        line.firmware[1] = firmware;
        h.port.responder = [&line](const QByteArray &f) { return line.answer(f); };
        h.link->tmrRecvErr.setInterval(150);
        QVERIFY(h.open());
        QTRY_COMPARE(h.state->CmdState, 1);
    }

    QByteArrayList commands(const FakeLine &line)
    {
        QByteArrayList out;
        for (const QByteArray &f : line.seen)
            out << f.mid(4, 3);
        return out;
    }

private slots:
    void scanAndPollFillTheState()
    {
        LinkHarness h;
        FakeLine line;
        line.rrp[1] = {1, 0, 0, 0, 0, 1, 1, 1, 1, 0, 0, 10000, 600, 0, 1};
        QSignalSpy menus(h.link.get(), &CommLink::menusUpdated);
        connectLine(h, line, QStringLiteral("2.09"));
        QCOMPARE(h.state->sprdStatus.color(2, 1), TextTable::Green);
        QCOMPARE(menus.last().first().toBool(), true);
        // The open screen's first poll reads the UP block of the firmware's size.
        QTRY_VERIFY(commands(line).contains("RUP"));
        QTRY_COMPARE(h.state->image.sprdUP.text(1, 492), QStringLiteral("257"));
        QCOMPARE(h.state->RefreshOnOpen, false);
        QCOMPARE(h.state->machines[0].MachineRunning, true);
        QCOMPARE(h.state->TempDecimals(), 1);
        QCOMPARE(h.state->machines[0].MachineRunMode, QStringLiteral("PROGRAM"));
    }

    void foregroundTemperatureDecimalsAreClamped()
    {
        LinkHarness h;
        FakeLine line;
        line.rrp[1] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 7};
        connectLine(h, line);
        QTRY_COMPARE(h.state->image.sprdRRP.text(1, 15), QStringLiteral("7"));
        QCOMPARE(h.state->TempDecimals(), 2);
        QCOMPARE(h.state->ParamChanged, true);
    }

    void lastRequestInATickWins()
    {
        LinkHarness h;
        FakeLine line;
        connectLine(h, line);
        h.state->requests().writeRunWord(Rrp::Step, 1);
        h.state->requests().writeRunWord(Rrp::Hold, 1);
        QTRY_VERIFY(commands(line).contains("WRP"));
        QCOMPARE(commands(line).count("WRP"), 1);
        QCOMPARE(line.seen[commands(line).indexOf("WRP")], QByteArray("\x02" "001WRP,0003,\x00\x01\x03\x0D\x0A", 18));
        QTRY_VERIFY(h.state->RefreshAfterWrite || h.refresh.isActive() || h.state->CmdState == 2);
    }

    void parameterWriteWaitsBeforeTheNextFrame()
    {
        LinkHarness h;
        FakeLine line;
        connectLine(h, line);
        QElapsedTimer t;
        int ackAt = -1, nextAt = -1;
        h.port.responder = [&](const QByteArray &f) {
            if (ackAt >= 0 && nextAt < 0)
                nextAt = int(t.elapsed());
            if (f.mid(4, 3) == "WUP")
                ackAt = int(t.elapsed());
            return line.answer(f);
        };
        t.start();
        h.state->requests().writeParameter(Param::btnSensorType1, 3);
        QTRY_VERIFY_WITH_TIMEOUT(nextAt >= 0, 5000);
        QVERIFY2(nextAt - ackAt >= CommLink::WriteSettleMs, qPrintable(QString::number(nextAt - ackAt)));
        QVERIFY(h.state->RefreshAfterWrite || h.state->CmdState != 102);
    }

    // A set loaded for sending while the poll reads the machine's block: the
    // block read under way does not replace the one about to be sent.
    void blockReadDoesNotReplaceABlockAboutToBeSent()
    {
        LinkHarness h;
        FakeLine line;
        line.rrp[1] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1}; // changed: every poll reads the block
        connectLine(h, line);
        bool posted = false;
        h.port.responder = [&](const QByteArray &f) {
            if (!posted && f.mid(4, 3) == "RUP") {
                posted = true;
                for (int r = 1; r <= 512; ++r)
                    h.state->image.sprdUP.setNumber(1, r, 5);
                h.state->requests().startParameterSend(false);
            }
            return line.answer(f);
        };
        QTRY_VERIFY(commands(line).contains("WUP"));
        const QByteArray wup = line.seen[commands(line).indexOf("WUP")];
        QCOMPARE(wup.mid(13, 1024), word(5).repeated(512));
    }

    void stateWithoutAFrameStillReadsTheMailbox()
    {
        LinkHarness h;
        FakeLine line;
        connectLine(h, line);
        h.state->requests().writeTextRow(0); // a text row 0 sends nothing
        QTest::qWait(300);
        const int seen = int(line.seen.size());
        h.state->requests().stop();
        QTRY_VERIFY(line.seen.size() > seen + 2);
    }

    void closedPortStillLogsAndSendsNothing()
    {
        LinkHarness h;
        QSignalSpy logged(h.link.get(), &CommLink::frameLogged);
        h.link->send_rcv(1);
        QCOMPARE(logged.size(), 1);
        QCOMPARE(logged.first().first().toString(), QStringLiteral("傳送"));
        QVERIFY(h.port.written.isEmpty());
        QVERIFY(!h.link->tmrRecvErr.isActive());
        h.link->send_wtd(1, 0, QByteArray(29, 'a'));
        QCOMPARE(logged.size(), 1); // text row 0: nothing at all
    }

    void rtsControlSendsAZeroByteAfterEachFrame()
    {
        LinkHarness h;
        h.state->CommRTS = QStringLiteral("ON");
        QVERIFY(h.open());
        QTRY_VERIFY(h.port.written.size() >= 2);
        QCOMPARE(h.port.written[1], QByteArray(1, '\0'));
        QCOMPARE(h.port.rtsChanges.mid(0, 2), (QList<bool>{true, false}));
    }
};

QTEST_GUILESS_MAIN(SchedulerTest)
#include "test_scheduler.moc"
