#pragma once

#include "framework/OperationHost.h"

#include <QElapsedTimer>
#include <QStringList>

#include <functional>

class QGroupBox;
class QPlainTextEdit;
class StatusDisplay;
class UserDialogs;

// The main window as the host of long operations: status bar, memos, the
// "Błąd" group, message boxes and the herd choice.
class WindowHost : public OperationHost {
public:
    struct Widgets {
        StatusDisplay* status;
        QPlainTextEdit* errors; // mErrors
        QPlainTextEdit* loaded; // mLoaded
        QGroupBox* errorGroup;  // lcErrors
    };

    explicit WindowHost(UserDialogs& dialogs);

    // The window's widgets, once they are built; the session is created before them.
    // `modeChanged` runs at every change of the status mode, before the window repaints.
    void attach(Widgets widgets, std::function<std::vector<int>()> summaryRows, std::function<void()> modeChanged);

    // The raw answers go into "Pobrane dane" only when that page is looked at:
    // laying out megabytes of one-line JSON would otherwise slow every download.
    void showLoaded();

    void requestCancel() { cancel_ = true; }
    void resetCancel() { cancel_ = false; }

    void statusModeChanged(bool busy, bool showHerd) override;
    void statusTextChanged(StatusPanel panel, const QString& text) override;
    void progressChanged(int bar, int position, int maximum) override;
    void memoAppended(Memo memo, const QString& text) override;
    void memoCleared(Memo memo) override;
    void showMessage(const QString& caption, const QString& text, MessageIcon icon) override;
    bool askYesNo(const QString& caption, const QString& text) override;
    bool cancelRequested() override { return cancel_; }
    std::optional<QString> askHerd() override;
    std::optional<QString> askUseDirection() override;
    bool askToResend(const QString& question) override;
    std::vector<int> summaryRowsInDisplayOrder() override { return summaryRows_(); }
    void openWithDesktop(const QString& path) override;

private:
    void processPendingEvents();

    Widgets widgets_{};
    UserDialogs& dialogs_;
    std::function<std::vector<int>()> summaryRows_;
    std::function<void()> modeChanged_;
    QElapsedTimer sincePaint_;
    QStringList pendingLoaded_;
    bool cancel_ = false;
};
