#include "registry/sim/SimRegistry.h"

#include "registry/sim/HttpLib.h"

#include <QJsonDocument>
#include <QRandomGenerator>

#include <algorithm>
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
    // For tests in other processes: what reached the simulator.
    server.Get("/sim/stats", [this](const httplib::Request&, httplib::Response& response) {
        const SimStats now = stats();
        const QJsonObject counts{{u"tokenRequests"_s, now.tokenRequests},
                                 {u"documentRequests"_s, now.documentRequests},
                                 {u"useChangeRequests"_s, now.useChangeRequests}};
        response.set_content(Json(counts).toStdString(), "application/json; charset=utf-8");
    });
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
        approveDue();
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

// Notices are approved lazily, when any request comes after their time; called under the mutex.
void SimRegistry::approveDue()
{
    const auto now = std::chrono::steady_clock::now();
    const auto wait = std::chrono::milliseconds(options_.approveAfterMs);
    for (SimUseChangeDocument& document : documents_)
        if (!document.approved && now - document.submitted >= wait)
            ApproveUseChange(document, findAnimal(document.notice.producer, document.notice.tag));
}

// The producer's documents, of one number when it is asked for, received within the dates asked for.
QJsonArray SimRegistry::documentsOf(const httplib::Request& request, QStringList& tags) const
{
    const QString producerNumber = Param(request, "numerProducenta");
    const QString number = Param(request, "numerDokumentu");
    const QDate from = QDate::fromString(Param(request, "dataPrzyjeciaOd"), u"yyyy-MM-dd");
    const QDate to = QDate::fromString(Param(request, "dataPrzyjeciaDo"), u"yyyy-MM-dd");
    QJsonArray list;
    for (const SimUseChangeDocument& document : documents_) {
        const QDate received = document.received().date();
        if (document.notice.producer != producerNumber || (!number.isEmpty() && document.number() != number) ||
            (from.isValid() && received < from) || (to.isValid() && received > to))
            continue;
        list.append(document.document);
        tags.append(document.notice.tag);
    }
    return list;
}

SimRegistry::Answer SimRegistry::documents(const httplib::Request& request)
{
    const QString producerNumber = Param(request, "numerProducenta");
    const SimFaults faults = options().faults;
    QStringList tags;
    QJsonArray list;
    {
        const std::lock_guard lock(mutex_);
        ++stats_.documentRequests;
        list = documentsOf(request, tags);
    }
    for (const QString& tag : std::as_const(tags)) {
        const Answer bad = spoiled(faults.httpErrorDocuments, faults.komunikatDocuments, {}, tag,
                                   u"Usługa dokumentów chwilowo niedostępna"_s);
        if (bad.status != 0)
            return bad;
    }
    if (!producer(producerNumber))
        return {200, Komunikat(u"Nie znaleziono producenta "_s + producerNumber)};
    return {200, Json({{u"dokumenty"_s, list}})};
}

SimRegistry::Answer SimRegistry::spoiledUseChange(const SimFaults& faults, const QString& tag) const
{
    const Answer bad = spoiled(faults.httpErrorUseChange, faults.komunikatUseChange, {}, tag,
                               u"Usługa zgłoszeń chwilowo niedostępna"_s);
    if (bad.status != 0)
        return bad;
    if (faults.noNumberUseChange.contains(tag))
        return {200, Komunikat(u"Dokument przyjęty"_s)};
    if (faults.slowUseChange.contains(tag))
        pause(faults.slowMs);
    return {0, {}};
}

// A notice is refused with every error found at once, or recorded to be approved later;
// the animal itself changes only at approval.
SimRegistry::Answer SimRegistry::useChange(const httplib::Request& request)
{
    QJsonArray errors;
    const SimUseChangeNotice notice = ReadUseChange(QByteArray::fromStdString(request.body), errors);
    const SimFaults faults = options().faults;
    {
        const std::lock_guard lock(mutex_);
        ++stats_.useChangeRequests;
    }
    const Answer bad = spoiledUseChange(faults, notice.tag);
    if (bad.status != 0)
        return bad;
    const std::lock_guard lock(mutex_);
    checkInRegistry(notice, errors);
    if (!errors.isEmpty())
        return {200, Json({{u"komunikat"_s, u"Zgłoszenie odrzucone"_s}, {u"bledy"_s, errors}})};
    return {200, Json({{u"numerDokumentu"_s, record(notice)}, {u"komunikat"_s, u"Dokument przyjęty"_s}})};
}

// What only the registry's own records show wrong; called under the mutex.
void SimRegistry::checkInRegistry(const SimUseChangeNotice& notice, QJsonArray& errors)
{
    if (notice.producer.isEmpty())
        return;
    if (!producer(notice.producer)) {
        errors.append(Refusal(SimRefusal::UnknownProducer, u"Nie znaleziono producenta "_s + notice.producer));
        return;
    }
    if (notice.tag.isEmpty())
        return;
    QString holding;
    const QJsonObject* animal = findAnimal(notice.producer, notice.tag, &holding);
    if (!animal) {
        errors.append(Refusal(SimRefusal::UnknownAnimal,
                              u"Nie znaleziono zwierzęcia %1 producenta %2"_s.arg(notice.tag, notice.producer)));
        return;
    }
    CheckAnimal(*animal, holding, notice, errors);
    const auto pending = std::find_if(documents_.cbegin(), documents_.cend(), [&notice](const SimUseChangeDocument& d) {
        return !d.approved && d.notice.producer == notice.producer && d.notice.tag == notice.tag;
    });
    if (pending != documents_.cend())
        errors.append(Refusal(SimRefusal::StillVerified, u"Zwierzę %1 ma już zgłoszenie %2 w trakcie weryfikacji"_s.arg(
                                                             notice.tag, pending->number())));
}

bool SimRegistry::losesAnswers() const
{
    const SimFaults faults = options().faults;
    return !faults.closeAfterUseChange.isEmpty() || !faults.resetAfterUseChange.isEmpty() ||
           !faults.silenceAfterUseChange.isEmpty();
}

AnswerLoss SimRegistry::lossOf(const QByteArray& requestHead, const QByteArray& body) const
{
    if (!requestHead.startsWith("POST ") || !requestHead.left(requestHead.indexOf('\n')).contains("/ztuku"))
        return AnswerLoss::None;
    QJsonArray ignored;
    const QString tag = ReadUseChange(body, ignored).tag;
    const SimFaults faults = options().faults;
    return faults.closeAfterUseChange.contains(tag)     ? AnswerLoss::Close
           : faults.resetAfterUseChange.contains(tag)   ? AnswerLoss::Reset
           : faults.silenceAfterUseChange.contains(tag) ? AnswerLoss::Silence
                                                        : AnswerLoss::None;
}

// Called under the mutex.
QString SimRegistry::record(const SimUseChangeNotice& notice)
{
    documents_.push_back(NewSimUseChangeDocument(notice, ++documentCounter_));
    return documents_.back().number();
}
