#include "gui/producers/ProducerGrid.h"

#include <QStandardItemModel>

using namespace Qt::StringLiterals;

namespace {
constexpr int IdRole = Qt::UserRole + 1;

QStandardItem* TextCell(const QString& text)
{
    auto* item = new QStandardItem(text);
    item->setEditable(false);
    return item;
}

QStandardItem* NumberCell(qint32 number)
{
    QStandardItem* item = TextCell(QString::number(number));
    item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return item;
}

QList<QStandardItem*> RowOf(const ProducerRecord& record)
{
    QList<QStandardItem*> row{NumberCell(record.id), TextCell(record.name), TextCell(record.login),
                              TextCell(record.password.isEmpty() ? QString() : PasswordMask()),
                              TextCell(record.producerNumber)};
    for (const int limit : record.limits)
        row.append(NumberCell(limit));
    row.front()->setData(record.id, IdRole);
    return row;
}
} // namespace

QStringList ProducerGridCaptions()
{
    return {u"ID"_s,         u"Nazwa"_s,         u"Login"_s,        u"Hasło"_s,        u"Nr producenta"_s,
            u"Krów mamek"_s, u"<= 150"_s,        u"> 150 <= 220"_s, u"> 220 <= 300"_s, u"> 300 <= 450"_s,
            u"> 450"_s,      u"Krów mlecznych"_s};
}

QString PasswordMask()
{
    return u"******"_s;
}

void ShowProducers(QStandardItemModel& model, const std::vector<ProducerRecord>& records)
{
    model.clear();
    model.setHorizontalHeaderLabels(ProducerGridCaptions());
    for (const ProducerRecord& record : records)
        model.appendRow(RowOf(record));
}

qint32 ProducerIdOfRow(const QStandardItemModel& model, int row)
{
    return model.item(row, 0)->data(IdRole).toInt();
}

int RowOfProducer(const QStandardItemModel& model, qint32 id)
{
    for (int row = 0; row < model.rowCount(); ++row)
        if (ProducerIdOfRow(model, row) == id)
            return row;
    return -1;
}
