#include "core/session/CountingLines.h"

#include "analysis/DeclaredLimits.h"
#include "core/session/HalvarnSession.h"

using namespace Qt::StringLiterals;

void AppendCountingLines(HalvarnSession& session, int bornAfterReference)
{
    session.truncateErrors(session.countingLinesFrom);
    session.countingLinesFrom = static_cast<int>(session.errors().size());
    // The age formula still applies to an animal born after the reference date; the user is told how many there are.
    if (bornAfterReference > 0)
        session.appendError(u"Data \"Halvarn na dzień\" (%1) jest wcześniejsza niż data urodzenia %2 zwierząt"_s
                                .arg(session.referenceDate.toString(u"yyyy-MM-dd"))
                                .arg(bornAfterReference));
    if (session.countedLimits)
        for (const QString& line : ApplyDeclaredLimits(session.tables().mdGT00(), *session.countedLimits))
            session.appendError(line);
}
