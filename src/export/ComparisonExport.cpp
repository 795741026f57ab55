#include "export/ComparisonExport.h"

#include "core/archive/DownloadComparison.h"
#include "export/CsvExport.h"
#include "framework/Cp1250.h"
#include "framework/DataFolder.h"
#include "framework/SafeFile.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {
const QString AnimalsTitle = u"Zmiana;Stado;NrZwierzęcia;Płeć;DataUrodzenia;WiekA;WiekB;GrupaA;GrupaB;"_s;
const QString GroupsTitle = u"ID;Grupatechnologiczna;IloscA;IloscB;Różnica;"_s;
const QString LineEnd = u"\r\n"_s;

QString Line(const QStringList& values)
{
    QString line;
    for (const QString& value : values)
        line += CsvValue(value);
    return line + LineEnd;
}

QString Age(const std::optional<int>& age)
{
    return age ? QString::number(*age) : QString();
}

QString HeaderLine(const DownloadComparison& comparison)
{
    return Line({u"Porównanie pobrań"_s, comparison.b().producer, comparison.b().name,
                 u"A: "_s + DownloadCaption(comparison.a()), u"B: "_s + DownloadCaption(comparison.b())});
}

QString AnimalLine(const AnimalDifference& d)
{
    return Line({AnimalChangeText(d.change), d.herd, d.earTag, d.sex, d.birthDate.toString(u"dd.MM.yyyy"_s),
                 Age(d.ageA), Age(d.ageB), d.groupA, d.groupB});
}

QString GroupLine(const GroupCountComparison& g)
{
    return Line({QString::number(g.id), g.caption, QString::number(g.countA), QString::number(g.countB),
                 QString::number(g.difference())});
}
} // namespace

QByteArray ComparisonCsv(const DownloadComparison& comparison)
{
    QString text = HeaderLine(comparison) + AnimalsTitle + LineEnd;
    for (const AnimalDifference& animal : comparison.animals())
        text += AnimalLine(animal);
    text += LineEnd + GroupsTitle + LineEnd;
    for (const GroupCountComparison& group : comparison.groups())
        text += GroupLine(group);
    return ToCp1250(text);
}

QString ComparisonCsvPath(const DataFolder& folder, const DownloadComparison& comparison)
{
    const QString format = u"dd.MM.yyyy"_s;
    return folder.exportFolder() + u"Porównanie-%1 %2-%3.CSV"_s.arg(comparison.b().producer,
                                                                    comparison.a().referenceDate.toString(format),
                                                                    comparison.b().referenceDate.toString(format));
}

void WriteComparisonCsv(const DownloadComparison& comparison, const QString& path)
{
    QDir().mkpath(QFileInfo(path).absolutePath()); // a folder that cannot be made fails in the write, with its reason
    WriteFileAtomically(path, ComparisonCsv(comparison));
}
