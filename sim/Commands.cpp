#include "Commands.h"
#include "Line.h"
#include "SimClock.h"

#include <QFile>
#include <QLocalSocket>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QStringEncoder>

namespace {

QString error(const QString &why)
{
    return QStringLiteral("error: ") + why;
}

std::optional<int> number(const QString &s)
{
    bool ok = false;
    const int n = s.toInt(&ok, 0);
    return ok ? std::optional<int>(n) : std::nullopt;
}

std::optional<quint16> word(const QString &s)
{
    bool ok = false;
    const uint w = s.toUInt(&ok, 0);
    return ok && w <= 0xFFFF ? std::optional<quint16>(static_cast<quint16>(w)) : std::nullopt;
}

// The text after the first `skip` words of a command line.
QString tail(const QString &line, int skip)
{
    static const QRegularExpression blank(QStringLiteral("\\s"));
    QString rest = line.trimmed();
    for (int i = 0; i < skip; ++i) {
        const qsizetype at = rest.indexOf(blank);
        rest = at < 0 ? QString() : rest.mid(at).trimmed();
    }
    return rest;
}

} // namespace

Commands::Commands(Line &line, SimClock &clock, std::function<void()> quit)
    : m_line(line)
    , m_clock(clock)
    , m_quit(std::move(quit))
{
}

std::optional<QString> Commands::execute(const QString &line)
{
    const QStringList t = line.split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
    if (t.isEmpty() || t[0].startsWith(QLatin1Char('#')))
        return std::nullopt;
    const QString cmd = t[0].toLower();

    if (cmd == QLatin1String("fault"))
        return fault(t);
    if (cmd == QLatin1String("set"))
        return set(t, line);
    if (cmd == QLatin1String("get"))
        return get(t);
    if (cmd == QLatin1String("programs"))
        return programs(t);
    if (cmd == QLatin1String("screen")) {
        // The display as the controller draws it now, as a picture file.
        const auto m = number(t.value(1));
        const Controller *c = m ? m_line.controller(*m) : nullptr;
        if (t.size() < 3 || !c)
            return error(QStringLiteral("usage: screen <machine> <file>"));
        QFile f(tail(line, 2));
        if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate) || f.write(c->screenPicture()) < 0 || !f.flush())
            return error(QStringLiteral("cannot write %1").arg(f.fileName()));
        return QStringLiteral("ok");
    }
    if (cmd == QLatin1String("dump"))
        return dump(t);
    if (cmd == QLatin1String("stats")) {
        if (t.size() == 1)
            return m_line.stats();
        if (t[1] == QLatin1String("clear")) {
            m_line.clearStats();
            return QStringLiteral("ok");
        }
        const auto m = number(t[1]);
        if (!m || !m_line.controller(*m))
            return error(QStringLiteral("no machine %1 on the line").arg(t[1]));
        return m_line.stats(*m);
    }
    if (cmd == QLatin1String("log")) {
        if (t.size() == 1)
            return m_line.log().join(QLatin1Char(' '));
        if (t[1] == QLatin1String("clear")) {
            m_line.clearLog();
            return QStringLiteral("ok");
        }
        return error(QStringLiteral("usage: log [clear]"));
    }
    if (cmd == QLatin1String("tick") || cmd == QLatin1String("speed")) {
        bool ok = false;
        const double v = t.value(1).toDouble(&ok);
        if (t.size() != 2 || !ok || v < 0)
            return error(QStringLiteral("usage: %1 <non-negative number>").arg(cmd));
        if (cmd == QLatin1String("tick"))
            m_clock.advance(v);
        else
            m_clock.setSpeed(v);
        return QStringLiteral("ok");
    }
    if (cmd == QLatin1String("unplug") || cmd == QLatin1String("plug")) {
        if (t.size() != 1)
            return error(QStringLiteral("usage: %1").arg(cmd));
        if (!m_lineSwitch)
            return error(QStringLiteral("this line cannot be unplugged"));
        return m_lineSwitch(cmd == QLatin1String("plug"));
    }
    if (cmd == QLatin1String("quit")) {
        m_quit();
        return QStringLiteral("ok");
    }
    return error(QStringLiteral("unknown command %1").arg(t[0]));
}

QString Commands::help()
{
    QString text = QStringLiteral(
        "Control commands, one a line on the --control socket or in a --script file;\n"
        "each answers \"ok\", \"error: ...\" or the value asked for:\n"
        "  fault <machine|all> <fault> on|off [ms]   switch a fault (below) on or off\n"
        "  set <machine> pv|hpv <word|auto>           pin the temperature or humidity PV word;\n"
        "                                             auto gives it back to the chamber\n"
        "  set <machine> rcv <row> <word|auto>        pin a row of the present values\n"
        "  set <machine> rrp|up|upplus <row> <word>   a run, parameter or extension row\n"
        "  set <machine> pd <pattern> <word> <value>  a word of a pattern\n"
        "  set <machine> sd <pattern> <segment> <word> <value>\n"
        "                                             a word of a segment\n"
        "  set <machine> td <row> <text>              a text row (Big5 on the line)\n"
        "  get <machine> rrp|rcv|up|upplus|reg <n>    a row, or a Modbus register\n"
        "  get <machine> pd <p> <w> | sd <p> <s> <w> | td <row>\n"
        "  stats [<machine>|clear]                    requests received and answered per machine\n"
        "  log [clear]                                every frame the line received, in hex\n"
        "  tick <seconds>                             move the chambers' clock on\n"
        "  speed <factor>                             run the chambers this many times faster\n"
        "  unplug                                     take the pseudo-terminal away, as a pulled\n"
        "                                             adapter does (its link goes too)\n"
        "  plug                                       a new pseudo-terminal under the same link\n"
        "  quit                                       end the simulator\n"
        "Faults:\n");
    for (const auto &[name, what] : faultHelp())
        text += QStringLiteral("  %1 %2\n").arg(name.leftJustified(13), what);
    return text;
}

QString Commands::fault(const QStringList &t)
{
    if (t.size() < 4 || t.size() > 5)
        return error(QStringLiteral("usage: fault <machine|all> <name> on|off [ms]"));
    QList<int> machines;
    if (t[1] == QLatin1String("all")) {
        for (const Controller *c : m_line.controllers())
            machines << c->number();
    } else {
        const auto m = number(t[1]);
        if (!m || !m_line.controller(*m))
            return error(QStringLiteral("no machine %1 on the line").arg(t[1]));
        machines << *m;
    }
    const auto f = parseFault(t[2].toLower());
    if (!f)
        return error(QStringLiteral("unknown fault %1").arg(t[2]));
    const QString state = t[3].toLower();
    if (state != QLatin1String("on") && state != QLatin1String("off"))
        return error(QStringLiteral("fault state must be on or off"));
    std::optional<int> ms;
    if (t.size() == 5) {
        ms = number(t[4]);
        if (!ms || *ms < 0)
            return error(QStringLiteral("bad time %1").arg(t[4]));
    }
    for (const int m : machines)
        m_line.setFault(m, *f, state == QLatin1String("on"), ms);
    return QStringLiteral("ok");
}

// programs <machine|all> <patterns> <segments>: a generated program memory.
QString Commands::programs(const QStringList &t)
{
    const auto patterns = number(t.value(2));
    const auto segments = number(t.value(3));
    if (t.size() != 4 || !patterns || !segments || *patterns < 0 || *segments < 0 || *segments > Controller::Segments)
        return error(QStringLiteral("usage: programs <machine|all> <patterns> <segments 0..100>"));
    QList<Controller *> targets;
    if (t[1] == QLatin1String("all")) {
        targets = m_line.controllers();
    } else {
        const auto m = number(t[1]);
        Controller *c = m ? m_line.controller(*m) : nullptr;
        if (!c)
            return error(QStringLiteral("no machine %1 on the line").arg(t[1]));
        targets << c;
    }
    for (Controller *c : targets)
        c->fillPrograms(*patterns, *segments);
    return QStringLiteral("ok");
}

QString Commands::set(const QStringList &t, const QString &line)
{
    if (t.size() < 4)
        return error(QStringLiteral("usage: set <machine> <what> ..."));
    const auto m = number(t[1]);
    Controller *c = m ? m_line.controller(*m) : nullptr;
    if (!c)
        return error(QStringLiteral("no machine %1 on the line").arg(t[1]));
    const QString what = t[2].toLower();
    const QString ok = QStringLiteral("ok");

    if (what == QLatin1String("td")) {
        const auto row = number(t[3]);
        QStringEncoder encoder("Big5");
        if (!row || !c->setText(*row, 0, QByteArray(encoder(tail(line, 4))) + QByteArray(Controller::TextBytes, '\0')))
            return error(QStringLiteral("bad text row"));
        return ok;
    }
    // The last token is the word, or "auto" to release a pinned status row.
    const QStringList args = t.mid(3, t.size() - 4);
    QList<int> n;
    for (const QString &a : args) {
        const auto v = number(a);
        if (!v)
            return error(QStringLiteral("bad number %1").arg(a));
        n << *v;
    }
    const bool release = t.last().toLower() == QLatin1String("auto");
    const auto value = word(t.last());
    if (!value && !release)
        return error(QStringLiteral("bad word %1").arg(t.last()));

    const auto pin = [&](int row) {
        if (row < 1 || row > Controller::RcvRows)
            return error(QStringLiteral("no rcv row %1").arg(row));
        c->pinRcv(row, release ? std::nullopt : value);
        return ok;
    };
    if ((what == QLatin1String("pv") || what == QLatin1String("hpv")) && n.isEmpty())
        return pin(what == QLatin1String("pv") ? 2 : 5);
    if (what == QLatin1String("rcv") && n.size() == 1)
        return pin(n[0]);
    if (release)
        return error(QStringLiteral("only rcv, pv and hpv can be released"));
    bool done = false;
    if (what == QLatin1String("rrp") && n.size() == 1)
        done = c->setRrp(n[0], *value);
    else if (what == QLatin1String("up") && n.size() == 1)
        done = c->setUp(n[0], *value);
    else if (what == QLatin1String("upplus") && n.size() == 1)
        done = c->setUpPlus(n[0], *value);
    else if (what == QLatin1String("pd") && n.size() == 2)
        done = c->setPatternWord(n[0], n[1], *value);
    else if (what == QLatin1String("sd") && n.size() == 3)
        done = c->setSegmentWord(n[0], n[1], n[2], *value);
    else
        return error(QStringLiteral("usage: set <machine> pv|hpv|rcv|rrp|up|upplus|pd|sd|td ..."));
    return done ? ok : error(QStringLiteral("no such row or word"));
}

QString Commands::get(const QStringList &t)
{
    if (t.size() < 4)
        return error(QStringLiteral("usage: get <machine> <what> ..."));
    const auto m = number(t[1]);
    const Controller *c = m ? m_line.controller(*m) : nullptr;
    if (!c)
        return error(QStringLiteral("no machine %1 on the line").arg(t[1]));
    const QString what = t[2].toLower();
    QList<int> n;
    for (const QString &a : t.mid(3)) {
        const auto v = number(a);
        if (!v)
            return error(QStringLiteral("bad number %1").arg(a));
        n << *v;
    }

    if (what == QLatin1String("td") && n.size() == 1) {
        const auto bytes = c->text(n[0]);
        if (!bytes)
            return error(QStringLiteral("no text row %1").arg(n[0]));
        const qsizetype end = bytes->indexOf('\0');
        QStringDecoder decoder("Big5");
        return decoder(end < 0 ? *bytes : bytes->left(end));
    }
    std::optional<quint16> w;
    if (what == QLatin1String("rrp") && n.size() == 1)
        w = c->rrp(n[0]);
    else if (what == QLatin1String("rcv") && n.size() == 1)
        w = c->rcv(n[0]);
    else if (what == QLatin1String("up") && n.size() == 1)
        w = c->up(n[0]);
    else if (what == QLatin1String("upplus") && n.size() == 1)
        w = c->upPlus(n[0]);
    else if (what == QLatin1String("pd") && n.size() == 2)
        w = c->patternWord(n[0], n[1]);
    else if (what == QLatin1String("sd") && n.size() == 3)
        w = c->segmentWord(n[0], n[1], n[2]);
    else if (what == QLatin1String("reg") && n.size() == 1)
        w = c->readRegister(n[0]);
    else
        return error(QStringLiteral("usage: get <machine> rrp|rcv|up|upplus|reg <row> | pd <p> <w> | sd <p> <s> <w> | td <row>"));
    return w ? QString::number(*w) : error(QStringLiteral("no such row or word"));
}

// A whole block of a controller's memory as one line of hex, words high byte
// first: the parameter block, the text rows (all 30 bytes of each), the
// pattern rows, or the 100 segments of one pattern.
QString Commands::dump(const QStringList &t)
{
    const QString usage = QStringLiteral("usage: dump <machine> up | td | pd | sd <pattern>");
    if (t.size() < 3)
        return error(usage);
    const auto m = number(t[1]);
    const Controller *c = m ? m_line.controller(*m) : nullptr;
    if (!c)
        return error(QStringLiteral("no machine %1 on the line").arg(t[1]));
    const QString what = t[2].toLower();
    QByteArray bytes;
    auto add = [&bytes](quint16 w) {
        bytes.append(static_cast<char>(w >> 8));
        bytes.append(static_cast<char>(w & 0xFF));
    };
    if (what == QLatin1String("up") && t.size() == 3) {
        for (int row = 1; row <= c->upRows(); ++row)
            add(*c->up(row));
    } else if (what == QLatin1String("td") && t.size() == 3) {
        for (int row = 1; row <= Controller::TextRows; ++row)
            bytes += *c->text(row);
    } else if (what == QLatin1String("pd") && t.size() == 3) {
        for (int p = 1; p <= c->patternCount(); ++p)
            for (int w = 1; w <= Controller::PatternWords; ++w)
                add(*c->patternWord(p, w));
    } else if (what == QLatin1String("sd") && t.size() == 4) {
        const auto p = number(t[3]);
        if (!p || !c->segmentWord(*p, 1, 1))
            return error(QStringLiteral("no pattern %1").arg(t[3]));
        for (int s = 1; s <= Controller::Segments; ++s)
            for (int w = 1; w <= Controller::SegmentWords; ++w)
                add(*c->segmentWord(*p, s, w));
    } else {
        return error(usage);
    }
    return QString::fromLatin1(bytes.toHex());
}

// ---------------------------------------------------------------- control socket

ControlServer::ControlServer(Commands &commands, QObject *parent)
    : QObject(parent)
    , m_commands(commands)
{
    connect(&m_server, &QLocalServer::newConnection, this, &ControlServer::accept);
}

bool ControlServer::listen(const QString &path, QString *errorText)
{
    QLocalServer::removeServer(path);
    if (!m_server.listen(path)) {
        *errorText = QStringLiteral("%1: %2").arg(path, m_server.errorString());
        return false;
    }
    return true;
}

void ControlServer::accept()
{
    while (QLocalSocket *socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            while (socket->canReadLine()) {
                const QString line = QString::fromUtf8(socket->readLine());
                if (const auto answer = m_commands.execute(line)) {
                    socket->write(answer->toUtf8() + '\n');
                    socket->flush();
                }
            }
        });
    }
}
