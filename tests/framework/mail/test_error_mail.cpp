#include "framework/Cp1250.h"
#include "framework/HalvarnError.h"
#include "framework/mail/ErrorMail.h"
#include "framework/mail/MailSettings.h"
#include "framework/mail/SmtpSender.h"
#include "framework/mail/SmtpTestServer.h"
#include "support/Files.h"

#include <QElapsedTimer>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

#include <memory>

using namespace Qt::StringLiterals;
using Outcome = SendResult::Outcome;
using ServerTls = SmtpTestServer::Tls;

Q_DECLARE_METATYPE(MailTls)
Q_DECLARE_METATYPE(Outcome)
Q_DECLARE_METATYPE(ServerTls)

namespace {
const QString Version = u"1.0.0.0"_s;
const QString Sender = u"halvarn@example.pl"_s;
const QString Support = u"pomoc@example.pl"_s;
const QString User = u"rolnik@example.pl"_s;
const QString Loopback = u"127.0.0.1"_s;

// Line breaks of every kind, Polish letters, a line that starts with a dot (SMTP
// escapes those), a line longer than quoted-printable allows, "=" and a trailing space.
const QString Description = u"Zażółć gęślą jaźń\nĄĆĘŁŃÓŚŹŻ\r\n.kropka na początku\rkoniec spacją "_s;
const QString ReportText = u"Wyjątek EAccessViolation w module Halvarn.exe\n"_s + QString(100, u'ł') + u" a=b\n"_s;
const QString ExpectedText = u"Informacje dodatkowe:\r\n\r\n"
                             u"Zażółć gęślą jaźń\r\nĄĆĘŁŃÓŚŹŻ\r\n.kropka na początku\r\nkoniec spacją "
                             u"\r\n\r\n"
                             u"Wyjątek EAccessViolation w module Halvarn.exe\r\n"_s +
                             QString(100, u'ł') + u" a=b\r\n\r\n\r\nWersje bibliotek:\r\n"_s;

// A MIME entity as the tests read it: header names in lower case, values unfolded.
struct Entity {
    QMap<QByteArray, QByteArray> headers;
    QByteArray body;
};

Entity ParseEntity(const QByteArray& raw)
{
    const qsizetype end = raw.indexOf("\r\n\r\n");
    QByteArray head = raw.left(end);
    head.replace("\r\n ", " ").replace("\r\n\t", " ");
    Entity entity;
    for (const QByteArray& line : head.split('\n')) {
        const qsizetype colon = line.indexOf(':');
        entity.headers.insert(line.left(colon).trimmed().toLower(), line.mid(colon + 1).trimmed());
    }
    entity.body = raw.mid(end + 4);
    return entity;
}

std::vector<Entity> Parts(const Entity& message)
{
    static const QRegularExpression boundary(u"boundary=\"?([^\";]+)\"?"_s);
    const QByteArray delimiter =
        "\r\n--" + boundary.match(QString::fromLatin1(message.headers.value("content-type"))).captured(1).toLatin1();
    const QByteArray body = "\r\n" + message.body;
    std::vector<Entity> parts;
    for (qsizetype at = body.indexOf(delimiter); at >= 0 && body.mid(at + delimiter.size(), 2) != "--";) {
        const qsizetype start = body.indexOf("\r\n", at + delimiter.size()) + 2;
        const qsizetype next = body.indexOf(delimiter, start);
        if (next < 0)
            break;
        parts.push_back(ParseEntity(body.mid(start, next - start)));
        at = next;
    }
    return parts;
}

QByteArray DecodeQuotedPrintable(const QByteArray& text)
{
    QByteArray bytes;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != '=') {
            bytes += text[i];
        } else if (text.mid(i + 1, 2) == "\r\n") {
            i += 2; // a soft line break
        } else {
            bytes += static_cast<char>(text.mid(i + 1, 2).toInt(nullptr, 16));
            i += 2;
        }
    }
    return bytes;
}

QByteArray Decoded(const Entity& entity)
{
    const QByteArray encoding = entity.headers.value("content-transfer-encoding").toLower();
    if (encoding == "quoted-printable")
        return DecodeQuotedPrintable(entity.body);
    if (encoding == "base64")
        return QByteArray::fromBase64(QByteArray(entity.body).replace("\r\n", ""));
    return entity.body;
}

QString DecodedHeader(const QByteArray& value)
{
    static const QRegularExpression word(uR"(=\?windows-1250\?Q\?([^?]*)\?=)"_s);
    QByteArray bytes;
    for (auto words = word.globalMatch(QString::fromLatin1(value)); words.hasNext();)
        bytes += DecodeQuotedPrintable(words.next().captured(1).toLatin1().replace('_', ' '));
    return FromCp1250(bytes);
}

QByteArray Screenshot()
{
    QByteArray bytes("\xFF\xD8\xFF\xE0");
    for (int i = 0; i < 1024; ++i)
        bytes += static_cast<char>(i % 256);
    return bytes + "\xFF\xD9";
}
} // namespace

class TestErrorMail : public QObject {
    Q_OBJECT

    QTemporaryDir dir_;
    QString certificate_;
    QString key_;
    std::unique_ptr<SmtpTestServer> plain_;
    std::unique_ptr<SmtpTestServer> startTls_;
    std::unique_ptr<SmtpTestServer> implicit_;

    QString file(const QString& name) const { return dir_.filePath(name); }
    SmtpTestServer& server(ServerTls tls) const;
    MailSettings settingsFor(MailTls tls, int port) const;
    ErrorMail mail(const MailSettings& settings) const;
    std::size_t received() const;

private Q_SLOTS:
    void initTestCase();
    void init();

    void readsTheSmtpSection();
    void portAndTlsFallBackToTheirDefaults_data();
    void portAndTlsFallBackToTheirDefaults();
    void configuredNeedsServerSenderAndSupport_data();
    void configuredNeedsServerSenderAndSupport();
    void unencryptedOnlyOnThisComputer_data();
    void unencryptedOnlyOnThisComputer();

    void subjectNamesTheVersion();
    void bodyIsWindows1250WithCrLf();
    void headerTextIsEncodedWhenItMustBe_data();
    void headerTextIsEncodedWhenItMustBe();
    void longHeaderTextIsFolded();
    void libraryVersionsNameEachLibrary();
    void headerLinesOfTheMail();
    void implausibleAddressesAreRefused_data();
    void implausibleAddressesAreRefused();
    void anUnreadableScreenshotIsReported();
    void theScreenshotsNameIsPrintableAscii();

    void sendsTheReport_data();
    void sendsTheReport();
    void withoutReplyToAndScreenshotOnePartIsSent();
    void failuresAreExplained_data();
    void failuresAreExplained();
    void theUserCanCancel();
};

void TestErrorMail::initTestCase()
{
    QVERIFY(dir_.isValid());
    certificate_ = file(u"server.crt"_s);
    key_ = file(u"server.key"_s);
    QProcess openssl;
    openssl.start(u"openssl"_s, {u"req"_s, u"-x509"_s, u"-newkey"_s, u"rsa:2048"_s, u"-nodes"_s, u"-subj"_s,
                                 u"/CN=localhost"_s, u"-addext"_s, u"subjectAltName=DNS:localhost,IP:127.0.0.1"_s,
                                 u"-days"_s, u"1"_s, u"-keyout"_s, key_, u"-out"_s, certificate_});
    QVERIFY2(openssl.waitForFinished(20000) && openssl.exitCode() == 0, openssl.readAllStandardError().constData());

    plain_ = std::make_unique<SmtpTestServer>(file(u"plain"_s), ServerTls::None);
    startTls_ = std::make_unique<SmtpTestServer>(file(u"starttls"_s), ServerTls::StartTls, certificate_, key_);
    implicit_ = std::make_unique<SmtpTestServer>(file(u"implicit"_s), ServerTls::Implicit, certificate_, key_);
    for (SmtpTestServer* smtp : {plain_.get(), startTls_.get(), implicit_.get()})
        QVERIFY2(smtp->start(), qPrintable(smtp->problem()));
}

void TestErrorMail::init()
{
    for (SmtpTestServer* smtp : {plain_.get(), startTls_.get(), implicit_.get()})
        smtp->forgetMessages();
}

SmtpTestServer& TestErrorMail::server(ServerTls tls) const
{
    switch (tls) {
    case ServerTls::StartTls: return *startTls_;
    case ServerTls::Implicit: return *implicit_;
    case ServerTls::None: break;
    }
    return *plain_;
}

MailSettings TestErrorMail::settingsFor(MailTls tls, int port) const
{
    MailSettings settings;
    settings.server = Loopback;
    settings.port = port;
    settings.tls = tls;
    settings.account = SmtpTestServer::login;
    settings.password = SmtpTestServer::password;
    settings.sender = Sender;
    settings.support = Support;
    if (tls != MailTls::None)
        settings.caFile = certificate_;
    return settings;
}

ErrorMail TestErrorMail::mail(const MailSettings& settings) const
{
    const QString screenshot = file(u"zrzut-ekranu.jpg"_s);
    if (!QFile::exists(screenshot))
        WriteAll(screenshot, Screenshot());
    return ErrorMail::compose(settings, {Description, ReportText, User, screenshot}, Version, LibraryVersions());
}

std::size_t TestErrorMail::received() const
{
    return plain_->messages().size() + startTls_->messages().size() + implicit_->messages().size();
}

void TestErrorMail::readsTheSmtpSection()
{
    const QString path = file(u"COMMON.INI"_s);
    WriteAll(path, ToCp1250(u"[PARAM]\r\nTESTER=1\r\n[SMTP]\r\nServer=poczta.example.pl\r\nPort=465\r\nTls=Implicit\r\n"
                            u"Account=konto@example.pl\r\nPassword=Żółw-ŁĄKA\r\nSender=halvarn@example.pl\r\n"
                            u"Support=pomoc@example.pl\r\nCaFile=C:\\Certyfikaty\\główny.pem\r\n"_s));
    QStringList problems;
    const MailSettings settings = MailSettings::read(path, problems);
    QCOMPARE(problems, QStringList());
    QCOMPARE(settings.server, u"poczta.example.pl"_s);
    QCOMPARE(settings.port, 465);
    QCOMPARE(settings.tls, MailTls::Implicit);
    QCOMPARE(settings.account, u"konto@example.pl"_s);
    QCOMPARE(settings.password, u"Żółw-ŁĄKA"_s);
    QCOMPARE(settings.sender, u"halvarn@example.pl"_s);
    QCOMPARE(settings.support, u"pomoc@example.pl"_s);
    QCOMPARE(settings.caFile, u"C:\\Certyfikaty\\główny.pem"_s);
    QVERIFY(settings.configured());
    QCOMPARE(settings.refusal(), QString());
}

void TestErrorMail::portAndTlsFallBackToTheirDefaults_data()
{
    QTest::addColumn<QString>("lines");
    QTest::addColumn<int>("port");
    QTest::addColumn<MailTls>("tls");
    QTest::addColumn<int>("problems");
    QTest::newRow("missing") << QString() << 587 << MailTls::StartTls << 0;
    QTest::newRow("blank") << u"Port=\r\nTls=\r\n"_s << 587 << MailTls::StartTls << 0;
    QTest::newRow("starttls") << u"Port=25\r\nTls=STARTTLS\r\n"_s << 25 << MailTls::StartTls << 0;
    QTest::newRow("none on loopback") << u"Tls=none\r\n"_s << 587 << MailTls::None << 0;
    QTest::newRow("not a port") << u"Port=abc\r\n"_s << 587 << MailTls::StartTls << 1;
    QTest::newRow("port out of range") << u"Port=70000\r\n"_s << 587 << MailTls::StartTls << 1;
    QTest::newRow("unknown tls") << u"Tls=ssl\r\n"_s << 587 << MailTls::StartTls << 1;
}

void TestErrorMail::portAndTlsFallBackToTheirDefaults()
{
    QFETCH(QString, lines);
    const QString path = file(u"COMMON.INI"_s);
    WriteAll(path, ToCp1250(u"[SMTP]\r\nServer=localhost\r\n"_s + lines));
    QStringList problems;
    const MailSettings settings = MailSettings::read(path, problems);
    QTEST(settings.port, "port");
    QTEST(settings.tls, "tls");
    QTEST(static_cast<int>(problems.size()), "problems");
}

void TestErrorMail::configuredNeedsServerSenderAndSupport_data()
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<QString>("sender");
    QTest::addColumn<QString>("support");
    QTest::addColumn<bool>("configured");
    QTest::newRow("all three") << u"smtp.example.pl"_s << Sender << Support << true;
    QTest::newRow("no server") << QString() << Sender << Support << false;
    QTest::newRow("no sender") << u"smtp.example.pl"_s << QString() << Support << false;
    QTest::newRow("no support") << u"smtp.example.pl"_s << Sender << QString() << false;
}

void TestErrorMail::configuredNeedsServerSenderAndSupport()
{
    QFETCH(QString, server);
    QFETCH(QString, sender);
    QFETCH(QString, support);
    QFETCH(bool, configured);
    MailSettings settings;
    settings.server = server;
    settings.sender = sender;
    settings.support = support;
    QCOMPARE(settings.configured(), configured);
    QCOMPARE(settings.refusal().isEmpty(), configured);
    if (!configured) {
        const SendResult result = SmtpSender::send(settings, ErrorMail{});
        QCOMPARE(result.outcome, Outcome::Refused);
        QVERIFY2(result.message.contains(u"[SMTP]"_s), qPrintable(result.message));
    }
}

void TestErrorMail::unencryptedOnlyOnThisComputer_data()
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("127.0.0.1") << u"127.0.0.1"_s << true;
    QTest::newRow("127.0.0.2") << u"127.0.0.2"_s << true;
    QTest::newRow("localhost") << u"LocalHost"_s << true;
    QTest::newRow("::1") << u"::1"_s << true;
    QTest::newRow("[::1]") << u"[::1]"_s << true;
    QTest::newRow("a name") << u"smtp.example.pl"_s << false;
    QTest::newRow("a local network") << u"192.168.1.10"_s << false;
    QTest::newRow("localhost as a subdomain") << u"localhost.example.pl"_s << false;
}

void TestErrorMail::unencryptedOnlyOnThisComputer()
{
    QFETCH(QString, server);
    QFETCH(bool, allowed);
    MailSettings settings = settingsFor(MailTls::None, 1);
    settings.server = server;
    QCOMPARE(settings.refusal().isEmpty(), allowed);
    QStringList problems;
    const QString path = file(u"COMMON.INI"_s);
    WriteAll(path, ToCp1250(u"[SMTP]\r\nServer=%1\r\nTls=none\r\nSender=%2\r\nSupport=%3\r\n"_s.arg(server, Sender,
                                                                                                    Support)));
    QCOMPARE(MailSettings::read(path, problems).tls, MailTls::None);
    QCOMPARE(problems.isEmpty(), allowed);
    if (!allowed) {
        QElapsedTimer timer;
        timer.start();
        const SendResult result = SmtpSender::send(settings, mail(settings));
        QCOMPARE(result.outcome, Outcome::Refused);
        QVERIFY2(result.message.contains(u"Tls=none"_s), qPrintable(result.message));
        QCOMPARE(problems, QStringList{result.message});
        QVERIFY(timer.elapsed() < 1000); // refused before any connection
    }
}

void TestErrorMail::subjectNamesTheVersion()
{
    QCOMPARE(ErrorMailSubject(u"2.3.4.5"_s), u"Halvarn 2.3.4.5 – raport błędu"_s);
}

void TestErrorMail::bodyIsWindows1250WithCrLf()
{
    QCOMPARE(ErrorMailBody(u"ąćęłńóśźż\nĄĆĘŁŃÓŚŹŻ"_s, u"a\rb\r\nc"_s, {u"Qt 6.4.2"_s, u"libcurl 7.88.1"_s}),
             QByteArray("Informacje dodatkowe:\r\n\r\n"
                        "\xB9\xE6\xEA\xB3\xF1\xF3\x9C\x9F\xBF\r\n\xA5\xC6\xCA\xA3\xD1\xD3\x8C\x8F\xAF\r\n\r\n"
                        "a\r\nb\r\nc\r\n\r\n"
                        "Wersje bibliotek:\r\nQt 6.4.2\r\nlibcurl 7.88.1\r\n"));
    QCOMPARE(WithCrLf(u"1\n2\r3\r\n4\n\r5"_s), u"1\r\n2\r\n3\r\n4\r\n\r\n5"_s);
}

void TestErrorMail::headerTextIsEncodedWhenItMustBe_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("encoded");
    QTest::newRow("ascii") << u"Halvarn 1.0 - raport"_s << QByteArray("Halvarn 1.0 - raport");
    QTest::newRow("polish") << ErrorMailSubject(Version)
                            << QByteArray("=?windows-1250?Q?Halvarn_1=2E0=2E0=2E0_=96_raport_b=B3=EAdu?=");
    QTest::newRow("looks encoded") << u"a=?b"_s << QByteArray("=?windows-1250?Q?a=3D=3Fb?=");
    QTest::newRow("control character") << u"a\tb"_s << QByteArray("=?windows-1250?Q?a=09b?=");
}

void TestErrorMail::headerTextIsEncodedWhenItMustBe()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, encoded);
    QCOMPARE(EncodedHeaderText(text), encoded);
}

void TestErrorMail::longHeaderTextIsFolded()
{
    const QString text = QString(u"Zażółć gęślą jaźń – "_s).repeated(8);
    const QByteArray header = "Subject: " + EncodedHeaderText(text);
    const QList<QByteArray> lines = header.split('\n');
    QVERIFY(lines.size() > 3);
    for (const QByteArray& line : lines) {
        QVERIFY2(line.size() <= 79, line.constData()); // 78 and the CR
        QVERIFY2(line.size() < 2 || line.startsWith("Subject: ") || line.startsWith(" =?"), line.constData());
    }
    QCOMPARE(DecodedHeader(header), text);
}

void TestErrorMail::libraryVersionsNameEachLibrary()
{
    const QStringList libraries = LibraryVersions();
    QCOMPARE(libraries.size(), 4);
    QCOMPARE(libraries[0], u"Qt "_s + QString::fromLatin1(qVersion()));
    QVERIFY2(QRegularExpression(u"^libcurl \\d+\\.\\d+\\.\\d+"_s).match(libraries[1]).hasMatch(),
             qPrintable(libraries[1]));
    QVERIFY2(QRegularExpression(u"^OpenSSL \\d+\\.\\d+"_s).match(libraries[2]).hasMatch(), qPrintable(libraries[2]));
    QVERIFY2(libraries[3].startsWith(u"Kompilator: "_s) && libraries[3].size() > 15, qPrintable(libraries[3]));
}

void TestErrorMail::headerLinesOfTheMail()
{
    const ErrorMail composed = mail(settingsFor(MailTls::StartTls, 587));
    const QDateTime date(QDate(2026, 11, 3), QTime(14, 5, 9), QTimeZone(3600));
    QCOMPARE(composed.headerLines(date),
             (QList<QByteArray>{"Date: 03 Nov 2026 14:05:09 +0100", "From: halvarn@example.pl", "To: pomoc@example.pl",
                                "Reply-To: rolnik@example.pl",
                                "Subject: =?windows-1250?Q?Halvarn_1=2E0=2E0=2E0_=96_raport_b=B3=EAdu?="}));
    QCOMPARE(composed.screenshot->fileName, u"zrzut-ekranu.jpg"_s);
    QCOMPARE(composed.screenshot->bytes, Screenshot());
}

void TestErrorMail::implausibleAddressesAreRefused_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("address");
    QTest::newRow("no sender") << u"sender"_s << QString();
    QTest::newRow("no support") << u"support"_s << QString();
    QTest::newRow("no at sign") << u"support"_s << u"pomoc.example.pl"_s;
    QTest::newRow("a second header") << u"user"_s << u"rolnik@example.pl\r\nBcc: ktos@example.pl"_s;
    QTest::newRow("a name with it") << u"user"_s << u"Jan Kowalski <rolnik@example.pl>"_s;
    QTest::newRow("two addresses") << u"sender"_s << u"a@example.pl,b@example.pl"_s;
    QTest::newRow("polish letters") << u"user"_s << u"łoś@example.pl"_s;
}

void TestErrorMail::implausibleAddressesAreRefused()
{
    QFETCH(QString, field);
    QFETCH(QString, address);
    MailSettings settings = settingsFor(MailTls::StartTls, 587);
    ErrorMailInput input{Description, ReportText, User, {}};
    if (field == u"sender")
        settings.sender = address;
    else if (field == u"support")
        settings.support = address;
    else
        input.userAddress = address;
    try {
        ErrorMail::compose(settings, input, Version, {});
        QFAIL("the address was taken");
    } catch (const HalvarnError& error) {
        QVERIFY2(error.message().startsWith(u"Niepoprawny adres e-mail"_s), qPrintable(error.message()));
    }
}

void TestErrorMail::anUnreadableScreenshotIsReported()
{
    const QString missing = file(u"brak.jpg"_s);
    try {
        ErrorMail::compose(settingsFor(MailTls::StartTls, 587), {Description, ReportText, {}, missing}, Version, {});
        QFAIL("a missing screenshot was taken");
    } catch (const HalvarnError& error) {
        QVERIFY2(error.message().startsWith(u"Nie można odczytać zrzutu ekranu "_s + missing),
                 qPrintable(error.message()));
    }
}

void TestErrorMail::theScreenshotsNameIsPrintableAscii()
{
    const QString path = file(u"zrzut \"ekranu\" łąki.jpg"_s);
    WriteAll(path, "\xFF\xD8\xFF\xD9");
    const ErrorMail composed =
        ErrorMail::compose(settingsFor(MailTls::StartTls, 587), {Description, ReportText, {}, path}, Version, {});
    QCOMPARE(composed.screenshot->fileName, u"zrzut _ekranu_ __ki.jpg"_s);
    QCOMPARE(composed.screenshot->bytes, QByteArray("\xFF\xD8\xFF\xD9"));
}

void TestErrorMail::sendsTheReport_data()
{
    QTest::addColumn<MailTls>("tls");
    QTest::addColumn<ServerTls>("serverTls");
    QTest::addColumn<bool>("encrypted");
    QTest::newRow("unencrypted on this computer") << MailTls::None << ServerTls::None << false;
    QTest::newRow("starttls") << MailTls::StartTls << ServerTls::StartTls << true;
    QTest::newRow("implicit tls") << MailTls::Implicit << ServerTls::Implicit << true;
}

void TestErrorMail::sendsTheReport()
{
    QFETCH(MailTls, tls);
    QFETCH(ServerTls, serverTls);
    SmtpTestServer& smtp = server(serverTls);
    const MailSettings settings = settingsFor(tls, smtp.port());
    int calls = 0;
    const SendResult result = SmtpSender::send(settings, mail(settings), [&calls] { return ++calls < 0; });
    QVERIFY2(result.sent(), qPrintable(result.message));
    QCOMPARE(result.message, QString());
    QVERIFY(calls > 0);

    const std::vector<SmtpTestServer::Message> messages = smtp.messages();
    QCOMPARE(messages.size(), std::size_t{1});
    const SmtpTestServer::Message& message = messages.front();
    QCOMPARE(message.envelopeFrom, Sender);
    QCOMPARE(message.envelopeTo, QStringList{Support});
    QCOMPARE(message.login, SmtpTestServer::login);
    QTEST(message.encrypted, "encrypted");
    QCOMPARE(message.subject, u"Halvarn 1.0.0.0 – raport błędu"_s);
    QVERIFY2(std::all_of(message.raw.begin(), message.raw.end(), [](char c) { return c > 0; }),
             "the message is not 7-bit");

    const Entity entity = ParseEntity(message.raw);
    QCOMPARE(entity.headers.value("from"), Sender.toLatin1());
    QCOMPARE(entity.headers.value("to"), Support.toLatin1());
    QCOMPARE(entity.headers.value("reply-to"), User.toLatin1());
    QCOMPARE(entity.headers.value("subject"),
             QByteArray("=?windows-1250?Q?Halvarn_1=2E0=2E0=2E0_=96_raport_b=B3=EAdu?="));
    QVERIFY(entity.headers.contains("date"));
    QVERIFY(entity.headers.value("content-type").startsWith("multipart/mixed"));

    const std::vector<Entity> parts = Parts(entity);
    QCOMPARE(parts.size(), std::size_t{2});
    QCOMPARE(parts[0].headers.value("content-type"), QByteArray("text/plain; charset=windows-1250"));
    QCOMPARE(parts[0].headers.value("content-transfer-encoding"), QByteArray("quoted-printable"));
    QCOMPARE(Decoded(parts[0]), ToCp1250(ExpectedText + LibraryVersions().join(u"\r\n"_s) + u"\r\n"_s));
    QCOMPARE(parts[1].headers.value("content-type"), QByteArray("image/jpeg"));
    QCOMPARE(parts[1].headers.value("content-transfer-encoding"), QByteArray("base64"));
    QVERIFY2(parts[1].headers.value("content-disposition").contains("filename=\"zrzut-ekranu.jpg\""),
             parts[1].headers.value("content-disposition").constData());
    QCOMPARE(Decoded(parts[1]), Screenshot());
}

void TestErrorMail::withoutReplyToAndScreenshotOnePartIsSent()
{
    const MailSettings settings = settingsFor(MailTls::None, plain_->port());
    const ErrorMail composed = ErrorMail::compose(settings, {u"Opis"_s, u"Raport"_s, u"  "_s, {}}, Version, {});
    const SendResult result = SmtpSender::send(settings, composed);
    QVERIFY2(result.sent(), qPrintable(result.message));
    const std::vector<SmtpTestServer::Message> messages = plain_->messages();
    QCOMPARE(messages.size(), std::size_t{1});
    const Entity entity = ParseEntity(messages.front().raw);
    QVERIFY(!entity.headers.contains("reply-to"));
    const std::vector<Entity> parts = Parts(entity);
    QCOMPARE(parts.size(), std::size_t{1});
    QCOMPARE(Decoded(parts[0]),
             QByteArray("Informacje dodatkowe:\r\n\r\nOpis\r\n\r\nRaport\r\n\r\nWersje bibliotek:\r\n"));
}

void TestErrorMail::failuresAreExplained_data()
{
    QTest::addColumn<MailTls>("tls");
    QTest::addColumn<QString>("serverKind");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("support");
    QTest::addColumn<bool>("trustTheCertificate");
    QTest::addColumn<Outcome>("outcome");
    QTest::addColumn<QString>("pattern");

    const QString wrong = u"Złe-Hasło-7"_s;
    const QString right = SmtpTestServer::password;
    const QString login = u"^Serwer poczty odrzucił login lub hasło \\(.*535.*\\)\\.$"_s;
    const QString tlsFailed =
        u"^Nie udało się nawiązać szyfrowanego połączenia z serwerem poczty 127\\.0\\.0\\.1:\\d+ \\(.+\\)\\.$"_s;
    QTest::newRow("wrong password") << MailTls::None << u"plain"_s << wrong << Support << true << Outcome::LoginRejected
                                    << login;
    QTest::newRow("wrong password over starttls")
        << MailTls::StartTls << u"starttls"_s << wrong << Support << true << Outcome::LoginRejected << login;
    QTest::newRow("closed port") << MailTls::None << u"closed"_s << right << Support << true << Outcome::NoConnection
                                 << u"^Nie można połączyć się z serwerem poczty 127\\.0\\.0\\.1:\\d+ \\(.+\\)\\.$"_s;
    QTest::newRow("starttls not offered")
        << MailTls::StartTls << u"plain"_s << right << Support << true << Outcome::TlsFailed
        << u"^Serwer poczty 127\\.0\\.0\\.1:\\d+ nie obsługuje szyfrowania \\(STARTTLS\\), więc raportu nie "
           u"wysłano \\(.+\\)\\.$"_s;
    QTest::newRow("untrusted certificate")
        << MailTls::StartTls << u"starttls"_s << right << Support << false << Outcome::TlsFailed << tlsFailed;
    QTest::newRow("implicit tls to a plain server")
        << MailTls::Implicit << u"plain"_s << right << Support << true << Outcome::TlsFailed << tlsFailed;
    QTest::newRow("recipient refused")
        << MailTls::None << u"plain"_s << right << u"nieznany@example.pl"_s << true << Outcome::RecipientRefused
        << u"^Serwer poczty nie przyjął adresu odbiorcy nieznany@example\\.pl \\(.*550.*\\)\\.$"_s;
}

void TestErrorMail::failuresAreExplained()
{
    QFETCH(MailTls, tls);
    QFETCH(QString, serverKind);
    QFETCH(QString, password);
    QFETCH(QString, support);
    QFETCH(bool, trustTheCertificate);
    QFETCH(Outcome, outcome);
    QFETCH(QString, pattern);

    int port = 0;
    if (serverKind == u"closed") {
        QTcpServer probe;
        QVERIFY(probe.listen(QHostAddress::LocalHost));
        port = probe.serverPort();
    } else {
        port = server(serverKind == u"plain" ? ServerTls::None : ServerTls::StartTls).port();
    }
    MailSettings settings = settingsFor(tls, port);
    settings.password = password;
    settings.support = support;
    if (!trustTheCertificate)
        settings.caFile.clear();
    const SendResult result = SmtpSender::send(settings, mail(settings));
    QVERIFY2(result.outcome == outcome, qPrintable(result.message));
    QVERIFY2(QRegularExpression(pattern).match(result.message).hasMatch(), qPrintable(result.message));
    QVERIFY2(!result.message.contains(password), qPrintable(result.message));
    QVERIFY2(!result.message.contains(SmtpTestServer::password), qPrintable(result.message));
    QCOMPARE(received(), std::size_t{0});
}

void TestErrorMail::theUserCanCancel()
{
    const MailSettings settings = settingsFor(MailTls::StartTls, startTls_->port());
    const SendResult result = SmtpSender::send(settings, mail(settings), [] { return true; });
    QCOMPARE(result.outcome, Outcome::Cancelled);
    QCOMPARE(result.message, u"Wysyłanie raportu przerwano."_s);
    QCOMPARE(received(), std::size_t{0});
}

QTEST_GUILESS_MAIN(TestErrorMail)
#include "test_error_mail.moc"
