#pragma once

#include <QDialog>

class QButtonGroup;

// "Wybór": the new use direction for the marked animals. The radio buttons are
// named "ed" + their code (edOP, edMI, edMIOP, edML, edMLOP); none is checked at opening.
class TfGET_TUKU : public QDialog {
    Q_OBJECT

public:
    explicit TfGET_TUKU(QWidget* parent = nullptr);

    // The code of the first checked choice, empty when none is checked.
    QString code() const;

private:
    QButtonGroup* choices_ = nullptr;
};

// Empties first and code, asks; on OK code becomes the chosen code (empty when
// nothing was chosen). first is never set. Returns QDialog::Accepted or Rejected.
int AskUseDirection(QString& first, QString& code, QWidget* parent = nullptr);
