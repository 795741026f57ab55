#include "gui/preview/PreviewDialogs.h"

#include "gui/preview/MessageBoxIcon.h"
#include "gui/preview/PdfOptionsDialog.h"

#include <QDesktopServices>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {
const QString ReportFilter = u"Zapisane raporty (*.hrp);;Wszystkie pliki (*)"_s;

std::optional<QString> Chosen(const QString& path)
{
    return path.isEmpty() ? std::nullopt : std::optional<QString>(path);
}
} // namespace

std::optional<QString> ModalPreviewDialogs::saveFileName(const QString& proposed)
{
    return Chosen(QFileDialog::getSaveFileName(parent_, u"Zapisz raport"_s, proposed, ReportFilter));
}

std::optional<QString> ModalPreviewDialogs::openFileName(const QString& folder)
{
    return Chosen(QFileDialog::getOpenFileName(parent_, u"Otwórz raport"_s, folder, ReportFilter));
}

std::optional<QString> ModalPreviewDialogs::findText(const QString& previous)
{
    bool accepted = false;
    const QString text =
        QInputDialog::getText(parent_, u"Szukaj"_s, u"Szukany tekst:"_s, QLineEdit::Normal, previous, &accepted);
    return accepted && !text.isEmpty() ? std::optional<QString>(text) : std::nullopt;
}

std::optional<PdfChoice> ModalPreviewDialogs::pdfOptions(int pageCount, const QString& proposedPath)
{
    PdfOptionsDialog dialog(pageCount, proposedPath, parent_);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.choice();
}

bool ModalPreviewDialogs::print(QPrinter& printer)
{
    QPrintDialog dialog(&printer, parent_);
    dialog.setWindowTitle(u"Drukuj"_s);
    dialog.setOptions(QAbstractPrintDialog::PrintPageRange | QAbstractPrintDialog::PrintCurrentPage |
                      QAbstractPrintDialog::PrintCollateCopies | QAbstractPrintDialog::PrintShowPageSize);
    return dialog.exec() == QDialog::Accepted;
}

bool ModalPreviewDialogs::pageSetup(QPrinter& printer)
{
    QPageSetupDialog dialog(&printer, parent_);
    dialog.setWindowTitle(u"Ustawienia drukarki"_s);
    return dialog.exec() == QDialog::Accepted;
}

void ModalPreviewDialogs::message(const QString& caption, const QString& text, MessageIcon icon)
{
    QMessageBox box(MessageBoxIcon(icon), caption, text, QMessageBox::Ok, parent_);
    box.exec();
}

void ModalPreviewDialogs::openFile(const QString& path)
{
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        message(u"Błąd..."_s, u"Nie można otworzyć pliku: "_s + path, MessageIcon::Error);
}
