#pragma once

#include "registry/records/Dokument.h"

#include <QDate>
#include <QString>

class TdmIRZ_PLUS;

// The description of a document status code; "Nieznany" for any other code.
QString DocumentStatusText(int code);

// The documents of a document list answer. The registry's envelope is not
// published: the list is read from "dokumenty", else "listaDokumentow", else
// from an answer that is a bare array. Throws ConversionError on a bad element.
OwningList<TDokumInfOgolneClass> DocumentsIn(const QByteArray& answer);

// The producer's documents as the registry lists them: the one of a number, or
// those received since a date. `failure` says why there are none, in the
// user's words ("Serwer zgłosił błąd: …", "Serwer zwrócił komunikat: …"); a
// stop asked for by the user raises RequestCancelled.
struct ListedDocuments {
    OwningList<TDokumInfOgolneClass> documents;
    QString failure;
};
ListedDocuments AskForDocuments(TdmIRZ_PLUS& registry, const QString& producer, const QString& number, QDate since,
                                bool testBranch);
