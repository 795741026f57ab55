#pragma once

#include "core/archive/DownloadArchive.h"

#include <optional>

// One animal of a download, as far as a comparison of two downloads looks at it.
struct SnapshotAnimal {
    QString earTag;
    QString herd;
    QString sex;
    QDate birthDate;
    std::optional<int> age; // months on the download's reference date; none when unknown
    QString group;          // the group that took it ("GdzieRozpatrzono"); empty when none did
};

// One row of the overall groups table; its count is "Ilosc" + "IloscPom".
struct SnapshotGroup {
    int id = 0;
    QString caption;
    int count = 0;
};

// What a comparison needs of one stored download.
struct DownloadSnapshot {
    ArchivedDownload download;
    std::vector<SnapshotAnimal> animals; // in the order of mdRZ00
    std::vector<SnapshotGroup> groups;   // in the order of mdGT00
};
