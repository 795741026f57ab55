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

using namespace Qt::StringLiterals;

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
                                       const QString& defaultCsv = u"/dane/EXPORT/"_s)
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
    return dialog.findChild<QLineEdit*>(u"edCSV"_s);
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
        shown << (edit ? edit->text() : u"<missing>"_s);
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
    const QString ini = dir.filePath(u"HALVARN.INI"_s);
    ParamCalls calls;
    const auto dialog = OpenParam(ini, calls, u"/dane/EXPORT/"_s);
    QCOMPARE(dialog->objectName(), u"TfGET_PARAM"_s);
    QCOMPARE(dialog->windowTitle(), u"Parametry"_s);
    QCOMPARE(ShownLimits(*dialog), FirstStartTexts());
    QCOMPARE(CsvField(*dialog)->text(), u"/dane/EXPORT/"_s);
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
    const auto dialog = OpenParam(dir.filePath(u"HALVARN.INI"_s), calls);
    const auto* group = dialog->findChild<QGroupBox*>();
    QVERIFY(group);
    QCOMPARE(group->title(), u"Przedziały wiekowe"_s);
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
    QCOMPARE(GridText(*grid, 0, 1), u"Wiek od (>)"_s);
    QCOMPARE(GridText(*grid, 0, 2), u"Wiek do (<=)"_s);
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
    const QString ini = dir.filePath(u"HALVARN.INI"_s);
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
    const QString ini = dir.filePath(u"HALVARN.INI"_s);
    WriteAll(ini, "[WIEK]\r\nHalvKrowMamekGrp_Opasy_Do_300KG_Wiek_Do=9\r\n");
    ParamCalls calls;
    auto dialog = OpenParam(ini, calls);
    MonthEdit* edit = Limit(*dialog, u"HalvKrowMamekGrp_Opasy_Do_300KG_Wiek_Do"_s);
    QVERIFY(edit);
    QVERIFY(edit->isEnabled());
    QVERIFY(edit->text().isEmpty());
    QTest::keyClicks(edit, u"12"_s);
    QCOMPARE(edit->text(), u"12"_s);
    QVERIFY(dialog->save());
    const QByteArray saved = ReadAll(ini);
    QCOMPARE(saved.count("Opasy"), 1); // the line that was there, left alone
    QVERIFY(!saved.contains("=12\r\n"));
    dialog = OpenParam(ini, calls);
    QVERIFY(Limit(*dialog, u"HalvKrowMamekGrp_Opasy_Do_300KG_Wiek_Do"_s)->text().isEmpty());
}

void TestDialogs::saveAndLoadRoundTrip()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(u"HALVARN.INI"_s);
    WriteAll(ini, "[POMOC]\r\nEmail=a@b.pl\r\n");
    ParamCalls calls;
    calls.picked = u"/dane/Zażółć gęślą jaźń"_s;
    auto dialog = OpenParam(ini, calls);
    int value = 31;
    for (const auto& [key, defaultValue] : Defaults())
        Limit(*dialog, key)->setValue(value++);
    MonthEdit* typed = Limit(*dialog, Key("CieletaGrp_Ponad_220KG_Wiek_Od"));
    typed->clear();
    QTest::keyClicks(typed, u"4x0"_s); // the letter is refused
    ClickButton(*dialog, "btnCsvFolder");
    QCOMPARE(calls.pickerStarts, QStringList{u"/dane/EXPORT/"_s});
    ClickButton(*dialog, "btnOK");
    QCOMPARE(dialog->result(), int(QDialog::Accepted));
    QVERIFY(calls.errors.isEmpty());

    const IniFile saved(ini);
    value = 31;
    for (const auto& [key, defaultValue] : Defaults()) {
        const int expected = key == u"CieletaGrp_Ponad_220KG_Wiek_Od" ? 40 : value;
        QCOMPARE(saved.readInteger(u"WIEK"_s, key, -1), expected);
        ++value;
    }
    QCOMPARE(saved.readString(u"POMOC"_s, u"Email"_s, {}), u"a@b.pl"_s);
    const QByteArray csvLine = "CSV=" + QDir::toNativeSeparators(u"/dane/"_s).toLatin1() +
                               "Za\xBF\xF3\xB3\xE6 g\xEA\x9Cl\xB9 ja\x9F\xF1\r\n";
    QVERIFY2(ReadAll(ini).contains("[PATHS]\r\n" + csvLine), ReadAll(ini).constData());

    dialog = OpenParam(ini, calls);
    QStringList expected = NumbersFrom(31, 20);
    expected[9] = u"40"_s;
    QCOMPARE(ShownLimits(*dialog), expected);
    QCOMPARE(CsvField(*dialog)->text(), QDir::toNativeSeparators(calls.picked));
}

void TestDialogs::emptiedEditIsSavedAsZero()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(u"HALVARN.INI"_s);
    ParamCalls calls;
    const auto dialog = OpenParam(ini, calls);
    Limit(*dialog, Key("HalvOpasowGrp_Ponad_450KG_Wiek_Od"))->clear();
    QVERIFY(dialog->save());
    QCOMPARE(IniFile(ini).readInteger(u"WIEK"_s, Key("HalvOpasowGrp_Ponad_450KG_Wiek_Od"), -1), 0);
    QCOMPARE(IniFile(ini).readInteger(u"WIEK"_s, Key("HalvOpasowGrp_Do_150KG_Wiek_Do"), -1), 3);
}

void TestDialogs::groupsThousandsOutsideEditing()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(u"HALVARN.INI"_s);
    WriteAll(ini, "[WIEK]\r\nCieletaGrp_Do_150KG_Wiek_Do=1234567\r\nCieletaGrp_Ponad_220KG_Wiek_Od=-1500\r\n");
    ParamCalls calls;
    const auto dialog = OpenParam(ini, calls);
    MonthEdit* edit = Limit(*dialog, Key("CieletaGrp_Do_150KG_Wiek_Do"));
    QCOMPARE(edit->text(), u"1\u00A0234\u00A0567"_s);
    QCOMPARE(Limit(*dialog, Key("CieletaGrp_Ponad_220KG_Wiek_Od"))->text(), u"-1\u00A0500"_s);
    QCOMPARE(edit->value(), 1234567);
    dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog.get()));
    edit->setFocus();
    QTRY_COMPARE(edit->text(), u"1234567"_s);
    Limit(*dialog, Key("CieletaGrp_Od_150KG_Do_220KG_Wiek_Od"))->setFocus();
    QTRY_COMPARE(edit->text(), u"1\u00A0234\u00A0567"_s);
    QVERIFY(dialog->save());
    QCOMPARE(IniFile(ini).readInteger(u"WIEK"_s, Key("CieletaGrp_Do_150KG_Wiek_Do"), -1), 1234567);
    QCOMPARE(IniFile(ini).readInteger(u"WIEK"_s, Key("CieletaGrp_Ponad_220KG_Wiek_Od"), 0), -1500);
}

void TestDialogs::cancelDiscards()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(u"HALVARN.INI"_s);
    const QByteArray before = CustomLimits() + "[PATHS]\r\nCSV=C:\\stary\r\n";
    WriteAll(ini, before);
    ParamCalls calls;
    calls.picked = u"/nowy"_s;
    const auto dialog = OpenParam(ini, calls);
    Limit(*dialog, Key("CieletaGrp_Do_150KG_Wiek_Do"))->setValue(99);
    dialog->chooseCsvFolder();
    QCOMPARE(CsvField(*dialog)->text(), QDir::toNativeSeparators(u"/nowy"_s));
    ClickButton(*dialog, "btnCancel");
    QCOMPARE(dialog->result(), int(QDialog::Rejected));
    QCOMPARE(ReadAll(ini), before);
}

void TestDialogs::restoreDefaultsYesErasesAtOnce()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(u"HALVARN.INI"_s);
    WriteAll(ini, CustomLimits() + "[PATHS]\r\nCSV=C:\\csv\r\n");
    ParamCalls calls;
    calls.answer = true;
    const auto dialog = OpenParam(ini, calls);
    QCOMPARE(ShownLimits(*dialog), NumbersFrom(21, 20));
    ClickButton(*dialog, "btnRestoreDefaults");
    QCOMPARE(calls.questions, QStringList{u"Pytanie|Czy przywrócić wartości domyślne? Nie będzie można cofnąć przywrócenia. "_s});
    QCOMPARE(ReadAll(ini), QByteArray("[PATHS]\r\nCSV=C:\\csv\r\n"));
    QCOMPARE(ShownLimits(*dialog), FirstStartTexts());
    dialog->reject();
    QVERIFY(!IniFile(ini).sectionExists(u"WIEK"_s));
}

void TestDialogs::restoreDefaultsNoChangesNothing()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(u"HALVARN.INI"_s);
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
    expected[14] = u"7"_s;
    QCOMPARE(ShownLimits(*dialog), expected);
}

void TestDialogs::folderPickerCancelKeepsPath()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(u"HALVARN.INI"_s);
    WriteAll(ini, "[PATHS]\r\nCSV=/dane/Eksport\r\n");
    ParamCalls calls;
    const auto dialog = OpenParam(ini, calls);
    ClickButton(*dialog, "btnCsvFolder");
    QCOMPARE(calls.pickerStarts, QStringList{u"/dane/Eksport"_s});
    QCOMPARE(CsvField(*dialog)->text(), u"/dane/Eksport"_s);
}

void TestDialogs::unwritableSettingsGiveMessage()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(u"brak/HALVARN.INI"_s);
    ParamCalls calls;
    const auto dialog = OpenParam(ini, calls);
    dialog->show();
    QVERIFY(!dialog->save());
    QCOMPARE(calls.errors.size(), 1);
    QVERIFY2(calls.errors[0].startsWith(u"Błąd...|"_s), qPrintable(calls.errors[0]));
    QVERIFY2(calls.errors[0].contains(QDir::toNativeSeparators(ini)), qPrintable(calls.errors[0]));
    ClickButton(*dialog, "btnOK");
    QCOMPARE(calls.errors.size(), 2);
    QVERIFY(dialog->isVisible()); // stays open so that nothing typed is lost
    QVERIFY(!QFile::exists(ini));
}

void TestDialogs::openParametersSavesOnlyOnOk()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(u"HALVARN.INI"_s);
    WhenModal<TfGET_PARAM>([](TfGET_PARAM& dialog) {
        Limit(dialog, Key("CieletaGrp_Do_150KG_Wiek_Do"))->setValue(8);
        ClickButton(dialog, "btnCancel");
    });
    OpenParameters(ini, u"/dane/EXPORT/"_s, nullptr);
    QVERIFY(!QFile::exists(ini));
    WhenModal<TfGET_PARAM>([](TfGET_PARAM& dialog) {
        Limit(dialog, Key("CieletaGrp_Do_150KG_Wiek_Do"))->setValue(8);
        ClickButton(dialog, "btnOK");
    });
    OpenParameters(ini, u"/dane/EXPORT/"_s, nullptr);
    QCOMPARE(IniFile(ini).readInteger(u"WIEK"_s, Key("CieletaGrp_Do_150KG_Wiek_Do"), -1), 8);
    QCOMPARE(IniFile(ini).readString(u"PATHS"_s, u"CSV"_s, {}),
             u"/dane/EXPORT/"_s);
}

void TestDialogs::herdDialog_data()
{
    QTest::addColumn<bool>("uncheck");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("checkAgain");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<QString>("herd");
    QTest::newRow("confirmed at once") << false << QString() << false << true << u"ALL"_s;
    QTest::newRow("herd typed") << true << u"003"_s << false << true << u"003"_s;
    QTest::newRow("summary only") << true << u"000"_s << false << true << u"000"_s;
    QTest::newRow("field empty") << true << QString() << false << false << QString();
    QTest::newRow("only blanks") << true << u"   "_s << false << false << QString();
    QTest::newRow("checked again") << true << QString() << true << true << u"ALL"_s;
    QTest::newRow("typed, checked again") << true << u"005"_s << true << true << u"ALL"_s;
}

void TestDialogs::herdDialog()
{
    QFETCH(bool, uncheck);
    QFETCH(QString, typed);
    QFETCH(bool, checkAgain);
    QFETCH(bool, accepted);
    QFETCH(QString, herd);
    TfGET_CO_EXP_WYDR dialog;
    QCOMPARE(dialog.windowTitle(), u"Zakres dat"_s);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    auto* all = dialog.findChild<QCheckBox*>(u"edOgolem"_s);
    auto* field = dialog.findChild<QLineEdit*>(u"edStado"_s);
    QVERIFY(all && field);
    QCOMPARE(all->text(), u"Ogółem wraz z poszczególnymi stadami"_s);
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
        QVERIFY(dialog.findChild<QLabel*>(u"lblBrakStada"_s)->isVisible());
}

void TestDialogs::askHerdLeavesHerdOnCancel()
{
    QString herd = u"007"_s;
    WhenModal<TfGET_CO_EXP_WYDR>([](TfGET_CO_EXP_WYDR& dialog) { ClickButton(dialog, "btnCancel"); });
    QCOMPARE(AskHerd(herd), int(QDialog::Rejected));
    QCOMPARE(herd, u"007"_s);
    WhenModal<TfGET_CO_EXP_WYDR>([](TfGET_CO_EXP_WYDR& dialog) { ClickButton(dialog, "btnOK"); });
    QCOMPARE(AskHerd(herd), int(QDialog::Accepted));
    QCOMPARE(herd, u"ALL"_s);
}

void TestDialogs::useDirection_data()
{
    QTest::addColumn<QString>("choice");
    QTest::addColumn<QString>("code");
    QTest::newRow("Do opasu") << u"Do opasu"_s << u"OP"_s;
    QTest::newRow("Mięsny") << u"Mięsny"_s << u"MI"_s;
    QTest::newRow("Mięsny do opasu") << u"Mięsny do opasu"_s << u"MIOP"_s;
    QTest::newRow("Mleczny") << u"Mleczny"_s << u"ML"_s;
    QTest::newRow("Mleczny do opasu") << u"Mleczny do opasu"_s << u"MLOP"_s;
    QTest::newRow("nothing chosen") << QString() << QString();
}

void TestDialogs::useDirection()
{
    QFETCH(QString, choice);
    QFETCH(QString, code);
    TfGET_TUKU dialog;
    QCOMPARE(dialog.windowTitle(), u"Wybór"_s);
    QCOMPARE(dialog.findChild<QGroupBox*>()->title(), u"Kierunki użytkowania"_s);
    const auto choices = dialog.findChildren<QRadioButton*>();
    QCOMPARE(choices.size(), 5);
    for (const QRadioButton* button : choices)
        QVERIFY2(!button->isChecked(), qPrintable(button->text()));
    if (!choice.isEmpty()) {
        QRadioButton* button = Choice(dialog, choice);
        QVERIFY(button);
        Choice(dialog, u"Mleczny do opasu"_s)->click(); // a change of mind first
        button->click();
    }
    ClickButton(dialog, "btnOK");
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.code(), code);
}

void TestDialogs::askUseDirectionEmptiesFirst()
{
    QString first = u"x"_s;
    QString code = u"OP"_s;
    WhenModal<TfGET_TUKU>([](TfGET_TUKU& dialog) {
        Choice(dialog, u"Mięsny"_s)->click();
        ClickButton(dialog, "btnOK");
    });
    QCOMPARE(AskUseDirection(first, code), int(QDialog::Accepted));
    QCOMPARE(code, u"MI"_s);
    QVERIFY(first.isEmpty());

    first = u"x"_s;
    WhenModal<TfGET_TUKU>([](TfGET_TUKU& dialog) {
        Choice(dialog, u"Mleczny"_s)->click();
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
                                << u"Pomoc techniczna: serwis@przyklad.pl"_s;
    QTest::newRow("no file") << QByteArray() << u"Pomoc techniczna: pomoc@fernhill.pl"_s;
    QTest::newRow("empty value") << QByteArray("[POMOC]\r\nEmail=\r\n")
                                 << u"Pomoc techniczna: pomoc@fernhill.pl"_s;
}

void TestDialogs::aboutShowsSupportAndVersion()
{
    QFETCH(QByteArray, settings);
    QFETCH(QString, support);
    QTemporaryDir dir;
    const QString ini = dir.filePath(u"HALVARN.INI"_s);
    if (!settings.isEmpty())
        WriteAll(ini, settings);
    QCoreApplication::setApplicationVersion(u"7.6.5.4"_s);
    TfAbout about(ini);
    QCOMPARE(about.windowTitle(), u"O programie"_s);
    QStringList texts;
    for (const QLabel* label : about.findChildren<QLabel*>())
        texts << label->text();
    QVERIFY2(texts.contains(support), qPrintable(texts.join(u'\n')));
    QVERIFY2(texts.filter(u"7.6.5.4"_s).size() == 1, qPrintable(texts.join(u'\n')));
    QCOMPARE(about.findChildren<QAbstractButton*>().size(), 1);
}

QTEST_MAIN(TestDialogs)
#include "test_dialogs.moc"
