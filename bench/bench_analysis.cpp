// Catalogue rebuild plus writing and analysing 100,000 animals over 20 herds,
// the way a download writes and counts them. Prints time and peak memory.
#include "BenchSupport.h"
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

// A fresh copy, as the JSON parser would give every animal its own strings.
QString Fresh(const char* text)
{
    const QString shared = QString::fromUtf8(text);
    return QString(shared.constData(), shared.size());
}

KodOpis Pair(const char* kod, const char* opis)
{
    KodOpis pair;
    pair.kod = Fresh(kod);
    pair.opis = Fresh(opis);
    return pair;
}

std::unique_ptr<TZZIInfoClass> MakeAnimal(quint64& state, int herd, int index, TDateTime reference)
{
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    const auto pick = [&state](int n) { return static_cast<int>((state >> 33) % static_cast<quint64>(n)); };
    static const char* types[][2] = {{"MI", "Mięsny"}, {"ML", "Mleczny"}, {"KO", "Kombinowany"}};
    static const char* directions[][2] = {{"MI", "Mięsny"},
                                          {"ML", "Mleczny"},
                                          {"OP", "Do opasu"},
                                          {"MIOP", "Mięsny do opasu"},
                                          {"MLOP", "Mleczny do opasu"}};
    auto animal = std::make_unique<TZZIInfoClass>();
    animal->numerIdentyfikacyjnyZwierzecia =
        u"PL%1%2"_s.arg(herd, 4, 10, QLatin1Char('0')).arg(index, 8, 10, QLatin1Char('0'));
    animal->dataUrodzenia = reference - pick(3000);
    animal->plec = pick(2) ? Pair("XX", "Samica") : Pair("XY", "Samiec");
    const int type = pick(3);
    const int direction = pick(5);
    animal->typUzytkowy = Pair(types[type][0], types[type][1]);
    animal->kierunekUzytkownia = Pair(directions[direction][0], directions[direction][1]);
    animal->kodRasy = Pair("HO", "Holsztyńsko-fryzyjska");
    animal->numerDzialalnosci = u"071234562-%1"_s.arg(herd, 3, 10, QLatin1Char('0'));
    animal->numerIdentyfikacyjnyMatki = Fresh("PL005000000000");
    return animal;
}

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
