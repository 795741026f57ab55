#pragma once

#include "core/archive/DownloadArchive.h"
#include "framework/DataFolder.h"
#include "framework/UserPrompts.h"
#include "gui/dialogs/MessageBoxPrompts.h"

#include <QDialog>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class ComparisonPrint;
class DownloadComparison;
class QComboBox;
class QLabel;
class QPushButton;
class QTableWidget;
class TdmulmxDataBase_FR3;
struct PrintJob;

// "Porównanie pobrań": two stored downloads of one producer side by side. The
// combo boxes "cbPobranieA" and "cbPobranieB" list the downloads of producers
// with at least two, B only those of A's producer; "Porównaj" (btnPorownaj)
// fills "gridZwierzeta" (animals that arrived, left or changed their group) and
// "gridGrupy" (the group counts of both); "Eksport CSV" (btnEksportCsv),
// "Wydruk" (btnWydruk) and "Zamknij" (btnZamknij) act on the comparison shown.
class TfPorownanie : public QDialog {
    Q_OBJECT

public:
    using PrintHandler = std::function<void(const PrintJob&)>;
    using ExportedHandler = std::function<void(const QString& path)>;

    // `print` shows the prepared print (the main window's preview); the job it
    // is given binds `reports` to tables this window owns while it is open.
    // Without prompts of the caller's, message boxes over this window speak to
    // the user.
    TfPorownanie(const DataFolder& folder, TdmulmxDataBase_FR3& reports, PrintHandler print, QWidget* parent = nullptr,
                 UserPrompts* prompts = nullptr);
    ~TfPorownanie() override;

    // Told the path "Eksport CSV" wrote; by default a message "Zapisano do: …".
    void setExportedHandler(ExportedHandler handler) { exported_ = std::move(handler); }
    // The comparison the grids show; null before the first one.
    const DownloadComparison* comparison() const { return comparison_.get(); }

public Q_SLOTS:
    void compare();
    void exportCsv();
    void print();

private:
    void buildForm();
    void readDownloads();
    void fillA();
    void fillB();
    void showComparison();
    void updateButtons();
    std::optional<qint64> chosenId(const QComboBox& combo) const;

    DataFolder folder_;
    TdmulmxDataBase_FR3& reports_;
    PrintHandler print_;
    ExportedHandler exported_;
    DialogPrompts prompts_;
    std::vector<ArchivedDownload> downloads_; // of producers with two or more, newest first
    std::unique_ptr<DownloadComparison> comparison_;
    std::unique_ptr<ComparisonPrint> printed_; // the tables the print job reads
    QComboBox* comboA_ = nullptr;
    QComboBox* comboB_ = nullptr;
    QLabel* notice_ = nullptr;
    QLabel* result_ = nullptr;
    QPushButton* compareButton_ = nullptr;
    QPushButton* exportButton_ = nullptr;
    QPushButton* printButton_ = nullptr;
    QTableWidget* animalsGrid_ = nullptr;
    QTableWidget* groupsGrid_ = nullptr;
};
