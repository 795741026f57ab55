// The writers the command line does not reach (the template editor, prepared
// reports, files only the user may read, appended logs), each failed at every
// step through the real system calls: the preload library tests/support/failio
// is loaded into this test, and each case tells it which call to fail.
#include "framework/SafeFile.h"
#include "gui/editor/TemplateFile.h"
#include "reports/PreparedReportFile.h"
#include "support/Files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

using namespace Qt::StringLiterals;

namespace {
using Writer = std::function<void(const QString& path)>;

QStringList Temporaries(const QString& folder)
{
    return QDir(folder).entryList({u"*.tmp*"_s}, QDir::Files);
}

// Sets the failure for the next calls; false once the n-th call of that kind no longer happened.
struct Injection {
    QString folder;
    QString marker;

    void arm(const char* call, int n, const char* error)
    {
        static int run = 0;
        qputenv("HALVARN_FAIL_CALL", call);
        qputenv("HALVARN_FAIL_NTH", QByteArray::number(n));
        qputenv("HALVARN_FAIL_ERRNO", error);
        qputenv("HALVARN_FAIL_PATH", QFile::encodeName(folder));
        qputenv("HALVARN_FAIL_FIRED", QFile::encodeName(marker));
        qputenv("HALVARN_FAIL_RUN", QByteArray::number(++run));
    }
    bool fired()
    {
        qputenv("HALVARN_FAIL_CALL", "");
        return QFile::remove(marker);
    }
};
} // namespace

class TestWriterFailures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyStepFailsCleanly_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("appended");
        QTest::addColumn<Writer>("writer");
        QTest::newRow("template saved by the editor")
            << u"Grupy technologiczne.fr3"_s << false
            << Writer([](const QString& path) { SaveTemplateText(path, u"<TfrxReport/>"_s); });
        QTest::newRow("prepared report") << u"raport.hrp"_s << false << Writer([](const QString& path) {
            SavePreparedReport(PreparedReport{u"Raport"_s, {}, {}, {}}, path);
        });
        QTest::newRow("a file only the user reads (screenshot, key)")
            << u"zrzut.jpg"_s << false
            << Writer([](const QString& path) { WriteFileAtomically(path, "nowy", FileAccess::Private); });
        QTest::newRow("appended line") << u"BLEDY.LOG"_s << true
                                       << Writer([](const QString& path) { AppendDurably(path, "nowy\r\n"); });
    }

    void everyStepFailsCleanly()
    {
        QFETCH(QString, file);
        QFETCH(bool, appended);
        QFETCH(Writer, writer);
        if (!qEnvironmentVariable("LD_PRELOAD").contains(u"failio"_s))
            QSKIP("runs with the failio preload library");
        QTemporaryDir markers;
        const char* errors[] = {"ENOSPC", "EIO", "EACCES"};
        int injected = 0;
        for (const char* call : {"write", "fsync", "close", "rename"}) {
            for (int n = 1;; ++n) {
                QTemporaryDir folder;
                const QString path = folder.filePath(file);
                WriteAll(path, "stary\r\n");
                Injection injection{folder.path(), markers.filePath(u"fired"_s)};
                injection.arm(call, n, errors[n % 3]);
                QString failure;
                try {
                    writer(path);
                } catch (const std::exception& error) {
                    failure = QString::fromUtf8(error.what());
                }
                if (!injection.fired())
                    break;
                ++injected;
                const QString what = u"%1 #%2: %3"_s.arg(QLatin1String(call)).arg(n).arg(failure);
                QVERIFY2(Temporaries(folder.path()).isEmpty(), qPrintable(what));
                if (failure.isEmpty()) { // a synced line loses nothing when its close fails
                    QVERIFY2(appended && QByteArrayView(call) == "close", qPrintable(what));
                    continue;
                }
                QVERIFY2(failure.contains(file) && failure.startsWith(u"Nie można zapisać"_s), qPrintable(what));
                const bool folderSync = QByteArrayView(call) == "fsync" && n % 2 == 0 && !appended;
                if (!folderSync)
                    QCOMPARE(ReadAll(path), QByteArray("stary\r\n"));
            }
        }
        QVERIFY(injected >= 3);
    }
};

QTEST_MAIN(TestWriterFailures)
#include "test_writer_failures.moc"
