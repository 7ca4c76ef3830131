#pragma once
#include <QString>
#include <QVariant>
#include <optional>

// The mail database \EMail.mdb (SQLite): the SetMail row the sender reads and
// the SendMail rows it sends. The connection opens once at start-up and stays
// open; every statement binds its values, so quotes in a server name or a
// body are stored as typed. A failing statement returns false or nothing and
// is otherwise silent.
class mdlADO {
public:
    mdlADO();
    ~mdlADO();
    mdlADO(const mdlADO &) = delete;
    mdlADO &operator=(const mdlADO &) = delete;

    // Opens an existing database file; never creates one. False when the file
    // is missing or is not a database: the console then shows "File not found."
    // and ends.
    bool open(const QString &path);
    bool isOpen() const;
    void close();

    // SetMail row of ProcID 1: create it or update it; both clear SendNG.
    bool saveSetMail(const QString &smtp, const QString &from, const QString &toList);
    // SendNG of the SetMail row; empty when the row or the database is missing.
    std::optional<int> readSendNG();
    bool queueMail(const QString &title, const QString &body);
    // Drops every waiting mail.
    bool dropWaitingMail();

    // Milliseconds a statement waits for the sender's lock on the file.
    static constexpr int BusyTimeoutMs = 2000;

private:
    bool exec(const QString &sql, const QVariantList &values = {});
    QVariant field(const QString &sql, const QVariantList &values = {});

    QString m_connection;
};

// Creates a mail database with the two empty tables (installer, demo and tests).
// An existing file keeps its rows; missing tables are added.
bool provisionMailDatabase(const QString &path);
