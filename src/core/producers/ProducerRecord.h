#pragma once

#include "analysis/DeclaredLimits.h"

#include <QByteArray>
#include <QString>

// One entry of the producer list as the file holds it. The password stays
// enciphered here; only ProducerList deciphers it, for the entry being used.
struct ProducerRecord {
    qint32 id = 0;
    QString name;           // "NAZWA", at most 50 characters
    QString login;          // "LOGIN", at most 30
    QByteArray password;    // "PASSWORD", enciphered, at most 30 bytes
    QString producerNumber; // "PRODUCENT", at most 10
    DeclaredLimits limits{};
};

inline constexpr int ProducerRecordSize = 156;

// The 156 bytes of a record: little-endian integers, strings as a length byte and
// Windows-1250 characters cut to their slot; the rest of a slot is zeros.
QByteArray EncodeProducerRecord(const ProducerRecord& record);
// Reads a record from 156 bytes; a length byte past its slot is taken as the slot.
ProducerRecord DecodeProducerRecord(const char* bytes);
