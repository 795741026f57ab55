#include "cli/CliProducers.h"

#include "cli/CliErrors.h"
#include "cli/CliHost.h"
#include "cli/CliProducerOptions.h"
#include "core/producers/ProducerList.h"

#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {
enum ProducersExit { Done = 0, NotDone = 1, BadArguments = 2 };

// A tab or a line end inside a field would break the line into other columns.
QString Field(const QString& text)
{
    QString field = text;
    for (QChar& c : field)
        if (c.category() == QChar::Other_Control)
            c = u' ';
    return field;
}

// ID, name, log-in, producer number and the seven limits, tab-separated; never the password.
int List(const ProducerList& list)
{
    QTextStream out(stdout);
    for (const ProducerRecord& record : list.records()) {
        QStringList fields{QString::number(record.id), Field(record.name), Field(record.login),
                           Field(record.producerNumber)};
        for (const int limit : record.limits)
            fields.append(QString::number(limit));
        out << fields.join(u'\t') << u'\n';
    }
    return Done;
}

void Apply(const CliProducerOptions& options, ProducerEntry& entry)
{
    entry.name = options.name.value_or(entry.name);
    entry.login = options.login.value_or(entry.login);
    entry.producerNumber = options.producerNumber.value_or(entry.producerNumber);
    entry.limits = options.limits.value_or(entry.limits);
    entry.password = options.password.value_or(entry.password);
}

int Add(ProducerList& list, const CliProducerOptions& options)
{
    ProducerEntry entry;
    Apply(options, entry);
    const std::optional<qint32> id = list.add(entry);
    if (!id)
        return NotDone;
    QTextStream(stdout) << *id << Qt::endl;
    return Done;
}

// The stored values, the password deciphered, with the given ones over them.
// An unknown ID is edited with nothing, so that the list names it in its own words.
int Edit(ProducerList& list, const CliProducerOptions& options)
{
    const ProducerRecord* stored = list.find(options.id);
    if (!stored) {
        list.edit(options.id, {});
        return NotDone;
    }
    ProducerEntry entry = list.entry(*stored);
    Apply(options, entry);
    return list.edit(options.id, entry) ? Done : NotDone;
}

int Remove(ProducerList& list, const CliProducerOptions& options, CliHost& host)
{
    if (!list.find(options.id)) {
        host.showMessage(u"Błąd"_s, u"Nie ma pozycji o ID %1 na liście kontrahentów"_s.arg(options.id),
                         MessageIcon::Error);
        return NotDone;
    }
    return list.remove(options.id) ? Done : NotDone;
}

int Run(const CliProducerOptions& options)
{
    const DataFolder folder(DataFolder::resolve(options.dataDir));
    if (!folder.prepare()) {
        QTextStream(stderr) << u"Nie można utworzyć folderu danych: "_s << folder.root() << Qt::endl;
        return NotDone;
    }
    CliHost host(options.answerYes);
    ProducerList list(folder, host);
    list.open();
    switch (options.action) {
    case CliProducerOptions::Action::List: return List(list);
    case CliProducerOptions::Action::Add: return Add(list, options);
    case CliProducerOptions::Action::Edit: return Edit(list, options);
    case CliProducerOptions::Action::Remove: return Remove(list, options, host);
    }
    return NotDone;
}
} // namespace

int RunProducers(const QStringList& arguments)
{
    CliProducerOptions options;
    QString error;
    if (!options.parse(arguments, error)) {
        QTextStream(stderr) << error << Qt::endl;
        return BadArguments;
    }
    // An error raised for the user here is a file of the list that cannot be read or written.
    return RunGuarded(options.dataDir, {options.password.value_or(QString())}, NotDone,
                      [&options] { return Run(options); });
}
