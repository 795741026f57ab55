#include "core/producers/ProducerKey.h"

#include "core/producers/ProducerList.h"
#include "framework/IniFile.h"
#include "framework/SafeFile.h"

#include <QCryptographicHash>
#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <memory>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr int KeyBytes = 32;
constexpr int NonceBytes = 12;
constexpr int TagBytes = 8;
constexpr qint64 MaxKeyFileBytes = 4 << 20;
const QByteArray FirstHeader = "HALVARN KNTRH KEY 1\n";
const QByteArray Header = "HALVARN KNTRH KEY 2\n";
const QString Section = u"KNTRH"_s;
const QString FingerprintKey = u"Klucz"_s;

QString KeyFile(const DataFolder& folder)
{
    return folder.root() + u"/KNTRH.KEY"_s;
}

QString Fingerprint(const QByteArray& key)
{
    const QByteArray digest = QCryptographicHash::hash("KNTRH_V002" + key, QCryptographicHash::Sha256);
    return QString::fromLatin1(digest.left(8).toHex());
}

QByteArray Tag(qint32 id, const QByteArray& nonce, const QByteArray& enciphered)
{
    QByteArray idBytes(4, '\0');
    qToBigEndian(id, idBytes.data());
    return QCryptographicHash::hash("KNTRH tag" + idBytes + nonce + enciphered, QCryptographicHash::Sha256)
        .left(TagBytes);
}

QByteArray FromHex(const QByteArray& hex, int bytes)
{
    const QByteArray value = QByteArray::fromHex(hex);
    return hex.size() == 2 * bytes && value.toHex() == hex.toLower() ? value : QByteArray();
}

// "ID nonce tag" in hex; false when the line is not one.
bool ParseNonce(const QByteArray& line, ProducerKey::Nonce& nonce)
{
    const QList<QByteArray> fields = line.split(' ');
    bool number = false;
    nonce.id = fields.size() == 3 ? fields[0].toInt(&number) : 0;
    nonce.nonce = fields.size() == 3 ? FromHex(fields[1], NonceBytes) : QByteArray();
    nonce.tag = fields.size() == 3 ? FromHex(fields[2], TagBytes) : QByteArray();
    return number && !nonce.nonce.isEmpty() && !nonce.tag.isEmpty();
}

// The key and the nonces of a key file; an empty key when the file is not one.
QByteArray ParseKeyFile(const QByteArray& contents, std::vector<ProducerKey::Nonce>& nonces)
{
    const bool first = contents.startsWith(FirstHeader);
    if (!first && !contents.startsWith(Header))
        return {};
    const QList<QByteArray> lines = contents.mid(Header.size()).trimmed().split('\n');
    for (qsizetype i = 1; !first && i < lines.size(); ++i) {
        ProducerKey::Nonce nonce;
        if (!ParseNonce(lines[i].trimmed(), nonce))
            return {};
        nonces.push_back(nonce);
    }
    return FromHex(lines.front().trimmed(), KeyBytes);
}

void WriteKeyFile(const QString& path, const QByteArray& contents)
{
    try {
        WriteFileAtomically(path, contents, FileAccess::Private);
    } catch (const FileWriteError& failure) {
        throw ProducerListError(u"Nie można zapisać klucza haseł: "_s + failure.message());
    }
}

// AES-256 in counter mode from the given counter block.
QByteArray Ctr(const QByteArray& key, const unsigned char (&iv)[16], const QByteArray& in)
{
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(EVP_CIPHER_CTX_new(),
                                                                                  EVP_CIPHER_CTX_free);
    QByteArray out(in.size(), '\0');
    int length = 0;
    const bool done =
        context &&
        EVP_EncryptInit_ex(context.get(), EVP_aes_256_ctr(), nullptr,
                           reinterpret_cast<const unsigned char*>(key.constData()), iv) == 1 &&
        EVP_EncryptUpdate(context.get(), reinterpret_cast<unsigned char*>(out.data()), &length,
                          reinterpret_cast<const unsigned char*>(in.constData()), static_cast<int>(in.size())) == 1 &&
        length == in.size();
    if (!done)
        throw ProducerListError(u"Błąd szyfrowania hasła"_s);
    return out;
}

QByteArray WithNonce(const QByteArray& key, const QByteArray& nonce, const QByteArray& in)
{
    unsigned char iv[16] = {};
    std::copy(nonce.begin(), nonce.end(), iv);
    return Ctr(key, iv, in);
}

// Passwords written before nonces: the counter block starts with the record's ID.
QByteArray WithRecordId(const QByteArray& key, qint32 id, const QByteArray& in)
{
    unsigned char iv[16] = {'K', 'N', 'T', 'R', 'H', 'V', '0', '2'};
    qToBigEndian(id, iv + 8);
    return Ctr(key, iv, in);
}

bool UsedBy(const ProducerKey::Nonce& nonce, const std::vector<ProducerRecord>& records)
{
    return std::any_of(records.begin(), records.end(), [&nonce](const ProducerRecord& r) {
        return r.id == nonce.id && Tag(r.id, nonce.nonce, r.password) == nonce.tag;
    });
}
} // namespace

ProducerKey ProducerKey::open(const DataFolder& folder)
{
    const QString path = KeyFile(folder);
    IniFile settings(folder.settingsFile());
    const QString remembered = settings.readString(Section, FingerprintKey, QString());
    QFile file(path);
    if (!file.exists())
        return {path, remembered.isEmpty() ? State::NotMade : State::Missing, {}};
    std::vector<Nonce> nonces;
    const QByteArray key =
        file.open(QIODevice::ReadOnly) ? ParseKeyFile(file.read(MaxKeyFileBytes), nonces) : QByteArray();
    if (key.isEmpty())
        return {path, State::Damaged, {}};
    ::chmod(QFile::encodeName(path).constData(), 0600);
    if (remembered.isEmpty())
        settings.writeString(Section, FingerprintKey, Fingerprint(key));
    else if (remembered != Fingerprint(key))
        return {path, State::Different, {}};
    return {path, State::Ready, key, std::move(nonces)};
}

ProducerKey ProducerKey::make(const DataFolder& folder)
{
    const QString path = KeyFile(folder);
    if (QFile::exists(path)) {
        QFile::remove(path + u".OLD"_s);
        if (!QFile::rename(path, path + u".OLD"_s))
            throw ProducerListError(u"Nie można zachować dotychczasowego klucza haseł \"%1\""_s.arg(path));
    }
    QByteArray key(KeyBytes, '\0');
    if (RAND_bytes(reinterpret_cast<unsigned char*>(key.data()), KeyBytes) != 1)
        throw ProducerListError(u"Nie można wylosować klucza haseł"_s);
    const ProducerKey made(path, State::Ready, key);
    made.save({});
    IniFile(folder.settingsFile()).writeString(Section, FingerprintKey, Fingerprint(key));
    return made;
}

QString ProducerKey::problem() const
{
    switch (state_) {
    case State::Missing: return u"brak pliku klucza haseł KNTRH.KEY"_s;
    case State::Damaged: return u"plik klucza haseł KNTRH.KEY jest uszkodzony"_s;
    case State::Different: return u"plik klucza haseł KNTRH.KEY nie jest kluczem, którym zapisano listę"_s;
    case State::Ready:
    case State::NotMade: return {};
    }
    return {};
}

QByteArray ProducerKey::encipher(qint32 id, const QByteArray& plain)
{
    if (!ready())
        throw ProducerListError(u"Brak klucza haseł"_s);
    QByteArray nonce(NonceBytes, '\0');
    if (RAND_bytes(reinterpret_cast<unsigned char*>(nonce.data()), NonceBytes) != 1)
        throw ProducerListError(u"Nie można wylosować liczby jednorazowej hasła"_s);
    const QByteArray enciphered = WithNonce(key_, nonce, plain);
    nonces_.push_back({id, nonce, Tag(id, nonce, enciphered)});
    return enciphered;
}

QByteArray ProducerKey::decipher(qint32 id, const QByteArray& enciphered) const
{
    if (!ready())
        throw ProducerListError(u"Brak klucza haseł"_s);
    const Nonce* nonce = nonceOf(id, enciphered);
    return nonce ? WithNonce(key_, nonce->nonce, enciphered) : WithRecordId(key_, id, enciphered);
}

bool ProducerKey::knows(const ProducerRecord& record) const
{
    return nonceOf(record.id, record.password) != nullptr;
}

const ProducerKey::Nonce* ProducerKey::nonceOf(qint32 id, const QByteArray& enciphered) const
{
    const auto found = std::find_if(nonces_.begin(), nonces_.end(), [&](const Nonce& n) {
        return n.id == id && Tag(id, n.nonce, enciphered) == n.tag;
    });
    return found == nonces_.end() ? nullptr : &*found;
}

void ProducerKey::rememberNonces()
{
    save(nonces_);
}

void ProducerKey::forgetNoncesBut(const std::vector<ProducerRecord>& records)
{
    std::erase_if(nonces_, [&records](const Nonce& nonce) { return !UsedBy(nonce, records); });
    save(nonces_);
}

void ProducerKey::save(const std::vector<Nonce>& nonces) const
{
    QByteArray contents = Header + key_.toHex() + '\n';
    for (const Nonce& n : nonces)
        contents += QByteArray::number(n.id) + ' ' + n.nonce.toHex() + ' ' + n.tag.toHex() + '\n';
    WriteKeyFile(path_, contents);
}
