#include "reports/TemplateReader.h"
#include "support/Files.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(ReportPageSetup)
Q_DECLARE_METATYPE(ReportFont)

namespace {
const QString Path = u"/szablony/stado.fr3"_s;

QByteArray Report(const QByteArray& body)
{
    return R"(<?xml version="1.0" encoding="utf-8"?>
<TfrxReport Version="6.9.3" ReportOptions.Name="Stado w grupach">)" +
           body + "</TfrxReport>";
}

ReportTemplate Read(const QByteArray& body)
{
    return ReadTemplateData(Report(body), Path);
}

QByteArray InBand(const QByteArray& objects)
{
    return R"(<TfrxReportPage Name="Page1"><TfrxMasterData Name="MasterData1" Top="100" Height="20">)" + objects +
           "</TfrxMasterData></TfrxReportPage>";
}

// The object named Memo1 of a band holding `element`.
ReportObject ObjectOf(const QByteArray& element)
{
    ReportTemplate report = Read(InBand(element));
    const ReportObject* object = report.findObject(u"Memo1"_s);
    return object ? *object : ReportObject{};
}

ReportObject MemoWith(const QByteArray& attributes)
{
    return ObjectOf(R"(<TfrxMemoView Name="Memo1" )" + attributes + "/>");
}

QString ErrorOf(const std::function<void()>& read)
{
    try {
        read();
    } catch (const TemplateError& error) {
        return error.message();
    }
    return {};
}
} // namespace

class TestTemplateReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pageSetup_data()
    {
        QTest::addColumn<QByteArray>("attributes");
        QTest::addColumn<ReportPageSetup>("expected");
        QTest::newRow("omitted: A4 portrait") << QByteArray() << ReportPageSetup{};
        QTest::newRow("landscape sizes are not turned")
            << QByteArray(R"(Orientation="poLandscape" PaperWidth="297" PaperHeight="210" PaperSize="9")")
            << ReportPageSetup{297, 210, 10.00125, 10.00125, 10.00125, 10.00125, true, 9};
        QTest::newRow("decimal comma and point")
            << QByteArray(R"(LeftMargin="12,5" RightMargin="7.25" TopMargin="5" BottomMargin="0" PaperSize="256")")
            << ReportPageSetup{210, 297, 12.5, 7.25, 5, 0, false, 256};
    }
    void pageSetup()
    {
        QFETCH(QByteArray, attributes);
        QFETCH(ReportPageSetup, expected);
        const ReportTemplate report = Read("<TfrxReportPage Name=\"Page1\" " + attributes + "/>");
        QCOMPARE(report.pages.size(), 1u);
        QCOMPARE(report.pages[0].setup, expected);
    }

    void memoDefaults()
    {
        const ReportObject memo = MemoWith(R"(Left="18,89765" Top="0" Width="94.48825" Height="18,89765")");
        QCOMPARE(memo.kind, ObjectKind::Memo);
        QCOMPARE(memo.className, u"TfrxMemoView"_s);
        QCOMPARE(memo.rect, QRectF(18.89765, 0, 94.48825, 18.89765));
        QVERIFY(memo.visible && memo.wordWrap && memo.allowExpressions && !memo.autoWidth);
        QCOMPARE(memo.hAlign, HAlign::Left);
        QCOMPARE(memo.vAlign, VAlign::Top);
        QCOMPARE(memo.font, ReportFont{});
        QCOMPARE(memo.frame, ReportFrame{});
        QCOMPARE(memo.format, DisplayFormat{});
        QVERIFY(!memo.fill.isValid());
        QCOMPARE(memo.gapX, 2.0);
    }

    void reportStructure()
    {
        ReportTemplate report = Read(R"(
<TfrxDataPage Name="Data"><TfrxMasterData Name="Hidden"/></TfrxDataPage>
<TfrxReportPage Name="Page1">
  <TfrxPageFooter Name="PageFooter1" Top="300" Height="20" PrintOnFirstPage="False"/>
  <TfrxMasterData Name="MasterData1" Top="100" Height="20" DataSet="frxDBDataset1" DataSetName="&quot;Stado&quot;"
                  RowCount="3" StartNewPage="True" Child="Child1"><Fill Kind="x"/></TfrxMasterData>
  <TfrxReportTitle Name="ReportTitle1" Top="20" Height="30"/>
  <TfrxGroupHeader Name="GroupHeader1" Top="60" Height="20" Condition="frxDBDataset1.&quot;STADO&quot;"/>
  <TfrxChild Name="Child1" Top="100" Height="10"/>
  <TfrxMemoView Name="PageMemo" Left="0" Top="0" Width="100" Height="20" Text="[Date]"/>
  <SomethingNew Name="Ignored"/>
</TfrxReportPage>
<TfrxDialogPage Name="Dialog1"><TfrxMemoView Name="DialogMemo"/></TfrxDialogPage>
<TfrxReportPage Name="Page2" Visible="False"/>)");
        QCOMPARE(report.reportName, u"Stado w grupach"_s);
        QCOMPARE(report.path, Path);
        QCOMPARE(report.pages.size(), 2u);
        QVERIFY(!report.pages[1].visible);
        QStringList order;
        for (const ReportBand& band : report.pages[0].bands)
            order << band.name;
        QCOMPARE(order,
                 QStringList({u"ReportTitle1"_s, u"GroupHeader1"_s, u"MasterData1"_s, u"Child1"_s, u"PageFooter1"_s}));
        QCOMPARE(report.pages[0].pageObjects.size(), 1u);
        QCOMPARE(report.pages[0].pageObjects[0].text, u"[Date]"_s);
        QVERIFY(!report.findObject(u"DialogMemo"_s) && !report.findBand(u"Hidden"_s));

        const ReportBand* data = report.findBand(u"MasterData1"_s);
        QCOMPARE(data->dataSet, u"Stado"_s);
        QCOMPARE(data->child, u"Child1"_s);
        QCOMPARE(data->rowCount, 3);
        QVERIFY(data->startNewPage && data->objects.empty());
        QCOMPARE(report.findBand(u"GroupHeader1"_s)->condition, u"frxDBDataset1.\"STADO\""_s);
        QCOMPARE(report.findBand(u"GroupHeader1"_s)->kind, BandKind::GroupHeader);
        QVERIFY(!report.findBand(u"PageFooter1"_s)->printOnFirstPage);
        QVERIFY(report.findBand(u"PageFooter1"_s)->printOnLastPage);
    }

    void colours_data()
    {
        QTest::addColumn<QByteArray>("attribute");
        QTest::addColumn<QColor>("expected");
        QTest::newRow("255 is red") << QByteArray(R"(Fill.BackColor="255")") << QColor(255, 0, 0);
        QTest::newRow("BBGGRR") << QByteArray(R"(Fill.BackColor="16744448")") << QColor(0, 128, 255);
        QTest::newRow("Delphi hex") << QByteArray(R"(Fill.BackColor="$00FF00")") << QColor(0, 255, 0);
        QTest::newRow("Basic hex") << QByteArray(R"(Color="&amp;H800000&amp;")") << QColor(0, 0, 128);
        QTest::newRow("name") << QByteArray(R"(Color="clMaroon")") << QColor(128, 0, 0);
        QTest::newRow("system button face") << QByteArray(R"(Color="clBtnFace")") << QColor(0xF0, 0xF0, 0xF0);
        QTest::newRow("system colour by number") << QByteArray(R"(Color="-16777211")") << QColor(Qt::white);
        QTest::newRow("Fill.BackColor wins")
            << QByteArray(R"(Color="clRed" Fill.BackColor="clAqua")") << QColor(0, 255, 255);
        QTest::newRow("clNone") << QByteArray(R"(Fill.BackColor="clNone")") << QColor();
        QTest::newRow("clNone as a number") << QByteArray(R"(Fill.BackColor="536870911")") << QColor();
        QTest::newRow("unreadable") << QByteArray(R"(Fill.BackColor="róż")") << QColor();
    }
    void colours()
    {
        QFETCH(QByteArray, attribute);
        QFETCH(QColor, expected);
        QCOMPARE(MemoWith(attribute).fill, expected);
    }

    void frame_data()
    {
        QTest::addColumn<QByteArray>("attribute");
        QTest::addColumn<int>("sides");
        QTest::newRow("all") << QByteArray(R"(Frame.Typ="15")") << int(FrameAll);
        QTest::newRow("left and top bits") << QByteArray(R"(Frame.Typ="5")") << (FrameLeft | FrameTop);
        QTest::newRow("set") << QByteArray(R"(Frame.Typ="[ftLeft, ftBottom]")") << (FrameLeft | FrameBottom);
        QTest::newRow("empty set") << QByteArray(R"(Frame.Typ="[]")") << 0;
    }
    void frame()
    {
        QFETCH(QByteArray, attribute);
        QFETCH(int, sides);
        QCOMPARE(MemoWith(attribute + R"( Frame.Width="0,5" Frame.Color="clGray")").frame,
                 (ReportFrame{sides, 0.5, QColor(128, 128, 128)}));
    }

    void font_data()
    {
        QTest::addColumn<QByteArray>("attributes");
        QTest::addColumn<ReportFont>("expected");
        const auto font = [](double size, bool bold, bool italic, bool underline, bool strike) {
            return ReportFont{u"Arial"_s, size, bold, italic, underline, strike, Qt::black};
        };
        QTest::newRow("bold") << QByteArray(R"(Font.Style="1")") << font(13, true, false, false, false);
        QTest::newRow("italic underline") << QByteArray(R"(Font.Style="6")") << font(13, false, true, true, false);
        QTest::newRow("strike-out set") << QByteArray(R"(Font.Style="[fsStrikeOut]")")
                                        << font(13, false, false, false, true);
        QTest::newRow("negative height") << QByteArray(R"(Font.Height="-16")") << font(16, false, false, false, false);
        QTest::newRow("cell height") << QByteArray(R"(Font.Height="19")") << font(19, false, false, false, false);
        QTest::newRow("points win") << QByteArray(R"(Font.Height="-13" Font.Size="12")")
                                    << font(16, false, false, false, false);
        QTest::newRow("family and colour") << QByteArray(R"(Font.Name="Times New Roman" Font.Color="255")")
                                           << ReportFont{u"Times New Roman"_s, 13, false, false, false, false, Qt::red};
    }
    void font()
    {
        QFETCH(QByteArray, attributes);
        QFETCH(ReportFont, expected);
        QCOMPARE(MemoWith(attributes).font, expected);
    }

    void memoAttributes()
    {
        const ReportObject memo =
            MemoWith(R"(HAlign="haBlock" VAlign="vaCenter" WordWrap="FALSE" AutoWidth="true" HideZeros="True"
                        AllowExpressions="False" StretchMode="smMaxHeight" Rotation="90" GapX="0" GapY="1,5"
                        DisplayFormat.Kind="fkDateTime" DisplayFormat.FormatStr="dd.mm.yyyy" Visible="False")");
        QCOMPARE(memo.hAlign, HAlign::Block);
        QCOMPARE(memo.vAlign, VAlign::Center);
        QVERIFY(!memo.wordWrap && memo.autoWidth && memo.hideZeros && !memo.allowExpressions && !memo.visible);
        QCOMPARE(memo.stretchMode, StretchMode::MaxHeight);
        QCOMPARE(memo.rotation, 90.0);
        QCOMPARE(memo.gapY, 1.5);
        QCOMPARE(memo.format, (DisplayFormat{DisplayKind::DateTime, u"dd.mm.yyyy"_s}));
        QVERIFY2(MemoWith(R"(WordWrap="tak")").wordWrap, "an unreadable boolean keeps its default");
    }

    void linesAndShapes()
    {
        ReportTemplate report = Read(InBand(R"(
            <TfrxLineView Name="Line1" Left="0" Top="0" Width="0" Height="-20" Diagonal="True"/>
            <TfrxShapeView Name="Shape1" Shape="skRoundRectangle" Frame.Typ="15"/>
            <TfrxPictureView Name="Picture1" Picture.PropData="0A0B"><Picture Data="x"/></TfrxPictureView>)"));
        const ReportObject* line = report.findObject(u"Line1"_s);
        QCOMPARE(line->kind, ObjectKind::Line);
        QVERIFY(line->diagonal);
        QCOMPARE(line->rect.height(), -20.0);
        QCOMPARE(report.findObject(u"Shape1"_s)->shape, ShapeKind::RoundRectangle);
        QCOMPARE(report.findObject(u"Picture1"_s)->kind, ObjectKind::Picture);
        QVERIFY(report.unsupported.isEmpty());
    }

    void texts_data()
    {
        QTest::addColumn<QByteArray>("element");
        QTest::addColumn<QString>("expected");
        QTest::newRow("Text with references")
            << QByteArray("<TfrxMemoView Name=\"Memo1\" Text=\"[frxDBDataset1.&#34;Wiek&#34;] &#60;&#62;&#38;\"/>")
            << uR"([frxDBDataset1."Wiek"] <>&)"_s;
        QTest::newRow("line breaks") << QByteArray("<TfrxMemoView Name=\"Memo1\" Text=\"Razem:&#13;&#10;[Date]\"/>")
                                     << u"Razem:\n[Date]"_s;
        QTest::newRow("Memo.Text") << QByteArray(R"(<TfrxMemoView Name="Memo1" Memo.Text="stary zapis"/>)")
                                   << u"stary zapis"_s;
        QTest::newRow("Memo child content")
            << QByteArray(R"(<TfrxMemoView Name="Memo1"><Memo>Ilość: [Ilosc]</Memo></TfrxMemoView>)")
            << u"Ilość: [Ilosc]"_s;
        QTest::newRow("Memo child attribute")
            << QByteArray(R"(<TfrxMemoView Name="Memo1"><Memo Text="z atrybutu"/></TfrxMemoView>)") << u"z atrybutu"_s;
        QTest::newRow("Memo.Text inside Memo") << QByteArray("<TfrxMemoView Name=\"Memo1\"><Memo>\n  <Memo.Text>"
                                                             "a&#13;&#10;b</Memo.Text>\n</Memo></TfrxMemoView>")
                                               << u"a\nb"_s;
        QTest::newRow("cp1250 bytes") << QByteArray("<TfrxMemoView Name=\"Memo1\" Text=\"Kr\xB9g \xB3\xF3"
                                                    "d\x9F Pi\xEAkny\"/>")
                                      << u"Krąg łódź Piękny"_s;
        QTest::newRow("UTF-8 beside cp1250") << QByteArray("<TfrxMemoView Name=\"Memo1\" Text=\"\xC5\xBC\xC3\xB3\xC5"
                                                           "\x82w i b\xB9k\"/>")
                                             << u"żółw i bąk"_s;
    }
    void texts()
    {
        QFETCH(QByteArray, element);
        QFETCH(QString, expected);
        QCOMPARE(ObjectOf(element).text, expected);
    }

    void unsupportedListedOnce()
    {
        ReportTemplate report = Read(R"(
<TfrxReportPage Name="Page1">
  <TfrxMasterData Name="MasterData1" Top="100" Height="20">
    <TfrxBarCodeView Name="BarCode1" Left="10" Width="80" Height="20"/>
    <TfrxCrossView Name="Cross1"><TfrxMemoView Name="CrossCell"/><TfrxChartView Name="Inner"/></TfrxCrossView>
  </TfrxMasterData>
  <TfrxMasterData Name="MasterData2" Top="200" Height="20" Vertical="True"><TfrxMemoView Name="InVertical"/>
  </TfrxMasterData>
  <TfrxSubreport Name="Subreport1" Page="Page2"/>
</TfrxReportPage>)");
        QCOMPARE(report.unsupported,
                 QStringList({u"TfrxBarCodeView BarCode1: nieobsługiwany"_s, u"TfrxCrossView Cross1: nieobsługiwany"_s,
                              u"TfrxMasterData MasterData2: nieobsługiwany"_s,
                              u"TfrxSubreport Subreport1: nieobsługiwany"_s}));
        const ReportObject* barCode = report.findObject(u"BarCode1"_s);
        QCOMPARE(barCode->kind, ObjectKind::Unsupported);
        QCOMPARE(barCode->className, u"TfrxBarCodeView"_s);
        QCOMPARE(barCode->rect, QRectF(10, 0, 80, 20));
        QVERIFY(!report.findBand(u"MasterData2"_s) && !report.findObject(u"InVertical"_s));
        QVERIFY(!report.findObject(u"CrossCell"_s));
    }

    void damaged_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("expected");
        QTest::newRow("truncated") << QByteArray(
                                          "<TfrxReport>\n<TfrxReportPage Name=\"Page1\">\n  <TfrxMasterData Name=\"Mas")
                                   << u"Szablon \"/szablony/stado.fr3\" jest uszkodzony (wiersz 3, kolumna "_s;
        QTest::newRow("unclosed") << QByteArray("<TfrxReport><TfrxReportPage></TfrxReport>")
                                  << u"jest uszkodzony (wiersz 1, kolumna"_s;
        QTest::newRow("inherited") << QByteArray(R"(<inherited ParentReport="baza.fr3"/>)")
                                   << u"szablony pochodne nie są obsługiwane"_s;
        QTest::newRow("ParentReport on the root")
            << QByteArray(R"(<TfrxReport ParentReport="baza.fr3"/>)") << u"szablony pochodne nie są obsługiwane"_s;
        QTest::newRow("other root") << QByteArray("<html><body/></html>") << u"nie jest szablonem raportu"_s;
        QTest::newRow("empty") << QByteArray("\n") << u"Szablon \"/szablony/stado.fr3\" jest pusty"_s;
        QTest::newRow("binary") << QByteArray("\x00\x01\xFF\xFE", 4) << u"jest uszkodzony"_s;
    }
    void damaged()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, expected);
        const QString message = ErrorOf([&] { ReadTemplateData(bytes, Path); });
        QVERIFY2(message.contains(expected), qPrintable(message));
    }

    void readsFromFile()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"grupy.fr3"_s);
        WriteAll(path, Report(InBand(R"(<TfrxMemoView Name="Memo1" Text="Grupa"/>)")));
        ReportTemplate report = ReadTemplate(path);
        QCOMPARE(report.path, path);
        QCOMPARE(report.findObject(u"Memo1"_s)->text, u"Grupa"_s);
    }

    void missingFile()
    {
        const QString message = ErrorOf([] { ReadTemplate(u"/nie/ma/takiego.fr3"_s); });
        QVERIFY2(message.startsWith(u"Nie można odczytać szablonu \"/nie/ma/takiego.fr3\": "_s), qPrintable(message));
    }
};

QTEST_MAIN(TestTemplateReader)
#include "test_template_reader.moc"
