#include "core/archive/ArchiveValues.h"

#include "core/archive/ArchiveError.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSqlError>

using namespace Qt::StringLiterals;

namespace {
const QString IsoDate = u"yyyy-MM-dd"_s;
} // namespace

QVariant TextColumn(const QString& text)
{
    return text.isNull() ? QVariant(QString(u""_s)) : QVariant(text);
}

QVariant ToColumn(const FieldValue& value)
{
    struct Visitor {
        QVariant operator()(std::monostate) const { return {}; }
        QVariant operator()(const QString& text) const { return TextColumn(text); }
        QVariant operator()(qint32 number) const { return number; }
        QVariant operator()(QDate date) const { return TextColumn(date.toString(IsoDate)); }
        QVariant operator()(bool flag) const { return flag ? 1 : 0; }
    };
    return std::visit(Visitor{}, value);
}

FieldValue FromColumn(FieldType type, const QVariant& column)
{
    if (column.isNull())
        return {};
    switch (type) {
    case FieldType::String:
    case FieldType::Memo: return column.toString();
    case FieldType::Int16:
    case FieldType::Int32: return static_cast<qint32>(column.toInt());
    case FieldType::Date: return QDate::fromString(column.toString(), IsoDate);
    case FieldType::Boolean: return column.toInt() != 0;
    }
    return {};
}

QVariant DateColumn(QDate date)
{
    return date.isValid() ? QVariant(date.toString(IsoDate)) : QVariant();
}

QDate DateFromColumn(const QVariant& column)
{
    return QDate::fromString(column.toString(), IsoDate);
}

QVariant OptionalBoolColumn(const std::optional<bool>& value)
{
    return value ? QVariant(*value ? 1 : 0) : QVariant();
}

std::optional<bool> OptionalBoolFromColumn(const QVariant& column)
{
    if (column.isNull())
        return std::nullopt;
    return column.toInt() != 0;
}

QString AgeLimitsText(const AgeLimits& limits)
{
    QJsonObject object;
    for (const AgeLimitKey& key : AgeLimitKeys())
        object.insert(QLatin1String(key.key), limits[key.limit]);
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

QString LinesText(const QStringList& lines)
{
    return QString::fromUtf8(QJsonDocument(QJsonArray::fromStringList(lines)).toJson(QJsonDocument::Compact));
}

QStringList LinesFromText(const QString& text)
{
    QStringList lines;
    for (const QJsonValue& line : QJsonDocument::fromJson(text.toUtf8()).array())
        lines.append(line.toString());
    return lines;
}

QVariant DeclaredLimitsColumn(const std::optional<DeclaredLimits>& limits)
{
    if (!limits)
        return {};
    QJsonArray numbers;
    for (int number : *limits)
        numbers.append(number);
    return QString::fromUtf8(QJsonDocument(numbers).toJson(QJsonDocument::Compact));
}

std::optional<DeclaredLimits> DeclaredLimitsFromColumn(const QVariant& column)
{
    if (column.isNull())
        return std::nullopt;
    const QJsonArray numbers = QJsonDocument::fromJson(column.toString().toUtf8()).array();
    DeclaredLimits limits{};
    for (std::size_t i = 0; i < limits.size(); ++i)
        limits[i] = numbers.at(static_cast<qsizetype>(i)).toInt();
    return limits;
}

void ExecOrThrow(QSqlQuery& query, const QString& doing)
{
    if (!query.exec())
        throw ArchiveError(doing + u": "_s + query.lastError().text());
}

QSqlQuery PreparedQuery(const QSqlDatabase& database, const QString& statement)
{
    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (!query.prepare(statement))
        throw ArchiveError(u"Błąd archiwum: "_s + query.lastError().text());
    return query;
}

QSqlQuery SelectOfDownload(const QSqlDatabase& database, const QString& statement, qint64 id)
{
    QSqlQuery query = PreparedQuery(database, statement);
    query.addBindValue(id);
    ExecOrThrow(query, u"Błąd odczytu archiwum"_s);
    return query;
}
