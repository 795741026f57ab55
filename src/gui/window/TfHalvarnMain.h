#pragma once

#include "analysis/DeclaredLimits.h"
#include "core/tables/WorkingTables.h"
#include "framework/DataFolder.h"
#include "gui/window/UserDialogs.h"
#include "registry/client/RegistryConfig.h"

#include <QMainWindow>

#include <array>
#include <functional>
#include <memory>
#include <optional>

class DateField;
class PrintCommands;
class TdmulmxDataBase_FR3;
struct PrintJob;
struct PreparedReport;
enum class HerdPrint;
class ExportCommands;
class GroupsChartView;
class HalvarnSession;
class QAction;
class QCheckBox;
class QDateEdit;
class QGroupBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTabWidget;
class QTimer;
class StatusDisplay;
class SummaryGrid;
class TableGrid;
class TdmIRZ_PLUS;
class WindowHost;

// The window half of a herd slot: its tab and its two grids.
struct HerdSlotView {
    QWidget* TabSheet = nullptr;
    QWidget* AnimalsGrid = nullptr;
    TableGrid* GroupsGrid = nullptr;
};

// The main window: log-in and download fields, the herd tabs with their grids,
// the commands and the status bar. The work itself happens in the session and
// the core's commands; the window shows it and asks the user.
class TfHalvarnMain : public QMainWindow {
    Q_OBJECT

public:
    TfHalvarnMain(DataFolder folder, RegistryConfig registry, std::unique_ptr<UserDialogs> dialogs = {},
                  QWidget* parent = nullptr);
    ~TfHalvarnMain() override;

    HalvarnSession& session() { return *session_; }
    SummaryGrid* summaryGrid() const { return summaryGrid_; }
    GroupsChartView* groupsChart() const { return chart_; }
    StatusDisplay* statusDisplay() const { return status_; }
    const HerdSlotView& slotView(int slot) const { return slotViews_[static_cast<std::size_t>(slot)]; }
    QTabWidget* pages() const { return pages_; }
    bool operationRunning() const { return running_; }
    TdmulmxDataBase_FR3& reports() { return *dmulmxDataBase_FR3; }

    void fillLogin(const QString& login, const QString& password, const QString& producerNumber);
    // What an error report must never show: the log-in, the password and the registry's token.
    QStringList secrets() const;

public Q_SLOTS:
    void cxButton1Click();    // "Pobieranie danych"
    void cxButton2Click();    // "Czyszczenie danych"
    void cxButton3Click();    // "Zmiana kierunku użytkowania"
    void cxButton5Click();    // "Wydruk"
    void cxButton6Click();    // "Wybór producenta"
    void openArchive();       // "Archiwum"
    void recount();           // "Przelicz na dzień…"
    void printControlList();  // "Lista kontrolna"
    void dxBarButton4Click(); // "Wydruk rozczytanych zwierząt"
    void dxBarButton5Click(); // "Wydruk grup technologicznych"
    void cancelOperation();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QWidget* buildCommandBar();
    QGroupBox* buildLoginGroup();
    QGroupBox* buildHalvarnGroup();
    QGroupBox* buildErrorGroup();
    QTabWidget* buildPages();
    QWidget* buildSummaryPage();
    QWidget* buildHerdPage(int slot);
    QWidget* buildSummaryButtons();
    void buildStatusBar();

    QAction* addCommand(QWidget* bar, const char* name, const QString& caption);
    QPushButton* addButton(const char* name, const QString& caption);
    void connectCommands();
    void readInputs();
    void runOperation(const std::function<void()>& operation, bool cancellable = false);
    void setRunning(bool running, bool cancellable);
    void showHerdTabs();
    void showFirstHerd();
    void showLoadedInputs();
    void showDataSource();
    void timerTick();
    void runExport(void (ExportCommands::*command)());
    void printHerds(HerdPrint kind);
    void showPrint(const PrintJob& job);
    void showPreview(const PrintJob& job, PreparedReport report);

    DataFolder folder_;
    std::unique_ptr<UserDialogs> dialogs_;
    std::unique_ptr<WindowHost> host_;
    std::unique_ptr<HalvarnSession> session_;
    std::unique_ptr<TdmIRZ_PLUS> registry_;
    std::unique_ptr<TdmulmxDataBase_FR3> dmulmxDataBase_FR3;
    std::unique_ptr<PrintCommands> prints_;
    RegistryConfig registryConfig_;

    QLineEdit* edUser = nullptr;
    QLineEdit* edPassword = nullptr;
    QLineEdit* edNumerProducenta = nullptr;
    QLineEdit* edNazwa = nullptr;
    DateField* edStanDanychNaDzien = nullptr;
    DateField* edHalvarnNaDzien = nullptr;
    QCheckBox* edHalvOpasow = nullptr;
    QCheckBox* edHalvKrowMamek = nullptr;
    QCheckBox* edHalvKrow = nullptr;
    QPushButton* cancelButton_ = nullptr;
    QGroupBox* lcErrors = nullptr;
    QPlainTextEdit* mErrors = nullptr;
    QPlainTextEdit* mLoaded = nullptr;
    QTabWidget* pages_ = nullptr;
    QWidget* tsPobraneDane = nullptr;
    QDateEdit* spareDate_ = nullptr;
    StatusDisplay* status_ = nullptr;
    QTimer* timer1_ = nullptr;
    SummaryGrid* summaryGrid_ = nullptr;
    GroupsChartView* chart_ = nullptr;
    std::array<HerdSlotView, HerdSlotCount> slotViews_{};
    std::vector<QWidget*> lockedWhileRunning_;
    std::vector<QAction*> actionsLockedWhileRunning_;
    std::optional<DeclaredLimits> declaredLimits_; // of the producer chosen from the list
    bool running_ = false;
    bool closeWhenDone_ = false; // the user closed the window while a command ran
};
