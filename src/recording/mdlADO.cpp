#include "mdlADO.h"
#include <QAtomicInt>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QUrl>

namespace {

QString nextConnectionName()
{
    static QAtomicInt counter;
    return QStringLiteral("mdlADO-%1").arg(counter.fetchAndAddRelaxed(1));
}

// Opens the file without creating it (SQLite URI mode "rw").
bool openExisting(QSqlDatabase &db, const QString &path, int busyMs)
{
    if (!QFileInfo(path).isFile())
        return false;
    const QString uri = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()).toString(QUrl::FullyEncoded);
    db.setDatabaseName(uri + QStringLiteral("?mode=rw"));
    db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=%1").arg(busyMs));
    if (!db.open())
        return false;
    // A file that is not a database opens; the first read tells.
    QSqlQuery probe(db);
    return probe.exec(QStringLiteral("SELECT COUNT(*) FROM sqlite_master"));
}

} // namespace

mdlADO::mdlADO() : m_connection(nextConnectionName())
{
}

mdlADO::~mdlADO()
{
    close();
}

bool mdlADO::open(const QString &path)
{
    close();
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    if (openExisting(db, path, BusyTimeoutMs))
        return true;
    db = QSqlDatabase();
    close();
    return false;
}

bool mdlADO::isOpen() const
{
    return QSqlDatabase::contains(m_connection) && QSqlDatabase::database(m_connection, false).isOpen();
}

void mdlADO::close()
{
    if (!QSqlDatabase::contains(m_connection))
        return;
    {
        QSqlDatabase db = QSqlDatabase::database(m_connection, false);
        db.close();
    }
    QSqlDatabase::removeDatabase(m_connection);
}

bool mdlADO::exec(const QString &sql, const QVariantList &values)
{
    if (!isOpen())
        return false;
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    if (!q.prepare(sql))
        return false;
    for (const QVariant &v : values)
        q.addBindValue(v);
    return q.exec();
}

QVariant mdlADO::field(const QString &sql, const QVariantList &values)
{
    if (!isOpen())
        return {};
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    if (!q.prepare(sql))
        return {};
    for (const QVariant &v : values)
        q.addBindValue(v);
    if (!q.exec() || !q.next())
        return {};
    return q.value(0);
}

bool mdlADO::saveSetMail(const QString &smtp, const QString &from, const QString &toList)
{
    const QVariant count = field(QStringLiteral("SELECT COUNT(*) FROM SetMail WHERE ProcID = 1"));
    if (!count.isValid())
        return false;
    if (count.toInt() > 0)
        return exec(QStringLiteral("UPDATE SetMail SET SMTP = ?, FromMail = ?, ToMail = ?, SendNG = 0 WHERE ProcID = 1"),
                    {smtp, from, toList});
    return exec(QStringLiteral("INSERT INTO SetMail(ProcID, SMTP, FromMail, ToMail, SendNG) VALUES (1, ?, ?, ?, 0)"),
                {smtp, from, toList});
}

std::optional<int> mdlADO::readSendNG()
{
    const QVariant v = field(QStringLiteral("SELECT SendNG FROM SetMail WHERE ProcID = 1"));
    if (!v.isValid())
        return std::nullopt;
    return v.toInt();
}

bool mdlADO::queueMail(const QString &title, const QString &body)
{
    return exec(QStringLiteral("INSERT INTO SendMail(MailTitle, MailBody) VALUES (?, ?)"), {title, body});
}

bool mdlADO::dropWaitingMail()
{
    return exec(QStringLiteral("DELETE FROM SendMail"));
}

bool provisionMailDatabase(const QString &path)
{
    const QString name = nextConnectionName();
    bool ok = false;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        if (db.open()) {
            QSqlQuery q(db);
            ok = q.exec(QStringLiteral("CREATE TABLE IF NOT EXISTS SetMail (ProcID INTEGER, SMTP TEXT, FromMail TEXT, "
                                       "ToMail TEXT, SendNG INTEGER)"))
                && q.exec(QStringLiteral("CREATE TABLE IF NOT EXISTS SendMail (MailTitle TEXT, MailBody TEXT)"));
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    return ok;
}
