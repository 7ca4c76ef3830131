// Event history and mail queueing, driven through the receive path: poll
// replies (RRP, then RCV) go into a link whose status listener is the recorder.
#include "CommLink.h"
#include "FakeCommPort.h"
#include "Files.h"
#include "PcLinkReplies.h"
#include "RecordFiles.h"
#include "Recorder.h"
#include "RecordingFixture.h"
#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

class TestEvents : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    QString home;
    QDateTime m_now;
    std::unique_ptr<ConsoleState> state;
    std::unique_ptr<Recorder> rec;
    std::unique_ptr<FakeCommPort> port;
    std::unique_ptr<CommLink> link;
    QList<QStringList> launches; // program, arguments..., working folder

    // One poll reply of a slot with the words changed, taken as the poll
    // takes it: state 1 stores RRP, state 2 RCV. The test is the line: no
    // further frame goes out.
    void receive(int slot, bool status, const QMap<int, int> &changes)
    {
        const TextTable &table = status ? state->image.sprdRCV : state->image.sprdRRP;
        QList<int> rows;
        for (int row = 1; row <= (status ? 27 : 17); ++row)
            rows << changes.value(row, int(table.number(slot + 1, row)));
        const int machine = state->machines[slot].MachineNumber;
        state->PollSlot = slot;
        state->NextPollSlot = -1;
        state->CmdState = status ? Cmd::PollValues : Cmd::Poll;
        state->RxSettleMs = 0;
        port->feed(status ? rcvReply(machine, rows) : rrpReply(machine, rows));
        link->tmrSend.stop();
        link->tmrRecvErr.stop();
    }
    void statusStep(int slot, const QMap<int, int> &changes) { receive(slot, true, changes); }
    void runState(int slot, bool running) { receive(slot, false, {{1, int(running)}}); }

    QStringList eventTexts(int machine)
    {
        QStringList texts;
        for (const QString &line : crlfLines(eventFilePath(home, machine))) {
            const QStringList f = line.split(u'\t');
            if (f.size() != 2 || f[0] != m_now.toString("yyyy-MM-dd HH:mm:ss"))
                return {"malformed: " + line};
            texts << f[1];
        }
        return texts;
    }

    QStringList queuedBodies()
    {
        QStringList bodies;
        for (const QVariant &v : sql(home + "/EMail.mdb", "SELECT MailTitle || '|' || MailBody FROM SendMail ORDER BY rowid"))
            bodies << v.toString().remove("QM730 Alarm Status|");
        return bodies;
    }

    QString prefix(int machine)
    {
        return m_now.toString("yyyy-MM-dd HH:mm:ss") + QString(" Meter%1 ").arg(machine, 3, 10, QChar('0'));
    }

    // Mail on, with the given items switched on.
    void mailOn(const QList<int> &items)
    {
        MailSettings s;
        s.MailUse = 1;
        s.MailSmtp = "127.0.0.1";
        s.MailFrom = "qm@example.com";
        s.MailAddress[0] = "op@example.com";
        s.MailToList = mailToListTrailing(s.MailAddress);
        s.computeEnabled();
        for (int i : items)
            s.MailItem[i] = "1";
        rec->mail().saveSettings(s);
    }

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        home = m_dir->path();
        m_now = at("2026-03-01 10:20:30");
        QVERIFY(provisionMailDatabase(home + "/EMail.mdb"));
        state = makeState(home, {1, 7});
        for (auto &m : state->machines)
            m.MachineRunning = false;
        rec = std::make_unique<Recorder>(*state, [] { return true; }, "/opt/qm/qm730-mail");
        rec->setClock([this] { return m_now; });
        launches.clear();
        rec->mail().setLauncher([this](const QString &p, const QStringList &a, const QString &d) {
            launches << (QStringList{p} + a + QStringList{d});
            return true;
        });
        QVERIFY(rec->openDatabase());
        port = std::make_unique<FakeCommPort>();
        link = std::make_unique<CommLink>(*state, *port);
        link->setStatusListener(rec.get());
        QCOMPARE(port->open({}, {}), CommPort::OpenResult::Ok);
    }

    void cleanup()
    {
        link.reset();
        port.reset();
        rec.reset();
        state.reset();
    }

    void runStartAndEndNeedTheRunMode()
    {
        runState(0, true); // found running before the first status reading
        QVERIFY(!QFileInfo::exists(eventFilePath(home, 1)));
        statusStep(0, {{13, 0}});
        runState(0, false);
        runState(1, false);
        statusStep(1, {{13, 3}});
        runState(1, true);
        runState(1, true);
        runState(1, false);
        QCOMPARE(eventTexts(1), QStringList{"PROGRAMRUN End."});
        QCOMPARE(eventTexts(7), (QStringList{"FIXRUNRUN Start.", "FIXRUNRUN End."}));
    }

    // The first reading writes nothing; then each changed bit is an event.
    void bitEventsAfterASilentFirstReading()
    {
        statusStep(1, {{2, 12500}, {5, 500}, {7, 0xFF}, {9, 0xFF}, {12, 3}});
        statusStep(0, {});
        QVERIFY(!QFileInfo::exists(eventFilePath(home, 7)));
        QVERIFY(!QFileInfo::exists(eventFilePath(home, 1))); // machine 7 sits in slot 1

        statusStep(1, {{2, 500}, {5, 1000}, {7, 0xFA}, {9, 0xEF}, {12, 1}});
        QCOMPARE(eventTexts(7), (QStringList{"Temp. B.Out OFF", "Humi. B.Out ON", "I/S 1 OFF", "I/S 3 OFF",
                                              "PTN Alarm 1 OFF", "D/I 2 OFF"}));
        statusStep(0, {{7, 5}, {8, 0x80}, {9, 0x11}, {10, 0x100}, {11, 0x2}});
        QCOMPARE(eventTexts(1), (QStringList{"I/S 1 ON", "I/S 3 ON", "T/S 8 ON", "SYS Alarm 1 ON", "PTN Alarm 1 ON",
                                             "O/C 2 ON"}));
        // Upper bits of rows 7, 8 and 10 raise no file event; unchanged words none at all.
        statusStep(0, {{7, 5 | 0x3000}, {8, 0x80 | 0x400}, {10, 0xF00}});
        QCOMPARE(eventTexts(1).size(), 6);
        statusStep(0, {{9, 0x10}});
        QCOMPARE(eventTexts(1).last(), QString("SYS Alarm 1 OFF"));
    }

    void unwritableHistoryEndsTheStep()
    {
        QFile blocker(home + "/ActionHistory");
        QVERIFY(blocker.open(QIODevice::WriteOnly)); // a file where the folder should be
        blocker.close();
        statusStep(0, {});
        // The store routine logs the failure under its name and ends: the row
        // whose event could not be written, and those behind it, keep their old words.
        statusStep(0, {{6, 9}, {7, 1}, {12, 1}});
        const QByteArray log = fileBytes(home + "/Err.LOG");
        QVERIFY2(log.endsWith(",Disp_RCV\r\n") && log.contains("cannot append to"), log.constData());
        QCOMPARE(state->image.sprdRCV.text(1, 6), QString("9"));
        QCOMPARE(state->image.sprdRCV.text(1, 7), QString("0"));
        QCOMPARE(state->image.sprdRCV.text(1, 12), QString("0"));
    }

    // Each clause switched on queues a row; the alarm names differ from the file's.
    void changesQueueOneRowPerClause()
    {
        mailOn({0, 2, 4, 5, 8});
        statusStep(1, {});
        statusStep(0, {});
        statusStep(1, {{12, 0x3}, {7, 0x1000}});
        QCOMPARE(queuedBodies(), (QStringList{prefix(7) + "H.ON  ON", prefix(7) + "D/I 1 ON",
                                               prefix(7) + "D/I 1 OND/I 2 ON"}));
        QCOMPARE(launches.size(), 1);
        QCOMPARE(launches[0], (QStringList{"/opt/qm/qm730-mail", "--home", home, home}));

        statusStep(0, {{9, 0x12}});
        QCOMPARE(eventTexts(1), (QStringList{"PTN Alarm 1 ON", "SYS Alarm 2 ON"}));
        QCOMPARE(queuedBodies().mid(3),
                 (QStringList{prefix(1) + "Pattern Alarm 2 ON", prefix(1) + "Pattern Alarm 2 ONSystem Alarm 1 ON"}));
    }

    // Clauses switched off queue nothing; the first reading mails bits already on.
    void switchedOffItemsQueueNothing()
    {
        mailOn({2, 6, 8, 9});
        statusStep(0, {});
        statusStep(0, {{7, 0x21}, {9, 0x31}});
        QVERIFY(queuedBodies().isEmpty());
        QVERIFY(launches.isEmpty());
        statusStep(0, {{7, 0x1021}, {12, 0x80}});
        QCOMPARE(queuedBodies(), (QStringList{prefix(1) + "H.ON  ON", prefix(1) + "D/I 8 ON"}));
        // A switched-off clause still grows the body that a switched-on one of the same word queues.
        statusStep(0, {{7, 0x20}});
        QCOMPARE(queuedBodies().size(), 3);
        QCOMPARE(queuedBodies().last(), prefix(1) + "I/S 1 OFFH.ON  OFF");
        QCOMPARE(launches.size(), 2);

        statusStep(1, {{10, 0x100}, {2, 65535}});
        QCOMPARE(queuedBodies().mid(3), (QStringList{prefix(7) + "Temp B.Out  ON", prefix(7) + "RELAY OUTPUT 9 ON"}));
        QVERIFY(!QFileInfo::exists(eventFilePath(home, 7)));
        QCOMPARE(launches.size(), 3);
    }

    void senderFailureStopsTheStartButNotTheQueue()
    {
        mailOn({0});
        sql(home + "/EMail.mdb", "UPDATE SetMail SET SendNG = 1");
        statusStep(0, {});
        statusStep(0, {{7, 1}});
        QCOMPARE(queuedBodies().size(), 1);
        QVERIFY(launches.isEmpty());

        mailOn({0}); // saving the settings clears SendNG
        statusStep(0, {{7, 0}});
        QCOMPARE(launches.size(), 1);
    }

    void settingsAtStartUp()
    {
        QStringList lines{"1", "smtp.o'brien.example:2525", "qm@example.com", "a@example.com", "", "nobody",
                          "b@example.com", "", "", "", "", "", ""};
        for (int i = 0; i < 11; ++i)
            lines << (i == 3 ? "1" : "0");
        QVERIFY(writeTextLinesAtomic(home + "/CFG/SetEMail.CFG", lines));
        rec->start();
        rec->runLog().stop();
        const MailSettings s = rec->mail().settings();
        QCOMPARE(s.MailToList, QString(";a@example.com;b@example.com"));
        QCOMPARE(s.MailAddress[2], QString("nobody"));
        QVERIFY(s.MailEnabled);
        QCOMPARE(s.MailItem, QStringList({"0", "0", "0", "1", "0", "0", "0", "0", "0", "0", "0"}));

        // The server name with its quote goes into SetMail as typed.
        rec->mail().saveSettings(s);
        QCOMPARE(sql(home + "/EMail.mdb", "SELECT SMTP || '|' || SendNG FROM SetMail"),
                 QVariantList{"smtp.o'brien.example:2525|0"});

        // Addresses without "@" only, or a short file: no mail.
        lines[3] = lines[6] = "";
        QVERIFY(writeTextLinesAtomic(home + "/CFG/SetEMail.CFG", lines));
        rec->mail().loadSettings();
        QVERIFY(!rec->mail().settings().MailEnabled);
        QVERIFY(writeTextLinesAtomic(home + "/CFG/SetEMail.CFG", lines.mid(0, 23)));
        rec->mail().loadSettings();
        QCOMPARE(rec->mail().settings().MailSmtp, QString());
    }

    void missingDatabaseIsNotCreated()
    {
        QTemporaryDir empty;
        auto other = makeState(empty.path(), {1});
        Recorder r(*other, [] { return false; });
        QVERIFY(!r.openDatabase());
        QVERIFY(!QFileInfo::exists(empty.path() + "/EMail.mdb"));
        QFile junk(empty.path() + "/EMail.mdb");
        QVERIFY(junk.open(QIODevice::WriteOnly));
        junk.write(QByteArray(4096, 'x'));
        junk.close();
        QVERIFY(!r.openDatabase());
    }
};

QTEST_GUILESS_MAIN(TestEvents)
#include "tst_events.moc"
