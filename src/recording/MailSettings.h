#pragma once
#include <QString>
#include <QStringList>
#include <optional>

// The e-mail settings, as held for the whole run and as stored in
// \CFG\SetEMail.CFG (24 lines: MailUse, server, sender, ten addresses,
// eleven item switches).
struct MailSettings {
    static constexpr int AddressCount = 10;
    static constexpr int ItemCount = 11;

    int MailUse = 0;
    bool MailEnabled = false;
    QString MailSmtp;
    QString MailFrom;
    QStringList MailAddress = QStringList(AddressCount, QString());
    QString MailToList;
    QStringList MailItem = QStringList(ItemCount, QStringLiteral("0"));

    // The effective switch: MailUse 1 or more, a server, a sender and at least one address.
    void computeEnabled();
    // Item i is on when its text has the numeric value 1.
    bool itemOn(int item) const;

    QStringList toLines() const;
};

// The two forms of the address list (addresses containing "@" only): the
// start-up form puts ";" before each address, the screen's form after it.
// The sender accepts both.
QString mailToListLeading(const QStringList &addresses);
QString mailToListTrailing(const QStringList &addresses);

QString mailSettingsPath(const QString &home); // <home>/CFG/SetEMail.CFG

// The settings at start-up, with the leading-";" list and MailEnabled
// computed. Empty when the file is missing or short: the program then runs
// without mail.
std::optional<MailSettings> readMailSettingsFile(const QString &home);
bool writeMailSettingsFile(const QString &home, const MailSettings &s);
