#include "core/archive/DownloadArchive.h"
#include "core/session/HalvarnSession.h"
#include "framework/Cp1250.h"
#include "gui/charts/GroupsChartView.h"
#include "gui/grids/SummaryGrid.h"
#include "gui/grids/TableGrid.h"
#include "gui/grids/TableModel.h"
#include "gui/window/DateField.h"
#include "gui/window/RecordingDialogs.h"
#include "gui/window/StatusDisplay.h"
#include "gui/window/TfHalvarnMain.h"
#include "registry/sim/HttpLib.h"
#include "registry/sim/RegistrySimulator.h"
#include "reports/ShippedTemplates.h"
#include "support/Files.h"
#include "support/RecordingServer.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QGroupBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <numeric>

using namespace Qt::StringLiterals;

namespace {
const DemoOptions Demo;

// The ear tag of an animal of the demo producer; herds count from 0.
QString DemoTag(int herd, int animal)
{
    static const SimDataset data = GenerateDemoDataset(Demo);
    const SimHolding& holding = data.producers.front().holdings[static_cast<std::size_t>(herd)];
    return holding.animals[static_cast<std::size_t>(animal)].value(u"numerIdentyfikacyjnyZwierzecia").toString();
}

// The demo registry behind a front that passes every request on and lets a test
// look at the window while the request is in flight; the requests a test picks
// to stall are accepted and never answered.
class FrontedRegistry {
public:
    using Request = RecordingServer::Request;
    std::function<bool(const Request&)> stalls = [](const Request&) { return false; };
    std::function<void(const Request&)> onRequest = [](const Request&) {};
    int latencyMs = 0;

    FrontedRegistry() : front_([this](const Request& request) { return answer(request); })
    {
        QVERIFY(simulator_.start());
    }
    QString baseUrl() const { return front_.baseUrl(); }

private:
    RecordingServer::Reply answer(const Request& request)
    {
        onRequest(request);
        if (stalls(request))
            return RecordingServer::Silent();
        return forward(request);
    }

    RecordingServer::Reply forward(const Request& request)
    {
        httplib::Client client(simulator_.baseUrl().toStdString());
        client.set_url_encode(false);
        httplib::Headers headers;
        if (request.headers.contains("authorization"))
            headers.emplace("Authorization", request.headers.value("authorization").toStdString());
        const std::string target = request.target.toStdString();
        const httplib::Result result = request.method == "POST"
                                           ? client.Post(target, headers, request.body.toStdString(),
                                                         request.headers.value("content-type").toStdString())
                                           : client.Get(target, headers);
        if (!result)
            return {502};
        return {result->status, QByteArray::fromStdString(result->body), latencyMs};
    }

    RegistrySimulator simulator_{GenerateDemoDataset(Demo)};
    RecordingServer front_;
};

bool IsTokenRequest(const RecordingServer::Request& request)
{
    return request.target.contains("openid-connect/token");
}

bool IsAnimalRequestFor(const RecordingServer::Request& request, const QString& tag)
{
    return request.target.contains("/zwierzeIndywidualne") && request.target.contains(tag.toLatin1());
}
} // namespace

class TestMainWindow : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> data_;
    std::unique_ptr<RegistrySimulator> registry_;
    std::unique_ptr<TfHalvarnMain> window_;
    RecordingDialogs* dialogs_ = nullptr;

    void openWindow(const SimOptions& sim = {});
    void openWindowOn(const QString& registryUrl);
    bool anyHerdTabVisible() const;
    template <class T> T* child(const char* name) const
    {
        T* found = window_->findChild<T*>(QLatin1String(name));
        if (!found)
            qFatal("no control %s", name);
        return found;
    }
    void click(const char* button) { child<QPushButton>(button)->click(); }
    void fillDemoLogin() { window_->fillLogin(Demo.login, Demo.password, Demo.producerNumber); }
    int sumOf(Table& table, const char* field) const;

private Q_SLOTS:
    void init();
    void cleanup();
    void startsEmptyIdleOnLoadedDataPage();
    void clearingEndsIdleAtSixtyFourOfSixtyFive();
    void testLoginComesFromTheCommonSettings();
    void loginFields();
    void demoDownloadFillsTabsGridsAndMemos();
    void stopEndsTheDownloadAtOnce_data();
    void stopEndsTheDownloadAtOnce();
    void downloadHidesTheOldHerdsFromItsStart();
    void herdEndedEarlySaysSoOnItsTab();
    void exportsFollowTheHerdChoiceAndTheGridsOrder();
    void changedLimitsTakeEffectAtTheNextClearing();
    void unreachableRegistryEndsInAMessage();
    void chosenProducerFillsTheLoginAndHasItsLimitsChecked();
    void archivedDownloadOpensAndRecountsWithoutTheRegistry();
};

void TestMainWindow::init()
{
    QCoreApplication::setApplicationVersion(QStringLiteral(HALVARN_VERSION));
    data_ = std::make_unique<QTemporaryDir>();
    QVERIFY(data_->isValid());
    QVERIFY(DataFolder(data_->path()).prepare());
}

void TestMainWindow::cleanup()
{
    window_.reset();
    registry_.reset();
    data_.reset();
}

void TestMainWindow::openWindow(const SimOptions& sim)
{
    registry_ = std::make_unique<RegistrySimulator>(GenerateDemoDataset(Demo), sim);
    QVERIFY(registry_->start());
    openWindowOn(registry_->baseUrl());
}

void TestMainWindow::openWindowOn(const QString& registryUrl)
{
    RegistryConfig config;
    config.ssoBase = config.apiBase = registryUrl;
    auto dialogs = std::make_unique<RecordingDialogs>();
    dialogs_ = dialogs.get();
    window_ = std::make_unique<TfHalvarnMain>(DataFolder(data_->path()), config, std::move(dialogs));
    window_->show();
}

bool TestMainWindow::anyHerdTabVisible() const
{
    for (int slot = 0; slot < HerdSlotCount; ++slot)
        if (window_->pages()->isTabVisible(window_->pages()->indexOf(window_->slotView(slot).TabSheet)))
            return true;
    return false;
}

int TestMainWindow::sumOf(Table& table, const char* field) const
{
    const int column = table.requireField(QLatin1String(field));
    int sum = 0;
    for (int row = 0; row < table.recordCount(); ++row)
        sum += AsInteger(table.at(row, column));
    return sum;
}

void TestMainWindow::startsEmptyIdleOnLoadedDataPage()
{
    openWindow();
    QVERIFY(window_->windowState() & Qt::WindowMaximized);
    QCOMPARE(window_->pages()->currentWidget()->objectName(), u"tsPobraneDane"_s);
    QVERIFY(!anyHerdTabVisible());
    for (int slot = 0; slot < HerdSlotCount; ++slot) {
        QCOMPARE(window_->session().tables().mdRZ(slot).recordCount(), 0);
        QCOMPARE(window_->session().tables().mdGT(slot).recordCount(), 40);
    }
    StatusDisplay* status = window_->statusDisplay();
    QVERIFY(!status->busy());
    QVERIFY(status->panel(StatusDisplay::General)->isVisible());
    for (int panel = 1; panel <= 6; ++panel)
        QVERIFY(!status->panel(panel)->isVisible());
    QCOMPARE(status->text(StatusDisplay::Version), u"Ver.: 1.0.0.0"_s);
    QCOMPARE(status->text(StatusDisplay::Today), QDate::currentDate().toString(u"dd.MM.yyyy"));
    QVERIFY(!child<QGroupBox>("lcErrors")->isVisible());
    QVERIFY(!window_->session().common.torvLogin);
    for (QPushButton* button : window_->findChildren<QPushButton*>(QRegularExpression(u"^cxButton"_s)))
        QVERIFY2(button->isEnabled(), qPrintable(button->objectName()));
}

void TestMainWindow::clearingEndsIdleAtSixtyFourOfSixtyFive()
{
    openWindow();
    fillDemoLogin();
    click("cxButton1");
    QVERIFY(window_->session().tables().mdRZ00().recordCount() > 0);
    click("cxButton2");
    QProgressBar* bar = window_->statusDisplay()->progressBar(1);
    QCOMPARE(bar->value(), 64);
    QCOMPARE(bar->maximum(), 65);
    QVERIFY(!window_->statusDisplay()->busy() && !window_->session().DataLoaded);
    WorkingTables& tables = window_->session().tables();
    for (const THerdSlot& slot : tables.HerdSlots) {
        const bool summary = slot.AnimalsTable == &tables.mdRZ00();
        QVERIFY(slot.AnimalsTable->isEmpty() && !slot.Visible);
        QCOMPARE(slot.AnimalsTable->readOnly(), !summary);
        QCOMPARE(slot.GroupsTable->recordCount(), 40);
        QCOMPARE(slot.Code, summary ? u"000"_s : QString());
        QCOMPARE(slot.Index, summary ? -1 : 0);
    }
    QVERIFY(!anyHerdTabVisible());
    QVERIFY(child<QPlainTextEdit>("mLoaded")->toPlainText().isEmpty());
    QVERIFY(!child<QGroupBox>("lcErrors")->isVisible());
}

// With "TORV_Login" in COMMON.INI and the fields left empty, the test account logs in.
void TestMainWindow::testLoginComesFromTheCommonSettings()
{
    WriteAll(data_->filePath(u"COMMON.INI"_s), "[PARAM]\r\nTESTER=0\r\nTORV_Login=1\r\n");
    openWindow();
    click("cxButton1");
    QCOMPARE(window_->session().Login, Demo.login);
    QVERIFY(window_->session().herdCount > 0);
}

// The producer number takes nine digits only and empties the name; the password can be shown.
void TestMainWindow::loginFields()
{
    openWindow();
    auto* number = child<QLineEdit>("edNumerProducenta");
    auto* name = child<QLineEdit>("edNazwa");
    name->setText(u"Gospodarstwo Zielonka"_s);
    QTest::keyClicks(number, u"07a1/2 3.4-5\\6&7?89"_s);
    QCOMPARE(number->text(), u"071234567"_s);
    QVERIFY(name->text().isEmpty());
    name->setText(u"Inny"_s);
    QTest::keyClick(number, Qt::Key_Backspace);
    QVERIFY(name->text().isEmpty());
    number->clear();
    number->insert(u"0712&x=1"_s); // as pasted
    QVERIFY(number->text().isEmpty());
    number->insert(u"٠٧١"_s); // digits of another script
    QVERIFY(number->text().isEmpty());
    window_->fillLogin(Demo.login, Demo.password, u"../071234562"_s);
    click("cxButton1");
    QCOMPARE(dialogs_->texts(), QStringList{u"Nie podanu mumeru producenta"_s});
    QCOMPARE(dialogs_->messages[0].caption, u"Błąd..."_s);
    QCOMPARE(registry_->stats().tokenRequests, 0);

    auto* password = child<QLineEdit>("edPassword");
    QCOMPARE(password->echoMode(), QLineEdit::Password);
    child<QAbstractButton>("edPasswordEllipsis")->click();
    QCOMPARE(password->echoMode(), QLineEdit::Normal);
}

void TestMainWindow::demoDownloadFillsTabsGridsAndMemos()
{
    openWindow();
    fillDemoLogin();
    click("cxButton1");
    HalvarnSession& session = window_->session();
    QTabWidget* pages = window_->pages();
    const int herds = static_cast<int>(Demo.herdSizes.size());
    QCOMPARE(session.herdCount, herds);
    QVERIFY(pages->isTabVisible(0));
    int animals = 0;
    for (int slot = 1; slot < HerdSlotCount; ++slot) {
        const int index = pages->indexOf(window_->slotView(slot).TabSheet);
        const bool loaded = slot <= herds;
        QCOMPARE(pages->isTabVisible(index), loaded);
        if (!loaded)
            continue;
        const int size = Demo.herdSizes[static_cast<std::size_t>(slot - 1)];
        animals += size;
        QCOMPARE(pages->tabText(index), u"%1"_s.arg(slot, 3, 10, QLatin1Char('0')));
        auto* grid = static_cast<TableGrid*>(window_->slotView(slot).AnimalsGrid);
        QCOMPARE(grid->footerText(u"NumerIdentyfikacyjny"_s), QString::number(size));
        QCOMPARE(grid->footerText(u"CzyMatka"_s), QString::number(sumOf(session.tables().mdRZ(slot), "CzyMatka")));
        QCOMPARE(window_->slotView(slot).GroupsGrid->footerText(u"Ilosc"_s), QString::number(size));
    }
    QCOMPARE(pages->currentWidget(), window_->slotView(1).TabSheet);
    QCOMPARE(window_->summaryGrid()->footerText(u"NumerIdentyfikacyjny"_s), QString::number(animals));
    QCOMPARE(sumOf(session.tables().mdGT00(), "Ilosc"), animals);
    pages->setCurrentWidget(child<QWidget>("tsPobraneDane"));
    const QString loaded = child<QPlainTextEdit>("mLoaded")->toPlainText();
    QVERIFY(loaded.startsWith(u"dzialalnosc\n{\"listaZwierzeta\":["_s));
    QCOMPARE(loaded, session.loaded());
    const QString errors = child<QPlainTextEdit>("mErrors")->toPlainText();
    QVERIFY2(errors.contains(u"Nie aktywne stado: "_s), qPrintable(errors));
    QVERIFY2(errors.contains(u"Brak zwierząt w stadzie: "_s), qPrintable(errors));
    QVERIFY(child<QGroupBox>("lcErrors")->isVisible());
    QVERIFY(!window_->statusDisplay()->busy());
    QVERIFY(child<QPushButton>("cxButton1")->isEnabled());
    QVERIFY(!child<QPushButton>("cxButtonPrzerwij")->isVisible());
    QVERIFY(dialogs_->messages.empty());

    dialogs_->answerYes = false; // a second download asks first; "no" keeps the data
    const int logIns = registry_->stats().tokenRequests;
    click("cxButton1");
    QCOMPARE(dialogs_->questions, QStringList{u"Są wczytane dane. Będą one usunięte. Czy kontynuować?"_s});
    QCOMPARE(registry_->stats().tokenRequests, logIns);
    QCOMPARE(window_->summaryGrid()->footerText(u"NumerIdentyfikacyjny"_s), QString::number(animals));
    QVERIFY(pages->isTabVisible(0));
}

void TestMainWindow::stopEndsTheDownloadAtOnce_data()
{
    QTest::addColumn<int>("stall"); // 0: the registry answers slowly, 1: the log-in never ends, 2: an animal's
    QTest::addColumn<bool>("byClosing");
    for (const bool closing : {false, true})
        for (const int stall : {0, 1, 2})
            QTest::addRow("%s, %s", closing ? "closing the window" : "Przerwij",
                          stall == 0   ? "between animals"
                          : stall == 1 ? "while logging in"
                                       : "while an animal is asked")
                << stall << closing;
}

// Przerwij and closing the window stop between animals with consistent tables, and leave a registry
// that never answers at once, not after the 150 s time-out.
void TestMainWindow::stopEndsTheDownloadAtOnce()
{
    QFETCH(int, stall);
    QFETCH(bool, byClosing);
    bool locked = false;
    QElapsedTimer sinceStop;
    const auto stop = [&] {
        auto* cancel = child<QPushButton>("cxButtonPrzerwij");
        locked = cancel->isVisible() && !child<QPushButton>("cxButton1")->isEnabled() &&
                 !child<QPushButton>("cxButton4")->isEnabled() && window_->operationRunning();
        sinceStop.start();
        if (byClosing)
            window_->close();
        else
            cancel->click();
    };
    FrontedRegistry registry;
    const QString stalledTag = DemoTag(0, 2);
    registry.stalls = [&](const RecordingServer::Request& request) {
        return stall == 1 ? IsTokenRequest(request) : stall == 2 && IsAnimalRequestFor(request, stalledTag);
    };
    bool stalled = false;
    registry.onRequest = [&](const RecordingServer::Request& request) {
        if (!stalled && registry.stalls(request))
            QTimer::singleShot(300, window_.get(), stop);
        stalled = stalled || registry.stalls(request);
    };
    registry.latencyMs = stall == 0 ? 20 : 0;
    openWindowOn(registry.baseUrl());
    if (stall == 0)
        QTimer::singleShot(400, window_.get(), stop);
    fillDemoLogin();
    click("cxButton1");
    QCOMPARE(stalled, stall != 0);
    QVERIFY(locked);
    QVERIFY2(sinceStop.elapsed() < 2000, qPrintable(QString::number(sinceStop.elapsed())));
    QCOMPARE(window_->isVisible(), !byClosing);
    QCOMPARE(dialogs_->texts(), QStringList()); // a stop the user asked for needs no message box
    QVERIFY(!window_->operationRunning() && !window_->statusDisplay()->busy());
    QVERIFY(!child<QPushButton>("cxButtonPrzerwij")->isVisible() && child<QPushButton>("cxButton1")->isEnabled());
    const QString errors = child<QPlainTextEdit>("mErrors")->toPlainText();
    QVERIFY2(stall == 1 || errors.contains(u"Przerwano na żądanie użytkownika"_s), qPrintable(errors));
    WorkingTables& tables = window_->session().tables();
    int written = 0;
    for (int slot = 1; slot < HerdSlotCount; ++slot)
        written += tables.mdRZ(slot).recordCount();
    QVERIFY(stall != 0 || written > 0);
    QVERIFY(written <
            (stall != 0 ? Demo.herdSizes[0] : std::accumulate(Demo.herdSizes.begin(), Demo.herdSizes.end(), 0)));
    QCOMPARE(tables.mdRZ00().recordCount(), written);
    QCOMPARE(sumOf(tables.mdGT00(), "Ilosc"), written);
    QCOMPARE(window_->summaryGrid()->footerText(u"NumerIdentyfikacyjny"_s), QString::number(written));
}

// From the clearing on, no herd tab shows the data being replaced or half read.
void TestMainWindow::downloadHidesTheOldHerdsFromItsStart()
{
    FrontedRegistry registry;
    openWindowOn(registry.baseUrl());
    fillDemoLogin();
    click("cxButton1");
    QVERIFY(anyHerdTabVisible());
    window_->pages()->setCurrentWidget(window_->slotView(1).TabSheet);

    int requests = 0;
    int herdTabsSeen = 0;
    int gridsSeen = 0;
    registry.onRequest = [&](const RecordingServer::Request&) {
        ++requests;
        if (anyHerdTabVisible())
            ++herdTabsSeen;
        if (window_->pages()->currentWidget() != child<QWidget>("tsPobraneDane"))
            ++gridsSeen;
    };
    window_->summaryGrid()->sortByField(u"Wiek"_s, Qt::DescendingOrder);
    dialogs_->answerYes = true;
    click("cxButton1");
    QCOMPARE(dialogs_->questions.size(), 1);
    QVERIFY(requests > Demo.herdSizes[0]);
    QCOMPARE(herdTabsSeen, 0);
    QCOMPARE(gridsSeen, 0);
    QVERIFY(anyHerdTabVisible());
    QCOMPARE(window_->pages()->currentWidget(), window_->slotView(1).TabSheet);
}

void TestMainWindow::herdEndedEarlySaysSoOnItsTab()
{
    SimOptions sim;
    sim.faults.httpErrorAnimals = {DemoTag(1, 10)};
    openWindow(sim);
    fillDemoLogin();
    click("cxButton1");
    QTabWidget* pages = window_->pages();
    const auto& slots = window_->session().tables().HerdSlots;
    const QString errors = child<QPlainTextEdit>("mErrors")->toPlainText();
    for (int slot = 1; slot <= static_cast<int>(Demo.herdSizes.size()); ++slot) {
        const int index = pages->indexOf(window_->slotView(slot).TabSheet);
        const QString code = u"%1"_s.arg(slot, 3, 10, QLatin1Char('0'));
        const QString& incomplete = slots[static_cast<std::size_t>(slot)].Incomplete;
        QVERIFY(pages->isTabVisible(index));
        QCOMPARE(incomplete.isEmpty(), slot != 2);
        QCOMPARE(pages->tabText(index), slot == 2 ? code + u" (niepełne)"_s : code);
        QCOMPARE(pages->tabToolTip(index), incomplete);
        QVERIFY2(errors.contains(incomplete), qPrintable(errors));
    }
}

// The herd exports write nothing when the herd choice is cancelled; the summary's follow the grid.
void TestMainWindow::exportsFollowTheHerdChoiceAndTheGridsOrder()
{
    openWindow();
    dialogs_->herdChoice.reset();
    child<QAction>("dxBarButton3")->trigger();
    child<QAction>("dxBarButton2")->trigger();
    QVERIFY(dialogs_->messages.empty());
    QVERIFY(QDir(DataFolder(data_->path()).exportFolder()).entryList(QDir::Files).isEmpty());
    fillDemoLogin();
    click("cxButton1");
    SummaryGrid* grid = window_->summaryGrid();
    grid->setColumnFilter(u"STADO"_s, {u"002"_s});
    grid->sortByField(u"Wiek"_s, Qt::DescendingOrder);
    const std::vector<int> shown = grid->rowsInDisplayOrder();
    QCOMPARE(static_cast<int>(shown.size()), Demo.herdSizes[1]);

    click("cxButton7");
    QCOMPARE(dialogs_->messages.size(), std::size_t(1));
    QCOMPARE(dialogs_->messages[0].caption, u"Informacja"_s);
    const QString path = dialogs_->messages[0].text.mid(u"Zapisano do: "_s.size());
    QFile csv(path);
    QVERIFY2(csv.open(QIODevice::ReadOnly), qPrintable(path));
    QStringList lines = FromCp1250(csv.readAll()).split(u"\r\n"_s, Qt::SkipEmptyParts);
    lines.removeFirst();
    QCOMPARE(lines.size(), static_cast<int>(shown.size()));
    Table& animals = window_->session().tables().mdRZ00();
    for (int i = 0; i < lines.size(); ++i)
        QCOMPARE(lines[i].split(u';')[4], u'"' + AsString(animals.at(shown[static_cast<std::size_t>(i)], 0)) + u'"');

    dialogs_->answerYes = true;
    click("cxButton4");
    QCOMPARE(dialogs_->questions, QStringList{u"Czy otworzyć stworzony plik?"_s});
    QCOMPARE(dialogs_->opened.size(), 1);
    QVERIFY(dialogs_->opened[0].contains(u"Zwierzęta FILTROWANE-"_s + Demo.producerNumber));
    QVERIFY(QFile::exists(dialogs_->opened[0]));
}

void TestMainWindow::changedLimitsTakeEffectAtTheNextClearing()
{
    openWindow();
    bool parametersOpened = false;
    QTimer::singleShot(0, window_.get(), [&] {
        QWidget* dialog = QApplication::activeModalWidget();
        parametersOpened = dialog && dialog->objectName() == u"TfGET_PARAM"_s;
        if (dialog)
            dialog->close();
    });
    child<QAction>("dxBarButton6")->trigger();
    QVERIFY(parametersOpened);

    WriteAll(data_->filePath(u"HALVARN.INI"_s), "[WIEK]\r\nCieletaGrp_Ponad_220KG_Wiek_Od=7\r\n");
    Table& groups = window_->session().tables().mdGT(4);
    const int row29 = 28; // all three blocks: IDs 1..40 in order
    QCOMPARE(AsString(groups.at(row29, 2)), u"5 > Wiek <= 6"_s);
    click("cxButton2");
    QCOMPARE(AsString(groups.at(row29, 2)), u"7 > Wiek <= 6"_s);
}

void TestMainWindow::unreachableRegistryEndsInAMessage()
{
    openWindow();
    registry_->stop();
    fillDemoLogin();
    click("cxButton1");
    QCOMPARE(dialogs_->messages.size(), std::size_t(1));
    QCOMPARE(dialogs_->messages[0].caption, u"Bład..."_s);
    QVERIFY2(dialogs_->messages[0].text.startsWith(u"Autoryzacja zakończona z błędem: "_s),
             qPrintable(dialogs_->messages[0].text));
    QVERIFY(!window_->statusDisplay()->busy());
    QVERIFY(child<QPushButton>("cxButton1")->isEnabled());
}

// The producer from the list fills the log-in; the download then flags a group over
// its declared number, until the user types a producer of his own.
void TestMainWindow::chosenProducerFillsTheLoginAndHasItsLimitsChecked()
{
    openWindow();
    DeclaredLimits limits;
    limits.fill(100000);
    limits[static_cast<int>(DeclaredGroup::DairyCows)] = 1;
    dialogs_->producerChoice =
        ChosenProducer{7, {u"Gospodarstwo Zielonka"_s, Demo.login, Demo.password, Demo.producerNumber, limits}};
    click("cxButton6");
    QCOMPARE(child<QLineEdit>("edUser")->text(), Demo.login);
    QCOMPARE(child<QLineEdit>("edPassword")->text(), Demo.password);
    QCOMPARE(child<QLineEdit>("edNumerProducenta")->text(), Demo.producerNumber);
    QCOMPARE(child<QLineEdit>("edNazwa")->text(), u"Gospodarstwo Zielonka"_s);
    dialogs_->producerChoice.reset();
    click("cxButton6");
    QCOMPARE(dialogs_->producerListsOpenedAt, (QList<qint32>{0, 7}));
    QCOMPARE(child<QLineEdit>("edNazwa")->text(), u"Gospodarstwo Zielonka"_s);

    click("cxButton1");
    const QString errors = child<QPlainTextEdit>("mErrors")->toPlainText();
    QVERIFY2(errors.contains(u"Przekroczono zadeklarowaną liczbę: krów mlecznych"_s), qPrintable(errors));
    const TableModel* groups = window_->slotView(0).GroupsGrid->model();
    QCOMPARE(groups->headerData(groups->columnCount() - 1, Qt::Horizontal).toString(), u"Limit"_s);
    QStringList red;
    for (int row = 0; row < groups->rowCount(); ++row)
        if (groups->index(row, 0).data(Qt::ForegroundRole).isValid())
            red.append(groups->index(row, 0).data().toString());
    QCOMPARE(red, QStringList{u"Halvarn krów mlecznych"_s});

    QLineEdit* number = child<QLineEdit>("edNumerProducenta");
    number->clear();
    QTest::keyClicks(number, Demo.producerNumber);
    click("cxButton1");
    QVERIFY(!child<QPlainTextEdit>("mErrors")->toPlainText().contains(u"Przekroczono"_s));
    QCOMPARE(CountOverLimit(window_->session().tables().mdGT00()), 0);
}

// The registry gone, the last download comes back from the archive as it was,
// says so in the status bar and is counted again on another date.
void TestMainWindow::archivedDownloadOpensAndRecountsWithoutTheRegistry()
{
    openWindow();
    auto trigger = [this](const char* name) { child<QAction>(name)->trigger(); };
    dialogs_->recountChoice = QDate(2025, 1, 31);
    trigger("actPrzelicz");
    QCOMPARE(dialogs_->texts().size(), 1);
    QVERIFY(dialogs_->texts()[0].startsWith(u"Brak danych do przeliczenia"_s));

    fillDemoLogin();
    click("cxButton1");
    HalvarnSession& session = window_->session();
    const int animals = session.tables().mdRZ00().recordCount();
    const QString firstAge =
        DisplayText(session.tables().mdRZ00().at(0, session.tables().mdRZ00().requireField(u"Wiek")));
    registry_.reset();
    click("cxButton2");
    QCOMPARE(session.tables().mdRZ00().recordCount(), 0);
    QVERIFY(window_->groupsChart()->data().isEmpty());
    child<QLineEdit>("edNumerProducenta")->clear();

    dialogs_->archivedChoice = DownloadArchive(DataFolder(data_->path()).archiveFile()).list().front().id;
    trigger("actArchiwum");
    QCOMPARE(session.tables().mdRZ00().recordCount(), animals);
    QCOMPARE(DisplayText(session.tables().mdRZ00().at(0, session.tables().mdRZ00().requireField(u"Wiek"))), firstAge);
    QCOMPARE(child<QLineEdit>("edNumerProducenta")->text(), Demo.producerNumber);
    QVERIFY(window_->pages()->isTabVisible(window_->pages()->indexOf(window_->slotView(1).TabSheet)));
    QVERIFY(window_->statusDisplay()->text(StatusDisplay::General).startsWith(u"Dane z archiwum: "_s));
    const GroupsChartData& chart = window_->groupsChart()->data();
    QCOMPARE(chart.series.size(), Demo.herdSizes.size());
    QVERIFY(chart.herdSumsMatch());

    trigger("actPrzelicz");
    QCOMPARE(child<DateField>("edHalvarnNaDzien")->date(), QDate(2025, 1, 31));
    QCOMPARE(session.tables().mdProducent().value(u"DATA3"), FieldValue(QDate(2025, 1, 31)));
    QVERIFY(window_->statusDisplay()->text(StatusDisplay::General).endsWith(u"Halvarn na dzień: 31.01.2025"_s));
    QCOMPARE(session.tables().mdRZ00().recordCount(), animals);
    QCOMPARE(dialogs_->texts().size(), 1);

    QVERIFY(InstallShippedTemplates(DataFolder(data_->path()).templatesFolder()).failed.isEmpty());
    dialogs_->controlListChoice = ControlListChoice{QDate(2025, 3, 1), u"002"_s};
    trigger("actListaKontrolna");
    QCOMPARE(dialogs_->controlListHerds, (QStringList{u"001"_s, u"002"_s, u"003"_s}));
    QCOMPARE(dialogs_->previews.size(), 1u);
    const QString page = dialogs_->previews[0].report->pageTexts(0).join(u'\n');
    QVERIFY2(page.contains(u"Lista kontrolna"_s) && page.contains(u"01.03.2025"_s), qPrintable(page));
    QCOMPARE(dialogs_->texts().size(), 1);
    trigger("actPorownanie");
    QCOMPARE(dialogs_->comparisonsOpened, 1);
}

QTEST_MAIN(TestMainWindow)
#include "test_main_window.moc"
