#include "registry/usechange/DocumentStatus.h"

#include <QJsonArray>
#include <QJsonDocument>

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
