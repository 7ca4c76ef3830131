// qm730-mail: sends the mail the console has queued in EMail.mdb.
//
//   qm730-mail [--home DIR] [--timeout MS]
//
// Reads the SetMail row (ProcID 1: server, sender, ";"-separated addresses),
// sends every SendMail row in order and deletes each row once the server has
// taken it. On the first failure it sets SendNG = 1, which stops the console
// from starting it again until the settings are saved, and leaves the unsent
// rows. Copies started while one is running wait for it, then send what is
// left. Exit code 0 when everything waiting was sent, 1 otherwise.
#include "SmtpClient.h"
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QUrl>
#include <cstdio>
#include <optional>

namespace {

struct Waiting {
    qint64 rowid = 0;
    QString title;
    QString body;
};

class Queue {
public:
    explicit Queue(QSqlDatabase db) : m_db(std::move(db)) {}

    bool readSetMail(QString &smtp, QString &from, QString &to)
    {
        QSqlQuery q(m_db);
        if (!q.exec(QStringLiteral("SELECT SMTP, FromMail, ToMail FROM SetMail WHERE ProcID = 1")) || !q.next())
            return false;
        smtp = q.value(0).toString();
        from = q.value(1).toString();
        to = q.value(2).toString();
        return true;
    }

    // The oldest waiting row, if any; a failed read also gives none.
    std::optional<Waiting> next(bool &error)
    {
        QSqlQuery q(m_db);
        error = !q.exec(QStringLiteral("SELECT rowid, MailTitle, MailBody FROM SendMail ORDER BY rowid LIMIT 1"));
        if (error || !q.next())
            return std::nullopt;
        return Waiting{q.value(0).toLongLong(), q.value(1).toString(), q.value(2).toString()};
    }

    // Deleting a row that someone else removed meanwhile is no error.
    bool remove(qint64 rowid)
    {
        QSqlQuery q(m_db);
        q.prepare(QStringLiteral("DELETE FROM SendMail WHERE rowid = ?"));
        q.addBindValue(rowid);
        return q.exec();
    }

    void markFailed()
    {
        QSqlQuery q(m_db);
        q.exec(QStringLiteral("UPDATE SetMail SET SendNG = 1 WHERE ProcID = 1"));
    }

private:
    QSqlDatabase m_db;
};

int fail(Queue &queue, const QString &why)
{
    std::fprintf(stderr, "qm730-mail: %s\n", qPrintable(why));
    queue.markFailed();
    return 1;
}

int run(const QString &home, int timeoutMs, int lockWaitMs)
{
    const QString dbPath = QDir(home).absoluteFilePath(QStringLiteral("EMail.mdb"));
    if (!QFileInfo(dbPath).isFile()) {
        std::fprintf(stderr, "qm730-mail: %s not found\n", qPrintable(dbPath));
        return 1;
    }

    // One sender at a time on a database; a later copy waits, then sends what is left.
    QLockFile lock(QDir(home).absoluteFilePath(QStringLiteral("EMail.mdb.sending")));
    if (!lock.tryLock(lockWaitMs)) {
        std::fprintf(stderr, "qm730-mail: another sender is still busy\n");
        return 1;
    }

    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("mail"));
    db.setDatabaseName(QUrl::fromLocalFile(dbPath).toString(QUrl::FullyEncoded) + QStringLiteral("?mode=rw"));
    db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=10000"));
    if (!db.open()) {
        std::fprintf(stderr, "qm730-mail: cannot open %s\n", qPrintable(dbPath));
        return 1;
    }
    Queue queue(db);

    bool readError = false;
    std::optional<Waiting> mail = queue.next(readError);
    if (readError) {
        std::fprintf(stderr, "qm730-mail: cannot read SendMail\n");
        return 1;
    }
    if (!mail)
        return 0;

    QString smtp, from, toList;
    if (!queue.readSetMail(smtp, from, toList))
        return fail(queue, QStringLiteral("no SetMail row"));
    const QStringList to = parseAddressList(toList);
    if (to.isEmpty() || from.trimmed().isEmpty())
        return fail(queue, QStringLiteral("no sender or no address"));

    SmtpClient client(timeoutMs);
    if (!client.open(parseSmtpServer(smtp)))
        return fail(queue, client.lastError());
    while (mail) {
        const QByteArray message = composeMessage(from.trimmed(), to, mail->title, mail->body, QDateTime::currentDateTime());
        if (!client.send(from.trimmed(), to, message)) {
            client.quit();
            return fail(queue, client.lastError());
        }
        if (!queue.remove(mail->rowid)) {
            client.quit();
            std::fprintf(stderr, "qm730-mail: cannot delete a sent row\n");
            return 1;
        }
        mail = queue.next(readError);
        if (readError) {
            client.quit();
            std::fprintf(stderr, "qm730-mail: cannot read SendMail\n");
            return 1;
        }
    }
    client.quit();
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("qm730-mail"));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Sends the mail queued by the QM730 console."));
    parser.addHelpOption();
    QCommandLineOption homeOpt(QStringLiteral("home"), QStringLiteral("Folder of EMail.mdb (default: current folder)."),
                               QStringLiteral("dir"), QDir::currentPath());
    QCommandLineOption timeoutOpt(QStringLiteral("timeout"), QStringLiteral("Time-out of each SMTP step in ms."),
                                  QStringLiteral("ms"), QStringLiteral("30000"));
    QCommandLineOption lockOpt(QStringLiteral("lock-wait"),
                               QStringLiteral("How long to wait for another sender in ms."), QStringLiteral("ms"),
                               QStringLiteral("300000"));
    parser.addOptions({homeOpt, timeoutOpt, lockOpt});
    parser.process(app);

    int result = 1;
    {
        const int timeoutMs = qBound(100, parser.value(timeoutOpt).toInt(), 600000);
        const int lockWaitMs = qBound(0, parser.value(lockOpt).toInt(), 3600000);
        result = run(parser.value(homeOpt), timeoutMs, lockWaitMs);
    }
    QSqlDatabase::removeDatabase(QStringLiteral("mail"));
    return result;
}
