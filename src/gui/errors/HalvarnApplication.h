#pragma once

#include <QApplication>

class ErrorControl;

// The application whose event dispatch is the one place an exception that
// escapes a handler reaches: it goes to the error control instead of ending
// the program.
class HalvarnApplication : public QApplication {
public:
    HalvarnApplication(int& argc, char** argv) : QApplication(argc, argv) {}

    void setErrorControl(ErrorControl* control) { control_ = control; }
    bool notify(QObject* receiver, QEvent* event) override;

private:
    ErrorControl* control_ = nullptr; // owned by main()
};
