#include "framework/IniFile.h"
#include "framework/errors/CrashRecord.h"
#include "gui/errors/HalvarnApplication.h"
#include "gui/errors/WindowErrorHost.h"
#include "gui/window/ApplicationSetup.h"
#include "gui/window/TfHalvarnMain.h"
#include "registry/sim/RegistrySimulator.h"
#include "reports/ShippedTemplates.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QMessageBox>

#include <memory>

using namespace Qt::StringLiterals;

namespace {
struct WindowOptions {
    bool demo = false;
    QString dataDir;
};

WindowOptions ParseOptions(const QApplication& app)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Halvarn – grupy technologiczne bydła z rejestru IRZplus"_s);
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption demo(u"demo"_s, u"wbudowany symulator rejestru z producentem demonstracyjnym"_s);
    const QCommandLineOption dataDir(u"data-dir"_s, u"folder danych programu"_s, u"DIR"_s);
    parser.addOptions({demo, dataDir});
    parser.process(app);
    return {parser.isSet(demo), parser.value(dataDir)};
}

void Refuse(const QString& text)
{
    QMessageBox::critical(nullptr, u"Błąd..."_s, text);
}

ErrorControlSettings ErrorSettings(const DataFolder& folder)
{
    const QString configured = CommonSettings::read(folder.commonSettingsFile()).screenshotFolder;
    return {folder.errorLog(), configured.isEmpty() ? folder.screenshotFolder() : configured, ProgramNames()};
}
} // namespace

int main(int argc, char* argv[])
{
    HalvarnApplication app(argc, argv);
    SetUpApplication(app);
    const WindowOptions options = ParseOptions(app);

    const DataFolder folder(DataFolder::resolve(options.dataDir));
    if (!folder.prepare()) {
        Refuse(u"Nie można utworzyć folderu danych: "_s + folder.root());
        return 1;
    }
    InstallCrashRecorder(folder.crashRecord());
    WindowErrorHost errorHost = WindowErrorHost::fromSettings(folder);
    ErrorControl errors(ErrorSettings(folder), errorHost);
    app.setErrorControl(&errors);
    if (const std::optional<CaughtError> crash = TakeCrashRecord(folder.crashRecord()))
        errors.report(*crash);

    const TemplateInstallResult templates = InstallShippedTemplates(folder.templatesFolder());
    if (!templates.failed.isEmpty())
        QMessageBox::warning(nullptr, u"Ostrzeżenie"_s, templates.failed.join(u'\n'));
    RegistryConfig registry = RegistryConfig::read(IniFile(folder.settingsFile()));
    std::unique_ptr<RegistrySimulator> simulator;
    const DemoOptions demo;
    if (options.demo) {
        simulator = StartDemoRegistry(demo);
        if (!simulator) {
            Refuse(u"Nie można uruchomić symulatora rejestru"_s);
            return 1;
        }
        registry.ssoBase = registry.apiBase = simulator->baseUrl();
    }

    TfHalvarnMain window(folder, registry);
    errors.setSecrets([&window] { return window.secrets(); });
    if (simulator)
        window.fillLogin(demo.login, demo.password, demo.producerNumber);
    window.showMaximized();
    return QApplication::exec();
}
