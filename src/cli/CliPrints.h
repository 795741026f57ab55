#pragma once

#include <QString>
#include <QStringList>

class HalvarnSession;
struct PreparedReport;

// "halvarn-cli render": lays out any template file, with the tables of a dump
// written by --dump-json or with every link bound to nothing, into a PDF.
// Exit code 0, 1 for a template that cannot be read, 2 for bad arguments.
int RunRender(const QStringList& arguments);

// The two ribbon prints of a finished download as PDFs in `folder`, named
// "<template> <producer> <dd.MM.yyyy>.PDF"; every file written is listed on
// stderr. False when one could not be written.
bool WriteHerdPrints(HalvarnSession& session, const QString& folder, const QString& herd);

// One prepared print as "<template> <producer> <dd.MM.yyyy>.PDF" in `folder`,
// listed on stderr; false, with the reason on stderr, when it could not be written.
bool WritePrintPdf(const PreparedReport& report, const QString& folder, const QString& templateName,
                   const QString& producer);
