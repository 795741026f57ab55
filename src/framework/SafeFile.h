#pragma once

#include <QByteArray>
#include <QString>

#include <stdexcept>

class FileWriteError : public std::runtime_error {
public:
    explicit FileWriteError(const QString& message) : std::runtime_error(message.toStdString()) {}
    QString message() const { return QString::fromUtf8(what()); }
};

// Writes the whole file under a temporary name and renames it over the target,
// so a failure leaves the old file as it was and no half-written one.
void WriteFileAtomically(const QString& path, const QByteArray& contents);
