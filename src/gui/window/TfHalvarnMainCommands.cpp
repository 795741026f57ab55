// The commands of the main window: each reads the fields, runs the core's
// operation with the window as its host and shows the result.
#include "core/archive/ArchiveCommands.h"
#include "core/recount/RecountCommand.h"
#include "core/session/HalvarnSession.h"
#include "export/ExportCommands.h"
#include "gui/charts/GroupsChartView.h"
#include "gui/preview/TfpRapPrev_FR3.h"
#include "gui/window/DateField.h"
#include "gui/window/StatusDisplay.h"
#include "gui/window/TfHalvarnMain.h"
#include "gui/window/UserDialogs.h"
#include "gui/window/WindowHost.h"
#include "registry/client/TdmIRZ_PLUS.h"
#include "registry/download/DownloadCommand.h"
#include "registry/usechange/UseChangeCommand.h"
#include "reports/print/PrintCommands.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

#include <exception>

using namespace Qt::StringLiterals;

void TfHalvarnMain::connectCommands()
{
    connect(cancelButton_, &QPushButton::clicked, this, &TfHalvarnMain::cancelOperation);
    connect(pages_, &QTabWidget::currentChanged, this, [this] {
        if (pages_->currentWidget() == tsPobraneDane)
            host_->showLoaded();
    });
}

void TfHalvarnMain::fillLogin(const QString& login, const QString& password, const QString& producerNumber)
{
    edUser->setText(login);
    edPassword->setText(password);
    edNumerProducenta->setText(producerNumber);
    declaredLimits_.reset();
}

// What the commands take from the window's fields.
void TfHalvarnMain::readInputs()
{
    SessionInputs& inputs = session_->inputs;
    inputs.login = edUser->text();
    inputs.password = edPassword->text();
    // Typing passes the field's validator; a number put in from code counts only when it would too.
    inputs.producerNumber = edNumerProducenta->hasAcceptableInput() ? edNumerProducenta->text() : QString();
    inputs.producerName = edNazwa->text();
    inputs.stateDate = edStanDanychNaDzien->date();
    inputs.referenceDate = edHalvarnNaDzien->date();
    inputs.flags.krowMamek = edHalvKrowMamek->isChecked();
    inputs.flags.opasow = edHalvOpasow->isChecked();
    inputs.flags.krowMlecznych = edHalvKrow->isChecked();
    inputs.declaredLimits = declaredLimits_;
}

void TfHalvarnMain::cxButton1Click()
{
    runOperation(
        [this] {
            const DownloadOutcome outcome = DownloadCommand(*session_, *registry_).run();
            if (outcome == DownloadOutcome::NotStarted)
                return;
            edStanDanychNaDzien->setDate(session_->inputs.stateDate);
            edHalvarnNaDzien->setDate(session_->inputs.referenceDate);
            showFirstHerd();
        },
        true);
}

void TfHalvarnMain::cxButton2Click()
{
    runOperation([this] { session_->ClearAllData(); });
}

// The notices are sent like any long operation; the confirmation then opens in the preview.
void TfHalvarnMain::cxButton3Click()
{
    std::optional<PreparedReport> report;
    runOperation([&] { report = UseChangeCommand(*session_, *registry_, *prints_).run().report; }, true);
    if (report)
        showPreview(prints_->useChange(), std::move(*report));
}

// The chosen producer's log-in fills the fields; its declared numbers are
// checked by the downloads that follow, until the user types another producer.
void TfHalvarnMain::cxButton6Click()
{
    if (running_)
        return;
    const std::optional<ChosenProducer> chosen = dialogs_->chooseProducer(folder_, LastChosenProducer(folder_));
    if (!chosen)
        return;
    RememberChosenProducer(folder_, chosen->id);
    fillLogin(chosen->entry.login, chosen->entry.password, chosen->entry.producerNumber);
    edNazwa->setText(chosen->entry.name);
    declaredLimits_ = chosen->entry.limits;
}

// A stored download goes into the tables as the download left them; the fields
// show its producer, dates and ticks, the status bar where the data comes from.
void TfHalvarnMain::openArchive()
{
    if (running_)
        return;
    const std::optional<qint64> id = dialogs_->chooseArchived(folder_);
    if (!id)
        return;
    runOperation([this, id] {
        if (!OpenArchivedDownload(*session_, *id))
            return;
        showLoadedInputs();
        showFirstHerd();
    });
}

// The loaded animals aged and counted again on another date with the ticks as they are now.
void TfHalvarnMain::recount()
{
    if (running_)
        return;
    const std::optional<QDate> date = dialogs_->recountDate(edHalvarnNaDzien->date());
    if (!date)
        return;
    runOperation([this, date] {
        if (RecountCommand(*session_).run(*date))
            edHalvarnNaDzien->setDate(session_->referenceDate);
    });
}

// The animals of the chosen herds on the control date, in the preview like every print.
void TfHalvarnMain::printControlList()
{
    if (running_)
        return;
    QStringList herds;
    for (const THerdSlot& slot : session_->tables().HerdSlots)
        if (slot.Visible && &slot != &session_->tables().HerdSlots[0])
            herds.append(slot.Code);
    if (const std::optional<ControlListChoice> choice = dialogs_->controlList(herds))
        showPrint(prints_->controlList(choice->controlDate, choice->herd));
}

void TfHalvarnMain::showLoadedInputs()
{
    const SessionInputs& inputs = session_->inputs;
    edNumerProducenta->setText(inputs.producerNumber);
    edNazwa->setText(inputs.producerName);
    edStanDanychNaDzien->setDate(inputs.stateDate);
    edHalvarnNaDzien->setDate(inputs.referenceDate);
    edHalvKrowMamek->setChecked(inputs.flags.krowMamek);
    edHalvOpasow->setChecked(inputs.flags.opasow);
    edHalvKrow->setChecked(inputs.flags.krowMlecznych);
    declaredLimits_.reset();
}

// "Dane z archiwum: …" while the tables hold a stored download, and the reference date they were counted on.
void TfHalvarnMain::showDataSource()
{
    QStringList parts;
    if (session_->archivedAt.isValid())
        parts << u"Dane z archiwum: "_s + session_->archivedAt.toString(u"dd.MM.yyyy HH:mm"_s);
    if (session_->DataLoaded)
        parts << u"Halvarn na dzień: "_s + session_->referenceDate.toString(u"dd.MM.yyyy"_s);
    status_->setText(StatusDisplay::General, parts.join(u"   "_s));
}

void TfHalvarnMain::cancelOperation()
{
    host_->requestCancel();
    cancelButton_->setEnabled(false);
}

// Closing while a command runs would pull the window from under it: the
// command is asked to stop instead, and the window closes once it has.
void TfHalvarnMain::closeEvent(QCloseEvent* event)
{
    if (!running_) {
        QMainWindow::closeEvent(event);
        return;
    }
    closeWhenDone_ = true;
    cancelOperation();
    event->ignore();
}

void TfHalvarnMain::runExport(void (ExportCommands::*command)())
{
    runOperation([this, command] {
        ExportCommands exports(*session_);
        (exports.*command)();
    });
}

void TfHalvarnMain::cxButton5Click()
{
    showPrint(prints_->filtered());
}

void TfHalvarnMain::dxBarButton4Click()
{
    printHerds(HerdPrint::Animals);
}

void TfHalvarnMain::dxBarButton5Click()
{
    printHerds(HerdPrint::Groups);
}

void TfHalvarnMain::printHerds(HerdPrint kind)
{
    if (running_)
        return;
    if (const std::optional<QString> herd = dialogs_->herd())
        showPrint(prints_->herds(kind, *herd));
}

// The pages are laid out like any long operation; the preview then lets the
// user print, save or design, each of which runs the same job again.
void TfHalvarnMain::showPrint(const PrintJob& job)
{
    std::optional<PreparedReport> report;
    runOperation([&] { report = prints_->run(job); });
    if (report)
        showPreview(job, std::move(*report));
}

void TfHalvarnMain::showPreview(const PrintJob& job, PreparedReport report)
{
    PreviewSettings settings;
    settings.pdfFolder = folder_.pdfFolder();
    settings.reportsFolder = folder_.pdfFolder();
    settings.prepareAgain = [this, job] { return prints_->run(job); };
    settings.design = [this, job] {
        dialogs_->designTemplate(prints_->templatePath(job.templateName),
                                 [this, job](const ReportTemplate& edited) { return prints_->runWith(job, edited); });
    };
    dialogs_->showPreview(std::make_shared<const PreparedReport>(std::move(report)), settings);
}

// Runs one long operation with every command that could start another one
// locked. Whatever the operation lets escape ends in a message, never a crash.
void TfHalvarnMain::runOperation(const std::function<void()>& operation, bool cancellable)
{
    if (running_)
        return;
    readInputs();
    setRunning(true, cancellable);
    try {
        operation();
    } catch (const std::exception& error) {
        if (session_->busy())
            session_->EndLongOperation();
        dialogs_->message(u"Błąd"_s, QString::fromUtf8(error.what()), MessageIcon::Error);
    }
    setRunning(false, cancellable);
    showDataSource();
    chart_->refresh();
    if (closeWhenDone_) {
        close();
        return;
    }
    if (pages_->currentWidget() == tsPobraneDane)
        host_->showLoaded();
}

void TfHalvarnMain::setRunning(bool running, bool cancellable)
{
    running_ = running;
    for (QWidget* widget : lockedWhileRunning_)
        widget->setEnabled(!running);
    for (QAction* action : actionsLockedWhileRunning_)
        action->setEnabled(!running);
    host_->resetCancel();
    cancelButton_->setEnabled(true);
    cancelButton_->setVisible(running && cancellable);
}

// A herd's tab is shown, captioned with its code, when the download found animals
// in it; a herd that ended early says so in its caption and tells why in its tool tip.
void TfHalvarnMain::showHerdTabs()
{
    const auto& slots = session_->tables().HerdSlots;
    for (int slot = 0; slot < HerdSlotCount; ++slot) {
        const THerdSlot& herd = slots[static_cast<std::size_t>(slot)];
        const int index = pages_->indexOf(slotView(slot).TabSheet);
        pages_->setTabVisible(index, herd.Visible);
        if (slot == 0 || !herd.Visible)
            continue;
        const bool incomplete = !herd.Incomplete.isEmpty();
        pages_->setTabText(index, incomplete ? herd.Code + u" (niepełne)"_s : herd.Code);
        pages_->setTabToolTip(index, herd.Incomplete);
    }
}

void TfHalvarnMain::showFirstHerd()
{
    const auto& slots = session_->tables().HerdSlots;
    for (int slot = 1; slot < HerdSlotCount; ++slot) {
        if (slots[static_cast<std::size_t>(slot)].Visible) {
            pages_->setCurrentWidget(slotView(slot).TabSheet);
            return;
        }
    }
}
