#include "reports/print/ControlList.h"

#include "analysis/AgeInMonths.h"
#include "analysis/GroupCatalogue.h"
#include "core/recount/CountAgain.h"
#include "core/session/HalvarnSession.h"
#include "framework/IniFile.h"

#include <QCollator>

#include <algorithm>
#include <map>

using namespace Qt::StringLiterals;

namespace {
const QString BornHere = u"urodzone w gospodarstwie"_s;
const QString BoughtIn = u"zakupione"_s;

std::vector<FieldDef> AnimalFieldsOfList()
{
    return {{u"NumerIdentyfikacyjny"_s, FieldType::String, 20},
            {u"STADO"_s, FieldType::String, 5},
            {u"Plec"_s, FieldType::String, 10},
            {u"DataUrodzenia"_s, FieldType::Date, 0},
            {u"Wiek"_s, FieldType::Int32, 0},
            {u"Grupa"_s, FieldType::String, 100},
            {u"Pochodzenie"_s, FieldType::String, 30},
            {u"DataPrzybycia"_s, FieldType::Date, 0}};
}

std::vector<FieldDef> TotalFields()
{
    return {{u"Opis"_s, FieldType::String, 100},
            {u"Ilosc"_s, FieldType::Int32, 0},
            {u"DataKontroli"_s, FieldType::Date, 0},
            {u"Stada"_s, FieldType::String, 50}};
}

struct Entry {
    QString sortKey;
    std::vector<FieldValue> values;
};

// The last three digits of the ear tag first, the whole tag after them.
QString SortKey(const QString& tag)
{
    QString digits;
    for (auto c = tag.crbegin(); c != tag.crend() && digits.size() < 3 && c->isDigit(); ++c)
        digits.prepend(*c);
    return digits.rightJustified(3, u'0') + u' ' + tag;
}

// The group's name without its age range: "Jałówki od 6 do 19, 6 > Wiek <= 19" → "Jałówki od 6 do 19".
QString GroupName(const FieldValue& where)
{
    const QString text = AsString(where);
    const QString name = text.left(text.indexOf(u',')).trimmed();
    return name.isEmpty() ? u"NIE ROZLICZONE"_s : name;
}

QString Origin(const FieldValue& birth, const FieldValue& arrival)
{
    return IsNull(arrival) || AsDate(arrival) == AsDate(birth) ? BornHere : BoughtIn;
}

// The session's animal tables copied into `tables`, aged and counted on `date`
// with the ticks and limits as they are now; a session without the registry's
// answers per animal (data read from a dump) keeps its groups and is only aged.
void CountOnDate(HalvarnSession& session, WorkingTables& tables, QDate date)
{
    for (Table* table : tables.all())
        table->open();
    for (int slot = 0; slot < HerdSlotCount; ++slot) {
        const Table& from = session.tables().mdRZ(slot);
        Table& to = tables.mdRZ(slot);
        to.setReadOnly(false);
        for (int row = 0; row < from.recordCount(); ++row) {
            to.append();
            for (int field = 0; field < from.fieldCount(); ++field)
                to.setValue(field, from.at(row, field));
            to.post();
        }
    }
    const AgeLimits limits = AgeLimits::read(IniFile(session.dataFolder().settingsFile()));
    RebuildGroupCatalogue(tables, limits, session.inputs.flags);
    if (RowsMatchAnswers(tables, session.answers))
        CountAgain(tables, session.answers, date, limits, session.inputs.flags);
}

std::vector<Entry> ListedAnimals(const Table& summary, QDate date, const QString& herd)
{
    const bool all = herd == u"ALL" || herd == u"000";
    const int tag = summary.requireField(u"NumerIdentyfikacyjny");
    const int herdField = summary.requireField(u"STADO");
    const int sex = summary.requireField(u"Plec");
    const int birth = summary.requireField(u"DataUrodzenia");
    const int where = summary.requireField(u"GdzieRozpatrzono");
    const int arrival = summary.requireField(u"DataPrzybycia");
    std::vector<Entry> entries;
    for (int row = 0; row < summary.recordCount(); ++row) {
        if (!all && AsString(summary.at(row, herdField)) != herd)
            continue;
        const FieldValue& born = summary.at(row, birth);
        const int age = AgeInMonths(ToDateTime(AsDate(born)), ToDateTime(date));
        entries.push_back(
            {SortKey(AsString(summary.at(row, tag))),
             {summary.at(row, tag), summary.at(row, herdField), summary.at(row, sex), born, age,
              GroupName(summary.at(row, where)), Origin(born, summary.at(row, arrival)), summary.at(row, arrival)}});
    }
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.sortKey < b.sortKey; });
    return entries;
}

std::vector<std::pair<QString, int>> InPolishOrder(const std::map<QString, int>& counts)
{
    std::vector<std::pair<QString, int>> ordered(counts.begin(), counts.end());
    const QCollator collator{QLocale(QLocale::Polish, QLocale::Poland)};
    std::sort(ordered.begin(), ordered.end(),
              [&collator](const auto& a, const auto& b) { return collator.compare(a.first, b.first) < 0; });
    return ordered;
}

void AppendRow(Table& table, const std::vector<FieldValue>& values)
{
    table.append();
    for (std::size_t field = 0; field < values.size(); ++field)
        table.setValue(static_cast<int>(field), values[field]);
    table.post();
}
} // namespace

ControlList::ControlList()
    : animals_(u"mdKontrola"_s, AnimalFieldsOfList()), totals_(u"mdKontrolaSumy"_s, TotalFields())
{
    animals_.open();
    totals_.open();
}

QString ControlList::templateName()
{
    return u"Lista kontrolna.fr3"_s;
}

void ControlList::fill(HalvarnSession& session, QDate controlDate, const QString& herd)
{
    WorkingTables counted;
    CountOnDate(session, counted, controlDate);
    animals_.removeAll();
    totals_.removeAll();
    std::map<QString, int> perGroup;
    std::map<QString, int> perOrigin{{BornHere, 0}, {BoughtIn, 0}};
    const std::vector<Entry> entries = ListedAnimals(counted.mdRZ00(), controlDate, herd);
    for (const Entry& entry : entries) {
        AppendRow(animals_, entry.values);
        ++perGroup[AsString(entry.values[5])];
        ++perOrigin[AsString(entry.values[6])];
    }
    const QString herds = herd == u"ALL" || herd == u"000" ? u"wszystkie"_s : herd;
    const auto total = [&](const QString& text, int count) { AppendRow(totals_, {text, count, controlDate, herds}); };
    for (const auto& [group, count] : InPolishOrder(perGroup))
        total(group, count);
    total(u"Urodzone w gospodarstwie"_s, perOrigin[BornHere]);
    total(u"Zakupione"_s, perOrigin[BoughtIn]);
    total(u"Razem"_s, static_cast<int>(entries.size()));
}
