#pragma once

#include <QByteArray>
#include <QFile>
#include <QTest>

// Whole files, byte for byte; an unreadable file reads as empty.
inline QByteArray ReadAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline void WriteAll(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}
