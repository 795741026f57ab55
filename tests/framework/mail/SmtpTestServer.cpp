#include "framework/mail/SmtpTestServer.h"

#include "support/Files.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
// The interpreter that has python3-aiosmtpd; the one on PATH may be another.
const QString Python = u"/usr/bin/python3"_s;
constexpr int StartTimeoutMs = 15000;

QString TlsArgument(SmtpTestServer::Tls tls)
{
    switch (tls) {
    case SmtpTestServer::Tls::None: return u"none"_s;
    case SmtpTestServer::Tls::StartTls: return u"starttls"_s;
    case SmtpTestServer::Tls::Implicit: return u"implicit"_s;
    }
    return {};
}

SmtpTestServer::Message ReadMessage(const QString& eml, const QString& json)
{
    const QJsonObject record = QJsonDocument::fromJson(ReadAll(json)).object();
    SmtpTestServer::Message message;
    message.raw = ReadAll(eml);
    message.envelopeFrom = record[u"from"_s].toString();
    for (const QJsonValue& to : record[u"to"_s].toArray())
        message.envelopeTo << to.toString();
    message.login = record[u"login"_s].toString();
    message.encrypted = record[u"tls"_s].toBool();
    message.subject = record[u"subject"_s].toString();
    return message;
}
} // namespace

const QString SmtpTestServer::login = u"gospodarstwo@example.pl"_s;
const QString SmtpTestServer::password = u"Tajne-Hasło-42"_s;

SmtpTestServer::SmtpTestServer(QString folder, Tls tls, const QString& certificate, const QString& key)
    : folder_(std::move(folder))
{
    arguments_ = {u"-u"_s,         QStringLiteral(HALVARN_SMTP_SERVER_SCRIPT),
                  folder_,         u"--login"_s,
                  login,           u"--password"_s,
                  password,        u"--tls"_s,
                  TlsArgument(tls)};
    if (tls != Tls::None)
        arguments_ << u"--certificate"_s << certificate << u"--key"_s << key;
    process_.setProcessChannelMode(QProcess::SeparateChannels);
}

SmtpTestServer::~SmtpTestServer()
{
    if (process_.state() == QProcess::NotRunning)
        return;
    process_.closeWriteChannel(); // the server's signal to stop
    if (!process_.waitForFinished(3000)) {
        process_.kill();
        process_.waitForFinished(3000);
    }
}

bool SmtpTestServer::start()
{
    QDir().mkpath(folder_);
    process_.start(Python, arguments_);
    const QDeadlineTimer deadline(StartTimeoutMs);
    while (!deadline.hasExpired()) {
        if (process_.canReadLine()) {
            const QByteArray line = process_.readLine().trimmed();
            if (line.startsWith("PORT ")) {
                port_ = line.mid(5).toInt();
                return port_ > 0;
            }
            continue;
        }
        if (process_.state() == QProcess::NotRunning)
            break;
        process_.waitForReadyRead(static_cast<int>(std::max<qint64>(1, deadline.remainingTime())));
    }
    problem_ = u"the SMTP server did not start: "_s + QString::fromUtf8(process_.readAllStandardError()) +
               process_.errorString();
    return false;
}

std::vector<SmtpTestServer::Message> SmtpTestServer::messages() const
{
    const QDir dir(folder_);
    QStringList numbers = dir.entryList({u"*.json"_s}, QDir::Files);
    for (QString& name : numbers)
        name.chop(5);
    std::sort(numbers.begin(), numbers.end(), [](const QString& a, const QString& b) { return a.toInt() < b.toInt(); });
    std::vector<Message> messages;
    for (const QString& n : numbers)
        messages.push_back(ReadMessage(dir.filePath(n + u".eml"_s), dir.filePath(n + u".json"_s)));
    return messages;
}

void SmtpTestServer::forgetMessages() const
{
    QDir dir(folder_);
    for (const QString& name : dir.entryList(QDir::Files))
        dir.remove(name);
}
