#pragma once
// A raw pseudo-terminal: the test holds the master end, the code under test
// opens `path`.
#include <QByteArray>
#include <QString>
#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

struct Pty {
    int master = -1, slave = -1;
    QString path;
    Pty()
    {
        char name[256] = {};
        struct termios tio {};
        cfmakeraw(&tio);
        if (::openpty(&master, &slave, name, &tio, nullptr) == 0) {
            path = QString::fromLocal8Bit(name);
            ::fcntl(master, F_SETFL, ::fcntl(master, F_GETFL) | O_NONBLOCK);
        }
    }
    ~Pty()
    {
        if (master >= 0)
            ::close(master);
        if (slave >= 0)
            ::close(slave);
    }
    bool send(const QByteArray &b) const { return ::write(master, b.constData(), size_t(b.size())) == b.size(); }
    QByteArray readMaster() const
    {
        char buf[512];
        const ssize_t n = ::read(master, buf, sizeof buf);
        return n > 0 ? QByteArray(buf, int(n)) : QByteArray();
    }
};
