#pragma once

#include "core/producers/ProducerRecord.h"

#include <QStringList>

#include <vector>

class QStandardItemModel;

// The column captions of the producer list's grid, in the order of the file's fields.
QStringList ProducerGridCaptions();

// What the grid shows for any password, whatever it is.
QString PasswordMask();

// Fills the grid's model with one row per record, in file order; each row keeps its record's ID.
void ShowProducers(QStandardItemModel& model, const std::vector<ProducerRecord>& records);

qint32 ProducerIdOfRow(const QStandardItemModel& model, int row);
// The row of the record with that ID; -1 when none shows it.
int RowOfProducer(const QStandardItemModel& model, qint32 id);
