#pragma once

#include "core/archive/DownloadArchive.h"
#include "framework/UserPrompts.h"
#include "gui/dialogs/MessageBoxPrompts.h"

#include <QDialog>

#include <memory>
#include <optional>

class QPushButton;
class QTableWidget;

// "Archiwum pobrań": the stored downloads, newest first (producer, name, state
// date, reference date, time of download, animals, incomplete herds). "Usuń"
// deletes the current one after a question; "Otwórz" (or a double click)
// chooses it. The grid is named "gridArchiwum", the buttons btnOtworz, btnUsun
// and btnZamknij.
class TfArchiwum : public QDialog {
    Q_OBJECT

public:
    // Throws ArchiveError when the archive cannot be opened. Without prompts of
    // the caller's, message boxes over this window speak to the user.
    explicit TfArchiwum(const QString& archivePath, QWidget* parent = nullptr, UserPrompts* prompts = nullptr);

    std::optional<qint64> currentId() const;
    QTableWidget* grid() const { return grid_; }

public Q_SLOTS:
    void removeCurrent();

private:
    void showDownloads();
    void updateButtons();

    DialogPrompts prompts_;
    DownloadArchive archive_;
    std::vector<ArchivedDownload> downloads_;
    QTableWidget* grid_ = nullptr;
    QPushButton* openButton_ = nullptr;
    QPushButton* removeButton_ = nullptr;
};

// The archive shown modally; the id of the download to open, none when closed.
// A damaged archive is told to the user.
std::optional<qint64> ChooseArchivedDownload(const QString& archivePath, QWidget* parent);

// "Przelicz na dzień": the new reference date, starting at `current`; none when cancelled.
std::optional<QDate> AskRecountDate(QDate current, QWidget* parent);
