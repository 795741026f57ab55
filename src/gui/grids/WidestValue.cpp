#include "gui/grids/WidestValue.h"

namespace {
constexpr qsizetype MeasuredTextsBeforeLongerOnly = 1000;

int WidestDigit(const QFontMetrics& metrics)
{
    int widest = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
    return widest;
}

int DigitCount(qint64 number)
{
    int digits = 1;
    for (number = number < 0 ? -number : number; number >= 10; number /= 10)
        ++digits;
    return digits;
}
} // namespace

WidestValue::WidestValue(const QFontMetrics& metrics)
    : metrics_(metrics), digit_(WidestDigit(metrics)), dateWidth_(8 * digit_ + 2 * metrics.horizontalAdvance(u'.')),
      booleanWidth_(
          std::max(metrics.horizontalAdvance(DisplayText(true)), metrics.horizontalAdvance(DisplayText(false))))
{}

void WidestValue::add(const FieldValue& value)
{
    if (const auto* text = std::get_if<QString>(&value))
        addText(*text);
    else if (const auto* number = std::get_if<qint32>(&value))
        addNumber(*number);
    else if (std::holds_alternative<QDate>(value))
        widen(dateWidth_);
    else if (std::holds_alternative<bool>(value))
        widen(booleanWidth_);
}

void WidestValue::addText(const QString& text)
{
    const bool measure = text.size() > longest_ || measured_.size() < MeasuredTextsBeforeLongerOnly;
    longest_ = std::max(longest_, text.size());
    if (!measure || measured_.contains(text))
        return;
    measured_.insert(text);
    widen(metrics_.horizontalAdvance(text));
}

void WidestValue::addNumber(qint32 number)
{
    widen(DigitCount(number) * digit_ + (number < 0 ? metrics_.horizontalAdvance(u'-') : 0));
}
