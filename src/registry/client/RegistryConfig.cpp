#include "registry/client/RegistryConfig.h"

#include "framework/IniFile.h"

using namespace Qt::StringLiterals;

RegistryConfig RegistryConfig::read(const IniFile& settings)
{
    const QString section = u"IRZ"_s;
    RegistryConfig config;
    config.ssoBase = settings.readString(section, u"SsoBase"_s, config.ssoBase);
    config.apiBase = settings.readString(section, u"ApiBase"_s, config.apiBase);
    const auto bounded = [&](const char* key, int defaultValue, int most) {
        return settings.readInteger(section, QLatin1String(key), defaultValue, {1, most}, config.problems);
    };
    config.maxParallelRequests = bounded("MaxParallelRequests", config.maxParallelRequests, MaxParallelRequestsLimit);
    config.getTimeoutMs = bounded("TimeoutSeconds", config.getTimeoutMs / 1000, TimeoutSecondsLimit) * 1000;
    config.postTimeoutMs = bounded("PostTimeoutSeconds", config.postTimeoutMs / 1000, TimeoutSecondsLimit) * 1000;
    config.maxAnswerBytes = qint64{bounded("MaxAnswerMB", static_cast<int>(config.maxAnswerBytes >> 20), 4096)} << 20;
    config.testBranch = settings.readBool(section, u"Test"_s, false);
    return config;
}
