#include "registry/usechange/UseChangeJournal.h"

#include "framework/Cp1250.h"

#include <QDateTime>
#include <QFile>
#include <QStringList>

#include <unistd.h>

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
    }
    return {};
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
    const QByteArray bytes = ToCp1250(line.join(u';') + u"\r\n"_s);
    QFile file(path_);
    const bool written = file.open(QIODevice::WriteOnly | QIODevice::Append) && file.write(bytes) == bytes.size() &&
                         file.flush() && ::fsync(file.handle()) == 0;
    if (!written)
        throw JournalError(u"Nie można zapisać dziennika zgłoszeń \"%1\": %2"_s.arg(path_, file.errorString()));
}
