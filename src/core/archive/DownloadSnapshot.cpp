#include "core/archive/DownloadSnapshot.h"

#include "analysis/GroupCatalogue.h"
#include "core/session/HalvarnSession.h"
#include "framework/SilentHost.h"

using namespace Qt::StringLiterals;

namespace {
std::vector<SnapshotAnimal> AnimalsOf(const Table& animals)
{
    const int tag = animals.requireField(u"NumerIdentyfikacyjny");
    const int herd = animals.requireField(u"STADO");
    const int sex = animals.requireField(u"Plec");
    const int birth = animals.requireField(u"DataUrodzenia");
    const int age = animals.requireField(u"Wiek");
    const int group = animals.requireField(u"GdzieRozpatrzono");
    std::vector<SnapshotAnimal> result;
    result.reserve(static_cast<std::size_t>(animals.recordCount()));
    for (int row = 0; row < animals.recordCount(); ++row) {
        const FieldValue& months = animals.at(row, age);
        result.push_back({AsString(animals.at(row, tag)), AsString(animals.at(row, herd)),
                          AsString(animals.at(row, sex)), AsDate(animals.at(row, birth)),
                          IsNull(months) ? std::nullopt : std::optional<int>(AsInteger(months)),
                          AsString(animals.at(row, group))});
    }
    return result;
}

std::vector<SnapshotGroup> GroupsOf(const Table& groups)
{
    const int id = groups.requireField(u"ID");
    const int caption = groups.requireField(u"GT");
    std::vector<SnapshotGroup> result;
    for (int row = 0; row < groups.recordCount(); ++row)
        result.push_back(
            {AsInteger(groups.at(row, id)), AsString(groups.at(row, caption)), GroupRowCount(groups, row)});
    return result;
}
} // namespace

DownloadSnapshot TakeSnapshot(WorkingTables& tables, ArchivedDownload download)
{
    return {std::move(download), AnimalsOf(tables.mdRZ00()), GroupsOf(tables.mdGT00())};
}

DownloadSnapshot LoadSnapshot(const DataFolder& folder, const DownloadArchive& archive,
                              const ArchivedDownload& download)
{
    SilentHost host;
    HalvarnSession session(folder, host);
    session.ClearAllData();
    archive.load(download.id, session);
    return TakeSnapshot(session.tables(), download);
}
