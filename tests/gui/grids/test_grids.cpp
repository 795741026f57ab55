#include "core/tables/WorkingTables.h"
#include "gui/grids/ColumnFilterPopup.h"
#include "gui/grids/GridFooter.h"
#include "gui/grids/SummaryGrid.h"
#include "gui/grids/SummaryLayout.h"
#include "gui/grids/SummaryModel.h"
#include "gui/grids/TableGrid.h"
#include "gui/grids/TableModel.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStyle>
#include <QTableView>
#include <QTest>
#include <QTreeView>

using namespace Qt::StringLiterals;

namespace {
struct Animal {
    const char* stado;
    const char* numer;
    const char* plec;
    QDate born;
    int wiek;
    const char* typ;
    int mother;
};

// Six animals whose orders differ by every measure the tests look at: ages
// sort differently as numbers and as texts, birth dates as dates and as texts,
// use types by Polish collation and by character codes.
const Animal Herd[] = {
    {"002", "PL0005", "XX", QDate(2020, 3, 10), 80, "mleczny", 1},
    {"001", "PL0001", "XY", QDate(2023, 5, 1), 9, "Łączony", 0},
    {"001", "PL0003", "XX", QDate(2015, 1, 20), 100, "mleczny", 1},
    {"003", "PL0002", "XX", QDate(2024, 2, 2), 12, "lokalny", 0},
    {"002", "PL0004", "XY", QDate(2022, 11, 30), 10, "mięsny", 0},
    {"001", "PL0006", "XX", QDate(2019, 7, 7), 2, "", 1},
};

QString Text(const char* text)
{
    return QString::fromUtf8(text);
}

void Append(Table& table, const Animal& animal)
{
    table.append();
    table.setValue(u"STADO", Text(animal.stado));
    table.setValue(u"NumerIdentyfikacyjny", Text(animal.numer));
    table.setValue(u"Plec", Text(animal.plec));
    table.setValue(u"DataUrodzenia", animal.born);
    table.setValue(u"Wiek", animal.wiek);
    table.setValue(u"TypUzytkowy", Text(animal.typ));
    table.setValue(u"KierunekUzytkowania", u"użytkowy"_s);
    table.setValue(u"Rozpatrzono", u"D"_s);
    table.setValue(u"GdzieRozpatrzono", u"Krowy, 24 > Wiek"_s);
    table.setValue(u"CzyMatka", animal.mother);
    if (table.fieldIndex(u"ZAZNACZONE") >= 0)
        table.setValue(u"ZAZNACZONE", false);
    table.post();
}

void AppendHerd(Table& table)
{
    for (const Animal& animal : Herd)
        Append(table, animal);
}

// An animal of herd "001" whose number and age follow from `n`.
void AppendNumbered(Table& table, int n)
{
    const QByteArray numer = u"PL%1"_s.arg(n, 6, 10, QLatin1Char('0')).toLatin1();
    Append(table, {"001", numer.constData(), n % 2 ? "XY" : "XX", QDate(2020, 1, 1).addDays(n), n % 97, "mleczny",
                   n % 3 == 0 ? 1 : 0});
}

void AppendGroup(Table& table, int id, const QString& caption, int count)
{
    table.append();
    table.setValue(u"ID", id);
    table.setValue(u"GT", caption);
    table.setValue(u"ZakresWieku", u"6 > Wiek <= 19"_s);
    table.setValue(u"Ilosc", count);
    table.setValue(u"IloscPom", 0);
    table.post();
}

void SetMark(Table& table, int record, bool marked)
{
    table.moveTo(record);
    table.edit();
    table.setValue(u"ZAZNACZONE", marked);
    table.post();
}

QStringList HeaderTexts(const QAbstractItemModel& model)
{
    QStringList texts;
    for (int column = 0; column < model.columnCount(); ++column)
        texts.append(model.headerData(column, Qt::Horizontal).toString());
    return texts;
}

// How wide a column must be to show `text` whole in `font`, the cell's margins included.
int WholeWidth(const QWidget& view, const QString& text, const QFont& font)
{
    const int margin = view.style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1;
    return QFontMetrics(font).horizontalAdvance(text) + 2 * margin;
}

QList<int> Rows(const std::vector<int>& rows)
{
    return {rows.cbegin(), rows.cend()};
}

int ColumnOf(const SummaryGrid& grid, const QString& field)
{
    return ColumnOfField(grid.model()->columns(), field);
}

int RedPixels(const QImage& image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            count += pixel.red() > 200 && pixel.green() < 80 && pixel.blue() < 80;
        }
    return count;
}

// One of the three grids over its table: "herd", "groups" or "summary".
struct AnyGrid {
    AnyGrid(const QString& kind, Table& table)
    {
        if (kind == u"summary") {
            auto grid = std::make_unique<SummaryGrid>(table);
            view = grid->view();
            header = grid->view()->header();
            widget = std::move(grid);
        } else {
            auto grid = std::make_unique<TableGrid>(table, kind == u"herd" ? GridKind::HerdAnimals : GridKind::Groups);
            view = grid->view();
            header = grid->view()->horizontalHeader();
            widget = std::move(grid);
        }
    }
    SummaryGrid* summary() const { return qobject_cast<SummaryGrid*>(widget.get()); }
    std::unique_ptr<QWidget> widget;
    QAbstractItemView* view = nullptr;
    QHeaderView* header = nullptr;
};

// Counts what a model tells its views.
struct ModelSignals {
    explicit ModelSignals(QAbstractItemModel* model)
        : resets(model, &QAbstractItemModel::modelReset), inserts(model, &QAbstractItemModel::rowsInserted),
          removals(model, &QAbstractItemModel::rowsRemoved), changes(model, &QAbstractItemModel::dataChanged),
          layouts(model, &QAbstractItemModel::layoutChanged)
    {}
    int perRow() const { return inserts.count() + removals.count() + changes.count() + layouts.count(); }
    QSignalSpy resets, inserts, removals, changes, layouts;
};

// The budget holds for an optimised build; unoptimised and sanitized builds
// only show that nothing grows out of proportion.
#if defined(__SANITIZE_ADDRESS__)
constexpr qint64 ResetBudgetMs = 2000;
#elif defined(NDEBUG)
constexpr qint64 ResetBudgetMs = 100;
#else
constexpr qint64 ResetBudgetMs = 400;
#endif
} // namespace

class TestGrids : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void columnsOfTheGrids_data();
    void columnsOfTheGrids();
    void tableGridIsReadOnlyAndFollowsItsTable();
    void footerFollowsColumnWidthsAndScrolling_data();
    void footerFollowsColumnWidthsAndScrolling();
    void markingPostsAndRedrawsTheWholeRow();
    void markingKeepsCurrentRowAndScrollPosition();
    void markingUnderAFilterOnTheMarkRelaysOut();
    void displayOrder_data();
    void displayOrder();
    void groupRowsShowCaptionValueAndCount();
    void summaryFollowsTableChanges();
    void silentWhileControlsAreDisabled_data();
    void silentWhileControlsAreDisabled();
    void collapsedGroupsSurviveAReset();
    void filterPopupAndFilterBar();
    void headerAndGroupChoiceDriveTheGrid();
    void twentyThousandRowsResetQuickly();
    void columnsFitTheirWidestValues();

private:
    std::unique_ptr<WorkingTables> tables_;
    Table* summary_ = nullptr;
    Table* herd_ = nullptr;
    Table* groups_ = nullptr;
};

void TestGrids::init()
{
    tables_ = std::make_unique<WorkingTables>();
    summary_ = &tables_->mdRZ00();
    herd_ = &tables_->mdRZ(1);
    groups_ = &tables_->mdGT(1);
    for (Table* table : {summary_, herd_, groups_}) {
        table->open();
        table->setReadOnly(false);
    }
}

void TestGrids::columnsOfTheGrids_data()
{
    QTest::addColumn<QString>("grid");
    QTest::addColumn<QString>("captions");
    QTest::addColumn<QString>("texts"); // of the first row as shown
    QTest::newRow("herd animals") << u"herd"_s
                                  << u"Numer identyfikacyjny|Plec|Data urodzenia|Wiek|Typ uzytkowy|"
                                     u"Kierunek uzytkowania|Rozpatrzono|Czy matka|Gdzie rozpatrzono"_s
                                  << u"PL0005|XX|10.03.2020|80|mleczny|użytkowy|D|1|Krowy, 24 > Wiek"_s;
    QTest::newRow("groups") << u"groups"_s << u"GT|ZakresWieku|Ilosc|Inf. dod.|Limit"_s
                            << u"Krowy|6 > Wiek <= 19|3|0|"_s;
    QTest::newRow("summary") << u"summary"_s
                             << u"Z|Stado|Numer identyfikacyjny|Plec|Data urodzenia|Wiek|Typ uzytkowy|"
                                u"Kierunek uzytkowania|Rozpatrzono|Gdzie rozpatrzono|Czy matka"_s
                             << u"|002|PL0005|XX|10.03.2020|80|mleczny|użytkowy|D|Krowy, 24 > Wiek|1"_s;
}

void TestGrids::columnsOfTheGrids()
{
    QFETCH(QString, grid);
    QFETCH(QString, captions);
    QFETCH(QString, texts);
    AppendHerd(*herd_);
    AppendHerd(*summary_);
    AppendGroup(*groups_, 1, u"Krowy"_s, 3);
    const AnyGrid any(grid, grid == u"summary" ? *summary_ : grid == u"herd" ? *herd_ : *groups_);
    const QAbstractItemModel& model = *any.view->model();
    QCOMPARE(HeaderTexts(model).join(u'|'), captions);
    QStringList shown;
    for (int column = 0; column < model.columnCount(); ++column)
        shown << model.index(0, column).data().toString();
    QCOMPARE(shown.join(u'|'), texts);
}

void TestGrids::tableGridIsReadOnlyAndFollowsItsTable()
{
    AppendHerd(*herd_);
    TableGrid grid(*herd_, GridKind::HerdAnimals);
    QTableView& view = *grid.view();
    QCOMPARE(view.editTriggers(), QAbstractItemView::NoEditTriggers);
    QVERIFY(!(view.model()->flags(view.model()->index(0, 0)) & Qt::ItemIsEditable));

    Append(*herd_, {"001", "PL0099", "XX", QDate(2021, 1, 1), 40, "mleczny", 1});
    QCOMPARE(view.model()->rowCount(), 7);
    QCOMPARE(view.model()->index(6, 0).data().toString(), u"PL0099"_s);
    QCOMPARE(grid.footerText(u"CzyMatka"_s), u"4"_s);

    herd_->moveTo(0);
    herd_->remove();
    QCOMPARE(view.model()->rowCount(), 6);
    QCOMPARE(view.model()->index(0, 0).data().toString(), u"PL0001"_s);
    QCOMPARE(grid.footerText(u"NumerIdentyfikacyjny"_s), u"6"_s);
    QCOMPARE(grid.footerText(u"CzyMatka"_s), u"3"_s);

    tables_->MarkAnimalReviewed(*herd_, u"MM"_s, u"Mamki"_s);
    QCOMPARE(view.model()->index(herd_->recNo(), 6).data().toString(), u"MM"_s);

    tables_->ClearTable(*herd_);
    QCOMPARE(view.model()->rowCount(), 0);
    QCOMPARE(grid.footerText(u"NumerIdentyfikacyjny"_s), u"0"_s);
}

void TestGrids::footerFollowsColumnWidthsAndScrolling_data()
{
    QTest::addColumn<bool>("summaryGrid");
    QTest::newRow("herd grid") << false;
    QTest::newRow("summary grid") << true;
}

void TestGrids::footerFollowsColumnWidthsAndScrolling()
{
    QFETCH(bool, summaryGrid);
    AppendHerd(*herd_);
    AppendHerd(*summary_);
    const AnyGrid grid(summaryGrid ? u"summary"_s : u"herd"_s, summaryGrid ? *summary_ : *herd_);
    grid.widget->resize(500, 300);
    grid.widget->show();
    QVERIFY(QTest::qWaitForWindowExposed(grid.widget.get()));
    auto* footer = grid.widget->findChild<GridFooter*>(u"footer"_s);
    QVERIFY(footer);
    const int mothers = static_cast<int>(HeaderTexts(*grid.view->model()).indexOf(u"Czy matka"_s));
    QHeaderView& header = *grid.header;
    const auto underHeader = [&] {
        return header.mapTo(grid.widget.get(), QPoint(header.sectionViewportPosition(mothers), 0)).x() -
               footer->mapTo(grid.widget.get(), QPoint()).x();
    };
    QCOMPARE(footer->text(mothers), u"3"_s);
    QCOMPARE(footer->cellRect(mothers).x(), underHeader());
    QCOMPARE(footer->cellRect(mothers).width(), header.sectionSize(mothers));

    const int before = footer->cellRect(mothers).x();
    header.resizeSection(0, header.sectionSize(0) + 50);
    QCOMPARE(footer->cellRect(mothers).x(), before + 50);
    header.resizeSection(mothers, 90);
    QCOMPARE(footer->cellRect(mothers).width(), 90);
    grid.view->horizontalScrollBar()->setValue(30);
    QCOMPARE(footer->cellRect(mothers).x(), before + 50 - 30);
    QCOMPARE(footer->cellRect(mothers).x(), underHeader());
}

void TestGrids::markingPostsAndRedrawsTheWholeRow()
{
    AppendHerd(*summary_);
    SummaryGrid grid(*summary_);
    grid.resize(1100, 400);
    grid.show();
    QVERIFY(QTest::qWaitForWindowExposed(&grid));
    QCOMPARE(RedPixels(grid.grab().toImage()), 0);
    QAbstractItemModel& model = *grid.view()->model();
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QSignalSpy relaid(&model, &QAbstractItemModel::layoutChanged);
    int posts = 0;
    summary_->setAfterPost([&posts](Table&) { ++posts; });
    const int last = model.columnCount() - 1;

    for (const bool marked : {true, false}) {
        changed.clear();
        QVERIFY(model.setData(model.index(3, 0), marked ? Qt::Checked : Qt::Unchecked, Qt::CheckStateRole));
        QCOMPARE(AsBoolean(summary_->at(3, summary_->requireField(u"ZAZNACZONE"))), marked);
        QCOMPARE(summary_->state(), Table::State::Browse);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().at(0).value<QModelIndex>(), model.index(3, 0));
        QCOMPARE(changed.first().at(1).value<QModelIndex>(), model.index(3, last));
        for (int column = 0; column <= last; ++column) {
            const QModelIndex cell = model.index(3, column);
            const QFont font = qvariant_cast<QFont>(cell.data(Qt::FontRole));
            QCOMPARE(font.bold(), marked);
            QCOMPARE(font.italic(), marked);
            QCOMPARE(qvariant_cast<QColor>(cell.data(Qt::ForegroundRole)),
                     marked ? QColor(255, 0, 0) : QColor(Qt::black));
        }
        QCOMPARE(model.index(3, 0).data(Qt::CheckStateRole).toInt(), int(marked ? Qt::Checked : Qt::Unchecked));
        QCOMPARE(RedPixels(grid.grab().toImage()) > 100, marked); // drawn red
        // The neighbours stay as they were.
        QVERIFY(!qvariant_cast<QFont>(model.index(2, 1).data(Qt::FontRole)).bold());
    }
    QCOMPARE(posts, 2);
    QCOMPARE(relaid.count(), 0);
    // Only the mark is editable, and only as a check box.
    QVERIFY(model.flags(model.index(0, 0)) & Qt::ItemIsUserCheckable);
    QVERIFY(!(model.flags(model.index(0, 1)) & (Qt::ItemIsUserCheckable | Qt::ItemIsEditable)));
    QVERIFY(!model.setData(model.index(0, 1), u"999"_s, Qt::EditRole));
    QVERIFY(!model.setData(model.index(0, 2), Qt::Checked, Qt::CheckStateRole));
    QCOMPARE(summary_->at(0, summary_->requireField(u"STADO")), FieldValue(u"002"_s));
}

void TestGrids::markingKeepsCurrentRowAndScrollPosition()
{
    for (int n = 0; n < 300; ++n)
        AppendNumbered(*summary_, n);
    SummaryGrid grid(*summary_);
    grid.sortByField(u"Wiek"_s, Qt::DescendingOrder);
    grid.resize(900, 400);
    grid.show();
    QVERIFY(QTest::qWaitForWindowExposed(&grid));
    QTreeView& view = *grid.view();
    const QModelIndex target = view.model()->index(150, 2);
    view.setCurrentIndex(target);
    view.scrollTo(target, QAbstractItemView::PositionAtCenter);
    const int scroll = view.verticalScrollBar()->value();
    QVERIFY(scroll > 0);
    const int record = grid.model()->recordAt(target);

    QVERIFY(view.model()->setData(view.model()->index(150, 0), Qt::Checked, Qt::CheckStateRole));
    QCoreApplication::processEvents();
    QCOMPARE(view.currentIndex().row(), 150);
    QCOMPARE(grid.model()->recordAt(view.currentIndex()), record);
    QCOMPARE(view.verticalScrollBar()->value(), scroll);
    QCOMPARE(summary_->recNo(), record);
}

void TestGrids::markingUnderAFilterOnTheMarkRelaysOut()
{
    AppendHerd(*summary_);
    SetMark(*summary_, 1, true);
    SetMark(*summary_, 4, true);
    SummaryGrid grid(*summary_);
    grid.setColumnFilter(u"ZAZNACZONE"_s, {u"True"_s});
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{1, 4}));
    QCOMPARE(grid.filterDescription(), u"Filtr: Z = Zaznaczone"_s);
    QAbstractItemModel& model = *grid.view()->model();
    grid.view()->setCurrentIndex(model.index(1, 2));
    QVERIFY(model.setData(model.index(0, 0), Qt::Unchecked, Qt::CheckStateRole));
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{4}));
    QCOMPARE(grid.footerText(u"NumerIdentyfikacyjny"_s), u"1"_s);
    // The current row moved up with its record.
    QCOMPARE(grid.model()->recordAt(grid.view()->currentIndex()), 4);

    grid.clearFilters();
    grid.sortByField(u"ZAZNACZONE"_s, Qt::DescendingOrder);
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{4, 0, 1, 2, 3, 5}));
    SetMark(*summary_, 2, true);
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{2, 4, 0, 1, 3, 5}));
}

void TestGrids::displayOrder_data()
{
    QTest::addColumn<QStringList>("filters"); // "FIELD=text|text"
    QTest::addColumn<QString>("sort");        // a field, "-" first when descending
    QTest::addColumn<QString>("groupField");
    QTest::addColumn<int>("collapsedGroup"); // -1: every group open
    QTest::addColumn<QList<int>>("rows");
    const auto row = [](const char* name, const QString& filters, const QString& sort, const QString& group,
                        int collapsed, const QList<int>& rows) {
        QTest::newRow(name) << filters.split(u' ', Qt::SkipEmptyParts) << sort << group << collapsed << rows;
    };
    row("table order", {}, {}, {}, -1, {0, 1, 2, 3, 4, 5});
    row("filter on two values", u"STADO=001|003"_s, {}, {}, -1, {1, 2, 3, 5});
    row("filters on two columns", u"STADO=001|002 Plec=XX"_s, {}, {}, -1, {0, 2, 5});
    row("filter on a date as shown", u"DataUrodzenia=10.03.2020"_s, {}, {}, -1, {0});
    row("filter on a blank", u"TypUzytkowy="_s, {}, {}, -1, {5});
    row("nothing passes", u"Plec=?"_s, {}, {}, -1, {});
    row("Wiek as numbers", {}, u"Wiek"_s, {}, -1, {5, 1, 4, 3, 0, 2});
    row("Wiek descending", {}, u"-Wiek"_s, {}, -1, {2, 0, 3, 4, 1, 5});
    row("birth dates as dates", {}, u"DataUrodzenia"_s, {}, -1, {2, 5, 0, 4, 1, 3});
    row("texts, ties in table order", {}, u"Plec"_s, {}, -1, {0, 2, 3, 5, 1, 4});
    row("texts descending, ties in table order", {}, u"-Plec"_s, {}, -1, {1, 4, 0, 2, 3, 5});
    row("Polish letters, blank first", {}, u"TypUzytkowy"_s, {}, -1, {5, 3, 1, 4, 0, 2});
    row("sort under a filter", u"Plec=XX"_s, u"Wiek"_s, {}, -1, {5, 3, 0, 2});
    row("groups by herd, rows by age", {}, u"Wiek"_s, u"STADO"_s, -1, {5, 1, 2, 4, 0, 3});
    row("groups ascending while rows descend", {}, u"-Wiek"_s, u"STADO"_s, -1, {2, 1, 5, 0, 4, 3});
    row("groups follow a descending sort on their field", {}, u"-STADO"_s, u"STADO"_s, -1, {3, 0, 4, 1, 2, 5});
    row("groups by date in date order", {}, {}, u"DataUrodzenia"_s, -1, {2, 5, 0, 4, 1, 3});
    row("collapsed group skipped", {}, {}, u"STADO"_s, 1, {1, 2, 5, 3});
    row("groups under a filter", u"Plec=XX"_s, u"-Wiek"_s, u"STADO"_s, 2, {2, 5, 0});
}

void TestGrids::displayOrder()
{
    QFETCH(QStringList, filters);
    QFETCH(QString, sort);
    QFETCH(QString, groupField);
    QFETCH(int, collapsedGroup);
    QFETCH(QList<int>, rows);
    AppendHerd(*summary_);
    SummaryGrid grid(*summary_);
    for (const QString& filter : filters) {
        const QString field = filter.section(u'=', 0, 0);
        grid.setColumnFilter(field, filter.section(u'=', 1).split(u'|'));
    }
    const bool descending = sort.startsWith(u'-');
    grid.sortByField(descending ? sort.mid(1) : sort, descending ? Qt::DescendingOrder : Qt::AscendingOrder);
    grid.groupByField(groupField);
    if (collapsedGroup >= 0)
        grid.setGroupExpanded(collapsedGroup, false);
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), rows);

    // The view shows the same rows, the rows of a collapsed group hidden.
    QList<int> shown;
    QTreeView& view = *grid.view();
    for (QModelIndex index = view.model()->index(0, 0); index.isValid(); index = view.indexBelow(index))
        if (!grid.model()->isGroupRow(index))
            shown.append(grid.model()->recordAt(index));
    QCOMPARE(shown, rows);

    // The footer counts every animal that passes the filters, grouped, collapsed or not.
    const QString animals = grid.footerText(u"NumerIdentyfikacyjny"_s);
    grid.groupByField({});
    QCOMPARE(animals, QString::number(grid.rowsInDisplayOrder().size()));
    int mothers = 0;
    for (const int record : grid.rowsInDisplayOrder())
        mothers += Herd[static_cast<std::size_t>(record)].mother;
    QCOMPARE(grid.footerText(u"CzyMatka"_s), QString::number(mothers));
}

void TestGrids::groupRowsShowCaptionValueAndCount()
{
    AppendHerd(*summary_);
    SummaryGrid grid(*summary_);
    grid.groupByField(u"STADO"_s);
    const QAbstractItemModel& model = *grid.view()->model();
    QCOMPARE(model.rowCount(), 3);
    QCOMPARE(model.index(0, 0).data().toString(), u"Stado: 001 (3)"_s);
    QCOMPARE(model.index(1, 0).data().toString(), u"Stado: 002 (2)"_s);
    QCOMPARE(model.index(2, 0).data().toString(), u"Stado: 003 (1)"_s);
    QVERIFY(grid.view()->isExpanded(model.index(1, 0)));
    QCOMPARE(model.rowCount(model.index(1, 0)), 2);
    QCOMPARE(model.index(0, 2, model.index(1, 0)).data().toString(), u"PL0005"_s);
    QCOMPARE(model.parent(model.index(0, 2, model.index(1, 0))), model.index(1, 0));
    QVERIFY(!(model.flags(model.index(0, 0)) & Qt::ItemIsUserCheckable));

    summary_->moveTo(3);
    summary_->edit();
    summary_->setValue(u"STADO", u"001"_s); // the animal moves into another group
    summary_->post();
    QCOMPARE(model.rowCount(), 2);
    QCOMPARE(model.index(0, 0).data().toString(), u"Stado: 001 (4)"_s);
    grid.setColumnFilter(u"Plec"_s, {u"XY"_s});
    QCOMPARE(model.index(0, 0).data().toString(), u"Stado: 001 (1)"_s);
    grid.groupByField(u"ZAZNACZONE"_s);
    QCOMPARE(model.index(0, 0).data().toString(), u"Z: Niezaznaczone (2)"_s);
    grid.groupByField({});
    QCOMPARE(model.rowCount(), 2);
    QVERIFY(!grid.model()->isGroupRow(model.index(0, 0)));
}

void TestGrids::summaryFollowsTableChanges()
{
    AppendHerd(*summary_);
    SummaryGrid grid(*summary_);
    grid.setColumnFilter(u"STADO"_s, {u"001"_s, u"002"_s});
    grid.sortByField(u"Wiek"_s, Qt::AscendingOrder);
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{5, 1, 4, 0, 2}));
    grid.view()->setCurrentIndex(grid.model()->indexOfRecord(0, 2));

    Append(*summary_, {"002", "PL0007", "XX", QDate(2021, 6, 1), 50, "mleczny", 1});
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{5, 1, 4, 6, 0, 2}));
    Append(*summary_, {"004", "PL0008", "XX", QDate(2021, 6, 1), 1, "mleczny", 1}); // filtered out
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{5, 1, 4, 6, 0, 2}));
    QCOMPARE(grid.footerText(u"NumerIdentyfikacyjny"_s), u"6"_s);
    QCOMPARE(grid.footerText(u"CzyMatka"_s), u"4"_s);

    summary_->moveTo(1);
    summary_->remove(); // the records after it move up by one
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{4, 3, 5, 0, 1}));
    QCOMPARE(grid.model()->recordAt(grid.view()->currentIndex()), 0);

    summary_->moveTo(2);
    summary_->edit();
    summary_->setValue(u"Wiek", 3); // a change that moves the row
    summary_->post();
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{4, 3, 5, 0, 1}));
    summary_->moveTo(0);
    summary_->edit();
    summary_->setValue(u"Wiek", 1);
    summary_->post();
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{0, 4, 3, 5, 1}));

    tables_->ClearTable(*summary_);
    QVERIFY(grid.rowsInDisplayOrder().empty());
    QCOMPARE(grid.footerText(u"NumerIdentyfikacyjny"_s), u"0"_s);
    AppendHerd(*summary_); // the user's filter and sort still hold
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{5, 1, 4, 0, 2}));
}

void TestGrids::silentWhileControlsAreDisabled_data()
{
    QTest::addColumn<bool>("summaryGrid");
    QTest::newRow("herd grid") << false;
    QTest::newRow("summary grid") << true;
}

void TestGrids::silentWhileControlsAreDisabled()
{
    QFETCH(bool, summaryGrid);
    Table& table = summaryGrid ? *summary_ : *herd_;
    AppendHerd(table);
    const AnyGrid grid(summaryGrid ? u"summary"_s : u"herd"_s, table);
    if (summaryGrid)
        grid.summary()->groupByField(u"STADO"_s);
    QAbstractItemModel* model = grid.view->model();
    grid.widget->resize(800, 300);
    grid.widget->show();
    ModelSignals seen(model);

    table.disableControls();
    for (int n = 0; n < 50; ++n)
        AppendNumbered(table, n);
    table.moveTo(2);
    table.remove();
    tables_->MarkAnimalReviewed(table, u"X"_s, u"Opasy"_s);
    grid.widget->repaint(); // painting while the table is ahead of the grid must be harmless
    if (summaryGrid)        // a mark set on the rows of before could land on another animal
        QVERIFY(!model->setData(model->index(0, 0, model->index(0, 0)), Qt::Checked, Qt::CheckStateRole));
    QCOMPARE(seen.perRow(), 0);
    QCOMPARE(seen.resets.count(), 0);

    table.enableControls();
    QCOMPARE(seen.perRow(), 0);
    QCOMPARE(seen.resets.count(), 1);
    QCOMPARE(summaryGrid ? grid.summary()->model()->layout().shownCount() : model->rowCount(), 55);
}

void TestGrids::collapsedGroupsSurviveAReset()
{
    AppendHerd(*summary_);
    SummaryGrid grid(*summary_);
    grid.groupByField(u"STADO"_s);
    grid.setGroupExpanded(1, false); // "002"
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{1, 2, 5, 3}));

    summary_->disableControls();
    Append(*summary_, {"000", "PL0010", "XX", QDate(2021, 6, 1), 50, "mleczny", 1});
    summary_->enableControls();
    QCOMPARE(grid.view()->model()->index(0, 0).data().toString(), u"Stado: 000 (1)"_s);
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{6, 1, 2, 5, 3}));

    Append(*summary_, {"002", "PL0011", "XX", QDate(2021, 6, 1), 50, "mleczny", 1}); // a row into it
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{6, 1, 2, 5, 3}));
    grid.setGroupExpanded(2, true);
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{6, 1, 2, 5, 0, 4, 7, 3}));

    grid.setGroupExpanded(0, false);
    grid.groupByField(u"Plec"_s); // another grouping starts open
    QCOMPARE(grid.rowsInDisplayOrder().size(), std::size_t(8));
}

void TestGrids::filterPopupAndFilterBar()
{
    AppendHerd(*summary_);
    SummaryGrid grid(*summary_);
    grid.resize(900, 400);
    grid.show();
    QVERIFY(QTest::qWaitForWindowExposed(&grid));
    auto* bar = grid.findChild<QWidget*>(u"filterBar"_s);
    QVERIFY(bar && !bar->isVisible());

    ColumnFilterPopup* popup = grid.openFilterPopup(u"STADO"_s);
    QListWidget* list = popup->list();
    QCOMPARE(list->count(), 4);
    QCOMPARE(list->item(0)->text() + list->item(3)->text(), u"(Wszystkie)003"_s);
    QCOMPARE(list->item(0)->checkState(), Qt::Checked);
    list->item(2)->setCheckState(Qt::Checked);
    QCOMPARE(list->item(0)->checkState(), Qt::Unchecked);
    popup->apply();
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{0, 4}));
    QVERIFY(bar->isVisible());
    QCOMPARE(grid.findChild<QLabel*>(u"lblFiltr"_s)->text(), u"Filtr: Stado = 002"_s);

    popup = grid.openFilterPopup(u"TypUzytkowy"_s);
    list = popup->list();
    QCOMPARE(list->item(1)->text(), u"(Puste)"_s);
    list->item(1)->setCheckState(Qt::Checked); // blank
    list->item(3)->setCheckState(Qt::Checked); // "Łączony"
    popup->apply();
    QCOMPARE(grid.filterDescription(), u"Filtr: Stado = 002 oraz Typ uzytkowy = (Puste) lub Łączony"_s);
    QVERIFY(grid.rowsInDisplayOrder().empty());

    popup = grid.openFilterPopup(u"STADO"_s);
    QCOMPARE(popup->list()->item(2)->checkState(), Qt::Checked); // the filter in force is offered
    popup->list()->item(3)->setCheckState(Qt::Checked);
    popup->list()->item(0)->setCheckState(Qt::Checked); // "(Wszystkie)" clears the column's values
    QVERIFY(popup->checkedValues().isEmpty());
    popup->apply();
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{1, 5})); // the use-type filter still holds

    QTest::mouseClick(grid.findChild<QPushButton*>(u"btnWyczyscFiltr"_s), Qt::LeftButton);
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{0, 1, 2, 3, 4, 5}));
    QVERIFY(!bar->isVisible());
    QVERIFY(grid.filterDescription().isEmpty());
}

// A click on a header sorts up, a second one down; the group choice and the grid follow each other.
void TestGrids::headerAndGroupChoiceDriveTheGrid()
{
    AppendHerd(*summary_);
    SummaryGrid grid(*summary_);
    grid.resize(1000, 400);
    grid.show();
    QVERIFY(QTest::qWaitForWindowExposed(&grid));
    QHeaderView& header = *grid.view()->header();
    const int wiek = ColumnOf(grid, u"Wiek"_s);
    const QPoint centre(header.sectionViewportPosition(wiek) + header.sectionSize(wiek) / 2, header.height() / 2);
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, centre);
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{5, 1, 4, 3, 0, 2}));
    QCOMPARE(header.sortIndicatorOrder(), Qt::AscendingOrder);
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, centre);
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{2, 0, 3, 4, 1, 5}));
    grid.sortByField(u"DataUrodzenia"_s, Qt::AscendingOrder);
    QCOMPARE(header.sortIndicatorSection(), ColumnOf(grid, u"DataUrodzenia"_s));
    grid.sortByField({}, Qt::AscendingOrder);
    QCOMPARE(header.sortIndicatorSection(), -1);

    auto* choice = grid.findChild<QComboBox*>(u"edGrupujWedlug"_s);
    QVERIFY(choice);
    QCOMPARE(choice->currentText(), u"(brak)"_s);
    choice->setCurrentIndex(choice->findText(u"Stado"_s));
    Q_EMIT choice->activated(choice->currentIndex());
    QCOMPARE(grid.view()->model()->index(0, 0).data().toString(), u"Stado: 001 (3)"_s);
    grid.groupByField(u"Plec"_s);
    QCOMPARE(choice->currentText(), u"Plec"_s);
    Q_EMIT choice->activated(0);
    QCOMPARE(Rows(grid.rowsInDisplayOrder()), (QList<int>{0, 1, 2, 3, 4, 5}));
    QCOMPARE(choice->currentText(), u"(brak)"_s);
}

void TestGrids::twentyThousandRowsResetQuickly()
{
    SummaryGrid grid(*summary_);
    grid.resize(1000, 600);
    grid.show();
    QVERIFY(QTest::qWaitForWindowExposed(&grid));
    grid.sortByField(u"NumerIdentyfikacyjny"_s, Qt::DescendingOrder);
    grid.groupByField(u"STADO"_s);
    summary_->disableControls();
    for (int n = 0; n < 20000; ++n)
        AppendNumbered(*summary_, n);

    QElapsedTimer timer;
    timer.start();
    summary_->enableControls();
    grid.repaint();
    const qint64 elapsed = timer.elapsed();
    QCOMPARE(grid.footerText(u"NumerIdentyfikacyjny"_s), u"20000"_s);
    QCOMPARE(grid.rowsInDisplayOrder().front(), 19999);
    QVERIFY2(elapsed < ResetBudgetMs, qPrintable(u"reset took %1 ms"_s.arg(elapsed)));
}

// The grids hear nothing while a long operation fills their tables; the reset at its end fits each
// column to its widest value, in the bold of a marked row on the summary grid.
void TestGrids::columnsFitTheirWidestValues()
{
    SummaryGrid summary(*summary_);
    TableGrid herd(*herd_, GridKind::HerdAnimals);
    const QString where = Text("Krowy mamki z cielętami 220 kg - 300 kg, 24 > Wiek");
    const QString use = Text("WWW MMM mięsnomleczn"); // 20 characters, as many as the field holds
    for (Table* table : {summary_, herd_}) {
        table->disableControls();
        AppendHerd(*table);
        table->moveTo(1);
        table->edit();
        table->setValue(u"GdzieRozpatrzono", where);
        table->setValue(u"TypUzytkowy", use);
        table->setValue(u"Wiek", 123456);
        if (table == summary_)
            table->setValue(u"ZAZNACZONE", true);
        table->post();
        table->enableControls();
    }
    QHeaderView* header = summary.view()->header();
    for (const QString& field : {u"GdzieRozpatrzono"_s, u"TypUzytkowy"_s, u"Wiek"_s}) {
        const QString text = AsString(summary_->at(1, summary_->requireField(field)));
        QVERIFY2(header->sectionSize(ColumnOf(summary, field)) >=
                     WholeWidth(*summary.view(), text, SummaryModel::markedFont()),
                 qPrintable(field));
        QVERIFY2(herd.view()->horizontalHeader()->sectionSize(ColumnOfField(herd.columns(), field)) >=
                     WholeWidth(*herd.view(), text, herd.view()->font()),
                 qPrintable(field));
    }
    for (int column = 0; column < header->count(); ++column) {
        const QString caption = summary.model()->headerData(column, Qt::Horizontal).toString();
        QVERIFY2(header->sectionSize(column) > header->fontMetrics().horizontalAdvance(caption), qPrintable(caption));
    }
    QVERIFY(herd.minimumSizeHint().width() < herd.view()->horizontalHeader()->length()); // the animals scroll

    // The group grid fits its longest caption and asks to be shown whole.
    const QString longest = Text("Krowy mamki z cielętami 220 kg - 300 kg");
    AppendGroup(*groups_, 1, Text("Halvarn krów mamek"), 3);
    AppendGroup(*groups_, 2, longest, 1);
    const TableGrid groups(*groups_, GridKind::Groups);
    QVERIFY(groups.view()->horizontalHeader()->sectionSize(0) >=
            WholeWidth(*groups.view(), longest, groups.view()->font()));
    QVERIFY(groups.minimumSizeHint().width() > groups.view()->horizontalHeader()->length());
}

QTEST_MAIN(TestGrids)
#include "test_grids.moc"
