#pragma once

#include "gui/preview/PreviewDialogs.h"

#include <QDialog>

class QCheckBox;
class QLineEdit;
class QRadioButton;
class QSpinBox;

// "Eksport do PDF": the file, all pages or a range, and whether to open the
// file once written. The parts are named edPath, btBrowse, rbAllPages,
// rbPageRange, sbFirstPage, sbLastPage and cbOpenAfter.
class PdfOptionsDialog : public QDialog {
    Q_OBJECT

public:
    PdfOptionsDialog(int pageCount, const QString& proposedPath, QWidget* parent = nullptr);

    PdfChoice choice() const;

private:
    QWidget* createFileRow(const QString& proposedPath);
    QWidget* createRangeBox(int pageCount);
    void browse();

    QLineEdit* path_ = nullptr;
    QRadioButton* allPages_ = nullptr;
    QSpinBox* firstPage_ = nullptr;
    QSpinBox* lastPage_ = nullptr;
    QCheckBox* openAfter_ = nullptr;
    int pageCount_ = 0;
};
