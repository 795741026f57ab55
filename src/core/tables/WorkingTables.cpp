#include "core/tables/WorkingTables.h"

#include "core/tables/TableLayouts.h"

using namespace Qt::StringLiterals;

QString SlotSuffix(int slot)
{
    return u"%1"_s.arg(slot, 2, 10, QLatin1Char('0'));
}

WorkingTables::WorkingTables()
{
    for (int slot = 0; slot < HerdSlotCount; ++slot) {
        const auto i = static_cast<std::size_t>(slot);
        animals_[i] = std::make_unique<Table>(u"mdRZ"_s + SlotSuffix(slot),
                                              AnimalFields(slot == 0 ? AnimalLayout::Summary : AnimalLayout::Herd));
        groups_[i] = std::make_unique<Table>(u"mdGT"_s + SlotSuffix(slot), GroupFields(), u"ID"_s);
        animals_[i]->setReadOnly(slot != 0);
        groups_[i]->setReadOnly(true);
        HerdSlots[i].AnimalsTable = animals_[i].get();
        HerdSlots[i].GroupsTable = groups_[i].get();
        HerdSlots[i].Index = slot == 0 ? -1 : 0;
        HerdSlots[i].Code = slot == 0 ? u"000"_s : QString();
    }
    producer_ = std::make_unique<Table>(u"mdProducent"_s, ProducerFields(), u"ID"_s);
    producer_->setReadOnly(true);
    empty_ = std::make_unique<Table>(u"mdEmpty"_s, AnimalFields(AnimalLayout::Herd));
    empty_->setReadOnly(true);
    useChange_ = std::make_unique<Table>(u"mdTUKU"_s, UseChangeFields());
    report_ = std::make_unique<Table>(u"mdRaport1"_s, AnimalFields(AnimalLayout::Report));
    for (Table* table : {producer_.get(), empty_.get(), useChange_.get(), report_.get()})
        table->open();
    // Every animal layout starts with the same ten fields.
    rozpatrzonoField_ = mdRZ00().requireField(u"Rozpatrzono");
    gdzieField_ = mdRZ00().requireField(u"GdzieRozpatrzono");
    markField_ = mdRZ00().requireField(u"ZAZNACZONE");
}

std::vector<Table*> WorkingTables::all() const
{
    std::vector<Table*> tables;
    for (const auto& t : animals_)
        tables.push_back(t.get());
    for (const auto& t : groups_)
        tables.push_back(t.get());
    tables.insert(tables.end(), {producer_.get(), empty_.get(), useChange_.get(), report_.get()});
    return tables;
}

Table* WorkingTables::byName(QStringView name) const
{
    for (Table* table : all())
        if (table->name() == name)
            return table;
    return nullptr;
}

void WorkingTables::ClearTable(Table& table)
{
    table.setReadOnly(false);
    table.removeAll();
    restoreReadOnly(table);
}

void WorkingTables::WriteProducerHeader(const ProducerHeader& header)
{
    Table& producer = mdProducent();
    producer.setReadOnly(false);
    producer.removeAll();
    producer.append();
    producer.setValue(u"PRODUCENT", header.producer);
    producer.setValue(u"DATA1", header.stateDate);
    producer.setValue(u"DATA2", header.downloadDate);
    producer.setValue(u"DATA3", header.referenceDate);
    producer.setValue(u"NAZWA", header.name);
    producer.post();
    restoreReadOnly(producer);
}

void WorkingTables::SetMarked(int row, bool marked)
{
    Table& animals = mdRZ00();
    animals.moveTo(row);
    animals.edit();
    animals.setValue(markField_, marked);
    animals.post();
}

void WorkingTables::MarkAnimalReviewed(Table& table, const QString& rozpatrzono, const QString& gdzie)
{
    table.setReadOnly(false);
    table.edit();
    table.setValue(rozpatrzonoField_, rozpatrzono);
    table.setValue(gdzieField_, gdzie);
    table.post();
    restoreReadOnly(table);
}
