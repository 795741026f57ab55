#include "framework/SafeFile.h"

#include <QDir>
#include <QSaveFile>

void WriteFileAtomically(const QString& path, const QByteArray& contents)
{
    QSaveFile file(path);
    const auto fail = [&path](const QString& reason) {
        throw FileWriteError(QStringLiteral("Nie można zapisać pliku \"%1\": %2")
                                 .arg(QDir::toNativeSeparators(path), reason));
    };
    if (!file.open(QIODevice::WriteOnly))
        fail(file.errorString());
    if (file.write(contents) != contents.size())
        fail(file.errorString());
    if (!file.commit())
        fail(file.errorString());
}
