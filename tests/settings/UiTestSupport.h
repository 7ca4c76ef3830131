#pragma once
// Widget-test helpers: a program folder, a pseudo-terminal, and a driver
// that answers the modal windows a step opens.
#include "Files.h"
#include "StartupFiles.h"
#include "mdlADO.h"
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QQueue>
#include <QTemporaryDir>
#include <QTimer>
#include <fcntl.h>
#include <functional>
#include <pty.h>
#include <unistd.h>

// A provisioned program folder with CommPort.CFG.
struct TestHome {
    QTemporaryDir dir;
    QString path() const { return dir.path(); }
    TestHome()
    {
        provisionMailDatabase(programPath(path(), QStringLiteral("EMail.mdb")));
        writePortCfg(QStringLiteral("PC Link"));
    }
    void writePortCfg(const QString &protocol) const
    {
        writeCommPortCfg(path(), {"COM1", "115200", "N", "8", "1", protocol, "OFF"});
    }
    void mapPorts(const QStringList &lines) const { writeTextLinesAtomic(path() + "/PortMap.CFG", lines); }
    // Multi-machine list: machine n is in it when used[n - 1].
    void machines(const QList<bool> &used) const
    {
        QVector<QPair<bool, QString>> lines;
        for (bool u : used)
            lines.append({u, QString()});
        Put_RunCFG(path(), true, 1, lines);
    }
};

struct Pty {
    int master = -1, slave = -1;
    QString path;
    Pty()
    {
        if (::openpty(&master, &slave, nullptr, nullptr, nullptr) == 0)
            path = QString::fromLocal8Bit(::ttyname(slave));
        ::fcntl(master, F_SETFL, O_NONBLOCK);
    }
    ~Pty() { ::close(master), ::close(slave); }
    QByteArray readMaster() const
    {
        char buf[512];
        const ssize_t n = ::read(master, buf, sizeof buf);
        return n > 0 ? QByteArray(buf, int(n)) : QByteArray();
    }
};

// Answers modal windows in the order they open, each with the next queued
// answer; `met` gets a message box's text or a dialog's object name. A modal
// window with no answer left is closed and noted in `unexpected`.
class ModalDriver : public QObject {
public:
    using Answer = std::function<void(QWidget *)>;
    QStringList met, unexpected;

    ModalDriver()
    {
        connect(&m_timer, &QTimer::timeout, this, &ModalDriver::tick);
        m_timer.start(5);
    }
    bool done() const { return m_answers.isEmpty(); }
    void then(Answer a) { m_answers.enqueue(std::move(a)); }
    void box(QMessageBox::StandardButton button = QMessageBox::Ok)
    {
        then([button](QWidget *w) { static_cast<QMessageBox *>(w)->button(button)->click(); });
    }
    // Optionally types into a line edit, then clicks a button.
    void dialog(const char *button, const char *field = nullptr, const QString &text = {})
    {
        then([=](QWidget *w) {
            if (field)
                w->findChild<QLineEdit *>(QLatin1String(field))->setText(text);
            w->findChild<QPushButton *>(QLatin1String(button))->click();
        });
    }

private:
    void tick()
    {
        QWidget *w = QApplication::activeModalWidget();
        if (!w || !w->isVisible() || m_busy.contains(w))
            return;
        auto *b = qobject_cast<QMessageBox *>(w);
        const QString name = b ? b->text() : w->objectName();
        if (m_answers.isEmpty()) {
            unexpected << name;
            static_cast<QDialog *>(w)->reject();
            return;
        }
        met << name;
        // From a timer of its own: a timer is not fired again while its slot
        // runs, and the answer may open a nested modal window.
        m_busy << w;
        QTimer::singleShot(0, this, [this, w, a = m_answers.dequeue(), guard = QPointer<QWidget>(w)] {
            if (guard)
                a(w);
            m_busy.removeOne(w);
        });
    }

    QTimer m_timer;
    QQueue<Answer> m_answers;
    QList<QWidget *> m_busy;
};
