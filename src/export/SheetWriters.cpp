#include "export/SheetWriters.h"

#include "core/tables/Table.h"
#include "export/xls/XlsWorkbook.h"

#include <initializer_list>

using namespace Qt::StringLiterals;

namespace {
void WriteTitles(XlsWorksheet& sheet, std::initializer_list<const char*> titles)
{
    int column = 1;
    for (const char* title : titles)
        sheet.setText(1, column++, QString::fromUtf8(title));
}

// A cell typed as its field: text, number, date or boolean; nothing for null.
void WriteValue(XlsWorksheet& sheet, int row, int column, const FieldValue& value)
{
    if (const auto* text = std::get_if<QString>(&value))
        sheet.setText(row, column, *text);
    else if (const auto* number = std::get_if<qint32>(&value))
        sheet.setNumber(row, column, *number);
    else if (const auto* date = std::get_if<QDate>(&value))
        sheet.setDate(row, column, *date);
    else if (const auto* flag = std::get_if<bool>(&value))
        sheet.setBool(row, column, *flag);
}

// A sheet holds its title row, the records and the closing row; one that would
// not fit is refused before any cell is set, so nothing is written.
void RequireRowsFit(const XlsWorksheet& sheet, std::size_t records)
{
    const std::size_t rows = records + 2;
    if (rows > static_cast<std::size_t>(XlsWorksheet::MaxRows))
        throw XlsError(u"Za dużo wierszy dla arkusza XLS \"%1\": %2 rekordów z tytułem i "
                       u"podsumowaniem to %3 wierszy, a format pozwala najwyżej na %4. "
                       u"Plik nie został zapisany."_s.arg(sheet.name())
                           .arg(records)
                           .arg(rows)
                           .arg(XlsWorksheet::MaxRows));
}

void WriteFields(XlsWorksheet& sheet, int row, const Table& table, int record,
                 std::initializer_list<const char*> fields)
{
    int column = 1;
    for (const char* field : fields) {
        if (field) // a null name leaves the column to the caller
            WriteValue(sheet, row, column, table.at(record, table.requireField(QLatin1String(field))));
        ++column;
    }
}
} // namespace

void WriteSummarySheet(XlsWorksheet& sheet, const Table& summary, const std::vector<int>& rows)
{
    RequireRowsFit(sheet, rows.size());
    WriteTitles(sheet, {"Zaznaczone", "Stado", "NumerIdentyfikacyjny", "DataUrodzenia", "Wiek", "TypUzytkowy",
                        "KierunekUzytkowania", "Rozpatrzono", "GdzieRozpatrzono", "CzyMatka", "Płeć"});
    const int mother = summary.requireField(u"CzyMatka");
    int row = 2;
    int mothers = 0;
    for (int record : rows) {
        WriteFields(sheet, row++, summary, record,
                    {"ZAZNACZONE", "STADO", "NumerIdentyfikacyjny", "DataUrodzenia", "Wiek", "TypUzytkowy",
                     "KierunekUzytkowania", "Rozpatrzono", "GdzieRozpatrzono", "CzyMatka", "Plec"});
        mothers += AsInteger(summary.at(record, mother));
    }
    sheet.setText(row, 1, u"Ilość:"_s);
    sheet.setNumber(row, 4, static_cast<double>(rows.size()));
    sheet.setNumber(row, 10, mothers);
}

// The mothers' sum adds the value of the record reached after each move, so the
// first record is never added and the last one twice; the totals are kept so.
void WriteHerdAnimalsSheet(XlsWorksheet& sheet, Table& animals)
{
    RequireRowsFit(sheet, static_cast<std::size_t>(animals.recordCount()));
    WriteTitles(sheet, {"NumerIdentyfikacyjny", "DataUrodzenia", "Wiek", "TypUzytkowy", "KierunekUzytkowania",
                        "Rozpatrzono", "GdzieRozpatrzono", "CzyMatka", "Płeć"});
    const int birth = animals.requireField(u"DataUrodzenia");
    const int mother = animals.requireField(u"CzyMatka");
    int row = 2;
    int count = 0;
    int mothers = 0;
    animals.first();
    while (!animals.eof()) {
        WriteFields(sheet, row, animals, animals.recNo(),
                    {"NumerIdentyfikacyjny", nullptr, "Wiek", "TypUzytkowy", "KierunekUzytkowania", "Rozpatrzono",
                     "GdzieRozpatrzono", "CzyMatka", "Plec"});
        if (!IsNull(animals.value(birth)))
            sheet.setText(row, 2, DisplayText(animals.value(birth)));
        animals.next();
        mothers += AsInteger(animals.value(mother));
        ++row;
        ++count;
    }
    sheet.setText(row, 1, u"Ilość:"_s);
    sheet.setNumber(row, 2, count);
    sheet.setNumber(row, 8, mothers);
}

void WriteHerdGroupsSheet(XlsWorksheet& sheet, Table& groups)
{
    RequireRowsFit(sheet, static_cast<std::size_t>(groups.recordCount()));
    WriteTitles(sheet, {"Grupa technologiczna", "ZakresWieku", "Ilosc", "Inf. dod.", "Limit"});
    const int count = groups.requireField(u"Ilosc");
    int row = 2;
    int sum = 0;
    groups.first();
    while (!groups.eof()) {
        WriteFields(sheet, row++, groups, groups.recNo(), {"GT", "ZakresWieku", "Ilosc", "IloscPom", "Limit"});
        sum += AsInteger(groups.value(count));
        groups.next();
    }
    sheet.setText(row, 2, u"Suma:"_s);
    sheet.setNumber(row, 3, sum);
}
