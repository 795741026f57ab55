#include "analysis/AgeInMonths.h"
#include "core/archive/DemoDownload.h"
#include "core/recount/RecountCommand.h"
#include "reports/ShippedTemplates.h"
#include "reports/print/ControlList.h"
#include "reports/print/PrintCommands.h"
#include "reports/print/TdmulmxDataBase_FR3.h"

#include <QTest>

#include <map>

using namespace Qt::StringLiterals;

namespace {
const QDate Reference(2024, 3, 15);
const QDate Control(2024, 7, 2);

// The demo producer with its first three animals born here without an arrival
// date, born here with one on the birth day, and bought in a month after birth.
SimDataset DataWithOrigins()
{
    SimDataset data = DemoData(Reference, {40, 30});
    std::vector<QJsonObject>& animals = data.producers.front().holdings.front().animals;
    const QDate birth = QDate::fromString(animals[1].value(u"dataUrodzenia").toString(), u"yyyy-MM-dd");
    animals[0].remove(u"dataPrzybyciaDoDzialalnosci");
    animals[1].insert(u"dataPrzybyciaDoDzialalnosci", birth.toString(u"yyyy-MM-dd"));
    animals[2].insert(u"dataPrzybyciaDoDzialalnosci", birth.addMonths(1).toString(u"yyyy-MM-dd"));
    return data;
}

QString Cell(const Table& table, int row, const char* field)
{
    return DisplayText(table.at(row, table.requireField(QLatin1String(field))));
}

std::map<QString, int> Totals(const Table& totals)
{
    std::map<QString, int> counts;
    for (int row = 0; row < totals.recordCount(); ++row)
        counts[Cell(totals, row, "Opis")] = Cell(totals, row, "Ilosc").toInt();
    return counts;
}

// Each animal's group as the session's tables show it.
std::map<QString, QString> Groups(HalvarnSession& session)
{
    const Table& summary = session.tables().mdRZ00();
    std::map<QString, QString> groups;
    for (int row = 0; row < summary.recordCount(); ++row) {
        const QString where = Cell(summary, row, "GdzieRozpatrzono");
        const QString name = where.left(where.indexOf(u',')).trimmed();
        groups[Cell(summary, row, "NumerIdentyfikacyjny")] = name.isEmpty() ? u"NIE ROZLICZONE"_s : name;
    }
    return groups;
}
} // namespace

class TestControlList : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void listsEveryAnimalOnTheControlDate_data();
    void listsEveryAnimalOnTheControlDate();
    void printsThroughItsTemplate();
};

void TestControlList::listsEveryAnimalOnTheControlDate_data()
{
    QTest::addColumn<QString>("herd");
    QTest::addColumn<int>("animals");
    QTest::newRow("all herds") << u"ALL"_s << 70;
    QTest::newRow("herd 002") << u"002"_s << 30;
}

// Sorted by the last three digits of the ear tag, aged and grouped on the
// control date, born here or bought in by the arrival date, with totals; the
// loaded data stays as the download left it.
void TestControlList::listsEveryAnimalOnTheControlDate()
{
    QFETCH(QString, herd);
    QFETCH(int, animals);
    QTemporaryDir folder;
    DemoDownload d(folder.path());
    QCOMPARE(d.run(DataWithOrigins(), Reference), DownloadOutcome::Completed);
    const QString agesBefore = Cell(d.session.tables().mdRZ00(), 0, "Wiek");
    ControlList list;
    list.fill(d.session, Control, herd);
    QCOMPARE(Cell(d.session.tables().mdRZ00(), 0, "Wiek"), agesBefore);

    const Table& rows = list.animals();
    QCOMPARE(rows.recordCount(), animals);
    QVERIFY(RecountCommand(d.session).run(Control));
    const std::map<QString, QString> groups = Groups(d.session);
    std::map<QString, int> perGroup;
    int bornHere = 0;
    for (int row = 0; row < rows.recordCount(); ++row) {
        const QString tag = Cell(rows, row, "NumerIdentyfikacyjny");
        if (row > 0) {
            const QString previous = Cell(rows, row - 1, "NumerIdentyfikacyjny");
            QVERIFY2(previous.right(3) < tag.right(3) || (previous.right(3) == tag.right(3) && previous < tag),
                     qPrintable(previous + u" / "_s + tag));
        }
        if (herd != u"ALL")
            QCOMPARE(Cell(rows, row, "STADO"), herd);
        const QDate birth = AsDate(rows.at(row, rows.requireField(u"DataUrodzenia")));
        QCOMPARE(Cell(rows, row, "Wiek").toInt(), AgeInMonths(ToDateTime(birth), ToDateTime(Control)));
        QCOMPARE(Cell(rows, row, "Grupa"), groups.at(tag));
        const FieldValue& arrival = rows.at(row, rows.requireField(u"DataPrzybycia"));
        const bool here = IsNull(arrival) || AsDate(arrival) == birth;
        QCOMPARE(Cell(rows, row, "Pochodzenie"), here ? u"urodzone w gospodarstwie"_s : u"zakupione"_s);
        bornHere += here ? 1 : 0;
        ++perGroup[Cell(rows, row, "Grupa")];
    }
    std::map<QString, int> totals = Totals(list.totals());
    QCOMPARE(totals[u"Razem"_s], animals);
    QCOMPARE(totals[u"Urodzone w gospodarstwie"_s], bornHere);
    QCOMPARE(totals[u"Zakupione"_s], animals - bornHere);
    for (const auto& [group, count] : perGroup)
        QCOMPARE(totals[group], count);
    QCOMPARE(list.totals().value(u"DataKontroli"), FieldValue(Control));
}

void TestControlList::printsThroughItsTemplate()
{
    QTemporaryDir folder;
    DemoDownload d(folder.path());
    QCOMPARE(d.run(DataWithOrigins(), Reference), DownloadOutcome::Completed);
    QVERIFY(InstallShippedTemplates(d.session.dataFolder().templatesFolder()).failed.isEmpty());
    TdmulmxDataBase_FR3 reports;
    PrintCommands prints(d.session, reports);
    const std::optional<PreparedReport> report = prints.run(prints.controlList(Control, u"ALL"_s));
    QVERIFY(report);
    QVERIFY(d.host.messages.empty());
    const QString first = report->pageTexts(0).join(u'\n');
    QVERIFY(first.contains(u"Lista kontrolna"_s));
    QVERIFY(first.contains(u"02.07.2024"_s));
    ControlList expected;
    expected.fill(d.session, Control, u"ALL"_s);
    QVERIFY(first.contains(Cell(expected.animals(), 0, "NumerIdentyfikacyjny")));
    const QString last = report->pageTexts(report->pageCount() - 1).join(u'\n');
    QVERIFY2(last.contains(u"Razem zwierząt: 70"_s), qPrintable(last));
    QVERIFY(last.contains(u"Urodzone w gospodarstwie"_s));
}

QTEST_MAIN(TestControlList)
#include "test_control_list.moc"
