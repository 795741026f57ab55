#include "registry/sim/SimUseChange.h"

#include <QDateTime>
#include <QHash>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {
const QString Verifying = u"3"_s;
const QString Approved = u"7"_s;

const QHash<QString, QString>& UseDirections()
{
    static const QHash<QString, QString> directions{{u"OP"_s, u"Do opasu"_s},
                                                    {u"MI"_s, u"Mięsny"_s},
                                                    {u"MIOP"_s, u"Mięsny do opasu"_s},
                                                    {u"ML"_s, u"Mleczny"_s},
                                                    {u"MLOP"_s, u"Mleczny do opasu"_s}};
    return directions;
}

const QHash<QString, QString>& UseTypes()
{
    static const QHash<QString, QString> types{
        {u"MI"_s, u"Mięsny"_s}, {u"ML"_s, u"Mleczny"_s}, {u"KO"_s, u"Kombinowany"_s}};
    return types;
}

QString Code(const QJsonObject& object, QStringView key)
{
    return object.value(key).toObject().value(u"kod").toString();
}

QJsonObject CodePair(const QHash<QString, QString>& codes, const QString& code)
{
    return {{u"kod"_s, code}, {u"opis"_s, codes.value(code)}};
}

QString Timestamp()
{
    return QDateTime::currentDateTime().toString(u"yyyy-MM-dd'T'HH:mm:ss");
}

void Refuse(QJsonArray& errors, SimRefusal reason, const QString& text)
{
    errors.append(Refusal(reason, text));
}

void ReadDate(const QString& text, QJsonArray& errors)
{
    const QDate date = QDate::fromString(text, u"yyyy-MM-dd");
    if (!date.isValid() || date.toString(u"yyyy-MM-dd") != text)
        Refuse(errors, SimRefusal::BadDate,
               u"Niepoprawna data określenia typu i kierunku użytkowania: %1 (oczekiwano RRRR-MM-DD)"_s.arg(text));
    else if (date > QDate::currentDate())
        Refuse(errors, SimRefusal::FutureDate,
               u"Data określenia typu i kierunku użytkowania %1 jest późniejsza niż dzisiejsza"_s.arg(text));
}

void ReadForm(const QJsonObject& form, SimUseChangeNotice& notice, QJsonArray& errors)
{
    notice.holding = form.value(u"numerDzialalnosci").toString();
    if (notice.holding.isEmpty())
        Refuse(errors, SimRefusal::OtherHolding, u"Brak numeru działalności"_s);
    const QString species = Code(form, u"gatunek");
    if (species != u"BYD")
        Refuse(errors, SimRefusal::NotCattle,
               u"Niedozwolony gatunek: %1 (zgłoszenie dotyczy tylko bydła – BYD)"_s.arg(species));
    ReadDate(form.value(u"dataOkresleniaTypuIKierunkuUzytkowania").toString(), errors);
}

// The reason must say what changes: type and direction, the type alone, or else the direction.
void ReadCodes(const QJsonObject& position, SimUseChangeNotice& notice, QJsonArray& errors)
{
    const bool hasType = position.contains(u"typUzytkowy");
    const bool hasDirection = position.contains(u"kierunekUzytkowy");
    notice.type = Code(position, u"typUzytkowy");
    notice.direction = Code(position, u"kierunekUzytkowy");
    if (hasDirection && !UseDirections().contains(notice.direction))
        Refuse(errors, SimRefusal::UnknownDirection, u"Nieznany kierunek użytkowy: %1"_s.arg(notice.direction));
    if (hasType && !UseTypes().contains(notice.type))
        Refuse(errors, SimRefusal::UnknownType, u"Nieznany typ użytkowy: %1"_s.arg(notice.type));
    const QString expected = hasType && hasDirection ? u"ZTK"_s : hasType ? u"ZTU"_s : u"ZKU"_s;
    const QString reason = Code(position, u"celZmiany");
    if (reason != expected)
        Refuse(errors, SimRefusal::WrongReason,
               u"Cel zmiany %1 nie odpowiada zgłoszonym danym (oczekiwano %2)"_s.arg(reason, expected));
}

void ReadPosition(const QJsonObject& position, SimUseChangeNotice& notice, QJsonArray& errors)
{
    notice.tag = position.value(u"numerIdentyfikacyjnyZwierzecia").toString();
    if (notice.tag.isEmpty())
        Refuse(errors, SimRefusal::UnknownAnimal, u"Brak numeru identyfikacyjnego zwierzęcia"_s);
    ReadCodes(position, notice, errors);
}
} // namespace

QJsonObject Refusal(SimRefusal reason, const QString& text)
{
    return {{u"kodBledu"_s, u"ZTUKU-%1"_s.arg(static_cast<int>(reason), 2, 10, QLatin1Char('0'))},
            {u"komunikat"_s, text}};
}

SimUseChangeNotice ReadUseChange(const QByteArray& body, QJsonArray& errors)
{
    SimUseChangeNotice notice;
    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (!document.isObject()) {
        Refuse(errors, SimRefusal::NotAnObject, u"Treść zgłoszenia nie jest obiektem JSON"_s);
        return notice;
    }
    const QJsonObject root = document.object();
    notice.producer = root.value(u"numerProducenta").toString();
    notice.unit = root.value(u"komorkaOrganizacyjna").toString();
    if (notice.producer.isEmpty())
        Refuse(errors, SimRefusal::NoProducerNumber, u"Brak numeru producenta"_s);
    const QJsonValue form = root.value(u"zgloszenie");
    if (!form.isObject()) {
        Refuse(errors, SimRefusal::NoForm, u"Brak danych zgłoszenia"_s);
        return notice;
    }
    ReadForm(form.toObject(), notice, errors);
    const QJsonArray positions = form.toObject().value(u"pozycje").toArray();
    if (positions.size() == 1 && positions.first().isObject())
        ReadPosition(positions.first().toObject(), notice, errors);
    else
        Refuse(errors, SimRefusal::NotOnePosition, u"Zgłoszenie musi mieć dokładnie jedną pozycję"_s);
    return notice;
}

void CheckAnimal(const QJsonObject& animal, const QString& animalHolding, const SimUseChangeNotice& notice,
                 QJsonArray& errors)
{
    if (!notice.holding.isEmpty() && animalHolding != notice.holding)
        Refuse(errors, SimRefusal::OtherHolding,
               u"Zwierzę %1 nie przebywa w działalności %2"_s.arg(notice.tag, notice.holding));
    const bool male = Code(animal, u"plec") == u"XY";
    if (male && (notice.direction == u"ML" || notice.direction == u"MLOP"))
        Refuse(errors, SimRefusal::DairyMale,
               u"Samiec %1 nie może mieć kierunku użytkowego %2"_s.arg(
                   notice.tag, UseDirections().value(notice.direction).toLower()));
}

QString SimUseChangeDocument::number() const
{
    return document.value(u"numerDokumentu").toString();
}

QDateTime SimUseChangeDocument::received() const
{
    return QDateTime::fromString(document.value(u"dataZlozeniaDokumentu").toString(), u"yyyy-MM-dd'T'HH:mm:ss");
}

SimUseChangeDocument NewSimUseChangeDocument(const SimUseChangeNotice& notice, int counter)
{
    const QString now = Timestamp();
    const QString number = u"ZTUKU/%1/%2"_s.arg(QDate::currentDate().year()).arg(counter, 6, 10, QLatin1Char('0'));
    const QJsonObject document{{u"numerDokumentu"_s, number},
                               {u"typDokumentu"_s, u"ZTUKU"_s},
                               {u"dataZlozeniaDokumentu"_s, now},
                               {u"dataUtworzenia"_s, now},
                               {u"dataModyfikacji"_s, now},
                               {u"statusDokumentu"_s, Verifying},
                               {u"numerKancelaryjny"_s, QString::number(counter)},
                               {u"komorkaOrganizacyjna"_s, notice.unit}};
    return {document, notice, std::chrono::steady_clock::now()};
}

void ApproveUseChange(SimUseChangeDocument& document, QJsonObject* animal)
{
    document.approved = true;
    document.document.insert(u"statusDokumentu"_s, Approved);
    document.document.insert(u"dataModyfikacji"_s, Timestamp());
    if (!animal)
        return;
    const SimUseChangeNotice& notice = document.notice;
    if (!notice.direction.isEmpty())
        animal->insert(u"kierunekUzytkownia"_s, CodePair(UseDirections(), notice.direction));
    if (!notice.type.isEmpty() && notice.type != Code(*animal, u"typUzytkowy"))
        animal->insert(u"typUzytkowy"_s, CodePair(UseTypes(), notice.type));
}
