#pragma once

#include <QString>

enum class MessageIcon { Information, Warning, Error, Question };

// The two ways any command speaks to the user: a message and a Yes/No question.
class UserPrompts {
public:
    virtual ~UserPrompts() = default;

    virtual void showMessage(const QString& caption, const QString& text, MessageIcon icon) = 0;
    virtual bool askYesNo(const QString& caption, const QString& text) = 0;
};
