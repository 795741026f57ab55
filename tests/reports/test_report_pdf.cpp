#include "core/tables/Table.h"
#include "framework/SafeFile.h"
#include "reports/ReportLayout.h"
#include "reports/ReportPdf.h"
#include "reports/TemplateReader.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
const QString Portrait = uR"(PaperWidth="210" PaperHeight="297")"_s;
const QString Landscape = uR"(Orientation="poLandscape" PaperWidth="297" PaperHeight="210")"_s;
const QString Polish = u"zażółć gęślą jaźń ZAŻÓŁĆ"_s;

// Three pages, one cow each (a row is too tall for two on a page), the title in `font`.
PreparedReport Herd(const QString& font = u"Arial"_s, const QString& page = Portrait)
{
    static Table cows(u"Krowy"_s, {{u"Nazwa"_s, FieldType::String, 20}});
    if (!cows.isOpen()) {
        cows.open();
        for (int n = 1; n <= 3; ++n) {
            cows.append();
            cows.setValue(u"Nazwa", u"Krowa %1"_s.arg(n));
            cows.post();
        }
    }
    const QString xml = uR"(<TfrxReport><TfrxReportPage Name="Page1" %1>
<TfrxReportTitle Name="Title1" Top="0" Height="40"><TfrxMemoView Name="Polish" Width="400" Height="30" Font.Name="%2"
 Font.Height="-16" Text="%3"/><TfrxMemoView Name="Cut" Top="20" Width="400" Height="8" Text="Ucięty"/></TfrxReportTitle>
<TfrxPageFooter Name="PageFooter1" Top="200" Height="20"><TfrxMemoView Name="Footer" Width="300" Height="18"
 Text="Strona [Page#] z [TotalPages#]"/></TfrxPageFooter>
<TfrxMasterData Name="MasterData1" Top="60" Height="600" DataSet="frxDBDataset1">
<TfrxMemoView Name="Row" Width="300" Height="18" Text="[frxDBDataset1.&quot;Nazwa&quot;]"/></TfrxMasterData>
</TfrxReportPage></TfrxReport>)"_s.arg(page, font, Polish);
    return PrepareReport(ReadTemplateData(xml.toUtf8(), u"pdf.fr3"_s), {{u"frxDBDataset1"_s, &cows}},
                         QDateTime(QDate(2026, 11, 23), QTime(10, 0)));
}

// A poppler tool's output; empty when it fails.
QString Run(const QString& tool, const QStringList& arguments)
{
    QProcess process;
    process.start(tool, arguments);
    if (!process.waitForFinished(30000) || process.exitCode() != 0)
        return {};
    return QString::fromUtf8(process.readAllStandardOutput());
}

QString Text(const QString& pdf, int page)
{
    const QString number = QString::number(page);
    return Run(u"pdftotext"_s, {u"-enc"_s, u"UTF-8"_s, u"-layout"_s, u"-f"_s, number, u"-l"_s, number, pdf, u"-"_s});
}

QString Info(const QString& pdf, const QString& key)
{
    const QRegularExpression line(u"^"_s + key + u":\\s*(.*)$"_s, QRegularExpression::MultilineOption);
    return line.match(Run(u"pdfinfo"_s, {pdf})).captured(1).trimmed();
}
} // namespace

class TestReportPdf : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        for (const QString& tool : {u"pdftotext"_s, u"pdfinfo"_s, u"pdffonts"_s})
            if (QStandardPaths::findExecutable(tool).isEmpty())
                QSKIP("poppler-utils are not installed");
        QVERIFY(folder_.isValid());
    }

    void pagesAndPaper_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QString>("size");
        QTest::newRow("portrait") << Portrait << u"595 x 842"_s;
        QTest::newRow("landscape") << Landscape << u"842 x 595"_s;
    }
    void pagesAndPaper()
    {
        QFETCH(QString, page);
        QFETCH(QString, size);
        const QString pdf = folder_.filePath(u"kartka.pdf"_s);
        WritePdf(Herd(u"Arial"_s, page), pdf, {});
        QCOMPARE(Info(pdf, u"Pages"_s), u"3"_s);
        const QString pageSize = Info(pdf, u"Page size"_s);
        const auto match = QRegularExpression(u"^([\\d.]+) x ([\\d.]+) pts"_s).match(pageSize);
        QVERIFY2(match.hasMatch(), qPrintable(pageSize));
        QCOMPARE(u"%1 x %2"_s.arg(qRound(match.captured(1).toDouble())).arg(qRound(match.captured(2).toDouble())),
                 size);
        QVERIFY2(pageSize.contains(u"A4"_s), qPrintable(pageSize));
        for (int n = 1; n <= 3; ++n) {
            const QString text = Text(pdf, n);
            QVERIFY2(text.contains(u"Krowa %1"_s.arg(n)) && text.contains(u"Strona %1 z 3"_s.arg(n)), qPrintable(text));
            QCOMPARE(text.count(u"Krowa"_s), 1);
            QCOMPARE(text.contains(Polish), n == 1);
        }
    }

    void polishLettersInEmbeddedFonts_data()
    {
        QTest::addColumn<QString>("font");
        QTest::addColumn<QString>("embedded");
        QTest::newRow("Arial") << u"Arial"_s << u"LiberationSans"_s;
        QTest::newRow("Times New Roman") << u"Times New Roman"_s << u"LiberationSerif"_s;
        QTest::newRow("Courier New") << u"Courier New"_s << u"LiberationMono"_s;
    }
    void polishLettersInEmbeddedFonts()
    {
        QFETCH(QString, font);
        QFETCH(QString, embedded);
        const QString pdf = folder_.filePath(u"litery.pdf"_s);
        WritePdf(Herd(font), pdf, {});
        const QString text = Text(pdf, 1);
        QVERIFY2(text.contains(Polish), qPrintable(text));
        QVERIFY2(text.contains(u"Ucięty"_s), "a text taller than its box is clipped, not dropped");
        const QStringList fonts = Run(u"pdffonts"_s, {pdf}).split(u'\n', Qt::SkipEmptyParts).mid(2);
        QVERIFY(!fonts.isEmpty());
        bool found = false;
        for (const QString& line : fonts) {
            const QStringList columns = line.split(u' ', Qt::SkipEmptyParts);
            QVERIFY2(columns.size() >= 7 && columns[columns.size() - 5] == u"yes", qPrintable(line));
            found = found || columns.first().contains(embedded);
        }
        QVERIFY2(found, qPrintable(fonts.join(u'\n')));
    }

    void creatorNamesTheProgram()
    {
        QVERIFY(ProductIdentification().startsWith(u"Halvarn "_s));
        const QString pdf = folder_.filePath(u"tworca.pdf"_s);
        WritePdf(Herd(), pdf, {});
        QCOMPARE(Info(pdf, u"Creator"_s), ProductIdentification());
    }

    void pageRangeExportsOnlyThosePages()
    {
        const QString pdf = folder_.filePath(u"zakres.pdf"_s);
        WritePdf(Herd(), pdf, {{}, 2, 3});
        QCOMPARE(Info(pdf, u"Pages"_s), u"2"_s);
        QVERIFY(Text(pdf, 1).contains(u"Krowa 2"_s));
        QVERIFY(Text(pdf, 2).contains(u"Strona 3 z 3"_s));
    }

    void missingFolderThrowsAndLeavesNoFile()
    {
        const QString pdf = folder_.filePath(u"nie-ma/raport.pdf"_s);
        QVERIFY_THROWS_EXCEPTION(FileWriteError, WritePdf(Herd(), pdf, {}));
        QVERIFY(!QFile::exists(pdf));
        QVERIFY(!QDir(folder_.filePath(u"nie-ma"_s)).exists());
    }

private:
    QTemporaryDir folder_;
};

QTEST_MAIN(TestReportPdf)
#include "test_report_pdf.moc"
