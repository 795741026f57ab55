#include "gui/errors/HalvarnApplication.h"

#include "framework/errors/ErrorControl.h"

bool HalvarnApplication::notify(QObject* receiver, QEvent* event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (...) {
        if (!control_)
            throw;
        control_->handle(std::current_exception());
        return false;
    }
}
