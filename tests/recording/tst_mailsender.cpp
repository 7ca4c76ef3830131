// qm730-mail against a real SMTP server on loopback (aiosmtpd) and against
// servers that refuse, reject or stay silent.
#include "RecordingFixture.h"
#include "mdlADO.h"
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>

class TestMailSender : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    QString home;
    QString inbox;
    QProcess sink;

    static QString sender() { return QString::fromLocal8Bit(qgetenv("QM730_BIN")) + "/qm730-mail"; }

    // Starts the loopback server; returns its port.
    int startSink(const QString &mode)
    {
        sink.setProgram("/usr/bin/python3");
        sink.setArguments({SMTP_SINK, inbox, mode});
        sink.start();
        if (!sink.waitForStarted(5000))
            return 0;
        QByteArray out;
        while (!out.contains('\n') && sink.waitForReadyRead(10000))
            out += sink.readAllStandardOutput();
        const QList<QByteArray> parts = out.trimmed().split(' ');
        return parts.size() == 2 && parts[0] == "PORT" ? parts[1].toInt() : 0;
    }

    QString mdb() const { return home + "/EMail.mdb"; }
    void setMail(int port, const QString &to)
    {
        sql(mdb(), QString("INSERT INTO SetMail VALUES (1, '127.0.0.1:%1', 'qm730@example.com', '%2', 0)").arg(port).arg(to));
    }
    void queue(const QString &body, const QString &title = "QM730 Alarm Status")
    {
        sql(mdb(), QString("INSERT INTO SendMail VALUES ('%1', '%2')").arg(title, body));
    }
    QStringList waitingBodies()
    {
        return QVariant(sql(mdb(), "SELECT MailBody FROM SendMail ORDER BY rowid")).toStringList();
    }
    int sendNG() { return sql(mdb(), "SELECT SendNG FROM SetMail WHERE ProcID = 1").value(0, -1).toInt(); }

    // The sender's exit code; -1 when it hangs for a minute or crashes.
    int runSender(const QStringList &extra = {})
    {
        QProcess p;
        p.start(sender(), QStringList{"--home", home} + extra);
        const bool ended = p.waitForFinished(60000);
        if (!ended)
            p.kill();
        return ended && p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    }

    // Each mail the server accepted as "from|to,...|subject|body|charset".
    QStringList received()
    {
        QStringList out;
        for (const QString &name : QDir(inbox).entryList({"*.json"}, QDir::Files, QDir::Name)) {
            QFile f(inbox + "/" + name);
            if (!f.open(QIODevice::ReadOnly))
                continue;
            const QJsonObject m = QJsonDocument::fromJson(f.readAll()).object();
            auto text = [&m](const char *key) { return m.value(key).toString().replace("\r\n", "\n").trimmed(); };
            out << QStringList({text("mail_from"), m.value("rcpt_tos").toVariant().toStringList().join(','), text("subject"),
                                text("body"), text("charset")}).join('|');
        }
        return out;
    }

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        home = m_dir->path();
        inbox = home + "/inbox";
        QDir().mkpath(inbox);
        QVERIFY(provisionMailDatabase(mdb()));
    }

    void cleanup()
    {
        sink.closeWriteChannel(); // the sink ends when its input closes
        if (sink.state() != QProcess::NotRunning && !sink.waitForFinished(5000))
            sink.kill();
        sink.waitForFinished();
    }

    void deliversEveryRowOnceAndEmptiesTheQueue()
    {
        const int port = startSink("accept");
        QVERIFY2(port > 0, "the loopback SMTP server did not start");
        setMail(port, "a@example.com;b@example.com;");
        queue("2026-03-01 10:20:30 Meter001 D/I 1 ON");
        queue("first line\n.\n..two dots\nlast line 溫度 = 25.0", "溫度警報");

        QCOMPARE(runSender(), 0);
        QVERIFY(waitingBodies().isEmpty());
        QCOMPARE(sendNG(), 0);
        QCOMPARE(received(), QStringList({"qm730@example.com|a@example.com,b@example.com|QM730 Alarm Status|"
                                          "2026-03-01 10:20:30 Meter001 D/I 1 ON|utf-8",
                                          "qm730@example.com|a@example.com,b@example.com|溫度警報|"
                                          "first line\n.\n..two dots\nlast line 溫度 = 25.0|utf-8"}));

        // Nothing waiting: nothing to do, still a success.
        QCOMPARE(runSender(), 0);
        QCOMPARE(received().size(), 2);

        // Two copies at once send each row once.
        for (int i = 1; i <= 6; ++i)
            queue(QString("mail %1").arg(i));
        QProcess copies[2];
        for (QProcess &p : copies)
            p.start(sender(), {"--home", home});
        for (QProcess &p : copies) {
            QVERIFY(p.waitForFinished(60000));
            QCOMPARE(p.exitCode(), 0);
        }
        QStringList bodies;
        for (const QString &m : received().mid(2))
            bodies << m.section(u'|', 3, 3);
        QCOMPARE(bodies, (QStringList{"mail 1", "mail 2", "mail 3", "mail 4", "mail 5", "mail 6"}));
        QVERIFY(waitingBodies().isEmpty());
    }

    void failuresSetSendNGAndKeepTheRows_data()
    {
        QTest::addColumn<QString>("server");
        QTest::newRow("connection refused") << "refused";
        QTest::newRow("recipient rejected with 550") << "reject";
        QTest::newRow("server never answers") << "silent";
    }

    void failuresSetSendNGAndKeepTheRows()
    {
        QFETCH(QString, server);
        QTcpServer silent;
        int port = 0;
        if (server == "refused") { // a port on loopback with nothing listening
            QVERIFY(silent.listen(QHostAddress::LocalHost));
            port = silent.serverPort();
            silent.close();
        } else if (server == "reject") {
            port = startSink("reject");
        } else {
            QVERIFY(silent.listen(QHostAddress::LocalHost));
            port = silent.serverPort();
        }
        QVERIFY(port > 0);
        setMail(port, "a@example.com;");
        queue("one");
        queue("two");
        QCOMPARE(runSender({"--timeout", "700"}), 1);
        QCOMPARE(sendNG(), 1);
        QCOMPARE(waitingBodies(), (QStringList{"one", "two"}));
        QVERIFY(received().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestMailSender)
#include "tst_mailsender.moc"
