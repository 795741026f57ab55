#include "core/producers/ProducerRecord.h"

#include "framework/Cp1250.h"

#include <QtEndian>

namespace {
struct Slot {
    int offset;
    int length; // characters; the slot is one byte longer
};
constexpr Slot NameSlot{4, 50};
constexpr Slot LoginSlot{55, 30};
constexpr Slot PasswordSlot{86, 30};
constexpr Slot ProducerSlot{117, 10};
constexpr int IdOffset = 0;
constexpr int LimitsOffset = 128;

void PutInt32(QByteArray& bytes, int offset, qint32 value)
{
    qToLittleEndian(value, bytes.data() + offset);
}

qint32 Int32At(const char* bytes, int offset)
{
    return qFromLittleEndian<qint32>(bytes + offset);
}

void PutBytes(QByteArray& bytes, Slot slot, const QByteArray& value)
{
    const QByteArray cut = value.left(slot.length);
    bytes[slot.offset] = static_cast<char>(cut.size());
    bytes.replace(slot.offset + 1, static_cast<int>(cut.size()), cut);
}

QByteArray BytesAt(const char* bytes, Slot slot)
{
    const int length = std::min<int>(static_cast<unsigned char>(bytes[slot.offset]), slot.length);
    return QByteArray(bytes + slot.offset + 1, length);
}
} // namespace

QByteArray EncodeProducerRecord(const ProducerRecord& record)
{
    QByteArray bytes(ProducerRecordSize, '\0');
    PutInt32(bytes, IdOffset, record.id);
    PutBytes(bytes, NameSlot, ToCp1250(record.name.left(NameSlot.length)));
    PutBytes(bytes, LoginSlot, ToCp1250(record.login.left(LoginSlot.length)));
    PutBytes(bytes, PasswordSlot, record.password);
    PutBytes(bytes, ProducerSlot, ToCp1250(record.producerNumber.left(ProducerSlot.length)));
    for (int i = 0; i < DeclaredGroupCount; ++i)
        PutInt32(bytes, LimitsOffset + 4 * i, record.limits[static_cast<std::size_t>(i)]);
    return bytes;
}

ProducerRecord DecodeProducerRecord(const char* bytes)
{
    ProducerRecord record;
    record.id = Int32At(bytes, IdOffset);
    record.name = FromCp1250(BytesAt(bytes, NameSlot));
    record.login = FromCp1250(BytesAt(bytes, LoginSlot));
    record.password = BytesAt(bytes, PasswordSlot);
    record.producerNumber = FromCp1250(BytesAt(bytes, ProducerSlot));
    for (int i = 0; i < DeclaredGroupCount; ++i)
        record.limits[static_cast<std::size_t>(i)] = Int32At(bytes, LimitsOffset + 4 * i);
    return record;
}
