#pragma once

#include <QString>
#include <QStringList>

// How the connection to the mail server is protected.
enum class MailTls {
    StartTls, // a plain connection upgraded with STARTTLS; nothing is sent when the server cannot
    Implicit, // TLS from the first byte (smtps, usually port 465)
    None,     // no encryption at all; only for a server on this computer
};

// Section [SMTP] of "COMMON.INI": where and how error reports are mailed.
struct MailSettings {
    static constexpr int defaultPort = 587;

    QString server;
    int port = defaultPort;
    MailTls tls = MailTls::StartTls;
    QString account; // no log-in when empty
    QString password;
    QString sender;  // the From address
    QString support; // where reports go; "O programie" shows it too
    QString caFile;  // certificates to trust instead of the system's, when set

    // Server, sender and support address are all present.
    bool configured() const;
    bool serverIsLoopback() const;
    // Why these settings may not be used for sending, for the user; empty when they may.
    QString refusal() const;

    // A value that cannot be used gives its default and a line for the user in problems.
    static MailSettings read(const QString& commonSettingsFile, QStringList& problems);
};
