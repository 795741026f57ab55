#pragma once

#include "framework/DateTime.h"
#include "registry/client/HttpExchange.h"
#include "registry/client/RegistryConfig.h"

#include <QNetworkAccessManager>
#include <QStringList>

#include <deque>

using namespace Qt::StringLiterals;

class OperationHost;

// An answer text that begins with this carries an HTTP error instead of a body.
inline const QString ErrorMarker = u"\tERR\t"_s;

// The registry client: logs in, then asks the registry with the token. GETs
// turn HTTP errors, and answers broken after their status line, into the error
// marker; POSTs and failures without any answer raise RegistryError, and a stop
// asked for by the user raises RequestCancelled. A change notice is sent at most
// once: an answer that did not arrive whole raises RegistryError (the outcome is
// unknown), and only a notice that never left raises NoticeNotSent.
class TdmIRZ_PLUS {
public:
    TdmIRZ_PLUS(RegistryConfig config, OperationHost& host);

    QString Token;

    const RegistryConfig& config() const { return config_; }

    bool Authorize(const QString& login, const QString& password);
    QString GetJson(const QString& url);
    QString ListHoldings(const QString& producerNumber, const QString& holdingNumber, const QString& holdingType,
                         const QString& holdingState, bool test);
    QString ListAnimals(const QString& producerNumber, const QString& holdingNumber, const QString& species,
                        const QString& animalNumber, const QString& sex, const QString& breed, const QString& useType,
                        TDateTime stateDate, bool test);
    QString GetAnimal(const QString& producerNumber, const QString& animalNumber, bool test);
    QString ListDocuments(const QString& producerNumber, const QString& documentNumber, TDateTime dateFrom,
                          TDateTime dateTo, bool test);
    QString SubmitUseChange(const QString& producerNumber, const QString& organisationalUnit,
                            const QString& holdingNumber, const QString& species, TDateTime date,
                            const QString& animalNumber, const QString& useType, const QString& useDirection,
                            bool test);

    // Single-animal answers for a list of animals, fetched several at a time
    // but handed out strictly in list order.
    class AnimalQueue {
    public:
        QString next(); // the next animal's answer text (marker on HTTP error)
        bool atEnd() const { return nextIndex_ >= animals_.size(); }

    private:
        friend class TdmIRZ_PLUS;
        AnimalQueue(TdmIRZ_PLUS& client, QString producerNumber, QStringList animals, bool test);
        void fill();

        TdmIRZ_PLUS& client_;
        QString producerNumber_;
        QStringList animals_;
        bool test_;
        qsizetype nextIndex_ = 0;
        qsizetype requested_ = 0;
        std::deque<std::unique_ptr<HttpExchange>> inFlight_;
    };
    AnimalQueue animalQueue(const QString& producerNumber, QStringList animals, bool test);

private:
    QString requestToken(const QString& login, const QString& password);
    QString apiUrl(const QString& path, bool test) const;
    QNetworkRequest apiRequest(const QString& url, bool jsonBody) const;
    ExchangeRules rules(int timeoutMs) const;
    std::unique_ptr<HttpExchange> startGet(const QString& url);
    QString getAnswer(HttpExchange& exchange);
    QString post(const QString& url, const QByteArray& body);
    QString postOnce(const QString& url, const QByteArray& body);
    bool connected() const;
    QString animalUrl(const QString& producerNumber, const QString& animalNumber, bool test) const;

    RegistryConfig config_;
    OperationHost& host_;
    QNetworkAccessManager& network_; // the application's, see ApplicationNetwork()
    std::shared_ptr<int> sentAndOpen_ = std::make_shared<int>(0);
};
