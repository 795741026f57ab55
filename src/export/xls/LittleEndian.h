#pragma once

#include <QByteArray>
#include <QtEndian>

#include <cstring>

inline void PutU16(QByteArray& out, quint16 value)
{
    const quint16 le = qToLittleEndian(value);
    out.append(reinterpret_cast<const char*>(&le), 2);
}

inline void PutU32(QByteArray& out, quint32 value)
{
    const quint32 le = qToLittleEndian(value);
    out.append(reinterpret_cast<const char*>(&le), 4);
}

inline void PutDouble(QByteArray& out, double value)
{
    quint64 bits = 0;
    std::memcpy(&bits, &value, 8);
    bits = qToLittleEndian(bits);
    out.append(reinterpret_cast<const char*>(&bits), 8);
}

inline void SetU16(QByteArray& out, qsizetype at, quint16 value)
{
    qToLittleEndian(value, out.data() + at);
}

inline void SetU32(QByteArray& out, qsizetype at, quint32 value)
{
    qToLittleEndian(value, out.data() + at);
}
