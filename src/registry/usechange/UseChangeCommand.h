#pragma once

#include "framework/FileLock.h"
#include "registry/usechange/UseChangeJournal.h"
#include "reports/PreparedReport.h"

#include <QStringList>

#include <optional>
#include <vector>

class HalvarnSession;
class PrintCommands;
class TdmIRZ_PLUS;

enum class UseChangeOutcome {
    NotStarted,    // nothing ticked, the direction or the question declined, the journal unreadable or busy
    NothingToSend, // every ticked animal already has the chosen direction
    Stopped,       // not every notice was sent: the log-in, the journal, the connection or the user stopped it
    Sent,          // every notice was sent; some may have been refused or not confirmed
};

struct UseChangeResult {
    UseChangeOutcome outcome = UseChangeOutcome::NotStarted;
    int accepted = 0;
    QStringList refused;                  // ear tags
    QStringList unconfirmed;              // ear tags whose notice may or may not have reached the registry
    QStringList unchanged;                // ticked animals that already have the chosen direction: nothing sent
    QStringList withheld;                 // animals whose earlier notice may still apply: not sent again
    QStringList notSent;                  // notices that never left, the registry being out of reach
    QStringList journalFailures;          // answers the journal could not keep, each naming its document
    std::optional<PreparedReport> report; // the confirmation print
};

// "Zmiana kierunku użytkowania": one notice per ticked animal of mdRZ00, each
// answer kept in mdTUKU and in the journal, the documents' statuses asked
// after a wait, and the confirmation print prepared from mdTUKU. Nothing is
// sent before the user has chosen the direction and confirmed the count; the
// ticks of animals that got a document number are cleared.
//
// A notice goes at most once per decision of the user: an animal that already
// has the chosen direction is not sent, and one whose last notice in the
// journal may still reach or be in the registry is sent again only when the
// user says so after seeing the registry's documents. One run at a time may
// use the journal of a data folder.
class UseChangeCommand {
public:
    UseChangeCommand(HalvarnSession& session, TdmIRZ_PLUS& registry, PrintCommands& prints);

    UseChangeResult run();

private:
    void change();
    int countMarked() const;
    bool sameProducer() const;
    bool confirm(std::size_t count, const QString& code);
    std::vector<UseChangeNotice> collect(const QString& code) const;
    std::vector<UseChangeNotice> setAsideUnchanged(std::vector<UseChangeNotice> notices, const QString& code);
    bool lockJournal();
    QHash<QString, EarlierNotice> readJournal(const std::vector<UseChangeNotice>& notices);
    void sendAll(std::vector<UseChangeNotice> notices, const QHash<QString, EarlierNotice>& earlier, int marked);
    std::vector<UseChangeNotice> reconcile(const std::vector<UseChangeNotice>& notices,
                                           const QHash<QString, EarlierNotice>& earlier);
    bool send(const std::vector<UseChangeNotice>& notices);
    void sendOne(const UseChangeNotice& notice);
    void analyse(const UseChangeNotice& notice, const QString& answer);
    void record(const UseChangeNotice& notice, JournalEvent event, const QString& komunikat,
                const QString& document = {}, const QString& errors = {});
    void tally(const UseChangeNotice& notice, JournalEvent event);
    void keepInJournal(const UseChangeNotice& notice, JournalEvent event, const QString& document, const QString& text);
    void journalFailed(const QString& line);
    void appendRow(const UseChangeNotice& notice, const QString& komunikat, const QString& document,
                   const QString& errors);
    void waitForRegistry();
    void checkStatuses();
    void checkStatus(int row);
    void statusFailed(const UseChangeNotice& notice, const QString& document, const QString& text);
    void prepareReport();
    void tellResult(int marked);
    QStringList resultLines(int marked) const;
    void step(const QString& text);
    bool testBranch() const;

    HalvarnSession& session_;
    TdmIRZ_PLUS& registry_;
    PrintCommands& prints_;
    std::optional<UseChangeJournal> journal_;
    std::optional<FileLock> journalLock_;
    UseChangeResult result_;
    QString producer_;
    QString code_; // the chosen direction
    int sent_ = 0;
    int statusFailures_ = 0;
    bool cancelled_ = false;
    bool journalBroken_ = false; // a line could not be written: nothing more is sent
    bool unreachable_ = false;   // a notice could not leave: the rest would not either
};
