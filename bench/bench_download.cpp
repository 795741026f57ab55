// A download of 2 herds of 500 animals from the simulator answering after
// 20 ms, once with one single-animal request at a time and once with the
// default number in flight. Prints both times, the ratio, and whether the two
// runs left identical tables, memos and messages.
#include "BenchSupport.h"
#include "core/session/HalvarnSession.h"
#include "core/session/SessionDump.h"
#include "registry/client/TdmIRZ_PLUS.h"
#include "registry/download/DownloadCommand.h"
#include "registry/sim/RegistrySimulator.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {
class QuietHost : public SilentHost {
public:
    std::vector<ShownMessage> messages;
    void showMessage(const QString& caption, const QString& text, MessageIcon) override
    {
        messages.push_back({caption, text});
    }
    bool askYesNo(const QString&, const QString&) override { return true; }
    std::optional<QString> askHerd() override { return u"ALL"_s; }
};

struct Run {
    double seconds;
    QByteArray dump;
};

Run Download(const QString& baseUrl, const DemoOptions& demo, int parallel)
{
    QTemporaryDir folder;
    QuietHost host;
    HalvarnSession session(DataFolder(folder.path()), host);
    session.inputs.login = demo.login;
    session.inputs.password = demo.password;
    session.inputs.producerNumber = demo.producerNumber;
    session.inputs.stateDate = session.inputs.referenceDate = demo.referenceDate;
    RegistryConfig config;
    config.ssoBase = config.apiBase = baseUrl;
    config.maxParallelRequests = parallel;
    TdmIRZ_PLUS registry(config, host);
    QElapsedTimer timer;
    timer.start();
    DownloadCommand(session, registry).run();
    return {static_cast<double>(timer.nsecsElapsed()) / 1e9, DumpSessionJson(session, host.messages)};
}
} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    DemoOptions demo;
    demo.herdSizes = {500, 500};
    demo.referenceDate = QDate::currentDate();
    SimOptions options;
    options.latencyMs = 20;
    RegistrySimulator simulator(GenerateDemoDataset(demo), options);
    if (!simulator.start()) {
        out << "the simulator could not start" << Qt::endl;
        return 1;
    }
    const Run serial = Download(simulator.baseUrl(), demo, 1);
    const Run parallel = Download(simulator.baseUrl(), demo, RegistryConfig().maxParallelRequests);
    out << "one request at a time:   " << QString::number(serial.seconds, 'f', 2) << " s" << Qt::endl;
    out << "default (" << RegistryConfig().maxParallelRequests
        << " in flight): " << QString::number(parallel.seconds, 'f', 2) << " s" << Qt::endl;
    out << "speed-up: " << QString::number(serial.seconds / parallel.seconds, 'f', 2) << "x (target >= 4x)" << Qt::endl;
    const bool identical = serial.dump == parallel.dump;
    out << "identical tables, memos and messages: " << (identical ? "yes" : "NO") << Qt::endl;
    return identical ? 0 : 1;
}
