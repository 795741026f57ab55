#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

#include <optional>

class QWidget;

// What "Lista kontrolna" asks: the control date and the herds, "ALL" or one herd code.
struct ControlListChoice {
    QDate controlDate;
    QString herd;
};

// The control date (today at first, "edDzienKontroli") and the herd choice
// ("cbStado": "Wszystkie stada" and the downloaded herds); none when cancelled.
std::optional<ControlListChoice> AskControlList(const QStringList& herdCodes, QWidget* parent);
