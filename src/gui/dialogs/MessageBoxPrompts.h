#pragma once

#include "framework/UserPrompts.h"

class QWidget;

// Messages and Yes/No questions as message boxes over a window.
class MessageBoxPrompts : public UserPrompts {
public:
    explicit MessageBoxPrompts(QWidget* parent) : parent_(parent) {}

    void showMessage(const QString& caption, const QString& text, MessageIcon icon) override;
    bool askYesNo(const QString& caption, const QString& text) override;

private:
    QWidget* parent_;
};
