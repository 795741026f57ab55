#include "framework/HalvarnError.h"
#include "gui/preview/PageView.h"
#include "gui/preview/PdfOptionsDialog.h"
#include "gui/preview/TfpRapPrev_FR3.h"
#include "reports/PreparedReportFile.h"
#include "reports/ReportPdf.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPrinter>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
constexpr int PageCount = 30;
constexpr int LandscapePage = 14; // "Strona 15"
const QString ReportName = u"Wykaz zwierząt"_s;

// Per page: a title, "Strona N", an ear tag, a rule and a footer near the paper's bottom.
PreparedReport MakeReport(int pages, const QString& name = ReportName)
{
    PreparedReport report;
    report.name = name;
    PreparedStyle title;
    title.font.pixelSize = 20.0;
    title.font.bold = true;
    report.styles = {title, PreparedStyle()};
    for (int index = 0; index < pages; ++index) {
        PreparedPage page;
        if (index == LandscapePage)
            page = PreparedPage{QSizeF(297.0, 210.0), true, {}};
        page.items = {
            {ItemKind::Text, 0, QRectF(40, 40, 600, 30), name},
            {ItemKind::Text, 1, QRectF(40, 90, 300, 20), u"Strona %1"_s.arg(index + 1)},
            {ItemKind::Text, 1, QRectF(40, 120, 300, 20), u"Kolczyk PL%1"_s.arg(500100 + index)},
            {ItemKind::Line, 1, QRectF(40, 150, 600, 0), {}},
            {ItemKind::Text, 1, QRectF(40, page.landscape ? 720 : 1050, 300, 20), u"Stopka %1"_s.arg(index + 1)}};
        report.pages.push_back(std::move(page));
    }
    return report;
}

// The answers the stand-in gives and what the preview asked it.
struct Script {
    std::optional<QString> saveName, openName;
    QStringList findAnswers; // given in turn; none left is a cancel
    std::optional<PdfChoice> pdf;
    QString printFile;
    int printFrom = 0, printTo = 0; // 0: all pages
    QStringList saveProposals, openFolders, findPrevious, opened, messages;
    QList<MessageIcon> icons;
    QList<std::pair<int, QString>> pdfAsks;
    QList<const QPrinter*> printers;
};

class StandInDialogs : public PreviewDialogs {
public:
    explicit StandInDialogs(Script& script) : s_(script) {}

    std::optional<QString> saveFileName(const QString& proposed) override
    {
        s_.saveProposals << proposed;
        return s_.saveName;
    }
    std::optional<QString> openFileName(const QString& folder) override
    {
        s_.openFolders << folder;
        return s_.openName;
    }
    std::optional<QString> findText(const QString& previous) override
    {
        s_.findPrevious << previous;
        return s_.findAnswers.isEmpty() ? std::nullopt : std::optional<QString>(s_.findAnswers.takeFirst());
    }
    std::optional<PdfChoice> pdfOptions(int pageCount, const QString& proposedPath) override
    {
        s_.pdfAsks.append({pageCount, proposedPath});
        return s_.pdf;
    }
    bool print(QPrinter& printer) override
    {
        s_.printers << &printer;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(s_.printFile);
        printer.setPrintRange(s_.printFrom == 0 ? QPrinter::AllPages : QPrinter::PageRange);
        printer.setFromTo(s_.printFrom, s_.printTo);
        return true;
    }
    bool pageSetup(QPrinter& printer) override
    {
        s_.printers << &printer;
        return true;
    }
    void message(const QString& caption, const QString& text, MessageIcon icon) override
    {
        s_.messages << caption + u'|' + text;
        s_.icons << icon;
    }
    void openFile(const QString& path) override { s_.opened << path; }

private:
    Script& s_;
};

QString PdfInfo(const QString& path, const QStringList& options = {})
{
    QProcess pdfinfo;
    pdfinfo.start(u"pdfinfo"_s, QStringList(options) << path);
    pdfinfo.waitForFinished(60000);
    return QString::fromUtf8(pdfinfo.readAllStandardOutput());
}

QString InfoField(const QString& info, const QString& field)
{
    const QRegularExpression line(u"^"_s + field + u":\\s*(.*)$"_s, QRegularExpression::MultilineOption);
    return line.match(info).captured(1).trimmed();
}

// Whether each page of the PDF lies on its side.
QList<bool> PdfLandscapePages(const QString& path, int pages)
{
    const QString info = PdfInfo(path, {u"-f"_s, u"1"_s, u"-l"_s, QString::number(pages)});
    const QRegularExpression size(u"Page\\s+\\d+ size:\\s*([\\d.]+) x ([\\d.]+)"_s);
    QList<bool> landscape;
    for (const QRegularExpressionMatch& match : size.globalMatch(info))
        landscape << (match.captured(1).toDouble() > match.captured(2).toDouble());
    return landscape;
}
} // namespace

class TestPreview : public QObject {
    Q_OBJECT

private:
    void open(PreviewSettings settings = {})
    {
        settings.pdfFolder = settings.reportsFolder = dir_->path();
        preview_ = std::make_unique<TfpRapPrev_FR3>(std::make_shared<const PreparedReport>(MakeReport(PageCount)),
                                                    std::move(settings), std::make_unique<StandInDialogs>(script_));
        preview_->show();
        QVERIFY(QTest::qWaitForWindowExposed(preview_.get()));
    }
    PreviewSettings countingSettings()
    {
        PreviewSettings settings;
        settings.prepareAgain = [this]() -> std::optional<PreparedReport> {
            progressWhilePreparing_ << label(u"lbProgress"_s)->text();
            return MakeReport(PageCount, u"Wykaz zwierząt (nowy)"_s);
        };
        return settings;
    }
    void trigger(const QString& name) { action(name)->trigger(); }
    QAction* action(const QString& name) const { return preview_->findChild<QAction*>(name); }
    QLabel* label(const QString& name) const { return preview_->findChild<QLabel*>(name); }
    QComboBox* zoomBox() const { return preview_->findChild<QComboBox*>(u"cbZoom"_s); }
    void choose(int zoomIndex)
    {
        zoomBox()->setCurrentIndex(zoomIndex);
        Q_EMIT zoomBox()->activated(zoomIndex);
    }
    void wheel(int angle)
    {
        QWidget* viewport = preview_->pageView()->viewport();
        const QPointF centre = viewport->rect().center();
        QWheelEvent event(centre, viewport->mapToGlobal(centre), {}, QPoint(0, angle), Qt::NoButton,
                          Qt::ControlModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(viewport, &event);
    }
    QString pageLabel() const { return label(u"lbPage"_s)->text(); }

    std::unique_ptr<QTemporaryDir> dir_;
    Script script_;
    QStringList progressWhilePreparing_;
    std::unique_ptr<TfpRapPrev_FR3> preview_;

private Q_SLOTS:
    void init()
    {
        dir_ = std::make_unique<QTemporaryDir>();
        script_ = Script();
        progressWhilePreparing_.clear();
    }
    void cleanup() { preview_.reset(); }

    void actions_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("tip");
        QTest::addColumn<QString>("shortcuts");
        QTest::addColumn<bool>("enabled"); // on the first page, without a design callback
        const auto row = [](const char* name, const QString& text, const QString& tip, const QString& keys, bool on) {
            QTest::newRow(name) << text << tip << keys << on;
        };
        row("acPrint", u"Drukuj..."_s, u"Drukuj raport"_s, u"Ctrl+P"_s, true);
        row("acPrintSetup", u"Ustawienia drukarki"_s, u"Ustawienia drukarki"_s, {}, true);
        row("acSave", u"Zapisz"_s, u"Zapisz raport do pliku"_s, u"Ctrl+S"_s, true);
        row("acOpen", u"Otwórz"_s, u"Otwórz raport z pliku"_s, u"Ctrl+O"_s, true);
        row("acSavePDF", u"PDF"_s, u"Zapisz raport do PDF"_s, {}, true);
        row("acMailPDF", u"Mail"_s, u"Wysłanie raportu mailem jako PDF"_s, {}, false);
        row("acDesign", u"Projektuj..."_s, {}, {}, false);
        row("acPageFirst", {}, u"Pierwsza strona"_s, {}, false);
        row("acPagePrev", u"Poprzednia strona"_s, u"Poprzednia strona"_s, {}, false);
        row("acPageNext", u"Następna strona"_s, u"Następna strona"_s, {}, true);
        row("acPageLast", {}, u"Ostatnia strona"_s, {}, true);
        row("acFind", u"Szukaj..."_s, u"Szukaj tekstu w raporcie"_s, u"Ctrl+F"_s, true);
        row("acFindNext", u"Szukaj następny..."_s, {}, u"F3"_s, true);
        row("acClose", u"Zamknij"_s, u"Zamknij podgląd wydruku"_s, u"Esc; Alt+Q"_s, true);
    }
    void actions()
    {
        QFETCH(QString, text);
        QFETCH(QString, tip);
        QFETCH(QString, shortcuts);
        QFETCH(bool, enabled);
        open();
        const QAction* found = action(QString::fromLatin1(QTest::currentDataTag()));
        QVERIFY(found);
        QCOMPARE(found->text(), text);
        if (!tip.isEmpty()) {
            QCOMPARE(found->toolTip(), tip);
            QCOMPARE(found->statusTip(), tip);
        }
        QCOMPARE(QKeySequence::listToString(found->shortcuts(), QKeySequence::PortableText), shortcuts);
        QCOMPARE(found->isEnabled(), enabled);
    }

    void windowAndButtons()
    {
        open();
        QCOMPARE(preview_->objectName(), u"TfpRapPrev_FR3"_s);
        QCOMPARE(preview_->windowTitle(), u"Podgląd wydruku - Wykaz zwierząt"_s);
        QCOMPARE(preview_->findChild<QPushButton*>(u"btRezygnuj"_s)->toolTip(), u"Zamknij okno"_s);
        QTest::mouseClick(preview_->findChild<QPushButton*>(u"btAkceptuj"_s), Qt::LeftButton);
        QCOMPARE(preview_->result(), int(QDialog::Accepted));
        open();
        QTest::keyClick(preview_->pageView(), Qt::Key_Escape);
        QVERIFY(!preview_->isVisible());
        QCOMPARE(preview_->result(), int(QDialog::Rejected));
    }

    void zoomItems()
    {
        open();
        QStringList texts;
        QList<int> values;
        for (int index = 0; index < zoomBox()->count(); ++index) {
            texts << zoomBox()->itemText(index);
            values << zoomBox()->itemData(index).toInt();
        }
        QCOMPARE(texts, (QStringList{u"25%"_s, u"50%"_s, u"75%"_s, u"100%"_s, u"150%"_s, u"200%"_s,
                                     u"Szerokość strony"_s, u"Cała strona"_s, u"Dwie strony"_s}));
        QCOMPARE(values, (QList<int>{25, 50, 75, 100, 150, 200, 1, 2, 3}));
        QCOMPARE(zoomBox()->currentText(), u"Szerokość strony"_s);
        QCOMPARE(preview_->pageView()->zoomMode(), PageView::ZoomMode::PageWidth);
    }

    void zoomChoice_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<PageView::ZoomMode>("mode");
        QTest::addColumn<int>("percent"); // 0: fitted
        const QList<int> percents{25, 50, 75, 100, 150, 200};
        for (int index = 0; index < percents.size(); ++index)
            QTest::addRow("%d%%", percents[index]) << index << PageView::ZoomMode::Percent << percents[index];
        QTest::newRow("page width") << 6 << PageView::ZoomMode::PageWidth << 0;
        QTest::newRow("whole page") << 7 << PageView::ZoomMode::WholePage << 0;
        QTest::newRow("two pages") << 8 << PageView::ZoomMode::TwoPages << 0;
    }
    void zoomChoice()
    {
        QFETCH(int, index);
        QFETCH(PageView::ZoomMode, mode);
        QFETCH(int, percent);
        open();
        choose(index == 8 ? 7 : 8); // from another zoom
        choose(index);
        QCOMPARE(preview_->pageView()->zoomMode(), mode);
        if (percent != 0)
            QCOMPARE(preview_->pageView()->zoomPercent(), percent);
        QCOMPARE(zoomBox()->currentText(), zoomBox()->itemText(index));
    }

    void ctrlWheelZooms()
    {
        open();
        choose(3); // 100%
        preview_->pageView()->goToPage(3);
        wheel(120);
        QCOMPARE(preview_->pageView()->zoomMode(), PageView::ZoomMode::Percent);
        QCOMPARE(preview_->pageView()->zoomPercent(), 110);
        QCOMPARE(zoomBox()->currentText(), u"110%"_s);
        QCOMPARE(preview_->pageView()->currentPage(), 3); // the point under the mouse stays
        wheel(-240);
        QCOMPARE(zoomBox()->currentText(), u"90%"_s);
        choose(6);
        QCOMPARE(preview_->pageView()->zoomMode(), PageView::ZoomMode::PageWidth);
        QCOMPARE(zoomBox()->currentText(), u"Szerokość strony"_s);
    }

    void typedZoomKeepsTheWindowOpen()
    {
        open();
        zoomBox()->lineEdit()->setFocus();
        zoomBox()->lineEdit()->selectAll();
        QTest::keyClicks(zoomBox()->lineEdit(), u"130"_s);
        QTest::keyClick(zoomBox()->lineEdit(), Qt::Key_Return);
        QCOMPARE(preview_->pageView()->zoomPercent(), 130);
        QCOMPARE(zoomBox()->currentText(), u"130%"_s);
        QVERIFY(preview_->isVisible());
    }

    void navigation()
    {
        open();
        QCOMPARE(pageLabel(), u"Strona: 1 z 30"_s);
        trigger(u"acPageNext"_s);
        trigger(u"acPageNext"_s);
        QCOMPARE(pageLabel(), u"Strona: 3 z 30"_s);
        trigger(u"acPagePrev"_s);
        QCOMPARE(preview_->pageView()->currentPage(), 1);
        trigger(u"acPageLast"_s);
        QCOMPARE(pageLabel(), u"Strona: 30 z 30"_s);
        QVERIFY(!action(u"acPageNext"_s)->isEnabled() && !action(u"acPageLast"_s)->isEnabled());
        QVERIFY(action(u"acPageFirst"_s)->isEnabled() && action(u"acPagePrev"_s)->isEnabled());
        QTest::keyClick(preview_->pageView(), Qt::Key_Home);
        QCOMPARE(pageLabel(), u"Strona: 1 z 30"_s);
        QVERIFY(!action(u"acPageFirst"_s)->isEnabled() && !action(u"acPagePrev"_s)->isEnabled());
        QTest::keyClick(preview_->pageView(), Qt::Key_End);
        QCOMPARE(preview_->pageView()->currentPage(), PageCount - 1);
    }

    void pageKeysScrollByTheView()
    {
        open();
        choose(7); // whole page: a view's height is about a page
        QTest::keyClick(preview_->pageView(), Qt::Key_PageDown);
        QCOMPARE(preview_->pageView()->currentPage(), 1);
        QTest::keyClick(preview_->pageView(), Qt::Key_PageDown);
        QCOMPARE(pageLabel(), u"Strona: 3 z 30"_s);
        QTest::keyClick(preview_->pageView(), Qt::Key_PageUp);
        QCOMPARE(preview_->pageView()->currentPage(), 1);
    }

    void findAndFindNextWrapRound()
    {
        open();
        script_.findAnswers = QStringList{u"Strona 3"_s, u"Kot"_s};
        trigger(u"acFind"_s);
        QCOMPARE(pageLabel(), u"Strona: 3 z 30"_s);
        trigger(u"acFindNext"_s);
        QCOMPARE(preview_->pageView()->currentPage(), 29); // "Strona 30"
        trigger(u"acFindNext"_s);
        QCOMPARE(preview_->pageView()->currentPage(), 2);
        trigger(u"acFind"_s);
        QCOMPARE(script_.findPrevious, (QStringList{QString(), u"Strona 3"_s}));
        QCOMPARE(script_.messages, QStringList{u"Informacja|Nie znaleziono tekstu: \"Kot\""_s});
        QCOMPARE(script_.icons, QList<MessageIcon>{MessageIcon::Information});
    }

    void findNextWithoutTextAsksAndRevealsTheHit()
    {
        open();
        script_.findAnswers = QStringList{u"Stopka 5"_s};
        preview_->pageView()->goToPage(4);
        const int pageTop = preview_->pageView()->verticalScrollBar()->value();
        preview_->pageView()->goToPage(0);
        trigger(u"acFindNext"_s);
        QCOMPARE(script_.findPrevious.size(), 1);
        QCOMPARE(preview_->pageView()->currentPage(), 4);
        QVERIFY(preview_->pageView()->verticalScrollBar()->value() > pageTop); // the footer is scrolled into view
    }

    void saveAndReopen()
    {
        open();
        script_.saveName = dir_->filePath(u"kopia"_s);
        trigger(u"acSave"_s);
        QCOMPARE(script_.saveProposals, QStringList{dir_->filePath(u"Wykaz zwierząt.hrp"_s)});
        QVERIFY(QFile::exists(dir_->filePath(u"kopia.hrp"_s)));
        preview_->showReport(std::make_shared<const PreparedReport>(MakeReport(3, u"Inny"_s)));
        script_.openName = dir_->filePath(u"kopia.hrp"_s);
        trigger(u"acOpen"_s);
        QCOMPARE(script_.openFolders, QStringList{dir_->path()});
        QVERIFY(script_.messages.isEmpty());
        const PreparedReport original = MakeReport(PageCount);
        QCOMPARE(preview_->pageView()->pageCount(), PageCount);
        for (int page = 0; page < PageCount; ++page)
            QCOMPARE(preview_->report()->pageTexts(page), original.pageTexts(page));
        QCOMPARE(preview_->windowTitle(), u"Podgląd wydruku - Wykaz zwierząt"_s);
    }

    void failedFileKeepsTheReport_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("reason");
        QTest::newRow("damaged") << u"acOpen"_s << u"zly.hrp"_s << u"uszkodzony"_s;
        QTest::newRow("missing") << u"acOpen"_s << u"brak.hrp"_s << u"Nie można odczytać pliku"_s;
        QTest::newRow("save into no folder") << u"acSave"_s << u"brak/kopia.hrp"_s << u"Nie można zapisać"_s;
    }
    void failedFileKeepsTheReport()
    {
        QFETCH(QString, command);
        QFETCH(QString, file);
        QFETCH(QString, reason);
        QFile damaged(dir_->filePath(u"zly.hrp"_s));
        QVERIFY(damaged.open(QIODevice::WriteOnly) && damaged.write("to nie jest raport") > 0);
        damaged.close();
        open();
        const auto shown = preview_->report();
        script_.openName = script_.saveName = dir_->filePath(file);
        trigger(command);
        QCOMPARE(script_.messages.size(), 1);
        QVERIFY2(script_.messages[0].startsWith(u"Błąd...|"_s) && script_.messages[0].contains(reason),
                 qPrintable(script_.messages[0]));
        QCOMPARE(script_.icons, QList<MessageIcon>{MessageIcon::Error});
        QCOMPARE(preview_->report(), shown);
    }

    void pdfExport_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("written");
        QTest::addColumn<int>("first");
        QTest::addColumn<int>("last");
        QTest::newRow("suffix added") << u"X"_s << u"X.PDF"_s << 2 << 5;
        QTest::newRow("lower-case suffix kept") << u"Y.pdf"_s << u"Y.pdf"_s << 1 << PageCount;
        QTest::newRow("dotted name") << u"Stado 01.2024"_s << u"Stado 01.2024.PDF"_s << PageCount << PageCount;
    }
    void pdfExport()
    {
        QFETCH(QString, typed);
        QFETCH(QString, written);
        QFETCH(int, first);
        QFETCH(int, last);
        if (QStandardPaths::findExecutable(u"pdfinfo"_s).isEmpty())
            QSKIP("pdfinfo (poppler-utils) is not installed");
        const QString leftover = dir_->filePath(QFileInfo(written).completeBaseName() + u".TMP"_s);
        QFile tmp(leftover);
        QVERIFY(tmp.open(QIODevice::WriteOnly));
        tmp.close();
        open(countingSettings());
        script_.pdf = PdfChoice{dir_->filePath(typed), first, last, true};
        trigger(u"acSavePDF"_s);
        QCOMPARE(script_.pdfAsks,
                 (QList<std::pair<int, QString>>{{PageCount, dir_->filePath(u"Wykaz zwierząt.PDF"_s)}}));
        QVERIFY(script_.messages.isEmpty());
        QVERIFY(!QFile::exists(leftover));
        const QString pdf = dir_->filePath(written);
        const QString info = PdfInfo(pdf);
        QCOMPARE(InfoField(info, u"Creator"_s), ProductIdentification());
        QVERIFY(ProductIdentification().startsWith(u"Halvarn "_s));
        QCOMPARE(InfoField(info, u"Pages"_s).toInt(), last - first + 1);
        QCOMPARE(script_.opened, QStringList{pdf});
        QCOMPARE(progressWhilePreparing_, QStringList{u"Tworzenie"_s}); // prepared again once
        QCOMPARE(label(u"lbProgress"_s)->text(), QString());
        QCOMPARE(preview_->report()->name, u"Wykaz zwierząt (nowy)"_s);
    }

    void pdfOptionsDialog()
    {
        PdfOptionsDialog dialog(PageCount, u"/dane/PDF/Raport.PDF"_s);
        QCOMPARE(dialog.windowTitle(), u"Eksport do PDF"_s);
        PdfChoice choice = dialog.choice();
        QCOMPARE(choice.path, u"/dane/PDF/Raport.PDF"_s);
        QCOMPARE(std::make_tuple(choice.firstPage, choice.lastPage, choice.openAfter), std::make_tuple(1, 30, false));
        dialog.findChild<QRadioButton*>(u"rbPageRange"_s)->setChecked(true);
        dialog.findChild<QSpinBox*>(u"sbFirstPage"_s)->setValue(3);
        dialog.findChild<QSpinBox*>(u"sbLastPage"_s)->setValue(7);
        dialog.findChild<QCheckBox*>(u"cbOpenAfter"_s)->setChecked(true);
        dialog.findChild<QLineEdit*>(u"edPath"_s)->setText(u"/tmp/x.pdf"_s);
        choice = dialog.choice();
        QCOMPARE(choice.path, u"/tmp/x.pdf"_s);
        QCOMPARE(std::make_tuple(choice.firstPage, choice.lastPage, choice.openAfter), std::make_tuple(3, 7, true));
    }

    void pdfIntoMissingFolderGivesMessage()
    {
        open(countingSettings());
        const QString pdf = dir_->filePath(u"brak/X.PDF"_s);
        script_.pdf = PdfChoice{pdf, 1, PageCount, true};
        trigger(u"acSavePDF"_s);
        QCOMPARE(script_.messages.size(), 1);
        QVERIFY(script_.messages[0].startsWith(u"Błąd...|Nie można zapisać pliku"_s));
        QVERIFY(!QFile::exists(pdf));
        QVERIFY(script_.opened.isEmpty() && progressWhilePreparing_.isEmpty());
    }

    void printerKeepsItsSettings()
    {
        open();
        script_.printFile = dir_->filePath(u"druk.pdf"_s);
        trigger(u"acPrintSetup"_s);
        const QPrinter& printer = *script_.printers.value(0);
        QVERIFY(printer.fullPage());
        QCOMPARE(printer.pageLayout().pageSize().id(), QPageSize::A4);
        QCOMPARE(printer.pageLayout().orientation(), QPageLayout::Portrait);
        QCOMPARE(printer.pageLayout().margins(), QMarginsF());
        trigger(u"acPrint"_s);
        QCOMPARE(script_.printers.value(1), &printer);
    }

    void printToPdfPrinter_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<QList<bool>>("landscape");
        QTest::newRow("range") << 3 << 5 << QList<bool>{false, false, false};
        QTest::newRow("a page on its side") << 14 << 16 << QList<bool>{false, true, false};
        QTest::newRow("all") << 0 << 0 << QList<bool>(PageCount, false);
    }
    void printToPdfPrinter()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(QList<bool>, landscape);
        if (QStandardPaths::findExecutable(u"pdfinfo"_s).isEmpty())
            QSKIP("pdfinfo (poppler-utils) is not installed");
        if (from == 0)
            landscape[LandscapePage] = true;
        open();
        script_.printFile = dir_->filePath(u"druk.pdf"_s);
        script_.printFrom = from;
        script_.printTo = to;
        trigger(u"acPrint"_s);
        QVERIFY(script_.messages.isEmpty());
        QCOMPARE(InfoField(PdfInfo(script_.printFile), u"Pages"_s).toInt(), landscape.size());
        QCOMPARE(PdfLandscapePages(script_.printFile, int(landscape.size())), landscape);
        QCOMPARE(label(u"lbProgress"_s)->text(), QString());
    }

    void design_data()
    {
        QTest::addColumn<QString>("preparation"); // "pages", "none", "throws" or empty for no callback
        QTest::addColumn<int>("pages");
        QTest::addColumn<QStringList>("messages");
        QTest::newRow("prepared again") << u"pages"_s << 5 << QStringList();
        QTest::newRow("preparation failed") << u"none"_s << PageCount << QStringList();
        QTest::newRow("preparation threw") << u"throws"_s << PageCount << QStringList{u"Błąd...|Brak szablonu"_s};
        QTest::newRow("nothing to prepare") << QString() << PageCount << QStringList();
    }
    void design()
    {
        QFETCH(QString, preparation);
        QFETCH(int, pages);
        QFETCH(QStringList, messages);
        int designed = 0;
        PreviewSettings settings;
        settings.design = [&designed] { ++designed; };
        if (!preparation.isEmpty())
            settings.prepareAgain = [preparation]() -> std::optional<PreparedReport> {
                if (preparation == u"throws"_s)
                    throw HalvarnError(u"Brak szablonu"_s);
                return preparation == u"none"_s ? std::nullopt : std::optional<PreparedReport>(MakeReport(5));
            };
        open(std::move(settings));
        QVERIFY(action(u"acDesign"_s)->isEnabled());
        trigger(u"acDesign"_s);
        QCOMPARE(designed, 1);
        QCOMPARE(preview_->pageView()->pageCount(), pages);
        QCOMPARE(pageLabel(), u"Strona: 1 z %1"_s.arg(pages));
        QCOMPARE(script_.messages, messages);
        QCOMPARE(label(u"lbProgress"_s)->text(), QString());
    }

    // A thousand pages: only the pages in view are rendered, and a page seen again comes from the cache.
    void pagesRenderedOnlyWhenSeen()
    {
        open();
        PageView* view = preview_->pageView();
        preview_->showReport(std::make_shared<const PreparedReport>(MakeReport(1000)));
        view->viewport()->repaint();
        const int shown = view->renderedPageCount();
        QVERIFY(shown >= 1 && shown <= 2);
        for (int step = 0; step < 100; ++step) {
            view->goToPage(step * 10);
            view->viewport()->repaint();
        }
        QVERIFY2(view->renderedPageCount() <= shown + 200, qPrintable(QString::number(view->renderedPageCount())));
        for (int page : {0, 500}) {
            view->goToPage(page);
            view->viewport()->repaint();
        }
        const int bothSeen = view->renderedPageCount();
        for (int turn = 0; turn < 10; ++turn) {
            view->goToPage(turn % 2 == 0 ? 0 : 500);
            view->viewport()->repaint();
        }
        QCOMPARE(view->renderedPageCount(), bothSeen);
    }

    // Set HALVARN_SCREENSHOT_DIR to look at the window at two zooms.
    void screenshots()
    {
        const QString folder = qEnvironmentVariable("HALVARN_SCREENSHOT_DIR");
        if (folder.isEmpty())
            QSKIP("HALVARN_SCREENSHOT_DIR is not set");
        open();
        preview_->resize(1280, 860);
        script_.findAnswers = QStringList{u"Kolczyk"_s};
        trigger(u"acFind"_s);
        QCoreApplication::processEvents();
        QVERIFY(preview_->grab().save(folder + u"/preview-page-width.png"_s));
        choose(8);
        preview_->pageView()->goToPage(LandscapePage);
        QCoreApplication::processEvents();
        QVERIFY(preview_->grab().save(folder + u"/preview-two-pages.png"_s));
    }
};

QTEST_MAIN(TestPreview)
#include "test_preview.moc"
