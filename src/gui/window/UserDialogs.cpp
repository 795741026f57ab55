#include "gui/window/UserDialogs.h"

#include "gui/archive/TfArchiwum.h"
#include "gui/archive/TfPorownanie.h"
#include "gui/dialogs/MessageBoxPrompts.h"
#include "gui/dialogs/TfGET_CO_EXP_WYDR.h"
#include "gui/dialogs/TfGET_TUKU.h"
#include "gui/editor/TemplateEditor.h"
#include "gui/preview/TfpRapPrev_FR3.h"
#include "gui/producers/TfGET_KNTRH_LIST.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDialog>
#include <QPushButton>
#include <QUrl>

using namespace Qt::StringLiterals;

void ModalDialogs::message(const QString& caption, const QString& text, MessageIcon icon)
{
    MessageBoxPrompts(parent_).showMessage(caption, text, icon);
}

bool ModalDialogs::question(const QString& caption, const QString& text)
{
    return MessageBoxPrompts(parent_).askYesNo(caption, text);
}

bool ModalDialogs::cautiousQuestion(const QString& caption, const QString& text)
{
    return MessageBoxPrompts(parent_).askYesNoDefaultNo(caption, text);
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

std::optional<ChosenProducer> ModalDialogs::chooseProducer(const DataFolder& folder, qint32 lastChosenId)
{
    return ChooseProducer(folder, lastChosenId, parent_);
}

std::optional<qint64> ModalDialogs::chooseArchived(const DataFolder& folder)
{
    return ChooseArchivedDownload(folder.archiveFile(), parent_);
}

std::optional<QDate> ModalDialogs::recountDate(QDate current)
{
    return AskRecountDate(current, parent_);
}

std::optional<ControlListChoice> ModalDialogs::controlList(const QStringList& herdCodes)
{
    return AskControlList(herdCodes, parent_);
}

void ModalDialogs::compareDownloads(const DataFolder& folder, TdmulmxDataBase_FR3& reports,
                                    const std::function<void(const PrintJob&)>& print)
{
    TfPorownanie dialog(folder, reports, print, parent_);
    dialog.exec();
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
