#include "cli/CliHost.h"
#include "cli/CliOptions.h"
#include "cli/CliPrints.h"
#include "cli/CliUseChange.h"
#include "cli/GroupReport.h"
#include "core/session/HalvarnSession.h"
#include "core/session/SessionDump.h"
#include "export/ExportCommands.h"
#include "framework/IniFile.h"
#include "framework/SafeFile.h"
#include "framework/errors/CrashRecord.h"
#include "framework/errors/ErrorControl.h"
#include "registry/client/TdmIRZ_PLUS.h"
#include "registry/download/DownloadCommand.h"
#include "registry/sim/RegistrySimulator.h"
#include "reports/ShippedTemplates.h"

#include <QDir>
#include <QGuiApplication>
#include <QTextStream>

#include <memory>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {
enum ExitCode { Completed = 0, StoppedEarly = 1, BadArguments = 2, Incomplete = 3, UnhandledError = 4 };

// The terminal as the host of the error control: the report goes to stderr.
class CliErrorHost : public ErrorControlHost {
public:
    void showMessage(const QString& text) override { QTextStream(stderr) << text << Qt::endl; }
    bool askToClose(const QString&) override { return true; }
    void closeProgram() override {}
    bool saveScreenshot(const QString&) override { return false; }
    void showReport(const QString& report, const QString&) override { QTextStream(stderr) << report << Qt::endl; }
};

// An error nothing handled: its report on stderr and in the data folder's error log.
int ReportUnhandled(const std::exception_ptr& error, const CliOptions& options)
{
    const DataFolder folder(DataFolder::resolve(options.dataDir));
    folder.prepare();
    CliErrorHost host;
    ErrorControl control({folder.errorLog(), {}, ProgramNames()}, host);
    control.setSecrets([&options] { return QStringList{options.inputs.login, options.inputs.password}; });
    control.report(Describe(error));
    return UnhandledError;
}

bool RanToItsEnd(DownloadOutcome outcome)
{
    return outcome == DownloadOutcome::Completed || outcome == DownloadOutcome::Incomplete;
}

int ExitCodeFor(DownloadOutcome outcome, bool exportsFailed)
{
    if (!RanToItsEnd(outcome) || exportsFailed)
        return StoppedEarly;
    return outcome == DownloadOutcome::Completed ? Completed : Incomplete;
}

// Of two exit codes, the one that tells of the worse end.
int Worse(int a, int b)
{
    const auto rank = [](int code) {
        return code == Completed ? 0 : code == Incomplete ? 1 : code == StoppedEarly ? 2 : 3;
    };
    return rank(a) >= rank(b) ? a : b;
}

// The use change follows only a download that ran to its end.
int UseChangeExitCode(DownloadOutcome outcome, const CliOptions& options, HalvarnSession& session,
                      TdmIRZ_PLUS& registry, CliHost& host)
{
    if (options.useChange.isEmpty())
        return Completed;
    if (!RanToItsEnd(outcome)) {
        QTextStream(stderr) << u"Zmiana kierunku użytkowania pominięta: pobieranie nie dobiegło końca"_s << Qt::endl;
        return StoppedEarly;
    }
    return RunUseChange(session, registry, host, options);
}

// The animals and groups of every herd as workbooks and all summary rows as
// text, named as the window names them; every file written is listed on stderr.
bool WriteExports(HalvarnSession& session, CliHost& host, const QString& folder)
{
    if (!QDir().mkpath(folder)) {
        host.showMessage(u"Błąd..."_s, u"Nie można utworzyć folderu eksportu: "_s + folder, MessageIcon::Error);
        return false;
    }
    host.setSummaryRowCount(session.tables().mdRZ00().recordCount());
    ExportCommands exports(session, folder, folder);
    const auto listed = [](bool written, const QString& path) {
        if (written)
            QTextStream(stderr) << path << Qt::endl;
        return written;
    };
    QString path;
    bool written = listed(exports.writeHerdAnimals(u"ALL"_s, path), path);
    written = listed(exports.writeHerdGroups(u"ALL"_s, path), path) && written;
    return listed(exports.writeSummaryCsv(path), path) && written;
}

// Exports and prints follow only a download that ran to its end, so a stopped
// one leaves the files of an earlier run as they were. A failed export still
// leaves the dump, with the export's message in it.
bool ExportsFailed(DownloadOutcome outcome, const CliOptions& options, HalvarnSession& session, CliHost& host)
{
    if (options.exportDir.isEmpty() && options.pdfDir.isEmpty())
        return false;
    if (!RanToItsEnd(outcome)) {
        QTextStream(stderr) << u"Eksport pominięty: pobieranie nie dobiegło końca"_s << Qt::endl;
        return false;
    }
    const bool exported = options.exportDir.isEmpty() || WriteExports(session, host, options.exportDir);
    const bool printed = options.pdfDir.isEmpty() || WriteHerdPrints(session, options.pdfDir, options.herd);
    return !(exported && printed);
}

void InstallTemplates(const DataFolder& folder)
{
    for (const QString& failure : InstallShippedTemplates(folder.templatesFolder()).failed)
        QTextStream(stderr) << failure << Qt::endl;
}

bool WriteDump(const QString& path, HalvarnSession& session, const CliHost& host)
{
    try {
        WriteFileAtomically(path, DumpSessionJson(session, host.messages()));
        return true;
    } catch (const FileWriteError& error) {
        QTextStream(stderr) << error.message() << Qt::endl;
        return false;
    }
}

int RunDownload(const CliOptions& options)
{
    QTextStream err(stderr);
    DataFolder folder(DataFolder::resolve(options.dataDir));
    if (!folder.prepare()) {
        err << u"Nie można utworzyć folderu danych: "_s << folder.root() << Qt::endl;
        return StoppedEarly;
    }
    InstallTemplates(folder);
    RegistryConfig config = RegistryConfig::read(IniFile(folder.settingsFile()));
    options.applyTo(config);

    std::unique_ptr<RegistrySimulator> simulator;
    SessionInputs inputs = options.inputs;
    if (options.demo) {
        simulator = StartDemoRegistryFor(inputs);
        if (!simulator) {
            err << u"Nie można uruchomić symulatora rejestru"_s << Qt::endl;
            return StoppedEarly;
        }
        config.ssoBase = config.apiBase = simulator->baseUrl();
    }

    CliHost host(options.answerYes);
    HalvarnSession session(folder, host);
    session.inputs = inputs;
    TdmIRZ_PLUS registry(config, host);
    const DownloadOutcome outcome = DownloadCommand(session, registry).run();

    QTextStream(stdout) << GroupReport(session);
    const bool exportsFailed = ExportsFailed(outcome, options, session, host);
    const int useChangeExit = UseChangeExitCode(outcome, options, session, registry, host);
    if (!options.dumpJson.isEmpty() && !WriteDump(options.dumpJson, session, host))
        return StoppedEarly;
    return Worse(ExitCodeFor(outcome, exportsFailed), useChangeExit);
}
} // namespace

int main(int argc, char* argv[])
{
    // Prints need fonts, hence a GUI application; the command line has no screen.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QCoreApplication::setApplicationName(u"Halvarn"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(HALVARN_VERSION));
    if (app.arguments().value(1) == u"render") {
        try {
            return RunRender(app.arguments());
        } catch (...) {
            return ReportUnhandled(std::current_exception(), CliOptions());
        }
    }
    CliOptions options;
    QString error;
    if (!options.parse(app.arguments(), error)) {
        QTextStream(stderr) << error << Qt::endl;
        return BadArguments;
    }
    InstallCrashRecorder(DataFolder(DataFolder::resolve(options.dataDir)).crashRecord());
    try {
        if (options.failOnPurpose)
            throw std::logic_error("Próbny błąd programu (--debug-error)");
        return RunDownload(options);
    } catch (...) {
        return ReportUnhandled(std::current_exception(), options);
    }
}
