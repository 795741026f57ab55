#include "reports/ReportFormat.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {
const QDate Friday(2024, 1, 5);
const QDateTime TuesdayAfternoon(QDate(2024, 11, 5), QTime(14, 7, 9));

// Rows hold values as QVariant (a null QVariant is the null value; whole numbers become doubles).
ReportValue ValueOf(const QVariant& variant)
{
    switch (variant.typeId()) {
    case QMetaType::QString: return variant.toString();
    case QMetaType::Int:
    case QMetaType::Double: return variant.toDouble();
    case QMetaType::QDate: return variant.toDate();
    case QMetaType::QTime: return variant.toTime();
    case QMetaType::QDateTime: return variant.toDateTime();
    case QMetaType::Bool: return variant.toBool();
    default: return {};
    }
}

void AddFormatColumns()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("expected");
}

void CheckFormat(DisplayKind kind)
{
    QFETCH(QVariant, value);
    QFETCH(QString, format);
    QFETCH(QString, expected);
    QCOMPARE(FormatValue(ValueOf(value), {kind, format}), expected);
}

void CheckFormatOfRowKind(bool hideZeros)
{
    QFETCH(QVariant, value);
    QFETCH(QString, format);
    QFETCH(QString, expected);
    QFETCH(int, kind);
    QCOMPARE(FormatValue(ValueOf(value), {static_cast<DisplayKind>(kind), format}, hideZeros), expected);
}
} // namespace

class TestReportFormat : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void defaultTexts_data();
    void defaultTexts();
    void percentFormats_data();
    void percentFormats() { CheckFormat(DisplayKind::Numeric); }
    void pictureFormats_data();
    void pictureFormats() { CheckFormat(DisplayKind::Numeric); }
    void dateFormats_data();
    void dateFormats() { CheckFormat(DisplayKind::DateTime); }
    void booleanFormats_data();
    void booleanFormats() { CheckFormat(DisplayKind::Boolean); }
    void hiddenZeros_data();
    void hiddenZeros();
    void inlineFormats_data();
    void inlineFormats();
    void malformedFormats_data();
    void malformedFormats();
};

void TestReportFormat::defaultTexts_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("expected");
    QTest::newRow("null") << QVariant() << u""_s;
    QTest::newRow("text") << QVariant(u"Krowa 12"_s) << u"Krowa 12"_s;
    QTest::newRow("whole number") << QVariant(5.0) << u"5"_s;
    QTest::newRow("negative whole number") << QVariant(-3.0) << u"-3"_s;
    QTest::newRow("fraction") << QVariant(2.5) << u"2,5"_s;
    QTest::newRow("binary noise is rounded away") << QVariant(0.1 + 0.2) << u"0,3"_s;
    QTest::newRow("no thousands separator") << QVariant(1234567.891) << u"1234567,891"_s;
    QTest::newRow("small fraction") << QVariant(0.00012) << u"0,00012"_s;
    QTest::newRow("date") << QVariant(Friday) << u"05.01.2024"_s;
    QTest::newRow("time") << QVariant(QTime(7, 5, 3)) << u"07:05:03"_s;
    QTest::newRow("date and time") << QVariant(TuesdayAfternoon) << u"05.11.2024 14:07:09"_s;
    QTest::newRow("true") << QVariant(true) << u"True"_s;
    QTest::newRow("false") << QVariant(false) << u"False"_s;
}

void TestReportFormat::defaultTexts()
{
    QFETCH(QVariant, value);
    QFETCH(QString, expected);
    QCOMPARE(DefaultText(ValueOf(value)), expected);
    QCOMPARE(FormatValue(ValueOf(value), {}), expected);
}

void TestReportFormat::percentFormats_data()
{
    AddFormatColumns();
    QTest::newRow("%2.2f") << QVariant(3.14159) << u"%2.2f"_s << u"3,14"_s;
    QTest::newRow("width pads on the left") << QVariant(2.0) << u"%5.2f"_s << u" 2,00"_s;
    QTest::newRow("minus pads on the right") << QVariant(7.5) << u"%-6.1f|"_s << u"7,5   |"_s;
    QTest::newRow("half rounds up") << QVariant(2.5) << u"%.0f"_s << u"3"_s;
    QTest::newRow("decimal rounding") << QVariant(2.675) << u"%.2f"_s << u"2,68"_s;
    QTest::newRow("f defaults to 2 decimals") << QVariant(4.0) << u"%f"_s << u"4,00"_s;
    QTest::newRow("d rounds") << QVariant(4.6) << u"%d"_s << u"5"_s;
    QTest::newRow("d rounds negatives") << QVariant(-4.6) << u"%d"_s << u"-5"_s;
    QTest::newRow("d precision is minimum digits") << QVariant(7.0) << u"%.3d"_s << u"007"_s;
    QTest::newRow("n groups thousands") << QVariant(1234567.891) << u"%n"_s << u"1\u00A0234\u00A0567,89"_s;
    QTest::newRow("m as n") << QVariant(1234.5) << u"%m"_s << u"1\u00A0234,50"_s;
    QTest::newRow("literal after") << QVariant(1234.5) << u"%2.2f zł"_s << u"1234,50 zł"_s;
    QTest::newRow("literals around") << QVariant(12.4) << u"Wiek: %2.0f mies."_s << u"Wiek: 12 mies."_s;
    QTest::newRow("escaped percent") << QVariant(50.0) << u"%d%%"_s << u"50%"_s;
    QTest::newRow("g fraction") << QVariant(0.5) << u"%g"_s << u"0,5"_s;
    QTest::newRow("g whole") << QVariant(100.0) << u"%g"_s << u"100"_s;
    QTest::newRow("e") << QVariant(1234.5) << u"%e"_s << u"1,23450000000000E+003"_s;
    QTest::newRow("e precision") << QVariant(1234.5) << u"%.3e"_s << u"1,23E+003"_s;
    QTest::newRow("no negative zero") << QVariant(-0.001) << u"%.2f"_s << u"0,00"_s;
    QTest::newRow("text with comma") << QVariant(u"12,5"_s) << u"%2.2f"_s << u"12,50"_s;
    QTest::newRow("text with point") << QVariant(u" 12.5 "_s) << u"%2.2f"_s << u"12,50"_s;
    QTest::newRow("other text unchanged") << QVariant(u"brak"_s) << u"%2.2f"_s << u"brak"_s;
    QTest::newRow("null") << QVariant() << u"%2.2f"_s << u""_s;
}

void TestReportFormat::pictureFormats_data()
{
    AddFormatColumns();
    QTest::newRow("thousands and decimals") << QVariant(1234.5) << u"#,##0.00"_s << u"1\u00A0234,50"_s;
    QTest::newRow("negative") << QVariant(-1234.5) << u"#,##0.00"_s << u"-1\u00A0234,50"_s;
    QTest::newRow("millions") << QVariant(1234567.0) << u"#,##0"_s << u"1\u00A0234\u00A0567"_s;
    QTest::newRow("rounding carries") << QVariant(999.996) << u"#,##0.00"_s << u"1\u00A0000,00"_s;
    QTest::newRow("zero keeps required digits") << QVariant(0.0) << u"#,##0.00"_s << u"0,00"_s;
    QTest::newRow("leading zero") << QVariant(0.5) << u"0.00"_s << u"0,50"_s;
    QTest::newRow("optional digits") << QVariant(0.5) << u"#.##"_s << u",5"_s;
    QTest::newRow("optional digits of zero") << QVariant(0.0) << u"#.##"_s << u""_s;
    QTest::newRow("no separator without fraction") << QVariant(1234.0) << u"#.##"_s << u"1234"_s;
    QTest::newRow("hash") << QVariant(1234.0) << u"#"_s << u"1234"_s;
    QTest::newRow("zero rounds half up") << QVariant(0.5) << u"0"_s << u"1"_s;
    QTest::newRow("optional decimals used") << QVariant(3.14159) << u"0.0##"_s << u"3,142"_s;
    QTest::newRow("optional decimals dropped") << QVariant(3.1) << u"0.0##"_s << u"3,1"_s;
    QTest::newRow("negative section") << QVariant(-1234.5) << u"#,##0.00;(#,##0.00)"_s << u"(1\u00A0234,50)"_s;
    QTest::newRow("zero section") << QVariant(0.0) << u"#,##0.00;;Zero"_s << u"Zero"_s;
    QTest::newRow("empty negative section") << QVariant(-5.0) << u"#,##0.00;;Zero"_s << u"-5,00"_s;
    QTest::newRow("quoted zero section") << QVariant(0.0) << u"0.00;-0.00;'brak'"_s << u"brak"_s;
    QTest::newRow("literal between digits") << QVariant(12345.0) << u"00-000"_s << u"12-345"_s;
    QTest::newRow("literal between required digits") << QVariant(1234.0) << u"00-000"_s << u"01-234"_s;
    QTest::newRow("percent is a literal") << QVariant(12.34) << u"0.0%"_s << u"12,3%"_s;
    QTest::newRow("quoted suffix") << QVariant(1234.5) << u"#,##0.00 'zł'"_s << u"1\u00A0234,50 zł"_s;
    QTest::newRow("numeric text") << QVariant(u"1234,5"_s) << u"#,##0.00"_s << u"1\u00A0234,50"_s;
}

void TestReportFormat::dateFormats_data()
{
    AddFormatColumns();
    QTest::newRow("dd.mm.yyyy") << QVariant(Friday) << u"dd.mm.yyyy"_s << u"05.01.2024"_s;
    QTest::newRow("short parts") << QVariant(Friday) << u"d.m.yy"_s << u"5.1.24"_s;
    QTest::newRow("upper case") << QVariant(Friday) << u"DD.MM.YYYY"_s << u"05.01.2024"_s;
    QTest::newRow("slash is the date separator") << QVariant(Friday) << u"dd/mm/yyyy"_s << u"05.01.2024"_s;
    QTest::newRow("Polish names") << QVariant(Friday) << u"dddd, d mmmm yyyy"_s << u"piątek, 5 styczeń 2024"_s;
    QTest::newRow("short day name") << QVariant(Friday) << u"ddd"_s << u"pt."_s;
    QTest::newRow("short month name") << QVariant(Friday) << u"mmm yyyy"_s << u"sty 2024"_s;
    QTest::newRow("November") << QVariant(TuesdayAfternoon) << u"mmmm"_s << u"listopad"_s;
    QTest::newRow("ddddd") << QVariant(Friday) << u"ddddd"_s << u"05.01.2024"_s;
    QTest::newRow("dddddd") << QVariant(Friday) << u"dddddd"_s << u"5 stycznia 2024"_s;
    QTest::newRow("m after h is minutes") << QVariant(TuesdayAfternoon) << u"hh:mm"_s << u"14:07"_s;
    QTest::newRow("months and minutes") << QVariant(TuesdayAfternoon) << u"mm/dd hh:mm"_s << u"11.05 14:07"_s;
    QTest::newRow("full") << QVariant(TuesdayAfternoon) << u"dd.mm.yyyy hh:nn:ss"_s << u"05.11.2024 14:07:09"_s;
    QTest::newRow("short time parts") << QVariant(TuesdayAfternoon) << u"h:n:s"_s << u"14:7:9"_s;
    QTest::newRow("c") << QVariant(TuesdayAfternoon) << u"c"_s << u"05.11.2024 14:07:09"_s;
    QTest::newRow("c at midnight") << QVariant(Friday) << u"c"_s << u"05.01.2024"_s;
    QTest::newRow("single quotes") << QVariant(Friday) << u"'dnia' d mmmm"_s << u"dnia 5 styczeń"_s;
    QTest::newRow("double quotes") << QVariant(Friday) << u"\"rok\" yyyy"_s << u"rok 2024"_s;
    QTest::newRow("unclosed quote") << QVariant(Friday) << u"yyyy 'dm"_s << u"2024 dm"_s;
    QTest::newRow("time") << QVariant(QTime(8, 30)) << u"hh:nn"_s << u"08:30"_s;
    QTest::newRow("ISO text") << QVariant(u"2024-01-05"_s) << u"dd.mm.yyyy"_s << u"05.01.2024"_s;
    QTest::newRow("Polish text") << QVariant(u"05.01.2024"_s) << u"yyyy-mm-dd"_s << u"2024-01-05"_s;
    QTest::newRow("other text") << QVariant(u"nie data"_s) << u"dd.mm.yyyy"_s << u"nie data"_s;
    QTest::newRow("number") << QVariant(5.0) << u"dd.mm.yyyy"_s << u"5"_s;
    QTest::newRow("empty format") << QVariant(Friday) << u""_s << u"05.01.2024"_s;
}

void TestReportFormat::booleanFormats_data()
{
    AddFormatColumns();
    QTest::newRow("true") << QVariant(true) << u"Tak,Nie"_s << u"Tak"_s;
    QTest::newRow("false") << QVariant(false) << u"Tak,Nie"_s << u"Nie"_s;
    QTest::newRow("semicolon") << QVariant(false) << u"Tak;Nie"_s << u"Nie"_s;
    QTest::newRow("non-zero number") << QVariant(2.0) << u"X,"_s << u"X"_s;
    QTest::newRow("zero number") << QVariant(0.0) << u"X,"_s << u""_s;
    QTest::newRow("TRUE text") << QVariant(u"TRUE"_s) << u"Tak,Nie"_s << u"Tak"_s;
    QTest::newRow("false text") << QVariant(u"false"_s) << u"Tak,Nie"_s << u"Nie"_s;
    QTest::newRow("1 text") << QVariant(u"1"_s) << u"Tak,Nie"_s << u"Tak"_s;
    QTest::newRow("0 text") << QVariant(u"0"_s) << u"Tak,Nie"_s << u"Nie"_s;
    QTest::newRow("empty format") << QVariant(true) << u""_s << u"True"_s;
    QTest::newRow("other text") << QVariant(u"może"_s) << u"Tak,Nie"_s << u"może"_s;
    QTest::newRow("null") << QVariant() << u"Tak,Nie"_s << u""_s;
}

void TestReportFormat::hiddenZeros_data()
{
    AddFormatColumns();
    QTest::addColumn<int>("kind");
    const auto numeric = static_cast<int>(DisplayKind::Numeric);
    const auto boolean = static_cast<int>(DisplayKind::Boolean);
    QTest::newRow("number") << QVariant(0.0) << u"%2.2f"_s << u""_s << numeric;
    QTest::newRow("numeric text") << QVariant(u"0,00"_s) << u"#,##0.00"_s << u""_s << numeric;
    QTest::newRow("text kind") << QVariant(0.0) << u""_s << u""_s << static_cast<int>(DisplayKind::Text);
    QTest::newRow("boolean kind") << QVariant(0.0) << u"Tak,Nie"_s << u""_s << boolean;
    QTest::newRow("non-zero") << QVariant(0.001) << u"0.00"_s << u"0,00"_s << numeric;
    QTest::newRow("false is no number") << QVariant(false) << u"Tak,Nie"_s << u"Nie"_s << boolean;
}

void TestReportFormat::hiddenZeros()
{
    CheckFormatOfRowKind(true);
}

void TestReportFormat::inlineFormats_data()
{
    QTest::addColumn<QString>("afterHash");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("format");
    const auto numeric = static_cast<int>(DisplayKind::Numeric);
    const auto date = static_cast<int>(DisplayKind::DateTime);
    QTest::newRow("n") << u"n%2.0f"_s << numeric << u"%2.0f"_s;
    QTest::newRow("upper-case N and space") << u"N %2.0f"_s << numeric << u"%2.0f"_s;
    QTest::newRow("only one space dropped") << u"n  %d"_s << numeric << u" %d"_s;
    QTest::newRow("d with space") << u"d dd.mm.yyyy"_s << date << u"dd.mm.yyyy"_s;
    QTest::newRow("d without space") << u"ddd.mm.yyyy"_s << date << u"dd.mm.yyyy"_s;
    QTest::newRow("b") << u"b Tak,Nie"_s << static_cast<int>(DisplayKind::Boolean) << u"Tak,Nie"_s;
    QTest::newRow("unknown letter") << u"x abc"_s << static_cast<int>(DisplayKind::Text) << u""_s;
    QTest::newRow("empty") << u""_s << static_cast<int>(DisplayKind::Text) << u""_s;
}

void TestReportFormat::inlineFormats()
{
    QFETCH(QString, afterHash);
    QFETCH(int, kind);
    QFETCH(QString, format);
    QCOMPARE(InlineFormat(afterHash), (DisplayFormat{static_cast<DisplayKind>(kind), format}));
}

void TestReportFormat::malformedFormats_data()
{
    AddFormatColumns();
    QTest::addColumn<int>("kind");
    const auto numeric = static_cast<int>(DisplayKind::Numeric);
    QTest::newRow("two conversions") << QVariant(5.0) << u"%d %d"_s << u"5"_s << numeric;
    QTest::newRow("unknown conversion") << QVariant(5.0) << u"%q"_s << u"5"_s << numeric;
    QTest::newRow("conversion without letter") << QVariant(2.5) << u"%5.2"_s << u"2,5"_s << numeric;
    QTest::newRow("lone percent") << QVariant(2.5) << u"%"_s << u"2,5"_s << numeric;
    QTest::newRow("huge width") << QVariant(5.0) << u"%99999999999d"_s << u"5"_s << numeric;
    QTest::newRow("huge precision") << QVariant(5.0) << u"%.999f"_s << u"5"_s << numeric;
    QTest::newRow("no placeholders") << QVariant(5.0) << u"abc;;;"_s << u"5"_s << numeric;
    QTest::newRow("infinity") << QVariant(qInf()) << u"#,##0.00"_s << u"inf"_s << numeric;
    QTest::newRow("no boolean separator")
        << QVariant(true) << u"TakNie"_s << u"True"_s << static_cast<int>(DisplayKind::Boolean);
}

void TestReportFormat::malformedFormats()
{
    CheckFormatOfRowKind(false);
}

QTEST_MAIN(TestReportFormat)
#include "test_report_format.moc"
