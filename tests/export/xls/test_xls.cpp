#include "export/XlsReader.h"
#include "export/xls/XlsWorkbook.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class TestXls : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cellsOfEveryTypeReadBack();
    void sheetNamesAreCheckedAndCut_data();
    void sheetNamesAreCheckedAndCut();
    void manyStringsSpillIntoContinuations();
    void largeWorkbookNeedsMoreFatThanTheHeaderHolds();
    void limitsOfTheFormatAreRefused_data();
    void limitsOfTheFormatAreRefused();
    void failedSaveLeavesNoFileAndReplacesOnSuccess();
    void emptyWorkbookStillOpens();
};

void TestXls::cellsOfEveryTypeReadBack()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(u"a.xls"_s);
    XlsWorkbook book;
    XlsWorksheet& first = book.addSheet(u"Ogółem"_s);
    first.setText(1, 1, u"Zażółć gęślą jaźń"_s);
    first.setText(1, 2, u"café"_s);
    first.setNumber(2, 1, 42);
    first.setNumber(2, 2, -1.5);
    first.setDate(3, 1, QDate(2024, 2, 29));
    first.setBool(3, 2, true);
    first.setBool(3, 3, false);
    first.setText(256, 256, u"róg"_s);
    first.setNumber(2, 1, 43); // set again: the last value stands
    book.addSheet(u"001"_s).setText(1, 1, u"Zażółć gęślą jaźń"_s);
    book.save(path);
    const QJsonObject read = ReadWorkbook(path);
    QCOMPARE(SheetNames(read), (QStringList{u"Ogółem"_s, u"001"_s}));
    QCOMPARE(SheetCells(read, 0),
             (QStringList{u"1,1:text:Zażółć gęślą jaźń"_s, u"1,2:text:café"_s, u"2,1:number:43"_s, u"2,2:number:-1.5"_s,
                          u"3,1:date:2024-02-29"_s, u"3,2:bool:true"_s, u"3,3:bool:false"_s, u"256,256:text:róg"_s}));
    QCOMPARE(SheetCells(read, 1), QStringList{u"1,1:text:Zażółć gęślą jaźń"_s});
    // Only the first sheet opens selected; two selected sheets would open grouped.
    const QJsonArray sheets = read.value(u"sheets").toArray();
    QVERIFY(sheets.at(0).toObject().value(u"selected").toBool());
    QVERIFY(!sheets.at(1).toObject().value(u"selected").toBool());
}

void TestXls::sheetNamesAreCheckedAndCut_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("kept"); // empty: refused
    QTest::newRow("Polish") << u"Zażółć"_s << u"Zażółć"_s;
    QTest::newRow("40 characters") << QString(40, u'ż') << QString(31, u'ż');
    QTest::newRow("slash") << u"a/b"_s << QString();
    QTest::newRow("bracket") << u"[a]"_s << QString();
    QTest::newRow("duplicate") << u"OGÓŁEM"_s << QString();
    QTest::newRow("apostrophe first") << u"'001"_s << QString();
    QTest::newRow("apostrophe last") << u"001'"_s << QString();
    QTest::newRow("apostrophe inside") << u"Stado 'A'1"_s << u"Stado 'A'1"_s;
}

void TestXls::sheetNamesAreCheckedAndCut()
{
    QFETCH(QString, name);
    QFETCH(QString, kept);
    XlsWorkbook book;
    book.addSheet(u"Ogółem"_s);
    if (kept.isEmpty())
        QVERIFY_THROWS_EXCEPTION(XlsError, book.addSheet(name));
    else
        QCOMPARE(book.addSheet(name).name(), kept);
}

void TestXls::manyStringsSpillIntoContinuations()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(u"a.xls"_s);
    XlsWorkbook book;
    XlsWorksheet& sheet = book.addSheet(u"s"_s);
    QStringList expected;
    for (int row = 1; row <= 3000; ++row) {
        // Texts of varying length and width, some far longer than one record.
        QString text = u"Zwierzę %1 "_s.arg(row).repeated(row % 7 + 1);
        if (row % 500 == 0)
            text = text.repeated(300);
        sheet.setText(row, 1, text);
        expected.append(u"%1,1:text:%2"_s.arg(row).arg(text));
    }
    book.save(path);
    const QJsonObject read = ReadWorkbook(path);
    QCOMPARE(SheetCells(read, 0), expected);
    // What Excel itself checks: no record over 8224 bytes, and the string index
    // in at most 128 buckets of max(strings / 128 + 1, 8) strings each.
    const QJsonObject biff = read.value(u"biff").toObject();
    QVERIFY(biff.value(u"longestRecord").toInt() <= 8224);
    QCOMPARE(biff.value(u"uniqueStrings").toInt(), 3000);
    QCOMPARE(biff.value(u"stringsPerBucket").toInt(), 3000 / 128 + 1);
    QCOMPARE(biff.value(u"buckets").toInt(), (3000 + 23) / 24);
}

void TestXls::largeWorkbookNeedsMoreFatThanTheHeaderHolds()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(u"big.xls"_s);
    XlsWorkbook book;
    XlsWorksheet& sheet = book.addSheet(u"duży"_s);
    for (int row = 1; row <= 65536; ++row)
        for (int col = 1; col <= 10; ++col)
            sheet.setNumber(row, col, row * 10 + col);
    book.save(path);
    QVERIFY(QFileInfo(path).size() > 109 * 128 * 512); // past what the header's FAT list can map
    const QJsonObject read = ReadWorkbook(path);
    const QJsonArray cells = read.value(u"sheets").toArray().at(0).toObject().value(u"cells").toArray();
    QCOMPARE(cells.size(), 655360);
    QCOMPARE(cells.last().toArray().at(3).toDouble(), 655370.0);
}

void TestXls::limitsOfTheFormatAreRefused_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("column");
    QTest::addColumn<int>("textLength");
    QTest::addColumn<QString>("complaint"); // empty: accepted
    QTest::newRow("last row and column") << 65536 << 256 << 1 << QString();
    QTest::newRow("row 65537") << 65537 << 1 << 1 << u"65536"_s;
    QTest::newRow("row 0") << 0 << 1 << 1 << u"wiersz 0"_s;
    QTest::newRow("column 257") << 1 << 257 << 1 << u"kolumna 257"_s;
    QTest::newRow("longest text") << 1 << 1 << 32767 << QString();
    QTest::newRow("text too long") << 1 << 1 << 32768 << u"32767"_s;
}

void TestXls::limitsOfTheFormatAreRefused()
{
    QFETCH(int, row);
    QFETCH(int, column);
    QFETCH(int, textLength);
    QFETCH(QString, complaint);
    XlsWorkbook book;
    XlsWorksheet& sheet = book.addSheet(u"s"_s);
    try {
        sheet.setText(row, column, QString(textLength, u'ż'));
        QVERIFY2(complaint.isEmpty(), "the cell was accepted");
    } catch (const XlsError& error) {
        QVERIFY2(!complaint.isEmpty() && QString::fromUtf8(error.what()).contains(complaint), error.what());
    }
}

void TestXls::failedSaveLeavesNoFileAndReplacesOnSuccess()
{
    QTemporaryDir dir;
    XlsWorkbook book;
    book.addSheet(u"s"_s).setText(1, 1, u"nowy"_s);
    QVERIFY_THROWS_EXCEPTION(XlsError, book.save(dir.filePath(u"brak/a.xls"_s)));
    QVERIFY(!QDir(dir.filePath(u"brak"_s)).exists());
    const QString path = dir.filePath(u"a.xls"_s);
    QFile old(path);
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("stary plik");
    old.close();
    book.save(path);
    QCOMPARE(SheetCells(ReadWorkbook(path), 0), QStringList{u"1,1:text:nowy"_s});
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{u"a.xls"_s});
}

void TestXls::emptyWorkbookStillOpens()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(u"a.xls"_s);
    XlsWorkbook().save(path);
    QCOMPARE(SheetNames(ReadWorkbook(path)), QStringList{u"Arkusz1"_s});
}

QTEST_GUILESS_MAIN(TestXls)
#include "test_xls.moc"
