// Real processes of the command line changing one producer list at once: one
// writer at a time, every reported change kept, one key, every password readable.
#include "core/producers/ProducerList.h"
#include "support/Files.h"

#include <QCoreApplication>
#include <QLockFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <set>
#include <vector>

using namespace Qt::StringLiterals;

namespace {
const QString Cli = QStringLiteral(HALVARN_BINARY_DIR "/src/cli/halvarn-cli");

class SilentPrompts : public UserPrompts {
public:
    void showMessage(const QString&, const QString& text, MessageIcon) override { messages.append(text); }
    bool askYesNo(const QString&, const QString&) override { return false; }
    QStringList messages;
};

std::unique_ptr<QProcess> Start(const QString& folder, const QStringList& arguments, const QString& password = {})
{
    auto process = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HALVARN_DATA_DIR"_s, folder);
    environment.remove(u"HALVARN_PASSWORD"_s);
    if (!password.isEmpty())
        environment.insert(u"HALVARN_PASSWORD"_s, password);
    process->setProcessEnvironment(environment);
    process->start(Cli, QStringList{u"producers"_s} + arguments);
    process->closeWriteChannel(); // a question is answered "no" at once
    return process;
}

std::unique_ptr<QProcess> StartAdd(const QString& folder, int number)
{
    return Start(folder,
                 {u"add"_s, u"--name"_s, u"Nr %1"_s.arg(number), u"--login"_s, u"l%1"_s.arg(number), u"--producer"_s,
                  QString::number(number)},
                 u"haslo-%1"_s.arg(number));
}

// Every process ended well; their standard error otherwise.
QString Failures(const std::vector<std::unique_ptr<QProcess>>& processes)
{
    QString failures;
    for (const auto& process : processes)
        if (!process->waitForFinished(180'000) || process->exitCode() != 0)
            failures += QString::fromUtf8(process->readAllStandardError());
    return failures;
}

// The names in the list, each entry's password read back as "haslo-N" for "Nr N".
QStringList ReadBack(const QString& folder)
{
    SilentPrompts prompts;
    ProducerList list(DataFolder(folder), prompts);
    list.open();
    QStringList names;
    std::set<qint32> ids;
    for (const ProducerRecord& record : list.records()) {
        ids.insert(record.id);
        const QString expected = u"haslo-"_s + record.name.mid(3);
        names.append(list.entry(record).password == expected ? record.name : record.name + u" (hasło?)"_s);
    }
    if (ids.size() != list.records().size())
        names.append(u"powtórzone ID"_s);
    names.sort();
    return names;
}

QStringList Names(int first, int last)
{
    QStringList names;
    for (int n = first; n <= last; ++n)
        names.append(u"Nr %1"_s.arg(n));
    names.sort();
    return names;
}
} // namespace

class TestProducerProcesses : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void parallelAddsKeepEveryEntry_data()
    {
        QTest::addColumn<bool>("keyFirst");
        QTest::addColumn<int>("adds");
        QTest::newRow("8 first adds, no key yet") << false << 8;
        QTest::newRow("12 adds to a list with a key") << true << 12;
    }

    void parallelAddsKeepEveryEntry()
    {
        QFETCH(bool, keyFirst);
        QFETCH(int, adds);
        QTemporaryDir folder;
        if (keyFirst)
            QVERIFY(StartAdd(folder.path(), 0)->waitForFinished(60'000));
        std::vector<std::unique_ptr<QProcess>> processes;
        for (int n = 1; n <= adds; ++n)
            processes.push_back(StartAdd(folder.path(), n));
        QCOMPARE(Failures(processes), QString());
        QCOMPARE(ReadBack(folder.path()), Names(keyFirst ? 0 : 1, adds));
        QVERIFY(!QFile::exists(folder.filePath(u"KNTRH.KEY.OLD"_s))); // one key, made once
    }

    void aDeletionBesideAddsLosesNone()
    {
        QTemporaryDir folder;
        QVERIFY(StartAdd(folder.path(), 0)->waitForFinished(60'000));
        std::vector<std::unique_ptr<QProcess>> processes;
        for (int n = 1; n <= 10; ++n) {
            processes.push_back(StartAdd(folder.path(), n));
            if (n == 5)
                processes.push_back(Start(folder.path(), {u"remove"_s, u"--id"_s, u"1"_s, u"--yes"_s}));
        }
        QCOMPARE(Failures(processes), QString());
        QCOMPARE(ReadBack(folder.path()), Names(1, 10));
    }

    void aHeldListRefusesAndChangesNothing()
    {
        QTemporaryDir folder;
        QLockFile held(folder.filePath(u"KNTRH_V002.DAT.lock"_s));
        QVERIFY(held.tryLock());
        const auto process = StartAdd(folder.path(), 1);
        QVERIFY(process->waitForFinished(60'000));
        QCOMPARE(process->exitCode(), 1);
        const QString said = QString::fromUtf8(process->readAllStandardError());
        QVERIFY2(said.contains(u"Lista kontrahentów jest otwarta w innym oknie programu (PID %1)"_s.arg(
                     QCoreApplication::applicationPid())),
                 qPrintable(said));
        QVERIFY(!QFile::exists(folder.filePath(u"KNTRH_V002.DAT"_s)));
    }
};

QTEST_GUILESS_MAIN(TestProducerProcesses)
#include "test_producer_processes.moc"
