#pragma once
// Runs qm730-sim for a test: a line in a temporary folder, its control socket,
// and the frames it received.
#include <QDir>
#include <QElapsedTimer>
#include <QLocalSocket>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <QThread>

class SimProcess {
public:
    explicit SimProcess(const QString &dir) : m_dir(dir) {}
    ~SimProcess() { stop(); }

    QString linkPath() const { return m_dir + QStringLiteral("/line"); }
    QString controlPath() const { return m_dir + QStringLiteral("/sim.ctl"); }

    // Starts the simulator and waits for its ready line.
    bool start(const QStringList &args)
    {
        const QString bin = qEnvironmentVariable("QM730_BIN") + QStringLiteral("/qm730-sim");
        m_proc.setProgram(bin);
        m_proc.setArguments(QStringList{QStringLiteral("--link"), linkPath(), QStringLiteral("--control"), controlPath(),
                                        QStringLiteral("--seed"), QStringLiteral("0")}
                            + args);
        m_proc.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_proc.start();
        if (!m_proc.waitForStarted(5000))
            return false;
        QElapsedTimer t;
        t.start();
        while (t.elapsed() < 10000) {
            if (m_proc.canReadLine() || m_proc.waitForReadyRead(200)) {
                const QByteArray line = m_proc.readLine();
                if (line.startsWith("qm730-sim ready"))
                    return true;
            }
            if (m_proc.state() == QProcess::NotRunning)
                return false;
        }
        return false;
    }

    void stop()
    {
        if (m_proc.state() != QProcess::NotRunning) {
            m_proc.terminate();
            if (!m_proc.waitForFinished(3000))
                m_proc.kill();
            m_proc.waitForFinished(1000);
        }
    }

    // One control command; its one-line answer.
    QString command(const QString &line)
    {
        QLocalSocket s;
        s.connectToServer(controlPath());
        if (!s.waitForConnected(2000))
            return QStringLiteral("error: no control socket");
        s.write(line.toUtf8() + '\n');
        s.flush();
        QByteArray answer;
        QElapsedTimer t;
        t.start();
        while (!answer.contains('\n') && t.elapsed() < 5000) {
            if (s.waitForReadyRead(100))
                answer += s.readAll();
        }
        return QString::fromUtf8(answer).trimmed();
    }

    // The request frames the simulator received since the last clear, oldest first.
    QList<QByteArray> frames()
    {
        QList<QByteArray> out;
        for (const QString &hex : command(QStringLiteral("log")).split(u' ', Qt::SkipEmptyParts))
            out << QByteArray::fromHex(hex.toLatin1());
        return out;
    }

private:
    QString m_dir;
    QProcess m_proc;
};
