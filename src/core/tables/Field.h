#pragma once

#include <QDate>
#include <QString>

#include <variant>

enum class FieldType { String, Int16, Int32, Date, Boolean, Memo };

struct FieldDef {
    QString name;
    FieldType type = FieldType::String;
    int size = 0; // characters, for String fields only
};

// A field never set holds std::monostate (null).
using FieldValue = std::variant<std::monostate, QString, qint32, QDate, bool>;

inline bool IsNull(const FieldValue& v)
{
    return std::holds_alternative<std::monostate>(v);
}

QString AsString(const FieldValue& v);
qint32 AsInteger(const FieldValue& v);
QDate AsDate(const FieldValue& v);
bool AsBoolean(const FieldValue& v);

// The text a grid shows for a value: dates as dd.MM.yyyy, numbers as plain digits,
// booleans as "True"/"False", null as an empty text.
QString DisplayText(const FieldValue& v);
