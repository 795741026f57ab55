#pragma once

#include "registry/records/ZZIInfo.h"

#include <memory>

using namespace Qt::StringLiterals;

// A fresh copy, as the JSON parser would give every animal its own strings.
inline QString Fresh(const char* text)
{
    const QString shared = QString::fromUtf8(text);
    return QString(shared.constData(), shared.size());
}

inline KodOpis Pair(const char* kod, const char* opis)
{
    KodOpis pair;
    pair.kod = Fresh(kod);
    pair.opis = Fresh(opis);
    return pair;
}

// A random animal of a herd as the registry lists it; the state carries the generator on.
inline std::unique_ptr<TZZIInfoClass> MakeAnimal(quint64& state, int herd, int index, TDateTime reference)
{
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    const auto pick = [&state](int n) { return static_cast<int>((state >> 33) % static_cast<quint64>(n)); };
    static const char* types[][2] = {{"MI", "Mięsny"}, {"ML", "Mleczny"}, {"KO", "Kombinowany"}};
    static const char* directions[][2] = {{"MI", "Mięsny"},
                                          {"ML", "Mleczny"},
                                          {"OP", "Do opasu"},
                                          {"MIOP", "Mięsny do opasu"},
                                          {"MLOP", "Mleczny do opasu"}};
    auto animal = std::make_unique<TZZIInfoClass>();
    animal->numerIdentyfikacyjnyZwierzecia =
        u"PL%1%2"_s.arg(herd, 4, 10, QLatin1Char('0')).arg(index, 8, 10, QLatin1Char('0'));
    animal->dataUrodzenia = reference - pick(3000);
    animal->plec = pick(2) ? Pair("XX", "Samica") : Pair("XY", "Samiec");
    const int type = pick(3);
    const int direction = pick(5);
    animal->typUzytkowy = Pair(types[type][0], types[type][1]);
    animal->kierunekUzytkownia = Pair(directions[direction][0], directions[direction][1]);
    animal->kodRasy = Pair("HO", "Holsztyńsko-fryzyjska");
    animal->numerDzialalnosci = u"071234562-%1"_s.arg(herd, 3, 10, QLatin1Char('0'));
    animal->numerIdentyfikacyjnyMatki = Fresh("PL005000000000");
    return animal;
}
