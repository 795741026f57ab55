#include "framework/IniFile.h"
#include "registry/client/TdmIRZ_PLUS.h"
#include "support/Files.h"
#include "support/RecordingHost.h"
#include "support/RecordingServer.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {
using Reply = RecordingServer::Reply;

RecordingServer::Responder Always(int status, QByteArray body, QByteArray reason = {})
{
    return [status, body, reason](const RecordingServer::Request&) { return Reply{status, body, 0, reason}; };
}

RegistryConfig ConfigFor(const RecordingServer& server)
{
    RegistryConfig config;
    config.ssoBase = config.apiBase = server.baseUrl();
    return config;
}

TDateTime Day(int y, int m, int d)
{
    return ToDateTime(QDate(y, m, d));
}
} // namespace

class TestRegistryClient : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void logInSendsTheFormBodyAsTyped();
    void logInFailuresShowTheirMessage_data();
    void logInFailuresShowTheirMessage();
    void requestsCarryTheTokenAndTheirFilters_data();
    void requestsCarryTheTokenAndTheirFilters();
    void httpErrorsOfGetsBecomeTheMarker_data();
    void httpErrorsOfGetsBecomeTheMarker();
    void noConnectionRaises();
    void brokenAnswersAreFailures_data();
    void brokenAnswersAreFailures();
    void redirectsStayWithinTheOrigin();
    void tokensThatAreNotPlainAreRefused_data();
    void tokensThatAreNotPlainAreRefused();
    void secretsTravelInClearTextOnlyToThisMachine_data();
    void secretsTravelInClearTextOnlyToThisMachine();
    void aStopAbortsTheRequestInFlight();
    void settingsOutsideTheirRangeFallBack_data();
    void settingsOutsideTheirRangeFallBack();
    void animalQueueHandsOutAnswersInListOrder_data();
    void animalQueueHandsOutAnswersInListOrder();
    void waitingForAFreeConnectionDoesNotCountAsTimeOut();
};

void TestRegistryClient::logInSendsTheFormBodyAsTyped()
{
    RecordingServer server(Always(200, R"({"access_token":"abc"})"));
    RecordingHost host;
    TdmIRZ_PLUS client(ConfigFor(server), host);
    QVERIFY(client.Authorize(u"jan.kowalski"_s, u"a&b=c ł"_s));
    QCOMPARE(client.Token, u"abc"_s);
    const auto& request = server.requests().at(0);
    QCOMPARE(request.method, QByteArray("POST"));
    QCOMPARE(request.target, QByteArray("/auth/realms/ewniosekplus/protocol/openid-connect/token"));
    QCOMPARE(request.headers.value("content-type"), QByteArray("application/x-www-form-urlencoded"));
    QCOMPARE(QString::fromUtf8(request.body),
             u"username=jan.kowalski&password=a&b=c ł&client_id=aplikacja-irzplus&grant_type=password"_s);
    QVERIFY(host.messages.empty());
}

void TestRegistryClient::logInFailuresShowTheirMessage_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("reason");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("message");
    const QString refused = u"Brak autoryzacji (Być może niepoprawny login/hasło)"_s;
    const QString failed = u"Autoryzacja zakończona z błędem: "_s;
    const QString noToken = failed + u"odpowiedź serwera nie zawiera tokenu dostępu"_s;
    QTest::newRow("refused") << 401 << QByteArray() << QByteArray(R"({"error":"invalid_grant"})") << refused;
    // 401 is the refusal whatever the status line says.
    QTest::newRow("refused, other wording") << 401 << QByteArray("Access Denied") << QByteArray("{}") << refused;
    QTest::newRow("refused, no wording") << 401 << QByteArray(" ") << QByteArray() << refused;
    QTest::newRow("forbidden, worded Unauthorized")
        << 403 << QByteArray("Unauthorized") << QByteArray("{}") << failed + u"HTTP/1.1 403 Unauthorized"_s;
    QTest::newRow("server error") << 500 << QByteArray() << QByteArray("{}")
                                  << failed + u"HTTP/1.1 500 Internal Server Error"_s;
    QTest::newRow("not json") << 200 << QByteArray() << QByteArray("<html>") << noToken;
    QTest::newRow("token missing") << 200 << QByteArray() << QByteArray(R"({"token_type":"bearer"})") << noToken;
}

void TestRegistryClient::logInFailuresShowTheirMessage()
{
    QFETCH(int, status);
    QFETCH(QByteArray, reason);
    QFETCH(QByteArray, body);
    QFETCH(QString, message);
    RecordingServer server(Always(status, body, reason));
    RecordingHost host;
    TdmIRZ_PLUS client(ConfigFor(server), host);
    QVERIFY(!client.Authorize(u"u"_s, u"p"_s));
    QCOMPARE(host.messages.size(), 1u);
    QCOMPARE(host.messages[0].caption, u"Bład..."_s);
    QCOMPARE(host.messages[0].text, message);
    QCOMPARE(host.messages[0].icon, MessageIcon::Error);
}

// GETs build their query from the filters given; POST bodies keep their key order and omit empty values.
void TestRegistryClient::requestsCarryTheTokenAndTheirFilters_data()
{
    QTest::addColumn<int>("request");
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QByteArray>("body"); // null for a GET
    const QByteArray animals = "/api/indywidualne/zwierze/api/prod/zwierzetaIndywidualne?numerProducenta=071234562";
    const QByteArray documents = "/api/dokumenty/dokument/api/prod/listaDokumentow?numerProducenta=071234562";
    const QByteArray useChange = "/api/indywidualne/dokument/api/prod/ztuku";
    const QByteArray producer = R"({"numerProducenta":"071234562",)";
    const QByteArray head = R"("zgloszenie":{"numerDzialalnosci":"071234562-001","gatunek":{"kod":"BYD"},)"
                            R"("dataOkresleniaTypuIKierunkuUzytkowania":"2026-11-23",)"
                            R"("pozycje":[{"lp":"1","numerIdentyfikacyjnyZwierzecia":"PL1",)";
    const QByteArray get;
    QTest::newRow("animals, all filters")
        << 0
        << animals + "&gatunek=BYD&numerDzialalnosci=071234562-001&numerIdentyfikacyjnyRejestrowanegoZwierzecia=PL1"
                     "&plec=XX&kodRasy=HO&typUzytkowy=ML&stanDanych=2026-11-01"
        << get;
    QTest::newRow("animals, no date, test branch")
        << 1 << QByteArray(animals).replace("/prod/", "/test/") + "&gatunek=BYD" << get;
    QTest::newRow("single animal") << 2
                                   << QByteArray(
                                          "/api/indywidualne/zwierze/api/prod/zwierzeIndywidualne?numerProducenta="
                                          "071234562&numerIdentyfikacyjnyZwierzecia=PL005123456789")
                                   << get;
    QTest::newRow("documents") << 3
                               << documents +
                                      "&numerDokumentu=D/1&dataPrzyjeciaOd=2026-01-01&dataPrzyjeciaDo=2026-11-01"
                               << get;
    QTest::newRow("documents, no filters") << 4 << documents << get;
    QTest::newRow("holdings, producer only") << 5 << QByteArray("/api/dzialalnosci/api/prod/dzialalnosci")
                                             << QByteArray(R"({"numerProducenta":"071234562"})");
    QTest::newRow("holdings, every filter")
        << 6 << QByteArray("/api/dzialalnosci/api/test/dzialalnosci")
        << producer + R"("numerDzialalnosci":"071234562-001","typDzialalnosci":"GOSP","stanDzialalnosci":"SDZA"})";
    QTest::newRow("type and direction: ZTK")
        << 7 << useChange
        << producer + head +
               R"("typUzytkowy":{"kod":"MI"},"kierunekUzytkowy":{"kod":"OP"},"celZmiany":{"kod":"ZTK"}}]}})";
    QTest::newRow("type only: ZTU") << 8 << useChange
                                    << producer + head + R"("typUzytkowy":{"kod":"MI"},"celZmiany":{"kod":"ZTU"}}]}})";
    QTest::newRow("direction only: ZKU") << 9 << useChange
                                         << producer + head +
                                                R"("kierunekUzytkowy":{"kod":"OP"},"celZmiany":{"kod":"ZKU"}}]}})";
    QTest::newRow("neither, with unit: ZKU")
        << 10 << useChange
        << producer + R"("komorkaOrganizacyjna":"BP 7",)" + head + R"("celZmiany":{"kod":"ZKU"}}]}})";
}

void TestRegistryClient::requestsCarryTheTokenAndTheirFilters()
{
    QFETCH(int, request);
    QFETCH(QByteArray, target);
    QFETCH(QByteArray, body);
    RecordingServer server(Always(200, "{}"));
    RecordingHost host;
    TdmIRZ_PLUS client(ConfigFor(server), host);
    client.Token = u"tok"_s;
    const QString producer = u"071234562"_s;
    const QString herd = producer + u"-001"_s;
    const QString none;
    const auto change = [&](const QString& unit, const QString& type, const QString& direction) {
        client.SubmitUseChange(producer, unit, herd, u"BYD"_s, Day(2026, 11, 23), u"PL1"_s, type, direction, false);
    };
    switch (request) {
    case 0:
        client.ListAnimals(producer, herd, u"BYD"_s, u"PL1"_s, u"XX"_s, u"HO"_s, u"ML"_s, Day(2026, 11, 1), false);
        break;
    case 1: client.ListAnimals(producer, {}, u"BYD"_s, {}, {}, {}, {}, EmptyDate, true); break;
    case 2: client.GetAnimal(producer, u"PL005123456789"_s, false); break;
    case 3: client.ListDocuments(producer, u"D/1"_s, Day(2026, 1, 1), Day(2026, 11, 1), false); break;
    case 4: client.ListDocuments(producer, {}, EmptyDate, EmptyDate, false); break;
    case 5: client.ListHoldings(producer, none, none, none, false); break;
    case 6: client.ListHoldings(producer, herd, u"GOSP"_s, u"SDZA"_s, true); break;
    case 7: change(none, u"MI"_s, u"OP"_s); break;
    case 8: change(none, u"MI"_s, none); break;
    case 9: change(none, none, u"OP"_s); break;
    default: change(u"BP 7"_s, none, none);
    }
    const auto& sent = server.requests().at(0);
    QCOMPARE(sent.method, QByteArray(body.isNull() ? "GET" : "POST"));
    QCOMPARE(sent.target, target);
    QCOMPARE(sent.body, body);
    QCOMPARE(sent.headers.value("authorization"), QByteArray("Bearer tok"));
    if (body.isNull()) {
        QCOMPARE(sent.headers.value("accept"), QByteArray("application/json"));
    } else {
        QCOMPARE(sent.headers.value("content-type"), QByteArray("application/json"));
        QCOMPARE(sent.headers.value("content-length"), QByteArray::number(body.size()));
    }
}

void TestRegistryClient::httpErrorsOfGetsBecomeTheMarker_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("answer");
    const QString status = u"HTTP/1.1 500 Internal Server Error"_s;
    QTest::newRow("no words of the registry") << QByteArray(R"({"bledy":[]})") << status;
    QTest::newRow("not JSON") << QByteArray("<html>") << status;
    QTest::newRow("komunikat at the root")
        << QByteArray(R"({"komunikat":"Brak danych"})") << u"Brak danych ("_s + status + u')';
    QTest::newRow("error entries")
        << QByteArray(R"({"bledy":[{"kodBledu":"E1","komunikat":"awaria"},{"kodBledu":"E2","komunikat":"znowu"}]})")
        << u"E1: awaria; E2: znowu ("_s + status + u')';
}

void TestRegistryClient::httpErrorsOfGetsBecomeTheMarker()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, answer);
    RecordingServer server(Always(500, body));
    RecordingHost host;
    TdmIRZ_PLUS client(ConfigFor(server), host);
    QCOMPARE(client.GetAnimal(u"1"_s, u"PL1"_s, false), ErrorMarker + answer);
}

// Failing and slow answers are followed through the download; here, nobody listening.
void TestRegistryClient::noConnectionRaises()
{
    RecordingHost host;
    QTcpServer closed;
    QVERIFY(closed.listen(QHostAddress::LocalHost));
    RegistryConfig nobody;
    nobody.ssoBase = nobody.apiBase = u"http://127.0.0.1:%1"_s.arg(closed.serverPort());
    closed.close();
    TdmIRZ_PLUS unreachable(nobody, host);
    try {
        unreachable.GetAnimal(u"1"_s, u"PL1"_s, false);
        QFAIL("no connection must raise");
    } catch (const RegistryError& error) {
        QVERIFY2(error.message().startsWith(u"Brak połączenia z serwerem ("_s), error.what());
    }
}

// Whatever breaks an answer after its status line, each kind of request sees a
// failure in its own way, never an empty good answer.
void TestRegistryClient::brokenAnswersAreFailures_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<Reply>("reply");
    QTest::addColumn<QString>("failure");
    using Break = RecordingServer::Break;
    const struct {
        const char* name;
        Reply reply;
        const char* failure;
    } faults[] = {
        {"cut after the headers", RecordingServer::Broken(Break::CutAfterHeaders), "Połączenie zostało przerwane"},
        {"silent after the headers", RecordingServer::Broken(Break::StallAfterHeaders),
         "Przekroczono czas oczekiwania na odpowiedź serwera"},
        {"redirect loop", RecordingServer::Redirect("/again"), "Nie udało się podążyć za przekierowaniem serwera"},
        {"over the size limit", Reply{200, QByteArray(3 << 19, 'x')},
         "Odpowiedź serwera przekracza dopuszczalny rozmiar 1 MB"},
    };
    const char* kinds[] = {"GET", "POST", "log-in"};
    for (int kind = 0; kind < 3; ++kind)
        for (const auto& fault : faults)
            QTest::addRow("%s, %s", kinds[kind], fault.name) << kind << fault.reply << QString::fromUtf8(fault.failure);
}

void TestRegistryClient::brokenAnswersAreFailures()
{
    QFETCH(int, kind);
    QFETCH(Reply, reply);
    QFETCH(QString, failure);
    RecordingServer broken([reply](const RecordingServer::Request&) { return reply; });
    RecordingHost host;
    RegistryConfig config = ConfigFor(broken);
    config.getTimeoutMs = config.postTimeoutMs = 400;
    config.maxAnswerBytes = 1 << 20;
    TdmIRZ_PLUS client(config, host);
    if (kind == 0) {
        const QString answer = client.GetAnimal(u"1"_s, u"PL1"_s, false);
        QVERIFY2(answer.startsWith(ErrorMarker + failure), qPrintable(answer));
    } else if (kind == 1) {
        try {
            client.ListHoldings(u"1"_s, {}, {}, {}, false);
            QFAIL("a broken answer to a POST must raise");
        } catch (const RegistryError& error) {
            QVERIFY2(error.message().startsWith(failure), error.what());
        }
    } else {
        QVERIFY(!client.Authorize(u"u"_s, u"p"_s));
        QCOMPARE(host.messages.size(), 1u);
        QVERIFY2(host.messages[0].text.startsWith(u"Autoryzacja zakończona z błędem: "_s + failure),
                 qPrintable(host.messages[0].text));
    }
}

// A redirect within the registry is followed with the token; one to another
// server is refused before anything reaches it.
void TestRegistryClient::redirectsStayWithinTheOrigin()
{
    RecordingServer elsewhere(Always(200, R"({"access_token":"stolen"})"));
    const QByteArray away = elsewhere.baseUrl().toUtf8() + "/collect";
    RecordingServer registry([away](const RecordingServer::Request& request) {
        if (request.target.startsWith("/moved"))
            return Reply{200, "moved here"};
        if (request.target.contains("zwierzeIndywidualne"))
            return RecordingServer::Redirect("/moved");
        return RecordingServer::Redirect(away);
    });
    RecordingHost host;
    TdmIRZ_PLUS client(ConfigFor(registry), host);
    client.Token = u"tok"_s;
    QCOMPARE(client.GetAnimal(u"1"_s, u"PL1"_s, false), u"moved here"_s);
    QCOMPARE(registry.requests().back().headers.value("authorization"), QByteArray("Bearer tok"));

    const QString refused = client.ListAnimals(u"1"_s, {}, u"BYD"_s, {}, {}, {}, {}, EmptyDate, false);
    QVERIFY2(refused.startsWith(ErrorMarker + u"Serwer przekierował zapytanie pod inny adres"_s), qPrintable(refused));
    QVERIFY(!client.Authorize(u"jan"_s, u"tajne"_s));
    QVERIFY(host.messages.at(0).text.contains(u"przekierował"_s));
    QVERIFY_THROWS_EXCEPTION(RegistryError, client.ListHoldings(u"1"_s, {}, {}, {}, false));
    QVERIFY(elsewhere.requests().empty());
}

void TestRegistryClient::tokensThatAreNotPlainAreRefused_data()
{
    QTest::addColumn<QString>("token");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("plain") << u"eyJhbGciOi.J9-_x"_s << true;
    QTest::newRow("16 KB") << QString(16 * 1024, u'a') << true;
    QTest::newRow("over 16 KB") << QString(16 * 1024 + 1, u'a') << false;
    QTest::newRow("a line break") << u"abc\r\nX-Evil: 1"_s << false;
    QTest::newRow("a blank") << u"abc def"_s << false;
    QTest::newRow("a control character") << u"abc\u0001"_s << false;
    QTest::newRow("not ASCII") << u"abcł"_s << false;
}

void TestRegistryClient::tokensThatAreNotPlainAreRefused()
{
    QFETCH(QString, token);
    QFETCH(bool, accepted);
    RecordingServer server(Always(200, QJsonDocument(QJsonObject{{u"access_token"_s, token}}).toJson()));
    RecordingHost host;
    TdmIRZ_PLUS client(ConfigFor(server), host);
    QCOMPARE(client.Authorize(u"u"_s, u"p"_s), accepted);
    const QStringList expected{u"Autoryzacja zakończona z błędem: serwer zwrócił niepoprawny token dostępu"_s};
    QCOMPARE(host.messageTexts(), accepted ? QStringList() : expected);
    QCOMPARE(client.Token, accepted ? token : QString());
}

void TestRegistryClient::secretsTravelInClearTextOnlyToThisMachine_data()
{
    QTest::addColumn<QString>("sso");
    QTest::addColumn<QString>("api");
    QTest::addColumn<bool>("refused");
    QTest::newRow("loopback address") << QString() << QString() << false;
    QTest::newRow("localhost") << u"http://localhost:PORT"_s << u"http://localhost:PORT"_s << false;
    QTest::newRow("log-in over plain http") << u"http://sso.example.pl"_s << QString() << true;
    QTest::newRow("token over plain http") << QString() << u"http://irz.example.pl"_s << true;
}

void TestRegistryClient::secretsTravelInClearTextOnlyToThisMachine()
{
    QFETCH(QString, sso);
    QFETCH(QString, api);
    QFETCH(bool, refused);
    RecordingServer server(Always(200, R"({"access_token":"abc"})"));
    RegistryConfig config = ConfigFor(server);
    const QString port = QString::number(QUrl(server.baseUrl()).port());
    if (!sso.isEmpty())
        config.ssoBase = sso.replace(u"PORT"_s, port);
    if (!api.isEmpty())
        config.apiBase = api.replace(u"PORT"_s, port);
    RecordingHost host;
    TdmIRZ_PLUS client(config, host);
    QCOMPARE(client.Authorize(u"u"_s, u"p"_s), !refused);
    QCOMPARE(server.requests().size(), refused ? 0u : 1u);
    if (refused)
        QVERIFY(host.messages.at(0).text.contains(u"https://"_s));
}

// A registry that never answers: the stop asked for meanwhile ends the wait at
// once, not after the time-out.
void TestRegistryClient::aStopAbortsTheRequestInFlight()
{
    RecordingServer silent([](const RecordingServer::Request&) { return RecordingServer::Silent(); });
    RecordingHost host;
    QElapsedTimer clock;
    host.cancelWhen = [&clock] { return clock.elapsed() > 200; };
    TdmIRZ_PLUS client(ConfigFor(silent), host);
    clock.start();
    QVERIFY_THROWS_EXCEPTION(RequestCancelled, client.GetAnimal(u"1"_s, u"PL1"_s, false));
    QVERIFY(clock.elapsed() < 5000);
    clock.start();
    QVERIFY(!client.Authorize(u"u"_s, u"p"_s));
    QVERIFY(clock.elapsed() < 5000);
    QVERIFY(host.messages.empty());
}

void TestRegistryClient::animalQueueHandsOutAnswersInListOrder_data()
{
    QTest::addColumn<int>("parallel");
    QTest::newRow("one at a time") << 1;
    QTest::newRow("three in flight") << 3;
    QTest::newRow("more than animals") << 20;
}

void TestRegistryClient::animalQueueHandsOutAnswersInListOrder()
{
    QFETCH(int, parallel);
    // Earlier animals answer later, so answers arrive out of order when overlapped.
    RecordingServer server([](const RecordingServer::Request& request) {
        const QString tag = QUrlQuery(QUrl(QString::fromUtf8(request.target)).query())
                                .queryItemValue(u"numerIdentyfikacyjnyZwierzecia"_s);
        const int number = tag.mid(2).toInt();
        return Reply{number == 4 ? 500 : 200, tag.toUtf8(), (8 - number) * 15};
    });
    RecordingHost host;
    RegistryConfig config = ConfigFor(server);
    config.maxParallelRequests = parallel;
    TdmIRZ_PLUS client(config, host);
    QStringList tags;
    for (int i = 1; i <= 7; ++i)
        tags.append(u"PL%1"_s.arg(i));
    auto queue = client.animalQueue(u"1"_s, tags, false);
    QStringList answers;
    while (!queue.atEnd())
        answers.append(queue.next());
    QCOMPARE(answers, (QStringList{u"PL1"_s, u"PL2"_s, u"PL3"_s, u"\tERR\tHTTP/1.1 500 Internal Server Error"_s,
                                   u"PL5"_s, u"PL6"_s, u"PL7"_s}));
    QCOMPARE(server.requests().size(), 7u);
    QCOMPARE(server.mostUnanswered(), std::min(parallel, 6)); // Qt opens at most six connections to a host
}

// More requests in flight than Qt opens connections to one host: the last ones
// wait for a connection first, here for two and three answers. Each answer
// takes 700 ms against a time-out of 1000 ms, so one after another nothing
// times out; kept sixteen at a time, the waiting must not count either, or the
// setting would change the outcome.
void TestRegistryClient::waitingForAFreeConnectionDoesNotCountAsTimeOut()
{
    RecordingServer server([](const RecordingServer::Request& request) {
        return Reply{200, request.target.mid(request.target.lastIndexOf('=') + 1), 700};
    });
    RecordingHost host;
    RegistryConfig config = ConfigFor(server);
    config.maxParallelRequests = 16;
    config.getTimeoutMs = 1000;
    TdmIRZ_PLUS client(config, host);
    QStringList tags;
    for (int i = 1; i <= 16; ++i)
        tags.append(u"PL%1"_s.arg(i));
    auto queue = client.animalQueue(u"1"_s, tags, false);
    QStringList answers;
    while (!queue.atEnd())
        answers.append(queue.next());
    QCOMPARE(answers, tags);
}

void TestRegistryClient::settingsOutsideTheirRangeFallBack_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("parallel");
    QTest::addColumn<int>("timeoutMs");
    QTest::addColumn<qint64>("maxAnswerBytes");
    QTest::addColumn<int>("problems");
    QTest::newRow("none set") << QByteArray() << 8 << 150'000 << (64ll << 20) << 0;
    QTest::newRow("within range") << QByteArray("MaxParallelRequests=64\r\nTimeoutSeconds=3600\r\nMaxAnswerMB=2") << 64
                                  << 3'600'000 << (2ll << 20) << 0;
    QTest::newRow("too many in flight") << QByteArray("MaxParallelRequests=65") << 8 << 150'000 << (64ll << 20) << 1;
    QTest::newRow("none in flight") << QByteArray("MaxParallelRequests=0") << 8 << 150'000 << (64ll << 20) << 1;
    QTest::newRow("time-out too long") << QByteArray("TimeoutSeconds=3601") << 8 << 150'000 << (64ll << 20) << 1;
    QTest::newRow("time-out not a number") << QByteArray("TimeoutSeconds=długo") << 8 << 150'000 << (64ll << 20) << 1;
    QTest::newRow("no answer size") << QByteArray("MaxAnswerMB=0") << 8 << 150'000 << (64ll << 20) << 1;
}

void TestRegistryClient::settingsOutsideTheirRangeFallBack()
{
    QFETCH(QByteArray, line);
    QFETCH(int, parallel);
    QFETCH(int, timeoutMs);
    QFETCH(qint64, maxAnswerBytes);
    QFETCH(int, problems);
    QTemporaryDir dir;
    const QString path = dir.filePath(u"HALVARN.INI"_s);
    WriteAll(path, "[IRZ]\r\n" + line + "\r\n");
    const RegistryConfig config = RegistryConfig::read(IniFile(path));
    QCOMPARE(config.maxParallelRequests, parallel);
    QCOMPARE(config.getTimeoutMs, timeoutMs);
    QCOMPARE(config.maxAnswerBytes, maxAnswerBytes);
    QCOMPARE(config.problems.size(), problems);
    if (problems > 0)
        QVERIFY2(config.problems[0].contains(QString::fromUtf8(line.left(line.indexOf('=')))),
                 qPrintable(config.problems[0]));
}

QTEST_GUILESS_MAIN(TestRegistryClient)
#include "test_registry_client.moc"
