#include "gui/grids/GridColumns.h"

using namespace Qt::StringLiterals;

namespace {
constexpr Qt::Alignment Left = Qt::AlignLeft | Qt::AlignVCenter;
constexpr Qt::Alignment Right = Qt::AlignRight | Qt::AlignVCenter;
constexpr Qt::Alignment Centre = Qt::AlignHCenter | Qt::AlignVCenter;

GridColumn Column(const char* field, const char* caption, Qt::Alignment alignment = Left)
{
    const QString name = QString::fromLatin1(field);
    return {u"cl"_s + name, name, QString::fromUtf8(caption), alignment};
}

// Every column an animal grid can show; the grids pick theirs by field, in their own order.
GridColumn AnimalColumn(const QString& field)
{
    static const std::vector<GridColumn> columns{
        Column("ZAZNACZONE", "Z", Centre),
        Column("STADO", "Stado"),
        Column("NumerIdentyfikacyjny", "Numer identyfikacyjny"),
        Column("Plec", "Plec"),
        Column("DataUrodzenia", "Data urodzenia"),
        Column("Wiek", "Wiek", Right),
        Column("TypUzytkowy", "Typ uzytkowy"),
        Column("KierunekUzytkowania", "Kierunek uzytkowania"),
        Column("Rozpatrzono", "Rozpatrzono", Centre),
        Column("GdzieRozpatrzono", "Gdzie rozpatrzono"),
        Column("CzyMatka", "Czy matka", Right),
    };
    return columns[static_cast<std::size_t>(ColumnOfField(columns, field))];
}

std::vector<GridColumn> AnimalColumns(std::initializer_list<const char*> fields)
{
    std::vector<GridColumn> columns;
    for (const char* field : fields)
        columns.push_back(AnimalColumn(QString::fromLatin1(field)));
    return columns;
}
} // namespace

std::vector<GridColumn> HerdAnimalColumns()
{
    return AnimalColumns({"NumerIdentyfikacyjny", "Plec", "DataUrodzenia", "Wiek", "TypUzytkowy", "KierunekUzytkowania",
                          "Rozpatrzono", "CzyMatka", "GdzieRozpatrzono"});
}

std::vector<GridColumn> GroupColumns()
{
    return {Column("GT", "GT"), Column("ZakresWieku", "ZakresWieku"), Column("Ilosc", "Ilosc", Right),
            Column("IloscPom", "Inf. dod.", Right), Column("Limit", "Limit", Right)};
}

std::vector<GridColumn> SummaryColumns()
{
    return AnimalColumns({"ZAZNACZONE", "STADO", "NumerIdentyfikacyjny", "Plec", "DataUrodzenia", "Wiek", "TypUzytkowy",
                          "KierunekUzytkowania", "Rozpatrzono", "GdzieRozpatrzono", "CzyMatka"});
}

std::vector<GridColumn> ColumnsFor(GridKind kind)
{
    return kind == GridKind::Groups ? GroupColumns() : HerdAnimalColumns();
}

std::vector<FooterCell> AnimalFooterCells()
{
    return {{u"NumerIdentyfikacyjny"_s, FooterKind::Count}, {u"CzyMatka"_s, FooterKind::Sum}};
}

std::vector<FooterCell> FooterCellsFor(GridKind kind)
{
    if (kind == GridKind::Groups)
        return {{u"GT"_s, FooterKind::Count}, {u"Ilosc"_s, FooterKind::Sum}};
    return AnimalFooterCells();
}

int ColumnOfField(const std::vector<GridColumn>& columns, const QString& field)
{
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (columns[i].field == field)
            return static_cast<int>(i);
    return -1;
}
