#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>

// Where an export goes and what it is called: folder + prefix + producer + " " +
// date [+ " " + time] + extension, the date as dd.MM.yyyy and the time as HH_mm_ss.
struct ExportNaming {
    QString folder;      // with a trailing separator
    QString producer;    // the producer-number field, as typed
    QDate referenceDate; // the reference date of the last download
    QDateTime now = QDateTime::currentDateTime();

    QString ExportFileName(const QString& prefix, bool withTime, const QString& extension) const;
};

// A folder with a trailing separator added when it lacks one.
QString WithTrailingSeparator(const QString& folder);
