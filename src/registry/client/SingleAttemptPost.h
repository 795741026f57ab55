#pragma once

#include "registry/client/HttpExchange.h"

#include <QList>

// A POST that reaches the server at most once: a change notice to the registry.
//
// Qt's HTTP layer sends a request again on its own when its connection closes
// before the answer begins, POSTs included. A notice therefore goes through
// libcurl on a connection of its own: a new handle with a fresh connection
// that is never reused, HTTP/1.1, no redirects followed. libcurl repeats a
// request only on a reused connection, so there is no second attempt.
//
// `nothingSent` tells apart a request that never left (no connection, a
// refused TLS handshake, a stop before sending): only then is it certain that
// the server has not received it.
struct SingleAttemptResult : HttpResult {
    bool nothingSent = false;
};

SingleAttemptResult PostOnce(const QString& url, const QList<QByteArray>& headers, const QByteArray& body,
                             const ExchangeRules& rules);
