#include "cli/CliUseChange.h"

#include "cli/CliHost.h"
#include "cli/CliOptions.h"
#include "cli/CliPrints.h"
#include "registry/usechange/UseChangeCommand.h"
#include "registry/usechange/UseDirections.h"
#include "reports/print/PrintCommands.h"
#include "reports/print/TdmulmxDataBase_FR3.h"

using namespace Qt::StringLiterals;

namespace {
enum UseChangeExit { AllAccepted = 0, StoppedEarly = 1, UnknownAnimal = 2, NotAllAccepted = 3 };

// False, with the tags named on stderr, when an animal is not in mdRZ00.
bool MarkAnimals(HalvarnSession& session, const QStringList& tags)
{
    Table& animals = session.tables().mdRZ00();
    const int number = animals.requireField(u"NumerIdentyfikacyjny");
    QStringList missing;
    for (const QString& tag : tags) {
        if (animals.locate(number, tag))
            session.tables().SetMarked(animals.recNo(), true);
        else
            missing.append(tag);
    }
    if (!missing.isEmpty())
        QTextStream(stderr) << u"Nie ma w pobranych danych zwierząt: "_s << missing.join(u", "_s) << Qt::endl;
    return missing.isEmpty();
}
} // namespace

int RunUseChange(HalvarnSession& session, TdmIRZ_PLUS& registry, CliHost& host, const CliOptions& options)
{
    if (!MarkAnimals(session, options.mark))
        return UnknownAnimal;
    host.setUseDirection(options.useChange);
    host.setResendUnconfirmed(options.resendUnconfirmed);
    TdmulmxDataBase_FR3 reports;
    PrintCommands prints(session, reports);
    const UseChangeResult result = UseChangeCommand(session, registry, prints).run();
    QTextStream err(stderr);
    for (const QString& tag : result.refused)
        err << u"Odrzucono: "_s << tag << Qt::endl;
    for (const QString& tag : result.unconfirmed)
        err << u"Bez potwierdzenia: "_s << tag << Qt::endl;
    for (const QString& tag : result.notSent)
        err << u"Nie wysłano: "_s << tag << Qt::endl;
    for (const QString& tag : result.unchanged)
        err << u"Bez zmiany: "_s << tag << u": kierunek użytkowania już jest „"_s << UseDirectionName(options.useChange)
            << u"”"_s << Qt::endl;
    for (const QString& animal : result.withheld)
        err << u"Wstrzymano: "_s << animal << Qt::endl;
    const bool printed =
        !result.report || options.pdfDir.isEmpty() ||
        WritePrintPdf(*result.report, options.pdfDir, PrintCommands::useChangeTemplateName(), session.ProducerNumber);
    const bool ended = result.outcome == UseChangeOutcome::Sent || result.outcome == UseChangeOutcome::NothingToSend;
    if (!printed || !ended || !result.journalFailures.isEmpty())
        return StoppedEarly;
    const bool all = result.refused.isEmpty() && result.unconfirmed.isEmpty() && result.withheld.isEmpty();
    return all ? AllAccepted : NotAllAccepted;
}
