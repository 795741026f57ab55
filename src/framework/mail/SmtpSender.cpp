#include "framework/mail/SmtpSender.h"

#include "framework/CurlHandles.h"
#include "framework/HalvarnError.h"
#include "framework/mail/ErrorMail.h"
#include "framework/mail/MailSettings.h"

#include <QFile>
#include <QSysInfo>
#include <QUrl>

#include <algorithm>
#include <curl/curl.h>
#include <exception>
#include <memory>
#include <new>

using namespace Qt::StringLiterals;

namespace {
using Outcome = SendResult::Outcome;

struct MimeDeleter {
    void operator()(curl_mime* mime) const { curl_mime_free(mime); }
};
using Mime = std::unique_ptr<curl_mime, MimeDeleter>;

void Require(CURLcode code)
{
    if (code != CURLE_OK)
        throw HalvarnError(
            u"Nie udało się przygotować wiadomości (%1)."_s.arg(QString::fromUtf8(curl_easy_strerror(code))));
}

// What the transfer saw of the conversation, to tell why it failed. Only command
// names are kept: the lines after AUTH carry the encoded password.
struct Conversation {
    const SmtpSender::Progress* progress = nullptr;
    std::exception_ptr progressError;
    QByteArray lastCommand; // EHLO, STARTTLS, AUTH, MAIL, RCPT or DATA
    QByteArray lastReply;   // the server's last answer line
    bool quitting = false;
};

QByteArray CommandName(const char* data, size_t size)
{
    const QByteArray line = QByteArray(data, static_cast<qsizetype>(size)).trimmed();
    const QByteArray name = line.split(' ').constFirst().toUpper();
    for (const char* known : {"EHLO", "HELO", "STARTTLS", "AUTH", "MAIL", "RCPT", "DATA", "QUIT"})
        if (name == known)
            return name;
    return {};
}

int OnDebug(CURL*, curl_infotype type, char* data, size_t size, void* user)
{
    auto* conversation = static_cast<Conversation*>(user);
    if (conversation->quitting)
        return 0;
    if (type == CURLINFO_HEADER_OUT) {
        const QByteArray name = CommandName(data, size);
        // After a failure libcurl says QUIT; what follows would hide what failed.
        conversation->quitting = name == "QUIT";
        if (!name.isEmpty() && !conversation->quitting)
            conversation->lastCommand = name;
    } else if (type == CURLINFO_HEADER_IN) {
        conversation->lastReply = QByteArray(data, static_cast<qsizetype>(size)).trimmed();
    }
    return 0;
}

int OnProgress(void* user, curl_off_t, curl_off_t, curl_off_t, curl_off_t)
{
    auto* conversation = static_cast<Conversation*>(user);
    if (!*conversation->progress)
        return 0;
    try {
        return (*conversation->progress)() ? 1 : 0;
    } catch (...) {
        conversation->progressError = std::current_exception();
        return 1;
    }
}

// The name the client gives in EHLO: this computer's, if it is a plain host name.
QByteArray ClientName()
{
    const QByteArray name = QUrl::toAce(QSysInfo::machineHostName());
    const bool plain = !name.isEmpty() && std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '.';
    });
    return plain ? name : QByteArray("localhost");
}

QByteArray ServerUrl(const MailSettings& settings)
{
    QUrl url;
    url.setScheme(settings.tls == MailTls::Implicit ? u"smtps"_s : u"smtp"_s);
    url.setHost(settings.server.trimmed());
    url.setPort(settings.port);
    url.setPath(u'/' + QString::fromLatin1(ClientName()));
    if (!url.isValid() || url.host().isEmpty())
        throw HalvarnError(u"Niepoprawna nazwa serwera poczty: „%1”."_s.arg(settings.server));
    return url.toEncoded();
}

Mime MimeOf(CURL* easy, const ErrorMail& mail)
{
    Mime mime(curl_mime_init(easy));
    if (!mime)
        throw std::bad_alloc();
    curl_mimepart* text = curl_mime_addpart(mime.get());
    Require(curl_mime_data(text, mail.body.constData(), static_cast<size_t>(mail.body.size())));
    Require(curl_mime_type(text, "text/plain; charset=windows-1250"));
    Require(curl_mime_encoder(text, "quoted-printable"));
    if (mail.screenshot) {
        curl_mimepart* image = curl_mime_addpart(mime.get());
        const QByteArray& bytes = mail.screenshot->bytes;
        Require(curl_mime_data(image, bytes.constData(), static_cast<size_t>(bytes.size())));
        Require(curl_mime_type(image, "image/jpeg"));
        Require(curl_mime_encoder(image, "base64"));
        Require(curl_mime_filename(image, mail.screenshot->fileName.toLatin1().constData()));
    }
    return mime;
}

long Milliseconds(std::chrono::seconds duration)
{
    return static_cast<long>(std::chrono::duration_cast<std::chrono::milliseconds>(duration).count());
}

// Everything one transfer needs, alive until it ends.
struct Transfer {
    Mime mime;
    CurlList headers;
    CurlList recipients;
    Conversation conversation;
    char error[CURL_ERROR_SIZE] = {};
    // Last, so that it goes first: its clean-up may still say QUIT and use the rest.
    CurlEasy easy;
};

void SetUp(Transfer& transfer, const MailSettings& settings, const ErrorMail& mail)
{
    CURL* easy = transfer.easy.get();
    const QByteArray url = ServerUrl(settings);
    Require(curl_easy_setopt(easy, CURLOPT_URL, url.constData()));
    Require(curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "smtp,smtps"));
    Require(curl_easy_setopt(easy, CURLOPT_USE_SSL,
                             static_cast<long>(settings.tls == MailTls::None ? CURLUSESSL_NONE : CURLUSESSL_ALL)));
    if (!settings.caFile.isEmpty())
        Require(curl_easy_setopt(easy, CURLOPT_CAINFO, QFile::encodeName(settings.caFile).constData()));
    if (!settings.account.isEmpty()) {
        Require(curl_easy_setopt(easy, CURLOPT_USERNAME, settings.account.toUtf8().constData()));
        Require(curl_easy_setopt(easy, CURLOPT_PASSWORD, settings.password.toUtf8().constData()));
    }
    Require(curl_easy_setopt(easy, CURLOPT_MAIL_FROM, ('<' + mail.from.toLatin1() + '>').constData()));
    AppendCurlLine(transfer.recipients, '<' + mail.to.toLatin1() + '>');
    Require(curl_easy_setopt(easy, CURLOPT_MAIL_RCPT, transfer.recipients.get()));
    for (const QByteArray& line : mail.headerLines(QDateTime::currentDateTime()))
        AppendCurlLine(transfer.headers, line);
    Require(curl_easy_setopt(easy, CURLOPT_HTTPHEADER, transfer.headers.get()));
    transfer.mime = MimeOf(easy, mail);
    Require(curl_easy_setopt(easy, CURLOPT_MIMEPOST, transfer.mime.get()));
    Require(curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, Milliseconds(SmtpSender::connectTimeout)));
    Require(curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, Milliseconds(SmtpSender::wholeTimeout)));
    Require(curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L));
    Require(curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, transfer.error));
}

void Watch(Transfer& transfer)
{
    CURL* easy = transfer.easy.get();
    Require(curl_easy_setopt(easy, CURLOPT_NOPROGRESS, 0L));
    Require(curl_easy_setopt(easy, CURLOPT_XFERINFOFUNCTION, OnProgress));
    Require(curl_easy_setopt(easy, CURLOPT_XFERINFODATA, &transfer.conversation));
    // With a debug function, the protocol lines go to it instead of stderr.
    Require(curl_easy_setopt(easy, CURLOPT_DEBUGFUNCTION, OnDebug));
    Require(curl_easy_setopt(easy, CURLOPT_DEBUGDATA, &transfer.conversation));
    Require(curl_easy_setopt(easy, CURLOPT_VERBOSE, 1L));
}

bool IsTlsFailure(CURLcode code)
{
    switch (code) {
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_CRL_BADFILE:
    case CURLE_SSL_INVALIDCERTSTATUS:
    case CURLE_SSL_PINNEDPUBKEYNOTMATCH:
    case CURLE_SSL_ENGINE_NOTFOUND:
    case CURLE_SSL_ENGINE_SETFAILED:
    case CURLE_SSL_ENGINE_INITFAILED:
    case CURLE_SSL_SHUTDOWN_FAILED: return true;
    default: return false;
    }
}

SendResult Failure(CURLcode code, const Transfer& transfer, const MailSettings& settings, const ErrorMail& mail)
{
    const Conversation& conversation = transfer.conversation;
    QString detail = QString::fromUtf8(transfer.error[0] ? transfer.error : curl_easy_strerror(code));
    if (!conversation.lastReply.isEmpty())
        detail += u"; serwer: "_s + QString::fromUtf8(conversation.lastReply);
    const auto result = [&detail](Outcome outcome, const QString& text) {
        return SendResult{outcome, text + u" ("_s + detail + u")."_s};
    };
    const QString where = u"%1:%2"_s.arg(settings.server).arg(settings.port);
    if (code == CURLE_ABORTED_BY_CALLBACK)
        return {Outcome::Cancelled, u"Wysyłanie raportu przerwano."_s};
    if (code == CURLE_LOGIN_DENIED)
        return result(Outcome::LoginRejected, u"Serwer poczty odrzucił login lub hasło"_s);
    if (code == CURLE_USE_SSL_FAILED)
        return result(Outcome::TlsFailed,
                      u"Serwer poczty %1 nie obsługuje szyfrowania (STARTTLS), więc raportu nie wysłano"_s.arg(where));
    if (IsTlsFailure(code))
        return result(Outcome::TlsFailed,
                      u"Nie udało się nawiązać szyfrowanego połączenia z serwerem poczty %1"_s.arg(where));
    if (code == CURLE_COULDNT_RESOLVE_HOST || code == CURLE_COULDNT_CONNECT ||
        (code == CURLE_OPERATION_TIMEDOUT && conversation.lastReply.isEmpty()))
        return result(Outcome::NoConnection, u"Nie można połączyć się z serwerem poczty %1"_s.arg(where));
    if (code == CURLE_OPERATION_TIMEDOUT)
        return result(Outcome::NoConnection, u"Serwer poczty %1 nie odpowiedział w wyznaczonym czasie"_s.arg(where));
    if (conversation.lastCommand == "RCPT")
        return result(Outcome::RecipientRefused, u"Serwer poczty nie przyjął adresu odbiorcy %1"_s.arg(mail.to));
    if (conversation.lastCommand == "MAIL")
        return result(Outcome::SenderRefused, u"Serwer poczty nie przyjął adresu nadawcy %1"_s.arg(mail.from));
    if (conversation.lastCommand == "DATA")
        return result(Outcome::Failed, u"Serwer poczty nie przyjął wiadomości"_s);
    return result(Outcome::Failed, u"Nie udało się wysłać raportu przez serwer poczty %1"_s.arg(where));
}

SendResult WithoutPassword(SendResult result, const QString& password)
{
    if (!password.isEmpty())
        result.message.replace(password, u"***"_s);
    return result;
}

SendResult Perform(const MailSettings& settings, const ErrorMail& mail, const SmtpSender::Progress& progress)
{
    EnsureCurlGlobal();
    Transfer transfer;
    transfer.easy.reset(curl_easy_init());
    if (!transfer.easy)
        throw std::bad_alloc();
    transfer.conversation.progress = &progress;
    SetUp(transfer, settings, mail);
    Watch(transfer);
    const CURLcode code = curl_easy_perform(transfer.easy.get());
    if (transfer.conversation.progressError)
        std::rethrow_exception(transfer.conversation.progressError);
    if (code == CURLE_OK)
        return {};
    return Failure(code, transfer, settings, mail);
}
} // namespace

SendResult SmtpSender::send(const MailSettings& settings, const ErrorMail& mail, const Progress& progress)
{
    if (const QString refusal = settings.refusal(); !refusal.isEmpty())
        return WithoutPassword({Outcome::Refused, refusal}, settings.password);
    try {
        return WithoutPassword(Perform(settings, mail, progress), settings.password);
    } catch (const HalvarnError& error) {
        return WithoutPassword({Outcome::Failed, error.message()}, settings.password);
    }
}
