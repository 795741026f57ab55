#include "core/archive/ArchiveCommands.h"

#include "core/archive/DownloadArchive.h"
#include "core/session/HalvarnSession.h"
#include "framework/IniFile.h"

using namespace Qt::StringLiterals;

int ArchiveKeepCount(const DataFolder& folder)
{
    QStringList problems;
    return IniFile(folder.settingsFile()).readInteger(u"ARCHIWUM"_s, u"Zachowaj"_s, 20, {0, 1000}, problems);
}

void StoreDownload(HalvarnSession& session)
{
    const int keep = ArchiveKeepCount(session.dataFolder());
    if (keep == 0)
        return;
    session.SetStatusText(StatusPanel::Step, u"Zapis do archiwum"_s);
    try {
        DownloadArchive(session.dataFolder().archiveFile()).store(session, keep);
    } catch (const HalvarnError& error) {
        session.appendError(u"Pobrane dane nie zostały zapisane w archiwum: "_s + error.message());
    }
}

bool OpenArchivedDownload(HalvarnSession& session, qint64 id)
{
    if (session.DataLoaded &&
        !session.host().askYesNo(u"Pytanie"_s, u"Są wczytane dane. Będą one usunięte. Czy kontynuować?"_s))
        return false;
    session.ClearAllData();
    session.BeginLongOperation();
    session.SetStatusText(StatusPanel::Step, u"Odczyt z archiwum"_s);
    try {
        DownloadArchive(session.dataFolder().archiveFile()).load(id, session);
    } catch (const HalvarnError& error) {
        session.EndLongOperation();
        session.ClearAllData();
        session.host().showMessage(u"Błąd"_s, error.message(), MessageIcon::Error);
        return false;
    }
    session.EndLongOperation();
    return true;
}
