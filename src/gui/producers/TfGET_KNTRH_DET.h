#pragma once

#include "core/producers/ProducerList.h"

#include <QDialog>

#include <array>
#include <optional>

class QLineEdit;

// "Dane kontrahenta": the eleven values of one entry of the producer list. The
// edits are named edNazwa, edLogin, edHaslo, edProducent and, for the limits,
// edKrowMamek, edKrowMlecznych, edOpas150, edOpas150_220, edOpas220_300,
// edOpas300_450, edOpas450. A limit left empty is 0.
class TfGET_KNTRH_DET : public QDialog {
    Q_OBJECT

public:
    explicit TfGET_KNTRH_DET(QWidget* parent = nullptr);

    void setEntry(const ProducerEntry& entry);
    ProducerEntry entry() const;

private:
    QWidget* buildLimits();
    QLineEdit* addLimitEdit(DeclaredGroup group, const QString& objectName);

    QLineEdit* name_ = nullptr;
    QLineEdit* login_ = nullptr;
    QLineEdit* password_ = nullptr;
    QLineEdit* producerNumber_ = nullptr;
    std::array<QLineEdit*, DeclaredGroupCount> limits_{}; // in the order of DeclaredGroup
};

// Shows "Dane kontrahenta" modally, filled from start; the values as left on OK, nothing on Cancel.
std::optional<ProducerEntry> AskProducerDetails(const ProducerEntry& start, QWidget* parent = nullptr);
