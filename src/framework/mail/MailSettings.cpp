#include "framework/mail/MailSettings.h"

#include "framework/IniFile.h"

#include <QHostAddress>

using namespace Qt::StringLiterals;

namespace {
const QString Section = u"SMTP"_s;

MailTls ReadTls(const IniFile& ini, QStringList& problems)
{
    const QString value = ini.readString(Section, u"Tls"_s, {}).trimmed().toLower();
    if (value.isEmpty() || value == u"starttls")
        return MailTls::StartTls;
    if (value == u"implicit")
        return MailTls::Implicit;
    if (value == u"none")
        return MailTls::None;
    problems << u"Nieznana wartość Tls=%1 w sekcji [SMTP] pliku COMMON.INI; przyjęto starttls."_s.arg(value);
    return MailTls::StartTls;
}

QStringList MissingKeys(const MailSettings& settings)
{
    QStringList missing;
    if (settings.server.isEmpty())
        missing << u"Server"_s;
    if (settings.sender.isEmpty())
        missing << u"Sender"_s;
    if (settings.support.isEmpty())
        missing << u"Support"_s;
    return missing;
}
} // namespace

bool MailSettings::configured() const
{
    return MissingKeys(*this).isEmpty();
}

bool MailSettings::serverIsLoopback() const
{
    QString host = server.trimmed();
    if (host.startsWith(u'[') && host.endsWith(u']'))
        host = host.mid(1, host.size() - 2);
    QHostAddress address;
    if (address.setAddress(host))
        return address.isLoopback();
    return host.compare(u"localhost"_s, Qt::CaseInsensitive) == 0;
}

QString MailSettings::refusal() const
{
    const QStringList missing = MissingKeys(*this);
    if (!missing.isEmpty())
        return u"Wysyłanie poczty nie jest skonfigurowane: w sekcji [SMTP] pliku COMMON.INI brakuje: %1."_s.arg(
            missing.join(u", "_s));
    if (tls == MailTls::None && !serverIsLoopback())
        return u"Połączenie bez szyfrowania (Tls=none) jest dozwolone tylko z serwerem poczty na tym komputerze, "
               u"a nie z %1. Ustaw Tls=starttls albo Tls=implicit."_s.arg(server);
    return {};
}

MailSettings MailSettings::read(const QString& commonSettingsFile, QStringList& problems)
{
    const IniFile ini(commonSettingsFile);
    const auto text = [&ini](const QString& key) { return ini.readString(Section, key, {}); };
    MailSettings settings;
    settings.server = text(u"Server"_s);
    if (!text(u"Port"_s).isEmpty())
        settings.port = ini.readInteger(Section, u"Port"_s, defaultPort, {1, 65535}, problems);
    settings.tls = ReadTls(ini, problems);
    settings.account = text(u"Account"_s);
    settings.password = text(u"Password"_s);
    settings.sender = text(u"Sender"_s);
    settings.support = text(u"Support"_s);
    settings.caFile = text(u"CaFile"_s);
    if (settings.configured() && settings.tls == MailTls::None && !settings.serverIsLoopback())
        problems << settings.refusal();
    return settings;
}
