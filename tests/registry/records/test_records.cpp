#include "registry/records/Dokument.h"
#include "registry/records/Stado.h"
#include "registry/records/ZZIInfo.h"

#include <QFile>
#include <QJsonDocument>
#include <QTest>

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
    void datesAndIntegersReadTheirForms_data();
    void datesAndIntegersReadTheirForms();
    void documentDatesReplaceTheT();
    void codePairsAreCutAndToleratePartialObjects_data();
    void codePairsAreCutAndToleratePartialObjects();
    void wrongTypesRaiseANamedConversionError_data();
    void wrongTypesRaiseANamedConversionError();
    void holdingReadsEveryNestedList();
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

void TestRecords::datesAndIntegersReadTheirForms_data()
{
    QTest::addColumn<QByteArray>("json"); // "lp" or "dataUrodzenia"
    QTest::addColumn<double>("expected");
    QTest::newRow("date") << QByteArray(R"({"dataUrodzenia":"2023-01-15"})") << 44941.0;
    QTest::newRow("date and time") << QByteArray(R"({"dataUrodzenia":"2023-01-15T12:00:00"})") << 44941.5;
    QTest::newRow("fraction and zone") << QByteArray(R"({"dataUrodzenia":"2023-01-15T06:00:00.250Z"})")
                                       << 44941.25 + 0.25 / 86400;
    QTest::newRow("offset") << QByteArray(R"({"dataUrodzenia":"2023-01-15T18:00:00+01:00"})") << 44941.75;
    QTest::newRow("null is the empty date") << QByteArray(R"({"dataUrodzenia":null})") << EmptyDate;
    QTest::newRow("missing is the empty date") << QByteArray("{}") << EmptyDate;
    QTest::newRow("lowest integer") << QByteArray(R"({"lp":-2147483648})") << -2147483648.0;
    QTest::newRow("highest integer") << QByteArray(R"({"lp":2147483647})") << 2147483647.0;
    QTest::newRow("integer with a fraction of zero") << QByteArray(R"({"lp":7.0})") << 7.0;
}

void TestRecords::datesAndIntegersReadTheirForms()
{
    QFETCH(QByteArray, json);
    QFETCH(double, expected);
    const auto animal = Animal(json.constData());
    QCOMPARE(json.contains("lp") ? animal->lp : animal->dataUrodzenia, expected);
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
    const QByteArray json = (uR"({"plec":)"_s + plec + uR"(,"historiaZdarzen":)"_s + plec + u'}').toUtf8();
    const auto animal = Animal(json.constData());
    QCOMPARE(animal->plec.kod, kod);
    QCOMPARE(animal->plec.opis, opis);
    QCOMPARE(animal->historiaZdarzen.kod, kod);
}

void TestRecords::wrongTypesRaiseANamedConversionError_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<int>("record"); // 0 an animal, 1 a holding, 2 a document
    QTest::addColumn<QString>("message");
    const auto row = [](const char* name, const char* json, int record, const char* key, const char* value) {
        QTest::newRow(name) << QByteArray(json) << record
                            << uR"(Błąd konwersji: pole "%1", wartość "%2")"_s.arg(QString::fromUtf8(key),
                                                                                   QString::fromUtf8(value));
    };
    row("integer as text", R"({"lp":"abc"})", 0, "lp", "abc");
    row("fractional integer", R"({"lp":1.5})", 0, "lp", "1.5");
    row("integer past 32 bits", R"({"lp":2147483648})", 0, "lp", "2147483648");
    row("integer below 32 bits", R"({"lp":-2147483649})", 0, "lp", "-2147483649");
    row("flag as text", R"({"czyMatka":"tak"})", 0, "czyMatka", "tak");
    row("number as text", R"({"masaTuszy":"ciężka"})", 0, "masaTuszy", "ciężka");
    row("date as number", R"({"dataUrodzenia":5})", 0, "dataUrodzenia", "5");
    row("impossible date", R"({"dataUrodzenia":"2023-13-45"})", 0, "dataUrodzenia", "2023-13-45");
    row("text as number", R"({"numerDzialalnosci":7})", 0, "numerDzialalnosci", "7");
    row("nested element", R"({"srodkiIdentyfikacji":[{"numerDuplikatu":"x"}]})", 0, "numerDuplikatu", "x");
    row("element not an object", R"({"srodkiIdentyfikacji":[3]})", 0, "srodkiIdentyfikacji", "[3]");
    row("holding: number as text", R"({"adresDzialalnosciPozycjaX":"x"})", 1, "adresDzialalnosciPozycjaX", "x");
    row("holding: nested text as number", R"({"listaPastwisk":[{"listaPunktowPolozenia":[{"numerArkuszaMapy":1}]}]})",
        1, "numerArkuszaMapy", "1");
    row("holding: keeper's flag as a number",
        R"({"listaOsobOpiekujacychSieZwierzetami":[{"producentJestWlascicielem":1}]})", 1, "producentJestWlascicielem",
        "1");
    row("document: date as number", R"({"dataUtworzenia":20261123})", 2, "dataUtworzenia", "20261123");
}

void TestRecords::wrongTypesRaiseANamedConversionError()
{
    QFETCH(QByteArray, json);
    QFETCH(int, record);
    QFETCH(QString, message);
    try {
        OwningList<TStadoClass> herds;
        OwningList<TDokumInfOgolneClass> documents;
        if (record == 0)
            Animal(json.constData());
        else if (record == 1)
            TStadoClass::Parse(Json(json.constData()), herds);
        else
            TDokumInfOgolneClass::Parse(Json(json.constData()), documents);
        QFAIL("a conversion error was expected");
    } catch (const ConversionError& error) {
        QCOMPARE(error.message(), message);
    }
}

// A holding with every nested list; each record class gets a field of each kind it has.
void TestRecords::holdingReadsEveryNestedList()
{
    OwningList<TStadoClass> herds;
    TStadoClass::Parse(Json(R"({"numerDzialalnosci":"071234562-001","adresDzialalnosciPozycjaY":52.25,
        "adresDzialalnosciGmina":{"kod":"G1","opis":"Gmina"},"zalacznikZDecyzjaPLW":true,"dzierzawaDoDaty":"2004-05-01",
        "listaBudynkow":[{"lp":1,"budynekPozycjaY":10},{"lp":2}],
        "listaDeklarowanychGatunkow":[{"gatunek":{"kod":"BYD","opis":"Bydło"}}],
        "listaSystemowUtrzymywaniaZwierzat":[{"dataZakonczeniaZaprzestaniaDzialalnosci":"2025-12-31",
            "technologiaProdukcji":{"kod":"T"}}],
        "zwierzetaWDzialalnosci":[{"liczbaNieprawidlowosci":85,"zablokowaneZwierzeta":true,"statusGatunku":{"kod":"S"}}],
        "listaOsobOpiekujacychSieZwierzetami":[{"adresEmail":"a@b.pl","ulica":{"kod":"U"},"producentJestWlascicielem":true}],
        "przydzieloneIdentyfikatory":[{"liczbaIdentyfikatorowWykorzystanych":12,"gatunek":{"kod":"BYD"},
            "liczbaDuplikatow":3},{"liczbaDuplikatow":0}],
        "listaPastwisk":[{"opisPastwiska":"Łąka","listaPunktowPolozenia":[{"lp":1},{"numerDzialkiEwidencyjnej":"12/3",
            "gmina":{"kod":"G2"},"pozycjaY":4}]}],
        "stanDzialalnosciDlaGatunku":[{"dataDo":"2026-01-02","opisStanu":"Aktywna","przyczynaZmiany":{"kod":"P"}}],
        "listaDzialekEwidencyjnych":[{"numerArkuszaMapy":"7","powiat":{"kod":"0712"}}]})"),
                       herds);
    const TStadoClass& herd = *herds.at(0);
    QCOMPARE(herd.adresDzialalnosciGmina.opis, u"Gmina"_s);
    QCOMPARE(herd.adresDzialalnosciPozycjaY, 52.25);
    QVERIFY(herd.zalacznikZDecyzjaPLW);
    QCOMPARE(herd.dzierzawaDoDaty, Day(2004, 5, 1));
    QCOMPARE(herd.dzierzawaOdDaty, EmptyDate);
    QCOMPARE(herd.listaBudynkow.size(), 2u);
    QCOMPARE(herd.listaBudynkow[0]->budynekPozycjaY, 10);
    QCOMPARE(herd.listaBudynkow[1]->lp, 2);
    QCOMPARE(herd.listaDeklarowanychGatunkow.at(0)->gatunek.opis, u"Bydło"_s);
    QCOMPARE(herd.listaSystemowUtrzymywaniaZwierzat.at(0)->dataZakonczeniaZaprzestaniaDzialalnosci, Day(2025, 12, 31));
    QCOMPARE(herd.listaSystemowUtrzymywaniaZwierzat.at(0)->technologiaProdukcji.kod, u"T"_s);
    QCOMPARE(herd.zwierzetaWDzialalnosci.at(0)->liczbaNieprawidlowosci, 85);
    QVERIFY(herd.zwierzetaWDzialalnosci.at(0)->zablokowaneZwierzeta);
    QCOMPARE(herd.zwierzetaWDzialalnosci.at(0)->statusGatunku.kod, u"S"_s);
    const auto& keeper = *herd.listaOsobOpiekujacychSieZwierzetami.at(0);
    QCOMPARE(keeper.adresEmail, u"a@b.pl"_s);
    QCOMPARE(keeper.ulica.kod, u"U"_s);
    QVERIFY(keeper.producentJestWlascicielem && !keeper.zgodaNaKomunikacjeElektroniczna);
    QCOMPARE(herd.przydzieloneIdentyfikatory.at(0)->liczbaIdentyfikatorowWykorzystanych, 12);
    QCOMPARE(herd.przydzieloneIdentyfikatory.at(0)->gatunek.kod, u"BYD"_s);
    QVERIFY(herd.przydzieloneIdentyfikatory.at(0)->liczbaDuplikatow); // a count kept as a flag
    QVERIFY(!herd.przydzieloneIdentyfikatory.at(1)->liczbaDuplikatow);
    QCOMPARE(herd.listaPastwisk.at(0)->opisPastwiska, u"Łąka"_s);
    const auto& point = *herd.listaPastwisk.at(0)->listaPunktowPolozenia.at(1);
    QCOMPARE(point.numerDzialkiEwidencyjnej, u"12/3"_s);
    QCOMPARE(point.gmina.kod, u"G2"_s);
    QCOMPARE(point.pozycjaY, 4);
    QCOMPARE(herd.stanDzialalnosciDlaGatunku.at(0)->dataDo, Day(2026, 1, 2));
    QCOMPARE(herd.stanDzialalnosciDlaGatunku.at(0)->opisStanu, u"Aktywna"_s);
    QCOMPARE(herd.stanDzialalnosciDlaGatunku.at(0)->przyczynaZmiany.kod, u"P"_s);
    QCOMPARE(herd.listaDzialekEwidencyjnych.at(0)->numerArkuszaMapy, u"7"_s);
    QCOMPARE(herd.listaDzialekEwidencyjnych.at(0)->powiat.kod, u"0712"_s);

    TStadoClass::Parse(Json(R"({"numerProducenta":null})"), herds); // read as text, null or not
    QCOMPARE(herds.size(), 2u);
    QVERIFY(herds[1]->numerProducenta.isEmpty() && herds[1]->numerDzialalnosci.isEmpty());
    QVERIFY(herds[1]->listaPastwisk.empty());
}

void TestRecords::errorEntries()
{
    OwningList<TBladClass> errors;
    ParseList(Json(R"({"bledy":[{"kodBledu":"ZW-404","komunikat":"Nie znaleziono"},{"komunikat":null}]})"), u"bledy"_s,
              errors);
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
