#pragma once

#include <QWidget>

class CodeEditor;
class QLabel;
class QLineEdit;

// "Szukaj:" under a code editor: Enter finds the next occurrence, wrapping
// round; Esc hides the bar and gives the editor the focus back.
class FindBar : public QWidget {
    Q_OBJECT

public:
    FindBar(CodeEditor* editor, QWidget* parent = nullptr);

    void open(); // shows the bar with the editor's selected text, ready for typing
    void findNext();
    void dismiss();

private:
    CodeEditor* editor_;
    QLineEdit* textEdit_;
    QLabel* statusLabel_;
};
