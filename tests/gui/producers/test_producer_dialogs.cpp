#include "core/producers/ProducerList.h"
#include "gui/producers/TfGET_KNTRH_DET.h"
#include "gui/producers/TfGET_KNTRH_LIST.h"
#include "support/RecordingHost.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFile>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace {
// Names, logins and passwords with the letters Windows-1250 must carry.
const ProducerEntry Nowak{
    u"Gospodarstwo Nowak"_s, u"nowak"_s, u"tajne-1"_s, u"123456789"_s, {3, 10, 11, 12, 13, 14, 25}};
const ProducerEntry Zolc{u"Zakład Żółć"_s, u"zolc"_s, u"hasło ąę"_s, u"987654321"_s, {0, 1, 2, 3, 4, 5, 6}};
const ProducerEntry Kowalski{u"Kowalski Jan"_s, u"kowal"_s, QString(), u"111"_s, {}};

// The eleven values in the detail window's order, for readable comparisons.
QStringList Values(const ProducerEntry& entry)
{
    QStringList values{entry.name, entry.login, entry.password, entry.producerNumber};
    for (const int limit : entry.limits)
        values << QString::number(limit);
    return values;
}

QLineEdit* Field(const QWidget& dialog, const QString& name)
{
    return dialog.findChild<QLineEdit*>(name);
}

// Like keyClicks, also for letters beyond Latin-1.
void Type(QWidget* widget, const QString& text)
{
    for (const QChar letter : text)
        QTest::sendKeyEvent(QTest::Click, widget, Qt::Key_unknown, QString(letter), Qt::NoModifier);
}

QAbstractButton* Button(const QWidget& dialog, const char* name)
{
    return dialog.findChild<QAbstractButton*>(QLatin1StringView(name));
}

QString CaptionOf(const QWidget& dialog, const QWidget* field)
{
    for (const QLabel* label : dialog.findChildren<QLabel*>())
        if (label->buddy() == field)
            return label->text();
    return u"<no label>"_s;
}

QString GroupOf(const QWidget* field)
{
    for (const QWidget* up = field->parentWidget(); up; up = up->parentWidget())
        if (const auto* group = qobject_cast<const QGroupBox*>(up))
            return group->title();
    return {};
}

QTableView* Grid(const QWidget& dialog)
{
    return dialog.findChild<QTableView*>(u"cxGrid"_s);
}

QStringList Captions(const QTableView& grid)
{
    QStringList captions;
    for (int column = 0; column < grid.model()->columnCount(); ++column)
        captions << grid.model()->headerData(column, Qt::Horizontal).toString();
    return captions;
}

QStringList RowTexts(const QTableView& grid, int row)
{
    QStringList texts;
    for (int column = 0; column < grid.model()->columnCount(); ++column)
        texts << grid.model()->index(row, column).data().toString();
    return texts;
}

// What the grid should show for an entry: ID, texts, the password masked, then
// the limits with the cows first and last as in the file.
QStringList Shown(qint32 id, const ProducerEntry& entry)
{
    QStringList texts{QString::number(id), entry.name, entry.login, entry.password.isEmpty() ? QString() : u"******"_s,
                      entry.producerNumber};
    for (const int limit : entry.limits)
        texts << QString::number(limit);
    return texts;
}

// What the details editor of the list was given and answers.
struct EditorCalls {
    std::vector<ProducerEntry> starts;
    std::optional<ProducerEntry> answer;
};

// Runs once the next modal dialog is up: finds it and hands it to the action.
template <typename Dialog> void WhenModal(std::function<void(Dialog&)> action)
{
    QTimer::singleShot(0, [action] {
        auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        action(*dialog);
    });
}
} // namespace

class TestProducerDialogs : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> dir_;
    std::unique_ptr<DataFolder> folder_;
    RecordingHost prompts_;
    EditorCalls editor_;
    std::vector<qint32> ids_; // of Nowak, Zolc and Kowalski once seeded

    // The three entries written through a list of their own.
    void seed()
    {
        ProducerList list(*folder_, prompts_);
        list.open();
        for (const ProducerEntry& entry : {Nowak, Zolc, Kowalski}) {
            ids_.push_back(list.add(entry).value_or(-1));
            QVERIFY(ids_.back() > 0);
        }
        prompts_ = {};
    }

    std::unique_ptr<TfGET_KNTRH_LIST> openList(qint32 lastChosenId = 0)
    {
        auto list = std::make_unique<TfGET_KNTRH_LIST>(*folder_, lastChosenId, nullptr, &prompts_);
        list->setDetailsEditor([this](const ProducerEntry& start) {
            editor_.starts.push_back(start);
            return editor_.answer;
        });
        return list;
    }

    // The file as a fresh list reads it.
    std::vector<QStringList> fileEntries()
    {
        RecordingHost quiet;
        ProducerList list(*folder_, quiet);
        list.load();
        std::vector<QStringList> entries;
        for (const ProducerRecord& record : list.records())
            entries.push_back(QStringList{QString::number(record.id)} + Values(list.entry(record)));
        return entries;
    }

private Q_SLOTS:
    void init()
    {
        dir_ = std::make_unique<QTemporaryDir>();
        folder_ = std::make_unique<DataFolder>(dir_->path());
        QVERIFY(folder_->prepare());
        prompts_ = {};
        editor_ = {};
        ids_.clear();
    }

    void detailWindowTitleAndButtons();
    void detailFieldSitsUnderItsCaption_data();
    void detailFieldSitsUnderItsCaption();
    void producerNumberTakesNineDigits_data();
    void producerNumberTakesNineDigits();
    void limitsTakeWholeNumbers_data();
    void limitsTakeWholeNumbers();
    void detailValuesRoundTrip_data();
    void detailValuesRoundTrip();

    void listColumnCaptions();
    void listShowsFileOrderWithPasswordsMasked();
    void listOpensOnLastChosen_data();
    void listOpensOnLastChosen();
    void listTellsOfTornFile();
    void newEntry_data();
    void newEntry();
    void editEntry_data();
    void editEntry();
    void removeEntry_data();
    void removeEntry();
    void emptyListDisablesChoice();
    void doubleClickChoosesRow();
    void chooseProducer_data();
    void chooseProducer();
};

void TestProducerDialogs::detailWindowTitleAndButtons()
{
    const TfGET_KNTRH_DET dialog;
    QCOMPARE(dialog.objectName(), u"TfGET_KNTRH_DET"_s);
    QCOMPARE(dialog.windowTitle(), u"Dane kontrahenta"_s);
    QCOMPARE(Button(dialog, "btnOK")->text(), u"OK"_s);
    QCOMPARE(Button(dialog, "btnCancel")->text(), u"Anuluj"_s);
    QCOMPARE(dialog.findChildren<QLineEdit*>().size(), 11);
}

void TestProducerDialogs::detailFieldSitsUnderItsCaption_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("group");
    QTest::addColumn<int>("maxLength");
    QTest::addColumn<bool>("masked");
    const QString limits = u"Maksymalne ilości zwierząt dl halvarnów"_s;
    const QString fattening = u"Opasów"_s;
    const auto row = [](const char* name, const char* caption, const QString& group, int maxLength,
                        bool masked = false) {
        QTest::newRow(name) << QString::fromLatin1(name) << QString::fromUtf8(caption) << group << maxLength << masked;
    };
    row("edNazwa", "Nazwa", {}, 50);
    row("edLogin", "Login", {}, 30);
    row("edHaslo", "Hasło", {}, 30, true);
    row("edProducent", "Nr. producenta", {}, 9);
    row("edKrowMamek", "krów mamek", limits, 9);
    row("edKrowMlecznych", "krów mlecznych", limits, 9);
    row("edOpas150", "< 150", fattening, 9);
    row("edOpas150_220", "> 150 < 220", fattening, 9);
    row("edOpas220_300", "> 220 < 300", fattening, 9);
    row("edOpas300_450", "> 300 < 450", fattening, 9);
    row("edOpas450", "> 450", fattening, 9);
}

void TestProducerDialogs::detailFieldSitsUnderItsCaption()
{
    QFETCH(QString, name);
    QFETCH(QString, caption);
    QFETCH(QString, group);
    QFETCH(int, maxLength);
    QFETCH(bool, masked);
    const TfGET_KNTRH_DET dialog;
    const QLineEdit* field = Field(dialog, name);
    QVERIFY(field);
    QCOMPARE(CaptionOf(dialog, field), caption);
    QCOMPARE(GroupOf(field), group);
    QCOMPARE(field->maxLength(), maxLength);
    QCOMPARE(field->echoMode(), masked ? QLineEdit::Password : QLineEdit::Normal);
}

void TestProducerDialogs::producerNumberTakesNineDigits_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    QTest::newRow("nine digits") << u"012345678"_s << u"012345678"_s;
    QTest::newRow("tenth digit refused") << u"1234567890"_s << u"123456789"_s;
    QTest::newRow("letters refused") << u"12ab3"_s << u"123"_s;
    QTest::newRow("signs and blanks refused") << u"-1 2+3"_s << u"123"_s;
}

void TestProducerDialogs::producerNumberTakesNineDigits()
{
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    TfGET_KNTRH_DET dialog;
    QTest::keyClicks(Field(dialog, u"edProducent"_s), typed);
    QCOMPARE(dialog.entry().producerNumber, shown);
}

void TestProducerDialogs::limitsTakeWholeNumbers_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("slot");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("value");
    const auto row = [](const char* tag, const char* name, DeclaredGroup group, const QString& typed, int value) {
        QTest::newRow(tag) << QString::fromLatin1(name) << static_cast<int>(group) << typed << value;
    };
    row("suckler cows", "edKrowMamek", DeclaredGroup::SucklerCows, u"12"_s, 12);
    row("dairy cows", "edKrowMlecznych", DeclaredGroup::DairyCows, u"250"_s, 250);
    row("empty is 0", "edOpas150", DeclaredGroup::FatteningTo150, QString(), 0);
    row("no minus", "edOpas150_220", DeclaredGroup::Fattening150To220, u"-7"_s, 7);
    row("no fraction", "edOpas220_300", DeclaredGroup::Fattening220To300, u"2,5"_s, 25);
    row("no grouping", "edOpas300_450", DeclaredGroup::Fattening300To450, u"12 345"_s, 12345);
    row("nine digits at most", "edOpas450", DeclaredGroup::FatteningOver450, u"1234567890"_s, 123456789);
    row("letters refused", "edOpas450", DeclaredGroup::FatteningOver450, u"1e3"_s, 13);
}

void TestProducerDialogs::limitsTakeWholeNumbers()
{
    QFETCH(QString, name);
    QFETCH(int, slot);
    QFETCH(QString, typed);
    QFETCH(int, value);
    TfGET_KNTRH_DET dialog;
    dialog.setEntry(Nowak);
    Field(dialog, name)->clear();
    QTest::keyClicks(Field(dialog, name), typed);
    DeclaredLimits expected = Nowak.limits;
    expected[static_cast<std::size_t>(slot)] = value;
    QCOMPARE(dialog.entry().limits, expected);
}

void TestProducerDialogs::detailValuesRoundTrip_data()
{
    QTest::addColumn<bool>("typed");
    QTest::newRow("set") << false;
    QTest::newRow("typed") << true;
}

void TestProducerDialogs::detailValuesRoundTrip()
{
    QFETCH(bool, typed);
    const QStringList names{u"edNazwa"_s,       u"edLogin"_s,   u"edHaslo"_s,        u"edProducent"_s,
                            u"edKrowMamek"_s,   u"edOpas150"_s, u"edOpas150_220"_s,  u"edOpas220_300"_s,
                            u"edOpas300_450"_s, u"edOpas450"_s, u"edKrowMlecznych"_s};
    TfGET_KNTRH_DET dialog;
    if (typed) {
        for (int i = 0; i < names.size(); ++i)
            Type(Field(dialog, names[i]), Values(Zolc)[i]);
    } else {
        dialog.setEntry(Zolc);
    }
    QCOMPARE(Values(dialog.entry()), Values(Zolc));
    for (int i = 0; i < names.size(); ++i)
        QCOMPARE(Field(dialog, names[i])->text(), Values(Zolc)[i]);
}

void TestProducerDialogs::listColumnCaptions()
{
    const auto list = openList();
    QCOMPARE(list->objectName(), u"TfGET_KNTRH_LIST"_s);
    QCOMPARE(list->windowTitle(), u"Lista kontrahentów"_s);
    QCOMPARE(Captions(*Grid(*list)),
             (QStringList{u"ID"_s, u"Nazwa"_s, u"Login"_s, u"Hasło"_s, u"Nr producenta"_s, u"Krów mamek"_s, u"<= 150"_s,
                          u"> 150 <= 220"_s, u"> 220 <= 300"_s, u"> 300 <= 450"_s, u"> 450"_s, u"Krów mlecznych"_s}));
}

void TestProducerDialogs::listShowsFileOrderWithPasswordsMasked()
{
    seed();
    const auto list = openList();
    const QTableView& grid = *Grid(*list);
    QCOMPARE(grid.model()->rowCount(), 3);
    QCOMPARE(RowTexts(grid, 0), Shown(ids_[0], Nowak));
    QCOMPARE(RowTexts(grid, 1), Shown(ids_[1], Zolc));
    QCOMPARE(RowTexts(grid, 2), Shown(ids_[2], Kowalski));
    QVERIFY(prompts_.messages.empty());

    RecordingHost quiet;
    ProducerList file(*folder_, quiet);
    file.load();
    for (int row = 0; row < 3; ++row) {
        const QString shown = RowTexts(grid, row).join(u'|');
        const QByteArray enciphered = file.records()[static_cast<std::size_t>(row)].password;
        for (const QString& secret : {Nowak.password, Zolc.password, QString::fromLatin1(enciphered)})
            QVERIFY2(secret.isEmpty() || !shown.contains(secret), qPrintable(shown));
    }
}

void TestProducerDialogs::listOpensOnLastChosen_data()
{
    QTest::addColumn<int>("chosen"); // index into the seeded IDs, -1 for an ID not in the list
    QTest::addColumn<int>("row");
    QTest::newRow("second") << 1 << 1;
    QTest::newRow("last") << 2 << 2;
    QTest::newRow("no longer there") << -1 << 0;
}

void TestProducerDialogs::listOpensOnLastChosen()
{
    QFETCH(int, chosen);
    QFETCH(int, row);
    seed();
    const qint32 lastId = chosen < 0 ? 999 : ids_[static_cast<std::size_t>(chosen)];
    const auto list = openList(lastId);
    QCOMPARE(Grid(*list)->currentIndex().row(), row);
    QCOMPARE(list->currentId(), ids_[static_cast<std::size_t>(row)]);
}

void TestProducerDialogs::listTellsOfTornFile()
{
    seed();
    QFile file(folder_->producerListFile());
    QVERIFY(file.open(QIODevice::Append));
    file.write(QByteArray(20, 'x'));
    file.close();
    const auto list = openList();
    QCOMPARE(prompts_.messages.size(), std::size_t(1));
    QCOMPARE(prompts_.messages[0].icon, MessageIcon::Warning);
    QCOMPARE(Grid(*list)->model()->rowCount(), 3);
}

void TestProducerDialogs::newEntry_data()
{
    QTest::addColumn<bool>("confirmed");
    QTest::newRow("OK adds") << true;
    QTest::newRow("Anuluj adds nothing") << false;
}

void TestProducerDialogs::newEntry()
{
    QFETCH(bool, confirmed);
    seed();
    const auto list = openList(ids_[0]);
    if (confirmed)
        editor_.answer = ProducerEntry{u"Nowy Producent"_s, u"nowy"_s, u"pass"_s, u"55"_s, {1, 2, 3, 4, 5, 6, 7}};
    Button(*list, "btnNowy")->click();

    QCOMPARE(editor_.starts.size(), std::size_t(1));
    QCOMPARE(Values(editor_.starts[0]), Values(ProducerEntry{}));
    const std::vector<QStringList> entries = fileEntries();
    QCOMPARE(entries.size(), confirmed ? std::size_t(4) : std::size_t(3));
    QCOMPARE(Grid(*list)->model()->rowCount(), int(entries.size()));
    if (confirmed) {
        QCOMPARE(entries.back().mid(1), Values(*editor_.answer));
        QCOMPARE(QString::number(list->currentId().value_or(-1)), entries.back().first());
        QCOMPARE(Grid(*list)->currentIndex().row(), 3);
    } else {
        QCOMPARE(list->currentId(), ids_[0]);
    }
}

void TestProducerDialogs::editEntry_data()
{
    QTest::addColumn<bool>("confirmed");
    QTest::newRow("OK writes") << true;
    QTest::newRow("Anuluj keeps") << false;
}

void TestProducerDialogs::editEntry()
{
    QFETCH(bool, confirmed);
    seed();
    const auto list = openList(ids_[1]);
    const ProducerEntry edited{u"Zakład Żółć i Syn"_s, u"zolc2"_s, u"nowe hasło"_s, u"987"_s, {9, 8, 7, 6, 5, 4, 3}};
    if (confirmed)
        editor_.answer = edited;
    Button(*list, "btnEdycja")->click();

    QCOMPARE(editor_.starts.size(), std::size_t(1));
    QCOMPARE(Values(editor_.starts[0]), Values(Zolc)); // the password deciphered
    const std::vector<QStringList> entries = fileEntries();
    QCOMPARE(entries.size(), std::size_t(3));
    QCOMPARE(entries[1].mid(1), Values(confirmed ? edited : Zolc));
    QCOMPARE(entries[0].mid(1), Values(Nowak));
    QCOMPARE(list->currentId(), ids_[1]);
    QCOMPARE(RowTexts(*Grid(*list), 1), Shown(ids_[1], confirmed ? edited : Zolc));
}

void TestProducerDialogs::removeEntry_data()
{
    QTest::addColumn<bool>("answer");
    QTest::newRow("Tak removes") << true;
    QTest::newRow("Nie keeps") << false;
}

void TestProducerDialogs::removeEntry()
{
    QFETCH(bool, answer);
    seed();
    const auto list = openList(ids_[1]);
    prompts_.answerYes = answer;
    Button(*list, "btnUsun")->click();

    QCOMPARE(prompts_.questions, QStringList{u"Czy usunąć pozycje"_s});
    QVERIFY(editor_.starts.empty());
    const std::vector<QStringList> entries = fileEntries();
    QCOMPARE(entries.size(), answer ? std::size_t(2) : std::size_t(3));
    QCOMPARE(Grid(*list)->model()->rowCount(), int(entries.size()));
    // The row that takes the removed one's place becomes current.
    QCOMPARE(list->currentId(), answer ? ids_[2] : ids_[1]);
    QCOMPARE(Grid(*list)->currentIndex().row(), 1);
}

void TestProducerDialogs::emptyListDisablesChoice()
{
    const auto list = openList();
    const auto enabled = [&list] {
        QStringList names;
        for (const char* name : {"btnNowy", "btnEdycja", "btnUsun", "btnOK", "btnCancel"})
            if (Button(*list, name)->isEnabled())
                names << QLatin1StringView(name);
        return names;
    };
    QCOMPARE(enabled(), (QStringList{u"btnNowy"_s, u"btnCancel"_s}));
    QVERIFY(!list->chosen());
    list->accept();
    QCOMPARE(list->result(), int(QDialog::Rejected));

    editor_.answer = Kowalski;
    Button(*list, "btnNowy")->click();
    QCOMPARE(enabled().size(), 5);
    Button(*list, "btnUsun")->click();
    QCOMPARE(enabled(), (QStringList{u"btnNowy"_s, u"btnCancel"_s}));
    QVERIFY(fileEntries().empty());
}

void TestProducerDialogs::doubleClickChoosesRow()
{
    seed();
    const auto list = openList();
    list->show();
    QVERIFY(QTest::qWaitForWindowExposed(list.get()));
    QTableView& grid = *Grid(*list);
    const QRect cell = grid.visualRect(grid.model()->index(1, 1));
    // A real double click: the first click, then the second arriving as a double click.
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, cell.center());
    QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, cell.center());
    QCOMPARE(list->result(), int(QDialog::Accepted));
    QVERIFY(!list->isVisible());
    const std::optional<ChosenProducer> chosen = list->chosen();
    QVERIFY(chosen);
    QCOMPARE(chosen->id, ids_[1]);
    QCOMPARE(Values(chosen->entry), Values(Zolc));
}

void TestProducerDialogs::chooseProducer_data()
{
    QTest::addColumn<bool>("confirmed");
    QTest::newRow("OK chooses") << true;
    QTest::newRow("Anuluj chooses nothing") << false;
}

void TestProducerDialogs::chooseProducer()
{
    QFETCH(bool, confirmed);
    seed();
    QPointer<TfGET_KNTRH_LIST> shown;
    bool answered = false;
    WhenModal<TfGET_KNTRH_LIST>([&shown, &answered, confirmed](TfGET_KNTRH_LIST& list) {
        shown = &list;
        answered = true;
        Button(list, confirmed ? "btnOK" : "btnCancel")->click();
    });
    const std::optional<ChosenProducer> chosen = ChooseProducer(*folder_, ids_[1], nullptr);
    QVERIFY(answered);
    QVERIFY(!shown); // the window is gone with its deciphered passwords
    QCOMPARE(chosen.has_value(), confirmed);
    if (confirmed) {
        QCOMPARE(chosen->id, ids_[1]);
        QCOMPARE(Values(chosen->entry), Values(Zolc));
    }
}

QTEST_MAIN(TestProducerDialogs)
#include "test_producer_dialogs.moc"
