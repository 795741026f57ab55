#include "app/grids/GridColumns.h"

namespace {
constexpr Qt::Alignment Left = Qt::AlignLeft | Qt::AlignVCenter;
constexpr Qt::Alignment Right = Qt::AlignRight | Qt::AlignVCenter;
constexpr Qt::Alignment Centre = Qt::AlignHCenter | Qt::AlignVCenter;

GridColumn Column(const char* field, const char* caption, Qt::Alignment alignment = Left)
{
    const QString name = QString::fromLatin1(field);
    return {QStringLiteral("cl") + name, name, QString::fromUtf8(caption), alignment};
}

GridColumn Stado()
{
    return Column("STADO", "Stado");
}
GridColumn Numer()
{
    return Column("NumerIdentyfikacyjny", "Numer identyfikacyjny");
}
GridColumn Plec()
{
    return Column("Plec", "Plec");
}
GridColumn DataUrodzenia()
{
    return Column("DataUrodzenia", "Data urodzenia");
}
GridColumn Wiek()
{
    return Column("Wiek", "Wiek", Right);
}
GridColumn TypUzytkowy()
{
    return Column("TypUzytkowy", "Typ uzytkowy");
}
GridColumn KierunekUzytkowania()
{
    return Column("KierunekUzytkowania", "Kierunek uzytkowania");
}
GridColumn Rozpatrzono()
{
    return Column("Rozpatrzono", "Rozpatrzono", Centre);
}
GridColumn GdzieRozpatrzono()
{
    return Column("GdzieRozpatrzono", "Gdzie rozpatrzono");
}
GridColumn CzyMatka()
{
    return Column("CzyMatka", "Czy matka", Right);
}
} // namespace

std::vector<GridColumn> HerdAnimalColumns()
{
    return {Numer(),       Plec(),     DataUrodzenia(),   Wiek(), TypUzytkowy(), KierunekUzytkowania(),
            Rozpatrzono(), CzyMatka(), GdzieRozpatrzono()};
}

std::vector<GridColumn> GroupColumns()
{
    return {Column("GT", "GT"), Column("ZakresWieku", "ZakresWieku"), Column("Ilosc", "Ilosc", Right),
            Column("IloscPom", "Inf. dod.", Right)};
}

std::vector<GridColumn> SummaryColumns()
{
    return {Column("ZAZNACZONE", "Z", Centre),
            Stado(),
            Numer(),
            Plec(),
            DataUrodzenia(),
            Wiek(),
            TypUzytkowy(),
            KierunekUzytkowania(),
            Rozpatrzono(),
            GdzieRozpatrzono(),
            CzyMatka()};
}

std::vector<GridColumn> ColumnsFor(GridKind kind)
{
    return kind == GridKind::Groups ? GroupColumns() : HerdAnimalColumns();
}

std::vector<FooterCell> AnimalFooterCells()
{
    return {{QStringLiteral("NumerIdentyfikacyjny"), FooterKind::Count}, {QStringLiteral("CzyMatka"), FooterKind::Sum}};
}

std::vector<FooterCell> FooterCellsFor(GridKind kind)
{
    if (kind == GridKind::Groups)
        return {{QStringLiteral("GT"), FooterKind::Count}, {QStringLiteral("Ilosc"), FooterKind::Sum}};
    return AnimalFooterCells();
}

int ColumnOfField(const std::vector<GridColumn>& columns, const QString& field)
{
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (columns[i].field == field)
            return static_cast<int>(i);
    return -1;
}
