#include "reports/print/PrintCommands.h"

#include "core/session/HalvarnSession.h"
#include "reports/TemplateReader.h"
#include "reports/chart/ChartTemplatePage.h"
#include "reports/chart/GroupsChartPage.h"
#include "reports/print/ControlList.h"
#include "reports/print/TdmulmxDataBase_FR3.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

PrintCommands::PrintCommands(HalvarnSession& session, TdmulmxDataBase_FR3& reports)
    : session_(session), reports_(reports), controlList_(std::make_unique<ControlList>())
{}

PrintCommands::~PrintCommands() = default;

QString PrintCommands::templateName(HerdPrint kind)
{
    return kind == HerdPrint::Animals ? u"Rozczytane zwierzęta.fr3"_s : u"Grupy technologiczne.fr3"_s;
}

QString PrintCommands::filteredTemplateName()
{
    return u"Rozczytane zwierzęta z filtrem.fr3"_s;
}

QString PrintCommands::useChangeTemplateName()
{
    return u"Zgłoszenie zmieny TUKU.fr3"_s;
}

QString PrintCommands::templatePath(const QString& name) const
{
    return session_.dataFolder().templatesFolder() + name;
}

PrintJob PrintCommands::herds(HerdPrint kind, const QString& herd)
{
    return {templateName(kind), [this, kind, herd] { bindHerds(kind, herd); }};
}

PrintJob PrintCommands::filtered()
{
    return {filteredTemplateName(), [this] {
                copyShownRowsToReport();
                reports_.frxDBDataset(1).table = &session_.tables().mdRaport1();
            }};
}

PrintJob PrintCommands::useChange()
{
    return {useChangeTemplateName(), [this] { reports_.frxDBDataset(1).table = &session_.tables().mdTUKU(); }};
}

PrintJob PrintCommands::controlList(QDate controlDate, const QString& herd)
{
    return {ControlList::templateName(), [this, controlDate, herd] {
                controlList_->fill(session_, controlDate, herd);
                reports_.frxDBDataset(1).table = &controlList_->animals();
                reports_.frxDBDataset(2).table = &controlList_->totals();
            }};
}

// Every print starts afresh: links reset, the template read again, then bound.
std::optional<PreparedReport> PrintCommands::run(const PrintJob& job)
{
    reports_.ResetReportLinks(session_.tables());
    if (!loadTemplate(job.templateName))
        return std::nullopt;
    job.bind();
    return prepared();
}

PreparedReport PrintCommands::runWith(const PrintJob& job, ReportTemplate report)
{
    reports_.ResetReportLinks(session_.tables());
    reports_.frxReport.setTemplate(std::move(report));
    job.bind();
    return prepared();
}

// The chart page is laid out with the template's pages, so their numbering
// counts it; the chart is drawn on it afterwards.
PreparedReport PrintCommands::prepared()
{
    const std::optional<GroupsChartData> chart = std::exchange(chart_, std::nullopt);
    PreparedReport report = reports_.prepare();
    if (chart)
        DrawGroupsChart(report, report.pageCount() - 1, *chart);
    return report;
}

// The overall section for "ALL" and "000", then every slot that holds a
// downloaded herd, in slot order, for "ALL" or the herd whose code is the
// choice exactly as typed.
void PrintCommands::bindHerds(HerdPrint kind, const QString& herd)
{
    WorkingTables& tables = session_.tables();
    const auto tableOf = [kind](const THerdSlot& slot) -> const Table& {
        return kind == HerdPrint::Animals ? *slot.AnimalsTable : *slot.GroupsTable;
    };
    const bool all = herd == u"ALL";
    const bool overall = all || herd == u"000";
    bool headerDone = overall;
    reports_.frxDBDataset(TdmulmxDataBase_FR3::OverallLink).table =
        headerDone ? &tableOf(tables.HerdSlots[0]) : &tables.mdEmpty();
    int position = 1;
    for (int i = 1; i < HerdSlotCount; ++i) {
        const THerdSlot& slot = tables.HerdSlots[static_cast<std::size_t>(i)];
        if (slot.Visible && (all || herd == slot.Code))
            reports_.AddHerdSection(tableOf(slot), slot.Code, position, headerDone);
    }
    if (kind == HerdPrint::Groups && overall)
        addChartPage();
}

void PrintCommands::addChartPage()
{
    GroupsChartData chart = BuildGroupsChartData(session_.tables());
    if (chart.isEmpty())
        return;
    reports_.frxReport.setTemplate(WithChartPage(reports_.frxReport.report()));
    chart_ = std::move(chart);
}

void PrintCommands::copyShownRowsToReport()
{
    static const QString copied[]{u"ZAZNACZONE"_s,
                                  u"STADO"_s,
                                  u"NumerIdentyfikacyjny"_s,
                                  u"DataUrodzenia"_s,
                                  u"Wiek"_s,
                                  u"TypUzytkowy"_s,
                                  u"KierunekUzytkowania"_s,
                                  u"Rozpatrzono"_s,
                                  u"GdzieRozpatrzono"_s,
                                  u"CzyMatka"_s,
                                  u"Plec"_s};
    const Table& summary = session_.tables().mdRZ00();
    Table& report = session_.tables().mdRaport1();
    std::vector<std::pair<int, int>> fields; // (in mdRZ00, in mdRaport1)
    for (const QString& field : copied)
        fields.emplace_back(summary.requireField(field), report.requireField(field));
    report.removeAll();
    for (const int row : session_.host().summaryRowsInDisplayOrder()) {
        report.append();
        for (const auto& [from, to] : fields)
            report.setValue(to, summary.at(row, from));
        report.post();
    }
}

bool PrintCommands::loadTemplate(const QString& name)
{
    const QString path = templatePath(name);
    if (!QFileInfo::exists(path)) {
        ShowTemplateMissing(path);
        return false;
    }
    try {
        reports_.frxReport.loadFromFile(path);
        return true;
    } catch (const TemplateError& error) {
        session_.host().showMessage(u"Błąd..."_s, error.message(), MessageIcon::Error);
        return false;
    }
}

// The caption is spelt without its ogonek, as users know it.
void PrintCommands::ShowTemplateMissing(const QString& path)
{
    session_.host().showMessage(u"Bład..."_s, u"Nie znaleziono szablonu: \"%1\""_s.arg(QDir::toNativeSeparators(path)),
                                MessageIcon::Error);
}
