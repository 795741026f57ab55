#include "core/recount/CountAgain.h"

#include "analysis/AgeInMonths.h"
#include "analysis/WelfareAnalysis.h"

using namespace Qt::StringLiterals;

namespace {
// Puts an animal's age and mother flag of the new date into its rows of mdRZ00
// and of its herd's table, clears the marks the analysis sets again, and
// leaves both rows current for the analysis.
class RowUpdater {
public:
    explicit RowUpdater(WorkingTables& tables)
        : tables_(tables), summary_(FieldsOf(tables.mdRZ00())), herd_(FieldsOf(tables.mdRZ(1)))
    {}

    void update(int row, int slot, int herdRow, int age, bool mother)
    {
        update(tables_.mdRZ00(), summary_, row, age, mother);
        update(tables_.mdRZ(slot), herd_, herdRow, age, mother);
    }

private:
    struct Fields {
        int age;
        int mother;
        int rozpatrzono;
        int gdzie;
    };

    static Fields FieldsOf(const Table& table)
    {
        return {table.requireField(u"Wiek"), table.requireField(u"CzyMatka"), table.requireField(u"Rozpatrzono"),
                table.requireField(u"GdzieRozpatrzono")};
    }

    void update(Table& table, const Fields& f, int row, int age, bool mother)
    {
        table.setReadOnly(false);
        table.moveTo(row);
        table.edit();
        table.setValue(f.age, age);
        table.setValue(f.mother, qint32{mother ? 1 : 0});
        table.setValue(f.rozpatrzono, {});
        table.setValue(f.gdzie, {});
        table.post();
        tables_.restoreReadOnly(table);
    }

    WorkingTables& tables_;
    Fields summary_;
    Fields herd_;
};

} // namespace

bool RowsMatchAnswers(WorkingTables& tables, const std::vector<AnimalAnswer>& answers)
{
    if (answers.size() != static_cast<std::size_t>(tables.mdRZ00().recordCount()))
        return false;
    std::array<int, HerdSlotCount> perSlot{};
    for (const AnimalAnswer& answer : answers) {
        if (answer.slot < 1 || answer.slot >= HerdSlotCount)
            return false;
        ++perSlot[static_cast<std::size_t>(answer.slot)];
    }
    for (int slot = 1; slot < HerdSlotCount; ++slot)
        if (perSlot[static_cast<std::size_t>(slot)] != tables.mdRZ(slot).recordCount())
            return false;
    return true;
}

int CountAgain(WorkingTables& tables, const std::vector<AnimalAnswer>& answers, QDate date, const AgeLimits& limits,
               WelfareFlags flags)
{
    WelfareAnalysis analysis(tables, limits, flags);
    RowUpdater updater(tables);
    const TDateTime reference = ToDateTime(date);
    const Table& summary = tables.mdRZ00();
    const int birthField = summary.requireField(u"DataUrodzenia");
    std::array<int, HerdSlotCount> herdRow{};
    int bornAfter = 0;
    for (int row = 0; row < summary.recordCount(); ++row) {
        const AnimalAnswer& answer = answers[static_cast<std::size_t>(row)];
        const TDateTime birth = ToDateTime(AsDate(summary.at(row, birthField)));
        const int age = AgeInMonths(birth, reference);
        if (birth > reference)
            ++bornAfter;
        updater.update(row, answer.slot, herdRow[static_cast<std::size_t>(answer.slot)]++, age,
                       CountedMother(answer, age));
        const auto calfAge = [&answer, reference] {
            return answer.firstCalfBirth ? AgeInMonths(ToDateTime(*answer.firstCalfBirth), reference) : 0;
        };
        analysis.analyse({answer.sexCode, answer.useType, answer.useDirection, age, true, calfAge}, answer.slot);
    }
    return bornAfter;
}
