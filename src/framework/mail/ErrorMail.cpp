#include "framework/mail/ErrorMail.h"

#include "framework/Cp1250.h"
#include "framework/HalvarnError.h"
#include "framework/mail/MailSettings.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <curl/curl.h>

using namespace Qt::StringLiterals;

namespace {
const QString CrLf = u"\r\n"_s;

// Keeps "Subject: " and an encoded word within 78 characters.
constexpr qsizetype MaxEncodedPayload = 45;
constexpr qsizetype MaxPlainHeaderText = 66;

QString CheckedAddress(const QString& address, const QString& whose)
{
    const QString trimmed = address.trimmed();
    if (!IsPlausibleAddress(trimmed))
        throw HalvarnError(u"Niepoprawny adres e-mail %1: „%2”."_s.arg(whose, trimmed));
    return trimmed;
}

// Mail programs show a name in printable ASCII everywhere; anything else becomes "_".
QString AsciiFileName(const QString& name)
{
    QString ascii = name;
    for (QChar& c : ascii)
        if (c.unicode() < 0x20 || c.unicode() > 0x7E || c == u'"' || c == u'\\')
            c = u'_';
    return ascii;
}

ErrorMail::Attachment ReadScreenshot(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw HalvarnError(u"Nie można odczytać zrzutu ekranu %1 (%2)."_s.arg(path, file.errorString()));
    return {AsciiFileName(QFileInfo(path).fileName()), file.readAll()};
}

bool IsPlainHeaderText(const QString& text)
{
    if (text.size() > MaxPlainHeaderText || text.contains(u"=?"_s))
        return false;
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() >= 0x20 && c.unicode() <= 0x7E; });
}

// What an RFC 2047 encoded word may carry as it is, wherever in a header it stands.
bool IsQLiteral(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
           QByteArray("!*+-/").contains(c);
}

QByteArray QEncoded(char c)
{
    if (c == ' ')
        return "_";
    if (IsQLiteral(c))
        return QByteArray(1, c);
    return '=' + QByteArray::number(static_cast<unsigned char>(c), 16).toUpper().rightJustified(2, '0');
}

QByteArray EncodedWord(const QByteArray& payload)
{
    return "=?windows-1250?Q?" + payload + "?=";
}

QString CompilerVersion()
{
#if defined(__clang__)
    return u"Kompilator: "_s + QString::fromLatin1(__VERSION__);
#elif defined(__GNUC__)
    return u"Kompilator: GCC "_s + QString::fromLatin1(__VERSION__);
#elif defined(_MSC_FULL_VER)
    return u"Kompilator: MSVC "_s + QString::number(_MSC_FULL_VER);
#else
    return u"Kompilator: nieznany"_s;
#endif
}
} // namespace

ErrorMail ErrorMail::compose(const MailSettings& settings, const ErrorMailInput& input, const QString& version,
                             const QStringList& libraries)
{
    ErrorMail mail;
    mail.from = CheckedAddress(settings.sender, u"nadawcy (Sender w sekcji [SMTP])"_s);
    mail.to = CheckedAddress(settings.support, u"pomocy technicznej (Support w sekcji [SMTP])"_s);
    if (!input.userAddress.trimmed().isEmpty())
        mail.replyTo = CheckedAddress(input.userAddress, u"do odpowiedzi"_s);
    mail.subject = ErrorMailSubject(version);
    mail.body = ErrorMailBody(input.description, input.text, libraries);
    if (!input.screenshotPath.isEmpty())
        mail.screenshot = ReadScreenshot(input.screenshotPath);
    return mail;
}

QList<QByteArray> ErrorMail::headerLines(const QDateTime& date) const
{
    QList<QByteArray> lines{"Date: " + date.toString(Qt::RFC2822Date).toLatin1(), "From: " + from.toLatin1(),
                            "To: " + to.toLatin1()};
    if (!replyTo.isEmpty())
        lines << "Reply-To: " + replyTo.toLatin1();
    lines << "Subject: " + EncodedHeaderText(subject);
    return lines;
}

QString ErrorMailSubject(const QString& version)
{
    return u"Halvarn %1 – raport błędu"_s.arg(version);
}

QByteArray ErrorMailBody(const QString& description, const QString& reportText, const QStringList& libraries)
{
    QString text = u"Informacje dodatkowe:"_s + CrLf + CrLf + WithCrLf(description) + CrLf + CrLf +
                   WithCrLf(reportText) + CrLf + CrLf + u"Wersje bibliotek:"_s + CrLf;
    for (const QString& library : libraries)
        text += WithCrLf(library) + CrLf;
    return ToCp1250(text);
}

QStringList LibraryVersions()
{
    const curl_version_info_data* curl = curl_version_info(CURLVERSION_NOW);
    QString tls = curl->ssl_version ? QString::fromLatin1(curl->ssl_version) : u"TLS: brak"_s;
    tls.replace(u'/', u' ');
    return {u"Qt "_s + QString::fromLatin1(qVersion()), u"libcurl "_s + QString::fromLatin1(curl->version), tls,
            CompilerVersion()};
}

QString WithCrLf(QString text)
{
    text.replace(CrLf, u"\n"_s);
    text.replace(u'\r', u'\n');
    text.replace(u"\n"_s, CrLf);
    return text;
}

QByteArray EncodedHeaderText(const QString& text)
{
    if (IsPlainHeaderText(text))
        return text.toLatin1();
    QList<QByteArray> words;
    QByteArray payload;
    for (const char byte : ToCp1250(text)) {
        const QByteArray token = QEncoded(byte);
        if (payload.size() + token.size() > MaxEncodedPayload) {
            words << EncodedWord(payload);
            payload.clear();
        }
        payload += token;
    }
    words << EncodedWord(payload);
    return words.join("\r\n ");
}

bool IsPlausibleAddress(const QString& address)
{
    static const QRegularExpression plausible(
        uR"(^[A-Za-z0-9.!#$%&'*+/=?^_`{|}~-]+@[A-Za-z0-9-]+(\.[A-Za-z0-9-]+)*$)"_s);
    return plausible.match(address).hasMatch();
}
