#pragma once

#include "core/tables/Field.h"

#include <QFontMetrics>
#include <QSet>

// The width of the widest of a column's values as a grid shows them, found
// without measuring every value: numbers and dates are bounded by their count
// of digits at the widest digit's width; texts are measured once each, the first
// thousand different ones and after them only a text longer than all before.
class WidestValue {
public:
    explicit WidestValue(const QFontMetrics& metrics);

    void add(const FieldValue& value);
    int width() const { return widest_; }

private:
    void addText(const QString& text);
    void addNumber(qint32 number);
    void widen(int width) { widest_ = std::max(widest_, width); }

    QFontMetrics metrics_;
    int digit_;     // the widest of the ten digits
    int dateWidth_; // dd.MM.yyyy
    int booleanWidth_;
    QSet<QString> measured_;
    qsizetype longest_ = 0;
    int widest_ = 0;
};
