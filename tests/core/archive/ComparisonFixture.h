#pragma once

#include "core/archive/DownloadComparison.h"

using namespace Qt::StringLiterals;

// Two downloads of one producer, written by hand: one cow left, a calf arrived
// and a heifer grew into the next group; the heifer groups' counts moved with her.
inline DownloadComparison SampleComparison()
{
    const auto download = [](qint64 id, QDate reference, QDateTime at) {
        ArchivedDownload d;
        d.id = id;
        d.producer = u"071234562"_s;
        d.name = u"Gospodarstwo Zielonka"_s;
        d.referenceDate = d.stateDate = reference;
        d.downloadedAt = at;
        return d;
    };
    const QString young = u"Jałówki od 6 do 19, 6 > Wiek <= 19"_s;
    const QString older = u"Jałówki od 19 do 24, 19 > Wiek <= 24"_s;
    const QString cows = u"Krowy"_s;
    const SnapshotAnimal cow{u"PL005000000007"_s, u"001"_s, u"Samica"_s, QDate(2019, 4, 2), 60, cows};
    const SnapshotAnimal heifer{u"PL005000000014"_s, u"002"_s, u"Samica"_s, QDate(2025, 5, 20), 18, young};
    const SnapshotAnimal calf{u"PL005000000021"_s, u"001"_s, u"Samiec"_s, QDate(2026, 10, 2), 1, QString()};
    SnapshotAnimal grown = heifer;
    grown.age = 20;
    grown.group = older;
    const DownloadSnapshot a{download(12, QDate(2026, 9, 1), QDateTime(QDate(2026, 9, 2), QTime(8, 15))),
                             {cow, heifer},
                             {{32, young, 1}, {33, older, 0}, {34, cows, 1}}};
    const DownloadSnapshot b{download(15, QDate(2026, 11, 1), QDateTime(QDate(2026, 11, 20), QTime(19, 40))),
                             {grown, calf},
                             {{32, young, 0}, {33, older, 1}, {34, cows, 0}}};
    return DownloadComparison(a, b);
}
