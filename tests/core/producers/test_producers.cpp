#include "core/producers/ProducerList.h"
#include "framework/Cp1250.h"
#include "support/Files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <deque>
#include <memory>
#include <openssl/evp.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {
// Answers questions in the order given (Yes when none is left) and keeps what it was told.
class ScriptedPrompts : public UserPrompts {
public:
    std::deque<bool> answers;
    QStringList questions;
    QStringList messages;

    void showMessage(const QString&, const QString& text, MessageIcon) override { messages.append(text); }
    bool askYesNo(const QString&, const QString& text) override
    {
        questions.append(text);
        if (answers.empty())
            return true;
        const bool answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

ProducerEntry Entry(const QString& name, const QString& password = u"Haslo.1"_s)
{
    return {name, u"login."_s + name, password, u"071234562"_s, {1, 2, 3, 4, 5, 6, 7}};
}

QByteArray RecordWithId(qint32 id)
{
    ProducerRecord record;
    record.id = id;
    record.name = u"Nr %1"_s.arg(id);
    return EncodeProducerRecord(record);
}

qint32 IdAt(const QByteArray& file, int index)
{
    return qFromLittleEndian<qint32>(file.constData() + index * ProducerRecordSize);
}

// How passwords were enciphered before nonces: AES-256-CTR whose counter block
// starts with "KNTRHV02" and the record's ID.
QByteArray FirstSchemeCipher(const QByteArray& key, qint32 id, const QByteArray& plain)
{
    unsigned char iv[16] = {'K', 'N', 'T', 'R', 'H', 'V', '0', '2'};
    qToBigEndian(id, iv + 8);
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(EVP_CIPHER_CTX_new(),
                                                                                  EVP_CIPHER_CTX_free);
    QByteArray out(plain.size(), '\0');
    int length = 0;
    EVP_EncryptInit_ex(context.get(), EVP_aes_256_ctr(), nullptr, reinterpret_cast<const unsigned char*>(key.data()),
                       iv);
    EVP_EncryptUpdate(context.get(), reinterpret_cast<unsigned char*>(out.data()), &length,
                      reinterpret_cast<const unsigned char*>(plain.data()), static_cast<int>(plain.size()));
    return out;
}

const QString SaveQuestion =
    u"Znaleziono nie usunięte zabezpieczenie. Nadpisac? (Nie nadpisanie przerwie proces zapisu)"_s;
} // namespace

class TestProducers : public QObject {
    Q_OBJECT

private:
    QTemporaryDir dir_;
    std::unique_ptr<DataFolder> folder_;
    ScriptedPrompts prompts_;

    QString dataFile() const { return folder_->producerListFile(); }
    QString file(const QString& name) const { return dir_.filePath(name); }
    std::unique_ptr<ProducerList> openList()
    {
        auto list = std::make_unique<ProducerList>(*folder_, prompts_);
        list->open();
        return list;
    }

private Q_SLOTS:
    void init()
    {
        for (const QString& name : QDir(dir_.path()).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot))
            QDir(file(name)).exists() ? (void)QDir(file(name)).removeRecursively() : (void)QFile::remove(file(name));
        folder_ = std::make_unique<DataFolder>(dir_.path());
        prompts_ = ScriptedPrompts();
    }

    void recordBytesAtTheirOffsets()
    {
        const ProducerRecord record{0x01020304,     u"Gospodarstwo Źrebięcin"_s,
                                    u"jan.kos"_s,   QByteArray("\x01\xff", 2),
                                    u"071234562"_s, {10, 20, 30, 40, 50, 60, -1}};
        const QByteArray bytes = EncodeProducerRecord(record);
        QCOMPARE(bytes.size(), 156);
        QCOMPARE(bytes.left(4), QByteArray("\x04\x03\x02\x01", 4));
        QCOMPARE(int(bytes[4]), 22);
        QCOMPARE(bytes.mid(5, 22), ToCp1250(record.name));
        QCOMPARE(static_cast<unsigned char>(bytes[5 + 13]), 0x8f); // "Ź" in Windows-1250
        QCOMPARE(bytes.mid(55, 8), QByteArray("\x07jan.kos"));
        QCOMPARE(bytes.mid(86, 3), QByteArray("\x02\x01\xff", 3));
        QCOMPARE(bytes.mid(117, 10), QByteArray("\x09"
                                                "071234562"));
        for (int i = 0; i < 6; ++i)
            QCOMPARE(qFromLittleEndian<qint32>(bytes.constData() + 128 + 4 * i), 10 * (i + 1));
        QCOMPARE(bytes.mid(152, 4), QByteArray("\xff\xff\xff\xff", 4));
        const ProducerRecord back = DecodeProducerRecord(bytes.constData());
        QCOMPARE(back.name, record.name);
        QCOMPARE(back.password, record.password);
        QCOMPARE(back.limits, record.limits);
    }

    void stringsCutToTheirSlots_data()
    {
        QTest::addColumn<int>("offset");
        QTest::addColumn<int>("slot");
        QTest::newRow("name") << 4 << 50;
        QTest::newRow("log-in") << 55 << 30;
        QTest::newRow("password") << 86 << 30;
        QTest::newRow("producer number") << 117 << 10;
    }

    void stringsCutToTheirSlots()
    {
        QFETCH(int, offset);
        QFETCH(int, slot);
        const QString longText = QString(60, u'ż');
        const auto list = openList();
        QVERIFY(list->add({longText, longText, longText, longText, {}}));
        const QByteArray bytes = ReadAll(dataFile());
        QCOMPARE(bytes.size(), 156);
        QCOMPARE(int(bytes[offset]), slot);
        const ProducerEntry stored = list->entry(list->records().front());
        QCOMPARE(stored.name, longText.left(50));
        QCOMPARE(stored.password, longText.left(30));
        QCOMPARE(stored.producerNumber, longText.left(10));
    }

    void newIdsFollowTheLargest()
    {
        const auto list = openList();
        QCOMPARE(list->add(Entry(u"A"_s)), std::optional<qint32>(1));
        QCOMPARE(ReadAll(dataFile()).size(), 156);

        WriteAll(dataFile(), RecordWithId(1) + RecordWithId(5) + RecordWithId(2));
        QCOMPARE(list->add(Entry(u"B"_s)), std::optional<qint32>(6));
        QCOMPARE(IdAt(ReadAll(dataFile()), 3), 6);
        QVERIFY(list->remove(6));
        QCOMPARE(list->records().size(), 3u);
        QCOMPARE(list->add(Entry(u"C"_s)), std::optional<qint32>(6));
        QVERIFY(!QFile::exists(file(u"KNTRH_V002.SAV"_s)));
        QVERIFY(QFile::exists(file(u"KNTRH_V002.~DAT"_s)));
    }

    void editWritesOverItsRecordOnly()
    {
        const auto list = openList();
        list->add(Entry(u"A"_s));
        list->add(Entry(u"B"_s));
        const QByteArray before = ReadAll(dataFile());
        ProducerEntry changed = Entry(u"B2"_s, u"Nowe.haslo"_s);
        changed.limits[6] = 99;
        QVERIFY(list->edit(2, changed));
        const QByteArray after = ReadAll(dataFile());
        QCOMPARE(after.left(156), before.left(156));
        QCOMPARE(list->entry(*list->find(2)).password, u"Nowe.haslo"_s);
        QCOMPARE(list->find(2)->limits[6], 99);
        QCOMPARE(list->find(2)->name, u"B2"_s);
    }

    void editOfAVanishedEntry()
    {
        const auto list = openList();
        list->add(Entry(u"A"_s));
        const QByteArray before = ReadAll(dataFile());
        QVERIFY(!list->edit(7, Entry(u"X"_s)));
        QCOMPARE(prompts_.messages, QStringList{u"Błąd odnalezienia edytowanej pozycji"_s});
        QCOMPARE(ReadAll(dataFile()), before);
    }

    void deletionAsksFirst()
    {
        const auto list = openList();
        list->add(Entry(u"A"_s));
        prompts_.answers = {false};
        QVERIFY(!list->remove(1));
        QCOMPARE(prompts_.questions, QStringList{u"Czy usunąć pozycje"_s});
        QCOMPARE(list->records().size(), 1u);
    }

    void deletionWithALeftoverBackup_data()
    {
        QTest::addColumn<bool>("overwrite");
        QTest::newRow("overwritten") << true;
        QTest::newRow("kept") << false;
    }

    void deletionWithALeftoverBackup()
    {
        QFETCH(bool, overwrite);
        const auto list = openList();
        list->add(Entry(u"A"_s));
        list->add(Entry(u"B"_s));
        const QByteArray before = ReadAll(dataFile());
        WriteAll(file(u"KNTRH_V002.SAV"_s), "left from before");
        prompts_.answers = {true, overwrite};
        QCOMPARE(list->remove(1), overwrite);
        QCOMPARE(prompts_.questions, (QStringList{u"Czy usunąć pozycje"_s, SaveQuestion}));
        if (overwrite) {
            QCOMPARE(ReadAll(dataFile()), before.mid(156));
            QVERIFY(!QFile::exists(file(u"KNTRH_V002.SAV"_s)));
        } else {
            QCOMPARE(ReadAll(dataFile()), before);
            QCOMPARE(ReadAll(file(u"KNTRH_V002.SAV"_s)), QByteArray("left from before"));
        }
    }

    void deletionWhoseBackupCannotBeMade()
    {
        const auto list = openList();
        list->add(Entry(u"A"_s));
        const QByteArray before = ReadAll(dataFile());
        QVERIFY(QDir(dir_.path()).mkpath(u"KNTRH_V002.SAV/blocked"_s));
        QVERIFY(!list->remove(1));
        QCOMPARE(prompts_.messages.size(), 1);
        QVERIFY(prompts_.messages.front().startsWith(u"Bląd tworzenia zabezpieczenia\n\n"_s));
        QVERIFY(prompts_.messages.front().contains(u"KNTRH_V002.SAV"_s));
        QCOMPARE(ReadAll(dataFile()), before);
    }

    void tornFileIsShownAndWrittenOnlyWhenAllowed_data()
    {
        QTest::addColumn<bool>("allow");
        QTest::newRow("declined") << false;
        QTest::newRow("allowed") << true;
    }

    void tornFileIsShownAndWrittenOnlyWhenAllowed()
    {
        QFETCH(bool, allow);
        const QByteArray torn = RecordWithId(1) + RecordWithId(2) + QByteArray(40, 'x');
        WriteAll(dataFile(), torn);
        const auto list = openList();
        QCOMPARE(list->records().size(), 2u);
        QCOMPARE(list->tornBytes(), 40);
        QCOMPARE(prompts_.messages.size(), 1);
        QVERIFY(prompts_.messages.front().contains(u"niepełna pozycja (40 z 156 bajtów)"_s));
        prompts_.answers = {allow};
        QCOMPARE(list->add(Entry(u"C"_s)).has_value(), allow);
        const QByteArray after = ReadAll(dataFile());
        if (!allow) {
            QCOMPARE(after, torn);
            return;
        }
        QCOMPARE(after.size(), 3 * 156);
        QCOMPARE(IdAt(after, 2), 3);
        QCOMPARE(ReadAll(file(u"KNTRH_V002.BAD"_s)), torn);
    }

    void passwordsAreEncipheredPerRecord()
    {
        const auto list = openList();
        list->add(Entry(u"A"_s, u"Zielonka7Kb2!"_s));
        list->add(Entry(u"B"_s, u"Zielonka7Kb2!"_s));
        const QByteArray first = list->records()[0].password;
        const QByteArray second = list->records()[1].password;
        QCOMPARE(first.size(), 13);
        QVERIFY(first != second);
        QVERIFY(!ReadAll(dataFile()).contains("Zielonka"));
        QCOMPARE(list->entry(list->records()[1]).password, u"Zielonka7Kb2!"_s);

        struct stat info {};
        QCOMPARE(::stat(QFile::encodeName(file(u"KNTRH.KEY"_s)).constData(), &info), 0);
        QCOMPARE(info.st_mode & 0777, 0600u);
        QCOMPARE(openList()->entry(list->records()[0]).password, u"Zielonka7Kb2!"_s);
    }

    // Two passwords stored under one ID (an edit, or an ID taken again after a
    // deletion) must not share a keystream: with one, the two enciphered texts
    // would XOR to the XOR of the two passwords, readable without the key.
    void noKeystreamIsUsedTwice()
    {
        const QByteArray first = "Pierwsze.haslo1";
        const QByteArray second = "Drugie.haslo-22";
        const auto list = openList();
        list->add(Entry(u"A"_s, QString::fromLatin1(first)));
        list->add(Entry(u"B"_s, QString::fromLatin1(first)));
        const QByteArray original = list->records()[1].password;
        QVERIFY(list->edit(2, Entry(u"B"_s, QString::fromLatin1(second))));
        const QByteArray edited = list->records()[1].password;
        QVERIFY(list->remove(2));
        QCOMPARE(*list->add(Entry(u"C"_s, QString::fromLatin1(second))), 2);
        const QByteArray reused = list->records()[1].password;
        const auto xored = [](const QByteArray& a, const QByteArray& b) {
            QByteArray out(a.size(), '\0');
            for (qsizetype i = 0; i < a.size(); ++i)
                out[i] = static_cast<char>(a[i] ^ b[i]);
            return out;
        };
        QVERIFY(xored(original, edited) != xored(first, second));
        QVERIFY(xored(original, reused) != xored(first, second));
        QVERIFY(xored(list->records()[0].password, reused) != xored(first, second));
        QCOMPARE(openList()->entry(list->records()[1]).password, QString::fromLatin1(second));
        QCOMPARE(openList()->entry(list->records()[0]).password, QString::fromLatin1(first));
    }

    // A list written before nonces (each password under its record ID's
    // keystream, a key file of the first kind) still reads, and takes nonces at
    // its first write without losing a password.
    void aListOfTheFirstSchemeIsMigrated()
    {
        const QByteArray key(32, '\x5a');
        WriteAll(file(u"KNTRH.KEY"_s), "HALVARN KNTRH KEY 1\n" + key.toHex() + "\n");
        QByteArray list;
        for (const qint32 id : {1, 2}) {
            ProducerRecord record;
            record.id = id;
            record.name = u"Stary %1"_s.arg(id);
            record.password = FirstSchemeCipher(key, id, "Stare.haslo" + QByteArray::number(id));
            list += EncodeProducerRecord(record);
        }
        WriteAll(dataFile(), list);
        const auto opened = openList();
        QVERIFY(prompts_.messages.isEmpty());
        QCOMPARE(opened->entry(opened->records()[1]).password, u"Stare.haslo2"_s);
        QVERIFY(opened->add(Entry(u"Nowy"_s)));
        QVERIFY(opened->records()[0].password != DecodeProducerRecord(list.constData()).password);
        QVERIFY(ReadAll(file(u"KNTRH.KEY"_s)).startsWith("HALVARN KNTRH KEY 2\n"));
        const auto again = openList();
        QCOMPARE(again->entry(again->records()[0]).password, u"Stare.haslo1"_s);
        QCOMPARE(again->entry(again->records()[1]).password, u"Stare.haslo2"_s);
        QCOMPARE(again->entry(again->records()[2]).password, u"Haslo.1"_s);
    }

    void unusableKey_data()
    {
        QTest::addColumn<QString>("spoil");
        QTest::addColumn<QString>("problem");
        QTest::newRow("missing") << u"remove"_s << u"brak pliku klucza"_s;
        QTest::newRow("damaged") << u"damage"_s << u"jest uszkodzony"_s;
        QTest::newRow("another key") << u"replace"_s << u"nie jest kluczem, którym zapisano listę"_s;
    }

    // The list still opens and says so; nothing stored is lost until the user agrees to a new key.
    void unusableKey()
    {
        QFETCH(QString, spoil);
        QFETCH(QString, problem);
        const QString keyFile = file(u"KNTRH.KEY"_s);
        openList()->add(Entry(u"A"_s));
        if (spoil == u"replace") {
            WriteAll(keyFile, "HALVARN KNTRH KEY 1\n" + QByteArray(32, '\x11').toHex() + "\n");
        } else if (spoil == u"damage") {
            WriteAll(keyFile, "not a key");
        } else {
            QFile::remove(keyFile);
        }
        prompts_ = ScriptedPrompts();
        const QByteArray stored = ReadAll(dataFile());
        const auto list = openList();
        QCOMPARE(list->records().size(), 1u);
        QCOMPARE(prompts_.messages.size(), 1);
        QVERIFY2(prompts_.messages.front().contains(problem), qPrintable(prompts_.messages.front()));
        QVERIFY(prompts_.messages.front().contains(u"Hasła trzeba wpisać ponownie"_s));
        QVERIFY(list->entry(list->records().front()).password.isEmpty());

        ProducerEntry renamed = list->entry(list->records().front());
        renamed.name = u"A2"_s;
        QVERIFY(list->edit(1, renamed));
        QCOMPARE(list->records().front().password, DecodeProducerRecord(stored.constData()).password);

        prompts_.answers = {false};
        QVERIFY(!list->add(Entry(u"B"_s)));
        QCOMPARE(list->records().front().password, DecodeProducerRecord(stored.constData()).password);

        QVERIFY(list->add(Entry(u"B"_s, u"Nowe"_s)));
        QVERIFY(list->records().front().password.isEmpty());
        QCOMPARE(list->entry(list->records().back()).password, u"Nowe"_s);
        QCOMPARE(openList()->entry(list->records().back()).password, u"Nowe"_s);
    }

    void lastChosenProducerIsRemembered()
    {
        QCOMPARE(LastChosenProducer(*folder_), 0);
        RememberChosenProducer(*folder_, 12);
        QCOMPARE(LastChosenProducer(*folder_), 12);
    }
};

QTEST_GUILESS_MAIN(TestProducers)
#include "test_producers.moc"
