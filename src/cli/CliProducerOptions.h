#pragma once

#include "analysis/DeclaredLimits.h"

#include <QString>
#include <QStringList>

#include <optional>

// The command line of "halvarn-cli producers list|add|edit|remove".
struct CliProducerOptions {
    enum class Action { List, Add, Edit, Remove };

    Action action = Action::List;
    QString dataDir;
    qint32 id = 0; // of edit and remove
    std::optional<QString> name;
    std::optional<QString> login;
    std::optional<QString> producerNumber;
    std::optional<DeclaredLimits> limits;
    // The new password: always for add; for edit only with --password-stdin or HALVARN_PASSWORD.
    std::optional<QString> password;
    bool answerYes = false;

    // False, with the message in error, for a command line to refuse; the
    // password is read last, so a refused command line leaves standard input unread.
    bool parse(const QStringList& arguments, QString& error);
};

// "a,b,c,d,e,f,g": seven whole non-negative numbers in the producer list's order.
bool ParseDeclaredLimits(const QString& text, DeclaredLimits& limits, QString& error);
