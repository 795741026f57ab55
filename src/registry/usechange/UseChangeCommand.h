#pragma once

#include "registry/usechange/UseChangeJournal.h"
#include "reports/PreparedReport.h"

#include <QStringList>

#include <optional>
#include <vector>

class HalvarnSession;
class PrintCommands;
class TdmIRZ_PLUS;

enum class UseChangeOutcome {
    NotStarted, // nothing ticked, or the direction or the question declined
    Stopped,    // not every ticked animal was sent: the log-in, the journal or the user stopped it
    Sent,       // every ticked animal was sent; some may have been refused or not confirmed
};

struct UseChangeResult {
    UseChangeOutcome outcome = UseChangeOutcome::NotStarted;
    int accepted = 0;
    QStringList refused;                  // ear tags
    QStringList unconfirmed;              // ear tags whose notice may or may not have reached the registry
    std::optional<PreparedReport> report; // the confirmation print
};

// "Zmiana kierunku użytkowania": one notice per ticked animal of mdRZ00, each
// answer kept in mdTUKU and in the journal, the documents' statuses asked
// after a wait, and the confirmation print prepared from mdTUKU. Nothing is
// sent before the user has chosen the direction and confirmed the count; the
// ticks of animals that got a document number are cleared.
class UseChangeCommand {
public:
    UseChangeCommand(HalvarnSession& session, TdmIRZ_PLUS& registry, PrintCommands& prints);

    UseChangeResult run();

private:
    void change();
    int countMarked() const;
    bool sameProducer() const;
    bool confirm(int count, const QString& code);
    std::vector<UseChangeNotice> collect(const QString& code) const;
    bool send(const std::vector<UseChangeNotice>& notices);
    void sendOne(const UseChangeNotice& notice);
    void analyse(const UseChangeNotice& notice, const QString& answer);
    void record(const UseChangeNotice& notice, JournalEvent event, const QString& komunikat,
                const QString& document = {}, const QString& errors = {});
    void appendRow(const UseChangeNotice& notice, const QString& komunikat, const QString& document,
                   const QString& errors);
    void waitForRegistry();
    void checkStatuses();
    void checkStatus(int row);
    void statusFailed(const UseChangeNotice& notice, const QString& document, const QString& text);
    void prepareReport();
    void tellResult(int marked);
    void step(const QString& text);
    bool testBranch() const;

    HalvarnSession& session_;
    TdmIRZ_PLUS& registry_;
    PrintCommands& prints_;
    std::optional<UseChangeJournal> journal_;
    UseChangeResult result_;
    QString producer_;
    int sent_ = 0;
    int statusFailures_ = 0;
    bool cancelled_ = false;
};
