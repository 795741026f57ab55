#include "analysis/AgeInMonths.h"
#include "analysis/DeclaredLimits.h"
#include "analysis/GroupCatalogue.h"
#include "core/recount/RecountCommand.h"
#include "core/session/HalvarnSession.h"
#include "framework/IniFile.h"
#include "registry/client/TdmIRZ_PLUS.h"
#include "registry/download/DownloadCommand.h"
#include "support/Files.h"
#include "support/RecordingHost.h"
#include "support/RecordingServer.h"
#include "support/TableCompare.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {
using Reply = RecordingServer::Reply;
const QString Producer = u"071234562"_s;
const QDate Reference(2026, 11, 1);

QString Holding(int number)
{
    return Producer + u"-%1"_s.arg(number, 3, 10, QLatin1Char('0'));
}

QJsonObject AnimalJson(const QString& tag, const char* sex, int ageDays, bool mother, const QString& holding)
{
    return QJsonObject{
        {u"numerIdentyfikacyjnyZwierzecia"_s, tag},
        {u"dataUrodzenia"_s, Reference.addDays(-ageDays).toString(u"yyyy-MM-dd")},
        {u"numerDzialalnosci"_s, holding},
        {u"czyMatka"_s, mother},
        {u"plec"_s, QJsonObject{{u"kod"_s, QLatin1String(sex)},
                                {u"opis"_s, QLatin1String(sex) == u"XX" ? u"Samica"_s : u"Samiec"_s}}},
        {u"typUzytkowy"_s, QJsonObject{{u"kod"_s, u"ML"_s}, {u"opis"_s, u"Mleczny"_s}}},
        {u"kierunekUzytkownia"_s, QJsonObject{{u"kod"_s, u"ML"_s}, {u"opis"_s, u"Mleczny"_s}}},
        {u"srodkiIdentyfikacji"_s, QJsonArray{QJsonObject{}, QJsonObject{}}},
    };
}

QByteArray Json(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

// A registry whose answers a test can spoil one by one.
struct FakeRegistry {
    QJsonArray holdings;
    QMap<QString, QJsonArray> animals;  // holding -> list
    QMap<QString, QJsonObject> singles; // tag -> full record
    QMap<QString, Reply> overrides;     // holding, tag, "token" or "holdings" -> answer instead

    FakeRegistry()
    {
        addHerd(1, u"SDZA"_s);
        addHerd(2, u"SDZA"_s);
        addHerd(3, u"SDZZ"_s);
        addHerd(4, u"SDZA"_s);
        // herd 1: a cow, a heifer of exactly 14 and one of 15 months, a calf
        addAnimal(1, u"PL001"_s, "XX", 1500, true, false);
        addAnimal(1, u"PL002"_s, "XX", 400, false, true); // 14 months: the list decides
        addAnimal(1, u"PL003"_s, "XX", 440, false, true); // 15 months: the full record decides
        addAnimal(1, u"PL004"_s, "XY", 60, false, false);
        addAnimal(2, u"PL101"_s, "XY", 700, false, false);
        addAnimal(2, u"PL102"_s, "XX", 800, false, false);
        addAnimal(3, u"PL201"_s, "XX", 800, false, false);
    }
    void addHerd(int number, const QString& state) { addHolding(Holding(number), state); }
    void addHolding(const QString& holding, const QString& state)
    {
        holdings.append(
            QJsonObject{{u"numerDzialalnosci"_s, holding}, {u"stanDzialalnosci"_s, QJsonObject{{u"kod"_s, state}}}});
        animals[holding] = QJsonArray{};
    }
    void addAnimal(int herd, const QString& tag, const char* sex, int ageDays, bool listMother, bool fullMother)
    {
        animals[Holding(herd)].append(AnimalJson(tag, sex, ageDays, listMother, Holding(herd)));
        singles[tag] = AnimalJson(tag, sex, ageDays, fullMother, Holding(herd));
    }
    Reply answer(const RecordingServer::Request& request) const
    {
        const QUrlQuery query(QUrl(QString::fromUtf8(request.target)).query());
        QString key;
        if (request.target.endsWith("/token"))
            key = u"token"_s;
        else if (request.target.endsWith("/dzialalnosci"))
            key = u"holdings"_s;
        else if (request.target.contains("zwierzetaIndywidualne"))
            key = query.queryItemValue(u"numerDzialalnosci"_s);
        else
            key = query.queryItemValue(u"numerIdentyfikacyjnyZwierzecia"_s);
        if (overrides.contains(key))
            return overrides.value(key);
        if (key == u"token")
            return {200, R"({"access_token":"t"})", 0};
        if (key == u"holdings")
            return {200, Json({{u"dzialalnosc"_s, holdings}}), 0};
        if (animals.contains(key))
            return {200, Json({{u"listaZwierzeta"_s, animals.value(key)}}), 0};
        return {200, Json(singles.value(key)), 0};
    }
};

struct Download {
    QTemporaryDir folder;
    RecordingHost host;
    HalvarnSession session{DataFolder(folder.path()), host};
    DownloadOutcome outcome = DownloadOutcome::NotStarted;
    std::vector<RecordingServer::Request> requests;

    void run(const FakeRegistry& registry, int timeoutMs = 150'000, bool datesGiven = false)
    {
        RecordingServer server([&registry](const RecordingServer::Request& r) { return registry.answer(r); });
        RegistryConfig config = RegistryConfig::read(IniFile(session.dataFolder().settingsFile()));
        config.ssoBase = config.apiBase = server.baseUrl();
        config.getTimeoutMs = config.postTimeoutMs = timeoutMs;
        session.inputs.login = u"jan"_s;
        session.inputs.password = u"haslo"_s;
        if (!datesGiven)
            session.inputs.stateDate = session.inputs.referenceDate = Reference;
        session.inputs.producerNumber = Producer;
        TdmIRZ_PLUS client(config, host);
        outcome = DownloadCommand(session, client).run();
        requests = server.requests();
    }
    QStringList numbers(int slot)
    {
        QStringList list;
        Table& table = session.tables().mdRZ(slot);
        for (int row = 0; row < table.recordCount(); ++row)
            list.append(AsString(table.at(row, 0)));
        return list;
    }
    int requestsFor(const char* part) const
    {
        return static_cast<int>(
            std::count_if(requests.begin(), requests.end(), [part](const auto& r) { return r.target.contains(part); }));
    }
};

const Reply ServerError{500, R"({"bledy":[{"kodBledu":"E","komunikat":"awaria"}]})", 0};
const Reply NotJson{200, "<html>Błąd</html>", 0};
Reply Komunikat(const char* text)
{
    return {200, QByteArray(R"({"komunikat":")") + text + "\"}", 0};
}
} // namespace

class TestDownload : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fullDownloadFillsTablesSlotsAndMemos();
    void motherFlagOfOlderFemalesComesFromTheFullRecord_data();
    void motherFlagOfOlderFemalesComesFromTheFullRecord();
    void failuresEndTheirHerdOrTheCommand_data();
    void failuresEndTheirHerdOrTheCommand();
    void datesInTheFutureBecomeToday_data();
    void datesInTheFutureBecomeToday();
    void holdingsWithoutATabOfTheirOwn_data();
    void holdingsWithoutATabOfTheirOwn();
    void cancellingStopsBetweenAnimalsWithConsistentTables();
    void animalsBornAfterTheReferenceDateAreReported();
    void declaredLimitsAreCheckedForAProducerFromTheList();
    void recountFollowsTheSingleAnimalAnswers_data();
    void recountFollowsTheSingleAnimalAnswers();
    void badSettingsAreReportedAndReplacedByDefaults();
    void statusTextsAndProgressFollowTheSteps();
    void gatherCredentials_data();
    void gatherCredentials();
    void theTestBranchSettingMovesEveryRequest();
};

void TestDownload::fullDownloadFillsTablesSlotsAndMemos()
{
    FakeRegistry registry;
    Download d;
    d.session.inputs.producerName = u"Gospodarstwo Zielonka"_s;
    d.run(registry);
    QCOMPARE(d.outcome, DownloadOutcome::Completed);
    QVERIFY(d.host.messages.empty());
    QCOMPARE(d.numbers(0), (QStringList{u"PL001"_s, u"PL002"_s, u"PL003"_s, u"PL004"_s, u"PL101"_s, u"PL102"_s}));
    QCOMPARE(d.numbers(1).size(), 4);
    QCOMPARE(d.numbers(2).size(), 2);
    QCOMPARE(d.session.herdCount, 2);
    const auto& slots = d.session.tables().HerdSlots;
    QVERIFY(slots[0].Visible && slots[1].Visible && slots[2].Visible && !slots[3].Visible && !slots[4].Visible);
    QCOMPARE(slots[2].Code, u"002"_s);
    QCOMPARE(slots[2].Index, 1);
    QCOMPARE(d.session.errors(),
             (QStringList{u"Nie aktywne stado: 071234562-003"_s, u"Brak zwierząt w stadzie: 071234562-004"_s}));
    QVERIFY(d.session.loaded().startsWith(u"dzialalnosc\n{\"listaZwierzeta\""_s));
    QCOMPARE(d.requestsFor("numerDzialalnosci=071234562-003"), 0);
    QCOMPARE(d.requestsFor("zwierzeIndywidualne"), 6);
    QCOMPARE(d.host.progress[1], std::make_pair(5, 5)); // three active herds + 2
    QVERIFY(!d.session.busy() && !d.session.Loading && d.session.DataLoaded);
    Table& producer = d.session.tables().mdProducent();
    QCOMPARE(producer.recordCount(), 1);
    QCOMPARE(AsString(producer.value(u"PRODUCENT")), Producer);
    QCOMPARE(AsDate(producer.value(u"DATA3")), Reference);
    QCOMPARE(AsString(producer.value(u"NAZWA")), u"Gospodarstwo Zielonka"_s);
    Table& summary = d.session.tables().mdRZ00();
    QCOMPARE(AsString(summary.at(0, summary.requireField(u"Plec"))), u"Samica"_s);
    QCOMPARE(AsString(summary.at(0, summary.requireField(u"IloscOznakowan"))), u"2"_s);
    QCOMPARE(AsString(summary.at(4, summary.requireField(u"STADO"))), u"002"_s);
    QCOMPARE(AsString(summary.at(0, summary.requireField(u"Rozpatrzono"))), u"D"_s);
}

void TestDownload::motherFlagOfOlderFemalesComesFromTheFullRecord_data()
{
    QTest::addColumn<QByteArray>("fullRecordOfPL003");
    QTest::addColumn<int>("motherPL003");
    QTest::newRow("the full record decides") << QByteArray() << 1;
    QTest::newRow("an empty full record leaves the list's flag") << QByteArray("") << 0;
}

void TestDownload::motherFlagOfOlderFemalesComesFromTheFullRecord()
{
    QFETCH(QByteArray, fullRecordOfPL003);
    QFETCH(int, motherPL003);
    FakeRegistry registry;
    if (!fullRecordOfPL003.isNull())
        registry.overrides[u"PL003"_s] = Reply{200, fullRecordOfPL003, 0};
    Download d;
    d.run(registry);
    QVERIFY(d.host.messages.empty());
    Table& herd = d.session.tables().mdRZ(1);
    const int age = herd.requireField(u"Wiek");
    const int mother = herd.requireField(u"CzyMatka");
    QCOMPARE(AsInteger(herd.at(1, age)), 14);
    QCOMPARE(AsInteger(herd.at(1, mother)), 0); // the list said no, the full record yes: 14 months keeps the list
    QCOMPARE(AsInteger(herd.at(2, age)), 15);
    QCOMPARE(AsInteger(herd.at(2, mother)), motherPL003);
    QCOMPARE(AsInteger(herd.at(0, mother)), 0); // the cow: the list said yes, the full record no
    QCOMPARE(AsInteger(herd.at(3, mother)), 0); // a male calf keeps the list's flag
    Table& summary = d.session.tables().mdRZ00();
    QCOMPARE(AsInteger(summary.at(2, summary.requireField(u"CzyMatka"))), motherPL003);
}

void TestDownload::failuresEndTheirHerdOrTheCommand_data()
{
    QTest::addColumn<QString>("spoiled");
    QTest::addColumn<Reply>("reply");
    QTest::addColumn<int>("outcome");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QStringList>("animals");
    QTest::addColumn<QString>("incomplete"); // the start of the herd's line, when one ends early
    const QStringList all{u"PL001"_s, u"PL002"_s, u"PL003"_s, u"PL004"_s, u"PL101"_s, u"PL102"_s};
    const QStringList secondHerdOnly{u"PL101"_s, u"PL102"_s};
    const int completed = static_cast<int>(DownloadOutcome::Completed);
    const int incomplete = static_cast<int>(DownloadOutcome::Incomplete);
    const int stopped = static_cast<int>(DownloadOutcome::Stopped);
    const QString serverError = u"Serwer zgłosił błąd: E: awaria (HTTP/1.1 500 Internal Server Error)"_s;
    const QString notJson = u"Odpowiedź serwera nie jest poprawnym obiektem JSON: <html>Błąd</html>"_s;
    const QString cut = u"Serwer zgłosił błąd: Połączenie zostało przerwane"_s;
    const QString herd1 = u"Stado 001 (działalność 071234562-001) niepełne: "_s;
    const QString herd2 = u"Stado 002 (działalność 071234562-002) niepełne: "_s;
    const QString noList = u"nie odczytano listy zwierząt. Przyczyna: "_s;
    const Reply cutReply = RecordingServer::Broken(RecordingServer::Break::CutAfterHeaders);
    const auto row = [](const char* name, const QString& spoiled, const Reply& reply, int end, const QString& said,
                        const QStringList& kept, const QString& herdLine) {
        QTest::newRow(name) << spoiled << reply << end << said << kept << herdLine;
    };
    const QString token = u"token"_s, holdings = u"holdings"_s, timeOut = u"Przekroczono czas oczekiwania"_s;
    const QStringList firstTwo = all.mid(0, 2) + secondHerdOnly;
    row("refused log-in", token, Reply{401, R"({"error":"invalid_grant"})", 0}, stopped,
        u"Brak autoryzacji (Być może niepoprawny login/hasło)"_s, {}, {});
    row("log-in: cut after the headers", token, cutReply, stopped,
        u"Autoryzacja zakończona z błędem: Połączenie zostało przerwane"_s, {}, {});
    row("holdings: HTTP error", holdings, ServerError, stopped, serverError, {}, {});
    row("holdings: cut after the headers", holdings, cutReply, stopped, u"Połączenie zostało przerwane"_s, {}, {});
    row("holdings: komunikat", holdings, Komunikat("Brak producenta"), stopped,
        u"Serwer zwrócił komunikat: Brak producenta"_s, {}, {});
    row("holdings: not JSON", holdings, NotJson, stopped, notJson, {}, {});
    row("herd list: HTTP error", Holding(1), ServerError, incomplete, serverError, secondHerdOnly,
        herd1 + noList + serverError);
    row("herd list: cut after the headers", Holding(1), cutReply, incomplete, cut, secondHerdOnly,
        herd1 + noList + cut);
    row("herd list: komunikat", Holding(1), Komunikat("Brak uprawnień"), incomplete,
        u"Serwer zwrócił komunikat: Brak uprawnień"_s, secondHerdOnly, herd1 + noList + u"Serwer zwrócił komunikat"_s);
    row("herd list: empty answer", Holding(1), Reply{200, "", 0}, incomplete, {}, secondHerdOnly,
        herd1 + noList + u"pusta odpowiedź"_s);
    row("herd list: not JSON", Holding(2), NotJson, stopped, notJson, all.mid(0, 4), herd2 + noList + notJson);
    const QString twoOfFour = herd1 + u"odczytano 2 z 4 zwierząt. Przyczyna: "_s;
    row("animal: HTTP error", u"PL003"_s, ServerError, incomplete, serverError, firstTwo, twoOfFour + serverError);
    row("animal: cut after the headers", u"PL003"_s, cutReply, incomplete, cut, firstTwo, twoOfFour + cut);
    row("animal: silent after the headers", u"PL003"_s,
        RecordingServer::Broken(RecordingServer::Break::StallAfterHeaders), incomplete,
        u"Serwer zgłosił błąd: "_s + timeOut, firstTwo, twoOfFour + u"Serwer zgłosił błąd: "_s + timeOut);
    row("older female: komunikat", u"PL003"_s, Komunikat("Zablokowane"), incomplete,
        u"Serwer zwrócił komunikat: Zablokowane"_s, firstTwo, twoOfFour + u"Serwer zwrócił komunikat"_s);
    row("young animal: its full record is not read", u"PL004"_s, Komunikat("Zablokowane"), completed, {}, all, {});
    row("older female: not JSON", u"PL001"_s, NotJson, stopped, notJson, {},
        herd1 + u"odczytano 0 z 4 zwierząt. Przyczyna: "_s + notJson);
    row("animal: time-out", u"PL101"_s, Reply{200, "{}", 3000}, stopped, timeOut, all.mid(0, 4),
        herd2 + u"odczytano 0 z 2 zwierząt. Przyczyna: Przekroczono"_s);
}

void TestDownload::failuresEndTheirHerdOrTheCommand()
{
    QFETCH(QString, spoiled);
    QFETCH(Reply, reply);
    QFETCH(int, outcome);
    QFETCH(QString, message);
    QFETCH(QStringList, animals);
    QFETCH(QString, incomplete);
    FakeRegistry registry;
    registry.overrides[spoiled] = reply;
    Download d;
    d.run(registry, 1000);
    QCOMPARE(static_cast<int>(d.outcome), outcome);
    if (message.isEmpty()) {
        QVERIFY(d.host.messages.empty());
    } else {
        QCOMPARE(d.host.messages.size(), 1u);
        QVERIFY2(d.host.messages[0].text.startsWith(message), qPrintable(d.host.messages[0].text));
    }
    QCOMPARE(d.numbers(0), animals);
    QVERIFY(!d.session.busy());
    // Whatever stopped it, every written animal is counted exactly once.
    int counted = 0;
    Table& groups = d.session.tables().mdGT00();
    for (int row = 0; row < groups.recordCount(); ++row)
        counted += AsInteger(groups.at(row, 3));
    QCOMPARE(counted, animals.size());
    // A herd that ended early says so in the memo and on its tab, and no other does.
    QStringList marked;
    for (const THerdSlot& slot : d.session.tables().HerdSlots)
        if (!slot.Incomplete.isEmpty())
            marked.append(slot.Incomplete);
    QCOMPARE(marked.size(), incomplete.isEmpty() ? 0 : 1);
    if (!incomplete.isEmpty()) {
        QVERIFY2(marked[0].startsWith(incomplete), qPrintable(marked[0]));
        QVERIFY(d.session.errors().contains(marked[0]));
    }
}

void TestDownload::datesInTheFutureBecomeToday_data()
{
    const QDate today = QDate::currentDate();
    QTest::addColumn<QDate>("given");
    QTest::addColumn<QDate>("used");
    QTest::newRow("empty") << QDate() << today;
    QTest::newRow("day 0") << QDate(1899, 12, 30) << today;
    QTest::newRow("tomorrow") << today.addDays(1) << today;
    QTest::newRow("next month") << today.addDays(30) << today;
    QTest::newRow("today") << today << today;
    QTest::newRow("yesterday") << today.addDays(-1) << today.addDays(-1);
}

// Each date by itself: the state date goes into the animal list request, the
// reference date ages the animals, both are written back and into the header.
void TestDownload::datesInTheFutureBecomeToday()
{
    QFETCH(QDate, given);
    QFETCH(QDate, used);
    FakeRegistry registry;
    for (const bool stateDate : {true, false}) {
        Download d;
        d.session.inputs.stateDate = stateDate ? given : Reference;
        d.session.inputs.referenceDate = stateDate ? Reference : given;
        d.run(registry, 150'000, true);
        QCOMPARE(d.outcome, DownloadOutcome::Completed);
        const QDate state = stateDate ? used : Reference;
        const QDate reference = stateDate ? Reference : used;
        QCOMPARE(d.session.inputs.stateDate, state);
        QCOMPARE(d.session.inputs.referenceDate, reference);
        QVERIFY(d.requests.at(2).target.endsWith("&stanDanych=" + state.toString(u"yyyy-MM-dd").toLatin1()));
        Table& producer = d.session.tables().mdProducent();
        QCOMPARE(AsDate(producer.value(u"DATA1")), state);
        QCOMPARE(AsDate(producer.value(u"DATA2")), QDate::currentDate());
        QCOMPARE(AsDate(producer.value(u"DATA3")), reference);
        const int age = AgeInMonths(ToDateTime(Reference.addDays(-1500)), ToDateTime(reference));
        QCOMPARE(AsInteger(d.session.tables().mdRZ00().at(0, 3)), age); // PL001, born 1500 days before Reference
    }
}

// A holding whose herd code has no tab ends the command; a second holding with a code already
// taken is left out, and the download goes on without it.
void TestDownload::holdingsWithoutATabOfTheirOwn_data()
{
    QTest::addColumn<QString>("holding");
    QTest::addColumn<int>("outcome");
    QTest::addColumn<QString>("message"); // in a message box when it ends the command, else in the memo
    const int stopped = static_cast<int>(DownloadOutcome::Stopped);
    QTest::newRow("not a number") << Producer + u"-A01"_s << stopped
                                  << u"Numer stada \"A01\" działalności 071234562-A01 nie jest liczbą"_s;
    QTest::newRow("slot 21") << Producer + u"-021"_s << stopped
                             << u"Stado 021 (071234562-021) nie mieści się w 20 zakładkach stad"_s;
    QTest::newRow("slot 0") << Producer + u"-000"_s << stopped
                            << u"Stado 000 (071234562-000) nie mieści się w 20 zakładkach stad"_s;
    QTest::newRow("herd code taken") << u"999999999-001"_s << static_cast<int>(DownloadOutcome::Incomplete)
                                     << u"Stado 001 (działalność 999999999-001) pominięte: ten sam numer stada ma "
                                        u"działalność 071234562-001"_s;
}

void TestDownload::holdingsWithoutATabOfTheirOwn()
{
    QFETCH(QString, holding);
    QFETCH(int, outcome);
    QFETCH(QString, message);
    FakeRegistry registry;
    registry.addHolding(holding, u"SDZA"_s);
    registry.animals[holding].append(AnimalJson(u"PL900"_s, "XX", 100, false, holding));
    Download d;
    d.run(registry);
    QCOMPARE(static_cast<int>(d.outcome), outcome);
    const bool stopped = d.outcome == DownloadOutcome::Stopped;
    QCOMPARE(d.host.messageTexts(), stopped ? QStringList{message} : QStringList());
    QCOMPARE(d.session.errors().contains(message), !stopped);
    QCOMPARE(d.numbers(0).size(), 6); // what was filled before is kept; the holding's animal is not read
    QCOMPARE(d.numbers(1).size(), 4);
    QCOMPARE(d.requestsFor((u"numerDzialalnosci="_s + holding).toLatin1().constData()), 0);
}

void TestDownload::cancellingStopsBetweenAnimalsWithConsistentTables()
{
    FakeRegistry registry;
    Download d;
    d.host.cancelWhen = [&d] { return d.host.stepTexts.filter(u"Rozczytywanie danych: "_s).size() >= 2; };
    d.run(registry);
    QCOMPARE(d.outcome, DownloadOutcome::Stopped);
    QCOMPARE(d.numbers(0), (QStringList{u"PL001"_s, u"PL002"_s}));
    QCOMPARE(d.numbers(1), d.numbers(0));
    QCOMPARE(d.session.errors().last(), u"Stado 001 (działalność 071234562-001) niepełne: odczytano 2 z 4 "
                                        u"zwierząt. Przyczyna: Przerwano na żądanie użytkownika"_s);
    QVERIFY(d.host.messages.empty());
    QVERIFY(!d.session.busy());
}

// The age formula still applies; the user is told how many animals it concerns.
void TestDownload::animalsBornAfterTheReferenceDateAreReported()
{
    FakeRegistry registry;
    registry.addAnimal(2, u"PL103"_s, "XY", -40, false, false);
    registry.addAnimal(2, u"PL104"_s, "XY", -1, false, false);
    registry.addAnimal(2, u"PL105"_s, "XY", 0, false, false);
    Download d;
    d.run(registry);
    QCOMPARE(d.outcome, DownloadOutcome::Completed);
    QCOMPARE(d.numbers(2).size(), 5);
    QCOMPARE(d.session.errors().filter(u"urodzenia"_s),
             QStringList{u"Data \"Halvarn na dzień\" (2026-11-01) jest wcześniejsza niż data urodzenia 2 zwierząt"_s});
}

// A producer typed by hand has no limits; one from the list has the groups above them flagged.
void TestDownload::declaredLimitsAreCheckedForAProducerFromTheList()
{
    FakeRegistry registry;
    Download typed;
    typed.run(registry);
    Table& typedGroups = typed.session.tables().mdGT00();
    QVERIFY(typedGroups.locate(typedGroups.requireField("ID"), qint32(GroupId::DairyCows)));
    const int cows = AsInteger(typedGroups.value("Ilosc"));
    QVERIFY(cows > 0);
    QVERIFY(IsNull(typedGroups.value("Limit")));
    QCOMPARE(CountOverLimit(typedGroups), 0);

    Download chosen;
    DeclaredLimits limits;
    limits.fill(1000);
    limits[static_cast<int>(DeclaredGroup::DairyCows)] = cows - 1;
    chosen.session.inputs.declaredLimits = limits;
    chosen.run(registry);
    QCOMPARE(chosen.outcome, DownloadOutcome::Completed);
    QCOMPARE(CountOverLimit(chosen.session.tables().mdGT00()), 1);
    QCOMPARE(
        chosen.session.errors().filter(u"Przekroczono"_s),
        QStringList{u"Przekroczono zadeklarowaną liczbę: krów mlecznych — jest %1, zadeklarowano %2"_s.arg(cows).arg(
            cows - 1)});
}

void TestDownload::badSettingsAreReportedAndReplacedByDefaults()
{
    FakeRegistry registry;
    Download d;
    WriteAll(d.session.dataFolder().settingsFile(),
             "[IRZ]\r\nMaxParallelRequests=100\r\n[WIEK]\r\nCieletaGrp_Do_150KG_Wiek_Do=-3\r\n");
    d.run(registry);
    QCOMPARE(d.outcome, DownloadOutcome::Completed);
    QCOMPARE(d.host.messages.size(), 1u);
    QCOMPARE(d.host.messages[0].caption, u"Informacja"_s);
    QVERIFY(d.host.messages[0].text.contains(u"CieletaGrp_Do_150KG_Wiek_Do=-3"_s));
    QVERIFY(d.session.errors().first().contains(u"MaxParallelRequests=100"_s));
}

// One active herd of two animals and an inactive one: every status text and
// every move of both progress bars, in order, after the clearing.
void TestDownload::statusTextsAndProgressFollowTheSteps()
{
    FakeRegistry registry;
    registry.holdings = {};
    registry.animals.clear();
    registry.addHerd(1, u"SDZA"_s);
    registry.addHerd(3, u"SDZZ"_s);
    registry.addAnimal(1, u"PL001"_s, "XX", 1500, true, false);
    registry.addAnimal(1, u"PL004"_s, "XY", 60, false, false);
    Download d;
    d.run(registry);
    QCOMPARE(d.outcome, DownloadOutcome::Completed);

    QStringList clearing{u"H:"_s, u"S:"_s, u"S:Czyszczenie danych"_s};
    for (int slot = 0; slot < HerdSlotCount; ++slot)
        clearing << (slot == 0 ? u"H:Stado: 000"_s : u"H:Stado: "_s) << u"S:Czyszczenie danych RZ"_s
                 << u"S:Czyszczenie danych GT"_s;
    clearing << u"S:Tworzenie grup technologicznych"_s;
    const QStringList download{u"H:"_s,
                               u"S:"_s, // the busy status bar of the long operation
                               u"S:Autoryzacja"_s,
                               u"S:Pobieranie listy stad"_s,
                               u"H:Stado: 001"_s,
                               u"S:Pobieranie danych"_s,
                               u"S:Rozczytywanie danych"_s,
                               u"S:Pobier. dod. inform.: PL001"_s,
                               u"S:Rozczytywanie danych: PL001"_s,
                               u"S:Pobier. dod. inform.: PL004"_s,
                               u"S:Rozczytywanie danych: PL004"_s,
                               u"S:Zapis do archiwum"_s};
    QCOMPARE(d.host.statusLog, clearing + download);

    const qsizetype cleared = d.host.progressLog.indexOf(u"1:64/65"_s);
    QCOMPARE(cleared, 3 + 63); // busy (2 bars), maximum 65, then 64 steps
    QCOMPARE(d.host.progressLog.mid(cleared + 1),
             (QStringList{u"1:0/2"_s, u"2:0/100"_s,                          // busy again
                          u"1:1/2"_s, u"1:2/2"_s,                            // log-in, holdings
                          u"1:2/3"_s, u"1:3/3"_s,                            // one active herd + 2, the herd
                          u"2:0/2"_s, u"2:1/2"_s, u"2:2/2"_s, u"2:0/2"_s})); // the herd's animals
    QCOMPARE(d.session.errors(), QStringList{u"Nie aktywne stado: 071234562-003"_s});
    QVERIFY(d.host.messages.empty());
}

void TestDownload::gatherCredentials_data()
{
    QTest::addColumn<bool>("torvLogin");
    QTest::addColumn<QString>("login");
    QTest::addColumn<QString>("gathered"); // login, password, producer
    QTest::newRow("fields") << false << u"jan"_s << u"jan|haslo|123456789"_s;
    QTest::newRow("fields, even without a login") << false << QString() << u"|haslo|123456789"_s;
    QTest::newRow("test credentials for an empty login")
        << true << QString() << u"uzytkownik.testowy.1|Zielonka7Kb2!|071234562"_s;
    QTest::newRow("a typed login wins over the test credentials") << true << u"jan"_s << u"jan|haslo|123456789"_s;
}

void TestDownload::gatherCredentials()
{
    QFETCH(bool, torvLogin);
    QFETCH(QString, login);
    QFETCH(QString, gathered);
    Download d;
    d.session.common.torvLogin = torvLogin;
    d.session.inputs.login = login;
    d.session.inputs.password = u"haslo"_s;
    d.session.inputs.producerNumber = u"123456789"_s;
    d.session.GatherCredentials();
    QCOMPARE(QStringList({d.session.Login, d.session.Password, d.session.ProducerNumber}).join(u'|'), gathered);
}

void TestDownload::theTestBranchSettingMovesEveryRequest()
{
    FakeRegistry registry;
    Download d;
    IniFile(d.session.dataFolder().settingsFile()).writeInteger(u"IRZ"_s, u"Test"_s, 1);
    d.run(registry);
    QCOMPARE(d.outcome, DownloadOutcome::Completed);
    QCOMPARE(d.requestsFor("/api/prod/"), 0);
    QCOMPARE(d.requestsFor("/api/test/"), static_cast<int>(d.requests.size()) - 1); // all but the log-in
    // the registry's codes of use type and direction stay beside the descriptions in the tables
    QCOMPARE(d.session.answers.size(), 6u);
    Table& animals = d.session.tables().mdRZ00();
    QVERIFY(animals.locate(animals.requireField(u"NumerIdentyfikacyjny"), u"PL101"_s));
    QCOMPARE(d.session.answers[static_cast<std::size_t>(animals.recNo())].useDirection, u"ML"_s);
}

void TestDownload::recountFollowsTheSingleAnimalAnswers_data()
{
    QTest::addColumn<QDate>("downloaded");
    QTest::addColumn<QDate>("recounted");
    QTest::addColumn<int>("motherPL003");
    // PL003 is 13 months old 60 days before the reference date and 15 on it;
    // its list says it is no mother, its own answer that it is.
    QTest::newRow("older: the own answer decides") << Reference.addDays(-60) << Reference << 1;
    QTest::newRow("younger: the list decides") << Reference << Reference.addDays(-60) << 0;
}

// The recount keeps what each animal's own answer said, even one the download did
// not need on its date, and so gives the tables a download on the new date gives.
void TestDownload::recountFollowsTheSingleAnimalAnswers()
{
    QFETCH(QDate, downloaded);
    QFETCH(QDate, recounted);
    QFETCH(int, motherPL003);
    const FakeRegistry registry;
    Download stored;
    stored.session.inputs.stateDate = Reference;
    stored.session.inputs.referenceDate = downloaded;
    stored.run(registry, 150'000, true);
    Download fresh;
    fresh.session.inputs.stateDate = Reference;
    fresh.session.inputs.referenceDate = recounted;
    fresh.run(registry, 150'000, true);
    QCOMPARE(stored.outcome, DownloadOutcome::Completed);
    QCOMPARE(fresh.outcome, DownloadOutcome::Completed);

    QVERIFY(RecountCommand(stored.session).run(recounted));
    QCOMPARE(FirstDifference(fresh.session, stored.session), QString());
    QCOMPARE(stored.session.errors(), fresh.session.errors());
    Table& herd = stored.session.tables().mdRZ(1);
    QCOMPARE(AsInteger(herd.at(2, herd.requireField(u"CzyMatka"))), motherPL003);
}

QTEST_GUILESS_MAIN(TestDownload)
#include "test_download.moc"
