#pragma once

#include <QString>

#include <functional>

class HalvarnSession;
class XlsWorkbook;
struct ExportNaming;

// "Export XLS", "Export CSV", "Export rozczytanych zwierząt" and "Export grup
// technologicznych". Each writes a whole new file under a temporary name and
// renames it into place, then tells the user where it went; a failure is shown
// and leaves no file behind.
class ExportCommands {
public:
    // Folders default to the data folder's EXPORT and, for the text file, to
    // "PATHS"/"CSV" of the settings.
    explicit ExportCommands(HalvarnSession& session, QString exportFolder = {}, QString csvFolder = {});

    void exportSummaryXls();
    void exportSummaryCsv();
    void exportHerdAnimals();
    void exportHerdGroups();

    // Without the host's questions: the herd choice is given, no file is opened.
    bool writeHerdAnimals(const QString& herd, QString& path);
    bool writeHerdGroups(const QString& herd, QString& path);
    bool writeSummaryCsv(QString& path);

private:
    ExportNaming naming(const QString& folder) const;
    template <class FillSheet> void addHerdSheets(XlsWorkbook& workbook, const QString& herd, FillSheet fill);
    bool writeWorkbook(const QString& path, const std::function<void(XlsWorkbook&)>& build);
    void AskOpenFile(const QString& path);
    void showSaved(const QString& path);

    HalvarnSession& session_;
    QString exportFolder_;
    QString csvFolder_;
};
