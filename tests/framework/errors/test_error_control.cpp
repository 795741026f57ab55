#include "framework/Cp1250.h"
#include "framework/HalvarnError.h"
#include "framework/errors/CrashRecord.h"
#include "framework/errors/ErrorControl.h"
#include "support/Files.h"
#include "support/RecordingErrorHost.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

[[gnu::noinline]] void ReadTheHerdFile()
{
    throw std::runtime_error("plik stada uszkodzony");
}

std::exception_ptr Caught(const std::function<void()>& failing)
{
    try {
        failing();
    } catch (...) {
        return std::current_exception();
    }
    return nullptr;
}

#if defined(__SANITIZE_ADDRESS__)
constexpr bool ThrowSitesSeen = false;
#else
constexpr bool ThrowSitesSeen = true;
#endif

// Runs `crash` in a child process with the crash recorder installed; the signal that ended the child, 0 if none did.
int SignalEndingChild(const QString& record, const std::function<void()>& crash)
{
    const pid_t child = ::fork();
    if (child == 0) {
        InstallCrashRecorder(record);
        crash();
        ::_exit(0);
    }
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

struct Control {
    QTemporaryDir folder;
    RecordingErrorHost host;
    ErrorControl control{
        {folder.filePath(u"BLEDY.LOG"_s), folder.filePath(u"SCREENSHOTS"_s), {u"Fernhill"_s, u"Halvarn"_s}}, host};
};
} // namespace

class TestErrorControl : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theReportListsItsLinesInOrder();
    void theSecondErrorAsksWhetherToClose_data();
    void theSecondErrorAsksWhetherToClose();
    void errorsMeantForTheUserAreShownAsMessages();
    void theLogHasAHeaderLinePerError();
    void theLogMovesAsideWhenLarge();
    void screenshotsNeedTheirFolder();
    void secretsNeverLeaveTheMachine_data();
    void secretsNeverLeaveTheMachine();
    void aCrashIsRecordedAndFoundAtTheNextStart();
    void anUncaughtExceptionLeavesItsMessageInTheRecord();
};

void TestErrorControl::theReportListsItsLinesInOrder()
{
    Control c;
    QVERIFY(QDir().mkpath(c.folder.filePath(u"SCREENSHOTS"_s)));
    c.control.handle(Caught(ReadTheHerdFile));
    QCOMPARE(c.host.reports.size(), 1);
    const QStringList lines = c.host.reports.front().split(u'\n');
    if (ThrowSitesSeen)
        QVERIFY2(
            QRegularExpression(
                u"^Exception std::runtime_error in (\\(anonymous namespace\\)::)?ReadTheHerdFile\\(\\), line \\d+ of "
                u"test_error_control\\.cpp$"_s)
                .match(lines[0])
                .hasMatch(),
            qPrintable(lines[0]));
    else
        QVERIFY2(lines[0].startsWith(u"Exception std::runtime_error "_s), qPrintable(lines[0]));
    QCOMPARE(lines.mid(1, 5),
             (QStringList{u"plik stada uszkodzony"_s, QString(), u"---------------------------------------"_s,
                          u" CallStack:"_s, u"---------------------------------------"_s}));
    QVERIFY(lines.size() > 12);
    // The throw's own function comes first; without the throw hook the catching stack still shows the test.
    if (ThrowSitesSeen)
        QVERIFY2(lines[6].contains(u"ReadTheHerdFile"_s), qPrintable(lines[6]));
    else
        QVERIFY(!lines.filter(u"test_error_control.cpp"_s).isEmpty());
    const QString screenshot = QFileInfo(c.host.screenshots.front()).fileName();
    QCOMPARE(lines.mid(lines.size() - 5),
             (QStringList{QString(), u"Załącznik: "_s + screenshot, QString(), u"Fernhill"_s, u"Halvarn"_s}));
}

void TestErrorControl::theSecondErrorAsksWhetherToClose_data()
{
    QTest::addColumn<bool>("close");
    QTest::newRow("yes closes") << true;
    QTest::newRow("no reports") << false;
}

void TestErrorControl::theSecondErrorAsksWhetherToClose()
{
    QFETCH(bool, close);
    Control c;
    c.host.answerClose = close;
    c.control.handle(Caught(ReadTheHerdFile));
    QVERIFY(c.host.questions.isEmpty());
    c.control.handle(Caught(ReadTheHerdFile));
    QCOMPARE(c.host.questions, QStringList{u"W programie ponownie wystąpił błąd. Czy zamknąć program?"_s});
    QCOMPARE(c.host.closed, close);
    QCOMPARE(c.host.reports.size(), close ? 1 : 2);
    c.control.handle(Caught(ReadTheHerdFile));
    QCOMPARE(c.host.questions.size(), close ? 1 : 2); // a closing program takes no more
    QCOMPARE(c.control.errorCount(), close ? 2 : 3);
}

void TestErrorControl::errorsMeantForTheUserAreShownAsMessages()
{
    Control c;
    c.control.handle(Caught([] { throw HalvarnError(u"Brak miejsca na dysku"_s); }));
    QCOMPARE(c.host.messages, QStringList{u"Brak miejsca na dysku"_s});
    QVERIFY(c.host.reports.isEmpty());
    QCOMPARE(c.control.errorCount(), 0);
    QVERIFY(!QFile::exists(c.folder.filePath(u"BLEDY.LOG"_s)));
}

void TestErrorControl::theLogHasAHeaderLinePerError()
{
    Control c;
    qputenv("USER", "jan");
    c.control.handle(Caught(ReadTheHerdFile));
    c.control.handle(Caught(ReadTheHerdFile));
    const QString log = FromCp1250(ReadAll(c.folder.filePath(u"BLEDY.LOG"_s)));
    const QRegularExpression header(u"^Error\\. Date: [^\\r\\n]+ Time: \\d\\d:\\d\\d:\\d\\d User: jan \\r$"_s,
                                    QRegularExpression::MultilineOption);
    QVERIFY2(log.count(header) == 2, qPrintable(log.left(80)));
    QVERIFY(!log.contains(QRegularExpression(u"[^\\r]\\n"_s)));
    QVERIFY(log.contains(u"\r\nException std::runtime_error "_s));
    QVERIFY(log.endsWith(u"Halvarn\r\n"_s));
}

void TestErrorControl::theLogMovesAsideWhenLarge()
{
    Control c;
    const QString path = c.folder.filePath(u"BLEDY.LOG"_s);
    WriteAll(path, QByteArray(ErrorLog::MaxBytes, 'x'));
    QVERIFY(ErrorLog(path).append(u"raport"_s).isEmpty());
    QCOMPARE(QFileInfo(c.folder.filePath(u"BLEDY.1.LOG"_s)).size(), ErrorLog::MaxBytes);
    QVERIFY(QFileInfo(path).size() < 200);
}

void TestErrorControl::screenshotsNeedTheirFolder()
{
    Control c;
    c.control.handle(Caught(ReadTheHerdFile));
    QVERIFY(c.host.screenshots.isEmpty());
    QVERIFY(!c.host.reports.front().contains(u"Załącznik"_s));

    QCOMPARE(ScreenshotFileName(QDateTime(QDate(2026, 11, 23), QTime(9, 5, 7))), u"20261123-090507.jpg"_s);
    QCOMPARE(ScreenshotFileName(QDateTime(QDate(2026, 11, 23), QTime(9, 5, 7)), u"2"_s), u"20261123-090507-2.jpg"_s);
    QVERIFY(QDir().mkpath(c.folder.filePath(u"SCREENSHOTS"_s)));
    c.control.handle(Caught(ReadTheHerdFile));
    c.control.handle(Caught(ReadTheHerdFile));
    QCOMPARE(c.host.screenshots.size(), 2);
    const QRegularExpression name(u"/SCREENSHOTS/\\d{8}-\\d{6}(-1)?\\.jpg$"_s);
    for (const QString& path : c.host.screenshots)
        QVERIFY2(name.match(path).hasMatch(), qPrintable(path));
    QVERIFY(c.host.screenshots[0] != c.host.screenshots[1]);
}

void TestErrorControl::secretsNeverLeaveTheMachine_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("secret");
    QTest::newRow("password") << u"logowanie jan.kowalski/Zielonka7Kb2! odrzucone"_s << u"Zielonka7Kb2!"_s;
    QTest::newRow("log-in") << u"logowanie jan.kowalski/Zielonka7Kb2! odrzucone"_s << u"jan.kowalski"_s;
    QTest::newRow("token") << u"odpowiedź {\"access_token\":\"eyJhbGciOi.abc\"}"_s << u"eyJhbGciOi.abc"_s;
    QTest::newRow("bearer header") << u"Authorization: Bearer q1w2e3r4t5"_s << u"q1w2e3r4t5"_s;
    QTest::newRow("form body") << u"username=x&password=tajne123&client_id=a"_s << u"tajne123"_s;
}

void TestErrorControl::secretsNeverLeaveTheMachine()
{
    QFETCH(QString, message);
    QFETCH(QString, secret);
    Control c;
    c.control.setSecrets([] { return QStringList{u"Zielonka7Kb2!"_s, u"jan.kowalski"_s, u""_s}; });
    c.control.handle(Caught([&message] { throw std::runtime_error(message.toStdString()); }));
    QVERIFY(!c.host.reports.front().contains(secret));
    QVERIFY(c.host.reports.front().contains(u"***"_s));
    QVERIFY(!FromCp1250(ReadAll(c.folder.filePath(u"BLEDY.LOG"_s))).contains(secret));
}

void TestErrorControl::aCrashIsRecordedAndFoundAtTheNextStart()
{
    QTemporaryDir folder;
    const QString record = folder.filePath(u"CRASH.REC"_s);
    QCOMPARE(SignalEndingChild(record, [] { ::raise(SIGSEGV); }), SIGSEGV);
    const std::optional<CaughtError> crash = TakeCrashRecord(record);
    QVERIFY(crash);
    QCOMPARE(crash->className, u"SIGSEGV"_s);
    QVERIFY(crash->message.contains(u"sygnał 11"_s));
    QVERIFY(std::any_of(crash->stack.begin(), crash->stack.end(),
                        [](const StackFrame& frame) { return frame.function.contains(u"aCrashIsRecorded"_s); }));
    QVERIFY(!QFile::exists(record));
    QVERIFY(!TakeCrashRecord(record));
}

void TestErrorControl::anUncaughtExceptionLeavesItsMessageInTheRecord()
{
    QTemporaryDir folder;
    const QString record = folder.filePath(u"CRASH.REC"_s);
    const auto uncaught = [] {
        try {
            throw std::runtime_error("nikt tego nie złapał");
        } catch (...) {
            std::get_terminate()();
        }
    };
    QCOMPARE(SignalEndingChild(record, uncaught), SIGABRT);
    const std::optional<CaughtError> crash = TakeCrashRecord(record);
    QVERIFY(crash);
    QCOMPARE(crash->className, u"SIGABRT"_s);
    QVERIFY2(crash->message.endsWith(u"Nieobsłużony wyjątek: nikt tego nie złapał"_s), qPrintable(crash->message));
}

QTEST_GUILESS_MAIN(TestErrorControl)
#include "test_error_control.moc"
