#include "cli/CliPrints.h"

#include "cli/CliHost.h"
#include "core/session/HalvarnSession.h"
#include "core/session/SessionRestore.h"
#include "framework/SafeFile.h"
#include "reports/ReportPdf.h"
#include "reports/TemplateReader.h"
#include "reports/print/PrintCommands.h"
#include "reports/print/TdmulmxDataBase_FR3.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {
enum RenderExit { Rendered = 0, NotRendered = 1, BadArguments = 2 }; // 1: the template or the PDF failed

struct RenderOptions {
    QString templatePath;
    QString pdfPath;
    QString statePath;
    QString print;
    QString herd;
};

// Without --print, a shipped template's own binding is used and any other
// template is bound as the animals print.
QString DefaultPrint(const QString& templatePath)
{
    const QString name = QFileInfo(templatePath).fileName();
    if (name == PrintCommands::templateName(HerdPrint::Groups))
        return u"groups"_s;
    if (name == PrintCommands::filteredTemplateName())
        return u"filtered"_s;
    if (name == PrintCommands::useChangeTemplateName())
        return u"use-change"_s;
    return u"animals"_s;
}

bool ParseRender(const QStringList& arguments, RenderOptions& options, QString& error)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Halvarn: wydruk szablonu do PDF"_s);
    parser.addHelpOption();
    parser.addPositionalArgument(u"render"_s, u"ułóż szablon i zapisz PDF"_s);
    parser.addOptions({
        {u"template"_s, u"plik szablonu (.fr3)"_s, u"FILE"_s},
        {u"pdf"_s, u"plik PDF do zapisania"_s, u"OUT"_s},
        {u"state"_s, u"tabele z pliku zapisanego przez download --dump-json"_s, u"DUMP.json"_s},
        {u"print"_s, u"powiązanie źródeł danych: animals, groups, filtered, use-change"_s, u"KIND"_s},
        {u"herd"_s, u"stado wydruku: ALL, 000 albo kod stada (domyślnie ALL)"_s, u"HERD"_s, u"ALL"_s},
    });
    if (!parser.parse(arguments)) {
        error = parser.errorText();
        return false;
    }
    options = {parser.value(u"template"_s), parser.value(u"pdf"_s), parser.value(u"state"_s), parser.value(u"print"_s),
               parser.value(u"herd"_s)};
    if (options.templatePath.isEmpty() || options.pdfPath.isEmpty()) {
        error = u"Podaj --template i --pdf\n"_s + parser.helpText();
        return false;
    }
    if (options.print.isEmpty())
        options.print = DefaultPrint(options.templatePath);
    if (!QStringList{u"animals"_s, u"groups"_s, u"filtered"_s, u"use-change"_s}.contains(options.print)) {
        error = u"Nieznany rodzaj wydruku --print: %1 (animals, groups, filtered, use-change)"_s.arg(options.print);
        return false;
    }
    return true;
}

bool RestoreState(HalvarnSession& session, const QString& path, QString& error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = u"Nie można odczytać pliku stanu \"%1\": %2"_s.arg(path, file.errorString());
        return false;
    }
    try {
        RestoreSessionJson(session, file.readAll());
        return true;
    } catch (const HalvarnError& failure) {
        error = failure.message();
        return false;
    }
}

PrintJob JobOf(PrintCommands& prints, CliHost& host, HalvarnSession& session, const RenderOptions& options)
{
    if (options.print == u"animals")
        return prints.herds(HerdPrint::Animals, options.herd);
    if (options.print == u"groups")
        return prints.herds(HerdPrint::Groups, options.herd);
    if (options.print == u"use-change")
        return prints.useChange();
    host.setSummaryRowCount(session.tables().mdRZ00().recordCount());
    return prints.filtered();
}

QString PdfName(const QString& templateName, const QString& producer)
{
    const QString base = templateName.chopped(QStringLiteral(".fr3").size());
    return u"%1 %2 %3.PDF"_s.arg(base, producer, QDate::currentDate().toString(u"dd.MM.yyyy"));
}
} // namespace

int RunRender(const QStringList& arguments)
{
    QTextStream err(stderr);
    RenderOptions options;
    QString error;
    if (!ParseRender(arguments, options, error)) {
        err << error << Qt::endl;
        return BadArguments;
    }
    CliHost host(true);
    HalvarnSession session(DataFolder(DataFolder::resolve({})), host);
    TdmulmxDataBase_FR3 reports;
    PrintCommands prints(session, reports);
    if (!options.statePath.isEmpty() && !RestoreState(session, options.statePath, error)) {
        err << error << Qt::endl;
        return BadArguments;
    }
    ReportTemplate loaded;
    try {
        loaded = ReadTemplate(options.templatePath);
    } catch (const TemplateError& failure) {
        err << failure.message() << Qt::endl;
        return NotRendered;
    }
    // A fresh data module has its thirty links, each bound to nothing.
    reports.frxReport.setTemplate(std::move(loaded));
    const PreparedReport report =
        options.statePath.isEmpty() ? reports.prepare()
                                    : prints.runWith(JobOf(prints, host, session, options), reports.frxReport.report());
    QTextStream out(stdout);
    for (const QString& problem : report.problems)
        out << u"Nieobsługiwane: "_s << problem << Qt::endl;
    try {
        WritePdf(report, options.pdfPath, {});
    } catch (const FileWriteError& failure) {
        err << failure.message() << Qt::endl;
        return NotRendered;
    }
    out << u"Strony: "_s << report.pageCount() << Qt::endl;
    return Rendered;
}

bool WritePrintPdf(const PreparedReport& report, const QString& folder, const QString& templateName,
                   const QString& producer)
{
    QTextStream err(stderr);
    if (!QDir().mkpath(folder)) {
        err << u"Nie można utworzyć folderu PDF: "_s << folder << Qt::endl;
        return false;
    }
    const QString path = QDir(folder).filePath(PdfName(templateName, producer));
    try {
        WritePdf(report, path, {});
        err << path << Qt::endl;
        return true;
    } catch (const FileWriteError& failure) {
        err << failure.message() << Qt::endl;
        return false;
    }
}

bool WriteHerdPrints(HalvarnSession& session, const QString& folder, const QString& herd)
{
    TdmulmxDataBase_FR3 reports;
    PrintCommands prints(session, reports);
    bool written = true;
    for (const HerdPrint kind : {HerdPrint::Animals, HerdPrint::Groups}) {
        // A missing or damaged template has been reported by the host.
        const std::optional<PreparedReport> report = prints.prepareHerds(kind, herd);
        written = report &&
                  WritePrintPdf(*report, folder, PrintCommands::templateName(kind), session.inputs.producerNumber) &&
                  written;
    }
    return written;
}
