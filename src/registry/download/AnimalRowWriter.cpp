#include "registry/download/AnimalRowWriter.h"

#include "core/tables/WorkingTables.h"

namespace {
template <std::size_t N> std::array<int, N> FieldIndices(const Table& table, const std::array<const char*, N>& names)
{
    std::array<int, N> indices{};
    for (std::size_t i = 0; i < N; ++i)
        indices[i] = table.requireField(QLatin1String(names[i]));
    return indices;
}

const std::array<const char*, 8> CommonNames{"NumerIdentyfikacyjny", "Plec",     "DataUrodzenia", "Wiek", "TypUzytkowy",
                                             "KierunekUzytkowania",  "CzyMatka", "STADO"};
const std::array<const char*, 11> ExtendedNames{"ZAZNACZONE",
                                                "DataPrzybycia",
                                                "DataWyrejestrowania",
                                                "Rasa",
                                                "RodzajDawczyni",
                                                "RodzajDawcy",
                                                "NumerDzialalnosci",
                                                "NumerIdentyfikacyjnyMatki",
                                                "NumerIdentyfikacyjnyDawczyni",
                                                "NumerIdentyfikacyjnyDawcy",
                                                "IloscOznakowan"};

void SetDate(Table& table, int field, TDateTime value)
{
    if (!IsEmptyDate(value))
        table.setValue(field, ToDate(value));
}
} // namespace

AnimalRowWriter::AnimalRowWriter(WorkingTables& tables)
    : tables_(tables), summaryFields_(FieldIndices(tables.mdRZ00(), CommonNames)),
      herdFields_(FieldIndices(tables.mdRZ(1), CommonNames)),
      extendedFields_(FieldIndices(tables.mdRZ00(), ExtendedNames))
{}

void AnimalRowWriter::write(const TZZIInfoClass& animal, bool czyMatka, int age, const QString& herdCode, int slot)
{
    Table& summary = tables_.mdRZ00();
    summary.setReadOnly(false);
    summary.append();
    writeCommon(summary, summaryFields_, animal, czyMatka, age, herdCode);
    writeExtended(summary, animal);
    summary.post();
    tables_.restoreReadOnly(summary);

    Table& herd = tables_.mdRZ(slot);
    herd.setReadOnly(false);
    herd.append();
    writeCommon(herd, herdFields_, animal, czyMatka, age, herdCode);
    herd.post();
    tables_.restoreReadOnly(herd);
}

void AnimalRowWriter::writeCommon(Table& table, const CommonFields& f, const TZZIInfoClass& animal, bool czyMatka,
                                  int age, const QString& herdCode) const
{
    table.setValue(f[Number], animal.numerIdentyfikacyjnyZwierzecia);
    table.setValue(f[Sex], animal.plec.opis);
    SetDate(table, f[Birth], animal.dataUrodzenia);
    table.setValue(f[Age], age);
    table.setValue(f[UseType], animal.typUzytkowy.opis);
    table.setValue(f[UseDirection], animal.kierunekUzytkownia.opis);
    table.setValue(f[Mother], czyMatka ? 1 : 0);
    if (!herdCode.isEmpty())
        table.setValue(f[Herd], herdCode);
}

void AnimalRowWriter::writeExtended(Table& summary, const TZZIInfoClass& animal) const
{
    const auto& f = extendedFields_;
    summary.setValue(f[Marked], false);
    SetDate(summary, f[Arrival], animal.dataPrzybyciaDoDzialalnosci);
    SetDate(summary, f[Deregistration], animal.dataWyrejestrowania);
    summary.setValue(f[Breed], animal.kodRasy.kod);
    summary.setValue(f[DonorFemaleKind], animal.rodzajDawczyni.kod);
    summary.setValue(f[DonorMaleKind], animal.rodzajDawcy.kod);
    summary.setValue(f[Holding], animal.numerDzialalnosci);
    summary.setValue(f[MotherNumber], animal.numerIdentyfikacyjnyMatki);
    summary.setValue(f[DonorFemaleNumber], animal.numerIdentyfikacyjnyDawczyni);
    summary.setValue(f[DonorMaleNumber], animal.numerIdentyfikacyjnyDawcy);
    summary.setValue(f[EarTags], QString::number(animal.srodkiIdentyfikacji.size()));
}
