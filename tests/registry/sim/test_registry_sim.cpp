#include "registry/sim/RegistrySimulator.h"
#include "registry/sim/SimCommandLine.h"

#include <QCommandLineParser>

#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRegularExpression>
#include <QTest>

#include <future>

using namespace Qt::StringLiterals;

namespace {
struct Answer {
    int status = 0;
    QByteArray body;
    QJsonObject json() const { return QJsonDocument::fromJson(body).object(); }
};

// A plain blocking client for the tests.
class Client {
public:
    explicit Client(const RegistrySimulator& sim) : base_(sim.baseUrl()) {}

    Answer get(const QString& path) { return send(false, path, {}); }
    Answer post(const QString& path, const QByteArray& body) { return send(true, path, body); }
    bool logIn(const QString& login = u"uzytkownik.testowy.1"_s,
               const QString& password = u"Zielonka7Kb2!"_s)
    {
        const Answer a = post(u"/auth/realms/ewniosekplus/protocol/openid-connect/token"_s,
                              (u"username="_s + login + u"&password="_s + password +
                               u"&client_id=aplikacja-irzplus&grant_type=password"_s)
                                  .toUtf8());
        token_ = a.json().value(u"access_token").toString();
        return a.status == 200;
    }

private:
    Answer send(bool post, const QString& path, const QByteArray& body)
    {
        QNetworkRequest request(QUrl(base_ + path));
        request.setRawHeader("Authorization", "Bearer " + token_.toUtf8());
        request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/json"_s);
        std::unique_ptr<QNetworkReply> reply(post ? network_.post(request, body) : network_.get(request));
        QEventLoop loop;
        QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
        return {reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), reply->readAll()};
    }

    QString base_;
    QString token_;
    QNetworkAccessManager network_;
};

const QString Producer = u"071234562"_s;
QString Holding(int n)
{
    return Producer + u"-00%1"_s.arg(n);
}
QString AnimalList(const QString& holding, const QString& extra = {})
{
    return u"/api/indywidualne/zwierze/api/prod/zwierzetaIndywidualne?numerProducenta=071234562&gatunek=BYD"
                          u"&numerDzialalnosci="_s + holding + extra;
}
QString Single(const QString& tag)
{
    return u"/api/indywidualne/zwierze/api/test/zwierzeIndywidualne?numerProducenta=071234562"
                          u"&numerIdentyfikacyjnyZwierzecia="_s + tag;
}

// The faults that are set, as "name=values" words in a fixed order.
QString Describe(const SimFaults& f)
{
    QStringList words;
    const auto set = [&words](const char* name, const QSet<QString>& values) {
        QStringList list(values.begin(), values.end());
        list.sort();
        if (!list.isEmpty())
            words.append(QLatin1String(name) + u'=' + list.join(u','));
    };
    const auto flag = [&words](const char* name, bool value) {
        if (value)
            words.append(QLatin1String(name));
    };
    set("httpErrorAnimals", f.httpErrorAnimals);
    set("httpErrorHerds", f.httpErrorHerds);
    flag("httpErrorHoldings", f.httpErrorHoldings);
    set("komunikatAnimals", f.komunikatAnimals);
    set("komunikatHerds", f.komunikatHerds);
    flag("komunikatHoldings", f.komunikatHoldings);
    set("notJsonAnimals", f.notJsonAnimals);
    set("notJsonHerds", f.notJsonHerds);
    flag("notJsonHoldings", f.notJsonHoldings);
    set("slowAnimals", f.slowAnimals);
    set("slowHerds", f.slowHerds);
    if (f.slowMs)
        words.append(u"slowMs=%1"_s.arg(f.slowMs));
    flag("refuseLogin", f.refuseLogin);
    return words.join(u' ');
}

SimDataset Demo()
{
    DemoOptions options;
    options.referenceDate = QDate(2026, 11, 1);
    return GenerateDemoDataset(options);
}
} // namespace

class TestRegistrySim : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void logInAcceptsOnlyTheFormAsSent_data();
    void logInAcceptsOnlyTheFormAsSent();
    void requestsNeedTheToken();
    void holdingsAndAnimalsHaveTheRegistryShapes();
    void demoDataIsRealisticAndRepeatable();
    void faultsSpoilTheChosenAnswers_data();
    void faultsSpoilTheChosenAnswers();
    void concurrencyIsCapped();
    void datasetSurvivesARoundTrip();
    void useChangeCreatesADocument();
    void faultOptionsOfTheProgram_data();
    void faultOptionsOfTheProgram();
};

void TestRegistrySim::logInAcceptsOnlyTheFormAsSent_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("right") << u"Zielonka7Kb2!"_s << true;
    QTest::newRow("wrong") << u"zielonka"_s << false;
}

void TestRegistrySim::logInAcceptsOnlyTheFormAsSent()
{
    QFETCH(QString, password);
    QFETCH(bool, accepted);
    RegistrySimulator sim(Demo());
    QVERIFY(sim.start());
    Client client(sim);
    QCOMPARE(client.logIn(u"uzytkownik.testowy.1"_s, password), accepted);
    // A password with "&" breaks the unencoded form, so it can never match.
    SimDataset data = Demo();
    data.producers[0].password = u"a&b"_s;
    RegistrySimulator ampersand(data);
    QVERIFY(ampersand.start());
    QVERIFY(!Client(ampersand).logIn(u"uzytkownik.testowy.1"_s, u"a&b"_s));
}

void TestRegistrySim::requestsNeedTheToken()
{
    RegistrySimulator sim(Demo());
    QVERIFY(sim.start());
    Client client(sim);
    QCOMPARE(client.get(AnimalList(Holding(1))).status, 401);
    QVERIFY(client.logIn());
    QCOMPARE(client.get(AnimalList(Holding(1))).status, 200);
}

void TestRegistrySim::holdingsAndAnimalsHaveTheRegistryShapes()
{
    RegistrySimulator sim(Demo());
    QVERIFY(sim.start());
    Client client(sim);
    QVERIFY(client.logIn());
    const QJsonArray holdings =
        client.post(u"/api/dzialalnosci/api/prod/dzialalnosci"_s, R"({"numerProducenta":"071234562"})")
            .json()
            .value(u"dzialalnosc")
            .toArray();
    QStringList states;
    for (const QJsonValue h : holdings)
        states.append(h[u"numerDzialalnosci"].toString() + u' ' + h[u"stanDzialalnosci"][u"kod"].toString());
    QCOMPARE(states, (QStringList{Holding(1) + u" SDZA"_s, Holding(2) + u" SDZA"_s,
                                  Holding(3) + u" SDZA"_s, Holding(4) + u" SDZZ"_s,
                                  Holding(5) + u" SDZA"_s}));
    QVERIFY(client.get(AnimalList(Holding(5))).json().value(u"listaZwierzeta").toArray().isEmpty());
    const QJsonArray herd = client.get(AnimalList(Holding(2))).json().value(u"listaZwierzeta").toArray();
    QCOMPARE(herd.size(), 85);
    const QJsonArray older =
        client.get(AnimalList(Holding(2), u"&stanDanych=2024-01-01"_s)).json().value(u"listaZwierzeta").toArray();
    QVERIFY(older.size() < herd.size());
    const QString tag = herd.at(0)[u"numerIdentyfikacyjnyZwierzecia"].toString();
    const QJsonObject animal = client.get(Single(tag)).json();
    QCOMPARE(animal.value(u"numerIdentyfikacyjnyZwierzecia").toString(), tag);
    QVERIFY(!animal.value(u"srodkiIdentyfikacji").toArray().isEmpty());
    QVERIFY(client.get(Single(u"PL000000000000"_s)).json().contains(u"komunikat"));
    QVERIFY(client.post(u"/api/dzialalnosci/api/prod/dzialalnosci"_s, R"({"numerProducenta":"1"})")
                .json()
                .contains(u"komunikat"));
    QCOMPARE(sim.stats().animalListHerds.count(Holding(4)), 0);
}

void TestRegistrySim::demoDataIsRealisticAndRepeatable()
{
    const SimDataset data = Demo();
    QCOMPARE(QJsonDocument(data.toJson()).toJson(), QJsonDocument(Demo().toJson()).toJson());
    const QRegularExpression tagForm(u"^PL\\d{12}$"_s);
    int withoutBirth = 0;
    QSet<QString> tags;
    for (const SimHolding& holding : data.producers[0].holdings) {
        QSet<QString> herdTags;
        for (const QJsonObject& a : holding.animals)
            herdTags.insert(a.value(u"numerIdentyfikacyjnyZwierzecia").toString());
        for (const QJsonObject& a : holding.animals) {
            const QString tag = a.value(u"numerIdentyfikacyjnyZwierzecia").toString();
            QVERIFY(tagForm.match(tag).hasMatch());
            QVERIFY(!tags.contains(tag));
            tags.insert(tag);
            withoutBirth += a.contains(u"dataUrodzenia") ? 0 : 1;
            const QString mother = a.value(u"numerIdentyfikacyjnyMatki").toString();
            QVERIFY(mother.isEmpty() || herdTags.contains(mother));
        }
    }
    QVERIFY(withoutBirth >= 1);
}

void TestRegistrySim::faultsSpoilTheChosenAnswers_data()
{
    QTest::addColumn<int>("fault");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("bodyStart");
    QTest::newRow("HTTP error for a herd") << 0 << 500 << u"{\"bledy\""_s;
    QTest::newRow("komunikat for a herd") << 1 << 200 << u"{\"komunikat\""_s;
    QTest::newRow("not JSON for a herd") << 2 << 200 << u"<html>"_s;
    QTest::newRow("slow herd") << 3 << 200 << u"{\"listaZwierzeta\""_s;
}

void TestRegistrySim::faultsSpoilTheChosenAnswers()
{
    QFETCH(int, fault);
    QFETCH(int, status);
    QFETCH(QString, bodyStart);
    RegistrySimulator sim(Demo());
    SimOptions options;
    QSet<QString>* sets[] = {&options.faults.httpErrorHerds, &options.faults.komunikatHerds,
                             &options.faults.notJsonHerds, &options.faults.slowHerds};
    sets[fault]->insert(Holding(1));
    options.faults.slowMs = 300;
    sim.setOptions(options);
    QVERIFY(sim.start());
    Client client(sim);
    QVERIFY(client.logIn());
    QElapsedTimer timer;
    timer.start();
    const Answer spoiled = client.get(AnimalList(Holding(1)));
    QCOMPARE(spoiled.status, status);
    QVERIFY(QString::fromUtf8(spoiled.body).startsWith(bodyStart));
    QCOMPARE(timer.elapsed() >= 300, fault == 3);
    QCOMPARE(client.get(AnimalList(Holding(2))).status, 200); // other herds unspoiled
    options.faults = {};
    options.faults.refuseLogin = true;
    sim.setOptions(options);
    QVERIFY(!client.logIn());
}

void TestRegistrySim::concurrencyIsCapped()
{
    SimOptions options;
    options.latencyMs = 100;
    options.maxConcurrent = 2;
    RegistrySimulator sim(Demo(), options);
    QVERIFY(sim.start());
    std::vector<std::future<int>> answers;
    for (int i = 0; i < 6; ++i)
        answers.push_back(std::async(std::launch::async, [&sim] {
            Client client(sim);
            return client.logIn() ? 1 : 0;
        }));
    int ok = 0;
    for (auto& a : answers)
        ok += a.get();
    QCOMPARE(ok, 6);
    QCOMPARE(sim.stats().maxConcurrentSeen, 2);
}

void TestRegistrySim::datasetSurvivesARoundTrip()
{
    const SimDataset data = Demo();
    const QJsonObject json = data.toJson();
    QCOMPARE(SimDataset::fromJson(json).toJson(), json);
}

void TestRegistrySim::useChangeCreatesADocument()
{
    RegistrySimulator sim(Demo());
    QVERIFY(sim.start());
    Client client(sim);
    QVERIFY(client.logIn());
    const QString tag =
        client.get(AnimalList(Holding(3))).json().value(u"listaZwierzeta").toArray().at(0)[u"numerIdentyfikacyjnyZwierzecia"].toString();
    const QJsonObject answer =
        client.post(u"/api/indywidualne/dokument/api/prod/ztuku"_s,
                    (QStringLiteral(R"({"numerProducenta":"071234562","zgloszenie":{"numerDzialalnosci":"071234562-003",)"
                                    R"("gatunek":{"kod":"BYD"},"dataOkresleniaTypuIKierunkuUzytkowania":"2026-11-23",)"
                                    R"("pozycje":[{"lp":"1","numerIdentyfikacyjnyZwierzecia":")") +
                     tag + uR"(","kierunekUzytkowy":{"kod":"ML"},"celZmiany":{"kod":"ZKU"}}]}})"_s)
                        .toUtf8())
            .json();
    const QString document = answer.value(u"numerDokumentu").toString();
    QVERIFY(!document.isEmpty());
    const QJsonArray documents =
        client.get(u"/api/dokumenty/dokument/api/prod/listaDokumentow?numerProducenta=071234562&numerDokumentu="_s +
                   document)
            .json()
            .value(u"dokumenty")
            .toArray();
    QCOMPARE(documents.size(), 1);
    QCOMPARE(client.get(Single(tag)).json().value(u"kierunekUzytkownia")[u"kod"].toString(), u"ML"_s);
}

void TestRegistrySim::faultOptionsOfTheProgram_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("faults");
    const QString a = u"PL005000000007"_s, h = u"071234562-002"_s;
    QTest::newRow("none") << QStringList{} << QString();
    QTest::newRow("HTTP errors") << QStringList{u"--fail-animal"_s, a, u"--fail-animal=PL1"_s,
                                                u"--fail-herd"_s, h, u"--fail-holdings"_s}
                                 << u"httpErrorAnimals=PL005000000007,PL1 httpErrorHerds=071234562-002 "
                                                   u"httpErrorHoldings"_s;
    QTest::newRow("komunikat answers") << QStringList{u"--komunikat-animal"_s, a,
                                                      u"--komunikat-herd"_s, h,
                                                      u"--komunikat-holdings"_s}
                                       << u"komunikatAnimals=PL005000000007 komunikatHerds=071234562-002 "
                                                         u"komunikatHoldings"_s;
    QTest::newRow("answers that are not JSON")
        << QStringList{u"--not-json-animal"_s, a, u"--not-json-herd"_s, h,
                       u"--not-json-holdings"_s}
        << u"notJsonAnimals=PL005000000007 notJsonHerds=071234562-002 notJsonHoldings"_s;
    QTest::newRow("slow answers and refused log-in")
        << QStringList{u"--slow-animal"_s, a, u"--slow-herd"_s, h,
                       u"--slow-ms"_s, u"2500"_s, u"--refuse-login"_s}
        << u"slowAnimals=PL005000000007 slowHerds=071234562-002 slowMs=2500 refuseLogin"_s;
}

void TestRegistrySim::faultOptionsOfTheProgram()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, faults);
    QCommandLineParser parser;
    AddFaultOptions(parser);
    const QStringList commandLine = QStringList{u"halvarn-registry-sim"_s} + arguments;
    QVERIFY2(parser.parse(commandLine), qPrintable(parser.errorText()));
    QCOMPARE(Describe(FaultsFrom(parser)), faults);
}

QTEST_GUILESS_MAIN(TestRegistrySim)
#include "test_registry_sim.moc"
