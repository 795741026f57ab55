#pragma once

#include "registry/records/Dokument.h"

#include <QString>

// The description of a document status code; "Nieznany" for any other code.
QString DocumentStatusText(int code);

// The documents of a document list answer. The registry's envelope is not
// published: the list is read from "dokumenty", else "listaDokumentow", else
// from an answer that is a bare array. Throws ConversionError on a bad element.
OwningList<TDokumInfOgolneClass> DocumentsIn(const QByteArray& answer);
