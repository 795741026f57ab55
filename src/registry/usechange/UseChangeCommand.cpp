#include "registry/usechange/UseChangeCommand.h"

#include "core/session/HalvarnSession.h"
#include "framework/FileLock.h"
#include "framework/IniFile.h"
#include "registry/client/TdmIRZ_PLUS.h"
#include "registry/usechange/DocumentStatus.h"
#include "registry/usechange/EarlierNotices.h"
#include "registry/usechange/UseDirections.h"
#include "reports/print/PrintCommands.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
const QString Caption = u"Zmiana kierunku użytkowania"_s;
constexpr int JournalLockWaitMs = 3000;

// "dla 1 zwierzęcia", "dla 3 zwierząt"
QString Animals(int count)
{
    return count == 1 ? u"1 zwierzęcia"_s : u"%1 zwierząt"_s.arg(count);
}

// "1 zwierzę", "3 zwierzęta", "5 zwierząt"
QString AnimalsCounted(int count)
{
    const bool few = count % 10 >= 2 && count % 10 <= 4 && (count % 100 < 12 || count % 100 > 14);
    return count == 1 ? u"1 zwierzę"_s : u"%1 %2"_s.arg(count).arg(few ? u"zwierzęta"_s : u"zwierząt"_s);
}

// "KB: " code "->" message "; " for every error of the answer.
QString ErrorsText(const QJsonObject& root)
{
    QString text;
    for (const QJsonValue entry : root.value(u"bledy").toArray()) {
        OwningList<TBladClass> errors;
        TBladClass::Parse(entry.toObject(), errors);
        text += u"KB: "_s + errors.front()->kodBledu + u"->"_s + errors.front()->komunikat + u"; "_s;
    }
    return text;
}

// Keeps the long operation's frame up for as long as the command runs, also
// when a step fails.
class LongOperation {
public:
    explicit LongOperation(HalvarnSession& session) : session_(session) { session_.BeginLongOperation(); }
    ~LongOperation() { session_.EndLongOperation(); }
    LongOperation(const LongOperation&) = delete;
    LongOperation& operator=(const LongOperation&) = delete;

private:
    HalvarnSession& session_;
};
} // namespace

UseChangeCommand::UseChangeCommand(HalvarnSession& session, TdmIRZ_PLUS& registry, PrintCommands& prints)
    : session_(session), registry_(registry), prints_(prints)
{}

UseChangeResult UseChangeCommand::run()
{
    session_.GatherCredentials();
    producer_ = session_.ProducerNumber;
    const LongOperation frame(session_);
    try {
        change();
    } catch (const std::exception& error) {
        if (result_.outcome == UseChangeOutcome::Sent)
            result_.outcome = UseChangeOutcome::Stopped;
        session_.host().showMessage(u"Błąd"_s, QString::fromUtf8(error.what()), MessageIcon::Error);
    }
    return std::move(result_);
}

void UseChangeCommand::change()
{
    step(u"Liczenie danych"_s);
    const int marked = countMarked();
    if (marked == 0) {
        session_.host().showMessage(Caption, u"Nie wybrano pozycji do zmiany"_s, MessageIcon::Information);
        return;
    }
    if (!sameProducer())
        return;
    const std::optional<QString> code = session_.host().askUseDirection();
    if (!code || code->isEmpty())
        return;
    code_ = *code;
    step(u"Przygotowanie danych"_s);
    const std::vector<UseChangeNotice> notices = setAsideUnchanged(collect(code_), code_);
    if (notices.empty()) {
        result_.outcome = UseChangeOutcome::NothingToSend;
        tellResult(marked);
        return;
    }
    if (!lockJournal())
        return;
    const QHash<QString, EarlierNotice> earlier = readJournal(notices);
    if (confirm(notices.size(), code_))
        sendAll(notices, earlier, marked);
}

void UseChangeCommand::sendAll(std::vector<UseChangeNotice> notices, const QHash<QString, EarlierNotice>& earlier,
                               int marked)
{
    session_.tables().ClearTable(session_.tables().mdTUKU());
    result_.outcome = UseChangeOutcome::Stopped;
    step(u"Logowanie"_s);
    if (!registry_.Authorize(session_.Login, session_.Password))
        return;
    notices = reconcile(notices, earlier);
    if (send(notices))
        result_.outcome = UseChangeOutcome::Sent;
    if (result_.accepted > 0 && !cancelled_ && !journalBroken_) {
        waitForRegistry();
        checkStatuses();
    }
    prepareReport();
    tellResult(marked);
}

int UseChangeCommand::countMarked() const
{
    const Table& animals = session_.tables().mdRZ00();
    const int mark = animals.requireField(u"ZAZNACZONE");
    int count = 0;
    for (int row = 0; row < animals.recordCount(); ++row)
        count += AsBoolean(animals.at(row, mark)) ? 1 : 0;
    return count;
}

// The ticked animals are those of the downloaded producer; a number typed
// since then would send them under another producer.
bool UseChangeCommand::sameProducer() const
{
    Table& header = session_.tables().mdProducent();
    const QString downloaded = header.isEmpty() ? producer_ : AsString(header.at(0, header.requireField(u"PRODUCENT")));
    if (downloaded == producer_)
        return true;
    session_.host().showMessage(Caption,
                                u"Zaznaczone zwierzęta należą do producenta %1, a numer producenta to teraz %2. "
                                u"Przywróć numer albo pobierz dane ponownie."_s.arg(downloaded, producer_),
                                MessageIcon::Warning);
    return false;
}

bool UseChangeCommand::confirm(std::size_t count, const QString& code)
{
    QString question = u"Wysłać zmianę kierunku użytkowania na „%1” dla %2?"_s.arg(UseDirectionName(code),
                                                                                   Animals(static_cast<int>(count)));
    if (!result_.unchanged.isEmpty())
        question += u"\n\nPominięto %1, które już %2 ten kierunek użytkowania."_s.arg(
            AnimalsCounted(static_cast<int>(result_.unchanged.size())),
            result_.unchanged.size() == 1 ? u"ma"_s : u"mają"_s);
    if (testBranch())
        question += u"\n\nZgłoszenia trafią do gałęzi TESTOWEJ rejestru."_s;
    return session_.host().askYesNo(u"Pytanie"_s, question);
}

// The ticked animals herd by herd, in the table's order within a herd.
std::vector<UseChangeNotice> UseChangeCommand::collect(const QString& code) const
{
    const Table& animals = session_.tables().mdRZ00();
    const int mark = animals.requireField(u"ZAZNACZONE");
    const int herd = animals.requireField(u"STADO");
    const int number = animals.requireField(u"NumerIdentyfikacyjny");
    const int holding = animals.requireField(u"NumerDzialalnosci");
    std::vector<UseChangeNotice> notices;
    for (int row = 0; row < animals.recordCount(); ++row) {
        if (!AsBoolean(animals.at(row, mark)))
            continue;
        const QString animal = AsString(animals.at(row, number));
        const std::size_t index = static_cast<std::size_t>(row);
        const AnimalAnswer said = index < session_.answers.size() ? session_.answers[index] : AnimalAnswer{};
        notices.push_back({row, AsString(animals.at(row, herd)), animal, AsString(animals.at(row, holding)),
                           said.useType, said.useDirection, said.useType, code});
    }
    std::stable_sort(notices.begin(), notices.end(),
                     [](const UseChangeNotice& a, const UseChangeNotice& b) { return a.herd < b.herd; });
    return notices;
}

// A notice that would change nothing is not sent.
std::vector<UseChangeNotice> UseChangeCommand::setAsideUnchanged(std::vector<UseChangeNotice> notices,
                                                                 const QString& code)
{
    const auto unchanged = std::stable_partition(notices.begin(), notices.end(),
                                                 [&code](const UseChangeNotice& n) { return n.kuOld != code; });
    for (auto notice = unchanged; notice != notices.end(); ++notice)
        result_.unchanged.append(notice->animal);
    notices.erase(unchanged, notices.end());
    return notices;
}

// Two runs sending from one data folder would each miss what the other sent.
bool UseChangeCommand::lockJournal()
{
    try {
        journalLock_.emplace(session_.dataFolder().useChangeJournal(),
                             u"Zgłoszenia zmiany kierunku użytkowania wysyła już inne okno programu (PID %1). "
                             u"Spróbuj ponownie, gdy skończy."_s,
                             JournalLockWaitMs);
        return true;
    } catch (const LockBusy& busy) {
        session_.host().showMessage(Caption, busy.message(), MessageIcon::Warning);
        return false;
    }
}

// What the journal says of the last notice of each animal about to be sent.
QHash<QString, EarlierNotice> UseChangeCommand::readJournal(const std::vector<UseChangeNotice>& notices)
{
    journal_.emplace(session_.dataFolder().useChangeJournal(), producer_);
    QSet<QString> animals;
    for (const UseChangeNotice& notice : notices)
        animals.insert(notice.animal);
    return journal_->earlierNotices(animals);
}

// An animal whose last notice may have reached the registry, or is still being
// decided there, is sent again only when the user says so, having seen the
// producer's documents in the registry since that notice.
std::vector<UseChangeNotice> UseChangeCommand::reconcile(const std::vector<UseChangeNotice>& notices,
                                                         const QHash<QString, EarlierNotice>& earlier)
{
    QDate since;
    for (const EarlierNotice& notice : earlier)
        if (notice.mayStillApply() && (!since.isValid() || notice.sentAt.date() < since))
            since = notice.sentAt.date();
    if (!since.isValid())
        return notices;
    step(u"Sprawdzenie wcześniejszych zgłoszeń"_s);
    const QString documents = DocumentsSince(registry_, producer_, since, testBranch());
    std::vector<UseChangeNotice> toSend;
    for (const UseChangeNotice& notice : notices) {
        const auto found = earlier.constFind(notice.animal);
        if (found == earlier.cend() || !found->mayStillApply() ||
            session_.host().askToResend(ResendQuestion(notice, *found, documents)))
            toSend.push_back(notice);
        else
            result_.withheld.append(notice.animal + u": "_s + DescribeEarlier(*found));
    }
    return toSend;
}

// False when not every notice was sent: the user stopped, the journal failed or the registry was out of reach.
bool UseChangeCommand::send(const std::vector<UseChangeNotice>& notices)
{
    session_.setProgress(2, 0, static_cast<int>(notices.size()));
    for (const UseChangeNotice& notice : notices) {
        if (cancelled_ || session_.host().cancelRequested()) {
            cancelled_ = true;
            return false;
        }
        if (journalBroken_ || unreachable_)
            return false;
        sendOne(notice);
        session_.stepProgress(2);
    }
    return !cancelled_ && !journalBroken_ && !unreachable_;
}

// The notice is in the journal before it leaves. A client error status is a
// refusal; an answer that did not arrive whole, or a server error, leaves the
// notice "not confirmed", since the registry may have received it.
void UseChangeCommand::sendOne(const UseChangeNotice& notice)
{
    try {
        journal_->append(notice, JournalEvent::Sent);
    } catch (const JournalError& error) {
        return journalFailed(
            u"Nie wysłano zgłoszenia zwierzęcia %1 ani następnych: %2"_s.arg(notice.animal, error.message()));
    }
    ++sent_;
    step(u"Stado: "_s + notice.herd + u" - Wysyłanie zmiany"_s);
    QString answer;
    try {
        answer = registry_.SubmitUseChange(producer_, {}, notice.holding, u"BYD"_s, ToDateTime(QDate::currentDate()),
                                           notice.animal, notice.tuNew, notice.kuNew, testBranch());
    } catch (const NoticeNotSent& failure) {
        unreachable_ = true;
        record(notice, JournalEvent::NotSent, failure.message());
        return;
    } catch (const RequestCancelled& stop) {
        cancelled_ = true;
        record(notice, JournalEvent::Unconfirmed, stop.message());
        return;
    } catch (const RegistryError& failure) {
        const bool refused = failure.httpStatus() >= 400 && failure.httpStatus() < 500;
        record(notice, refused ? JournalEvent::Refused : JournalEvent::Unconfirmed, failure.message());
        return;
    }
    analyse(notice, answer);
}

void UseChangeCommand::analyse(const UseChangeNotice& notice, const QString& answer)
{
    step(u"Stado: "_s + notice.herd + u" - Analiza i zapis"_s);
    const QJsonDocument document = QJsonDocument::fromJson(answer.toUtf8());
    if (!document.isObject()) {
        record(notice, JournalEvent::Unconfirmed,
               u"Odpowiedź serwera nie jest poprawnym obiektem JSON: "_s + answer.left(60));
        return;
    }
    const QJsonObject root = document.object();
    const QString komunikat = root.value(u"komunikat").toString();
    const QString number = root.value(u"numerDokumentu").toString();
    const QString errors = ErrorsText(root);
    const JournalEvent event = !number.isEmpty()   ? JournalEvent::Accepted
                               : !errors.isEmpty() ? JournalEvent::Refused
                                                   : JournalEvent::Unconfirmed;
    record(notice, event, komunikat, number, errors);
}

// The row and the tally first, so an answer stays in mdTUKU and the result even
// when the journal cannot keep it.
void UseChangeCommand::record(const UseChangeNotice& notice, JournalEvent event, const QString& komunikat,
                              const QString& document, const QString& errors)
{
    appendRow(notice, komunikat, document, errors);
    tally(notice, event);
    keepInJournal(notice, event, document, errors.isEmpty() ? komunikat : errors);
}

void UseChangeCommand::tally(const UseChangeNotice& notice, JournalEvent event)
{
    if (event == JournalEvent::Accepted) {
        ++result_.accepted;
        session_.tables().SetMarked(notice.row, false);
    } else if (event == JournalEvent::Refused) {
        result_.refused.append(notice.animal);
    } else if (event == JournalEvent::NotSent) {
        result_.notSent.append(notice.animal);
    } else {
        result_.unconfirmed.append(notice.animal);
    }
}

// A journal that fails stops the sending; the document number it could not keep is told everywhere else.
void UseChangeCommand::keepInJournal(const UseChangeNotice& notice, JournalEvent event, const QString& document,
                                     const QString& text)
{
    try {
        journal_->append(notice, event, document, text);
    } catch (const JournalError& error) {
        journalFailed(
            event == JournalEvent::Accepted
                ? u"Zgłoszenie zwierzęcia %1 przyjęte przez rejestr jako %2, ale nie zapisano go w dzienniku: %3"_s.arg(
                      notice.animal, document, error.message())
                : u"Odpowiedzi rejestru na zgłoszenie zwierzęcia %1 nie zapisano w dzienniku: %2"_s.arg(
                      notice.animal, error.message()));
    }
}

// Nothing more is sent; the line goes with the result and under "Błąd".
void UseChangeCommand::journalFailed(const QString& line)
{
    journalBroken_ = true;
    result_.journalFailures.append(line);
    session_.appendError(line);
}

void UseChangeCommand::appendRow(const UseChangeNotice& notice, const QString& komunikat, const QString& document,
                                 const QString& errors)
{
    Table& table = session_.tables().mdTUKU();
    table.setReadOnly(false);
    table.append();
    table.setValue(u"STADO", notice.herd);
    table.setValue(u"NumerIdentyfikacyjny", notice.animal);
    table.setValue(u"TU_OLD", notice.tuOld);
    table.setValue(u"TU_NEW", notice.tuNew);
    table.setValue(u"KU_OLD", notice.kuOld);
    table.setValue(u"KU_NEW", notice.kuNew);
    if (!komunikat.isEmpty())
        table.setValue(u"Komunikat", komunikat);
    if (!document.isEmpty())
        table.setValue(u"NumerDokumentu", document);
    if (!errors.isEmpty())
        table.setValue(u"BLEDY", errors);
    table.post();
    session_.tables().restoreReadOnly(table);
}

// The registry needs a moment before a new document has a status; the user may cut the wait short.
void UseChangeCommand::waitForRegistry()
{
    QStringList problems;
    const int seconds =
        IniFile(session_.dataFolder().settingsFile()).readInteger(u"TUKU"_s, u"WaitSeconds"_s, 10, {0, 600}, problems);
    for (const QString& problem : problems)
        session_.appendError(problem);
    step(u"Odczekanie na reakcję serwera"_s);
    session_.setProgress(2, 0, seconds);
    QElapsedTimer waited;
    waited.start();
    while (waited.elapsed() < seconds * 1000LL) {
        if (session_.host().cancelRequested()) {
            cancelled_ = true;
            return;
        }
        QEventLoop pause;
        QTimer::singleShot(std::min<qint64>(100, seconds * 1000LL - waited.elapsed()), &pause, &QEventLoop::quit);
        pause.exec();
        if (session_.progress(2).position != static_cast<int>(waited.elapsed() / 1000))
            session_.setProgress(2, static_cast<int>(waited.elapsed() / 1000), seconds);
    }
}

void UseChangeCommand::checkStatuses()
{
    step(u"Sprawdzenie statusów"_s);
    Table& table = session_.tables().mdTUKU();
    const int document = table.requireField(u"NumerDokumentu");
    session_.setProgress(2, 0, table.recordCount());
    for (int row = 0; row < table.recordCount() && !cancelled_; ++row) {
        if (!AsString(table.at(row, document)).isEmpty())
            checkStatus(row);
        session_.stepProgress(2);
    }
}

// A failed query is reported and leaves the row as it was; the next row is asked all the same.
void UseChangeCommand::checkStatus(int row)
{
    Table& table = session_.tables().mdTUKU();
    const auto text = [&table, row](const char* field) { return AsString(table.at(row, table.requireField(field))); };
    const UseChangeNotice notice{-1,
                                 text("STADO"),
                                 text("NumerIdentyfikacyjny"),
                                 {},
                                 text("TU_OLD"),
                                 text("KU_OLD"),
                                 text("TU_NEW"),
                                 text("KU_NEW")};
    const QString document = text("NumerDokumentu");
    session_.SetStatusText(StatusPanel::Step, u"Stado: "_s + notice.herd + u" - sprawdz. statusu"_s);
    ListedDocuments listed;
    try {
        listed = AskForDocuments(registry_, producer_, document, {}, testBranch());
    } catch (const RequestCancelled&) {
        cancelled_ = true;
        return;
    }
    if (!listed.failure.isEmpty())
        return statusFailed(notice, document, listed.failure);
    const OwningList<TDokumInfOgolneClass>& documents = listed.documents;
    const auto found = std::find_if(documents.begin(), documents.end(),
                                    [&document](const auto& entry) { return entry->numerDokumentu == document; });
    if (found == documents.end())
        return statusFailed(notice, document, u"Rejestr nie zwrócił dokumentu "_s + document);
    const int code = (*found)->statusDokumentu.trimmed().toInt();
    table.setReadOnly(false);
    table.moveTo(row);
    table.edit();
    table.setValue(u"ST_KOD", code);
    table.setValue(u"ST_OPIS", DocumentStatusText(code));
    table.post();
    session_.tables().restoreReadOnly(table);
    keepInJournal(notice, JournalEvent::Status, document, u"%1 %2"_s.arg(code).arg(DocumentStatusText(code)));
}

void UseChangeCommand::statusFailed(const UseChangeNotice& notice, const QString& document, const QString& text)
{
    ++statusFailures_;
    session_.appendError(text + u" (dokument %1, zwierzę %2)"_s.arg(document, notice.animal));
    keepInJournal(notice, JournalEvent::Status, document, text);
}

void UseChangeCommand::prepareReport()
{
    if (session_.tables().mdTUKU().isEmpty())
        return;
    step(u"Przygotowanie raportu"_s);
    result_.report = prints_.run(prints_.useChange());
}

void UseChangeCommand::tellResult(int marked)
{
    const QStringList lines = resultLines(marked);
    if (lines.isEmpty())
        return;
    const bool clean = result_.refused.isEmpty() && result_.unconfirmed.isEmpty() && result_.withheld.isEmpty() &&
                       result_.notSent.isEmpty() && result_.journalFailures.isEmpty() &&
                       sent_ + result_.unchanged.size() == marked;
    session_.host().showMessage(Caption, lines.join(u'\n'), clean ? MessageIcon::Information : MessageIcon::Warning);
}

QStringList UseChangeCommand::resultLines(int marked) const
{
    QStringList lines;
    if (sent_ > 0)
        lines.append(u"Wysłano zgłoszeń: %1. Przyjęto: %2. Odrzucono: %3. Bez potwierdzenia: %4."_s.arg(sent_)
                         .arg(result_.accepted)
                         .arg(result_.refused.size())
                         .arg(result_.unconfirmed.size()));
    lines += result_.journalFailures;
    if (!result_.refused.isEmpty())
        lines.append(u"Odrzucone (pozostały zaznaczone): "_s + result_.refused.join(u", "_s));
    if (!result_.unconfirmed.isEmpty())
        lines.append(u"Bez potwierdzenia rejestru (mogły do niego dotrzeć; sprawdź je przed ponownym wysłaniem): "_s +
                     result_.unconfirmed.join(u", "_s));
    if (!result_.notSent.isEmpty())
        lines.append(u"Nie wysłano (brak połączenia z rejestrem): "_s + result_.notSent.join(u", "_s));
    if (!result_.unchanged.isEmpty())
        lines.append(u"Nie wysłano, kierunek użytkowania już jest „%1”: %2"_s.arg(UseDirectionName(code_),
                                                                                  result_.unchanged.join(u", "_s)));
    for (const QString& withheld : result_.withheld)
        lines.append(u"Nie wysłano ponownie: "_s + withheld);
    const int handled = sent_ + static_cast<int>(result_.unchanged.size() + result_.withheld.size());
    if (sent_ > 0 && handled < marked)
        lines.append(u"Przerwano: nie wysłano %1 z %2 zaznaczonych zwierząt."_s.arg(marked - handled).arg(marked));
    if (statusFailures_ > 0)
        lines.append(u"Nie sprawdzono statusu %1 dokumentów (szczegóły w polu „Błąd”)."_s.arg(statusFailures_));
    if (sent_ > 0)
        lines.append(u"Liczby w grupach nie zostały przeliczone: nowy kierunek użytkowania pojawi się po "
                     u"zatwierdzeniu zgłoszenia przez rejestr i ponownym pobraniu danych."_s);
    return lines;
}

void UseChangeCommand::step(const QString& text)
{
    session_.SetStatusText(StatusPanel::Step, text);
}

bool UseChangeCommand::testBranch() const
{
    return registry_.config().testBranch;
}
