#pragma once

#include "reports/PreparedReport.h"

#include <QDialog>
#include <QMessageBox>
#include <QTimer>

#include <functional>

class CodeEditor;
class FindBar;
class PageView;
class QLabel;
class QPushButton;

// A band template's XML text beside a live preview of the pages it prints:
// every pause in typing lays the edited template out again with the current
// data; a damaged text is named with its line while the last good pages stay.
// The file on disk changes only by "Zapisz", which keeps its previous version
// as "<file>.bak".
class TemplateEditor : public QDialog {
    Q_OBJECT

public:
    // `preview` lays a template out with the data the report prints; it may throw HalvarnError.
    using Preview = std::function<PreparedReport(const ReportTemplate&)>;

    TemplateEditor(QString templatePath, Preview preview, QWidget* parent = nullptr);
    ~TemplateEditor() override;

    QString text() const;
    void setText(const QString& text); // as if typed: an undoable change that marks the text modified
    bool isModified() const;
    void setPreviewDelay(int ms);

    bool save(); // false after the message why not
    void restoreOriginal();
    void reject() override; // also Esc and the window's close button: asks first when modified

protected:
    // Every message and question goes through these, so that a test can answer them.
    virtual void showMessage(const QString& message);
    virtual QMessageBox::StandardButton ask(const QString& question, QMessageBox::StandardButtons buttons);

private:
    QWidget* makeEditorSide();
    QWidget* makeStatusRow();
    QWidget* makeButtonRow();
    bool loadFile();
    void refreshPreview();
    void showPreview(PreparedReport report);
    void showFault(const QString& message, int line);
    bool agreesToClose();

    QString templatePath_;
    Preview preview_;
    QTimer previewTimer_;
    CodeEditor* codeEditor_ = nullptr;
    FindBar* findBar_ = nullptr;
    PageView* pageView_ = nullptr;
    QLabel* errorLabel_ = nullptr;
    QLabel* pagesLabel_ = nullptr;
    QLabel* problemsLabel_ = nullptr;
    QPushButton* saveButton_ = nullptr;
    QPushButton* restoreButton_ = nullptr;
    QPushButton* closeButton_ = nullptr;
};
