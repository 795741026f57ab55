#include "gui/window/TfHalvarnMain.h"

#include "gui/grids/SummaryGrid.h"
#include "gui/grids/TableGrid.h"
#include "core/session/HalvarnSession.h"
#include "gui/window/DateField.h"
#include "gui/window/StatusDisplay.h"
#include "gui/window/UserDialogs.h"
#include "gui/window/WindowHost.h"
#include "registry/client/TdmIRZ_PLUS.h"

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

namespace {
QString Text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

QString NotBuiltYet()
{
    return Text("Polecenie nie jest jeszcze dostępne w tej wersji programu");
}

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
        return Text("Ogółem");
    const QString number = QStringLiteral("%1").arg(slot, 3, 10, QLatin1Char('0'));
    return slot == 1 ? QStringLiteral("XXXX ") + number : number;
}
} // namespace

TfHalvarnMain::TfHalvarnMain(DataFolder folder, RegistryConfig registry, std::unique_ptr<UserDialogs> dialogs,
                             QWidget* parent)
    : QMainWindow(parent), folder_(std::move(folder)), dialogs_(std::move(dialogs)), registryConfig_(std::move(registry))
{
    setObjectName(QStringLiteral("fHalvarnMain"));
    setWindowTitle(Text("Fernhill Halvarn Bydła"));
    if (!dialogs_)
        dialogs_ = std::make_unique<ModalDialogs>(this);
    host_ = std::make_unique<WindowHost>(*dialogs_);
    session_ = std::make_unique<HalvarnSession>(folder_, *host_);

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
    spareDate_->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    spareDate_->hide();
    setCentralWidget(central);
    addToolBar(static_cast<QToolBar*>(buildCommandBar()));
    buildStatusBar();
    // The tabs follow the herd slots at every change of the status mode, so the
    // clearing that starts a download hides the old herds before the first request.
    host_->attach({status_, mErrors, mLoaded, lcErrors}, [this] { return summaryGrid_->rowsInDisplayOrder(); },
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

// The grids observe the session's tables, so they go before the session does.
TfHalvarnMain::~TfHalvarnMain()
{
    std::unique_ptr<QWidget> central(takeCentralWidget());
}

QWidget* TfHalvarnMain::buildCommandBar()
{
    auto* bar = Named<QToolBar>("dxBarManager1Bar1", Text("Polecenia"), this);
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    addCommand(bar, "dxBarButton3", Text("Export rozczytanych zwierząt"), true);
    addCommand(bar, "dxBarButton2", Text("Export grup technologicznych"), true);
    addCommand(bar, "dxBarButton4", Text("Wydruk rozczytanych zwierząt"), false);
    addCommand(bar, "dxBarButton5", Text("Wydruk grup technologicznych"), false);

    auto* menu = Named<QMenu>("dxBarSubItem1", Text("Ustawienia"), bar);
    menu->setToolTipsVisible(true);
    addCommand(menu, "dxBarButton6", Text("Parametry"), true);
    menu->addSeparator();
    addCommand(menu, "dxBarButton7", Text("O programie"), true);
    auto* settings = Named<QToolButton>("dxBarSubItem1Button", bar);
    settings->setText(Text("Ustawienia"));
    settings->setToolTip(Text("Ustawienia"));
    settings->setMenu(menu);
    settings->setPopupMode(QToolButton::InstantPopup);
    bar->addWidget(settings);
    lockedWhileRunning_.push_back(settings);
    return bar;
}

QAction* TfHalvarnMain::addCommand(QWidget* bar, const char* name, const QString& caption, bool built)
{
    auto* action = new QAction(caption, bar);
    action->setObjectName(QLatin1String(name));
    action->setToolTip(caption);
    action->setEnabled(built);
    if (!built)
        action->setStatusTip(NotBuiltYet());
    else
        actionsLockedWhileRunning_.push_back(action);
    bar->addAction(action);
    return action;
}

QPushButton* TfHalvarnMain::addButton(const char* name, const QString& caption, bool built)
{
    auto* button = new QPushButton(caption, this);
    button->setObjectName(QLatin1String(name));
    button->setEnabled(built);
    if (!built)
        button->setToolTip(NotBuiltYet());
    else
        lockedWhileRunning_.push_back(button);
    return button;
}

QGroupBox* TfHalvarnMain::buildLoginGroup()
{
    auto* group = Named<QGroupBox>("lcgLogowanie", Text("Dane do logowania"), this);
    group->setMinimumWidth(440);
    edUser = Named<QLineEdit>("edUser", group);
    edPassword = Named<QLineEdit>("edPassword", group);
    edPassword->setEchoMode(QLineEdit::Password);
    auto* reveal = Named<QToolButton>("edPasswordEllipsis", group);
    reveal->setText(QStringLiteral("…"));
    reveal->setToolTip(Text("Pokaż lub ukryj hasło"));
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
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]{0,9}")), edNumerProducenta));
    edNazwa = Named<QLineEdit>("edNazwa", group);
    // The name belongs to the number it came with.
    connect(edNumerProducenta, &QLineEdit::textChanged, edNazwa, &QLineEdit::clear);

    auto* form = new QFormLayout(group);
    form->addRow(QStringLiteral("Login"), edUser);
    form->addRow(Text("Hasło"), password);
    form->addRow(Text("Nr producenta (bez PL)"), edNumerProducenta);
    form->addRow(QStringLiteral("Nazwa"), edNazwa);
    form->addRow(QString(), addButton("cxButton6", Text("Wybór producenta"), false));
    for (QWidget* field : {static_cast<QWidget*>(edUser), static_cast<QWidget*>(edPassword),
                           static_cast<QWidget*>(edNumerProducenta), static_cast<QWidget*>(edNazwa)})
        lockedWhileRunning_.push_back(field);
    return group;
}

QGroupBox* TfHalvarnMain::buildHalvarnGroup()
{
    auto* group = Named<QGroupBox>("lcgHalvarn", Text("Dane do halvarnu"), this);
    group->setMinimumWidth(440);
    edStanDanychNaDzien = Named<DateField>("edStanDanychNaDzien", group);
    edHalvarnNaDzien = Named<DateField>("edHalvarnNaDzien", group);

    auto* kinds = Named<QGroupBox>("lcgHalvarnRodzaje", QStringLiteral("Halvarn"), group);
    edHalvOpasow = Named<QCheckBox>("edHalvOpasow", Text("opasów"), kinds);
    edHalvKrowMamek = Named<QCheckBox>("edHalvKrowMamek", Text("krów mamek"), kinds);
    edHalvKrow = Named<QCheckBox>("edHalvKrow", Text("krów mlecznych"), kinds);
    auto* ticks = new QHBoxLayout;
    for (QCheckBox* box : {edHalvOpasow, edHalvKrowMamek, edHalvKrow}) {
        box->setChecked(true);
        ticks->addWidget(box);
        lockedWhileRunning_.push_back(box);
    }
    ticks->addStretch();
    auto* download = addButton("cxButton1", Text("Pobieranie danych"), true);
    download->setIcon(style()->standardIcon(QStyle::SP_ArrowDown));
    download->setDefault(true);
    auto* clear = addButton("cxButton2", Text("Czyszczenie danych"), true);
    clear->setIcon(style()->standardIcon(QStyle::SP_DialogResetButton));
    cancelButton_ = Named<QPushButton>("cxButtonPrzerwij", Text("Przerwij"), kinds);
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
    form->addRow(Text("Stan zwierząt na dzień"), edStanDanychNaDzien);
    form->addRow(QStringLiteral("Halvarn na dzień"), edHalvarnNaDzien);
    form->addRow(kinds);
    lockedWhileRunning_.push_back(edStanDanychNaDzien);
    lockedWhileRunning_.push_back(edHalvarnNaDzien);
    return group;
}

QGroupBox* TfHalvarnMain::buildErrorGroup()
{
    lcErrors = Named<QGroupBox>("lcErrors", Text("Błąd"), this);
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
        page->setObjectName(QStringLiteral("tsStado") + SlotSuffix(slot));
        slotViews_[static_cast<std::size_t>(slot)].TabSheet = page;
        pages_->addTab(page, PlaceholderCaption(slot));
    }
    tsPobraneDane = Named<QWidget>("tsPobraneDane", pages_);
    mLoaded = Named<QPlainTextEdit>("mLoaded", tsPobraneDane);
    mLoaded->setReadOnly(true);
    mLoaded->setLineWrapMode(QPlainTextEdit::NoWrap);
    auto* layout = new QVBoxLayout(tsPobraneDane);
    layout->addWidget(mLoaded);
    pages_->addTab(tsPobraneDane, QStringLiteral("Pobrane dane"));
    return pages_;
}

namespace {
// Animals on the left, the technological groups of the same herd on the right.
QSplitter* HerdSplitter(QWidget* animals, TableGrid* groups, QWidget* parent)
{
    auto* splitter = new QSplitter(Qt::Horizontal, parent);
    splitter->addWidget(animals);
    auto* groupsBox = new QGroupBox(QStringLiteral("Grupy technologiczne"), splitter);
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
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(HerdSplitter(animals, groups, page));
    return page;
}

QWidget* TfHalvarnMain::buildSummaryButtons()
{
    auto* panel = Named<QWidget>("pnlSummaryButtons", this);
    auto* layout = new QHBoxLayout(panel);
    layout->setContentsMargins(0, 1, 0, 1);
    layout->setSpacing(0);
    auto* useChange = addButton("cxButton3", Text("Zmiana kierunku użytkowania"), false);
    useChange->setIcon(style()->standardIcon(QStyle::SP_BrowserReload));
    auto* xls = addButton("cxButton4", QStringLiteral("Export XLS"), true);
    xls->setIcon(style()->standardIcon(QStyle::SP_DialogSaveButton));
    auto* csv = addButton("cxButton7", QStringLiteral("Export CSV"), true);
    csv->setIcon(style()->standardIcon(QStyle::SP_DialogSaveButton));
    auto* print = addButton("cxButton5", QStringLiteral("Wydruk"), false);
    print->setIcon(style()->standardIcon(QStyle::SP_FileDialogDetailedView));
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
    animals->setObjectName(QStringLiteral("gridRZ") + SlotSuffix(slot));
    auto* groups = new TableGrid(tables.mdGT(slot), GridKind::Groups, page);
    groups->setObjectName(QStringLiteral("gridTG") + SlotSuffix(slot));
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
    timer1_ = Named<QTimer>("Timer1", this);
    timer1_->setInterval(1000);
    connect(timer1_, &QTimer::timeout, this, &TfHalvarnMain::timerTick);
}

void TfHalvarnMain::timerTick()
{
    spareDate_->setDate(QDate::currentDate());
    status_->setText(StatusDisplay::Today, spareDate_->text());
}
