#include "framework/HalvarnError.h"
#include "gui/preview/PageView.h"
#include "gui/preview/PreviewPrinting.h"
#include "gui/preview/TfpRapPrev_FR3.h"
#include "reports/PreparedReportFile.h"
#include "reports/ReportPdf.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QPrinter>

#include <exception>

using namespace Qt::StringLiterals;

namespace {
// A caption beside the buttons while a long step runs, painted before the step starts.
class ProgressCaption {
public:
    ProgressCaption(QLabel& label, const QString& caption) : label_(label) { show(caption); }
    ~ProgressCaption() { show({}); }
    ProgressCaption(const ProgressCaption&) = delete;
    ProgressCaption& operator=(const ProgressCaption&) = delete;

private:
    void show(const QString& caption)
    {
        label_.setText(caption);
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    }

    QLabel& label_;
};

// The report's name as a file name: "Raport" when it has none, no characters a file name cannot hold.
QString FileBaseName(const PreparedReport& report)
{
    QString name = report.name.trimmed().isEmpty() ? u"Raport"_s : report.name.trimmed();
    for (QChar forbidden : u"/\\:*?\"<>|")
        name.replace(forbidden, u'_');
    return name;
}

QString WithSuffix(const QString& path, const QString& suffix)
{
    return QFileInfo(path).suffix().compare(suffix, Qt::CaseInsensitive) == 0 ? path : path + u'.' + suffix;
}

// An interrupted export may have left "<name>.TMP" beside the PDF.
void RemoveLeftoverTemporary(const QString& pdfPath)
{
    const QFileInfo pdf(pdfPath);
    QFile::remove(pdf.path() + u'/' + pdf.completeBaseName() + u".TMP"_s);
}
} // namespace

QPrinter& TfpRapPrev_FR3::printer()
{
    if (!printer_) {
        printer_ = std::make_unique<QPrinter>(QPrinter::HighResolution);
        SetUpPrinter(*printer_, *report_);
    }
    return *printer_;
}

void TfpRapPrev_FR3::printReport()
{
    if (report_->pageCount() == 0 || !dialogs_->print(printer()))
        return;
    const PageSpan pages = ChosenPages(*printer_, report_->pageCount(), pageView_->currentPage());
    if (pages.last < pages.first)
        return;
    bool printed = false;
    {
        const ProgressCaption caption(*progressLabel_, u"Drukowanie"_s);
        printed = PrintPages(*printer_, *report_, pages);
    }
    if (!printed)
        showError(u"Nie można drukować na drukarce \"%1\"."_s.arg(printer_->printerName()));
}

void TfpRapPrev_FR3::printSetup()
{
    dialogs_->pageSetup(printer());
}

void TfpRapPrev_FR3::saveReport()
{
    const QString proposed = QDir(settings_.reportsFolder).filePath(FileBaseName(*report_) + u".hrp"_s);
    const std::optional<QString> path = dialogs_->saveFileName(proposed);
    if (!path || path->trimmed().isEmpty())
        return;
    try {
        SavePreparedReport(*report_, WithSuffix(*path, QString::fromLatin1(PreparedReportSuffix)));
    } catch (const HalvarnError& error) {
        showError(error.message());
    }
}

void TfpRapPrev_FR3::openReport()
{
    const std::optional<QString> path = dialogs_->openFileName(settings_.reportsFolder);
    if (!path)
        return;
    try {
        showReport(std::make_shared<const PreparedReport>(LoadPreparedReport(*path)));
    } catch (const HalvarnError& error) {
        showError(error.message());
    }
}

void TfpRapPrev_FR3::exportPdf()
{
    const int count = report_->pageCount();
    if (count == 0)
        return;
    const QString proposed = QDir(settings_.pdfFolder).filePath(FileBaseName(*report_) + u".PDF"_s);
    const std::optional<PdfChoice> choice = dialogs_->pdfOptions(count, proposed);
    if (!choice || choice->path.trimmed().isEmpty())
        return;
    const QString path = WithSuffix(choice->path, u"PDF"_s);
    const int first = std::clamp(choice->firstPage, 1, count);
    const int last = choice->lastPage <= 0 ? count : std::clamp(choice->lastPage, first, count);
    RemoveLeftoverTemporary(path);
    try {
        const ProgressCaption caption(*progressLabel_, u"Exportowanie"_s);
        WritePdf(*report_, path, PdfOptions{ProductIdentification(), first, last});
    } catch (const HalvarnError& error) {
        showError(error.message());
        return;
    }
    if (choice->openAfter)
        dialogs_->openFile(path);
    prepareAgain();
}

void TfpRapPrev_FR3::find()
{
    const std::optional<QString> text = dialogs_->findText(findText_);
    if (!text || text->isEmpty())
        return;
    findText_ = *text;
    const int page = pageView_->currentPage();
    findFrom(lastHit_ && lastHit_->page == page ? *lastHit_ : TextHit{page, -1});
}

void TfpRapPrev_FR3::findNext()
{
    if (findText_.isEmpty()) {
        find();
        return;
    }
    findFrom(lastHit_.value_or(TextHit{pageView_->currentPage(), -1}));
}

void TfpRapPrev_FR3::findFrom(TextHit after)
{
    const std::optional<TextHit> hit = report_->find(findText_, after);
    if (!hit) {
        dialogs_->message(u"Informacja"_s, u"Nie znaleziono tekstu: \"%1\""_s.arg(findText_), MessageIcon::Information);
        return;
    }
    lastHit_ = hit;
    pageView_->showHit(*hit);
}

void TfpRapPrev_FR3::design()
{
    if (!settings_.design)
        return;
    settings_.design();
    prepareAgain();
}

void TfpRapPrev_FR3::goToFirstPage()
{
    pageView_->goToPage(0);
}

void TfpRapPrev_FR3::goToPreviousPage()
{
    pageView_->goToPage(pageView_->currentPage() - 1);
}

void TfpRapPrev_FR3::goToNextPage()
{
    pageView_->goToPage(pageView_->currentPage() + 1);
}

void TfpRapPrev_FR3::goToLastPage()
{
    pageView_->goToPage(pageView_->pageCount() - 1);
}

void TfpRapPrev_FR3::prepareAgain()
{
    if (!settings_.prepareAgain)
        return;
    std::optional<PreparedReport> prepared;
    try {
        const ProgressCaption caption(*progressLabel_, u"Tworzenie"_s);
        prepared = settings_.prepareAgain();
    } catch (const std::exception& error) {
        showError(QString::fromUtf8(error.what())); // the shown report stays
    }
    if (prepared)
        showReport(std::make_shared<const PreparedReport>(std::move(*prepared)));
}

void TfpRapPrev_FR3::showError(const QString& text)
{
    dialogs_->message(u"Błąd..."_s, text, MessageIcon::Error);
}
