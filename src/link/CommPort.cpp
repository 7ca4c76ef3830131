#include "CommPort.h"
#include "Files.h"
#include <QStringList>

bool PortSettings::parse(const QString &text, PortSettings *out)
{
    const QStringList parts = text.split(u',');
    if (parts.size() != 4)
        return false;
    bool ok1 = false, ok2 = false, ok3 = false;
    PortSettings s;
    s.baud = parts[0].trimmed().toInt(&ok1);
    const QString p = parts[1].trimmed().toUpper();
    s.dataBits = parts[2].trimmed().toInt(&ok2);
    s.stopBits = parts[3].trimmed().toInt(&ok3);
    if (!ok1 || !ok2 || !ok3 || s.baud <= 0 || p.size() != 1 || !QStringLiteral("NEOMS").contains(p)
        || s.dataBits < 5 || s.dataBits > 8 || (s.stopBits != 1 && s.stopBits != 2))
        return false;
    s.parity = p[0].toLatin1();
    *out = s;
    return true;
}

QString mapPortDevice(const QString &home, int portNo)
{
    if (const auto lines = readTextLines(programPath(home, QStringLiteral("PortMap.CFG")))) {
        const QString key = QStringLiteral("COM%1").arg(portNo);
        for (const QString &line : *lines) {
            const qsizetype eq = line.indexOf(u'=');
            if (eq > 0 && line.left(eq).trimmed().compare(key, Qt::CaseInsensitive) == 0) {
                const QString dev = line.mid(eq + 1).trimmed();
                if (!dev.isEmpty())
                    return dev.startsWith(u'/') ? dev : programPath(home, dev);
            }
        }
    }
    return QStringLiteral("/dev/ttyS%1").arg(qint64(portNo) - 1); // any number CommPort.CFG gives
}
