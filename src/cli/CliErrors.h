#pragma once

#include <QString>
#include <QStringList>

#include <exception>
#include <functional>

// An error nothing handled: its report on stderr and in the error log of the
// data folder, with the secrets left out. Gives the error's message.
QString ReportUnhandled(const std::exception_ptr& error, const QString& dataDir, const QStringList& secrets);

inline constexpr int UnhandledErrorExit = 4;

// The frame of every command: the crash recorder of the data folder, then the
// command. An error raised for the user ends in its message and userErrorExit,
// any other in its report and UnhandledErrorExit.
int RunGuarded(const QString& dataDir, const QStringList& secrets, int userErrorExit,
               const std::function<int()>& command);
