#pragma once

#include <QString>

#include <stdexcept>

// The base of the program's own exceptions. Each carries its message for the
// user, in Polish; what() holds it as UTF-8.
class HalvarnError : public std::runtime_error {
public:
    explicit HalvarnError(const QString& message) : std::runtime_error(message.toStdString()) {}
    QString message() const { return QString::fromUtf8(what()); }
};
