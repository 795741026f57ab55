#include "gui/archive/TfPorownanie.h"

#include "core/archive/DownloadComparison.h"
#include "export/ComparisonExport.h"
#include "framework/SafeFile.h"
#include "gui/archive/ComparisonGrids.h"
#include "gui/dialogs/MessageBoxPrompts.h"
#include "reports/print/ComparisonPrint.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHash>
#include <QLabel>
#include <QPushButton>
#include <QSplitter>
#include <QTableWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
const QString NothingToCompare = u"W archiwum nie ma dwóch pobrań jednego producenta do porównania."_s;

QPushButton* NamedButton(const char* name, const QString& caption, QWidget* parent)
{
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(QLatin1String(name));
    return button;
}

QComboBox* NamedCombo(const char* name, QWidget* parent)
{
    auto* combo = new QComboBox(parent);
    combo->setObjectName(QLatin1String(name));
    combo->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    return combo;
}

QGroupBox* Framed(const QString& caption, QWidget* content, QWidget* parent)
{
    auto* box = new QGroupBox(caption, parent);
    auto* layout = new QVBoxLayout(box);
    layout->addWidget(content);
    return box;
}

// Only a producer with two downloads or more has something to compare.
void KeepComparable(std::vector<ArchivedDownload>& downloads)
{
    QHash<QString, int> perProducer;
    for (const ArchivedDownload& d : downloads)
        ++perProducer[d.producer];
    std::erase_if(downloads, [&perProducer](const ArchivedDownload& d) { return perProducer.value(d.producer) < 2; });
}

class WaitCursor {
public:
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};
} // namespace

TfPorownanie::TfPorownanie(const DataFolder& folder, TdmulmxDataBase_FR3& reports, PrintHandler print, QWidget* parent,
                           UserPrompts* prompts)
    : QDialog(parent), folder_(folder), reports_(reports), print_(std::move(print)), prompts_(prompts, this)
{
    setObjectName(u"fPorownanie"_s);
    setWindowTitle(u"Porównanie pobrań"_s);
    exported_ = [this](const QString& path) {
        prompts_->showMessage(u"Informacja"_s, u"Zapisano do: "_s + QDir::toNativeSeparators(path),
                              MessageIcon::Information);
    };
    buildForm();
    readDownloads();
    fillA();
    updateButtons();
    resize(1100, 700);
}

TfPorownanie::~TfPorownanie() = default;

void TfPorownanie::buildForm()
{
    comboA_ = NamedCombo("cbPobranieA", this);
    comboB_ = NamedCombo("cbPobranieB", this);
    compareButton_ = NamedButton("btnPorownaj", u"Porównaj"_s, this);
    compareButton_->setDefault(true);
    notice_ = new QLabel(this);
    notice_->setObjectName(u"lbKomunikat"_s);
    notice_->setWordWrap(true);
    notice_->hide();
    result_ = new QLabel(this);
    result_->setObjectName(u"lbWynik"_s);
    result_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* choice = new QGridLayout;
    choice->addWidget(new QLabel(u"Pobranie A (starsze):"_s, this), 0, 0);
    choice->addWidget(comboA_, 0, 1);
    choice->addWidget(new QLabel(u"Pobranie B (nowsze):"_s, this), 1, 0);
    choice->addWidget(comboB_, 1, 1);
    choice->addWidget(compareButton_, 1, 2);
    choice->setColumnStretch(1, 1);

    animalsGrid_ = new QTableWidget(this);
    animalsGrid_->setObjectName(u"gridZwierzeta"_s);
    SetUpAnimalsGrid(*animalsGrid_);
    groupsGrid_ = new QTableWidget(this);
    groupsGrid_->setObjectName(u"gridGrupy"_s);
    SetUpGroupsGrid(*groupsGrid_);
    auto* grids = new QSplitter(Qt::Vertical, this);
    grids->addWidget(Framed(u"Zwierzęta: przybyło, ubyło, zmiana grupy"_s, animalsGrid_, grids));
    grids->addWidget(Framed(u"Liczebność grup technologicznych"_s, groupsGrid_, grids));

    exportButton_ = NamedButton("btnEksportCsv", u"Eksport CSV"_s, this);
    printButton_ = NamedButton("btnWydruk", u"Wydruk"_s, this);
    auto* close = NamedButton("btnZamknij", u"Zamknij"_s, this);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(exportButton_);
    buttons->addWidget(printButton_);
    buttons->addStretch();
    buttons->addWidget(close);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(choice);
    layout->addWidget(notice_);
    layout->addWidget(result_);
    layout->addWidget(grids, 1);
    layout->addLayout(buttons);

    connect(comboA_, &QComboBox::currentIndexChanged, this, [this] {
        fillB();
        updateButtons();
    });
    connect(comboB_, &QComboBox::currentIndexChanged, this, &TfPorownanie::updateButtons);
    connect(compareButton_, &QPushButton::clicked, this, &TfPorownanie::compare);
    connect(exportButton_, &QPushButton::clicked, this, &TfPorownanie::exportCsv);
    connect(printButton_, &QPushButton::clicked, this, &TfPorownanie::print);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
}

// A missing archive is not made here just to be found empty.
void TfPorownanie::readDownloads()
{
    QString problem;
    if (QFileInfo::exists(folder_.archiveFile())) {
        try {
            downloads_ = DownloadArchive(folder_.archiveFile()).list();
        } catch (const HalvarnError& error) {
            problem = error.message() + u'\n';
        }
    }
    KeepComparable(downloads_);
    if (downloads_.empty()) {
        notice_->setText(problem + NothingToCompare);
        notice_->show();
    }
}

// A stands on the second newest download of the producer downloaded last, so
// B, the newest, shows the latest changes at once.
void TfPorownanie::fillA()
{
    const QSignalBlocker blocker(comboA_);
    int second = -1;
    for (const ArchivedDownload& d : downloads_) {
        if (second < 0 && comboA_->count() > 0 && d.producer == downloads_.front().producer)
            second = comboA_->count();
        comboA_->addItem(DownloadCaption(d), d.id);
    }
    comboA_->setCurrentIndex(second);
    fillB();
}

void TfPorownanie::fillB()
{
    const QSignalBlocker blocker(comboB_);
    comboB_->clear();
    const int a = comboA_->currentIndex();
    if (a < 0)
        return;
    const ArchivedDownload& chosen = downloads_[static_cast<std::size_t>(a)];
    for (const ArchivedDownload& d : downloads_)
        if (d.producer == chosen.producer && d.id != chosen.id)
            comboB_->addItem(DownloadCaption(d), d.id);
    comboB_->setCurrentIndex(comboB_->count() > 0 ? 0 : -1);
}

std::optional<qint64> TfPorownanie::chosenId(const QComboBox& combo) const
{
    if (combo.currentIndex() < 0)
        return std::nullopt;
    return combo.currentData().toLongLong();
}

void TfPorownanie::updateButtons()
{
    compareButton_->setEnabled(chosenId(*comboA_) && chosenId(*comboB_));
    exportButton_->setEnabled(comparison_ != nullptr);
    printButton_->setEnabled(printed_ && print_);
}

void TfPorownanie::compare()
{
    const std::optional<qint64> a = chosenId(*comboA_);
    const std::optional<qint64> b = chosenId(*comboB_);
    if (!a || !b)
        return;
    try {
        const WaitCursor wait;
        auto comparison = std::make_unique<DownloadComparison>(DownloadComparison::fromArchive(folder_, *a, *b));
        printed_ = std::make_unique<ComparisonPrint>(*comparison);
        comparison_ = std::move(comparison);
    } catch (const HalvarnError& error) {
        prompts_->showMessage(u"Błąd"_s, error.message(), MessageIcon::Error);
        return;
    }
    showComparison();
    updateButtons();
}

void TfPorownanie::showComparison()
{
    const DownloadComparison& c = *comparison_;
    result_->setText(u"A: %1\nB: %2\nPrzybyło: %3, ubyło: %4, zmiana grupy: %5"_s.arg(DownloadCaption(c.a()))
                         .arg(DownloadCaption(c.b()))
                         .arg(c.count(AnimalChange::Arrived))
                         .arg(c.count(AnimalChange::Left))
                         .arg(c.count(AnimalChange::GroupChanged)));
    ShowAnimals(*animalsGrid_, c);
    ShowGroups(*groupsGrid_, c);
}

void TfPorownanie::exportCsv()
{
    if (!comparison_)
        return;
    const QString path = ComparisonCsvPath(folder_, *comparison_);
    try {
        WriteComparisonCsv(*comparison_, path);
    } catch (const FileWriteError& error) {
        prompts_->showMessage(u"Błąd..."_s, error.message(), MessageIcon::Error);
        return;
    }
    if (exported_)
        exported_(path);
}

void TfPorownanie::print()
{
    if (printed_ && print_)
        print_(printed_->job(reports_));
}
