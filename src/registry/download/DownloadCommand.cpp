#include "registry/download/DownloadCommand.h"

#include "analysis/AgeInMonths.h"
#include "analysis/AgeLimits.h"
#include "analysis/WelfareAnalysis.h"
#include "app/session/HalvarnSession.h"
#include "framework/IniFile.h"
#include "registry/client/TdmIRZ_PLUS.h"
#include "registry/download/AnimalRowWriter.h"
#include "registry/records/Stado.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {
const char* const ActiveHerdState = "SDZA";

QString Text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

QString ErrorCaption()
{
    return Text("Błąd...");
}

struct Cancelled {};

// A registry answer as a JSON object; an answer that is not JSON ends the command.
QJsonObject ParseAnswer(const QString& answer)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(answer.toUtf8(), &error);
    if (!document.isObject())
        throw RegistryError(Text("Odpowiedź serwera nie jest poprawnym obiektem JSON: ") + answer.left(200));
    return document.object();
}

// The herd code is the holding number without the text up to its first "-".
QString HerdCode(const QString& holdingNumber)
{
    return holdingNumber.mid(holdingNumber.indexOf(u'-') + 1);
}

int HerdSlot(const QString& code, const QString& holdingNumber)
{
    bool ok = false;
    const int slot = code.toInt(&ok);
    if (!ok)
        throw RegistryError(Text("Numer stada \"%1\" działalności %2 nie jest liczbą").arg(code, holdingNumber));
    return slot;
}
} // namespace

int FindAgeInList(const OwningList<TZZIInfoClass>& list, const QString& number, TDateTime referenceDate)
{
    for (const auto& animal : list)
        if (animal->numerIdentyfikacyjnyZwierzecia == number)
            return AgeInMonths(animal->dataUrodzenia, referenceDate);
    return 0;
}

DownloadCommand::DownloadCommand(HalvarnSession& session, TdmIRZ_PLUS& registry)
    : session_(session), registry_(registry)
{
}

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
        session_.host().showMessage(ErrorCaption(), Text("Nie podanu mumeru producenta"), MessageIcon::Error);
        return DownloadOutcome::NotStarted;
    }
    if (session_.DataLoaded &&
        !session_.host().askYesNo(Text("Pytanie"), Text("Są wczytane dane. Będą one usunięte. Czy kontynuować?")))
        return DownloadOutcome::NotStarted;
    session_.ClearAllData();
    session_.BeginLongOperation();
    activeHerds_ = herdsRead_ = 0;
    DownloadOutcome outcome = DownloadOutcome::Stopped;
    try {
        normaliseDates();
        writeProducerHeader();
        OwningList<TStadoClass> herds;
        if (readHerdList(herds)) {
            const AgeLimits limits = AgeLimits::read(IniFile(session_.dataFolder().settingsFile()));
            WelfareAnalysis analysis(session_.tables(), limits, session_.halvarnFlags);
            for (std::size_t i = 0; i < herds.size(); ++i)
                readHerd(*herds[i], static_cast<int>(i), analysis);
            outcome = DownloadOutcome::Completed;
        }
    } catch (const Cancelled&) {
    } catch (const std::exception& error) {
        session_.EndLongOperation();
        session_.host().showMessage(Text("Błąd"), QString::fromUtf8(error.what()), MessageIcon::Error);
        return DownloadOutcome::Stopped;
    }
    session_.EndLongOperation();
    return outcome;
}

// An empty date (none, or day 0) and a date after today both become today.
void DownloadCommand::normaliseDates()
{
    const QDate today = QDate::currentDate();
    for (QDate* date : {&session_.inputs.stateDate, &session_.inputs.referenceDate})
        if (!date->isValid() || *date == DateEpoch() || *date > today)
            *date = today;
    stateDate_ = ToDateTime(session_.inputs.stateDate);
    referenceDate_ = ToDateTime(session_.inputs.referenceDate);
    session_.referenceDate = session_.inputs.referenceDate;
}

void DownloadCommand::writeProducerHeader()
{
    WorkingTables& tables = session_.tables();
    Table& producer = tables.mdProducent();
    tables.ClearTable(producer);
    producer.setReadOnly(false);
    producer.append();
    producer.setValue(u"PRODUCENT", session_.ProducerNumber);
    producer.setValue(u"DATA1", session_.inputs.stateDate);
    producer.setValue(u"DATA2", QDate::currentDate());
    producer.setValue(u"DATA3", session_.inputs.referenceDate);
    producer.setValue(u"NAZWA", session_.inputs.producerName);
    producer.post();
    tables.restoreReadOnly(producer);
}

void DownloadCommand::fail(const QString& text)
{
    session_.host().showMessage(ErrorCaption(), text, MessageIcon::Error);
}

bool DownloadCommand::readHerdList(OwningList<TStadoClass>& herds)
{
    session_.SetStatusText(StatusPanel::Step, QStringLiteral("Autoryzacja"));
    session_.stepProgress(1);
    if (!registry_.Authorize(session_.Login, session_.Password))
        return false;
    session_.SetStatusText(StatusPanel::Step, QStringLiteral("Pobieranie listy stad"));
    session_.stepProgress(1);
    const QString answer = registry_.ListHoldings(session_.ProducerNumber, {}, {}, {}, false);
    if (answer.contains(ErrorMarker)) {
        fail(Text("Serwer zgłosił błąd: ") + answer.mid(answer.indexOf(ErrorMarker) + ErrorMarker.size()));
        return false;
    }
    const QJsonObject root = ParseAnswer(answer);
    if (root.contains(u"komunikat")) {
        fail(Text("Serwer zwrócił komunikat: ") + root.value(u"komunikat").toString());
        return false;
    }
    session_.DataLoaded = true;
    session_.appendLoaded(QStringLiteral("dzialalnosc"));
    ParseList<TStadoClass>(root, QStringLiteral("dzialalnosc"), herds);
    for (const auto& herd : herds) {
        if (herd->stanDzialalnosci.kod == QLatin1String(ActiveHerdState))
            ++activeHerds_;
        else
            session_.appendError(Text("Nie aktywne stado: ") + herd->numerDzialalnosci);
    }
    session_.setProgress(1, session_.progress(1).position, activeHerds_ + 2);
    return true;
}

void DownloadCommand::readHerd(const TStadoClass& herd, int index, WelfareAnalysis& analysis)
{
    const QString& number = herd.numerDzialalnosci;
    const QString code = HerdCode(number);
    const int slot = HerdSlot(code, number);
    if (herd.stanDzialalnosci.kod != QLatin1String(ActiveHerdState))
        return;
    if (slot < 1 || slot >= HerdSlotCount)
        throw RegistryError(Text("Stado %1 (%2) nie mieści się w 20 zakładkach stad").arg(code, number));
    session_.SetStatusText(StatusPanel::Herd, QStringLiteral("Stado: ") + code);
    session_.SetStatusText(StatusPanel::Step, QStringLiteral("Pobieranie danych"));
    session_.stepProgress(1);
    const QString answer = registry_.ListAnimals(session_.ProducerNumber, number, QStringLiteral("BYD"), {}, {}, {},
                                                 {}, stateDate_, false);
    session_.appendLoaded(answer);
    if (answer.contains(ErrorMarker)) {
        fail(Text("Serwer zgłosił błąd: ") + answer.mid(answer.indexOf(ErrorMarker) + ErrorMarker.size()));
        return;
    }
    if (answer.isEmpty())
        return;
    const QJsonObject root = ParseAnswer(answer);
    if (root.contains(u"komunikat")) {
        fail(Text("Serwer zwrócił komunikat: ") + root.value(u"komunikat").toString());
        return;
    }
    OwningList<TZZIInfoClass> animals;
    ParseList<TZZIInfoClass>(root, QStringLiteral("listaZwierzeta"), animals);
    if (animals.empty()) {
        session_.appendError(Text("Brak zwierząt w stadzie: ") + number);
        return;
    }
    ++herdsRead_;
    ++session_.herdCount;
    THerdSlot& target = session_.tables().HerdSlots[static_cast<std::size_t>(slot)];
    target.Code = code;
    target.Index = index;
    target.Visible = true;
    session_.tables().HerdSlots[0].Visible = true;
    readAnimals(animals, code, slot, analysis);
    session_.setProgress(2, 0, session_.progress(2).maximum);
}

bool DownloadCommand::readAnimals(const OwningList<TZZIInfoClass>& animals, const QString& code, int slot,
                                  WelfareAnalysis& analysis)
{
    session_.SetStatusText(StatusPanel::Step, QStringLiteral("Rozczytywanie danych"));
    session_.setProgress(2, 0, static_cast<int>(animals.size()));
    QStringList numbers;
    for (const auto& animal : animals)
        numbers.append(animal->numerIdentyfikacyjnyZwierzecia);
    auto queue = registry_.animalQueue(session_.ProducerNumber, numbers, false);
    AnimalRowWriter writer(session_.tables());
    for (std::size_t k = 0; k < animals.size(); ++k) {
        const TZZIInfoClass& animal = *animals[k];
        const QString& number = animal.numerIdentyfikacyjnyZwierzecia;
        if (session_.host().cancelRequested()) {
            session_.appendError(Text("Pobieranie przerwane przez użytkownika: stado %1, zapisano %2 z %3 zwierząt")
                                     .arg(code).arg(k).arg(animals.size()));
            throw Cancelled{};
        }
        session_.SetStatusText(StatusPanel::Step, Text("Pobier. dod. inform.: ") + number);
        const QString single = queue.next();
        if (single.contains(ErrorMarker)) {
            fail(Text("Serwer zgłosił błąd: ") + single.mid(single.indexOf(ErrorMarker) + ErrorMarker.size()));
            return false;
        }
        const int age = AgeInMonths(animal.dataUrodzenia, referenceDate_);
        bool czyMatka = animal.czyMatka;
        if (animal.plec.kod == QLatin1String("XX") && age > 14 && !single.isEmpty()) {
            const QJsonObject root = ParseAnswer(single);
            if (root.contains(u"komunikat")) {
                fail(Text("Serwer zwrócił komunikat: ") + root.value(u"komunikat").toString());
                return false;
            }
            czyMatka = TZZIInfoClass::ParseOne(root)->czyMatka;
        }
        session_.stepProgress(2);
        session_.SetStatusText(StatusPanel::Step, Text("Rozczytywanie danych: ") + number);
        writer.write(animal, czyMatka, age, code, slot);
        AnimalFacts facts{animal.plec.kod, animal.typUzytkowy.kod, animal.kierunekUzytkownia.kod, age, true,
                          [this, &animals, &number] { return calfAge(animals, number); }};
        analysis.analyse(facts, slot);
    }
    return true;
}

int DownloadCommand::calfAge(const OwningList<TZZIInfoClass>& animals, const QString& cowNumber) const
{
    for (const auto& animal : animals)
        if (animal->numerIdentyfikacyjnyMatki == cowNumber)
            return AgeInMonths(animal->dataUrodzenia, referenceDate_);
    return 0;
}
