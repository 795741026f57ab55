#pragma once

#include "core/tables/Table.h"

#include <array>
#include <memory>

inline constexpr int HerdSlotCount = 21; // slot 0 is the summary "Ogółem"

// The data half of one herd tab: which herd it shows and its two tables.
struct THerdSlot {
    QString Code;
    qint32 Index = 0;
    Table* AnimalsTable = nullptr;
    Table* GroupsTable = nullptr;
    bool Visible = false; // the tab is shown
    QString Incomplete;   // why the herd ended early, as its line in mErrors; empty when read whole
};

// The one row of mdProducent: the header of every print.
struct ProducerHeader {
    QString producer;
    QDate stateDate;     // DATA1
    QDate downloadDate;  // DATA2
    QDate referenceDate; // DATA3
    QString name;
};

// All working tables of the main window and the 21 herd slots bound to them.
class WorkingTables {
public:
    WorkingTables();
    WorkingTables(const WorkingTables&) = delete;
    WorkingTables& operator=(const WorkingTables&) = delete;

    Table& mdRZ(int slot) { return *animals_[static_cast<std::size_t>(slot)]; }
    Table& mdGT(int slot) { return *groups_[static_cast<std::size_t>(slot)]; }
    Table& mdRZ00() { return mdRZ(0); }
    Table& mdGT00() { return mdGT(0); }
    Table& mdProducent() { return *producer_; }
    Table& mdEmpty() { return *empty_; }
    Table& mdTUKU() { return *useChange_; }
    Table& mdRaport1() { return *report_; }

    // Every table, in the order used for listings and dumps.
    std::vector<Table*> all() const;
    Table* byName(QStringView name) const;

    std::array<THerdSlot, HerdSlotCount> HerdSlots;

    // The write helpers lift a table's read-only switch, write, and set it again
    // unless the table is mdRZ00, which stays writable by design.
    void ClearTable(Table& table);
    void MarkAnimalReviewed(Table& table, const QString& rozpatrzono, const QString& gdzie);
    // mdProducent emptied and given this one row.
    void WriteProducerHeader(const ProducerHeader& header);
    // Ticks or unticks ("ZAZNACZONE") one animal of mdRZ00, as the summary grid's "Z" does.
    void SetMarked(int row, bool marked);
    void restoreReadOnly(Table& table) { table.setReadOnly(&table != &mdRZ00()); }

private:
    std::array<std::unique_ptr<Table>, HerdSlotCount> animals_;
    std::array<std::unique_ptr<Table>, HerdSlotCount> groups_;
    std::unique_ptr<Table> producer_;
    std::unique_ptr<Table> empty_;
    std::unique_ptr<Table> useChange_;
    std::unique_ptr<Table> report_;
    int rozpatrzonoField_ = 0;
    int gdzieField_ = 0;
    int markField_ = 0;
};

QString SlotSuffix(int slot); // "00" … "20"
