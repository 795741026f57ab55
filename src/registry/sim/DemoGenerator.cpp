#include "registry/sim/SimDataset.h"

#include <QJsonArray>

namespace {
// splitmix64: the same numbers on every platform for the same seed.
class Random {
public:
    explicit Random(quint64 seed) : state_(seed) {}
    quint64 next()
    {
        quint64 z = (state_ += 0x9E3779B97F4A7C15ULL);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31);
    }
    int between(int low, int high) { return low + static_cast<int>(next() % static_cast<quint64>(high - low + 1)); }
    bool chance(int percent) { return between(1, 100) <= percent; }
    template <class T, std::size_t N> const T& pick(const T (&items)[N]) { return items[next() % N]; }

private:
    quint64 state_;
};

struct Code {
    const char* kod;
    const char* opis;
};

QJsonObject Pair(const Code& code)
{
    return {{QStringLiteral("kod"), QString::fromUtf8(code.kod)}, {QStringLiteral("opis"), QString::fromUtf8(code.opis)}};
}

const Code Female{"XX", "Samica"}, Male{"XY", "Samiec"};
const Code Meat{"MI", "Mięsny"}, Dairy{"ML", "Mleczny"}, Combined{"KO", "Kombinowany"};
const Code ToMeat{"MI", "Mięsny"}, ToMilk{"ML", "Mleczny"}, Fattening{"OP", "Do opasu"},
    MeatFattening{"MIOP", "Mięsny do opasu"}, MilkFattening{"MLOP", "Mleczny do opasu"};
const Code Holstein{"HO", "Holsztyńsko-fryzyjska"}, RedPolish{"PC", "Polska czerwona"}, Simmental{"SM", "Simentalska"};
const Code BeefBreeds[] = {{"LM", "Limousine"}, {"CH", "Charolaise"}, {"MM", "Mieszaniec mięsny"}};

struct AnimalProfile {
    AnimalProfile(Code sex, Code useType, Code direction, Code breed, int ageMonths, bool mother = false,
               QString motherTag = {})
        : sex(sex), useType(useType), direction(direction), breed(breed), ageMonths(ageMonths), mother(mother),
          motherTag(std::move(motherTag))
    {
    }
    Code sex, useType, direction, breed;
    int ageMonths;
    bool mother;
    QString motherTag;
};

class HerdBuilder {
public:
    HerdBuilder(Random& random, const DemoOptions& options, QString holding, int& tagCounter)
        : random_(random), options_(options), holding_(std::move(holding)), tagCounter_(tagCounter)
    {
    }

    QString add(const AnimalProfile& profile, bool withBirthDate = true)
    {
        const QString tag = QStringLiteral("PL%1").arg(5000000000LL + ++tagCounter_ * 7, 12, 10, QLatin1Char('0'));
        // Ages count whole months plus one, so an animal of A months is (A - 1) months and some days old.
        const int days = profile.ageMonths == 0 ? 0 : static_cast<int>((profile.ageMonths - 1) * 30.4375) + random_.between(1, 29);
        const QDate birth = options_.referenceDate.addDays(-days);
        QJsonObject animal{
            {QStringLiteral("numerIdentyfikacyjnyZwierzecia"), tag},
            {QStringLiteral("lp"), static_cast<int>(animals.size()) + 1},
            {QStringLiteral("dataPrzybyciaDoDzialalnosci"), Date(birth.addDays(random_.between(0, 3)))},
            {QStringLiteral("numerDzialalnosci"), holding_},
            {QStringLiteral("sposobOznakowania"), QStringLiteral("KOL")},
            {QStringLiteral("czyMatka"), profile.mother},
            {QStringLiteral("masaCialaZwierzecia"), 40 + profile.ageMonths * 22},
            {QStringLiteral("gatunek"), QJsonObject{{QStringLiteral("kod"), QStringLiteral("BYD")},
                                                    {QStringLiteral("opis"), QStringLiteral("Bydło")}}},
            {QStringLiteral("kodRasy"), Pair(profile.breed)},
            {QStringLiteral("plec"), Pair(profile.sex)},
            {QStringLiteral("typUzytkowy"), Pair(profile.useType)},
            {QStringLiteral("kierunekUzytkownia"), Pair(profile.direction)},
            {QStringLiteral("srodkiIdentyfikacji"), EarTags(birth)},
        };
        if (withBirthDate)
            animal.insert(QStringLiteral("dataUrodzenia"), Date(birth));
        if (!profile.motherTag.isEmpty())
            animal.insert(QStringLiteral("numerIdentyfikacyjnyMatki"), profile.motherTag);
        animals.push_back(animal);
        return tag;
    }

    std::vector<QJsonObject> animals;

private:
    static QString Date(QDate date) { return date.toString(u"yyyy-MM-dd"); }
    QJsonArray EarTags(QDate birth)
    {
        QJsonArray tags;
        const int count = random_.chance(90) ? 2 : 1;
        for (int i = 0; i < count; ++i)
            tags.append(QJsonObject{{QStringLiteral("rodzajSrodkaIdentyfikacji"),
                                     QJsonObject{{QStringLiteral("kod"), QStringLiteral("KOL")},
                                                 {QStringLiteral("opis"), QStringLiteral("Kolczyk")}}},
                                    {QStringLiteral("numerDuplikatu"), 0},
                                    {QStringLiteral("dataObowiazywaniaOd"), Date(birth.addDays(7))}});
        return tags;
    }

    Random& random_;
    const DemoOptions& options_;
    QString holding_;
    int& tagCounter_;
};

void DairyHerd(HerdBuilder& herd, Random& r, int size)
{
    std::vector<QString> cows;
    while (static_cast<int>(herd.animals.size()) < size) {
        const int roll = r.between(1, 100);
        const Code& breed = r.chance(85) ? Holstein : r.chance(50) ? RedPolish : Simmental;
        if (roll <= 45 || cows.empty())
            cows.push_back(herd.add({Female, Dairy, ToMilk, breed, r.between(26, 120), true, {}}));
        else if (roll <= 65)
            herd.add({Female, Dairy, ToMilk, breed, r.between(7, 24)});
        else if (roll <= 90)
            herd.add({r.chance(50) ? Female : Male, Dairy, r.chance(70) ? ToMilk : MilkFattening, breed,
                      r.between(0, 6), false, cows[r.next() % cows.size()]});
        else
            herd.add({Male, r.chance(50) ? Dairy : Combined, r.chance(50) ? Fattening : MilkFattening, breed,
                      r.between(7, 30)});
    }
}

void SucklerHerd(HerdBuilder& herd, Random& r, int size)
{
    std::vector<QString> cows;
    herd.add({Male, Meat, ToMeat, r.pick(BeefBreeds), r.between(30, 70)}); // the breeding bull
    while (static_cast<int>(herd.animals.size()) < size) {
        const int roll = r.between(1, 100);
        const Code& breed = r.pick(BeefBreeds);
        if (roll <= 40 || cows.empty())
            cows.push_back(herd.add({Female, Meat, ToMeat, breed, r.between(26, 140), true, {}}));
        else if (roll <= 70)
            herd.add({r.chance(50) ? Female : Male, Meat, ToMeat, breed, r.between(0, 8), false,
                      cows[r.next() % cows.size()]});
        else if (roll <= 90)
            herd.add({Female, r.chance(80) ? Meat : Combined, ToMeat, breed, r.between(7, 24)});
        else
            herd.add({Male, Meat, MeatFattening, breed, r.between(7, 18)});
    }
}

void FatteningHerd(HerdBuilder& herd, Random& r, int size)
{
    const Code types[] = {Meat, Combined, Dairy};
    const Code directions[] = {Fattening, MeatFattening, MilkFattening};
    while (static_cast<int>(herd.animals.size()) < size) {
        const Code& breed = r.chance(60) ? r.pick(BeefBreeds) : Holstein;
        herd.add({r.chance(75) ? Male : Female, r.pick(types), r.pick(directions), breed, r.between(1, 20)});
    }
}

QJsonObject HoldingJson(const DemoOptions& options, const QString& number, bool active, int animals, Random& r)
{
    const Code places[][5] = {
        {{"14", "mazowieckie"}, {"1412", "miński"}, {"141205", "Mrozy"}, {"0653210", "Zielonka"}, {"", ""}},
        {{"06", "lubelskie"}, {"0619", "łukowski"}, {"061904", "Stoczek Łukowski"}, {"0389712", "Jagodne"}, {"", ""}},
    };
    const auto& place = places[r.next() % 2];
    const QJsonObject cattle{{QStringLiteral("kod"), QStringLiteral("BYD")}, {QStringLiteral("opis"), QStringLiteral("Bydło")}};
    return {
        {QStringLiteral("numerProducenta"), options.producerNumber},
        {QStringLiteral("numerDzialalnosci"), number},
        {QStringLiteral("dataObowiazywaniaOdStan"), QStringLiteral("2004-05-01")},
        {QStringLiteral("dataZarejestrowania"), QStringLiteral("2004-05-01")},
        {QStringLiteral("weterynaryjnyNumerIdentyfikacyjny"), QStringLiteral("1412%1").arg(r.between(1000, 9999))},
        {QStringLiteral("czyDzierzawaRzezni"), false},
        {QStringLiteral("adresDzialalnosciNrDomu"), QString::number(r.between(1, 120))},
        {QStringLiteral("adresDzialalnosciKodPocztowy"), QStringLiteral("05-320")},
        {QStringLiteral("adresDzialalnosciPoczta"), QString::fromUtf8(place[2].opis)},
        {QStringLiteral("telefonKomorkowy"), QStringLiteral("600%1").arg(r.between(100000, 999999))},
        {QStringLiteral("adresDzialalnosciPozycjaX"), 52.0 + r.between(0, 999) / 1000.0},
        {QStringLiteral("adresDzialalnosciPozycjaY"), 21.0 + r.between(0, 999) / 1000.0},
        {QStringLiteral("zalacznikZDecyzjaPLW"), false},
        {QStringLiteral("typDzialalnosci"), Pair({"GOSP", "Gospodarstwo"})},
        {QStringLiteral("rodzajDzialalnosci"), Pair({"HODOW", "Hodowla"})},
        {QStringLiteral("stanDzialalnosci"), Pair(active ? Code{"SDZA", "Aktywna"} : Code{"SDZZ", "Zawieszona"})},
        {QStringLiteral("adresDzialalnosciWojewodztwo"), Pair(place[0])},
        {QStringLiteral("adresDzialalnosciPowiat"), Pair(place[1])},
        {QStringLiteral("adresDzialalnosciGmina"), Pair(place[2])},
        {QStringLiteral("adresDzialalnosciMiejscowosc"), Pair(place[3])},
        {QStringLiteral("listaBudynkow"), QJsonArray{QJsonObject{{QStringLiteral("lp"), 1},
                                                                 {QStringLiteral("budynekPozycjaX"), r.between(1, 999)},
                                                                 {QStringLiteral("budynekPozycjaY"), r.between(1, 999)}}}},
        {QStringLiteral("listaDeklarowanychGatunkow"), QJsonArray{QJsonObject{{QStringLiteral("lp"), 1},
                                                                              {QStringLiteral("gatunek"), cattle}}}},
        {QStringLiteral("zwierzetaWDzialalnosci"), QJsonArray{QJsonObject{{QStringLiteral("liczbaZwierzat"), animals},
                                                                          {QStringLiteral("liczbaNieprawidlowosci"), 0},
                                                                          {QStringLiteral("zablokowaneZwierzeta"), false},
                                                                          {QStringLiteral("gatunek"), cattle}}}},
        {QStringLiteral("przydzieloneIdentyfikatory"),
         QJsonArray{QJsonObject{{QStringLiteral("liczbaIdentyfikatorowPrzydzielonych"), animals * 2 + 40},
                                {QStringLiteral("liczbaIdentyfikatorowWykorzystanych"), animals * 2},
                                {QStringLiteral("liczbaDuplikatow"), 0},
                                {QStringLiteral("gatunek"), cattle}}}},
        {QStringLiteral("stanDzialalnosciDlaGatunku"), QJsonArray{}},
    };
}
} // namespace

SimDataset GenerateDemoDataset(const DemoOptions& options)
{
    Random random(options.seed);
    SimProducer producer{options.producerNumber, options.login, options.password, {}};
    int tagCounter = 0;
    const auto holdingNumber = [&options](std::size_t i) {
        return options.producerNumber + QStringLiteral("-%1").arg(i + 1, 3, 10, QLatin1Char('0'));
    };
    for (std::size_t i = 0; i < options.herdSizes.size(); ++i) {
        HerdBuilder herd(random, options, holdingNumber(i), tagCounter);
        const int size = options.herdSizes[i];
        if (i == 0 && size >= 3) {
            // Females either side of the age at which the full record decides motherhood.
            herd.add({Female, Dairy, ToMilk, Holstein, 14});
            herd.add({Female, Dairy, ToMilk, Holstein, 15});
            herd.add({Male, Combined, Fattening, Holstein, 5}, false); // no birth date in the registry
        }
        switch (i % 3) {
        case 0: DairyHerd(herd, random, size); break;
        case 1: SucklerHerd(herd, random, size); break;
        default: FatteningHerd(herd, random, size);
        }
        herd.animals.resize(static_cast<std::size_t>(size));
        producer.holdings.push_back({HoldingJson(options, holdingNumber(i), true, size, random), herd.animals});
    }
    const std::size_t inactive = options.herdSizes.size();
    HerdBuilder old(random, options, holdingNumber(inactive), tagCounter);
    FatteningHerd(old, random, 3);
    producer.holdings.push_back({HoldingJson(options, holdingNumber(inactive), false, 3, random), old.animals});
    producer.holdings.push_back({HoldingJson(options, holdingNumber(inactive + 1), true, 0, random), {}});
    SimDataset data;
    data.producers.push_back(std::move(producer));
    return data;
}
