#include "framework/SafeFile.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QStorageInfo>

using namespace Qt::StringLiterals;

namespace {
// The user reads the reason in Polish; the system's own words follow for the makers.
// A full disk often shows only as a failed flush with no reason given, so the
// free space of the folder is asked as well.
QString Reason(const QFileDevice& file, const QString& path, qint64 size)
{
    const QStorageInfo storage(QFileInfo(path).absolutePath());
    if (file.error() == QFileDevice::ResourceError || (storage.isValid() && storage.bytesAvailable() < size))
        return u"Brak miejsca na dysku"_s;
    switch (file.error()) {
    case QFileDevice::PermissionsError: return u"Brak uprawnień do zapisu (%1)"_s.arg(file.errorString());
    case QFileDevice::OpenError:
        return u"Nie można otworzyć pliku do zapisu; może jest otwarty w innym programie (%1)"_s.arg(
            file.errorString());
    default: return u"Błąd zapisu (%1)"_s.arg(file.errorString());
    }
}
} // namespace

void WriteFileAtomically(const QString& path, const QByteArray& contents)
{
    QSaveFile file(path);
    const auto fail = [&path, &file, &contents] {
        throw FileWriteError(u"Nie można zapisać pliku \"%1\": %2"_s.arg(QDir::toNativeSeparators(path),
                                                                         Reason(file, path, contents.size())));
    };
    if (!file.open(QIODevice::WriteOnly))
        fail();
    if (file.write(contents) != contents.size())
        fail();
    if (!file.commit())
        fail();
}
