#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

class Table;

// The summary animals as ";"-separated text in Windows-1250 with CRLF: a bare
// title line, then one line per grid row with every value quoted and followed
// by ";". The rows only choose animals and their order; values come from the
// mdRZ00 record with the row's identification number.
QByteArray SummaryCsv(Table& summary, const std::vector<int>& rows, const QString& producer);

// One value of the program's CSV files: quoted and followed by ";"; quotation
// marks inside it are written as they are.
QString CsvValue(const QString& value);
