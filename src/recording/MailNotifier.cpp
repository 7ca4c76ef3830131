#include "MailNotifier.h"
#include "Encodings.h"
#include "mdlADO.h"
#include <QCoreApplication>
#include <QProcess>

namespace {

enum class Compare { Bits, NonZero, BurnOut };

struct Rule {
    const char *label;
    int item;          // index of MailItem
    Compare compare;
    int bits;          // bits 0 .. bits-1 for Compare::Bits
    const char *clause;
};

const Rule kRules[] = {
    {"I/S", 0, Compare::Bits, 8, "I/S "},
    {"T.ON", 1, Compare::Bits, 4, "T.ON "},
    {"H.ON", 2, Compare::NonZero, 0, "H.ON "},
    {"T/S", 3, Compare::Bits, 8, "T/S "},
    {"P.ALM", 4, Compare::Bits, 4, "Pattern Alarm "},
    {"S.ALM", 5, Compare::Bits, 4, "System Alarm "},
    {"RELAY OUTPUT", 6, Compare::Bits, 12, "RELAY OUTPUT "},
    {"O/C OUTPUT", 7, Compare::Bits, 8, "O/C OUTPUT "},
    {"D/I", 8, Compare::Bits, 8, "D/I "},
    {"Temp B.Out", 9, Compare::BurnOut, 0, "Temp B.Out "},
    {"Humi B.Out", 10, Compare::BurnOut, 0, "Humi B.Out "},
};

const char *onOff(bool on)
{
    return on ? " ON" : " OFF";
}

} // namespace

MailNotifier::MailNotifier(mdlADO &db, QString home, QString sender, QObject *parent)
    : QObject(parent), m_db(db), m_home(std::move(home)), m_sender(std::move(sender))
{
    if (m_sender.isEmpty())
        m_sender = QCoreApplication::applicationDirPath() + QStringLiteral("/qm730-mail");
    setLauncher({});
    setClock({});
}

void MailNotifier::setLauncher(Launcher launcher)
{
    if (launcher) {
        m_launch = std::move(launcher);
        return;
    }
    m_launch = [](const QString &program, const QStringList &args, const QString &dir) {
        return QProcess::startDetached(program, args, dir);
    };
}

void MailNotifier::setClock(Clock clock)
{
    m_clock = clock ? std::move(clock) : Clock([] { return QDateTime::currentDateTime(); });
}

void MailNotifier::loadSettings()
{
    m_settings = readMailSettingsFile(m_home).value_or(MailSettings{});
}

void MailNotifier::saveSettings(const MailSettings &s)
{
    m_settings = s;
    writeMailSettingsFile(m_home, s);
    m_db.saveSetMail(s.MailSmtp, s.MailFrom, s.MailToList);
}

void MailNotifier::beginStep()
{
    m_count = 0;
    m_title = QString::fromLatin1(Title);
}

void MailNotifier::beginWord(int machineNumber)
{
    m_body = m_clock().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) + QStringLiteral(" Meter")
        + formatNumber(machineNumber, QStringLiteral("000")) + u' ';
}

void MailNotifier::notify(const QString &label, qint64 oldWord, qint64 newWord)
{
    const Rule *rule = nullptr;
    for (const Rule &r : kRules)
        if (label == QLatin1String(r.label))
            rule = &r;
    if (!rule)
        return;

    // Each change adds its clause; each clause queues the body as it stands.
    auto change = [&](const QString &clause) {
        m_body += clause;
        if (m_settings.itemOn(rule->item) && m_settings.MailEnabled && m_db.queueMail(m_title, m_body))
            ++m_count;
    };
    const QString prefix = QString::fromLatin1(rule->clause);
    switch (rule->compare) {
    case Compare::Bits:
        for (int bit = 0; bit < rule->bits; ++bit) {
            const bool was = (oldWord >> bit) & 1;
            const bool now = (newWord >> bit) & 1;
            if (was != now)
                change(prefix + QString::number(bit + 1) + QLatin1String(onOff(now)));
        }
        break;
    case Compare::NonZero:
        if ((oldWord != 0) != (newWord != 0))
            change(prefix + QLatin1String(onOff(newWord != 0)));
        break;
    case Compare::BurnOut:
        if ((oldWord == 65535) != (newWord == 65535))
            change(prefix + QLatin1String(onOff(newWord == 65535)));
        break;
    }
}

void MailNotifier::handOver()
{
    if (m_count <= 0 || !m_settings.MailEnabled)
        return;
    const std::optional<int> sendNG = m_db.readSendNG();
    if (!sendNG || *sendNG >= 1)
        return;
    m_launch(m_sender, {QStringLiteral("--home"), m_home}, m_home);
}
