#pragma once

#include "framework/HalvarnError.h"

#include <QByteArray>
#include <QString>

class FileWriteError : public HalvarnError {
public:
    using HalvarnError::HalvarnError;
};

// Writes the whole file under a temporary name and renames it over the target,
// so a failure leaves the old file as it was and no half-written one.
void WriteFileAtomically(const QString& path, const QByteArray& contents);
