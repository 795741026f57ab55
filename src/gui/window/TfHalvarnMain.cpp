#include "gui/window/TfHalvarnMain.h"

#include "core/session/HalvarnSession.h"
#include "export/ExportCommands.h"
#include "gui/charts/GroupsChartView.h"
#include "gui/dialogs/TfAbout.h"
#include "gui/dialogs/TfGET_PARAM.h"
#include "gui/grids/SummaryGrid.h"
#include "gui/grids/TableGrid.h"
#include "gui/window/DateField.h"
#include "gui/window/StatusDisplay.h"
#include "gui/window/UserDialogs.h"
#include "gui/window/WindowHost.h"
#include "registry/client/TdmIRZ_PLUS.h"
#include "reports/print/PrintCommands.h"
#include "reports/print/TdmulmxDataBase_FR3.h"

#include <QAction>
#include <QCheckBox>
#include <QDateEdit>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QSplitter>
#include <QStyle>
#include <QTabWidget>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

// A new widget carrying its name, so that tests and tools find it.
template <class Widget, class... Args> Widget* Named(const char* name, Args&&... args)
{
    auto* widget = new Widget(std::forward<Args>(args)...);
    widget->setObjectName(QLatin1String(name));
    return widget;
}

// The captions the herd tabs carry until a download names them.
QString PlaceholderCaption(int slot)
{
    if (slot == 0)
        return u"Ogółem"_s;
    const QString number = u"%1"_s.arg(slot, 3, 10, QLatin1Char('0'));
    return slot == 1 ? u"XXXX "_s + number : number;
}
} // namespace

TfHalvarnMain::TfHalvarnMain(DataFolder folder, RegistryConfig registry, std::unique_ptr<UserDialogs> dialogs,
                             QWidget* parent)
    : QMainWindow(parent), folder_(std::move(folder)), dialogs_(std::move(dialogs)),
      registryConfig_(std::move(registry))
{
    setObjectName(u"fHalvarnMain"_s);
    setWindowTitle(u"Fernhill Halvarn Bydła"_s);
    if (!dialogs_)
        dialogs_ = std::make_unique<ModalDialogs>(this);
    host_ = std::make_unique<WindowHost>(*dialogs_);
    session_ = std::make_unique<HalvarnSession>(folder_, *host_);
    dmulmxDataBase_FR3 = std::make_unique<TdmulmxDataBase_FR3>();
    prints_ = std::make_unique<PrintCommands>(*session_, *dmulmxDataBase_FR3);

    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    auto* inputs = new QHBoxLayout;
    inputs->addWidget(buildLoginGroup());
    inputs->addWidget(buildHalvarnGroup());
    inputs->addStretch();
    layout->addLayout(inputs);
    layout->addWidget(buildErrorGroup());
    layout->addWidget(buildPages(), 1);
    spareDate_ = Named<QDateEdit>("cxDateEdit1", central);
    spareDate_->setDisplayFormat(u"dd.MM.yyyy"_s);
    spareDate_->hide();
    setCentralWidget(central);
    addToolBar(static_cast<QToolBar*>(buildCommandBar()));
    buildStatusBar();
    // The tabs follow the herd slots at every change of the status mode, so the
    // clearing that starts a download hides the old herds before the first request.
    host_->attach(
        {status_, mErrors, mLoaded, lcErrors}, [this] { return summaryGrid_->rowsInDisplayOrder(); },
        [this] { showHerdTabs(); });
    connectCommands();

    readInputs();
    session_->ClearAllData();
    const QDate today = QDate::currentDate();
    edStanDanychNaDzien->setDate(today);
    edHalvarnNaDzien->setDate(today);
    session_->referenceDate = today;
    registry_ = std::make_unique<TdmIRZ_PLUS>(registryConfig_, *host_);
    timer1_->start();
    timerTick();
    lcErrors->hide();
    setWindowState(Qt::WindowMaximized);
    pages_->setCurrentWidget(tsPobraneDane);
}

QStringList TfHalvarnMain::secrets() const
{
    return {edUser->text(), edPassword->text(), registry_->Token};
}

// The grids observe the session's tables, so they go before the session does.
TfHalvarnMain::~TfHalvarnMain()
{
    std::unique_ptr<QWidget> central(takeCentralWidget());
}

QWidget* TfHalvarnMain::buildCommandBar()
{
    auto* bar = Named<QToolBar>("dxBarManager1Bar1", u"Polecenia"_s, this);
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    connect(addCommand(bar, "dxBarButton3", u"Export rozczytanych zwierząt"_s), &QAction::triggered, this,
            [this] { runExport(&ExportCommands::exportHerdAnimals); });
    connect(addCommand(bar, "dxBarButton2", u"Export grup technologicznych"_s), &QAction::triggered, this,
            [this] { runExport(&ExportCommands::exportHerdGroups); });
    connect(addCommand(bar, "dxBarButton4", u"Wydruk rozczytanych zwierząt"_s), &QAction::triggered, this,
            &TfHalvarnMain::dxBarButton4Click);
    connect(addCommand(bar, "dxBarButton5", u"Wydruk grup technologicznych"_s), &QAction::triggered, this,
            &TfHalvarnMain::dxBarButton5Click);

    connect(addCommand(bar, "actArchiwum", u"Archiwum"_s), &QAction::triggered, this, &TfHalvarnMain::openArchive);
    connect(addCommand(bar, "actPrzelicz", u"Przelicz na dzień…"_s), &QAction::triggered, this,
            &TfHalvarnMain::recount);
    connect(addCommand(bar, "actListaKontrolna", u"Lista kontrolna"_s), &QAction::triggered, this,
            &TfHalvarnMain::printControlList);
    connect(addCommand(bar, "actPorownanie", u"Porównanie pobrań"_s), &QAction::triggered, this, [this] {
        if (!running_)
            dialogs_->compareDownloads(folder_, *dmulmxDataBase_FR3, [this](const PrintJob& job) { showPrint(job); });
    });

    auto* menu = Named<QMenu>("dxBarSubItem1", u"Ustawienia"_s, bar);
    menu->setToolTipsVisible(true);
    connect(addCommand(menu, "dxBarButton6", u"Parametry"_s), &QAction::triggered, this,
            [this] { OpenParameters(folder_.settingsFile(), folder_.exportFolder(), this); });
    menu->addSeparator();
    connect(addCommand(menu, "dxBarButton7", u"O programie"_s), &QAction::triggered, this,
            [this] { ShowAbout(folder_.commonSettingsFile(), this); });
    // A tester's switch ("TESTER=1" in COMMON.INI) offers an error on purpose, to see its report.
    if (session_->common.tester)
        connect(addCommand(menu, "actTestError", u"Próbny błąd programu"_s), &QAction::triggered, this,
                [] { throw std::logic_error("Próbny błąd programu (przełącznik TESTER w COMMON.INI)"); });
    auto* settings = Named<QToolButton>("dxBarSubItem1Button", bar);
    settings->setText(u"Ustawienia"_s);
    settings->setToolTip(u"Ustawienia"_s);
    settings->setMenu(menu);
    settings->setPopupMode(QToolButton::InstantPopup);
    bar->addWidget(settings);
    lockedWhileRunning_.push_back(settings);
    return bar;
}

QAction* TfHalvarnMain::addCommand(QWidget* bar, const char* name, const QString& caption)
{
    auto* action = new QAction(caption, bar);
    action->setObjectName(QLatin1String(name));
    action->setToolTip(caption);
    actionsLockedWhileRunning_.push_back(action);
    bar->addAction(action);
    return action;
}

QPushButton* TfHalvarnMain::addButton(const char* name, const QString& caption)
{
    auto* button = new QPushButton(caption, this);
    button->setObjectName(QLatin1String(name));
    lockedWhileRunning_.push_back(button);
    return button;
}

QGroupBox* TfHalvarnMain::buildLoginGroup()
{
    auto* group = Named<QGroupBox>("lcgLogowanie", u"Dane do logowania"_s, this);
    group->setMinimumWidth(440);
    edUser = Named<QLineEdit>("edUser", group);
    edPassword = Named<QLineEdit>("edPassword", group);
    edPassword->setEchoMode(QLineEdit::Password);
    auto* reveal = Named<QToolButton>("edPasswordEllipsis", group);
    reveal->setText(u"…"_s);
    reveal->setToolTip(u"Pokaż lub ukryj hasło"_s);
    connect(reveal, &QToolButton::clicked, this, [this] {
        const bool hidden = edPassword->echoMode() == QLineEdit::Password;
        edPassword->setEchoMode(hidden ? QLineEdit::Normal : QLineEdit::Password);
    });
    auto* password = new QHBoxLayout;
    password->addWidget(edPassword, 1);
    password->addWidget(reveal);
    edNumerProducenta = Named<QLineEdit>("edNumerProducenta", group);
    edNumerProducenta->setMaxLength(9);
    // The number goes into the registry's query strings and into file names.
    edNumerProducenta->setValidator(
        new QRegularExpressionValidator(QRegularExpression(u"[0-9]{0,9}"_s), edNumerProducenta));
    edNazwa = Named<QLineEdit>("edNazwa", group);
    // The name belongs to the number it came with.
    connect(edNumerProducenta, &QLineEdit::textChanged, edNazwa, &QLineEdit::clear);

    auto* form = new QFormLayout(group);
    form->addRow(u"Login"_s, edUser);
    form->addRow(u"Hasło"_s, password);
    form->addRow(u"Nr producenta (bez PL)"_s, edNumerProducenta);
    form->addRow(u"Nazwa"_s, edNazwa);
    auto* choose = addButton("cxButton6", u"Wybór producenta"_s);
    connect(choose, &QPushButton::clicked, this, &TfHalvarnMain::cxButton6Click);
    form->addRow(QString(), choose);
    // A producer typed by hand has no declared numbers to check.
    for (QLineEdit* typed : {edUser, edNumerProducenta})
        connect(typed, &QLineEdit::textEdited, this, [this] { declaredLimits_.reset(); });
    for (QWidget* field : {static_cast<QWidget*>(edUser), static_cast<QWidget*>(edPassword),
                           static_cast<QWidget*>(edNumerProducenta), static_cast<QWidget*>(edNazwa)})
        lockedWhileRunning_.push_back(field);
    return group;
}

QGroupBox* TfHalvarnMain::buildHalvarnGroup()
{
    auto* group = Named<QGroupBox>("lcgHalvarn", u"Dane do halvarnu"_s, this);
    group->setMinimumWidth(440);
    edStanDanychNaDzien = Named<DateField>("edStanDanychNaDzien", group);
    edHalvarnNaDzien = Named<DateField>("edHalvarnNaDzien", group);

    auto* kinds = Named<QGroupBox>("lcgHalvarnRodzaje", u"Halvarn"_s, group);
    edHalvOpasow = Named<QCheckBox>("edHalvOpasow", u"opasów"_s, kinds);
    edHalvKrowMamek = Named<QCheckBox>("edHalvKrowMamek", u"krów mamek"_s, kinds);
    edHalvKrow = Named<QCheckBox>("edHalvKrow", u"krów mlecznych"_s, kinds);
    auto* ticks = new QHBoxLayout;
    for (QCheckBox* box : {edHalvOpasow, edHalvKrowMamek, edHalvKrow}) {
        box->setChecked(true);
        ticks->addWidget(box);
        lockedWhileRunning_.push_back(box);
    }
    ticks->addStretch();
    auto* download = addButton("cxButton1", u"Pobieranie danych"_s);
    download->setIcon(style()->standardIcon(QStyle::SP_ArrowDown));
    download->setDefault(true);
    connect(download, &QPushButton::clicked, this, &TfHalvarnMain::cxButton1Click);
    auto* clear = addButton("cxButton2", u"Czyszczenie danych"_s);
    clear->setIcon(style()->standardIcon(QStyle::SP_DialogResetButton));
    connect(clear, &QPushButton::clicked, this, &TfHalvarnMain::cxButton2Click);
    cancelButton_ = Named<QPushButton>("cxButtonPrzerwij", u"Przerwij"_s, kinds);
    cancelButton_->setIcon(style()->standardIcon(QStyle::SP_BrowserStop));
    cancelButton_->hide();
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(download);
    buttons->addWidget(clear);
    buttons->addWidget(cancelButton_);
    buttons->addStretch();
    auto* kindsLayout = new QVBoxLayout(kinds);
    kindsLayout->addLayout(ticks);
    kindsLayout->addLayout(buttons);

    auto* form = new QFormLayout(group);
    form->addRow(u"Stan zwierząt na dzień"_s, edStanDanychNaDzien);
    form->addRow(u"Halvarn na dzień"_s, edHalvarnNaDzien);
    form->addRow(kinds);
    lockedWhileRunning_.push_back(edStanDanychNaDzien);
    lockedWhileRunning_.push_back(edHalvarnNaDzien);
    return group;
}

QGroupBox* TfHalvarnMain::buildErrorGroup()
{
    lcErrors = Named<QGroupBox>("lcErrors", u"Błąd"_s, this);
    mErrors = Named<QPlainTextEdit>("mErrors", lcErrors);
    mErrors->setReadOnly(true);
    mErrors->setMaximumHeight(64);
    auto* layout = new QVBoxLayout(lcErrors);
    layout->addWidget(mErrors);
    return lcErrors;
}

QTabWidget* TfHalvarnMain::buildPages()
{
    pages_ = Named<QTabWidget>("cxPageControl1", this);
    for (int slot = 0; slot < HerdSlotCount; ++slot) {
        QWidget* page = slot == 0 ? buildSummaryPage() : buildHerdPage(slot);
        page->setObjectName(u"tsStado"_s + SlotSuffix(slot));
        slotViews_[static_cast<std::size_t>(slot)].TabSheet = page;
        pages_->addTab(page, PlaceholderCaption(slot));
    }
    tsPobraneDane = Named<QWidget>("tsPobraneDane", pages_);
    mLoaded = Named<QPlainTextEdit>("mLoaded", tsPobraneDane);
    mLoaded->setReadOnly(true);
    mLoaded->setLineWrapMode(QPlainTextEdit::NoWrap);
    auto* layout = new QVBoxLayout(tsPobraneDane);
    layout->addWidget(mLoaded);
    pages_->addTab(tsPobraneDane, u"Pobrane dane"_s);
    return pages_;
}

namespace {
// Animals on the left, the technological groups of the same herd on the right.
QSplitter* HerdSplitter(QWidget* animals, QWidget* groups, QWidget* parent)
{
    auto* splitter = new QSplitter(Qt::Horizontal, parent);
    splitter->addWidget(animals);
    auto* groupsBox = new QGroupBox(u"Grupy technologiczne"_s, splitter);
    auto* layout = new QVBoxLayout(groupsBox);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(groups);
    splitter->addWidget(groupsBox);
    // The group grid keeps the width of its columns; the animals take the rest.
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 0);
    splitter->setCollapsible(1, false);
    return splitter;
}
} // namespace

QWidget* TfHalvarnMain::buildSummaryPage()
{
    auto* page = new QWidget(this);
    WorkingTables& tables = session_->tables();
    summaryGrid_ = Named<SummaryGrid>("gridRZ00", tables.mdRZ00(), page);
    auto* groups = Named<TableGrid>("gridTG00", tables.mdGT00(), GridKind::Groups, page);
    slotViews_[0].AnimalsGrid = summaryGrid_;
    slotViews_[0].GroupsGrid = groups;

    auto* animals = new QWidget(page);
    auto* animalsLayout = new QVBoxLayout(animals);
    animalsLayout->setContentsMargins(0, 0, 0, 0);
    animalsLayout->addWidget(summaryGrid_, 1);
    animalsLayout->addWidget(buildSummaryButtons());
    // The chart of the overall groups is a page beside their grid.
    auto* groupPages = Named<QTabWidget>("pcGrupy", page);
    groupPages->addTab(groups, u"Tabela"_s);
    chart_ = new GroupsChartView(tables, {}, groupPages);
    groupPages->addTab(chart_, u"Wykres"_s);
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(HerdSplitter(animals, groupPages, page));
    return page;
}

QWidget* TfHalvarnMain::buildSummaryButtons()
{
    auto* panel = Named<QWidget>("pnlSummaryButtons", this);
    auto* layout = new QHBoxLayout(panel);
    layout->setContentsMargins(0, 1, 0, 1);
    layout->setSpacing(0);
    auto* useChange = addButton("cxButton3", u"Zmiana kierunku użytkowania"_s);
    useChange->setIcon(style()->standardIcon(QStyle::SP_BrowserReload));
    connect(useChange, &QPushButton::clicked, this, &TfHalvarnMain::cxButton3Click);
    auto* xls = addButton("cxButton4", u"Export XLS"_s);
    xls->setIcon(style()->standardIcon(QStyle::SP_DialogSaveButton));
    connect(xls, &QPushButton::clicked, this, [this] { runExport(&ExportCommands::exportSummaryXls); });
    auto* csv = addButton("cxButton7", u"Export CSV"_s);
    csv->setIcon(style()->standardIcon(QStyle::SP_DialogSaveButton));
    connect(csv, &QPushButton::clicked, this, [this] { runExport(&ExportCommands::exportSummaryCsv); });
    auto* print = addButton("cxButton5", u"Wydruk"_s);
    print->setIcon(style()->standardIcon(QStyle::SP_FileDialogDetailedView));
    connect(print, &QPushButton::clicked, this, &TfHalvarnMain::cxButton5Click);
    for (QPushButton* button : {useChange, xls, csv, print})
        layout->addWidget(button);
    layout->addStretch();
    return panel;
}

QWidget* TfHalvarnMain::buildHerdPage(int slot)
{
    auto* page = new QWidget(this);
    WorkingTables& tables = session_->tables();
    auto* animals = new TableGrid(tables.mdRZ(slot), GridKind::HerdAnimals, page);
    animals->setObjectName(u"gridRZ"_s + SlotSuffix(slot));
    auto* groups = new TableGrid(tables.mdGT(slot), GridKind::Groups, page);
    groups->setObjectName(u"gridTG"_s + SlotSuffix(slot));
    HerdSlotView& view = slotViews_[static_cast<std::size_t>(slot)];
    view.AnimalsGrid = animals;
    view.GroupsGrid = groups;
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(HerdSplitter(animals, groups, page));
    return page;
}

void TfHalvarnMain::buildStatusBar()
{
    status_ = new StatusDisplay(this);
    setStatusBar(status_);
    status_->setTestBranch(registryConfig_.testBranch);
    timer1_ = Named<QTimer>("Timer1", this);
    timer1_->setInterval(1000);
    connect(timer1_, &QTimer::timeout, this, &TfHalvarnMain::timerTick);
}

void TfHalvarnMain::timerTick()
{
    spareDate_->setDate(QDate::currentDate());
    status_->setText(StatusDisplay::Today, spareDate_->text());
}
