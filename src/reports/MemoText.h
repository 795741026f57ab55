#pragma once

#include "reports/Expression.h"
#include "reports/ReportModel.h"

#include <vector>

// A memo's text made ready for printing: the literal parts and the bracketed
// expressions, each with its own inline format or the memo's display format.
class MemoText {
public:
    MemoText() = default;
    MemoText(const QString& text, const ReportObject& memo, ExpressionScope& scope);

    QString evaluate(const SystemValues& system) const;
    bool usesPage() const { return usesPage_; }

private:
    struct Part {
        QString literal;
        std::unique_ptr<ExpressionNode> expression;
        DisplayFormat format;
    };
    void addExpression(const QString& inner, const ReportObject& memo, ExpressionScope& scope);

    std::vector<Part> parts_;
    bool hideZeros_ = false;
    bool usesPage_ = false;
};

// Where the "[…]" that opens at `open` closes, quotes and nested brackets
// respected; -1 when it never does.
qsizetype ClosingBracket(const QString& text, qsizetype open);
