#pragma once

#include "core/session/HalvarnSession.h"

#include <QCommandLineOption>
#include <QStringList>

#include <memory>
#include <optional>

struct RegistryConfig;
class RegistrySimulator;

// The command line of "halvarn-cli download".
struct CliOptions {
    SessionInputs inputs;
    QString dataDir;
    QString dumpJson;
    QString exportDir;
    QString pdfDir;
    QString herd = u"ALL"_s;
    QStringList mark;               // ear tags to tick after the download
    QString useChange;              // the new use direction's code for the ticked animals
    bool resendUnconfirmed = false; // send again notices whose earlier outcome is unknown
    std::optional<QString> ssoBase;
    std::optional<QString> apiBase;
    std::optional<int> parallel;
    std::optional<int> timeoutSeconds;
    bool demo = false;
    bool answerYes = false;
    bool failOnPurpose = false; // --debug-error, not in the help: shows what an unhandled error gives

    bool parse(const QStringList& arguments, QString& error);
    void applyTo(RegistryConfig& config) const;
};

// "--<option> YYYY-MM-DD", not before 1900-01-01; false, with the message in error, otherwise.
// An option with a value, for the help text.
QCommandLineOption Value(const char* name, const char* description, const char* valueName);

bool ParseDateOption(const QString& option, const QString& text, QDate& date, QString& error);
// "--kinds mamki,opasy,mleczne": the kinds of welfare ticked; false, with the message in error, for another word.
bool ParseKindsOption(const QString& text, WelfareFlags& flags, QString& error);

// Starts the embedded registry with its demo producers and fills the log-in
// fields that the command line left empty with the first one's; null when it
// cannot listen.
std::unique_ptr<RegistrySimulator> StartDemoRegistryFor(SessionInputs& inputs);
