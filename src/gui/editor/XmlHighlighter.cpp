#include "gui/editor/XmlHighlighter.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {
const QRegularExpression TagStart(u"<[/?!]?[\\w.:-]*"_s);
const QRegularExpression TagEnd(u"[/?]?>"_s);
const QRegularExpression AttributeName(u"[\\w.:-]+"_s);
const QRegularExpression CharacterReference(u"&(#[0-9]+|#x[0-9a-fA-F]+|[A-Za-z]+);"_s);

bool IsNameStart(QChar c)
{
    return c.isLetterOrNumber() || c == u'_' || c == u':' || c == u'.' || c == u'-';
}
} // namespace

XmlHighlighter::XmlHighlighter(QTextDocument* document) : QSyntaxHighlighter(document) {}

QTextCharFormat XmlHighlighter::format(Part part)
{
    QTextCharFormat format;
    switch (part) {
    case Part::Tag:
        format.setForeground(QColor(0, 0, 160));
        format.setFontWeight(QFont::Bold);
        break;
    case Part::AttributeName: format.setForeground(QColor(160, 0, 0)); break;
    case Part::AttributeValue: format.setForeground(QColor(0, 120, 0)); break;
    case Part::Comment:
        format.setForeground(QColor(128, 128, 128));
        format.setFontItalic(true);
        break;
    case Part::CharacterReference: format.setForeground(QColor(170, 0, 170)); break;
    }
    return format;
}

void XmlHighlighter::apply(qsizetype from, qsizetype to, Part part)
{
    setFormat(static_cast<int>(from), static_cast<int>(to - from), format(part));
}

void XmlHighlighter::highlightBlock(const QString& text)
{
    auto state = previousBlockState() < 0 ? InText : static_cast<State>(previousBlockState());
    for (qsizetype at = 0; at < text.size();) {
        switch (state) {
        case InText: at = highlightText(text, at, state); break;
        case InComment: at = highlightComment(text, at, state); break;
        case InTag: at = highlightTag(text, at, state); break;
        case InDoubleQuotedValue:
        case InSingleQuotedValue: at = highlightValue(text, at, state); break;
        }
    }
    setCurrentBlockState(state);
}

qsizetype XmlHighlighter::highlightText(const QString& text, qsizetype from, State& state)
{
    const qsizetype tag = text.indexOf(u'<', from);
    const qsizetype end = tag < 0 ? text.size() : tag;
    highlightReferences(text, from, end);
    if (tag < 0)
        return end;
    if (QStringView(text).sliced(tag).startsWith(u"<!--")) {
        state = InComment;
        return highlightComment(text, tag, state);
    }
    const auto match =
        TagStart.match(text, tag, QRegularExpression::NormalMatch, QRegularExpression::AnchorAtOffsetMatchOption);
    apply(tag, match.capturedEnd(), Part::Tag);
    state = InTag;
    return match.capturedEnd();
}

qsizetype XmlHighlighter::highlightComment(const QString& text, qsizetype from, State& state)
{
    const qsizetype close = text.indexOf(u"-->", from);
    const qsizetype end = close < 0 ? text.size() : close + 3;
    apply(from, end, Part::Comment);
    if (close >= 0)
        state = InText;
    return end;
}

qsizetype XmlHighlighter::highlightTag(const QString& text, qsizetype from, State& state)
{
    const QChar c = text.at(from);
    if (c == u'"' || c == u'\'') {
        state = c == u'"' ? InDoubleQuotedValue : InSingleQuotedValue;
        apply(from, from + 1, Part::AttributeValue);
        return highlightValue(text, from + 1, state);
    }
    const auto option = QRegularExpression::AnchorAtOffsetMatchOption;
    if (const auto end = TagEnd.match(text, from, QRegularExpression::NormalMatch, option); end.hasMatch()) {
        apply(from, end.capturedEnd(), Part::Tag);
        state = InText;
        return end.capturedEnd();
    }
    if (IsNameStart(c)) {
        const auto name = AttributeName.match(text, from, QRegularExpression::NormalMatch, option);
        apply(from, name.capturedEnd(), Part::AttributeName);
        return name.capturedEnd();
    }
    return from + 1;
}

qsizetype XmlHighlighter::highlightValue(const QString& text, qsizetype from, State& state)
{
    const QChar quote = state == InDoubleQuotedValue ? u'"' : u'\'';
    const qsizetype close = text.indexOf(quote, from);
    const qsizetype end = close < 0 ? text.size() : close + 1;
    apply(from, end, Part::AttributeValue);
    highlightReferences(text, from, end);
    if (close >= 0)
        state = InTag;
    return end;
}

void XmlHighlighter::highlightReferences(const QString& text, qsizetype from, qsizetype to)
{
    auto matches = CharacterReference.globalMatch(QStringView(text).first(to), from);
    while (matches.hasNext()) {
        const auto match = matches.next();
        apply(match.capturedStart(), match.capturedEnd(), Part::CharacterReference);
    }
}
