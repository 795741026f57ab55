#include "framework/DataFolder.h"

#include "framework/IniFile.h"

#include <QDir>
#include <QStandardPaths>

QString DataFolder::resolve(const QString& commandLineDir)
{
    if (!commandLineDir.isEmpty())
        return QDir(commandLineDir).absolutePath();
    const QString fromEnvironment = qEnvironmentVariable("HALVARN_DATA_DIR");
    if (!fromEnvironment.isEmpty())
        return QDir(fromEnvironment).absolutePath();
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
}

DataFolder::DataFolder(QString root) : root_(QDir::cleanPath(std::move(root))) {}

bool DataFolder::prepare() const
{
    QDir dir;
    for (const QString& sub : {QStringLiteral("EXPORT"), QStringLiteral("SZABLONY"), QStringLiteral("PDF")})
        if (!dir.mkpath(file(sub)))
            return false;
    return true;
}

CommonSettings CommonSettings::read(const QString& path)
{
    const IniFile ini(path);
    const QString section = QStringLiteral("PARAM");
    CommonSettings settings;
    settings.tester = ini.readBool(section, QStringLiteral("TESTER"), false);
    settings.torvLogin = ini.readBool(section, QStringLiteral("TORV_Login"), false);
    return settings;
}
