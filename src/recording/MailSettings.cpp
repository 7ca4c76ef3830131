#include "MailSettings.h"
#include "Files.h"

void MailSettings::computeEnabled()
{
    MailEnabled = MailUse >= 1;
    if (MailSmtp.isEmpty() || MailFrom.isEmpty())
        MailEnabled = false;
    if (MailToList.isEmpty())
        MailEnabled = false;
}

bool MailSettings::itemOn(int item) const
{
    return item >= 0 && item < MailItem.size() && leadingNumber(MailItem[item]) == 1;
}

QStringList MailSettings::toLines() const
{
    QStringList lines{QString::number(MailUse), MailSmtp, MailFrom};
    for (int i = 0; i < AddressCount; ++i)
        lines << MailAddress.value(i);
    for (int i = 0; i < ItemCount; ++i)
        lines << MailItem.value(i, QStringLiteral("0"));
    return lines;
}

QString mailToListLeading(const QStringList &addresses)
{
    QString list;
    for (const QString &a : addresses)
        if (a.contains(u'@'))
            list += u';' + a;
    return list;
}

QString mailToListTrailing(const QStringList &addresses)
{
    QString list;
    for (const QString &a : addresses)
        if (a.contains(u'@'))
            list += a + u';';
    return list;
}

QString mailSettingsPath(const QString &home)
{
    return programPath(home, QStringLiteral("\\CFG\\SetEMail.CFG"));
}

std::optional<MailSettings> readMailSettingsFile(const QString &home)
{
    const auto lines = readTextLines(mailSettingsPath(home));
    if (!lines || lines->size() < 3 + MailSettings::AddressCount + MailSettings::ItemCount)
        return std::nullopt;
    const QStringList &l = *lines;
    MailSettings s;
    s.MailUse = leadingInt(l[0]);
    s.MailSmtp = l[1];
    s.MailFrom = l[2];
    for (int i = 0; i < MailSettings::AddressCount; ++i)
        s.MailAddress[i] = l[3 + i];
    for (int i = 0; i < MailSettings::ItemCount; ++i)
        s.MailItem[i] = l[3 + MailSettings::AddressCount + i];
    s.MailToList = mailToListLeading(s.MailAddress);
    s.computeEnabled();
    return s;
}

bool writeMailSettingsFile(const QString &home, const MailSettings &s)
{
    return writeTextLinesAtomic(mailSettingsPath(home), s.toLines());
}
