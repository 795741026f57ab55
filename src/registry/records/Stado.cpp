#include "registry/records/Stado.h"

#include "registry/records/RecordMacros.h"

void TStadoBudynekClass::Parse(const QJsonObject& o, OwningList<TStadoBudynekClass>& list)
{
    auto r = std::make_unique<TStadoBudynekClass>();
    READ(lp), READ(budynekPozycjaX), READ(budynekPozycjaY);
    list.push_back(std::move(r));
}

void TStadoDeklarowanyGatunkowClass::Parse(const QJsonObject& o, OwningList<TStadoDeklarowanyGatunkowClass>& list)
{
    auto r = std::make_unique<TStadoDeklarowanyGatunkowClass>();
    READ(lp), READ(gatunek);
    list.push_back(std::move(r));
}

void TStadoSystemuUtrzymywaniaZwierzatClass::Parse(const QJsonObject& o,
                                                   OwningList<TStadoSystemuUtrzymywaniaZwierzatClass>& list)
{
    auto r = std::make_unique<TStadoSystemuUtrzymywaniaZwierzatClass>();
    READ(lp), READ_DATE(dataZakonczeniaZaprzestaniaDzialalnosci);
    READ(gatunek), READ(systemUtrzymaniaZwierzat), READ(technologiaProdukcji);
    list.push_back(std::move(r));
}

void TStadoZwierzeciaWDzialalnosciClass::Parse(const QJsonObject& o,
                                               OwningList<TStadoZwierzeciaWDzialalnosciClass>& list)
{
    auto r = std::make_unique<TStadoZwierzeciaWDzialalnosciClass>();
    READ(liczbaZwierzat), READ(liczbaNieprawidlowosci), READ(zablokowaneZwierzeta), READ(gatunek), READ(statusGatunku);
    list.push_back(std::move(r));
}

void TStadoOsobaOpiekujacSieZwierzetamiClass::Parse(const QJsonObject& o,
                                                    OwningList<TStadoOsobaOpiekujacSieZwierzetamiClass>& list)
{
    auto r = std::make_unique<TStadoOsobaOpiekujacSieZwierzetamiClass>();
    READ(lp), READ(zgodaNaKomunikacjeElektroniczna), READ(producentJestWlascicielem);
    READ(pesel), READ(nip), READ(regon), READ(posesja), READ(lokal), READ(kodPocztowy), READ(poczta);
    READ(numerTelefonu), READ(numerWlascicielaLubProducentaEP), READ(nazwiskoNazwa), READ(imieNazwaSkrocona);
    READ(numerPaszportuLubInnegoDokumentu), READ(adresEmail);
    READ(typOsoby), READ(kraj), READ(wojewodztwo), READ(powiat), READ(gmina), READ(miejscowosc), READ(ulica);
    list.push_back(std::move(r));
}

void TStadoPrzydzieloneIdentyfikatoryClass::Parse(const QJsonObject& o,
                                                  OwningList<TStadoPrzydzieloneIdentyfikatoryClass>& list)
{
    auto r = std::make_unique<TStadoPrzydzieloneIdentyfikatoryClass>();
    READ(liczbaIdentyfikatorowPrzydzielonych), READ(liczbaIdentyfikatorowWykorzystanych), READ(gatunek);
    qint32 duplicates = 0;
    Read(o, "liczbaDuplikatow", duplicates);
    r->liczbaDuplikatow = duplicates != 0;
    list.push_back(std::move(r));
}

void TStadoPastwiskoPunktPolozeniaClass::Parse(const QJsonObject& o,
                                               OwningList<TStadoPastwiskoPunktPolozeniaClass>& list)
{
    auto r = std::make_unique<TStadoPastwiskoPunktPolozeniaClass>();
    READ(lp), READ(pozycjaX), READ(pozycjaY);
    READ(nazwaObrebuEwidencyjnego), READ(numerObrebuEwidencyjnego), READ(numerArkuszaMapy);
    READ(numerPunktuPolozenia), READ(numerDzialkiEwidencyjnej);
    READ(wojewodztwo), READ(powiat), READ(gmina);
    list.push_back(std::move(r));
}

void TStadoPastwiskoClass::Parse(const QJsonObject& o, OwningList<TStadoPastwiskoClass>& list)
{
    auto r = std::make_unique<TStadoPastwiskoClass>();
    READ(lp), READ(opisPastwiska);
    READ_LIST(listaPunktowPolozenia);
    list.push_back(std::move(r));
}

void TStadoStanDzialalnosciDlaGatunkuClass::Parse(const QJsonObject& o,
                                                  OwningList<TStadoStanDzialalnosciDlaGatunkuClass>& list)
{
    auto r = std::make_unique<TStadoStanDzialalnosciDlaGatunkuClass>();
    READ(lp), READ_DATE(dataOd), READ_DATE(dataDo), READ(opisStanu);
    READ(gatunek), READ(przyczynaZmiany), READ(stanDzialalnosciDlaGatunku);
    list.push_back(std::move(r));
}

void TStadoDzialkaEwidencyjnaClass::Parse(const QJsonObject& o, OwningList<TStadoDzialkaEwidencyjnaClass>& list)
{
    auto r = std::make_unique<TStadoDzialkaEwidencyjnaClass>();
    READ(lp), READ(nazwaObrebuEwidencyjnego), READ(numerObrebuEwidencyjnego), READ(numerArkuszaMapy);
    READ(numerDzialkiEwidencyjnej), READ(wojewodztwo), READ(powiat), READ(gmina);
    list.push_back(std::move(r));
}

void TStadoClass::Parse(const QJsonObject& o, OwningList<TStadoClass>& list)
{
    auto r = std::make_unique<TStadoClass>();
    r->numerProducenta = TextOf(o, "numerProducenta");
    r->numerDzialalnosci = TextOf(o, "numerDzialalnosci");
    READ_DATE(dataObowiazywaniaOdStan), READ_DATE(dataObowiazywaniaDoStan), READ(stanOpis);
    READ_DATE(dataZarejestrowania), READ_DATE(dataWyrejestrowania), READ(weterynaryjnyNumerIdentyfikacyjny);
    READ_DATE(dataWydaniaDecyzji), READ(czyDzierzawaRzezni), READ(numerRzezniDzierzawa);
    READ_DATE(dzierzawaOdDaty), READ_DATE(dzierzawaDoDaty);
    READ(adresDzialalnosciNrDomu), READ(adresDzialalnosciNrLokalu), READ(adresDzialalnosciKodPocztowy);
    READ(adresDzialalnosciPoczta), READ(telefonStacjonarny), READ(telefonKomorkowy), READ(adresEmail);
    READ(adresDzialalnosciPozycjaX), READ(adresDzialalnosciPozycjaY), READ(zalacznikZDecyzjaPLW);
    READ(przyczynaZmianyStanu), READ(typDzialalnosci), READ(rodzajDzialalnosci), READ(stanDzialalnosci);
    READ(adresDzialalnosciWojewodztwo), READ(adresDzialalnosciPowiat), READ(adresDzialalnosciGmina);
    READ(adresDzialalnosciMiejscowosc), READ(adresDzialalnosciUlica);
    READ_LIST(listaBudynkow);
    READ_LIST(listaDeklarowanychGatunkow);
    READ_LIST(listaSystemowUtrzymywaniaZwierzat);
    READ_LIST(zwierzetaWDzialalnosci);
    READ_LIST(listaOsobOpiekujacychSieZwierzetami);
    READ_LIST(przydzieloneIdentyfikatory);
    READ_LIST(listaPastwisk);
    READ_LIST(stanDzialalnosciDlaGatunku);
    READ_LIST(listaDzialekEwidencyjnych);
    list.push_back(std::move(r));
}
