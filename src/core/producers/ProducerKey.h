#pragma once

#include "framework/DataFolder.h"

#include <QByteArray>

// The key that enciphers the passwords of the producer list: 256 random bits
// made at first use, kept in the data folder's "KNTRH.KEY" readable only by the
// user. The settings remember its fingerprint, so a key that is not the one the
// list was written with is noticed instead of giving wrong passwords.
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

    // AES-256 in counter mode with a keystream of its own for every record ID:
    // the enciphered text is as long as the plain one. Both need a ready key.
    QByteArray encipher(qint32 id, const QByteArray& plain) const;
    QByteArray decipher(qint32 id, const QByteArray& enciphered) const { return encipher(id, enciphered); }

private:
    ProducerKey(State state, QByteArray key) : state_(state), key_(std::move(key)) {}

    State state_;
    QByteArray key_;
};
