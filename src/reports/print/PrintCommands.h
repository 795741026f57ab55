#pragma once

#include "reports/PreparedReport.h"

#include <functional>
#include <optional>

class HalvarnSession;
class TdmulmxDataBase_FR3;

enum class HerdPrint { Animals, Groups };

// The prints of the main window, written once for every host: the template is
// read from the data folder's templates, the links are bound to the working
// tables and the pages are prepared. A missing or damaged template is told to
// the user and gives no pages.
class PrintCommands {
public:
    PrintCommands(HalvarnSession& session, TdmulmxDataBase_FR3& reports);

    static QString templateName(HerdPrint kind);
    static QString filteredTemplateName();
    static QString useChangeTemplateName();

    // "Wydruk rozczytanych zwierząt", "Wydruk grup technologicznych": asks
    // for the herd first; nothing when the user cancels.
    std::optional<PreparedReport> printHerds(HerdPrint kind);
    // The same for a herd choice given: "ALL", "000" or a herd code, as typed.
    std::optional<PreparedReport> prepareHerds(HerdPrint kind, const QString& herd);
    // "Wydruk": the summary rows the grid shows now, copied into mdRaport1.
    std::optional<PreparedReport> prepareFiltered();
    // The confirmation of a change of use direction, from mdTUKU.
    std::optional<PreparedReport> prepareUseChange();

    QString templatePath(const QString& name) const;

    // The links of each print, for a template already loaded.
    void bindHerds(HerdPrint kind, const QString& herd);
    void bindFiltered();
    void bindUseChange();

private:
    std::optional<PreparedReport> prepare(const QString& templateName, const std::function<void()>& bind);
    bool loadTemplate(const QString& name);
    void ShowTemplateMissing(const QString& path);
    void copyShownRowsToReport();

    HalvarnSession& session_;
    TdmulmxDataBase_FR3& reports_;
};
