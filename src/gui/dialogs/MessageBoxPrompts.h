#pragma once

#include "framework/UserPrompts.h"

#include <memory>

class QWidget;

// Messages and Yes/No questions as message boxes over a window.
class MessageBoxPrompts : public UserPrompts {
public:
    explicit MessageBoxPrompts(QWidget* parent) : parent_(parent) {}

    void showMessage(const QString& caption, const QString& text, MessageIcon icon) override;
    bool askYesNo(const QString& caption, const QString& text) override;
    // A question whose hasty answer, Enter included, is No.
    bool askYesNoDefaultNo(const QString& caption, const QString& text);

private:
    bool ask(const QString& caption, const QString& text, bool defaultYes);

    QWidget* parent_;
};

// The prompts a dialog speaks through: the caller's (tests answer there), else
// message boxes over the dialog itself.
class DialogPrompts {
public:
    DialogPrompts(UserPrompts* given, QWidget* dialog)
        : own_(given ? nullptr : std::make_unique<MessageBoxPrompts>(dialog)), prompts_(given ? *given : *own_)
    {}

    UserPrompts& get() const { return prompts_; }
    UserPrompts* operator->() const { return &prompts_; }

private:
    std::unique_ptr<UserPrompts> own_; // only when the caller gave none
    UserPrompts& prompts_;
};
