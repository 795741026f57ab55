// 20,000 animals downloaded from the simulator (no latency), once by the
// command-line program and once through the window on the offscreen platform.
// Prints both times and their ratio (target: the window at most 1.5 times as
// long), and how the window kept up meanwhile: how often its event loop ran and
// how many different download status texts it showed while the download ran.
#include "core/session/HalvarnSession.h"
#include "gui/window/StatusDisplay.h"
#include "gui/window/TfHalvarnMain.h"
#include "gui/window/UserDialogs.h"
#include "registry/sim/RegistrySimulator.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QPushButton>
#include <QSet>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {
class SilentDialogs : public UserDialogs {
public:
    void message(const QString&, const QString&, MessageIcon) override {}
    bool question(const QString&, const QString&) override { return true; }
    bool cautiousQuestion(const QString&, const QString&) override { return false; }
    std::optional<QString> herd() override { return u"ALL"_s; }
    std::optional<QString> useDirection() override { return std::nullopt; }
    std::optional<ChosenProducer> chooseProducer(const DataFolder&, qint32) override { return std::nullopt; }
    std::optional<qint64> chooseArchived(const DataFolder&) override { return std::nullopt; }
    std::optional<QDate> recountDate(QDate) override { return std::nullopt; }
    std::optional<ControlListChoice> controlList(const QStringList&) override { return std::nullopt; }
    void compareDownloads(const DataFolder&, TdmulmxDataBase_FR3&, const std::function<void(const PrintJob&)>&) override
    {}
    void openFile(const QString&) override {}
    void showPreview(std::shared_ptr<const PreparedReport>, const PreviewSettings&) override {}
    void designTemplate(const QString&, const std::function<PreparedReport(const ReportTemplate&)>&) override {}
};

double Seconds(const QElapsedTimer& timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e9;
}

double RunCli(const QString& baseUrl, const DemoOptions& demo)
{
    QTemporaryDir data;
    QProcess cli;
    cli.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    cli.setStandardOutputFile(QProcess::nullDevice());
    QElapsedTimer timer;
    timer.start();
    cli.start(QStringLiteral(HALVARN_CLI), {u"download"_s, u"--login"_s, demo.login, u"--password"_s, demo.password,
                                            u"--producer"_s, demo.producerNumber, u"--sso-base"_s, baseUrl,
                                            u"--api-base"_s, baseUrl, u"--data-dir"_s, data.path(), u"--yes"_s});
    cli.waitForFinished(-1);
    return cli.exitCode() == 0 ? Seconds(timer) : -1;
}

struct WindowRun {
    double seconds = 0;
    int loopTurns = 0;
    int statusTexts = 0;
    int animals = 0;
};

WindowRun RunWindow(const QString& baseUrl, const DemoOptions& demo)
{
    QTemporaryDir data;
    RegistryConfig config;
    config.ssoBase = config.apiBase = baseUrl;
    TfHalvarnMain window(DataFolder(data.path()), config, std::make_unique<SilentDialogs>());
    window.show();
    window.fillLogin(demo.login, demo.password, demo.producerNumber);
    WindowRun run;
    QSet<QString> texts;
    QTimer probe;
    probe.setInterval(50);
    QObject::connect(&probe, &QTimer::timeout, [&] {
        ++run.loopTurns;
        texts.insert(window.statusDisplay()->text(StatusDisplay::Step));
    });
    probe.start();
    QElapsedTimer timer;
    timer.start();
    window.findChild<QPushButton*>(u"cxButton1"_s)->click();
    run.seconds = Seconds(timer);
    run.statusTexts = static_cast<int>(texts.size());
    run.animals = window.session().tables().mdRZ00().recordCount();
    return run;
}
} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(HALVARN_VERSION));
    QTextStream out(stdout);
    DemoOptions demo;
    demo.herdSizes = {5000, 5000, 5000, 5000};
    RegistrySimulator simulator(GenerateDemoDataset(demo));
    if (!simulator.start()) {
        out << "the simulator could not start" << Qt::endl;
        return 1;
    }
    const double cli = RunCli(simulator.baseUrl(), demo);
    const WindowRun window = RunWindow(simulator.baseUrl(), demo);
    if (cli < 0 || window.animals != 20000) {
        out << "a download failed (command line " << cli << " s, window animals " << window.animals << ")" << Qt::endl;
        return 1;
    }
    const double ratio = window.seconds / cli;
    out << "20,000 animals, command line: " << QString::number(cli, 'f', 2) << " s" << Qt::endl;
    out << "20,000 animals, window:       " << QString::number(window.seconds, 'f', 2) << " s" << Qt::endl;
    out << "window / command line: " << QString::number(ratio, 'f', 2) << " (target <= 1.5)" << Qt::endl;
    out << "while downloading, the window's event loop ran a 50 ms timer " << window.loopTurns << " times and showed "
        << window.statusTexts << " different status texts" << Qt::endl;
    return ratio <= 1.5 ? 0 : 1;
}
