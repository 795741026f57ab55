#include "cli/CliArchive.h"
#include "cli/CliBatch.h"
#include "cli/CliDownload.h"
#include "cli/CliErrors.h"
#include "cli/CliHost.h"
#include "cli/CliOptions.h"
#include "cli/CliPrints.h"
#include "cli/CliProducers.h"
#include "cli/CliUseChange.h"
#include "cli/GroupReport.h"
#include "core/session/HalvarnSession.h"
#include "core/session/SessionDump.h"
#include "framework/IniFile.h"
#include "framework/SafeFile.h"
#include "registry/client/TdmIRZ_PLUS.h"
#include "registry/download/DownloadCommand.h"
#include "registry/sim/RegistrySimulator.h"

#include <QGuiApplication>
#include <QTextStream>

#include <memory>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {
enum ExitCode { Completed = 0, StoppedEarly = 1, BadArguments = 2 };

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
    DataFolder folder(DataFolder::resolve(options.dataDir));
    if (!PrepareDataFolder(folder))
        return StoppedEarly;
    RegistryConfig config = RegistryConfig::read(IniFile(folder.settingsFile()));
    options.applyTo(config);

    std::unique_ptr<RegistrySimulator> simulator;
    SessionInputs inputs = options.inputs;
    if (options.demo) {
        simulator = StartDemoRegistryFor(inputs);
        if (!simulator) {
            QTextStream(stderr) << u"Nie można uruchomić symulatora rejestru"_s << Qt::endl;
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
    const bool exportsFailed = ExportsFailed(outcome, {options.exportDir, options.pdfDir, options.herd}, session, host);
    const int useChangeExit = UseChangeExitCode(outcome, options, session, registry, host);
    if (!options.dumpJson.isEmpty() && !WriteDump(options.dumpJson, session, host))
        return StoppedEarly;
    return WorseExitCode(DownloadExitCode(outcome, exportsFailed), useChangeExit);
}

int Download(const QStringList& arguments)
{
    CliOptions options;
    QString error;
    if (!options.parse(arguments, error)) {
        QTextStream(stderr) << error << Qt::endl;
        return BadArguments;
    }
    return RunGuarded(options.dataDir, {options.inputs.login, options.inputs.password}, UnhandledErrorExit, [&options] {
        if (options.failOnPurpose)
            throw std::logic_error("Próbny błąd programu (--debug-error)");
        return RunDownload(options);
    });
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
    const QStringList arguments = app.arguments();
    const QString command = arguments.value(1);
    if (command == u"producers")
        return RunProducers(arguments);
    if (command == u"batch")
        return RunBatch(arguments);
    if (command == u"archive")
        return RunArchive(arguments);
    if (command == u"recount")
        return RunRecount(arguments);
    if (command != u"render")
        return Download(arguments);
    try {
        return RunRender(arguments);
    } catch (...) {
        ReportUnhandled(std::current_exception(), {}, {});
        return UnhandledErrorExit;
    }
}
