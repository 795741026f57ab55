#pragma once

#include "registry/usechange/UseChangeJournal.h"

#include <QDate>

class TdmIRZ_PLUS;

// The question put before a notice is sent again for an animal whose earlier
// notice may have reached the registry: what the journal says of it and the
// producer's documents the registry lists since then.
QString ResendQuestion(const UseChangeNotice& notice, const EarlierNotice& earlier, const QString& documents);

// The producer's documents received since the date, a line each (number, type,
// when received, status); a line saying why when the registry cannot list them.
QString DocumentsSince(TdmIRZ_PLUS& registry, const QString& producer, QDate from, bool testBranch);

// "24.11.2026 10:15:02, kierunek „Do opasu”, dokument ZTUKU/2026/000001: rejestr nie potwierdził przyjęcia"
QString DescribeEarlier(const EarlierNotice& earlier);
