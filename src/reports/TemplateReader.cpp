#include "reports/TemplateReader.h"

#include "framework/Cp1250.h"

#include <QByteArrayView>
#include <QFile>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <utility>

using namespace Qt::StringLiterals;

namespace {
// Names as the templates spell them, in the order of the matching enumerators (or bits).
using Names = std::span<const QStringView>;
constexpr QStringView BandElements[] = {
    u"TfrxReportTitle",   u"TfrxReportSummary", u"TfrxPageHeader",  u"TfrxPageFooter", u"TfrxColumnHeader",
    u"TfrxColumnFooter",  u"TfrxHeader",        u"TfrxFooter",      u"TfrxMasterData", u"TfrxDetailData",
    u"TfrxSubdetailData", u"TfrxGroupHeader",   u"TfrxGroupFooter", u"TfrxChild",      u"TfrxOverlay"};
constexpr QStringView ObjectElements[] = {u"TfrxMemoView", u"TfrxSysMemoView", u"TfrxLineView", u"TfrxShapeView",
                                          u"TfrxPictureView"};
constexpr QStringView Booleans[] = {u"False", u"True"};
constexpr QStringView Orientations[] = {u"poPortrait", u"poLandscape"};
constexpr QStringView HAligns[] = {u"haLeft", u"haRight", u"haCenter", u"haBlock"};
constexpr QStringView VAligns[] = {u"vaTop", u"vaCenter", u"vaBottom"};
constexpr QStringView StretchModes[] = {u"smDontStretch", u"smActualHeight", u"smMaxHeight"};
constexpr QStringView DisplayKinds[] = {u"fkText", u"fkNumeric", u"fkDateTime", u"fkBoolean"};
constexpr QStringView ShapeKinds[] = {u"skRectangle", u"skRoundRectangle", u"skEllipse",  u"skTriangle",
                                      u"skDiamond",   u"skDiagonal1",      u"skDiagonal2"};
constexpr QStringView FrameSides[] = {u"ftLeft", u"ftRight", u"ftTop", u"ftBottom"};
constexpr QStringView FontStyles[] = {u"fsBold", u"fsItalic", u"fsUnderline", u"fsStrikeOut"};

// Colours as the templates store them: 0x00BBGGRR; system colours are negative.
constexpr qint64 ColorNone = 0x1FFFFFFF;
constexpr qint64 ColorDefault = 0x20000000;
constexpr qint64 SystemColor = -0x01000000;
struct NamedColor {
    QStringView name;
    qint64 value;
};
// clang-format off
constexpr NamedColor ColorNames[] = {
    {u"clBlack", 0x000000},     {u"clMaroon", 0x000080},   {u"clGreen", 0x008000},  {u"clOlive", 0x008080},
    {u"clNavy", 0x800000},      {u"clPurple", 0x800080},   {u"clTeal", 0x808000},   {u"clGray", 0x808080},
    {u"clSilver", 0xC0C0C0},    {u"clRed", 0x0000FF},      {u"clLime", 0x00FF00},   {u"clYellow", 0x00FFFF},
    {u"clBlue", 0xFF0000},      {u"clFuchsia", 0xFF00FF},  {u"clAqua", 0xFFFF00},   {u"clWhite", 0xFFFFFF},
    {u"clLtGray", 0xC0C0C0},    {u"clDkGray", 0x808080},   {u"clMedGray", 0xA4A0A0}, {u"clCream", 0xF0FBFF},
    {u"clMoneyGreen", 0xC0DCC0}, {u"clSkyBlue", 0xF0CAA6}, {u"clNone", ColorNone},  {u"clDefault", ColorDefault},
    {u"clBtnFace", SystemColor + 15}, {u"clWindow", SystemColor + 5}, {u"clWindowText", SystemColor + 8}};
// clang-format on
// The usual Windows scheme, indexed by the system colour's number; a template saved there looked like this.
constexpr QRgb SystemColors[] = {0xC8C8C8, 0x000000, 0x99B4D1, 0xBFCDDB, 0xF0F0F0, 0xFFFFFF, 0x646464, 0x000000,
                                 0x000000, 0x000000, 0xB4B4B4, 0xF4F7FC, 0xABABAB, 0x0078D7, 0xFFFFFF, 0xF0F0F0,
                                 0xA0A0A0, 0x6D6D6D, 0x000000, 0x000000, 0xFFFFFF, 0x696969, 0xE3E3E3, 0x000000,
                                 0xFFFFE1, 0xF0F0F0, 0x0066CC, 0xB9D1EA, 0xD7E4F2, 0x3399FF, 0xF0F0F0};

std::optional<int> IndexOf(QStringView text, Names names)
{
    for (std::size_t i = 0; i < names.size(); ++i)
        if (text.compare(names[i], Qt::CaseInsensitive) == 0)
            return static_cast<int>(i);
    return std::nullopt;
}

template <typename Enum> std::optional<Enum> Lookup(QStringView text, Names names)
{
    const std::optional<int> index = IndexOf(text.trimmed(), names);
    return index ? std::optional(static_cast<Enum>(*index)) : std::nullopt;
}

std::optional<qint64> LookupColorName(QStringView text)
{
    for (const NamedColor& color : ColorNames)
        if (text.compare(color.name, Qt::CaseInsensitive) == 0)
            return color.value;
    return std::nullopt;
}

template <typename T> void Assign(T& target, const std::optional<T>& value)
{
    if (value)
        target = *value;
}

template <typename T> std::optional<T> Either(const std::optional<T>& first, const std::optional<T>& second)
{
    return first ? first : second;
}

// The length of the well-formed UTF-8 sequence starting at `at`, 0 when the bytes there are not one.
qsizetype Utf8SequenceLength(QByteArrayView bytes, qsizetype at)
{
    const auto lead = static_cast<unsigned char>(bytes[at]);
    if (lead < 0x80)
        return 1;
    const qsizetype length = (lead & 0xE0) == 0xC0 ? 2 : (lead & 0xF0) == 0xE0 ? 3 : (lead & 0xF8) == 0xF0 ? 4 : 0;
    if (length == 0 || at + length > bytes.size())
        return 0;
    char32_t code = lead & (0x7Fu >> length);
    for (qsizetype i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(bytes[at + i]);
        if ((next & 0xC0) != 0x80)
            return 0;
        code = (code << 6) | (next & 0x3Fu);
    }
    constexpr char32_t Shortest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    return code < Shortest[length] || code > 0x10FFFF || surrogate ? 0 : length;
}

// Old templates carry Windows-1250 bytes under a UTF-8 header.
QByteArray RepairedUtf8(const QByteArray& bytes)
{
    if (QByteArrayView(bytes).isValidUtf8())
        return bytes;
    QByteArray repaired;
    repaired.reserve(bytes.size() + bytes.size() / 8);
    for (qsizetype at = 0; at < bytes.size();) {
        const qsizetype length = Utf8SequenceLength(bytes, at);
        if (length > 0)
            repaired.append(bytes.sliced(at, length));
        else
            repaired.append(FromCp1250(bytes.sliced(at, 1)).toUtf8());
        at += std::max<qsizetype>(length, 1);
    }
    return repaired;
}

std::optional<double> ParseNumber(QStringView text)
{
    bool ok = false;
    const double value = text.trimmed().toString().replace(u',', u'.').toDouble(&ok);
    return ok && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::optional<int> ParseInteger(QStringView text)
{
    bool ok = false;
    const int value = text.trimmed().toInt(&ok);
    return ok ? std::optional(value) : std::nullopt;
}

// A bit mask either as a number or as a set of names: "[ftLeft,ftTop]".
std::optional<int> ParseBits(QStringView text, Names names)
{
    text = text.trimmed();
    if (!text.startsWith(u'['))
        return ParseInteger(text);
    int bits = 0;
    for (QStringView name : text.mid(1).chopped(text.endsWith(u']') ? 1 : 0).split(u','))
        if (const std::optional<int> bit = IndexOf(name.trimmed(), names))
            bits |= 1 << *bit;
    return bits;
}

std::optional<qint64> ParseColorNumber(QStringView text)
{
    text = text.trimmed();
    bool ok = false;
    qint64 value = 0;
    if (text.startsWith(u'$'))
        value = text.mid(1).toLongLong(&ok, 16);
    else if (text.startsWith(u"&H", Qt::CaseInsensitive))
        value = text.mid(2).chopped(text.endsWith(u'&') ? 1 : 0).toLongLong(&ok, 16);
    else if (text.startsWith(u"0x", Qt::CaseInsensitive))
        value = text.mid(2).toLongLong(&ok, 16);
    else
        value = text.toLongLong(&ok);
    if (!ok || value < std::numeric_limits<qint32>::min() || value > std::numeric_limits<quint32>::max())
        return std::nullopt;
    // "$FF00000F" and -16777201 are the same system colour.
    return value > std::numeric_limits<qint32>::max() ? value - (qint64{1} << 32) : value;
}

QColor ColorFromNumber(qint64 value, const QColor& fallback)
{
    if (value == ColorNone)
        return {};
    if (value == ColorDefault)
        return fallback;
    if (value < 0) {
        const auto index = static_cast<std::size_t>(value & 0xFF);
        return QColor(index < std::size(SystemColors) ? SystemColors[index] : 0xF0F0F0u);
    }
    return QColor(static_cast<int>(value & 0xFF), static_cast<int>((value >> 8) & 0xFF),
                  static_cast<int>((value >> 16) & 0xFF));
}

QColor ParseColor(QStringView text, const QColor& fallback)
{
    const std::optional<qint64> value = Either(LookupColorName(text.trimmed()), ParseColorNumber(text));
    return value ? ColorFromNumber(*value, fallback) : fallback;
}

QString WithLineBreaks(QString text)
{
    return text.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
}

QString WithoutQuotes(QString text)
{
    text = text.trimmed();
    if (text.size() >= 2 && text.startsWith(u'"') && text.endsWith(u'"'))
        return text.mid(1, text.size() - 2);
    return text;
}

// A start element's attributes; each reading gives nothing for a missing or unreadable value, so the caller's
// default stays.
class Attributes {
public:
    explicit Attributes(const QXmlStreamReader& reader) : attributes_(reader.attributes()) {}

    bool has(const QString& name) const { return attributes_.hasAttribute(name); }
    std::optional<QString> text(const QString& name) const
    {
        return has(name) ? std::optional(attributes_.value(name).toString()) : std::nullopt;
    }
    std::optional<double> number(const QString& name) const { return ParseNumber(attributes_.value(name)); }
    std::optional<int> integer(const QString& name) const { return ParseInteger(attributes_.value(name)); }
    std::optional<bool> flag(const QString& name) const { return Lookup<bool>(attributes_.value(name), Booleans); }
    std::optional<int> bits(const QString& name, Names names) const
    {
        return ParseBits(attributes_.value(name), names);
    }
    QColor color(const QString& name, const QColor& fallback) const
    {
        return ParseColor(attributes_.value(name), fallback);
    }
    template <typename Enum> std::optional<Enum> named(const QString& name, Names names) const
    {
        return Lookup<Enum>(attributes_.value(name), names);
    }

private:
    QXmlStreamAttributes attributes_;
};

void ListUnsupported(QStringList& unsupported, const QString& className, const QString& name)
{
    const QString entry = u"%1 %2: nieobsługiwany"_s.arg(className, name);
    if (!unsupported.contains(entry))
        unsupported.append(entry);
}

bool IsObjectElement(QStringView element)
{
    return element == u"TfrxSubreport" || (element.startsWith(u"Tfrx") && element.endsWith(u"View"));
}

bool IsMemoTextElement(QStringView element)
{
    return element == u"Memo" || element == u"Memo.Text";
}

std::optional<QString> TextAttribute(const Attributes& attributes)
{
    return Either(attributes.text(u"Text"_s), attributes.text(u"Memo.Text"_s));
}

// An older file's <Memo> child: its text content, or the Text attributes of the elements inside it. Whitespace
// between nested elements is layout, not text.
QString ReadNestedText(QXmlStreamReader& reader)
{
    QString text = TextAttribute(Attributes(reader)).value_or(QString());
    QString pendingWhitespace;
    for (int depth = 1; depth > 0 && !reader.atEnd();) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            ++depth;
            text += TextAttribute(Attributes(reader)).value_or(QString());
            pendingWhitespace.clear();
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            pendingWhitespace.clear();
            break;
        case QXmlStreamReader::Characters:
            pendingWhitespace += reader.text();
            if (!reader.isWhitespace())
                text += std::exchange(pendingWhitespace, QString());
            break;
        default: break;
        }
    }
    return text;
}

ReportFont ReadFont(const Attributes& attributes)
{
    ReportFont font;
    if (const QString family = attributes.text(u"Font.Name"_s).value_or(QString()).trimmed(); !family.isEmpty())
        font.family = family;
    if (const auto height = attributes.number(u"Font.Height"_s); height && *height != 0)
        font.pixelSize = std::abs(*height);
    if (const auto points = attributes.number(u"Font.Size"_s); points && *points > 0)
        font.pixelSize = *points * 96.0 / 72.0;
    const int style = attributes.bits(u"Font.Style"_s, FontStyles).value_or(0);
    font.bold = (style & 1) != 0;
    font.italic = (style & 2) != 0;
    font.underline = (style & 4) != 0;
    font.strikeOut = (style & 8) != 0;
    font.color = attributes.color(u"Font.Color"_s, font.color);
    return font;
}

ReportFrame ReadFrame(const Attributes& attributes)
{
    ReportFrame frame;
    Assign(frame.sides, attributes.bits(u"Frame.Typ"_s, FrameSides));
    Assign(frame.width, attributes.number(u"Frame.Width"_s));
    frame.color = attributes.color(u"Frame.Color"_s, frame.color);
    return frame;
}

void ReadObjectAttributes(const Attributes& attributes, ReportObject& object)
{
    Assign(object.name, attributes.text(u"Name"_s));
    object.rect = QRectF(attributes.number(u"Left"_s).value_or(0.0), attributes.number(u"Top"_s).value_or(0.0),
                         attributes.number(u"Width"_s).value_or(0.0), attributes.number(u"Height"_s).value_or(0.0));
    Assign(object.visible, attributes.flag(u"Visible"_s));
    Assign(object.text, TextAttribute(attributes));
    Assign(object.hAlign, attributes.named<HAlign>(u"HAlign"_s, HAligns));
    Assign(object.vAlign, attributes.named<VAlign>(u"VAlign"_s, VAligns));
    Assign(object.wordWrap, attributes.flag(u"WordWrap"_s));
    Assign(object.gapX, attributes.number(u"GapX"_s));
    Assign(object.gapY, attributes.number(u"GapY"_s));
    Assign(object.autoWidth, attributes.flag(u"AutoWidth"_s));
    Assign(object.hideZeros, attributes.flag(u"HideZeros"_s));
    Assign(object.allowExpressions, attributes.flag(u"AllowExpressions"_s));
    Assign(object.stretchMode, attributes.named<StretchMode>(u"StretchMode"_s, StretchModes));
    Assign(object.rotation, attributes.number(u"Rotation"_s));
    object.font = ReadFont(attributes);
    Assign(object.format.kind, attributes.named<DisplayKind>(u"DisplayFormat.Kind"_s, DisplayKinds));
    Assign(object.format.formatStr, attributes.text(u"DisplayFormat.FormatStr"_s));
    object.fill = attributes.color(u"Color"_s, object.fill);
    object.fill = attributes.color(u"Fill.BackColor"_s, object.fill);
    object.frame = ReadFrame(attributes);
    Assign(object.diagonal, attributes.flag(u"Diagonal"_s));
    Assign(object.shape, attributes.named<ShapeKind>(u"Shape"_s, ShapeKinds));
}

ReportObject ReadObject(QXmlStreamReader& reader, QStringList& unsupported)
{
    ReportObject object;
    object.className = reader.name().toString();
    object.kind = Lookup<ObjectKind>(object.className, ObjectElements).value_or(ObjectKind::Unsupported);
    const Attributes attributes(reader);
    ReadObjectAttributes(attributes, object);
    if (object.kind == ObjectKind::Unsupported)
        ListUnsupported(unsupported, object.className, object.name);
    const bool textInAttribute = TextAttribute(attributes).has_value();
    while (reader.readNextStartElement()) {
        if (IsMemoTextElement(reader.name()) && !textInAttribute)
            object.text = ReadNestedText(reader);
        else
            reader.skipCurrentElement();
    }
    object.text = WithLineBreaks(object.text);
    return object;
}

void ReadBandAttributes(const Attributes& attributes, ReportBand& band)
{
    Assign(band.name, attributes.text(u"Name"_s));
    Assign(band.top, attributes.number(u"Top"_s));
    Assign(band.height, attributes.number(u"Height"_s));
    Assign(band.visible, attributes.flag(u"Visible"_s));
    if (const auto dataSet = Either(attributes.text(u"DataSetName"_s), attributes.text(u"DataSet"_s)))
        band.dataSet = WithoutQuotes(*dataSet);
    Assign(band.condition, attributes.text(u"Condition"_s));
    Assign(band.child, attributes.text(u"Child"_s));
    Assign(band.startNewPage, attributes.flag(u"StartNewPage"_s));
    Assign(band.reprintOnNewPage, attributes.flag(u"ReprintOnNewPage"_s));
    Assign(band.printIfDetailEmpty, attributes.flag(u"PrintIfDetailEmpty"_s));
    Assign(band.printIfEmpty, attributes.flag(u"PrintIfEmpty"_s));
    Assign(band.stretched, attributes.flag(u"Stretched"_s));
    Assign(band.allowSplit, attributes.flag(u"AllowSplit"_s));
    Assign(band.keepTogether, attributes.flag(u"KeepTogether"_s));
    Assign(band.printOnFirstPage, attributes.flag(u"PrintOnFirstPage"_s));
    Assign(band.printOnLastPage, attributes.flag(u"PrintOnLastPage"_s));
    Assign(band.rowCount, attributes.integer(u"RowCount"_s));
}

std::optional<ReportBand> ReadBand(QXmlStreamReader& reader, BandKind kind, QStringList& unsupported)
{
    ReportBand band;
    band.kind = kind;
    band.className = reader.name().toString();
    const Attributes attributes(reader);
    ReadBandAttributes(attributes, band);
    if (attributes.flag(u"Vertical"_s).value_or(false)) {
        ListUnsupported(unsupported, band.className, band.name);
        reader.skipCurrentElement();
        return std::nullopt;
    }
    while (reader.readNextStartElement()) {
        if (IsObjectElement(reader.name()))
            band.objects.push_back(ReadObject(reader, unsupported));
        else
            reader.skipCurrentElement();
    }
    return band;
}

ReportPageSetup ReadPageSetup(const Attributes& attributes)
{
    ReportPageSetup setup;
    Assign(setup.paperWidth, attributes.number(u"PaperWidth"_s));
    Assign(setup.paperHeight, attributes.number(u"PaperHeight"_s));
    Assign(setup.leftMargin, attributes.number(u"LeftMargin"_s));
    Assign(setup.rightMargin, attributes.number(u"RightMargin"_s));
    Assign(setup.topMargin, attributes.number(u"TopMargin"_s));
    Assign(setup.bottomMargin, attributes.number(u"BottomMargin"_s));
    Assign(setup.landscape, attributes.named<bool>(u"Orientation"_s, Orientations));
    Assign(setup.paperSize, attributes.integer(u"PaperSize"_s));
    return setup;
}

ReportPage ReadPage(QXmlStreamReader& reader, QStringList& unsupported)
{
    ReportPage page;
    const Attributes attributes(reader);
    Assign(page.name, attributes.text(u"Name"_s));
    Assign(page.visible, attributes.flag(u"Visible"_s));
    page.setup = ReadPageSetup(attributes);
    while (reader.readNextStartElement()) {
        if (const auto kind = Lookup<BandKind>(reader.name(), BandElements)) {
            if (auto band = ReadBand(reader, *kind, unsupported))
                page.bands.push_back(std::move(*band));
        } else if (IsObjectElement(reader.name())) {
            page.pageObjects.push_back(ReadObject(reader, unsupported));
        } else {
            reader.skipCurrentElement();
        }
    }
    std::stable_sort(page.bands.begin(), page.bands.end(),
                     [](const ReportBand& a, const ReportBand& b) { return a.top < b.top; });
    return page;
}

void CheckRoot(const QXmlStreamReader& reader, const QString& path)
{
    if (reader.name() == u"inherited" || reader.attributes().hasAttribute(u"ParentReport"_s))
        throw TemplateError(u"Szablon \"%1\" dziedziczy po innym szablonie, a szablony pochodne nie są obsługiwane. "
                            u"Zapisz go jako samodzielny raport."_s.arg(path));
    if (reader.name() != u"TfrxReport")
        throw TemplateError(
            u"Plik \"%1\" nie jest szablonem raportu (element główny <%2>)"_s.arg(path, reader.name().toString()));
}

void ReadReport(QXmlStreamReader& reader, ReportTemplate& report)
{
    Assign(report.reportName, Attributes(reader).text(u"ReportOptions.Name"_s));
    while (reader.readNextStartElement()) {
        if (reader.name() == u"TfrxReportPage")
            report.pages.push_back(ReadPage(reader, report.unsupported));
        else
            reader.skipCurrentElement();
    }
}

void CheckWellFormed(const QXmlStreamReader& reader, const QString& path)
{
    if (reader.hasError())
        throw TemplateError(u"Szablon \"%1\" jest uszkodzony (wiersz %2, kolumna %3): %4"_s.arg(
                                path, QString::number(reader.lineNumber()), QString::number(reader.columnNumber()),
                                reader.errorString()),
                            reader.lineNumber(), reader.columnNumber());
}
} // namespace

ReportTemplate ReadTemplate(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw TemplateError(u"Nie można odczytać szablonu \"%1\": %2"_s.arg(path, file.errorString()));
    return ReadTemplateData(file.readAll(), path);
}

ReportTemplate ReadTemplateData(const QByteArray& xml, const QString& path)
{
    if (xml.trimmed().isEmpty())
        throw TemplateError(u"Szablon \"%1\" jest pusty"_s.arg(path));
    // Read from text, so that an encoding named in the declaration cannot undo the repair.
    QXmlStreamReader reader(QString::fromUtf8(RepairedUtf8(xml)));
    ReportTemplate report;
    report.path = path;
    if (reader.readNextStartElement()) {
        CheckRoot(reader, path);
        ReadReport(reader, report);
    }
    while (!reader.atEnd())
        reader.readNext();
    CheckWellFormed(reader, path);
    return report;
}
