#include "registry/usechange/DocumentStatus.h"

#include "registry/client/TdmIRZ_PLUS.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <array>

using namespace Qt::StringLiterals;

namespace {
constexpr std::array<const char*, 18> StatusTexts{
    "Wprowadzony",
    "Wprowadzony - poprawiony",
    "W trakcie weryfikacji",
    "W trakcie kontroli",
    "Skierowano do uzupełnienia braków formalnych",
    "Skierowano do złożenia wyjaśnień",
    "Zatwierdzony",
    "Zatwierdzony - decyzja pozytywna",
    "Zatwierdzony - decyzja negatywna",
    "Zatwierdzony - częściowo",
    "Do poprawy",
    "Przekazany do użytkownika",
    "Wydany",
    "Anulowany",
    "Manualna weryfikacja - brak danych nadawcy",
    "Wygenerowany",
    "Przekazany do ARiMR",
    "Wydrukowany",
};
} // namespace

QString DocumentStatusText(int code)
{
    if (code < 1 || code > static_cast<int>(StatusTexts.size()))
        return u"Nieznany"_s;
    return QString::fromUtf8(StatusTexts[static_cast<std::size_t>(code - 1)]);
}

OwningList<TDokumInfOgolneClass> DocumentsIn(const QByteArray& answer)
{
    const QJsonDocument document = QJsonDocument::fromJson(answer);
    OwningList<TDokumInfOgolneClass> list;
    if (document.isArray()) {
        ParseList<TDokumInfOgolneClass>(QJsonObject{{u"dokumenty"_s, document.array()}}, u"dokumenty"_s, list);
        return list;
    }
    const QJsonObject root = document.object();
    const QString key = root.value(u"dokumenty").isArray() ? u"dokumenty"_s : u"listaDokumentow"_s;
    ParseList<TDokumInfOgolneClass>(root, key, list);
    return list;
}

ListedDocuments AskForDocuments(TdmIRZ_PLUS& registry, const QString& producer, const QString& number, QDate since,
                                bool testBranch)
{
    QString answer;
    try {
        answer = registry.ListDocuments(producer, number, since.isValid() ? ToDateTime(since) : EmptyDate, EmptyDate,
                                        testBranch);
    } catch (const RequestCancelled&) {
        throw;
    } catch (const RegistryError& failure) {
        return {{}, u"Serwer zgłosił błąd: "_s + failure.message()};
    }
    if (answer.startsWith(ErrorMarker))
        return {{}, u"Serwer zgłosił błąd: "_s + answer.mid(ErrorMarker.size())};
    const QJsonObject root = QJsonDocument::fromJson(answer.toUtf8()).object();
    if (root.contains(u"komunikat"))
        return {{}, u"Serwer zwrócił komunikat: "_s + root.value(u"komunikat").toString()};
    try {
        return {DocumentsIn(answer.toUtf8()), {}};
    } catch (const std::exception& error) {
        return {{}, QString::fromUtf8(error.what())};
    }
}
