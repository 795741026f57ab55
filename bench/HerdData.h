#pragma once

#include "BenchSupport.h"
#include "core/session/HalvarnSession.h"
#include "core/tables/WorkingTables.h"
#include "reports/ShippedTemplates.h"
#include "reports/print/PrintCommands.h"
#include "reports/print/TdmulmxDataBase_FR3.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;

// Herds of generated animals in the herd slots and in the summary table, as a
// download would leave them.
inline void AddAnimal(Table& table, int i, const QString& herd)
{
    static const QString where[]{u"Halvarn krów mamek, 24 > Wiek"_s, u"Cielęta , Wiek <= 6"_s,
                                 u"Jałówki od 6 do 19, 6 > Wiek <= 19"_s, u"Halvarn opasów, -"_s};
    table.append();
    table.setValue(u"NumerIdentyfikacyjny", u"PL%1"_s.arg(5000000000LL + i, 12, 10, QLatin1Char('0')));
    table.setValue(u"Plec", i % 3 ? u"Samica"_s : u"Samiec"_s);
    table.setValue(u"DataUrodzenia", QDate(2015, 1, 1).addDays(i % 3000));
    table.setValue(u"Wiek", i % 120);
    table.setValue(u"TypUzytkowy", u"Mięsny"_s);
    table.setValue(u"KierunekUzytkowania", u"Mięsny"_s);
    table.setValue(u"GdzieRozpatrzono", where[i % 4]);
    table.setValue(u"Rozpatrzono", u"D"_s);
    table.setValue(u"CzyMatka", i % 2);
    table.setValue(u"STADO", herd);
    table.post();
}

inline void FillHerds(WorkingTables& tables, int herds, int animalsPerHerd)
{
    for (int herd = 1; herd <= herds; ++herd) {
        THerdSlot& slot = tables.HerdSlots[static_cast<std::size_t>(herd)];
        slot.Code = u"%1"_s.arg(herd, 3, 10, QLatin1Char('0'));
        slot.Visible = true;
        slot.AnimalsTable->setReadOnly(false);
        for (int i = 0; i < animalsPerHerd; ++i) {
            const int animal = herd * animalsPerHerd + i;
            AddAnimal(tables.mdRZ00(), animal, slot.Code);
            AddAnimal(*slot.AnimalsTable, animal, slot.Code);
        }
    }
}

// A session holding such herds in a data folder of its own, with the shipped
// templates, ready to print.
struct PrintableHerds {
    QTemporaryDir folder;
    DataFolder data{folder.path()};
    BenchHost host;
    HalvarnSession session{data, host};
    TdmulmxDataBase_FR3 reports;
    PrintCommands prints{session, reports};

    PrintableHerds(int herds, int animalsPerHerd)
    {
        data.prepare();
        InstallShippedTemplates(data.templatesFolder());
        session.ClearAllData();
        FillHerds(session.tables(), herds, animalsPerHerd);
    }
};
