#pragma once

#include "framework/HalvarnError.h"

#include <QByteArray>

class HalvarnSession;

class SessionDumpError : public HalvarnError {
public:
    using HalvarnError::HalvarnError;
};

// Puts back what DumpSessionJson wrote: the herd count, the slots' codes, indexes
// and visibility, and the rows of every table the document names. Unknown tables
// and fields are skipped; a value of the wrong kind stays null. Throws
// SessionDumpError when the document is not a JSON object.
void RestoreSessionJson(HalvarnSession& session, const QByteArray& json);
