#include "registry/usechange/EarlierNotices.h"

#include "registry/usechange/DocumentStatus.h"
#include "registry/usechange/UseDirections.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace {
constexpr qsizetype MostDocumentsShown = 20;

QString OutcomeText(const EarlierNotice& earlier)
{
    switch (earlier.outcome) {
    case EarlierNotice::Outcome::Unanswered:
        return u"odpowiedź rejestru nie dotarła (program zakończył się w trakcie wysyłania)"_s;
    case EarlierNotice::Outcome::Unconfirmed: return u"rejestr nie potwierdził przyjęcia (wynik nieznany)"_s;
    case EarlierNotice::Outcome::AcceptedOpen: return u"przyjęte, jeszcze nie rozpatrzone"_s;
    case EarlierNotice::Outcome::Settled: break;
    }
    return u"rozpatrzone"_s;
}

QString DayAndTime(TDateTime value)
{
    const QDate day = ToDate(value);
    if (!day.isValid())
        return u"?"_s;
    const auto seconds = static_cast<int>(std::lround((value - std::floor(value)) * 86400));
    return QDateTime(day, QTime(0, 0).addSecs(seconds)).toString(u"dd.MM.yyyy HH:mm");
}

QString DocumentLine(const TDokumInfOgolneClass& document)
{
    const int status = document.statusDokumentu.trimmed().toInt();
    return u"  %1  %2  złożony %3  status %4 %5"_s
        .arg(document.numerDokumentu, document.typDokumentu, DayAndTime(document.dataZlozeniaDokumentu))
        .arg(status)
        .arg(DocumentStatusText(status));
}

} // namespace

QString DescribeEarlier(const EarlierNotice& earlier)
{
    QString text = u"%1, kierunek „%2”"_s.arg(earlier.sentAt.toString(u"dd.MM.yyyy HH:mm:ss"),
                                              UseDirectionName(earlier.direction));
    if (!earlier.document.isEmpty())
        text += u", dokument "_s + earlier.document;
    return text + u": "_s + OutcomeText(earlier);
}

QString ResendQuestion(const UseChangeNotice& notice, const EarlierNotice& earlier, const QString& documents)
{
    return u"Dla zwierzęcia %1 wysłano już zgłoszenie zmiany kierunku użytkowania:\n%2.\n\n"
           u"Dokumenty producenta w rejestrze od %3:\n%4\n\n"
           u"Jeżeli tamto zgłoszenie dotarło do rejestru, ponowne wysłanie złoży drugie. "
           u"Wysłać zgłoszenie ponownie?"_s.arg(notice.animal, DescribeEarlier(earlier),
                                                earlier.sentAt.date().toString(u"dd.MM.yyyy"), documents);
}

QString DocumentsSince(TdmIRZ_PLUS& registry, const QString& producer, QDate from, bool testBranch)
{
    const ListedDocuments listed = AskForDocuments(registry, producer, {}, from, testBranch);
    if (!listed.failure.isEmpty())
        return u"  (nie udało się pobrać listy dokumentów z rejestru: %1)"_s.arg(listed.failure);
    const OwningList<TDokumInfOgolneClass>& documents = listed.documents;
    if (documents.empty())
        return u"  (brak dokumentów)"_s;
    QStringList lines;
    const qsizetype first = std::max<qsizetype>(0, static_cast<qsizetype>(documents.size()) - MostDocumentsShown);
    if (first > 0)
        lines.append(u"  … i %1 wcześniejszych"_s.arg(first));
    for (auto document = documents.begin() + first; document != documents.end(); ++document)
        lines.append(DocumentLine(**document));
    return lines.join(u'\n');
}
