#include "app/window/DateField.h"

#include <QDateEdit>
#include <QHBoxLayout>
#include <QToolButton>

namespace {
// The earliest date of the edit stands for "no date" and is shown blank.
const QDate NoDate(1899, 12, 30);

QToolButton* SmallButton(const QString& text, const QString& toolTip, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setText(text);
    button->setToolTip(toolTip);
    button->setAutoRaise(true);
    return button;
}
} // namespace

DateField::DateField(QWidget* parent) : QWidget(parent), edit_(new QDateEdit(this))
{
    edit_->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    edit_->setCalendarPopup(true);
    edit_->setMinimumDate(NoDate);
    edit_->setSpecialValueText(QStringLiteral(" "));
    edit_->setDate(NoDate);
    auto* clear = SmallButton(QStringLiteral("×"), QStringLiteral("Wyczyść"), this);
    auto* today = SmallButton(QStringLiteral("Dziś"), QStringLiteral("Dzisiejsza data"), this);
    connect(clear, &QToolButton::clicked, this, [this] { setDate({}); });
    connect(today, &QToolButton::clicked, this, [this] { setDate(QDate::currentDate()); });
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(edit_, 1);
    layout->addWidget(clear);
    layout->addWidget(today);
}

QDate DateField::date() const
{
    return edit_->date() == NoDate ? QDate() : edit_->date();
}

void DateField::setDate(QDate date)
{
    edit_->setDate(date.isValid() ? date : NoDate);
}

QString DateField::displayText() const
{
    return date().isValid() ? ShortDate(date()) : QString();
}
