// Every record class against the registry's keys: each key given a value of
// its own must land in its own field with its own type, and a key that is
// missing or null must leave the field at 0, false, empty or the empty date.
#include "registry/records/Dokument.h"
#include "registry/records/Stado.h"
#include "registry/records/ZZIInfo.h"

#include <QTest>
#include <QVariant>

#include <functional>

using namespace Qt::StringLiterals;

namespace {
enum class Kind { Integer, Flag, Number, Text, Date, DocumentDate, Pair, DuplicateCount };
enum class Fill { Values, Nulls, Nothing };

template <class T> struct Key {
    const char* name;
    Kind kind;
    std::function<QVariant(const T&)> read;
};

QVariant Value(qint32 v) { return v; }
QVariant Value(bool v) { return v; }
QVariant Value(double v) { return v; }
QVariant Value(const QString& v) { return v; }
QVariant Value(const KodOpis& v) { return QStringList{v.kod, v.opis}; }

// The member is named as the key is spelled; a member spelled otherwise does not compile.
#define KEY(T, member, kind) Key<T>{#member, Kind::kind, [](const T& r) { return Value(r.member); }}

const QDate FirstDay(2001, 2, 3);

QJsonValue JsonValue(Kind kind, const char* key, int n)
{
    switch (kind) {
    case Kind::Integer: return 100 + n;
    case Kind::Flag: return true;
    case Kind::Number: return n + 0.25;
    case Kind::Text: return QString::fromUtf8(key) + u" ł"_s;
    case Kind::Date: return FirstDay.addDays(n).toString(u"yyyy-MM-dd");
    case Kind::DocumentDate: return FirstDay.addDays(n).toString(u"yyyy-MM-dd") + u"T06:00:00"_s;
    case Kind::Pair:
        return QJsonObject{{u"kod"_s, u"K%1"_s.arg(n)},
                           {u"opis"_s, u"opis "_s + QString::fromUtf8(key)}};
    case Kind::DuplicateCount: return 3;
    }
    return {};
}

QVariant Expected(Kind kind, const char* key, int n, Fill fill)
{
    const bool set = fill == Fill::Values;
    switch (kind) {
    case Kind::Integer: return set ? 100 + n : 0;
    case Kind::Flag:
    case Kind::DuplicateCount: return set;
    case Kind::Number: return set ? n + 0.25 : 0.0;
    case Kind::Text: return set ? QString::fromUtf8(key) + u" ł"_s : QString();
    case Kind::Date: return set ? ToDateTime(FirstDay.addDays(n)) : EmptyDate;
    case Kind::DocumentDate: return set ? ToDateTime(FirstDay.addDays(n)) + 0.25 : EmptyDate;
    case Kind::Pair:
        return set ? QStringList{u"K%1"_s.arg(n), u"opis "_s + QString::fromUtf8(key)}
                   : QStringList{QString(), QString()};
    }
    return {};
}

template <class T> QJsonObject JsonFor(const std::vector<Key<T>>& keys, Fill fill, int offset = 0)
{
    QJsonObject object;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (fill == Fill::Values)
            object.insert(QLatin1String(keys[i].name), JsonValue(keys[i].kind, keys[i].name, offset + int(i)));
        else if (fill == Fill::Nulls)
            object.insert(QLatin1String(keys[i].name), QJsonValue::Null);
    }
    return object;
}

template <class T> bool Matches(const T& record, const std::vector<Key<T>>& keys, Fill fill, int offset = 0)
{
    bool all = true;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const QVariant actual = keys[i].read(record);
        const QVariant expected = Expected(keys[i].kind, keys[i].name, offset + int(i), fill);
        if (actual != expected) {
            const auto text = [](const QVariant& v) { return v.toString() + v.toStringList().join(u'|'); };
            qWarning("%s: %s instead of %s", keys[i].name, qPrintable(text(actual)), qPrintable(text(expected)));
            all = false;
        }
    }
    return all;
}

// A record class and the keys of its JSON object.
template <class T> std::unique_ptr<T> ParseOne(const QJsonObject& object)
{
    OwningList<T> list;
    T::Parse(object, list);
    return std::move(list.front());
}

const std::vector<Key<TStadoBudynekClass>> BuildingKeys{
    KEY(TStadoBudynekClass, lp, Integer), KEY(TStadoBudynekClass, budynekPozycjaX, Integer),
    KEY(TStadoBudynekClass, budynekPozycjaY, Integer)};
const std::vector<Key<TStadoDeklarowanyGatunkowClass>> SpeciesKeys{
    KEY(TStadoDeklarowanyGatunkowClass, lp, Integer), KEY(TStadoDeklarowanyGatunkowClass, gatunek, Pair)};
const std::vector<Key<TStadoSystemuUtrzymywaniaZwierzatClass>> KeepingKeys{
    KEY(TStadoSystemuUtrzymywaniaZwierzatClass, lp, Integer),
    KEY(TStadoSystemuUtrzymywaniaZwierzatClass, dataZakonczeniaZaprzestaniaDzialalnosci, Date),
    KEY(TStadoSystemuUtrzymywaniaZwierzatClass, gatunek, Pair),
    KEY(TStadoSystemuUtrzymywaniaZwierzatClass, systemUtrzymaniaZwierzat, Pair),
    KEY(TStadoSystemuUtrzymywaniaZwierzatClass, technologiaProdukcji, Pair)};
const std::vector<Key<TStadoZwierzeciaWDzialalnosciClass>> CountKeys{
    KEY(TStadoZwierzeciaWDzialalnosciClass, liczbaZwierzat, Integer),
    KEY(TStadoZwierzeciaWDzialalnosciClass, liczbaNieprawidlowosci, Integer),
    KEY(TStadoZwierzeciaWDzialalnosciClass, zablokowaneZwierzeta, Flag),
    KEY(TStadoZwierzeciaWDzialalnosciClass, gatunek, Pair),
    KEY(TStadoZwierzeciaWDzialalnosciClass, statusGatunku, Pair)};
using Keeper = TStadoOsobaOpiekujacSieZwierzetamiClass;
const std::vector<Key<Keeper>> KeeperKeys{
    KEY(Keeper, lp, Integer), KEY(Keeper, zgodaNaKomunikacjeElektroniczna, Flag),
    KEY(Keeper, producentJestWlascicielem, Flag), KEY(Keeper, pesel, Text), KEY(Keeper, nip, Text),
    KEY(Keeper, regon, Text), KEY(Keeper, posesja, Text), KEY(Keeper, lokal, Text), KEY(Keeper, kodPocztowy, Text),
    KEY(Keeper, poczta, Text), KEY(Keeper, numerTelefonu, Text), KEY(Keeper, numerWlascicielaLubProducentaEP, Text),
    KEY(Keeper, nazwiskoNazwa, Text), KEY(Keeper, imieNazwaSkrocona, Text),
    KEY(Keeper, numerPaszportuLubInnegoDokumentu, Text), KEY(Keeper, adresEmail, Text), KEY(Keeper, typOsoby, Pair),
    KEY(Keeper, kraj, Pair), KEY(Keeper, wojewodztwo, Pair), KEY(Keeper, powiat, Pair), KEY(Keeper, gmina, Pair),
    KEY(Keeper, miejscowosc, Pair), KEY(Keeper, ulica, Pair)};
using Tags = TStadoPrzydzieloneIdentyfikatoryClass;
const std::vector<Key<Tags>> TagKeys{
    KEY(Tags, liczbaIdentyfikatorowPrzydzielonych, Integer), KEY(Tags, liczbaIdentyfikatorowWykorzystanych, Integer),
    KEY(Tags, liczbaDuplikatow, DuplicateCount), KEY(Tags, gatunek, Pair)};
using Point = TStadoPastwiskoPunktPolozeniaClass;
const std::vector<Key<Point>> PointKeys{
    KEY(Point, lp, Integer), KEY(Point, pozycjaX, Integer), KEY(Point, pozycjaY, Integer),
    KEY(Point, nazwaObrebuEwidencyjnego, Text), KEY(Point, numerObrebuEwidencyjnego, Text),
    KEY(Point, numerArkuszaMapy, Text), KEY(Point, numerPunktuPolozenia, Text),
    KEY(Point, numerDzialkiEwidencyjnej, Text), KEY(Point, wojewodztwo, Pair), KEY(Point, powiat, Pair),
    KEY(Point, gmina, Pair)};
const std::vector<Key<TStadoPastwiskoClass>> PastureKeys{KEY(TStadoPastwiskoClass, lp, Integer),
                                                         KEY(TStadoPastwiskoClass, opisPastwiska, Text)};
using SpeciesState = TStadoStanDzialalnosciDlaGatunkuClass;
const std::vector<Key<SpeciesState>> SpeciesStateKeys{
    KEY(SpeciesState, lp, Integer), KEY(SpeciesState, dataOd, Date), KEY(SpeciesState, dataDo, Date),
    KEY(SpeciesState, opisStanu, Text), KEY(SpeciesState, gatunek, Pair), KEY(SpeciesState, przyczynaZmiany, Pair),
    KEY(SpeciesState, stanDzialalnosciDlaGatunku, Pair)};
using Parcel = TStadoDzialkaEwidencyjnaClass;
const std::vector<Key<Parcel>> ParcelKeys{
    KEY(Parcel, lp, Integer), KEY(Parcel, nazwaObrebuEwidencyjnego, Text), KEY(Parcel, numerObrebuEwidencyjnego, Text),
    KEY(Parcel, numerArkuszaMapy, Text), KEY(Parcel, numerDzialkiEwidencyjnej, Text), KEY(Parcel, wojewodztwo, Pair),
    KEY(Parcel, powiat, Pair), KEY(Parcel, gmina, Pair)};
using Herd = TStadoClass;
const std::vector<Key<Herd>> HerdKeys{
    KEY(Herd, numerProducenta, Text), KEY(Herd, numerDzialalnosci, Text), KEY(Herd, dataObowiazywaniaOdStan, Date),
    KEY(Herd, dataObowiazywaniaDoStan, Date), KEY(Herd, stanOpis, Text), KEY(Herd, dataZarejestrowania, Date),
    KEY(Herd, dataWyrejestrowania, Date), KEY(Herd, weterynaryjnyNumerIdentyfikacyjny, Text),
    KEY(Herd, dataWydaniaDecyzji, Date), KEY(Herd, czyDzierzawaRzezni, Flag), KEY(Herd, numerRzezniDzierzawa, Text),
    KEY(Herd, dzierzawaOdDaty, Date), KEY(Herd, dzierzawaDoDaty, Date), KEY(Herd, adresDzialalnosciNrDomu, Text),
    KEY(Herd, adresDzialalnosciNrLokalu, Text), KEY(Herd, adresDzialalnosciKodPocztowy, Text),
    KEY(Herd, adresDzialalnosciPoczta, Text), KEY(Herd, telefonStacjonarny, Text), KEY(Herd, telefonKomorkowy, Text),
    KEY(Herd, adresEmail, Text), KEY(Herd, adresDzialalnosciPozycjaX, Number),
    KEY(Herd, adresDzialalnosciPozycjaY, Number), KEY(Herd, zalacznikZDecyzjaPLW, Flag),
    KEY(Herd, przyczynaZmianyStanu, Pair), KEY(Herd, typDzialalnosci, Pair), KEY(Herd, rodzajDzialalnosci, Pair),
    KEY(Herd, stanDzialalnosci, Pair), KEY(Herd, adresDzialalnosciWojewodztwo, Pair),
    KEY(Herd, adresDzialalnosciPowiat, Pair), KEY(Herd, adresDzialalnosciGmina, Pair),
    KEY(Herd, adresDzialalnosciMiejscowosc, Pair), KEY(Herd, adresDzialalnosciUlica, Pair)};
using Tag = TZZIInfoSrodekIdentyfikacjiClass;
const std::vector<Key<Tag>> EarTagKeys{KEY(Tag, rodzajSrodkaIdentyfikacji, Pair),
                                       KEY(Tag, lokalizacjaTranspondera, Text), KEY(Tag, numerDuplikatu, Integer),
                                       KEY(Tag, dataObowiazywaniaOd, Date)};
using Animal = TZZIInfoClass;
const std::vector<Key<Animal>> AnimalKeys{
    KEY(Animal, numerIdentyfikacyjnyZwierzecia, Text), KEY(Animal, lp, Integer), KEY(Animal, dataUrodzenia, Date),
    KEY(Animal, dataPrzybyciaDoDzialalnosci, Date), KEY(Animal, dataWyrejestrowania, Date),
    KEY(Animal, numerDzialalnosci, Text), KEY(Animal, poprzedniNumerIdentyfikacyjny, Text),
    KEY(Animal, numerIdentyfikacyjnyMatki, Text), KEY(Animal, numerIdentyfikacyjnyDawczyni, Text),
    KEY(Animal, numerIdentyfikacyjnyDawcy, Text), KEY(Animal, stanLancuchaPrzemieszczen, Text),
    KEY(Animal, sposobOznakowania, Text), KEY(Animal, czyMatka, Flag), KEY(Animal, masaCialaZwierzecia, Number),
    KEY(Animal, masaTuszy, Number), KEY(Animal, gatunek, Pair), KEY(Animal, podgatunek, Pair),
    KEY(Animal, kodRasy, Pair), KEY(Animal, plec, Pair), KEY(Animal, statusZwierzecia, Pair),
    KEY(Animal, typUzytkowy, Pair), KEY(Animal, aktualnyStatusEpizootyczny, Pair), KEY(Animal, rodzajDawczyni, Pair),
    KEY(Animal, rodzajDawcy, Pair), KEY(Animal, kierunekUzytkownia, Pair), KEY(Animal, historiaZdarzen, Pair)};
using Document = TDokumInfOgolneClass;
const std::vector<Key<Document>> DocumentKeys{
    KEY(Document, numerDokumentu, Text), KEY(Document, typDokumentu, Text),
    KEY(Document, dataZlozeniaDokumentu, DocumentDate), KEY(Document, dataUtworzenia, DocumentDate),
    KEY(Document, dataModyfikacji, DocumentDate), KEY(Document, statusDokumentu, Text),
    KEY(Document, numerKancelaryjny, Text), KEY(Document, komorkaOrganizacyjna, Text)};
const std::vector<Key<TBladClass>> ErrorKeys{KEY(TBladClass, kodBledu, Text), KEY(TBladClass, komunikat, Text)};

template <class E> QJsonArray TwoOf(const std::vector<Key<E>>& keys, Fill fill)
{
    return {JsonFor(keys, fill), JsonFor(keys, fill, 50)};
}

template <class E> bool BothMatch(const OwningList<E>& list, const std::vector<Key<E>>& keys, Fill fill)
{
    return list.size() == 2 && Matches(*list[0], keys, fill) && Matches(*list[1], keys, fill, 50);
}
} // namespace

Q_DECLARE_METATYPE(Fill)

class TestRecordKeys : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyKeyFillsItsField_data();
    void everyKeyFillsItsField();
    void holdingListsHoldTheirElements_data();
    void holdingListsHoldTheirElements();
    void animalEarTags_data();
    void animalEarTags();
};

void TestRecordKeys::everyKeyFillsItsField_data()
{
    QTest::addColumn<QString>("record");
    QTest::addColumn<Fill>("fill");
    for (const char* record : {"TStadoClass", "TZZIInfoClass", "TDokumInfOgolneClass", "TBladClass"}) {
        QTest::addRow("%s, every key", record) << QString::fromLatin1(record) << Fill::Values;
        QTest::addRow("%s, every key null", record) << QString::fromLatin1(record) << Fill::Nulls;
        QTest::addRow("%s, no key", record) << QString::fromLatin1(record) << Fill::Nothing;
    }
}

void TestRecordKeys::everyKeyFillsItsField()
{
    QFETCH(QString, record);
    QFETCH(Fill, fill);
    if (record == u"TStadoClass")
        QVERIFY(Matches(*ParseOne<Herd>(JsonFor(HerdKeys, fill)), HerdKeys, fill));
    else if (record == u"TZZIInfoClass")
        QVERIFY(Matches(*Animal::ParseOne(JsonFor(AnimalKeys, fill)), AnimalKeys, fill));
    else if (record == u"TDokumInfOgolneClass")
        QVERIFY(Matches(*ParseOne<Document>(JsonFor(DocumentKeys, fill)), DocumentKeys, fill));
    else
        QVERIFY(Matches(*ParseOne<TBladClass>(JsonFor(ErrorKeys, fill)), ErrorKeys, fill));
}

void TestRecordKeys::holdingListsHoldTheirElements_data()
{
    QTest::addColumn<Fill>("fill");
    QTest::newRow("every key") << Fill::Values;
    QTest::newRow("every key null") << Fill::Nulls;
}

// Each of the nine lists of a holding, two elements each, every element key given.
void TestRecordKeys::holdingListsHoldTheirElements()
{
    QFETCH(Fill, fill);
    QJsonObject pasture = JsonFor(PastureKeys, fill);
    pasture.insert(u"listaPunktowPolozenia"_s, TwoOf(PointKeys, fill));
    const QJsonObject json{
        {u"listaBudynkow"_s, TwoOf(BuildingKeys, fill)},
        {u"listaDeklarowanychGatunkow"_s, TwoOf(SpeciesKeys, fill)},
        {u"listaSystemowUtrzymywaniaZwierzat"_s, TwoOf(KeepingKeys, fill)},
        {u"zwierzetaWDzialalnosci"_s, TwoOf(CountKeys, fill)},
        {u"listaOsobOpiekujacychSieZwierzetami"_s, TwoOf(KeeperKeys, fill)},
        {u"przydzieloneIdentyfikatory"_s, TwoOf(TagKeys, fill)},
        {u"listaPastwisk"_s, QJsonArray{pasture, pasture}},
        {u"stanDzialalnosciDlaGatunku"_s, TwoOf(SpeciesStateKeys, fill)},
        {u"listaDzialekEwidencyjnych"_s, TwoOf(ParcelKeys, fill)},
    };
    const auto herd = ParseOne<Herd>(json);
    QVERIFY(BothMatch(herd->listaBudynkow, BuildingKeys, fill));
    QVERIFY(BothMatch(herd->listaDeklarowanychGatunkow, SpeciesKeys, fill));
    QVERIFY(BothMatch(herd->listaSystemowUtrzymywaniaZwierzat, KeepingKeys, fill));
    QVERIFY(BothMatch(herd->zwierzetaWDzialalnosci, CountKeys, fill));
    QVERIFY(BothMatch(herd->listaOsobOpiekujacychSieZwierzetami, KeeperKeys, fill));
    QVERIFY(BothMatch(herd->przydzieloneIdentyfikatory, TagKeys, fill));
    QCOMPARE(herd->listaPastwisk.size(), 2u);
    QVERIFY(Matches(*herd->listaPastwisk[1], PastureKeys, fill));
    QVERIFY(BothMatch(herd->listaPastwisk[1]->listaPunktowPolozenia, PointKeys, fill));
    QVERIFY(BothMatch(herd->stanDzialalnosciDlaGatunku, SpeciesStateKeys, fill));
    QVERIFY(BothMatch(herd->listaDzialekEwidencyjnych, ParcelKeys, fill));
}

void TestRecordKeys::animalEarTags_data()
{
    holdingListsHoldTheirElements_data();
}

void TestRecordKeys::animalEarTags()
{
    QFETCH(Fill, fill);
    const auto animal = Animal::ParseOne({{u"srodkiIdentyfikacji"_s, TwoOf(EarTagKeys, fill)}});
    QVERIFY(BothMatch(animal->srodkiIdentyfikacji, EarTagKeys, fill));
}

QTEST_GUILESS_MAIN(TestRecordKeys)
#include "test_record_keys.moc"
