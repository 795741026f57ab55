#pragma once

#include <QtGlobal>

class DataFolder;
class HalvarnSession;

// How many downloads of one producer the archive keeps ("[ARCHIWUM] Zachowaj"
// in HALVARN.INI, 20 unless set; 0 keeps none).
int ArchiveKeepCount(const DataFolder& folder);

// Stores a download that ran to its end. A failure does not spoil the download:
// it becomes a line under "Błąd".
void StoreDownload(HalvarnSession& session);

// "Otwórz" of the archive: after asking whether to drop the loaded data, puts
// the stored download into the working tables as the download left them. False
// when the user kept the loaded data or the download could not be read (told to
// the user; the tables are then left empty).
bool OpenArchivedDownload(HalvarnSession& session, qint64 id);
