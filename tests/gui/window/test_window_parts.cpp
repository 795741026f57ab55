#include "gui/window/ApplicationSetup.h"
#include "gui/window/DateField.h"

#include <QApplication>
#include <QDateEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;

// The window's parts, set up as the program starts.
class TestWindowParts : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void messageBoxButtonsReadPolish();
    void typedDateOverSelectionIsTaken_data();
    void typedDateOverSelectionIsTaken();
    void typingIntoOnePartKeepsTheOthers();
};

void TestWindowParts::initTestCase()
{
    QVERIFY(SetUpApplication(*qApp));
}

void TestWindowParts::messageBoxButtonsReadPolish()
{
    QMessageBox box(QMessageBox::Question, u"Pytanie"_s, u"Czy kontynuować?"_s,
                    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    QCOMPARE(box.button(QMessageBox::Yes)->text().remove(u'&'), u"Tak"_s);
    QCOMPARE(box.button(QMessageBox::No)->text().remove(u'&'), u"Nie"_s);
    QCOMPARE(box.button(QMessageBox::Cancel)->text().remove(u'&'), u"Anuluj"_s);
    // A display name of its own would be appended to the box's caption.
    QCOMPARE(QGuiApplication::applicationDisplayName(), QCoreApplication::applicationName());
}

void TestWindowParts::typedDateOverSelectionIsTaken_data()
{
    QTest::addColumn<QDate>("before");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QDate>("after");
    QTest::newRow("over today") << QDate::currentDate() << u"05.03.2024"_s << QDate(2024, 3, 5);
    QTest::newRow("over an empty field") << QDate() << u"05.03.2024"_s << QDate(2024, 3, 5);
    QTest::newRow("over the last of a long month") << QDate(2024, 1, 31) << u"05.03.2024"_s << QDate(2024, 3, 5);
    QTest::newRow("day past the old month's end") << QDate(2024, 2, 10) << u"31.01.2023"_s << QDate(2023, 1, 31);
    QTest::newRow("leap day over another year") << QDate(2023, 6, 15) << u"29.02.2024"_s << QDate(2024, 2, 29);
    QTest::newRow("new year's eve") << QDate(2024, 3, 5) << u"31.12.1999"_s << QDate(1999, 12, 31);
    QTest::newRow("digits only") << QDate(2023, 6, 15) << u"05032024"_s << QDate(2024, 3, 5);
    QTest::newRow("one-digit day and month") << QDate(2023, 6, 15) << u"5.3.2024"_s << QDate(2024, 3, 5);
    QTest::newRow("one-digit day that may go on") << QDate(2023, 6, 15) << u"1.3.2024"_s << QDate(2024, 3, 1);
}

void TestWindowParts::typedDateOverSelectionIsTaken()
{
    QFETCH(QDate, before);
    QFETCH(QString, typed);
    QFETCH(QDate, after);
    DateField field;
    field.setDate(before);
    field.show();
    QVERIFY(QTest::qWaitForWindowExposed(&field));
    QDateEdit* edit = field.edit();
    edit->setFocus();
    edit->selectAll();
    QTest::keyClicks(edit, typed);
    QTest::keyClick(edit, Qt::Key_Tab);
    QCOMPARE(field.date(), after);
    QCOMPARE(field.displayText(), ShortDate(after));
}

void TestWindowParts::typingIntoOnePartKeepsTheOthers()
{
    DateField field;
    field.setDate(QDate(2023, 6, 15));
    field.show();
    QVERIFY(QTest::qWaitForWindowExposed(&field));
    QDateEdit* edit = field.edit();
    edit->setFocus();
    edit->setSelectedSection(QDateTimeEdit::MonthSection);
    QTest::keyClicks(edit, u"1.2024"_s);
    QTest::keyClick(edit, Qt::Key_Tab);
    QCOMPARE(field.date(), QDate(2024, 1, 15));
}

QTEST_MAIN(TestWindowParts)
#include "test_window_parts.moc"
