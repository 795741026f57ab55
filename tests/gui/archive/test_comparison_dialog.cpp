#include "core/archive/DemoDownload.h"
#include "core/archive/DownloadComparison.h"
#include "export/ComparisonExport.h"
#include "framework/Cp1250.h"
#include "gui/archive/TfPorownanie.h"
#include "reports/print/ComparisonPrint.h"
#include "reports/print/TdmulmxDataBase_FR3.h"
#include "support/Files.h"

#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
const QDate Reference(2024, 3, 15);
const QString NothingToCompare = u"W archiwum nie ma dwóch pobrań jednego producenta do porównania."_s;

// The demo producer and the first further one, with small herds.
SimDataset Producer(int which)
{
    if (which == 0)
        return DemoData(Reference, {8, 6});
    DemoOptions options = FurtherDemoProducers(Reference)[static_cast<std::size_t>(which - 1)];
    options.herdSizes = {5};
    return GenerateDemoDataset(options);
}

// Downloads of each producer on the given reference dates, stored in the folder's archive.
void StoreDownloads(const QString& folder, const std::vector<std::pair<int, QDate>>& downloads)
{
    DemoDownload d(folder);
    for (const auto& [producer, date] : downloads)
        QCOMPARE(d.run(Producer(producer), date, {.krowMamek = true, .opasow = true, .krowMlecznych = true}),
                 DownloadOutcome::Completed);
}

QStringList Items(const QComboBox& combo)
{
    QStringList items;
    for (int i = 0; i < combo.count(); ++i)
        items.append(combo.itemText(i));
    return items;
}

void Choose(QComboBox& combo, qint64 id)
{
    const int index = combo.findData(id);
    QVERIFY(index >= 0);
    combo.setCurrentIndex(index);
}
} // namespace

// One archive: the demo producer downloaded three times (ids 1…3), a second
// producer twice (4, 5) and a third once (6).
class TestComparisonDialog : public QObject {
    Q_OBJECT

private:
    QTemporaryDir folder_;
    RecordingHost prompts_;
    TdmulmxDataBase_FR3 reports_;
    std::vector<PrintJob> printed_;

    std::unique_ptr<TfPorownanie> dialog(const QString& folder)
    {
        return std::make_unique<TfPorownanie>(
            DataFolder(folder), reports_, [this](const PrintJob& job) { printed_.push_back(job); }, nullptr, &prompts_);
    }

private Q_SLOTS:
    void initTestCase()
    {
        StoreDownloads(folder_.path(), {{0, Reference},
                                        {0, Reference.addMonths(3)},
                                        {0, Reference.addMonths(7)},
                                        {1, Reference},
                                        {1, Reference.addMonths(1)},
                                        {2, Reference}});
    }
    void init()
    {
        prompts_.messages.clear();
        printed_.clear();
    }

    void listsTheDownloadsAndBFollowsA();
    void compareFillsBothGrids();
    void printAndExportUseTheComparisonShown();
    void saysWhenThereIsNothingToCompare_data();
    void saysWhenThereIsNothingToCompare();
    void aDownloadRemovedMeanwhileIsTold();
    void anExportThatCannotBeWrittenIsTold();
};

// Only producers with two downloads are offered; A starts on the second newest
// of the producer downloaded last, B on its newest.
void TestComparisonDialog::listsTheDownloadsAndBFollowsA()
{
    const auto d = dialog(folder_.path());
    QCOMPARE(d->objectName(), u"fPorownanie"_s);
    QCOMPARE(d->windowTitle(), u"Porównanie pobrań"_s);
    auto& a = *d->findChild<QComboBox*>(u"cbPobranieA"_s);
    auto& b = *d->findChild<QComboBox*>(u"cbPobranieB"_s);
    const std::vector<ArchivedDownload> stored = DownloadArchive(DataFolder(folder_.path()).archiveFile()).list();
    QStringList expected;
    for (const ArchivedDownload& download : stored)
        if (download.id != 6)
            expected.append(DownloadCaption(download));
    QCOMPARE(Items(a), expected);
    QVERIFY(expected.front().startsWith(u"nr 5 – 082456131 Gospodarstwo Zielonka – Halvarn na dzień 15.04.2024 – "
                                        "pobrano "_s));
    QCOMPARE(a.currentData().toLongLong(), 4);
    QCOMPARE(Items(b), QStringList{expected.front()});

    Choose(a, 2);
    QCOMPARE(Items(b), (QStringList{expected[2], expected[4]}));
    QCOMPARE(b.currentData().toLongLong(), 3);
    QVERIFY(d->findChild<QPushButton*>(u"btnPorownaj"_s)->isEnabled());
    QVERIFY(!d->findChild<QPushButton*>(u"btnWydruk"_s)->isEnabled());
    QVERIFY(!d->findChild<QPushButton*>(u"btnEksportCsv"_s)->isEnabled());
}

void TestComparisonDialog::compareFillsBothGrids()
{
    const auto d = dialog(folder_.path());
    Choose(*d->findChild<QComboBox*>(u"cbPobranieA"_s), 1);
    Choose(*d->findChild<QComboBox*>(u"cbPobranieB"_s), 3);
    d->findChild<QPushButton*>(u"btnPorownaj"_s)->click();
    QVERIFY(prompts_.messages.empty());
    const DownloadComparison& c = *d->comparison();
    QCOMPARE(c.a().id, 1);
    QCOMPARE(c.b().id, 3);

    const auto& animals = *d->findChild<QTableWidget*>(u"gridZwierzeta"_s);
    QVERIFY(!c.animals().empty());
    QCOMPARE(animals.rowCount(), static_cast<int>(c.animals().size()));
    const AnimalDifference& first = c.animals().front();
    QCOMPARE(animals.item(0, 0)->text(), AnimalChangeText(first.change));
    QCOMPARE(animals.item(0, 2)->text(), first.earTag);
    QCOMPARE(animals.item(0, 8)->text(), first.groupB);

    const auto& groups = *d->findChild<QTableWidget*>(u"gridGrupy"_s);
    QCOMPARE(groups.rowCount(), static_cast<int>(c.groups().size()));
    int coloured = 0;
    for (int row = 0; row < groups.rowCount(); ++row) {
        const int difference = c.groups()[static_cast<std::size_t>(row)].difference();
        const QTableWidgetItem& cell = *groups.item(row, 4);
        if (difference > 0) {
            QCOMPARE(cell.text(), u"+"_s + QString::number(difference));
            QCOMPARE(cell.foreground().color(), QColor(0, 128, 0));
        } else if (difference < 0) {
            QCOMPARE(cell.text(), QString::number(difference));
            QCOMPARE(cell.foreground().color(), QColor(200, 0, 0));
        }
        coloured += difference != 0 ? 1 : 0;
    }
    QVERIFY(coloured > 0);
}

// "Wydruk" hands the main window a job that prints this comparison; "Eksport
// CSV" writes it under its default name and says where.
void TestComparisonDialog::printAndExportUseTheComparisonShown()
{
    const auto d = dialog(folder_.path());
    QStringList exported;
    d->setExportedHandler([&exported](const QString& path) { exported.append(path); });
    d->findChild<QPushButton*>(u"btnPorownaj"_s)->click();
    const DownloadComparison& c = *d->comparison();
    QCOMPARE(c.b().id, 5);

    d->findChild<QPushButton*>(u"btnWydruk"_s)->click();
    QCOMPARE(printed_.size(), 1u);
    QCOMPARE(printed_[0].templateName, u"Porównanie pobrań.fr3"_s);
    RecordingHost host;
    HalvarnSession session(DataFolder(folder_.path()), host);
    session.ClearAllData();
    const QString name = ComparisonPrint::templateName();
    QVERIFY(QDir().mkpath(session.dataFolder().templatesFolder()));
    WriteAll(session.dataFolder().templatesFolder() + name,
             ReadAll(QStringLiteral(HALVARN_SOURCE_DIR "/templates/") + name));
    const std::optional<PreparedReport> report = PrintCommands(session, reports_).run(printed_[0]);
    QVERIFY(report);
    QVERIFY(report->pageTexts(0).contains(u"Pobranie B (nowsze): nr 5"_s));
    QVERIFY(report->pageTexts(0).contains(u"082456131"_s));

    d->findChild<QPushButton*>(u"btnEksportCsv"_s)->click();
    const QString path = ComparisonCsvPath(DataFolder(folder_.path()), c);
    QCOMPARE(exported, QStringList{path});
    QVERIFY(FromCp1250(ReadAll(path)).startsWith(u"\"Porównanie pobrań\";\"082456131\";"_s));
    QVERIFY(prompts_.messages.empty());
}

void TestComparisonDialog::saysWhenThereIsNothingToCompare_data()
{
    QTest::addColumn<QString>("archive");
    QTest::addColumn<QString>("problem");
    QTest::newRow("no archive yet") << u"none"_s << QString();
    QTest::newRow("one download of each producer") << u"single"_s << QString();
    QTest::newRow("a damaged archive") << u"damaged"_s << u"archiwum"_s;
}

void TestComparisonDialog::saysWhenThereIsNothingToCompare()
{
    QFETCH(QString, archive);
    QFETCH(QString, problem);
    QTemporaryDir folder;
    if (archive == u"single")
        StoreDownloads(folder.path(), {{0, Reference}, {1, Reference}});
    if (archive == u"damaged")
        WriteAll(DataFolder(folder.path()).archiveFile(), QByteArray(4096, 'x'));
    const auto d = dialog(folder.path());
    const QLabel& notice = *d->findChild<QLabel*>(u"lbKomunikat"_s);
    QVERIFY(notice.isVisibleTo(d.get()));
    QVERIFY(notice.text().endsWith(NothingToCompare));
    QVERIFY2(notice.text().contains(problem, Qt::CaseInsensitive), qPrintable(notice.text()));
    QCOMPARE(d->findChild<QComboBox*>(u"cbPobranieA"_s)->count(), 0);
    QVERIFY(!d->findChild<QPushButton*>(u"btnPorownaj"_s)->isEnabled());
    QVERIFY(prompts_.messages.empty());
    QCOMPARE(QFileInfo::exists(DataFolder(folder.path()).archiveFile()), archive != u"none");
}

void TestComparisonDialog::aDownloadRemovedMeanwhileIsTold()
{
    QTemporaryDir folder;
    QVERIFY(QFile::copy(DataFolder(folder_.path()).archiveFile(), DataFolder(folder.path()).archiveFile()));
    const auto d = dialog(folder.path());
    DownloadArchive(DataFolder(folder.path()).archiveFile()).remove(5);
    d->findChild<QPushButton*>(u"btnPorownaj"_s)->click();
    QCOMPARE(prompts_.messageTexts(), QStringList{u"Nie ma w archiwum pobrania nr 5"_s});
    QCOMPARE(d->comparison(), nullptr);
    QVERIFY(!d->findChild<QPushButton*>(u"btnWydruk"_s)->isEnabled());
}

// A file where the export folder should be: the export says why, nothing is written.
void TestComparisonDialog::anExportThatCannotBeWrittenIsTold()
{
    QTemporaryDir folder;
    const DataFolder data(folder.path());
    QVERIFY(QFile::copy(DataFolder(folder_.path()).archiveFile(), data.archiveFile()));
    WriteAll(folder.filePath(u"EXPORT"_s), "plik w miejscu folderu");
    const auto d = dialog(folder.path());
    d->findChild<QPushButton*>(u"btnPorownaj"_s)->click();
    d->findChild<QPushButton*>(u"btnEksportCsv"_s)->click();
    QCOMPARE(prompts_.messages.size(), 1u);
    QVERIFY2(prompts_.messages[0].text.startsWith(u"Nie można zapisać pliku"_s), qPrintable(prompts_.messages[0].text));
    QCOMPARE(prompts_.messages[0].icon, MessageIcon::Error);
}

QTEST_MAIN(TestComparisonDialog)
#include "test_comparison_dialog.moc"
