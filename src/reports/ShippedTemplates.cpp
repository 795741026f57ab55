#include "reports/ShippedTemplates.h"

#include "framework/SafeFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {
QByteArray ShippedTemplate(const QString& name)
{
    QFile resource(u":/templates/"_s + name);
    if (!resource.open(QIODevice::ReadOnly))
        throw HalvarnError(u"Brak wbudowanego szablonu \"%1\" w programie"_s.arg(name));
    return resource.readAll();
}
} // namespace

QStringList ShippedTemplateNames()
{
    return {u"Rozczytane zwierzęta.fr3"_s,   u"Grupy technologiczne.fr3"_s, u"Rozczytane zwierzęta z filtrem.fr3"_s,
            u"Zgłoszenie zmieny TUKU.fr3"_s, u"Lista kontrolna.fr3"_s,      u"Porównanie pobrań.fr3"_s};
}

TemplateInstallResult InstallShippedTemplates(const QString& templatesFolder)
{
    TemplateInstallResult result;
    // A folder that cannot be made shows in the failed writes below, with their reason.
    QDir().mkpath(templatesFolder);
    const QDir folder(templatesFolder);
    for (const QString& name : ShippedTemplateNames()) {
        const QString path = folder.filePath(name);
        if (QFileInfo::exists(path))
            continue;
        try {
            WriteFileAtomically(path, ShippedTemplate(name));
            result.installed.append(name);
        } catch (const HalvarnError& error) {
            result.failed.append(error.message());
        }
    }
    return result;
}
