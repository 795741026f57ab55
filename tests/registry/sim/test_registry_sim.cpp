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

// The demo's first herd starts with two heifers and a bull calf; the second herd is a suckler herd.
QString TagIn(std::size_t herd, std::size_t index)
{
    static const SimDataset data = Demo();
    return data.producers[0].holdings[herd - 1].animals[index].value(u"numerIdentyfikacyjnyZwierzecia").toString();
}
const QString Heifer = TagIn(1, 0);
const QString OtherHeifer = TagIn(1, 1);
const QString BullCalf = TagIn(1, 2);
const QString SucklerHerdAnimal = TagIn(2, 0);

const QString UseChangePath = u"/api/indywidualne/dokument/api/prod/ztuku"_s;

QString Day(int fromToday)
{
    return QDate::currentDate().addDays(fromToday).toString(u"yyyy-MM-dd");
}

QJsonObject Kod(const QString& code)
{
    return {{u"kod"_s, code}};
}

QJsonObject Notice(const QString& tag, const QString& type, const QString& direction, const QString& reason)
{
    QJsonObject position{{u"lp"_s, u"1"_s}, {u"numerIdentyfikacyjnyZwierzecia"_s, tag}, {u"celZmiany"_s, Kod(reason)}};
    if (!type.isEmpty())
        position.insert(u"typUzytkowy"_s, Kod(type));
    if (!direction.isEmpty())
        position.insert(u"kierunekUzytkowy"_s, Kod(direction));
    const QJsonObject form{{u"numerDzialalnosci"_s, Holding(1)},
                           {u"gatunek"_s, Kod(u"BYD"_s)},
                           {u"dataOkresleniaTypuIKierunkuUzytkowania"_s, Day(0)},
                           {u"pozycje"_s, QJsonArray{position}}};
    return {{u"numerProducenta"_s, Producer}, {u"zgloszenie"_s, form}};
}

QJsonObject Heifers(const QString& type, const QString& direction, const QString& reason)
{
    return Notice(Heifer, type, direction, reason);
}

// The notice with one key of its form set, or taken out when the value is undefined.
QJsonObject InForm(QJsonObject notice, const QString& key, const QJsonValue& value)
{
    QJsonObject form = notice.value(u"zgloszenie").toObject();
    form.insert(key, value);
    notice.insert(u"zgloszenie"_s, form);
    return notice;
}

QJsonObject InPosition(const QJsonObject& notice, const QString& key, const QJsonValue& value)
{
    QJsonObject position = notice[u"zgloszenie"][u"pozycje"][0].toObject();
    position.insert(key, value);
    return InForm(notice, u"pozycje"_s, QJsonArray{position});
}

QByteArray Body(const QJsonObject& notice)
{
    return QJsonDocument(notice).toJson(QJsonDocument::Compact);
}

// Exactly as the program sends it: keys in the registry's order, the organisational unit included.
QByteArray ClientBody(const QString& tag)
{
    return QByteArray(R"({"numerProducenta":"071234562","komorkaOrganizacyjna":"BP 7","zgloszenie":{)"
                      R"("numerDzialalnosci":"071234562-001","gatunek":{"kod":"BYD"},)"
                      R"("dataOkresleniaTypuIKierunkuUzytkowania":"DAY","pozycje":[{"lp":"1",)"
                      R"("numerIdentyfikacyjnyZwierzecia":"TAG","typUzytkowy":{"kod":"MI"},)"
                      R"("kierunekUzytkowy":{"kod":"OP"},"celZmiany":{"kod":"ZTK"}}]}})")
        .replace("DAY", Day(0).toUtf8())
        .replace("TAG", tag.toUtf8());
}

QByteArray ReversedBody(const QString& tag)
{
    return QByteArray(R"({"zgloszenie":{"pozycje":[{"celZmiany":{"kod":"ZKU"},"kierunekUzytkowy":{"kod":"MIOP"},)"
                      R"("numerIdentyfikacyjnyZwierzecia":"TAG","lp":"1"}],)"
                      R"("dataOkresleniaTypuIKierunkuUzytkowania":"DAY","gatunek":{"kod":"BYD"},)"
                      R"("numerDzialalnosci":"071234562-001"},"numerProducenta":"071234562"})")
        .replace("DAY", Day(0).toUtf8())
        .replace("TAG", tag.toUtf8());
}

QJsonArray DocumentList(Client& client, const QString& producer, const QString& number = {}, QDate from = {},
                        QDate to = {})
{
    QString path = u"/api/dokumenty/dokument/api/test/listaDokumentow?numerProducenta="_s + producer;
    if (!number.isEmpty())
        path += u"&numerDokumentu="_s + number;
    if (from.isValid())
        path += u"&dataPrzyjeciaOd="_s + from.toString(u"yyyy-MM-dd");
    if (to.isValid())
        path += u"&dataPrzyjeciaDo="_s + to.toString(u"yyyy-MM-dd");
    return client.get(path).json().value(u"dokumenty").toArray();
}

QString Status(Client& client, const QString& number)
{
    const QJsonArray documents = DocumentList(client, Producer, number);
    return documents.size() == 1 ? documents.at(0)[u"statusDokumentu"].toString() : QString();
}

QString Submit(Client& client, const QJsonObject& notice)
{
    return client.post(UseChangePath, Body(notice)).json().value(u"numerDokumentu").toString();
}

QJsonObject Listed(Client& client, const QString& tag)
{
    for (const QJsonValue animal : client.get(AnimalList(Holding(1))).json().value(u"listaZwierzeta").toArray())
        if (animal[u"numerIdentyfikacyjnyZwierzecia"].toString() == tag)
            return animal.toObject();
    return {};
}

QJsonObject Pair(const QString& code, const QString& description)
{
    return {{u"kod"_s, code}, {u"opis"_s, description}};
}

std::unique_ptr<RegistrySimulator> Started(SimDataset data, const SimOptions& options)
{
    auto sim = std::make_unique<RegistrySimulator>(std::move(data), options);
    return sim->start() ? std::move(sim) : nullptr;
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
    void useChangeNoticesAreValidated_data();
    void useChangeNoticesAreValidated();
    void noticeChangesTheAnimalOnlyOnceApproved();
    void statusAdvancesWithTime();
    void useChangeFaults_data();
    void useChangeFaults();
    void documentListFaults_data();
    void documentListFaults();
    void documentListsFilterByProducerAndNumber();
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
    QVERIFY(none.httpErrorUseChange.isEmpty() && none.slowUseChange.isEmpty() && none.komunikatDocuments.isEmpty());
    QVERIFY(parser.parse(u"halvarn-registry-sim --fail-use-change T1 --komunikat-use-change T2 "
                         u"--no-number-use-change T3 --slow-use-change T4 --slow-use-change=T5 "
                         u"--fail-document T6 --komunikat-document T7 --close-after-use-change T8 "
                         u"--reset-after-use-change T9 --silence-after-use-change T10"_s.split(u' ')));
    const SimFaults n = FaultsFrom(parser);
    const QList<QSet<QString>> useChangeSets{n.httpErrorUseChange,  n.komunikatUseChange,  n.noNumberUseChange,
                                             n.slowUseChange,       n.httpErrorDocuments,  n.komunikatDocuments,
                                             n.closeAfterUseChange, n.resetAfterUseChange, n.silenceAfterUseChange};
    QCOMPARE(useChangeSets, (QList<QSet<QString>>{{u"T1"_s},
                                                  {u"T2"_s},
                                                  {u"T3"_s},
                                                  {u"T4"_s, u"T5"_s},
                                                  {u"T6"_s},
                                                  {u"T7"_s},
                                                  {u"T8"_s},
                                                  {u"T9"_s},
                                                  {u"T10"_s}}));
}

void TestRegistrySim::useChangeNoticesAreValidated_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QStringList>("errors");
    const QStringList accepted;
    const QJsonObject valid = Heifers(u"MI"_s, u"OP"_s, u"ZTK"_s);
    const QJsonValue none(QJsonValue::Undefined);
    QTest::newRow("as the program sends it") << ClientBody(Heifer) << accepted;
    QTest::newRow("keys in another order") << ReversedBody(Heifer) << accepted;
    QTest::newRow("type only") << Body(Heifers(u"KO"_s, {}, u"ZTU"_s)) << accepted;
    QTest::newRow("direction only") << Body(Heifers({}, u"MLOP"_s, u"ZKU"_s)) << accepted;
    QTest::newRow("neither") << Body(Heifers({}, {}, u"ZKU"_s)) << accepted;
    QTest::newRow("a bull calf to fattening") << Body(Notice(BullCalf, {}, u"MIOP"_s, u"ZKU"_s)) << accepted;
    QTest::newRow("yesterday") << Body(InForm(valid, u"dataOkresleniaTypuIKierunkuUzytkowania"_s, Day(-1))) << accepted;

    QTest::newRow("not JSON") << QByteArray("<html>") << QStringList{u"ZTUKU-01"_s};
    QTest::newRow("a JSON array") << QByteArray("[]") << QStringList{u"ZTUKU-01"_s};
    QJsonObject noProducer = valid;
    noProducer.remove(u"numerProducenta"_s);
    QTest::newRow("no producer number") << Body(noProducer) << QStringList{u"ZTUKU-02"_s};
    QTest::newRow("no form") << Body({{u"numerProducenta"_s, Producer}}) << QStringList{u"ZTUKU-03"_s};
    QJsonObject stranger = valid;
    stranger.insert(u"numerProducenta"_s, u"079999999"_s);
    QTest::newRow("unknown producer") << Body(stranger) << QStringList{u"ZTUKU-04"_s};
    const QJsonValue position = valid[u"zgloszenie"][u"pozycje"][0];
    QTest::newRow("no position") << Body(InForm(valid, u"pozycje"_s, QJsonArray{})) << QStringList{u"ZTUKU-05"_s};
    QTest::newRow("two positions") << Body(InForm(valid, u"pozycje"_s, QJsonArray{position, position}))
                                   << QStringList{u"ZTUKU-05"_s};
    QTest::newRow("position not an object")
        << Body(InForm(valid, u"pozycje"_s, QJsonArray{Heifer})) << QStringList{u"ZTUKU-05"_s};
    QTest::newRow("sheep") << Body(InForm(valid, u"gatunek"_s, Kod(u"OWC"_s))) << QStringList{u"ZTUKU-06"_s};

    const QString date = u"dataOkresleniaTypuIKierunkuUzytkowania"_s;
    QTest::newRow("no date") << Body(InForm(valid, date, none)) << QStringList{u"ZTUKU-07"_s};
    QTest::newRow("no such day") << Body(InForm(valid, date, u"2026-02-30"_s)) << QStringList{u"ZTUKU-07"_s};
    QTest::newRow("day first") << Body(InForm(valid, date, u"23.11.2026"_s)) << QStringList{u"ZTUKU-07"_s};
    QTest::newRow("tomorrow") << Body(InForm(valid, date, Day(1))) << QStringList{u"ZTUKU-08"_s};

    const QString tag = u"numerIdentyfikacyjnyZwierzecia"_s;
    QTest::newRow("no animal number") << Body(InPosition(valid, tag, none)) << QStringList{u"ZTUKU-09"_s};
    QTest::newRow("unknown animal") << Body(InPosition(valid, tag, u"PL000000000000"_s)) << QStringList{u"ZTUKU-09"_s};
    QTest::newRow("animal of another herd")
        << Body(InPosition(valid, tag, SucklerHerdAnimal)) << QStringList{u"ZTUKU-10"_s};
    QTest::newRow("no holding number") << Body(InForm(valid, u"numerDzialalnosci"_s, none))
                                       << QStringList{u"ZTUKU-10"_s};
    QTest::newRow("unknown direction") << Body(Heifers({}, u"XX"_s, u"ZKU"_s)) << QStringList{u"ZTUKU-11"_s};
    QTest::newRow("unknown type") << Body(Heifers(u"MIOP"_s, {}, u"ZTU"_s)) << QStringList{u"ZTUKU-12"_s};
    QTest::newRow("ZKU for type and direction")
        << Body(Heifers(u"MI"_s, u"OP"_s, u"ZKU"_s)) << QStringList{u"ZTUKU-13"_s};
    QTest::newRow("ZTK for the type") << Body(Heifers(u"MI"_s, {}, u"ZTK"_s)) << QStringList{u"ZTUKU-13"_s};
    QTest::newRow("ZTU for the direction") << Body(Heifers({}, u"OP"_s, u"ZTU"_s)) << QStringList{u"ZTUKU-13"_s};
    QTest::newRow("no reason") << Body(InPosition(valid, u"celZmiany"_s, none)) << QStringList{u"ZTUKU-13"_s};
    QTest::newRow("dairy bull") << Body(Notice(BullCalf, {}, u"ML"_s, u"ZKU"_s)) << QStringList{u"ZTUKU-14"_s};
    QTest::newRow("dairy fattening bull")
        << Body(Notice(BullCalf, u"ML"_s, u"MLOP"_s, u"ZTK"_s)) << QStringList{u"ZTUKU-14"_s};

    QTest::newRow("two errors at once") << Body(InForm(InForm(valid, date, Day(1)), u"gatunek"_s, Kod(u"OWC"_s)))
                                        << QStringList{u"ZTUKU-06"_s, u"ZTUKU-08"_s};
    QTest::newRow("the body and the animal wrong")
        << Body(Notice(BullCalf, u"KO"_s, u"ML"_s, u"ZKU"_s)) << QStringList{u"ZTUKU-13"_s, u"ZTUKU-14"_s};
}

// A refusal names every error found and records nothing; an accepted notice gets a number and a document.
void TestRegistrySim::useChangeNoticesAreValidated()
{
    QFETCH(QByteArray, body);
    QFETCH(QStringList, errors);
    const auto sim = Started(Demo(), {});
    QVERIFY(sim);
    Client client(*sim);
    QVERIFY(client.logIn());
    const Answer answer = client.post(UseChangePath, body);
    QCOMPARE(answer.status, 200);
    const QJsonObject json = answer.json();
    QStringList codes;
    for (const QJsonValue error : json.value(u"bledy").toArray()) {
        codes.append(error[u"kodBledu"].toString());
        QVERIFY(!error[u"komunikat"].toString().isEmpty());
    }
    codes.sort();
    QCOMPARE(codes, errors);
    QCOMPARE(json.value(u"komunikat").toString(),
             errors.isEmpty() ? u"Dokument przyjęty"_s : u"Zgłoszenie odrzucone"_s);
    QCOMPARE(json.contains(u"numerDokumentu"), errors.isEmpty());
    QCOMPARE(DocumentList(client, Producer).size(), errors.isEmpty() ? 1 : 0);
}

void TestRegistrySim::noticeChangesTheAnimalOnlyOnceApproved()
{
    SimOptions options;
    options.approveAfterMs = 60000;
    const auto sim = Started(Demo(), options);
    QVERIFY(sim);
    Client client(*sim);
    QVERIFY(client.logIn());
    const QJsonObject before = client.get(Single(OtherHeifer)).json();
    QCOMPARE(before[u"kierunekUzytkownia"][u"kod"].toString(), u"ML"_s);
    const QString number = Submit(client, Notice(OtherHeifer, u"KO"_s, u"MIOP"_s, u"ZTK"_s));
    QVERIFY2(QRegularExpression(u"^ZTUKU/\\d{4}/\\d{6}$"_s).match(number).hasMatch(), qPrintable(number));
    const QJsonObject document = DocumentList(client, Producer, number).at(0).toObject();
    QCOMPARE(document[u"typDokumentu"].toString(), u"ZTUKU"_s);
    QCOMPARE(document[u"statusDokumentu"].toString(), u"3"_s);
    const QRegularExpression timestamp(u"^\\d{4}-\\d{2}-\\d{2}T\\d{2}:\\d{2}:\\d{2}$"_s);
    for (const char* key : {"dataZlozeniaDokumentu", "dataUtworzenia", "dataModyfikacji"})
        QVERIFY(timestamp.match(document[QLatin1String(key)].toString()).hasMatch());
    QVERIFY(!document[u"numerKancelaryjny"].toString().isEmpty() && document.contains(u"komorkaOrganizacyjna"));
    QCOMPARE(client.get(Single(OtherHeifer)).json(), before);

    // Sent again, say by a second click, the notice waits for the first one.
    const QJsonObject again = client.post(UseChangePath, Body(Notice(OtherHeifer, {}, u"OP"_s, u"ZKU"_s))).json();
    QCOMPARE(again[u"bledy"][0][u"kodBledu"].toString(), u"ZTUKU-15"_s);
    QVERIFY(again[u"bledy"][0][u"komunikat"].toString().contains(number));
    QVERIFY(!Submit(client, Heifers({}, u"OP"_s, u"ZKU"_s)).isEmpty()); // other animals are free

    options.approveAfterMs = 0;
    sim->setOptions(options);
    QCOMPARE(Status(client, number), u"7"_s);
    const QJsonObject single = client.get(Single(OtherHeifer)).json();
    QCOMPARE(single[u"kierunekUzytkownia"].toObject(), Pair(u"MIOP"_s, u"Mięsny do opasu"_s));
    QCOMPARE(single[u"typUzytkowy"].toObject(), Pair(u"KO"_s, u"Kombinowany"_s));
    QCOMPARE(Listed(client, OtherHeifer), single);
    QCOMPARE(Listed(client, Heifer)[u"kierunekUzytkownia"].toObject(), Pair(u"OP"_s, u"Do opasu"_s));
    QVERIFY(!Submit(client, Notice(OtherHeifer, {}, u"ML"_s, u"ZKU"_s)).isEmpty());
    QCOMPARE(sim->stats().useChangeRequests, 4);
    QCOMPARE(sim->stats().documentRequests, 2);
}

void TestRegistrySim::statusAdvancesWithTime()
{
    SimOptions options;
    options.approveAfterMs = 120;
    const auto sim = Started(Demo(), options);
    QVERIFY(sim);
    Client client(*sim);
    QVERIFY(client.logIn());
    QElapsedTimer timer;
    timer.start();
    const QString number = Submit(client, Heifers({}, u"MI"_s, u"ZKU"_s));
    const QString first = Status(client, number);
    if (timer.elapsed() < options.approveAfterMs) // else a slow machine may already have approved it
        QCOMPARE(first, u"3"_s);
    QTRY_COMPARE_WITH_TIMEOUT(Status(client, number), u"7"_s, 2000);
    QVERIFY(timer.elapsed() >= options.approveAfterMs);
    QCOMPARE(client.get(Single(Heifer)).json()[u"kierunekUzytkownia"].toObject(), Pair(u"MI"_s, u"Mięsny"_s));
}

void TestRegistrySim::useChangeFaults_data()
{
    QTest::addColumn<int>("fault");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("komunikat");
    QTest::addColumn<bool>("recorded");
    QTest::newRow("HTTP error") << 0 << 500 << QString() << false;
    QTest::newRow("komunikat") << 1 << 200 << u"Usługa zgłoszeń chwilowo niedostępna"_s << false;
    QTest::newRow("accepted without a number") << 2 << 200 << u"Dokument przyjęty"_s << false;
    QTest::newRow("slow") << 3 << 200 << u"Dokument przyjęty"_s << true;
}

void TestRegistrySim::useChangeFaults()
{
    QFETCH(int, fault);
    QFETCH(int, status);
    QFETCH(QString, komunikat);
    QFETCH(bool, recorded);
    SimOptions options;
    QSet<QString>* sets[] = {&options.faults.httpErrorUseChange, &options.faults.komunikatUseChange,
                             &options.faults.noNumberUseChange, &options.faults.slowUseChange};
    sets[fault]->insert(Heifer);
    options.faults.slowMs = 150;
    const auto sim = Started(Demo(), options);
    QVERIFY(sim);
    Client client(*sim);
    QVERIFY(client.logIn());
    QElapsedTimer timer;
    timer.start();
    const Answer spoiled = client.post(UseChangePath, Body(Heifers({}, u"OP"_s, u"ZKU"_s)));
    QCOMPARE(timer.elapsed() >= 150, fault == 3);
    QCOMPARE(spoiled.status, status);
    const QJsonObject json = spoiled.json();
    QCOMPARE(json.contains(u"bledy"), status == 500);
    QCOMPARE(json.value(u"komunikat").toString(), komunikat);
    QCOMPARE(json.contains(u"numerDokumentu"), recorded);
    QCOMPARE(DocumentList(client, Producer).size(), recorded ? 1 : 0);
    QVERIFY(!Submit(client, Notice(OtherHeifer, {}, u"OP"_s, u"ZKU"_s)).isEmpty()); // other animals unspoiled
    QCOMPARE(sim->stats().useChangeRequests, 2);
}

void TestRegistrySim::documentListFaults_data()
{
    QTest::addColumn<bool>("httpError");
    QTest::newRow("HTTP error") << true;
    QTest::newRow("komunikat") << false;
}

// A list is spoiled when any document in it is of the chosen animal.
void TestRegistrySim::documentListFaults()
{
    QFETCH(bool, httpError);
    SimOptions options;
    const auto sim = Started(Demo(), options);
    QVERIFY(sim);
    Client client(*sim);
    QVERIFY(client.logIn());
    const QString spoiledNumber = Submit(client, Heifers({}, u"OP"_s, u"ZKU"_s));
    const QString number = Submit(client, Notice(OtherHeifer, {}, u"OP"_s, u"ZKU"_s));
    (httpError ? options.faults.httpErrorDocuments : options.faults.komunikatDocuments).insert(Heifer);
    sim->setOptions(options);
    const QString path = u"/api/dokumenty/dokument/api/prod/listaDokumentow?numerProducenta="_s + Producer;
    for (const QString& query : {QString(), u"&numerDokumentu="_s + spoiledNumber}) {
        const Answer spoiled = client.get(path + query);
        QCOMPARE(spoiled.status, httpError ? 500 : 200);
        QCOMPARE(spoiled.json().contains(u"bledy"), httpError);
        QCOMPARE(spoiled.json().contains(u"dokumenty"), false);
        QCOMPARE(spoiled.json().value(u"komunikat").toString(),
                 httpError ? QString() : u"Usługa dokumentów chwilowo niedostępna"_s);
    }
    QCOMPARE(DocumentList(client, Producer, number).size(), 1);
}

// Documents filter by producer, number and the dates they were received.
void TestRegistrySim::documentListsFilterByProducerAndNumber()
{
    SimDataset data = Demo();
    SimProducer neighbour = data.producers[0];
    neighbour.numerProducenta = u"079876543"_s;
    neighbour.login = u"sasiad"_s;
    data.producers.push_back(neighbour);
    const auto sim = Started(std::move(data), {});
    QVERIFY(sim);
    Client client(*sim);
    QVERIFY(client.logIn());
    const QString first = Submit(client, Heifers({}, u"OP"_s, u"ZKU"_s));
    const QString second = Submit(client, Notice(OtherHeifer, {}, u"OP"_s, u"ZKU"_s));
    QJsonObject neighboursNotice = Heifers({}, u"OP"_s, u"ZKU"_s);
    neighboursNotice.insert(u"numerProducenta"_s, neighbour.numerProducenta);
    const QString neighbours = Submit(client, neighboursNotice);
    QVERIFY(!first.isEmpty() && !second.isEmpty() && !neighbours.isEmpty());
    const auto numbers = [&client](const QString& producer, const QString& number) {
        QStringList list;
        for (const QJsonValue document : DocumentList(client, producer, number))
            list.append(document[u"numerDokumentu"].toString());
        return list;
    };
    QCOMPARE(numbers(Producer, {}), (QStringList{first, second}));
    QCOMPARE(numbers(neighbour.numerProducenta, {}), QStringList{neighbours});
    QCOMPARE(numbers(Producer, second), QStringList{second});
    QCOMPARE(numbers(Producer, neighbours), QStringList());
    const QDate today = QDate::currentDate();
    QCOMPARE(DocumentList(client, Producer, {}, today, today).size(), 2);
    QCOMPARE(DocumentList(client, Producer, {}, today.addDays(1)).size(), 0);
    QCOMPARE(DocumentList(client, Producer, {}, {}, today.addDays(-1)).size(), 0);
    QVERIFY(client.get(u"/api/dokumenty/dokument/api/prod/listaDokumentow?numerProducenta=1"_s)
                .json()
                .contains(u"komunikat"));
}

QTEST_GUILESS_MAIN(TestRegistrySim)
#include "test_registry_sim.moc"
