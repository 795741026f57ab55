#include "core/archive/DownloadArchive.h"
#include "gui/archive/TfArchiwum.h"
#include "support/RecordingHost.h"

#include <QPushButton>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
// Two stored downloads, written as the archive writes them, without a session.
void StoreTwo(const QString& path)
{
    DownloadArchive created(path);
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"fill"_s);
        database.setDatabaseName(path);
        QVERIFY(database.open());
        QSqlQuery query(database);
        for (const QString& values : {u"(1, '071234562', 'Zielonka', '2026-11-01', '2026-11-01', '2026-11-01', "
                                      "'2026-11-01T08:15:00', 1, 1, 1, '{}', '[]', 3, 345, 0)"_s,
                                      u"(2, '082456131', 'Brzezina', '2026-11-20', '2026-11-20', '2026-10-31', "
                                      "'2026-11-20T19:40:00', 1, 1, 1, '{}', '[]', 2, 120, 1)"_s})
            QVERIFY(query.exec(u"INSERT INTO downloads (id, producer, name, state_date, download_date, "
                               "reference_date, downloaded_at, fattening, suckler_cows, dairy_cows, age_limits, "
                               "errors, herd_count, animals, incomplete_herds) VALUES "_s +
                               values));
    }
    QSqlDatabase::removeDatabase(u"fill"_s);
}

QStringList Row(const QTableWidget& grid, int row)
{
    QStringList texts;
    for (int column = 0; column < grid.columnCount(); ++column)
        texts.append(grid.item(row, column)->text());
    return texts;
}
} // namespace

class TestArchiveDialogs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void listsNewestFirstAndDeletesAfterAQuestion();
};

void TestArchiveDialogs::listsNewestFirstAndDeletesAfterAQuestion()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"ARCHIWUM.DB"_s);
    StoreTwo(path);
    RecordingHost prompts;
    TfArchiwum dialog(path, nullptr, &prompts);
    QTableWidget& grid = *dialog.grid();
    QCOMPARE(grid.rowCount(), 2);
    QCOMPARE(Row(grid, 0), (QStringList{u"2"_s, u"082456131"_s, u"Brzezina"_s, u"20.11.2026"_s, u"31.10.2026"_s,
                                        u"20.11.2026 19:40"_s, u"120"_s, u"1"_s}));
    QCOMPARE(Row(grid, 1)[7], QString()); // no incomplete herd shows as nothing
    QCOMPARE(dialog.currentId(), std::optional<qint64>(2));

    prompts.answerYes = false;
    dialog.findChild<QPushButton*>(u"btnUsun"_s)->click();
    QCOMPARE(prompts.questions, QStringList{u"Czy usunąć z archiwum pobranie nr 2 (082456131, 20.11.2026 19:40)?"_s});
    QCOMPARE(grid.rowCount(), 2);
    prompts.answerYes = true;
    dialog.findChild<QPushButton*>(u"btnUsun"_s)->click();
    QCOMPARE(grid.rowCount(), 1);
    QCOMPARE(DownloadArchive(path).list().size(), 1u);
    QCOMPARE(dialog.currentId(), std::optional<qint64>(1));

    grid.selectRow(0);
    dialog.findChild<QPushButton*>(u"btnUsun"_s)->click();
    QCOMPARE(grid.rowCount(), 0);
    QVERIFY(!dialog.findChild<QPushButton*>(u"btnOtworz"_s)->isEnabled());
    QCOMPARE(dialog.currentId(), std::optional<qint64>());
}

QTEST_MAIN(TestArchiveDialogs)
#include "test_archive_dialogs.moc"
