#pragma once

#include <QDialog>

class QCheckBox;
class QLabel;
class QLineEdit;

// "Zakres dat": which herd a print or spreadsheet export is for. While the box
// "Ogółem wraz z poszczególnymi stadami" (edOgolem) is checked the herd field
// (edStado) is disabled and optional; unchecked, it is mandatory and OK is refused
// while it is empty.
class TfGET_CO_EXP_WYDR : public QDialog {
    Q_OBJECT

public:
    explicit TfGET_CO_EXP_WYDR(QWidget* parent = nullptr);

    // "ALL" while the box is checked, else the herd typed (without surrounding blanks).
    QString herd() const;

public Q_SLOTS:
    void accept() override;

private:
    void allHerdsToggled(bool checked);
    void showMissingHerd(bool missing);

    QCheckBox* allHerds_ = nullptr;
    QLabel* herdLabel_ = nullptr;
    QLineEdit* herdEdit_ = nullptr;
    QLabel* missingHint_ = nullptr;
};

// Asks for the herd; on OK sets herd, on Cancel leaves it as it was.
// Returns QDialog::Accepted or QDialog::Rejected.
int AskHerd(QString& herd, QWidget* parent = nullptr);
