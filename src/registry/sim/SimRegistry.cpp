#include "registry/sim/SimRegistry.h"

#include "registry/sim/HttpLib.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QRandomGenerator>

#include <chrono>

using namespace Qt::StringLiterals;

namespace {
QString Param(const httplib::Request& request, const char* key)
{
    return QString::fromStdString(request.get_param_value(key));
}

QByteArray Json(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray Komunikat(const QString& text)
{
    return Json({{u"komunikat"_s, text}});
}

QByteArray Errors(const char* code, const QString& text)
{
    return Json({{u"bledy"_s, QJsonArray{QJsonObject{{u"kodBledu"_s, QLatin1String(code)}, {u"komunikat"_s, text}}}}});
}

const QByteArray NotJson = QByteArray("<html><body>B\xc5\x82\xc4\x85"
                                      "d serwera</body></html>");
} // namespace

SimRegistry::SimRegistry(SimDataset data, SimOptions options) : data_(std::move(data)), options_(std::move(options))
{
    indexAnimals();
}

// Single-animal requests find their animal at once, however large the herds.
void SimRegistry::indexAnimals()
{
    for (std::size_t p = 0; p < data_.producers.size(); ++p) {
        const SimProducer& producer = data_.producers[p];
        for (std::size_t h = 0; h < producer.holdings.size(); ++h) {
            const auto& animals = producer.holdings[h].animals;
            for (std::size_t a = 0; a < animals.size(); ++a) {
                const QString key =
                    producer.numerProducenta + u'/' + animals[a].value(u"numerIdentyfikacyjnyZwierzecia").toString();
                if (!animalIndex_.contains(key)) // the first of equal tags answers
                    animalIndex_.insert(key, {p, h, a});
            }
        }
    }
}

void SimRegistry::install(httplib::Server& server)
{
    const auto route = [this](Handler handler, bool needsToken) {
        return [this, handler, needsToken](const httplib::Request& request, httplib::Response& response) {
            serve(handler, needsToken, request, response);
        };
    };
    server.Post("/auth/realms/ewniosekplus/protocol/openid-connect/token", route(&SimRegistry::token, false));
    server.Post(R"(/api/dzialalnosci/api/(test|prod)/dzialalnosci)", route(&SimRegistry::holdings, true));
    server.Get(R"(/api/indywidualne/zwierze/api/(test|prod)/zwierzetaIndywidualne)",
               route(&SimRegistry::animalList, true));
    server.Get(R"(/api/indywidualne/zwierze/api/(test|prod)/zwierzeIndywidualne)", route(&SimRegistry::animal, true));
    server.Get(R"(/api/dokumenty/dokument/api/(test|prod)/listaDokumentow)", route(&SimRegistry::documents, true));
    server.Post(R"(/api/indywidualne/dokument/api/(test|prod)/ztuku)", route(&SimRegistry::useChange, true));
}

void SimRegistry::serve(Handler handler, bool needsToken, const httplib::Request& request, httplib::Response& response)
{
    enter();
    pause(options().latencyMs);
    Answer answer{401, Json({{u"error"_s, u"invalid_token"_s}})};
    const std::string authorization = request.get_header_value("Authorization");
    bool authorised = !needsToken;
    {
        const std::lock_guard lock(mutex_);
        authorised = authorised || (authorization.rfind("Bearer ", 0) == 0 &&
                                    tokens_.contains(QString::fromStdString(authorization.substr(7))));
    }
    if (authorised)
        answer = (this->*handler)(request);
    response.status = answer.status;
    // With the charset named, the server sends answers as they are instead of
    // compressing every one of them, which would cost more than the answer itself.
    response.set_content(answer.body.toStdString(), "application/json; charset=utf-8");
    leave();
}

void SimRegistry::enter()
{
    std::unique_lock lock(mutex_);
    slotFree_.wait(lock, [this] { return options_.maxConcurrent <= 0 || active_ < options_.maxConcurrent; });
    stats_.maxConcurrentSeen = std::max(stats_.maxConcurrentSeen, ++active_);
}

void SimRegistry::leave()
{
    {
        const std::lock_guard lock(mutex_);
        --active_;
    }
    slotFree_.notify_one();
}

void SimRegistry::pause(int milliseconds) const
{
    if (milliseconds > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

SimOptions SimRegistry::options() const
{
    const std::lock_guard lock(mutex_);
    return options_;
}

void SimRegistry::setOptions(const SimOptions& options)
{
    {
        const std::lock_guard lock(mutex_);
        options_ = options;
    }
    slotFree_.notify_all();
}

SimStats SimRegistry::stats() const
{
    const std::lock_guard lock(mutex_);
    return stats_;
}

const SimProducer* SimRegistry::producer(const QString& number) const
{
    for (const SimProducer& p : data_.producers)
        if (p.numerProducenta == number)
            return &p;
    return nullptr;
}

// The form body arrives exactly as typed: split on "&" and "=", no decoding.
SimRegistry::Answer SimRegistry::token(const httplib::Request& request)
{
    QHash<QString, QString> form;
    for (const QString& pair : QString::fromStdString(request.body).split(u'&')) {
        const qsizetype eq = pair.indexOf(u'=');
        form.insert(pair.left(eq), eq < 0 ? QString() : pair.mid(eq + 1));
    }
    const std::lock_guard lock(mutex_);
    ++stats_.tokenRequests;
    bool known = false;
    for (const SimProducer& p : data_.producers)
        known = known || (p.login == form.value(u"username"_s) && p.password == form.value(u"password"_s));
    if (!known || options_.faults.refuseLogin || form.value(u"client_id"_s) != u"aplikacja-irzplus")
        return {401, R"({"error":"invalid_grant","error_description":"Invalid user credentials"})"};
    const QString token = QString::number(QRandomGenerator::global()->generate64(), 36);
    tokens_.insert(token);
    return {200, Json({{u"access_token"_s, token}, {u"token_type"_s, u"bearer"_s}, {u"expires_in"_s, 300}})};
}

SimRegistry::Answer SimRegistry::holdings(const httplib::Request& request)
{
    const QJsonObject body = QJsonDocument::fromJson(QByteArray::fromStdString(request.body)).object();
    const SimOptions current = options();
    {
        const std::lock_guard lock(mutex_);
        ++stats_.holdingsRequests;
    }
    if (current.faults.httpErrorHoldings)
        return {500, Errors("SYS-500", u"Błąd wewnętrzny"_s)};
    if (current.faults.notJsonHoldings)
        return {200, NotJson};
    if (current.faults.komunikatHoldings)
        return {200, Komunikat(u"Usługa chwilowo niedostępna"_s)};
    const QString number = body.value(u"numerProducenta").toString();
    const SimProducer* found = producer(number);
    if (!found)
        return {200, Komunikat(u"Nie znaleziono producenta "_s + number)};
    QJsonArray list;
    for (const SimHolding& holding : found->holdings) {
        bool matches = true;
        for (const char* key : {"numerDzialalnosci", "typDzialalnosci", "stanDzialalnosci"}) {
            const QJsonValue wanted = body.value(QLatin1String(key));
            const QJsonValue value = holding.holding.value(QLatin1String(key));
            const QString actual = value.isObject() ? value.toObject().value(u"kod").toString() : value.toString();
            matches = matches && (wanted.isUndefined() || wanted.toString() == actual);
        }
        if (matches)
            list.append(holding.holding);
    }
    return {200, Json({{u"dzialalnosc"_s, list}})};
}

SimRegistry::Answer SimRegistry::spoiled(const QSet<QString>& httpError, const QSet<QString>& komunikat,
                                         const QSet<QString>& notJson, const QString& key,
                                         const QString& komunikatText) const
{
    if (httpError.contains(key))
        return {500, Errors("SYS-500", u"Błąd wewnętrzny"_s)};
    if (notJson.contains(key))
        return {200, NotJson};
    if (komunikat.contains(key))
        return {200, Komunikat(komunikatText)};
    return {0, {}};
}

SimRegistry::Answer SimRegistry::animalList(const httplib::Request& request)
{
    const QString producerNumber = Param(request, "numerProducenta");
    const QString holdingNumber = Param(request, "numerDzialalnosci");
    const QDate stateDate = QDate::fromString(Param(request, "stanDanych"), u"yyyy-MM-dd");
    const SimFaults faults = options().faults;
    {
        const std::lock_guard lock(mutex_);
        ++stats_.animalListRequests;
        stats_.animalListHerds.append(holdingNumber);
    }
    if (faults.slowHerds.contains(holdingNumber))
        pause(faults.slowMs);
    const Answer bad = spoiled(faults.httpErrorHerds, faults.komunikatHerds, faults.notJsonHerds, holdingNumber,
                               u"Brak uprawnień do działalności "_s + holdingNumber);
    if (bad.status != 0)
        return bad;
    const SimProducer* found = producer(producerNumber);
    if (!found)
        return {200, Komunikat(u"Nie znaleziono producenta "_s + producerNumber)};
    QJsonArray list;
    const std::lock_guard lock(mutex_); // use changes may rewrite animals meanwhile
    for (const SimHolding& holding : found->holdings) {
        if (!holdingNumber.isEmpty() && holding.holding.value(u"numerDzialalnosci").toString() != holdingNumber)
            continue;
        for (const QJsonObject& animal : holding.animals) {
            const QDate birth = QDate::fromString(animal.value(u"dataUrodzenia").toString(), u"yyyy-MM-dd");
            if (!stateDate.isValid() || !birth.isValid() || birth <= stateDate)
                list.append(animal);
        }
    }
    return {200, Json({{u"listaZwierzeta"_s, list}})};
}

QJsonObject* SimRegistry::findAnimal(const QString& producerNumber, const QString& tag, QString* holdingNumber)
{
    const auto place = animalIndex_.constFind(producerNumber + u'/' + tag);
    if (place == animalIndex_.cend())
        return nullptr;
    SimHolding& holding = data_.producers[place->producer].holdings[place->holding];
    if (holdingNumber)
        *holdingNumber = holding.holding.value(u"numerDzialalnosci").toString();
    return &holding.animals[place->animal];
}

SimRegistry::Answer SimRegistry::animal(const httplib::Request& request)
{
    const QString tag = Param(request, "numerIdentyfikacyjnyZwierzecia");
    const SimFaults faults = options().faults;
    {
        const std::lock_guard lock(mutex_);
        ++stats_.animalRequests;
    }
    if (faults.slowAnimals.contains(tag))
        pause(faults.slowMs);
    const Answer bad = spoiled(faults.httpErrorAnimals, faults.komunikatAnimals, faults.notJsonAnimals, tag,
                               u"Zwierzę %1 jest zablokowane"_s.arg(tag));
    if (bad.status != 0)
        return bad;
    const std::lock_guard lock(mutex_);
    const QJsonObject* found = findAnimal(Param(request, "numerProducenta"), tag);
    if (!found)
        return {200, Komunikat(u"Nie znaleziono zwierzęcia "_s + tag)};
    return {200, Json(*found)};
}

SimRegistry::Answer SimRegistry::documents(const httplib::Request& request)
{
    const QString number = Param(request, "numerDokumentu");
    const std::lock_guard lock(mutex_);
    ++stats_.documentRequests;
    QJsonArray list;
    for (const QJsonValue document : documents_)
        if (number.isEmpty() || document.toObject().value(u"numerDokumentu").toString() == number)
            list.append(document);
    return {200, Json({{u"dokumenty"_s, list}})};
}

SimRegistry::Answer SimRegistry::useChange(const httplib::Request& request)
{
    const QJsonObject body = QJsonDocument::fromJson(QByteArray::fromStdString(request.body)).object();
    const QJsonObject position = body.value(u"zgloszenie").toObject().value(u"pozycje").toArray().first().toObject();
    const QString tag = position.value(u"numerIdentyfikacyjnyZwierzecia").toString();
    const std::lock_guard lock(mutex_);
    ++stats_.useChangeRequests;
    QJsonObject* animal = findAnimal(body.value(u"numerProducenta").toString(), tag);
    if (!animal)
        return {200,
                Json({{u"komunikat"_s, u"Zgłoszenie odrzucone"_s},
                      {u"bledy"_s, QJsonArray{QJsonObject{{u"kodBledu"_s, u"ZW-404"_s},
                                                          {u"komunikat"_s, u"Nie znaleziono zwierzęcia "_s + tag}}}}})};
    const QString direction = position.value(u"kierunekUzytkowy").toObject().value(u"kod").toString();
    if (!direction.isEmpty())
        animal->insert(u"kierunekUzytkownia"_s, QJsonObject{{u"kod"_s, direction}, {u"opis"_s, direction}});
    const QString number =
        u"ZTUKU/%1/%2"_s.arg(QDate::currentDate().year()).arg(++documentCounter_, 6, 10, QLatin1Char('0'));
    const QString now = QDateTime::currentDateTime().toString(u"yyyy-MM-ddTHH:mm:ss");
    documents_.append(QJsonObject{{u"numerDokumentu"_s, number},
                                  {u"typDokumentu"_s, u"ZTUKU"_s},
                                  {u"dataZlozeniaDokumentu"_s, now},
                                  {u"dataUtworzenia"_s, now},
                                  {u"dataModyfikacji"_s, now},
                                  {u"statusDokumentu"_s, u"7"_s},
                                  {u"numerKancelaryjny"_s, QString::number(documentCounter_)},
                                  {u"komorkaOrganizacyjna"_s, body.value(u"komorkaOrganizacyjna").toString()}});
    return {200, Json({{u"numerDokumentu"_s, number}, {u"komunikat"_s, u"Dokument przyjęty"_s}})};
}
