#include "StartupFiles.h"
#include "Files.h"
#include <QDir>
#include <QFile>

int readCommWait(const QString &home)
{
    const QString path = programPath(home, QStringLiteral("\\CommWait.TM"));
    const auto lines = readTextLines(path);
    if (!lines || lines->isEmpty()) {
        writeTextLinesAtomic(path, {QStringLiteral("0")});
        return 0;
    }
    return std::max(0, leadingInt(lines->first()));
}

bool readCommPortCfg(ConsoleState &s)
{
    const auto lines = readTextLines(s.path(QStringLiteral("\\CommPort.CFG")));
    if (!lines || lines->size() < 7) {
        s.setCommDefaults();
        return false;
    }
    const QStringList &l = *lines;
    s.CommPortNo = leadingInt(l[0].mid(3));
    s.CommBaud = l[1];
    s.CommParity = l[2];
    s.CommDataBits = l[3];
    s.CommStopBits = l[4];
    s.CommProtocol = l[5];
    s.CommRTS = l[6];
    return true;
}

bool writeCommPortCfg(const QString &home, const QStringList &sevenLines)
{
    return writeTextLinesAtomic(programPath(home, QStringLiteral("\\CommPort.CFG")), sevenLines);
}

std::optional<RunCfg> readRunCfg(const QString &home)
{
    const auto lines = readTextLines(programPath(home, QStringLiteral("\\CFG\\Run.INI")));
    if (!lines || lines->isEmpty())
        return std::nullopt;
    const QStringList &l = *lines;
    RunCfg cfg;
    cfg.multiMode = l[0] == QStringLiteral("多機");
    if (l.size() > 1) {
        const int n = leadingInt(l[1]);
        if (n >= 1 && n <= MaxMachineNumber)
            cfg.singleMachine = n;
    }
    const int last = int(std::min<qsizetype>(l.size(), 2 + MaxMachineNumber));
    for (int i = 2; i < last; ++i) {
        const QStringList fields = l[i].split(u'\t');
        cfg.lines.append({fields[0] == QLatin1String("O"), fields.value(1)});
    }
    return cfg;
}

MachineList machineListOf(const RunCfg &cfg)
{
    MachineList list;
    list.multiMode = cfg.multiMode;
    list.singleMachine = cfg.singleMachine;
    if (!cfg.multiMode) {
        list.machines = {MachineSlot{cfg.singleMachine}};
        return list;
    }
    for (int i = 0; i < cfg.lines.size(); ++i) {
        if (!cfg.lines[i].first)
            continue;
        MachineSlot m;
        m.MachineNumber = i + 1;
        m.MachineName = cfg.lines[i].second;
        list.machines << m;
    }
    return list;
}

MachineList Get_RunCFG(const QString &home)
{
    QDir().mkpath(programPath(home, QStringLiteral("\\CFG")));
    const std::optional<RunCfg> cfg = readRunCfg(home);
    MachineList list = cfg ? machineListOf(*cfg) : MachineList{};
    if (!cfg || list.machines.isEmpty()) {
        WriteErrorLog(home, 53, cfg ? QStringLiteral("No machine in use: CFG/Run.INI") : QStringLiteral("File not found: CFG/Run.INI"),
                      QStringLiteral("Get_RunCFG"));
        list = MachineList{};
        list.machines = {MachineSlot{1}};
    }
    return list;
}

bool Put_RunCFG(const QString &home, bool multiMode, int singleMachine, const QVector<QPair<bool, QString>> &lines)
{
    QStringList out;
    out << (multiMode ? QStringLiteral("多機") : QStringLiteral("單機")) << QString::number(singleMachine);
    for (const auto &line : lines) {
        // A label is one field of one line.
        QString label = line.second;
        label.replace(u'\t', u' ').replace(u'\r', u' ').replace(u'\n', u' ');
        out << (line.first ? QStringLiteral("O") : QString()) + u'\t' + label;
    }
    QDir().mkpath(programPath(home, QStringLiteral("\\CFG")));
    const bool ok = writeTextLinesAtomic(programPath(home, QStringLiteral("\\CFG\\Run.INI")), out);
    if (!ok)
        WriteErrorLog(home, 75, QStringLiteral("Cannot write CFG/Run.INI"), QStringLiteral("Put_RunCFG"));
    return ok;
}

std::optional<QString> loadSystemPassword(const QString &home)
{
    QFile f(programPath(home, QStringLiteral("\\QM730_ID.INI")));
    if (!f.open(QIODevice::ReadOnly))
        return std::nullopt;
    TextTable t(QStringLiteral("sprdSysPass"));
    if (!t.load(f.readAll()) || t.colCount() < 1 || t.rowCount() < 1)
        return std::nullopt;
    return t.text(1, 1);
}

bool saveSystemPassword(const QString &home, const QString &password)
{
    TextTable t(QStringLiteral("sprdSysPass"), 1, 1);
    t.setText(1, 1, password);
    return writeFileAtomic(programPath(home, QStringLiteral("\\QM730_ID.INI")), t.save());
}
