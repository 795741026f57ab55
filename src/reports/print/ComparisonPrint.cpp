#include "reports/print/ComparisonPrint.h"

#include "core/archive/DownloadComparison.h"
#include "reports/print/TdmulmxDataBase_FR3.h"

using namespace Qt::StringLiterals;

namespace {
FieldDef Text(const char* name, int size)
{
    return {QString::fromLatin1(name), FieldType::String, size};
}

FieldDef Of(const char* name, FieldType type)
{
    return {QString::fromLatin1(name), type, 0};
}

std::vector<FieldDef> HeaderFields()
{
    return {Text("PRODUCENT", 20),
            Text("NAZWA", 50),
            Of("NR_A", FieldType::Int32),
            Of("DATA_A", FieldType::Date),
            Text("POBRANO_A", 16),
            Of("NR_B", FieldType::Int32),
            Of("DATA_B", FieldType::Date),
            Text("POBRANO_B", 16),
            Of("PRZYBYLO", FieldType::Int32),
            Of("UBYLO", FieldType::Int32),
            Of("ZMIANA_GRUPY", FieldType::Int32)};
}

std::vector<FieldDef> AnimalFields()
{
    return {Text("Zmiana", 20),
            Text("STADO", 5),
            Text("NumerIdentyfikacyjny", 20),
            Text("Plec", 10),
            Of("DataUrodzenia", FieldType::Date),
            Of("WiekA", FieldType::Int32),
            Of("WiekB", FieldType::Int32),
            Text("GrupaA", 100),
            Text("GrupaB", 100)};
}

std::vector<FieldDef> GroupFields()
{
    return {Of("ID", FieldType::Int32), Text("GT", 50), Of("IloscA", FieldType::Int32), Of("IloscB", FieldType::Int32),
            Of("Roznica", FieldType::Int32)};
}

FieldValue Age(const std::optional<int>& age)
{
    return age ? FieldValue(qint32{*age}) : FieldValue();
}

QString DownloadedAt(const ArchivedDownload& download)
{
    return download.downloadedAt.toString(u"dd.MM.yyyy HH:mm"_s);
}

void FillHeader(Table& header, const DownloadComparison& comparison)
{
    const ArchivedDownload& a = comparison.a();
    const ArchivedDownload& b = comparison.b();
    header.append();
    header.setValue(u"PRODUCENT", b.producer);
    header.setValue(u"NAZWA", b.name);
    header.setValue(u"NR_A", qint32(a.id));
    header.setValue(u"DATA_A", a.referenceDate);
    header.setValue(u"POBRANO_A", DownloadedAt(a));
    header.setValue(u"NR_B", qint32(b.id));
    header.setValue(u"DATA_B", b.referenceDate);
    header.setValue(u"POBRANO_B", DownloadedAt(b));
    header.setValue(u"PRZYBYLO", comparison.count(AnimalChange::Arrived));
    header.setValue(u"UBYLO", comparison.count(AnimalChange::Left));
    header.setValue(u"ZMIANA_GRUPY", comparison.count(AnimalChange::GroupChanged));
    header.post();
}

void FillAnimals(Table& animals, const DownloadComparison& comparison)
{
    for (const AnimalDifference& d : comparison.animals()) {
        animals.append();
        const FieldValue values[]{AnimalChangeText(d.change),
                                  d.herd,
                                  d.earTag,
                                  d.sex,
                                  d.birthDate,
                                  Age(d.ageA),
                                  Age(d.ageB),
                                  d.groupA,
                                  d.groupB};
        for (int field = 0; field < animals.fieldCount(); ++field)
            animals.setValue(field, values[field]);
        animals.post();
    }
}

void FillGroups(Table& groups, const DownloadComparison& comparison)
{
    for (const GroupCountComparison& g : comparison.groups()) {
        groups.append();
        const FieldValue values[]{qint32{g.id}, g.caption, qint32{g.countA}, qint32{g.countB}, qint32{g.difference()}};
        for (int field = 0; field < groups.fieldCount(); ++field)
            groups.setValue(field, values[field]);
        groups.post();
    }
}
} // namespace

QString ComparisonPrint::templateName()
{
    return u"Porównanie pobrań.fr3"_s;
}

ComparisonPrint::ComparisonPrint(const DownloadComparison& comparison)
    : header_(u"mdPorownanieNaglowek"_s, HeaderFields()), animals_(u"mdPorownanieZwierzeta"_s, AnimalFields()),
      groups_(u"mdPorownanieGrupy"_s, GroupFields())
{
    for (Table* table : {&header_, &animals_, &groups_})
        table->open();
    FillHeader(header_, comparison);
    FillAnimals(animals_, comparison);
    FillGroups(groups_, comparison);
}

PrintJob ComparisonPrint::job(TdmulmxDataBase_FR3& reports) const
{
    return {templateName(), [this, &reports] {
                reports.frxDBDataset(1).table = &animals_;
                reports.frxDBDataset(2).table = &groups_;
                reports.frxDBDataset(TdmulmxDataBase_FR3::ProducerLink).table = &header_;
            }};
}
