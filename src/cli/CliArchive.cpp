#include "cli/CliArchive.h"

#include "cli/CliDownload.h"
#include "cli/CliErrors.h"
#include "cli/CliHost.h"
#include "cli/CliOptions.h"
#include "cli/GroupReport.h"
#include "core/archive/ArchiveCommands.h"
#include "core/archive/DownloadArchive.h"
#include "core/recount/RecountCommand.h"
#include "core/session/HalvarnSession.h"

#include <QCommandLineParser>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {
enum ArchiveExit { Completed = 0, Failed = 1, BadArguments = 2 };

struct ArchiveOptions {
    QString action; // list, show, export, remove; recount for the recount command
    qint64 id = 0;
    QString producer;
    QString outDir;
    QString herd = u"ALL"_s;
    QString dataDir;
    QDate referenceDate;
    std::optional<WelfareFlags> flags;
};

void AddOptions(QCommandLineParser& parser, bool recount)
{
    parser.addHelpOption();
    parser.addOptions({Value("data-dir", "folder danych programu, z archiwum", "DIR"),
                       Value("out", "folder eksportów i wydruków PDF", "DIR"),
                       Value("herd", "stado wydruków PDF: ALL, 000 albo kod stada (domyślnie ALL)", "HERD")});
    if (recount) {
        parser.setApplicationDescription(u"Halvarn: przeliczenie pobrania z archiwum na inny dzień"_s);
        parser.addPositionalArgument(u"recount"_s, u"przelicz pobranie z archiwum"_s);
        parser.addOptions({Value("archive", "numer pobrania w archiwum", "ID"),
                           Value("reference-date", "Halvarn na dzień", "YYYY-MM-DD"),
                           Value("kinds", "rodzaje: mamki,opasy,mleczne (domyślnie jak w pobraniu)", "LIST")});
        return;
    }
    parser.setApplicationDescription(u"Halvarn: archiwum pobrań (list, show ID, export ID --out DIR, remove ID)"_s);
    parser.addPositionalArgument(u"archive"_s, u"list | show ID | export ID | remove ID"_s);
    parser.addOption(Value("producer", "tylko pobrania tego producenta (list)", "N"));
}

bool ParseId(const QString& text, qint64& id, QString& error)
{
    bool ok = false;
    id = text.toLongLong(&ok);
    if (!ok || id <= 0)
        error = u"Numer pobrania musi być liczbą dodatnią: "_s + text;
    return ok && id > 0;
}

bool ParseArchive(const QCommandLineParser& parser, ArchiveOptions& options, QString& error)
{
    const QStringList words = parser.positionalArguments();
    options.action = words.value(1);
    const bool needsId = options.action != u"list";
    if (!QStringList{u"list"_s, u"show"_s, u"export"_s, u"remove"_s}.contains(options.action) ||
        words.size() != (needsId ? 3 : 2)) {
        error = parser.helpText();
        return false;
    }
    options.producer = parser.value(u"producer"_s);
    if (options.action == u"export" && options.outDir.isEmpty()) {
        error = u"Podaj folder wyników --out"_s;
        return false;
    }
    return !needsId || ParseId(words.value(2), options.id, error);
}

bool ParseRecount(const QCommandLineParser& parser, ArchiveOptions& options, QString& error)
{
    options.action = u"recount"_s;
    if (parser.positionalArguments() != QStringList{u"recount"_s} || !parser.isSet(u"archive"_s) ||
        !parser.isSet(u"reference-date"_s)) {
        error = parser.helpText();
        return false;
    }
    WelfareFlags flags;
    if (parser.isSet(u"kinds"_s)) {
        if (!ParseKindsOption(parser.value(u"kinds"_s), flags, error))
            return false;
        options.flags = flags;
    }
    return ParseId(parser.value(u"archive"_s), options.id, error) &&
           ParseDateOption(u"reference-date"_s, parser.value(u"reference-date"_s), options.referenceDate, error);
}

bool Parse(const QStringList& arguments, bool recount, ArchiveOptions& options, QString& error)
{
    QCommandLineParser parser;
    AddOptions(parser, recount);
    if (!parser.parse(arguments) || parser.isSet(u"help"_s)) {
        error = parser.isSet(u"help"_s) ? parser.helpText() : parser.errorText();
        return false;
    }
    options.dataDir = parser.value(u"data-dir"_s);
    options.outDir = parser.value(u"out"_s);
    if (parser.isSet(u"herd"_s))
        options.herd = parser.value(u"herd"_s);
    return recount ? ParseRecount(parser, options, error) : ParseArchive(parser, options, error);
}

QString Line(const ArchivedDownload& d)
{
    return u"%1\t%2\t%3\t%4\t%5\t%6\t%7\t%8"_s.arg(d.id)
        .arg(d.producer, d.name, d.stateDate.toString(Qt::ISODate), d.referenceDate.toString(Qt::ISODate),
             d.downloadedAt.toString(u"yyyy-MM-dd HH:mm"_s))
        .arg(d.animals)
        .arg(d.incompleteHerds);
}

int List(const DataFolder& folder, const ArchiveOptions& options)
{
    QTextStream out(stdout);
    out << u"nr\tproducent\tnazwa\tstan na dzień\tHalvarn na dzień\tpobrano\tzwierząt\tniepełnych stad"_s << Qt::endl;
    for (const ArchivedDownload& download : DownloadArchive(folder.archiveFile()).list(options.producer))
        out << Line(download) << Qt::endl;
    return Completed;
}

// The stored download in a session of its own, then the recount when asked.
int Open(const DataFolder& folder, const ArchiveOptions& options)
{
    QTextStream(stdout) << Line(DownloadArchive(folder.archiveFile()).find(options.id)) << Qt::endl;
    CliHost host(true);
    HalvarnSession session(folder, host);
    if (!OpenArchivedDownload(session, options.id))
        return Failed;
    if (options.action == u"recount") {
        if (options.flags)
            session.inputs.flags = *options.flags;
        if (!RecountCommand(session).run(options.referenceDate))
            return Failed;
    }
    QTextStream(stdout) << GroupReport(session);
    const bool filesFailed =
        ExportsFailed(DownloadOutcome::Completed, {options.outDir, options.outDir, options.herd}, session, host);
    return filesFailed ? Failed : Completed;
}

int Run(const ArchiveOptions& options)
{
    const DataFolder folder(DataFolder::resolve(options.dataDir));
    if (!PrepareDataFolder(folder))
        return Failed;
    if (options.action == u"list")
        return List(folder, options);
    if (options.action == u"remove") {
        DownloadArchive archive(folder.archiveFile());
        archive.find(options.id);
        archive.remove(options.id);
        return Completed;
    }
    return Open(folder, options);
}

int Guarded(const QStringList& arguments, bool recount)
{
    ArchiveOptions options;
    QString error;
    if (!Parse(arguments, recount, options, error)) {
        QTextStream(stderr) << error << Qt::endl;
        return BadArguments;
    }
    return RunGuarded(options.dataDir, {}, Failed, [&options] { return Run(options); });
}
} // namespace

int RunArchive(const QStringList& arguments)
{
    return Guarded(arguments, false);
}

int RunRecount(const QStringList& arguments)
{
    return Guarded(arguments, true);
}
