// Catalogue rebuild plus writing and analysing 100,000 animals over 20 herds,
// the way a download writes and counts them. Prints time and peak memory.
#include "BenchSupport.h"
#include "GeneratedAnimals.h"
#include "analysis/AgeInMonths.h"
#include "analysis/GroupCatalogue.h"
#include "analysis/WelfareAnalysis.h"
#include "core/tables/WorkingTables.h"
#include "registry/download/AnimalRowWriter.h"

#include <QElapsedTimer>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {
constexpr int Herds = 20;
constexpr int AnimalsPerHerd = 5000;
} // namespace

int main()
{
    QTextStream out(stdout);
    const TDateTime reference = ToDateTime(QDate(2026, 11, 23));
    WorkingTables tables;
    for (Table* table : tables.all())
        table->open();
    const AgeLimits limits = AgeLimits::defaults();
    const WelfareFlags flags;
    quint64 state = 20261123;
    qint64 elapsedNs = 0;
    qint64 cpuNs = 0;
    QElapsedTimer timer;
    timer.start();
    qint64 cpuStart = CpuNanoseconds();
    RebuildGroupCatalogue(tables, limits, flags);
    AnimalRowWriter writer(tables);
    WelfareAnalysis analysis(tables, limits, flags);
    elapsedNs += timer.nsecsElapsed();
    cpuNs += CpuNanoseconds() - cpuStart;
    for (int herd = 1; herd <= Herds; ++herd) {
        std::vector<std::unique_ptr<TZZIInfoClass>> animals; // made outside the measured time
        for (int i = 0; i < AnimalsPerHerd; ++i)
            animals.push_back(MakeAnimal(state, herd, i, reference));
        const QString code = u"%1"_s.arg(herd, 3, 10, QLatin1Char('0'));
        timer.restart();
        cpuStart = CpuNanoseconds();
        for (const auto& animal : animals) {
            const int age = AgeInMonths(animal->dataUrodzenia, reference);
            writer.write(*animal, animal->czyMatka, age, code, herd);
            analysis.analyse({animal->plec.kod, animal->typUzytkowy.kod, animal->kierunekUzytkownia.kod, age, true, {}},
                             herd);
        }
        elapsedNs += timer.nsecsElapsed();
        cpuNs += CpuNanoseconds() - cpuStart;
    }
    const double seconds = static_cast<double>(elapsedNs) / 1e9;
    out << "animals written and analysed: " << Herds * AnimalsPerHerd << Qt::endl;
    out << "rows in mdRZ00: " << tables.mdRZ00().recordCount() << Qt::endl;
    out << "time: " << QString::number(seconds, 'f', 3)
        << " s (target < 0.5 s), of which on the CPU: " << QString::number(static_cast<double>(cpuNs) / 1e9, 'f', 3)
        << " s" << Qt::endl;
    out << "peak memory: " << PeakMegabytes() << " MB (target < 200 MB)" << Qt::endl;
    return 0;
}
