#include "export/CsvExport.h"

#include "core/tables/Table.h"
#include "framework/Cp1250.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace {
const char* const Title =
    "LP;NrProducenta;Rasa;Płeć;NrZwierzęcia;Grupatechnologiczna;DataUrodzenia;Wiek;TypUzytkowy;"
    "KierunekUzytkowania;CzyMatka;DataPrzybycia;DataWyrejestrowania;RodzajDawczyni;RodzajDawcy;"
    "NumerDzialalnosci;NumerIdentyfikacyjnyMatki;NumerIdentyfikacyjnyDawczyni;NumerIdentyfikacyjnyDawcy;"
    "IloscOznakowan;";

const char* const Fields[] = {"Rasa",
                              "Plec",
                              "NumerIdentyfikacyjny",
                              "GdzieRozpatrzono",
                              "DataUrodzenia",
                              "Wiek",
                              "TypUzytkowy",
                              "KierunekUzytkowania",
                              "CzyMatka",
                              "DataPrzybycia",
                              "DataWyrejestrowania",
                              "RodzajDawczyni",
                              "RodzajDawcy",
                              "NumerDzialalnosci",
                              "NumerIdentyfikacyjnyMatki",
                              "NumerIdentyfikacyjnyDawczyni",
                              "NumerIdentyfikacyjnyDawcy",
                              "IloscOznakowan"};
} // namespace

QString CsvValue(const QString& value)
{
    return u'"' + value + u"\";"_s;
}

QByteArray SummaryCsv(Table& summary, const std::vector<int>& rows, const QString& producer)
{
    const int number = summary.requireField(u"NumerIdentyfikacyjny");
    std::vector<int> fields;
    for (const char* field : Fields)
        fields.push_back(summary.requireField(QLatin1String(field)));
    QHash<QString, int> firstRowOf; // the lookup by identification number, built once
    for (int row = summary.recordCount() - 1; row >= 0; --row)
        firstRowOf.insert(AsString(summary.at(row, number)), row);
    QString text = QString::fromUtf8(Title) + u"\r\n"_s;
    int line = 0;
    for (int row : rows) {
        // Should the lookup find nothing, the line comes from the current record.
        const auto found = firstRowOf.constFind(AsString(summary.at(row, number)));
        if (found != firstRowOf.cend())
            summary.moveTo(*found);
        text += CsvValue(QString::number(++line)) + CsvValue(producer);
        for (int field : fields)
            text += CsvValue(DisplayText(summary.value(field)));
        text += u"\r\n"_s;
    }
    return ToCp1250(text);
}
