#include "registry/records/RecordFields.h"

#include <QDateTime>
#include <QRegularExpression>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {
QString Describe(const QJsonValue& value)
{
    if (value.isString())
        return value.toString();
    const QByteArray json = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(json.mid(1, json.size() - 2));
}

[[noreturn]] void Fail(const char* key, const QJsonValue& value)
{
    throw ConversionError(QLatin1String(key), Describe(value));
}

QString Cut(const QString& text, qsizetype size)
{
    return text.size() > size ? text.left(size) : text;
}
} // namespace

ConversionError::ConversionError(const QString& key, const QString& value)
    : HalvarnError(u"Błąd konwersji: pole \"%1\", wartość \"%2\""_s.arg(key, value))
{}

bool IsPresent(const QJsonValue& value)
{
    return !value.isUndefined() && !value.isNull();
}

void Read(const QJsonObject& o, const char* key, qint32& target)
{
    const QJsonValue value = o.value(QLatin1String(key));
    if (!IsPresent(value))
        return;
    const double number = value.toDouble();
    if (!value.isDouble() || number != std::trunc(number) || number < -2147483648.0 || number > 2147483647.0)
        Fail(key, value);
    target = static_cast<qint32>(number);
}

void Read(const QJsonObject& o, const char* key, bool& target)
{
    const QJsonValue value = o.value(QLatin1String(key));
    if (!IsPresent(value))
        return;
    if (!value.isBool())
        Fail(key, value);
    target = value.toBool();
}

void Read(const QJsonObject& o, const char* key, double& target)
{
    const QJsonValue value = o.value(QLatin1String(key));
    if (!IsPresent(value))
        return;
    if (!value.isDouble())
        Fail(key, value);
    target = value.toDouble();
}

void Read(const QJsonObject& o, const char* key, QString& target)
{
    const QJsonValue value = o.value(QLatin1String(key));
    if (!IsPresent(value))
        return;
    if (!value.isString())
        Fail(key, value);
    target = value.toString();
}

// A pair whose value is not an object stays empty, as does a missing key.
void Read(const QJsonObject& o, const char* key, KodOpis& target)
{
    const QJsonValue value = o.value(QLatin1String(key));
    if (!value.isObject())
        return;
    const QJsonObject pair = value.toObject();
    const QJsonValue kod = pair.value(u"kod");
    const QJsonValue opis = pair.value(u"opis");
    target.kod = kod.isString() ? Cut(kod.toString(), 30) : QString();
    target.opis = opis.isString() ? Cut(opis.toString(), 200) : QString();
}

void ReadDate(const QJsonObject& o, const char* key, TDateTime& target)
{
    const QJsonValue value = o.value(QLatin1String(key));
    if (!IsPresent(value))
        return;
    if (!value.isString() || !ParseRegistryDate(value.toString(), target))
        Fail(key, value);
}

void ReadDateTime(const QJsonObject& o, const char* key, TDateTime& target)
{
    const QJsonValue value = o.value(QLatin1String(key));
    if (!IsPresent(value))
        return;
    QString text = value.isString() ? value.toString() : QString();
    const qsizetype t = text.indexOf(u'T');
    if (t >= 0)
        text[t] = u' ';
    if (!value.isString() || !ParseRegistryDate(text, target))
        Fail(key, value);
}

QString TextOf(const QJsonObject& o, const char* key)
{
    return o.value(QLatin1String(key)).toString();
}

// The zone, when given, is not applied: the registry writes its own local time
// and the program shows dates as the registry wrote them.
bool ParseRegistryDate(QString text, TDateTime& value)
{
    static const QRegularExpression form(
        uR"(^(\d{4})-(\d{2})-(\d{2})(?:[T ](\d{2}):(\d{2})(?::(\d{2})(?:[.,](\d+))?)?)?(?:Z|[+-]\d{2}:?\d{2})?$)"_s);
    const QRegularExpressionMatch m = form.match(text.trimmed());
    if (!m.hasMatch())
        return false;
    const QDate date(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt());
    const int hour = m.captured(4).toInt();
    const int minute = m.captured(5).toInt();
    const int second = m.captured(6).toInt();
    const double fraction = m.captured(7).isEmpty() ? 0.0 : (u"0."_s + m.captured(7)).toDouble();
    if (!date.isValid() || hour > 23 || minute > 59 || second > 59)
        return false;
    value = ToDateTime(date) + (hour * 3600 + minute * 60 + second + fraction) / 86400.0;
    return true;
}
