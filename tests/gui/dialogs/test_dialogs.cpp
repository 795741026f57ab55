#include "support/Files.h"

#include "gui/dialogs/MonthEdit.h"
#include "gui/dialogs/TfAbout.h"
#include "gui/dialogs/TfGET_CO_EXP_WYDR.h"
#include "gui/dialogs/TfGET_PARAM.h"
#include "gui/dialogs/TfGET_TUKU.h"
#include "framework/IniFile.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

namespace {
QString Key(const char* name)
{
    return QString::fromLatin1(name);
}

// What the injected question, folder picker and error report of "Parametry" were asked.
struct ParamCalls {
    bool answer = false;
    QString picked;
    QStringList questions;
    QStringList pickerStarts;
    QStringList errors;
};

std::unique_ptr<TfGET_PARAM> OpenParam(const QString& ini, ParamCalls& calls,
                                       const QString& defaultCsv = QStringLiteral("/dane/EXPORT/"))
{
    auto dialog = std::make_unique<TfGET_PARAM>(ini, defaultCsv);
    dialog->setQuestion([&calls](QWidget*, const QString& title, const QString& text) {
        calls.questions << title + u'|' + text;
        return calls.answer;
    });
    dialog->setFolderPicker([&calls](QWidget*, const QString& start) {
        calls.pickerStarts << start;
        return calls.picked;
    });
    dialog->setErrorReport(
        [&calls](QWidget*, const QString& title, const QString& text) { calls.errors << title + u'|' + text; });
    return dialog;
}

MonthEdit* Limit(const QWidget& dialog, const QString& name)
{
    return dialog.findChild<MonthEdit*>(name);
}

QLineEdit* CsvField(const QWidget& dialog)
{
    return dialog.findChild<QLineEdit*>(QStringLiteral("edCSV"));
}

// The twenty keys in file order with their first-start values.
const QList<std::pair<QString, int>>& Defaults()
{
    static const QList<std::pair<QString, int>> defaults{
        {Key("BydloOpasoweGrp_Do_150KG_Wiek_Do"), 3},
        {Key("BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Od"), 3},
        {Key("BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Do"), 4},
        {Key("BydloOpasoweGrp_Od_220KG_Do_300KG_Wiek_Od"), 4},
        {Key("BydloOpasoweGrp_Od_300KG_Do_450KG_Wiek_Do"), 10},
        {Key("BydloOpasoweGrp_Ponad_450KG_Wiek_Od"), 10},
        {Key("CieletaGrp_Do_150KG_Wiek_Do"), 3},
        {Key("CieletaGrp_Od_150KG_Do_220KG_Wiek_Od"), 3},
        {Key("CieletaGrp_Od_150KG_Do_220KG_Wiek_Do"), 5},
        {Key("CieletaGrp_Ponad_220KG_Wiek_Od"), 5},
        {Key("HalvKrowMamekGrp_Cieleta_Do_150KG_Wiek_Do"), 3},
        {Key("HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Od"), 3},
        {Key("HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Do"), 5},
        {Key("HalvKrowMamekGrp_Cieleta_Ponad_220KG_Wiek_Od"), 5},
        {Key("HalvOpasowGrp_Do_150KG_Wiek_Do"), 3},
        {Key("HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Od"), 3},
        {Key("HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Do"), 4},
        {Key("HalvOpasowGrp_Od_220KG_Do_300KG_Wiek_Od"), 4},
        {Key("HalvOpasowGrp_Od_300KG_Do_450KG_Wiek_Do"), 10},
        {Key("HalvOpasowGrp_Ponad_450KG_Wiek_Od"), 10},
    };
    return defaults;
}

// A "WIEK" section whose values (21, 22, ...) differ from every default.
QByteArray CustomLimits()
{
    QByteArray text = "[WIEK]\r\n";
    int value = 21;
    for (const auto& [key, defaultValue] : Defaults())
        text += key.toLatin1() + '=' + QByteArray::number(value++) + "\r\n";
    return text;
}

QStringList ShownLimits(const QWidget& dialog)
{
    QStringList shown;
    for (const auto& [key, defaultValue] : Defaults()) {
        const MonthEdit* edit = Limit(dialog, key);
        shown << (edit ? edit->text() : QStringLiteral("<missing>"));
    }
    return shown;
}

QStringList FirstStartTexts()
{
    QStringList texts;
    for (const char* text : {"3", "3", "4", "4", "10", "10", "3", "3", "5", "5", // fattening cattle, calves
                             "3", "3", "5", "5",                                 // cow-calf welfare
                             "3", "3", "4", "4", "10", "10"})                    // fattening welfare
        texts << QString::fromLatin1(text);
    return texts;
}

QStringList NumbersFrom(int first, int count)
{
    QStringList numbers;
    for (int i = 0; i < count; ++i)
        numbers << QString::number(first + i);
    return numbers;
}

QString GridText(const QGridLayout& grid, int row, int column)
{
    QLayoutItem* item = grid.itemAtPosition(row, column);
    const QWidget* widget = item ? item->widget() : nullptr;
    if (const auto* label = qobject_cast<const QLabel*>(widget))
        return label->text();
    if (const auto* edit = qobject_cast<const QLineEdit*>(widget))
        return edit->text();
    return {};
}

void ClickButton(QWidget& dialog, const char* name)
{
    auto* button = dialog.findChild<QAbstractButton*>(QLatin1StringView(name));
    QVERIFY2(button, name);
    button->click();
}

// Runs once the next modal dialog is up: finds it and hands it to the action.
template <typename Dialog> void WhenModal(std::function<void(Dialog&)> action)
{
    QTimer::singleShot(0, [action] {
        auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        action(*dialog);
    });
}

QRadioButton* Choice(const QWidget& dialog, const QString& caption)
{
    for (QRadioButton* button : dialog.findChildren<QRadioButton*>())
        if (button->text() == caption)
            return button;
    return nullptr;
}
} // namespace

class TestDialogs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void firstStartShowsDefaults();
    void limitEditSitsOnItsRow_data();
    void limitEditSitsOnItsRow();
    void boundsWithoutKeyAreDisabledAndEmpty_data();
    void boundsWithoutKeyAreDisabledAndEmpty();
    void displayOnlyEditIsNeitherLoadedNorSaved();
    void saveAndLoadRoundTrip();
    void emptiedEditIsSavedAsZero();
    void groupsThousandsOutsideEditing();
    void cancelDiscards();
    void restoreDefaultsYesErasesAtOnce();
    void restoreDefaultsNoChangesNothing();
    void folderPickerCancelKeepsPath();
    void unwritableSettingsGiveMessage();
    void openParametersSavesOnlyOnOk();

    void herdDialog_data();
    void herdDialog();
    void askHerdLeavesHerdOnCancel();

    void useDirection_data();
    void useDirection();
    void askUseDirectionEmptiesFirst();

    void aboutShowsSupportAndVersion_data();
    void aboutShowsSupportAndVersion();

};

void TestDialogs::firstStartShowsDefaults()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(QStringLiteral("HALVARN.INI"));
    ParamCalls calls;
    const auto dialog = OpenParam(ini, calls, QStringLiteral("/dane/EXPORT/"));
    QCOMPARE(dialog->objectName(), QStringLiteral("TfGET_PARAM"));
    QCOMPARE(dialog->windowTitle(), QStringLiteral("Parametry"));
    QCOMPARE(ShownLimits(*dialog), FirstStartTexts());
    QCOMPARE(CsvField(*dialog)->text(), QStringLiteral("/dane/EXPORT/"));
    QVERIFY(CsvField(*dialog)->isReadOnly());
    QVERIFY(!QFile::exists(ini));
}

void TestDialogs::limitEditSitsOnItsRow_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<int>("column");
    constexpr int od = 1;
    constexpr int Do = 2;
    const auto row = [](const char* key, const char* caption, int column) {
        QTest::newRow(key) << Key(key) << QString::fromUtf8(caption) << column;
    };
    row("BydloOpasoweGrp_Do_150KG_Wiek_Do", "Bydlo opasowe waga  <= 150 kg", Do);
    row("BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Od", "Bydlo opasowe 150 kg > waga <= 220 kg", od);
    row("BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Do", "Bydlo opasowe 150 kg > waga <= 220 kg", Do);
    row("BydloOpasoweGrp_Od_220KG_Do_300KG_Wiek_Od", "Bydlo opasowe 220 kg > waga <= 300 kg", od);
    row("BydloOpasoweGrp_Od_300KG_Do_450KG_Wiek_Do", "Bydlo opasowe 300 kg > waga <= 450 kg", Do);
    row("BydloOpasoweGrp_Ponad_450KG_Wiek_Od", "Bydlo opasowe 450 kg > waga", od);
    row("CieletaGrp_Do_150KG_Wiek_Do", "Cielęta do 150kg", Do);
    row("CieletaGrp_Od_150KG_Do_220KG_Wiek_Od", "Cieleta od 150kg do 220kg", od);
    row("CieletaGrp_Od_150KG_Do_220KG_Wiek_Do", "Cieleta od 150kg do 220kg", Do);
    row("CieletaGrp_Ponad_220KG_Wiek_Od", "Cieleta powyżej 220kg", od);
    row("HalvKrowMamekGrp_Cieleta_Do_150KG_Wiek_Do", "Halvarn krów mamek - Cielęta do 150kg", Do);
    row("HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Od", "Halvarn krów mamek - Cieleta od 150kg do 220kg", od);
    row("HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Do", "Halvarn krów mamek - Cieleta od 150kg do 220kg", Do);
    row("HalvKrowMamekGrp_Cieleta_Ponad_220KG_Wiek_Od", "Halvarn krów mamek - Cieleta powyżej 220kg", od);
    row("HalvOpasowGrp_Do_150KG_Wiek_Do", "Halvarn opasów: waga  <= 150 kg", Do);
    row("HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Od", "Halvarn opasów 150 kg > waga <= 220 kg", od);
    row("HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Do", "Halvarn opasów 150 kg > waga <= 220 kg", Do);
    row("HalvOpasowGrp_Od_220KG_Do_300KG_Wiek_Od", "Halvarn opasów 220 kg > waga <= 300 kg", od);
    row("HalvOpasowGrp_Od_300KG_Do_450KG_Wiek_Do", "Halvarn opasów 300 kg > waga <= 450 kg", Do);
    row("HalvOpasowGrp_Ponad_450KG_Wiek_Od", "Halvarn opasów 450 kg > waga", od);
}

void TestDialogs::limitEditSitsOnItsRow()
{
    QFETCH(QString, key);
    QFETCH(QString, caption);
    QFETCH(int, column);
    QTemporaryDir dir;
    ParamCalls calls;
    const auto dialog = OpenParam(dir.filePath(QStringLiteral("HALVARN.INI")), calls);
    const auto* group = dialog->findChild<QGroupBox*>();
    QVERIFY(group);
    QCOMPARE(group->title(), QStringLiteral("Przedziały wiekowe"));
    const auto* grid = qobject_cast<QGridLayout*>(group->layout());
    QVERIFY(grid);
    MonthEdit* edit = Limit(*dialog, key);
    QVERIFY(edit);
    QVERIFY(edit->isEnabled());
    QVERIFY(edit->alignment() & Qt::AlignRight);
    int row = -1;
    int at = -1;
    int rowSpan = 0;
    int columnSpan = 0;
    grid->getItemPosition(grid->indexOf(edit), &row, &at, &rowSpan, &columnSpan);
    QCOMPARE(at, column);
    QCOMPARE(GridText(*grid, row, 0), caption);
    QCOMPARE(GridText(*grid, 0, 1), QStringLiteral("Wiek od (>)"));
    QCOMPARE(GridText(*grid, 0, 2), QStringLiteral("Wiek do (<=)"));
}

void TestDialogs::boundsWithoutKeyAreDisabledAndEmpty_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name :
         {"BydloOpasoweGrp_Do_150KG_Wiek_Od", "BydloOpasoweGrp_Od_220KG_Do_300KG_Wiek_Do",
          "BydloOpasoweGrp_Od_300KG_Do_450KG_Wiek_Od", "BydloOpasoweGrp_Ponad_450KG_Wiek_Do",
          "CieletaGrp_Do_150KG_Wiek_Od", "CieletaGrp_Ponad_220KG_Wiek_Do", "HalvKrowMamekGrp_Opasy_Do_300KG_Wiek_Od",
          "HalvKrowMamekGrp_Cieleta_Do_150KG_Wiek_Od", "HalvKrowMamekGrp_Cieleta_Ponad_220KG_Wiek_Do",
          "HalvOpasowGrp_Do_150KG_Wiek_Od", "HalvOpasowGrp_Od_220KG_Do_300KG_Wiek_Do",
          "HalvOpasowGrp_Od_300KG_Do_450KG_Wiek_Od", "HalvOpasowGrp_Ponad_450KG_Wiek_Do"})
        QTest::newRow(name) << Key(name);
}

void TestDialogs::boundsWithoutKeyAreDisabledAndEmpty()
{
    QFETCH(QString, name);
    QTemporaryDir dir;
    const QString ini = dir.filePath(QStringLiteral("HALVARN.INI"));
    // Even a value under the edit's own name must not be shown.
    WriteAll(ini, CustomLimits() + name.toLatin1() + "=77\r\n");
    ParamCalls calls;
    calls.answer = true;
    const auto dialog = OpenParam(ini, calls);
    MonthEdit* edit = Limit(*dialog, name);
    QVERIFY(edit);
    QVERIFY(!edit->isEnabled());
    QVERIFY(edit->text().isEmpty());
    dialog->restoreDefaults();
    QVERIFY(edit->text().isEmpty());
    QCOMPARE(dialog->findChildren<MonthEdit*>().size(), 2 * 17);
}

void TestDialogs::displayOnlyEditIsNeitherLoadedNorSaved()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(QStringLiteral("HALVARN.INI"));
    WriteAll(ini, "[WIEK]\r\nHalvKrowMamekGrp_Opasy_Do_300KG_Wiek_Do=9\r\n");
    ParamCalls calls;
    auto dialog = OpenParam(ini, calls);
    MonthEdit* edit = Limit(*dialog, QStringLiteral("HalvKrowMamekGrp_Opasy_Do_300KG_Wiek_Do"));
    QVERIFY(edit);
    QVERIFY(edit->isEnabled());
    QVERIFY(edit->text().isEmpty());
    QTest::keyClicks(edit, QStringLiteral("12"));
    QCOMPARE(edit->text(), QStringLiteral("12"));
    QVERIFY(dialog->save());
    const QByteArray saved = ReadAll(ini);
    QCOMPARE(saved.count("Opasy"), 1); // the line that was there, left alone
    QVERIFY(!saved.contains("=12\r\n"));
    dialog = OpenParam(ini, calls);
    QVERIFY(Limit(*dialog, QStringLiteral("HalvKrowMamekGrp_Opasy_Do_300KG_Wiek_Do"))->text().isEmpty());
}

void TestDialogs::saveAndLoadRoundTrip()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(QStringLiteral("HALVARN.INI"));
    WriteAll(ini, "[POMOC]\r\nEmail=a@b.pl\r\n");
    ParamCalls calls;
    calls.picked = QStringLiteral("/dane/Zażółć gęślą jaźń");
    auto dialog = OpenParam(ini, calls);
    int value = 31;
    for (const auto& [key, defaultValue] : Defaults())
        Limit(*dialog, key)->setValue(value++);
    MonthEdit* typed = Limit(*dialog, Key("CieletaGrp_Ponad_220KG_Wiek_Od"));
    typed->clear();
    QTest::keyClicks(typed, QStringLiteral("4x0")); // the letter is refused
    ClickButton(*dialog, "btnCsvFolder");
    QCOMPARE(calls.pickerStarts, QStringList{QStringLiteral("/dane/EXPORT/")});
    ClickButton(*dialog, "btnOK");
    QCOMPARE(dialog->result(), int(QDialog::Accepted));
    QVERIFY(calls.errors.isEmpty());

    const IniFile saved(ini);
    value = 31;
    for (const auto& [key, defaultValue] : Defaults()) {
        const int expected = key == u"CieletaGrp_Ponad_220KG_Wiek_Od" ? 40 : value;
        QCOMPARE(saved.readInteger(QStringLiteral("WIEK"), key, -1), expected);
        ++value;
    }
    QCOMPARE(saved.readString(QStringLiteral("POMOC"), QStringLiteral("Email"), {}), QStringLiteral("a@b.pl"));
    const QByteArray csvLine = "CSV=" + QDir::toNativeSeparators(QStringLiteral("/dane/")).toLatin1() +
                               "Za\xBF\xF3\xB3\xE6 g\xEA\x9Cl\xB9 ja\x9F\xF1\r\n";
    QVERIFY2(ReadAll(ini).contains("[PATHS]\r\n" + csvLine), ReadAll(ini).constData());

    dialog = OpenParam(ini, calls);
    QStringList expected = NumbersFrom(31, 20);
    expected[9] = QStringLiteral("40");
    QCOMPARE(ShownLimits(*dialog), expected);
    QCOMPARE(CsvField(*dialog)->text(), QDir::toNativeSeparators(calls.picked));
}

void TestDialogs::emptiedEditIsSavedAsZero()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(QStringLiteral("HALVARN.INI"));
    ParamCalls calls;
    const auto dialog = OpenParam(ini, calls);
    Limit(*dialog, Key("HalvOpasowGrp_Ponad_450KG_Wiek_Od"))->clear();
    QVERIFY(dialog->save());
    QCOMPARE(IniFile(ini).readInteger(QStringLiteral("WIEK"), Key("HalvOpasowGrp_Ponad_450KG_Wiek_Od"), -1), 0);
    QCOMPARE(IniFile(ini).readInteger(QStringLiteral("WIEK"), Key("HalvOpasowGrp_Do_150KG_Wiek_Do"), -1), 3);
}

void TestDialogs::groupsThousandsOutsideEditing()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(QStringLiteral("HALVARN.INI"));
    WriteAll(ini, "[WIEK]\r\nCieletaGrp_Do_150KG_Wiek_Do=1234567\r\nCieletaGrp_Ponad_220KG_Wiek_Od=-1500\r\n");
    ParamCalls calls;
    const auto dialog = OpenParam(ini, calls);
    MonthEdit* edit = Limit(*dialog, Key("CieletaGrp_Do_150KG_Wiek_Do"));
    QCOMPARE(edit->text(), QStringLiteral("1\u00A0234\u00A0567"));
    QCOMPARE(Limit(*dialog, Key("CieletaGrp_Ponad_220KG_Wiek_Od"))->text(), QStringLiteral("-1\u00A0500"));
    QCOMPARE(edit->value(), 1234567);
    dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog.get()));
    edit->setFocus();
    QTRY_COMPARE(edit->text(), QStringLiteral("1234567"));
    Limit(*dialog, Key("CieletaGrp_Od_150KG_Do_220KG_Wiek_Od"))->setFocus();
    QTRY_COMPARE(edit->text(), QStringLiteral("1\u00A0234\u00A0567"));
    QVERIFY(dialog->save());
    QCOMPARE(IniFile(ini).readInteger(QStringLiteral("WIEK"), Key("CieletaGrp_Do_150KG_Wiek_Do"), -1), 1234567);
    QCOMPARE(IniFile(ini).readInteger(QStringLiteral("WIEK"), Key("CieletaGrp_Ponad_220KG_Wiek_Od"), 0), -1500);
}

void TestDialogs::cancelDiscards()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(QStringLiteral("HALVARN.INI"));
    const QByteArray before = CustomLimits() + "[PATHS]\r\nCSV=C:\\stary\r\n";
    WriteAll(ini, before);
    ParamCalls calls;
    calls.picked = QStringLiteral("/nowy");
    const auto dialog = OpenParam(ini, calls);
    Limit(*dialog, Key("CieletaGrp_Do_150KG_Wiek_Do"))->setValue(99);
    dialog->chooseCsvFolder();
    QCOMPARE(CsvField(*dialog)->text(), QDir::toNativeSeparators(QStringLiteral("/nowy")));
    ClickButton(*dialog, "btnCancel");
    QCOMPARE(dialog->result(), int(QDialog::Rejected));
    QCOMPARE(ReadAll(ini), before);
}

void TestDialogs::restoreDefaultsYesErasesAtOnce()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(QStringLiteral("HALVARN.INI"));
    WriteAll(ini, CustomLimits() + "[PATHS]\r\nCSV=C:\\csv\r\n");
    ParamCalls calls;
    calls.answer = true;
    const auto dialog = OpenParam(ini, calls);
    QCOMPARE(ShownLimits(*dialog), NumbersFrom(21, 20));
    ClickButton(*dialog, "btnRestoreDefaults");
    QCOMPARE(calls.questions, QStringList{QStringLiteral(
                                  "Pytanie|Czy przywrócić wartości domyślne? Nie będzie można cofnąć przywrócenia. ")});
    QCOMPARE(ReadAll(ini), QByteArray("[PATHS]\r\nCSV=C:\\csv\r\n"));
    QCOMPARE(ShownLimits(*dialog), FirstStartTexts());
    dialog->reject();
    QVERIFY(!IniFile(ini).sectionExists(QStringLiteral("WIEK")));
}

void TestDialogs::restoreDefaultsNoChangesNothing()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(QStringLiteral("HALVARN.INI"));
    const QByteArray before = CustomLimits();
    WriteAll(ini, before);
    ParamCalls calls;
    calls.answer = false;
    const auto dialog = OpenParam(ini, calls);
    Limit(*dialog, Key("HalvOpasowGrp_Do_150KG_Wiek_Do"))->setValue(7);
    ClickButton(*dialog, "btnRestoreDefaults");
    QCOMPARE(calls.questions.size(), 1);
    QCOMPARE(ReadAll(ini), before);
    QStringList expected = NumbersFrom(21, 20);
    expected[14] = QStringLiteral("7");
    QCOMPARE(ShownLimits(*dialog), expected);
}

void TestDialogs::folderPickerCancelKeepsPath()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(QStringLiteral("HALVARN.INI"));
    WriteAll(ini, "[PATHS]\r\nCSV=/dane/Eksport\r\n");
    ParamCalls calls;
    const auto dialog = OpenParam(ini, calls);
    ClickButton(*dialog, "btnCsvFolder");
    QCOMPARE(calls.pickerStarts, QStringList{QStringLiteral("/dane/Eksport")});
    QCOMPARE(CsvField(*dialog)->text(), QStringLiteral("/dane/Eksport"));
}

void TestDialogs::unwritableSettingsGiveMessage()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(QStringLiteral("brak/HALVARN.INI"));
    ParamCalls calls;
    const auto dialog = OpenParam(ini, calls);
    dialog->show();
    QVERIFY(!dialog->save());
    QCOMPARE(calls.errors.size(), 1);
    QVERIFY2(calls.errors[0].startsWith(QStringLiteral("Błąd...|")), qPrintable(calls.errors[0]));
    QVERIFY2(calls.errors[0].contains(QDir::toNativeSeparators(ini)), qPrintable(calls.errors[0]));
    ClickButton(*dialog, "btnOK");
    QCOMPARE(calls.errors.size(), 2);
    QVERIFY(dialog->isVisible()); // stays open so that nothing typed is lost
    QVERIFY(!QFile::exists(ini));
}

void TestDialogs::openParametersSavesOnlyOnOk()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(QStringLiteral("HALVARN.INI"));
    WhenModal<TfGET_PARAM>([](TfGET_PARAM& dialog) {
        Limit(dialog, Key("CieletaGrp_Do_150KG_Wiek_Do"))->setValue(8);
        ClickButton(dialog, "btnCancel");
    });
    OpenParameters(ini, QStringLiteral("/dane/EXPORT/"), nullptr);
    QVERIFY(!QFile::exists(ini));
    WhenModal<TfGET_PARAM>([](TfGET_PARAM& dialog) {
        Limit(dialog, Key("CieletaGrp_Do_150KG_Wiek_Do"))->setValue(8);
        ClickButton(dialog, "btnOK");
    });
    OpenParameters(ini, QStringLiteral("/dane/EXPORT/"), nullptr);
    QCOMPARE(IniFile(ini).readInteger(QStringLiteral("WIEK"), Key("CieletaGrp_Do_150KG_Wiek_Do"), -1), 8);
    QCOMPARE(IniFile(ini).readString(QStringLiteral("PATHS"), QStringLiteral("CSV"), {}),
             QStringLiteral("/dane/EXPORT/"));
}

void TestDialogs::herdDialog_data()
{
    QTest::addColumn<bool>("uncheck");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("checkAgain");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<QString>("herd");
    QTest::newRow("confirmed at once") << false << QString() << false << true << QStringLiteral("ALL");
    QTest::newRow("herd typed") << true << QStringLiteral("003") << false << true << QStringLiteral("003");
    QTest::newRow("summary only") << true << QStringLiteral("000") << false << true << QStringLiteral("000");
    QTest::newRow("field empty") << true << QString() << false << false << QString();
    QTest::newRow("only blanks") << true << QStringLiteral("   ") << false << false << QString();
    QTest::newRow("checked again") << true << QString() << true << true << QStringLiteral("ALL");
    QTest::newRow("typed, checked again") << true << QStringLiteral("005") << true << true << QStringLiteral("ALL");
}

void TestDialogs::herdDialog()
{
    QFETCH(bool, uncheck);
    QFETCH(QString, typed);
    QFETCH(bool, checkAgain);
    QFETCH(bool, accepted);
    QFETCH(QString, herd);
    TfGET_CO_EXP_WYDR dialog;
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Zakres dat"));
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    auto* all = dialog.findChild<QCheckBox*>(QStringLiteral("edOgolem"));
    auto* field = dialog.findChild<QLineEdit*>(QStringLiteral("edStado"));
    QVERIFY(all && field);
    QCOMPARE(all->text(), QStringLiteral("Ogółem wraz z poszczególnymi stadami"));
    QVERIFY(all->isChecked());
    QVERIFY(!field->isEnabled());
    if (uncheck) {
        QTest::mouseClick(all, Qt::LeftButton);
        QVERIFY(!all->isChecked());
        QVERIFY(field->isEnabled());
        QTest::keyClicks(field, typed);
    }
    if (checkAgain) {
        all->setChecked(true);
        QVERIFY(!field->isEnabled());
    }
    ClickButton(dialog, "btnOK");
    QCOMPARE(dialog.result() == QDialog::Accepted, accepted);
    QCOMPARE(dialog.isVisible(), !accepted);
    if (accepted)
        QCOMPARE(dialog.herd(), herd);
    else
        QVERIFY(dialog.findChild<QLabel*>(QStringLiteral("lblBrakStada"))->isVisible());
}

void TestDialogs::askHerdLeavesHerdOnCancel()
{
    QString herd = QStringLiteral("007");
    WhenModal<TfGET_CO_EXP_WYDR>([](TfGET_CO_EXP_WYDR& dialog) { ClickButton(dialog, "btnCancel"); });
    QCOMPARE(AskHerd(herd), int(QDialog::Rejected));
    QCOMPARE(herd, QStringLiteral("007"));
    WhenModal<TfGET_CO_EXP_WYDR>([](TfGET_CO_EXP_WYDR& dialog) { ClickButton(dialog, "btnOK"); });
    QCOMPARE(AskHerd(herd), int(QDialog::Accepted));
    QCOMPARE(herd, QStringLiteral("ALL"));
}

void TestDialogs::useDirection_data()
{
    QTest::addColumn<QString>("choice");
    QTest::addColumn<QString>("code");
    QTest::newRow("Do opasu") << QStringLiteral("Do opasu") << QStringLiteral("OP");
    QTest::newRow("Mięsny") << QStringLiteral("Mięsny") << QStringLiteral("MI");
    QTest::newRow("Mięsny do opasu") << QStringLiteral("Mięsny do opasu") << QStringLiteral("MIOP");
    QTest::newRow("Mleczny") << QStringLiteral("Mleczny") << QStringLiteral("ML");
    QTest::newRow("Mleczny do opasu") << QStringLiteral("Mleczny do opasu") << QStringLiteral("MLOP");
    QTest::newRow("nothing chosen") << QString() << QString();
}

void TestDialogs::useDirection()
{
    QFETCH(QString, choice);
    QFETCH(QString, code);
    TfGET_TUKU dialog;
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Wybór"));
    QCOMPARE(dialog.findChild<QGroupBox*>()->title(), QStringLiteral("Kierunki użytkowania"));
    const auto choices = dialog.findChildren<QRadioButton*>();
    QCOMPARE(choices.size(), 5);
    for (const QRadioButton* button : choices)
        QVERIFY2(!button->isChecked(), qPrintable(button->text()));
    if (!choice.isEmpty()) {
        QRadioButton* button = Choice(dialog, choice);
        QVERIFY(button);
        Choice(dialog, QStringLiteral("Mleczny do opasu"))->click(); // a change of mind first
        button->click();
    }
    ClickButton(dialog, "btnOK");
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.code(), code);
}

void TestDialogs::askUseDirectionEmptiesFirst()
{
    QString first = QStringLiteral("x");
    QString code = QStringLiteral("OP");
    WhenModal<TfGET_TUKU>([](TfGET_TUKU& dialog) {
        Choice(dialog, QStringLiteral("Mięsny"))->click();
        ClickButton(dialog, "btnOK");
    });
    QCOMPARE(AskUseDirection(first, code), int(QDialog::Accepted));
    QCOMPARE(code, QStringLiteral("MI"));
    QVERIFY(first.isEmpty());

    first = QStringLiteral("x");
    WhenModal<TfGET_TUKU>([](TfGET_TUKU& dialog) {
        Choice(dialog, QStringLiteral("Mleczny"))->click();
        ClickButton(dialog, "btnCancel");
    });
    QCOMPARE(AskUseDirection(first, code), int(QDialog::Rejected));
    QVERIFY(code.isEmpty());
    QVERIFY(first.isEmpty());
}

void TestDialogs::aboutShowsSupportAndVersion_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QString>("support");
    QTest::newRow("configured") << QByteArray("[POMOC]\r\nEmail=serwis@przyklad.pl\r\n")
                                << QStringLiteral("Pomoc techniczna: serwis@przyklad.pl");
    QTest::newRow("no file") << QByteArray() << QStringLiteral("Pomoc techniczna: pomoc@fernhill.pl");
    QTest::newRow("empty value") << QByteArray("[POMOC]\r\nEmail=\r\n")
                                 << QStringLiteral("Pomoc techniczna: pomoc@fernhill.pl");
}

void TestDialogs::aboutShowsSupportAndVersion()
{
    QFETCH(QByteArray, settings);
    QFETCH(QString, support);
    QTemporaryDir dir;
    const QString ini = dir.filePath(QStringLiteral("HALVARN.INI"));
    if (!settings.isEmpty())
        WriteAll(ini, settings);
    QCoreApplication::setApplicationVersion(QStringLiteral("7.6.5.4"));
    TfAbout about(ini);
    QCOMPARE(about.windowTitle(), QStringLiteral("O programie"));
    QStringList texts;
    for (const QLabel* label : about.findChildren<QLabel*>())
        texts << label->text();
    QVERIFY2(texts.contains(support), qPrintable(texts.join(u'\n')));
    QVERIFY2(texts.filter(QStringLiteral("7.6.5.4")).size() == 1, qPrintable(texts.join(u'\n')));
    QCOMPARE(about.findChildren<QAbstractButton*>().size(), 1);
}

QTEST_MAIN(TestDialogs)
#include "test_dialogs.moc"
