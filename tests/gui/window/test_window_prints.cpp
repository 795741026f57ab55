#include "core/session/HalvarnSession.h"
#include "framework/IniFile.h"
#include "gui/grids/SummaryGrid.h"
#include "gui/window/RecordingDialogs.h"
#include "gui/window/TfHalvarnMain.h"
#include "registry/sim/RegistrySimulator.h"
#include "reports/ShippedTemplates.h"
#include "reports/print/PrintCommands.h"
#include "reports/print/TdmulmxDataBase_FR3.h"
#include "support/Files.h"

#include <QAction>
#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {
const DemoOptions Demo;
}

// The three print commands of the main window over a demo download: what each
// binds, what it shows, and what a missing or damaged template gives.
class TestWindowPrints : public QObject {
    Q_OBJECT

private:
    QTemporaryDir data_;
    std::unique_ptr<RegistrySimulator> registry_;
    std::unique_ptr<TfHalvarnMain> window_;
    RecordingDialogs* dialogs_ = nullptr;

    DataFolder folder() const { return DataFolder(data_.path()); }
    TdmulmxDataBase_FR3& reports() { return window_->reports(); }
    WorkingTables& tables() { return window_->session().tables(); }
    void trigger(const char* action) { window_->findChild<QAction*>(QLatin1String(action))->trigger(); }
    void click(const char* button) { window_->findChild<QPushButton*>(QLatin1String(button))->click(); }
    QString caption(int n) { return reports().frxReport.findObject(u"MV%1"_s.arg(n))->text; }

    const PreparedReport& shownReport()
    {
        if (dialogs_->previews.size() != 1)
            qFatal("expected one preview, got %zu", dialogs_->previews.size());
        return *dialogs_->previews.front().report;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(data_.isValid());
        QVERIFY(folder().prepare());
        registry_ = std::make_unique<RegistrySimulator>(GenerateDemoDataset(Demo));
        QVERIFY(registry_->start());
        RegistryConfig config;
        config.ssoBase = config.apiBase = registry_->baseUrl();
        auto dialogs = std::make_unique<RecordingDialogs>();
        dialogs_ = dialogs.get();
        window_ = std::make_unique<TfHalvarnMain>(folder(), config, std::move(dialogs));
        window_->fillLogin(Demo.login, Demo.password, Demo.producerNumber);
        click("cxButton1");
        QVERIFY(window_->session().DataLoaded);
    }

    void init()
    {
        QVERIFY(InstallShippedTemplates(folder().templatesFolder()).failed.isEmpty());
        *dialogs_ = RecordingDialogs();
    }

    void herdPrints_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("herd");
        QTest::addColumn<bool>("overall");
        QTest::addColumn<QStringList>("herds"); // the herd codes bound to links 1, 2, … in order
        const QStringList visible{u"001"_s, u"002"_s, u"003"_s};
        for (const char* command : {"dxBarButton4", "dxBarButton5"}) {
            const QString name = QLatin1String(command);
            QTest::addRow("%s ALL", command) << name << u"ALL"_s << true << visible;
            QTest::addRow("%s 000", command) << name << u"000"_s << true << QStringList{};
            QTest::addRow("%s 002", command) << name << u"002"_s << false << QStringList{u"002"_s};
            QTest::addRow("%s 999", command) << name << u"999"_s << false << QStringList{};
            QTest::addRow("%s trailing blank", command) << name << u"002 "_s << false << QStringList{};
        }
    }

    void herdPrints()
    {
        QFETCH(QString, command);
        QFETCH(QString, herd);
        QFETCH(bool, overall);
        QFETCH(QStringList, herds);
        const bool animals = command == u"dxBarButton4";
        dialogs_->herdChoice = herd;
        trigger(qPrintable(command));
        QVERIFY2(dialogs_->messages.empty(), qPrintable(dialogs_->texts().join(u'\n')));
        const THerdSlot* slots = tables().HerdSlots.data();
        const auto tableOf = [&](const THerdSlot& slot) { return animals ? slot.AnimalsTable : slot.GroupsTable; };
        QCOMPARE(reports().frxDBDataset(29).table, overall ? tableOf(slots[0]) : &tables().mdEmpty());
        QCOMPARE(reports().frxDBDataset(30).table, &tables().mdProducent());
        for (int n = 1; n <= 20; ++n) {
            if (n > herds.size()) {
                QCOMPARE(reports().frxDBDataset(n).table, &tables().mdEmpty());
                QCOMPARE(caption(n), u"Stado"_s);
                continue;
            }
            const QString code = herds[n - 1];
            QCOMPARE(reports().frxDBDataset(n).table, tableOf(slots[code.toInt()]));
            QCOMPARE(caption(n), u"Stado: "_s + code);
        }
        // A single herd follows the title on the first page instead of opening a page of its own.
        QCOMPARE(reports().frxReport.findBand(u"Header1"_s)->startNewPage, overall || herds.isEmpty());
        const PreparedReport& shown = shownReport();
        QVERIFY(shown.pageCount() >= 1);
        if (!herds.isEmpty())
            QVERIFY(shown.pageTexts(0).contains(u"Stado: "_s + herds.front()) != overall);
    }

    void cancelledHerdChoicePrintsNothing()
    {
        dialogs_->herdChoice.reset();
        trigger("dxBarButton4");
        QVERIFY(dialogs_->previews.empty() && dialogs_->messages.empty());
    }

    void filteredPrintTakesTheGridsRows_data()
    {
        QTest::addColumn<QStringList>("herds");
        QTest::addColumn<QString>("groupBy");
        QTest::newRow("a filter that hides every row") << QStringList{u"brak"_s} << QString();
        QTest::newRow("one herd, grouped by sex") << QStringList{u"002"_s} << u"Plec"_s;
    }

    void filteredPrintTakesTheGridsRows()
    {
        QFETCH(QStringList, herds);
        QFETCH(QString, groupBy);
        SummaryGrid* grid = window_->summaryGrid();
        grid->setColumnFilter(u"STADO"_s, herds);
        grid->groupByField(groupBy);
        click("cxButton5");
        const std::vector<int> shownRows = grid->rowsInDisplayOrder();
        grid->groupByField({});
        grid->clearFilters();
        const Table& copied = tables().mdRaport1();
        QCOMPARE(copied.recordCount(), static_cast<int>(shownRows.size()));
        const int tag = tables().mdRZ00().requireField(u"NumerIdentyfikacyjny");
        for (int i = 0; i < copied.recordCount(); ++i)
            QCOMPARE(AsString(copied.at(i, copied.requireField(u"NumerIdentyfikacyjny"))),
                     AsString(tables().mdRZ00().at(shownRows[static_cast<std::size_t>(i)], tag)));
        QCOMPARE(reports().frxDBDataset(1).table, &copied);
        const PreparedReport& shown = shownReport();
        qsizetype printedTags = 0;
        for (int page = 0; page < shown.pageCount(); ++page)
            printedTags += shown.pageTexts(page).filter(u"PL0"_s).size();
        QCOMPARE(printedTags, qsizetype(copied.recordCount()));
    }

    void missingTemplateIsNamedAndNothingShown()
    {
        const QString path = folder().templatesFolder() + PrintCommands::templateName(HerdPrint::Groups);
        QVERIFY(QFile::remove(path));
        trigger("dxBarButton5");
        QVERIFY(dialogs_->previews.empty());
        QCOMPARE(dialogs_->messages.size(), std::size_t(1));
        QCOMPARE(dialogs_->messages[0].caption, u"Bład..."_s);
        QCOMPARE(dialogs_->messages[0].text, u"Nie znaleziono szablonu: \"%1\""_s.arg(path));
    }

    void damagedTemplateIsAMessage()
    {
        WriteAll(folder().templatesFolder() + PrintCommands::filteredTemplateName(), "<TfrxReport><TfrxReportPage");
        click("cxButton5");
        QVERIFY(dialogs_->previews.empty());
        QCOMPARE(dialogs_->messages.size(), std::size_t(1));
        QVERIFY(dialogs_->messages[0].text.contains(u"wiersz"_s));
        QVERIFY(QFile::remove(folder().templatesFolder() + PrintCommands::filteredTemplateName()));
    }

    void previewRunsTheSamePrintAgainAndDesignsItsTemplate()
    {
        dialogs_->herdChoice = u"001"_s;
        trigger("dxBarButton5");
        const RecordingDialogs::Preview preview = dialogs_->previews.at(0);
        QCOMPARE(preview.settings.pdfFolder, folder().pdfFolder());
        const std::optional<PreparedReport> again = preview.settings.prepareAgain();
        QVERIFY(again);
        // The same pages, but for the print time, which may have passed a second meanwhile.
        const auto withoutPrintTime = [](QStringList texts) {
            texts.removeIf([](const QString& text) { return text.startsWith(u"Wydrukowano: "); });
            return texts;
        };
        QCOMPARE(again->pageCount(), preview.report->pageCount());
        QCOMPARE(withoutPrintTime(again->pageTexts(0)), withoutPrintTime(preview.report->pageTexts(0)));
        preview.settings.design();
        QCOMPARE(dialogs_->designed,
                 QStringList{folder().templatesFolder() + PrintCommands::templateName(HerdPrint::Groups)});
    }

    void useChangeWithoutTicksSendsNothing()
    {
        click("cxButton3");
        QCOMPARE(dialogs_->texts(), QStringList{u"Nie wybrano pozycji do zmiany"_s});
        QVERIFY(dialogs_->previews.empty());
        QCOMPARE(registry_->stats().useChangeRequests, 0);
    }

    // Two ticked animals go to the registry after the question; the
    // confirmation opens in the preview and their ticks are cleared.
    void useChangeSendsTheTickedAnimalsAndShowsTheConfirmation()
    {
        IniFile(folder().settingsFile()).writeInteger(u"TUKU"_s, u"WaitSeconds"_s, 0);
        Table& animals = tables().mdRZ00();
        for (int row : {0, 1})
            tables().SetMarked(row, true);
        dialogs_->directionChoice = u"MI"_s;
        click("cxButton3");
        QCOMPARE(dialogs_->questions, QStringList{u"Wysłać zmianę kierunku użytkowania na „Mięsny” dla 2 zwierząt?"_s});
        QCOMPARE(registry_->stats().useChangeRequests, 2);
        QCOMPARE(tables().mdTUKU().recordCount(), 2);
        QVERIFY(dialogs_->texts().last().startsWith(u"Wysłano zgłoszeń: 2. Przyjęto: 2."_s));
        const QStringList page = shownReport().pageTexts(0);
        QVERIFY(page.join(u' ').contains(u"W trakcie weryfikacji"_s));
        for (int row : {0, 1})
            QVERIFY(!AsBoolean(animals.at(row, animals.requireField(u"ZAZNACZONE"))));
        QVERIFY(!window_->operationRunning());
    }

    // Presses while the question is open, a key repeat included, start nothing:
    // the two ticked animals go to the registry once.
    void pressesDuringTheCommandSendOneBatch()
    {
        IniFile(folder().settingsFile()).writeInteger(u"TUKU"_s, u"WaitSeconds"_s, 0);
        for (int row : {2, 3}) // not sent by an earlier test
            tables().SetMarked(row, true);
        const auto& answers = window_->session().answers;
        for (const QString& code : {u"OP"_s, u"MIOP"_s, u"MI"_s}) // one that changes both animals
            if (answers[2].useDirection != code && answers[3].useDirection != code)
                dialogs_->directionChoice = code;
        auto* button = window_->findChild<QPushButton*>(u"cxButton3"_s);
        dialogs_->whenAsked = [button] {
            QVERIFY(!button->isEnabled());
            button->click();
            QTest::keyClick(button, Qt::Key_Space, Qt::NoModifier);
        };
        const qsizetype questions = dialogs_->questions.size();
        const int sent = registry_->stats().useChangeRequests;
        click("cxButton3");
        dialogs_->whenAsked = nullptr;
        click("cxButton3"); // after the batch: the accepted animals are no longer ticked
        QCOMPARE(dialogs_->questions.size(), questions + 1);
        QCOMPARE(registry_->stats().useChangeRequests, sent + 2);
        QVERIFY(dialogs_->texts().last().startsWith(u"Nie wybrano pozycji do zmiany"_s));
    }

    // The question before sending again what may have reached the registry answers No to Enter.
    void theResendQuestionDefaultsToNo()
    {
        QString defaultButton;
        QTimer::singleShot(0, this, [&defaultButton] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            QVERIFY(box);
            defaultButton = box->defaultButton()->text();
            QTest::keyClick(box, Qt::Key_Return);
        });
        QVERIFY(!ModalDialogs(window_.get()).cautiousQuestion(u"Pytanie"_s, u"Wysłać zgłoszenie ponownie?"_s));
        QCOMPARE(defaultButton, u"Nie"_s);
    }
};

QTEST_MAIN(TestWindowPrints)
#include "test_window_prints.moc"
