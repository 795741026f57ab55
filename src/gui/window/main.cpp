#include "gui/window/ApplicationSetup.h"
#include "gui/window/TfHalvarnMain.h"
#include "framework/IniFile.h"
#include "registry/sim/RegistrySimulator.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QMessageBox>

#include <memory>

namespace {
struct WindowOptions {
    bool demo = false;
    QString dataDir;
};

WindowOptions ParseOptions(const QApplication& app)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromUtf8("Halvarn – grupy technologiczne bydła z rejestru IRZplus"));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption demo(QStringLiteral("demo"),
                                  QString::fromUtf8("wbudowany symulator rejestru z producentem demonstracyjnym"));
    const QCommandLineOption dataDir(QStringLiteral("data-dir"), QString::fromUtf8("folder danych programu"),
                                     QStringLiteral("DIR"));
    parser.addOptions({demo, dataDir});
    parser.process(app);
    return {parser.isSet(demo), parser.value(dataDir)};
}

void Refuse(const QString& text)
{
    QMessageBox::critical(nullptr, QString::fromUtf8("Błąd..."), text);
}
} // namespace

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    SetUpApplication(app);
    const WindowOptions options = ParseOptions(app);

    const DataFolder folder(DataFolder::resolve(options.dataDir));
    if (!folder.prepare()) {
        Refuse(QString::fromUtf8("Nie można utworzyć folderu danych: ") + folder.root());
        return 1;
    }
    RegistryConfig registry = RegistryConfig::read(IniFile(folder.settingsFile()));
    std::unique_ptr<RegistrySimulator> simulator;
    const DemoOptions demo;
    if (options.demo) {
        simulator = StartDemoRegistry(demo);
        if (!simulator) {
            Refuse(QString::fromUtf8("Nie można uruchomić symulatora rejestru"));
            return 1;
        }
        registry.ssoBase = registry.apiBase = simulator->baseUrl();
    }

    TfHalvarnMain window(folder, registry);
    if (simulator)
        window.fillLogin(demo.login, demo.password, demo.producerNumber);
    window.showMaximized();
    return QApplication::exec();
}
