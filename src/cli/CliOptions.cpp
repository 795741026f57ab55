#include "cli/CliOptions.h"

#include "cli/CliHost.h"
#include "registry/client/RegistryConfig.h"
#include "registry/sim/RegistrySimulator.h"
#include "registry/usechange/UseDirections.h"

#include <QCommandLineParser>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

QCommandLineOption Value(const char* name, const char* description, const char* valueName)
{
    return {QString::fromLatin1(name), QString::fromUtf8(description), QString::fromLatin1(valueName)};
}

namespace {

bool ParseCount(const QString& option, const QString& text, int highest, std::optional<int>& value, QString& error)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    if (!ok || number < 1 || number > highest) {
        error = u"Niepoprawna wartość --%1: %2 (dozwolone od 1 do %3)"_s.arg(option, text).arg(highest);
        return false;
    }
    value = number;
    return true;
}

bool CheckUseChange(const CliOptions& options, QString& error)
{
    if (options.useChange.isNull())
        return true;
    if (std::none_of(UseDirections.begin(), UseDirections.end(),
                     [&](const UseDirection& d) { return options.useChange == QLatin1String(d.code); })) {
        error = u"Nieznany kierunek użytkowania --use-change: %1 (OP, MI, MIOP, ML, MLOP)"_s.arg(options.useChange);
        return false;
    }
    if (options.mark.isEmpty())
        error = u"Podaj zwierzęta do zmiany w --mark"_s;
    return !options.mark.isEmpty();
}

bool CheckProducerNumber(const QString& number, QString& error)
{
    static const QRegularExpression nineDigits(u"^[0-9]{9}$"_s);
    if (nineDigits.match(number).hasMatch())
        return true;
    error = u"Numer producenta (--producer) musi mieć dokładnie 9 cyfr, bez PL: %1"_s.arg(number);
    return false;
}

// "--password -" takes the first line of standard input, so that the password
// shows neither in the process list nor in the shell's history; without the
// option the environment's HALVARN_PASSWORD is used.
bool ReadPassword(const QCommandLineParser& parser, QString& password, QString& error)
{
    if (!parser.isSet(u"password"_s)) {
        password = qEnvironmentVariable("HALVARN_PASSWORD");
        return true;
    }
    password = parser.value(u"password"_s);
    if (password != u"-")
        return true;
    password = ReadInputLine();
    if (password.isNull())
        error = u"Brak hasła na standardowym wejściu (--password -)"_s;
    return !password.isNull();
}

// The password is read last, so that a refused command line leaves standard input unread.
bool ReadCheckedValues(const QCommandLineParser& parser, CliOptions& options, QString& error)
{
    SessionInputs& inputs = options.inputs;
    inputs.stateDate = inputs.referenceDate = QDate::currentDate();
    const auto optionalDate = [&](const char* name, QDate& date) {
        const QString option = QLatin1String(name);
        return !parser.isSet(option) || ParseDateOption(option, parser.value(option), date, error);
    };
    const auto optionalCount = [&](const char* name, int highest, std::optional<int>& value) {
        const QString option = QLatin1String(name);
        return !parser.isSet(option) || ParseCount(option, parser.value(option), highest, value, error);
    };
    const auto isSet = [&](const char* name) { return parser.isSet(QLatin1String(name)); };
    return optionalDate("state-date", inputs.stateDate) && optionalDate("reference-date", inputs.referenceDate) &&
           (!isSet("kinds") || ParseKindsOption(parser.value(u"kinds"_s), inputs.flags, error)) &&
           optionalCount("parallel", MaxParallelRequestsLimit, options.parallel) &&
           optionalCount("timeout-seconds", TimeoutSecondsLimit, options.timeoutSeconds) &&
           (!isSet("producer") || CheckProducerNumber(inputs.producerNumber, error)) &&
           CheckUseChange(options, error) && ReadPassword(parser, inputs.password, error);
}
} // namespace

bool ParseDateOption(const QString& option, const QString& text, QDate& date, QString& error)
{
    date = QDate::fromString(text, u"yyyy-MM-dd");
    if (!date.isValid()) {
        error = u"Niepoprawna data --%1: %2 (oczekiwano RRRR-MM-DD)"_s.arg(option, text);
        return false;
    }
    // Day counts of the tables start at 30 December 1899; earlier days are typing errors.
    if (date < QDate(1900, 1, 1)) {
        error = u"Data --%1 nie może być wcześniejsza niż 1900-01-01: %2"_s.arg(option, text);
        return false;
    }
    return true;
}

bool ParseKindsOption(const QString& text, WelfareFlags& flags, QString& error)
{
    flags = {false, false, false};
    for (const QString& kind : text.split(u',', Qt::SkipEmptyParts)) {
        if (kind == u"mamki")
            flags.krowMamek = true;
        else if (kind == u"opasy")
            flags.opasow = true;
        else if (kind == u"mleczne")
            flags.krowMlecznych = true;
        else {
            error = u"Nieznany rodzaj: %1 (mamki, opasy, mleczne)"_s.arg(kind);
            return false;
        }
    }
    return true;
}

bool CliOptions::parse(const QStringList& arguments, QString& error)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Halvarn: pobieranie stad z rejestru IRZplus i grupy technologiczne "
                                     u"(polecenia: download, render, producers, batch, archive, recount)"_s);
    parser.addHelpOption();
    parser.addPositionalArgument(u"download"_s, u"pobierz dane producenta"_s);
    parser.addOptions({
        Value("login", "login do rejestru", "L"),
        Value("password",
              "hasło do rejestru; \"-\" czyta je ze standardowego wejścia "
              "(domyślnie zmienna środowiska HALVARN_PASSWORD)",
              "P"),
        Value("producer", "numer producenta, 9 cyfr (bez PL)", "N"),
        Value("name", "nazwa producenta", "TEXT"),
        Value("state-date", "stan zwierząt na dzień (domyślnie dziś)", "YYYY-MM-DD"),
        Value("reference-date", "Halvarn na dzień (domyślnie dziś)", "YYYY-MM-DD"),
        Value("kinds", "rodzaje: mamki,opasy,mleczne (domyślnie wszystkie)", "LIST"),
        Value("sso-base", "adres serwera logowania", "URL"),
        Value("api-base", "adres rejestru", "URL"),
        Value("parallel", "liczba równoczesnych zapytań o zwierzęta (1–64)", "K"),
        Value("timeout-seconds", "czas oczekiwania na odpowiedź w sekundach (1–3600)", "S"),
        Value("data-dir", "folder danych programu", "DIR"),
        Value("dump-json", "zapisz stan tabel do pliku JSON", "FILE"),
        Value("export-dir", "zapisz eksporty do folderu", "DIR"),
        Value("pdf-dir", "zapisz wydruki zwierząt i grup technologicznych jako PDF do folderu", "DIR"),
        Value("herd", "stado wydruków PDF: ALL, 000 albo kod stada (domyślnie ALL)", "HERD"),
        Value("mark", "zaznacz po pobraniu zwierzęta o tych numerach (rozdzielone przecinkami)", "PL…,PL…"),
        Value("use-change",
              "wyślij zmianę kierunku użytkowania zaznaczonych zwierząt: OP, MI, MIOP, ML, MLOP "
              "(pyta o potwierdzenie na standardowym wejściu: t/tak)",
              "CODE"),
        {u"resend-unconfirmed"_s,
         u"wyślij ponownie zgłoszenia zwierząt, których wcześniejsze zgłoszenie mogło dotrzeć do rejestru"_s},
        {u"demo"_s, u"użyj wbudowanego symulatora rejestru"_s},
        {u"yes"_s, u"odpowiadaj Tak na pytania, bez czytania standardowego wejścia"_s},
    });
    QCommandLineOption debugError(u"debug-error"_s, u"próbny błąd programu"_s);
    debugError.setFlags(QCommandLineOption::HiddenFromHelp);
    parser.addOption(debugError);
    if (!parser.parse(arguments)) {
        error = parser.errorText();
        return false;
    }
    if (parser.positionalArguments() != QStringList{u"download"_s}) {
        error = parser.helpText();
        return false;
    }
    inputs.login = parser.value(u"login"_s);
    inputs.producerNumber = parser.value(u"producer"_s);
    inputs.producerName = parser.value(u"name"_s);
    dataDir = parser.value(u"data-dir"_s);
    dumpJson = parser.value(u"dump-json"_s);
    exportDir = parser.value(u"export-dir"_s);
    pdfDir = parser.value(u"pdf-dir"_s);
    if (parser.isSet(u"herd"_s))
        herd = parser.value(u"herd"_s);
    mark = parser.value(u"mark"_s).split(u',', Qt::SkipEmptyParts);
    if (parser.isSet(u"use-change"_s))
        useChange = parser.value(u"use-change"_s);
    resendUnconfirmed = parser.isSet(u"resend-unconfirmed"_s);
    demo = parser.isSet(u"demo"_s);
    answerYes = parser.isSet(u"yes"_s);
    failOnPurpose = parser.isSet(debugError);
    if (parser.isSet(u"sso-base"_s))
        ssoBase = parser.value(u"sso-base"_s);
    if (parser.isSet(u"api-base"_s))
        apiBase = parser.value(u"api-base"_s);
    return ReadCheckedValues(parser, *this, error);
}

void CliOptions::applyTo(RegistryConfig& config) const
{
    if (ssoBase)
        config.ssoBase = *ssoBase;
    if (apiBase)
        config.apiBase = *apiBase;
    if (parallel)
        config.maxParallelRequests = *parallel;
    if (timeoutSeconds)
        config.getTimeoutMs = config.postTimeoutMs = *timeoutSeconds * 1000;
}

std::unique_ptr<RegistrySimulator> StartDemoRegistryFor(SessionInputs& inputs)
{
    const DemoOptions demo;
    auto simulator = StartDemoRegistry(demo);
    if (!simulator)
        return nullptr;
    if (inputs.login.isEmpty()) {
        inputs.login = demo.login;
        inputs.password = demo.password;
    }
    if (inputs.producerNumber.isEmpty())
        inputs.producerNumber = demo.producerNumber;
    return simulator;
}
