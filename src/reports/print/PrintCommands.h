#pragma once

#include "reports/PreparedReport.h"
#include "reports/ReportModel.h"
#include "reports/chart/GroupsChartData.h"

#include <QDate>

#include <functional>
#include <memory>
#include <optional>

class ControlList;
class HalvarnSession;
class TdmulmxDataBase_FR3;

enum class HerdPrint { Animals, Groups };

// One print: the template it reads from the data folder's templates and how
// it binds the report's links once the template is loaded.
struct PrintJob {
    QString templateName;
    std::function<void()> bind;
};

// The prints of the main window, written once for every host: the template is
// read from the data folder's templates, the links are bound to the working
// tables and the pages are prepared. A missing or damaged template is told to
// the user and gives no pages.
class PrintCommands {
public:
    PrintCommands(HalvarnSession& session, TdmulmxDataBase_FR3& reports);
    ~PrintCommands();

    static QString templateName(HerdPrint kind);
    static QString filteredTemplateName();
    static QString useChangeTemplateName();
    QString templatePath(const QString& name) const;

    // "Wydruk rozczytanych zwierząt", "Wydruk grup technologicznych": the herd
    // choice is "ALL", "000" or a herd code, taken as typed. The groups print
    // of "ALL" and "000" ends with the chart page when a group counts an animal.
    PrintJob herds(HerdPrint kind, const QString& herd);
    // "Wydruk": the summary rows the grid shows now, copied into mdRaport1.
    PrintJob filtered();
    // The confirmation of a change of use direction, from mdTUKU.
    PrintJob useChange();
    // "Lista kontrolna" of the herd choice on the control date.
    PrintJob controlList(QDate controlDate, const QString& herd);

    // Links reset, the job's template read afresh, bound and laid out.
    std::optional<PreparedReport> run(const PrintJob& job);
    // The same with a template given, as the template editor previews it.
    PreparedReport runWith(const PrintJob& job, ReportTemplate report);

    // Shorthands of run().
    std::optional<PreparedReport> prepareHerds(HerdPrint kind, const QString& herd) { return run(herds(kind, herd)); }
    std::optional<PreparedReport> prepareFiltered() { return run(filtered()); }

private:
    bool loadTemplate(const QString& name);
    void ShowTemplateMissing(const QString& path);
    void bindHerds(HerdPrint kind, const QString& herd);
    void addChartPage();
    PreparedReport prepared();
    void copyShownRowsToReport();

    HalvarnSession& session_;
    TdmulmxDataBase_FR3& reports_;
    std::optional<GroupsChartData> chart_;     // what the job's binding put on the chart page, if it added one
    std::unique_ptr<ControlList> controlList_; // the tables "Lista kontrolna" binds, kept for its preview
};
