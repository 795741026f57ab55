// A change notice reaches the registry at most once per decision of the user:
// what the journal says is reconciled before a notice is sent again, and what
// the registry answered is never lost.
#include "UseChangeFixture.h"
#include "registry/download/DownloadCommand.h"
#include "registry/sim/RegistrySimulator.h"

#include <QCoreApplication>
#include <QDir>
#include <QLockFile>
#include <QTcpServer>
#include <QTest>

namespace {
const QString Earlier = u"2026-11-20 10:15:02"_s;

// A journal line as the program writes it, for PL1 changing from ML to MI.
QByteArray Line(const QString& event, const QString& document = {}, const QString& text = {},
                const QString& producer = Producer)
{
    const QStringList fields{Earlier, producer, u"001"_s, u"PL1"_s, u"ML"_s, u"ML"_s,
                             u"ML"_s, u"MI"_s,  event,    document, text};
    return ToCp1250(fields.join(u';') + u"\r\n"_s);
}

QStringList Events(const QStringList& journal)
{
    QStringList events;
    for (const QString& line : journal)
        events.append(line.section(u';', 8, 8));
    return events;
}

// The first animal of the producer's active herds whose direction is not the given one.
QString AnimalNotOf(const SimDataset& data, const QString& direction)
{
    for (const auto& holding : data.producers.front().holdings)
        for (const QJsonObject& animal : holding.animals)
            if (animal[u"kierunekUzytkownia"][u"kod"].toString() != direction && !holding.animals.empty())
                return animal[u"numerIdentyfikacyjnyZwierzecia"].toString();
    return {};
}

void Tick(HalvarnSession& session, const QString& tag)
{
    Table& animals = session.tables().mdRZ00();
    QVERIFY(animals.locate(animals.requireField(u"NumerIdentyfikacyjny"), tag));
    session.tables().SetMarked(animals.recNo(), true);
}
} // namespace

class TestNoticeDelivery : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anAnimalWithTheChosenDirectionIsNotSent();
    void earlierNoticesAreReconciledFirst_data();
    void earlierNoticesAreReconciledFirst();
    void aJournalThatCannotBeReadSendsNothing_data();
    void aJournalThatCannotBeReadSendsNothing();
    void theDocumentNumberSurvivesAFailingJournal();
    void aRegistryOutOfReachIsNotSentTo();
    void anotherRunHoldingTheJournalSendsNothing();
    void lostAnswersLeaveOneNoticeOfUnknownOutcome_data();
    void lostAnswersLeaveOneNoticeOfUnknownOutcome();
};

void TestNoticeDelivery::anAnimalWithTheChosenDirectionIsNotSent()
{
    UseChange c;
    c.addAnimal(u"001"_s, u"PL1"_s, true, u"ML"_s, u"MI"_s);
    c.addAnimal(u"001"_s, u"PL2"_s, true);
    c.run({});
    QCOMPARE(c.result.unchanged, QStringList{u"PL1"_s});
    QCOMPARE(c.requestsFor("/ztuku"), 1);
    QCOMPARE(c.column("NumerIdentyfikacyjny"), QStringList{u"PL2"_s});
    QVERIFY(c.host.questions.first().contains(u"Pominięto 1 zwierzę, które już ma ten kierunek"_s));
    QVERIFY(c.host.messages.back().text.contains(u"Nie wysłano, kierunek użytkowania już jest „Mięsny”: PL1"_s));

    UseChange only;
    only.addAnimal(u"001"_s, u"PL1"_s, true, u"ML"_s, u"MI"_s);
    only.run({});
    QCOMPARE(only.result.outcome, UseChangeOutcome::NothingToSend);
    QVERIFY(only.requests.empty()); // not even a log-in
    QVERIFY(only.host.questions.isEmpty());
    QVERIFY(only.host.messages.back().text.contains(u"kierunek użytkowania już jest „Mięsny”: PL1"_s));
}

void TestNoticeDelivery::earlierNoticesAreReconciledFirst_data()
{
    QTest::addColumn<QByteArray>("journal");
    QTest::addColumn<QString>("asked"); // what the question says of the earlier notice; null: not asked
    QTest::newRow("sent, then the program ended")
        << Line(u"WYSLANO"_s) << u"20.11.2026 10:15:02, kierunek „Mięsny”: odpowiedź rejestru nie dotarła"_s;
    QTest::newRow("answer lost") << Line(u"WYSLANO"_s) + Line(u"NIEPOTWIERDZONO"_s)
                                 << u"rejestr nie potwierdził przyjęcia (wynik nieznany)"_s;
    QTest::newRow("accepted, being verified") << Line(u"WYSLANO"_s) + Line(u"PRZYJETO"_s, u"D/1"_s) +
                                                     Line(u"STATUS"_s, u"D/1"_s, u"3 W trakcie weryfikacji"_s)
                                              << u"dokument D/1: przyjęte, jeszcze nie rozpatrzone"_s;
    QTest::newRow("accepted, approved") << Line(u"WYSLANO"_s) + Line(u"PRZYJETO"_s, u"D/1"_s) +
                                               Line(u"STATUS"_s, u"D/1"_s, u"7 Zatwierdzony"_s)
                                        << QString();
    QTest::newRow("refused") << Line(u"WYSLANO"_s) + Line(u"ODRZUCONO"_s) << QString();
    QTest::newRow("never left") << Line(u"WYSLANO"_s) + Line(u"NIEWYSLANO"_s) << QString();
    QTest::newRow("another producer's") << Line(u"WYSLANO"_s, {}, {}, u"099999999"_s) << QString();
    QTest::newRow("a later notice refused")
        << Line(u"WYSLANO"_s) + Line(u"NIEPOTWIERDZONO"_s) + Line(u"WYSLANO"_s) + Line(u"ODRZUCONO"_s) << QString();
}

// Asked, the default answer keeps the notice back; only a yes sends it.
void TestNoticeDelivery::earlierNoticesAreReconciledFirst()
{
    QFETCH(QByteArray, journal);
    QFETCH(QString, asked);
    for (const bool resend : {false, true}) {
        UseChange c;
        WriteAll(c.session.dataFolder().useChangeJournal(), journal);
        c.addAnimal(u"001"_s, u"PL1"_s, true);
        c.host.answerResend = resend;
        ScriptedRegistry registry;
        registry.documentsSince = {200, R"({"dokumenty":[{"numerDokumentu":"ZTUKU/2026/000007","typDokumentu":"ZTUKU",)"
                                        R"("statusDokumentu":"3","dataZlozeniaDokumentu":"2026-11-20T10:15:03"}]})"};
        c.run(registry);
        if (asked.isNull()) {
            QVERIFY(c.host.resendQuestions.isEmpty());
            QCOMPARE(c.requestsFor("/ztuku"), 1);
            continue;
        }
        QCOMPARE(c.host.resendQuestions.size(), 1);
        const QString question = c.host.resendQuestions.front();
        QVERIFY2(question.contains(asked), qPrintable(question));
        QVERIFY(question.contains(u"ZTUKU/2026/000007  ZTUKU  złożony 20.11.2026"_s));
        QVERIFY(question.contains(u"status 3 W trakcie weryfikacji"_s));
        QCOMPARE(c.requestsFor("dataPrzyjeciaOd=2026-11-20"), 1);
        QCOMPARE(c.requestsFor("/ztuku"), resend ? 1 : 0);
        QCOMPARE(c.result.withheld.size(), resend ? 0 : 1);
        QCOMPARE(c.marked(), resend ? QStringList() : QStringList{u"PL1"_s});
    }
}

void TestNoticeDelivery::aJournalThatCannotBeReadSendsNothing_data()
{
    QTest::addColumn<QByteArray>("journal"); // empty: a folder where the journal should be
    QTest::addColumn<QString>("message");
    QTest::newRow("a folder") << QByteArray() << u"Nie można odczytać dziennika zgłoszeń"_s;
    QTest::newRow("last line torn") << Line(u"WYSLANO"_s).chopped(2) << u"jest uszkodzony (wiersz 1)"_s;
    QTest::newRow("a line short of fields") << Line(u"WYSLANO"_s) + "2026-11-20 10:15:03;071234562;001\r\n"
                                            << u"jest uszkodzony (wiersz 2)"_s;
}

void TestNoticeDelivery::aJournalThatCannotBeReadSendsNothing()
{
    QFETCH(QByteArray, journal);
    QFETCH(QString, message);
    UseChange c;
    const QString path = c.session.dataFolder().useChangeJournal();
    if (journal.isEmpty())
        QVERIFY(QDir().mkpath(path));
    else
        WriteAll(path, journal);
    c.addAnimal(u"001"_s, u"PL1"_s, true);
    c.run({});
    QVERIFY(c.requests.empty());
    QCOMPARE(c.result.outcome, UseChangeOutcome::NotStarted);
    QVERIFY2(c.host.messages.back().text.contains(message), qPrintable(c.host.messages.back().text));
    QCOMPARE(c.marked(), QStringList{u"PL1"_s});
    QVERIFY(!c.host.busy);
    if (!journal.isEmpty())
        QCOMPARE(ReadAll(path), journal);
}

// The registry accepted the notice, but its answer cannot be journaled: the
// sending stops, and the document number is in mdTUKU, the errors, the summary and the print.
void TestNoticeDelivery::theDocumentNumberSurvivesAFailingJournal()
{
    UseChange c;
    c.addAnimal(u"001"_s, u"PL1"_s, true);
    c.addAnimal(u"001"_s, u"PL2"_s, true);
    const QString journal = c.session.dataFolder().useChangeJournal();
    const ScriptedRegistry registry;
    c.runWith([&](const RecordingServer::Request& request) {
        if (request.target.contains("/ztuku") && QFile::rename(journal, journal + u".kept"_s))
            QDir().mkpath(journal);
        return registry.answer(request);
    });
    QCOMPARE(c.requestsFor("/ztuku"), 1);
    QCOMPARE(c.result.outcome, UseChangeOutcome::Stopped);
    QCOMPARE(c.column("NumerDokumentu"), QStringList{u"D/PL1"_s});
    QCOMPARE(c.result.journalFailures.size(), 1);
    const QString failure = c.result.journalFailures.front();
    QVERIFY2(failure.startsWith(u"Zgłoszenie zwierzęcia PL1 przyjęte przez rejestr jako D/PL1, ale nie zapisano go "
                                u"w dzienniku: Nie można zapisać dziennika zgłoszeń"_s),
             qPrintable(failure));
    QVERIFY(c.session.errors().contains(failure));
    QVERIFY(c.host.messages.back().text.contains(failure));
    QVERIFY(c.result.report);
    QVERIFY(c.result.report->pageTexts(0).join(u' ').contains(u"D/PL1"_s));
    QCOMPARE(c.marked(), QStringList{u"PL2"_s});
}

// No connection to the registry: the notice certainly did not arrive, so it is
// journaled as never sent, the rest are not tried, and nothing is asked next time.
void TestNoticeDelivery::aRegistryOutOfReachIsNotSentTo()
{
    QTcpServer nobody;
    QVERIFY(nobody.listen(QHostAddress::LocalHost));
    const quint16 closedPort = nobody.serverPort();
    nobody.close();
    const ScriptedRegistry registry;
    for (int run = 0; run < 2; ++run) {
        UseChange c;
        if (run == 1)
            WriteAll(c.session.dataFolder().useChangeJournal(), Line(u"WYSLANO"_s) + Line(u"NIEWYSLANO"_s));
        c.addAnimal(u"001"_s, u"PL1"_s, true);
        c.addAnimal(u"001"_s, u"PL2"_s, true);
        RecordingServer logIn([&registry](const RecordingServer::Request& r) { return registry.answer(r); });
        c.config.ssoBase = logIn.baseUrl();
        c.config.apiBase = u"http://127.0.0.1:%1"_s.arg(closedPort);
        TdmIRZ_PLUS client(c.config, c.host);
        c.result = UseChangeCommand(c.session, client, c.prints).run();
        QCOMPARE(c.result.outcome, UseChangeOutcome::Stopped);
        QCOMPARE(c.result.notSent, QStringList{u"PL1"_s});
        QVERIFY(c.host.resendQuestions.isEmpty());
        QCOMPARE(Events(c.journal()).mid(run == 1 ? 2 : 0), (QStringList{u"WYSLANO"_s, u"NIEWYSLANO"_s}));
        QVERIFY(c.host.messages.back().text.contains(u"Nie wysłano (brak połączenia z rejestrem): PL1"_s));
        QCOMPARE(c.marked(), (QStringList{u"PL1"_s, u"PL2"_s}));
    }
}

void TestNoticeDelivery::anotherRunHoldingTheJournalSendsNothing()
{
    UseChange c;
    QLockFile held(c.session.dataFolder().useChangeJournal() + u".lock"_s);
    QVERIFY(held.tryLock());
    c.addAnimal(u"001"_s, u"PL1"_s, true);
    c.run({});
    QVERIFY(c.requests.empty());
    QCOMPARE(c.result.outcome, UseChangeOutcome::NotStarted);
    QVERIFY(c.host.messages.back().text.contains(
        u"wysyła już inne okno programu (PID %1)"_s.arg(QCoreApplication::applicationPid())));
}

void TestNoticeDelivery::lostAnswersLeaveOneNoticeOfUnknownOutcome_data()
{
    QTest::addColumn<int>("loss"); // 0 closed, 1 reset, 2 silent until the time-out
    QTest::newRow("connection closed") << 0;
    QTest::newRow("connection reset") << 1;
    QTest::newRow("no answer") << 2;
}

// The registry receives the notice and its answer never comes back. Once: the
// transport does not send it again. Run again, the user sees the registry's
// document and the notice stays back; only a yes sends another.
void TestNoticeDelivery::lostAnswersLeaveOneNoticeOfUnknownOutcome()
{
    QFETCH(int, loss);
    DemoOptions demo;
    demo.herdSizes = {6};
    SimDataset data = GenerateDemoDataset(demo);
    const QString tag = AnimalNotOf(data, u"OP"_s);
    SimOptions options;
    options.approveAfterMs = 60'000;
    QSet<QString>* losses[] = {&options.faults.closeAfterUseChange, &options.faults.resetAfterUseChange,
                               &options.faults.silenceAfterUseChange};
    losses[loss]->insert(tag);
    RegistrySimulator simulator(std::move(data), options);
    QVERIFY(simulator.start());
    UseChange c;
    c.config.ssoBase = c.config.apiBase = simulator.baseUrl();
    c.config.postTimeoutMs = 1000;
    c.session.inputs.login = demo.login;
    c.session.inputs.password = demo.password;
    c.host.useDirection = u"OP"_s;
    TdmIRZ_PLUS client(c.config, c.host);
    QCOMPARE(DownloadCommand(c.session, client).run(), DownloadOutcome::Completed);

    Tick(c.session, tag);
    c.result = UseChangeCommand(c.session, client, c.prints).run();
    QCOMPARE(simulator.stats().useChangeRequests, 1);
    QCOMPARE(c.result.unconfirmed, QStringList{tag});
    QCOMPARE(Events(c.journal()), (QStringList{u"WYSLANO"_s, u"NIEPOTWIERDZONO"_s}));
    QCOMPARE(c.column("NumerDokumentu"), QStringList{QString()});

    c.result = UseChangeCommand(c.session, client, c.prints).run();
    QCOMPARE(simulator.stats().useChangeRequests, 1);
    QCOMPARE(c.result.withheld.size(), 1);
    QVERIFY(c.host.resendQuestions.back().contains(u"ZTUKU/"_s));
    QVERIFY(c.host.resendQuestions.back().contains(u"status 3 W trakcie weryfikacji"_s));

    c.host.answerResend = true;
    c.result = UseChangeCommand(c.session, client, c.prints).run();
    QCOMPARE(simulator.stats().useChangeRequests, 2);
    QCOMPARE(c.result.withheld.size(), 0);
}

QTEST_MAIN(TestNoticeDelivery)
#include "test_notice_delivery.moc"
