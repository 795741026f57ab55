#include "gui/producers/TfGET_KNTRH_DET.h"

#include "gui/dialogs/DialogParts.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
constexpr int NameLength = 50;
constexpr int LoginLength = 30;
constexpr int PasswordLength = 30;
constexpr int ProducerNumberLength = 9;
constexpr int LimitDigits = 9; // every such number fits the file's Int32
constexpr int NameEditCharacters = 40;

QLineEdit* TextEdit(const QString& objectName, int maxLength)
{
    auto* edit = new QLineEdit;
    edit->setObjectName(objectName);
    edit->setMaxLength(maxLength);
    return edit;
}

QLineEdit* DigitsEdit(const QString& objectName, int digits)
{
    QLineEdit* edit = TextEdit(objectName, digits);
    edit->setValidator(new QRegularExpressionValidator(QRegularExpression(u"[0-9]*"_s), edit));
    return edit;
}

QLineEdit* LimitEdit(const QString& objectName)
{
    QLineEdit* edit = DigitsEdit(objectName, LimitDigits);
    edit->setAlignment(Qt::AlignRight);
    edit->setFixedWidth(edit->fontMetrics().horizontalAdvance(u'0') * (LimitDigits + 1) + 12);
    return edit;
}

// Captions like "< 150" are plain text, never taken for markup.
void AddRow(QFormLayout& form, const QString& caption, QWidget* field)
{
    auto* label = new QLabel(caption);
    label->setTextFormat(Qt::PlainText);
    label->setBuddy(field);
    form.addRow(label, field);
}

struct LimitField {
    DeclaredGroup group;
    QStringView objectName;
    QStringView caption;
};

constexpr std::array<LimitField, 2> CowFields{{
    {DeclaredGroup::SucklerCows, u"edKrowMamek", u"krów mamek"},
    {DeclaredGroup::DairyCows, u"edKrowMlecznych", u"krów mlecznych"},
}};

constexpr std::array<LimitField, 5> FatteningFields{{
    {DeclaredGroup::FatteningTo150, u"edOpas150", u"< 150"},
    {DeclaredGroup::Fattening150To220, u"edOpas150_220", u"> 150 < 220"},
    {DeclaredGroup::Fattening220To300, u"edOpas220_300", u"> 220 < 300"},
    {DeclaredGroup::Fattening300To450, u"edOpas300_450", u"> 300 < 450"},
    {DeclaredGroup::FatteningOver450, u"edOpas450", u"> 450"},
}};
} // namespace

TfGET_KNTRH_DET::TfGET_KNTRH_DET(QWidget* parent) : QDialog(parent)
{
    setObjectName(u"TfGET_KNTRH_DET"_s);
    setWindowTitle(u"Dane kontrahenta"_s);

    name_ = TextEdit(u"edNazwa"_s, NameLength);
    name_->setMinimumWidth(name_->fontMetrics().averageCharWidth() * NameEditCharacters);
    login_ = TextEdit(u"edLogin"_s, LoginLength);
    password_ = TextEdit(u"edHaslo"_s, PasswordLength);
    password_->setEchoMode(QLineEdit::Password);
    password_->setStyleSheet(u"lineedit-password-character: 42"_s); // '*' in every style
    producerNumber_ = DigitsEdit(u"edProducent"_s, ProducerNumberLength);

    auto* fields = new QFormLayout;
    AddRow(*fields, u"Nazwa"_s, name_);
    AddRow(*fields, u"Login"_s, login_);
    AddRow(*fields, u"Hasło"_s, password_);
    AddRow(*fields, u"Nr. producenta"_s, producerNumber_);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addWidget(buildLimits());
    layout->addWidget(AddOkCancel(*this));
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

// The cows' limits beside the fattening classes, which have a group of their own.
QWidget* TfGET_KNTRH_DET::buildLimits()
{
    auto* cows = new QFormLayout;
    for (const LimitField& field : CowFields)
        AddRow(*cows, field.caption.toString(), addLimitEdit(field.group, field.objectName.toString()));

    auto* fattening = new QGroupBox(u"Opasów"_s);
    auto* fatteningForm = new QFormLayout(fattening);
    for (const LimitField& field : FatteningFields)
        AddRow(*fatteningForm, field.caption.toString(), addLimitEdit(field.group, field.objectName.toString()));

    auto* group = new QGroupBox(u"Maksymalne ilości zwierząt dl halvarnów"_s);
    auto* layout = new QHBoxLayout(group);
    layout->addLayout(cows);
    layout->setAlignment(cows, Qt::AlignTop);
    layout->addWidget(fattening);
    return group;
}

QLineEdit* TfGET_KNTRH_DET::addLimitEdit(DeclaredGroup group, const QString& objectName)
{
    QLineEdit*& edit = limits_[static_cast<std::size_t>(group)];
    edit = LimitEdit(objectName);
    return edit;
}

void TfGET_KNTRH_DET::setEntry(const ProducerEntry& entry)
{
    name_->setText(entry.name);
    login_->setText(entry.login);
    password_->setText(entry.password);
    producerNumber_->setText(entry.producerNumber);
    for (std::size_t i = 0; i < limits_.size(); ++i)
        limits_[i]->setText(QString::number(entry.limits[i]));
}

ProducerEntry TfGET_KNTRH_DET::entry() const
{
    ProducerEntry entry{name_->text(), login_->text(), password_->text(), producerNumber_->text(), {}};
    for (std::size_t i = 0; i < limits_.size(); ++i)
        entry.limits[i] = limits_[i]->text().toInt(); // empty reads as 0
    return entry;
}

std::optional<ProducerEntry> AskProducerDetails(const ProducerEntry& start, QWidget* parent)
{
    TfGET_KNTRH_DET dialog(parent);
    dialog.setEntry(start);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.entry();
}
