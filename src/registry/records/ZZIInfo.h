#pragma once

#include "registry/records/RecordFields.h"

// A means of identification of an animal, such as an ear tag.
class TZZIInfoSrodekIdentyfikacjiClass {
public:
    KodOpis rodzajSrodkaIdentyfikacji;
    QString lokalizacjaTranspondera;
    qint32 numerDuplikatu = 0;
    TDateTime dataObowiazywaniaOd = EmptyDate;
    static void Parse(const QJsonObject& o, OwningList<TZZIInfoSrodekIdentyfikacjiClass>& list);
};

// One animal: an element of the animal list or the single-animal answer.
class TZZIInfoClass {
public:
    QString numerIdentyfikacyjnyZwierzecia; // also from "numerIdentyfikacyjnyRejestrowanegoZwierzecia", which wins
    qint32 lp = 0;
    TDateTime dataUrodzenia = EmptyDate, dataPrzybyciaDoDzialalnosci = EmptyDate, dataWyrejestrowania = EmptyDate;
    QString numerDzialalnosci, poprzedniNumerIdentyfikacyjny, numerIdentyfikacyjnyMatki, numerIdentyfikacyjnyDawczyni,
        numerIdentyfikacyjnyDawcy, stanLancuchaPrzemieszczen, sposobOznakowania;
    bool czyMatka = false;
    double masaCialaZwierzecia = 0, masaTuszy = 0;
    KodOpis gatunek, podgatunek, kodRasy, plec, statusZwierzecia, typUzytkowy, aktualnyStatusEpizootyczny,
        rodzajDawczyni, rodzajDawcy, kierunekUzytkownia, historiaZdarzen;
    OwningList<TZZIInfoSrodekIdentyfikacjiClass> srodkiIdentyfikacji;

    static void Parse(const QJsonObject& o, OwningList<TZZIInfoClass>& list);
    // The single-animal answer: the root object is the animal.
    static std::unique_ptr<TZZIInfoClass> ParseOne(const QJsonObject& o);
};
