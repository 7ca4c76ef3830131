#include "SmtpClient.h"
#include <QDeadlineTimer>
#include <QHostInfo>
#include <QUuid>

SmtpServer parseSmtpServer(const QString &text)
{
    SmtpServer s;
    QString t = text.trimmed();
    if (t.startsWith(u'[')) {
        const qsizetype close = t.indexOf(u']');
        if (close > 0) {
            s.host = t.mid(1, close - 1);
            const QString rest = t.mid(close + 1);
            bool ok = false;
            const uint port = rest.startsWith(u':') ? rest.mid(1).toUInt(&ok) : 0;
            if (ok && port > 0 && port < 65536)
                s.port = quint16(port);
            return s;
        }
    }
    if (t.count(u':') == 1) {
        const qsizetype colon = t.indexOf(u':');
        bool ok = false;
        const uint port = t.mid(colon + 1).toUInt(&ok);
        if (ok && port > 0 && port < 65536) {
            s.host = t.left(colon);
            s.port = quint16(port);
            return s;
        }
    }
    s.host = t;
    return s;
}

QStringList parseAddressList(const QString &list)
{
    QStringList out;
    for (const QString &part : list.split(u';')) {
        const QString a = part.trimmed();
        if (!a.isEmpty())
            out << a;
    }
    return out;
}

namespace {

bool plainAscii(const QString &text)
{
    for (QChar c : text)
        if (c.unicode() < 32 || c.unicode() > 126)
            return false;
    return true;
}

// RFC 2047 encoded words of at most 45 source bytes each, cut between characters.
QByteArray encodeHeaderText(const QString &text)
{
    if (plainAscii(text) && text.size() <= 900)
        return text.toUtf8();
    QByteArray out;
    QByteArray chunk;
    auto flush = [&] {
        if (chunk.isEmpty())
            return;
        if (!out.isEmpty())
            out += "\r\n ";
        out += "=?UTF-8?B?" + chunk.toBase64() + "?=";
        chunk.clear();
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        qsizetype n = text[i].isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
        const QByteArray ch = text.mid(i, n).toUtf8();
        if (chunk.size() + ch.size() > 45)
            flush();
        chunk += ch;
        i += n - 1;
    }
    flush();
    return out;
}

QByteArray quotedPrintable(const QString &body)
{
    static const char hex[] = "0123456789ABCDEF";
    QByteArray out;
    QString text = body;
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(u'\r', u'\n');
    const QStringList lines = text.split(u'\n');
    for (qsizetype li = 0; li < lines.size(); ++li) {
        const QByteArray bytes = lines[li].toUtf8();
        QByteArray line;
        for (qsizetype i = 0; i < bytes.size(); ++i) {
            const uchar c = uchar(bytes[i]);
            const bool last = i == bytes.size() - 1;
            QByteArray piece;
            if ((c >= 33 && c <= 126 && c != '=') || ((c == ' ' || c == '\t') && !last))
                piece = QByteArray(1, char(c));
            else
                piece = QByteArray("=") + hex[c >> 4] + hex[c & 15];
            if (line.size() + piece.size() > 75) {
                out += line + "=\r\n";
                line.clear();
            }
            line += piece;
        }
        out += line + "\r\n";
    }
    return out;
}

} // namespace

QByteArray composeMessage(const QString &from, const QStringList &to, const QString &subject,
                          const QString &body, const QDateTime &date)
{
    QByteArray m;
    m += "Date: " + date.toString(Qt::RFC2822Date).toUtf8() + "\r\n";
    m += "From: " + from.toUtf8() + "\r\n";
    m += "To: " + to.join(QStringLiteral(", ")).toUtf8() + "\r\n";
    m += "Subject: " + encodeHeaderText(subject) + "\r\n";
    m += "Message-ID: <" + QUuid::createUuid().toString(QUuid::WithoutBraces).toUtf8() + "@qm730>\r\n";
    m += "MIME-Version: 1.0\r\n";
    m += "Content-Type: text/plain; charset=UTF-8\r\n";
    m += "Content-Transfer-Encoding: quoted-printable\r\n";
    m += "\r\n";
    m += quotedPrintable(body);
    return m;
}

QByteArray dotStuff(const QByteArray &message)
{
    QByteArray out;
    out.reserve(message.size() + 16);
    bool lineStart = true;
    for (char c : message) {
        if (lineStart && c == '.')
            out += '.';
        out += c;
        lineStart = c == '\n';
    }
    return out;
}

bool SmtpClient::fail(const QString &error)
{
    m_error = error;
    return false;
}

int SmtpClient::readReply()
{
    QDeadlineTimer deadline(m_timeoutMs);
    m_replyText.clear();
    for (;;) {
        const qsizetype nl = m_buffer.indexOf('\n');
        if (nl >= 0) {
            const QByteArray line = m_buffer.left(nl).trimmed();
            m_buffer.remove(0, nl + 1);
            m_replyText += QString::fromUtf8(line) + u'\n';
            if (line.size() < 3)
                return -1;
            if (line.size() > 3 && line[3] == '-')
                continue;
            bool ok = false;
            const int code = line.left(3).toInt(&ok);
            return ok ? code : -1;
        }
        if (deadline.hasExpired())
            return -1;
        if (!m_socket.waitForReadyRead(int(qMax<qint64>(1, deadline.remainingTime()))) && m_socket.bytesAvailable() == 0)
            return -1;
        m_buffer += m_socket.readAll();
    }
}

bool SmtpClient::command(const QByteArray &line, int expectedClass)
{
    m_socket.write(line + "\r\n");
    if (!m_socket.waitForBytesWritten(m_timeoutMs) && m_socket.bytesToWrite() > 0)
        return fail(QStringLiteral("time-out writing ") + QString::fromUtf8(line.left(10)));
    const int code = readReply();
    if (code < 0)
        return fail(QStringLiteral("no reply to ") + QString::fromUtf8(line.left(10)));
    if (code / 100 != expectedClass)
        return fail(QStringLiteral("%1: %2").arg(QString::fromUtf8(line.left(10)), m_replyText.trimmed()));
    return true;
}

bool SmtpClient::open(const SmtpServer &server)
{
    if (server.host.isEmpty())
        return fail(QStringLiteral("no SMTP server"));
    m_socket.connectToHost(server.host, server.port);
    if (!m_socket.waitForConnected(m_timeoutMs))
        return fail(QStringLiteral("cannot connect to %1:%2: %3").arg(server.host).arg(server.port).arg(m_socket.errorString()));
    const int greeting = readReply();
    if (greeting != 220)
        return fail(QStringLiteral("greeting: ") + (greeting < 0 ? QStringLiteral("none") : m_replyText.trimmed()));
    QString self = QHostInfo::localHostName();
    if (self.isEmpty())
        self = QStringLiteral("localhost");
    if (command("EHLO " + self.toUtf8(), 2))
        return true;
    if (m_socket.state() != QAbstractSocket::ConnectedState)
        return false;
    return command("HELO " + self.toUtf8(), 2);
}

bool SmtpClient::send(const QString &from, const QStringList &to, const QByteArray &message)
{
    if (!command("MAIL FROM:<" + from.toUtf8() + ">", 2))
        return false;
    for (const QString &a : to)
        if (!command("RCPT TO:<" + a.toUtf8() + ">", 2))
            return false;
    if (!command("DATA", 3))
        return false;
    QByteArray payload = dotStuff(message);
    if (!payload.endsWith("\r\n"))
        payload += "\r\n";
    payload += ".";
    return command(payload, 2);
}

void SmtpClient::quit()
{
    if (m_socket.state() == QAbstractSocket::ConnectedState) {
        m_socket.write("QUIT\r\n");
        m_socket.waitForBytesWritten(m_timeoutMs);
        readReply();
    }
    m_socket.disconnectFromHost();
}
