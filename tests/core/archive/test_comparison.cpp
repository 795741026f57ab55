#include "DemoDownload.h"
#include "core/archive/DownloadArchive.h"
#include "core/archive/DownloadComparison.h"

#include <QTest>

#include <map>
#include <set>

using namespace Qt::StringLiterals;

namespace {
const QDate Reference(2024, 3, 15);
const QDate Later = Reference.addMonths(5); // calves and heifers grow into the next group by then
const QString NewTag = u"PL999999999993"_s;
const WelfareFlags AllKinds{.krowMamek = true, .opasow = true, .krowMlecznych = true};

QString TagOf(const QJsonObject& animal)
{
    return animal.value(u"numerIdentyfikacyjnyZwierzecia").toString();
}

struct Counted {
    QString group;
    std::optional<int> age;
};

// Each animal's group and age as the download's own tables hold them.
std::map<QString, Counted> AnimalsByTag(WorkingTables& tables)
{
    Table& animals = tables.mdRZ00();
    std::map<QString, Counted> byTag;
    for (int row = 0; row < animals.recordCount(); ++row) {
        const FieldValue& age = animals.at(row, animals.requireField(u"Wiek"));
        byTag.emplace(AsString(animals.at(row, animals.requireField(u"NumerIdentyfikacyjny"))),
                      Counted{AsString(animals.at(row, animals.requireField(u"GdzieRozpatrzono"))),
                              IsNull(age) ? std::nullopt : std::optional<int>(AsInteger(age))});
    }
    return byTag;
}

std::map<int, int> CountsById(WorkingTables& tables)
{
    Table& groups = tables.mdGT00();
    std::map<int, int> counts;
    for (int row = 0; row < groups.recordCount(); ++row)
        counts[AsInteger(groups.at(row, groups.requireField(u"ID")))] +=
            AsInteger(groups.at(row, groups.requireField(u"Ilosc"))) +
            AsInteger(groups.at(row, groups.requireField(u"IloscPom")));
    return counts;
}

QStringList TagsOf(const DownloadComparison& comparison, AnimalChange change)
{
    QStringList tags;
    for (const AnimalDifference& d : comparison.animals())
        if (d.change == change)
            tags.append(d.earTag);
    return tags;
}

SnapshotAnimal Animal(const QString& tag, const QString& group, int age = 12)
{
    return {tag, u"001"_s, u"Samica"_s, QDate(2023, 3, 1), age, group};
}

DownloadSnapshot Snapshot(qint64 id, std::vector<SnapshotAnimal> animals, std::vector<SnapshotGroup> groups = {})
{
    ArchivedDownload download;
    download.id = id;
    download.producer = u"071234562"_s;
    return {download, std::move(animals), std::move(groups)};
}
} // namespace

// Download A, then the registry loses one animal, gains one, and B is
// downloaded five months later: both are in one archive.
class TestComparison : public QObject {
    Q_OBJECT

private:
    QTemporaryDir folder_;
    std::unique_ptr<DemoDownload> a_;
    std::unique_ptr<DemoDownload> b_;
    qint64 idA_ = 0;
    qint64 idB_ = 0;
    QString removedTag_;

private Q_SLOTS:
    void initTestCase();
    void listsWhatArrivedLeftAndChangedGroup_data();
    void listsWhatArrivedLeftAndChangedGroup();
    void countsEveryGroupRowOfBothDownloads();
    void refusesWhatCannotBeCompared_data();
    void refusesWhatCannotBeCompared();
    void groupRowsOfOneDownloadOnlyCountZeroInTheOther();
    void anEarTagListedTwiceCountsOnce();
    void manyAnimalsAreMatchedByEarTag();
};

void TestComparison::initTestCase()
{
    SimDataset data = DemoData(Reference);
    a_ = std::make_unique<DemoDownload>(folder_.path());
    QCOMPARE(a_->run(data, Reference, AllKinds), DownloadOutcome::Completed);

    std::vector<QJsonObject>& first = data.producers.front().holdings.front().animals;
    removedTag_ = TagOf(first[3]);
    first.erase(first.begin() + 3);
    std::vector<QJsonObject>& second = data.producers.front().holdings[1].animals;
    QJsonObject arrived = second.back();
    arrived.insert(u"numerIdentyfikacyjnyZwierzecia"_s, NewTag);
    arrived.remove(u"numerIdentyfikacyjnyMatki"_s);
    second.push_back(arrived);
    b_ = std::make_unique<DemoDownload>(folder_.path());
    QCOMPARE(b_->run(data, Later, AllKinds), DownloadOutcome::Completed);

    const std::vector<ArchivedDownload> stored = DownloadArchive(DataFolder(folder_.path()).archiveFile()).list();
    QCOMPARE(stored.size(), 2u);
    idB_ = stored[0].id;
    idA_ = stored[1].id;
}

void TestComparison::listsWhatArrivedLeftAndChangedGroup_data()
{
    QTest::addColumn<bool>("newerFirst");
    QTest::newRow("older given first") << false;
    QTest::newRow("newer given first") << true;
}

void TestComparison::listsWhatArrivedLeftAndChangedGroup()
{
    QFETCH(bool, newerFirst);
    const DataFolder folder(folder_.path());
    const DownloadComparison c = newerFirst ? DownloadComparison::fromArchive(folder, idB_, idA_)
                                            : DownloadComparison::fromArchive(folder, idA_, idB_);
    QCOMPARE(c.a().id, idA_);
    QCOMPARE(c.b().id, idB_);
    QCOMPARE(c.a().referenceDate, Reference);
    QCOMPARE(c.b().referenceDate, Later);
    QCOMPARE(c.b().producer, u"071234562"_s);
    QCOMPARE(TagsOf(c, AnimalChange::Left), QStringList{removedTag_});
    QCOMPARE(TagsOf(c, AnimalChange::Arrived), QStringList{NewTag});
    QVERIFY(c.count(AnimalChange::GroupChanged) > 0);

    const std::map<QString, Counted> before = AnimalsByTag(a_->session.tables());
    const std::map<QString, Counted> after = AnimalsByTag(b_->session.tables());
    std::set<QString> changed;
    for (const AnimalDifference& d : c.animals()) {
        if (d.change != AnimalChange::GroupChanged)
            continue;
        QVERIFY2(d.groupA != d.groupB, qPrintable(d.earTag));
        QCOMPARE(d.groupA, before.at(d.earTag).group);
        QCOMPARE(d.groupB, after.at(d.earTag).group);
        QCOMPARE(d.ageA, before.at(d.earTag).age);
        QCOMPARE(d.ageB, after.at(d.earTag).age);
        changed.insert(d.earTag);
    }
    // Animals in both downloads are listed exactly when their group differs.
    for (const auto& [tag, counted] : before)
        if (after.count(tag))
            QCOMPARE(changed.count(tag) == 1, after.at(tag).group != counted.group);

    for (std::size_t i = 1; i < c.animals().size(); ++i) {
        const AnimalDifference& x = c.animals()[i - 1];
        const AnimalDifference& y = c.animals()[i];
        QVERIFY(std::tie(x.change, x.herd, x.earTag) < std::tie(y.change, y.herd, y.earTag));
    }
}

void TestComparison::countsEveryGroupRowOfBothDownloads()
{
    const DownloadComparison c = DownloadComparison::fromArchive(DataFolder(folder_.path()), idA_, idB_);
    const std::map<int, int> countsA = CountsById(a_->session.tables());
    const std::map<int, int> countsB = CountsById(b_->session.tables());
    QCOMPARE(c.groups().size(), countsB.size());
    bool anyChanged = false;
    for (const GroupCountComparison& row : c.groups()) {
        QCOMPARE(row.countA, countsA.at(row.id));
        QCOMPARE(row.countB, countsB.at(row.id));
        QCOMPARE(row.difference(), row.countB - row.countA);
        anyChanged = anyChanged || row.difference() != 0;
    }
    QVERIFY(anyChanged);
    QCOMPARE(c.groups().front().caption, u"Halvarn krów mamek"_s);
}

void TestComparison::refusesWhatCannotBeCompared_data()
{
    QTest::addColumn<QString>("other");
    QTest::addColumn<QString>("message");
    QTest::newRow("another producer") << u"producer"_s << u"różnych producentów (071234562 i 082456131)"_s;
    QTest::newRow("a missing download") << u"missing"_s << u"Nie ma w archiwum pobrania nr 999"_s;
    QTest::newRow("the same download twice") << u"same"_s << u"dwa różne pobrania"_s;
}

void TestComparison::refusesWhatCannotBeCompared()
{
    QFETCH(QString, other);
    QFETCH(QString, message);
    QTemporaryDir folder;
    DemoDownload d(folder.path());
    QCOMPARE(d.run(DemoData(Reference, {5}), Reference), DownloadOutcome::Completed);
    qint64 otherId = 999;
    if (other == u"producer") {
        DemoOptions options = FurtherDemoProducers(Reference).front();
        options.herdSizes = {5};
        QCOMPARE(d.run(GenerateDemoDataset(options), Reference), DownloadOutcome::Completed);
    }
    const std::vector<ArchivedDownload> stored = DownloadArchive(d.session.dataFolder().archiveFile()).list();
    if (other != u"missing")
        otherId = stored.front().id;
    try {
        DownloadComparison::fromArchive(d.session.dataFolder(), stored.back().id, otherId);
        QFAIL("compared");
    } catch (const HalvarnError& error) {
        QVERIFY2(error.message().contains(message), qPrintable(error.message()));
    }
}

void TestComparison::groupRowsOfOneDownloadOnlyCountZeroInTheOther()
{
    const DownloadComparison c(Snapshot(1, {}, {{1, u"Krowy"_s, 4}, {3, u"Opasy"_s, 2}}),
                               Snapshot(2, {}, {{1, u"Krowy"_s, 5}, {2, u"Cielęta"_s, 7}}));
    QCOMPARE(c.groups().size(), 3u);
    const int expected[][3] = {{1, 4, 5}, {2, 0, 7}, {3, 2, 0}};
    for (std::size_t i = 0; i < 3; ++i) {
        QCOMPARE(c.groups()[i].id, expected[i][0]);
        QCOMPARE(c.groups()[i].countA, expected[i][1]);
        QCOMPARE(c.groups()[i].countB, expected[i][2]);
    }
    QCOMPARE(c.groups()[2].caption, u"Opasy"_s);
    QCOMPARE(c.groups()[2].difference(), -2);
}

// An animal in two herds of one download is one animal: its first row counts.
void TestComparison::anEarTagListedTwiceCountsOnce()
{
    const DownloadComparison c(Snapshot(1, {Animal(u"PL1"_s, u"Jałówki"_s), Animal(u"PL1"_s, u"Krowy"_s)}),
                               Snapshot(2, {Animal(u"PL1"_s, u"Jałówki"_s), Animal(u"PL1"_s, u""_s)}));
    QVERIFY(c.animals().empty());
}

// Matched by ear tag, not by position: a large herd with a thousand animals replaced.
void TestComparison::manyAnimalsAreMatchedByEarTag()
{
    std::vector<SnapshotAnimal> before;
    std::vector<SnapshotAnimal> after;
    for (int i = 0; i < 20'000; ++i) {
        const QString tag = u"PL%1"_s.arg(5'000'000'000 + i * 7, 12, 10, QLatin1Char('0'));
        before.push_back(Animal(tag, i % 3 == 0 ? u"Jałówki od 6 do 19"_s : u"Krowy"_s, 10));
        after.push_back(Animal(i < 19'000 ? tag : tag + u'X', i % 5 == 0 ? u"Jałówki od 19 do 24"_s : u"Krowy"_s, 15));
    }
    const DownloadSnapshot a = Snapshot(1, std::move(before));
    const DownloadSnapshot b = Snapshot(2, std::move(after));
    const DownloadComparison c(a, b);
    QCOMPARE(c.count(AnimalChange::Arrived), 1000);
    QCOMPARE(c.count(AnimalChange::Left), 1000);
}

QTEST_GUILESS_MAIN(TestComparison)
#include "test_comparison.moc"
