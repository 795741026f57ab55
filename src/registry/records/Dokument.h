#pragma once

#include "registry/records/RecordFields.h"

// General information on one registry document.
class TDokumInfOgolneClass {
public:
    QString numerDokumentu, typDokumentu;
    TDateTime dataZlozeniaDokumentu = EmptyDate, dataUtworzenia = EmptyDate, dataModyfikacji = EmptyDate;
    QString statusDokumentu, numerKancelaryjny, komorkaOrganizacyjna;
    static void Parse(const QJsonObject& o, OwningList<TDokumInfOgolneClass>& list);
};

// An error entry of an error answer.
class TBladClass {
public:
    QString kodBledu, komunikat; // read even when null
    static void Parse(const QJsonObject& o, OwningList<TBladClass>& list);
};
