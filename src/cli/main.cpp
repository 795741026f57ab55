#include "app/session/HalvarnSession.h"
#include "app/session/SessionDump.h"
#include "cli/CliHost.h"
#include "cli/CliOptions.h"
#include "cli/GroupReport.h"
#include "export/ExportCommands.h"
#include "framework/IniFile.h"
#include "framework/SafeFile.h"
#include "registry/client/TdmIRZ_PLUS.h"
#include "registry/download/DownloadCommand.h"
#include "registry/sim/RegistrySimulator.h"

#include <QCoreApplication>
#include <QDir>
#include <QTextStream>

#include <memory>

namespace {
enum ExitCode { Completed = 0, StoppedEarly = 1, BadArguments = 2 };

// The animals and groups of every herd as workbooks and all summary rows as
// text, named as the window names them.
bool WriteExports(HalvarnSession& session, CliHost& host, const QString& folder)
{
    if (!QDir().mkpath(folder)) {
        host.showMessage(QString::fromUtf8("Błąd..."),
                         QString::fromUtf8("Nie można utworzyć folderu eksportu: ") + folder, MessageIcon::Error);
        return false;
    }
    host.setSummaryRowCount(session.tables().mdRZ00().recordCount());
    ExportCommands exports(session, folder, folder);
    QString path;
    bool written = true;
    for (const auto write : {&ExportCommands::writeHerdAnimals, &ExportCommands::writeHerdGroups}) {
        written = (exports.*write)(QStringLiteral("ALL"), path) && written;
        QTextStream(stderr) << path << Qt::endl;
    }
    written = exports.writeSummaryCsv(path) && written;
    QTextStream(stderr) << path << Qt::endl;
    return written;
}

int RunDownload(const CliOptions& options)
{
    QTextStream err(stderr);
    DataFolder folder(DataFolder::resolve(options.dataDir));
    if (!folder.prepare()) {
        err << QString::fromUtf8("Nie można utworzyć folderu danych: ") << folder.root() << Qt::endl;
        return StoppedEarly;
    }
    RegistryConfig config = RegistryConfig::read(IniFile(folder.settingsFile()));
    options.applyTo(config);

    std::unique_ptr<RegistrySimulator> simulator;
    SessionInputs inputs = options.inputs;
    if (options.demo) {
        simulator = StartDemoRegistryFor(inputs);
        if (!simulator) {
            err << QString::fromUtf8("Nie można uruchomić symulatora rejestru") << Qt::endl;
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
    // A failed export still leaves the dump, with the export's message in it.
    const bool exported = options.exportDir.isEmpty() || WriteExports(session, host, options.exportDir);
    if (!options.dumpJson.isEmpty()) {
        try {
            WriteFileAtomically(options.dumpJson, DumpSessionJson(session, host.messages()));
        } catch (const FileWriteError& error) {
            err << error.message() << Qt::endl;
            return StoppedEarly;
        }
    }
    return outcome == DownloadOutcome::Completed && exported ? Completed : StoppedEarly;
}
} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Halvarn"));
    QCoreApplication::setApplicationVersion(QStringLiteral(HALVARN_VERSION));
    CliOptions options;
    QString error;
    if (!options.parse(app.arguments(), error)) {
        QTextStream(stderr) << error << Qt::endl;
        return BadArguments;
    }
    return RunDownload(options);
}
