// halvarn-registry-sim: the registry simulator as a program of its own.
#include "registry/sim/RegistrySimulator.h"
#include "registry/sim/SimCommandLine.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QTextStream>

#include <csignal>

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
    if (!parser.isSet(QStringLiteral("port")))
        return true;
    const QString text = parser.value(QStringLiteral("port"));
    bool ok = false;
    const uint number = text.toUInt(&ok);
    if (!ok || number > 65535) {
        error = QString::fromUtf8("Niepoprawny port: %1 (od 1 do 65535, albo 0 – dowolny wolny port)").arg(text);
        return false;
    }
    port = static_cast<quint16>(number);
    return true;
}

bool ReadDemoOptions(const QCommandLineParser& parser, DemoOptions& demo, QString& error)
{
    const auto number = [&](const char* name) { return parser.value(QLatin1String(name)).toInt(); };
    if (parser.isSet(QStringLiteral("seed")))
        demo.seed = parser.value(QStringLiteral("seed")).toULongLong();
    if (parser.isSet(QStringLiteral("herds")) || parser.isSet(QStringLiteral("animals")))
        demo.herdSizes.assign(static_cast<std::size_t>(number("herds") > 0 ? number("herds") : 3),
                              number("animals") > 0 ? number("animals") : 100);
    if (!parser.isSet(QStringLiteral("reference-date")))
        return true;
    const QString text = parser.value(QStringLiteral("reference-date"));
    demo.referenceDate = QDate::fromString(text, u"yyyy-MM-dd");
    if (!demo.referenceDate.isValid())
        error = QStringLiteral("Niepoprawna data --reference-date: %1 (oczekiwano RRRR-MM-DD)").arg(text);
    return demo.referenceDate.isValid();
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
    parser.setApplicationDescription(QString::fromUtf8("Symulator rejestru IRZplus dla programu Halvarn"));
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
    SimDataset data;
    if (parser.isSet(QStringLiteral("data"))) {
        if (!LoadDataset(parser.value(QStringLiteral("data")), data)) {
            err << QString::fromUtf8("Nie można odczytać danych: ") << parser.value(QStringLiteral("data")) << Qt::endl;
            return 2;
        }
    } else {
        data = GenerateDemoDataset(demo);
    }
    if (parser.isSet(QStringLiteral("save-data"))) {
        QFile file(parser.value(QStringLiteral("save-data")));
        if (!file.open(QIODevice::WriteOnly)) {
            err << QString::fromUtf8("Nie można zapisać danych: ") << file.fileName() << Qt::endl;
            return 1;
        }
        file.write(QJsonDocument(data.toJson()).toJson());
        return 0;
    }
    SimOptions options;
    options.latencyMs = parser.value(QStringLiteral("latency-ms")).toInt();
    options.maxConcurrent = parser.value(QStringLiteral("max-concurrent")).toInt();
    options.faults = FaultsFrom(parser);
    RegistrySimulator simulator(std::move(data), options);
    if (!simulator.start(port)) {
        err << QString::fromUtf8("Nie można nasłuchiwać na porcie ") << port << Qt::endl;
        return 1;
    }
    out << "Rejestr (symulator): " << simulator.baseUrl() << Qt::endl;
    std::signal(SIGINT, Quit);
    std::signal(SIGTERM, Quit);
    return app.exec();
}
