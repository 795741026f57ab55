#pragma once

#include <QPlainTextEdit>

// A plain text editor for code: line numbers in a margin, the cursor's line
// highlighted, a monospace font and one line that can be marked as faulty.
class CodeEditor : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit CodeEditor(QWidget* parent = nullptr);

    // Marks a line (1-based) with a light red background and scrolls it into
    // view when it is another line than before; 0 removes the mark.
    void markErrorLine(int line);
    int errorLine() const { return errorLine_; }

    // Finds the next occurrence after the cursor, wrapping round to the start;
    // selects it, or leaves the cursor where it was when there is none.
    bool findNext(const QString& text);

    int lineNumberAreaWidth() const;
    void paintLineNumbers(QPaintEvent* event);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void updateLineNumberAreaWidth();
    void updateLineNumberArea(const QRect& rect, int dy);
    void updateExtraSelections();
    void scrollToLine(int line);
    QTextEdit::ExtraSelection wholeLineSelection(int line, const QColor& background) const;

    QWidget* lineNumberArea_;
    int errorLine_ = 0;
};
