#pragma once

#include "registry/records/ZZIInfo.h"

#include <array>

class WorkingTables;
class Table;

// Writes one animal as a row of mdRZ00 (all fields, "ZAZNACZONE" false) and of
// its herd's table. The summary gets the codes of breed and donors, the rows
// show the descriptions of sex, use type and use direction.
class AnimalRowWriter {
public:
    explicit AnimalRowWriter(WorkingTables& tables);

    void write(const TZZIInfoClass& animal, bool czyMatka, int age, const QString& herdCode, int slot);

private:
    enum Common { Number, Sex, Birth, Age, UseType, UseDirection, Mother, Herd, CommonCount };
    enum Extended {
        Marked,
        Arrival,
        Deregistration,
        Breed,
        DonorFemaleKind,
        DonorMaleKind,
        Holding,
        MotherNumber,
        DonorFemaleNumber,
        DonorMaleNumber,
        EarTags,
        ExtendedCount
    };
    using CommonFields = std::array<int, CommonCount>;

    void writeCommon(Table& table, const CommonFields& fields, const TZZIInfoClass& animal, bool czyMatka, int age,
                     const QString& herdCode) const;
    void writeExtended(Table& summary, const TZZIInfoClass& animal) const;

    WorkingTables& tables_;
    CommonFields summaryFields_{};
    CommonFields herdFields_{}; // the same for every herd table
    std::array<int, ExtendedCount> extendedFields_{};
};
