#include "framework/SafeFile.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QStorageInfo>

namespace {
// The user reads the reason in Polish; the system's own words follow for the makers.
// A full disk often shows only as a failed flush with no reason given, so the
// free space of the folder is asked as well.
QString Reason(const QFileDevice& file, const QString& path, qint64 size)
{
    const QStorageInfo storage(QFileInfo(path).absolutePath());
    if (file.error() == QFileDevice::ResourceError || (storage.isValid() && storage.bytesAvailable() < size))
        return QStringLiteral("Brak miejsca na dysku");
    switch (file.error()) {
    case QFileDevice::PermissionsError:
        return QStringLiteral("Brak uprawnień do zapisu (%1)").arg(file.errorString());
    case QFileDevice::OpenError:
        return QStringLiteral("Nie można otworzyć pliku do zapisu; może jest otwarty w innym programie (%1)")
            .arg(file.errorString());
    default:
        return QStringLiteral("Błąd zapisu (%1)").arg(file.errorString());
    }
}
} // namespace

void WriteFileAtomically(const QString& path, const QByteArray& contents)
{
    QSaveFile file(path);
    const auto fail = [&path, &file, &contents] {
        throw FileWriteError(QStringLiteral("Nie można zapisać pliku \"%1\": %2")
                                 .arg(QDir::toNativeSeparators(path), Reason(file, path, contents.size())));
    };
    if (!file.open(QIODevice::WriteOnly))
        fail();
    if (file.write(contents) != contents.size())
        fail();
    if (!file.commit())
        fail();
}
