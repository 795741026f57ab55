#pragma once

#include "framework/OperationHost.h"

#include <QString>

#include <optional>

class QPrinter;
class QWidget;

// The file, the pages and what follows an export to PDF.
struct PdfChoice {
    QString path;
    int firstPage = 1; // 1-based
    int lastPage = 0;  // 1-based, inclusive
    bool openAfter = false;
};

// What the print preview asks the user. The preview window asks with modal
// dialogs; tests answer without a modal loop.
class PreviewDialogs {
public:
    virtual ~PreviewDialogs() = default;

    virtual std::optional<QString> saveFileName(const QString& proposed) = 0;
    virtual std::optional<QString> openFileName(const QString& folder) = 0;
    virtual std::optional<QString> findText(const QString& previous) = 0;
    virtual std::optional<PdfChoice> pdfOptions(int pageCount, const QString& proposedPath) = 0;
    // The printer and the pages to print; false when cancelled.
    virtual bool print(QPrinter& printer) = 0;
    virtual bool pageSetup(QPrinter& printer) = 0;
    virtual void message(const QString& caption, const QString& text, MessageIcon icon) = 0;
    // Opens a written file with the desktop's application for its type.
    virtual void openFile(const QString& path) = 0;
};

// File dialogs, the print and page setup dialogs, message boxes and the desktop's open action.
class ModalPreviewDialogs : public PreviewDialogs {
public:
    explicit ModalPreviewDialogs(QWidget* parent) : parent_(parent) {}

    std::optional<QString> saveFileName(const QString& proposed) override;
    std::optional<QString> openFileName(const QString& folder) override;
    std::optional<QString> findText(const QString& previous) override;
    std::optional<PdfChoice> pdfOptions(int pageCount, const QString& proposedPath) override;
    bool print(QPrinter& printer) override;
    bool pageSetup(QPrinter& printer) override;
    void message(const QString& caption, const QString& text, MessageIcon icon) override;
    void openFile(const QString& path) override;

private:
    QWidget* parent_;
};
