// The scan over a real pseudo-terminal whose far end never answers: WHO goes
// out three times per slot, spaced by the reply time-out, the slot turns
// "不良" and the next slot is asked; after the last the scan starts over.
// The port can be closed at any moment.
#include "ConsoleCore.h"
#include "Pty.h"
#include "TestHome.h"
#include <QElapsedTimer>
#include <QSocketNotifier>
#include <QtTest>

namespace {

// The far end of the line: records every frame (up to ETX CR LF) with the time it came.
struct SilentPeer : Pty {
    struct Frame {
        QByteArray bytes;
        qint64 at;
    };
    QList<Frame> frames;
    QSocketNotifier notifier{master, QSocketNotifier::Read};
    QByteArray pending;
    QElapsedTimer clock;

    SilentPeer()
    {
        clock.start();
        QObject::connect(&notifier, &QSocketNotifier::activated, [this] {
            for (QByteArray b = readMaster(); !b.isEmpty(); b = readMaster())
                pending += b;
            for (qsizetype end = pending.indexOf("\x03\r\n"); end >= 0; end = pending.indexOf("\x03\r\n")) {
                frames << Frame{pending.left(end + 3), clock.elapsed()};
                pending.remove(0, end + 3);
            }
        });
    }
    int machineOf(int i) const { return frames[i].bytes.mid(1, 3).toInt(); }
};

// A console on COM2 = device at 9600 baud with the given machines in its list.
std::unique_ptr<ConsoleCore> console(const TestHome &home, const QString &device, int machines, int commWait)
{
    writeCommPortCfg(home.path(), {"COM2", "9600", "N", "8", "1", "PC Link", "OFF"});
    home.mapPorts({"COM2=" + device});
    writeTextLinesAtomic(home.path() + "/CommWait.TM", {QString::number(commWait)});
    home.machines(QList<bool>(machines, true));
    auto core = std::make_unique<ConsoleCore>(home.path());
    return core->start() == ConsoleCore::StartResult::Ok ? std::move(core) : nullptr;
}

} // namespace

class SilentPtyTest : public QObject {
    Q_OBJECT
private slots:
    void oneSlotIsAskedThreeTimesThenBad()
    {
        TestHome home;
        SilentPeer peer;
        QVERIFY(!peer.path.isEmpty());
        // 9600 baud: 1200 ms plus the 100 ms of CommWait.TM.
        auto core = console(home, peer.path, 1, 100);
        QVERIFY(core);
        QCOMPARE(core->link().replyTimeoutMs(), 1300);
        QCOMPARE(core->togglePort(), ConsoleCore::PortAction::Opened);
        QTRY_COMPARE_WITH_TIMEOUT(core->state().sprdStatus.text(2, 1), QStringLiteral("不良"), 6000);
        QCOMPARE(core->state().sprdStatus.color(2, 1), TextTable::Black);
        QCOMPARE(peer.frames.size(), 3);
        for (const auto &f : peer.frames)
            QCOMPARE(f.bytes, QByteArray("\x02" "001WHO\x03\r\n"));
        for (int i = 1; i < 3; ++i) {
            const qint64 gap = peer.frames[i].at - peer.frames[i - 1].at;
            // The time-out, then the 50 ms of the send tick; a loaded machine may add some more.
            QVERIFY2(gap >= 1300 && gap < 2500, qPrintable(QString::number(gap)));
        }
        QCOMPARE(core->state().statusPanel(4), QString()); // emptied at the end of the list
        // The scan starts over without end.
        QTRY_VERIFY_WITH_TIMEOUT(peer.frames.size() >= 4, 3000);
        QCOMPARE(core->togglePort(), ConsoleCore::PortAction::Closed);
        QCOMPARE(core->state().statusPanel(3), QStringLiteral("CLOSE"));
    }

    void closingWorksAtAnyMoment()
    {
        TestHome home;
        SilentPeer peer;
        auto core = console(home, peer.path, 3, 0);
        QVERIFY(core);
        core->link().tmrRecvErr.setInterval(120); // the order, not the time, is the point here
        // Close and reopen at moments spread over send ticks, waits and time-outs.
        for (int delay : {0, 10, 55, 90, 130, 175, 260, 400}) {
            QCOMPARE(core->togglePort(), ConsoleCore::PortAction::Opened);
            QTest::qWait(delay);
            QCOMPARE(core->togglePort(), ConsoleCore::PortAction::Closed);
            QVERIFY(!core->port().isOpen());
            QTest::qWait(200); // a running time-out fires once into a closed port
        }
        const qsizetype sent = peer.frames.size();
        QTest::qWait(400);
        QCOMPARE(peer.frames.size(), sent); // nothing goes out while closed
        // Opened again, the scan asks each slot three times in turn and starts over.
        QCOMPARE(core->togglePort(), ConsoleCore::PortAction::Opened);
        QTRY_VERIFY_WITH_TIMEOUT(peer.frames.size() >= sent + 10, 8000);
        QList<int> order;
        for (qsizetype i = sent; i < sent + 10; ++i)
            order << peer.machineOf(int(i));
        QCOMPARE(order, (QList<int>{1, 1, 1, 2, 2, 2, 3, 3, 3, 1}));
        for (int row = 1; row <= 3; ++row)
            QCOMPARE(core->state().sprdStatus.text(2, row), QStringLiteral("不良"));
    }
};

QTEST_GUILESS_MAIN(SilentPtyTest)
#include "test_silent_pty.moc"
