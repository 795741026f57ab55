#include "registry/records/Dokument.h"
#include "registry/records/Stado.h"
#include "registry/records/ZZIInfo.h"

#include <QFile>
#include <QJsonDocument>
#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;

namespace {
QJsonObject Json(const char* text)
{
    return QJsonDocument::fromJson(QByteArray(text)).object();
}

std::unique_ptr<TZZIInfoClass> Animal(const char* text)
{
    return TZZIInfoClass::ParseOne(Json(text));
}

double Day(int y, int m, int d)
{
    return ToDateTime(QDate(y, m, d));
}
} // namespace

class TestRecords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void animalNumberTakesTheRegisteredKeyLast();
    void datesReadTheirForms_data();
    void datesReadTheirForms();
    void documentDatesReplaceTheT();
    void codePairsAreCutAndToleratePartialObjects_data();
    void codePairsAreCutAndToleratePartialObjects();
    void wrongTypesRaiseANamedConversionError_data();
    void wrongTypesRaiseANamedConversionError();
    void integersUseTheWhole32Bits_data();
    void integersUseTheWhole32Bits();
    void holdingReadsNestedListsInOrder();
    void holdingNumbersIgnoreThePresenceRule();
    void duplicateCountIsKeptAsAFlag_data();
    void duplicateCountIsKeptAsAFlag();
    void errorEntries();
    void sampleAnimalFromTheRegistry();
};

void TestRecords::animalNumberTakesTheRegisteredKeyLast()
{
    QCOMPARE(Animal(R"({"numerIdentyfikacyjnyZwierzecia":"PL1","numerIdentyfikacyjnyRejestrowanegoZwierzecia":"PL2"})")
                 ->numerIdentyfikacyjnyZwierzecia,
             u"PL2"_s);
    QCOMPARE(Animal(R"({"numerIdentyfikacyjnyZwierzecia":"PL1","numerIdentyfikacyjnyRejestrowanegoZwierzecia":null})")
                 ->numerIdentyfikacyjnyZwierzecia,
             u"PL1"_s);
}

void TestRecords::datesReadTheirForms_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<double>("expected");
    QTest::newRow("date") << QByteArray(R"({"dataUrodzenia":"2023-01-15"})") << 44941.0;
    QTest::newRow("date and time") << QByteArray(R"({"dataUrodzenia":"2023-01-15T12:00:00"})") << 44941.5;
    QTest::newRow("fraction and zone") << QByteArray(R"({"dataUrodzenia":"2023-01-15T06:00:00.250Z"})")
                                       << 44941.25 + 0.25 / 86400;
    QTest::newRow("offset") << QByteArray(R"({"dataUrodzenia":"2023-01-15T18:00:00+01:00"})") << 44941.75;
    QTest::newRow("null is the empty date") << QByteArray(R"({"dataUrodzenia":null})") << EmptyDate;
    QTest::newRow("missing is the empty date") << QByteArray("{}") << EmptyDate;
}

void TestRecords::datesReadTheirForms()
{
    QFETCH(QByteArray, json);
    QFETCH(double, expected);
    QCOMPARE(Animal(json.constData())->dataUrodzenia, expected);
}

void TestRecords::documentDatesReplaceTheT()
{
    OwningList<TDokumInfOgolneClass> documents;
    TDokumInfOgolneClass::Parse(Json(R"({"numerDokumentu":"D1","dataZlozeniaDokumentu":"2026-11-23T18:00:00",)"
                                     R"("dataUtworzenia":"2026-11-23 06:00:00","statusDokumentu":"7"})"),
                                documents);
    QCOMPARE(documents.at(0)->dataZlozeniaDokumentu, Day(2026, 11, 23) + 0.75);
    QCOMPARE(documents.at(0)->dataUtworzenia, Day(2026, 11, 23) + 0.25);
    QCOMPARE(documents.at(0)->dataModyfikacji, EmptyDate);
    QCOMPARE(documents.at(0)->statusDokumentu, u"7"_s);
}

void TestRecords::codePairsAreCutAndToleratePartialObjects_data()
{
    QTest::addColumn<QString>("plec");
    QTest::addColumn<QString>("kod");
    QTest::addColumn<QString>("opis");
    const QString longKod(40, u'K');
    const QString longOpis(250, u'ż');
    QTest::newRow("cut") << uR"({"kod":"%1","opis":"%2"})"_s.arg(longKod, longOpis) << longKod.left(30)
                         << longOpis.left(200);
    QTest::newRow("missing opis") << uR"({"kod":"XX"})"_s << u"XX"_s << QString();
    QTest::newRow("not an object") << uR"("XX")"_s << QString() << QString();
    QTest::newRow("an array") << uR"([{"kod":"XX"}])"_s << QString() << QString();
    QTest::newRow("null") << u"null"_s << QString() << QString();
}

void TestRecords::codePairsAreCutAndToleratePartialObjects()
{
    QFETCH(QString, plec);
    QFETCH(QString, kod);
    QFETCH(QString, opis);
    const QByteArray json = (uR"({"plec":)"_s + plec + uR"(,"historiaZdarzen":)"_s + plec +
                             u'}')
                                .toUtf8();
    const auto animal = Animal(json.constData());
    QCOMPARE(animal->plec.kod, kod);
    QCOMPARE(animal->plec.opis, opis);
    QCOMPARE(animal->historiaZdarzen.kod, kod);
}

void TestRecords::wrongTypesRaiseANamedConversionError_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("message");
    QTest::newRow("integer as text") << QByteArray(R"({"lp":"abc"})")
                                     << uR"(Błąd konwersji: pole "lp", wartość "abc")"_s;
    QTest::newRow("fractional integer") << QByteArray(R"({"lp":1.5})")
                                        << uR"(Błąd konwersji: pole "lp", wartość "1.5")"_s;
    QTest::newRow("integer past 32 bits") << QByteArray(R"({"lp":2147483648})")
                                          << uR"(Błąd konwersji: pole "lp", wartość "2147483648")"_s;
    QTest::newRow("integer below 32 bits") << QByteArray(R"({"lp":-2147483649})")
                                           << uR"(Błąd konwersji: pole "lp", wartość "-2147483649")"_s;
    QTest::newRow("flag as text") << QByteArray(R"({"czyMatka":"tak"})")
                                  << uR"(Błąd konwersji: pole "czyMatka", wartość "tak")"_s;
    QTest::newRow("number as text") << QByteArray(R"({"masaTuszy":"ciężka"})")
                                    << uR"(Błąd konwersji: pole "masaTuszy", wartość "ciężka")"_s;
    QTest::newRow("date as number") << QByteArray(R"({"dataUrodzenia":5})")
                                    << uR"(Błąd konwersji: pole "dataUrodzenia", wartość "5")"_s;
    QTest::newRow("impossible date") << QByteArray(R"({"dataUrodzenia":"2023-13-45"})")
                                     << uR"(Błąd konwersji: pole "dataUrodzenia", wartość "2023-13-45")"_s;
    QTest::newRow("text as number") << QByteArray(R"({"numerDzialalnosci":7})")
                                    << uR"(Błąd konwersji: pole "numerDzialalnosci", wartość "7")"_s;
    QTest::newRow("nested element") << QByteArray(R"({"srodkiIdentyfikacji":[{"numerDuplikatu":"x"}]})")
                                    << uR"(Błąd konwersji: pole "numerDuplikatu", wartość "x")"_s;
    QTest::newRow("element not an object") << QByteArray(R"({"srodkiIdentyfikacji":[3]})")
                                           << uR"(Błąd konwersji: pole "srodkiIdentyfikacji", wartość "[3]")"_s;
}

void TestRecords::integersUseTheWhole32Bits_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<int>("lp");
    QTest::newRow("lowest") << QByteArray(R"({"lp":-2147483648})") << std::numeric_limits<int>::min();
    QTest::newRow("highest") << QByteArray(R"({"lp":2147483647})") << std::numeric_limits<int>::max();
    QTest::newRow("written with a fraction of zero") << QByteArray(R"({"lp":7.0})") << 7;
}

void TestRecords::integersUseTheWhole32Bits()
{
    QFETCH(QByteArray, json);
    QFETCH(int, lp);
    QCOMPARE(Animal(json.constData())->lp, lp);
}

void TestRecords::wrongTypesRaiseANamedConversionError()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, message);
    try {
        Animal(json.constData());
        QFAIL("a conversion error was expected");
    } catch (const ConversionError& error) {
        QCOMPARE(error.message(), message);
    }
}

void TestRecords::holdingReadsNestedListsInOrder()
{
    OwningList<TStadoClass> herds;
    TStadoClass::Parse(Json(R"({"numerDzialalnosci":"071234562-001","stanDzialalnosci":{"kod":"SDZA","opis":"Aktywna"},
        "adresDzialalnosciPozycjaX":52.25,"czyDzierzawaRzezni":true,"dataZarejestrowania":"2004-05-01",
        "listaBudynkow":[{"lp":1,"budynekPozycjaX":10},{"lp":2}],
        "listaPastwisk":[{"lp":1,"opisPastwiska":"Łąka","listaPunktowPolozenia":[{"lp":1,"pozycjaX":5},{"lp":2}]}]})"),
                       herds);
    const TStadoClass& herd = *herds.at(0);
    QCOMPARE(herd.stanDzialalnosci.kod, u"SDZA"_s);
    QCOMPARE(herd.adresDzialalnosciPozycjaX, 52.25);
    QVERIFY(herd.czyDzierzawaRzezni);
    QCOMPARE(herd.dataZarejestrowania, Day(2004, 5, 1));
    QCOMPARE(herd.dataWyrejestrowania, EmptyDate);
    QCOMPARE(herd.listaBudynkow.size(), 2u);
    QCOMPARE(herd.listaBudynkow[1]->lp, 2);
    QCOMPARE(herd.listaBudynkow[0]->budynekPozycjaX, 10);
    QCOMPARE(herd.listaPastwisk.at(0)->opisPastwiska, u"Łąka"_s);
    QCOMPARE(herd.listaPastwisk.at(0)->listaPunktowPolozenia.at(1)->lp, 2);
    QVERIFY(herd.listaDzialekEwidencyjnych.empty());

    TStadoClass::Parse(Json(R"({"numerDzialalnosci":"071234562-002"})"), herds);
    QCOMPARE(herds.size(), 2u);
    QVERIFY(herds[1]->listaPastwisk.empty());
}

void TestRecords::holdingNumbersIgnoreThePresenceRule()
{
    OwningList<TStadoClass> herds;
    TStadoClass::Parse(Json(R"({"numerProducenta":null})"), herds);
    QCOMPARE(herds.at(0)->numerProducenta, QString());
    QCOMPARE(herds.at(0)->numerDzialalnosci, QString());
}

void TestRecords::duplicateCountIsKeptAsAFlag_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("flag");
    QTest::newRow("three") << 3 << true;
    QTest::newRow("none") << 0 << false;
}

void TestRecords::duplicateCountIsKeptAsAFlag()
{
    QFETCH(int, count);
    QFETCH(bool, flag);
    OwningList<TStadoPrzydzieloneIdentyfikatoryClass> list;
    TStadoPrzydzieloneIdentyfikatoryClass::Parse(
        QJsonObject{{u"liczbaDuplikatow"_s, count}, {u"liczbaIdentyfikatorowPrzydzielonych"_s, 40}},
        list);
    QCOMPARE(list.at(0)->liczbaDuplikatow, flag);
    QCOMPARE(list.at(0)->liczbaIdentyfikatorowPrzydzielonych, 40);
}

void TestRecords::errorEntries()
{
    OwningList<TBladClass> errors;
    ParseList(Json(R"({"bledy":[{"kodBledu":"ZW-404","komunikat":"Nie znaleziono"},{"komunikat":null}]})"),
              u"bledy"_s, errors);
    QCOMPARE(errors.size(), 2u);
    QCOMPARE(errors[0]->kodBledu, u"ZW-404"_s);
    QCOMPARE(errors[1]->komunikat, QString());
}

void TestRecords::sampleAnimalFromTheRegistry()
{
    QFile file(QStringLiteral(HALVARN_TEST_DATA "/registry/animal.json"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const auto animal = TZZIInfoClass::ParseOne(QJsonDocument::fromJson(file.readAll()).object());
    QCOMPARE(animal->numerIdentyfikacyjnyZwierzecia, u"PL005123456789"_s);
    QCOMPARE(animal->plec.kod, u"XX"_s);
    QCOMPARE(animal->plec.opis, u"Samica"_s);
    QCOMPARE(animal->kierunekUzytkownia.opis, u"Mięsny do opasu"_s);
    QCOMPARE(animal->dataUrodzenia, Day(2021, 3, 15));
    QVERIFY(animal->czyMatka);
    QCOMPARE(animal->masaCialaZwierzecia, 512.5);
    QCOMPARE(animal->srodkiIdentyfikacji.size(), 2u);
    QCOMPARE(animal->srodkiIdentyfikacji[1]->numerDuplikatu, 1);
    QCOMPARE(animal->srodkiIdentyfikacji[1]->dataObowiazywaniaOd, Day(2023, 6, 1));
}

QTEST_GUILESS_MAIN(TestRecords)
#include "test_records.moc"
