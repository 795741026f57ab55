#include "cli/CliDownload.h"

#include "cli/CliHost.h"
#include "cli/CliPrints.h"
#include "core/session/HalvarnSession.h"
#include "export/ExportCommands.h"
#include "reports/ShippedTemplates.h"

#include <QDir>
#include <QTextStream>

namespace {
enum DownloadExit { Completed = 0, StoppedEarly = 1, Incomplete = 3 };

// The animals and groups of every herd as workbooks and all summary rows as
// text, named as the window names them.
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
} // namespace

bool PrepareDataFolder(const DataFolder& folder)
{
    QTextStream err(stderr);
    if (!folder.prepare()) {
        err << u"Nie można utworzyć folderu danych: "_s << folder.root() << Qt::endl;
        return false;
    }
    for (const QString& failure : InstallShippedTemplates(folder.templatesFolder()).failed)
        err << failure << Qt::endl;
    return true;
}

bool RanToItsEnd(DownloadOutcome outcome)
{
    return outcome == DownloadOutcome::Completed || outcome == DownloadOutcome::Incomplete;
}

int DownloadExitCode(DownloadOutcome outcome, bool filesFailed)
{
    if (!RanToItsEnd(outcome) || filesFailed)
        return StoppedEarly;
    return outcome == DownloadOutcome::Completed ? Completed : Incomplete;
}

int WorseExitCode(int a, int b)
{
    const auto rank = [](int code) {
        return code == Completed ? 0 : code == Incomplete ? 1 : code == StoppedEarly ? 2 : 3;
    };
    return rank(a) >= rank(b) ? a : b;
}

bool ExportsFailed(DownloadOutcome outcome, const DownloadOutputs& outputs, HalvarnSession& session, CliHost& host)
{
    if (outputs.exportDir.isEmpty() && outputs.pdfDir.isEmpty())
        return false;
    if (!RanToItsEnd(outcome)) {
        QTextStream(stderr) << u"Eksport pominięty: pobieranie nie dobiegło końca"_s << Qt::endl;
        return false;
    }
    const bool exported = outputs.exportDir.isEmpty() || WriteExports(session, host, outputs.exportDir);
    const bool printed = outputs.pdfDir.isEmpty() || WriteHerdPrints(session, outputs.pdfDir, outputs.herd);
    return !(exported && printed);
}
