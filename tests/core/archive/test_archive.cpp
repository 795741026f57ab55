#include "DemoDownload.h"
#include "core/archive/ArchiveCommands.h"
#include "core/archive/ArchiveSchema.h"
#include "core/archive/DownloadArchive.h"
#include "core/recount/RecountCommand.h"
#include "support/TableCompare.h"

#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
const QDate Reference(2024, 3, 15);

WelfareFlags Flags(bool suckler, bool fattening, bool dairy)
{
    return {.krowMamek = suckler, .opasow = fattening, .krowMlecznych = dairy};
}

qint64 NewestId(const DataFolder& folder)
{
    return DownloadArchive(folder.archiveFile()).list().front().id;
}

// Runs statements on the archive file through a connection of its own.
void OnArchiveFile(const QString& path, const std::function<void(QSqlDatabase&)>& work)
{
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"test"_s);
        database.setDatabaseName(path);
        QVERIFY(database.open());
        work(database);
    }
    QSqlDatabase::removeDatabase(u"test"_s);
}

QVariant One(QSqlDatabase& database, const QString& statement)
{
    QSqlQuery query(database);
    if (!query.exec(statement) || !query.next())
        return {};
    return query.value(0);
}
} // namespace

class TestArchive : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void reopenedDownloadEqualsTheDownload_data();
    void reopenedDownloadEqualsTheDownload();
    void recountEqualsAFreshDownload_data();
    void recountEqualsAFreshDownload();
    void recountNeedsLoadedData();
    void keepsTheNewestDownloadsOfEachProducer();
    void aFailedStoreLeavesTheDownloadWhole();
    void olderArchiveIsMigrated();
    void newerArchiveIsRefused();
    void killedWhileStoringLeavesTheArchiveAsItWas();
};

void TestArchive::reopenedDownloadEqualsTheDownload_data()
{
    QTest::addColumn<WelfareFlags>("flags");
    QTest::addColumn<bool>("declared");
    QTest::newRow("all kinds") << Flags(true, true, true) << false;
    QTest::newRow("dairy only, declared numbers") << Flags(false, false, true) << true;
}

// Every field of every table, the herd slots, the memo and what the registry
// said of each animal come back as the download left them; no password is kept.
void TestArchive::reopenedDownloadEqualsTheDownload()
{
    QFETCH(WelfareFlags, flags);
    QFETCH(bool, declared);
    QTemporaryDir folder;
    DemoDownload original(folder.path());
    if (declared)
        original.session.inputs.declaredLimits = DeclaredLimits{0, 0, 0, 0, 0, 0, 3};
    QCOMPARE(original.run(DemoData(Reference), Reference, flags), DownloadOutcome::Completed);

    DemoDownload reopened(folder.path());
    QVERIFY(OpenArchivedDownload(reopened.session, NewestId(original.session.dataFolder())));
    QCOMPARE(FirstDifference(original.session, reopened.session), QString());
    HalvarnSession& a = original.session;
    HalvarnSession& b = reopened.session;
    QCOMPARE(b.errors(), a.errors());
    QCOMPARE(b.countingLinesFrom, a.countingLinesFrom);
    QCOMPARE(b.countedLimits, a.countedLimits);
    QCOMPARE(b.herdCount, a.herdCount);
    QCOMPARE(b.referenceDate, Reference);
    QCOMPARE(b.inputs.flags, flags);
    QVERIFY(b.DataLoaded);
    QVERIFY(b.archivedAt.isValid());
    QCOMPARE(b.answers.size(), a.answers.size());
    for (std::size_t i = 0; i < a.answers.size(); ++i) {
        QCOMPARE(b.answers[i].slot, a.answers[i].slot);
        QCOMPARE(b.answers[i].sexCode, a.answers[i].sexCode);
        QCOMPARE(b.answers[i].useType, a.answers[i].useType);
        QCOMPARE(b.answers[i].useDirection, a.answers[i].useDirection);
        QCOMPARE(b.answers[i].listMother, a.answers[i].listMother);
        QCOMPARE(b.answers[i].answerMother, a.answers[i].answerMother);
        QCOMPARE(b.answers[i].firstCalfBirth, a.answers[i].firstCalfBirth);
    }

    QFile file(a.dataFolder().archiveFile());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(!file.readAll().contains(a.inputs.password.toUtf8()));
}

void TestArchive::recountEqualsAFreshDownload_data()
{
    QTest::addColumn<QDate>("date");
    QTest::addColumn<WelfareFlags>("flags");
    QTest::newRow("half a year later") << Reference.addMonths(6) << Flags(true, true, true);
    QTest::newRow("a year earlier, animals born after it") << Reference.addYears(-1) << Flags(true, true, true);
    QTest::newRow("next day, fattening unticked") << Reference.addDays(1) << Flags(true, false, true);
    QTest::newRow("a year later, dairy only") << Reference.addYears(1) << Flags(false, false, true);
}

// The registry's answers do not depend on the reference date, so counting the
// stored answers again must give what a download on that date gives.
void TestArchive::recountEqualsAFreshDownload()
{
    QFETCH(QDate, date);
    QFETCH(WelfareFlags, flags);
    const SimDataset data = DemoData(Reference);
    QTemporaryDir folder;
    DemoDownload stored(folder.path());
    stored.session.inputs.declaredLimits = DeclaredLimits{5, 0, 0, 0, 0, 0, 2};
    QCOMPARE(stored.run(data, Reference), DownloadOutcome::Completed);
    QTemporaryDir otherFolder;
    DemoDownload fresh(otherFolder.path());
    fresh.session.inputs.declaredLimits = stored.session.inputs.declaredLimits;
    QCOMPARE(fresh.run(data, date, flags, Reference), DownloadOutcome::Completed);

    DemoDownload recounted(folder.path());
    QVERIFY(OpenArchivedDownload(recounted.session, NewestId(stored.session.dataFolder())));
    recounted.session.inputs.flags = flags;
    QVERIFY(RecountCommand(recounted.session).run(date));

    QCOMPARE(FirstDifference(fresh.session, recounted.session), QString());
    QCOMPARE(recounted.session.errors(), fresh.session.errors());
    QCOMPARE(recounted.session.referenceDate, fresh.session.referenceDate);
    QCOMPARE(recounted.session.tables().mdProducent().value(u"DATA3"), FieldValue(date));
}

void TestArchive::recountNeedsLoadedData()
{
    QTemporaryDir folder;
    DemoDownload empty(folder.path());
    QVERIFY(!RecountCommand(empty.session).run(Reference));
    QCOMPARE(empty.host.messages.size(), 1u);
    QVERIFY(empty.host.messages[0].text.startsWith(u"Brak danych do przeliczenia"_s));
}

void TestArchive::keepsTheNewestDownloadsOfEachProducer()
{
    QTemporaryDir folder;
    DemoDownload d(folder.path());
    IniFile settings(d.session.dataFolder().settingsFile());
    settings.writeInteger(u"ARCHIWUM"_s, u"Zachowaj"_s, 2);
    const SimDataset data = DemoData(Reference, {5});
    for (int day = 0; day < 3; ++day)
        QCOMPARE(d.run(data, Reference.addDays(day)), DownloadOutcome::Completed);
    DownloadArchive archive(d.session.dataFolder().archiveFile());
    std::vector<ArchivedDownload> kept = archive.list();
    QCOMPARE(kept.size(), 2u);
    QCOMPARE(kept[0].referenceDate, Reference.addDays(2));
    QCOMPARE(kept[1].referenceDate, Reference.addDays(1));
    QCOMPARE(kept[0].producer, data.producers.front().numerProducenta);
    QCOMPARE(kept[0].animals, d.session.tables().mdRZ00().recordCount());

    archive.remove(kept[1].id);
    QCOMPARE(archive.list().size(), 1u);
    QVERIFY_THROWS_EXCEPTION(ArchiveError, archive.find(kept[1].id));

    settings.writeInteger(u"ARCHIWUM"_s, u"Zachowaj"_s, 0);
    QCOMPARE(d.run(data, Reference), DownloadOutcome::Completed);
    QCOMPARE(archive.list().size(), 1u);
}

// An archive that cannot be written costs the archived copy, never the download.
void TestArchive::aFailedStoreLeavesTheDownloadWhole()
{
    QTemporaryDir folder;
    DemoDownload d(folder.path());
    QVERIFY(QDir().mkpath(d.session.dataFolder().archiveFile())); // a folder where the file should be
    QCOMPARE(d.run(DemoData(Reference, {8}), Reference), DownloadOutcome::Completed);
    QCOMPARE(d.session.tables().mdRZ00().recordCount(), 8);
    QVERIFY(d.session.errors().last().startsWith(u"Pobrane dane nie zostały zapisane w archiwum: "_s));
}

// A download stored before the archive knew the declared numbers and the
// single-animal answers opens, and recounts with what the herd list said.
void TestArchive::olderArchiveIsMigrated()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"ARCHIWUM.DB"_s);
    OnArchiveFile(path, [](QSqlDatabase& database) {
        MigrateArchive(database, 1);
        QSqlQuery query(database);
        for (const char* statement :
             {R"(INSERT INTO downloads VALUES (7, '071234562', 'Stara', '2026-01-10', '2026-01-10', '2026-01-10',
                  '2026-01-10T18:00:00', 1, 1, 1, '{}', '["Nie aktywne stado: 071234562-004"]', 1, 1, 0))",
              "INSERT INTO herds VALUES (7, 0, '000', -1, 1, ''), (7, 1, '001', 0, 1, '')",
              R"(INSERT INTO animals ("download", "row", "slot", "NumerIdentyfikacyjny", "Plec", "DataUrodzenia",
                  "Wiek", "STADO", sex_code, use_type_code, use_direction_code, list_mother)
                  VALUES (7, 0, 1, 'PL001', 'Samica', '2020-01-01', 73, '001', 'XX', 'ML', 'ML', 1))",
              R"(INSERT INTO groups VALUES (7, 0, 0, 17, 'Halvarn krów mlecznych', '24 > Wiek', 1, NULL, '', '001'))"})
            QVERIFY2(query.exec(QString::fromUtf8(statement)), qPrintable(query.lastError().text()));
    });

    DownloadArchive archive(path);
    OnArchiveFile(path, [](QSqlDatabase& database) {
        QCOMPARE(One(database, u"PRAGMA user_version"_s).toInt(), ArchiveSchemaVersion);
    });
    const std::vector<ArchivedDownload> listed = archive.list();
    QCOMPARE(listed.size(), 1u);
    QCOMPARE(listed[0].name, u"Stara"_s);
    RecordingHost host;
    HalvarnSession session(DataFolder(folder.path()), host);
    QVERIFY(OpenArchivedDownload(session, 7));
    QCOMPARE(session.tables().mdRZ00().recordCount(), 1);
    QVERIFY(IsNull(session.tables().mdGT00().value(u"Limit")));
    QCOMPARE(session.answers[0].answerMother, std::optional<bool>());
    QCOMPARE(session.countingLinesFrom, -1);
    QVERIFY(RecountCommand(session).run(QDate(2026, 2, 10)));
    QCOMPARE(session.tables().mdRZ00().value(u"Wiek"), FieldValue(qint32{74}));
    QCOMPARE(session.tables().mdRZ00().value(u"CzyMatka"), FieldValue(qint32{1}));
    QCOMPARE(session.errors(), QStringList{u"Nie aktywne stado: 071234562-004"_s});
}

void TestArchive::newerArchiveIsRefused()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"ARCHIWUM.DB"_s);
    OnArchiveFile(path, [](QSqlDatabase& database) { QSqlQuery(database).exec(u"PRAGMA user_version = 99"_s); });
    try {
        DownloadArchive archive(path);
        QFAIL("a newer archive opened");
    } catch (const ArchiveError& error) {
        QVERIFY(error.message().startsWith(u"Archiwum pochodzi z nowszej wersji programu"_s));
    }
}

// A child stores downloads one after another and is killed at a random moment:
// every download the archive then lists is whole, and the file is sound.
void TestArchive::killedWhileStoringLeavesTheArchiveAsItWas()
{
    QTemporaryDir folder;
    for (int round = 0; round < 3; ++round) {
        QProcess writer;
        writer.start(QStringLiteral(HALVARN_BINARY_DIR "/tests/core/archive/archive_writer"), {folder.path()});
        QVERIFY(writer.waitForReadyRead(60'000));
        QTest::qWait(5 + 37 * round);
        writer.kill();
        QVERIFY(writer.waitForFinished());
        const int confirmed = static_cast<int>(writer.readAllStandardOutput().count('\n'));

        DownloadArchive archive(DataFolder(folder.path()).archiveFile());
        const std::vector<ArchivedDownload> listed = archive.list();
        QVERIFY(static_cast<int>(listed.size()) >= confirmed);
        OnArchiveFile(DataFolder(folder.path()).archiveFile(), [&listed](QSqlDatabase& database) {
            QCOMPARE(One(database, u"PRAGMA integrity_check"_s).toString(), u"ok"_s);
            for (const ArchivedDownload& download : listed)
                QCOMPARE(One(database, u"SELECT COUNT(*) FROM animals WHERE download = %1"_s.arg(download.id)).toInt(),
                         download.animals);
            QCOMPARE(One(database, u"SELECT COUNT(*) FROM animals WHERE download NOT IN (SELECT id FROM downloads)"_s)
                         .toInt(),
                     0);
        });
    }
}

QTEST_GUILESS_MAIN(TestArchive)
#include "test_archive.moc"
