#include "gui/dialogs/MonthEdit.h"

#include <QRegularExpressionValidator>

using namespace Qt::StringLiterals;

namespace {
constexpr char16_t GroupSeparator = u'\u00A0'; // no-break space, as Polish number formats use

QString Plain(std::optional<int> value)
{
    return value ? QString::number(*value) : QString();
}
} // namespace

MonthEdit::MonthEdit(QWidget* parent) : QLineEdit(parent)
{
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    // Nine digits at most, so every accepted text fits an int.
    setValidator(new QRegularExpressionValidator(QRegularExpression(u"-?[0-9]{0,9}"_s), this));
}

QString MonthEdit::grouped(int value)
{
    QString digits = QString::number(qAbs(static_cast<qint64>(value)));
    for (qsizetype at = digits.size() - 3; at > 0; at -= 3)
        digits.insert(at, GroupSeparator);
    return value < 0 ? u'-' + digits : digits;
}

std::optional<int> MonthEdit::value() const
{
    QString digits = text();
    digits.remove(GroupSeparator);
    bool ok = false;
    const int number = digits.toInt(&ok);
    return ok ? std::optional<int>(number) : std::nullopt;
}

void MonthEdit::setValue(std::optional<int> value)
{
    setText(!value ? QString() : hasFocus() ? Plain(value) : grouped(*value));
}

void MonthEdit::focusInEvent(QFocusEvent* event)
{
    const QString plain = Plain(value());
    if (plain != text())
        setText(plain);
    QLineEdit::focusInEvent(event);
}

void MonthEdit::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    const std::optional<int> current = value();
    setText(current ? grouped(*current) : QString());
}
