#include "gui/window/ApplicationSetup.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace {
bool InstallQtTranslations(QCoreApplication& app)
{
    auto* translator = new QTranslator(&app); // owned by the application
    return translator->load(QStringLiteral("qtbase_pl"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)) &&
           QCoreApplication::installTranslator(translator);
}
} // namespace

bool SetUpApplication(QCoreApplication& app)
{
    QCoreApplication::setApplicationName(QStringLiteral("Halvarn"));
    QCoreApplication::setApplicationVersion(QStringLiteral(HALVARN_VERSION));
    QLocale::setDefault(QLocale(QLocale::Polish, QLocale::Poland));
    return InstallQtTranslations(app);
}
