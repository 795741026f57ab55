#include "gui/editor/FindBar.h"

#include "gui/editor/CodeEditor.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>
#include <QToolButton>

using namespace Qt::StringLiterals;

FindBar::FindBar(CodeEditor* editor, QWidget* parent)
    : QWidget(parent), editor_(editor), textEdit_(new QLineEdit(this)), statusLabel_(new QLabel(this))
{
    setObjectName(u"FindBar"_s);
    textEdit_->setObjectName(u"edFind"_s);
    statusLabel_->setObjectName(u"lbFindStatus"_s);
    auto* closeButton = new QToolButton(this);
    closeButton->setText(u"✕"_s);
    closeButton->setToolTip(u"Zamknij wyszukiwanie (Esc)"_s);
    closeButton->setAutoRaise(true);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 2, 0, 2);
    layout->addWidget(new QLabel(u"Szukaj:"_s, this));
    layout->addWidget(textEdit_, 1);
    layout->addWidget(statusLabel_);
    layout->addWidget(closeButton);

    connect(textEdit_, &QLineEdit::returnPressed, this, &FindBar::findNext);
    connect(textEdit_, &QLineEdit::textEdited, statusLabel_, &QLabel::clear);
    connect(closeButton, &QToolButton::clicked, this, &FindBar::dismiss);
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &FindBar::dismiss, Qt::WidgetWithChildrenShortcut);
    hide();
}

void FindBar::open()
{
    const QString selected = editor_->textCursor().selectedText();
    // A selection over several lines holds paragraph separators: not a search text.
    if (!selected.isEmpty() && !selected.contains(QChar::ParagraphSeparator))
        textEdit_->setText(selected);
    statusLabel_->clear();
    show();
    textEdit_->selectAll();
    textEdit_->setFocus();
}

void FindBar::findNext()
{
    if (isHidden() || textEdit_->text().isEmpty()) {
        open();
        return;
    }
    statusLabel_->setText(editor_->findNext(textEdit_->text()) ? QString() : u"Nie znaleziono"_s);
}

void FindBar::dismiss()
{
    hide();
    editor_->setFocus();
}
