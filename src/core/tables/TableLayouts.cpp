#include "core/tables/TableLayouts.h"

namespace {
FieldDef Text(const char* name, int size)
{
    return {QString::fromLatin1(name), FieldType::String, size};
}
FieldDef Of(const char* name, FieldType type)
{
    return {QString::fromLatin1(name), type, 0};
}
} // namespace

std::vector<FieldDef> AnimalFields(AnimalLayout layout)
{
    std::vector<FieldDef> fields{
        Text("NumerIdentyfikacyjny", 20),
        Text("Plec", 10),
        Of("DataUrodzenia", FieldType::Date),
        Of("Wiek", FieldType::Int32),
        Text("TypUzytkowy", 20),
        Text("KierunekUzytkowania", 20),
        Text("GdzieRozpatrzono", 100),
        Text("Rozpatrzono", 3),
        Of("CzyMatka", FieldType::Int16),
        Text("STADO", 5),
    };
    if (layout == AnimalLayout::Herd)
        return fields;
    fields.push_back(Of("ZAZNACZONE", FieldType::Boolean));
    if (layout == AnimalLayout::Report)
        return fields;
    const std::vector<FieldDef> extended{
        Of("DataPrzybycia", FieldType::Date),
        Of("DataWyrejestrowania", FieldType::Date),
        Text("Rasa", 20),
        Text("RodzajDawczyni", 20),
        Text("RodzajDawcy", 20),
        Text("NumerDzialalnosci", 20),
        Text("NumerIdentyfikacyjnyMatki", 20),
        Text("NumerIdentyfikacyjnyDawczyni", 20),
        Text("NumerIdentyfikacyjnyDawcy", 20),
        Text("IloscOznakowan", 20),
    };
    fields.insert(fields.end(), extended.begin(), extended.end());
    return fields;
}

std::vector<FieldDef> GroupFields()
{
    return {
        Of("ID", FieldType::Int32),       Text("GT", 50),      Text("ZakresWieku", 30), Of("Ilosc", FieldType::Int32),
        Of("IloscPom", FieldType::Int32), Text("IndDod", 100), Text("STADO", 5),        Of("Limit", FieldType::Int32)};
}

std::vector<FieldDef> ProducerFields()
{
    return {Text("PRODUCENT", 20), Of("DATA1", FieldType::Date), Of("DATA2", FieldType::Date),
            Of("DATA3", FieldType::Date), Text("NAZWA", 50)};
}

std::vector<FieldDef> UseChangeFields()
{
    return {Text("STADO", 5),
            Text("NumerIdentyfikacyjny", 20),
            Text("TU_OLD", 20),
            Text("TU_NEW", 20),
            Text("KU_OLD", 20),
            Text("KU_NEW", 20),
            Text("Komunikat", 100),
            Text("NumerDokumentu", 40),
            Of("ST_KOD", FieldType::Int32),
            Text("ST_OPIS", 60),
            Of("BLEDY", FieldType::Memo)};
}
