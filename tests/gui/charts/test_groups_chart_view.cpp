#include "gui/charts/GroupsChartBuilder.h"
#include "gui/charts/GroupsChartView.h"
#include "reports/GroupCountsFixture.h"

#include <QBarCategoryAxis>
#include <QBarSet>
#include <QChartView>
#include <QDir>
#include <QHorizontalStackedBarSeries>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

namespace {
using Counts = std::vector<GroupCount>;

Counts TwoHerds()
{
    return {{0, GroupId::SucklerMothers, 0, 2},
            {0, GroupId::Cows, 5, 0},
            {1, GroupId::SucklerMothers, 0, 2},
            {1, GroupId::Cows, 3, 0},
            {2, GroupId::Cows, 2, 0}};
}

// A group's count in one herd's table, read apart from the chart's own code.
int HerdCount(WorkingTables& tables, int slot, int id)
{
    const Table& table = tables.mdGT(slot);
    for (int row = 0; row < table.recordCount(); ++row)
        if (AsInteger(table.at(row, table.fieldIndex(u"ID"))) == id)
            return AsInteger(table.at(row, table.fieldIndex(u"Ilosc"))) +
                   AsInteger(table.at(row, table.fieldIndex(u"IloscPom")));
    return 0;
}

QHorizontalStackedBarSeries* Bars(const GroupsChartView& view)
{
    const QList<QAbstractSeries*> series = view.chartView()->chart()->series();
    return series.size() == 1 ? qobject_cast<QHorizontalStackedBarSeries*>(series.first()) : nullptr;
}

// The answers the view gets instead of its dialogs, and what it said.
struct Answers {
    QString fileName;
    QStringList warnings;

    GroupsChartDialogs dialogs()
    {
        return {[this](QWidget*) { return fileName; },
                [this](QWidget*, const QString& text) { warnings.append(text); }};
    }
};
} // namespace

class GroupsChartViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsTheTables_data()
    {
        QTest::addColumn<Counts>("counts");
        QTest::addColumn<QList<int>>("shown");
        QTest::addColumn<Qt::Alignment>("legend");
        QTest::newRow("two herds") << TwoHerds() << QList<int>{1, 2} << Qt::Alignment(Qt::AlignBottom);
        QTest::newRow("three herds, demo-like")
            << DemoLikeCounts() << QList<int>{1, 2, 3} << Qt::Alignment(Qt::AlignBottom);
        QTest::newRow("more herds than a legend row holds: the legend beside the chart")
            << DemoLikeCounts() << QList<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10} << Qt::Alignment(Qt::AlignRight);
    }

    void showsTheTables()
    {
        QFETCH(Counts, counts);
        QFETCH(QList<int>, shown);
        WorkingTables tables;
        FillGroups(tables, counts);
        ShowHerds(tables, shown);
        GroupsChartView view(tables);
        view.resize(900, 700);
        view.show();
        view.refresh();
        QCOMPARE(view.objectName(), u"tsWykres"_s);
        QCOMPARE(view.chartView()->chart()->title(), u"Grupy technologiczne według stad"_s);
        QVERIFY(view.chartView()->chart()->legend()->isVisible());
        QTEST(view.chartView()->chart()->legend()->alignment(), "legend");
        QHorizontalStackedBarSeries* bars = Bars(view);
        QVERIFY(bars);
        const GroupsChartData& data = view.data();
        QCOMPARE(bars->count(), shown.size());
        for (int herd = 0; herd < bars->count(); ++herd) {
            const QBarSet* set = bars->barSets()[herd];
            QCOMPARE(set->label(), u"Stado "_s + HerdCode(shown[herd]));
            QCOMPARE(set->count(), int(data.categories.size()));
            for (int bar = 0; bar < set->count(); ++bar) {
                const auto category = std::size_t(CategoryOfBar(data, bar));
                QCOMPARE(set->at(bar), HerdCount(tables, shown[herd], data.categories[category].id));
            }
        }
        auto* axis = qobject_cast<QBarCategoryAxis*>(view.chartView()->chart()->axes(Qt::Vertical).value(0));
        QVERIFY(axis);
        QCOMPARE(axis->count(), int(data.categories.size()));
        // The first group of the tables is the top bar, the last one on the axis.
        QVERIFY(axis->categories().last().startsWith(data.categories.front().label + u": "_s));
        QVERIFY(view.findChild<QPushButton*>(u"btnWykresPng"_s)->isEnabled());
        QVERIFY(view.findChild<QLabel*>(u"lblBrakDanych"_s)->isHidden());
    }

    void emptyTablesShowTheLabel()
    {
        WorkingTables tables;
        FillGroups(tables, {});
        ShowHerds(tables, {1});
        GroupsChartView view(tables);
        view.show();
        view.refresh();
        const auto* label = view.findChild<QLabel*>(u"lblBrakDanych"_s);
        QVERIFY(label->isVisible());
        QCOMPARE(label->text(), u"Brak danych do wykresu"_s);
        QVERIFY(!view.chartView()->isVisible());
        QVERIFY(!view.findChild<QPushButton*>(u"btnWykresPng"_s)->isEnabled());

        FillGroups(tables, {{0, GroupId::Cows, 1, 0}, {1, GroupId::Cows, 1, 0}}, false);
        view.refresh();
        QVERIFY(!label->isVisible());
        QVERIFY(view.chartView()->isVisible());
        QVERIFY(Bars(view));
        const QChart* chart = view.chartView()->chart();
        view.refresh();
        QCOMPARE(view.chartView()->chart(), chart); // nothing changed: nothing rebuilt

        FillGroups(tables, {{0, GroupId::Cows, 0, 0}, {1, GroupId::Cows, 0, 0}}, false);
        view.refresh();
        QVERIFY(label->isVisible());
        QVERIFY(view.data().isEmpty());
    }

    void savePng_data()
    {
        QTest::addColumn<QString>("name"); // under the temporary folder
        QTest::addColumn<QString>("written");
        QTest::addColumn<bool>("saved");
        QTest::newRow("a writable folder") << u"wykres.png"_s << u"wykres.png"_s << true;
        QTest::newRow("a name without suffix gets .png") << u"wykres"_s << u"wykres.png"_s << true;
        QTest::newRow("a folder that is a file") << u"plik/wykres.png"_s << QString() << false;
        QTest::newRow("a folder that does not exist") << u"brak/wykres.png"_s << QString() << false;
    }

    void savePng()
    {
        QFETCH(QString, name);
        QFETCH(QString, written);
        QFETCH(bool, saved);
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        QFile file(dir.filePath(u"plik"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        WorkingTables tables;
        FillGroups(tables, TwoHerds());
        ShowHerds(tables, {1, 2});
        Answers answers;
        answers.fileName = dir.filePath(name);
        GroupsChartView view(tables, answers.dialogs());
        view.resize(800, 600);
        view.show();
        view.refresh();
        QTest::mouseClick(view.findChild<QPushButton*>(u"btnWykresPng"_s), Qt::LeftButton);
        QCOMPARE(answers.warnings.isEmpty(), saved);
        QStringList expected{u"plik"_s};
        if (saved) {
            const QImage image(dir.filePath(written));
            QVERIFY(!image.isNull());
            QVERIFY(image.width() > 0 && image.height() > 0);
            expected.append(written);
        } else {
            QVERIFY(answers.warnings.first().startsWith(u"Nie można zapisać pliku"_s));
        }
        expected.sort();
        QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden), expected);
    }

    void cancelledFileChoiceWritesNothing()
    {
        WorkingTables tables;
        FillGroups(tables, TwoHerds());
        ShowHerds(tables, {1, 2});
        Answers answers;
        GroupsChartView view(tables, answers.dialogs());
        view.show();
        view.refresh();
        QTest::mouseClick(view.findChild<QPushButton*>(u"btnWykresPng"_s), Qt::LeftButton);
        QVERIFY(answers.warnings.isEmpty());
    }
};

QTEST_MAIN(GroupsChartViewTest)
#include "test_groups_chart_view.moc"
