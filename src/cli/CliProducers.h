#pragma once

#include <QStringList>

// "halvarn-cli producers list|add|edit|remove": the producer list of the data
// folder. The list's messages and questions go to stderr. Exit code 0 when
// done, 1 when declined or failed, 2 for bad arguments, 4 for an unhandled error.
int RunProducers(const QStringList& arguments);
