#include "core/producers/ProducerKey.h"

#include "core/producers/ProducerList.h"
#include "framework/IniFile.h"

#include <QCryptographicHash>
#include <QFile>
#include <QtEndian>

#include <fcntl.h>
#include <memory>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr int KeyBytes = 32;
const QByteArray FileHeader = "HALVARN KNTRH KEY 1\n";
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

// The key of a key file; empty when the file is not one.
QByteArray ParseKeyFile(const QByteArray& contents)
{
    if (!contents.startsWith(FileHeader))
        return {};
    const QByteArray hex = contents.mid(FileHeader.size()).trimmed();
    const QByteArray key = QByteArray::fromHex(hex);
    return hex.size() == 2 * KeyBytes && key.toHex() == hex.toLower() ? key : QByteArray();
}

// Written under a temporary name created readable by the user only, synced and
// renamed, so the key is never seen by others nor left half-written.
void WriteKeyFile(const QString& path, const QByteArray& contents)
{
    const QByteArray temporary = QFile::encodeName(path + u".tmp"_s);
    ::unlink(temporary.constData());
    const int fd = ::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    bool written = fd >= 0 && ::write(fd, contents.constData(), static_cast<size_t>(contents.size())) ==
                                  static_cast<ssize_t>(contents.size());
    written = fd >= 0 && ::fsync(fd) == 0 && written;
    if (fd >= 0)
        ::close(fd);
    if (!written || ::rename(temporary.constData(), QFile::encodeName(path).constData()) != 0) {
        ::unlink(temporary.constData());
        throw ProducerListError(u"Nie można zapisać klucza haseł \"%1\""_s.arg(path));
    }
}
} // namespace

ProducerKey ProducerKey::open(const DataFolder& folder)
{
    IniFile settings(folder.settingsFile());
    const QString remembered = settings.readString(Section, FingerprintKey, QString());
    QFile file(KeyFile(folder));
    if (!file.exists())
        return {remembered.isEmpty() ? State::NotMade : State::Missing, {}};
    if (!file.open(QIODevice::ReadOnly))
        return {State::Damaged, {}};
    const QByteArray key = ParseKeyFile(file.read(4096));
    if (key.isEmpty())
        return {State::Damaged, {}};
    ::chmod(QFile::encodeName(file.fileName()).constData(), 0600);
    if (remembered.isEmpty())
        settings.writeString(Section, FingerprintKey, Fingerprint(key));
    else if (remembered != Fingerprint(key))
        return {State::Different, {}};
    return {State::Ready, key};
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
    WriteKeyFile(path, FileHeader + key.toHex() + '\n');
    IniFile(folder.settingsFile()).writeString(Section, FingerprintKey, Fingerprint(key));
    return {State::Ready, key};
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

// The counter block starts with the record's ID, so every record has a keystream
// of its own; a password of at most 30 bytes takes two blocks of it.
QByteArray ProducerKey::encipher(qint32 id, const QByteArray& plain) const
{
    if (!ready())
        throw ProducerListError(u"Brak klucza haseł"_s);
    unsigned char iv[16] = {'K', 'N', 'T', 'R', 'H', 'V', '0', '2'};
    qToBigEndian(id, iv + 8);
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(EVP_CIPHER_CTX_new(),
                                                                                  EVP_CIPHER_CTX_free);
    QByteArray out(plain.size(), '\0');
    int length = 0;
    const bool done = context &&
                      EVP_EncryptInit_ex(context.get(), EVP_aes_256_ctr(), nullptr,
                                         reinterpret_cast<const unsigned char*>(key_.constData()), iv) == 1 &&
                      EVP_EncryptUpdate(context.get(), reinterpret_cast<unsigned char*>(out.data()), &length,
                                        reinterpret_cast<const unsigned char*>(plain.constData()),
                                        static_cast<int>(plain.size())) == 1 &&
                      length == plain.size();
    if (!done)
        throw ProducerListError(u"Błąd szyfrowania hasła"_s);
    return out;
}
