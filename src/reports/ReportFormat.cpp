#include "reports/ReportFormat.h"

#include <QLocale>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <optional>

using namespace Qt::StringLiterals;

namespace {
constexpr QChar ThousandsSeparator = QChar(0x00A0);
constexpr QChar DecimalSeparator = u',';
constexpr int MaxWidth = 256;
constexpr int MaxDecimals = 30;
constexpr double LargestPlainInteger = 1e15;

const QLocale& PolishLocale()
{
    static const QLocale locale(QLocale::Polish, QLocale::Poland);
    return locale;
}

QString NumberText(double number)
{
    if (std::abs(number) < LargestPlainInteger && number == std::trunc(number))
        return QString::number(static_cast<qint64>(number));
    return QString::number(number, 'g', 15).replace(u'.', DecimalSeparator);
}

struct FixedDigits {
    QString integer;  // at least one digit
    QString fraction; // exactly as many digits as asked for
};

bool IsZero(const FixedDigits& digits)
{
    const QString all = digits.integer + digits.fraction;
    return all.count(u'0') == all.size();
}

// Rounds half away from zero on the 15 significant digits a double is read as, so that 2.675 gives 2.68 as in
// Delphi, not 2.67 as its binary value would.
FixedDigits RoundedDigits(double magnitude, int decimals)
{
    const QString scientific = QString::number(magnitude, 'e', 14);
    const qsizetype exponentAt = scientific.indexOf(u'e');
    QString digits = scientific.left(exponentAt).remove(u'.');
    qsizetype integerLength = scientific.mid(exponentAt + 1).toInt() + 1;
    if (integerLength < 1) {
        digits.prepend(QString(1 - integerLength, u'0'));
        integerLength = 1;
    }
    const qsizetype kept = integerLength + decimals;
    digits = digits.leftJustified(kept + 1, u'0');
    bool carry = digits[kept] >= u'5';
    digits.truncate(kept);
    for (qsizetype at = kept - 1; carry && at >= 0; --at) {
        carry = digits[at] == u'9';
        digits[at] = carry ? u'0' : QChar(digits[at].unicode() + 1);
    }
    if (carry) {
        digits.prepend(u'1');
        ++integerLength;
    }
    return {digits.left(integerLength), digits.mid(integerLength)};
}

QString Grouped(const QString& digits)
{
    QString grouped;
    for (qsizetype at = 0; at < digits.size(); ++at) {
        if (at > 0 && (digits.size() - at) % 3 == 0)
            grouped += ThousandsSeparator;
        grouped += digits[at];
    }
    return grouped;
}

QString Signed(double number, const FixedDigits& digits, const QString& text)
{
    return number < 0 && !IsZero(digits) ? u'-' + text : text;
}

QString Decimal(double number, int decimals, bool grouped)
{
    const FixedDigits digits = RoundedDigits(std::abs(number), decimals);
    QString text = grouped ? Grouped(digits.integer) : digits.integer;
    if (!digits.fraction.isEmpty())
        text += DecimalSeparator + digits.fraction;
    return Signed(number, digits, text);
}

QString Integer(double number, int minimumDigits)
{
    const FixedDigits digits = RoundedDigits(std::abs(number), 0);
    return Signed(number, digits, digits.integer.rightJustified(minimumDigits, u'0'));
}

// Delphi's %e: the exponent has a sign and at least three digits.
QString Scientific(double number, int significantDigits)
{
    const QString text = QString::number(number, 'E', std::max(significantDigits, 1) - 1);
    const qsizetype exponentAt = text.indexOf(u'E') + 2;
    return text.left(exponentAt).replace(u'.', DecimalSeparator) + text.mid(exponentAt).rightJustified(3, u'0');
}

QString General(double number, int significantDigits)
{
    return QString::number(number, 'g', std::max(significantDigits, 1)).replace(u'.', DecimalSeparator).toUpper();
}

struct Conversion {
    bool leftAligned = false;
    int width = 0;
    int precision = -1; // none given
    QChar letter;
};

const QRegularExpression& ConversionPattern()
{
    static const QRegularExpression pattern(u"%%|%(?:\\d+:)?(-?)(\\d*)(?:(\\.)(\\d*))?([dufgenms])"_s,
                                            QRegularExpression::CaseInsensitiveOption);
    return pattern;
}

bool HasConversion(const QString& format)
{
    for (auto matches = ConversionPattern().globalMatch(format); matches.hasNext();)
        if (matches.next().captured() != u"%%")
            return true;
    return false;
}

std::optional<Conversion> ConversionOf(const QRegularExpressionMatch& match)
{
    bool widthOk = true, precisionOk = true;
    Conversion conversion;
    conversion.leftAligned = !match.captured(1).isEmpty();
    conversion.width = match.captured(2).isEmpty() ? 0 : match.captured(2).toInt(&widthOk);
    if (!match.captured(3).isEmpty())
        conversion.precision = match.captured(4).isEmpty() ? 0 : match.captured(4).toInt(&precisionOk);
    conversion.letter = match.captured(5).front().toLower();
    if (!widthOk || !precisionOk || conversion.width > MaxWidth || conversion.precision > MaxDecimals)
        return std::nullopt;
    return conversion;
}

QString Converted(double number, const Conversion& conversion)
{
    const int precision = conversion.precision;
    switch (conversion.letter.unicode()) {
    case u'd':
    case u'u': return Integer(number, std::max(precision, 1));
    case u'f': return Decimal(number, precision < 0 ? 2 : precision, false);
    case u'n':
    case u'm': return Decimal(number, precision < 0 ? 2 : precision, true);
    case u'e': return Scientific(number, precision < 0 ? 15 : precision);
    case u'g': return General(number, precision < 0 ? 15 : precision);
    default: return NumberText(number);
    }
}

QString Padded(const QString& text, const Conversion& conversion)
{
    return conversion.leftAligned ? text.leftJustified(conversion.width) : text.rightJustified(conversion.width);
}

// One value to format: a second conversion would have nothing to show, so the format counts as malformed.
std::optional<QString> ConversionText(double number, const QString& format)
{
    QString text;
    qsizetype literalFrom = 0;
    bool converted = false;
    for (auto matches = ConversionPattern().globalMatch(format); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        text += format.mid(literalFrom, match.capturedStart() - literalFrom);
        literalFrom = match.capturedEnd();
        if (match.captured() == u"%%") {
            text += u'%';
            continue;
        }
        const std::optional<Conversion> conversion = ConversionOf(match);
        if (converted || !conversion)
            return std::nullopt;
        text += Padded(Converted(number, *conversion), *conversion);
        converted = true;
    }
    return text + format.mid(literalFrom);
}

enum class PictureSymbol { Zero, Hash, Point, Comma, Literal };

struct PicturePart {
    PictureSymbol symbol;
    QString literal;
};

using Picture = QList<PicturePart>;

qsizetype ClosingQuote(QStringView format, qsizetype openingAt)
{
    const qsizetype closingAt = format.indexOf(format[openingAt], openingAt + 1);
    return closingAt < 0 ? format.size() : closingAt;
}

QList<QStringView> Sections(QStringView format)
{
    QList<QStringView> sections;
    qsizetype sectionFrom = 0;
    for (qsizetype at = 0; at < format.size(); ++at) {
        if (format[at] == u'\'' || format[at] == u'"')
            at = ClosingQuote(format, at);
        else if (format[at] == u';') {
            sections.append(format.mid(sectionFrom, at - sectionFrom));
            sectionFrom = at + 1;
        }
    }
    sections.append(format.mid(sectionFrom));
    return sections;
}

Picture PictureOf(QStringView section)
{
    Picture picture;
    bool pointSeen = false;
    for (qsizetype at = 0; at < section.size(); ++at) {
        const QChar symbol = section[at];
        if (symbol == u'\'' || symbol == u'"') {
            const qsizetype closingAt = ClosingQuote(section, at);
            picture.append({PictureSymbol::Literal, section.mid(at + 1, closingAt - at - 1).toString()});
            at = closingAt;
        } else if (symbol == u'0' || symbol == u'#') {
            picture.append({symbol == u'0' ? PictureSymbol::Zero : PictureSymbol::Hash, {}});
        } else if (symbol == u',') {
            picture.append({PictureSymbol::Comma, {}});
        } else if (symbol == u'.') {
            if (!pointSeen)
                picture.append({PictureSymbol::Point, {}});
            pointSeen = true;
        } else {
            picture.append({PictureSymbol::Literal, QString(symbol)});
        }
    }
    return picture;
}

bool IsPlaceholder(const PicturePart& part)
{
    return part.symbol == PictureSymbol::Zero || part.symbol == PictureSymbol::Hash;
}

struct PictureShape {
    int integerPlaceholders = 0;
    int requiredIntegerDigits = 0; // the placeholders from the first "0" on
    int fractionPlaceholders = 0;
    int requiredFractionDigits = 0; // the placeholders up to the last "0"
    bool grouped = false;
};

PictureShape ShapeOf(const Picture& picture)
{
    PictureShape shape;
    bool inFraction = false, zeroSeen = false;
    for (const PicturePart& part : picture) {
        const bool zero = part.symbol == PictureSymbol::Zero;
        if (part.symbol == PictureSymbol::Point)
            inFraction = true;
        else if (part.symbol == PictureSymbol::Comma)
            shape.grouped = shape.grouped || !inFraction;
        else if (IsPlaceholder(part) && inFraction) {
            ++shape.fractionPlaceholders;
            if (zero)
                shape.requiredFractionDigits = shape.fractionPlaceholders;
        } else if (IsPlaceholder(part)) {
            ++shape.integerPlaceholders;
            zeroSeen = zeroSeen || zero;
            shape.requiredIntegerDigits += zeroSeen ? 1 : 0;
        }
    }
    return shape;
}

// Integer digits fill the placeholders from the right; the ones without a placeholder go to the first.
QString Rendered(const Picture& picture, const PictureShape& shape, const FixedDigits& digits)
{
    const QString integer =
        (digits.integer == u"0" ? QString() : digits.integer).rightJustified(shape.requiredIntegerDigits, u'0');
    QString fraction = digits.fraction;
    while (fraction.size() > shape.requiredFractionDigits && fraction.endsWith(u'0'))
        fraction.chop(1);

    QString text;
    qsizetype integerPrinted = 0;
    const auto printIntegerUpTo = [&](qsizetype count) {
        for (; integerPrinted < count; ++integerPrinted) {
            text += integer[integerPrinted];
            const qsizetype remaining = integer.size() - integerPrinted - 1;
            if (shape.grouped && remaining > 0 && remaining % 3 == 0)
                text += ThousandsSeparator;
        }
    };
    int integerSlot = 0, fractionSlot = 0;
    bool inFraction = false;
    for (const PicturePart& part : picture) {
        if (IsPlaceholder(part) && !inFraction) {
            ++integerSlot;
            printIntegerUpTo(
                std::clamp<qsizetype>(integer.size() - shape.integerPlaceholders + integerSlot, 0, integer.size()));
        } else if (IsPlaceholder(part)) {
            if (fractionSlot < fraction.size())
                text += fraction[fractionSlot];
            ++fractionSlot;
        } else if (part.symbol == PictureSymbol::Point) {
            printIntegerUpTo(integer.size());
            inFraction = true;
            if (!fraction.isEmpty())
                text += DecimalSeparator;
        } else if (part.symbol == PictureSymbol::Literal) {
            const bool amidLeadingBlanks = integerSlot > 0 && integerSlot < shape.integerPlaceholders && !inFraction;
            if (!amidLeadingBlanks || integerPrinted > 0)
                text += part.literal;
        }
    }
    return text;
}

std::optional<QString> PictureText(double number, const QString& format)
{
    const Picture whole = PictureOf(format);
    if (std::none_of(whole.begin(), whole.end(), IsPlaceholder))
        return std::nullopt;
    const QList<QStringView> sections = Sections(format);
    qsizetype chosen = 0;
    if (number < 0 && sections.size() > 1 && !sections[1].isEmpty())
        chosen = 1;
    else if (number == 0 && sections.size() > 2 && !sections[2].isEmpty())
        chosen = 2;
    const Picture picture = PictureOf(sections[chosen]);
    const PictureShape shape = ShapeOf(picture);
    const FixedDigits digits = RoundedDigits(std::abs(number), shape.fractionPlaceholders);
    const QString text = Rendered(picture, shape, digits);
    return chosen == 0 ? Signed(number, digits, text) : text;
}

std::optional<QString> NumericText(const ReportValue& value, const QString& format)
{
    const std::optional<double> number = NumberIn(value);
    if (!number)
        return std::nullopt;
    if (format.isEmpty())
        return NumberText(*number);
    return HasConversion(format) ? ConversionText(*number, format) : PictureText(*number, format);
}

std::optional<QDateTime> MomentIn(const ReportValue& value)
{
    if (const auto* moment = std::get_if<QDateTime>(&value))
        return moment->isValid() ? std::optional(*moment) : std::nullopt;
    if (const auto* date = std::get_if<QDate>(&value))
        return date->isValid() ? std::optional(date->startOfDay()) : std::nullopt;
    if (const auto* time = std::get_if<QTime>(&value)) // a bare time sits on day 0 of Delphi's calendar
        return time->isValid() ? std::optional(QDateTime(QDate(1899, 12, 30), *time)) : std::nullopt;
    const auto* text = std::get_if<QString>(&value);
    if (!text)
        return std::nullopt;
    for (const QString& pattern : {u"dd.MM.yyyy"_s, u"yyyy-MM-dd"_s, u"dd.MM.yyyy hh:mm:ss"_s, u"yyyy-MM-dd hh:mm:ss"_s,
                                   u"yyyy-MM-ddThh:mm:ss"_s}) {
        const QDateTime moment = QDateTime::fromString(text->trimmed(), pattern);
        if (moment.isValid())
            return moment;
    }
    return std::nullopt;
}

struct DateToken {
    QChar letter; // null for a literal
    qsizetype count = 0;
    QString literal;
};

QList<DateToken> DateTokens(QStringView pattern)
{
    QList<DateToken> tokens;
    for (qsizetype at = 0; at < pattern.size();) {
        const QChar symbol = pattern[at];
        const QChar letter = symbol.toLower();
        if (symbol == u'\'' || symbol == u'"') {
            const qsizetype closingAt = ClosingQuote(pattern, at);
            tokens.append({{}, 0, pattern.mid(at + 1, closingAt - at - 1).toString()});
            at = closingAt + 1;
        } else if (u"cdmyhnszt"_s.contains(letter)) {
            qsizetype runEnd = at + 1;
            while (runEnd < pattern.size() && pattern[runEnd].toLower() == letter)
                ++runEnd;
            tokens.append({letter, runEnd - at, {}});
            at = runEnd;
        } else {
            tokens.append({{}, 0, symbol == u'/' ? QString(u'.') : QString(symbol)}); // the Polish date separator
            ++at;
        }
    }
    return tokens;
}

QString TwoDigitsIf(bool twoDigits, int number)
{
    return twoDigits ? QString::number(number).rightJustified(2, u'0') : QString::number(number);
}

QString DayPart(const QDate& date, qsizetype count)
{
    switch (count) {
    case 1:
    case 2: return TwoDigitsIf(count == 2, date.day());
    case 3: return PolishLocale().dayName(date.dayOfWeek(), QLocale::ShortFormat);
    case 4: return PolishLocale().dayName(date.dayOfWeek(), QLocale::LongFormat);
    case 5: return DefaultText(date);
    default: return PolishLocale().toString(date, u"d MMMM yyyy"_s); // genitive month: "5 stycznia 2024"
    }
}

QString MonthPart(const QDate& date, qsizetype count)
{
    if (count <= 2)
        return TwoDigitsIf(count == 2, date.month());
    return PolishLocale().standaloneMonthName(date.month(), count == 3 ? QLocale::ShortFormat : QLocale::LongFormat);
}

QString DatePart(const QDateTime& moment, const DateToken& token)
{
    const QTime time = moment.time();
    const bool twoDigits = token.count >= 2;
    switch (token.letter.unicode()) {
    case u'c': return DefaultText(moment.date()) + (time == QTime(0, 0) ? QString() : u' ' + DefaultText(time));
    case u'd': return DayPart(moment.date(), token.count);
    case u'm': return MonthPart(moment.date(), token.count);
    case u'y':
        return token.count <= 2 ? TwoDigitsIf(true, moment.date().year() % 100)
                                : QString::number(moment.date().year()).rightJustified(4, u'0');
    case u'h': return TwoDigitsIf(twoDigits, time.hour());
    case u'n': return TwoDigitsIf(twoDigits, time.minute());
    case u's': return TwoDigitsIf(twoDigits, time.second());
    case u'z': return twoDigits ? QString::number(time.msec()).rightJustified(3, u'0') : QString::number(time.msec());
    default: return time.toString(twoDigits ? u"hh:mm:ss"_s : u"hh:mm"_s);
    }
}

std::optional<QString> DateTimeText(const ReportValue& value, const QString& format)
{
    const std::optional<QDateTime> moment = MomentIn(value);
    if (!moment || format.isEmpty())
        return std::nullopt;
    QString text;
    QChar previousLetter;
    for (DateToken token : DateTokens(format)) {
        if (token.letter.isNull()) {
            text += token.literal;
            continue;
        }
        if (token.letter == u'm' && token.count <= 2 && previousLetter == u'h')
            token.letter = u'n';
        text += DatePart(*moment, token);
        previousLetter = token.letter;
    }
    return text;
}

std::optional<bool> TruthIn(const ReportValue& value)
{
    if (const auto* flag = std::get_if<bool>(&value))
        return *flag;
    if (const auto* text = std::get_if<QString>(&value)) {
        if (text->trimmed().compare(u"true"_s, Qt::CaseInsensitive) == 0)
            return true;
        if (text->trimmed().compare(u"false"_s, Qt::CaseInsensitive) == 0)
            return false;
    }
    const std::optional<double> number = NumberIn(value);
    return number ? std::optional(*number != 0.0) : std::nullopt;
}

std::optional<QString> BooleanText(const ReportValue& value, const QString& format)
{
    const std::optional<bool> truth = TruthIn(value);
    if (!truth)
        return std::nullopt;
    if (format.isEmpty())
        return DefaultText(*truth);
    const auto separator = std::find_if(format.begin(), format.end(), [](QChar c) { return c == u',' || c == u';'; });
    if (separator == format.end())
        return std::nullopt;
    const qsizetype separatorAt = separator - format.begin();
    return *truth ? format.left(separatorAt) : format.mid(separatorAt + 1);
}

std::optional<QString> FormattedText(const ReportValue& value, const DisplayFormat& format)
{
    switch (format.kind) {
    case DisplayKind::Numeric: return NumericText(value, format.formatStr);
    case DisplayKind::DateTime: return DateTimeText(value, format.formatStr);
    case DisplayKind::Boolean: return BooleanText(value, format.formatStr);
    case DisplayKind::Text: break;
    }
    return std::nullopt;
}

std::optional<DisplayKind> InlineKind(QChar letter)
{
    switch (letter.toLower().unicode()) {
    case u'n': return DisplayKind::Numeric;
    case u'd': return DisplayKind::DateTime;
    case u'b': return DisplayKind::Boolean;
    default: return std::nullopt;
    }
}
} // namespace

QString DefaultText(const ReportValue& value)
{
    if (const auto* text = std::get_if<QString>(&value))
        return *text;
    if (const auto* number = std::get_if<double>(&value))
        return NumberText(*number);
    if (const auto* date = std::get_if<QDate>(&value))
        return date->toString(u"dd.MM.yyyy"_s);
    if (const auto* time = std::get_if<QTime>(&value))
        return time->toString(u"hh:mm:ss"_s);
    if (const auto* moment = std::get_if<QDateTime>(&value))
        return moment->toString(u"dd.MM.yyyy hh:mm:ss"_s);
    if (const auto* flag = std::get_if<bool>(&value))
        return *flag ? u"True"_s : u"False"_s;
    return {};
}

QString FormatValue(const ReportValue& value, const DisplayFormat& format, bool hideZeros)
{
    if (hideZeros && NumberIn(value) == 0.0)
        return {};
    if (const std::optional<QString> text = FormattedText(value, format))
        return *text;
    return DefaultText(value);
}

DisplayFormat InlineFormat(QStringView formatAfterHash)
{
    const std::optional<DisplayKind> kind =
        formatAfterHash.isEmpty() ? std::nullopt : InlineKind(formatAfterHash.front());
    if (!kind)
        return {};
    QStringView rest = formatAfterHash.mid(1);
    if (rest.startsWith(u' '))
        rest = rest.mid(1);
    return {*kind, rest.toString()};
}
