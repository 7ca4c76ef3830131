#pragma once
#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QTcpSocket>

// Plain SMTP for the mail sender, with blocking waits and a time-out on each
// step (the sender is a short-lived tool of its own, not part of the console's
// event loop).

struct SmtpServer {
    QString host;
    quint16 port = 25;
};

// "host", "host:port" or "[v6-address]:port"; the port defaults to 25.
SmtpServer parseSmtpServer(const QString &text);
// The addresses of a ";"-separated list, blanks trimmed, empty entries dropped.
QStringList parseAddressList(const QString &list);

// A complete RFC 5322 message in UTF-8: encoded-word subject, quoted-printable
// body, CR LF line ends. Not yet dot-stuffed.
QByteArray composeMessage(const QString &from, const QStringList &to, const QString &subject,
                          const QString &body, const QDateTime &date);
// Doubles a leading "." on every line, as DATA requires.
QByteArray dotStuff(const QByteArray &message);

class SmtpClient {
public:
    explicit SmtpClient(int timeoutMs) : m_timeoutMs(timeoutMs) {}

    // Connects, reads the greeting and introduces itself (EHLO, else HELO).
    bool open(const SmtpServer &server);
    // One mail transaction: MAIL FROM, RCPT TO for each address, DATA.
    bool send(const QString &from, const QStringList &to, const QByteArray &message);
    void quit();

    QString lastError() const { return m_error; }

private:
    // The reply code (the last line of a multi-line reply), or -1 on time-out or loss of the link.
    int readReply();
    bool command(const QByteArray &line, int expectedClass);
    bool fail(const QString &error);

    QTcpSocket m_socket;
    QByteArray m_buffer;
    QString m_replyText;
    QString m_error;
    int m_timeoutMs;
};
