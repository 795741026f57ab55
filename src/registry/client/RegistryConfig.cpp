#include "registry/client/RegistryConfig.h"

#include "framework/IniFile.h"

#include <algorithm>

RegistryConfig RegistryConfig::read(const IniFile& settings)
{
    const QString section = QStringLiteral("IRZ");
    RegistryConfig config;
    config.ssoBase = settings.readString(section, QStringLiteral("SsoBase"), config.ssoBase);
    config.apiBase = settings.readString(section, QStringLiteral("ApiBase"), config.apiBase);
    config.maxParallelRequests =
        std::clamp(settings.readInteger(section, QStringLiteral("MaxParallelRequests"), config.maxParallelRequests), 1, 64);
    return config;
}
