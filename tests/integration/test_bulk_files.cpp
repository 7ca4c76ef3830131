// Backup and restore of a simulated controller through the two bulk screens
// and from the command line: the whole memory received and saved as a set,
// the controller changed, the set read and sent, and the controller's memory
// compared word for word with what it was; the stops end their chains.
#include "CommonDialog.h"
#include "ParameterSet.h"
#include "Screens.h"
#include "SimConsole.h"
#include "Widgets.h"
#include "frmQM730_P_Recv.h"
#include "frmQM730_P_Send.h"
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

namespace {

// What a backup must give back: the whole parameter block but the running
// clock (rows 12 to 17), every text row, every pattern row, and the live
// segments of each pattern.
struct Memory {
    QByteArray up, td, pd;
    QMap<int, QByteArray> segments; // pattern -> its live segments

    static Memory of(SimProcess &sim, int machine = 1)
    {
        Memory m;
        auto dump = [&](const QString &what) {
            return QByteArray::fromHex(sim.command(QStringLiteral("dump %1 ").arg(machine) + what).toLatin1());
        };
        m.up = dump(QStringLiteral("up"));
        m.up.replace(2 * 11, 2 * 6, QByteArray(12, '\0'));
        m.td = dump(QStringLiteral("td"));
        m.pd = dump(QStringLiteral("pd"));
        for (int p = 1; p * 162 <= m.pd.size(); ++p) {
            const int count = (quint8(m.pd[(p - 1) * 162]) << 8) | quint8(m.pd[(p - 1) * 162 + 1]);
            if (count > 0)
                m.segments[p] = dump(QStringLiteral("sd %1").arg(p)).left(count * 58);
        }
        return m;
    }

    // As another machine must hold it after a restore: the parameter block but
    // the link rows of both serial ports, which are the open link's, and the
    // text rows a machine of 100 patterns uses (1 to 111).
    Memory comparable() const
    {
        Memory m = *this;
        for (int row : {195, 196, 197, 198, 199, 202, 203, 204, 205, 206})
            m.up.replace(2 * (row - 1), 2, QByteArray(2, '\0'));
        m.td = m.td.left(111 * 30);
        return m;
    }
};

void compareMemories(const Memory &restored, const Memory &original)
{
    QCOMPARE(restored.up, original.up);
    QCOMPARE(restored.td, original.td);
    QCOMPARE(restored.pd, original.pd);
    QCOMPARE(restored.segments, original.segments);
}

QStringList cells(QWidget &w)
{
    QStringList out;
    for (int i = 0; i < 4; ++i)
        out << indexed<QLabel>(w, "lblSTS", i)->text();
    return out;
}

} // namespace

class BulkFilesTest : public QObject {
    Q_OBJECT

    SimConsole m_line;
    TestHome &m_home = *m_line.home;

    bool ok(const QString &line) { return m_line.ok(line); }

    ConsoleState &bringUp(const QString &protocol)
    {
        m_line.startSim(protocol);
        return m_line.startConsole();
    }

    // The console with its command-line transfer; its exit status.
    int runConsole(const QStringList &args, QString *output = nullptr)
    {
        QProcess console;
        console.start(qEnvironmentVariable("QM730_BIN") + QStringLiteral("/qm730"),
                      QStringList{QStringLiteral("--home"), m_home.path()} + args);
        if (!console.waitForFinished(180000))
            return -1;
        if (output)
            *output = QString::fromUtf8(console.readAllStandardOutput() + console.readAllStandardError());
        return console.exitStatus() == QProcess::NormalExit ? console.exitCode() : -1;
    }

private slots:
    void cleanup() { m_line.stop(); }

    void roundTrip_data()
    {
        QTest::addColumn<QString>("protocol");
        QTest::newRow("pclink") << QStringLiteral("PC Link");
        QTest::newRow("crc") << QStringLiteral("PC Link + crc");
        QTest::newRow("modbus") << QStringLiteral("Modbus RTU");
    }
    void roundTrip()
    {
        QFETCH(QString, protocol);
        ConsoleState &s = bringUp(protocol);
        QTRY_VERIFY_WITH_TIMEOUT(polling(s), 5000);
        // Words and names at their limits, and a pattern with segments of its own.
        QVERIFY(ok("set 1 td 12 高溫高濕試驗ABCDEFGH") && ok("set 1 td 1 門開關2") && ok("set 1 up 300 65535")
                && ok("set 1 up 301 0") && ok("set 1 pd 100 1 2") && ok("set 1 sd 100 2 29 4660")
                && ok("set 1 pd 100 81 65535"));
        const Memory original = Memory::of(*m_line.sim);
        QVERIFY(original.segments.contains(1) && original.segments.contains(100));

        QSignalSpy finished(&m_line.core->link(), &CommLink::bulkFinished);
        const QString base = m_home.path() + QStringLiteral("/chamber1");
        {
            frmQM730_P_Recv recv(m_line.core->context());
            recv.show();
            child<QPushButton>(recv, "btnRecvALL")->click();
            QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 120000);
            QCOMPARE(cells(recv), QStringList({"接收完了", "接收完了", "接收完了", "接收完了"}));
            QVERIFY(child<QPushButton>(recv, "btnRecvALL")->isEnabled());
            child<CommonDialog>(recv, "CommonDialog1")->answerNext(base);
            child<QPushButton>(recv, "btnFileSave")->click();
            recv.reject();
        }
        for (const char *ext : {".UUP", ".UTD", ".UPD", ".USD"})
            QVERIFY(QFile::exists(base + QLatin1String(ext)));

        // The controller is changed: block, names, patterns and segments.
        QVERIFY(ok("set 1 up 25 9") && ok("set 1 up 300 1") && ok("set 1 up 512 77") && ok("set 1 td 12 改過")
                && ok("set 1 td 111 X") && ok("set 1 pd 1 2 99") && ok("set 1 pd 100 1 0") && ok("set 1 sd 1 1 1 1")
                && ok("set 1 sd 100 2 29 0"));
        QVERIFY(Memory::of(*m_line.sim).up != original.up);

        {
            frmQM730_P_Send send(m_line.core->context());
            send.show();
            child<CommonDialog>(send, "CommonDialog1")->answerNext(base + QStringLiteral(".UUP"));
            child<QPushButton>(send, "btnFileRead")->click();
            QCOMPARE(child<QLabel>(send, "lblFName")->text(), base + QStringLiteral(".Uxx"));
            child<QPushButton>(send, "btnSendALL")->click();
            QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 2, 180000);
            QCOMPARE(cells(send), QStringList({"傳送完了", "傳送完了", "傳送完了", "傳送完了"}));
            send.reject();
        }
        compareMemories(Memory::of(*m_line.sim), original);
        QTRY_VERIFY(polling(s)); // polling again
    }

    void stopEndsTheChain()
    {
        ConsoleState &s = bringUp(QStringLiteral("PC Link"));
        QTRY_VERIFY_WITH_TIMEOUT(polling(s), 5000);
        const QString base = m_home.path() + QStringLiteral("/stopped");
        // None of the given commands among the PC Link frames the simulator took, and polling goes on.
        auto noneOf = [&](const QList<QByteArray> &forbidden) {
            QList<QByteArray> seen;
            for (const QByteArray &f : m_line.sim->frames())
                seen << f.mid(4, 3);
            return seen.contains("RRP") && std::none_of(forbidden.begin(), forbidden.end(), [&](auto &c) { return seen.contains(c); });
        };
        {
            frmQM730_P_Recv recv(m_line.core->context());
            recv.show();
            child<QPushButton>(recv, "btnRecvALL")->click();
            QTRY_VERIFY_WITH_TIMEOUT(indexed<QLabel>(recv, "lblSTS", 1)->text().startsWith(QLatin1String("5/")), 10000);
            child<QPushButton>(recv, "btnRecvStop")->click();
            QTest::qWait(300);
            QVERIFY(ok("log clear"));
            QTest::qWait(1500);
            QVERIFY(noneOf({"RTD", "RPD", "RSD"}));
            // What arrived is kept and can be saved.
            child<CommonDialog>(recv, "CommonDialog1")->answerNext(base);
            child<QPushButton>(recv, "btnFileSave")->click();
        }
        QVERIFY(ok("set 1 pd 7 2 1234"));
        {
            frmQM730_P_Send send(m_line.core->context());
            send.show();
            child<CommonDialog>(send, "CommonDialog1")->answerNext(base + QStringLiteral(".UUP"));
            child<QPushButton>(send, "btnFileRead")->click();
            child<QPushButton>(send, "btnSendALL")->click();
            QTRY_VERIFY_WITH_TIMEOUT(indexed<QLabel>(send, "lblSTS", 1)->text().startsWith(QLatin1String("3/")), 10000);
            send.reject(); // closing stops it as the stop button does
            QTest::qWait(300);
            QVERIFY(ok("log clear"));
            QTest::qWait(1500);
            QVERIFY(noneOf({"WUP", "WTD", "WPD", "WSD"}));
        }
        QCOMPARE(m_line.sim->command("get 1 pd 7 2"), QStringLiteral("1234")); // the patterns were not reached
    }

    // qm730 backup / restore --verify against the simulator: machine 1 saved
    // and put into machine 2 of the same firmware. The protocols are the
    // link's, shown by the screens' round trips; the command line in Modbus
    // RTU by the next test.
    void commandLineRoundTrip()
    {
        QVERIFY(m_line.startSim(QStringLiteral("PC Link"), QStringLiteral("1,2"), {true, true}));
        QVERIFY(ok("set 1 up 47 4321") && ok("set 1 td 20 備份") && ok("set 1 pd 100 1 3") && ok("set 1 sd 100 3 2 777"));
        const QString base = m_home.path() + QStringLiteral("/from1");
        QString out;
        QCOMPARE(runConsole({"backup", "--machine", "1", "--to", base}, &out), 0);
        QVERIFY2(out.contains(QLatin1String("machine 1 saved as ") + base + QLatin1String(".Uxx")), qPrintable(out));
        QVERIFY(out.contains(QStringLiteral("程式組數 接收完了")));
        QVERIFY(Memory::of(*m_line.sim, 2).comparable().up != Memory::of(*m_line.sim, 1).comparable().up);

        QCOMPARE(runConsole({"restore", "--machine", "2", "--from", base + QStringLiteral(".UUP"), "--verify"}, &out), 0);
        QVERIFY2(out.contains(QLatin1String("machine 2 verified: no row differs")), qPrintable(out));
        compareMemories(Memory::of(*m_line.sim, 2).comparable(), Memory::of(*m_line.sim, 1).comparable());
    }

    // The ways a command-line transfer ends, each with its status.
    void commandLine()
    {
        // Machine 3 of the list is not on the line: the scan ends on a time-out.
        QVERIFY(m_line.startSim(QStringLiteral("Modbus RTU"), QStringLiteral("1,2:2.09"), {true, true, true}));
        QVERIFY(ok("set 1 up 47 4321") && ok("set 1 td 20 備份"));
        const Memory original = Memory::of(*m_line.sim);
        const QString base = m_home.path() + QStringLiteral("/cli");
        QString out;

        QCOMPARE(runConsole({"backup", "--machine", "1", "--to", base}, &out), 0);
        QVERIFY(ok("set 1 up 47 1") && ok("set 1 td 20 x") && ok("set 1 pd 2 5 5") && ok("set 1 sd 1 4 2 0"));
        QCOMPARE(runConsole({"--headless", "restore", "--machine", "1", "--from", base + QStringLiteral(".UUP")}, &out), 0);
        QVERIFY2(out.contains(QLatin1String("sent to machine 1")), qPrintable(out));
        compareMemories(Memory::of(*m_line.sim), original);

        // Machine 2 has 492 rows: the 512-row set is refused and nothing is sent.
        QVERIFY(ok("log clear"));
        QCOMPARE(runConsole({"restore", "--machine", "2", "--from", base}, &out), 5);
        QVERIFY2(out.contains(QStringLiteral("不一致 (F/W Version)")), qPrintable(out));
        for (const QByteArray &f : m_line.sim->frames())
            QVERIFY(quint8(f[1]) != 16 && quint8(f[1]) != 21); // no write went out
        // And the other way: a set of F/W 2.09 does not fit machine 1 of 2.31.
        ControllerImage older;
        older.applyFirmware(2.09);
        QVERIFY(paramset::saveParameterSet(older, 2.09, base + QStringLiteral("-209")));
        QVERIFY(ok("log clear"));
        QCOMPARE(runConsole({"restore", "--machine", "1", "--from", base + QStringLiteral("-209.UUP")}, &out), 5);
        QVERIFY2(out.contains(QStringLiteral("不一致 (F/W Version): the set has 492 parameter rows, the machine 512")),
                 qPrintable(out));
        for (const QByteArray &f : m_line.sim->frames())
            QVERIFY(quint8(f[1]) != 16 && quint8(f[1]) != 21);

        QCOMPARE(runConsole({"backup", "--machine", "7", "--to", base}), 4);            // not on the line
        QCOMPARE(runConsole({"restore", "--machine", "1", "--from", base + "-none"}), 5); // no such set
        QCOMPARE(runConsole({"backup", "--machine", "1"}), 2);                            // no set named
        QCOMPARE(runConsole({"backup", "--machine", "1", "--to", base, "--verify"}), 2);  // nothing to verify
        QCOMPARE(runConsole({"restore", "--machine", "0", "--from", base}), 2);
        // A set that cannot be written changes nothing.
        QCOMPARE(runConsole({"backup", "--machine", "1", "--to", base + QStringLiteral(".UUP/inside")}, &out), 7);
        QVERIFY2(out.contains(QLatin1String("cannot save")), qPrintable(out));
        QCOMPARE(QDir(m_home.path()).entryList({QStringLiteral("cli.U*")}, QDir::Files),
                 QStringList({"cli.UPD", "cli.USD", "cli.UTD", "cli.UUP"}));

        // Another console holds the port: nothing is done.
        {
            ConsoleState &s = m_line.startConsole();
            QTRY_VERIFY_WITH_TIMEOUT(polling(s), 10000);
            QCOMPARE(runConsole({"backup", "--machine", "1", "--to", base + QStringLiteral("-busy")}, &out), 3);
            QVERIFY2(out.contains(QLatin1String("cannot open COM1")), qPrintable(out));
            QVERIFY(!QFile::exists(base + QStringLiteral("-busy.UUP")));
            m_line.core.reset();
        }

        // Stopped by the operator (SIGTERM) during a backup: the chain ends,
        // the status says so and no set is written.
        {
            QProcess stopped;
            stopped.start(qEnvironmentVariable("QM730_BIN") + QStringLiteral("/qm730"),
                          {"--home", m_home.path(), "backup", "--machine", "1", "--to", base + QStringLiteral("-stopped")});
            QByteArray said;
            QTRY_VERIFY_WITH_TIMEOUT((said += stopped.readAllStandardOutput()).contains("文本 "), 20000);
            stopped.terminate();
            QVERIFY(stopped.waitForFinished(10000));
            QCOMPARE(stopped.exitStatus(), QProcess::NormalExit);
            QCOMPARE(stopped.exitCode(), 6);
            QVERIFY(stopped.readAllStandardError().contains("stopped by a signal"));
            QVERIFY(!QFile::exists(base + QStringLiteral("-stopped.UUP")));
        }
        // The machine stops answering during the send: the transfer ends with its status.
        QProcess console;
        console.start(qEnvironmentVariable("QM730_BIN") + QStringLiteral("/qm730"),
                      {"--home", m_home.path(), "restore", "--machine", "1", "--from", base});
        QByteArray said;
        QTRY_VERIFY_WITH_TIMEOUT((said += console.readAllStandardOutput()).contains("使用者 120/512"), 20000);
        QVERIFY(ok("fault 1 silent on"));
        QVERIFY(console.waitForFinished(30000));
        QCOMPARE(console.exitCode(), 6);
        QVERIFY(console.readAllStandardError().contains("machine 1 stopped answering"));
        // Not on the line at all.
        QCOMPARE(runConsole({"backup", "--machine", "1", "--to", base + QStringLiteral("-new")}), 4);
    }
};

QTEST_MAIN(BulkFilesTest)
#include "test_bulk_files.moc"
