#pragma once

#include <QDate>

class HalvarnSession;

// "Przelicz na dzień…": ages every loaded animal again on another reference
// date and counts the groups anew with the ticks and age limits as they are
// now. It works from what the registry said at the download (kept per animal
// in HalvarnSession::answers), so it needs no registry and applies the
// download's rules exactly: a fresh download on that date gives the same tables.
class RecountCommand {
public:
    explicit RecountCommand(HalvarnSession& session);

    // False, after telling the user, when there is nothing loaded to recount.
    // An empty date or one after today means today, as for a download.
    bool run(QDate referenceDate);

private:
    void recount(QDate referenceDate);
    void writeReferenceDate(QDate referenceDate);

    HalvarnSession& session_;
};
