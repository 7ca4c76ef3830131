// The scheduler and the dispatch over an in-memory line: scan, poll, mailbox,
// writes and RTS. Faults and silent machines are driven through the simulator
// in tests/integration.
#include "LinkHarness.h"
#include "LiveStatus.h"
#include <QSignalSpy>
#include <QtTest>

class SchedulerTest : public QObject {
    Q_OBJECT

    // Opens the port on a fake line and waits for the scan to end.
    template <typename Line> void connectTo(LinkHarness &h, Line &line)
    {
        h.port.responder = [&line](const QByteArray &f) { return line.answer(f); };
        h.link->tmrRecvErr.setInterval(150);
        QVERIFY(h.open());
        QTRY_COMPARE(h.state->CmdState, 1);
    }
    // The same with machine 1 answering at the given firmware.
    void connectLine(LinkHarness &h, FakeLine &line, const QString &firmware = QStringLiteral("2.31"))
    {
        line.firmware[1] = firmware;
        connectTo(h, line);
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
        // The foreground machine's temperature decimals are clamped to 2.
        line.rrp[1][13] = 2;
        line.rrp[1][14] = 7;
        QTRY_COMPARE(h.state->image.sprdRRP.text(1, 15), QStringLiteral("7"));
        QCOMPARE(h.state->TempDecimals(), 2);
        QVERIFY(h.state->ParamChanged);
    }

    // The last request posted in a tick wins; one that sends no frame does
    // not keep the next from being taken; a parameter write waits before the
    // next frame; an acknowledged write owes the screen a refresh.
    void writesOnALiveLine()
    {
        LinkHarness h;
        FakeLine line;
        connectLine(h, line);
        QTRY_VERIFY(!h.state->RefreshOnOpen); // the first parameter read is behind us
        h.state->requests().writeRunWord(Rrp::Step, 1);
        h.state->requests().writeRunWord(Rrp::Hold, 1);
        QTRY_VERIFY(commands(line).contains("WRP"));
        QCOMPARE(commands(line).count("WRP"), 1);
        QCOMPARE(line.seen[commands(line).indexOf("WRP")], QByteArray("\x02" "001WRP,0003,\x00\x01\x03\x0D\x0A", 18));
        // The acknowledged write goes back to polling and owes the screen a refresh.
        QTRY_VERIFY(commands(line).lastIndexOf("RRP") > commands(line).indexOf("WRP"));
        QVERIFY(h.state->RefreshAfterWrite);
        QCOMPARE(commands(line).count("WRP"), 1);

        h.state->requests().writeTextRow(0); // a text row 0 sends nothing
        QTest::qWait(300);
        const qsizetype seen = line.seen.size();
        h.state->requests().stop();
        QTRY_VERIFY(line.seen.size() > seen + 2);

        h.state->RefreshAfterWrite = false;
        QElapsedTimer t;
        int ackAt = -1, nextAt = -1;
        QByteArray next;
        h.port.responder = [&](const QByteArray &f) {
            if (ackAt >= 0 && nextAt < 0) {
                nextAt = int(t.elapsed());
                next = f.mid(4, 3);
            }
            if (f.mid(4, 3) == "WUP")
                ackAt = int(t.elapsed());
            return line.answer(f);
        };
        t.start();
        h.state->requests().writeParameter(Param::btnSensorType1, 3);
        QTRY_VERIFY_WITH_TIMEOUT(nextAt >= 0, 5000);
        QVERIFY2(nextAt - ackAt >= CommLink::WriteSettleMs, qPrintable(QString::number(nextAt - ackAt)));
        // After the wait the poll goes on, and the acknowledged write owes a refresh.
        QCOMPARE(next, QByteArray("RRP"));
        QVERIFY(h.state->RefreshAfterWrite);
    }

    void slotWalks()
    {
        QTemporaryDir dir;
        ConsoleState s(dir.path());
        s.setMachines({{1}, {2}, {3}});
        // next_slot walks the list and ends at 0.
        QCOMPARE(QList<int>({s.next_slot(0), s.next_slot(1), s.next_slot(2)}), QList<int>({1, 2, 0}));
        // next_online_slot(start) looks from slot `start` on, 0 when none is
        // online; past the end of the list it starts over.
        auto online = [&s] {
            return QList<int>({s.next_online_slot(0), s.next_online_slot(1), s.next_online_slot(2), s.next_online_slot(3)});
        };
        QCOMPARE(online(), QList<int>({0, 0, 0, 0}));
        s.sprdStatus.setText(2, 2, QStringLiteral("良好"));
        s.sprdStatus.setText(2, 3, QStringLiteral("不良"));
        QCOMPARE(online(), QList<int>({1, 1, 0, 1}));
        s.sprdStatus.setText(2, 1, QStringLiteral("良好"));
        QCOMPARE(online().mid(2), QList<int>({0, 0}));
        ConsoleState one(dir.path());
        one.setMachines({{7}});
        QCOMPARE(one.next_slot(0), 0);
    }

    // The first machine to answer comes to the foreground: the same one again
    // keeps its programs loaded, another starts without them. Polling starts
    // at the first online slot; a silent machine is asked only in the scan.
    void foregroundMachineAndFirstPoll()
    {
        LinkHarness h;
        h.state->setMachines({{1}, {2}});
        FakeLine line;
        line.firmware[1] = line.firmware[2] = QStringLiteral("2.31");
        ControllerImage &img = h.state->image;
        auto reopen = [&] {
            h.link->closeLink();
            connectTo(h, line);
        };
        connectTo(h, line);
        QCOMPARE(h.state->CurrentMachine, 1);
        img.PatternLoaded[4] = img.PatternNameLoaded[0] = true;
        reopen();
        QCOMPARE(h.state->CurrentMachine, 1);
        QVERIFY(img.PatternLoaded[4] && img.PatternNameLoaded[0]);

        line.firmware.remove(1); // machine 1 stays silent
        line.seen.clear();
        reopen();
        QCOMPARE(h.state->CurrentMachine, 2);
        QVERIFY(!img.PatternLoaded[4] && !img.PatternNameLoaded[0]);
        QTRY_VERIFY(commands(line).contains("RRP"));
        QCOMPARE(line.seen[commands(line).indexOf("RRP")].mid(1, 3), QByteArray("002"));
        QByteArrayList toOne; // three WHO frames, nothing after them
        for (const QByteArray &f : line.seen)
            if (f.mid(1, 3) == "001")
                toOne << f.mid(4, 3);
        QCOMPARE(toOne, QByteArrayList({"WHO", "WHO", "WHO"}));
    }

    // The end of a text-row write's read-back repaints the open screen; a
    // plain read of text rows does not, even with a refresh still owed to an
    // earlier write (that one waits for the next read of the parameter block).
    // Under Modbus RTU a text row is read back with the whole chain of text blocks.
    void textReadBackRepaintsAPlainReadDoesNot_data()
    {
        QTest::addColumn<bool>("modbus");
        QTest::newRow("PC Link") << false;
        QTest::newRow("Modbus RTU") << true;
    }
    void textReadBackRepaintsAPlainReadDoesNot()
    {
        QFETCH(bool, modbus);
        LinkHarness h;
        FakeLine line;
        FakeModbusLine mb;
        if (modbus) {
            h.state->CommProtocol = QStringLiteral("Modbus RTU");
            mb.machines = {1};
            mb.registers[30002] = 0x0231; // firmware 2.49
            mb.putText(44001 + 12 * 2, toAnsi(QStringLiteral("高溫")));
            connectTo(h, mb);
        } else {
            line.texts[14] = toAnsi(QStringLiteral("高溫"));
            connectLine(h, line);
        }
        QTRY_VERIFY(!h.state->RefreshOnOpen);
        QSignalSpy refreshed(&h.refresh, &QTimer::timeout);
        h.state->requests().writeRunWord(Rrp::Step, 1);
        QTRY_VERIFY(h.state->RefreshAfterWrite);

        h.state->requests().readPatternName(3);
        QTRY_COMPARE(h.state->image.sprdTD.text(1, 14), QStringLiteral("高溫"));
        QTRY_COMPARE(h.state->CmdState, 2); // polling again
        QTest::qWait(50);
        QCOMPARE(refreshed.size(), 0);
        QVERIFY(h.state->RefreshAfterWrite);

        h.state->image.sprdTD.setText(1, 14, QStringLiteral("低溫"));
        h.state->requests().writeTextRow(14);
        QTRY_COMPARE_WITH_TIMEOUT(refreshed.size(), 1, 10000);
        if (!modbus)
            QCOMPARE(commands(line).mid(commands(line).lastIndexOf("WTD")).mid(0, 2), QByteArrayList({"WTD", "RTD"}));
        QCOMPARE(h.state->image.sprdTD.text(1, 14), QStringLiteral("低溫"));
        QVERIFY(!h.state->RefreshAfterWrite);
    }

    void modbusCrcFailureNamesThePolledMachine()
    {
        LinkHarness h;
        h.state->setMachines({{1}, {2}});
        h.state->CommProtocol = QStringLiteral("Modbus RTU");
        QCOMPARE(h.port.open({}, {}), CommPort::OpenResult::Ok);
        // The parameter block is read from the foreground machine 1 while slot 1 (machine 2) is polled.
        h.state->CurrentMachine = 1;
        h.state->PollSlot = 1;
        h.state->CmdState = Cmd::ReadUp;
        h.link->tmrSend_Timer();
        QCOMPARE(quint8(h.port.lastFrame()[0]), quint8(1));
        QByteArray reply = withModbusCrc(QByteArray("\x01\x03\xF0", 3) + QByteArray(240, '\0'));
        reply[reply.size() - 1] = char(reply[reply.size() - 1] ^ 0x5A);
        h.port.feed(reply);
        QTRY_COMPARE(h.state->statusPanel(4), QStringLiteral("機號 [2] : 通訊不良"));
        QCOMPARE(h.state->sprdCommState.text(4, 2), QStringLiteral("1"));
    }

    // A device that goes away while open: the port is closed (and says so),
    // the cause is logged, and the same device is looked for about once a
    // second until it is back; then the scan runs and polling goes on. Not
    // when the operator chose another port or opened one meanwhile. (The
    // status bar and the files through it: tests/integration, pulled line.)
    void lostLineIsClosedAndReopenedWhenBack()
    {
        LinkHarness h;
        FakeLine line;
        connectLine(h, line);
        const QString device = h.port.openedDevice;
        QSignalSpy lost(h.link.get(), &CommLink::lineLost);
        QSignalSpy portState(h.link.get(), &CommLink::portStateChanged);

        h.port.vanish();
        QTRY_COMPARE(lost.size(), 1);
        h.state->requests().writeRunWord(Rrp::Run, 1); // posted while the line is away
        QVERIFY(!h.port.isOpen());
        QCOMPARE(portState.last().first().toBool(), false);
        QVERIFY(!h.state->machines[0].MachineOnline);
        const QByteArrayList log = unstamped(h.dir.filePath("Err.LOG")); // one line, with the cause
        QVERIFY2(log.size() == 1 && log[0].startsWith("9,") && log[0].endsWith("Resource error,MSComm1_OnComm\r"),
                 log.join('|').constData());

        // Looked for about once a second, not in a loop.
        const int attempts = h.port.openAttempts;
        QTest::qWait(2500);
        QVERIFY(!h.port.isOpen());
        QVERIFY2(h.port.openAttempts - attempts >= 1 && h.port.openAttempts - attempts <= 4,
                 qPrintable(QString::number(h.port.openAttempts - attempts)));

        const qsizetype before = line.seen.size();
        h.port.present = true;
        QTRY_VERIFY_WITH_TIMEOUT(h.port.isOpen(), 3000);
        QCOMPARE(h.port.openedDevice, device);
        QVERIFY(!h.link->reopening());
        QTRY_COMPARE(h.state->CmdState, 2);
        const QByteArrayList after = commands(line).mid(before);
        QCOMPARE(after.first(), QByteArray("WHO"));  // the opening scan first
        QVERIFY(!after.contains("WRP"));             // the request of the time away is dropped
        QVERIFY(h.state->machines[0].MachineOnline);
        QCOMPARE(lost.size(), 1);

        // Not reopened under new settings.
        h.port.vanish();
        QTRY_VERIFY(h.link->reopening());
        h.state->CommPortNo = 2; // the operator chose another port meanwhile
        h.port.present = true;
        QTRY_VERIFY(!h.link->reopening());
        QTest::qWait(1200);
        QVERIFY(!h.port.isOpen());
        // The operator's own open ends the looking too.
        h.state->CommPortNo = 1;
        QVERIFY(h.open());
        h.port.vanish();
        QTRY_VERIFY(h.link->reopening());
        h.port.present = true;
        QVERIFY(h.open());
        QVERIFY(!h.link->reopening());
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

    // A closed port logs the frame and sends nothing; an open one under RTS
    // control sends a zero byte after each frame.
    void framesOnClosedPortAndUnderRts()
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

        h.state->CommRTS = QStringLiteral("ON");
        QVERIFY(h.open());
        QTRY_VERIFY(h.port.written.size() >= 2);
        QCOMPARE(h.port.written[1], QByteArray(1, '\0'));
        QCOMPARE(h.port.rtsChanges.mid(0, 2), (QList<bool>{true, false}));
    }

    void reopeningGivesTheFirstSlotThreeTriesAgain()
    {
        LinkHarness h;
        FakeLine line; // nobody answers
        h.port.responder = [&line](const QByteArray &f) { return line.answer(f); };
        h.link->tmrRecvErr.setInterval(100);
        QVERIFY(h.open());
        QTRY_COMPARE(line.seen.size(), 2);
        // Closed during the second try; its time-out fires once into the closed port.
        QVERIFY(h.link->closeLink());
        QTRY_VERIFY(!h.link->tmrRecvErr.isActive());
        // Opened again at once after one more try, while that time-out still runs.
        QVERIFY(h.open());
        QTRY_COMPARE(line.seen.size(), 3);
        QVERIFY(h.link->closeLink());
        QVERIFY(h.open());
        QCOMPARE_NE(h.state->sprdStatus.text(2, 1), QStringLiteral("不良"));
        line.seen.clear();
        QTRY_COMPARE(h.state->sprdStatus.text(2, 1), QStringLiteral("不良"));
        QCOMPARE(line.seen.size(), 3);
    }
};

QTEST_GUILESS_MAIN(SchedulerTest)
#include "test_scheduler.moc"
