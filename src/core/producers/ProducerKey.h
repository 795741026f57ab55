#pragma once

#include "core/producers/ProducerRecord.h"
#include "framework/DataFolder.h"

#include <QByteArray>

#include <vector>

// The key that enciphers the passwords of the producer list: 256 random bits
// made at first use, kept in the data folder's "KNTRH.KEY" readable only by the
// user. The settings remember its fingerprint, so a key that is not the one the
// list was written with is noticed instead of giving wrong passwords.
//
// Every password enciphered gets a random nonce of its own, so no two passwords
// ever share a keystream, whatever their record IDs. The record slot has no room
// for it: the key file keeps each nonce with its record's ID and a tag of the
// enciphered text, by which the nonce is found again. A record no nonce matches
// was written before nonces, with the keystream of its ID.
class ProducerKey {
public:
    enum class State {
        Ready,     // the key the list was written with
        NotMade,   // first use: no key and none remembered
        Missing,   // the settings remember a key, the file is gone
        Damaged,   // the file is not a key
        Different, // a key, but not the one the settings remember
    };

    static ProducerKey open(const DataFolder& folder);
    // A new random key in "KNTRH.KEY" (mode 0600), remembered in the settings.
    // A file that is there but unusable is kept as "KNTRH.KEY.OLD". Throws
    // ProducerListError when the key cannot be made or written.
    static ProducerKey make(const DataFolder& folder);

    State state() const { return state_; }
    bool ready() const { return state_ == State::Ready; }
    // A sentence for the user on why the passwords cannot be read; empty when ready.
    QString problem() const;

    // AES-256 in counter mode under a fresh nonce: the enciphered text is as long
    // as the plain one. Both need a ready key.
    QByteArray encipher(qint32 id, const QByteArray& plain);
    QByteArray decipher(qint32 id, const QByteArray& enciphered) const;
    // Whether the record's password was enciphered under a nonce this key knows.
    bool knows(const ProducerRecord& record) const;

    // Before a list is written: the key file learns the nonces made since it was
    // read and keeps the ones it had, so the old list and the new one can both be read.
    void rememberNonces();
    // After a list is written: the key file keeps only the nonces its records use.
    void forgetNoncesBut(const std::vector<ProducerRecord>& records);

    struct Nonce {
        qint32 id;
        QByteArray nonce; // 12 random bytes
        QByteArray tag;   // of the enciphered text the nonce was used for
    };

private:
    ProducerKey(QString path, State state, QByteArray key, std::vector<Nonce> nonces = {})
        : path_(std::move(path)), state_(state), key_(std::move(key)), nonces_(std::move(nonces))
    {}
    const Nonce* nonceOf(qint32 id, const QByteArray& enciphered) const;
    void save(const std::vector<Nonce>& nonces) const;

    QString path_;
    State state_;
    QByteArray key_;
    std::vector<Nonce> nonces_; // the key file's, and those made since
};
