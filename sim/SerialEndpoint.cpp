#include "SerialEndpoint.h"

#include <QFile>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <pty.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace {

// A writer that cannot get rid of a single byte for this long drops its output.
constexpr qint64 StuckMs = 5000;
constexpr int PumpMs = 2;

speed_t speedOf(int baud)
{
    switch (baud) {
    case 1200: return B1200;
    case 2400: return B2400;
    case 4800: return B4800;
    case 9600: return B9600;
    case 19200: return B19200;
    case 38400: return B38400;
    case 57600: return B57600;
    case 230400: return B230400;
    default: return B115200;
    }
}

void rawSettings(termios *t, int baud)
{
    cfmakeraw(t);
    t->c_cflag |= CLOCAL | CREAD;
    t->c_cc[VMIN] = 1;
    t->c_cc[VTIME] = 0;
    cfsetispeed(t, speedOf(baud));
    cfsetospeed(t, speedOf(baud));
}

QString systemError(const QString &what)
{
    return QStringLiteral("%1: %2").arg(what, QString::fromLocal8Bit(std::strerror(errno)));
}

} // namespace

SerialEndpoint::SerialEndpoint(int baud, bool pace, QObject *parent)
    : QObject(parent)
    , m_baud(baud)
    , m_pace(pace)
{
    m_clock.start();
    m_rearm.setSingleShot(true);
    m_rearm.setInterval(100);
    connect(&m_rearm, &QTimer::timeout, this, [this] {
        if (m_notifier)
            m_notifier->setEnabled(true);
    });
    m_pump.setTimerType(Qt::PreciseTimer);
    m_pump.setInterval(PumpMs);
    connect(&m_pump, &QTimer::timeout, this, &SerialEndpoint::pump);
}

SerialEndpoint::~SerialEndpoint()
{
    closeDevice();
}

void SerialEndpoint::closeDevice()
{
    if (!m_link.isEmpty()) {
        // Remove the link only while it still points to this simulator's device.
        if (QFile::symLinkTarget(m_link) == m_device)
            ::unlink(QFile::encodeName(m_link).constData());
    }
    delete m_notifier;
    m_notifier = nullptr;
    m_rearm.stop();
    m_pump.stop();
    m_queue.clear();
    if (m_fd >= 0)
        ::close(m_fd);
    if (m_slaveFd >= 0)
        ::close(m_slaveFd);
    m_fd = -1;
    m_slaveFd = -1;
}

bool SerialEndpoint::unplug(QString *error)
{
    if (m_link.isEmpty() || m_slaveFd < 0) {
        *error = m_fd < 0 ? QStringLiteral("the line is unplugged already")
                          : QStringLiteral("only a pseudo-terminal under --link can be unplugged");
        return false;
    }
    closeDevice();
    return true;
}

bool SerialEndpoint::plug(QString *error)
{
    if (m_link.isEmpty() || m_fd >= 0) {
        *error = m_fd >= 0 ? QStringLiteral("the line is plugged in already")
                           : QStringLiteral("only a pseudo-terminal under --link can be plugged in");
        return false;
    }
    const QString link = m_link;
    m_link.clear();
    return openPty(error) && makeLink(link, error);
}

bool SerialEndpoint::openPty(QString *error)
{
    termios t{};
    rawSettings(&t, m_baud);
    int master = -1, slave = -1;
    char name[256] = {};
    if (::openpty(&master, &slave, name, &t, nullptr) != 0) {
        *error = systemError(QStringLiteral("openpty"));
        return false;
    }
    ::fcntl(master, F_SETFL, ::fcntl(master, F_GETFL) | O_NONBLOCK);
    ::fcntl(master, F_SETFD, FD_CLOEXEC);
    ::fcntl(slave, F_SETFD, FD_CLOEXEC);
    m_fd = master;
    m_slaveFd = slave;
    m_device = QString::fromLocal8Bit(name);
    startReading();
    return true;
}

bool SerialEndpoint::openDevice(const QString &path, QString *error)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        *error = systemError(path);
        return false;
    }
    termios t{};
    if (::tcgetattr(fd, &t) == 0) {
        rawSettings(&t, m_baud);
        ::tcsetattr(fd, TCSANOW, &t);
    }
    m_fd = fd;
    m_device = path;
    startReading();
    return true;
}

bool SerialEndpoint::makeLink(const QString &link, QString *error)
{
    const QByteArray path = QFile::encodeName(link);
    struct stat st {};
    if (::lstat(path.constData(), &st) == 0) {
        if (!S_ISLNK(st.st_mode)) {
            *error = QStringLiteral("%1 exists and is not a symbolic link").arg(link);
            return false;
        }
        ::unlink(path.constData());
    }
    if (::symlink(QFile::encodeName(m_device).constData(), path.constData()) != 0) {
        *error = systemError(link);
        return false;
    }
    m_link = link;
    return true;
}

void SerialEndpoint::startReading()
{
    m_notifier = new QSocketNotifier(m_fd, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &SerialEndpoint::onReadable);
}

void SerialEndpoint::onReadable()
{
    QByteArray data;
    char chunk[4096];
    for (;;) {
        const ssize_t n = ::read(m_fd, chunk, sizeof chunk);
        if (n > 0) {
            data.append(chunk, n);
            continue;
        }
        if (n < 0 && errno == EINTR)
            continue;
        if (n == 0 || (errno != EAGAIN && errno != EWOULDBLOCK)) {
            // EIO: no one has the other side open. Look again shortly instead of spinning.
            m_notifier->setEnabled(false);
            m_rearm.start();
        }
        break;
    }
    if (!data.isEmpty())
        emit received(data);
}

void SerialEndpoint::send(const QList<Piece> &pieces)
{
    for (const Piece &p : pieces)
        m_queue.push_back(Pending{p.bytes, p.pauseMs});
    pump();
}

void SerialEndpoint::pump()
{
    const qint64 now = m_clock.elapsed();
    const double bytesPerMs = m_baud / 10.0 / 1000.0;
    while (!m_queue.empty()) {
        Pending &p = m_queue.front();
        if (p.startAt < 0) {
            p.startAt = std::max(now, m_lastEnd) + p.pauseMs;
            m_lastProgress = p.startAt;
        }
        if (now < p.startAt)
            break;
        qsizetype due = p.bytes.size();
        if (m_pace)
            due = std::min<qsizetype>(due, static_cast<qsizetype>(std::floor((now - p.startAt) * bytesPerMs)) + 1);
        if (due > p.sent) {
            const ssize_t n = ::write(m_fd, p.bytes.constData() + p.sent, static_cast<size_t>(due - p.sent));
            if (n > 0) {
                p.sent += n;
                m_lastProgress = now;
            } else if (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) {
                p.sent = p.bytes.size();  // the device is gone: drop the piece
            } else if (now - m_lastProgress > StuckMs) {
                p.sent = p.bytes.size();  // no one reads: drop the piece
            }
        }
        if (p.sent < p.bytes.size())
            break;
        m_lastEnd = now;
        m_queue.pop_front();
    }
    if (m_queue.empty())
        m_pump.stop();
    else if (!m_pump.isActive())
        m_pump.start();
}
