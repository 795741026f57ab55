#pragma once

#include "core/producers/ProducerList.h"
#include "gui/dialogs/MessageBoxPrompts.h"

#include <QDialog>

#include <functional>
#include <memory>
#include <optional>

class QPushButton;
class QStandardItemModel;
class QTableView;

// "Lista kontrahentów": the producer list in file order, read-only, with the
// passwords masked. "Nowy", "Edycja" and "Usuń" change the file at once; OK
// (or a double click on a row) chooses the current row. The grid is named
// "cxGrid", the buttons btnNowy, btnEdycja, btnUsun, btnOK and btnCancel.
class TfGET_KNTRH_LIST : public QDialog {
    Q_OBJECT

public:
    // Asks for an entry's values starting from the given ones; nothing when cancelled.
    using DetailsEditor = std::function<std::optional<ProducerEntry>(const ProducerEntry& start)>;

    // Opens the list, telling the user of a torn file or unreadable passwords, and
    // stands on the row of lastChosenId, else on the first one. Without prompts of
    // the caller's, message boxes over this window speak to the user.
    TfGET_KNTRH_LIST(const DataFolder& folder, qint32 lastChosenId, QWidget* parent = nullptr,
                     UserPrompts* prompts = nullptr);

    // "Dane kontrahenta" by default.
    void setDetailsEditor(DetailsEditor editor) { detailsEditor_ = std::move(editor); }

    // The ID of the current row; none when the list is empty.
    std::optional<qint32> currentId() const;
    // The current row's ID and values, its password deciphered; none when the list is empty.
    std::optional<ChosenProducer> chosen() const;

public Q_SLOTS:
    void addEntry();
    void editCurrent();
    void removeCurrent();
    void accept() override;

private:
    QTableView* buildGrid();
    QLayout* buildButtons();
    void fitWidthToColumns();
    void showRecords();
    void goToRow(int row);
    void goToId(qint32 id);
    void updateButtons();

    DialogPrompts prompts_;
    ProducerList list_;
    QStandardItemModel* model_ = nullptr;
    QTableView* grid_ = nullptr;
    QPushButton* editButton_ = nullptr;
    QPushButton* removeButton_ = nullptr;
    QPushButton* okButton_ = nullptr;
    DetailsEditor detailsEditor_;
};

// "Wybór producenta": the list standing on lastChosenId, shown modally. On OK the
// chosen entry with its password deciphered (kept in memory only), nothing on Cancel.
std::optional<ChosenProducer> ChooseProducer(const DataFolder& folder, qint32 lastChosenId, QWidget* parent);
