#include "gui/preview/TfpRapPrev_FR3.h"

#include "gui/preview/PageView.h"
#include "gui/preview/ScreenFit.h"

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPrinter>
#include <QPushButton>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <array>

using namespace Qt::StringLiterals;

namespace {
struct ZoomChoice {
    QStringView text;
    int value; // a percentage, or one of the fitting modes below
};

constexpr int PageWidthChoice = 1;
constexpr int WholePageChoice = 2;
constexpr int TwoPagesChoice = 3;

constexpr std::array<ZoomChoice, 9> ZoomChoices{{
    {u"25%", 25},
    {u"50%", 50},
    {u"75%", 75},
    {u"100%", 100},
    {u"150%", 150},
    {u"200%", 200},
    {u"Szerokość strony", PageWidthChoice},
    {u"Cała strona", WholePageChoice},
    {u"Dwie strony", TwoPagesChoice},
}};

// Wide enough for the whole tool bar, within the screen.
int ChoiceOf(const PageView& view)
{
    switch (view.zoomMode()) {
    case PageView::ZoomMode::PageWidth: return PageWidthChoice;
    case PageView::ZoomMode::WholePage: return WholePageChoice;
    case PageView::ZoomMode::TwoPages: return TwoPagesChoice;
    case PageView::ZoomMode::Percent: break;
    }
    return view.zoomPercent();
}
} // namespace

TfpRapPrev_FR3::TfpRapPrev_FR3(std::shared_ptr<const PreparedReport> report, PreviewSettings settings,
                               std::unique_ptr<PreviewDialogs> dialogs, QWidget* parent)
    : QDialog(parent), settings_(std::move(settings)), dialogs_(std::move(dialogs))
{
    setObjectName(u"TfpRapPrev_FR3"_s);
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    if (!dialogs_)
        dialogs_ = std::make_unique<ModalPreviewDialogs>(this);
    pageView_ = new PageView(this);
    pageView_->setObjectName(u"PageView"_s);
    createFileActions();
    createPageActions();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(createToolBar());
    layout->addWidget(pageView_, 1);
    layout->addWidget(createButtonPanel());

    connect(pageView_, &PageView::currentPageChanged, this, &TfpRapPrev_FR3::updatePageState);
    connect(pageView_, &PageView::zoomChanged, this, &TfpRapPrev_FR3::showZoom);
    resize(ScreenFitted(*this, {1280, 860}));
    showReport(std::move(report));
    pageView_->setFocus();
}

TfpRapPrev_FR3::~TfpRapPrev_FR3() = default;

void TfpRapPrev_FR3::showReport(std::shared_ptr<const PreparedReport> report)
{
    report_ = report ? std::move(report) : std::make_shared<const PreparedReport>();
    lastHit_.reset();
    pageView_->setReport(report_);
    setWindowTitle(report_->name.isEmpty() ? u"Podgląd wydruku"_s : u"Podgląd wydruku - "_s + report_->name);
    updatePageState();
}

QAction* TfpRapPrev_FR3::createAction(const QString& name, const QString& text, const QString& tip, const QIcon& icon,
                                      void (TfpRapPrev_FR3::*command)())
{
    auto* action = new QAction(icon, text, this);
    action->setObjectName(name);
    if (!tip.isEmpty()) {
        action->setToolTip(tip);
        action->setStatusTip(tip);
    }
    if (command)
        connect(action, &QAction::triggered, this, command);
    return action;
}

QIcon TfpRapPrev_FR3::themeIcon(const QString& name, QStyle::StandardPixmap fallback) const
{
    return QIcon::fromTheme(name, style()->standardIcon(fallback));
}

void TfpRapPrev_FR3::createFileActions()
{
    Actions& a = actions_;
    a.print = createAction(u"acPrint"_s, u"Drukuj..."_s, u"Drukuj raport"_s,
                           themeIcon(u"document-print"_s, QStyle::SP_FileIcon), &TfpRapPrev_FR3::printReport);
    a.print->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_P));
    a.printSetup =
        createAction(u"acPrintSetup"_s, u"Ustawienia drukarki"_s, u"Ustawienia drukarki"_s,
                     themeIcon(u"document-properties"_s, QStyle::SP_FileDialogInfoView), &TfpRapPrev_FR3::printSetup);
    a.save = createAction(u"acSave"_s, u"Zapisz"_s, u"Zapisz raport do pliku"_s,
                          themeIcon(u"document-save"_s, QStyle::SP_DialogSaveButton), &TfpRapPrev_FR3::saveReport);
    a.save->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_S));
    a.open = createAction(u"acOpen"_s, u"Otwórz"_s, u"Otwórz raport z pliku"_s,
                          themeIcon(u"document-open"_s, QStyle::SP_DialogOpenButton), &TfpRapPrev_FR3::openReport);
    a.open->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_O));
    a.savePdf = createAction(u"acSavePDF"_s, u"PDF"_s, u"Zapisz raport do PDF"_s,
                             themeIcon(u"application-pdf"_s, QStyle::SP_FileLinkIcon), &TfpRapPrev_FR3::exportPdf);
    a.mailPdf = createAction(u"acMailPDF"_s, u"Mail"_s, u"Wysłanie raportu mailem jako PDF"_s,
                             themeIcon(u"mail-send"_s, QStyle::SP_DirLinkIcon), nullptr);
    // No Linux mail interface takes an attachment reliably (xdg-email leaves it to the client).
    a.mailPdf->setEnabled(false);
    a.design = createAction(u"acDesign"_s, u"Projektuj..."_s, {},
                            themeIcon(u"document-edit"_s, QStyle::SP_FileDialogContentsView), &TfpRapPrev_FR3::design);
    a.design->setEnabled(static_cast<bool>(settings_.design));
    a.close = createAction(u"acClose"_s, u"Zamknij"_s, u"Zamknij podgląd wydruku"_s,
                           themeIcon(u"window-close"_s, QStyle::SP_DialogCloseButton), &QDialog::reject);
    a.close->setShortcuts({QKeySequence(Qt::Key_Escape), QKeySequence(Qt::ALT | Qt::Key_Q)});
}

void TfpRapPrev_FR3::createPageActions()
{
    Actions& a = actions_;
    a.pageFirst = createAction(u"acPageFirst"_s, {}, u"Pierwsza strona"_s,
                               themeIcon(u"go-first"_s, QStyle::SP_MediaSkipBackward), &TfpRapPrev_FR3::goToFirstPage);
    a.pagePrev = createAction(u"acPagePrev"_s, u"Poprzednia strona"_s, u"Poprzednia strona"_s,
                              themeIcon(u"go-previous"_s, QStyle::SP_ArrowBack), &TfpRapPrev_FR3::goToPreviousPage);
    a.pageNext = createAction(u"acPageNext"_s, u"Następna strona"_s, u"Następna strona"_s,
                              themeIcon(u"go-next"_s, QStyle::SP_ArrowForward), &TfpRapPrev_FR3::goToNextPage);
    a.pageLast = createAction(u"acPageLast"_s, {}, u"Ostatnia strona"_s,
                              themeIcon(u"go-last"_s, QStyle::SP_MediaSkipForward), &TfpRapPrev_FR3::goToLastPage);
    a.find = createAction(u"acFind"_s, u"Szukaj..."_s, u"Szukaj tekstu w raporcie"_s,
                          themeIcon(u"edit-find"_s, QStyle::SP_FileDialogContentsView), &TfpRapPrev_FR3::find);
    a.find->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F));
    a.findNext = createAction(u"acFindNext"_s, u"Szukaj następny..."_s, {},
                              themeIcon(u"go-down"_s, QStyle::SP_ArrowDown), &TfpRapPrev_FR3::findNext);
    a.findNext->setShortcut(QKeySequence(Qt::Key_F3));
}

QToolBar* TfpRapPrev_FR3::createToolBar()
{
    auto* bar = new QToolBar;
    bar->setObjectName(u"tbPreview"_s);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const Actions& a = actions_;
    bar->addActions({a.print, a.printSetup});
    bar->addSeparator();
    bar->addActions({a.save, a.open, a.savePdf, a.mailPdf, a.design});
    bar->addSeparator();
    bar->addActions({a.pageFirst, a.pagePrev, a.pageNext, a.pageLast});
    // Icons alone where the tool bar would otherwise not fit a laptop's screen; the tool tips name them.
    for (QAction* iconOnly : {a.printSetup, a.pageFirst, a.pagePrev, a.pageNext, a.pageLast})
        qobject_cast<QToolButton*>(bar->widgetForAction(iconOnly))->setToolButtonStyle(Qt::ToolButtonIconOnly);
    bar->addSeparator();
    bar->addWidget(createZoomBox());
    bar->addSeparator();
    bar->addActions({a.find, a.findNext});
    bar->addSeparator();
    bar->addAction(a.close);
    return bar;
}

QComboBox* TfpRapPrev_FR3::createZoomBox()
{
    zoomBox_ = new QComboBox;
    zoomBox_->setObjectName(u"cbZoom"_s);
    // Editable, so a zoom of the mouse wheel shows as its percentage and one can be typed.
    zoomBox_->setEditable(true);
    zoomBox_->setInsertPolicy(QComboBox::NoInsert);
    zoomBox_->setCompleter(nullptr);
    for (const ZoomChoice& choice : ZoomChoices)
        zoomBox_->addItem(choice.text.toString(), choice.value);
    zoomBox_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    connect(zoomBox_, &QComboBox::activated, this, &TfpRapPrev_FR3::applyZoomChoice);
    connect(zoomBox_->lineEdit(), &QLineEdit::returnPressed, this, &TfpRapPrev_FR3::applyTypedZoom);
    showZoom();
    return zoomBox_;
}

QWidget* TfpRapPrev_FR3::createButtonPanel()
{
    auto* panel = new QWidget;
    pageLabel_ = new QLabel;
    pageLabel_->setObjectName(u"lbPage"_s);
    progressLabel_ = new QLabel;
    progressLabel_->setObjectName(u"lbProgress"_s);
    auto* accept = new QPushButton(u"Akceptuj"_s);
    accept->setObjectName(u"btAkceptuj"_s);
    connect(accept, &QPushButton::clicked, this, &QDialog::accept);
    auto* reject = new QPushButton(u"Rezygnuj"_s);
    reject->setObjectName(u"btRezygnuj"_s);
    reject->setToolTip(u"Zamknij okno"_s);
    connect(reject, &QPushButton::clicked, this, &QDialog::reject);
    // Return belongs to the zoom box and must not close the preview.
    accept->setAutoDefault(false);
    reject->setAutoDefault(false);
    auto* layout = new QHBoxLayout(panel);
    layout->addWidget(pageLabel_);
    layout->addSpacing(24);
    layout->addWidget(progressLabel_, 1);
    layout->addWidget(accept);
    layout->addWidget(reject);
    return panel;
}

void TfpRapPrev_FR3::updatePageState()
{
    const int count = pageView_->pageCount();
    const int page = pageView_->currentPage();
    // As wide as the widest page number needs, so the label does not jump while paging.
    pageLabel_->setMinimumWidth(pageLabel_->fontMetrics().horizontalAdvance(u"Strona: %1 z %1"_s.arg(count)));
    pageLabel_->setText(u"Strona: %1 z %2"_s.arg(count == 0 ? 0 : page + 1).arg(count));
    actions_.pageFirst->setEnabled(page > 0);
    actions_.pagePrev->setEnabled(page > 0);
    actions_.pageNext->setEnabled(page < count - 1);
    actions_.pageLast->setEnabled(page < count - 1);
    for (QAction* needsPages : {actions_.print, actions_.save, actions_.savePdf, actions_.find, actions_.findNext})
        needsPages->setEnabled(count > 0);
}

void TfpRapPrev_FR3::showZoom()
{
    const QSignalBlocker blocker(zoomBox_);
    const int choice = ChoiceOf(*pageView_);
    const int index = zoomBox_->findData(choice);
    if (index >= 0)
        zoomBox_->setCurrentIndex(index);
    zoomBox_->setEditText(index >= 0 ? zoomBox_->itemText(index) : QString::number(choice) + u'%');
}

void TfpRapPrev_FR3::applyZoomChoice(int index)
{
    switch (const int choice = zoomBox_->itemData(index).toInt()) {
    case PageWidthChoice: pageView_->setZoomMode(PageView::ZoomMode::PageWidth); break;
    case WholePageChoice: pageView_->setZoomMode(PageView::ZoomMode::WholePage); break;
    case TwoPagesChoice: pageView_->setZoomMode(PageView::ZoomMode::TwoPages); break;
    default: pageView_->setZoomPercent(choice); break;
    }
    showZoom();
}

void TfpRapPrev_FR3::applyTypedZoom()
{
    bool isNumber = false;
    const int percent = zoomBox_->currentText().remove(u'%').trimmed().toInt(&isNumber);
    if (isNumber)
        pageView_->setZoomPercent(percent);
    showZoom();
}
