#include "core/producers/ProducerList.h"

#include "framework/Cp1250.h"
#include "framework/FileLock.h"
#include "framework/IniFile.h"
#include "framework/SafeFile.h"

#include <QFile>

#include <algorithm>
#include <iterator>

namespace {
const QString Question = u"Pytanie"_s;
const QString ErrorCaption = u"Błąd"_s;
const QString Warning = u"Uwaga"_s;
constexpr qint64 MaxListBytes = 64 << 20;

QString Sibling(const DataFolder& folder, const char* extension)
{
    return folder.root() + u"/KNTRH_V002"_s + QLatin1String(extension);
}

[[noreturn]] void Fail(const QString& what, const QFile& file)
{
    throw ProducerListError(u"%1 \"%2\": %3"_s.arg(what, file.fileName(), file.errorString()));
}

// A small file whole; empty when it cannot be read.
QByteArray ReadAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(MaxListBytes) : QByteArray();
}

std::vector<ProducerRecord> ReadRecords(const QString& path, qint64& tornBytes)
{
    tornBytes = 0;
    QFile file(path);
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly))
        Fail(u"Nie można otworzyć listy kontrahentów"_s, file);
    if (file.size() > MaxListBytes)
        throw ProducerListError(u"Lista kontrahentów \"%1\" jest za duża (%2 bajtów)"_s.arg(path).arg(file.size()));
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        Fail(u"Nie można odczytać listy kontrahentów"_s, file);
    std::vector<ProducerRecord> records;
    const qsizetype whole = bytes.size() / ProducerRecordSize;
    records.reserve(static_cast<std::size_t>(whole));
    for (qsizetype i = 0; i < whole; ++i)
        records.push_back(DecodeProducerRecord(bytes.constData() + i * ProducerRecordSize));
    tornBytes = bytes.size() % ProducerRecordSize;
    return records;
}

QByteArray Encoded(const std::vector<ProducerRecord>& records)
{
    QByteArray bytes;
    for (const ProducerRecord& record : records)
        bytes += EncodeProducerRecord(record);
    return bytes;
}

bool AnyPassword(const std::vector<ProducerRecord>& records)
{
    return std::any_of(records.begin(), records.end(), [](const ProducerRecord& r) { return !r.password.isEmpty(); });
}
} // namespace

ProducerList::ProducerList(DataFolder folder, UserPrompts& prompts)
    : folder_(std::move(folder)), prompts_(prompts), key_(ProducerKey::open(folder_))
{}

void ProducerList::open()
{
    load();
    if (QFile::exists(Sibling(folder_, ".SAV")))
        offerToRestoreBackup();
    if (tornBytes_ > 0)
        prompts_.showMessage(Warning,
                             u"Plik listy kontrahentów \"KNTRH_V002.DAT\" jest uszkodzony: na jego końcu jest niepełna "
                             u"pozycja (%1 z %2 bajtów). Pokazano %3 pełnych pozycji."_s.arg(tornBytes_)
                                 .arg(ProducerRecordSize)
                                 .arg(records_.size()),
                             MessageIcon::Warning);
    if (!key_.problem().isEmpty() && AnyPassword(records_))
        prompts_.showMessage(Warning,
                             u"Nie można odczytać haseł z listy kontrahentów: %1. Hasła trzeba wpisać ponownie "
                             u"(Edycja) albo przywrócić plik KNTRH.KEY z kopii zapasowej."_s.arg(key_.problem()),
                             MessageIcon::Warning);
}

void ProducerList::load()
{
    records_ = ReadRecords(folder_.producerListFile(), tornBytes_);
}

const ProducerRecord* ProducerList::find(qint32 id) const
{
    const auto found = std::find_if(records_.begin(), records_.end(), [id](const auto& r) { return r.id == id; });
    return found == records_.end() ? nullptr : &*found;
}

FileLock ProducerList::lock() const
{
    return FileLock(folder_.producerListFile(), u"Lista kontrahentów jest otwarta w innym oknie programu (PID %1)"_s);
}

// Under the lock: the list and its key as another window may have left them.
void ProducerList::reloadWithKey()
{
    key_ = ProducerKey::open(folder_);
    load();
}

std::optional<qint32> ProducerList::add(const ProducerEntry& entry)
{
    const FileLock locked = lock();
    reloadWithKey();
    if (!readyToWrite(!entry.password.isEmpty()))
        return std::nullopt;
    qint32 largest = 0;
    for (const ProducerRecord& record : records_)
        largest = std::max(largest, record.id);
    const qint32 id = largest + 1;
    std::vector<ProducerRecord> records = records_;
    records.push_back(encode(id, entry));
    write(std::move(records));
    load();
    return id;
}

bool ProducerList::edit(qint32 id, const ProducerEntry& entry)
{
    const FileLock locked = lock();
    reloadWithKey();
    if (!readyToWrite(!entry.password.isEmpty()))
        return false;
    std::vector<ProducerRecord> records = records_;
    const auto stored = std::find_if(records.begin(), records.end(), [id](const auto& r) { return r.id == id; });
    if (stored == records.end()) {
        prompts_.showMessage(ErrorCaption, u"Błąd odnalezienia edytowanej pozycji"_s, MessageIcon::Error);
        return false;
    }
    // A password that cannot be read shows as empty; left empty, it stays as
    // stored, and so does one left as it was.
    const bool unreadable = entry.password.isEmpty() && !key_.ready();
    const bool unchanged =
        key_.ready() && !stored->password.isEmpty() && this->entry(*stored).password == entry.password;
    *stored = unreadable || unchanged
                  ? ProducerRecord{id, entry.name, entry.login, stored->password, entry.producerNumber, entry.limits}
                  : encode(id, entry);
    write(std::move(records));
    load();
    return true;
}

bool ProducerList::remove(qint32 id)
{
    if (!prompts_.askYesNo(Question, u"Czy usunąć pozycje"_s))
        return false;
    const FileLock locked = lock();
    reloadWithKey();
    if (!readyToWrite(false))
        return false;
    const bool removed = removeRecord(id);
    load();
    return removed;
}

// Through a backup and a work file, each written whole: a deletion cut short at
// any step leaves the old list or the new one in place and the backup beside
// it, which the next opening offers to restore and the next deletion asks about.
bool ProducerList::removeRecord(qint32 id)
{
    const QString backup = Sibling(folder_, ".SAV");
    if (QFile::exists(backup) &&
        !prompts_.askYesNo(
            Question, u"Znaleziono nie usunięte zabezpieczenie. Nadpisac? (Nie nadpisanie przerwie proces zapisu)"_s))
        return false;
    try {
        WriteFileAtomically(backup, Encoded(records_)); // the file as it is: a torn tail was cut before
    } catch (const FileWriteError& failure) {
        prompts_.showMessage(ErrorCaption, u"Bląd tworzenia zabezpieczenia\n\n"_s + failure.message(),
                             MessageIcon::Error);
        return false;
    }
    std::vector<ProducerRecord> kept;
    std::copy_if(records_.begin(), records_.end(), std::back_inserter(kept),
                 [id](const auto& r) { return r.id != id; });
    writeWhole(Sibling(folder_, ".~DAT"), Encoded(kept));
    try {
        write(kept, false);
    } catch (const ProducerListError& failure) {
        prompts_.showMessage(ErrorCaption, u"Bląd zapisu\n\n"_s + failure.message(), MessageIcon::Error);
        return false;
    }
    QFile::remove(backup);
    key_.forgetNoncesBut(kept);
    return true;
}

// A deletion was cut short: its backup holds the list as it was before.
void ProducerList::offerToRestoreBackup()
{
    if (!prompts_.askYesNo(Question, u"Usuwanie pozycji z listy kontrahentów zostało przerwane. Przywrócić listę "
                                     u"sprzed usuwania z zabezpieczenia \"KNTRH_V002.SAV\"? (Nie: lista zostaje "
                                     u"taka, jaka jest teraz)"_s))
        return;
    const FileLock locked = lock();
    const QString backup = Sibling(folder_, ".SAV");
    writeWhole(folder_.producerListFile(), ReadAll(backup));
    QFile::remove(backup);
    load();
}

ProducerEntry ProducerList::entry(const ProducerRecord& record) const
{
    ProducerEntry entry{record.name, record.login, QString(), record.producerNumber, record.limits};
    if (key_.ready() && !record.password.isEmpty())
        entry.password = FromCp1250(key_.decipher(record.id, record.password));
    return entry;
}

ProducerRecord ProducerList::encode(qint32 id, const ProducerEntry& entry)
{
    const QByteArray password = ToCp1250(entry.password.left(30));
    return {id,
            entry.name,
            entry.login,
            password.isEmpty() ? QByteArray() : key_.encipher(id, password),
            entry.producerNumber,
            entry.limits};
}

// The key file first learns the new nonces, then the list is replaced whole,
// then the key forgets the nonces no record uses: whichever list a failure
// leaves, its passwords can be read. Passwords of the time before nonces get
// one on the way.
void ProducerList::write(std::vector<ProducerRecord> records, bool forgetUnusedNonces)
{
    if (key_.ready()) {
        for (ProducerRecord& record : records)
            if (!record.password.isEmpty() && !key_.knows(record))
                record.password = key_.encipher(record.id, key_.decipher(record.id, record.password));
        key_.rememberNonces();
    }
    writeWhole(folder_.producerListFile(), Encoded(records));
    if (key_.ready() && forgetUnusedNonces) {
        try {
            key_.forgetNoncesBut(records);
        } catch (const ProducerListError&) {
            // A nonce too many harms nothing; the next change forgets it.
        }
    }
}

void ProducerList::writeWhole(const QString& path, const QByteArray& bytes) const
{
    try {
        WriteFileAtomically(path, bytes);
    } catch (const FileWriteError& failure) {
        throw ProducerListError(failure.message());
    }
}

// A torn file is cut to its whole records only when the user agrees; a key is
// made at first use, and a new one replaces an unusable key only when the user agrees.
bool ProducerList::readyToWrite(bool newPassword)
{
    if (tornBytes_ > 0 && !cutTornTail())
        return false;
    if (!newPassword || key_.ready())
        return true;
    if (key_.state() != ProducerKey::State::NotMade && AnyPassword(records_))
        return renewKey();
    key_ = ProducerKey::make(folder_);
    return true;
}

bool ProducerList::cutTornTail()
{
    if (!prompts_.askYesNo(
            Question, u"Plik listy kontrahentów ma na końcu niepełną pozycję (%1 bajtów). Zapis ją usunie; "
                      u"dotychczasowy plik zostanie zachowany jako \"KNTRH_V002.BAD\". Kontynuować?"_s.arg(tornBytes_)))
        return false;
    const QString data = folder_.producerListFile();
    writeWhole(Sibling(folder_, ".BAD"), ReadAll(data));
    writeWhole(data, Encoded(records_));
    load();
    return true;
}

// The passwords enciphered under the lost key are emptied first, so that no
// record is ever read with a key it was not written with.
bool ProducerList::renewKey()
{
    if (!prompts_.askYesNo(Question, u"Hasła z listy kontrahentów nie dadzą się odczytać (%1). Zapisanie hasła "
                                     u"utworzy nowy klucz, a hasła pozostałych pozycji zostaną usunięte i trzeba "
                                     u"będzie je wpisać ponownie. Kontynuować?"_s.arg(key_.problem())))
        return false;
    std::vector<ProducerRecord> emptied = records_;
    for (ProducerRecord& record : emptied)
        record.password.clear();
    writeWhole(folder_.producerListFile(), Encoded(emptied));
    key_ = ProducerKey::make(folder_);
    load();
    return true;
}

qint32 LastChosenProducer(const DataFolder& folder)
{
    return IniFile(folder.settingsFile()).readInteger(u"KNTRH"_s, u"Ostatni"_s, 0);
}

void RememberChosenProducer(const DataFolder& folder, qint32 id)
{
    IniFile(folder.settingsFile()).writeInteger(u"KNTRH"_s, u"Ostatni"_s, id);
}
