#pragma once

#include "core/archive/DownloadSnapshot.h"
#include "framework/HalvarnError.h"

#include <optional>
#include <vector>

class DataFolder;

// Two downloads that cannot be compared; the message is for the user.
class ComparisonError : public HalvarnError {
public:
    using HalvarnError::HalvarnError;
};

// In this order the differences are listed.
enum class AnimalChange { Arrived, Left, GroupChanged };

// "przybyło", "ubyło", "zmiana grupy".
QString AnimalChangeText(AnimalChange change);

// An animal that arrived, left or moved to another group between download A and B.
struct AnimalDifference {
    AnimalChange change = AnimalChange::Arrived;
    QString earTag;
    QString herd; // of B when the animal is in B, else of A
    QString sex;
    QDate birthDate;
    std::optional<int> ageA; // none when the animal is not in A, or its age is unknown
    std::optional<int> ageB;
    QString groupA;
    QString groupB;
};

// One row of the overall groups table in both downloads; a row missing from one counts 0 there.
struct GroupCountComparison {
    int id = 0;
    QString caption;
    int countA = 0;
    int countB = 0;

    int difference() const { return countB - countA; }
};

// Two stored downloads of one producer side by side: the animals matched by ear
// tag, the overall group counts matched by the row's ID.
class DownloadComparison {
public:
    // Reads both downloads from the folder's archive, each in a session of its
    // own, and takes the one downloaded earlier as A whichever is given first.
    // Throws ArchiveError when one is missing or cannot be read, ComparisonError
    // when both are the same download or of different producers.
    static DownloadComparison fromArchive(const DataFolder& folder, qint64 first, qint64 second);

    // Compares as given: A before B.
    DownloadComparison(const DownloadSnapshot& a, const DownloadSnapshot& b);

    const ArchivedDownload& a() const { return a_; }
    const ArchivedDownload& b() const { return b_; }
    // Sorted by kind, herd and ear tag; animals in both with the same group are left out.
    const std::vector<AnimalDifference>& animals() const { return animals_; }
    // In the catalogue's order, which is the order of the rows' IDs.
    const std::vector<GroupCountComparison>& groups() const { return groups_; }
    int count(AnimalChange change) const;

private:
    ArchivedDownload a_;
    ArchivedDownload b_;
    std::vector<AnimalDifference> animals_;
    std::vector<GroupCountComparison> groups_;
};

// "nr 12 – 071234562 Zielonka – Halvarn na dzień 01.11.2026 – pobrano 20.11.2026 19:40"
QString DownloadCaption(const ArchivedDownload& download);
