#pragma once

#include <QDate>
#include <QString>

#include <optional>

// What the registry said of one animal that its counting depends on, kept for
// every row of mdRZ00 in the same order. The registry's answers do not depend
// on the reference date, so these are enough to age and count the animals
// again on another date without asking the registry.
struct AnimalAnswer {
    int slot = 0;
    QString sexCode;
    QString useType;         // "typUzytkowy" code
    QString useDirection;    // "kierunekUzytkownia" code
    bool listMother = false; // "czyMatka" of the herd's list
    // "czyMatka" of the animal's own answer, which overrides the list's for a
    // female older than 14 months; none when the answer was empty or unreadable.
    std::optional<bool> answerMother;
    // Birth date of the first animal of the herd's list with this one as its
    // mother (an invalid date when that animal has none); none when no animal has.
    std::optional<QDate> firstCalfBirth;
};

// The "czyMatka" the tables show for the animal at this age.
inline bool CountedMother(const AnimalAnswer& answer, int age)
{
    if (answer.sexCode == QLatin1String("XX") && age > 14 && answer.answerMother)
        return *answer.answerMother;
    return answer.listMother;
}
