#include "gui/window/UserDialogs.h"

#include "gui/dialogs/TfGET_CO_EXP_WYDR.h"
#include "gui/dialogs/TfGET_TUKU.h"
#include "gui/editor/TemplateEditor.h"
#include "gui/preview/MessageBoxIcon.h"
#include "gui/preview/TfpRapPrev_FR3.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QUrl>

using namespace Qt::StringLiterals;

void ModalDialogs::message(const QString& caption, const QString& text, MessageIcon icon)
{
    QMessageBox box(MessageBoxIcon(icon), caption, text, QMessageBox::Ok, parent_);
    box.exec();
}

bool ModalDialogs::question(const QString& caption, const QString& text)
{
    QMessageBox box(QMessageBox::Question, caption, text, QMessageBox::Yes | QMessageBox::No, parent_);
    box.button(QMessageBox::Yes)->setText(u"Tak"_s);
    box.button(QMessageBox::No)->setText(u"Nie"_s);
    return box.exec() == QMessageBox::Yes;
}

std::optional<QString> ModalDialogs::herd()
{
    QString herd;
    if (AskHerd(herd, parent_) != QDialog::Accepted)
        return std::nullopt;
    return herd;
}

std::optional<QString> ModalDialogs::useDirection()
{
    QString first;
    QString code;
    if (AskUseDirection(first, code, parent_) != QDialog::Accepted || code.isEmpty())
        return std::nullopt;
    return code;
}

void ModalDialogs::openFile(const QString& path)
{
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        message(u"Błąd..."_s, u"Nie można otworzyć pliku: "_s + path, MessageIcon::Error);
}

void ModalDialogs::showPreview(std::shared_ptr<const PreparedReport> report, const PreviewSettings& settings)
{
    TfpRapPrev_FR3 preview(std::move(report), settings, {}, parent_);
    preview.exec();
}

// The editor opens over the preview that asked for it.
void ModalDialogs::designTemplate(const QString& path,
                                  const std::function<PreparedReport(const ReportTemplate&)>& preview)
{
    QWidget* over = QApplication::activeModalWidget();
    TemplateEditor editor(path, preview, over ? over : parent_);
    editor.exec();
}
