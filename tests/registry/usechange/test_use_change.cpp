#include "UseChangeFixture.h"
#include "core/session/HalvarnSession.h"
#include "framework/Cp1250.h"
#include "framework/IniFile.h"
#include "registry/client/TdmIRZ_PLUS.h"
#include "registry/download/DownloadCommand.h"
#include "registry/sim/RegistrySimulator.h"
#include "registry/usechange/DocumentStatus.h"
#include "registry/usechange/UseChangeCommand.h"
#include "reports/ShippedTemplates.h"
#include "reports/print/PrintCommands.h"
#include "reports/print/TdmulmxDataBase_FR3.h"
#include "support/Files.h"
#include "support/RecordingHost.h"
#include "support/RecordingServer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {
// A journal line without its time stamp.
QString Event(const QString& line)
{
    return line.section(u';', 1);
}
} // namespace

class TestUseChange : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nothingIsSentWithoutTicksDirectionOrConsent_data();
    void nothingIsSentWithoutTicksDirectionOrConsent();
    void anotherProducerNumberSendsNothing();
    void acceptedAndRefusedAnimalsOfTwoHerds();
    void noticesCarryTheAnimalsCodes_data();
    void noticesCarryTheAnimalsCodes();
    void answersWithoutADocumentNumber_data();
    void answersWithoutADocumentNumber();
    void statusCodesAndTheirDescriptions_data();
    void statusCodesAndTheirDescriptions();
    void documentListEnvelopes_data();
    void documentListEnvelopes();
    void failedStatusQueriesAreReportedRowByRow();
    void theJournalIsCompleteWhenThePrintFails();
    void cancellingTheWaitSkipsTheStatuses();
    void theTestBranchIsUsedWhenSet();
    void endToEndAgainstTheSimulator();
};

void TestUseChange::nothingIsSentWithoutTicksDirectionOrConsent_data()
{
    QTest::addColumn<bool>("ticked");
    QTest::addColumn<QString>("direction"); // null: the dialog is cancelled
    QTest::addColumn<bool>("consent");
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("questions");
    QTest::newRow("no tick") << false << u"MI"_s << true << u"Nie wybrano pozycji do zmiany"_s << 0;
    QTest::newRow("dialog cancelled") << true << QString() << true << QString() << 0;
    QTest::newRow("nothing chosen") << true << u""_s << true << QString() << 0;
    QTest::newRow("question declined") << true << u"MI"_s << false << QString() << 1;
}

void TestUseChange::nothingIsSentWithoutTicksDirectionOrConsent()
{
    QFETCH(bool, ticked);
    QFETCH(QString, direction);
    QFETCH(bool, consent);
    QFETCH(QString, message);
    QFETCH(int, questions);
    UseChange c;
    c.addAnimal(u"001"_s, u"PL1"_s, ticked);
    Table& earlier = c.session.tables().mdTUKU();
    earlier.setReadOnly(false);
    earlier.append();
    earlier.setValue(u"NumerIdentyfikacyjny", u"PL0"_s);
    earlier.post();
    c.host.useDirection = direction.isNull() ? std::nullopt : std::optional<QString>(direction);
    c.host.answerYes = consent;
    c.run({});
    QCOMPARE(c.result.outcome, UseChangeOutcome::NotStarted);
    QVERIFY(c.requests.empty());
    QCOMPARE(c.host.messageTexts(), message.isNull() ? QStringList() : QStringList{message});
    QCOMPARE(c.host.questions.size(), questions);
    QCOMPARE(c.column("NumerIdentyfikacyjny"), QStringList{u"PL0"_s});
    QVERIFY(!QFile::exists(c.session.dataFolder().useChangeJournal()));
    QVERIFY(!c.result.report);
    QVERIFY(!c.host.busy);
}

void TestUseChange::anotherProducerNumberSendsNothing()
{
    UseChange c;
    Table& header = c.session.tables().mdProducent();
    header.setReadOnly(false);
    header.append();
    header.setValue(u"PRODUCENT", u"099999999"_s);
    header.post();
    c.addAnimal(u"001"_s, u"PL1"_s, true);
    c.run({});
    QVERIFY(c.requests.empty());
    QVERIFY(c.host.questions.isEmpty());
    QVERIFY(c.host.messageTexts().first().startsWith(u"Zaznaczone zwierzęta należą do producenta 099999999"_s));
}

void TestUseChange::acceptedAndRefusedAnimalsOfTwoHerds()
{
    UseChange c;
    c.addAnimal(u"002"_s, u"PL201"_s, true, u"MI"_s, u"OP"_s);
    c.addAnimal(u"001"_s, u"PL101"_s, false);
    c.addAnimal(u"001"_s, u"PL102"_s, true, u"KO"_s, u"OP"_s);
    ScriptedRegistry registry;
    registry.notices[u"PL201"_s] =
        Refused(R"([{"kodBledu":"ZW-1","komunikat":"Samiec"},{"kodBledu":"ZW-2","komunikat":"Zły cel zmiany"}])");
    c.run(registry);

    QCOMPARE(c.host.questions, QStringList{u"Wysłać zmianę kierunku użytkowania na „Mięsny” dla 2 zwierząt?"_s});
    QCOMPARE(c.result.outcome, UseChangeOutcome::Sent);
    QCOMPARE(c.result.accepted, 1);
    QCOMPARE(c.result.refused, QStringList{u"PL201"_s});
    // herd by herd: 001 before 002
    QCOMPARE(c.column("STADO"), (QStringList{u"001"_s, u"002"_s}));
    QCOMPARE(c.column("NumerIdentyfikacyjny"), (QStringList{u"PL102"_s, u"PL201"_s}));
    QCOMPARE(c.column("TU_OLD"), (QStringList{u"KO"_s, u"MI"_s}));
    QCOMPARE(c.column("TU_NEW"), (QStringList{u"KO"_s, u"MI"_s}));
    QCOMPARE(c.column("KU_OLD"), (QStringList{u"OP"_s, u"OP"_s}));
    QCOMPARE(c.column("KU_NEW"), (QStringList{u"MI"_s, u"MI"_s}));
    QCOMPARE(c.column("Komunikat"), (QStringList{QString(), u"Zgłoszenie odrzucone"_s}));
    QCOMPARE(c.column("NumerDokumentu"), (QStringList{u"D/PL102"_s, QString()}));
    QCOMPARE(c.column("ST_KOD"), (QStringList{u"7"_s, QString()}));
    QCOMPARE(c.column("ST_OPIS"), (QStringList{u"Zatwierdzony"_s, QString()}));
    QCOMPARE(c.column("BLEDY"), (QStringList{QString(), u"KB: ZW-1->Samiec; KB: ZW-2->Zły cel zmiany; "_s}));
    // only the accepted animal loses its tick; only its document is asked about
    QCOMPARE(c.marked(), QStringList{u"PL201"_s});
    QCOMPARE(c.requestsFor("listaDokumentow"), 1);
    QVERIFY(c.requests.back().target.endsWith("?numerProducenta=071234562&numerDokumentu=D/PL102"));
    QCOMPARE(c.journal().size(), 5);
    QCOMPARE(Event(c.journal()[0]), u"071234562;001;PL102;KO;OP;KO;MI;WYSLANO;;"_s);
    QCOMPARE(Event(c.journal()[1]), u"071234562;001;PL102;KO;OP;KO;MI;PRZYJETO;D/PL102;"_s);
    QCOMPARE(Event(c.journal()[3]),
             u"071234562;002;PL201;MI;OP;MI;MI;ODRZUCONO;;KB: ZW-1->Samiec, KB: ZW-2->Zły cel zmiany,"_s);
    QCOMPARE(Event(c.journal()[4]), u"071234562;001;PL102;KO;OP;KO;MI;STATUS;D/PL102;7 Zatwierdzony"_s);
    QVERIFY(c.result.report);
    QVERIFY(c.result.report->pageTexts(0).join(u' ').contains(u"D/PL102"_s));
    QCOMPARE(c.host.messages.back().icon, MessageIcon::Warning);
    QVERIFY(c.host.messages.back().text.contains(u"Odrzucone (pozostały zaznaczone): PL201"_s));
    QVERIFY(c.host.stepTexts.contains(u"Stado: 002 - Wysyłanie zmiany"_s));
    QVERIFY(c.host.stepTexts.contains(u"Stado: 002 - Analiza i zapis"_s));
    QVERIFY(c.host.stepTexts.contains(u"Stado: 001 - sprawdz. statusu"_s));
    QVERIFY(!c.host.busy);
}

void TestUseChange::noticesCarryTheAnimalsCodes_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("direction");
    QTest::addColumn<QString>("position");
    QTest::newRow("with a use type: ZTK")
        << u"ML"_s << u"ML"_s
        << uR"({"lp":"1","numerIdentyfikacyjnyZwierzecia":"PL1","typUzytkowy":{"kod":"ML"},)"
           uR"("kierunekUzytkowy":{"kod":"MIOP"},"celZmiany":{"kod":"ZTK"}})"_s;
    QTest::newRow("without a use type: ZKU")
        << QString() << QString()
        << uR"({"lp":"1","numerIdentyfikacyjnyZwierzecia":"PL1","kierunekUzytkowy":{"kod":"MIOP"},)"
           uR"("celZmiany":{"kod":"ZKU"}})"_s;
}

void TestUseChange::noticesCarryTheAnimalsCodes()
{
    QFETCH(QString, type);
    QFETCH(QString, direction);
    QFETCH(QString, position);
    UseChange c;
    c.host.useDirection = u"MIOP"_s;
    c.addAnimal(u"003"_s, u"PL1"_s, true, type, direction);
    c.run({});
    QCOMPARE(c.requestsFor("/ztuku"), 1);
    const auto notice =
        std::find_if(c.requests.begin(), c.requests.end(), [](const auto& r) { return r.target.contains("/ztuku"); });
    QCOMPARE(notice->target, QByteArray("/api/indywidualne/dokument/api/prod/ztuku"));
    const QString expected = uR"({"numerProducenta":"071234562","zgloszenie":{"numerDzialalnosci":"071234562-003",)"
                             uR"("gatunek":{"kod":"BYD"},"dataOkresleniaTypuIKierunkuUzytkowania":"%1",)"
                             uR"("pozycje":[%2]}})"_s.arg(QDate::currentDate().toString(u"yyyy-MM-dd"), position);
    QCOMPARE(QString::fromUtf8(notice->body), expected);
}

void TestUseChange::answersWithoutADocumentNumber_data()
{
    QTest::addColumn<Reply>("reply");
    QTest::addColumn<QString>("event");
    QTest::addColumn<QString>("komunikat");
    QTest::newRow("komunikat only") << Reply{200, R"({"komunikat":"Usługa niedostępna"})"} << u"NIEPOTWIERDZONO"_s
                                    << u"Usługa niedostępna"_s;
    QTest::newRow("empty object") << Reply{200, "{}"} << u"NIEPOTWIERDZONO"_s << QString();
    QTest::newRow("not JSON") << Reply{200, "<html>"} << u"NIEPOTWIERDZONO"_s
                              << u"Odpowiedź serwera nie jest poprawnym obiektem JSON: <html>"_s;
    QTest::newRow("server error") << Reply{500, "{}", 0, "Internal Server Error"} << u"NIEPOTWIERDZONO"_s
                                  << u"Serwer zgłosił błąd: HTTP/1.1 500 Internal Server Error"_s;
    QTest::newRow("client error") << Reply{400, R"({"komunikat":"Niepoprawne dane"})", 0, "Bad Request"}
                                  << u"ODRZUCONO"_s
                                  << u"Serwer zgłosił błąd: Niepoprawne dane (HTTP/1.1 400 Bad Request)"_s;
    QTest::newRow("connection cut") << RecordingServer::Broken(RecordingServer::Break::CutAfterHeaders)
                                    << u"NIEPOTWIERDZONO"_s << QString();
    QTest::newRow("refused") << Refused(R"([{"kodBledu":"A","komunikat":"b"}])") << u"ODRZUCONO"_s
                             << u"Zgłoszenie odrzucone"_s;
}

// The run goes on with the next animal; the row has no number and no status is asked for it.
void TestUseChange::answersWithoutADocumentNumber()
{
    QFETCH(Reply, reply);
    QFETCH(QString, event);
    QFETCH(QString, komunikat);
    UseChange c;
    c.addAnimal(u"001"_s, u"PL1"_s, true);
    c.addAnimal(u"001"_s, u"PL2"_s, true);
    ScriptedRegistry registry;
    registry.notices[u"PL1"_s] = reply;
    c.run(registry);
    QCOMPARE(c.result.outcome, UseChangeOutcome::Sent);
    QCOMPARE(c.column("NumerDokumentu"), (QStringList{QString(), u"D/PL2"_s}));
    if (!komunikat.isNull())
        QCOMPARE(c.column("Komunikat").first(), komunikat);
    QCOMPARE(c.requestsFor("listaDokumentow"), 1);
    QCOMPARE(c.journal()[1].section(u';', 8, 8), event);
    QCOMPARE(c.marked(), QStringList{u"PL1"_s});
    const QStringList& listed = event == u"ODRZUCONO" ? c.result.refused : c.result.unconfirmed;
    QCOMPARE(listed, QStringList{u"PL1"_s});
    if (event == u"NIEPOTWIERDZONO")
        QVERIFY(c.host.messages.back().text.contains(u"Bez potwierdzenia rejestru"_s));
}

void TestUseChange::statusCodesAndTheirDescriptions_data()
{
    QTest::addColumn<QString>("status");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("description");
    const QStringList texts{u"Wprowadzony"_s,
                            u"Wprowadzony - poprawiony"_s,
                            u"W trakcie weryfikacji"_s,
                            u"W trakcie kontroli"_s,
                            u"Skierowano do uzupełnienia braków formalnych"_s,
                            u"Skierowano do złożenia wyjaśnień"_s,
                            u"Zatwierdzony"_s,
                            u"Zatwierdzony - decyzja pozytywna"_s,
                            u"Zatwierdzony - decyzja negatywna"_s,
                            u"Zatwierdzony - częściowo"_s,
                            u"Do poprawy"_s,
                            u"Przekazany do użytkownika"_s,
                            u"Wydany"_s,
                            u"Anulowany"_s,
                            u"Manualna weryfikacja - brak danych nadawcy"_s,
                            u"Wygenerowany"_s,
                            u"Przekazany do ARiMR"_s,
                            u"Wydrukowany"_s};
    for (int code = 1; code <= 18; ++code)
        QTest::addRow("%d", code) << QString::number(code) << code << texts[code - 1];
    QTest::newRow("0") << u"0"_s << 0 << u"Nieznany"_s;
    QTest::newRow("19") << u"19"_s << 19 << u"Nieznany"_s;
    QTest::newRow("not a number") << u"ZATW"_s << 0 << u"Nieznany"_s;
}

void TestUseChange::statusCodesAndTheirDescriptions()
{
    QFETCH(QString, status);
    QFETCH(int, code);
    QFETCH(QString, description);
    UseChange c;
    c.addAnimal(u"001"_s, u"PL1"_s, true);
    ScriptedRegistry registry;
    registry.statuses[u"D/PL1"_s] = {200, R"({"dokumenty":[{"numerDokumentu":"D/PL1","statusDokumentu":")" +
                                              status.toUtf8() + "\"}]}"};
    c.run(registry);
    QCOMPARE(c.column("ST_KOD"), QStringList{QString::number(code)});
    QCOMPARE(c.column("ST_OPIS"), QStringList{description});
}

void TestUseChange::documentListEnvelopes_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QStringList>("numbers");
    QTest::newRow("dokumenty") << QByteArray(R"({"dokumenty":[{"numerDokumentu":"A"},{"numerDokumentu":"B"}]})")
                               << QStringList{u"A"_s, u"B"_s};
    QTest::newRow("listaDokumentow") << QByteArray(R"({"listaDokumentow":[{"numerDokumentu":"A"}]})")
                                     << QStringList{u"A"_s};
    QTest::newRow("bare array") << QByteArray(R"([{"numerDokumentu":"C"}])") << QStringList{u"C"_s};
    QTest::newRow("neither") << QByteArray(R"({"inne":[{"numerDokumentu":"A"}]})") << QStringList{};
}

void TestUseChange::documentListEnvelopes()
{
    QFETCH(QByteArray, answer);
    QFETCH(QStringList, numbers);
    QStringList found;
    for (const auto& document : DocumentsIn(answer))
        found.append(document->numerDokumentu);
    QCOMPARE(found, numbers);
}

void TestUseChange::failedStatusQueriesAreReportedRowByRow()
{
    UseChange c;
    for (const QString& tag : {u"PL1"_s, u"PL2"_s, u"PL3"_s, u"PL4"_s})
        c.addAnimal(u"001"_s, tag, true);
    ScriptedRegistry registry;
    registry.statuses[u"D/PL1"_s] = {500, "{}", 0, "Internal Server Error"};
    registry.statuses[u"D/PL2"_s] = {200, R"({"komunikat":"Brak dostępu do dokumentu"})"};
    registry.statuses[u"D/PL3"_s] = {200, R"({"dokumenty":[]})"};
    c.run(registry);
    QCOMPARE(c.requestsFor("listaDokumentow"), 4);
    QCOMPARE(c.column("ST_OPIS"), (QStringList{QString(), QString(), QString(), u"Zatwierdzony"_s}));
    QCOMPARE(c.session.errors(),
             (QStringList{u"Serwer zgłosił błąd: HTTP/1.1 500 Internal Server Error (dokument D/PL1, zwierzę PL1)"_s,
                          u"Serwer zwrócił komunikat: Brak dostępu do dokumentu (dokument D/PL2, zwierzę PL2)"_s,
                          u"Rejestr nie zwrócił dokumentu D/PL3 (dokument D/PL3, zwierzę PL3)"_s}));
    QVERIFY(c.host.messages.back().text.contains(u"Nie sprawdzono statusu 3 dokumentów"_s));
    QCOMPARE(c.result.outcome, UseChangeOutcome::Sent);
    QVERIFY(c.result.report);
}

void TestUseChange::theJournalIsCompleteWhenThePrintFails()
{
    UseChange c;
    QVERIFY(QFile::remove(c.prints.templatePath(PrintCommands::useChangeTemplateName())));
    c.addAnimal(u"001"_s, u"PL1"_s, true);
    c.run({});
    QVERIFY(!c.result.report);
    QCOMPARE(c.host.messages.front().caption, u"Bład..."_s);
    QCOMPARE(c.journal().size(), 3);
    QVERIFY(c.journal()[2].contains(u";STATUS;D/PL1;7 Zatwierdzony"_s));
    QCOMPARE(c.result.outcome, UseChangeOutcome::Sent);
}

void TestUseChange::cancellingTheWaitSkipsTheStatuses()
{
    UseChange c;
    IniFile(c.session.dataFolder().settingsFile()).writeInteger(u"TUKU"_s, u"WaitSeconds"_s, 30);
    c.addAnimal(u"001"_s, u"PL1"_s, true);
    c.host.cancelWhen = [&c] { return c.host.stepTexts.contains(u"Odczekanie na reakcję serwera"_s); };
    QElapsedTimer timer;
    timer.start();
    c.run({});
    QVERIFY(timer.elapsed() < 10'000);
    QCOMPARE(c.requestsFor("listaDokumentow"), 0);
    QCOMPARE(c.column("NumerDokumentu"), QStringList{u"D/PL1"_s});
    QVERIFY(c.result.report);
    QCOMPARE(c.result.outcome, UseChangeOutcome::Sent);
}

void TestUseChange::theTestBranchIsUsedWhenSet()
{
    UseChange c;
    c.config.testBranch = true;
    c.addAnimal(u"001"_s, u"PL1"_s, true);
    c.run({});
    QVERIFY(c.host.questions.first().contains(u"TESTOWEJ"_s));
    QCOMPARE(c.requestsFor("/api/test/"), 2);
    QCOMPARE(c.requestsFor("/api/prod/"), 0);
}

// Download, change two animals to "Mięsny", see the statuses, download again and see the new direction.
void TestUseChange::endToEndAgainstTheSimulator()
{
    SimOptions options;
    options.approveAfterMs = 0;
    DemoOptions demo;
    demo.herdSizes = {12, 8};
    RegistrySimulator simulator(GenerateDemoDataset(demo), options);
    QVERIFY(simulator.start());
    UseChange c;
    c.config.ssoBase = c.config.apiBase = simulator.baseUrl();
    c.session.inputs.login = demo.login;
    c.session.inputs.password = demo.password;
    TdmIRZ_PLUS client(c.config, c.host);
    QCOMPARE(DownloadCommand(c.session, client).run(), DownloadOutcome::Completed);

    Table& animals = c.session.tables().mdRZ00();
    QStringList chosen;
    for (int row = 0; row < animals.recordCount() && chosen.size() < 2; ++row) {
        if (AsString(animals.at(row, animals.requireField(u"KierunekUzytkowania"))) == u"Mięsny")
            continue;
        chosen.append(AsString(animals.at(row, animals.requireField(u"NumerIdentyfikacyjny"))));
        c.session.tables().SetMarked(row, true);
    }
    const UseChangeResult result = UseChangeCommand(c.session, client, c.prints).run();
    QCOMPARE(result.accepted, 2);
    QCOMPARE(c.column("ST_OPIS"), (QStringList{u"Zatwierdzony"_s, u"Zatwierdzony"_s}));
    QVERIFY(c.marked().isEmpty());

    c.host.answerYes = true; // the loaded data may go
    QCOMPARE(DownloadCommand(c.session, client).run(), DownloadOutcome::Completed);
    for (const QString& tag : chosen) {
        QVERIFY(animals.locate(animals.requireField(u"NumerIdentyfikacyjny"), tag));
        QCOMPARE(AsString(animals.value(u"KierunekUzytkowania")), u"Mięsny"_s);
        QCOMPARE(c.session.answers[static_cast<std::size_t>(animals.recNo())].useDirection, u"MI"_s);
    }
}

QTEST_MAIN(TestUseChange)
#include "test_use_change.moc"
