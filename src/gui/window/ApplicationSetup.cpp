#include "gui/window/ApplicationSetup.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

using namespace Qt::StringLiterals;

namespace {
bool InstallQtTranslations(QCoreApplication& app)
{
    auto* translator = new QTranslator(&app); // owned by the application
    return translator->load(u"qtbase_pl"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath)) &&
           QCoreApplication::installTranslator(translator);
}
} // namespace

bool SetUpApplication(QCoreApplication& app)
{
    QCoreApplication::setApplicationName(u"Halvarn"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(HALVARN_VERSION));
    QLocale::setDefault(QLocale(QLocale::Polish, QLocale::Poland));
    return InstallQtTranslations(app);
}
