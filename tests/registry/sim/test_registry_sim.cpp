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

using namespace Qt::StringLiterals;

namespace {
struct Answer {
    int status = 0;
    QByteArray body;
    QJsonObject json() const { return QJsonDocument::fromJson(body).object(); }
};

// A plain blocking client for the tests, logging in as the demo producer.
class Client {
public:
    explicit Client(const RegistrySimulator& sim) : base_(sim.baseUrl()) {}

    Answer get(const QString& path) { return send(path, {}); }
    Answer post(const QString& path, const QByteArray& body) { return send(path, body); }
    bool logIn(const QString& password = u"Zielonka7Kb2!"_s)
    {
        const Answer a = post(u"/auth/realms/ewniosekplus/protocol/openid-connect/token"_s,
                              "username=uzytkownik.testowy.1&password=" + password.toUtf8() +
                                  "&client_id=aplikacja-irzplus&grant_type=password");
        token_ = a.json().value(u"access_token").toString();
        return a.status == 200;
    }

private:
    Answer send(const QString& path, const QByteArray& body)
    {
        QNetworkRequest request(QUrl(base_ + path));
        request.setRawHeader("Authorization", "Bearer " + token_.toUtf8());
        request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/json"_s);
        std::unique_ptr<QNetworkReply> reply(body.isNull() ? network_.get(request) : network_.post(request, body));
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
           u"&numerDzialalnosci="_s +
           holding + extra;
}
QString Single(const QString& tag)
{
    return u"/api/indywidualne/zwierze/api/test/zwierzeIndywidualne?numerProducenta=071234562"
           u"&numerIdentyfikacyjnyZwierzecia="_s +
           tag;
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
    void logInAcceptsOnlyTheFormAsSentAndRequestsNeedTheToken();
    void answersFollowTheRegistryRules();
    void demoDataIsRealisticAndRepeatable();
    void faultsSpoilTheChosenAnswers_data();
    void faultsSpoilTheChosenAnswers();
    void faultOptionsOfTheProgram();
};

void TestRegistrySim::logInAcceptsOnlyTheFormAsSentAndRequestsNeedTheToken()
{
    RegistrySimulator sim(Demo());
    QVERIFY(sim.start());
    Client client(sim);
    QVERIFY(!client.logIn(u"zielonka"_s));
    QCOMPARE(client.get(AnimalList(Holding(1))).status, 401);
    QVERIFY(client.logIn());
    QCOMPARE(client.get(AnimalList(Holding(1))).status, 200);
    // A password with "&" breaks the unencoded form, so it can never match.
    SimDataset data = Demo();
    data.producers[0].password = u"a&b"_s;
    RegistrySimulator ampersand(data);
    QVERIFY(ampersand.start());
    QVERIFY(!Client(ampersand).logIn(u"a&b"_s));
}

// The demo data as the window and the command line download it is checked there; here what only
// the simulator decides: the state date filters the list, unknown numbers get a message.
void TestRegistrySim::answersFollowTheRegistryRules()
{
    RegistrySimulator sim(Demo());
    QVERIFY(sim.start());
    Client client(sim);
    QVERIFY(client.logIn());
    const QJsonArray herd = client.get(AnimalList(Holding(2))).json().value(u"listaZwierzeta").toArray();
    QCOMPARE(herd.size(), 85);
    const QJsonArray older =
        client.get(AnimalList(Holding(2), u"&stanDanych=2024-01-01"_s)).json().value(u"listaZwierzeta").toArray();
    QVERIFY(older.size() < herd.size());
    const QString tag = herd.at(0)[u"numerIdentyfikacyjnyZwierzecia"].toString();
    QCOMPARE(client.get(Single(tag)).json().value(u"numerIdentyfikacyjnyZwierzecia").toString(), tag);
    QVERIFY(client.get(Single(u"PL000000000000"_s)).json().contains(u"komunikat"));
    QVERIFY(client.post(u"/api/dzialalnosci/api/prod/dzialalnosci"_s, R"({"numerProducenta":"1"})")
                .json()
                .contains(u"komunikat"));
}

void TestRegistrySim::demoDataIsRealisticAndRepeatable()
{
    const SimDataset data = Demo();
    QCOMPARE(QJsonDocument(data.toJson()).toJson(), QJsonDocument(Demo().toJson()).toJson());
    QCOMPARE(SimDataset::fromJson(data.toJson()).toJson(), data.toJson());
    const QRegularExpression tagForm(u"^PL\\d{12}$"_s);
    int withoutBirth = 0;
    QSet<QString> tags;
    for (const SimHolding& holding : data.producers[0].holdings) {
        QSet<QString> herdTags;
        for (const QJsonObject& a : holding.animals)
            herdTags.insert(a.value(u"numerIdentyfikacyjnyZwierzecia").toString());
        for (const QJsonObject& a : holding.animals) {
            const QString tag = a.value(u"numerIdentyfikacyjnyZwierzecia").toString();
            QVERIFY(tagForm.match(tag).hasMatch() && !tags.contains(tag));
            tags.insert(tag);
            withoutBirth += a.contains(u"dataUrodzenia") ? 0 : 1;
            const QString mother = a.value(u"numerIdentyfikacyjnyMatki").toString();
            QVERIFY(mother.isEmpty() || herdTags.contains(mother)); // a mother is of her calf's herd
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
}

// Every option with a value of its own, so that options wired to the wrong fault show.
void TestRegistrySim::faultOptionsOfTheProgram()
{
    QCommandLineParser parser;
    AddFaultOptions(parser);
    QVERIFY(parser.parse(QStringList{u"halvarn-registry-sim"_s}));
    const SimFaults none = FaultsFrom(parser);
    QVERIFY(none.httpErrorAnimals.isEmpty() && none.slowHerds.isEmpty() && !none.refuseLogin && none.slowMs == 0);
    QVERIFY(parser.parse(
        u"halvarn-registry-sim --fail-animal A1 --fail-animal=A2 --fail-herd H1 --fail-holdings "
        u"--komunikat-animal A3 --komunikat-herd H2 --not-json-animal A4 --not-json-herd H3 "
        u"--not-json-holdings --slow-animal A5 --slow-herd H4 --slow-ms 2500 --refuse-login"_s.split(u' ')));
    const SimFaults f = FaultsFrom(parser);
    QCOMPARE(f.httpErrorAnimals, (QSet<QString>{u"A1"_s, u"A2"_s}));
    const QList<QSet<QString>> sets{f.komunikatAnimals, f.notJsonAnimals, f.slowAnimals, f.httpErrorHerds,
                                    f.komunikatHerds,   f.notJsonHerds,   f.slowHerds};
    QCOMPARE(sets, (QList<QSet<QString>>{{u"A3"_s}, {u"A4"_s}, {u"A5"_s}, {u"H1"_s}, {u"H2"_s}, {u"H3"_s}, {u"H4"_s}}));
    QVERIFY(f.httpErrorHoldings && !f.komunikatHoldings && f.notJsonHoldings && f.refuseLogin);
    QCOMPARE(f.slowMs, 2500);
    QVERIFY(parser.parse({u"halvarn-registry-sim"_s, u"--komunikat-holdings"_s}));
    QVERIFY(FaultsFrom(parser).komunikatHoldings && !FaultsFrom(parser).httpErrorHoldings);
}

QTEST_GUILESS_MAIN(TestRegistrySim)
#include "test_registry_sim.moc"
