#include "framework/DataFolder.h"

#include "framework/IniFile.h"

#include <QDir>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

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

// The screenshot folder is made only at the first start: a user who deletes it
// turns the screenshots of error reports off.
bool DataFolder::prepare() const
{
    QDir dir;
    if (!dir.exists(root_) && !dir.mkpath(file(u"SCREENSHOTS"_s)))
        return false;
    for (const QString& sub : {u"EXPORT"_s, u"SZABLONY"_s, u"PDF"_s})
        if (!dir.mkpath(file(sub)))
            return false;
    return true;
}

CommonSettings CommonSettings::read(const QString& path)
{
    const IniFile ini(path);
    const QString section = u"PARAM"_s;
    CommonSettings settings;
    settings.tester = ini.readBool(section, u"TESTER"_s, false);
    settings.torvLogin = ini.readBool(section, u"TORV_Login"_s, false);
    settings.screenshotFolder = ini.readString(section, u"SCREENSHOTS"_s, {});
    return settings;
}
