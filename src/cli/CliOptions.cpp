#include "cli/CliOptions.h"

#include "registry/client/RegistryConfig.h"
#include "registry/sim/RegistrySimulator.h"

#include <QCommandLineParser>

namespace {
QCommandLineOption Value(const char* name, const char* description, const char* valueName)
{
    return {QString::fromLatin1(name), QString::fromUtf8(description), QString::fromLatin1(valueName)};
}

bool ParseDate(const QString& text, QDate& date, QString& error)
{
    date = QDate::fromString(text, u"yyyy-MM-dd");
    if (!date.isValid())
        error = QStringLiteral("Niepoprawna data: %1 (oczekiwano RRRR-MM-DD)").arg(text);
    return date.isValid();
}

bool ParseKinds(const QString& text, WelfareFlags& flags, QString& error)
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
            error = QStringLiteral("Nieznany rodzaj: %1 (mamki, opasy, mleczne)").arg(kind);
            return false;
        }
    }
    return true;
}

bool ParsePositive(const QString& text, std::optional<int>& value, QString& error)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    if (!ok || number < 1) {
        error = QStringLiteral("Niepoprawna liczba: %1").arg(text);
        return false;
    }
    value = number;
    return true;
}
} // namespace

bool CliOptions::parse(const QStringList& arguments, QString& error)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromUtf8("Halvarn: pobieranie stad z rejestru IRZplus i grupy technologiczne"));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("download"), QString::fromUtf8("pobierz dane producenta"));
    parser.addOptions({
        Value("login", "login do rejestru", "L"),
        Value("password", "hasło do rejestru", "P"),
        Value("producer", "numer producenta (bez PL)", "N"),
        Value("name", "nazwa producenta", "TEXT"),
        Value("state-date", "stan zwierząt na dzień (domyślnie dziś)", "YYYY-MM-DD"),
        Value("reference-date", "Halvarn na dzień (domyślnie dziś)", "YYYY-MM-DD"),
        Value("kinds", "rodzaje: mamki,opasy,mleczne (domyślnie wszystkie)", "LIST"),
        Value("sso-base", "adres serwera logowania", "URL"),
        Value("api-base", "adres rejestru", "URL"),
        Value("parallel", "liczba równoczesnych zapytań o zwierzęta", "K"),
        Value("timeout-seconds", "czas oczekiwania na odpowiedź", "S"),
        Value("data-dir", "folder danych programu", "DIR"),
        Value("dump-json", "zapisz stan tabel do pliku JSON", "FILE"),
        Value("export-dir", "zapisz eksporty do folderu", "DIR"),
        {QStringLiteral("demo"), QString::fromUtf8("użyj wbudowanego symulatora rejestru")},
        {QStringLiteral("yes"), QString::fromUtf8("odpowiadaj Tak na pytania")},
    });
    if (!parser.parse(arguments)) {
        error = parser.errorText();
        return false;
    }
    if (parser.positionalArguments() != QStringList{QStringLiteral("download")}) {
        error = parser.helpText();
        return false;
    }
    inputs.login = parser.value(QStringLiteral("login"));
    inputs.password = parser.value(QStringLiteral("password"));
    inputs.producerNumber = parser.value(QStringLiteral("producer"));
    inputs.producerName = parser.value(QStringLiteral("name"));
    dataDir = parser.value(QStringLiteral("data-dir"));
    dumpJson = parser.value(QStringLiteral("dump-json"));
    exportDir = parser.value(QStringLiteral("export-dir"));
    demo = parser.isSet(QStringLiteral("demo"));
    answerYes = parser.isSet(QStringLiteral("yes"));
    if (parser.isSet(QStringLiteral("sso-base")))
        ssoBase = parser.value(QStringLiteral("sso-base"));
    if (parser.isSet(QStringLiteral("api-base")))
        apiBase = parser.value(QStringLiteral("api-base"));
    inputs.stateDate = inputs.referenceDate = QDate::currentDate();
    const auto optionalDate = [&](const char* name, QDate& date) {
        return !parser.isSet(QLatin1String(name)) || ParseDate(parser.value(QLatin1String(name)), date, error);
    };
    const auto optionalNumber = [&](const char* name, std::optional<int>& value) {
        return !parser.isSet(QLatin1String(name)) || ParsePositive(parser.value(QLatin1String(name)), value, error);
    };
    return optionalDate("state-date", inputs.stateDate) && optionalDate("reference-date", inputs.referenceDate) &&
           (!parser.isSet(QStringLiteral("kinds")) || ParseKinds(parser.value(QStringLiteral("kinds")), inputs.flags, error)) &&
           optionalNumber("parallel", parallel) && optionalNumber("timeout-seconds", timeoutSeconds);
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
