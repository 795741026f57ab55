#include "export/ExportCommands.h"

#include "core/session/HalvarnSession.h"
#include "export/CsvExport.h"
#include "export/ExportFiles.h"
#include "export/SheetWriters.h"
#include "export/xls/XlsWorkbook.h"
#include "framework/IniFile.h"
#include "framework/SafeFile.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

QString Native(const QString& path)
{
    return QDir::toNativeSeparators(path);
}
} // namespace

ExportCommands::ExportCommands(HalvarnSession& session, QString exportFolder, QString csvFolder)
    : session_(session), exportFolder_(std::move(exportFolder)), csvFolder_(std::move(csvFolder))
{
    if (exportFolder_.isEmpty())
        exportFolder_ = session_.dataFolder().exportFolder();
    if (csvFolder_.isEmpty()) {
        const IniFile settings(session_.dataFolder().settingsFile());
        csvFolder_ = settings.readString(u"PATHS"_s, u"CSV"_s, exportFolder_);
    }
    exportFolder_ = WithTrailingSeparator(exportFolder_);
    csvFolder_ = WithTrailingSeparator(csvFolder_);
}

ExportNaming ExportCommands::naming(const QString& folder) const
{
    return ExportNaming{folder, session_.inputs.producerNumber, session_.referenceDate};
}

void ExportCommands::exportSummaryXls()
{
    const QString path = naming(exportFolder_).ExportFileName(u"Zwierzęta FILTROWANE-"_s, true, u".XLS"_s);
    const std::vector<int> rows = session_.host().summaryRowsInDisplayOrder();
    const bool saved = writeWorkbook(path, [&](XlsWorkbook& workbook) {
        WriteSummarySheet(workbook.addSheet(u"Ogółem"_s), session_.tables().mdRZ00(), rows);
    });
    if (saved)
        AskOpenFile(path);
}

void ExportCommands::exportSummaryCsv()
{
    QString path;
    if (writeSummaryCsv(path))
        showSaved(path);
}

bool ExportCommands::writeSummaryCsv(QString& path)
{
    path = naming(csvFolder_).ExportFileName(u"Zwierzęta-"_s, true, u".CSV"_s);
    const QByteArray text = SummaryCsv(session_.tables().mdRZ00(), session_.host().summaryRowsInDisplayOrder(),
                                       session_.inputs.producerNumber);
    try {
        WriteFileAtomically(path, text);
        return true;
    } catch (const FileWriteError& error) {
        session_.host().showMessage(u"Błąd..."_s, error.message(), MessageIcon::Error);
        return false;
    }
}

void ExportCommands::exportHerdAnimals()
{
    const auto herd = session_.host().askHerd();
    QString path;
    if (herd && writeHerdAnimals(*herd, path))
        AskOpenFile(path);
}

void ExportCommands::exportHerdGroups()
{
    const auto herd = session_.host().askHerd();
    QString path;
    if (herd && writeHerdGroups(*herd, path))
        AskOpenFile(path);
}

bool ExportCommands::writeHerdAnimals(const QString& herd, QString& path)
{
    path = naming(exportFolder_).ExportFileName(u"Zwierzęta-"_s, true, u".XLS"_s);
    return writeWorkbook(path, [&](XlsWorkbook& workbook) {
        addHerdSheets(workbook, herd, [](XlsWorksheet& sheet, const THerdSlot& slot) {
            WriteHerdAnimalsSheet(sheet, *slot.AnimalsTable);
        });
    });
}

bool ExportCommands::writeHerdGroups(const QString& herd, QString& path)
{
    path = naming(exportFolder_).ExportFileName(u"Grupy-"_s, false, u".XLS"_s);
    return writeWorkbook(path, [&](XlsWorkbook& workbook) {
        addHerdSheets(workbook, herd, [](XlsWorksheet& sheet, const THerdSlot& slot) {
            WriteHerdGroupsSheet(sheet, *slot.GroupsTable);
        });
    });
}

// "ALL" gives the summary and every downloaded herd, "000" the summary alone,
// a herd code that herd. Every slot holding a downloaded herd is walked in slot
// order, so herds "001" and "003" both get their sheet.
template <class FillSheet>
void ExportCommands::addHerdSheets(XlsWorkbook& workbook, const QString& herd, FillSheet fill)
{
    const auto& slots = session_.tables().HerdSlots;
    const bool all = herd == u"ALL";
    if (all || herd == u"000")
        fill(workbook.addSheet(u"Ogółem"_s), slots[0]);
    for (int i = 1; i < HerdSlotCount; ++i) {
        const THerdSlot& slot = slots[static_cast<std::size_t>(i)];
        if (slot.Visible && (all || herd == slot.Code))
            fill(workbook.addSheet(slot.Code), slot);
    }
}

// Building the sheets can already fail (a sheet too long for the format), so
// it happens inside the same guard as the save: either way nothing is written.
bool ExportCommands::writeWorkbook(const QString& path, const std::function<void(XlsWorkbook&)>& build)
{
    try {
        XlsWorkbook workbook;
        build(workbook);
        workbook.save(path);
        return true;
    } catch (const std::exception& error) {
        session_.host().showMessage(u"Błąd..."_s, QString::fromUtf8(error.what()), MessageIcon::Error);
        return false;
    }
}

void ExportCommands::showSaved(const QString& path)
{
    session_.host().showMessage(u"Informacja"_s, u"Zapisano do: "_s + Native(path), MessageIcon::Information);
}

void ExportCommands::AskOpenFile(const QString& path)
{
    showSaved(path);
    if (session_.host().askYesNo(u"Pytanie"_s, u"Czy otworzyć stworzony plik?"_s))
        session_.host().openWithDesktop(path);
}
