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
        Value("port", "port na 127.0.0.1 (domyślnie 8080)", "N"),
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

    SimDataset data;
    if (parser.isSet(QStringLiteral("data"))) {
        if (!LoadDataset(parser.value(QStringLiteral("data")), data)) {
            out << QString::fromUtf8("Nie można odczytać danych: ") << parser.value(QStringLiteral("data")) << Qt::endl;
            return 2;
        }
    } else {
        DemoOptions demo;
        if (parser.isSet(QStringLiteral("seed")))
            demo.seed = parser.value(QStringLiteral("seed")).toULongLong();
        if (parser.isSet(QStringLiteral("reference-date")))
            demo.referenceDate = QDate::fromString(parser.value(QStringLiteral("reference-date")), u"yyyy-MM-dd");
        if (parser.isSet(QStringLiteral("herds")) || parser.isSet(QStringLiteral("animals")))
            demo.herdSizes.assign(static_cast<std::size_t>(parser.value(QStringLiteral("herds")).toInt() > 0
                                                               ? parser.value(QStringLiteral("herds")).toInt()
                                                               : 3),
                                  parser.value(QStringLiteral("animals")).toInt() > 0
                                      ? parser.value(QStringLiteral("animals")).toInt()
                                      : 100);
        data = GenerateDemoDataset(demo);
    }
    if (parser.isSet(QStringLiteral("save-data"))) {
        QFile file(parser.value(QStringLiteral("save-data")));
        if (!file.open(QIODevice::WriteOnly))
            return 1;
        file.write(QJsonDocument(data.toJson()).toJson());
        return 0;
    }
    SimOptions options;
    options.latencyMs = parser.value(QStringLiteral("latency-ms")).toInt();
    options.maxConcurrent = parser.value(QStringLiteral("max-concurrent")).toInt();
    options.faults = FaultsFrom(parser);
    RegistrySimulator simulator(std::move(data), options);
    const quint16 port = parser.isSet(QStringLiteral("port")) ? parser.value(QStringLiteral("port")).toUShort() : 8080;
    if (!simulator.start(port)) {
        out << QString::fromUtf8("Nie można nasłuchiwać na porcie ") << port << Qt::endl;
        return 1;
    }
    out << "Rejestr (symulator): " << simulator.baseUrl() << Qt::endl;
    std::signal(SIGINT, Quit);
    std::signal(SIGTERM, Quit);
    return app.exec();
}
