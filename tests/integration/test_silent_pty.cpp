// The scan over a real pseudo-terminal whose far end never answers: WHO goes
// out three times per slot, spaced by the reply time-out, the slot turns
// "不良" and the scan starts over. The port can be closed at any moment.
#include "ConsoleCore.h"
#include "Files.h"
#include "mdlADO.h"
#include <QElapsedTimer>
#include <QSocketNotifier>
#include <QtTest>
#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace {

// The far end of the line: records every frame with the time it came.
class SilentPeer : public QObject {
public:
    SilentPeer()
    {
        char name[256] = {};
        struct termios tio {};
        cfmakeraw(&tio);
        if (::openpty(&m_master, &m_slave, name, &tio, nullptr) == 0) {
            slavePath = QString::fromLocal8Bit(name);
            ::fcntl(m_master, F_SETFL, ::fcntl(m_master, F_GETFL) | O_NONBLOCK);
            m_notifier = new QSocketNotifier(m_master, QSocketNotifier::Read, this);
            connect(m_notifier, &QSocketNotifier::activated, this, [this] { readMaster(); });
            m_clock.start();
        }
    }
    ~SilentPeer() override
    {
        delete m_notifier;
        if (m_master >= 0)
            ::close(m_master);
        if (m_slave >= 0)
            ::close(m_slave);
    }

    QString slavePath;
    struct Frame {
        QByteArray bytes;
        qint64 at;
    };
    QList<Frame> frames;

    int machineOf(int i) const { return frames[i].bytes.mid(1, 3).toInt(); }

private:
    void readMaster()
    {
        char buf[512];
        for (;;) {
            const ssize_t n = ::read(m_master, buf, sizeof buf);
            if (n <= 0)
                break;
            m_pending.append(buf, n);
        }
        // Frames end in ETX CR LF.
        for (qsizetype end = m_pending.indexOf("\x03\r\n"); end >= 0; end = m_pending.indexOf("\x03\r\n")) {
            frames << Frame{m_pending.left(end + 3), m_clock.elapsed()};
            m_pending.remove(0, end + 3);
        }
    }

    int m_master = -1;
    int m_slave = -1;
    QSocketNotifier *m_notifier = nullptr;
    QByteArray m_pending;
    QElapsedTimer m_clock;
};

std::unique_ptr<ConsoleCore> console(const QString &home, const QString &device, int machines, int commWait)
{
    QDir().mkpath(home + QStringLiteral("/CFG"));
    provisionMailDatabase(home + QStringLiteral("/EMail.mdb"));
    writeTextLinesAtomic(home + QStringLiteral("/PortMap.CFG"), {QStringLiteral("COM2=") + device});
    writeTextLinesAtomic(home + QStringLiteral("/CommPort.CFG"),
                         {QStringLiteral("COM2"), QStringLiteral("9600"), QStringLiteral("N"), QStringLiteral("8"),
                          QStringLiteral("1"), QStringLiteral("PC Link"), QStringLiteral("OFF")});
    writeTextLinesAtomic(home + QStringLiteral("/CommWait.TM"), {QString::number(commWait)});
    QStringList run{QStringLiteral("多機"), QString()};
    for (int i = 0; i < machines; ++i)
        run << QStringLiteral("O\t");
    writeTextLinesAtomic(home + QStringLiteral("/CFG/Run.INI"), run);
    auto core = std::make_unique<ConsoleCore>(home);
    if (core->start() != ConsoleCore::StartResult::Ok)
        return nullptr;
    return core;
}

} // namespace

class SilentPtyTest : public QObject {
    Q_OBJECT
private slots:
    void oneSlotIsAskedThreeTimesThenBad()
    {
        QTemporaryDir dir;
        SilentPeer peer;
        QVERIFY(!peer.slavePath.isEmpty());
        // 9600 baud: 1200 ms plus the 100 ms of CommWait.TM.
        auto core = console(dir.path(), peer.slavePath, 1, 100);
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

    void otherSlotsAreScannedInBetween()
    {
        QTemporaryDir dir;
        SilentPeer peer;
        auto core = console(dir.path(), peer.slavePath, 3, 0);
        QVERIFY(core);
        core->link().tmrRecvErr.setInterval(150); // the order, not the time, is the point here
        QCOMPARE(core->togglePort(), ConsoleCore::PortAction::Opened);
        QTRY_VERIFY_WITH_TIMEOUT(peer.frames.size() >= 10, 8000);
        QList<int> order;
        for (int i = 0; i < 10; ++i)
            order << peer.machineOf(i);
        QCOMPARE(order, (QList<int>{1, 1, 1, 2, 2, 2, 3, 3, 3, 1}));
        for (int row = 1; row <= 3; ++row)
            QCOMPARE(core->state().sprdStatus.text(2, row), QStringLiteral("不良"));
    }

    void closingWorksAtAnyMoment()
    {
        QTemporaryDir dir;
        SilentPeer peer;
        auto core = console(dir.path(), peer.slavePath, 2, 0);
        QVERIFY(core);
        core->link().tmrRecvErr.setInterval(120);
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
        QCOMPARE(core->togglePort(), ConsoleCore::PortAction::Opened);
        QTRY_VERIFY(peer.frames.size() > sent);
    }
};

QTEST_GUILESS_MAIN(SilentPtyTest)
#include "test_silent_pty.moc"
