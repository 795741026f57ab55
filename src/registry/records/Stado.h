#pragma once

#include "registry/records/RecordFields.h"

// A holding of the producer: what the rest of the program calls a herd.
// Parsed from one element of the holdings answer's "dzialalnosc" array.

class TStadoBudynekClass {
public:
    qint32 lp = 0, budynekPozycjaX = 0, budynekPozycjaY = 0;
    static void Parse(const QJsonObject& o, OwningList<TStadoBudynekClass>& list);
};

class TStadoDeklarowanyGatunkowClass {
public:
    qint32 lp = 0;
    KodOpis gatunek;
    static void Parse(const QJsonObject& o, OwningList<TStadoDeklarowanyGatunkowClass>& list);
};

class TStadoSystemuUtrzymywaniaZwierzatClass {
public:
    qint32 lp = 0;
    TDateTime dataZakonczeniaZaprzestaniaDzialalnosci = EmptyDate;
    KodOpis gatunek, systemUtrzymaniaZwierzat, technologiaProdukcji;
    static void Parse(const QJsonObject& o, OwningList<TStadoSystemuUtrzymywaniaZwierzatClass>& list);
};

class TStadoZwierzeciaWDzialalnosciClass {
public:
    qint32 liczbaZwierzat = 0, liczbaNieprawidlowosci = 0;
    bool zablokowaneZwierzeta = false;
    KodOpis gatunek, statusGatunku;
    static void Parse(const QJsonObject& o, OwningList<TStadoZwierzeciaWDzialalnosciClass>& list);
};

class TStadoOsobaOpiekujacSieZwierzetamiClass {
public:
    qint32 lp = 0;
    bool zgodaNaKomunikacjeElektroniczna = false, producentJestWlascicielem = false;
    QString pesel, nip, regon, posesja, lokal, kodPocztowy, poczta, numerTelefonu, numerWlascicielaLubProducentaEP,
        nazwiskoNazwa, imieNazwaSkrocona, numerPaszportuLubInnegoDokumentu, adresEmail;
    KodOpis typOsoby, kraj, wojewodztwo, powiat, gmina, miejscowosc, ulica;
    static void Parse(const QJsonObject& o, OwningList<TStadoOsobaOpiekujacSieZwierzetamiClass>& list);
};

class TStadoPrzydzieloneIdentyfikatoryClass {
public:
    qint32 liczbaIdentyfikatorowPrzydzielonych = 0, liczbaIdentyfikatorowWykorzystanych = 0;
    bool liczbaDuplikatow = false; // the registry sends a count; only whether there are any is kept
    KodOpis gatunek;
    static void Parse(const QJsonObject& o, OwningList<TStadoPrzydzieloneIdentyfikatoryClass>& list);
};

class TStadoPastwiskoPunktPolozeniaClass {
public:
    qint32 lp = 0, pozycjaX = 0, pozycjaY = 0;
    QString nazwaObrebuEwidencyjnego, numerObrebuEwidencyjnego, numerArkuszaMapy, numerPunktuPolozenia,
        numerDzialkiEwidencyjnej;
    KodOpis wojewodztwo, powiat, gmina;
    static void Parse(const QJsonObject& o, OwningList<TStadoPastwiskoPunktPolozeniaClass>& list);
};

class TStadoPastwiskoClass {
public:
    qint32 lp = 0;
    QString opisPastwiska;
    OwningList<TStadoPastwiskoPunktPolozeniaClass> listaPunktowPolozenia;
    static void Parse(const QJsonObject& o, OwningList<TStadoPastwiskoClass>& list);
};

class TStadoStanDzialalnosciDlaGatunkuClass {
public:
    qint32 lp = 0;
    TDateTime dataOd = EmptyDate, dataDo = EmptyDate;
    QString opisStanu;
    KodOpis gatunek, przyczynaZmiany, stanDzialalnosciDlaGatunku;
    static void Parse(const QJsonObject& o, OwningList<TStadoStanDzialalnosciDlaGatunkuClass>& list);
};

class TStadoDzialkaEwidencyjnaClass {
public:
    qint32 lp = 0;
    QString nazwaObrebuEwidencyjnego, numerObrebuEwidencyjnego, numerArkuszaMapy, numerDzialkiEwidencyjnej;
    KodOpis wojewodztwo, powiat, gmina;
    static void Parse(const QJsonObject& o, OwningList<TStadoDzialkaEwidencyjnaClass>& list);
};

class TStadoClass {
public:
    QString numerProducenta, numerDzialalnosci; // read even when null: missing gives empty text
    TDateTime dataObowiazywaniaOdStan = EmptyDate, dataObowiazywaniaDoStan = EmptyDate;
    QString stanOpis;
    TDateTime dataZarejestrowania = EmptyDate, dataWyrejestrowania = EmptyDate;
    QString weterynaryjnyNumerIdentyfikacyjny;
    TDateTime dataWydaniaDecyzji = EmptyDate;
    bool czyDzierzawaRzezni = false;
    QString numerRzezniDzierzawa;
    TDateTime dzierzawaOdDaty = EmptyDate, dzierzawaDoDaty = EmptyDate;
    QString adresDzialalnosciNrDomu, adresDzialalnosciNrLokalu, adresDzialalnosciKodPocztowy, adresDzialalnosciPoczta,
        telefonStacjonarny, telefonKomorkowy, adresEmail;
    double adresDzialalnosciPozycjaX = 0, adresDzialalnosciPozycjaY = 0;
    bool zalacznikZDecyzjaPLW = false;
    KodOpis przyczynaZmianyStanu, typDzialalnosci, rodzajDzialalnosci, stanDzialalnosci, adresDzialalnosciWojewodztwo,
        adresDzialalnosciPowiat, adresDzialalnosciGmina, adresDzialalnosciMiejscowosc, adresDzialalnosciUlica;

    OwningList<TStadoBudynekClass> listaBudynkow;
    OwningList<TStadoDeklarowanyGatunkowClass> listaDeklarowanychGatunkow;
    OwningList<TStadoSystemuUtrzymywaniaZwierzatClass> listaSystemowUtrzymywaniaZwierzat;
    OwningList<TStadoZwierzeciaWDzialalnosciClass> zwierzetaWDzialalnosci;
    OwningList<TStadoOsobaOpiekujacSieZwierzetamiClass> listaOsobOpiekujacychSieZwierzetami;
    OwningList<TStadoPrzydzieloneIdentyfikatoryClass> przydzieloneIdentyfikatory;
    OwningList<TStadoPastwiskoClass> listaPastwisk;
    OwningList<TStadoStanDzialalnosciDlaGatunkuClass> stanDzialalnosciDlaGatunku;
    OwningList<TStadoDzialkaEwidencyjnaClass> listaDzialekEwidencyjnych;

    static void Parse(const QJsonObject& o, OwningList<TStadoClass>& list);
};
