#pragma once

#include <QStringList>

// "halvarn-cli batch": downloads every producer of the list one after another,
// writes each one's exports and prints into a folder of its own under --out and
// prints one summary line per producer. A producer that fails is named in the
// summary and the next one follows. Exit code: the worst producer's (0, 3 or 1),
// 1 also for an empty list, 2 for bad arguments.
int RunBatch(const QStringList& arguments);
