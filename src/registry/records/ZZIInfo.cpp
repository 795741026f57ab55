#include "registry/records/ZZIInfo.h"

#include "registry/records/RecordMacros.h"

void TZZIInfoSrodekIdentyfikacjiClass::Parse(const QJsonObject& o, OwningList<TZZIInfoSrodekIdentyfikacjiClass>& list)
{
    auto r = std::make_unique<TZZIInfoSrodekIdentyfikacjiClass>();
    READ(rodzajSrodkaIdentyfikacji), READ(lokalizacjaTranspondera), READ(numerDuplikatu),
        READ_DATE(dataObowiazywaniaOd);
    list.push_back(std::move(r));
}

std::unique_ptr<TZZIInfoClass> TZZIInfoClass::ParseOne(const QJsonObject& o)
{
    auto r = std::make_unique<TZZIInfoClass>();
    READ(numerIdentyfikacyjnyZwierzecia);
    Read(o, "numerIdentyfikacyjnyRejestrowanegoZwierzecia", r->numerIdentyfikacyjnyZwierzecia);
    READ(lp), READ_DATE(dataUrodzenia), READ_DATE(dataPrzybyciaDoDzialalnosci), READ_DATE(dataWyrejestrowania);
    READ(numerDzialalnosci), READ(poprzedniNumerIdentyfikacyjny), READ(numerIdentyfikacyjnyMatki);
    READ(numerIdentyfikacyjnyDawczyni), READ(numerIdentyfikacyjnyDawcy), READ(stanLancuchaPrzemieszczen);
    READ(sposobOznakowania), READ(czyMatka), READ(masaCialaZwierzecia), READ(masaTuszy);
    READ(gatunek), READ(podgatunek), READ(kodRasy), READ(plec), READ(statusZwierzecia), READ(typUzytkowy);
    READ(aktualnyStatusEpizootyczny), READ(rodzajDawczyni), READ(rodzajDawcy), READ(kierunekUzytkownia);
    READ(historiaZdarzen);
    READ_LIST(srodkiIdentyfikacji);
    return r;
}

void TZZIInfoClass::Parse(const QJsonObject& o, OwningList<TZZIInfoClass>& list)
{
    list.push_back(ParseOne(o));
}
