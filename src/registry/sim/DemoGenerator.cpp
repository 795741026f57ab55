#include "registry/sim/SimDataset.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

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
    return {{u"kod"_s, QString::fromUtf8(code.kod)}, {u"opis"_s, QString::fromUtf8(code.opis)}};
}

const Code Female{"XX", "Samica"}, Male{"XY", "Samiec"};
const Code Meat{"MI", "Mięsny"}, Dairy{"ML", "Mleczny"}, Combined{"KO", "Kombinowany"};
const Code ToMeat{"MI", "Mięsny"}, ToMilk{"ML", "Mleczny"}, Fattening{"OP", "Do opasu"},
    MeatFattening{"MIOP", "Mięsny do opasu"}, MilkFattening{"MLOP", "Mleczny do opasu"};
const Code Holstein{"HO", "Holsztyńsko-fryzyjska"}, RedPolish{"PC", "Polska czerwona"}, Simmental{"SM", "Simentalska"};
const Code BeefBreeds[] = {{"LM", "Limousine"}, {"CH", "Charolaise"}, {"MM", "Mieszaniec mięsny"}};

struct AnimalProfile {
    AnimalProfile(Code sexCode, Code useTypeCode, Code directionCode, Code breedCode, int months, bool isMother = false,
                  QString tagOfMother = {})
        : sex(sexCode), useType(useTypeCode), direction(directionCode), breed(breedCode), ageMonths(months),
          mother(isMother), motherTag(std::move(tagOfMother))
    {}
    Code sex, useType, direction, breed;
    int ageMonths;
    bool mother;
    QString motherTag;
};

class HerdBuilder {
public:
    HerdBuilder(Random& random, const DemoOptions& options, QString holding, int& tagCounter)
        : random_(random), options_(options), holding_(std::move(holding)), tagCounter_(tagCounter)
    {}

    QString add(const AnimalProfile& profile, bool withBirthDate = true)
    {
        const QString tag = u"PL%1"_s.arg(options_.firstTag + ++tagCounter_ * 7, 12, 10, QLatin1Char('0'));
        // Ages count whole months plus one, so an animal of A months is (A - 1) months and some days old.
        const int days =
            profile.ageMonths == 0 ? 0 : static_cast<int>((profile.ageMonths - 1) * 30.4375) + random_.between(1, 29);
        const QDate birth = options_.referenceDate.addDays(-days);
        QJsonObject animal{
            {u"numerIdentyfikacyjnyZwierzecia"_s, tag},
            {u"lp"_s, static_cast<int>(animals.size()) + 1},
            {u"dataPrzybyciaDoDzialalnosci"_s, Date(birth.addDays(random_.between(0, 3)))},
            {u"numerDzialalnosci"_s, holding_},
            {u"sposobOznakowania"_s, u"KOL"_s},
            {u"czyMatka"_s, profile.mother},
            {u"masaCialaZwierzecia"_s, 40 + profile.ageMonths * 22},
            {u"gatunek"_s, QJsonObject{{u"kod"_s, u"BYD"_s}, {u"opis"_s, u"Bydło"_s}}},
            {u"kodRasy"_s, Pair(profile.breed)},
            {u"plec"_s, Pair(profile.sex)},
            {u"typUzytkowy"_s, Pair(profile.useType)},
            {u"kierunekUzytkownia"_s, Pair(profile.direction)},
            {u"srodkiIdentyfikacji"_s, EarTags(birth)},
        };
        if (withBirthDate)
            animal.insert(u"dataUrodzenia"_s, Date(birth));
        if (!profile.motherTag.isEmpty())
            animal.insert(u"numerIdentyfikacyjnyMatki"_s, profile.motherTag);
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
            tags.append(QJsonObject{
                {u"rodzajSrodkaIdentyfikacji"_s, QJsonObject{{u"kod"_s, u"KOL"_s}, {u"opis"_s, u"Kolczyk"_s}}},
                {u"numerDuplikatu"_s, 0},
                {u"dataObowiazywaniaOd"_s, Date(birth.addDays(7))}});
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
    const QJsonObject cattle{{u"kod"_s, u"BYD"_s}, {u"opis"_s, u"Bydło"_s}};
    return {
        {u"numerProducenta"_s, options.producerNumber},
        {u"numerDzialalnosci"_s, number},
        {u"dataObowiazywaniaOdStan"_s, u"2004-05-01"_s},
        {u"dataZarejestrowania"_s, u"2004-05-01"_s},
        {u"weterynaryjnyNumerIdentyfikacyjny"_s, u"1412%1"_s.arg(r.between(1000, 9999))},
        {u"czyDzierzawaRzezni"_s, false},
        {u"adresDzialalnosciNrDomu"_s, QString::number(r.between(1, 120))},
        {u"adresDzialalnosciKodPocztowy"_s, u"05-320"_s},
        {u"adresDzialalnosciPoczta"_s, QString::fromUtf8(place[2].opis)},
        {u"telefonKomorkowy"_s, u"600%1"_s.arg(r.between(100000, 999999))},
        {u"adresDzialalnosciPozycjaX"_s, 52.0 + r.between(0, 999) / 1000.0},
        {u"adresDzialalnosciPozycjaY"_s, 21.0 + r.between(0, 999) / 1000.0},
        {u"zalacznikZDecyzjaPLW"_s, false},
        {u"typDzialalnosci"_s, Pair({"GOSP", "Gospodarstwo"})},
        {u"rodzajDzialalnosci"_s, Pair({"HODOW", "Hodowla"})},
        {u"stanDzialalnosci"_s, Pair(active ? Code{"SDZA", "Aktywna"} : Code{"SDZZ", "Zawieszona"})},
        {u"adresDzialalnosciWojewodztwo"_s, Pair(place[0])},
        {u"adresDzialalnosciPowiat"_s, Pair(place[1])},
        {u"adresDzialalnosciGmina"_s, Pair(place[2])},
        {u"adresDzialalnosciMiejscowosc"_s, Pair(place[3])},
        {u"listaBudynkow"_s,
         QJsonArray{QJsonObject{
             {u"lp"_s, 1}, {u"budynekPozycjaX"_s, r.between(1, 999)}, {u"budynekPozycjaY"_s, r.between(1, 999)}}}},
        {u"listaDeklarowanychGatunkow"_s, QJsonArray{QJsonObject{{u"lp"_s, 1}, {u"gatunek"_s, cattle}}}},
        {u"zwierzetaWDzialalnosci"_s, QJsonArray{QJsonObject{{u"liczbaZwierzat"_s, animals},
                                                             {u"liczbaNieprawidlowosci"_s, 0},
                                                             {u"zablokowaneZwierzeta"_s, false},
                                                             {u"gatunek"_s, cattle}}}},
        {u"przydzieloneIdentyfikatory"_s,
         QJsonArray{QJsonObject{{u"liczbaIdentyfikatorowPrzydzielonych"_s, animals * 2 + 40},
                                {u"liczbaIdentyfikatorowWykorzystanych"_s, animals * 2},
                                {u"liczbaDuplikatow"_s, 0},
                                {u"gatunek"_s, cattle}}}},
        {u"stanDzialalnosciDlaGatunku"_s, QJsonArray{}},
    };
}
} // namespace

SimDataset GenerateDemoDataset(const DemoOptions& options)
{
    Random random(options.seed);
    SimProducer producer{options.producerNumber, options.login, options.password, {}};
    int tagCounter = 0;
    const auto holdingNumber = [&options](std::size_t i) {
        return options.producerNumber + u"-%1"_s.arg(i + 1, 3, 10, QLatin1Char('0'));
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

std::vector<DemoOptions> FurtherDemoProducers(QDate referenceDate)
{
    DemoOptions second;
    second.seed = 20261124;
    second.producerNumber = u"082456131"_s;
    second.login = u"uzytkownik.testowy.2"_s;
    second.password = u"Brzezina4Mx9!"_s;
    second.herdSizes = {60, 45};
    second.firstTag = 6000000000;
    DemoOptions third;
    third.seed = 20261125;
    third.producerNumber = u"063719251"_s;
    third.login = u"uzytkownik.testowy.3"_s;
    third.password = u"Olszynka2Qt5!"_s;
    third.herdSizes = {40, 30, 55, 25};
    third.firstTag = 7000000000;
    std::vector<DemoOptions> producers{second, third};
    for (DemoOptions& producer : producers)
        producer.referenceDate = referenceDate;
    return producers;
}
