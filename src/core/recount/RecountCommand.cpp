#include "core/recount/RecountCommand.h"

#include "core/recount/CountAgain.h"
#include "core/session/CountingLines.h"
#include "core/session/HalvarnSession.h"
#include "framework/DateTime.h"
#include "framework/IniFile.h"

#include <QScopeGuard>

using namespace Qt::StringLiterals;

RecountCommand::RecountCommand(HalvarnSession& session) : session_(session) {}

bool RecountCommand::run(QDate referenceDate)
{
    if (!session_.DataLoaded || !RowsMatchAnswers(session_.tables(), session_.answers)) {
        session_.host().showMessage(
            u"Informacja"_s, u"Brak danych do przeliczenia. Pobierz dane z rejestru albo otwórz je z archiwum."_s,
            MessageIcon::Warning);
        return false;
    }
    session_.BeginLongOperation();
    const auto end = qScopeGuard([this] { session_.EndLongOperation(); });
    recount(RunDate(referenceDate));
    return true;
}

void RecountCommand::recount(QDate referenceDate)
{
    session_.SetStatusText(StatusPanel::Step, u"Przeliczanie na dzień "_s + referenceDate.toString(u"dd.MM.yyyy"));
    session_.RebuildGroups();
    const AgeLimits limits = AgeLimits::read(IniFile(session_.dataFolder().settingsFile()));
    const int bornAfterReference =
        CountAgain(session_.tables(), session_.answers, referenceDate, limits, session_.halvarnFlags);
    writeReferenceDate(referenceDate);
    AppendCountingLines(session_, bornAfterReference);
}

void RecountCommand::writeReferenceDate(QDate referenceDate)
{
    session_.referenceDate = session_.inputs.referenceDate = referenceDate;
    WorkingTables& tables = session_.tables();
    Table& producer = tables.mdProducent();
    if (producer.isEmpty())
        return;
    producer.setReadOnly(false);
    producer.first();
    producer.edit();
    producer.setValue(u"DATA3", referenceDate);
    producer.post();
    tables.restoreReadOnly(producer);
}
