#pragma once

#include "core/session/HalvarnSession.h"
#include "framework/Cp1250.h"
#include "framework/IniFile.h"
#include "registry/client/TdmIRZ_PLUS.h"
#include "registry/usechange/UseChangeCommand.h"
#include "reports/ShippedTemplates.h"
#include "reports/print/PrintCommands.h"
#include "reports/print/TdmulmxDataBase_FR3.h"
#include "support/Files.h"
#include "support/RecordingHost.h"
#include "support/RecordingServer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

using Reply = RecordingServer::Reply;
inline const QString Producer = u"071234562"_s;

inline QString Holding(const QString& herd)
{
    return Producer + u'-' + herd;
}

// A registry whose answer to each animal's notice and to each document's
// status query a test sets up; anything not set up is accepted, and every
// document is "Zatwierdzony".
struct ScriptedRegistry {
    QMap<QString, Reply> notices;                     // ear tag -> answer
    QMap<QString, Reply> statuses;                    // document number -> answer
    Reply documentsSince{200, R"({"dokumenty":[]})"}; // the list asked for by date

    Reply answer(const RecordingServer::Request& request) const
    {
        if (request.target.endsWith("/token"))
            return {200, R"({"access_token":"t"})"};
        if (request.target.contains("/ztuku")) {
            const QString tag = QJsonDocument::fromJson(request.body)
                                    .object()[u"zgloszenie"][u"pozycje"][0][u"numerIdentyfikacyjnyZwierzecia"]
                                    .toString();
            return notices.value(tag, Reply{200, R"({"numerDokumentu":"D/)" + tag.toUtf8() + "\"}"});
        }
        const QUrlQuery query(QUrl(QString::fromUtf8(request.target)).query());
        if (query.hasQueryItem(u"dataPrzyjeciaOd"_s))
            return documentsSince;
        const QString number = query.queryItemValue(u"numerDokumentu"_s);
        return statuses.value(number, Reply{200, R"({"dokumenty":[{"numerDokumentu":")" + number.toUtf8() +
                                                     R"(","statusDokumentu":"7"}]})"});
    }
};

inline Reply Refused(const QByteArray& errors)
{
    return {200, R"({"komunikat":"Zgłoszenie odrzucone","bledy":)" + errors + "}"};
}

// A session with animals put straight into mdRZ00, and the command's parts around it.
struct UseChange {
    QTemporaryDir folder;
    RecordingHost host;
    HalvarnSession session{DataFolder(folder.path()), host};
    TdmulmxDataBase_FR3 reports;
    PrintCommands prints{session, reports};
    RegistryConfig config;
    UseChangeResult result;
    std::vector<RecordingServer::Request> requests;

    UseChange()
    {
        InstallShippedTemplates(session.dataFolder().templatesFolder());
        IniFile(session.dataFolder().settingsFile()).writeInteger(u"TUKU"_s, u"WaitSeconds"_s, 0);
        session.inputs.login = u"jan"_s;
        session.inputs.password = u"haslo"_s;
        session.inputs.producerNumber = Producer;
        host.useDirection = u"MI"_s;
        session.ClearAllData(); // opens the tables
    }
    void addAnimal(const QString& herd, const QString& tag, bool marked, const QString& type = u"ML"_s,
                   const QString& direction = u"ML"_s)
    {
        Table& animals = session.tables().mdRZ00();
        animals.setReadOnly(false);
        animals.append();
        animals.setValue(u"STADO", herd);
        animals.setValue(u"NumerIdentyfikacyjny", tag);
        animals.setValue(u"NumerDzialalnosci", Holding(herd));
        animals.setValue(u"ZAZNACZONE", marked);
        animals.post();
        session.tables().restoreReadOnly(animals);
        session.answers.push_back({1, u"XX"_s, type, direction, false, std::nullopt, std::nullopt});
    }
    void run(const ScriptedRegistry& registry)
    {
        runWith([&registry](const RecordingServer::Request& r) { return registry.answer(r); });
    }
    void runWith(RecordingServer::Responder responder)
    {
        RecordingServer server(std::move(responder));
        config.ssoBase = config.apiBase = server.baseUrl();
        TdmIRZ_PLUS client(config, host);
        result = UseChangeCommand(session, client, prints).run();
        requests = server.requests();
    }
    QStringList column(const char* field)
    {
        QStringList values;
        Table& table = session.tables().mdTUKU();
        for (int row = 0; row < table.recordCount(); ++row)
            values.append(AsString(table.at(row, table.requireField(field))));
        return values;
    }
    QStringList marked()
    {
        QStringList tags;
        Table& animals = session.tables().mdRZ00();
        for (int row = 0; row < animals.recordCount(); ++row)
            if (AsBoolean(animals.at(row, animals.requireField(u"ZAZNACZONE"))))
                tags.append(AsString(animals.at(row, animals.requireField(u"NumerIdentyfikacyjny"))));
        return tags;
    }
    QStringList journal() const
    {
        return FromCp1250(ReadAll(session.dataFolder().useChangeJournal())).split(u"\r\n"_s, Qt::SkipEmptyParts);
    }
    int requestsFor(const char* part) const
    {
        return static_cast<int>(
            std::count_if(requests.begin(), requests.end(), [part](const auto& r) { return r.target.contains(part); }));
    }
};
