#include "registry/client/RecordingServer.h"
#include "support/Files.h"

#include "gui/grids/SummaryGrid.h"
#include "gui/grids/TableGrid.h"
#include "core/session/HalvarnSession.h"
#include "gui/window/StatusDisplay.h"
#include "gui/window/TfHalvarnMain.h"
#include "gui/window/UserDialogs.h"
#include "framework/Cp1250.h"
#include "registry/sim/HttpLib.h"
#include "registry/sim/RegistrySimulator.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QElapsedTimer>
#include <QGroupBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QSignalSpy>
#include <QTreeView>

#include <numeric>

using namespace Qt::StringLiterals;

namespace {
// Answers the window's questions as a test sets them up and remembers what it was told.
class RecordingDialogs : public UserDialogs {
public:
    struct Shown {
        QString caption;
        QString text;
    };
    std::vector<Shown> messages;
    QStringList questions;
    bool answerYes = true;
    std::optional<QString> herdChoice = u"ALL"_s;
    QStringList opened;

    void message(const QString& caption, const QString& text, MessageIcon) override
    {
        messages.push_back({caption, text});
    }
    bool question(const QString&, const QString& text) override
    {
        questions.append(text);
        return answerYes;
    }
    std::optional<QString> herd() override { return herdChoice; }
    void openFile(const QString& path) override { opened.append(path); }
    QStringList texts() const
    {
        QStringList all;
        for (const Shown& m : messages)
            all.append(m.text);
        return all;
    }
};


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
        const httplib::Result result =
            request.method == "POST"
                ? client.Post(target, headers, request.body.toStdString(),
                              request.headers.value("content-type").toStdString())
                : client.Get(target, headers);
        if (!result)
            return {502};
        return {result->status, QByteArray::fromStdString(result->body)};
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
    void writeFile(const QString& name, const QByteArray& bytes);
    int sumOf(Table& table, const char* field) const;

private Q_SLOTS:
    void init();
    void cleanup();
    void startsEmptyIdleOnLoadedDataPage();
    void clearingEndsIdleAtSixtyFourOfSixtyFive();
    void credentialsComeFromFieldsOrTestLogin_data();
    void credentialsComeFromFieldsOrTestLogin();
    void producerNumberIsNineCharactersAndEmptiesName();
    void producerNumberTakesDigitsOnly();
    void passwordEllipsisTogglesEcho();
    void demoDownloadFillsTabsGridsAndMemos();
    void downloadOverLoadedDataAsksFirst_data();
    void downloadOverLoadedDataAsksFirst();
    void markingAnAnimalRedrawsItsRow();
    void cancelStopsDownloadWithConsistentTables_data();
    void cancelStopsDownloadWithConsistentTables();
    void cancelAbortsTheRequestInFlight_data();
    void cancelAbortsTheRequestInFlight();
    void downloadHidesTheOldHerdsFromItsStart();
    void herdEndedEarlySaysSoOnItsTab();
    void summaryExportsFollowTheGridsDisplayOrder();
    void herdExportCancelledWritesNothing();
    void changedLimitsTakeEffectAtTheNextClearing();
    void unreachableRegistryEndsInAMessage();
    void commandsOfLaterVersionsAreVisiblyDisabled();
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

void TestMainWindow::writeFile(const QString& name, const QByteArray& bytes)
{
    WriteAll(data_->filePath(name), bytes);
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
    for (int slot = 0; slot < HerdSlotCount; ++slot) {
        QVERIFY(!window_->pages()->isTabVisible(window_->pages()->indexOf(window_->slotView(slot).TabSheet)));
        QCOMPARE(window_->session().tables().mdRZ(slot).recordCount(), 0);
        QCOMPARE(window_->session().tables().mdGT(slot).recordCount(), 40);
    }
    StatusDisplay* status = window_->statusDisplay();
    QVERIFY(!status->busy());
    QVERIFY(status->panel(StatusDisplay::General)->isVisible());
    for (int panel : {1, 2, 3, 4, 5, 6})
        QVERIFY2(!status->panel(panel)->isVisible(), qPrintable(QString::number(panel)));
    QCOMPARE(status->text(StatusDisplay::Version), u"Ver.: 1.0.0.0"_s);
    QCOMPARE(status->text(StatusDisplay::Today), QDate::currentDate().toString(u"dd.MM.yyyy"));
    QVERIFY(!child<QGroupBox>("lcErrors")->isVisible());
    QCOMPARE(window_->session().tables().HerdSlots[0].Code, u"000"_s);
    QVERIFY(!window_->session().common.torvLogin);
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
    QVERIFY(!window_->statusDisplay()->busy());
    for (int slot = 0; slot < HerdSlotCount; ++slot)
        QCOMPARE(window_->session().tables().mdRZ(slot).recordCount(), 0);
    QVERIFY(!window_->pages()->isTabVisible(0));
    QVERIFY(child<QPlainTextEdit>("mLoaded")->toPlainText().isEmpty());
    QVERIFY(!child<QGroupBox>("lcErrors")->isVisible());
}

void TestMainWindow::credentialsComeFromFieldsOrTestLogin_data()
{
    QTest::addColumn<bool>("torvLogin");
    QTest::addColumn<QString>("login");
    QTest::addColumn<QString>("producer");
    QTest::addColumn<bool>("downloaded");
    QTest::newRow("test login used when Login is empty") << true << QString() << QString() << true;
    QTest::newRow("a typed Login wins even without a number") << true << u"jan"_s << QString() << false;
    QTest::newRow("without the switch the empty fields count") << false << QString() << QString() << false;
}

void TestMainWindow::credentialsComeFromFieldsOrTestLogin()
{
    QFETCH(bool, torvLogin);
    QFETCH(QString, login);
    QFETCH(QString, producer);
    QFETCH(bool, downloaded);
    writeFile(u"COMMON.INI"_s, QByteArray("[PARAM]\r\nTESTER=0\r\nTORV_Login=") +
                                                 (torvLogin ? "1" : "0") + "\r\n");
    openWindow();
    window_->fillLogin(login, QString(), producer);
    click("cxButton1");
    QCOMPARE(window_->session().herdCount > 0, downloaded);
    if (!downloaded)
        QCOMPARE(dialogs_->texts(), QStringList{u"Nie podanu mumeru producenta"_s});
    else
        QCOMPARE(window_->session().Login, Demo.login);
}

void TestMainWindow::producerNumberIsNineCharactersAndEmptiesName()
{
    openWindow();
    auto* number = child<QLineEdit>("edNumerProducenta");
    auto* name = child<QLineEdit>("edNazwa");
    name->setText(u"Gospodarstwo Zielonka"_s);
    QTest::keyClicks(number, u"0712345629"_s);
    QCOMPARE(number->text(), u"071234562"_s);
    QVERIFY(name->text().isEmpty());
    name->setText(u"Inny"_s);
    QTest::keyClick(number, Qt::Key_Backspace);
    QVERIFY(name->text().isEmpty());
}

void TestMainWindow::producerNumberTakesDigitsOnly()
{
    openWindow();
    auto* number = child<QLineEdit>("edNumerProducenta");
    QTest::keyClicks(number, u"07a1/2 3.4-5\\6&7?8"_s);
    QCOMPARE(number->text(), u"071234567"_s);
    number->clear();
    number->insert(u"0712&x=1"_s); // as pasted
    QVERIFY(number->text().isEmpty());
    number->insert(u"٠٧١"_s); // digits of another script
    QVERIFY(number->text().isEmpty());
    window_->fillLogin(Demo.login, Demo.password, u"../071234562"_s);
    click("cxButton1");
    QCOMPARE(dialogs_->texts(), QStringList{u"Nie podanu mumeru producenta"_s});
}

void TestMainWindow::passwordEllipsisTogglesEcho()
{
    openWindow();
    auto* password = child<QLineEdit>("edPassword");
    QCOMPARE(password->echoMode(), QLineEdit::Password);
    window_->findChild<QAbstractButton*>(u"edPasswordEllipsis"_s)->click();
    QCOMPARE(password->echoMode(), QLineEdit::Normal);
    window_->findChild<QAbstractButton*>(u"edPasswordEllipsis"_s)->click();
    QCOMPARE(password->echoMode(), QLineEdit::Password);
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
        QCOMPARE(grid->footerText(u"CzyMatka"_s),
                 QString::number(sumOf(session.tables().mdRZ(slot), "CzyMatka")));
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
}

void TestMainWindow::downloadOverLoadedDataAsksFirst_data()
{
    QTest::addColumn<bool>("answerYes");
    QTest::newRow("yes downloads again") << true;
    QTest::newRow("no keeps the data") << false;
}

void TestMainWindow::downloadOverLoadedDataAsksFirst()
{
    QFETCH(bool, answerYes);
    openWindow();
    fillDemoLogin();
    click("cxButton1");
    window_->summaryGrid()->sortByField(u"Wiek"_s, Qt::DescendingOrder);
    const int requests = registry_->stats().tokenRequests;
    dialogs_->answerYes = answerYes;
    click("cxButton1");
    QCOMPARE(dialogs_->questions, QStringList{u"Są wczytane dane. Będą one usunięte. Czy kontynuować?"_s});
    QCOMPARE(registry_->stats().tokenRequests, requests + (answerYes ? 1 : 0));
    QVERIFY(window_->session().tables().mdRZ00().recordCount() > 0);
    QVERIFY(window_->pages()->isTabVisible(0));
}

void TestMainWindow::markingAnAnimalRedrawsItsRow()
{
    openWindow();
    fillDemoLogin();
    click("cxButton1");
    QAbstractItemModel* model = window_->summaryGrid()->view()->model();
    const int columns = model->columnCount();
    QSignalSpy changed(model, &QAbstractItemModel::dataChanged);
    QVERIFY(model->setData(model->index(2, 0), Qt::Checked, Qt::CheckStateRole));
    QVERIFY(!changed.isEmpty());
    const auto first = changed.first().at(0).value<QModelIndex>();
    const auto last = changed.first().at(1).value<QModelIndex>();
    QVERIFY(first.row() <= 2 && last.row() >= 2 && first.column() == 0 && last.column() == columns - 1);
    const int row = window_->summaryGrid()->rowsInDisplayOrder()[2];
    QCOMPARE(AsBoolean(window_->session().tables().mdRZ00().at(row, 10)), true);
    for (int column = 0; column < columns; ++column) {
        const QModelIndex cell = model->index(2, column);
        QCOMPARE(cell.data(Qt::ForegroundRole).value<QBrush>().color(), QColor(255, 0, 0));
        const QFont font = cell.data(Qt::FontRole).value<QFont>();
        QVERIFY(font.bold() && font.italic());
    }
    QVERIFY(!model->index(3, 1).data(Qt::FontRole).value<QFont>().bold());
}

void TestMainWindow::cancelStopsDownloadWithConsistentTables_data()
{
    QTest::addColumn<bool>("byClosing");
    QTest::newRow("Przerwij") << false;
    QTest::newRow("closing the window") << true;
}

void TestMainWindow::cancelStopsDownloadWithConsistentTables()
{
    QFETCH(bool, byClosing);
    SimOptions slow;
    slow.latencyMs = 20;
    openWindow(slow);
    fillDemoLogin();
    bool lockedWhileRunning = false;
    QTimer::singleShot(400, window_.get(), [&] {
        auto* cancel = child<QPushButton>("cxButtonPrzerwij");
        lockedWhileRunning = cancel->isVisible() && !child<QPushButton>("cxButton1")->isEnabled() &&
                             !child<QPushButton>("cxButton4")->isEnabled() && window_->operationRunning();
        if (byClosing)
            window_->close();
        else
            cancel->click();
    });
    click("cxButton1");
    QVERIFY(lockedWhileRunning);
    QCOMPARE(window_->isVisible(), !byClosing);
    QVERIFY(!child<QPushButton>("cxButtonPrzerwij")->isVisible());
    QVERIFY(child<QPushButton>("cxButton1")->isEnabled());
    const QString errors = child<QPlainTextEdit>("mErrors")->toPlainText();
    QVERIFY2(errors.contains(u"Przerwano na żądanie użytkownika"_s), qPrintable(errors));
    WorkingTables& tables = window_->session().tables();
    int written = 0;
    for (int slot = 1; slot < HerdSlotCount; ++slot)
        written += tables.mdRZ(slot).recordCount();
    const int total = std::accumulate(Demo.herdSizes.begin(), Demo.herdSizes.end(), 0);
    QVERIFY(written > 0 && written < total);
    QCOMPARE(tables.mdRZ00().recordCount(), written);
    QCOMPARE(sumOf(tables.mdGT00(), "Ilosc"), written);
    QCOMPARE(window_->summaryGrid()->footerText(u"NumerIdentyfikacyjny"_s), QString::number(written));
}

void TestMainWindow::cancelAbortsTheRequestInFlight_data()
{
    QTest::addColumn<bool>("stallLogIn");
    QTest::addColumn<bool>("byClosing");
    QTest::newRow("Przerwij while logging in") << true << false;
    QTest::newRow("Przerwij while an animal is asked") << false << false;
    QTest::newRow("closing while logging in") << true << true;
    QTest::newRow("closing while an animal is asked") << false << true;
}

// A registry that never answers is left at once, not after the 150 s time-out.
void TestMainWindow::cancelAbortsTheRequestInFlight()
{
    QFETCH(bool, stallLogIn);
    QFETCH(bool, byClosing);
    FrontedRegistry registry;
    const QString stalledTag = DemoTag(0, 2);
    registry.stalls = [&](const RecordingServer::Request& request) {
        return stallLogIn ? IsTokenRequest(request) : IsAnimalRequestFor(request, stalledTag);
    };
    QElapsedTimer sinceCancel;
    bool stalled = false;
    registry.onRequest = [&](const RecordingServer::Request& request) {
        if (stalled || !registry.stalls(request))
            return;
        stalled = true;
        QTimer::singleShot(300, window_.get(), [&] {
            sinceCancel.start();
            if (byClosing)
                window_->close();
            else
                child<QPushButton>("cxButtonPrzerwij")->click();
        });
    };
    openWindowOn(registry.baseUrl());
    fillDemoLogin();
    click("cxButton1");
    QVERIFY(stalled);
    QVERIFY(sinceCancel.isValid());
    QVERIFY2(sinceCancel.elapsed() < 2000, qPrintable(QString::number(sinceCancel.elapsed())));
    QCOMPARE(window_->isVisible(), !byClosing);
    QCOMPARE(dialogs_->texts(), QStringList()); // a stop the user asked for needs no message box
    QVERIFY(!window_->operationRunning());
    QVERIFY(!window_->statusDisplay()->busy());
    QVERIFY(child<QPushButton>("cxButton1")->isEnabled());
    WorkingTables& tables = window_->session().tables();
    QVERIFY(tables.mdRZ00().recordCount() < Demo.herdSizes[0]);
    QCOMPARE(tables.mdRZ00().recordCount(), tables.mdRZ(1).recordCount());
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
    dialogs_->answerYes = true;
    click("cxButton1");
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

void TestMainWindow::summaryExportsFollowTheGridsDisplayOrder()
{
    openWindow();
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

void TestMainWindow::herdExportCancelledWritesNothing()
{
    openWindow();
    dialogs_->herdChoice.reset();
    child<QAction>("dxBarButton3")->trigger();
    child<QAction>("dxBarButton2")->trigger();
    QVERIFY(dialogs_->messages.empty());
    QVERIFY(QDir(DataFolder(data_->path()).exportFolder()).entryList(QDir::Files).isEmpty());
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

    writeFile(u"HALVARN.INI"_s, "[WIEK]\r\nCieletaGrp_Ponad_220KG_Wiek_Od=7\r\n");
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

void TestMainWindow::commandsOfLaterVersionsAreVisiblyDisabled()
{
    openWindow();
    for (const char* name : {"cxButton3", "cxButton5", "cxButton6"})
        QVERIFY2(!child<QPushButton>(name)->isEnabled(), name);
    for (const char* name : {"dxBarButton4", "dxBarButton5"})
        QVERIFY2(!child<QAction>(name)->isEnabled(), name);
    for (const char* name : {"dxBarButton2", "dxBarButton3", "dxBarButton6", "dxBarButton7"}) {
        auto* action = child<QAction>(name);
        QVERIFY2(action->isEnabled(), name);
        QCOMPARE(action->toolTip(), action->text());
    }
}

QTEST_MAIN(TestMainWindow)
#include "test_main_window.moc"
