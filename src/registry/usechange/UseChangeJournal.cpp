#include "registry/usechange/UseChangeJournal.h"

#include "framework/Cp1250.h"
#include "framework/SafeFile.h"

#include <QDateTime>
#include <QFile>
#include <QStringList>

#include <optional>

using namespace Qt::StringLiterals;

namespace {
QString EventName(JournalEvent event)
{
    switch (event) {
    case JournalEvent::Sent: return u"WYSLANO"_s;
    case JournalEvent::Accepted: return u"PRZYJETO"_s;
    case JournalEvent::Refused: return u"ODRZUCONO"_s;
    case JournalEvent::Unconfirmed: return u"NIEPOTWIERDZONO"_s;
    case JournalEvent::Status: return u"STATUS"_s;
    case JournalEvent::NotSent: return u"NIEWYSLANO"_s;
    }
    return {};
}

enum JournalField { When, Producer, Herd, Animal, TuOld, KuOld, TuNew, KuNew, Event, Document, Text, FieldCount };
constexpr qint64 MaxLineBytes = 64 * 1024;

// Approved, decided either way, issued or cancelled: the registry will not act on the document any more.
bool FinalStatus(int code)
{
    return (code >= 7 && code <= 10) || code == 13 || code == 14;
}

std::optional<JournalEvent> EventNamed(const QString& name)
{
    for (const JournalEvent event : {JournalEvent::Sent, JournalEvent::Accepted, JournalEvent::Refused,
                                     JournalEvent::Unconfirmed, JournalEvent::Status, JournalEvent::NotSent})
        if (EventName(event) == name)
            return event;
    return std::nullopt;
}

// One line's event applied to the animal's last notice.
void Apply(const QStringList& fields, EarlierNotice& notice)
{
    using Outcome = EarlierNotice::Outcome;
    switch (EventNamed(fields[Event]).value_or(JournalEvent::Status)) {
    case JournalEvent::Sent:
        notice = {QDateTime::fromString(fields[When], u"yyyy-MM-dd HH:mm:ss"), fields[KuNew], {}, Outcome::Unanswered};
        break;
    case JournalEvent::Accepted:
        notice.document = fields[Document];
        notice.outcome = Outcome::AcceptedOpen;
        break;
    case JournalEvent::Unconfirmed: notice.outcome = Outcome::Unconfirmed; break;
    case JournalEvent::Refused:
    case JournalEvent::NotSent: notice.outcome = Outcome::Settled; break;
    case JournalEvent::Status: {
        bool number = false;
        const int code = fields[Text].section(u' ', 0, 0).toInt(&number);
        if (fields[Document] == notice.document && number && FinalStatus(code))
            notice.outcome = Outcome::Settled;
        break;
    }
    }
}

// A value never breaks its line or adds a field.
QString Field(QString value)
{
    value.replace(u';', u',');
    value.replace(u'\r', u' ');
    value.replace(u'\n', u' ');
    return value.trimmed();
}
} // namespace

UseChangeJournal::UseChangeJournal(QString path, QString producer)
    : path_(std::move(path)), producer_(std::move(producer))
{}

void UseChangeJournal::append(const UseChangeNotice& notice, JournalEvent event, const QString& document,
                              const QString& text) const
{
    const QStringList fields{QDateTime::currentDateTime().toString(u"yyyy-MM-dd HH:mm:ss"),
                             producer_,
                             notice.herd,
                             notice.animal,
                             notice.tuOld,
                             notice.kuOld,
                             notice.tuNew,
                             notice.kuNew,
                             EventName(event),
                             document,
                             text};
    QStringList line;
    for (const QString& field : fields)
        line.append(Field(field));
    try {
        AppendDurably(path_, ToCp1250(line.join(u';') + u"\r\n"_s));
    } catch (const FileWriteError& failure) {
        throw JournalError(u"Nie można zapisać dziennika zgłoszeń: "_s + failure.message());
    }
}

QHash<QString, EarlierNotice> UseChangeJournal::earlierNotices(const QSet<QString>& animals) const
{
    QHash<QString, EarlierNotice> notices;
    QFile file(path_);
    if (!file.exists())
        return notices;
    if (!file.open(QIODevice::ReadOnly))
        throw JournalError(u"Nie można odczytać dziennika zgłoszeń \"%1\": %2"_s.arg(path_, file.errorString()));
    for (int number = 1; !file.atEnd(); ++number) {
        const QByteArray line = file.readLine(MaxLineBytes);
        const QStringList fields = FromCp1250(line.chopped(line.endsWith("\r\n") ? 2 : 0)).split(u';');
        if (!line.endsWith("\r\n") || fields.size() != FieldCount)
            throw JournalError(u"Dziennik zgłoszeń \"%1\" jest uszkodzony (wiersz %2). Nie wysłano żadnego zgłoszenia: "
                               u"sprawdź dziennik, zanim wyślesz zgłoszenia ponownie."_s.arg(path_)
                                   .arg(number));
        if (fields[Producer] == producer_ && animals.contains(fields[Animal]))
            Apply(fields, notices[fields[Animal]]);
    }
    return notices;
}
