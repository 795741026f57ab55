#pragma once

#include <QString>

#include <chrono>
#include <functional>

struct ErrorMail;
struct MailSettings;

// How one attempt to mail a report ended.
struct SendResult {
    enum class Outcome {
        Sent,
        Refused,          // the settings may not be used; nothing was tried
        LoginRejected,    // wrong account or password
        NoConnection,     // the server could not be reached or did not answer
        TlsFailed,        // no encrypted connection could be made
        SenderRefused,    // the server would not accept the From address
        RecipientRefused, // the server would not accept the support address
        Cancelled,
        Failed,
    };

    Outcome outcome = Outcome::Sent;
    QString message; // for the user, in Polish, never with the password; empty when sent

    bool sent() const { return outcome == Outcome::Sent; }
};

// Mails over SMTP with libcurl.
class SmtpSender {
public:
    static constexpr std::chrono::seconds connectTimeout{15};
    static constexpr std::chrono::seconds wholeTimeout{60};

    // Called often while sending, also while the server is silent; true cancels.
    using Progress = std::function<bool()>;

    // Blocks until the server has taken the message or the attempt failed.
    static SendResult send(const MailSettings& settings, const ErrorMail& mail, const Progress& progress = {});
};
