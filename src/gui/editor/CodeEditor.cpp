#include "gui/editor/CodeEditor.h"

#include <QFontDatabase>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>

#include <algorithm>

namespace {
const QColor CurrentLineBackground(255, 250, 215);
const QColor ErrorLineBackground(255, 215, 215);
const QColor LineNumberBackground(240, 240, 240);
const QColor LineNumberColour(130, 130, 130);
constexpr int LineNumberPadding = 4;

// The margin paints itself through the editor, which knows the blocks' geometry.
class LineNumberArea : public QWidget {
public:
    explicit LineNumberArea(CodeEditor* editor) : QWidget(editor), editor_(editor) {}
    QSize sizeHint() const override { return {editor_->lineNumberAreaWidth(), 0}; }

protected:
    void paintEvent(QPaintEvent* event) override { editor_->paintLineNumbers(event); }

private:
    CodeEditor* editor_;
};
} // namespace

CodeEditor::CodeEditor(QWidget* parent) : QPlainTextEdit(parent), lineNumberArea_(new LineNumberArea(this))
{
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setTabStopDistance(4 * fontMetrics().horizontalAdvance(QLatin1Char(' ')));
    connect(this, &QPlainTextEdit::blockCountChanged, this, &CodeEditor::updateLineNumberAreaWidth);
    connect(this, &QPlainTextEdit::updateRequest, this, &CodeEditor::updateLineNumberArea);
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, &CodeEditor::updateExtraSelections);
    updateLineNumberAreaWidth();
    updateExtraSelections();
}

int CodeEditor::lineNumberAreaWidth() const
{
    const int digits = static_cast<int>(QString::number(std::max(1, blockCount())).size());
    return 2 * LineNumberPadding + fontMetrics().horizontalAdvance(QLatin1Char('9')) * std::max(3, digits);
}

void CodeEditor::updateLineNumberAreaWidth()
{
    setViewportMargins(lineNumberAreaWidth(), 0, 0, 0);
}

void CodeEditor::updateLineNumberArea(const QRect& rect, int dy)
{
    if (dy != 0)
        lineNumberArea_->scroll(0, dy);
    else
        lineNumberArea_->update(0, rect.y(), lineNumberArea_->width(), rect.height());
}

void CodeEditor::resizeEvent(QResizeEvent* event)
{
    QPlainTextEdit::resizeEvent(event);
    const QRect area = contentsRect();
    lineNumberArea_->setGeometry(area.left(), area.top(), lineNumberAreaWidth(), area.height());
}

void CodeEditor::paintLineNumbers(QPaintEvent* event)
{
    QPainter painter(lineNumberArea_);
    painter.fillRect(event->rect(), LineNumberBackground);
    painter.setPen(LineNumberColour);
    const int textWidth = lineNumberArea_->width() - LineNumberPadding;
    QTextBlock block = firstVisibleBlock();
    auto top = qRound(blockBoundingGeometry(block).translated(contentOffset()).top());
    while (block.isValid() && top <= event->rect().bottom()) {
        const auto height = qRound(blockBoundingRect(block).height());
        if (block.isVisible() && top + height >= event->rect().top())
            painter.drawText(0, top, textWidth, fontMetrics().height(), Qt::AlignRight,
                             QString::number(block.blockNumber() + 1));
        block = block.next();
        top += height;
    }
}

QTextEdit::ExtraSelection CodeEditor::wholeLineSelection(int line, const QColor& background) const
{
    QTextEdit::ExtraSelection selection;
    selection.format.setBackground(background);
    selection.format.setProperty(QTextFormat::FullWidthSelection, true);
    selection.cursor = QTextCursor(document()->findBlockByNumber(line - 1));
    return selection;
}

void CodeEditor::updateExtraSelections()
{
    QList<QTextEdit::ExtraSelection> selections;
    selections.append(wholeLineSelection(textCursor().blockNumber() + 1, CurrentLineBackground));
    // The fault's mark goes last, so that it shows also on the cursor's line.
    if (errorLine_ > 0)
        selections.append(wholeLineSelection(errorLine_, ErrorLineBackground));
    setExtraSelections(selections);
}

void CodeEditor::markErrorLine(int line)
{
    const bool moved = line != errorLine_;
    errorLine_ = std::clamp(line, 0, blockCount());
    updateExtraSelections();
    if (moved && errorLine_ > 0)
        scrollToLine(errorLine_);
}

// Scrolls without moving the cursor, so that typing goes on where it was.
void CodeEditor::scrollToLine(int line)
{
    const QTextBlock block = document()->findBlockByNumber(line - 1);
    const QRectF geometry = blockBoundingGeometry(block).translated(contentOffset());
    if (geometry.top() >= 0 && geometry.bottom() <= viewport()->height())
        return;
    const int visibleLines = viewport()->height() / std::max(1, fontMetrics().height());
    verticalScrollBar()->setValue(std::max(0, line - 1 - visibleLines / 2));
}

bool CodeEditor::findNext(const QString& text)
{
    if (text.isEmpty())
        return false;
    if (find(text))
        return true;
    const QTextCursor before = textCursor();
    moveCursor(QTextCursor::Start);
    if (find(text))
        return true;
    setTextCursor(before);
    return false;
}
