// The archive of downloads: storing and reopening a download of 20,000 animals,
// and counting 100,000 animals again on another reference date. Prints times
// and peak memory.
#include "BenchSupport.h"
#include "GeneratedAnimals.h"
#include "analysis/AgeInMonths.h"
#include "analysis/WelfareAnalysis.h"
#include "core/archive/ArchiveCommands.h"
#include "core/archive/DownloadArchive.h"
#include "core/archive/DownloadComparison.h"
#include "core/recount/RecountCommand.h"
#include "core/session/HalvarnSession.h"
#include "registry/download/AnimalRowWriter.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTextStream>

namespace {
constexpr int Herds = 20;
const QDate Reference(2026, 11, 23);

// A session as a download of `animals` animals over 20 herds leaves it.
void FillSession(HalvarnSession& session, int animals)
{
    session.ClearAllData();
    WorkingTables& tables = session.tables();
    AnimalRowWriter writer(tables);
    WelfareAnalysis analysis(tables, AgeLimits::defaults(), session.halvarnFlags);
    const TDateTime reference = ToDateTime(Reference);
    quint64 state = 20261123;
    for (int i = 0; i < animals; ++i) {
        const int herd = 1 + i % Herds;
        const auto animal = MakeAnimal(state, herd, i, reference);
        const int age = AgeInMonths(animal->dataUrodzenia, reference);
        const QString code = u"%1"_s.arg(herd, 3, 10, QLatin1Char('0'));
        writer.write(*animal, animal->czyMatka, age, code, herd);
        analysis.analyse({animal->plec.kod, animal->typUzytkowy.kod, animal->kierunekUzytkownia.kod, age, true, {}},
                         herd);
        session.answers.push_back({herd, animal->plec.kod, animal->typUzytkowy.kod, animal->kierunekUzytkownia.kod,
                                   animal->czyMatka, std::nullopt, std::nullopt});
        tables.HerdSlots[static_cast<std::size_t>(herd)].Code = code;
        tables.HerdSlots[static_cast<std::size_t>(herd)].Visible = true;
    }
    Table& producer = tables.mdProducent();
    producer.setReadOnly(false);
    producer.append();
    producer.setValue(u"PRODUCENT", u"071234562"_s);
    producer.setValue(u"DATA3", Reference);
    producer.post();
    session.herdCount = Herds;
    session.referenceDate = Reference;
    session.DataLoaded = true;
}
} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    QTemporaryDir folder;
    BenchHost host;
    {
        HalvarnSession session(DataFolder(folder.path()), host);
        FillSession(session, 20'000);
        DownloadArchive archive(session.dataFolder().archiveFile());
        qint64 id = 0;
        const Timing store = Measure([&] { id = archive.store(session, 20); });
        out << "store 20,000 animals: " << store.text() << " (goal <= 1 s)" << Qt::endl;
        HalvarnSession reopened(DataFolder(folder.path()), host);
        const Timing reopen = Measure([&] { OpenArchivedDownload(reopened, id); });
        out << "reopen 20,000 animals: " << reopen.text() << " (goal <= 1 s)" << Qt::endl;
        out << "archive file: " << QFileInfo(session.dataFolder().archiveFile()).size() / 1024 << " KB" << Qt::endl;
        const qint64 second = archive.store(session, 20);
        const Timing compare = Measure([&] { DownloadComparison::fromArchive(session.dataFolder(), id, second); });
        out << "compare two stored downloads of 20,000 animals: " << compare.text() << Qt::endl;
    }
    HalvarnSession session(DataFolder(folder.path()), host);
    FillSession(session, 100'000);
    const Timing recount = Measure([&] { RecountCommand(session).run(Reference.addMonths(-5)); });
    out << "recount 100,000 animals on another date: " << recount.text() << " (goal <= 0.3 s)" << Qt::endl;
    out << "peak memory: " << PeakMegabytes() << " MB" << Qt::endl;
    return 0;
}
