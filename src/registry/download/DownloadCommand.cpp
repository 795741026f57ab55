#include "registry/download/DownloadCommand.h"

#include "analysis/AgeInMonths.h"
#include "analysis/AgeLimits.h"
#include "analysis/WelfareAnalysis.h"
#include "core/archive/ArchiveCommands.h"
#include "core/session/CountingLines.h"
#include "core/session/HalvarnSession.h"
#include "framework/IniFile.h"
#include "registry/client/TdmIRZ_PLUS.h"
#include "registry/download/AnimalRowWriter.h"
#include "registry/records/Stado.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <optional>

using namespace Qt::StringLiterals;

namespace {
const char* const ActiveHerdState = "SDZA";

QString ErrorCaption()
{
    return u"Błąd..."_s;
}

// What the registry reported instead of data, in the words the user is shown:
// an answer with the error marker, or an object with a "komunikat".
std::optional<QString> RegistryFailure(const QString& answer)
{
    if (!answer.contains(ErrorMarker))
        return std::nullopt;
    return u"Serwer zgłosił błąd: "_s + answer.mid(answer.indexOf(ErrorMarker) + ErrorMarker.size());
}

std::optional<QString> RegistryFailure(const QJsonObject& root)
{
    if (!root.contains(u"komunikat"))
        return std::nullopt;
    return u"Serwer zwrócił komunikat: "_s + root.value(u"komunikat").toString();
}

// A registry answer as a JSON object; an answer that is not JSON ends the command.
QJsonObject ParseAnswer(const QString& answer)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(answer.toUtf8(), &error);
    if (!document.isObject())
        throw RegistryError(u"Odpowiedź serwera nie jest poprawnym obiektem JSON: "_s + answer.left(200));
    return document.object();
}

// The herd code is the holding number without the text up to its first "-".
QString HerdCode(const QString& holdingNumber)
{
    return holdingNumber.mid(holdingNumber.indexOf(u'-') + 1);
}

// The birth date of the first animal of the list that has each mother, by the mother's number.
QHash<QString, TDateTime> FirstCalfBirths(const OwningList<TZZIInfoClass>& animals)
{
    QHash<QString, TDateTime> births;
    births.reserve(static_cast<qsizetype>(animals.size()));
    for (const auto& animal : animals)
        if (!births.contains(animal->numerIdentyfikacyjnyMatki))
            births.insert(animal->numerIdentyfikacyjnyMatki, animal->dataUrodzenia);
    return births;
}

// "czyMatka" of a single-animal answer the download did not need on its reference
// date, kept for a recount on another one; none when the answer cannot tell.
std::optional<bool> MotherInAnswer(const QString& single)
{
    if (single.isEmpty())
        return std::nullopt;
    const QJsonDocument document = QJsonDocument::fromJson(single.toUtf8());
    if (!document.isObject() || RegistryFailure(document.object()))
        return std::nullopt;
    return TZZIInfoClass::ParseOne(document.object())->czyMatka;
}

int HerdSlot(const QString& code, const QString& holdingNumber)
{
    bool ok = false;
    const int slot = code.toInt(&ok);
    if (!ok)
        throw RegistryError(u"Numer stada \"%1\" działalności %2 nie jest liczbą"_s.arg(code, holdingNumber));
    return slot;
}
} // namespace

DownloadCommand::DownloadCommand(HalvarnSession& session, TdmIRZ_PLUS& registry)
    : session_(session), registry_(registry)
{}

DownloadOutcome DownloadCommand::run()
{
    session_.GatherCredentials();
    session_.Loading = true;
    const auto outcome = download();
    session_.Loading = false;
    return outcome;
}

DownloadOutcome DownloadCommand::download()
{
    if (session_.ProducerNumber.isEmpty()) {
        session_.host().showMessage(ErrorCaption(), u"Nie podanu mumeru producenta"_s, MessageIcon::Error);
        return DownloadOutcome::NotStarted;
    }
    if (session_.DataLoaded &&
        !session_.host().askYesNo(u"Pytanie"_s, u"Są wczytane dane. Będą one usunięte. Czy kontynuować?"_s))
        return DownloadOutcome::NotStarted;
    session_.ClearAllData();
    session_.BeginLongOperation();
    for (const QString& problem : registry_.config().problems)
        session_.appendError(problem);
    activeHerds_ = incompleteHerds_ = bornAfterReference_ = 0;
    slotHolders_.fill(QString());
    DownloadOutcome outcome = DownloadOutcome::Stopped;
    try {
        normaliseDates();
        session_.tables().WriteProducerHeader({session_.ProducerNumber, session_.inputs.stateDate, QDate::currentDate(),
                                               session_.inputs.referenceDate, session_.inputs.producerName});
        OwningList<TStadoClass> herds;
        if (readHerdList(herds)) {
            const AgeLimits limits = AgeLimits::read(IniFile(session_.dataFolder().settingsFile()));
            WelfareAnalysis analysis(session_.tables(), limits, session_.halvarnFlags);
            for (std::size_t i = 0; i < herds.size(); ++i)
                readHerd(*herds[i], static_cast<int>(i), analysis);
            session_.countedLimits = session_.inputs.declaredLimits;
            AppendCountingLines(session_, bornAfterReference_);
            outcome = incompleteHerds_ > 0 ? DownloadOutcome::Incomplete : DownloadOutcome::Completed;
            StoreDownload(session_);
        }
    } catch (const RequestCancelled&) {
    } catch (const std::exception& error) {
        session_.EndLongOperation();
        session_.host().showMessage(u"Błąd"_s, QString::fromUtf8(error.what()), MessageIcon::Error);
        return DownloadOutcome::Stopped;
    }
    session_.EndLongOperation();
    return outcome;
}

void DownloadCommand::normaliseDates()
{
    for (QDate* date : {&session_.inputs.stateDate, &session_.inputs.referenceDate})
        *date = RunDate(*date);
    stateDate_ = ToDateTime(session_.inputs.stateDate);
    referenceDate_ = ToDateTime(session_.inputs.referenceDate);
    session_.referenceDate = session_.inputs.referenceDate;
}

bool DownloadCommand::testBranch() const
{
    return registry_.config().testBranch;
}

// Shows the failure that ends a herd and gives it back as the herd's reason.
QString DownloadCommand::fail(const QString& text)
{
    session_.host().showMessage(ErrorCaption(), text, MessageIcon::Error);
    return text;
}

bool DownloadCommand::readHerdList(OwningList<TStadoClass>& herds)
{
    session_.SetStatusText(StatusPanel::Step, u"Autoryzacja"_s);
    session_.stepProgress(1);
    if (!registry_.Authorize(session_.Login, session_.Password))
        return false;
    session_.SetStatusText(StatusPanel::Step, u"Pobieranie listy stad"_s);
    session_.stepProgress(1);
    const QString answer = registry_.ListHoldings(session_.ProducerNumber, {}, {}, {}, testBranch());
    if (const auto failure = RegistryFailure(answer)) {
        fail(*failure);
        return false;
    }
    const QJsonObject root = ParseAnswer(answer);
    if (const auto failure = RegistryFailure(root)) {
        fail(*failure);
        return false;
    }
    session_.DataLoaded = true;
    session_.appendLoaded(u"dzialalnosc"_s);
    ParseList<TStadoClass>(root, u"dzialalnosc"_s, herds);
    for (const auto& herd : herds) {
        if (herd->stanDzialalnosci.kod == QLatin1String(ActiveHerdState))
            ++activeHerds_;
        else
            session_.appendError(u"Nie aktywne stado: "_s + herd->numerDzialalnosci);
    }
    session_.setProgress(1, session_.progress(1).position, activeHerds_ + 2);
    return true;
}

void DownloadCommand::readHerd(const TStadoClass& herd, int index, WelfareAnalysis& analysis)
{
    HerdRead read{herd.numerDzialalnosci, HerdCode(herd.numerDzialalnosci), 0};
    read.slot = HerdSlot(read.code, read.number);
    if (herd.stanDzialalnosci.kod != QLatin1String(ActiveHerdState))
        return;
    if (read.slot < 1 || read.slot >= HerdSlotCount)
        throw RegistryError(u"Stado %1 (%2) nie mieści się w 20 zakładkach stad"_s.arg(read.code, read.number));
    if (!claimSlot(read))
        return;
    try {
        const QString reason = readHerdAnimals(read, index, analysis);
        if (!reason.isEmpty())
            markIncomplete(read, reason);
    } catch (const std::exception& error) { // a stop by the user as well
        markIncomplete(read, QString::fromUtf8(error.what()));
        throw;
    }
}

// Two holdings whose numbers give the same herd code would be counted into one
// tab: the first keeps it, the second is refused.
bool DownloadCommand::claimSlot(const HerdRead& herd)
{
    QString& holder = slotHolders_[static_cast<std::size_t>(herd.slot)];
    if (holder.isEmpty()) {
        holder = herd.number;
        return true;
    }
    ++incompleteHerds_;
    session_.appendError(u"Stado %1 (działalność %2) pominięte: ten sam numer stada ma działalność %3"_s.arg(
        herd.code, herd.number, holder));
    return false;
}

// Empty when the herd was read whole (or has no animals); otherwise why it ended early.
QString DownloadCommand::readHerdAnimals(HerdRead& herd, int index, WelfareAnalysis& analysis)
{
    session_.SetStatusText(StatusPanel::Herd, u"Stado: "_s + herd.code);
    session_.SetStatusText(StatusPanel::Step, u"Pobieranie danych"_s);
    session_.stepProgress(1);
    const QString answer =
        registry_.ListAnimals(session_.ProducerNumber, herd.number, u"BYD"_s, {}, {}, {}, {}, stateDate_, testBranch());
    session_.appendLoaded(answer);
    if (const auto failure = RegistryFailure(answer))
        return fail(*failure);
    if (answer.isEmpty())
        return u"pusta odpowiedź serwera na listę zwierząt"_s;
    const QJsonObject root = ParseAnswer(answer);
    if (const auto failure = RegistryFailure(root))
        return fail(*failure);
    OwningList<TZZIInfoClass> animals;
    ParseList<TZZIInfoClass>(root, u"listaZwierzeta"_s, animals);
    if (animals.empty()) {
        session_.appendError(u"Brak zwierząt w stadzie: "_s + herd.number);
        return {};
    }
    herd.listed = static_cast<qsizetype>(animals.size());
    ++session_.herdCount;
    showSlot(herd).Index = index;
    const QString reason = readAnimals(animals, herd, analysis);
    session_.setProgress(2, 0, session_.progress(2).maximum);
    return reason;
}

QString DownloadCommand::readAnimals(const OwningList<TZZIInfoClass>& animals, HerdRead& herd,
                                     WelfareAnalysis& analysis)
{
    session_.SetStatusText(StatusPanel::Step, u"Rozczytywanie danych"_s);
    session_.setProgress(2, 0, static_cast<int>(animals.size()));
    QStringList numbers;
    for (const auto& animal : animals)
        numbers.append(animal->numerIdentyfikacyjnyZwierzecia);
    const QHash<QString, TDateTime> calfBirths = FirstCalfBirths(animals);
    auto queue = registry_.animalQueue(session_.ProducerNumber, numbers, testBranch());
    AnimalRowWriter writer(session_.tables());
    for (const auto& entry : animals) {
        const TZZIInfoClass& animal = *entry;
        const QString& number = animal.numerIdentyfikacyjnyZwierzecia;
        if (session_.host().cancelRequested())
            throw RequestCancelled();
        session_.SetStatusText(StatusPanel::Step, u"Pobier. dod. inform.: "_s + number);
        const QString single = queue.next();
        if (const auto failure = RegistryFailure(single))
            return fail(*failure);
        const int age = AgeInMonths(animal.dataUrodzenia, referenceDate_);
        AnimalAnswer answer{
            herd.slot,    animal.plec.kod, animal.typUzytkowy.kod, animal.kierunekUzytkownia.kod, animal.czyMatka,
            std::nullopt, std::nullopt};
        if (animal.plec.kod == QLatin1String("XX") && age > 14 && !single.isEmpty()) {
            const QJsonObject root = ParseAnswer(single);
            if (const auto failure = RegistryFailure(root))
                return fail(*failure);
            answer.answerMother = TZZIInfoClass::ParseOne(root)->czyMatka;
        } else {
            answer.answerMother = MotherInAnswer(single);
        }
        const auto calf = calfBirths.constFind(number);
        if (calf != calfBirths.cend())
            answer.firstCalfBirth = ToDate(*calf);
        if (animal.dataUrodzenia > referenceDate_)
            ++bornAfterReference_;
        session_.stepProgress(2);
        session_.SetStatusText(StatusPanel::Step, u"Rozczytywanie danych: "_s + number);
        const bool czyMatka = CountedMother(answer, age);
        writer.write(animal, czyMatka, age, herd.code, herd.slot);
        AnimalFacts facts{answer.sexCode, answer.useType, answer.useDirection, age, true, [this, &calf, &calfBirths] {
                              return calf == calfBirths.cend() ? 0 : AgeInMonths(*calf, referenceDate_);
                          }};
        analysis.analyse(facts, herd.slot);
        session_.answers.push_back(std::move(answer));
        ++herd.read;
    }
    return {};
}

// The herd's line names it, says how much of its list was read and why it
// ended; its tab carries the same line, so a partial count is never taken for
// a whole one.
void DownloadCommand::markIncomplete(const HerdRead& herd, const QString& reason)
{
    ++incompleteHerds_;
    const QString extent = herd.listed < 0 ? u"nie odczytano listy zwierząt"_s
                                           : u"odczytano %1 z %2 zwierząt"_s.arg(herd.read).arg(herd.listed);
    const QString line =
        u"Stado %1 (działalność %2) niepełne: %3. Przyczyna: %4"_s.arg(herd.code, herd.number, extent, reason);
    showSlot(herd).Incomplete = line;
    session_.appendError(line);
}

// The herd's tab is shown with its code, and "Ogółem" with it.
THerdSlot& DownloadCommand::showSlot(const HerdRead& herd)
{
    auto& slots = session_.tables().HerdSlots;
    THerdSlot& slot = slots[static_cast<std::size_t>(herd.slot)];
    slot.Code = herd.code;
    slot.Visible = true;
    slots[0].Visible = true;
    return slot;
}
