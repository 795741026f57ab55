#include "registry/sim/SimCommandLine.h"

#include <QCommandLineParser>

using namespace Qt::StringLiterals;

namespace {
QCommandLineOption Value(const char* name, const char* description, const char* valueName)
{
    return {QString::fromLatin1(name), QString::fromUtf8(description), QString::fromLatin1(valueName)};
}

QCommandLineOption Flag(const char* name, const char* description)
{
    return {QString::fromLatin1(name), QString::fromUtf8(description)};
}

QSet<QString> Values(const QCommandLineParser& parser, const char* name)
{
    const QStringList values = parser.values(QLatin1String(name));
    return {values.begin(), values.end()};
}
} // namespace

void AddFaultOptions(QCommandLineParser& parser)
{
    parser.addOptions({
        Value("fail-animal", "błąd HTTP 500 dla zwierzęcia", "TAG"),
        Value("fail-herd", "błąd HTTP 500 dla listy zwierząt stada", "H"),
        Flag("fail-holdings", "błąd HTTP 500 dla listy stad"),
        Value("komunikat-animal", "komunikat zamiast danych zwierzęcia", "TAG"),
        Value("komunikat-herd", "komunikat zamiast listy zwierząt stada", "H"),
        Flag("komunikat-holdings", "komunikat zamiast listy stad"),
        Value("not-json-animal", "odpowiedź spoza JSON dla zwierzęcia", "TAG"),
        Value("not-json-herd", "odpowiedź spoza JSON dla stada", "H"),
        Flag("not-json-holdings", "odpowiedź spoza JSON dla listy stad"),
        Value("slow-animal", "powolna odpowiedź dla zwierzęcia", "TAG"),
        Value("slow-herd", "powolna odpowiedź dla listy zwierząt stada", "H"),
        Value("slow-ms", "czas powolnej odpowiedzi", "MS"),
        Value("fail-use-change", "błąd HTTP 500 dla zgłoszenia zmiany kierunku użytkowania zwierzęcia", "TAG"),
        Value("komunikat-use-change", "komunikat zamiast przyjęcia zgłoszenia zwierzęcia", "TAG"),
        Value("no-number-use-change", "zgłoszenie zwierzęcia przyjęte bez numeru dokumentu", "TAG"),
        Value("slow-use-change", "powolna odpowiedź na zgłoszenie zwierzęcia", "TAG"),
        Value("close-after-use-change", "zgłoszenie zwierzęcia przyjęte, połączenie zamknięte bez odpowiedzi", "TAG"),
        Value("reset-after-use-change", "zgłoszenie zwierzęcia przyjęte, połączenie zerwane (RST) bez odpowiedzi",
              "TAG"),
        Value("silence-after-use-change", "zgłoszenie zwierzęcia przyjęte, odpowiedź nigdy nie przychodzi", "TAG"),
        Value("fail-document", "błąd HTTP 500 dla listy dokumentów ze zgłoszeniem zwierzęcia", "TAG"),
        Value("komunikat-document", "komunikat zamiast listy dokumentów ze zgłoszeniem zwierzęcia", "TAG"),
        Flag("refuse-login", "odmawiaj każdego logowania"),
    });
}

SimFaults FaultsFrom(const QCommandLineParser& parser)
{
    SimFaults faults;
    faults.httpErrorAnimals = Values(parser, "fail-animal");
    faults.httpErrorHerds = Values(parser, "fail-herd");
    faults.httpErrorHoldings = parser.isSet(u"fail-holdings"_s);
    faults.komunikatAnimals = Values(parser, "komunikat-animal");
    faults.komunikatHerds = Values(parser, "komunikat-herd");
    faults.komunikatHoldings = parser.isSet(u"komunikat-holdings"_s);
    faults.notJsonAnimals = Values(parser, "not-json-animal");
    faults.notJsonHerds = Values(parser, "not-json-herd");
    faults.notJsonHoldings = parser.isSet(u"not-json-holdings"_s);
    faults.slowAnimals = Values(parser, "slow-animal");
    faults.slowHerds = Values(parser, "slow-herd");
    faults.slowMs = parser.value(u"slow-ms"_s).toInt();
    faults.httpErrorUseChange = Values(parser, "fail-use-change");
    faults.komunikatUseChange = Values(parser, "komunikat-use-change");
    faults.noNumberUseChange = Values(parser, "no-number-use-change");
    faults.slowUseChange = Values(parser, "slow-use-change");
    faults.closeAfterUseChange = Values(parser, "close-after-use-change");
    faults.resetAfterUseChange = Values(parser, "reset-after-use-change");
    faults.silenceAfterUseChange = Values(parser, "silence-after-use-change");
    faults.httpErrorDocuments = Values(parser, "fail-document");
    faults.komunikatDocuments = Values(parser, "komunikat-document");
    faults.refuseLogin = parser.isSet(u"refuse-login"_s);
    return faults;
}
