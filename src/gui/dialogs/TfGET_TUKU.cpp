#include "gui/dialogs/TfGET_TUKU.h"

#include "gui/dialogs/DialogParts.h"
#include "registry/usechange/UseDirections.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QRadioButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

TfGET_TUKU::TfGET_TUKU(QWidget* parent) : QDialog(parent)
{
    setObjectName(u"TfGET_TUKU"_s);
    setWindowTitle(u"Wybór"_s);

    auto* group = new QGroupBox(u"Kierunki użytkowania"_s);
    auto* groupLayout = new QVBoxLayout(group);
    choices_ = new QButtonGroup(this);
    for (int id = 0; id < static_cast<int>(UseDirections.size()); ++id) {
        const UseDirection& direction = UseDirections[static_cast<std::size_t>(id)];
        auto* button = new QRadioButton(QString::fromUtf8(direction.name));
        button->setObjectName(u"ed"_s + QLatin1StringView(direction.code));
        choices_->addButton(button, id);
        groupLayout->addWidget(button);
    }

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(group);
    layout->addWidget(AddOkCancel(*this));
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

QString TfGET_TUKU::code() const
{
    for (int id = 0; id < static_cast<int>(UseDirections.size()); ++id)
        if (choices_->button(id)->isChecked())
            return QString::fromLatin1(UseDirections[static_cast<std::size_t>(id)].code);
    return {};
}

int AskUseDirection(QString& first, QString& code, QWidget* parent)
{
    first.clear();
    code.clear();
    TfGET_TUKU dialog(parent);
    const int result = dialog.exec();
    if (result == QDialog::Accepted)
        code = dialog.code();
    return result;
}
