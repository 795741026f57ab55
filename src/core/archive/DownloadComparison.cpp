#include "core/archive/DownloadComparison.h"

#include "framework/DataFolder.h"

#include <QHash>

#include <algorithm>
#include <map>
#include <tuple>

using namespace Qt::StringLiterals;

namespace {
using AnimalsByTag = QHash<QString, const SnapshotAnimal*>;

// An ear tag listed twice (an animal in two herds) counts with its first row.
AnimalsByTag ByEarTag(const std::vector<SnapshotAnimal>& animals)
{
    AnimalsByTag byTag;
    byTag.reserve(static_cast<qsizetype>(animals.size()));
    for (auto animal = animals.rbegin(); animal != animals.rend(); ++animal)
        byTag.insert(animal->earTag, &*animal);
    return byTag;
}

AnimalDifference Difference(AnimalChange change, const SnapshotAnimal* a, const SnapshotAnimal* b)
{
    const SnapshotAnimal& known = b ? *b : *a;
    return {change,
            known.earTag,
            known.herd,
            known.sex,
            known.birthDate,
            a ? a->age : std::nullopt,
            b ? b->age : std::nullopt,
            a ? a->group : QString(),
            b ? b->group : QString()};
}

std::vector<AnimalDifference> AnimalDifferences(const DownloadSnapshot& a, const DownloadSnapshot& b)
{
    const AnimalsByTag inA = ByEarTag(a.animals);
    const AnimalsByTag inB = ByEarTag(b.animals);
    std::vector<AnimalDifference> differences;
    for (const SnapshotAnimal& animal : b.animals) {
        if (inB.value(animal.earTag) != &animal)
            continue;
        const SnapshotAnimal* before = inA.value(animal.earTag);
        if (!before)
            differences.push_back(Difference(AnimalChange::Arrived, nullptr, &animal));
        else if (before->group != animal.group)
            differences.push_back(Difference(AnimalChange::GroupChanged, before, &animal));
    }
    for (const SnapshotAnimal& animal : a.animals)
        if (inA.value(animal.earTag) == &animal && !inB.contains(animal.earTag))
            differences.push_back(Difference(AnimalChange::Left, &animal, nullptr));
    std::sort(differences.begin(), differences.end(), [](const AnimalDifference& x, const AnimalDifference& y) {
        return std::tie(x.change, x.herd, x.earTag) < std::tie(y.change, y.herd, y.earTag);
    });
    return differences;
}

std::vector<GroupCountComparison> GroupCounts(const DownloadSnapshot& a, const DownloadSnapshot& b)
{
    std::map<int, GroupCountComparison> byId; // the catalogue lists its rows in ID order
    for (const SnapshotGroup& group : a.groups) {
        GroupCountComparison& row = byId[group.id];
        row.id = group.id;
        row.caption = group.caption;
        row.countA += group.count;
    }
    for (const SnapshotGroup& group : b.groups) {
        GroupCountComparison& row = byId[group.id];
        row.id = group.id;
        row.caption = group.caption;
        row.countB += group.count;
    }
    std::vector<GroupCountComparison> rows;
    rows.reserve(byId.size());
    for (auto& entry : byId)
        rows.push_back(std::move(entry.second));
    return rows;
}

bool DownloadedBefore(const ArchivedDownload& x, const ArchivedDownload& y)
{
    return std::tie(x.downloadedAt, x.id) < std::tie(y.downloadedAt, y.id);
}

void RefuseUnlessComparable(const ArchivedDownload& a, const ArchivedDownload& b)
{
    if (a.id == b.id)
        throw ComparisonError(u"Do porównania trzeba wybrać dwa różne pobrania (wybrano dwa razy nr %1)."_s.arg(a.id));
    if (a.producer != b.producer)
        throw ComparisonError(u"Pobrania nr %1 i nr %2 dotyczą różnych producentów (%3 i %4). "
                              "Porównać można tylko pobrania jednego producenta."_s.arg(a.id)
                                  .arg(b.id)
                                  .arg(a.producer, b.producer));
}
} // namespace

QString AnimalChangeText(AnimalChange change)
{
    switch (change) {
    case AnimalChange::Arrived: return u"przybyło"_s;
    case AnimalChange::Left: return u"ubyło"_s;
    case AnimalChange::GroupChanged: return u"zmiana grupy"_s;
    }
    return {};
}

DownloadComparison DownloadComparison::fromArchive(const DataFolder& folder, qint64 first, qint64 second)
{
    const DownloadArchive archive(folder.archiveFile());
    ArchivedDownload a = archive.find(first);
    ArchivedDownload b = archive.find(second);
    RefuseUnlessComparable(a, b);
    if (DownloadedBefore(b, a))
        std::swap(a, b);
    return DownloadComparison(archive.snapshot(a), archive.snapshot(b));
}

DownloadComparison::DownloadComparison(const DownloadSnapshot& a, const DownloadSnapshot& b)
    : a_(a.download), b_(b.download), animals_(AnimalDifferences(a, b)), groups_(GroupCounts(a, b))
{}

int DownloadComparison::count(AnimalChange change) const
{
    return static_cast<int>(std::count_if(animals_.begin(), animals_.end(),
                                          [change](const AnimalDifference& d) { return d.change == change; }));
}

QString DownloadCaption(const ArchivedDownload& download)
{
    return u"nr %1 – %2 – Halvarn na dzień %3 – pobrano %4"_s.arg(download.id)
        .arg((download.producer + u' ' + download.name).trimmed(), download.referenceDate.toString(u"dd.MM.yyyy"_s),
             download.downloadedAt.toString(u"dd.MM.yyyy HH:mm"_s));
}
