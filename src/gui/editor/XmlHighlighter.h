#pragma once

#include <QSyntaxHighlighter>
#include <QTextCharFormat>

// Colours XML: tags, attribute names, attribute values, comments and character
// references. A tag, a value or a comment may run over several lines.
class XmlHighlighter : public QSyntaxHighlighter {
    Q_OBJECT

public:
    enum class Part { Tag, AttributeName, AttributeValue, Comment, CharacterReference };

    explicit XmlHighlighter(QTextDocument* document);
    static QTextCharFormat format(Part part);

protected:
    void highlightBlock(const QString& text) override;

private:
    // Where a line ends, carried on to the next one.
    enum State { InText, InComment, InTag, InDoubleQuotedValue, InSingleQuotedValue };

    qsizetype highlightText(const QString& text, qsizetype from, State& state);
    qsizetype highlightComment(const QString& text, qsizetype from, State& state);
    qsizetype highlightTag(const QString& text, qsizetype from, State& state);
    qsizetype highlightValue(const QString& text, qsizetype from, State& state);
    void highlightReferences(const QString& text, qsizetype from, qsizetype to);
    void apply(qsizetype from, qsizetype to, Part part);
};
