#pragma once

#include <QByteArray>
#include <QString>

class DataFolder;
class DownloadComparison;

// The comparison as ";"-separated text in Windows-1250 with CRLF, in the manner
// of the summary CSV: a line naming the producer and both downloads, the
// animals (a bare title line, then every value quoted and followed by ";"), an
// empty line, then the group counts the same way.
QByteArray ComparisonCsv(const DownloadComparison& comparison);

// "Porównanie-<producer> <dd.MM.yyyy of A>-<dd.MM.yyyy of B>.CSV" in the data
// folder's export folder, the dates being each download's "Halvarn na dzień".
QString ComparisonCsvPath(const DataFolder& folder, const DownloadComparison& comparison);

// Written whole under a temporary name and renamed over `path`; throws
// FileWriteError, leaving an older file of that name as it was.
void WriteComparisonCsv(const DownloadComparison& comparison, const QString& path);
