#include "core/archive/ComparisonFixture.h"
#include "export/ComparisonExport.h"
#include "framework/Cp1250.h"
#include "framework/DataFolder.h"
#include "support/Files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class TestComparisonExport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesTheComparisonInWindows1250();
    void replacesTheFileWhole_data();
    void replacesTheFileWhole();
};

void TestComparisonExport::writesTheComparisonInWindows1250()
{
    const QByteArray bytes = ComparisonCsv(SampleComparison());
    QVERIFY(bytes.contains("\"przyby\xb3o\";")); // "ł" is one byte in Windows-1250
    const QStringList expected{
        u"\"Porównanie pobrań\";\"071234562\";\"Gospodarstwo Zielonka\";"
        "\"A: nr 12 – 071234562 Gospodarstwo Zielonka – Halvarn na dzień 01.09.2026 – pobrano 02.09.2026 08:15\";"
        "\"B: nr 15 – 071234562 Gospodarstwo Zielonka – Halvarn na dzień 01.11.2026 – pobrano 20.11.2026 19:40\";"_s,
        u"Zmiana;Stado;NrZwierzęcia;Płeć;DataUrodzenia;WiekA;WiekB;GrupaA;GrupaB;"_s,
        u"\"przybyło\";\"001\";\"PL005000000021\";\"Samiec\";\"02.10.2026\";\"\";\"1\";\"\";\"\";"_s,
        u"\"ubyło\";\"001\";\"PL005000000007\";\"Samica\";\"02.04.2019\";\"60\";\"\";\"Krowy\";\"\";"_s,
        u"\"zmiana grupy\";\"002\";\"PL005000000014\";\"Samica\";\"20.05.2025\";\"18\";\"20\";"
        "\"Jałówki od 6 do 19, 6 > Wiek <= 19\";\"Jałówki od 19 do 24, 19 > Wiek <= 24\";"_s,
        QString(),
        u"ID;Grupatechnologiczna;IloscA;IloscB;Różnica;"_s,
        u"\"32\";\"Jałówki od 6 do 19, 6 > Wiek <= 19\";\"1\";\"0\";\"-1\";"_s,
        u"\"33\";\"Jałówki od 19 do 24, 19 > Wiek <= 24\";\"0\";\"1\";\"1\";"_s,
        u"\"34\";\"Krowy\";\"1\";\"0\";\"-1\";"_s,
        QString()};
    QCOMPARE(FromCp1250(bytes).split(u"\r\n"_s), expected);
}

void TestComparisonExport::replacesTheFileWhole_data()
{
    QTest::addColumn<QByteArray>("older");
    QTest::newRow("a new file") << QByteArray();
    QTest::newRow("over an older export") << QByteArray("starsze porownanie\r\n");
}

// The file goes to the export folder under its default name, written through a
// temporary file that does not stay behind.
void TestComparisonExport::replacesTheFileWhole()
{
    QFETCH(QByteArray, older);
    QTemporaryDir root;
    const DataFolder folder(root.path());
    const DownloadComparison comparison = SampleComparison();
    const QString path = ComparisonCsvPath(folder, comparison);
    QCOMPARE(path, folder.exportFolder() + u"Porównanie-071234562 01.09.2026-01.11.2026.CSV"_s);
    if (!older.isEmpty()) {
        QVERIFY(QDir().mkpath(folder.exportFolder()));
        WriteAll(path, older);
    }
    WriteComparisonCsv(comparison, path);
    QCOMPARE(ReadAll(path), ComparisonCsv(comparison));
    QCOMPARE(QDir(folder.exportFolder()).entryList(QDir::Files | QDir::Hidden),
             QStringList{u"Porównanie-071234562 01.09.2026-01.11.2026.CSV"_s});
}

QTEST_GUILESS_MAIN(TestComparisonExport)
#include "test_comparison_export.moc"
