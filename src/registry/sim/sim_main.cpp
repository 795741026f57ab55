// halvarn-registry-sim: the registry simulator as a program of its own.
#include "registry/sim/RegistrySimulator.h"
#include "registry/sim/SimCommandLine.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QTextStream>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {
QCommandLineOption Value(const char* name, const char* description, const char* valueName = "VALUE")
{
    return {QString::fromLatin1(name), QString::fromUtf8(description), QString::fromLatin1(valueName)};
}

bool LoadDataset(const QString& path, SimDataset& data)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    data = SimDataset::fromJson(QJsonDocument::fromJson(file.readAll()).object());
    return !data.producers.empty();
}

const quint16 DefaultPort = 8080;

// 0 asks the system for any free port; the address taken is printed at start.
bool ReadPort(const QCommandLineParser& parser, quint16& port, QString& error)
{
    if (!parser.isSet(u"port"_s))
        return true;
    const QString text = parser.value(u"port"_s);
    bool ok = false;
    const uint number = text.toUInt(&ok);
    if (!ok || number > 65535) {
        error = u"Niepoprawny port: %1 (od 1 do 65535, albo 0 – dowolny wolny port)"_s.arg(text);
        return false;
    }
    port = static_cast<quint16>(number);
    return true;
}

bool ReadDemoOptions(const QCommandLineParser& parser, DemoOptions& demo, QString& error)
{
    const auto number = [&](const char* name) { return parser.value(QLatin1String(name)).toInt(); };
    if (parser.isSet(u"seed"_s))
        demo.seed = parser.value(u"seed"_s).toULongLong();
    if (parser.isSet(u"herds"_s) || parser.isSet(u"animals"_s))
        demo.herdSizes.assign(static_cast<std::size_t>(number("herds") > 0 ? number("herds") : 3),
                              number("animals") > 0 ? number("animals") : 100);
    if (!parser.isSet(u"reference-date"_s))
        return true;
    const QString text = parser.value(u"reference-date"_s);
    demo.referenceDate = QDate::fromString(text, u"yyyy-MM-dd");
    if (!demo.referenceDate.isValid())
        error = u"Niepoprawna data --reference-date: %1 (oczekiwano RRRR-MM-DD)"_s.arg(text);
    return demo.referenceDate.isValid();
}

bool ReadApproveAfter(const QCommandLineParser& parser, SimOptions& options, QString& error)
{
    if (!parser.isSet(u"approve-after-ms"_s))
        return true;
    const QString text = parser.value(u"approve-after-ms"_s);
    bool ok = false;
    options.approveAfterMs = text.toInt(&ok);
    if (!ok || options.approveAfterMs < 0)
        error = u"Niepoprawny czas --approve-after-ms: %1 (liczba milisekund, 0 lub więcej)"_s.arg(text);
    return ok && options.approveAfterMs >= 0;
}

void Quit(int)
{
    QCoreApplication::quit();
}
} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Symulator rejestru IRZplus dla programu Halvarn"_s);
    parser.addHelpOption();
    parser.addOptions({
        Value("port", "port na 127.0.0.1 (domyślnie 8080; 0 – dowolny wolny port)", "N"),
        Value("seed", "ziarno danych demonstracyjnych", "S"),
        Value("herds", "liczba aktywnych stad", "H"),
        Value("animals", "liczba zwierząt w stadzie", "A"),
        Value("reference-date", "dzień, do którego liczony jest wiek zwierząt", "YYYY-MM-DD"),
        Value("data", "dane z pliku JSON", "FILE"),
        Value("save-data", "zapisz wygenerowane dane i zakończ", "FILE"),
        Value("latency-ms", "opóźnienie każdej odpowiedzi", "MS"),
        Value("max-concurrent", "najwięcej obsługiwanych naraz zapytań", "C"),
        Value("approve-after-ms", "czas weryfikacji zgłoszenia zmiany kierunku użytkowania (domyślnie 3000)", "MS"),
    });
    AddFaultOptions(parser);
    parser.process(app);
    QTextStream out(stdout);
    QTextStream err(stderr);

    quint16 port = DefaultPort;
    DemoOptions demo;
    QString error;
    if (!ReadPort(parser, port, error) || !ReadDemoOptions(parser, demo, error)) {
        err << error << Qt::endl;
        return 2;
    }
    SimOptions options;
    if (!ReadApproveAfter(parser, options, error)) {
        err << error << Qt::endl;
        return 2;
    }
    SimDataset data;
    if (parser.isSet(u"data"_s)) {
        if (!LoadDataset(parser.value(u"data"_s), data)) {
            err << u"Nie można odczytać danych: "_s << parser.value(u"data"_s) << Qt::endl;
            return 2;
        }
    } else {
        data = GenerateDemoDataset(demo);
    }
    if (parser.isSet(u"save-data"_s)) {
        QFile file(parser.value(u"save-data"_s));
        if (!file.open(QIODevice::WriteOnly)) {
            err << u"Nie można zapisać danych: "_s << file.fileName() << Qt::endl;
            return 1;
        }
        file.write(QJsonDocument(data.toJson()).toJson());
        return 0;
    }
    options.latencyMs = parser.value(u"latency-ms"_s).toInt();
    options.maxConcurrent = parser.value(u"max-concurrent"_s).toInt();
    options.faults = FaultsFrom(parser);
    RegistrySimulator simulator(std::move(data), options);
    if (!simulator.start(port)) {
        err << u"Nie można nasłuchiwać na porcie "_s << port << Qt::endl;
        return 1;
    }
    out << "Rejestr (symulator): " << simulator.baseUrl() << Qt::endl;
    std::signal(SIGINT, Quit);
    std::signal(SIGTERM, Quit);
    return app.exec();
}
