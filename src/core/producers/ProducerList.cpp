#include "core/producers/ProducerList.h"

#include "framework/Cp1250.h"
#include "framework/IniFile.h"
#include "framework/SafeFile.h"

#include <QFile>

#include <algorithm>
#include <unistd.h>

namespace {
const QString Question = u"Pytanie"_s;
const QString ErrorCaption = u"Błąd"_s;
const QString Warning = u"Uwaga"_s;

QString Sibling(const DataFolder& folder, const char* extension)
{
    return folder.root() + u"/KNTRH_V002"_s + QLatin1String(extension);
}

[[noreturn]] void Fail(const QString& what, const QFile& file)
{
    throw ProducerListError(u"%1 \"%2\": %3"_s.arg(what, file.fileName(), file.errorString()));
}

std::vector<ProducerRecord> ReadRecords(const QString& path, qint64& tornBytes)
{
    tornBytes = 0;
    QFile file(path);
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly))
        Fail(u"Nie można otworzyć listy kontrahentów"_s, file);
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

// Written and synced, so a record reported as saved is on the disk.
void WriteSynced(QFile& file, const QByteArray& bytes)
{
    if (file.write(bytes) != bytes.size() || !file.flush() || ::fsync(file.handle()) != 0)
        Fail(u"Nie można zapisać listy kontrahentów"_s, file);
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

std::optional<qint32> ProducerList::add(const ProducerEntry& entry)
{
    load();
    if (!readyToWrite(!entry.password.isEmpty()))
        return std::nullopt;
    qint32 largest = 0;
    for (const ProducerRecord& record : records_)
        largest = std::max(largest, record.id);
    const qint32 id = largest + 1;
    QFile file(folder_.producerListFile());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
        Fail(u"Nie można otworzyć listy kontrahentów"_s, file);
    WriteSynced(file, encode(id, entry));
    file.close();
    load();
    return id;
}

bool ProducerList::edit(qint32 id, const ProducerEntry& entry)
{
    load();
    if (!readyToWrite(!entry.password.isEmpty()))
        return false;
    QFile file(folder_.producerListFile());
    if (file.exists() && !file.open(QIODevice::ReadWrite))
        Fail(u"Nie można otworzyć listy kontrahentów"_s, file);
    for (qint64 at = 0; file.isOpen() && at + ProducerRecordSize <= file.size(); at += ProducerRecordSize) {
        file.seek(at);
        const QByteArray bytes = file.read(ProducerRecordSize);
        const ProducerRecord stored = DecodeProducerRecord(bytes.constData());
        if (stored.id != id)
            continue;
        QByteArray record = encode(id, entry);
        // A password that cannot be read shows as empty; left empty, it stays as stored.
        if (entry.password.isEmpty() && !key_.ready())
            record = EncodeProducerRecord(
                {id, entry.name, entry.login, stored.password, entry.producerNumber, entry.limits});
        file.seek(at);
        WriteSynced(file, record);
        file.close();
        load();
        return true;
    }
    prompts_.showMessage(ErrorCaption, u"Błąd odnalezienia edytowanej pozycji"_s, MessageIcon::Error);
    return false;
}

bool ProducerList::remove(qint32 id)
{
    if (!prompts_.askYesNo(Question, u"Czy usunąć pozycje"_s))
        return false;
    load();
    if (!readyToWrite(false))
        return false;
    const bool removed = removeRecord(id);
    load();
    return removed;
}

// Through a backup and a work file: a deletion that fails half-way leaves the
// backup in place, and the next deletion asks about it.
bool ProducerList::removeRecord(qint32 id)
{
    const QString data = folder_.producerListFile();
    const QString backup = Sibling(folder_, ".SAV");
    const QString work = Sibling(folder_, ".~DAT");
    if (QFile::exists(backup) &&
        !prompts_.askYesNo(
            Question, u"Znaleziono nie usunięte zabezpieczenie. Nadpisac? (Nie nadpisanie przerwie proces zapisu)"_s))
        return false;
    QFile::remove(backup);
    if (!QFile::copy(data, backup)) {
        prompts_.showMessage(ErrorCaption, u"Bląd tworzenia zabezpieczenia"_s, MessageIcon::Error);
        return false;
    }
    QByteArray kept;
    for (const ProducerRecord& record : records_)
        if (record.id != id)
            kept += EncodeProducerRecord(record);
    QFile workFile(work);
    if (!workFile.open(QIODevice::WriteOnly | QIODevice::Truncate))
        Fail(u"Nie można utworzyć pliku roboczego listy kontrahentów"_s, workFile);
    WriteSynced(workFile, kept);
    workFile.close();
    try {
        WriteFileAtomically(data, kept);
    } catch (const FileWriteError&) {
        prompts_.showMessage(ErrorCaption, u"Bląd zapisu"_s, MessageIcon::Error);
        return false;
    }
    QFile::remove(backup);
    return true;
}

ProducerEntry ProducerList::entry(const ProducerRecord& record) const
{
    ProducerEntry entry{record.name, record.login, QString(), record.producerNumber, record.limits};
    if (key_.ready() && !record.password.isEmpty())
        entry.password = FromCp1250(key_.decipher(record.id, record.password));
    return entry;
}

QByteArray ProducerList::encode(qint32 id, const ProducerEntry& entry) const
{
    const QByteArray password = ToCp1250(entry.password.left(30));
    return EncodeProducerRecord({id, entry.name, entry.login,
                                 password.isEmpty() ? QByteArray() : key_.encipher(id, password), entry.producerNumber,
                                 entry.limits});
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
    const QString kept = Sibling(folder_, ".BAD");
    QFile::remove(kept);
    QFile file(data);
    if (!file.copy(kept))
        Fail(u"Nie można zachować uszkodzonej listy kontrahentów"_s, file);
    if (!file.resize(file.size() - tornBytes_))
        Fail(u"Nie można naprawić listy kontrahentów"_s, file);
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
    QByteArray emptied;
    for (ProducerRecord record : records_) {
        record.password.clear();
        emptied += EncodeProducerRecord(record);
    }
    try {
        WriteFileAtomically(folder_.producerListFile(), emptied);
    } catch (const FileWriteError& error) {
        throw ProducerListError(error.message());
    }
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
