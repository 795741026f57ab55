#include "registry/client/SingleAttemptPost.h"

#include "framework/CurlHandles.h"

#include <QCoreApplication>

#include <memory>

using namespace Qt::StringLiterals;

namespace {
constexpr int PollMs = 25;

struct MultiDeleter {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};
using Multi = std::unique_ptr<CURLM, MultiDeleter>;

// What arrives, bounded by the answer size limit.
struct Arrival {
    qint64 limit = 0;
    bool tooLarge = false;
    QByteArray statusLine;
    QByteArray body;
};

size_t OnBody(char* data, size_t size, size_t count, void* user)
{
    auto* arrival = static_cast<Arrival*>(user);
    const size_t bytes = size * count;
    if (arrival->body.size() + static_cast<qint64>(bytes) > arrival->limit) {
        arrival->tooLarge = true;
        return 0; // libcurl ends the transfer
    }
    arrival->body.append(data, static_cast<qsizetype>(bytes));
    return bytes;
}

size_t OnHeader(char* data, size_t size, size_t count, void* user)
{
    const QByteArray line(data, static_cast<qsizetype>(size * count));
    if (line.startsWith("HTTP/"))
        static_cast<Arrival*>(user)->statusLine = line.trimmed();
    return size * count;
}

QString TransportWords(CURLcode code)
{
    switch (code) {
    case CURLE_OPERATION_TIMEDOUT: return u"Przekroczono czas oczekiwania na odpowiedź serwera"_s;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_CONNECT: return u"Brak połączenia z serwerem"_s;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CERTPROBLEM: return u"Nie udało się nawiązać bezpiecznego połączenia z serwerem"_s;
    case CURLE_GOT_NOTHING:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_PARTIAL_FILE: return u"Połączenie zostało przerwane"_s;
    default: return u"Błąd komunikacji z serwerem"_s;
    }
}

void Set(CURLcode code)
{
    if (code != CURLE_OK)
        throw RegistryError(
            u"Nie udało się przygotować zapytania (%1)"_s.arg(QString::fromUtf8(curl_easy_strerror(code))));
}

CurlList HeadersOf(const QList<QByteArray>& lines)
{
    CurlList list;
    for (const QByteArray& line : lines + QList<QByteArray>{"Expect:"})
        AppendCurlLine(list, line);
    return list;
}

void Configure(CURL* easy, const QByteArray& url, const curl_slist* headers, const QByteArray& body,
               const ExchangeRules& rules, Arrival& arrival)
{
    Set(curl_easy_setopt(easy, CURLOPT_URL, url.constData()));
    Set(curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https"));
    Set(curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1)));
    Set(curl_easy_setopt(easy, CURLOPT_FRESH_CONNECT, 1L));
    Set(curl_easy_setopt(easy, CURLOPT_FORBID_REUSE, 1L));
    Set(curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 0L));
    Set(curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L));
    Set(curl_easy_setopt(easy, CURLOPT_NOPROXY, "localhost,127.0.0.1,::1"));
    Set(curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, static_cast<long>(rules.timeoutMs)));
    Set(curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headers));
    Set(curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size())));
    Set(curl_easy_setopt(easy, CURLOPT_COPYPOSTFIELDS, body.constData()));
    Set(curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, OnBody));
    Set(curl_easy_setopt(easy, CURLOPT_WRITEDATA, &arrival));
    Set(curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, OnHeader));
    Set(curl_easy_setopt(easy, CURLOPT_HEADERDATA, &arrival));
}

// Runs the transfer while the window keeps painting; false when the user stopped it.
bool Run(CURLM* multi, const ExchangeRules& rules)
{
    int running = 1;
    while (curl_multi_perform(multi, &running) == CURLM_OK && running > 0) {
        if (rules.cancelRequested && rules.cancelRequested())
            return false;
        curl_multi_poll(multi, nullptr, 0, PollMs, nullptr);
        QCoreApplication::processEvents();
    }
    return true;
}

// Nothing went out before the request was about to be written.
bool NothingSent(CURL* easy)
{
    curl_off_t pretransfer = 0;
    curl_easy_getinfo(easy, CURLINFO_PRETRANSFER_TIME_T, &pretransfer);
    return pretransfer == 0;
}

CURLcode Outcome(CURLM* multi)
{
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi, &left))
        if (message->msg == CURLMSG_DONE)
            return message->data.result;
    return CURLE_GOT_NOTHING;
}

void Collect(CURL* easy, CURLcode code, const Arrival& arrival, const QString& address, const ExchangeRules& rules,
             SingleAttemptResult& result)
{
    result.nothingSent = NothingSent(easy);
    long status = 0;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
    result.status = static_cast<int>(status);
    result.statusLine = QString::fromLatin1(arrival.statusLine);
    if (arrival.tooLarge) {
        result.failure = u"Odpowiedź serwera przekracza dopuszczalny rozmiar %1 MB: %2"_s
                             .arg(static_cast<double>(rules.maxAnswerBytes) / (1 << 20))
                             .arg(address);
    } else if (code != CURLE_OK) {
        result.failure =
            TransportWords(code) + u" (%1): %2"_s.arg(QString::fromUtf8(curl_easy_strerror(code)), address);
    } else if (result.status < 200 || (result.status >= 300 && result.status < 400)) {
        result.failure = u"Serwer nie dał odpowiedzi na zgłoszenie (%1): %2"_s.arg(result.statusLine, address);
    } else {
        result.body = arrival.body;
    }
}
} // namespace

SingleAttemptResult PostOnce(const QString& url, const QList<QByteArray>& headers, const QByteArray& body,
                             const ExchangeRules& rules)
{
    EnsureCurlGlobal();
    const CurlEasy easy(curl_easy_init());
    const Multi multi(curl_multi_init());
    if (!easy || !multi)
        throw RegistryError(u"Nie udało się przygotować zapytania"_s);
    Arrival arrival{rules.maxAnswerBytes, false, {}, {}};
    const CurlList headerList = HeadersOf(headers);
    Configure(easy.get(), url.toUtf8(), headerList.get(), body, rules, arrival);
    curl_multi_add_handle(multi.get(), easy.get());
    SingleAttemptResult result;
    const QString address = url.section(u'?', 0, 0);
    if (Run(multi.get(), rules)) {
        Collect(easy.get(), Outcome(multi.get()), arrival, address, rules, result);
    } else {
        result.nothingSent = NothingSent(easy.get());
        result.cancelled = true;
        result.failure = u"Przerwano na żądanie użytkownika"_s;
    }
    curl_multi_remove_handle(multi.get(), easy.get());
    return result;
}
