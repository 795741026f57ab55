#include "framework/SafeFile.h"
#include "reports/PreparedReportFile.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
PreparedReport ThreePages()
{
    PreparedReport report;
    report.name = u"Grupy technologiczne"_s;
    report.problems = QStringList{u"TfrxBarCodeView BarCode1: nieobsługiwany"_s};
    PreparedStyle bold;
    bold.font.bold = true;
    bold.frame = {FrameAll, 0.5, Qt::red};
    bold.fill = QColor(240, 240, 240);
    report.styles = {PreparedStyle{}, bold};
    const QStringList texts[]{{u"Stado: 001"_s, u"Jałówki"_s}, {u"Stado: 002"_s}, {u"Byki"_s, u"Jałówki od 6"_s}};
    for (int page = 0; page < 3; ++page) {
        PreparedPage prepared;
        prepared.paperMm = page == 2 ? QSizeF(297, 210) : QSizeF(210, 297);
        prepared.landscape = page == 2;
        for (const QString& text : texts[page])
            prepared.items.push_back({ItemKind::Text, page % 2, QRectF(10, 20 + page, 100, 16), text});
        prepared.items.push_back({ItemKind::Line, 0, QRectF(10, 40, 700, 0), {}});
        report.pages.push_back(prepared);
    }
    return report;
}
} // namespace

Q_DECLARE_METATYPE(TextHit)

class PreparedReportTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void savedReportOpensAsItWas()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(u"wydruk.hrp"_s);
        const PreparedReport report = ThreePages();
        SavePreparedReport(report, path);
        const PreparedReport opened = LoadPreparedReport(path);
        QCOMPARE(opened.name, report.name);
        QCOMPARE(opened.problems, report.problems);
        QVERIFY(opened.styles == report.styles);
        QCOMPARE(opened.pageCount(), 3);
        for (std::size_t page = 0; page < 3; ++page) {
            QCOMPARE(opened.pageTexts(int(page)), report.pageTexts(int(page)));
            QCOMPARE(opened.pages[page].paperMm, report.pages[page].paperMm);
            QCOMPARE(opened.pages[page].items.back().rect, report.pages[page].items.back().rect);
        }
    }

    void damagedFilesAreRefused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray whole = EncodePreparedReport(ThreePages());
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("another file") << QByteArray("%PDF-1.4\n");
        QTest::newRow("cut short") << whole.left(whole.size() - 5);
        QTest::newRow("trailing bytes") << whole + "x";
        PreparedReport unknownStyle = ThreePages();
        unknownStyle.pages[1].items[0].style = 2;
        QTest::newRow("an item of a style that is not there") << EncodePreparedReport(unknownStyle);
    }

    void damagedFilesAreRefused()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY_THROWS_EXCEPTION(PreparedReportError, DecodePreparedReport(bytes));
    }

    void missingFileIsAMessage()
    {
        QVERIFY_THROWS_EXCEPTION(PreparedReportError, LoadPreparedReport(u"/nie/ma/takiego.hrp"_s));
        QVERIFY_THROWS_EXCEPTION(FileWriteError, SavePreparedReport(ThreePages(), u"/nie/ma/takiego.hrp"_s));
    }

    void findGoesOnAndWrapsRound_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<TextHit>("after");
        QTest::addColumn<TextHit>("expected");
        QTest::newRow("from the start") << u"jałówki"_s << TextHit{0, -1} << TextHit{0, 1};
        QTest::newRow("the next one, on a later page") << u"Jałówki"_s << TextHit{0, 1} << TextHit{2, 1};
        QTest::newRow("round to the first again") << u"Jałówki"_s << TextHit{2, 1} << TextHit{0, 1};
        QTest::newRow("the only one is found again") << u"Byki"_s << TextHit{2, 0} << TextHit{2, 0};
    }

    void findGoesOnAndWrapsRound()
    {
        QFETCH(QString, text);
        QFETCH(TextHit, after);
        QFETCH(TextHit, expected);
        const std::optional<TextHit> hit = ThreePages().find(text, after);
        QVERIFY(hit);
        QCOMPARE(*hit, expected);
        QVERIFY(!ThreePages().find(u"krowy"_s));
        QVERIFY(!ThreePages().find(QString()));
    }
};

QTEST_MAIN(PreparedReportTest)
#include "test_prepared_report.moc"
