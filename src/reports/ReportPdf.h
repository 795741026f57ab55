#pragma once

#include "reports/PreparedReport.h"

#include <QByteArray>

struct PdfOptions {
    QString creator; // e.g. "Halvarn 1.0.0.0"
    int firstPage = 1;
    int lastPage = 0; // 0: to the end
};

// The report's pages as one PDF document with its fonts embedded.
QByteArray RenderPdf(const PreparedReport& report, const PdfOptions& options);

// Writes the PDF through a temporary file renamed into place; throws
// FileWriteError with the reason in Polish.
void WritePdf(const PreparedReport& report, const QString& path, const PdfOptions& options);

// The creator every PDF of the program carries.
QString ProductIdentification();
