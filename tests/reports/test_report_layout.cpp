#include "core/tables/Table.h"
#include "reports/ReportLayout.h"
#include "reports/TemplateReader.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {
constexpr double Px = 96.0 / 25.4; // template pixels in a millimetre
const QDateTime PrintedAt(QDate(2026, 11, 23), QTime(10, 0));
const QString Link = u"frxDBDataset1"_s;
const QString OnLink = u"DataSet=\"frxDBDataset1\" "_s;
const QString HerdField = uR"([frxDBDataset1."STADO"])"_s;
const QString A4 =
    uR"(PaperWidth="210" PaperHeight="297" LeftMargin="10" RightMargin="10" TopMargin="10" BottomMargin="10")"_s;
// 80 × 80 mm to print on: 302 px, room for fifteen 20 px bands.
const QString Small =
    uR"(PaperWidth="100" PaperHeight="100" LeftMargin="10" RightMargin="10" TopMargin="10" BottomMargin="10")"_s;

QString Memo(const QString& text, const QString& geometry = uR"(Width="300" Height="18")"_s)
{
    static int count = 0;
    const QString xml = text.toHtmlEscaped().replace(u"\n"_s, u"&#13;&#10;"_s);
    return u"<TfrxMemoView Name=\"Memo%1\" "_s.arg(++count) + geometry + u" Text=\""_s + xml + u"\"/>"_s;
}

// A "Tfrx<kind>" band, named after its kind and top and 20 px high unless `attributes` say otherwise.
QString Band(const QString& kind, int top, const QString& objects, const QString& attributes = {})
{
    QString head = u"<Tfrx"_s + kind + u" Top=\""_s + QString::number(top) + u"\" "_s + attributes;
    if (!attributes.contains(u"Name="_s))
        head += u" Name=\""_s + kind + QString::number(top) + u'"';
    if (!attributes.contains(u"Height="_s))
        head += u" Height=\"20\""_s;
    return head + u'>' + objects + u"</Tfrx"_s + kind + u'>';
}

QString Text(const QString& kind, int top, const QString& text, const QString& attributes = {})
{
    return Band(kind, top, Memo(text), attributes);
}

// A master band printing the herd of each row of `link`.
QString Rows(int top, const QString& attributes = {}, const QString& link = Link)
{
    return Text(u"MasterData"_s, top, u"["_s + link + u".\"STADO\"]"_s, u"DataSet=\""_s + link + u"\" "_s + attributes);
}

PreparedReport Prepare(const QString& bands, const std::vector<DataLinkBinding>& links = {}, const QString& page = A4)
{
    const QString xml = u"<?xml version=\"1.0\" encoding=\"utf-8\"?><TfrxReport><TfrxReportPage Name=\"Page1\" "_s +
                        page + u'>' + bands + u"</TfrxReportPage></TfrxReport>"_s;
    return PrepareReport(ReadTemplateData(xml.toUtf8(), u"/szablony/test.fr3"_s), links, PrintedAt);
}

struct Cow {
    QString herd;
    int count = 0;
    QString group = {};
    QString note = {};
};

std::unique_ptr<Table> Cattle(const std::vector<Cow>& cows)
{
    auto table = std::make_unique<Table>(u"Bydlo"_s, std::vector<FieldDef>{{u"STADO"_s, FieldType::String, 10},
                                                                           {u"Grupa"_s, FieldType::String, 10},
                                                                           {u"Ilosc"_s, FieldType::Int32, 0},
                                                                           {u"Urodzony"_s, FieldType::Date, 0},
                                                                           {u"Opis"_s, FieldType::Memo, 0}});
    table->open();
    for (const Cow& cow : cows) {
        table->append();
        table->setValue(u"STADO", cow.herd);
        table->setValue(u"Grupa", cow.group);
        table->setValue(u"Ilosc", cow.count);
        table->setValue(u"Urodzony", QDate(2024, 3, 5));
        table->setValue(u"Opis", cow.note);
        table->post();
    }
    return table;
}

QStringList Sequence(const QString& prefix, int from, int to)
{
    QStringList texts;
    for (int n = from; n <= to; ++n)
        texts.append(prefix + QString::number(n));
    return texts;
}

// Rows "<prefix>1" … "<prefix>n", each counting its own number.
std::unique_ptr<Table> Numbered(int count, const QString& prefix = u"R"_s)
{
    std::vector<Cow> cows;
    for (int n = 1; n <= count; ++n)
        cows.push_back({prefix + QString::number(n), n});
    return Cattle(cows);
}

// Every page's texts in item order.
QStringList Pages(const PreparedReport& report)
{
    QStringList pages;
    for (int page = 0; page < report.pageCount(); ++page)
        pages.append(report.pageTexts(page).join(u" | "_s));
    return pages;
}

const PreparedItem* Find(const PreparedReport& report, int page, const QString& text)
{
    for (const PreparedItem& item : report.pages[static_cast<std::size_t>(page)].items)
        if (item.text == text)
            return &item;
    return nullptr;
}
} // namespace

class TestReportLayout : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // ---- geometry and units --------------------------------------------------

    void pagesAndMargins_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QSizeF>("paperMm");
        QTest::addColumn<QPointF>("marginsMm");
        QTest::newRow("A4, 10 mm margins") << A4 << QSizeF(210, 297) << QPointF(10, 10);
        QTest::newRow("left and top differ")
            << uR"(LeftMargin="15" TopMargin="20" BottomMargin="5")"_s << QSizeF(210, 297) << QPointF(15, 20);
        QTest::newRow("landscape keeps its size")
            << uR"(Orientation="poLandscape" PaperWidth="297" PaperHeight="210" BottomMargin="5")"_s << QSizeF(297, 210)
            << QPointF(10.00125, 10.00125);
    }
    // A memo at the band's top left lands at the margins; the page footer at the bottom margin.
    void pagesAndMargins()
    {
        QFETCH(QString, page);
        QFETCH(QSizeF, paperMm);
        QFETCH(QPointF, marginsMm);
        const PreparedReport report = Prepare(
            Band(u"ReportTitle"_s, 0, Memo(u"A"_s) + Memo(u"B"_s, uR"(Left="50" Top="10" Width="100" Height="18")"_s),
                 u"Height=\"40\""_s) +
                Text(u"PageFooter"_s, 500, u"Stopka"_s),
            {}, page);
        QCOMPARE(report.pages[0].paperMm, paperMm);
        QCOMPARE(report.pages[0].landscape, paperMm.width() > paperMm.height());
        QCOMPARE(Find(report, 0, u"A"_s)->rect, QRectF(marginsMm * Px, QSizeF(300, 18)));
        QCOMPARE(Find(report, 0, u"B"_s)->rect.topLeft(), marginsMm * Px + QPointF(50, 10));
        const double bottomMm = page.contains(u"BottomMargin=\"5\""_s) ? 5 : 10;
        QCOMPARE(Find(report, 0, u"Stopka"_s)->rect.top(), (paperMm.height() - bottomMm) * Px - 20);
    }

    void bandsFollowOneAnotherByHeight()
    {
        const auto table = Numbered(3);
        const PreparedReport report = Prepare(
            Text(u"ReportTitle"_s, 0, u"T"_s, u"Height=\"30\""_s) + Text(u"Header"_s, 40, u"H"_s, u"Height=\"25\""_s) +
                Band(u"MasterData"_s, 70, Memo(HerdField), OnLink + u"Height=\"16\""_s) + Text(u"Footer"_s, 90, u"F"_s),
            {{Link, table.get()}});
        const QStringList texts{u"T"_s, u"H"_s, u"R1"_s, u"R2"_s, u"R3"_s, u"F"_s};
        const double tops[] = {0, 30, 55, 71, 87, 103};
        QCOMPARE(report.pageTexts(0), texts);
        for (int i = 0; i < texts.size(); ++i)
            QCOMPARE(Find(report, 0, texts[i])->rect.top(), 10 * Px + tops[i]);
    }

    // ---- band order and linking ---------------------------------------------

    void bandsPrintInOrder_data()
    {
        QTest::addColumn<QString>("bands");
        QTest::addColumn<QString>("expected");
        QTest::newRow("Top order, not file order")
            << Text(u"ReportSummary"_s, 300, u"S"_s) + Rows(100) + Text(u"Footer"_s, 130, u"F"_s) +
                   Text(u"ReportTitle"_s, 0, u"T"_s) + Text(u"Header"_s, 60, u"H"_s)
            << u"T | H | A1 | A2 | F | S"_s;
        QTest::newRow("invisible bands and objects")
            << Memo(u"znak"_s, uR"(Width="50" Height="18" Visible="False")"_s) +
                   Band(u"ReportTitle"_s, 0,
                        Memo(u"widoczny"_s) + Memo(u"ukryty"_s, uR"(Width="50" Height="18" Visible="False")"_s)) +
                   Text(u"PageHeader"_s, 30, u"nagłówek"_s, u"Visible=\"False\""_s) +
                   Text(u"Child"_s, 60, u"dziecko"_s, u"Visible=\"False\""_s) + Rows(90, u"Child=\"Child60\""_s)
            << u"widoczny | A1 | A2"_s;
        QTest::newRow("two masters one after another")
            << Rows(0) + Text(u"Footer"_s, 30, u"F1"_s) + Text(u"Header"_s, 60, u"H2"_s) +
                   Rows(90, {}, u"frxDBDataset2"_s)
            << u"A1 | A2 | F1 | H2 | B1 | B2"_s;
        QTest::newRow("a detail for each master row")
            << Rows(0) + Text(u"Header"_s, 30, u"HD"_s) +
                   Text(u"DetailData"_s, 60, uR"([frxDBDataset2."STADO"])"_s, u"DataSet=\"frxDBDataset2\""_s) +
                   Text(u"Footer"_s, 90, u"FD"_s) + Text(u"Footer"_s, 120, u"FM"_s)
            << u"A1 | HD | B1 | B2 | FD | A2 | HD | B1 | B2 | FD | FM"_s;
        QTest::newRow("a child right after its band")
            << Rows(0, u"Child=\"Child200\""_s) + Text(u"ReportSummary"_s, 100, u"S"_s) + Text(u"Child"_s, 200, u"c"_s)
            << u"A1 | c | A2 | c | S"_s;
        QTest::newRow("children in a ring")
            << Rows(0, u"Child=\"Child100\""_s) + Text(u"Child"_s, 100, u"c1"_s, u"Child=\"Child200\""_s) +
                   Text(u"Child"_s, 200, u"c2"_s, u"Child=\"Child100\""_s)
            << u"A1 | c1 | c2 | A2 | c1 | c2"_s;
    }
    void bandsPrintInOrder()
    {
        QFETCH(QString, bands);
        QFETCH(QString, expected);
        const auto first = Numbered(2, u"A"_s), second = Numbered(2, u"B"_s);
        const PreparedReport report = Prepare(bands, {{Link, first.get()}, {u"frxDBDataset2"_s, second.get()}});
        QCOMPARE(Pages(report), QStringList{expected});
    }

    void emptyDataBandPrintsNoHeaderNorFooter_data()
    {
        QTest::addColumn<QString>("dataSet");
        QTest::addColumn<bool>("bound");
        QTest::addColumn<int>("problems");
        QTest::newRow("no rows") << Link << true << 0;
        QTest::newRow("bound to nothing") << Link << false << 0;
        QTest::newRow("unknown link") << u"frxDBDataset9"_s << true << 1;
    }
    void emptyDataBandPrintsNoHeaderNorFooter()
    {
        QFETCH(QString, dataSet);
        QFETCH(bool, bound);
        QFETCH(int, problems);
        const auto table = Numbered(0);
        const PreparedReport report =
            Prepare(Text(u"ReportTitle"_s, 0, u"T"_s) + Text(u"Header"_s, 60, u"H"_s) + Rows(100, {}, dataSet) +
                        Text(u"Footer"_s, 130, u"F"_s) + Text(u"ReportSummary"_s, 300, u"S"_s),
                    {{Link, bound ? table.get() : nullptr}});
        QCOMPARE(Pages(report), QStringList{u"T | S"_s});
        QCOMPARE(report.problems.filter(u"frxDBDataset9"_s).size(), problems);
    }

    // ---- page breaks and new pages --------------------------------------------

    // Page objects print on every page; a footer sums every row of its band, a page footer the rows of its page.
    void rowsBreakOntoPagesAboveTheFooter()
    {
        const auto table = Numbered(40);
        const QString sum = uR"([SUM(<frxDBDataset1."Ilosc">,MD1)])"_s;
        const PreparedReport report =
            Prepare(Memo(u"Znak"_s, uR"(Left="100" Top="200" Width="50" Height="18")"_s) +
                        Text(u"PageFooter"_s, 300, u"Stopka [Page#]: "_s + sum) + Rows(100, u"Name=\"MD1\""_s) +
                        Text(u"Footer"_s, 130, u"razem "_s + sum),
                    {{Link, table.get()}}, Small);
        QCOMPARE(report.pageCount(), 3);
        const double footerTop = 90 * Px - 20;
        QStringList rows;
        for (int page = 0; page < report.pageCount(); ++page) {
            QCOMPARE(Find(report, page, u"Znak"_s)->rect.topLeft(), QPointF(10 * Px + 100, 10 * Px + 200));
            double next = 10 * Px;
            int onPage = 0;
            for (const PreparedItem& item : report.pages[static_cast<std::size_t>(page)].items) {
                if (item.text.startsWith(u'R')) {
                    QCOMPARE(item.rect.top(), next);
                    next += 20;
                    onPage += item.text.mid(1).toInt();
                    rows.append(item.text);
                }
            }
            const PreparedItem* footer = Find(report, page, u"Stopka %1: %2"_s.arg(page + 1).arg(onPage));
            QVERIFY2(footer, qPrintable(Pages(report)[page]));
            QCOMPARE(footer->rect.top(), footerTop);
            QVERIFY(next <= footerTop);
            if (page + 1 < report.pageCount())
                QVERIFY2(next + 20 > footerTop, "a page broke while a row still fitted");
        }
        QCOMPARE(rows, Sequence(u"R"_s, 1, 40));
        QVERIFY(Find(report, 2, u"razem 820"_s));
    }

    // With the header, 14 rows fill a small page.
    void reprintedHeaderRepeatsUntilItsFooter_data()
    {
        QTest::addColumn<int>("rows");
        QTest::addColumn<QStringList>("expected");
        const QString fullPage = u"H | "_s + Sequence(u"R"_s, 1, 14).join(u" | "_s);
        QTest::newRow("footer alone on the next page") << 14 << QStringList{fullPage, u"F"_s};
        QTest::newRow("rows go on") << 20
                                    << QStringList{fullPage,
                                                   u"H | "_s + Sequence(u"R"_s, 15, 20).join(u" | "_s) + u" | F"_s};
    }
    void reprintedHeaderRepeatsUntilItsFooter()
    {
        QFETCH(int, rows);
        QFETCH(QStringList, expected);
        const auto table = Numbered(rows);
        const PreparedReport report = Prepare(Text(u"Header"_s, 0, u"H"_s, u"ReprintOnNewPage=\"True\""_s) + Rows(30) +
                                                  Text(u"Footer"_s, 60, u"F"_s),
                                              {{Link, table.get()}}, Small);
        QCOMPARE(Pages(report), expected);
    }

    void newPages_data()
    {
        QTest::addColumn<QString>("bands");
        QTest::addColumn<QStringList>("expected");
        const QString pageHeader = Text(u"PageHeader"_s, 0, u"PH"_s);
        const QString newPage = u"StartNewPage=\"True\""_s;
        QTest::newRow("on the first content band")
            << pageHeader + Text(u"Header"_s, 40, u"H"_s, newPage) + Rows(70) << QStringList{u"PH | H | R1 | R2"_s};
        QTest::newRow("after the title") << Text(u"ReportTitle"_s, 0, u"T"_s) + pageHeader +
                                                Text(u"Header"_s, 60, u"H"_s, newPage) + Rows(90)
                                         << QStringList{u"T | PH"_s, u"PH | H | R1 | R2"_s};
        QTest::newRow("group after a reprinted header")
            << pageHeader + Text(u"Header"_s, 40, u"H"_s, u"ReprintOnNewPage=\"True\""_s) +
                   Text(u"GroupHeader"_s, 70, u"G "_s + HerdField,
                        uR"(Condition="frxDBDataset1.&quot;STADO&quot;" )"_s + newPage) +
                   Rows(100)
            << QStringList{u"PH | H | G R1 | R1"_s, u"PH | H | G R2 | R2"_s};
        QTest::newRow("every row of a data band")
            << pageHeader + Rows(40, newPage) << QStringList{u"PH | R1"_s, u"PH | R2"_s};
        QTest::newRow("second section") << pageHeader + Rows(40) + Text(u"Footer"_s, 70, u"F"_s) +
                                               Text(u"Header"_s, 100, u"H"_s, newPage) + Rows(130)
                                        << QStringList{u"PH | R1 | R2 | F"_s, u"PH | H | R1 | R2"_s};
        QTest::newRow("title first, page header from page two, summary last")
            << Text(u"ReportTitle"_s, 0, u"T"_s) + Text(u"PageHeader"_s, 30, u"PH"_s, u"PrintOnFirstPage=\"False\""_s) +
                   Rows(60, newPage) + Text(u"ReportSummary"_s, 90, u"S"_s)
            << QStringList{u"T"_s, u"PH | R1"_s, u"PH | R2 | S"_s};
    }
    void newPages()
    {
        QFETCH(QString, bands);
        QFETCH(QStringList, expected);
        const auto table = Numbered(2);
        QCOMPARE(Pages(Prepare(bands, {{Link, table.get()}})), expected);
    }

    void bandTallerThanThePageEnds_data()
    {
        QTest::addColumn<QString>("band");
        QTest::newRow("fixed height") << Band(u"MasterData"_s, 0, Memo(HerdField), OnLink + u"Height=\"2000\""_s);
        QTest::newRow("stretched text") << Band(u"MasterData"_s, 0,
                                                Memo(HerdField + uR"( [frxDBDataset1."Opis"])"_s,
                                                     uR"(Width="200" Height="18" StretchMode="smActualHeight")"_s),
                                                OnLink + u"Stretched=\"True\""_s);
    }
    void bandTallerThanThePageEnds()
    {
        QFETCH(QString, band);
        const QString note = Sequence(u"wiersz "_s, 1, 300).join(u'\n');
        const auto table = Cattle({{u"R1"_s, 1, {}, note}, {u"R2"_s, 2, {}, note}, {u"R3"_s, 3, {}, note}});
        const PreparedReport report =
            Prepare(Text(u"PageFooter"_s, 300, u"Stopka"_s) + band, {{Link, table.get()}}, Small);
        QCOMPARE(report.pageCount(), 3);
        for (int page = 0; page < 3; ++page)
            QVERIFY(report.pageTexts(page).first().startsWith(u"R%1"_s.arg(page + 1)));
    }

    // ---- groups -----------------------------------------------------------------

    void groupsFollowTheirCondition()
    {
        const auto table = Cattle({{u"A"_s, 1}, {u"A"_s, 2}, {u"B"_s, 5}, {u"C"_s, 3}, {u"C"_s, 4}});
        const QString sum = uR"([SUM(<frxDBDataset1."Ilosc">,MD1)])"_s;
        const PreparedReport report = Prepare(
            Text(u"GroupHeader"_s, 0, u"Stado "_s + HerdField, uR"(Condition="frxDBDataset1.&quot;STADO&quot;")"_s) +
                Text(u"MasterData"_s, 30, uR"([frxDBDataset1."Ilosc"])"_s, OnLink + u"Name=\"MD1\""_s) +
                Text(u"GroupFooter"_s, 60, u"Razem "_s + HerdField + u": "_s + sum + u" w [COUNT(MD1)]"_s) +
                Text(u"ReportSummary"_s, 90, u"Ogółem "_s + sum),
            {{Link, table.get()}});
        QCOMPARE(Pages(report), QStringList{u"Stado A | 1 | 2 | Razem A: 3 w 2 | Stado B | 5 | Razem B: 5 w 1 | "
                                            u"Stado C | 3 | 4 | Razem C: 7 w 2 | Ogółem 15"_s});
    }

    // The inner group starts again when the outer one does, even with the same value.
    void nestedGroups()
    {
        const auto table = Cattle({{u"A"_s, 1, u"x"_s}, {u"A"_s, 2, u"x"_s}, {u"A"_s, 3, u"y"_s}, {u"B"_s, 4, u"y"_s}});
        const QString sum = uR"([SUM(<frxDBDataset1."Ilosc">,MD1)])"_s;
        const QString group = uR"([frxDBDataset1."Grupa"])"_s;
        const PreparedReport report =
            Prepare(Text(u"GroupHeader"_s, 0, HerdField, uR"(Condition="frxDBDataset1.&quot;STADO&quot;")"_s) +
                        Text(u"GroupHeader"_s, 30, group, uR"(Condition="[frxDBDataset1.&quot;Grupa&quot;]")"_s) +
                        Text(u"MasterData"_s, 60, uR"([frxDBDataset1."Ilosc"])"_s, OnLink + u"Name=\"MD1\""_s) +
                        Text(u"GroupFooter"_s, 90, u"g "_s + group + u' ' + sum) +
                        Text(u"GroupFooter"_s, 120, u"s "_s + HerdField + u' ' + sum),
                    {{Link, table.get()}});
        QCOMPARE(Pages(report), QStringList{u"A | x | 1 | 2 | g x 3 | y | 3 | g y 3 | s A 6 | "
                                            u"B | y | 4 | g y 4 | s B 4"_s});
    }

    // ---- expressions and aggregates -------------------------------------------

    void pageNumbers()
    {
        const auto table = Numbered(30);
        const QString lastPage = u"[IIF(<Page#> = <TotalPages#>, 'koniec', 'dalej')] [<TotalPages#> - <Page#>]"_s;
        const PreparedReport report = Prepare(Text(u"ReportTitle"_s, 0, u"Stron: [TotalPages#]"_s) +
                                                  Band(u"PageFooter"_s, 300,
                                                       Memo(u"Strona [Page#] z [TotalPages#]"_s) +
                                                           Memo(lastPage, uR"(Left="150" Width="100" Height="18")"_s)) +
                                                  Text(u"MasterData"_s, 30, HerdField + u"/[Page#]"_s, OnLink),
                                              {{Link, table.get()}}, Small);
        QCOMPARE(report.pageCount(), 3);
        QCOMPARE(report.pageTexts(0).first(), u"Stron: 3"_s);
        for (int page = 0; page < 3; ++page) {
            QVERIFY(Find(report, page, u"Strona %1 z 3"_s.arg(page + 1)));
            QVERIFY(Find(report, page, (page == 2 ? u"koniec %1"_s : u"dalej %1"_s).arg(2 - page)));
            for (const QString& text : report.pageTexts(page))
                if (text.startsWith(u'R'))
                    QVERIFY2(text.endsWith(u"/%1"_s.arg(page + 1)), qPrintable(text));
        }
    }

    void lineNumbersRestartForEachBand_data()
    {
        QTest::addColumn<QString>("bands");
        QTest::addColumn<QString>("expected");
        const QString link = u"Name=\"%1\" DataSet=\"frxDBDataset%2\""_s;
        QTest::newRow("two masters") << Text(u"MasterData"_s, 0, u"A[Line#]"_s, link.arg(u"MD1"_s).arg(1)) +
                                            Text(u"MasterData"_s, 30, u"B[Line#]"_s, link.arg(u"MD2"_s).arg(2))
                                     << u"A1 | A2 | A3 | B1 | B2"_s;
        QTest::newRow("detail") << Text(u"MasterData"_s, 0, u"A[Line#]"_s, link.arg(u"MD1"_s).arg(2)) +
                                       Text(u"DetailData"_s, 30, u"B[Line#]"_s, link.arg(u"DD1"_s).arg(1)) +
                                       Text(u"Footer"_s, 60, u"F[COUNT(DD1)]"_s)
                                << u"A1 | B1 | B2 | B3 | F3 | A2 | B1 | B2 | B3 | F3"_s;
    }
    void lineNumbersRestartForEachBand()
    {
        QFETCH(QString, bands);
        QFETCH(QString, expected);
        const auto three = Numbered(3), two = Numbered(2);
        QCOMPARE(Pages(Prepare(bands, {{Link, three.get()}, {u"frxDBDataset2"_s, two.get()}})), QStringList{expected});
    }

    void expressions_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("date") << u"[Date]"_s << u"23.11.2026"_s;
        QTest::newRow("time") << u"[Time]"_s << u"10:00:00"_s;
        QTest::newRow("field") << HerdField << u"PL01"_s;
        QTest::newRow("field in <>") << uR"([<frxDBDataset1."STADO">])"_s << u"PL01"_s;
        QTest::newRow("text around") << uR"(Stado: [frxDBDataset1."STADO"], sztuk [<frxDBDataset1."Ilosc">].)"_s
                                     << u"Stado: PL01, sztuk 10."_s;
        QTest::newRow("sum") << uR"([<frxDBDataset1."Ilosc"> + <frxDBDataset1."Ilosc">])"_s << u"20"_s;
        QTest::newRow("text + field") << uR"(['Stado ' + <frxDBDataset1."STADO">])"_s << u"Stado PL01"_s;
        QTest::newRow("number + text") << uR"([<frxDBDataset1."Ilosc"> + ' szt.'])"_s << u"10 szt."_s;
        QTest::newRow("precedence") << uR"([<frxDBDataset1."Ilosc"> + 2 * 3])"_s << u"16"_s;
        QTest::newRow("parentheses") << uR"([(<frxDBDataset1."Ilosc"> + 2) * 3])"_s << u"36"_s;
        QTest::newRow("below zero") << uR"([2 - <frxDBDataset1."Ilosc">])"_s << u"-8"_s;
        QTest::newRow("division") << uR"([<frxDBDataset1."Ilosc"> / 4])"_s << u"2,5"_s;
        QTest::newRow("division by zero") << uR"(x[<frxDBDataset1."Ilosc"> / 0]y)"_s << u"xy"_s;
        QTest::newRow("IIF") << uR"([IIF(<frxDBDataset1."Ilosc"> > 5, 'dużo', 'mało')])"_s << u"dużo"_s;
        QTest::newRow("IIF on text") << uR"([IIF(<frxDBDataset1."STADO"> = 'PL02', 'tak', 'nie')])"_s << u"nie"_s;
        QTest::newRow("inline number") << uR"([<frxDBDataset1."Ilosc"> / 3 #n%2.2f])"_s << u"3,33"_s;
        QTest::newRow("inline date") << uR"([<frxDBDataset1."Urodzony"> #ddd.mm.yyyy])"_s << u"05.03.2024"_s;
    }
    void expressions()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        const auto table = Cattle({{u"PL01"_s, 10}});
        const PreparedReport report = Prepare(Text(u"MasterData"_s, 0, text, OnLink), {{Link, table.get()}});
        QCOMPARE(report.pageTexts(0), QStringList{expected});
        QCOMPARE(report.problems, QStringList());
    }

    void aggregates_data()
    {
        QTest::addColumn<QString>("expression");
        QTest::addColumn<QString>("expected");
        QTest::newRow("SUM") << uR"([SUM(<frxDBDataset1."Ilosc">,MD1)])"_s << u"20"_s;
        QTest::newRow("SUM of an expression") << uR"([SUM(<frxDBDataset1."Ilosc"> * 2, MD1)])"_s << u"40"_s;
        QTest::newRow("MIN") << uR"([MIN(<frxDBDataset1."Ilosc">,MD1)])"_s << u"2"_s;
        QTest::newRow("MAX") << uR"([MAX(<frxDBDataset1."Ilosc">,MD1)])"_s << u"9"_s;
        QTest::newRow("AVG") << uR"([AVG(<frxDBDataset1."Ilosc">,MD1) #n%2.1f])"_s << u"5,0"_s;
        QTest::newRow("COUNT") << u"[COUNT(MD1)]"_s << u"4"_s;
    }
    void aggregates()
    {
        QFETCH(QString, expression);
        QFETCH(QString, expected);
        const auto table = Cattle({{u"A"_s, 4}, {u"B"_s, 9}, {u"C"_s, 2}, {u"D"_s, 5}});
        const PreparedReport report =
            Prepare(Rows(0, u"Name=\"MD1\""_s) + Text(u"Footer"_s, 30, u"stopka "_s + expression) +
                        Text(u"ReportSummary"_s, 60, u"razem "_s + expression),
                    {{Link, table.get()}});
        QCOMPARE(report.pageTexts(0).mid(4), (QStringList{u"stopka "_s + expected, u"razem "_s + expected}));
    }

    void unknownNamesPrintEmptyAndAreListedOnce_data()
    {
        QTest::addColumn<QString>("expression");
        QTest::addColumn<QString>("name");
        QTest::newRow("field") << uR"([frxDBDataset1."NIEMA"])"_s << u"NIEMA"_s;
        QTest::newRow("link") << uR"([<frxDBDataset7."STADO">])"_s << u"frxDBDataset7"_s;
        QTest::newRow("function") << uR"([ZAOKR(<frxDBDataset1."Ilosc">)])"_s << u"ZAOKR"_s;
        QTest::newRow("variable") << u"[NrStada]"_s << u"NrStada"_s;
        QTest::newRow("aggregate's band") << uR"([SUM(<frxDBDataset1."Ilosc">,MD9)])"_s << u"MD9"_s;
    }
    void unknownNamesPrintEmptyAndAreListedOnce()
    {
        QFETCH(QString, expression);
        QFETCH(QString, name);
        const auto table = Numbered(3);
        const QString second = Memo(u"drugi "_s + expression, uR"(Left="400" Width="100" Height="18")"_s);
        const PreparedReport report =
            Prepare(Band(u"MasterData"_s, 0, Memo(HerdField + u'<' + expression + u'>') + second, OnLink),
                    {{Link, table.get()}});
        QCOMPARE(Pages(report), QStringList{u"R1<> | drugi  | R2<> | drugi  | R3<> | drugi "_s});
        QCOMPARE(report.problems.filter(name).size(), 1);
    }

    // ---- stretching ---------------------------------------------------------------

    void stretchedBandGrowsWithItsText()
    {
        const QString note = Sequence(u"wiersz "_s, 1, 12).join(u'\n');
        const auto table = Cattle({{u"R1"_s, 1, {}, note}, {u"R2"_s, 2, {}, u"jeden"_s}});
        const PreparedReport report =
            Prepare(Band(u"MasterData"_s, 0,
                         Memo(uR"(<[frxDBDataset1."Opis"]>)"_s,
                              uR"(Top="2" Width="200" Height="18" StretchMode="smActualHeight")"_s) +
                             Memo(u"|[Line#]"_s,
                                  uR"(Left="210" Width="40" Height="20" StretchMode="smMaxHeight" Frame.Typ="15")"_s) +
                             Memo(u"stały[Line#]"_s, uR"(Left="260" Width="60" Height="20")"_s),
                         OnLink + u"Stretched=\"True\""_s),
                    {{Link, table.get()}});
        const PreparedItem* text = Find(report, 0, u'<' + note + u'>');
        QVERIFY(text);
        QVERIFY2(text->rect.height() > 12 * 13, qPrintable(QString::number(text->rect.height())));
        const double rowTop = 10 * Px;
        QCOMPARE(text->rect.top(), rowTop + 2);
        QCOMPARE(Find(report, 0, u"|1"_s)->rect, QRectF(10 * Px + 210, rowTop, 40, 2 + text->rect.height()));
        QCOMPARE(Find(report, 0, u"stały1"_s)->rect.height(), 20.0);
        const double nextRow = rowTop + 2 + text->rect.height();
        QCOMPARE(Find(report, 0, u"<jeden>"_s)->rect.top(), nextRow + 2);
        QCOMPARE(Find(report, 0, u"|2"_s)->rect, QRectF(10 * Px + 210, nextRow, 40, 20));
    }

    // ---- what the engine does not draw ------------------------------------------

    void unsupportedObjectsAndBandsAreListed()
    {
        const auto table = Numbered(3);
        const QString barCode = uR"(<TfrxBarCodeView Name="BarCode1" Left="320" Width="80" Height="20" Text="1"/>)"_s;
        const PreparedReport report =
            Prepare(Band(u"MasterData"_s, 0, Memo(HerdField) + barCode, OnLink) +
                        Text(u"MasterData"_s, 40, u"V"_s, OnLink + uR"(Name="Pionowe1" Vertical="True")"_s),
                    {{Link, table.get()}});
        QCOMPARE(Pages(report), QStringList{u"R1 | R2 | R3"_s});
        int frames = 0;
        for (const PreparedItem& item : report.pages[0].items) {
            if (item.kind == ItemKind::Frame) {
                QCOMPARE(item.rect.left(), 10 * Px + 320);
                ++frames;
            }
        }
        QCOMPARE(frames, 3);
        QCOMPARE(report.problems.filter(u"BarCode1"_s).size(), 1);
        QCOMPARE(report.problems.filter(u"Pionowe1"_s).size(), 1);
    }
};

QTEST_MAIN(TestReportLayout)
#include "test_report_layout.moc"
