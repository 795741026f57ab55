#include "reports/MemoText.h"

#include "reports/ReportFormat.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

qsizetype ClosingBracket(const QString& text, qsizetype open)
{
    int depth = 0;
    QChar quote;
    for (qsizetype i = open; i < text.size(); ++i) {
        const QChar c = text[i];
        if (!quote.isNull()) {
            if (c == quote)
                quote = QChar();
        } else if (c == u'\'' || c == u'"') {
            quote = c;
        } else if (c == u'[') {
            ++depth;
        } else if (c == u']' && --depth == 0) {
            return i;
        }
    }
    return -1;
}

namespace {
// The inline format is the last " #n…", " #d…" or " #b…" outside quotes and
// outside a "<…>" reference; "Page#" and "Line#" are names, not formats.
qsizetype InlineFormatStart(const QString& inner)
{
    QChar quote;
    int angle = 0;
    qsizetype found = -1;
    for (qsizetype i = 0; i + 1 < inner.size(); ++i) {
        const QChar c = inner[i];
        if (!quote.isNull()) {
            if (c == quote)
                quote = QChar();
        } else if (c == u'\'' || c == u'"') {
            quote = c;
        } else if (c == u'<') {
            ++angle;
        } else if (c == u'>' && angle > 0) {
            --angle;
        } else if (c == u'#' && angle == 0 && u"nNdDbB"_s.contains(inner[i + 1]) && i > 0 &&
                   (inner[i - 1].isSpace() || inner[i - 1] == u'>' || inner[i - 1] == u')')) {
            found = i;
        }
    }
    return found;
}
} // namespace

MemoText::MemoText(const QString& text, const ReportObject& memo, ExpressionScope& scope) : hideZeros_(memo.hideZeros)
{
    if (!memo.allowExpressions) {
        parts_.push_back({text, nullptr, {}});
        return;
    }
    QString literal;
    qsizetype i = 0;
    while (i < text.size()) {
        const qsizetype close = text[i] == u'[' ? ClosingBracket(text, i) : -1;
        if (close < 0) {
            literal += text[i++];
            continue;
        }
        if (!literal.isEmpty())
            parts_.push_back({std::exchange(literal, {}), nullptr, {}});
        addExpression(text.mid(i + 1, close - i - 1), memo, scope);
        i = close + 1;
    }
    if (!literal.isEmpty())
        parts_.push_back({literal, nullptr, {}});
}

void MemoText::addExpression(const QString& inner, const ReportObject& memo, ExpressionScope& scope)
{
    static const QRegularExpression page(uR"(\b(Page|TotalPages)#?)"_s, QRegularExpression::CaseInsensitiveOption);
    usesPage_ = usesPage_ || page.match(inner).hasMatch();
    const qsizetype hash = InlineFormatStart(inner);
    Part part;
    part.format = hash < 0 ? memo.format : InlineFormat(QStringView(inner).mid(hash + 1));
    part.expression = ParseExpression(hash < 0 ? inner : inner.left(hash), scope);
    parts_.push_back(std::move(part));
}

QString MemoText::evaluate(const SystemValues& system) const
{
    if (parts_.size() == 1 && !parts_.front().expression)
        return parts_.front().literal;
    QString text;
    for (const Part& part : parts_)
        text +=
            part.expression ? FormatValue(part.expression->evaluate(system), part.format, hideZeros_) : part.literal;
    return text;
}
