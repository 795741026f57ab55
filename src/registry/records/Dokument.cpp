#include "registry/records/Dokument.h"

#include "registry/records/RecordMacros.h"

void TDokumInfOgolneClass::Parse(const QJsonObject& o, OwningList<TDokumInfOgolneClass>& list)
{
    auto r = std::make_unique<TDokumInfOgolneClass>();
    READ(numerDokumentu), READ(typDokumentu);
    READ_DATE_TIME(dataZlozeniaDokumentu), READ_DATE_TIME(dataUtworzenia), READ_DATE_TIME(dataModyfikacji);
    READ(statusDokumentu), READ(numerKancelaryjny), READ(komorkaOrganizacyjna);
    list.push_back(std::move(r));
}

void TBladClass::Parse(const QJsonObject& o, OwningList<TBladClass>& list)
{
    auto r = std::make_unique<TBladClass>();
    r->kodBledu = TextOf(o, "kodBledu");
    r->komunikat = TextOf(o, "komunikat");
    list.push_back(std::move(r));
}
