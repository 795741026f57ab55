#pragma once

#include "core/session/HalvarnSession.h"
#include "framework/IniFile.h"
#include "registry/client/TdmIRZ_PLUS.h"
#include "registry/download/DownloadCommand.h"
#include "registry/sim/RegistrySimulator.h"
#include "support/RecordingHost.h"

#include <QTemporaryDir>

#include <memory>

// A session of its own in a data folder of its own, downloading from a simulated registry.
struct DemoDownload {
    explicit DemoDownload(const QString& folderPath) : session(DataFolder(folderPath), host) {}

    RecordingHost host;
    HalvarnSession session;

    // The state date is the reference date unless given.
    DownloadOutcome run(const SimDataset& data, QDate referenceDate, WelfareFlags flags = {}, QDate stateDate = {})
    {
        RegistrySimulator registry(data);
        if (!registry.start())
            return DownloadOutcome::NotStarted;
        RegistryConfig config = RegistryConfig::read(IniFile(session.dataFolder().settingsFile()));
        config.ssoBase = config.apiBase = registry.baseUrl();
        const SimProducer& producer = data.producers.front();
        session.inputs.login = producer.login;
        session.inputs.password = producer.password;
        session.inputs.producerNumber = producer.numerProducenta;
        session.inputs.producerName = u"Gospodarstwo Zielonka"_s;
        session.inputs.stateDate = stateDate.isValid() ? stateDate : referenceDate;
        session.inputs.referenceDate = referenceDate;
        session.inputs.flags = flags;
        TdmIRZ_PLUS client(config, host);
        return DownloadCommand(session, client).run();
    }
};

// The demo producer's herds as the simulator serves them, its dates around this one.
inline SimDataset DemoData(QDate referenceDate, std::vector<int> herdSizes = {60, 40, 50})
{
    DemoOptions options;
    options.referenceDate = referenceDate;
    options.herdSizes = std::move(herdSizes);
    return GenerateDemoDataset(options);
}
