#pragma once

#include "core/producers/ProducerList.h"
#include "framework/OperationHost.h"
#include "gui/dialogs/ControlListDialog.h"

#include <QDate>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QWidget;
struct PreparedReport;
struct PrintJob;
class TdmulmxDataBase_FR3;
struct PreviewSettings;
struct ReportTemplate;

// The questions and messages a command puts to the user. The window asks with
// message boxes and dialogs; tests answer without a modal loop.
class UserDialogs {
public:
    virtual ~UserDialogs() = default;

    virtual void message(const QString& caption, const QString& text, MessageIcon icon) = 0;
    virtual bool question(const QString& caption, const QString& text) = 0;
    // A question whose default answer is No, for a step that cannot be taken back.
    virtual bool cautiousQuestion(const QString& caption, const QString& text) = 0;
    virtual std::optional<QString> herd() = 0;
    // The code of the new use direction; none when the user cancelled or chose nothing.
    virtual std::optional<QString> useDirection() = 0;
    // "Wybór producenta" standing on the producer chosen last; none when cancelled.
    virtual std::optional<ChosenProducer> chooseProducer(const DataFolder& folder, qint32 lastChosenId) = 0;
    // "Archiwum pobrań": the download to open; none when closed. Deleting happens inside.
    virtual std::optional<qint64> chooseArchived(const DataFolder& folder) = 0;
    // "Przelicz na dzień": the new reference date; none when cancelled.
    virtual std::optional<QDate> recountDate(QDate current) = 0;
    // "Lista kontrolna": the control date and the herds; none when cancelled.
    virtual std::optional<ControlListChoice> controlList(const QStringList& herdCodes) = 0;
    // "Porównanie pobrań" over the archive; its "Wydruk" hands the print to `print`.
    virtual void compareDownloads(const DataFolder& folder, TdmulmxDataBase_FR3& reports,
                                  const std::function<void(const PrintJob&)>& print) = 0;
    virtual void openFile(const QString& path) = 0;
    // The print preview, modal; it goes when the user closes it.
    virtual void showPreview(std::shared_ptr<const PreparedReport> report, const PreviewSettings& settings) = 0;
    // The template editor over the open preview, with a live preview of the current data.
    virtual void designTemplate(const QString& path,
                                const std::function<PreparedReport(const ReportTemplate&)>& preview) = 0;
};

// Message boxes over the main window, the herd choice dialog and the desktop's open action.
class ModalDialogs : public UserDialogs {
public:
    explicit ModalDialogs(QWidget* parent) : parent_(parent) {}

    void message(const QString& caption, const QString& text, MessageIcon icon) override;
    bool question(const QString& caption, const QString& text) override;
    bool cautiousQuestion(const QString& caption, const QString& text) override;
    std::optional<QString> herd() override;
    std::optional<QString> useDirection() override;
    std::optional<ChosenProducer> chooseProducer(const DataFolder& folder, qint32 lastChosenId) override;
    std::optional<qint64> chooseArchived(const DataFolder& folder) override;
    std::optional<QDate> recountDate(QDate current) override;
    std::optional<ControlListChoice> controlList(const QStringList& herdCodes) override;
    void compareDownloads(const DataFolder& folder, TdmulmxDataBase_FR3& reports,
                          const std::function<void(const PrintJob&)>& print) override;
    void openFile(const QString& path) override;
    void showPreview(std::shared_ptr<const PreparedReport> report, const PreviewSettings& settings) override;
    void designTemplate(const QString& path,
                        const std::function<PreparedReport(const ReportTemplate&)>& preview) override;

private:
    QWidget* parent_;
};
