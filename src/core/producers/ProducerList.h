#pragma once

#include "core/producers/ProducerKey.h"
#include "core/producers/ProducerRecord.h"
#include "framework/DataFolder.h"
#include "framework/HalvarnError.h"
#include "framework/UserPrompts.h"

#include <optional>
#include <vector>

// A read or write failure of the list's files that none of the list's own messages covers.
class ProducerListError : public HalvarnError {
public:
    using HalvarnError::HalvarnError;
};

// The eleven values the detail window edits, the password in plain text.
struct ProducerEntry {
    QString name;
    QString login;
    QString password;
    QString producerNumber;
    DeclaredLimits limits{};
};

// What "Wybór producenta" hands the main window.
struct ChosenProducer {
    qint32 id = 0;
    ProducerEntry entry;
};

// The producer list "KNTRH_V002.DAT": fixed records read in file order, a new
// entry added at the end with the largest ID + 1, an edit written over its
// record, a deletion through the backup ".SAV" and the work file ".~DAT".
// Every change rewrites the file whole or not at all, one writer at a time
// across the program's processes, on the list as it is on the disk then.
// Questions and messages go to the prompts in the program's own words.
class ProducerList {
public:
    ProducerList(DataFolder folder, UserPrompts& prompts);

    // Reads the file and tells the user once of a torn file or of passwords that
    // cannot be read with the key at hand; offers to restore the list a deletion
    // cut short left in its backup.
    void open();
    // Reads the file again, silently (after every change).
    void load();

    const std::vector<ProducerRecord>& records() const { return records_; }
    const ProducerRecord* find(qint32 id) const;
    // Bytes past the last complete record; 0 for a sound file.
    qint64 tornBytes() const { return tornBytes_; }
    bool passwordsReadable() const { return key_.ready(); }

    // Each writes the file and loads it again. add gives the new ID; every one
    // gives nothing (or false) when the user declined or a message told why not.
    std::optional<qint32> add(const ProducerEntry& entry);
    bool edit(qint32 id, const ProducerEntry& entry);
    // Asks "Czy usunąć pozycje" first.
    bool remove(qint32 id);

    // The record's values with its password deciphered, in memory only; the
    // password is empty when the key at hand cannot read it.
    ProducerEntry entry(const ProducerRecord& record) const;

private:
    class FileLock lock() const;
    void reloadWithKey();
    bool readyToWrite(bool newPassword);
    bool renewKey();
    bool cutTornTail();
    ProducerRecord encode(qint32 id, const ProducerEntry& entry);
    void write(std::vector<ProducerRecord> records, bool forgetUnusedNonces = true);
    void writeWhole(const QString& path, const QByteArray& bytes) const;
    bool removeRecord(qint32 id);
    void offerToRestoreBackup();

    DataFolder folder_;
    UserPrompts& prompts_;
    ProducerKey key_;
    std::vector<ProducerRecord> records_;
    qint64 tornBytes_ = 0;
};

// The ID of the producer chosen last with "Wybór producenta", 0 for none; kept in the settings.
qint32 LastChosenProducer(const DataFolder& folder);
void RememberChosenProducer(const DataFolder& folder, qint32 id);
