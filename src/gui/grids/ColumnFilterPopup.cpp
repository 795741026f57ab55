#include "gui/grids/ColumnFilterPopup.h"

#include "gui/grids/SummaryModel.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
constexpr int TextRole = Qt::UserRole;

QListWidgetItem* CheckableItem(const QString& label, bool checked, QListWidget* list)
{
    auto* item = new QListWidgetItem(label, list);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
    item->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
    return item;
}
} // namespace

ColumnFilterPopup::ColumnFilterPopup(const QString& field, const QStringList& values, const QStringList& accepted,
                                     QWidget* parent)
    : QFrame(parent, Qt::Popup), list_(new QListWidget(this))
{
    setObjectName(u"filterPopup"_s);
    setAttribute(Qt::WA_DeleteOnClose);
    setFrameStyle(QFrame::Box | QFrame::Plain);
    list_->setObjectName(u"lstWartosci"_s);
    CheckableItem(u"(Wszystkie)"_s, accepted.isEmpty(), list_);
    for (const QString& value : values)
        CheckableItem(ValueLabel(field, value), accepted.contains(value), list_)->setData(TextRole, value);
    connect(list_, &QListWidget::itemChanged, this, &ColumnFilterPopup::itemChanged);

    auto* ok = new QPushButton(u"OK"_s, this);
    ok->setObjectName(u"btnOK"_s);
    ok->setDefault(true);
    auto* cancel = new QPushButton(u"Anuluj"_s, this);
    cancel->setObjectName(u"btnAnuluj"_s);
    connect(ok, &QPushButton::clicked, this, &ColumnFilterPopup::apply);
    connect(cancel, &QPushButton::clicked, this, &QWidget::close);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(list_);
    auto* buttons = new QHBoxLayout;
    layout->addLayout(buttons);
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
}

QStringList ColumnFilterPopup::checkedValues() const
{
    QStringList values;
    for (int row = 1; row < list_->count(); ++row)
        if (list_->item(row)->checkState() == Qt::Checked)
            values.append(list_->item(row)->data(TextRole).toString());
    return values;
}

void ColumnFilterPopup::apply()
{
    Q_EMIT filterChosen(checkedValues());
    close();
}

// "(Wszystkie)" and the single values exclude each other; with nothing left
// checked, "(Wszystkie)" comes back.
void ColumnFilterPopup::itemChanged(QListWidgetItem* item)
{
    const QSignalBlocker blocker(list_);
    QListWidgetItem* all = list_->item(0);
    if (item == all) {
        if (all->checkState() == Qt::Checked)
            uncheckValues();
        else if (checkedValues().isEmpty())
            all->setCheckState(Qt::Checked);
        return;
    }
    all->setCheckState(checkedValues().isEmpty() ? Qt::Checked : Qt::Unchecked);
}

void ColumnFilterPopup::uncheckValues()
{
    for (int row = 1; row < list_->count(); ++row)
        list_->item(row)->setCheckState(Qt::Unchecked);
}
