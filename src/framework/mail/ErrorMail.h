#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

struct MailSettings;

// What the user sends to support when something went wrong.
struct ErrorMailInput {
    QString description;    // the user's own words
    QString text;           // the report the program wrote
    QString userAddress;    // where support may answer; may be empty
    QString screenshotPath; // a JPEG; may be empty
};

// An error report ready to be mailed: a windows-1250 text and, perhaps, a screenshot.
struct ErrorMail {
    struct Attachment {
        QString fileName; // printable ASCII only
        QByteArray bytes;
    };

    QString from;
    QString to;
    QString replyTo; // empty when the user gave no address
    QString subject;
    QByteArray body; // windows-1250, every line ending in CRLF
    std::optional<Attachment> screenshot;

    // From the sender to the support address of the settings. Throws HalvarnError
    // when an address is not usable or the screenshot cannot be read.
    static ErrorMail compose(const MailSettings& settings, const ErrorMailInput& input, const QString& version,
                             const QStringList& libraries);

    // The message's own header lines (Date, From, To, Reply-To, Subject), each without its line end.
    QList<QByteArray> headerLines(const QDateTime& date) const;
};

QString ErrorMailSubject(const QString& version);
QByteArray ErrorMailBody(const QString& description, const QString& reportText, const QStringList& libraries);

// Qt, libcurl, the TLS library libcurl uses and the compiler, one line each.
QStringList LibraryVersions();

// Every line break (CRLF, LF or a lone CR) as CRLF.
QString WithCrLf(QString text);

// A header value any mail program reads: short printable ASCII as it is, anything
// else as RFC 2047 encoded words in windows-1250, folded onto short lines.
QByteArray EncodedHeaderText(const QString& text);

// A bare ASCII address, local@domain, with nothing that could end or extend a header.
bool IsPlausibleAddress(const QString& address);
