#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <vector>

// The Python SMTP server of smtp_server.py, run for the length of a test: one
// account, its messages stored in a folder of its own.
class SmtpTestServer {
public:
    enum class Tls { None, StartTls, Implicit };

    struct Message {
        QByteArray raw; // the data exactly as it arrived, CRLF line ends
        QString envelopeFrom;
        QStringList envelopeTo;
        QString login; // empty when nobody logged in
        bool encrypted = false;
        QString subject; // as Python's email package decodes it
    };

    SmtpTestServer(QString folder, Tls tls, const QString& certificate = {}, const QString& key = {});
    ~SmtpTestServer();
    SmtpTestServer(const SmtpTestServer&) = delete;
    SmtpTestServer& operator=(const SmtpTestServer&) = delete;

    // Waits until the server listens; false, with the reason in problem(), when it does not.
    bool start();
    const QString& problem() const { return problem_; }
    int port() const { return port_; }

    std::vector<Message> messages() const;
    void forgetMessages() const;

    static const QString login;
    static const QString password;

private:
    QString folder_;
    QStringList arguments_;
    QProcess process_;
    int port_ = 0;
    QString problem_;
};
