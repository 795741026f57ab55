#pragma once

#include <QString>
#include <QStringList>

#include <exception>

// An error nothing handled: its report on stderr and in the error log of the
// data folder, with the secrets left out. Gives the error's message.
QString ReportUnhandled(const std::exception_ptr& error, const QString& dataDir, const QStringList& secrets);
