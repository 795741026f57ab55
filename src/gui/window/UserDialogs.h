#pragma once

#include "framework/OperationHost.h"

#include <QString>

#include <optional>

class QWidget;

// The questions and messages a command puts to the user. The window asks with
// message boxes and dialogs; tests answer without a modal loop.
class UserDialogs {
public:
    virtual ~UserDialogs() = default;

    virtual void message(const QString& caption, const QString& text, MessageIcon icon) = 0;
    virtual bool question(const QString& caption, const QString& text) = 0;
    virtual std::optional<QString> herd() = 0;
    virtual void openFile(const QString& path) = 0;
};

// Message boxes over the main window, the herd choice dialog and the desktop's open action.
class ModalDialogs : public UserDialogs {
public:
    explicit ModalDialogs(QWidget* parent) : parent_(parent) {}

    void message(const QString& caption, const QString& text, MessageIcon icon) override;
    bool question(const QString& caption, const QString& text) override;
    std::optional<QString> herd() override;
    void openFile(const QString& path) override;

private:
    QWidget* parent_;
};
