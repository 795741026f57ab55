#pragma once

#include <QString>

#include <vector>

// How one producer's download of a batch ended.
struct BatchSummaryLine {
    QString producerNumber;
    QString name;
    bool counted = false; // false when nothing was counted: the numbers show as "-"
    int herds = 0;
    int animals = 0;
    int incompleteHerds = 0;
    int overLimit = 0;
    QString state; // "pełne", "niepełne" or "błąd: …"
    int exitCode = 0;
};

// One aligned table: producer number, name, herds, animals, incomplete herds,
// groups over their limit and the state, a line per producer.
QString BatchSummary(const std::vector<BatchSummaryLine>& lines);
