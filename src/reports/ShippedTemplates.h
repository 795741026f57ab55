#pragma once

#include <QString>
#include <QStringList>

// The band templates the program ships, built into it, and their copy into the
// data folder's templates folder where users may edit them.

QStringList ShippedTemplateNames();

struct TemplateInstallResult {
    QStringList installed; // file names copied this time
    QStringList failed;    // one Polish message per file that could not be copied, with the reason
};

// Copies each shipped template whose name is not yet in the folder; a file
// already there, possibly edited by the user, is never replaced. Never throws.
TemplateInstallResult InstallShippedTemplates(const QString& templatesFolder);
