#pragma once

#include "gui/preview/PreviewDialogs.h"
#include "reports/PreparedReport.h"

#include <QDialog>
#include <QStyle>

#include <functional>
#include <memory>
#include <optional>

class PageView;
class QAction;
class QComboBox;
class QIcon;
class QLabel;
class QPrinter;
class QToolBar;

// What the preview needs from the window that opens it.
struct PreviewSettings {
    QString pdfFolder;
    QString reportsFolder; // where prepared reports are saved and opened
    // Prepares the report afresh after a PDF export or a design; none keeps the shown
    // report, and so does an empty result (the preparation has told the user why).
    std::function<std::optional<PreparedReport>()> prepareAgain;
    std::function<void()> design; // the template editor; none disables "Projektuj..."
};

// "Podgląd wydruku": the pages of a prepared report, zoomed and turned, with
// printing, saving and opening prepared reports, PDF export and finding text.
class TfpRapPrev_FR3 : public QDialog {
    Q_OBJECT

public:
    TfpRapPrev_FR3(std::shared_ptr<const PreparedReport> report, PreviewSettings settings,
                   std::unique_ptr<PreviewDialogs> dialogs = {}, QWidget* parent = nullptr);
    ~TfpRapPrev_FR3() override;

    PageView* pageView() const { return pageView_; }
    std::shared_ptr<const PreparedReport> report() const { return report_; }
    void showReport(std::shared_ptr<const PreparedReport> report);

private:
    struct Actions {
        QAction* print = nullptr;
        QAction* printSetup = nullptr;
        QAction* save = nullptr;
        QAction* open = nullptr;
        QAction* savePdf = nullptr;
        QAction* mailPdf = nullptr;
        QAction* design = nullptr;
        QAction* pageFirst = nullptr;
        QAction* pagePrev = nullptr;
        QAction* pageNext = nullptr;
        QAction* pageLast = nullptr;
        QAction* find = nullptr;
        QAction* findNext = nullptr;
        QAction* close = nullptr;
    };

    QAction* createAction(const QString& name, const QString& text, const QString& tip, const QIcon& icon,
                          void (TfpRapPrev_FR3::*command)());
    QIcon themeIcon(const QString& name, QStyle::StandardPixmap fallback) const;
    void createFileActions();
    void createPageActions();
    QToolBar* createToolBar();
    QComboBox* createZoomBox();
    QWidget* createButtonPanel();

    void updatePageState();
    void showZoom();
    void applyZoomChoice(int index);
    void applyTypedZoom();

    void printReport();
    void printSetup();
    void saveReport();
    void openReport();
    void exportPdf();
    void find();
    void findNext();
    void findFrom(TextHit after);
    void design();
    void goToFirstPage();
    void goToPreviousPage();
    void goToNextPage();
    void goToLastPage();
    void prepareAgain();
    void showError(const QString& text);
    QPrinter& printer();

    std::shared_ptr<const PreparedReport> report_;
    PreviewSettings settings_;
    std::unique_ptr<PreviewDialogs> dialogs_;
    std::unique_ptr<QPrinter> printer_; // kept, so the printer settings last while the preview is open
    Actions actions_;
    PageView* pageView_ = nullptr;
    QComboBox* zoomBox_ = nullptr;
    QLabel* pageLabel_ = nullptr;
    QLabel* progressLabel_ = nullptr;
    QString findText_;
    std::optional<TextHit> lastHit_;
};
