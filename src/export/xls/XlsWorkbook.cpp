#include "export/xls/XlsWorkbook.h"

#include "export/xls/BiffStream.h"
#include "export/xls/CompoundFile.h"
#include "framework/SafeFile.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
constexpr int MaxSheetName = 31;
} // namespace

void XlsWorksheet::put(int row, int col, Kind kind, double value)
{
    if (row < 1 || row > MaxRows)
        throw XlsError(
            u"Arkusz \"%1\": wiersz %2 poza zakresem formatu XLS (1–%3)."_s.arg(name_).arg(row).arg(MaxRows));
    if (col < 1 || col > MaxColumns)
        throw XlsError(
            u"Arkusz \"%1\": kolumna %2 poza zakresem formatu XLS (1–%3)."_s.arg(name_).arg(col).arg(MaxColumns));
    cells_.push_back({static_cast<quint16>(row - 1), static_cast<quint16>(col - 1), kind, value});
}

void XlsWorksheet::setText(int row, int col, const QString& text)
{
    if (text.size() > MaxCellText)
        throw XlsError(u"Arkusz \"%1\", wiersz %2, kolumna %3: tekst ma %4 znaków, a komórka XLS "
                       u"mieści najwyżej %5."_s.arg(name_)
                           .arg(row)
                           .arg(col)
                           .arg(text.size())
                           .arg(MaxCellText));
    put(row, col, Kind::Text, static_cast<double>(texts_.size()));
    texts_.push_back(text);
}

void XlsWorksheet::setNumber(int row, int col, double value)
{
    put(row, col, Kind::Number, value);
}

void XlsWorksheet::setDate(int row, int col, QDate date)
{
    put(row, col, Kind::Date, static_cast<double>(QDate(1899, 12, 30).daysTo(date)));
}

void XlsWorksheet::setBool(int row, int col, bool value)
{
    put(row, col, Kind::Bool, value ? 1.0 : 0.0);
}

std::vector<XlsWorksheet::Cell> XlsWorksheet::sortedCells() const
{
    std::vector<Cell> cells = cells_;
    std::stable_sort(cells.begin(), cells.end(),
                     [](const Cell& a, const Cell& b) { return a.row != b.row ? a.row < b.row : a.col < b.col; });
    // Of cells set more than once the last one stands.
    std::vector<Cell> unique;
    unique.reserve(cells.size());
    for (const Cell& cell : cells) {
        if (!unique.empty() && unique.back().row == cell.row && unique.back().col == cell.col)
            unique.back() = cell;
        else
            unique.push_back(cell);
    }
    return unique;
}

XlsWorksheet& XlsWorkbook::addSheet(const QString& name)
{
    static const QString forbidden = u"[]:*?/\\"_s;
    for (const QChar c : name)
        if (forbidden.contains(c))
            throw XlsError(u"Nazwa arkusza \"%1\" zawiera niedozwolony znak \"%2\"."_s.arg(name, c));
    const QString cut = name.left(MaxSheetName);
    if (cut.isEmpty())
        throw XlsError(u"Arkusz musi mieć nazwę."_s);
    if (cut.startsWith(u'\'') || cut.endsWith(u'\''))
        throw XlsError(u"Nazwa arkusza \"%1\" nie może zaczynać się ani kończyć apostrofem."_s.arg(cut));
    for (const XlsWorksheet& sheet : sheets_)
        if (sheet.name().compare(cut, Qt::CaseInsensitive) == 0)
            throw XlsError(u"Arkusz o nazwie \"%1\" już istnieje."_s.arg(cut));
    return sheets_.emplace_back(cut);
}

QByteArray XlsWorkbook::toBytes() const
{
    std::vector<const XlsWorksheet*> sheets;
    for (const XlsWorksheet& sheet : sheets_)
        sheets.push_back(&sheet);
    // A workbook needs at least one sheet to open.
    const XlsWorksheet empty(u"Arkusz1"_s);
    if (sheets.empty())
        sheets.push_back(&empty);
    return CompoundFileWithWorkbook(WorkbookStream(sheets));
}

void XlsWorkbook::save(const QString& path) const
{
    try {
        WriteFileAtomically(path, toBytes());
    } catch (const FileWriteError& error) {
        throw XlsError(error.message());
    }
}
