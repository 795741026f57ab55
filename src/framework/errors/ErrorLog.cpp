#include "framework/errors/ErrorLog.h"

#include "framework/Cp1250.h"
#include "framework/SafeFile.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <pwd.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

QString SystemUserName()
{
    for (const char* variable : {"USER", "LOGNAME", "USERNAME"})
        if (const QString name = qEnvironmentVariable(variable); !name.isEmpty())
            return name;
    const passwd* entry = ::getpwuid(::getuid());
    return entry ? QString::fromLocal8Bit(entry->pw_name) : QString();
}

QString ErrorLog::append(const QString& report) const
{
    rotate();
    const QDateTime now = QDateTime::currentDateTime();
    const QLocale locale;
    QString header = u"Error. Date: %1 Time: %2 "_s.arg(locale.toString(now.date(), QLocale::ShortFormat),
                                                        locale.toString(now.time(), u"HH:mm:ss"));
    if (const QString user = SystemUserName(); !user.isEmpty())
        header += u"User: %1 "_s.arg(user);
    QString text = header + u"\n"_s + report + u"\n"_s;
    text.replace(u"\r\n"_s, u"\n"_s).replace(u'\n', u"\r\n"_s);
    try {
        AppendDurably(path_, ToCp1250(text));
        return {};
    } catch (const FileWriteError& failure) {
        return failure.message();
    }
}

void ErrorLog::rotate() const
{
    if (QFileInfo(path_).size() < MaxBytes)
        return;
    const QString older = QString(path_).replace(u".LOG"_s, u".1.LOG"_s);
    QFile::remove(older);
    QFile::rename(path_, older);
}
