#pragma once

#include "framework/DateTime.h"
#include "framework/HalvarnError.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <memory>
#include <stdexcept>
#include <vector>

// A list that owns its records: clearing or destroying it destroys them.
template <class T> using OwningList = std::vector<std::unique_ptr<T>>;

// A registry dictionary value; kod holds at most 30 characters, opis 200.
struct KodOpis {
    QString kod;
    QString opis;
};

// A value of the wrong JSON type, or a date that cannot be read.
class ConversionError : public HalvarnError {
public:
    ConversionError(const QString& key, const QString& value);
};

// True only for a value that exists and is not JSON null.
bool IsPresent(const QJsonValue& value);

// Readers by the key-presence rule: a missing or null key leaves the target as
// it was constructed (0, false, empty, the empty date).
void Read(const QJsonObject& o, const char* key, qint32& target);
void Read(const QJsonObject& o, const char* key, bool& target);
void Read(const QJsonObject& o, const char* key, double& target);
void Read(const QJsonObject& o, const char* key, QString& target);
void Read(const QJsonObject& o, const char* key, KodOpis& target);
void ReadDate(const QJsonObject& o, const char* key, TDateTime& target);
// Document dates carry a time after a "T".
void ReadDateTime(const QJsonObject& o, const char* key, TDateTime& target);
// Text read without the presence rule: anything but a string gives empty text.
QString TextOf(const QJsonObject& o, const char* key);

// "yyyy-mm-dd", optionally followed by "Thh:mm[:ss[.fff]]" and a zone; false when unreadable.
bool ParseRegistryDate(QString text, TDateTime& value);

// Runs T's element parser over the array under `key`, in array order.
template <class T> void ParseList(const QJsonObject& o, const QString& key, OwningList<T>& list)
{
    const QJsonValue array = o.value(key);
    if (!array.isArray())
        return;
    for (const QJsonValue element : array.toArray()) {
        if (!element.isObject())
            throw ConversionError(key,
                                  QString::fromUtf8(QJsonDocument(QJsonArray{element}).toJson(QJsonDocument::Compact)));
        T::Parse(element.toObject(), list);
    }
}
