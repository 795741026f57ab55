#pragma once

#include <QString>
#include <QStringList>

using namespace Qt::StringLiterals;

class IniFile;

// Where the registry is and how it is asked; section "IRZ" of the settings file.
struct RegistryConfig {
    QString ssoBase = u"https://sso.arimr.gov.pl"_s;
    QString apiBase = u"https://irz.arimr.gov.pl"_s;
    int maxParallelRequests = 8; // single-animal requests kept in flight; 1 = one after another
    int getTimeoutMs = 150'000;
    int postTimeoutMs = 450'000;
    qint64 maxAnswerBytes = 64ll << 20;
    bool testBranch = false; // "Test=1": every request goes to the registry's test branch
    QStringList problems;    // settings refused while reading, each replaced by its default

    static RegistryConfig read(const IniFile& settings);
};

inline constexpr int MaxParallelRequestsLimit = 64;
inline constexpr int TimeoutSecondsLimit = 3600;
