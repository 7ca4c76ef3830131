#include "Line.h"
#include "Modbus.h"
#include "PcLink.h"
#include "Wire.h"

namespace {

// A partial frame left this long without further bytes is given up byte by byte.
constexpr int IdleMs = 100;
constexpr size_t LogLimit = 10000;
// Noise put in front of a reply: no STX among it, so a PC Link scanner can drop it.
const QByteArray NoiseBytes("\x55\xAA\xFF\x00\x13\x7E", 6);

struct FaultName {
    const char *name;
    Fault fault;
    const char *help;
};
const FaultName FaultNames[] = {
    {"silent", Fault::Silent, "no reply at all"},
    {"split", Fault::Split, "the reply in two halves, the second [ms] later (default 100)"},
    {"noise", Fault::Noise, "six bytes without STX in front of the reply"},
    {"badsum", Fault::BadSum, "a wrong sum (PC Link + crc) or CRC (Modbus RTU)"},
    {"badetx", Fault::BadEtx, "the ETX of the reply replaced (PC Link)"},
    {"badetxgood", Fault::BadEtxThenGood, "a copy with a broken ETX, the good reply right behind it (PC Link)"},
    {"exception", Fault::Exception, "a refusal without \",OK,\" (PC Link) or an exception reply (Modbus RTU)"},
    {"delay", Fault::Delay, "the reply [ms] later than usual (default 1000)"},
    {"wrongmachine", Fault::WrongMachine, "the reply under the next machine number"},
    {"short", Fault::Short, "the last byte of the reply missing"},
    {"noqm", Fault::NoQm, "a WHO reply without \"QM\""},
    {"cut", Fault::Cut, "only the first half of the reply, the rest never comes"},
};

} // namespace

QString protocolName(Protocol protocol)
{
    switch (protocol) {
    case Protocol::PcLink: return QStringLiteral("PC Link");
    case Protocol::PcLinkSum: return QStringLiteral("PC Link + crc");
    case Protocol::ModbusRtu: return QStringLiteral("Modbus RTU");
    }
    return {};
}

std::optional<Protocol> parseProtocol(const QString &name)
{
    QString key = name.toLower();
    key.remove(QLatin1Char(' '));
    if (key == QLatin1String("pclink"))
        return Protocol::PcLink;
    if (key == QLatin1String("pclink+crc"))
        return Protocol::PcLinkSum;
    if (key == QLatin1String("modbusrtu") || key == QLatin1String("modbus"))
        return Protocol::ModbusRtu;
    return std::nullopt;
}

std::optional<Fault> parseFault(const QString &name)
{
    for (const FaultName &f : FaultNames)
        if (name == QLatin1String(f.name))
            return f.fault;
    return std::nullopt;
}

QList<std::pair<QString, QString>> faultHelp()
{
    QList<std::pair<QString, QString>> out;
    for (const FaultName &f : FaultNames)
        out.append({QLatin1String(f.name), QLatin1String(f.help)});
    return out;
}

bool Line::Faults::has(Fault f) const
{
    const auto it = on.find(f);
    return it != on.end() && it->second;
}

Line::Line(Protocol protocol, int turnaroundMs, QObject *parent)
    : QObject(parent)
    , m_protocol(protocol)
    , m_turnaroundMs(turnaroundMs)
{
    m_idle.setSingleShot(true);
    m_idle.setInterval(IdleMs);
    connect(&m_idle, &QTimer::timeout, this, [this] { scan(true); });
}

void Line::addController(std::unique_ptr<Controller> controller)
{
    const int number = controller->number();
    m_counts[number];
    m_faults[number];
    m_controllers[number] = std::move(controller);
}

Controller *Line::controller(int number) const
{
    const auto it = m_controllers.find(number);
    return it == m_controllers.end() ? nullptr : it->second.get();
}

QList<Controller *> Line::controllers() const
{
    QList<Controller *> out;
    for (const auto &[number, c] : m_controllers)
        out.append(c.get());
    return out;
}

void Line::setFault(int machine, Fault fault, bool on, std::optional<int> ms)
{
    Faults &f = m_faults[machine];
    f.on[fault] = on;
    if (ms && fault == Fault::Split)
        f.splitMs = *ms;
    if (ms && fault == Fault::Delay)
        f.delayMs = *ms;
}

QString Line::stats() const
{
    QStringList parts;
    for (const auto &[number, counts] : m_counts)
        parts << QStringLiteral("%1:%2:%3").arg(number).arg(counts.received).arg(counts.answered);
    parts << QStringLiteral("other:%1").arg(m_other) << QStringLiteral("bad:%1").arg(m_bad)
          << QStringLiteral("skipped:%1").arg(m_skipped);
    return parts.join(QLatin1Char(' '));
}

QString Line::stats(int machine) const
{
    const auto it = m_counts.find(machine);
    return it == m_counts.end() ? QString() : QStringLiteral("%1 %2").arg(it->second.received).arg(it->second.answered);
}

void Line::clearStats()
{
    for (auto &[number, counts] : m_counts)
        counts = Counts{};
    m_other = m_bad = m_skipped = 0;
}

QStringList Line::log() const
{
    QStringList out;
    for (const QByteArray &frame : m_log)
        out << QString::fromLatin1(frame.toHex().toUpper());
    return out;
}

void Line::clearLog()
{
    m_log.clear();
}

void Line::receive(const QByteArray &bytes)
{
    m_buffer.append(bytes);
    scan(false);
    if (!m_buffer.isEmpty())
        m_idle.start();
}

void Line::scan(bool idle)
{
    while (!m_buffer.isEmpty()) {
        qsizetype length = 0;
        bool frame = false;
        if (m_protocol == Protocol::ModbusRtu) {
            const auto r = modbus::scan(m_buffer, idle);
            if (r.kind == modbus::Scan::NeedMore && !idle)
                return;
            frame = r.kind == modbus::Scan::Frame;
            length = r.kind == modbus::Scan::NeedMore ? 1 : r.length;
            if (r.kind == modbus::Scan::BadCrc && controller(static_cast<quint8>(m_buffer.at(0))))
                ++m_bad;
        } else {
            const auto r = pclink::scan(m_buffer, m_protocol == Protocol::PcLinkSum, idle, [this](int machine) {
                const Controller *c = controller(machine);
                return c ? c->upRows() : 0;
            });
            if (r.kind == pclink::Scan::NeedMore && !idle)
                return;
            frame = r.kind == pclink::Scan::Frame;
            length = r.kind == pclink::Scan::NeedMore ? 1 : r.length;
        }
        const QByteArray bytes = m_buffer.left(length);
        m_buffer.remove(0, length);
        if (!frame)
            m_skipped += static_cast<int>(length);
        else if (m_protocol == Protocol::ModbusRtu)
            handleModbus(bytes);
        else
            handlePcLink(bytes);
    }
}

void Line::noteReceived(const QByteArray &frame)
{
    m_log.push_back(frame);
    if (m_log.size() > LogLimit)
        m_log.pop_front();
    emit traced(QStringLiteral("rx"), frame);
}

void Line::handlePcLink(const QByteArray &frame)
{
    noteReceived(frame);
    const bool withSum = m_protocol == Protocol::PcLinkSum;
    const QByteArray body = withSum ? frame.left(frame.size() - 2) : frame;
    if (withSum && wire::wordAt(frame, body.size()) != wire::byteSum(body)) {
        ++m_bad;  // a frame with a wrong sum gets no reply
        return;
    }
    const pclink::Request request = pclink::parse(body);
    Controller *c = controller(request.machine);
    if (!c) {
        ++m_other;
        return;
    }
    ++m_counts[request.machine].received;
    const Faults &f = m_faults[request.machine];
    if (f.has(Fault::Silent))
        return;

    const int replyMachine = f.has(Fault::WrongMachine) ? request.machine % 999 + 1 : request.machine;
    QByteArray reply = f.has(Fault::Exception)
        ? pclink::refusal(replyMachine, request.command)
        : pclink::reply(*c, request, replyMachine, f.has(Fault::NoQm));
    if (f.has(Fault::BadEtx))
        reply[reply.size() - 3] = 0x04;
    if (withSum) {
        wire::appendSum(reply);
        if (f.has(Fault::BadSum))
            reply[reply.size() - 1] = static_cast<char>(reply.at(reply.size() - 1) + 1);
    }
    if (f.has(Fault::BadEtxThenGood)) {
        // A copy with a broken ETX goes first, the good reply right behind it.
        QByteArray broken = reply;
        broken[broken.size() - (withSum ? 5 : 3)] = 0x04;
        reply.prepend(broken);
    }
    answer(request.machine, reply);
}

void Line::handleModbus(const QByteArray &frame)
{
    noteReceived(frame);
    const quint8 address = static_cast<quint8>(frame.at(0));
    Controller *c = controller(address);
    if (!c) {
        ++m_other;  // broadcasts and other addresses get no reply
        return;
    }
    ++m_counts[address].received;
    const Faults &f = m_faults[address];
    if (f.has(Fault::Silent))
        return;

    const quint8 replyAddress = f.has(Fault::WrongMachine) ? static_cast<quint8>(address % 247 + 1) : address;
    QByteArray reply = f.has(Fault::Exception)
        ? modbus::exception(replyAddress, static_cast<quint8>(frame.at(1)), modbus::DeviceFailure)
        : modbus::reply(*c, frame, replyAddress);
    wire::appendCrc(reply);
    if (f.has(Fault::BadSum))
        reply[reply.size() - 1] = static_cast<char>(reply.at(reply.size() - 1) ^ 0x5A);
    answer(address, reply);
}

void Line::answer(int machine, const QByteArray &reply)
{
    const Faults &f = m_faults[machine];
    QByteArray bytes = reply;
    if (f.has(Fault::Short))
        bytes.chop(1);
    if (f.has(Fault::Cut))
        bytes.truncate(bytes.size() / 2);
    if (f.has(Fault::Noise))
        bytes.prepend(NoiseBytes);

    const int pause = m_turnaroundMs + (f.has(Fault::Delay) ? f.delayMs : 0);
    QList<Piece> pieces;
    if (f.has(Fault::Split) && bytes.size() > 1) {
        const qsizetype half = bytes.size() / 2;
        pieces << Piece{bytes.left(half), pause} << Piece{bytes.mid(half), f.splitMs};
    } else {
        pieces << Piece{bytes, pause};
    }
    ++m_counts[machine].answered;
    emit traced(QStringLiteral("tx"), bytes);
    emit send(pieces);
}
