#include "cli/CliBatch.h"

#include "cli/BatchSummary.h"
#include "cli/CliDownload.h"
#include "cli/CliErrors.h"
#include "cli/CliHost.h"
#include "cli/CliOptions.h"
#include "core/producers/ProducerList.h"
#include "core/session/HalvarnSession.h"
#include "framework/IniFile.h"
#include "registry/client/RegistryConfig.h"
#include "registry/client/TdmIRZ_PLUS.h"
#include "registry/sim/RegistrySimulator.h"

#include <QCommandLineParser>
#include <QDir>
#include <QRegularExpression>
#include <QTextStream>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace {
enum BatchExit { Completed = 0, StoppedEarly = 1, BadArguments = 2 };

struct BatchOptions {
    QString outDir;
    QString dataDir;
    QDate stateDate = QDate::currentDate();
    QDate referenceDate = QDate::currentDate();
    WelfareFlags flags;
    bool demo = false;
};

struct BatchContext {
    const BatchOptions& options;
    DataFolder folder;
    RegistryConfig config;
};

void AddOptions(QCommandLineParser& parser)
{
    parser.setApplicationDescription(u"Halvarn: pobieranie danych wszystkich producentów z listy po kolei"_s);
    parser.addHelpOption();
    parser.addPositionalArgument(u"batch"_s, u"pobierz dane każdego producenta z listy"_s);
    parser.addOptions({
        {u"out"_s, u"folder wyników: w nim podfolder każdego producenta z eksportami i wydrukami PDF"_s, u"DIR"_s},
        {u"state-date"_s, u"stan zwierząt na dzień (domyślnie dziś)"_s, u"YYYY-MM-DD"_s},
        {u"reference-date"_s, u"Halvarn na dzień (domyślnie dziś)"_s, u"YYYY-MM-DD"_s},
        {u"kinds"_s, u"rodzaje: mamki,opasy,mleczne (domyślnie wszystkie)"_s, u"LIST"_s},
        {u"data-dir"_s, u"folder danych programu, z listą kontrahentów"_s, u"DIR"_s},
        {u"demo"_s, u"użyj wbudowanego symulatora rejestru z producentami demonstracyjnymi"_s},
    });
}

bool ParseBatch(const QStringList& arguments, BatchOptions& options, QString& error)
{
    QCommandLineParser parser;
    AddOptions(parser);
    if (!parser.parse(arguments)) {
        error = parser.errorText();
        return false;
    }
    if (parser.isSet(u"help"_s) || parser.positionalArguments() != QStringList{u"batch"_s}) {
        error = parser.helpText();
        return false;
    }
    options.outDir = parser.value(u"out"_s);
    options.dataDir = parser.value(u"data-dir"_s);
    options.demo = parser.isSet(u"demo"_s);
    if (options.outDir.isEmpty()) {
        error = u"Podaj folder wyników --out"_s;
        return false;
    }
    const auto optionalDate = [&](const QString& option, QDate& date) {
        return !parser.isSet(option) || ParseDateOption(option, parser.value(option), date, error);
    };
    return optionalDate(u"state-date"_s, options.stateDate) &&
           optionalDate(u"reference-date"_s, options.referenceDate) &&
           (!parser.isSet(u"kinds"_s) || ParseKindsOption(parser.value(u"kinds"_s), options.flags, error));
}

// The producer number names the folder; entries that share a number add their
// ID. A number that is not all digits (a list written elsewhere) is no safe
// folder name, so the ID alone names that folder.
QString SubfolderName(const ProducerRecord& record, const std::vector<ProducerRecord>& records)
{
    static const QRegularExpression digits(u"^[0-9]+$"_s);
    if (!digits.match(record.producerNumber).hasMatch())
        return u"ID-%1"_s.arg(record.id);
    const auto sharing = std::count_if(records.begin(), records.end(), [&record](const ProducerRecord& other) {
        return other.producerNumber == record.producerNumber;
    });
    return sharing > 1 ? u"%1-%2"_s.arg(record.producerNumber).arg(record.id) : record.producerNumber;
}

QString StoppedReason(DownloadOutcome outcome, const CliHost& host, const HalvarnSession& session)
{
    if (!host.messages().empty())
        return host.messages().back().text;
    if (!session.errors().isEmpty())
        return session.errors().back();
    return outcome == DownloadOutcome::NotStarted ? u"pobieranie się nie rozpoczęło"_s : u"pobieranie przerwane"_s;
}

QString StateText(DownloadOutcome outcome, bool filesFailed, const CliHost& host, const HalvarnSession& session)
{
    if (!RanToItsEnd(outcome))
        return u"błąd: "_s + StoppedReason(outcome, host, session);
    if (filesFailed)
        return u"błąd: nie zapisano wszystkich eksportów i wydruków"_s;
    return outcome == DownloadOutcome::Completed ? u"pełne"_s : u"niepełne"_s;
}

void Count(HalvarnSession& session, BatchSummaryLine& line)
{
    WorkingTables& tables = session.tables();
    line.counted = true;
    line.herds = session.herdCount;
    line.animals = tables.mdRZ00().recordCount();
    line.incompleteHerds =
        static_cast<int>(std::count_if(tables.HerdSlots.begin() + 1, tables.HerdSlots.end(),
                                       [](const THerdSlot& slot) { return !slot.Incomplete.isEmpty(); }));
    line.overLimit = CountOverLimit(tables.mdGT00());
}

// The download of the command "download", with the producer's values from the list.
void Download(const BatchContext& context, const ProducerEntry& entry, const QString& folder, BatchSummaryLine& line)
{
    CliHost host(false);
    HalvarnSession session(context.folder, host);
    session.inputs.login = entry.login;
    session.inputs.password = entry.password;
    session.inputs.producerNumber = entry.producerNumber;
    session.inputs.producerName = entry.name;
    session.inputs.stateDate = context.options.stateDate;
    session.inputs.referenceDate = context.options.referenceDate;
    session.inputs.flags = context.options.flags;
    session.inputs.declaredLimits = entry.limits;
    TdmIRZ_PLUS registry(context.config, host);
    const DownloadOutcome outcome = DownloadCommand(session, registry).run();
    const bool filesFailed = ExportsFailed(outcome, {folder, folder, u"ALL"_s}, session, host);
    Count(session, line);
    line.exitCode = DownloadExitCode(outcome, filesFailed);
    line.state = StateText(outcome, filesFailed, host, session);
}

// Whatever goes wrong stays with this producer: an error nothing handled is
// reported as the download command reports it, and named in the summary.
BatchSummaryLine DownloadProducer(const BatchContext& context, const ProducerList& list, const ProducerRecord& record)
{
    BatchSummaryLine line;
    line.producerNumber = record.producerNumber;
    line.name = record.name;
    line.exitCode = StoppedEarly;
    const ProducerEntry entry = list.entry(record);
    if (entry.password.isEmpty()) {
        line.state = list.passwordsReadable() ? u"błąd: brak hasła na liście kontrahentów"_s
                                              : u"błąd: hasła z listy kontrahentów nie dają się odczytać"_s;
        return line;
    }
    const QString folder = QDir(context.options.outDir).filePath(SubfolderName(record, list.records()));
    try {
        Download(context, entry, folder, line);
    } catch (...) {
        const QString message =
            ReportUnhandled(std::current_exception(), context.options.dataDir, {entry.login, entry.password});
        line.counted = false;
        line.state = u"błąd: "_s + message;
        line.exitCode = StoppedEarly;
    }
    return line;
}

int Run(const BatchOptions& options)
{
    QTextStream err(stderr);
    const DataFolder folder(DataFolder::resolve(options.dataDir));
    if (!PrepareDataFolder(folder))
        return StoppedEarly;
    CliHost host(false);
    ProducerList list(folder, host);
    list.open();
    if (list.records().empty()) {
        err << u"Lista kontrahentów jest pusta (pozycje dodaje polecenie: producers add)"_s << Qt::endl;
        return StoppedEarly;
    }
    if (!QDir().mkpath(options.outDir)) {
        err << u"Nie można utworzyć folderu wyników: "_s << options.outDir << Qt::endl;
        return StoppedEarly;
    }
    RegistryConfig config = RegistryConfig::read(IniFile(folder.settingsFile()));
    std::unique_ptr<RegistrySimulator> simulator;
    if (options.demo) {
        simulator = StartDemoRegistry();
        if (!simulator) {
            err << u"Nie można uruchomić symulatora rejestru"_s << Qt::endl;
            return StoppedEarly;
        }
        config.ssoBase = config.apiBase = simulator->baseUrl();
    }
    const BatchContext context{options, folder, config};
    const std::vector<ProducerRecord>& records = list.records();
    std::vector<BatchSummaryLine> lines;
    int exitCode = Completed;
    for (std::size_t i = 0; i < records.size(); ++i) {
        err << u"Producent %1 z %2: %3 %4"_s.arg(i + 1)
                   .arg(records.size())
                   .arg(records[i].producerNumber, records[i].name)
            << Qt::endl;
        lines.push_back(DownloadProducer(context, list, records[i]));
        exitCode = WorseExitCode(exitCode, lines.back().exitCode);
    }
    QTextStream(stdout) << BatchSummary(lines);
    return exitCode;
}
} // namespace

int RunBatch(const QStringList& arguments)
{
    BatchOptions options;
    QString error;
    if (!ParseBatch(arguments, options, error)) {
        QTextStream(stderr) << error << Qt::endl;
        return BadArguments;
    }
    // An error raised for the user here is the list that cannot be read: its message says which file and why.
    return RunGuarded(options.dataDir, {}, StoppedEarly, [&options] { return Run(options); });
}
