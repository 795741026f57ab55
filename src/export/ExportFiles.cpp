#include "export/ExportFiles.h"

QString WithTrailingSeparator(const QString& folder)
{
    if (folder.isEmpty() || folder.endsWith(u'/') || folder.endsWith(u'\\'))
        return folder;
    return folder + u'/';
}

QString ExportNaming::ExportFileName(const QString& prefix, bool withTime, const QString& extension) const
{
    QString name = folder + prefix + producer + u' ' + referenceDate.toString(u"dd.MM.yyyy");
    if (withTime)
        name += u' ' + now.time().toString(u"HH:mm:ss").replace(u':', u'_');
    return name + extension;
}
