#include "analysis/AgeLimits.h"
#include "framework/IniFile.h"
#include "gui/dialogs/MonthEdit.h"
#include "gui/dialogs/TfAbout.h"
#include "gui/dialogs/TfGET_CO_EXP_WYDR.h"
#include "gui/dialogs/TfGET_PARAM.h"
#include "gui/dialogs/TfGET_TUKU.h"
#include "support/Files.h"

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

std::unique_ptr<TfGET_PARAM> OpenParam(const QString& ini, ParamCalls& calls)
{
    auto dialog = std::make_unique<TfGET_PARAM>(ini, u"/dane/EXPORT/"_s);
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

// The twenty keys in file order.
QStringList Keys()
{
    QStringList keys;
    for (const AgeLimitKey& key : AgeLimitKeys())
        keys << QLatin1String(key.key);
    return keys;
}

// A "WIEK" section whose values (21, 22, ...) differ from every default.
QByteArray CustomLimits()
{
    QByteArray text = "[WIEK]\r\n";
    int value = 21;
    for (const QString& key : Keys())
        text += key.toLatin1() + '=' + QByteArray::number(value++) + "\r\n";
    return text;
}

QStringList ShownLimits(const QWidget& dialog)
{
    QStringList shown;
    for (const QString& key : Keys()) {
        const MonthEdit* edit = Limit(dialog, key);
        shown << (edit ? edit->text() : u"<missing>"_s);
    }
    return shown;
}

// Fattening cattle, calves, cow-calf welfare, fattening welfare.
const QStringList FirstStartTexts = u"3 3 4 4 10 10 3 3 5 5 3 3 5 5 3 3 4 4 10 10"_s.split(u' ');

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
    const auto* edit = qobject_cast<const QLineEdit*>(widget);
    return edit ? edit->text() : QString();
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

private:
    std::unique_ptr<QTemporaryDir> dir_;
    QString ini_;      // HALVARN.INI in a folder of its own for each test
    ParamCalls calls_; // what "Parametry" asked

private Q_SLOTS:
    void init()
    {
        dir_ = std::make_unique<QTemporaryDir>();
        ini_ = dir_->filePath(u"HALVARN.INI"_s);
        calls_ = {};
    }
    void limitEditSitsOnItsRow_data();
    void limitEditSitsOnItsRow();
    void boundsWithoutKeyAreDisabledAndEmpty_data();
    void boundsWithoutKeyAreDisabledAndEmpty();
    void displayOnlyEditIsNeitherLoadedNorSaved();
    void saveAndLoadRoundTrip();
    void thousandsGroupedOutsideEditingAndEmptyIsZero();
    void cancelDiscards();
    void restoreDefaults_data();
    void restoreDefaults();
    void unwritableSettingsGiveMessage();
    void firstStartSavesOnlyOnOk();

    void herdDialog_data();
    void herdDialog();
    void askHerdLeavesHerdOnCancel();

    void useDirection_data();
    void useDirection();

    void aboutShowsSupportAndVersion_data();
    void aboutShowsSupportAndVersion();
};

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
    row("BydloOpasoweGrp_Od_220KG_Do_300KG_Wiek_Od", "Bydlo opasowe 220 kg > waga <= 300 kg", od);
    row("BydloOpasoweGrp_Od_300KG_Do_450KG_Wiek_Do", "Bydlo opasowe 300 kg > waga <= 450 kg", Do);
    row("CieletaGrp_Od_150KG_Do_220KG_Wiek_Do", "Cieleta od 150kg do 220kg", Do);
    row("HalvKrowMamekGrp_Cieleta_Do_150KG_Wiek_Do", "Halvarn krów mamek - Cielęta do 150kg", Do);
    row("HalvKrowMamekGrp_Cieleta_Ponad_220KG_Wiek_Od", "Halvarn krów mamek - Cieleta powyżej 220kg", od);
    row("HalvOpasowGrp_Ponad_450KG_Wiek_Od", "Halvarn opasów 450 kg > waga", od);
}

void TestDialogs::limitEditSitsOnItsRow()
{
    QFETCH(QString, key);
    QFETCH(QString, caption);
    QFETCH(int, column);
    const auto dialog = OpenParam(ini_, calls_);
    const auto* grid = qobject_cast<QGridLayout*>(dialog->findChild<QGroupBox*>()->layout());
    MonthEdit* edit = Limit(*dialog, key);
    QVERIFY(grid && edit && edit->isEnabled());
    int row = -1, at = -1, rowSpan = 0, columnSpan = 0;
    grid->getItemPosition(grid->indexOf(edit), &row, &at, &rowSpan, &columnSpan);
    QCOMPARE(at, column);
    QCOMPARE(GridText(*grid, row, 0), caption);
    QCOMPARE(GridText(*grid, 0, column), column == 1 ? u"Wiek od (>)"_s : u"Wiek do (<=)"_s);
}

void TestDialogs::boundsWithoutKeyAreDisabledAndEmpty_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"BydloOpasoweGrp_Od_220KG_Do_300KG_Wiek_Do", "CieletaGrp_Do_150KG_Wiek_Od",
                             "HalvKrowMamekGrp_Opasy_Do_300KG_Wiek_Od", "HalvOpasowGrp_Ponad_450KG_Wiek_Do"})
        QTest::newRow(name) << Key(name);
}

void TestDialogs::boundsWithoutKeyAreDisabledAndEmpty()
{
    QFETCH(QString, name);
    // Even a value under the edit's own name must not be shown.
    WriteAll(ini_, CustomLimits() + name.toLatin1() + "=77\r\n");
    calls_.answer = true;
    const auto dialog = OpenParam(ini_, calls_);
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
    WriteAll(ini_, "[WIEK]\r\nHalvKrowMamekGrp_Opasy_Do_300KG_Wiek_Do=9\r\n");
    auto dialog = OpenParam(ini_, calls_);
    MonthEdit* edit = Limit(*dialog, u"HalvKrowMamekGrp_Opasy_Do_300KG_Wiek_Do"_s);
    QVERIFY(edit);
    QVERIFY(edit->isEnabled());
    QVERIFY(edit->text().isEmpty());
    QTest::keyClicks(edit, u"12"_s);
    QCOMPARE(edit->text(), u"12"_s);
    QVERIFY(dialog->save());
    const QByteArray saved = ReadAll(ini_);
    QCOMPARE(saved.count("Opasy"), 1); // the line that was there, left alone
    QVERIFY(!saved.contains("=12\r\n"));
    dialog = OpenParam(ini_, calls_);
    QVERIFY(Limit(*dialog, u"HalvKrowMamekGrp_Opasy_Do_300KG_Wiek_Do"_s)->text().isEmpty());
}

void TestDialogs::saveAndLoadRoundTrip()
{
    WriteAll(ini_, "[POMOC]\r\nEmail=a@b.pl\r\n");
    calls_.picked = u"/dane/Zażółć gęślą jaźń"_s;
    auto dialog = OpenParam(ini_, calls_);
    int value = 31;
    for (const QString& key : Keys())
        Limit(*dialog, key)->setValue(value++);
    MonthEdit* typed = Limit(*dialog, Key("CieletaGrp_Ponad_220KG_Wiek_Od"));
    typed->clear();
    QTest::keyClicks(typed, u"4x0"_s); // the letter is refused
    ClickButton(*dialog, "btnCsvFolder");
    QCOMPARE(calls_.pickerStarts, QStringList{u"/dane/EXPORT/"_s});
    ClickButton(*dialog, "btnOK");
    QCOMPARE(dialog->result(), int(QDialog::Accepted));
    QVERIFY(calls_.errors.isEmpty());

    const IniFile saved(ini_);
    value = 31;
    for (const QString& key : Keys()) {
        const int expected = key == u"CieletaGrp_Ponad_220KG_Wiek_Od" ? 40 : value;
        QCOMPARE(saved.readInteger(u"WIEK"_s, key, -1), expected);
        ++value;
    }
    QCOMPARE(saved.readString(u"POMOC"_s, u"Email"_s, {}), u"a@b.pl"_s);
    const QByteArray csvLine =
        "CSV=" + QDir::toNativeSeparators(u"/dane/"_s).toLatin1() + "Za\xBF\xF3\xB3\xE6 g\xEA\x9Cl\xB9 ja\x9F\xF1\r\n";
    QVERIFY2(ReadAll(ini_).contains("[PATHS]\r\n" + csvLine), ReadAll(ini_).constData());

    dialog = OpenParam(ini_, calls_);
    QStringList expected = NumbersFrom(31, 20);
    expected[9] = u"40"_s;
    QCOMPARE(ShownLimits(*dialog), expected);
    QCOMPARE(CsvField(*dialog)->text(), QDir::toNativeSeparators(calls_.picked));
}

void TestDialogs::thousandsGroupedOutsideEditingAndEmptyIsZero()
{
    WriteAll(ini_, "[WIEK]\r\nCieletaGrp_Do_150KG_Wiek_Do=1234567\r\nCieletaGrp_Ponad_220KG_Wiek_Od=-1500\r\n");
    const auto dialog = OpenParam(ini_, calls_);
    MonthEdit* edit = Limit(*dialog, Key("CieletaGrp_Do_150KG_Wiek_Do"));
    QCOMPARE(edit->text(), u"1\u00A0234\u00A0567"_s);
    QCOMPARE(Limit(*dialog, Key("CieletaGrp_Ponad_220KG_Wiek_Od"))->text(), u"-1\u00A0500"_s);
    Limit(*dialog, Key("HalvOpasowGrp_Ponad_450KG_Wiek_Od"))->clear(); // saved as 0
    QCOMPARE(edit->value(), 1234567);
    dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog.get()));
    edit->setFocus();
    QTRY_COMPARE(edit->text(), u"1234567"_s);
    Limit(*dialog, Key("CieletaGrp_Od_150KG_Do_220KG_Wiek_Od"))->setFocus();
    QTRY_COMPARE(edit->text(), u"1\u00A0234\u00A0567"_s);
    QVERIFY(dialog->save());
    QCOMPARE(IniFile(ini_).readInteger(u"WIEK"_s, Key("CieletaGrp_Do_150KG_Wiek_Do"), -1), 1234567);
    QCOMPARE(IniFile(ini_).readInteger(u"WIEK"_s, Key("CieletaGrp_Ponad_220KG_Wiek_Od"), 0), -1500);
    QCOMPARE(IniFile(ini_).readInteger(u"WIEK"_s, Key("HalvOpasowGrp_Ponad_450KG_Wiek_Od"), -1), 0);
    QCOMPARE(IniFile(ini_).readInteger(u"WIEK"_s, Key("HalvOpasowGrp_Do_150KG_Wiek_Do"), -1), 3);
}

void TestDialogs::cancelDiscards()
{
    const QByteArray before = CustomLimits() + "[PATHS]\r\nCSV=C:\\stary\r\n";
    WriteAll(ini_, before);
    const auto dialog = OpenParam(ini_, calls_);
    ClickButton(*dialog, "btnCsvFolder"); // the picker cancelled keeps the folder
    QCOMPARE(calls_.pickerStarts, QStringList{u"C:\\stary"_s});
    QCOMPARE(CsvField(*dialog)->text(), u"C:\\stary"_s);
    Limit(*dialog, Key("CieletaGrp_Do_150KG_Wiek_Do"))->setValue(99);
    calls_.picked = u"/nowy"_s;
    dialog->chooseCsvFolder();
    QCOMPARE(CsvField(*dialog)->text(), QDir::toNativeSeparators(u"/nowy"_s));
    ClickButton(*dialog, "btnCancel");
    QCOMPARE(dialog->result(), int(QDialog::Rejected));
    QCOMPARE(ReadAll(ini_), before);
}

void TestDialogs::restoreDefaults_data()
{
    QTest::addColumn<bool>("answer");
    QTest::newRow("yes erases the limits at once") << true;
    QTest::newRow("no changes nothing") << false;
}

void TestDialogs::restoreDefaults()
{
    QFETCH(bool, answer);
    const QByteArray before = CustomLimits() + "[PATHS]\r\nCSV=C:\\csv\r\n";
    WriteAll(ini_, before);
    calls_.answer = answer;
    const auto dialog = OpenParam(ini_, calls_);
    QCOMPARE(ShownLimits(*dialog), NumbersFrom(21, 20));
    Limit(*dialog, Key("HalvOpasowGrp_Do_150KG_Wiek_Do"))->setValue(7);
    ClickButton(*dialog, "btnRestoreDefaults");
    QCOMPARE(calls_.questions,
             QStringList{u"Pytanie|Czy przywrócić wartości domyślne? Nie będzie można cofnąć przywrócenia. "_s});
    QCOMPARE(ReadAll(ini_), answer ? QByteArray("[PATHS]\r\nCSV=C:\\csv\r\n") : before);
    QStringList kept = NumbersFrom(21, 20);
    kept[14] = u"7"_s;
    QCOMPARE(ShownLimits(*dialog), answer ? FirstStartTexts : kept);
    dialog->reject();
    QCOMPARE(IniFile(ini_).sectionExists(u"WIEK"_s), !answer);
}

void TestDialogs::unwritableSettingsGiveMessage()
{
    const QString ini = dir_->filePath(u"brak/HALVARN.INI"_s);
    const auto dialog = OpenParam(ini, calls_);
    dialog->show();
    QVERIFY(!dialog->save());
    QCOMPARE(calls_.errors.size(), 1);
    QVERIFY2(calls_.errors[0].startsWith(u"Błąd...|"_s), qPrintable(calls_.errors[0]));
    QVERIFY2(calls_.errors[0].contains(QDir::toNativeSeparators(ini)), qPrintable(calls_.errors[0]));
    ClickButton(*dialog, "btnOK");
    QCOMPARE(calls_.errors.size(), 2);
    QVERIFY(dialog->isVisible()); // stays open so that nothing typed is lost
    QVERIFY(!QFile::exists(ini));
}

// At the first start the defaults are shown and nothing is written until OK.
void TestDialogs::firstStartSavesOnlyOnOk()
{
    WhenModal<TfGET_PARAM>([this](TfGET_PARAM& dialog) {
        QCOMPARE(ShownLimits(dialog), FirstStartTexts);
        QCOMPARE(CsvField(dialog)->text(), u"/dane/EXPORT/"_s);
        QVERIFY(CsvField(dialog)->isReadOnly());
        QVERIFY(!QFile::exists(ini_));
        Limit(dialog, Key("CieletaGrp_Do_150KG_Wiek_Do"))->setValue(8);
        ClickButton(dialog, "btnCancel");
    });
    OpenParameters(ini_, u"/dane/EXPORT/"_s, nullptr);
    QVERIFY(!QFile::exists(ini_));
    WhenModal<TfGET_PARAM>([](TfGET_PARAM& dialog) {
        Limit(dialog, Key("CieletaGrp_Do_150KG_Wiek_Do"))->setValue(8);
        ClickButton(dialog, "btnOK");
    });
    OpenParameters(ini_, u"/dane/EXPORT/"_s, nullptr);
    QCOMPARE(IniFile(ini_).readInteger(u"WIEK"_s, Key("CieletaGrp_Do_150KG_Wiek_Do"), -1), 8);
    QCOMPARE(IniFile(ini_).readString(u"PATHS"_s, u"CSV"_s, {}), u"/dane/EXPORT/"_s);
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
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    auto* all = dialog.findChild<QCheckBox*>(u"edOgolem"_s);
    auto* field = dialog.findChild<QLineEdit*>(u"edStado"_s);
    QVERIFY(all && field);
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
    QTest::addColumn<bool>("confirmed");
    QTest::addColumn<QString>("code");
    QTest::newRow("Do opasu") << u"Do opasu"_s << true << u"OP"_s;
    QTest::newRow("Mięsny") << u"Mięsny"_s << true << u"MI"_s;
    QTest::newRow("Mięsny do opasu") << u"Mięsny do opasu"_s << true << u"MIOP"_s;
    QTest::newRow("Mleczny") << u"Mleczny"_s << true << u"ML"_s;
    QTest::newRow("Mleczny do opasu") << u"Mleczny do opasu"_s << true << u"MLOP"_s;
    QTest::newRow("nothing chosen") << QString() << true << QString();
    QTest::newRow("cancelled") << u"Mleczny"_s << false << QString();
}

// Both answers are emptied before the dialog opens; a change of mind leaves the last choice.
void TestDialogs::useDirection()
{
    QFETCH(QString, choice);
    QFETCH(bool, confirmed);
    QFETCH(QString, code);
    WhenModal<TfGET_TUKU>([choice, confirmed](TfGET_TUKU& dialog) {
        const auto choices = dialog.findChildren<QRadioButton*>();
        QCOMPARE(choices.size(), 5);
        for (const QRadioButton* button : choices)
            QVERIFY2(!button->isChecked(), qPrintable(button->text()));
        if (!choice.isEmpty()) {
            Choice(dialog, u"Mleczny do opasu"_s)->click();
            Choice(dialog, choice)->click();
        }
        ClickButton(dialog, confirmed ? "btnOK" : "btnCancel");
    });
    QString first = u"x"_s;
    QString chosen = u"OP"_s;
    QCOMPARE(AskUseDirection(first, chosen), int(confirmed ? QDialog::Accepted : QDialog::Rejected));
    QCOMPARE(chosen, code);
    QVERIFY(first.isEmpty());
}

void TestDialogs::aboutShowsSupportAndVersion_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QString>("support");
    QTest::newRow("configured") << QByteArray("[SMTP]\r\nSupport=serwis@przyklad.pl\r\n")
                                << u"Pomoc techniczna: serwis@przyklad.pl"_s;
    QTest::newRow("no file") << QByteArray() << u"Pomoc techniczna: pomoc@fernhill.pl"_s;
    QTest::newRow("empty value") << QByteArray("[SMTP]\r\nSupport=\r\n") << u"Pomoc techniczna: pomoc@fernhill.pl"_s;
}

void TestDialogs::aboutShowsSupportAndVersion()
{
    QFETCH(QByteArray, settings);
    QFETCH(QString, support);
    if (!settings.isEmpty())
        WriteAll(ini_, settings);
    QCoreApplication::setApplicationVersion(u"7.6.5.4"_s);
    TfAbout about(ini_);
    QStringList texts;
    for (const QLabel* label : about.findChildren<QLabel*>())
        texts << label->text();
    QVERIFY2(texts.contains(support), qPrintable(texts.join(u'\n')));
    QVERIFY2(texts.filter(u"7.6.5.4"_s).size() == 1, qPrintable(texts.join(u'\n')));
    QCOMPARE(about.findChildren<QAbstractButton*>().size(), 1);
}

QTEST_MAIN(TestDialogs)
#include "test_dialogs.moc"
