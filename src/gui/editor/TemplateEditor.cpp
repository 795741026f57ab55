#include "gui/editor/TemplateEditor.h"

#include "gui/editor/CodeEditor.h"
#include "gui/editor/FindBar.h"
#include "gui/editor/TemplateFile.h"
#include "gui/editor/XmlHighlighter.h"
#include "gui/preview/PageView.h"
#include "gui/preview/ScreenFit.h"
#include "reports/ShippedTemplates.h"
#include "reports/TemplateReader.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
constexpr int DefaultPreviewDelayMs = 400;

QPushButton* MakeButton(const QString& objectName, const QString& text, QWidget* parent)
{
    auto* button = new QPushButton(text, parent);
    button->setObjectName(objectName);
    // Enter belongs to the text and to the find bar, never to a button.
    button->setAutoDefault(false);
    return button;
}

QLabel* MakeLabel(const QString& objectName, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}
} // namespace

TemplateEditor::TemplateEditor(QString templatePath, Preview preview, QWidget* parent)
    : QDialog(parent), templatePath_(std::move(templatePath)), preview_(std::move(preview))
{
    setObjectName(u"TemplateEditor"_s);
    setWindowTitle(u"Projektowanie szablonu - %1[*]"_s.arg(QFileInfo(templatePath_).fileName()));
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    previewTimer_.setSingleShot(true);
    previewTimer_.setInterval(DefaultPreviewDelayMs);
    connect(&previewTimer_, &QTimer::timeout, this, &TemplateEditor::refreshPreview);

    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->addWidget(makeEditorSide());
    pageView_ = new PageView(splitter);
    pageView_->setZoomMode(PageView::ZoomMode::PageWidth);
    splitter->addWidget(pageView_);
    splitter->setSizes({600, 500});
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(splitter, 1);
    layout->addWidget(makeStatusRow());
    layout->addWidget(makeButtonRow());
    new QShortcut(QKeySequence::Find, this, findBar_, &FindBar::open);
    new QShortcut(QKeySequence(Qt::Key_F3), this, findBar_, &FindBar::findNext);
    resize(ScreenFitted(*this, {1200, 800}));

    const bool loaded = loadFile();
    connect(codeEditor_, &QPlainTextEdit::textChanged, &previewTimer_, qOverload<>(&QTimer::start));
    connect(codeEditor_->document(), &QTextDocument::modificationChanged, this, &QWidget::setWindowModified);
    if (loaded)
        refreshPreview();
}

TemplateEditor::~TemplateEditor() = default;

QWidget* TemplateEditor::makeEditorSide()
{
    auto* side = new QWidget(this);
    codeEditor_ = new CodeEditor(side);
    codeEditor_->setObjectName(u"edTemplate"_s);
    new XmlHighlighter(codeEditor_->document()); // owned by the document
    findBar_ = new FindBar(codeEditor_, side);
    auto* layout = new QVBoxLayout(side);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(codeEditor_, 1);
    layout->addWidget(findBar_);
    return side;
}

QWidget* TemplateEditor::makeStatusRow()
{
    auto* row = new QWidget(this);
    errorLabel_ = MakeLabel(u"lbError"_s, row);
    errorLabel_->setStyleSheet(u"color: #c00000;"_s);
    errorLabel_->setWordWrap(true);
    pagesLabel_ = MakeLabel(u"lbPages"_s, row);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(errorLabel_, 1);
    layout->addWidget(pagesLabel_);
    return row;
}

QWidget* TemplateEditor::makeButtonRow()
{
    auto* row = new QWidget(this);
    restoreButton_ = MakeButton(u"btRestore"_s, u"Przywróć oryginał"_s, row);
    restoreButton_->setEnabled(ShippedTemplateNames().contains(QFileInfo(templatePath_).fileName()));
    restoreButton_->setToolTip(u"Wstawia treść szablonu dostarczonego z programem"_s);
    problemsLabel_ = MakeLabel(u"lbProblems"_s, row);
    problemsLabel_->setStyleSheet(u"color: #606060;"_s);
    // A long list must not widen the window: the whole list is in the tool tip.
    problemsLabel_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    saveButton_ = MakeButton(u"btSave"_s, u"Zapisz"_s, row);
    saveButton_->setShortcut(QKeySequence::Save);
    saveButton_->setToolTip(u"Zapisuje szablon; poprzednia wersja zostaje w pliku .bak (Ctrl+S)"_s);
    closeButton_ = MakeButton(u"btClose"_s, u"Zamknij"_s, row);
    connect(restoreButton_, &QPushButton::clicked, this, &TemplateEditor::restoreOriginal);
    connect(saveButton_, &QPushButton::clicked, this, &TemplateEditor::save);
    connect(closeButton_, &QPushButton::clicked, this, &TemplateEditor::reject);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(restoreButton_);
    layout->addWidget(problemsLabel_, 1);
    layout->addWidget(saveButton_);
    layout->addWidget(closeButton_);
    return row;
}

bool TemplateEditor::loadFile()
{
    try {
        codeEditor_->setPlainText(ReadTemplateText(templatePath_));
        codeEditor_->document()->setModified(false);
        return true;
    } catch (const HalvarnError& error) {
        showFault(error.message(), 0);
        return false;
    }
}

QString TemplateEditor::text() const
{
    return codeEditor_->toPlainText();
}

void TemplateEditor::setText(const QString& text)
{
    QTextCursor cursor(codeEditor_->document());
    cursor.select(QTextCursor::Document);
    cursor.insertText(text);
}

bool TemplateEditor::isModified() const
{
    return codeEditor_->document()->isModified();
}

void TemplateEditor::setPreviewDelay(int ms)
{
    previewTimer_.setInterval(ms);
}

void TemplateEditor::refreshPreview()
{
    previewTimer_.stop();
    try {
        showPreview(preview_(ReadTemplateData(text().toUtf8(), templatePath_)));
    } catch (const TemplateError& error) {
        showFault(error.message(), static_cast<int>(error.line()));
    } catch (const HalvarnError& error) {
        showFault(error.message(), 0);
    } catch (const std::exception& error) {
        // Whatever the edited text makes the engine do, the user's unsaved work must survive it.
        showFault(u"Nie można przygotować podglądu: %1"_s.arg(QString::fromLocal8Bit(error.what())), 0);
    }
}

void TemplateEditor::showPreview(PreparedReport report)
{
    errorLabel_->clear();
    codeEditor_->markErrorLine(0);
    pagesLabel_->setText(u"Stron: %1"_s.arg(report.pageCount()));
    const QStringList& problems = report.problems;
    problemsLabel_->setText(problems.isEmpty() ? QString() : u"Nieobsługiwane: "_s + problems.join(u"; "_s));
    problemsLabel_->setToolTip(problems.join(u'\n'));
    pageView_->setReport(std::make_shared<const PreparedReport>(std::move(report)));
}

void TemplateEditor::showFault(const QString& message, int line)
{
    errorLabel_->setText(message);
    codeEditor_->markErrorLine(line);
}

bool TemplateEditor::save()
{
    try {
        SaveTemplateText(templatePath_, text());
    } catch (const HalvarnError& error) {
        showMessage(error.message());
        return false;
    }
    codeEditor_->document()->setModified(false);
    return true;
}

void TemplateEditor::restoreOriginal()
{
    const QString original = ShippedTemplateText(QFileInfo(templatePath_).fileName());
    if (original.isEmpty()) {
        showMessage(u"Program nie zawiera oryginału szablonu \"%1\"."_s.arg(QFileInfo(templatePath_).fileName()));
        return;
    }
    if (ask(u"Przywrócić szablon dostarczony z programem? Bieżąca treść zostanie zastąpiona."_s,
            QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes)
        setText(original);
}

void TemplateEditor::reject()
{
    if (agreesToClose())
        QDialog::reject();
}

bool TemplateEditor::agreesToClose()
{
    if (!isModified())
        return true;
    switch (ask(u"Zapisać zmiany w szablonie?"_s, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel)) {
    case QMessageBox::Yes: return save();
    case QMessageBox::No: return true;
    default: return false;
    }
}

void TemplateEditor::showMessage(const QString& message)
{
    QMessageBox::warning(this, u"Szablon"_s, message);
}

QMessageBox::StandardButton TemplateEditor::ask(const QString& question, QMessageBox::StandardButtons buttons)
{
    QMessageBox box(QMessageBox::Question, u"Szablon"_s, question, buttons, this);
    const std::pair<QMessageBox::StandardButton, QString> texts[]{
        {QMessageBox::Yes, u"Tak"_s}, {QMessageBox::No, u"Nie"_s}, {QMessageBox::Cancel, u"Anuluj"_s}};
    for (const auto& [button, text] : texts)
        if (QAbstractButton* shown = box.button(button))
            shown->setText(text);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}
