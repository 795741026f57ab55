#include "gui/window/DateField.h"

#include <QDateEdit>
#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {
// The earliest date of the edit stands for "no date" and is shown blank.
const QDate NoDate(1899, 12, 30);
const QDate RetypingBase(2000, 1, 1);

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
    edit_->setDisplayFormat(u"dd.MM.yyyy"_s);
    edit_->setCalendarPopup(true);
    edit_->setMinimumDate(NoDate);
    edit_->setSpecialValueText(u" "_s);
    edit_->setDate(NoDate);
    edit_->installEventFilter(this);
    auto* clear = SmallButton(u"×"_s, u"Wyczyść"_s, this);
    auto* today = SmallButton(u"Dziś"_s, u"Dzisiejsza data"_s, this);
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

// Typing a whole date over the selected text sets exactly that date. The typing
// starts at the day of 1 January 2000, a date on which any day typed first and
// then any month exist (the edit would cut 31 to the old month's last day, or
// 29 February to the 28th of an old year). A "." right after a digit that
// completed the day or the month is passed over: the edit has already moved on.
bool DateField::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != edit_ || event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const QString typed = static_cast<QKeyEvent*>(event)->text();
    const bool digit = typed.size() == 1 && typed.front().isDigit();
    const bool movedOnAlready = typed.size() == 1 && !digit && lastDigitSection_ != QDateTimeEdit::NoSection &&
                                edit_->currentSection() != lastDigitSection_;
    if (digit && wholeTextSelected()) {
        edit_->setDate(RetypingBase);
        edit_->setSelectedSection(QDateTimeEdit::DaySection);
    }
    lastDigitSection_ = digit ? edit_->currentSection() : QDateTimeEdit::NoSection;
    return movedOnAlready;
}

bool DateField::wholeTextSelected() const
{
    const auto* line = edit_->findChild<QLineEdit*>();
    return line && line->hasSelectedText() && line->selectedText() == line->text();
}
